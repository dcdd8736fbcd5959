// Filling the panes for a selection of 5,000 rows, against asking the table for the selected items once.

#include "bench/window/BenchApplication.h"
#include "bench/window/ShootFolder.h"
#include "window/MetadataManagerWindow.h"

#include <QTableWidget>

namespace {

constexpr int kRows = 5000;

void askForSelectedItems(benchmark::State& state)
{
    const ShootFolder shoot(kRows);
    MetadataManagerWindow window;
    window.addFiles(shoot.paths());
    auto* table = window.findChild<QTableWidget*>("fileTable");
    table->selectAll();
    for (auto _ : state)
        benchmark::DoNotOptimize(table->selectedItems());
}

void fillPanes(benchmark::State& state)
{
    const ShootFolder shoot(kRows);
    MetadataManagerWindow window;
    window.addFiles(shoot.paths());
    window.findChild<QTableWidget*>("fileTable")->selectAll();
    for (auto _ : state)
        window.updateMetadataDisplay();
}

void selectAllRows(benchmark::State& state)
{
    const ShootFolder shoot(kRows);
    MetadataManagerWindow window;
    window.addFiles(shoot.paths());
    auto* table = window.findChild<QTableWidget*>("fileTable");
    for (auto _ : state) {
        table->selectAll();
        state.PauseTiming();
        table->clearSelection();
        state.ResumeTiming();
    }
}

BENCHMARK(askForSelectedItems)->Unit(benchmark::kMillisecond);
BENCHMARK(fillPanes)->Unit(benchmark::kMillisecond);
BENCHMARK(selectAllRows)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char** argv)
{
    return runWidgetBenchmarks(argc, argv);
}
