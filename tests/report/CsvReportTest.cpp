#include "report/SoundReportDialog.h"
#include "tests/report/ReportFixture.h"
#include "tests/support/CommaLocale.h"
#include "tests/support/WavBuilder.h"

#include <QJsonArray>
#include <QJsonDocument>

namespace {

const std::string kHeader = "File Number,Filename,Scene,Take,Timecode In,Timecode Out,Duration,Sample Rate,Bit Depth,"
                            "Frame Rate,Track Count,Track Names,Notes\n";

class CsvReport : public ReportFixture {
protected:
    /// The bytes of the report over `paths`.
    std::string report(const QList<QString>& paths)
    {
        SoundReportDialog dialog(paths, nullptr);
        EXPECT_TRUE(dialog.generateCsvReport(path("report.csv")));
        return readBytes(folder.file("report.csv"));
    }

    std::string line(const Recording& file)
    {
        const std::string text = report({ addTake("a.wav", file) });
        EXPECT_EQ(text.substr(0, kHeader.size()), kHeader);
        return text.substr(std::min(kHeader.size(), text.size()));
    }

    /// What Python's csv module makes of the report that was written last.
    QList<QStringList> readBack() const
    {
        const QString script
            = QStringLiteral("import csv,json,sys\n"
                             "with open(sys.argv[1], newline='', encoding='utf-8') as f: "
                             "sys.stdout.buffer.write(json.dumps(list(csv.reader(f, strict=True))).encode())");
        const CommandResult result = runCommand("python3", { "-c", script, path("report.csv") });
        EXPECT_EQ(result.exitCode, 0) << result.err.toStdString();
        QList<QStringList> rows;
        for (const QJsonValue& row : QJsonDocument::fromJson(result.out.toUtf8()).array()) {
            QStringList fields;
            for (const QJsonValue& field : row.toArray())
                fields << field.toString();
            rows.append(fields);
        }
        return rows;
    }
};

} // namespace

TEST_F(CsvReport, aPlainTakeGivesExactlyThisLine)
{
    Recording file{ .scene = "12",
        .take = "3",
        .frameRate = "25/1",
        .timeReference = 48000ull * 3723,
        .timestampRate = 48000,
        .channels = 1,
        .seconds = 30 };
    const std::string text = report({ addTake("take3.wav", file) });
    EXPECT_EQ(text, kHeader + ",take3.wav,12,3,01:02:03:00,01:02:33:00,00:00:30:00,48000,24,25nd-C,1,Mix,\n");
}

TEST_F(CsvReport, aListWithoutTakesGivesTheHeaderAlone)
{
    EXPECT_EQ(report({}), kHeader);
}

TEST_F(CsvReport, aFileWithoutMetadataGivesEmptyFieldsAndZeros)
{
    writeBytes(folder.file("junk.wav"), "no recording");
    EXPECT_EQ(report({ path("junk.wav") }), kHeader + ",junk.wav,,,,,00:00:00:00,0,0,,0,,\n");
}

TEST_F(CsvReport, theFileNumberStandsInFrontAndTheFilenameKeepsItsExtension)
{
    const std::string text = report({ addTake("AAD0012_01.WAV", { .scene = "1" }) });
    EXPECT_EQ(text.substr(kHeader.size(), 25), "AAD0012,AAD0012_01.WAV,1,");
}

TEST_F(CsvReport, quotesInANoteAreDoubled)
{
    EXPECT_EQ(line({ .note = "He said \"cut\", twice", .frameRate = "25/1", .channels = 1 }),
        ",a.wav,,,,,00:00:00:00,48000,24,25nd-C,1,Mix,\"He said \"\"cut\"\", twice\"\n");
}

TEST_F(CsvReport, aNoteOfSeveralLinesStaysOneField)
{
    EXPECT_EQ(line({ .note = "one\ntwo", .frameRate = "25/1", .channels = 1 }),
        ",a.wav,,,,,00:00:00:00,48000,24,25nd-C,1,Mix,\"one\ntwo\"\n");
    const QList<QStringList> rows = readBack();
    ASSERT_EQ(rows.size(), 2);
    EXPECT_EQ(rows[1].last(), "one\ntwo");
}

TEST_F(CsvReport, aSceneIsQuotedOnlyIfItHoldsAComma)
{
    EXPECT_EQ(line({ .scene = "12,A" }).substr(0, 14), ",a.wav,\"12,A\",");
    EXPECT_EQ(line({ .scene = "12A" }).substr(0, 11), ",a.wav,12A,");
}

TEST_F(CsvReport, trackNamesAreJoinedWithSemicolonAndBlank)
{
    EXPECT_NE(line({ .channels = 2 }).find(",2,Mix; Track1,"), std::string::npos);
}

TEST_F(CsvReport, trackNamesAreQuotedAsOneField)
{
    EXPECT_NE(line({ .trackNames = { "Boom", "Lav, spare" } }).find(",2,\"Boom; Lav, spare\","), std::string::npos);
}

TEST_F(CsvReport, takesStandInSortedOrder)
{
    report({ addTake("b.wav", { .scene = "2" }), addTake("a.wav", { .scene = "10" }) });
    const QList<QStringList> rows = readBack();
    ASSERT_EQ(rows.size(), 3);
    EXPECT_EQ(rows[1][2], "10");
    EXPECT_EQ(rows[2][2], "2");
}

TEST_F(CsvReport, anIndependentReaderFindsEveryField)
{
    const QString scene = QString::fromUtf8("\xC3\x9C"
                                            "ber, \"alles\"");
    const QString note = QString::fromUtf8("\xE6\x97\xA5\xE6\x9C\xAC\r\n \ttail\xF0\x9F\x8E\xAC;");
    const Recording file{ .scene = scene.toStdString(),
        .take = "3; 4",
        .note = note.toStdString(),
        .frameRate = "30000/1001",
        .timeReference = 44100,
        .timestampRate = 44100,
        .sampleRate = 44100,
        .bits = 16,
        .trackNames = { "Boom", "\"A\", B" },
        .seconds = 2 };
    report({ addTake("AAD0001_a,b.wav", file) });
    const QList<QStringList> rows = readBack();
    ASSERT_EQ(rows.size(), 2);
    ASSERT_EQ(rows[0].size(), 13);
    EXPECT_EQ(rows[1],
        (QStringList{ "AAD0001", "AAD0001_a,b.wav", scene, "3; 4", "00:00:01:00", "00:00:03:00", "00:00:02:00", "44100",
            "16", "29.97df-C", "2", "Boom; \"A\", B", note }));
}

TEST_F(CsvReport, textIsUtf8WithoutByteOrderMark)
{
    const std::string text = report({ addTake("a.wav", { .scene = "\xC3\x84\xE2\x80\x94" }) });
    EXPECT_EQ(text.substr(0, 4), "File");
    EXPECT_NE(text.find(",a.wav,\xC3\x84\xE2\x80\x94,"), std::string::npos);
}

TEST_F(CsvReport, aCommaLocaleChangesNothing)
{
    const CommaLocale comma;
    if (!comma.works())
        GTEST_SKIP() << "no locale with a decimal comma on this machine";
    Recording file{ .scene = "1",
        .frameRate = "23.976",
        .timeReference = 48000ull * 3600,
        .timestampRate = 48000,
        .sampleRate = 192000,
        .channels = 1 };
    EXPECT_EQ(line(file), ",a.wav,1,,01:00:00:00,01:00:00:00,00:00:00:00,192000,24,23.98nd-C,1,Mix,\n");
}

TEST_F(CsvReport, anOlderFileIsReplacedWhole)
{
    writeBytes(folder.file("report.csv"), std::string(100000, 'x'));
    EXPECT_EQ(report({}), kHeader);
}

TEST_F(CsvReport, aTargetThatCannotBeOpenedIsAFailure)
{
    SoundReportDialog dialog({ addTake("a.wav", {}) }, nullptr);
    EXPECT_FALSE(dialog.generateCsvReport(path("missing/report.csv")));
    EXPECT_FALSE(dialog.generateCsvReport(path("")));
    EXPECT_FALSE(dialog.generateCsvReport("/proc/report"));
    EXPECT_FALSE(dialog.generateCsvReport(""));
}

TEST_F(CsvReport, aReadOnlyFolderOrFileIsAFailure)
{
    SoundReportDialog dialog({ addTake("a.wav", {}) }, nullptr);
    withReadOnlyTargets([&dialog](const QString& inFolder, const QString& file) {
        EXPECT_FALSE(dialog.generateCsvReport(inFolder));
        EXPECT_FALSE(dialog.generateCsvReport(file));
    });
}

TEST_F(CsvReport, aFullDiskIsNotNoticed)
{
    SoundReportDialog dialog({ addTake("a.wav", { .note = std::string(300000, 'n') }) }, nullptr);
    EXPECT_TRUE(dialog.generateCsvReport("/dev/full"));
}
