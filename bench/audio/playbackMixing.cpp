// The mixer and render threads' work: mixing against a straight scalar loop, the render callback against memcpy.

#include "audio/PlaybackMixer.h"
#include "audio/PlayerState.h"
#include "audio/TagwellAudioPlayer.h"
#include "tests/support/DrivenOutput.h"
#include "tests/support/TempFolder.h"
#include "tests/support/WavBuilder.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <memory>
#include <random>
#include <vector>

namespace {

constexpr int32_t kBlock = 256; // Frames.
constexpr double kRate = 48000.0;

std::vector<float> noise(size_t count)
{
    std::mt19937 random(5);
    std::uniform_real_distribution<float> sample(-0.1f, 0.1f);
    std::vector<float> values(count);
    for (float& each : values)
        each = sample(random);
    return values;
}

// The same result written as one says it: frame by frame, track by track.
void mixPlainly(
    const PlaybackMixer& mixer, const float* input, int32_t frames, int32_t tracks, float* out, float* peaks)
{
    float gains[PlaybackMixer::kMaxTracks];
    for (int32_t track = 0; track < tracks; ++track) {
        gains[track] = mixer.effectiveGain(track, false);
        peaks[track] = 0.0f;
    }
    const float factor = 1.0f / std::sqrt(static_cast<float>(tracks));
    for (int32_t frame = 0; frame < frames; ++frame) {
        float sum = 0.0f;
        for (int32_t track = 0; track < tracks; ++track) {
            const float sample = *input++ * gains[track];
            if (std::abs(sample) > peaks[track])
                peaks[track] = std::abs(sample);
            sum += sample;
        }
        const float value = std::clamp(sum * factor, -1.0f, 1.0f);
        *out++ = value;
        *out++ = value;
    }
}

struct MixData {
    explicit MixData(int32_t tracks)
        : mixer(tracks), input(noise(static_cast<size_t>(tracks * kBlock))), peaks(static_cast<size_t>(tracks))
    {
    }
    PlaybackMixer mixer;
    std::vector<float> input;
    std::vector<float> stereo = std::vector<float>(size_t{ kBlock } * 2);
    std::vector<float> peaks;
};

void countRealTime(benchmark::State& state)
{
    state.counters["xRealTime"]
        = benchmark::Counter(static_cast<double>(state.iterations()) * kBlock / kRate, benchmark::Counter::kIsRate);
}

void mixToStereo(benchmark::State& state)
{
    MixData data(static_cast<int32_t>(state.range(0)));
    for (auto _ : state) {
        data.mixer.mixToStereo(data.input.data(), kBlock, data.stereo.data(), data.peaks.data());
        benchmark::DoNotOptimize(data.stereo.data());
        benchmark::ClobberMemory();
    }
    countRealTime(state);
    std::vector<float> plain(data.stereo.size());
    mixPlainly(
        data.mixer, data.input.data(), kBlock, static_cast<int32_t>(state.range(0)), plain.data(), data.peaks.data());
    float farthest = 0.0f;
    for (size_t i = 0; i < plain.size(); ++i)
        farthest = std::max(farthest, std::abs(plain[i] - data.stereo[i]));
    state.counters["deviation"] = static_cast<double>(farthest);
}

void scalarLoop(benchmark::State& state)
{
    const auto tracks = static_cast<int32_t>(state.range(0));
    MixData data(tracks);
    for (auto _ : state) {
        mixPlainly(data.mixer, data.input.data(), kBlock, tracks, data.stereo.data(), data.peaks.data());
        benchmark::DoNotOptimize(data.stereo.data());
        benchmark::ClobberMemory();
    }
    countRealTime(state);
}

AudioOutput::RenderFunction installedFunction()
{
    DrivenOutput::reset();
    const TempFolder folder;
    WavBuilder().fmt(48000, 1, 16).dataFrames(1).write(folder.file("one.wav"));
    TagwellAudioPlayer player;
    return player.open(folder.file("one.wav")) ? DrivenOutput::renderFunction() : nullptr;
}

constexpr uint32_t kRenderFrames = 512;

void countFrames(benchmark::State& state)
{
    state.counters["nsPerFrame"] = benchmark::Counter(static_cast<double>(state.iterations()) * kRenderFrames * 1e-9,
        benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

// `channels` 1: two buffers of one channel; 2: one buffer of two.
void renderCallback(benchmark::State& state)
{
    const auto channels = static_cast<uint32_t>(state.range(0));
    const AudioOutput::RenderFunction render = installedFunction();
    const auto player = std::make_unique<PlayerState>();
    player->transport.start();
    std::vector<float> left(size_t{ kRenderFrames } * channels);
    std::vector<float> right(kRenderFrames);
    AudioOutput::BufferListOf<2> list;
    list.buffer(0) = { channels, kRenderFrames * channels * 4, left.data() };
    list.buffer(1) = { 1, kRenderFrames * 4, right.data() };
    list.list()->mNumberBuffers = channels == 1 ? 2 : 1;
    for (auto _ : state) {
        player->stereoRing.advance(player->stereoRing.mark(), kRenderFrames);
        render(player.get(), nullptr, nullptr, 0, kRenderFrames, list.list());
        benchmark::ClobberMemory();
    }
    countFrames(state);
}

void memcpyOfAsMuch(benchmark::State& state)
{
    const std::vector<float> ring = noise(16384);
    std::vector<float> out(size_t{ kRenderFrames } * 2);
    size_t slot = 0;
    for (auto _ : state) {
        std::memcpy(out.data(), ring.data() + slot, out.size() * sizeof(float));
        slot = (slot + out.size()) & 16383;
        benchmark::DoNotOptimize(out.data());
        benchmark::ClobberMemory();
    }
    countFrames(state);
}

void publishBlock(benchmark::State& state)
{
    StereoRing ring;
    const std::vector<float> stereo = noise(size_t{ kRenderFrames } * 2);
    for (auto _ : state) {
        ring.publish(ring.mark(), stereo.data(), kRenderFrames);
        benchmark::ClobberMemory();
    }
    countFrames(state);
}

void convertBlock(benchmark::State& state)
{
    AudioRateConverter converter;
    if (!converter.setup(static_cast<double>(state.range(0)), kRate))
        state.SkipWithError("no converter");
    const std::vector<float> stereo = noise(size_t{ kBlock } * 2);
    std::vector<float> out(2048);
    for (auto _ : state)
        benchmark::DoNotOptimize(converter.convert(stereo.data(), kBlock, out.data(), 1024));
    state.counters["xRealTime"]
        = benchmark::Counter(static_cast<double>(state.iterations()) * kBlock / static_cast<double>(state.range(0)),
            benchmark::Counter::kIsRate);
}

BENCHMARK(mixToStereo)->Arg(1)->Arg(2)->Arg(8)->Arg(64);
BENCHMARK(scalarLoop)->Arg(1)->Arg(2)->Arg(8)->Arg(64);
BENCHMARK(renderCallback)->Arg(1)->Arg(2);
BENCHMARK(publishBlock);
BENCHMARK(memcpyOfAsMuch);
BENCHMARK(convertBlock)->Arg(44100)->Arg(96000);

} // namespace

BENCHMARK_MAIN();
