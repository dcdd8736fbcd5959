#include "report/SoundReportDialog.h"

#include "core/BwfMetadata.h"
#include "core/BwfMetadataReader.h"

#include <QDir>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTableWidget>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <limits>
#include <string_view>
#include <tuple>
#include <utility>

namespace {

constexpr double kFallbackFrameRate = 30.0; // Frames per second of a duration whose rate is unknown.
constexpr double kDropFrameTolerance = 0.01; // A rate nearer than this to 29.97 or 59.94 gets the drop-frame suffix.
constexpr size_t kShortNumberSource = 6; // Bytes that a file number needs before its last four become the short number.
constexpr size_t kShortNumberDigits = 4;
constexpr QStringView kWavSuffix = u".wav";

// 2 to the power of 64 and 63: the first values past the integers that the truncations below give.
constexpr double kUnsignedLimit = 18446744073709551616.0;
constexpr double kSignedLimit = 9223372036854775808.0;

// Truncates towards 0 and stays within the type: file headers can claim lengths and rates that no integer holds.
unsigned long long truncatedUnsigned(double value)
{
    if (!(value > 0.0))
        return 0;
    if (value >= kUnsignedLimit)
        return std::numeric_limits<unsigned long long>::max();
    return static_cast<unsigned long long>(value);
}

qlonglong truncatedSigned(double value)
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
    const qlonglong number = truncatedSigned(value);
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

std::string fileNumberOf(const QString& baseName)
{
    const qsizetype separator = baseName.indexOf(QLatin1Char('_'));
    if (separator < 0 || !baseName.startsWith(QLatin1String("AAD")))
        return {};
    return baseName.left(separator).toStdString();
}

std::string shortNumberOf(const std::string& fileNumber, size_t position)
{
    if (fileNumber.size() >= kShortNumberSource)
        return std::string("s").append(fileNumber, fileNumber.size() - kShortNumberDigits);
    std::array<char, 16> text{};
    std::snprintf(text.data(), text.size(), "s%04d", static_cast<int>(position));
    return text.data();
}

// Without a timestamp rate of its own a file has no timecode here: the report doesn't fall back to the audio's rate.
void fillTimecodes(TakeInfo& take, const BwfMetadata& metadata)
{
    const uint32_t rate = metadata.timestampSampleRate;
    if (metadata.timeReference == 0 || rate == 0 || !(metadata.frameRate > 0.0))
        return;
    const unsigned long long start = metadata.timeReference;
    const unsigned long long length = truncatedUnsigned(metadata.duration * rate);
    take.timecodeIn = SoundReportDialog::formatTimecode(start, rate, metadata.frameRate).toStdString();
    take.timecodeOut = SoundReportDialog::formatTimecode(start + length, rate, metadata.frameRate).toStdString();
}

std::vector<std::string> trackNames(const BwfMetadata& metadata)
{
    std::vector<std::pair<int32_t, std::string>> ordered;
    ordered.reserve(metadata.tracks.size());
    for (const BwfTrack& track : metadata.tracks)
        ordered.emplace_back(track.channelIndex, track.name);
    std::sort(ordered.begin(), ordered.end());

    std::vector<std::string> names;
    for (auto& entry : ordered)
        names.push_back(std::move(entry.second));
    if (!names.empty())
        return names;
    for (uint32_t channel = 0; channel < metadata.channels; ++channel)
        names.push_back(channel == 0 ? "Mix" : std::string("Track").append(std::to_string(channel)));
    return names;
}

// `position` counts from 1 in the order of loading, which is not the order of the report.
TakeInfo takeOf(const QFileInfo& file, const BwfMetadata& metadata, size_t position)
{
    TakeInfo take;
    take.filePath = file.absoluteFilePath().toStdString();
    take.filename = file.fileName().toStdString();
    take.fileDate = file.fileTime(QFileDevice::FileModificationTime);
    take.fileNumber = fileNumberOf(file.baseName());
    take.scene = metadata.scene;
    take.take = metadata.take;
    take.project = metadata.project;
    take.soundRoll = metadata.tape;
    take.notes = metadata.note;
    take.duration = metadata.duration;
    take.frameRate = metadata.frameRate;
    take.sampleRate = metadata.sampleRate;
    take.bitDepth = metadata.bitsPerSample;
    take.isPoly = metadata.channels >= 2;
    take.shortNumber = shortNumberOf(take.fileNumber, position);
    fillTimecodes(take, metadata);
    take.tracks = trackNames(metadata);
    return take;
}

bool comesBefore(const TakeInfo& a, const TakeInfo& b)
{
    return std::tie(a.fileNumber, a.scene, a.take) < std::tie(b.fileNumber, b.scene, b.take);
}

} // namespace

std::vector<TakeInfo> readTakes(const QList<QFileInfo>& files)
{
    std::vector<TakeInfo> result;
    result.reserve(static_cast<size_t>(files.size()));
    for (const QFileInfo& file : files) {
        // The reader throws for a file that is gone. Such a file is left out; all others still make their takes.
        try {
            const BwfMetadata metadata = BwfMetadataReader::readMetadata(file.absoluteFilePath().toStdString());
            result.push_back(takeOf(file, metadata, result.size() + 1));
        } catch (...) {
            continue;
        }
    }
    std::sort(result.begin(), result.end(), comesBefore);
    return result;
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
    QString name = QString::fromStdString(take.filename);
    if (name.endsWith(kWavSuffix, Qt::CaseInsensitive))
        name.chop(kWavSuffix.size());
    return name;
}

void SoundReportDialog::setFiles(const QList<QString>& paths)
{
    QList<QFileInfo> files;
    for (const QString& path : paths) {
        const QFileInfo file(path);
        if (file.isFile())
            files.append(file);
    }

    folderLabel->setText(QStringLiteral("Source:"));
    folderEdit->setText(QStringLiteral("%1 file%2 from the file list")
                            .arg(files.size())
                            .arg(QLatin1String(files.size() == 1 ? "" : "s")));
    selectFolderButton->hide();
    if (!files.isEmpty())
        folderPath = files.first().absolutePath();
    loadTakesFromFiles(files);

    soundRoll.clear();
    const auto named
        = std::find_if(takes.begin(), takes.end(), [](const TakeInfo& take) { return !take.soundRoll.empty(); });
    if (named != takes.end())
        soundRoll = QString::fromStdString(named->soundRoll);
    if (soundRoll.isEmpty() && !files.isEmpty())
        soundRoll = QDir(files.first().absolutePath()).dirName();

    updateTakeList();
    enableCreateButton();
}

void SoundReportDialog::scanWavFiles(const QString& folder)
{
    const QDir dir(folder);
    soundRoll = dir.dirName();
    loadTakesFromFiles(
        dir.entryInfoList({ QStringLiteral("*.wav"), QStringLiteral("*.WAV") }, QDir::Files, QDir::Name));
}

void SoundReportDialog::loadTakesFromFiles(const QList<QFileInfo>& files)
{
    takes = readTakes(files);
}

void SoundReportDialog::updateTakeList()
{
    takeTable->setRowCount(0);
    takeTable->setRowCount(static_cast<int>(takes.size()));
    int row = 0;
    for (const TakeInfo& take : takes) {
        const std::array<QString, 6> cells{ QString::fromStdString(take.fileNumber), QString::fromStdString(take.scene),
            QString::fromStdString(take.take), QString::fromStdString(take.project),
            QString::fromStdString(take.soundRoll), formatDuration(take.duration, take.frameRate) };
        int column = 0;
        for (const QString& cell : cells)
            takeTable->setItem(row, column++, new QTableWidgetItem(cell));
        ++row;
    }
    takeTable->resizeColumnsToContents();
}

QString SoundReportDialog::formatTimecode(unsigned long long samples, unsigned int sampleRate, double frameRate)
{
    if (sampleRate == 0 || frameRate == 0.0)
        return QStringLiteral("--:--:--:--");
    return timeText(static_cast<double>(samples) / static_cast<double>(sampleRate), frameRate);
}

QString SoundReportDialog::formatDuration(double seconds, double frameRate)
{
    return timeText(seconds, frameRate > 0.0 ? frameRate : kFallbackFrameRate);
}

QString SoundReportDialog::formatFramerate(double frameRate)
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
