#include "window/RowRemoval.h"

#include "window/FileTableColumns.h"
#include "window/PlayColumnItem.h"

#include <QTableWidget>

#include <algorithm>

namespace {

/// Rows that follow one another.
struct RowRun {
    int first;
    int count;
};

/// Removal in few steps is cheap; each step costs time by the number of rows, as every play button is renumbered.
constexpr qsizetype kFewRuns = 16;

QList<RowRun> runsOf(const QList<int>& rows)
{
    QList<RowRun> runs;
    for (const int row : rows) {
        if (!runs.isEmpty() && runs.last().first + runs.last().count == row)
            ++runs.last().count;
        else
            runs.append({ row, 1 });
    }
    return runs;
}

void removeRuns(QTableWidget* table, const QList<RowRun>& runs)
{
    // From the bottom up, so that no removal moves the rows still to come.
    for (auto run = runs.crbegin(); run != runs.crend(); ++run)
        table->model()->removeRows(run->first, run->count);
}

/// Where the current row goes. -1 if none stays or none is current.
int currentRowWithout(const QTableWidget* table, const QList<int>& rows)
{
    const auto stays = [&](int row) { return !std::binary_search(rows.begin(), rows.end(), row); };
    for (int row = table->currentRow(); row >= 0; --row) {
        if (stays(row))
            return row;
    }
    for (int row = 0; table->currentRow() >= 0 && row < table->rowCount(); ++row) {
        if (stays(row))
            return row;
    }
    return -1;
}

/// Brings `rows` together at the top in one step, which takes the play buttons along, and removes them in another.
void removeScattered(QTableWidget* table, const QList<int>& rows)
{
    const int current = currentRowWithout(table, rows);
    const int column = std::max(table->currentColumn(), 0);
    table->setCurrentCell(current, column, QItemSelectionModel::Clear);

    const int playColumn = indexOf(FileColumn::Play);
    for (const int row : rows) {
        if (QTableWidgetItem* const item = table->item(row, playColumn))
            item->setData(PlayColumnItem::kLeavingRole, true);
    }
    table->model()->sort(playColumn);
    table->model()->removeRows(0, static_cast<int>(rows.size()));
}

} // namespace

void removeTableRows(QTableWidget* table, const QList<int>& rows)
{
    const QList<RowRun> runs = runsOf(rows);
    if (runs.size() <= kFewRuns)
        removeRuns(table, runs);
    else
        removeScattered(table, rows);
}
