// Rows with play buttons: adding them to a shown window, and removing them. Each size should cost in proportion.
// Run with QT_QPA_PLATFORM=offscreen.

#include "tests/support/TempFolder.h"
#include "tests/support/WavBuilder.h"
#include "window/MetadataManagerWindow.h"

#include <QApplication>
#include <QPushButton>
#include <QTableWidget>
#include <QToolButton>

#include <benchmark/benchmark.h>

#include <memory>

namespace {

/// One small file under many names.
class Shoot {
public:
    explicit Shoot(int64_t count)
    {
        WavBuilder().fmt(48000, 2, 16).dataFrames(10).write(folder.file("take.wav"));
        for (int64_t i = 0; i < count; ++i) {
            const std::string name = folder.file("take" + std::to_string(i) + ".wav");
            std::filesystem::create_hard_link(folder.file("take.wav"), name);
            paths.append(QString::fromStdString(name));
        }
    }

    QList<QString> paths;

private:
    TempFolder folder;
};

std::unique_ptr<MetadataManagerWindow> shownWindow()
{
    auto window = std::make_unique<MetadataManagerWindow>();
    window->show();
    QCoreApplication::processEvents();
    return window;
}

/// Runs the event loop until each row has its button; they come from the top down, most of them while it is idle.
void waitForButtons(const MetadataManagerWindow& window)
{
    const auto* table = window.findChild<QTableWidget*>("fileTable");
    while (table->cellWidget(table->rowCount() - 1, 0) == nullptr)
        QCoreApplication::processEvents();
    QCoreApplication::processEvents();
}

/// Adds the files to a shown window; `whenAdded` runs the event loop for as long as is to be measured.
template <typename WhenAdded> void addToShownWindow(benchmark::State& state, WhenAdded whenAdded)
{
    const Shoot shoot(state.range(0));
    for (auto _ : state) {
        state.PauseTiming();
        auto window = shownWindow();
        state.ResumeTiming();
        window->addFiles(shoot.paths);
        whenAdded(*window);
        state.PauseTiming();
        window.reset();
        state.ResumeTiming();
    }
}

/// Files read, rows filled and shown: the window can be worked with. Most buttons are still to come.
void showRows(benchmark::State& state)
{
    addToShownWindow(state, [](const MetadataManagerWindow&) { QCoreApplication::processEvents(); });
}

/// Files read, rows filled, all buttons on, all laid out.
void addRows(benchmark::State& state)
{
    addToShownWindow(state, waitForButtons);
}

/// Removes what `select` selects, all of which has its buttons.
template <typename Select> void removeFromShownWindow(benchmark::State& state, Select select)
{
    const Shoot shoot(state.range(0));
    for (auto _ : state) {
        state.PauseTiming();
        auto window = shownWindow();
        window->addFiles(shoot.paths);
        waitForButtons(*window);
        select(window->findChild<QTableWidget*>("fileTable"));
        QCoreApplication::processEvents();
        state.ResumeTiming();
        window->findChild<QPushButton*>("removeFileButton")->click();
        QCoreApplication::processEvents();
        state.PauseTiming();
        window.reset();
        state.ResumeTiming();
    }
}

void removeRows(benchmark::State& state)
{
    removeFromShownWindow(state, [](QTableWidget* table) { table->selectAll(); });
}

/// Every other row, so that no two go together.
void removeScatteredRows(benchmark::State& state)
{
    removeFromShownWindow(state, [](QTableWidget* table) {
        QItemSelection selection;
        for (int row = 0; row < table->rowCount(); row += 2)
            selection.append(QItemSelectionRange(
                table->model()->index(row, 0), table->model()->index(row, table->columnCount() - 1)));
        table->selectionModel()->select(selection, QItemSelectionModel::ClearAndSelect);
    });
}

/// What the same rows cost where each insertion lays out the buttons above it again.
void insertRowByRow(benchmark::State& state)
{
    for (auto _ : state) {
        QTableWidget table(0, 14);
        table.show();
        QCoreApplication::processEvents();
        for (int row = 0; row < state.range(0); ++row) {
            table.insertRow(row);
            table.setCellWidget(row, 0, new QToolButton(&table));
        }
        QCoreApplication::processEvents();
    }
}

BENCHMARK(showRows)->Arg(5000)->Arg(20000)->Unit(benchmark::kMillisecond);
BENCHMARK(addRows)->Arg(1000)->Arg(5000)->Arg(20000)->Unit(benchmark::kMillisecond);
BENCHMARK(removeRows)->Arg(5000)->Arg(20000)->Unit(benchmark::kMillisecond);
BENCHMARK(removeScatteredRows)->Arg(5000)->Arg(20000)->Unit(benchmark::kMillisecond);
BENCHMARK(insertRowByRow)->Arg(1000)->Arg(2000)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char** argv)
{
    const TempFolder home;
    qputenv("HOME", QByteArray::fromStdString(home.path().string()));
    const QApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
