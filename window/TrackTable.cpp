#include "window/TrackTable.h"

#include "app/look/Theme.h"
#include "core/BwfMetadata.h"
#include "window/FileTableColumns.h"
#include "window/MetadataTexts.h"

#include <QHeaderView>
#include <QTableWidget>

#include <array>
#include <string>
#include <utility>

namespace {

constexpr std::array<const char*, kTrackColumnCount> kHeaders{ "Interleave", "Channel", "Track Name", "Function" };
/// Pixels. The last column takes what is left, but never less than it had before; together they fit into a pane of
/// usual size.
constexpr std::array<int, kTrackColumnCount> kColumnWidths{ 88, 76, 110, 70 };

/// An item that is there already stays, so that only a text that differs counts as a change.
void setCell(QTableWidget* table, int row, TrackColumn column, const QString& text)
{
    if (QTableWidgetItem* item = table->item(row, indexOf(column))) {
        item->setText(text);
        return;
    }
    auto* item = new QTableWidgetItem(text);
    if (column == TrackColumn::Interleave || column == TrackColumn::Channel)
        item->setFlags(item->flags() & ~Qt::ItemIsEditable);
    table->setItem(row, indexOf(column), item);
}

/// The cell's text as UTF-8, or `own` while the cell shows just that.
std::string cellBytes(const QTableWidget* table, int row, TrackColumn column, const std::string& own)
{
    const QTableWidgetItem* item = table->item(row, indexOf(column));
    const QString text = item ? item->text() : QString();
    return text == textFromUtf8(own) ? own : text.toStdString();
}

} // namespace

QTableWidget* makeTrackTable()
{
    auto* table = new QTableWidget(0, kTrackColumnCount);
    table->setAccessibleName(QStringLiteral("Tracks"));
    QStringList titles;
    for (const char* title : kHeaders)
        titles.append(QLatin1String(title));
    table->setHorizontalHeaderLabels(titles);
    for (int column = 0; column < kTrackColumnCount; ++column)
        table->setColumnWidth(column, kColumnWidths[static_cast<size_t>(column)]);
    table->horizontalHeader()->setStretchLastSection(true);
    table->verticalHeader()->setVisible(false);
    table->setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::SelectedClicked);
    // Outside an open cell editor Tab leaves the table.
    table->setTabKeyNavigation(false);
    table->setAlternatingRowColors(true);
    table->setStyleSheet(Theme::fileTableStyleSheet());
    return table;
}

void showTracks(QTableWidget* table, const std::vector<BwfTrack>& tracks)
{
    table->setRowCount(static_cast<int>(tracks.size()));
    int row = 0;
    for (const BwfTrack& track : tracks) {
        setCell(table, row, TrackColumn::Interleave, QString::number(row + 1));
        setCell(table, row, TrackColumn::Channel, QString::number(track.channelIndex));
        setCell(table, row, TrackColumn::Name, textFromUtf8(track.name));
        setCell(table, row, TrackColumn::Function, textFromUtf8(track.function));
        ++row;
    }
}

std::vector<BwfTrack> tracksInTable(const QTableWidget* table, const std::vector<BwfTrack>& filled)
{
    std::vector<BwfTrack> tracks;
    for (int row = 0; row < table->rowCount(); ++row) {
        const auto index = static_cast<size_t>(row);
        const BwfTrack own = index < filled.size() ? filled[index] : BwfTrack();
        const QTableWidgetItem* channel = table->item(row, indexOf(TrackColumn::Channel));
        BwfTrack track;
        track.channelIndex = channel ? channel->text().toInt() : row + 1;
        track.name = cellBytes(table, row, TrackColumn::Name, own.name);
        track.function = cellBytes(table, row, TrackColumn::Function, own.function);
        tracks.push_back(std::move(track));
    }
    return tracks;
}
