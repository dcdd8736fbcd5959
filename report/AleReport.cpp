#include "report/AleReport.h"

#include "report/ReportFile.h"
#include "report/ReportTexts.h"
#include "report/TakeInfo.h"

#include <QTextStream>

namespace {

constexpr char kColumns[]
    = "Name\tTape\tStart\tEnd\tDuration\tTracks\tScene\tTake\tSoundRoll\tNotes\tSampleRate\tBitDepth\tFrameRate\n";
constexpr uint32_t kHertzPerKilohertz = 1000;

// The heading has room for one rate: the whole roll is described by its first take.
void writeHeading(QTextStream& out, const std::vector<TakeInfo>& takes)
{
    out << "Heading\nFIELD_DELIM\tTABS\n";
    if (takes.empty()) {
        out << "AUDIO_FORMAT\t48kHz 24-bit\nFPS\t23.976\n\n";
        return;
    }
    const TakeInfo& first = takes.front();
    out << "AUDIO_FORMAT\t" << first.sampleRate / kHertzPerKilohertz << "kHz " << first.bitDepth << "-bit\n"
        << "FPS\t" << QString::number(first.frameRate, 'f', 3) << "\n\n";
}

// Of all texts only the note may come with line feeds by its nature; the others go out as they stand.
QString noteOnOneLine(const TakeInfo& take)
{
    QString note = QString::fromStdString(take.notes);
    for (const char separator : { '\t', '\n', '\r' })
        note.replace(QLatin1Char(separator), QLatin1Char(' '));
    return note;
}

void writeLine(QTextStream& out, const TakeInfo& take)
{
    const QString roll = QString::fromStdString(take.soundRoll);
    out << nameWithoutWav(take) << '\t' << roll << '\t' << QString::fromStdString(take.timecodeIn) << '\t'
        << QString::fromStdString(take.timecodeOut) << '\t' << reportDuration(take) << '\t' << take.tracks.size()
        << '\t' << QString::fromStdString(take.scene) << '\t' << QString::fromStdString(take.take) << '\t' << roll
        << '\t' << noteOnOneLine(take) << '\t' << take.sampleRate << '\t' << take.bitDepth << '\t'
        << reportFrameRate(take.frameRate) << '\n';
}

} // namespace

void writeAle(QTextStream& out, const std::vector<TakeInfo>& takes)
{
    writeHeading(out, takes);
    out << "Column\n" << kColumns << "\nData\n";
    for (const TakeInfo& take : takes)
        writeLine(out, take);
}

bool writeAleReport(const QString& path, const std::vector<TakeInfo>& takes)
{
    return writeReportFile(path, takes, writeAle);
}
