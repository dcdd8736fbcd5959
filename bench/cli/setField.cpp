// One field set over many files by the command, against the writer alone on the same files. The limit is 1.3 times the
// writer without --verify. Warm cache; run with nothing else on the machine.

#include "cli/CommandLine.h"
#include "core/BwfMetadata.h"
#include "core/BwfMetadataWriter.h"
#include "tests/support/TempFolder.h"
#include "tests/support/WavBuilder.h"

#include <benchmark/benchmark.h>

#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

namespace {

constexpr int kFiles = 5000;
constexpr int kFolders = 20;
constexpr size_t kIxmlBytes = 5000;

std::string recording()
{
    BextFields bext;
    bext.description = "aSCENE=12\naTAKE=3\naTAPE=T1\naSPEED=25.000-ND\n";
    bext.timeReference = 48000;
    bext.codingHistory = "A=PCM,F=48000,W=24,M=stereo\r\n";
    return WavBuilder()
        .fmt(48000, 2, 24)
        .bext(bext)
        .ixmlPadded("<BWFXML><SCENE>12</SCENE><TAKE>3</TAKE><TAPE>T1</TAPE><CIRCLED>FALSE</CIRCLED>"
                    "<SPEED><TIMECODE_RATE>25/1</TIMECODE_RATE></SPEED></BWFXML>",
            kIxmlBytes, ' ')
        .dataFrames(8000)
        .bytes();
}

/// The files of a shoot, made once for all benchmarks.
const std::vector<std::string>& shoot()
{
    static const TempFolder folder;
    static const std::vector<std::string> paths = [] {
        std::vector<std::string> made;
        const std::string bytes = recording();
        for (int i = 0; i < kFiles; ++i) {
            const std::string day = "day" + std::to_string(i % kFolders);
            std::filesystem::create_directories(folder.path() / day);
            made.push_back(folder.file(day + "/take" + std::to_string(i) + ".wav"));
            writeBytes(made.back(), bytes);
        }
        return made;
    }();
    return paths;
}

/// Differs in each round, so that no round finds its own value in the files.
std::string nextScene()
{
    static char digit = '2';
    digit = digit == '9' ? '0' : static_cast<char>(digit + 1);
    return std::string("1") + digit;
}

void writerAlone(benchmark::State& state)
{
    shoot();
    for (auto _ : state) {
        BwfMetadata updated;
        updated.scene = nextScene();
        for (const std::string& path : shoot())
            benchmark::DoNotOptimize(BwfMetadataWriter::writeMetadata(path, updated));
    }
    state.SetItemsProcessed(state.iterations() * kFiles);
}

void set(benchmark::State& state, const std::vector<std::string>& more)
{
    shoot();
    for (auto _ : state) {
        std::vector<std::string> arguments{ "set", "--scene", nextScene() };
        arguments.insert(arguments.end(), more.begin(), more.end());
        arguments.insert(arguments.end(), shoot().begin(), shoot().end());
        std::istringstream in;
        std::ostringstream out;
        std::ostringstream err;
        Io io{ .in = in, .out = out, .err = err, .millis = [] { return 0; }, .interrupted = [] { return false; } };
        if (runCommandLine(arguments, io) != Exit::Ok)
            state.SkipWithError("not all was written");
    }
    state.SetItemsProcessed(state.iterations() * kFiles);
}

void setScene(benchmark::State& state)
{
    set(state, {});
}
void setSceneIntoPadding(benchmark::State& state)
{
    set(state, { "--use-padding" });
}
void setSceneAndKeepDate(benchmark::State& state)
{
    set(state, { "--keep-date" });
}
void setSceneAndVerify(benchmark::State& state)
{
    set(state, { "--verify" });
}

BENCHMARK(writerAlone)->Unit(benchmark::kMillisecond);
BENCHMARK(setScene)->Unit(benchmark::kMillisecond);
BENCHMARK(setSceneIntoPadding)->Unit(benchmark::kMillisecond);
BENCHMARK(setSceneAndKeepDate)->Unit(benchmark::kMillisecond);
BENCHMARK(setSceneAndVerify)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
