#include "window/MetadataManagerWindow.h"

#include "window/CommonValue.h"
#include "window/FileTable.h"
#include "window/FileTableColumns.h"
#include "window/MetadataTexts.h"

#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTableWidget>
#include <QTextDocument>
#include <QTextEdit>

namespace {

QString orMark(const QString& text)
{
    return text.isEmpty() ? noValueMark() : text;
}

/// Fills a cell of the track table. An item that is there already stays, so that only a text that differs counts as
/// a change. Interleave and channel are facts of the file and can't be edited.
void setTrackCell(QTableWidget* table, int row, TrackColumn column, const QString& text)
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

} // namespace

void MetadataManagerWindow::onFileSelectionChanged()
{
    removeFileButton->setEnabled(fileTable->hasSelection());
    updateMetadataDisplay();
}

void MetadataManagerWindow::onMetadataChanged()
{
    dirty = true;
    saveButton->setEnabled(fileTable->hasSelection());
}

void MetadataManagerWindow::updateMetadataDisplay()
{
    const QList<int> rows = fileTable->selectedRows();
    // A start time that was typed but not saved lives no longer than what the panes show.
    pendingTimeReference = 0;
    if (rows.isEmpty()) {
        showNoRow();
        trackTable->setRowCount(0);
        saveButton->setEnabled(false);
        return;
    }
    if (rows.size() == 1) {
        if (!files.contains(rows.first()))
            return;
        showOneRow(files.record(rows.first()));
    } else {
        showSeveralRows(rows.size());
        trackTable->setRowCount(0);
    }
    saveButton->setEnabled(dirty);
}

void MetadataManagerWindow::fillText(QLineEdit* edit, const QString& text)
{
    edit->setText(text);
    filledTexts[edit] = edit->text();
}

// As QLineEdit::setText fills a line edit: QTextEdit reports even an equal text as a change, which would count as a
// touch of the editors.
void MetadataManagerWindow::fillText(QTextEdit* edit, const QString& text)
{
    // Compared as documents: what the edit gives back has lost the kinds of blanks and line ends.
    QTextDocument wanted;
    wanted.setPlainText(text);
    const QString shown = wanted.toRawText();
    if (edit->document()->toRawText() != shown)
        edit->setPlainText(text);
    filledTexts[edit] = shown;
}

bool MetadataManagerWindow::isAsFilled(const QLineEdit* edit) const
{
    return filledTexts.value(edit) == edit->text();
}

bool MetadataManagerWindow::isAsFilled(const QTextEdit* edit) const
{
    return filledTexts.value(edit) == edit->document()->toRawText();
}

void MetadataManagerWindow::showNoRow()
{
    for (QLabel* label : { currentFileLabel, channelsLabel, sampleRateLabel, tcSampleRateLabel, frameRateLabel,
             lengthLabel, samplesSinceMidnightLabel, userBitsLabel, bitDepthLabel })
        label->setText(noValueMark());
    timecodeButton->setText(noValueMark());
    for (QLineEdit* edit : { sceneEdit, takeEdit, projectEdit, tapeIdEdit })
        fillText(edit, {});
    fillText(notesEdit, {});
    circledCheck->setChecked(false);
    wildTrackCheck->setChecked(false);
}

void MetadataManagerWindow::showOneRow(const BwfMetadata& record)
{
    currentFileLabel->setText(textFromUtf8(record.fileName));
    channelsLabel->setText(QString::number(record.channels));
    fillText(sceneEdit, textFromUtf8(record.scene));
    takeEdit->setEnabled(true);
    fillText(takeEdit, textFromUtf8(record.take));
    circledCheck->setChecked(record.circled);
    wildTrackCheck->setChecked(record.wildTrack);
    fillText(projectEdit, textFromUtf8(record.project));
    fillText(tapeIdEdit, textFromUtf8(record.tape));
    fillText(notesEdit, textFromUtf8(record.note));

    const uint32_t rate = timecodeRate(record);
    sampleRateLabel->setText(hertzText(record.sampleRate));
    tcSampleRateLabel->setText(rate != 0 ? hertzText(rate) : noValueMark());
    frameRateLabel->setText(frameRateText(record.frameRate));
    timecodeButton->setText(startTimecodeText(record));
    lengthLabel->setText(formatDuration(record.duration));
    samplesSinceMidnightLabel->setText(
        record.timeReference != 0 ? QString::number(record.timeReference) : noValueMark());
    userBitsLabel->setText(orMark(textFromUtf8(record.ubits)));
    bitDepthLabel->setText(QStringLiteral("%1 bit").arg(record.bitsPerSample));
    showTracks(record.tracks);
}

void MetadataManagerWindow::showSeveralRows(qsizetype count)
{
    currentFileLabel->setText(QStringLiteral("%1 files selected").arg(count));
    channelsLabel->setText(
        getCommonValue(QStringLiteral("channels"), [](const BwfMetadata& r) { return QString::number(r.channels); }));
    fillText(
        sceneEdit, getCommonValue(QStringLiteral("scene"), [](const BwfMetadata& r) { return textFromUtf8(r.scene); }));
    // A take is never shared, not even if all files say the same.
    takeEdit->setEnabled(false);
    fillText(takeEdit, noValueMark());
    circledCheck->setChecked(getCommonBool(QStringLiteral("circled"), [](const BwfMetadata& r) { return r.circled; }));
    wildTrackCheck->setChecked(
        getCommonBool(QStringLiteral("wildTrack"), [](const BwfMetadata& r) { return r.wildTrack; }));
    fillText(projectEdit,
        getCommonValue(QStringLiteral("project"), [](const BwfMetadata& r) { return textFromUtf8(r.project); }));
    fillText(
        tapeIdEdit, getCommonValue(QStringLiteral("tape"), [](const BwfMetadata& r) { return textFromUtf8(r.tape); }));
    fillText(
        notesEdit, getCommonValue(QStringLiteral("notes"), [](const BwfMetadata& r) { return textFromUtf8(r.note); }));

    sampleRateLabel->setText(
        getCommonValue(QStringLiteral("sampleRate"), [](const BwfMetadata& r) { return hertzText(r.sampleRate); }));
    // Only the rate that the files give themselves; unlike with one file it does not fall back on the audio's.
    tcSampleRateLabel->setText(getCommonValue(QStringLiteral("tcSampleRate"), [](const BwfMetadata& r) {
        return r.timestampSampleRate != 0 ? hertzText(r.timestampSampleRate) : noValueMark();
    }));
    frameRateLabel->setText(
        getCommonValue(QStringLiteral("framerate"), [](const BwfMetadata& r) { return frameRateText(r.frameRate); }));
    timecodeButton->setText(noValueMark());
    for (QLabel* label : { lengthLabel, samplesSinceMidnightLabel, userBitsLabel, bitDepthLabel })
        label->setText(noValueMark());
}

void MetadataManagerWindow::showTracks(const std::vector<BwfTrack>& tracks)
{
    trackTable->setRowCount(static_cast<int>(tracks.size()));
    int row = 0;
    for (const BwfTrack& track : tracks) {
        setTrackCell(trackTable, row, TrackColumn::Interleave, QString::number(row + 1));
        setTrackCell(trackTable, row, TrackColumn::Channel, QString::number(track.channelIndex));
        setTrackCell(trackTable, row, TrackColumn::Name, textFromUtf8(track.name));
        setTrackCell(trackTable, row, TrackColumn::Function, textFromUtf8(track.function));
        ++row;
    }
}

// NOLINTNEXTLINE(performance-unnecessary-value-param): the signature is fixed.
QString MetadataManagerWindow::getCommonValue(const QString&, std::function<QString(const BwfMetadata&)> getter)
{
    return commonValue(files.recordsOf(fileTable->selectedRows()), std::cref(getter)).value_or(noValueMark());
}

// NOLINTNEXTLINE(performance-unnecessary-value-param): the signature is fixed.
bool MetadataManagerWindow::getCommonBool(const QString&, std::function<bool(const BwfMetadata&)> getter)
{
    return commonValue(files.recordsOf(fileTable->selectedRows()), std::cref(getter)).value_or(false);
}
