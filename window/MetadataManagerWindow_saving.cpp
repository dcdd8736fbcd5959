#include "window/MetadataManagerWindow.h"

#include "core/BwfMetadataWriter.h"
#include "window/FileTable.h"
#include "window/FileTableColumns.h"
#include "window/MetadataTexts.h"

#include <QCheckBox>
#include <QFileInfo>
#include <QLineEdit>
#include <QMessageBox>
#include <QTableWidget>
#include <QTextEdit>

namespace {

/// The cell's text as UTF-8, or `own` while the cell shows just that.
std::string cellBytes(const QTableWidget* table, int row, TrackColumn column, const std::string& own)
{
    const QTableWidgetItem* item = table->item(row, indexOf(column));
    const QString text = item ? item->text() : QString();
    return text == textFromUtf8(own) ? own : text.toStdString();
}

/// The list as it stands in the table that was filled from `filled`. A channel that is no number counts as 0.
std::vector<BwfTrack> tracksOf(const QTableWidget* table, const std::vector<BwfTrack>& filled)
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

} // namespace

// The editors show what Unicode makes of the bytes. Put back from there, bytes of another character set, a byte order
// mark, and in the notes the kinds of blanks and line ends would be lost, in fields that nobody touched.
BwfMetadata MetadataManagerWindow::updateRecord(const BwfMetadata& record, bool forOneFile) const
{
    const auto wanted = [forOneFile](const QString& text, bool asFilled, const std::string& own) {
        // Over several files the mark stands for values that differ, which each file keeps; for one it is a text.
        if (!forOneFile && text == noValueMark())
            return std::string();
        return asFilled ? own : text.toStdString();
    };
    const auto line = [this, &wanted](const QLineEdit* edit, const std::string& own) {
        return wanted(edit->text(), isAsFilled(edit), own);
    };
    BwfMetadata update;
    // A mix of flags shows as unchecked, and so saving takes the flag from all.
    update.circled = circledCheck->isChecked();
    update.wildTrack = wildTrackCheck->isChecked();
    update.scene = line(sceneEdit, record.scene);
    update.project = line(projectEdit, record.project);
    update.tape = line(tapeIdEdit, record.tape);
    update.note = wanted(notesEdit->toPlainText(), isAsFilled(notesEdit), record.note);
    if (forOneFile) {
        update.take = line(takeEdit, record.take);
        update.timeReference = pendingTimeReference;
        update.tracks = tracksOf(trackTable, record.tracks);
    }
    return update;
}

void MetadataManagerWindow::writeRow(int row, const BwfMetadata& update)
{
    const QString path = files.path(row);
    if (!BwfMetadataWriter::writeMetadata(path.toStdString(), update))
        QMessageBox::warning(this, "Error", QString("Failed to save metadata to:\n%1").arg(path));
}

void MetadataManagerWindow::readBackRow(int row)
{
    const QString& path = files.path(row);
    files.readAgain(row);
    fileTable->refreshRow(row, files.record(row), QFileInfo(path));
}

void MetadataManagerWindow::onSaveChanges()
{
    const QList<int> rows = fileTable->selectedRows();
    if (rows.isEmpty())
        return;

    // One after the other, and nothing is undone: a file that fails has its warning, and the batch goes on. All files
    // are read back, those that failed too: the file is the truth.
    for (const int row : rows) {
        if (files.contains(row))
            writeRow(row, updateRecord(files.record(row), rows.size() == 1));
    }
    for (const int row : rows) {
        if (files.contains(row))
            readBackRow(row);
    }

    dirty = false;
    updateMetadataDisplay();
    // The number of files that were selected, whether they could be written or not.
    QMessageBox::information(this, "Success", QString("Metadata saved to %1 file(s)").arg(rows.size()));
}
