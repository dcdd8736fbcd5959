// What reading for playback costs: the whole decode beside a plain read() of the same bytes, each sample loop, the
// consumer's copy beside memcpy, and a seek up to its first frame.

#include "audio/SampleDecode.h"
#include "audio/WavFileReader.h"

#include "tests/support/TempFolder.h"
#include "tests/support/WavBuilder.h"

#include <benchmark/benchmark.h>

#include <fcntl.h>
#include <unistd.h>

#include <chrono>
#include <cstring>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

namespace {

constexpr int32_t kChannels = 8;
constexpr int64_t kRate = 48000;
constexpr int64_t kTenMinutes = kRate * 600;

// Ten minutes of eight channels in 24 bits, 691 MB, made once and kept for the whole run.
const std::string& longFile()
{
    static const TempFolder folder;
    static const std::string path = [] {
        std::string made = folder.file("long.wav");
        constexpr int64_t kSecondBytes = kRate * kChannels * 3;
        WavBuilder().fmt(kRate, kChannels, 24).data("").claimSize("data", 600 * kSecondBytes).write(made);
        std::string second(kSecondBytes, '\0');
        for (size_t i = 0; i < second.size(); ++i)
            second[i] = static_cast<char>((i * 37 + i / 251) & 0xFF);
        std::ofstream file(made, std::ios::binary | std::ios::app);
        for (int i = 0; i < 600; ++i)
            file.write(second.data(), kSecondBytes);
        return made;
    }();
    return path;
}

void plainRead(benchmark::State& state)
{
    const std::string& path = longFile();
    std::vector<char> block(static_cast<size_t>(state.range(0)));
    for (auto _ : state) {
        const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC);
        while (read(file, block.data(), block.size()) > 0)
            benchmark::ClobberMemory();
        close(file);
    }
    state.SetBytesProcessed(state.iterations() * kTenMinutes * kChannels * 3);
}
BENCHMARK(plainRead)
    ->Name("wholeFile/plainRead/bytes")
    ->Arg(8192 * 24)
    ->Arg(1 << 20)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

void decodeWhole(benchmark::State& state)
{
    const std::string& path = longFile();
    const auto frames = static_cast<int32_t>(state.range(0));
    std::vector<float> out(static_cast<size_t>(frames) * kChannels);
    int64_t total = 0;
    for (auto _ : state) {
        WavFileReader reader;
        reader.open(path);
        while (const int32_t got = reader.readFramesSync(out.data(), frames, kChannels))
            total += got;
    }
    if (total != kTenMinutes * state.iterations())
        state.SkipWithError("frames are missing");
    state.SetBytesProcessed(total * kChannels * 3);
}
BENCHMARK(decodeWhole)
    ->Name("wholeFile/readFramesSync/frames")
    ->Arg(2048)
    ->Arg(4096)
    ->Arg(8192)
    ->Arg(65536)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

// Nanoseconds for one sample of a loop, on blocks as the producer has them.
void decodeLoop(benchmark::State& state, int32_t formatCode, int32_t bits, int32_t outChannels)
{
    constexpr int64_t kFrames = PrefetchRing::kBlockFrames;
    std::vector<uint8_t> in(static_cast<size_t>(kFrames * kChannels * bits / 8), 0x35);
    std::vector<float> out(static_cast<size_t>(kFrames * outChannels));
    const FrameDecoder decode = frameDecoder(formatCode, bits);
    for (auto _ : state) {
        decode(in.data(), kFrames, kChannels, out.data(), outChannels);
        benchmark::ClobberMemory();
    }
    state.counters["perSample"] = benchmark::Counter(static_cast<double>(state.iterations() * kFrames * outChannels),
        benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}
BENCHMARK_CAPTURE(decodeLoop, integer16, kFormatInteger, 16, kChannels);
BENCHMARK_CAPTURE(decodeLoop, integer24, kFormatInteger, 24, kChannels);
BENCHMARK_CAPTURE(decodeLoop, integer32, kFormatInteger, 32, kChannels);
BENCHMARK_CAPTURE(decodeLoop, float32, kFormatFloat, 32, kChannels);
BENCHMARK_CAPTURE(decodeLoop, integer16FirstTwoOfEight, kFormatInteger, 16, 2);
BENCHMARK_CAPTURE(decodeLoop, integer24FirstTwoOfEight, kFormatInteger, 24, 2);
BENCHMARK_CAPTURE(decodeLoop, integer32FirstTwoOfEight, kFormatInteger, 32, 2);
BENCHMARK_CAPTURE(decodeLoop, float32FirstTwoOfEight, kFormatFloat, 32, 2);

// A baseline for the loops: one sample of 24 bits at a time, through the rule for a single one.
void decodeOneByOne(benchmark::State& state)
{
    constexpr int64_t kSamples = PrefetchRing::kBlockFrames * kChannels;
    std::vector<uint8_t> in(kSamples * 3, 0x35);
    std::vector<float> out(kSamples);
    for (auto _ : state) {
        for (size_t i = 0; i < kSamples; ++i)
            out[i] = decodeSample(in.data() + 3 * i, kFormatInteger, 24);
        benchmark::ClobberMemory();
    }
    state.counters["perSample"] = benchmark::Counter(
        static_cast<double>(state.iterations() * kSamples), benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}
BENCHMARK(decodeOneByOne)->Name("decodeLoop/integer24OneByOne");

// A short file that the producer has read to its end, so that it sleeps while the consumer is measured.
std::string ringFile(const TempFolder& folder, int32_t channels, int64_t frames)
{
    std::string path = folder.file("ring.wav");
    WavBuilder().fmt(kRate, static_cast<uint16_t>(channels), 24).dataFrames(static_cast<size_t>(frames)).write(path);
    return path;
}

void countFrames(benchmark::State& state, int64_t frames)
{
    state.counters["perFrame"]
        = benchmark::Counter(static_cast<double>(frames), benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

// Blocks of 256 frames out of a full ring. The waits for the ring to fill again are not counted.
void ringRead(benchmark::State& state)
{
    const auto channels = static_cast<int32_t>(state.range(0));
    constexpr int32_t kBlock = 256;
    constexpr int64_t kBlocks = PrefetchRing::kFrames / kBlock;
    const TempFolder folder;
    WavFileReader reader;
    reader.open(ringFile(folder, channels, PrefetchRing::kFrames));
    reader.startPrefetch(0);
    std::vector<float> out(static_cast<size_t>(kBlock * channels));
    int64_t frames = 0;
    for (auto _ : state) {
        reader.setPosition(0);
        while (reader.readFrames(out.data(), 1, 0) == 0)
            std::this_thread::yield();
        std::this_thread::sleep_for(std::chrono::milliseconds(60));
        const auto start = std::chrono::steady_clock::now();
        for (int64_t i = 0; i < kBlocks; ++i)
            frames += reader.readFrames(out.data(), kBlock, 0);
        state.SetIterationTime(std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
    }
    countFrames(state, frames);
}
BENCHMARK(ringRead)
    ->Name("readFramesFromRing/channels")
    ->Arg(1)
    ->Arg(2)
    ->Arg(8)
    ->Arg(64)
    ->UseManualTime()
    ->Iterations(20);

// The same bytes between the same places with memcpy alone.
void ringMemcpy(benchmark::State& state)
{
    const auto channels = static_cast<size_t>(state.range(0));
    constexpr size_t kBlock = 256;
    constexpr size_t kRing = PrefetchRing::kFrames;
    std::vector<float> ring(kRing * channels, 0.5f);
    std::vector<float> out(kBlock * channels);
    int64_t frames = 0;
    for (auto _ : state) {
        const auto start = std::chrono::steady_clock::now();
        for (size_t i = 0; i < kRing; i += kBlock) {
            std::memcpy(out.data(), ring.data() + i * channels, out.size() * sizeof(float));
            benchmark::ClobberMemory();
        }
        state.SetIterationTime(std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
        frames += PrefetchRing::kFrames;
    }
    countFrames(state, frames);
}
BENCHMARK(ringMemcpy)
    ->Name("readFramesFromRing/memcpy/channels")
    ->Arg(1)
    ->Arg(2)
    ->Arg(8)
    ->Arg(64)
    ->UseManualTime()
    ->Iterations(20);

// From the request to the first new frame in the consumer's hands. The producer sleeps up to 5 ms when the ring is
// full, and as long again where the consumer notices the seek only after the producer has found no room.
void seekToFirstFrame(benchmark::State& state)
{
    const std::string& path = longFile();
    WavFileReader reader;
    reader.open(path);
    reader.startPrefetch(0);
    std::vector<float> out(256 * kChannels);
    int64_t target = 0;
    for (auto _ : state) {
        state.PauseTiming();
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        target = (target + 7'654'321) % kTenMinutes;
        state.ResumeTiming();
        reader.setPosition(target);
        while (reader.readFrames(out.data(), 256, 0) == 0)
            std::this_thread::sleep_for(std::chrono::microseconds(100));
    }
}
BENCHMARK(seekToFirstFrame)->Unit(benchmark::kMillisecond)->UseRealTime()->Iterations(100);

void openAndClose(benchmark::State& state)
{
    const std::string& path = longFile();
    WavFileReader reader;
    for (auto _ : state)
        benchmark::DoNotOptimize(reader.open(path));
}
BENCHMARK(openAndClose)->Name("open")->Unit(benchmark::kMicrosecond);

} // namespace

BENCHMARK_MAIN();
