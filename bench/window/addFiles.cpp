// Adding many files to a window that is shown, against reading the same records alone.

#include "bench/window/BenchApplication.h"
#include "bench/window/ShootFolder.h"
#include "core/BwfMetadataReader.h"
#include "window/MetadataManagerWindow.h"

#include <vector>

namespace {

void readRecordsAlone(benchmark::State& state)
{
    const ShootFolder shoot(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        std::vector<BwfMetadata> records;
        for (const QString& path : shoot.paths())
            records.push_back(BwfMetadataReader::readMetadata(path.toStdString()));
        benchmark::DoNotOptimize(records.data());
    }
}

void addFiles(benchmark::State& state)
{
    const ShootFolder shoot(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        state.PauseTiming();
        auto window = std::make_unique<MetadataManagerWindow>();
        window->show();
        QCoreApplication::processEvents();
        state.ResumeTiming();

        window->addFiles(shoot.paths());
        QCoreApplication::processEvents();

        state.PauseTiming();
        window.reset();
        state.ResumeTiming();
    }
}

BENCHMARK(readRecordsAlone)->Arg(5000)->Arg(20000)->Unit(benchmark::kMillisecond);
BENCHMARK(addFiles)->Arg(5000)->Arg(20000)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char** argv)
{
    return runWidgetBenchmarks(argc, argv);
}
