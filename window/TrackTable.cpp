#include "window/TrackTable.h"

#include "app/look/TableColumns.h"
#include "app/look/TableKeys.h"
#include "app/look/Theme.h"
#include "core/BwfMetadata.h"
#include "window/FileTableColumns.h"
#include "window/MetadataTexts.h"

#include <QHeaderView>
#include <QTableWidget>

#include <algorithm>
#include <array>
#include <string>
#include <utility>

namespace {

constexpr std::array<const char*, kTrackColumnCount> kHeaders{ "Interleave", "Channel", "Track Name", "Function" };
/// Letters of usual width that a name has room for without the hand of the user; the other columns are as wide as their
/// headings. At usual sizes of the font all of them fit into a pane.
constexpr int kNameLetters = 14;

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
    table->horizontalHeader()->setStretchLastSection(true);
    table->verticalHeader()->setVisible(false);
    table->setEditTriggers(QAbstractItemView::DoubleClicked | QAbstractItemView::SelectedClicked);
    setUpTableKeys(*table);
    table->setAlternatingRowColors(true);
    table->setStyleSheet(Theme::fileTableStyleSheet());
    fitColumns(*table);
    const int nameColumn = indexOf(TrackColumn::Name);
    const int letters = kNameLetters * table->fontMetrics().averageCharWidth();
    table->setColumnWidth(nameColumn, std::max(table->columnWidth(nameColumn), letters));
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
