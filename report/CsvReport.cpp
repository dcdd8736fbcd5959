#include "report/CsvReport.h"

#include "report/ReportFile.h"
#include "report/ReportTexts.h"
#include "report/TakeInfo.h"

#include <QTextStream>

namespace {

constexpr char kHeader[] = "File Number,Filename,Scene,Take,Timecode In,Timecode Out,Duration,Sample Rate,Bit Depth,"
                           "Frame Rate,Track Count,Track Names,Notes";

QString field(const std::string& value)
{
    return csvField(QString::fromStdString(value));
}

void writeLine(QTextStream& out, const TakeInfo& take)
{
    for (const std::string* text :
        { &take.fileNumber, &take.filename, &take.scene, &take.take, &take.timecodeIn, &take.timecodeOut })
        out << field(*text) << ',';
    out << csvField(reportDuration(take)) << ',' << take.sampleRate << ',' << take.bitDepth << ','
        << csvField(reportFrameRate(take.frameRate)) << ',' << take.tracks.size() << ','
        << csvField(joinedTracks(take, QStringLiteral("; "))) << ',' << field(take.notes);
}

const char* yesOrNo(bool flag)
{
    return flag ? "yes" : "no";
}

} // namespace

void writeCsv(QTextStream& out, const std::vector<TakeInfo>& takes)
{
    out << kHeader << '\n';
    for (const TakeInfo& take : takes) {
        writeLine(out, take);
        out << '\n';
    }
}

void writeCsvWithFlags(QTextStream& out, const std::vector<TakeInfo>& takes)
{
    out << kHeader << ",Circled,Wild\n";
    for (const TakeInfo& take : takes) {
        writeLine(out, take);
        out << ',' << yesOrNo(take.circled) << ',' << yesOrNo(take.wildTrack) << '\n';
    }
}

bool writeCsvReport(const QString& path, const std::vector<TakeInfo>& takes)
{
    return writeReportFile(path, takes, writeCsv);
}
