// A program without a single widget writes what the dialog writes.

#include "report/SoundReportDialog.h"
#include "tests/report/ReportFixture.h"
#include "tests/support/RunProcess.h"

namespace {

class TakesAlone : public ReportFixture {
protected:
    /// A roll out of order, with all that asks for care: quotes, line ends, foreign scripts, equal takes' neighbours,
    /// a file without metadata and one that is gone.
    QList<QString> roll()
    {
        writeBytes(folder.file("junk.wav"), "no recording");
        return {
            addTake("AAD0002_1.WAV",
                { .scene = "2",
                    .take = "1",
                    .tape = "R1",
                    .frameRate = "25/1",
                    .channels = 2,
                    .trackNames = { "Boom", "Lav, \"spare\"" } }),
            path("gone.wav"),
            addTake("\xC3\x9C.wav",
                { .scene = "\xE6\x97\xA5,1",
                    .take = "9",
                    .note = "one\ttwo\r\nthree \xF0\x9F\x8E\xAC",
                    .frameRate = "30000/1001",
                    .timeReference = 48000ull * 3723,
                    .timestampRate = 48000,
                    .seconds = 61 }),
            addTake("AAD0001_1.wav", { .scene = "10", .frameRate = "", .sampleRate = 44100, .bits = 16 }),
            path("junk.wav"),
        };
    }

    static std::string reportOf(const char* format, const QList<QString>& paths)
    {
        std::vector<std::string> command{ TAKES_ALONE, format };
        for (const QString& each : paths)
            command.push_back(each.toStdString());
        const ProcessResult result = runProcess(command, { "DISPLAY=", "QT_QPA_PLATFORM=none" });
        EXPECT_EQ(result.exitCode, 0) << result.output;
        return result.output;
    }
};

} // namespace

TEST_F(TakesAlone, theCsvReportHasTheBytesOfTheDialogs)
{
    const QList<QString> paths = roll();
    SoundReportDialog dialog(paths, nullptr);
    ASSERT_TRUE(dialog.generateCsvReport(path("report.csv")));
    const std::string expected = readBytes(folder.file("report.csv"));
    EXPECT_NE(expected.find("\"one\ttwo\r\nthree"), std::string::npos);
    EXPECT_EQ(reportOf("csv", paths), expected);
}

TEST_F(TakesAlone, theAleReportHasTheBytesOfTheDialogs)
{
    const QList<QString> paths = roll();
    SoundReportDialog dialog(paths, nullptr);
    ASSERT_TRUE(dialog.generateAleReport(path("report.ale")));
    const std::string expected = readBytes(folder.file("report.ale"));
    EXPECT_NE(expected.find("AAD0002_1\tR1\t"), std::string::npos);
    EXPECT_EQ(reportOf("ale", paths), expected);
}

TEST_F(TakesAlone, noFilesGiveTheDialogsEmptyReports)
{
    SoundReportDialog dialog(QList<QString>{}, nullptr);
    ASSERT_TRUE(dialog.generateCsvReport(path("report.csv")));
    ASSERT_TRUE(dialog.generateAleReport(path("report.ale")));
    EXPECT_EQ(reportOf("csv", {}), readBytes(folder.file("report.csv")));
    EXPECT_EQ(reportOf("ale", {}), readBytes(folder.file("report.ale")));
}
