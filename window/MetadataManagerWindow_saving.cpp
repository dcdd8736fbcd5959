#include "window/MetadataManagerWindow.h"

#include "core/BwfMetadataReader.h"
#include "core/BwfMetadataWriter.h"
#include "window/FileTableColumns.h"
#include "window/MetadataTexts.h"

#include <QCheckBox>
#include <QFileInfo>
#include <QLineEdit>
#include <QMessageBox>
#include <QTableWidget>
#include <QTextEdit>

namespace {

/// The cells that follow a save. The others keep their text, although size and date of the file may have changed.
constexpr FileColumn kRefreshedColumns[] = {
    FileColumn::TapeId,
    FileColumn::Scene,
    FileColumn::Take,
    FileColumn::StartTimecode,
    FileColumn::Circled,
    FileColumn::FrameRate,
    FileColumn::Notes,
};

QString cellText(const QTableWidget* table, int row, TrackColumn column)
{
    const QTableWidgetItem* item = table->item(row, indexOf(column));
    return item ? item->text() : QString();
}

/// The list as it stands in the table. A channel that is no number counts as 0.
std::vector<BwfTrack> tracksOf(const QTableWidget* table)
{
    std::vector<BwfTrack> tracks;
    for (int row = 0; row < table->rowCount(); ++row) {
        BwfTrack track;
        const QTableWidgetItem* channel = table->item(row, indexOf(TrackColumn::Channel));
        track.channelIndex = channel ? channel->text().toInt() : row + 1;
        track.name = cellText(table, row, TrackColumn::Name).toStdString();
        track.function = cellText(table, row, TrackColumn::Function).toStdString();
        tracks.push_back(std::move(track));
    }
    return tracks;
}

} // namespace

BwfMetadata MetadataManagerWindow::updateRecord(bool forOneFile) const
{
    // Over several files the mark stands for values that differ, which each file keeps; for one it is a text.
    const auto wanted = [forOneFile](const QString& text) {
        return forOneFile || text != noValueMark() ? text.toStdString() : std::string();
    };
    BwfMetadata update;
    // A mix of flags shows as unchecked, and so saving takes the flag from all.
    update.circled = circledCheck->isChecked();
    update.wildTrack = wildTrackCheck->isChecked();
    update.scene = wanted(sceneEdit->text());
    update.project = wanted(projectEdit->text());
    update.tape = wanted(tapeIdEdit->text());
    update.note = wanted(notesEdit->toPlainText());
    if (forOneFile) {
        update.take = wanted(takeEdit->text());
        update.timeReference = pendingTimeReference;
        update.tracks = tracksOf(trackTable);
    }
    return update;
}

void MetadataManagerWindow::writeRow(int row, const BwfMetadata& update)
{
    const QString path = filePaths.at(row);
    if (!BwfMetadataWriter::writeMetadata(path.toStdString(), update))
        QMessageBox::warning(this, "Error", QString("Failed to save metadata to:\n%1").arg(path));
}

void MetadataManagerWindow::readBackRow(int row)
{
    const QString& path = filePaths.at(row);
    records[row] = BwfMetadataReader::readMetadata(path.toStdString());
    const QFileInfo file(path);
    for (const FileColumn column : kRefreshedColumns) {
        if (QTableWidgetItem* item = fileTable->item(row, indexOf(column)))
            item->setText(fileCellText(column, records.at(row), file));
    }
}

void MetadataManagerWindow::onSaveChanges()
{
    const QList<int> rows = selectedRows();
    if (rows.isEmpty())
        return;

    // One after the other, and nothing is undone: a file that fails has its warning, and the batch goes on. All files
    // are read back, those that failed too: the file is the truth.
    const BwfMetadata update = updateRecord(rows.size() == 1);
    for (const int row : rows) {
        if (hasRecord(row))
            writeRow(row, update);
    }
    for (const int row : rows) {
        if (hasRecord(row))
            readBackRow(row);
    }

    dirty = false;
    updateMetadataDisplay();
    // The number of files that were selected, whether they could be written or not.
    QMessageBox::information(this, "Success", QString("Metadata saved to %1 file(s)").arg(rows.size()));
}
