// Dumping a card against reading the same records alone. Only the ratio counts; it shall stay below 2.

#include "bench/cli/CardFolder.h"
#include "core/BwfMetadataReader.h"

#include <benchmark/benchmark.h>

namespace {

void readRecordsAlone(benchmark::State& state)
{
    const CardFolder card(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        for (const std::string& path : card.paths)
            benchmark::DoNotOptimize(BwfMetadataReader::readMetadata(path));
    }
}

void dump(benchmark::State& state, const std::vector<std::string>& options)
{
    const CardFolder card(static_cast<int>(state.range(0)));
    std::vector<std::string> arguments = { "dump", card.path() };
    arguments.insert(arguments.end(), options.begin(), options.end());
    for (auto _ : state) {
        if (bytesPrintedBy(arguments) == 0)
            state.SkipWithError("the run failed");
    }
}

void dumpCsv(benchmark::State& state)
{
    dump(state, { "--csv" });
}
void dumpJson(benchmark::State& state)
{
    dump(state, { "--json" });
}

BENCHMARK(readRecordsAlone)->Arg(5000)->Unit(benchmark::kMillisecond);
BENCHMARK(dumpCsv)->Arg(5000)->Unit(benchmark::kMillisecond);
BENCHMARK(dumpJson)->Arg(5000)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
