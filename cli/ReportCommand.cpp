#include "cli/ReportCommand.h"

#include "app/settings/ConfigManager.h"
#include "cli/CommandLine.h"
#include "cli/FileArguments.h"
#include "cli/FileFacts.h"
#include "cli/FileRun.h"
#include "cli/NewFile.h"
#include "cli/PdfReport.h"
#include "cli/WavFile.h"
#include "core/BwfMetadataReader.h"
#include "report/AleReport.h"
#include "report/CsvReport.h"
#include "report/ReportSettings.h"
#include "report/TakeInfo.h"

#include <QFile>
#include <QFileInfo>
#include <QTextStream>

#include <sys/stat.h>

namespace {

/// An option that gives one of the production details.
struct DetailOption {
    std::string_view name;
    std::string ReportSettings::*value;
};

constexpr DetailOption kDetailOptions[] = {
    { "project", &ReportSettings::projectName },
    { "director", &ReportSettings::director },
    { "mixer", &ReportSettings::soundMixer },
    { "phone", &ReportSettings::mixerPhone },
    { "email", &ReportSettings::mixerEmail },
    { "logo", &ReportSettings::companyLogoPath },
};

/// The settings file's entries in an object of their own. Nothing is set in it, so nothing is ever saved.
class SettingsFile : public ConfigManager { };

ReportSettings settingsOf(const Arguments& arguments)
{
    SettingsFile config;
    const std::optional<std::string> path = arguments.value("settings");
    const bool isRead = config.loadConfig(path.value_or(std::string())); // The window's may not be there yet.
    if (path && (path->empty() || !isRead))
        throw RunError{ *path, "these settings can't be read" };
    ReportSettings settings = loadReportSettings(config);
    for (const DetailOption& option : kDetailOptions)
        settings.*option.value = arguments.value(option.name).value_or(settings.*option.value);
    return settings;
}

/// What the reports of the window are made of.
struct Roll {
    std::vector<TakeInfo> takes;
    QList<QFileInfo> files;
};

// The date of a file whose name Qt can't spell has to be asked for by its bytes.
QDateTime dateOf(const std::string& path)
{
    struct stat status { };
    return stat(path.c_str(), &status) == 0 ? QDateTime::fromSecsSinceEpoch(status.st_mtime) : QDateTime();
}

void addTake(const std::string& path, Roll& roll)
{
    (void)WavFile(path); // Throws for what is no WAV file: a row of nothing would pass for a take.
    const BwfMetadata record = BwfMetadataReader::readMetadata(path);
    const QFileInfo file(QFile::decodeName(QByteArray::fromStdString(path)));
    TakeInfo take = takeOf(file, record, roll.takes.size() + 1);
    if (!take.fileDate.isValid())
        take.fileDate = dateOf(path);
    roll.files.append(file);
    roll.takes.push_back(std::move(take));
}

std::string textOf(void (*write)(QTextStream& out, const std::vector<TakeInfo>& takes), const Roll& roll)
{
    QByteArray bytes;
    QTextStream stream(&bytes, QIODevice::WriteOnly);
    stream.setEncoding(QStringConverter::Utf8);
    write(stream, roll.takes);
    stream.flush();
    return bytes.toStdString();
}

std::string windowReport(const Arguments& arguments, const std::string& target, Roll& roll)
{
    const std::string format = *arguments.value("format");
    sortTakes(roll.takes);
    if (format == "csv")
        return textOf(arguments.has("circled") ? writeCsvWithFlags : writeCsv, roll);
    if (format == "ale")
        return textOf(writeAle, roll);
    if (roll.takes.empty())
        throw RunError{ target, "there is no take for it" };
    return printPdfReport(target, roll.takes, settingsOf(arguments), soundRollOf(roll.takes, roll.files));
}

AvidClip clipOf(const std::string& path)
{
    const FileFacts facts = readFileFacts(path);
    const BwfMetadata& record = facts.record;
    if (!facts.frameRate)
        throw FileError("no-frame-rate", "left out, since it names no frame rate");
    const std::optional<uint64_t> start = facts.startFrame();
    if (!start)
        throw FileError("no-start", "left out, since it names no start");
    const uint64_t frames = framesInLength(facts.frameCount().value_or(0), *facts.frameRate, facts.startSampleRate);
    if (frames == 0 || record.channels == 0 || record.sampleRate == 0 || record.bitsPerSample == 0)
        throw FileError("no-audio", "left out, since it has no audio");
    return { .fileName = record.fileName,
        .scene = record.scene,
        .take = record.take,
        .soundRoll = record.tape,
        .note = record.note,
        .startFrame = *start,
        .frames = frames,
        .rate = *facts.frameRate,
        .dropFrame = facts.dropFrame,
        .channels = record.channels,
        .sampleRate = record.sampleRate,
        .bitDepth = record.bitsPerSample };
}

// A clip without a roll goes under the name of the first one's, else under that of the report.
std::string avidReport(const Arguments& arguments, const std::string& target, const std::vector<AvidClip>& clips)
{
    if (clips.empty())
        throw RunError{ target, "there is no clip for it" };
    const std::string raster = arguments.value("video-format").value_or("1080");
    AvidHeading heading{ .videoFormat = raster, .tape = {} };
    for (const AvidClip& clip : clips) {
        if (heading.tape.empty())
            heading.tape = clip.soundRoll;
    }
    if (heading.tape.empty())
        heading.tape = QFileInfo(QFile::decodeName(QByteArray::fromStdString(target))).completeBaseName().toStdString();
    return avidAle(heading, clips);
}

// A run that was cut short leaves no report: half of one would look like a whole one.
Exit writeReport(const Arguments& arguments, const std::string& target, Io& io)
{
    const NamedFiles files = namedFiles(arguments, io);
    const bool isAvid = arguments.value("format") == "avid-ale";
    NewFile report(target);
    Roll roll;
    std::vector<AvidClip> clips;
    size_t done = 0;
    const Exit result = forEachFile(files.paths, io,
        { .work =
                [&](const std::string& path, std::string&) {
                    if (isAvid)
                        clips.push_back(clipOf(path));
                    else
                        addTake(path, roll);
                    ++done;
                    return Exit::Ok;
                },
            .failed = [&done](const std::string&, const FileError&, std::string&) { ++done; } });
    if (done == files.paths.size()) {
        report.write(isAvid ? avidReport(arguments, target, clips) : windowReport(arguments, target, roll));
        report.commit();
    }
    return worse(files.exit, result);
}

/// What the options have against each other, in words; empty if nothing.
std::string complaintAbout(const Arguments& arguments)
{
    const std::optional<std::string> format = arguments.value("format");
    if (!format)
        return "--format is missing";
    if (arguments.value("output").value_or("").empty())
        return "-o OUT is missing";
    const auto misplaced
        = [&](std::string_view option, std::string_view wanted) { return arguments.has(option) && format != wanted; };
    if (misplaced("circled", "csv"))
        return "--circled goes with --format csv alone";
    if (misplaced("video-format", "avid-ale"))
        return "--video-format goes with --format avid-ale alone";
    if (misplaced("settings", "pdf"))
        return "--settings goes with --format pdf alone";
    for (const DetailOption& option : kDetailOptions) {
        if (misplaced(option.name, "pdf"))
            return "--" + std::string(option.name) + " goes with --format pdf alone";
    }
    return namesFiles(arguments) ? std::string() : "a FILE is missing";
}

} // namespace

Exit runReport(const Arguments& arguments, Io& io)
{
    const std::string complaint = complaintAbout(arguments);
    if (!complaint.empty())
        return refuseUsage(io, kReportCommand.name, complaint);
    return writeReport(arguments, *arguments.value("output"), io);
}
