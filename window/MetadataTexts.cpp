#include "window/MetadataTexts.h"

#include "core/BwfMetadata.h"
#include "core/Timecode.h"
#include "core/WholeNumber.h"

#include <QDateTime>
#include <QFileInfo>

#include <array>

namespace {

constexpr uint64_t kSecondsPerMinute = 60;
constexpr uint64_t kSecondsPerHour = 3600;
constexpr double kUnitStep = 1024.0;
constexpr std::array kSizeUnits{ "B", "KB", "MB", "GB", "TB" };

QString twoDigits(uint64_t number)
{
    return QString::number(number).rightJustified(2, u'0');
}

QString yesOrNo(bool value)
{
    return value ? QStringLiteral("Yes") : QStringLiteral("No");
}

} // namespace

QString noValueMark()
{
    return QStringLiteral("\u2014");
}

QString textFromUtf8(const std::string& bytes)
{
    return QString::fromUtf8(bytes.data(), static_cast<qsizetype>(bytes.size()));
}

uint32_t timecodeRate(const BwfMetadata& record)
{
    return record.timestampSampleRate != 0 ? record.timestampSampleRate : record.sampleRate;
}

QString fileSizeText(uint64_t bytes)
{
    auto value = static_cast<double>(bytes);
    size_t unit = 0;
    while (value >= kUnitStep && unit + 1 < kSizeUnits.size()) {
        value /= kUnitStep;
        ++unit;
    }
    return QStringLiteral("%1 %2").arg(value, 0, 'f', 1).arg(QLatin1String(kSizeUnits[unit]));
}

QString timecodeText(uint64_t samples, uint32_t sampleRate, double frameRate)
{
    return QString::fromStdString(Timecode::cutStartText(samples, sampleRate, frameRate));
}

QString durationText(double seconds)
{
    if (!(seconds > 0.0))
        return noValueMark();
    const uint64_t whole = wholeOf(seconds);
    return twoDigits(whole / kSecondsPerHour) + u':' + twoDigits(whole % kSecondsPerHour / kSecondsPerMinute) + u':'
        + twoDigits(whole % kSecondsPerMinute);
}

QString startTimecodeText(const BwfMetadata& record)
{
    const QString text = timecodeText(record.timeReference, timecodeRate(record), record.frameRate);
    return text.isEmpty() ? noValueMark() : text;
}

QString frameRateText(double frameRate)
{
    if (!(frameRate > 0.0))
        return noValueMark();
    QString number = QString::number(frameRate, 'f', 3);
    while (number.endsWith(u'0'))
        number.chop(1);
    if (number.endsWith(u'.'))
        number.chop(1);
    return number + QStringLiteral(" fps");
}

QString hertzText(uint32_t rate)
{
    return QString::number(rate) + QStringLiteral(" Hz");
}

QString channelsText(uint16_t channels)
{
    if (channels == 0)
        return QStringLiteral("0");
    if (channels == 1)
        return QStringLiteral("MONO");
    return QStringLiteral("POLY (%1)").arg(channels);
}

QString fileCellText(FileColumn column, const BwfMetadata& record, const QFileInfo& file)
{
    switch (column) {
    case FileColumn::Play:
        return {};
    case FileColumn::FileName:
        return file.fileName();
    case FileColumn::FileSize:
        return fileSizeText(record.fileSize);
    case FileColumn::Channels:
        return channelsText(record.channels);
    case FileColumn::TapeId:
        return textFromUtf8(record.tape);
    case FileColumn::Scene:
        return textFromUtf8(record.scene);
    case FileColumn::Take:
        return textFromUtf8(record.take);
    case FileColumn::StartTimecode:
        return startTimecodeText(record);
    case FileColumn::Length:
        return durationText(record.duration);
    case FileColumn::Date:
        return file.lastModified().toString(QStringLiteral("yyyy-MM-dd"));
    case FileColumn::Circled:
        return yesOrNo(record.circled);
    case FileColumn::SampleRate:
        return hertzText(record.sampleRate);
    case FileColumn::FrameRate:
        return frameRateText(record.frameRate);
    case FileColumn::Notes:
        return textFromUtf8(record.note);
    }
    return {};
}
