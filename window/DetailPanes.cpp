#include "window/DetailPanes.h"

#include "window/CommonValue.h"
#include "window/MetadataTexts.h"
#include "window/TrackTable.h"

#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTableWidget>
#include <QTextEdit>

#include <string>

namespace {

QString orMark(const QString& text)
{
    return text.isEmpty() ? noValueMark() : text;
}

} // namespace

void DetailPanes::showRecords(std::span<const BwfMetadata* const> records)
{
    // A start time that was typed but not saved lives no longer than what the panes show.
    dropTypedStart();
    showsSeveral = records.size() > 1;
    if (records.empty())
        showNone();
    else if (showsSeveral)
        showSeveral(records);
    else
        showOne(*records.front());
}

void DetailPanes::showNone()
{
    for (QLabel* label : { currentFileLabel, channelsLabel, sampleRateLabel, tcSampleRateLabel, frameRateLabel,
             lengthLabel, samplesSinceMidnightLabel, userBitsLabel, bitDepthLabel })
        label->setText(noValueMark());
    showStart(noValueMark());
    for (QLineEdit* edit : { sceneEdit, takeEdit, projectEdit, tapeIdEdit })
        texts.fill(edit, {});
    texts.fill(notesEdit, {});
    circledCheck->setChecked(false);
    wildTrackCheck->setChecked(false);
    showTracks(trackTable, {});
}

void DetailPanes::showOne(const BwfMetadata& record)
{
    currentFileLabel->setText(textFromUtf8(record.fileName));
    channelsLabel->setText(QString::number(record.channels));
    texts.fill(sceneEdit, textFromUtf8(record.scene));
    offerTake();
    texts.fill(takeEdit, textFromUtf8(record.take));
    circledCheck->setChecked(record.circled);
    wildTrackCheck->setChecked(record.wildTrack);
    texts.fill(projectEdit, textFromUtf8(record.project));
    texts.fill(tapeIdEdit, textFromUtf8(record.tape));
    texts.fill(notesEdit, textFromUtf8(record.note));

    const uint32_t rate = timecodeRate(record);
    sampleRateLabel->setText(hertzText(record.sampleRate));
    tcSampleRateLabel->setText(rate != 0 ? hertzText(rate) : noValueMark());
    frameRateLabel->setText(frameRateText(record.frameRate));
    showStart(startTimecodeText(record));
    lengthLabel->setText(durationText(record.duration));
    samplesSinceMidnightLabel->setText(
        record.timeReference != 0 ? QString::number(record.timeReference) : noValueMark());
    userBitsLabel->setText(orMark(textFromUtf8(record.ubits)));
    bitDepthLabel->setText(QStringLiteral("%1 bit").arg(record.bitsPerSample));
    showTracks(trackTable, record.tracks);
}

void DetailPanes::showSeveral(std::span<const BwfMetadata* const> records)
{
    const auto text = [records](auto get) { return commonValue(records, get).value_or(noValueMark()); };
    const auto flag = [records](auto get) { return commonValue(records, get).value_or(false); };

    currentFileLabel->setText(QStringLiteral("%1 files selected").arg(records.size()));
    channelsLabel->setText(text([](const BwfMetadata& r) { return QString::number(r.channels); }));
    texts.fill(sceneEdit, text([](const BwfMetadata& r) { return textFromUtf8(r.scene); }));
    // A take is never shared, not even if all files say the same.
    takeEdit->setEnabled(false);
    texts.fill(takeEdit, noValueMark());
    circledCheck->setChecked(flag([](const BwfMetadata& r) { return r.circled; }));
    wildTrackCheck->setChecked(flag([](const BwfMetadata& r) { return r.wildTrack; }));
    texts.fill(projectEdit, text([](const BwfMetadata& r) { return textFromUtf8(r.project); }));
    texts.fill(tapeIdEdit, text([](const BwfMetadata& r) { return textFromUtf8(r.tape); }));
    texts.fill(notesEdit, text([](const BwfMetadata& r) { return textFromUtf8(r.note); }));

    sampleRateLabel->setText(text([](const BwfMetadata& r) { return hertzText(r.sampleRate); }));
    // Only the rate that the files give themselves; unlike with one file it does not fall back on the audio's.
    tcSampleRateLabel->setText(text([](const BwfMetadata& r) {
        return r.timestampSampleRate != 0 ? hertzText(r.timestampSampleRate) : noValueMark();
    }));
    frameRateLabel->setText(text([](const BwfMetadata& r) { return frameRateText(r.frameRate); }));
    showStart(noValueMark());
    for (QLabel* label : { lengthLabel, samplesSinceMidnightLabel, userBitsLabel, bitDepthLabel })
        label->setText(noValueMark());
    showTracks(trackTable, {});
}

void DetailPanes::offerTake()
{
    takeEdit->setEnabled(true);
}

// The editors show what Unicode makes of the bytes. Put back from there, bytes of another character set, a byte order
// mark, and in the notes the kinds of blanks and line ends would be lost, in fields that nobody touched.
BwfMetadata DetailPanes::wanted(const BwfMetadata& record) const
{
    const auto bytes = [this](const QString& text, bool asFilled, const std::string& own) {
        // Over several files the mark stands for values that differ, which each file keeps; for one it is a text.
        if (showsSeveral && text == noValueMark())
            return std::string();
        return asFilled ? own : text.toStdString();
    };
    const auto line = [this, &bytes](const QLineEdit* edit, const std::string& own) {
        return bytes(edit->text(), texts.isAsFilled(edit), own);
    };
    BwfMetadata update;
    // A mix of flags shows as unchecked, and so saving takes the flag from all.
    update.circled = circledCheck->isChecked();
    update.wildTrack = wildTrackCheck->isChecked();
    update.scene = line(sceneEdit, record.scene);
    update.project = line(projectEdit, record.project);
    update.tape = line(tapeIdEdit, record.tape);
    update.note = bytes(notesEdit->toPlainText(), texts.isAsFilled(notesEdit), record.note);
    if (!showsSeveral) {
        update.take = line(takeEdit, record.take);
        update.timeReference = pendingTimeReference;
        update.tracks = tracksInTable(trackTable, record.tracks);
    }
    return update;
}

void DetailPanes::setTypedStart(const QString& text, uint64_t samples)
{
    pendingTimeReference = samples;
    showStart(text);
    emit touched();
}

void DetailPanes::showStart(const QString& text)
{
    timecodeButton->setText(text);
    // Its name says what it is, so the time needs another place where assistive tools find it.
    timecodeButton->setAccessibleDescription(text);
}

QString DetailPanes::startText() const
{
    return timecodeButton->text();
}

QList<QWidget*> DetailPanes::tabOrder() const
{
    return { sceneEdit, takeEdit, circledCheck, wildTrackCheck, projectEdit, tapeIdEdit, notesEdit, timecodeButton,
        trackTable };
}
