#include "report/ReportTexts.h"

#include "app/files/WavSuffix.h"
#include "report/TakeInfo.h"

#include <QStringList>

#include <algorithm>
#include <cmath>
#include <limits>
#include <string>

namespace {

constexpr double kFallbackFrameRate = 30.0; // Frames per second of a duration whose rate is unknown.
constexpr double kDropFrameTolerance = 0.01; // A rate nearer than this to 29.97 or 59.94 gets the drop-frame suffix.

// 2 to the power of 63: the first value past the integers that the truncation below gives.
constexpr double kSignedLimit = 9223372036854775808.0;

// Truncates towards 0 and stays within the type: file headers can claim lengths and rates that no integer holds.
qlonglong truncated(double value)
{
    if (std::isnan(value))
        return 0;
    if (value >= kSignedLimit)
        return std::numeric_limits<qlonglong>::max();
    if (value <= -kSignedLimit)
        return std::numeric_limits<qlonglong>::min();
    return static_cast<qlonglong>(value);
}

// At least two digits. Written by hand: four calls of QString::arg for each time cost more than reading its file.
void appendField(QString& text, double value)
{
    const qlonglong number = truncated(value);
    if (!text.isEmpty())
        text += QLatin1Char(':');
    if (number >= 0 && number < 10)
        text += QLatin1Char('0');
    text += QString::number(number);
}

QString timeText(double seconds, double frameRate)
{
    const double hours = std::trunc(seconds / 3600.0);
    double rest = seconds - hours * 3600.0;
    const double minutes = std::trunc(rest / 60.0);
    rest -= minutes * 60.0;
    const double secs = std::trunc(rest);
    const double frames = std::trunc(frameRate * (rest - secs));

    QString text;
    for (const double field : { hours, minutes, secs, frames })
        appendField(text, field);
    return text;
}

} // namespace

QString reportTimecode(unsigned long long samples, unsigned int sampleRate, double frameRate)
{
    if (sampleRate == 0 || frameRate == 0.0)
        return QStringLiteral("--:--:--:--");
    return timeText(static_cast<double>(samples) / static_cast<double>(sampleRate), frameRate);
}

QString reportDuration(double seconds, double frameRate)
{
    return timeText(seconds, frameRate > 0.0 ? frameRate : kFallbackFrameRate);
}

QString reportDuration(const TakeInfo& take)
{
    return reportDuration(take.duration, take.frameRate);
}

QString reportFrameRate(double frameRate)
{
    if (frameRate <= 0.0)
        return {};
    QString text = QString::number(frameRate, 'f', 2);
    while (text.endsWith(QLatin1Char('0')))
        text.chop(1);
    if (text.endsWith(QLatin1Char('.')))
        text.chop(1);
    const bool dropFrame
        = std::abs(frameRate - 29.97) < kDropFrameTolerance || std::abs(frameRate - 59.94) < kDropFrameTolerance;
    return text + QLatin1String(dropFrame ? "df-C" : "nd-C");
}

QString csvField(const QString& value)
{
    const auto needsQuotes = [](QChar c) {
        return c == QLatin1Char(',') || c == QLatin1Char('"') || c == QLatin1Char('\n') || c == QLatin1Char('\r');
    };
    if (std::none_of(value.begin(), value.end(), needsQuotes))
        return value;
    QString doubled = value;
    doubled.replace(QLatin1Char('"'), QLatin1String("\"\""));
    return QLatin1Char('"') + doubled + QLatin1Char('"');
}

QString joinedTracks(const TakeInfo& take, const QString& separator)
{
    QStringList names;
    for (const std::string& name : take.tracks)
        names << QString::fromStdString(name);
    return names.join(separator);
}

QString nameWithoutWav(const TakeInfo& take)
{
    return withoutWavSuffix(QString::fromStdString(take.filename));
}
