#include "report/SoundReportDialog.h"
#include "tests/report/ReportFixture.h"
#include "tests/support/CommaLocale.h"

namespace {

const QStringList kColumns{ "Name", "Tape", "Start", "End", "Duration", "Tracks", "Scene", "Take", "SoundRoll", "Notes",
    "SampleRate", "BitDepth", "FrameRate" };

const std::string kColumnSection
    = "Column\n"
      "Name\tTape\tStart\tEnd\tDuration\tTracks\tScene\tTake\tSoundRoll\tNotes\tSampleRate\tBitDepth\tFrameRate\n"
      "\nData\n";

std::string headingSection(const std::string& format, const std::string& fps)
{
    return "Heading\nFIELD_DELIM\tTABS\nAUDIO_FORMAT\t" + format + "\nFPS\t" + fps + "\n\n";
}

struct AleFile {
    QMap<QString, QString> heading;
    QStringList columns;
    QList<QStringList> data;
};

/// Reads a log exchange file as an editing system does: three sections in order, each heading line one name and one
/// value, each data line as many fields as there are columns. Any slip fails the test.
AleFile strictlyRead(const std::string& bytes)
{
    AleFile ale;
    const QString text = QString::fromUtf8(bytes.data(), static_cast<qsizetype>(bytes.size()));
    EXPECT_TRUE(text.endsWith('\n'));
    EXPECT_FALSE(text.contains('\r'));
    QStringList lines = text.split('\n');
    lines.removeLast();
    const auto next = [&lines] { return lines.isEmpty() ? QString("(end)") : lines.takeFirst(); };

    EXPECT_EQ(next(), "Heading");
    for (QString line = next(); !line.isEmpty() && line != "(end)"; line = next()) {
        EXPECT_EQ(line.count('\t'), 1) << line.toStdString();
        ale.heading[line.section('\t', 0, 0)] = line.section('\t', 1);
    }
    EXPECT_EQ(ale.heading["FIELD_DELIM"], "TABS");
    EXPECT_EQ(next(), "Column");
    ale.columns = next().split('\t');
    EXPECT_EQ(next(), "");
    EXPECT_EQ(next(), "Data");
    for (const QString& line : lines) {
        ale.data.append(line.split('\t'));
        EXPECT_EQ(ale.data.last().size(), ale.columns.size()) << line.toStdString();
    }
    return ale;
}

class AleReport : public ReportFixture {
protected:
    std::string report(const QList<QString>& paths)
    {
        SoundReportDialog dialog(paths, nullptr);
        EXPECT_TRUE(dialog.generateAleReport(path("report.ale")));
        return readBytes(folder.file("report.ale"));
    }

    QStringList dataLine(const std::string& name, const Recording& file)
    {
        const AleFile ale = strictlyRead(report({ addTake(name, file) }));
        return ale.data.size() == 1 ? ale.data.first() : QStringList(13);
    }
};

} // namespace

TEST_F(AleReport, aPlainTakeGivesExactlyTheseBytes)
{
    const Recording file{ .scene = "12A",
        .take = "3",
        .tape = "ROLL7",
        .note = "good",
        .frameRate = "25/1",
        .timeReference = 48000ull * 3723,
        .timestampRate = 48000,
        .channels = 2,
        .trackNames = { "Boom", "Lav" },
        .seconds = 30 };
    EXPECT_EQ(report({ addTake("take3.wav", file) }),
        headingSection("48kHz 24-bit", "25.000") + kColumnSection
            + "take3\tROLL7\t01:02:03:00\t01:02:33:00\t00:00:30:00\t2\t12A\t3\tROLL7\tgood\t48000\t24\t25nd-C\n");
}

TEST_F(AleReport, aListWithoutTakesGivesTheDefaultHeadingAndNoData)
{
    EXPECT_EQ(report({}), headingSection("48kHz 24-bit", "23.976") + kColumnSection);
}

TEST_F(AleReport, theUsualFirstTakeGivesTheSameHeadingAsTheDefaults)
{
    const std::string text = report({ addTake("a.wav", { .frameRate = "23.976" }) });
    const std::string heading = headingSection("48kHz 24-bit", "23.976");
    EXPECT_EQ(text.substr(0, heading.size()), heading);
}

TEST_F(AleReport, theHeadingTruncatesTheRate)
{
    EXPECT_EQ(strictlyRead(report({ addTake("a.wav", { .sampleRate = 44100, .bits = 16 }) })).heading["AUDIO_FORMAT"],
        "44kHz 16-bit");
}

TEST_F(AleReport, aFileWithoutMetadataGivesZerosAndEmptyFields)
{
    writeBytes(folder.file("junk.wav"), "no recording");
    EXPECT_EQ(report({ path("junk.wav") }),
        headingSection("0kHz 0-bit", "0.000") + kColumnSection + "junk\t\t\t\t00:00:00:00\t0\t\t\t\t\t0\t0\t\n");
}

TEST_F(AleReport, aFirstTakeWithoutFrameRateGivesZeroFps)
{
    EXPECT_EQ(strictlyRead(report({ addTake("a.wav", { .frameRate = "" }) })).heading["FPS"], "0.000");
}

TEST_F(AleReport, theNameLosesOnlyAFinalWav)
{
    EXPECT_EQ(dataLine("FILE.WAV", {}).first(), "FILE");
    EXPECT_EQ(dataLine("name.wave", {}).first(), "name.wave");
}

TEST_F(AleReport, lineEndsAndTabsOfANoteBecomeBlanks)
{
    EXPECT_EQ(dataLine("a.wav", { .note = "line one\r\nline two" })[9], "line one  line two");
    EXPECT_EQ(dataLine("b.wav", { .note = "a\tb\nc\rd" })[9], "a b c d");
}

TEST_F(AleReport, aTabInAnotherTextGoesOutAsItStands)
{
    const std::string text = report({ addTake("a.wav", { .scene = "1\t2" }) });
    EXPECT_NE(text.find("\t1\t2\t"), std::string::npos);
}

TEST_F(AleReport, nothingIsQuoted)
{
    EXPECT_EQ(dataLine("a.wav", { .scene = "1,\"A\"", .note = "x, \"y\"" })[6], "1,\"A\"");
    EXPECT_EQ(dataLine("a.wav", { .scene = "1,\"A\"", .note = "x, \"y\"" })[9], "x, \"y\"");
}

TEST_F(AleReport, mixedRatesKeepTheirOwnColumnsUnderTheFirstTakesHeading)
{
    const AleFile ale = strictlyRead(report({
        addTake("a.wav", { .scene = "2", .frameRate = "24", .sampleRate = 96000, .bits = 32 }),
        addTake("b.wav", { .scene = "1", .frameRate = "25", .sampleRate = 48000, .bits = 24 }),
    }));
    EXPECT_EQ(ale.heading["AUDIO_FORMAT"], "48kHz 24-bit");
    EXPECT_EQ(ale.heading["FPS"], "25.000");
    ASSERT_EQ(ale.data.size(), 2);
    EXPECT_EQ(ale.data[0].mid(10), (QStringList{ "48000", "24", "25nd-C" }));
    EXPECT_EQ(ale.data[1].mid(10), (QStringList{ "96000", "32", "24nd-C" }));
}

TEST_F(AleReport, aStrictReaderFindsEveryColumn)
{
    const AleFile ale = strictlyRead(report({ addTake("\xC3\x84.wav",
        { .scene = "\xE6\x97\xA5", .take = "1", .tape = "R\xC3\xB6lle", .frameRate = "25/1", .channels = 1 }) }));
    EXPECT_EQ(ale.columns, kColumns);
    ASSERT_EQ(ale.data.size(), 1);
    EXPECT_EQ(ale.data[0],
        (QStringList{ QString::fromUtf8("\xC3\x84"), QString::fromUtf8("R\xC3\xB6lle"), "", "", "00:00:00:00", "1",
            QString::fromUtf8("\xE6\x97\xA5"), "1", QString::fromUtf8("R\xC3\xB6lle"), "", "48000", "24", "25nd-C" }));
}

TEST_F(AleReport, theTapeIsTheTakesOwnAndNotTheRollsName)
{
    const AleFile ale = strictlyRead(
        report({ addTake("a.wav", { .scene = "1", .tape = "T1" }), addTake("b.wav", { .scene = "2" }) }));
    ASSERT_EQ(ale.data.size(), 2);
    EXPECT_EQ(ale.data[0][1], "T1");
    EXPECT_EQ(ale.data[1][1], "");
}

TEST_F(AleReport, aCommaLocaleChangesNothing)
{
    const CommaLocale comma;
    if (!comma.works())
        GTEST_SKIP() << "no locale with a decimal comma on this machine";
    const AleFile ale = strictlyRead(report({ addTake("a.wav", { .frameRate = "24000/1001", .sampleRate = 192000 }) }));
    EXPECT_EQ(ale.heading["FPS"], "23.976");
    EXPECT_EQ(ale.heading["AUDIO_FORMAT"], "192kHz 24-bit");
    EXPECT_EQ(ale.data.first().mid(10), (QStringList{ "192000", "24", "23.98nd-C" }));
}

TEST_F(AleReport, aTargetThatCannotBeOpenedIsAFailure)
{
    SoundReportDialog dialog({ addTake("a.wav", {}) }, nullptr);
    EXPECT_FALSE(dialog.generateAleReport(path("missing/report.ale")));
    EXPECT_FALSE(dialog.generateAleReport(path("")));
    EXPECT_FALSE(dialog.generateAleReport("/proc/report"));
    EXPECT_FALSE(dialog.generateAleReport(""));
}

TEST_F(AleReport, aReadOnlyFolderOrFileIsAFailure)
{
    SoundReportDialog dialog({ addTake("a.wav", {}) }, nullptr);
    withReadOnlyTargets([&dialog](const QString& inFolder, const QString& file) {
        EXPECT_FALSE(dialog.generateAleReport(inFolder));
        EXPECT_FALSE(dialog.generateAleReport(file));
    });
}

TEST_F(AleReport, aFullDiskIsNotNoticed)
{
    SoundReportDialog dialog({ addTake("a.wav", { .note = std::string(300000, 'n') }) }, nullptr);
    EXPECT_TRUE(dialog.generateAleReport("/dev/full"));
}
