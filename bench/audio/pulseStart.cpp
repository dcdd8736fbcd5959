// Opening and starting on a real sound server without hardware.

#include "audio/TagwellAudioPlayer.h"
#include "tests/support/PulseServer.h"
#include "tests/support/WavBuilder.h"

#include <benchmark/benchmark.h>

#include <thread>

namespace {

struct Sound {
    Sound() { server.useInThisProcess(); }
    PulseServer server{ 48000 };
    TempFolder folder;
    std::string path = folder.file("one.wav");
};

Sound& sound()
{
    static Sound theOne;
    WavBuilder().fmt(48000, 2, 24).dataFrames(48000).write(theOne.path);
    return theOne;
}

void openOnServer(benchmark::State& state)
{
    const std::string path = sound().path;
    for (auto _ : state) {
        TagwellAudioPlayer player;
        if (!player.open(path))
            state.SkipWithError("can't open");
        state.PauseTiming();
        player.close();
        state.ResumeTiming();
    }
}

void playUntilFirstFrameIsTaken(benchmark::State& state)
{
    const std::string path = sound().path;
    TagwellAudioPlayer player;
    if (!player.open(path))
        state.SkipWithError("can't open");
    for (auto _ : state) {
        if (!player.play())
            state.SkipWithError("can't play");
        while (player.positionSeconds() <= 0.0)
            std::this_thread::sleep_for(std::chrono::microseconds(200));
        state.PauseTiming();
        player.stop();
        std::this_thread::sleep_for(std::chrono::milliseconds(60));
        state.ResumeTiming();
    }
}

BENCHMARK(openOnServer)->UseRealTime()->Unit(benchmark::kMillisecond)->Iterations(30);
BENCHMARK(playUntilFirstFrameIsTaken)->UseRealTime()->Unit(benchmark::kMillisecond)->Iterations(20);

} // namespace

BENCHMARK_MAIN();
