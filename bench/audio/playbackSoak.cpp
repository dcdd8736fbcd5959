// bench_playbackSoak [MINUTES]: plays 64 channels at 48 kHz in real time through the driven output and compares what
// came out with an offline mix of the same file, sample by sample. The device is a thread under SCHED_FIFO, if the
// system lets it. Exit status 0 if every frame was equal and in order, whatever the underruns.

#include "audio/PlayerState.h"
#include "audio/TagwellAudioPlayer.h"
#include "tests/support/DrivenOutput.h"
#include "tests/support/TempFolder.h"
#include "tests/support/WavBuilder.h"

#include <pthread.h>
#include <sched.h>

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <fstream>
#include <thread>
#include <vector>

namespace {

constexpr uint32_t kRate = 48000;
constexpr uint16_t kTracks = 64;
constexpr uint32_t kPeriod = 512; // Frames of one device call, 10.7 ms.
constexpr int64_t kNanoseconds = 1'000'000'000;

// 16-bit noise that no track or frame repeats soon.
void writeNoiseFile(const std::string& path, size_t frames)
{
    const auto dataBytes = static_cast<uint32_t>(frames * kTracks * 2);
    const std::string head = WavBuilder().fmt(kRate, kTracks, 16).data("").claimSize("data", dataBytes).bytes();
    std::ofstream out(path, std::ios::binary);
    out << head;
    std::vector<int16_t> block(size_t{ kRate } * kTracks);
    uint32_t seed = 1;
    for (size_t done = 0; done < frames; done += kRate) {
        for (int16_t& sample : block) {
            seed = seed * 1664525U + 1013904223U;
            sample = static_cast<int16_t>(static_cast<int32_t>(seed >> 18) - 8192);
        }
        const size_t count = std::min<size_t>(kRate, frames - done);
        out.write(reinterpret_cast<const char*>(block.data()), static_cast<std::streamsize>(count * kTracks * 2));
    }
}

struct Device {
    std::atomic<bool> ending{ false };
    bool realTime = false;
    size_t calls = 0;
    size_t underruns = 0; // Calls that got fewer frames than they wanted, between the first frame and the last.
    size_t openUnderrun = 0; // Of these, the ones at the end, where the file has run out.
    std::vector<float> heard; // Left side of what was taken.

    void run(const PlayerState& state);
    void take(const float* left, uint32_t taken);
};

void Device::take(const float* left, uint32_t taken)
{
    heard.insert(heard.end(), left, left + taken);
    if (taken == kPeriod) {
        openUnderrun = 0;
    } else if (!heard.empty()) {
        ++underruns;
        ++openUnderrun;
    }
    ++calls;
}

void Device::run(const PlayerState& state)
{
    sched_param parameters{};
    parameters.sched_priority = 50;
    realTime = pthread_setschedparam(pthread_self(), SCHED_FIFO, &parameters) == 0;
    std::vector<float> left(kPeriod);
    std::vector<float> right(kPeriod);
    timespec next{};
    clock_gettime(CLOCK_MONOTONIC, &next);
    while (!ending) {
        const uint32_t before = state.stereoRing.taken();
        DrivenOutput::pull(left.data(), right.data(), kPeriod);
        take(left.data(), state.stereoRing.taken() - before);
        const int64_t due = next.tv_nsec + kNanoseconds * kPeriod / kRate;
        next.tv_sec += due / kNanoseconds;
        next.tv_nsec = due % kNanoseconds;
        clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &next, nullptr);
    }
}

size_t differences(const std::string& path, const std::vector<float>& heard, size_t frames)
{
    constexpr int32_t kBlock = 1000; // Another one than the player's.
    WavFileReader reader;
    if (!reader.open(path))
        return frames;
    const PlaybackMixer mixer(kTracks);
    std::vector<float> input(size_t{ kBlock } * kTracks);
    std::vector<float> stereo(size_t{ kBlock } * 2);
    size_t position = 0;
    size_t different = heard.size() > frames ? heard.size() - frames : 0;
    while (const int32_t got = reader.readFramesSync(input.data(), kBlock, kTracks)) {
        mixer.mixToStereo(input.data(), got, stereo.data(), nullptr);
        for (int32_t i = 0; i < got; ++i, ++position) {
            if (position >= heard.size() || heard[position] != stereo[2 * static_cast<size_t>(i)])
                ++different;
        }
    }
    return different + (frames - position);
}

} // namespace

int main(int argc, char** argv)
{
    const double minutes = argc > 1 ? std::atof(argv[1]) : 1.0;
    const auto frames = static_cast<size_t>(std::clamp(minutes, 0.01, 11.0) * 60.0 * kRate);
    const TempFolder folder;
    const std::string path = folder.file("soak.wav");
    writeNoiseFile(path, frames);

    DrivenOutput::reset();
    TagwellAudioPlayer player;
    if (!player.open(path))
        return EXIT_FAILURE;
    Device device;
    device.heard.reserve(frames + kPeriod);
    const auto* state = static_cast<const PlayerState*>(DrivenOutput::renderContext());
    if (!player.play())
        return EXIT_FAILURE;
    std::thread thread([&] { device.run(*state); });
    while (!player.isFinished())
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
    device.ending = true;
    thread.join();
    player.close();

    const size_t different = differences(path, device.heard, frames);
    // The calls at the very end find the file exhausted, which is no underrun.
    const size_t underruns = device.underruns - device.openUnderrun;
    std::printf("%.2f minutes, %u channels, %u Hz, SCHED_FIFO %s\n", minutes, unsigned{ kTracks }, kRate,
        device.realTime ? "granted" : "refused");
    std::printf("%zu calls of %u frames, %zu underruns\n", device.calls, kPeriod, underruns);
    std::printf("%zu of %zu frames heard, %zu differ from the offline mix\n", device.heard.size(), frames, different);
    return different == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}
