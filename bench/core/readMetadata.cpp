// Reading the metadata of a shoot: thousands of files in a warm cache, and a long RF64 file of digital silence.
// Each run has its baseline beside it; only the ratios count.

#include "core/BwfMetadataReader.h"

#include "tests/support/PlainReader.h"
#include "tests/support/TempFolder.h"
#include "tests/support/WavBuilder.h"

#include <benchmark/benchmark.h>

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <functional>
#include <memory>

namespace {

constexpr size_t kFolders = 20;
constexpr size_t kSmallIxml = 5 * 1024;
constexpr size_t kLargeIxml = 100 * 1024;
// What stands in front of the audio besides the iXML, rounded up.
constexpr size_t kOtherBytes = 11 * 1024;

std::string element(const std::string& tag, const std::string& value)
{
    return "<" + tag + ">" + value + "</" + tag + ">\n";
}

std::string ixmlText(size_t take, size_t channels)
{
    std::string tracks = element("TRACK_COUNT", std::to_string(channels));
    for (size_t i = 1; i <= channels; ++i)
        tracks += element("TRACK",
            element("CHANNEL_INDEX", std::to_string(i)) + element("INTERLEAVE_INDEX", std::to_string(i))
                + element("NAME", "Lav " + std::to_string(i)) + element("FUNCTION", ""));
    const std::string speed = element("NOTE", "") + element("MASTER_SPEED", "24000/1001")
        + element("TIMECODE_RATE", "24000/1001") + element("TIMECODE_FLAG", "NDF")
        + element("FILE_SAMPLE_RATE", "48000") + element("AUDIO_BIT_DEPTH", "24")
        + element("TIMESTAMP_SAMPLES_SINCE_MIDNIGHT_HI", "0")
        + element("TIMESTAMP_SAMPLES_SINCE_MIDNIGHT_LO", "2190940753") + element("TIMESTAMP_SAMPLE_RATE", "48000");
    const std::string history
        = element("ORIGINAL_FILENAME", "A.WAV") + element("PARENT_FILENAME", "") + element("PARENT_UID", "");
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
        + element("BWFXML",
            element("IXML_VERSION", "1.5") + element("PROJECT", "Film") + element("NOTE", "good one")
                + element("CIRCLED", "FALSE") + element("TAPE", "18Y12M31") + element("SCENE", "A101")
                + element("TAKE", std::to_string(take)) + element("UBITS", "$12311801") + element("SPEED", speed)
                + element("HISTORY", history) + element("TRACK_LIST", tracks));
}

/// Files of one kind in twenty folders; read once, so that they are in the cache.
class Shoot {
public:
    Shoot(size_t files, size_t ixmlBytes)
    {
        for (size_t i = 0; i < files; ++i) {
            const std::string folderName = "day" + std::to_string(i % kFolders);
            std::filesystem::create_directories(folder.file(folderName));
            const uint16_t channels = i % 2 ? 8 : 2;
            BextFields fields;
            fields.description = "sSPEED=023.976-ND\r\nsTAKE=1\r\nsSCENE=A101\r\n";
            fields.originator = "Recorder";
            fields.originationDate = "2024-05-06";
            fields.originationTime = "12:34:56";
            fields.timeReference = 2190940753;
            fields.codingHistory = "A=PCM,F=48000,W=24,M=stereo,R=48000,T=2 Ch\r\n";
            paths.push_back(folder.file(folderName + "/A101_" + std::to_string(i) + ".WAV"));
            WavBuilder()
                .bext(fields)
                .ixmlPadded(ixmlText(i, channels), ixmlBytes, ' ')
                .fmt(48000, channels, 24)
                .data(std::string(48000, '\x11'))
                .write(paths.back());
        }
    }

    std::vector<std::string> paths;

private:
    TempFolder folder;
};

Shoot& shoot(size_t ixmlBytes)
{
    static const auto small = std::make_unique<Shoot>(5000, kSmallIxml);
    static const auto large = std::make_unique<Shoot>(1000, kLargeIxml);
    return ixmlBytes == kSmallIxml ? *small : *large;
}

// The least that can be done: open, read what stands in front of the audio at once, go through its tags, close.
size_t minimalRead(const std::string& path, std::vector<char>& buffer)
{
    const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    const ssize_t got = pread(file, buffer.data(), buffer.size(), 0);
    close(file);
    const std::string_view text(buffer.data(), static_cast<size_t>(std::max<ssize_t>(got, 0)));
    size_t tags = 0;
    for (size_t at = text.find('<'); at != std::string_view::npos; at = text.find('<', at + 1))
        ++tags;
    return tags;
}

void minimalReader(benchmark::State& state)
{
    const auto ixmlBytes = static_cast<size_t>(state.range(0));
    std::vector<char> buffer(ixmlBytes + kOtherBytes);
    const Shoot& files = shoot(ixmlBytes);
    for (auto _ : state) {
        for (const std::string& path : files.paths)
            benchmark::DoNotOptimize(minimalRead(path, buffer));
    }
    state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(files.paths.size()));
}

void readAll(benchmark::State& state, const std::function<BwfMetadata(const std::string&)>& read)
{
    const Shoot& files = shoot(static_cast<size_t>(state.range(0)));
    for (auto _ : state) {
        for (const std::string& path : files.paths)
            benchmark::DoNotOptimize(read(path));
    }
    state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(files.paths.size()));
}

void plainReader(benchmark::State& state)
{
    readAll(state, PlainReader::readMetadata);
}
void readMetadata(benchmark::State& state)
{
    readAll(state, BwfMetadataReader::readMetadata);
}

BENCHMARK(minimalReader)->Arg(kSmallIxml)->Arg(kLargeIxml)->Unit(benchmark::kMillisecond);
BENCHMARK(readMetadata)->Arg(kSmallIxml)->Arg(kLargeIxml)->Unit(benchmark::kMillisecond);
BENCHMARK(plainReader)->Arg(kSmallIxml)->Arg(kLargeIxml)->Unit(benchmark::kMillisecond);

/// An RF64 file of 4 GiB: format, then silence behind a placeholder size, without `bext` and `iXML`.
const std::string& silence()
{
    static TempFolder folder;
    static const std::string path = [] {
        const std::string made = folder.file("silence.wav");
        WavBuilder::rf64()
            .ds64(uint64_t{ 4 } << 30)
            .fmt(48000, 2, 24)
            .data("")
            .claimSize("data", 0xFFFFFFFFu)
            .write(made);
        std::filesystem::resize_file(made, uint64_t{ 4 } << 30);
        return made;
    }();
    return path;
}

void sequentialRead(benchmark::State& state)
{
    std::vector<char> buffer(256 * 1024);
    for (auto _ : state) {
        const int file = open(silence().c_str(), O_RDONLY | O_CLOEXEC);
        while (read(file, buffer.data(), buffer.size()) > 0)
            benchmark::DoNotOptimize(buffer.front());
        close(file);
    }
}

void readMetadataOfSilence(benchmark::State& state)
{
    for (auto _ : state)
        benchmark::DoNotOptimize(BwfMetadataReader::readMetadata(silence()));
}

BENCHMARK(sequentialRead)->Unit(benchmark::kMillisecond);
BENCHMARK(readMetadataOfSilence)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
