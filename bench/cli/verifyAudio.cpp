// Summing up 4 GiB of audio in a sparse file against the hash alone over the same number of bytes in memory. Only the
// ratio counts; it shall stay below 1.1.

#include "bench/cli/CardFolder.h"

#include <QCryptographicHash>

#include <benchmark/benchmark.h>

#include <filesystem>

namespace {

constexpr uint64_t kAudioBytes = uint64_t{ 4 } << 30;
constexpr std::size_t kPieceBytes = 256 * 1024;

const std::string& longFile()
{
    static TempFolder folder;
    static const std::string path = [] {
        const std::string made = folder.file("long.wav");
        WavBuilder::rf64().ds64(kAudioBytes).fmt(48000, 2, 24).data("").claimSize("data", 0xFFFFFFFFu).write(made);
        std::filesystem::resize_file(made, std::filesystem::file_size(made) + kAudioBytes);
        (void)bytesPrintedBy({ "verify", made }); // From here on it is in the cache.
        return made;
    }();
    return path;
}

void hashAlone(benchmark::State& state)
{
    const std::string piece(kPieceBytes, '\0');
    for (auto _ : state) {
        QCryptographicHash hash(QCryptographicHash::Md5);
        for (uint64_t done = 0; done < kAudioBytes; done += kPieceBytes)
            hash.addData(QByteArrayView(piece.data(), static_cast<qsizetype>(piece.size())));
        benchmark::DoNotOptimize(hash.result());
    }
    state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(kAudioBytes));
}

void verify(benchmark::State& state)
{
    const std::string& path = longFile();
    for (auto _ : state) {
        if (bytesPrintedBy({ "verify", path }) == 0)
            state.SkipWithError("the run failed");
    }
    state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(kAudioBytes));
}

BENCHMARK(hashAlone)->Unit(benchmark::kMillisecond);
BENCHMARK(verify)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
