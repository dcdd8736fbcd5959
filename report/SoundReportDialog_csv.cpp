#include "report/SoundReportDialog.h"

#include "report/ReportFile.h"

#include <QTextStream>

#include <algorithm>

namespace {

const char* const kHeader = "File Number,Filename,Scene,Take,Timecode In,Timecode Out,Duration,Sample Rate,Bit Depth,"
                            "Frame Rate,Track Count,Track Names,Notes\n";

QString escaped(const std::string& value)
{
    return SoundReportDialog::escapeCSV(QString::fromStdString(value));
}

void writeLine(QTextStream& out, const TakeInfo& take)
{
    for (const std::string* text :
        { &take.fileNumber, &take.filename, &take.scene, &take.take, &take.timecodeIn, &take.timecodeOut })
        out << escaped(*text) << ',';
    out << SoundReportDialog::escapeCSV(SoundReportDialog::formatDuration(take.duration, take.frameRate)) << ','
        << take.sampleRate << ',' << take.bitDepth << ','
        << SoundReportDialog::escapeCSV(SoundReportDialog::formatFramerate(take.frameRate)) << ',' << take.tracks.size()
        << ',' << SoundReportDialog::escapeCSV(joinedTracks(take, QStringLiteral("; "))) << ',' << escaped(take.notes)
        << '\n';
}

} // namespace

QString SoundReportDialog::escapeCSV(const QString& value)
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

bool SoundReportDialog::generateCsvReport(const QString& filePath)
{
    QFile file(filePath);
    if (!openReportFile(file))
        return false;
    QTextStream out(&file);
    out.setEncoding(QStringConverter::Utf8);
    out << kHeader;
    for (const TakeInfo& take : takes)
        writeLine(out, take);
    out.flush();
    file.close();
    return true;
}
