// Adding many files to a window that is shown, against reading the same records alone.

#include "bench/window/BenchApplication.h"
#include "bench/window/ShootFolder.h"
#include "core/BwfMetadataReader.h"
#include "window/MetadataManagerWindow.h"

#include <QTableWidget>

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

void removeEverySecondRow(benchmark::State& state)
{
    const ShootFolder shoot(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        state.PauseTiming();
        auto window = std::make_unique<MetadataManagerWindow>();
        window->show();
        window->addFiles(shoot.paths());
        auto* table = window->findChild<QTableWidget*>("fileTable");
        QItemSelection rows;
        for (int row = 0; row < table->rowCount(); row += 2)
            rows.append(QItemSelectionRange(table->model()->index(row, 0), table->model()->index(row, 13)));
        table->selectionModel()->select(rows, QItemSelectionModel::Select);
        state.ResumeTiming();

        QMetaObject::invokeMethod(window.get(), "onRemoveFile");
        QCoreApplication::processEvents();

        state.PauseTiming();
        window.reset();
        state.ResumeTiming();
    }
}

void removeHalfInOneRun(benchmark::State& state)
{
    const ShootFolder shoot(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        state.PauseTiming();
        auto window = std::make_unique<MetadataManagerWindow>();
        window->show();
        window->addFiles(shoot.paths());
        auto* table = window->findChild<QTableWidget*>("fileTable");
        const int half = table->rowCount() / 2;
        table->selectionModel()->select(
            QItemSelection(table->model()->index(0, 0), table->model()->index(half - 1, 13)),
            QItemSelectionModel::Select);
        state.ResumeTiming();

        QMetaObject::invokeMethod(window.get(), "onRemoveFile");
        QCoreApplication::processEvents();

        state.PauseTiming();
        window.reset();
        state.ResumeTiming();
    }
}

BENCHMARK(readRecordsAlone)->Arg(5000)->Arg(20000)->Unit(benchmark::kMillisecond);
BENCHMARK(addFiles)->Arg(5000)->Arg(20000)->Unit(benchmark::kMillisecond);
BENCHMARK(removeHalfInOneRun)->Arg(2500)->Arg(10000)->Unit(benchmark::kMillisecond);
BENCHMARK(removeEverySecondRow)->Arg(2500)->Arg(10000)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char** argv)
{
    return runWidgetBenchmarks(argc, argv);
}
