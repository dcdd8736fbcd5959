#include "window/FileTable.h"

#include "app/look/TableKeys.h"
#include "app/look/Theme.h"
#include "window/FileCellDelegate.h"
#include "window/FileList.h"
#include "window/FileTableColumns.h"
#include "window/MetadataTexts.h"
#include "window/PlayButton.h"
#include "window/PlayColumnItem.h"
#include "window/RowRemoval.h"

#include <QAbstractButton>
#include <QFileInfo>
#include <QHeaderView>
#include <QItemSelection>
#include <QKeyEvent>
#include <QSignalBlocker>
#include <QTimer>

#include <algorithm>
#include <array>

namespace {

constexpr int kPlayColumn = indexOf(FileColumn::Play);
constexpr int kPlayColumnWidth = 40;
constexpr int kSmallestColumnWidth = 24;
constexpr int kFewestPlayButtonsAtOnce = 100;
/// Qt lays out and looks through all buttons after each round, so rounds of one size would cost time by the square of
/// the rows. Rounds by a part of what is there keep it in proportion.
constexpr int kPartOfPlayButtonsAtOnce = 16;

constexpr std::array<const char*, kFileColumnCount> kHeaders{ "", "File Name", "File Size", "Channels", "TAPEID",
    "SCENE", "TAKE", "START TC", "LENGTH", "DATE", "CIRCLED", "SAMPLE RATE", "FRAME RATE", "Notes" };

/// The cells that follow a save. The others keep their text, although size and date of the file may have changed.
constexpr std::array kRefreshedColumns{ FileColumn::TapeId, FileColumn::Scene, FileColumn::Take,
    FileColumn::StartTimecode, FileColumn::Circled, FileColumn::FrameRate, FileColumn::Notes };

} // namespace

FileTable::FileTable(QWidget* parent) : QTableWidget(0, kFileColumnCount, parent)
{
    setAccessibleName(QStringLiteral("Files"));
    cells = new FileCellDelegate(this);
    setItemDelegate(cells);
    QStringList titles;
    for (const char* title : kHeaders)
        titles.append(QLatin1String(title));
    setHorizontalHeaderLabels(titles);

    setSelectionMode(QAbstractItemView::ExtendedSelection);
    setSelectionBehavior(QAbstractItemView::SelectRows);
    setDragDropMode(QAbstractItemView::DropOnly);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setUpTableKeys(*this);
    verticalHeader()->setVisible(false);
    horizontalHeader()->setStretchLastSection(true);
    horizontalHeader()->setMinimumSectionSize(kSmallestColumnWidth);
    keepPlayColumnFixed();
    setShowGrid(false);
    setAlternatingRowColors(true);
    setStyleSheet(Theme::fileTableStyleSheet());
    fitColumns();
}

void FileTable::appendRows(const FileList& files)
{
    const int firstNewRow = rowCount();
    // All rows at once: each insertion by itself would renumber every play button above it. Updates stay enabled, since
    // enabling them again marks every button for painting; nothing is painted before the event loop runs anyway.
    setRowCount(files.size());
    for (int row = firstNewRow; row < files.size(); ++row)
        fillRow(row, files);
    attachWaitingPlayButtons();
    fitColumns();
}

void FileTable::fillRow(int row, const FileList& files)
{
    auto* playItem = new PlayColumnItem;
    playItem->setFlags(Qt::ItemIsSelectable | Qt::ItemIsEnabled);
    playItem->setTextAlignment(Qt::AlignCenter);
    setItem(row, kPlayColumn, playItem);

    const QFileInfo file(files.path(row));
    playItem->setData(Qt::AccessibleTextRole, QStringLiteral("Play %1").arg(file.fileName()));
    for (int column = indexOf(FileColumn::FileName); column < kFileColumnCount; ++column) {
        const QString text = fileCellText(static_cast<FileColumn>(column), files.record(row), file);
        setItem(row, column, new QTableWidgetItem(text));
    }
}

void FileTable::fitColumns()
{
    cells->beginFitting();
    for (int column = indexOf(FileColumn::FileName); column < kFileColumnCount; ++column)
        resizeColumnToContents(column);
    cells->endFitting();
    keepPlayColumnFixed();
}

void FileTable::keepPlayColumnFixed()
{
    horizontalHeader()->setSectionResizeMode(kPlayColumn, QHeaderView::Fixed);
    setColumnWidth(kPlayColumn, kPlayColumnWidth);
}

void FileTable::refreshRow(int row, const BwfMetadata& record, const QFileInfo& file)
{
    for (const FileColumn column : kRefreshedColumns) {
        if (QTableWidgetItem* cell = item(row, indexOf(column)))
            cell->setText(fileCellText(column, record, file));
    }
}

void FileTable::takeOutRows(const QList<int>& rows)
{
    rowsWithPlayButton
        -= static_cast<int>(std::lower_bound(rows.begin(), rows.end(), rowsWithPlayButton) - rows.begin());
    const QSignalBlocker silent(this);
    removeTableRows(this, rows);
}

void FileTable::clearRows()
{
    setRowCount(0);
    rowsWithPlayButton = 0;
}

QList<int> FileTable::selectedRows() const
{
    // By ranges and not by items: the table has fourteen items a row. Ranges may share rows, as a cell can be
    // selected by itself.
    QList<int> rows;
    const QItemSelection selection = selectionModel()->selection();
    for (const QItemSelectionRange& range : selection) {
        for (int row = range.top(); row <= range.bottom(); ++row)
            rows.append(row);
    }
    std::sort(rows.begin(), rows.end());
    rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
    return rows;
}

bool FileTable::hasSelection() const
{
    return selectionModel()->hasSelection();
}

// The key alone: what Qt calls activation is a double click too, which does nothing here.
void FileTable::keyPressEvent(QKeyEvent* event)
{
    const bool plain = (event->modifiers() & ~Qt::KeypadModifier) == Qt::NoModifier;
    const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (plain && isReturn && currentRow() >= 0) {
        emit playWanted(currentRow());
        return;
    }
    QTableWidget::keyPressEvent(event);
}

// A table widget would overwrite cells, and append rows without a file, by what other tables offer to drop.
QStringList FileTable::mimeTypes() const
{
    return {};
}

void FileTable::attachWaitingPlayButtons()
{
    // A styled button takes ten times as long as reading its file. The first rows get theirs at once, the others while
    // the window is idle, so that thousands of files are there to be worked on long before the last button is.
    const int round = std::max(kFewestPlayButtonsAtOnce, rowsWithPlayButton / kPartOfPlayButtonsAtOnce);
    const int end = std::min(rowCount(), rowsWithPlayButton + round);
    for (; rowsWithPlayButton < end; ++rowsWithPlayButton)
        attachPlayButton(rowsWithPlayButton);
    if (rowsWithPlayButton >= rowCount() || playButtonRoundIsDue)
        return;
    playButtonRoundIsDue = true;
    QTimer::singleShot(0, this, [this] {
        playButtonRoundIsDue = false;
        attachWaitingPlayButtons();
    });
}

void FileTable::attachPlayButton(int row)
{
    if (playIcon.isNull())
        playIcon = drawPlayIcon();
    // In its place within the table from the start: a new parent would make it work out its style sheet again.
    QAbstractButton* const button = makePlayButton(playIcon, viewport());
    connect(button, &QAbstractButton::clicked, this, [this, button] { announcePlay(button); });
    // The button goes to its place before the table shows it. Shown in the corner first, each of thousands would be due
    // for painting, and each paint looks through all the others. (visualRect would lay the table out for each one.)
    button->move(columnViewportPosition(kPlayColumn), rowViewportPosition(row));
    setCellWidget(row, kPlayColumn, button);
}

// Looked up at each press, since a button's row number changes when rows above it go.
void FileTable::announcePlay(const QWidget* button)
{
    for (int row = 0; row < rowCount(); ++row) {
        if (cellWidget(row, kPlayColumn) == button) {
            emit playWanted(row);
            return;
        }
    }
}
