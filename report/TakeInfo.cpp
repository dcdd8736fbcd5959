#include "report/TakeInfo.h"

#include "app/files/WavSuffix.h"
#include "core/BwfMetadata.h"
#include "core/BwfMetadataReader.h"
#include "report/ReportTexts.h"

#include <QDir>

#include <algorithm>
#include <array>
#include <cstdio>
#include <limits>
#include <tuple>
#include <utility>

namespace {

constexpr size_t kShortNumberSource = 6; // Bytes that a file number needs before its last four become the short number.
constexpr size_t kShortNumberDigits = 4;

// 2 to the power of 64: the first value past the integers that the truncation below gives.
constexpr double kUnsignedLimit = 18446744073709551616.0;

// Truncates and stays within the type: file headers can claim lengths and rates that no integer holds.
unsigned long long truncated(double value)
{
    if (!(value > 0.0))
        return 0;
    if (value >= kUnsignedLimit)
        return std::numeric_limits<unsigned long long>::max();
    return static_cast<unsigned long long>(value);
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
    const unsigned long long length = truncated(metadata.duration * rate);
    take.timecodeIn = reportTimecode(start, rate, metadata.frameRate).toStdString();
    take.timecodeOut = reportTimecode(start + length, rate, metadata.frameRate).toStdString();
}

std::vector<std::string> trackNames(const BwfMetadata& metadata)
{
    std::vector<std::pair<int32_t, std::string>> ordered;
    ordered.reserve(metadata.tracks.size());
    for (const BwfTrack& track : metadata.tracks)
        ordered.emplace_back(track.channelIndex, track.name);
    std::sort(ordered.begin(), ordered.end());

    std::vector<std::string> names;
    names.reserve(ordered.empty() ? metadata.channels : ordered.size());
    for (auto& entry : ordered)
        names.push_back(std::move(entry.second));
    if (!names.empty())
        return names;
    for (uint32_t channel = 0; channel < metadata.channels; ++channel)
        names.push_back(channel == 0 ? "Mix" : std::string("Track").append(std::to_string(channel)));
    return names;
}

bool comesBefore(const TakeInfo& a, const TakeInfo& b)
{
    return std::tie(a.fileNumber, a.scene, a.take) < std::tie(b.fileNumber, b.scene, b.take);
}

} // namespace

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
    take.circled = metadata.circled;
    take.wildTrack = metadata.wildTrack;
    take.shortNumber = shortNumberOf(take.fileNumber, position);
    fillTimecodes(take, metadata);
    take.tracks = trackNames(metadata);
    return take;
}

void sortTakes(std::vector<TakeInfo>& takes)
{
    std::sort(takes.begin(), takes.end(), comesBefore);
}

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
    sortTakes(result);
    return result;
}

QList<QFileInfo> filesAmong(const QList<QString>& paths)
{
    QList<QFileInfo> files;
    for (const QString& path : paths) {
        const QFileInfo file(path);
        if (file.isFile())
            files.append(file);
    }
    return files;
}

QList<QFileInfo> wavFilesIn(const QString& folder)
{
    QList<QFileInfo> files = QDir(folder).entryInfoList(QDir::Files, QDir::Name);
    files.removeIf([](const QFileInfo& file) { return !hasWavSuffix(file); });
    return files;
}

QString soundRollOf(const std::vector<TakeInfo>& takes, const QList<QFileInfo>& files)
{
    const auto named
        = std::find_if(takes.begin(), takes.end(), [](const TakeInfo& take) { return !take.soundRoll.empty(); });
    // A tape name of nothing but a byte order mark is a text of no characters.
    QString roll = named == takes.end() ? QString() : QString::fromStdString(named->soundRoll);
    if (!roll.isEmpty() || files.isEmpty())
        return roll;
    return QDir(files.first().absolutePath()).dirName();
}
