// One field saved over many files, against the least that any patcher must do; and edits of a large iXML chunk, whose
// time per byte must not grow with its size. Warm cache; run with nothing else on the machine.

#include "core/BwfMetadata.h"
#include "core/BwfMetadataReader.h"
#include "core/BwfMetadataWriter.h"
#include "tests/support/TempFolder.h"
#include "tests/support/WavBuilder.h"

#include <benchmark/benchmark.h>

#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <string>
#include <unistd.h>
#include <vector>

namespace {

constexpr int kFiles = 5000;
constexpr int kFolders = 20;
constexpr size_t kIxmlBytes = 5000;

WavBuilder recording()
{
    BextFields bext;
    bext.description = "aSCENE=12\naTAKE=3\naTAPE=T1\naSPEED=25.000-ND\n";
    bext.timeReference = 48000;
    bext.codingHistory = "A=PCM,F=48000,W=24,M=stereo\r\n";
    WavBuilder builder;
    builder.fmt(48000, 2, 24)
        .bext(bext)
        .ixmlPadded("<BWFXML><SCENE>12</SCENE><TAKE>3</TAKE><TAPE>T1</TAPE><CIRCLED>FALSE</CIRCLED>"
                    "<SPEED><TIMECODE_RATE>25/1</TIMECODE_RATE></SPEED></BWFXML>",
            kIxmlBytes, '\0')
        .dataFrames(8000);
    return builder;
}

/// The files of a shoot, made once for all benchmarks.
const std::vector<std::string>& shoot()
{
    static const TempFolder folder;
    static const std::vector<std::string> paths = [] {
        std::vector<std::string> made;
        const std::string bytes = recording().bytes();
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

/// Open, read the head, two writes, close.
void patchLeast(
    const std::string& path, const std::string& description, const std::string& ixml, size_t bextAt, size_t ixmlAt)
{
    static char head[16384];
    const int file = open(path.c_str(), O_RDWR | O_CLOEXEC);
    benchmark::DoNotOptimize(pread(file, head, sizeof head, 0));
    benchmark::DoNotOptimize(pwrite(file, description.data(), description.size(), static_cast<off_t>(bextAt)));
    benchmark::DoNotOptimize(pwrite(file, ixml.data(), ixml.size(), static_cast<off_t>(ixmlAt)));
    close(file);
}

void leastPatcher(benchmark::State& state)
{
    const WavBuilder builder = recording();
    const std::string description(256, 'd');
    const std::string ixml = builder.bytes().substr(builder.payloadOffset("iXML"), kIxmlBytes);
    shoot();
    for (auto _ : state) {
        for (const std::string& path : shoot())
            patchLeast(path, description, ixml, builder.payloadOffset("bext"), builder.payloadOffset("iXML"));
    }
    for (const std::string& path : shoot())
        builder.write(path);
    state.SetItemsProcessed(state.iterations() * kFiles);
}

/// Saves a scene of the same length that differs in each round.
void saveShoot(benchmark::State& state, bool readBack)
{
    shoot();
    static char digit = '2'; // Goes on from one run to the next, so that no round finds its own value in the file.
    for (auto _ : state) {
        digit = digit == '9' ? '0' : static_cast<char>(digit + 1);
        BwfMetadata updated;
        updated.scene = std::string("1") + digit;
        for (const std::string& path : shoot()) {
            benchmark::DoNotOptimize(BwfMetadataWriter::writeMetadata(path, updated));
            if (readBack)
                benchmark::DoNotOptimize(BwfMetadataReader::readMetadata(path));
        }
    }
    state.SetItemsProcessed(state.iterations() * kFiles);
}

void saveOneField(benchmark::State& state)
{
    saveShoot(state, false);
}
void saveOneFieldAndReadBack(benchmark::State& state)
{
    saveShoot(state, true);
}

/// An iXML text of about `bytes` bytes with as many tracks as go in, and the record that renames every one of them.
struct LargeIxml {
    explicit LargeIxml(size_t bytes)
    {
        text = "<BWFXML><NOTE>old</NOTE><TRACK_LIST>";
        for (int i = 1; text.size() < bytes; ++i) {
            text += "<TRACK><CHANNEL_INDEX>" + std::to_string(i) + "</CHANNEL_INDEX><NAME>name</NAME></TRACK>\n";
            renamed.tracks.push_back({ i, "n" + std::to_string(i % 10), "" });
        }
        text += "</TRACK_LIST></BWFXML>";
    }

    std::string text;
    BwfMetadata renamed;
};

void editLargeIxml(benchmark::State& state, bool tracks)
{
    const TempFolder folder;
    const std::string path = folder.file("large.wav");
    const LargeIxml large(static_cast<size_t>(state.range(0)) << 10);
    WavBuilder builder;
    builder.fmt(48000, 1, 24).ixml(large.text).dataFrames(10);
    builder.write(path);
    BwfMetadata updated = tracks ? large.renamed : BwfMetadata();
    updated.note = "new";
    for (auto _ : state) {
        std::fstream stream(path, std::ios::in | std::ios::out | std::ios::binary);
        benchmark::DoNotOptimize(
            BwfMetadataWriter::updateIxmlFields(stream, static_cast<uint32_t>(builder.payloadOffset("iXML")),
                static_cast<uint32_t>(large.text.size()), BwfMetadata(), updated));
    }
    state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(large.text.size()));
}

void editNoteOfLargeIxml(benchmark::State& state)
{
    editLargeIxml(state, false);
}
void renameAllTracksOfLargeIxml(benchmark::State& state)
{
    editLargeIxml(state, true);
}

BENCHMARK(leastPatcher)->Unit(benchmark::kMillisecond);
BENCHMARK(saveOneField)->Unit(benchmark::kMillisecond);
BENCHMARK(saveOneFieldAndReadBack)->Unit(benchmark::kMillisecond);
BENCHMARK(editNoteOfLargeIxml)->Arg(256)->Arg(1024)->Arg(4096)->Unit(benchmark::kMillisecond);
BENCHMARK(renameAllTracksOfLargeIxml)->Arg(256)->Arg(1024)->Arg(4096)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
