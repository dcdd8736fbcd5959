// The report writers against the least that could do the same work.
//  - CSV of 5000 takes, reading included, against reading the same files and doing nothing with them; and the same with
//    the whole dialog around it, which fills its table too.
//  - PDF of 200 takes against a bare text document that holds the same table, printed alike.
//  - Composing the sheet of 200, 1000 and 5000 takes: the time per take stays level.

#include "core/BwfMetadata.h"
#include "core/BwfMetadataReader.h"
#include "report/ReportSettings.h"
#include "report/SoundReportDialog.h"
#include "report/SoundReportDocument.h"
#include "tests/support/TempFolder.h"
#include "tests/support/WavBuilder.h"

#include <QApplication>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextTable>
#include <QTextTableFormat>

#include <benchmark/benchmark.h>

#include <string>
#include <vector>

namespace {

constexpr int kCsvTakes = 5000;
constexpr int kPdfTakes = 200;

/// A folder of small takes with all that a recorder writes but the audio.
class Roll {
public:
    explicit Roll(int count)
    {
        for (int i = 0; i < count; ++i) {
            const std::string name = folder.file("AAD" + std::to_string(10000 + i) + "_1.wav");
            BextFields bext;
            bext.timeReference = 48000ull * 3600;
            bext.description = "sSCENE=12A\r\nsTAKE=3\r\n";
            WavBuilder().fmt(48000, 2, 24).bext(bext).ixml(ixmlText(i)).dataFrames(8).write(name);
            paths.append(QString::fromStdString(name));
        }
    }

    QList<QString> paths;
    TempFolder folder;

private:
    static std::string ixmlText(int i)
    {
        return "<BWFXML><PROJECT>Show</PROJECT><SCENE>" + std::to_string(i / 5) + "</SCENE><TAKE>"
            + std::to_string(i % 5 + 1)
            + "</TAKE><TAPE>ROLL1</TAPE><NOTE>plane, then quiet</NOTE><SPEED><TIMECODE_RATE>25/1</TIMECODE_RATE>"
              "<TIMESTAMP_SAMPLE_RATE>48000</TIMESTAMP_SAMPLE_RATE></SPEED><TRACK_LIST>"
              "<TRACK><CHANNEL_INDEX>1</CHANNEL_INDEX><NAME>Boom</NAME></TRACK>"
              "<TRACK><CHANNEL_INDEX>2</CHANNEL_INDEX><NAME>Lav</NAME></TRACK></TRACK_LIST></BWFXML>";
    }
};

std::vector<TakeInfo> madeTakes(int count)
{
    std::vector<TakeInfo> takes(static_cast<size_t>(count));
    int number = 0;
    for (TakeInfo& take : takes) {
        take.filename = "take" + std::to_string(++number) + ".wav";
        take.scene = std::to_string(number / 5);
        take.take = std::to_string(number % 5 + 1);
        take.notes = "plane, then quiet";
        take.tracks = { "Boom", "Lav" };
        take.timecodeIn = "10:00:00:00";
        take.duration = 30.0;
        take.frameRate = 25.0;
        take.fileDate = QDateTime(QDate(2024, 5, 6), QTime(7, 8));
    }
    return takes;
}

/// The same texts in the same cells of the same widths, in the default font, in one edit block: no title, no details.
void composeBareTable(QTextDocument& document, const std::vector<TakeInfo>& takes)
{
    document.setPageSize(QSizeF(648.0, 864.0));
    document.setDefaultFont(QFont("Calibri", 8));
    QTextTableFormat format;
    format.setBorder(1.0);
    format.setCellPadding(4.0);
    format.setCellSpacing(0.0);
    format.setWidth(QTextLength(QTextLength::PercentageLength, 100));
    QList<QTextLength> widths;
    for (const double percent : { 35, 12, 8, 12, 10, 23 })
        widths.append(QTextLength(QTextLength::PercentageLength, percent));
    format.setColumnWidthConstraints(widths);
    QTextCursor cursor(&document);
    cursor.beginEditBlock();
    QTextTable& table = *cursor.insertTable(2 * static_cast<int>(takes.size()) + 1, 6, format);
    const auto put = [&table](int row, int column, const std::string& text) {
        table.cellAt(row, column).firstCursorPosition().insertText(QString::fromStdString(text));
    };
    int row = 1;
    for (const TakeInfo& take : takes) {
        put(row, 0, take.filename + "\nTracks: Boom, Lav");
        put(row, 1, take.scene);
        put(row, 2, take.take);
        put(row, 3, "25nd-C");
        put(row, 4, "00:00:30");
        put(row, 5, take.timecodeIn);
        table.mergeCells(row + 1, 0, 1, 6);
        put(row + 1, 0, "Notes: " + take.notes);
        row += 2;
    }
    cursor.endEditBlock();
}

void readingAlone(benchmark::State& state)
{
    const Roll roll(kCsvTakes);
    for (auto _ : state) {
        for (const QString& path : roll.paths)
            benchmark::DoNotOptimize(BwfMetadataReader::readMetadata(path.toStdString()));
    }
}

void readingAndCsv(benchmark::State& state)
{
    const Roll roll(kCsvTakes);
    const QString target = QString::fromStdString(roll.folder.file("report.csv"));
    SoundReportDialog dialog(QList<QString>{}, nullptr);
    for (auto _ : state) {
        QList<QFileInfo> files;
        for (const QString& path : roll.paths)
            files.append(QFileInfo(path));
        dialog.loadTakesFromFiles(files);
        benchmark::DoNotOptimize(dialog.generateCsvReport(target));
    }
}

void dialogAndCsv(benchmark::State& state)
{
    const Roll roll(kCsvTakes);
    const QString target = QString::fromStdString(roll.folder.file("report.csv"));
    for (auto _ : state) {
        SoundReportDialog dialog(roll.paths, nullptr);
        benchmark::DoNotOptimize(dialog.generateCsvReport(target));
    }
}

void bareTablePdf(benchmark::State& state)
{
    const TempFolder folder;
    const std::vector<TakeInfo> takes = madeTakes(kPdfTakes);
    for (auto _ : state) {
        QTextDocument document;
        composeBareTable(document, takes);
        printToPdf(document, QString::fromStdString(folder.file("bare.pdf")));
    }
}

void reportPdf(benchmark::State& state)
{
    const TempFolder folder;
    const std::vector<TakeInfo> takes = madeTakes(kPdfTakes);
    for (auto _ : state) {
        QTextDocument document;
        composeSoundReport(document, takes, {}, {});
        printToPdf(document, QString::fromStdString(folder.file("report.pdf")));
    }
}

void composeTakes(benchmark::State& state)
{
    const std::vector<TakeInfo> takes = madeTakes(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        QTextDocument document;
        composeSoundReport(document, takes, {}, {});
        benchmark::DoNotOptimize(document.characterCount());
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void printTakes(benchmark::State& state)
{
    const TempFolder folder;
    const std::vector<TakeInfo> takes = madeTakes(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        QTextDocument document;
        composeSoundReport(document, takes, {}, {});
        printToPdf(document, QString::fromStdString(folder.file("report.pdf")));
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

BENCHMARK(readingAlone)->Unit(benchmark::kMillisecond);
BENCHMARK(readingAndCsv)->Unit(benchmark::kMillisecond);
BENCHMARK(dialogAndCsv)->Unit(benchmark::kMillisecond);
BENCHMARK(bareTablePdf)->Unit(benchmark::kMillisecond);
BENCHMARK(reportPdf)->Unit(benchmark::kMillisecond);
BENCHMARK(composeTakes)->Arg(200)->Arg(1000)->Arg(5000)->Unit(benchmark::kMillisecond);
BENCHMARK(printTakes)->Arg(200)->Arg(1000)->Arg(5000)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char** argv)
{
    const TempFolder home;
    qputenv("HOME", QByteArray::fromStdString(home.path().string()));
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
