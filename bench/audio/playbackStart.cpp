// What a user waits for: opening, the first sound after play, the first new frame after a seek. 64 tracks, over an
// output that pulls without a pause, so that the device adds nothing.

#include "audio/TagwellAudioPlayer.h"
#include "tests/support/DrivenOutput.h"
#include "tests/support/TempFolder.h"
#include "tests/support/WavBuilder.h"

#include <benchmark/benchmark.h>

#include <thread>

namespace {

constexpr uint32_t kPull = 64; // Frames.

class StartBench : public benchmark::Fixture {
public:
    void SetUp(benchmark::State&) override
    {
        DrivenOutput::reset();
        if (readBytes(path()).empty())
            WavBuilder().fmt(48000, 64, 24).dataFrames(200000).write(path());
    }

    void waitForSound() const
    {
        while (DrivenOutput::pullStereo(kPull) == silence)
            std::this_thread::yield();
    }

    std::string path() const { return folder().file("wide.wav"); }

    static const TempFolder& folder()
    {
        static const TempFolder theOne;
        return theOne;
    }

    std::vector<float> silence = std::vector<float>(size_t{ kPull } * 2);
};

BENCHMARK_DEFINE_F(StartBench, open)(benchmark::State& state)
{
    for (auto _ : state) {
        TagwellAudioPlayer player;
        if (!player.open(path()))
            state.SkipWithError("can't open");
        state.PauseTiming();
        player.close();
        state.ResumeTiming();
    }
}

BENCHMARK_DEFINE_F(StartBench, playUntilFirstSound)(benchmark::State& state)
{
    TagwellAudioPlayer player;
    if (!player.open(path()))
        state.SkipWithError("can't open");
    for (auto _ : state) {
        if (!player.play())
            state.SkipWithError("can't play");
        waitForSound();
        state.PauseTiming();
        player.stop();
        // The ring is filled again behind the stop, as it is after opening.
        std::this_thread::sleep_for(std::chrono::milliseconds(60));
        state.ResumeTiming();
    }
}

BENCHMARK_DEFINE_F(StartBench, seekUntilFirstNewFrame)(benchmark::State& state)
{
    TagwellAudioPlayer player;
    if (!player.open(path()) || !player.play())
        state.SkipWithError("can't play");
    waitForSound();
    double target = 0.5;
    for (auto _ : state) {
        player.seekSeconds(target);
        waitForSound();
        state.PauseTiming();
        target = target > 2.0 ? 0.5 : target + 0.1;
        std::this_thread::sleep_for(std::chrono::milliseconds(60));
        state.ResumeTiming();
    }
}

BENCHMARK_DEFINE_F(StartBench, seekCall)(benchmark::State& state)
{
    TagwellAudioPlayer player;
    if (!player.open(path()))
        state.SkipWithError("can't open");
    for (auto _ : state)
        player.seekSeconds(1.0);
}

BENCHMARK_REGISTER_F(StartBench, open)->UseRealTime()->Unit(benchmark::kMillisecond);
BENCHMARK_REGISTER_F(StartBench, playUntilFirstSound)->UseRealTime()->Unit(benchmark::kMillisecond)->Iterations(30);
BENCHMARK_REGISTER_F(StartBench, seekUntilFirstNewFrame)->UseRealTime()->Unit(benchmark::kMillisecond)->Iterations(30);
BENCHMARK_REGISTER_F(StartBench, seekCall)->UseRealTime();

} // namespace

BENCHMARK_MAIN();
