// From files to the sorted take list, and the report's own time texts.

#include "report/SoundReportDialog.h"
#include "report/TakeInfo.h"
#include "tests/report/ReportFixture.h"
#include "tests/support/CommaLocale.h"
#include "tests/support/WavBuilder.h"

#include <QDir>
#include <QFile>

#include <limits>

namespace {

class Takes : public ReportFixture {
protected:
    std::vector<TakeInfo> read(const QStringList& paths) const
    {
        QList<QFileInfo> files;
        for (const QString& each : paths)
            files.append(QFileInfo(each));
        return readTakes(files);
    }

    TakeInfo readOne(const std::string& name, const TakeFile& file = {})
    {
        const std::vector<TakeInfo> takes = read({ addTake(name, file) });
        return takes.size() == 1 ? takes.front() : TakeInfo{};
    }

    TakeInfo readBytes(const std::string& bytes)
    {
        writeBytes(folder.file("x.wav"), bytes);
        const std::vector<TakeInfo> takes = read({ path("x.wav") });
        EXPECT_EQ(takes.size(), 1u);
        return takes.front();
    }

    static std::vector<std::string> filenames(const std::vector<TakeInfo>& takes)
    {
        std::vector<std::string> names;
        for (const TakeInfo& take : takes)
            names.push_back(take.filename);
        return names;
    }
};

using Names = std::vector<std::string>;

} // namespace

TEST_F(Takes, everyFieldComesFromItsPlaceInTheFile)
{
    TakeFile file;
    file.scene = "12A";
    file.take = "3";
    file.tape = "ROLL7";
    file.project = "Doc";
    file.note = "plane at the end";
    file.tracks = { "Boom", "Lav" };
    file.timeReference = 48000ull * 3723;
    file.channels = 2;
    file.seconds = 30;
    const TakeInfo take = readOne("AAD0012_01.wav", file);

    EXPECT_EQ(take.fileNumber, "AAD0012");
    EXPECT_EQ(take.shortNumber, "s0012");
    EXPECT_EQ(take.filename, "AAD0012_01.wav");
    EXPECT_EQ(take.scene, "12A");
    EXPECT_EQ(take.take, "3");
    EXPECT_EQ(take.project, "Doc");
    EXPECT_EQ(take.soundRoll, "ROLL7");
    EXPECT_EQ(take.timecodeIn, "01:02:03:00");
    EXPECT_EQ(take.timecodeOut, "01:02:33:00");
    EXPECT_DOUBLE_EQ(take.duration, 30.0);
    EXPECT_EQ(take.notes, "plane at the end");
    EXPECT_EQ(take.tracks, (Names{ "Boom", "Lav" }));
    EXPECT_EQ(take.filePath, folder.file("AAD0012_01.wav"));
    EXPECT_DOUBLE_EQ(take.frameRate, 25.0);
    EXPECT_EQ(take.sampleRate, 48000u);
    EXPECT_EQ(take.bitDepth, 24);
    EXPECT_TRUE(take.isPoly);
}

TEST_F(Takes, theFileDateIsTheModificationTime)
{
    addTake("a.wav", {});
    const QDateTime date(QDate(2024, 2, 29), QTime(13, 14, 15));
    QFile file(path("a.wav"));
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    ASSERT_TRUE(file.setFileTime(date, QFileDevice::FileModificationTime));
    file.close();
    EXPECT_EQ(read({ path("a.wav") }).front().fileDate, date);
}

TEST_F(Takes, aMonoFileIsNotPoly)
{
    EXPECT_FALSE(readOne("a.wav").isPoly);
}

TEST_F(Takes, noFilesGiveNoTakes)
{
    EXPECT_TRUE(read({}).empty());
}

TEST_F(Takes, aVanishedFileIsLeftOutAndTheOthersLoad)
{
    const QString first = addTake("a.wav", {});
    const QString gone = addTake("b.wav", {});
    const QString last = addTake("c.wav", {});
    QFile::remove(gone);
    EXPECT_EQ(filenames(read({ first, gone, last })).size(), 2u);
}

TEST_F(Takes, aShortFileNumberLeavesTheShortNumberToTheCount)
{
    const TakeInfo take = readOne("AAD_x.wav");
    EXPECT_EQ(take.fileNumber, "AAD");
    EXPECT_EQ(take.shortNumber, "s0001");
}

TEST_F(Takes, aFileNumberOfFiveBytesIsTooShortAndOneOfSixIsNot)
{
    EXPECT_EQ(readOne("AAD98_1.wav").shortNumber, "s0001");
    EXPECT_EQ(readOne("AAD987_1.wav").shortNumber, "sD987");
}

TEST_F(Takes, theShortNumberTakesTheLastFourBytesOfTheFileNumber)
{
    const TakeInfo take = readOne("AAD00123_2.wav");
    EXPECT_EQ(take.fileNumber, "AAD00123");
    EXPECT_EQ(take.shortNumber, "s0123");
}

TEST_F(Takes, aLowerCasePrefixGivesNoFileNumber)
{
    EXPECT_EQ(readOne("aad0012_01.wav").fileNumber, "");
}

TEST_F(Takes, aNameWithoutUnderscoreGivesNoFileNumber)
{
    EXPECT_EQ(readOne("AAD0012.wav").fileNumber, "");
}

TEST_F(Takes, anUnderscoreBehindTheFirstDotDoesNotCount)
{
    EXPECT_EQ(readOne("AAD0012.a_b.wav").fileNumber, "");
}

TEST_F(Takes, theBaseNameEndsAtTheFirstDot)
{
    EXPECT_EQ(readOne("AAD0012_01.extra.wav").fileNumber, "AAD0012");
}

TEST_F(Takes, takesWithoutFileNumberSortAheadOfNumberedOnes)
{
    const std::vector<TakeInfo> takes = read({ addTake("AAD0001_1.wav", {}), addTake("zz.wav", {}) });
    EXPECT_EQ(filenames(takes), (Names{ "zz.wav", "AAD0001_1.wav" }));
}

TEST_F(Takes, theRunningNumberFollowsTheLoadOrderAndNotTheSortedOne)
{
    const std::vector<TakeInfo> takes = read({ addTake("b.wav", { .scene = "2" }), addTake("a.wav", { .scene = "1" }),
        path("missing.wav"), addTake("c.wav", { .scene = "3" }) });
    ASSERT_EQ(filenames(takes), (Names{ "a.wav", "b.wav", "c.wav" }));
    EXPECT_EQ(takes[0].shortNumber, "s0002");
    EXPECT_EQ(takes[1].shortNumber, "s0001");
    EXPECT_EQ(takes[2].shortNumber, "s0003");
}

TEST_F(Takes, sceneThenTakeDecideByTheirBytes)
{
    const std::vector<TakeInfo> takes = read({
        addTake("a.wav", { .scene = "9", .take = "1" }),
        addTake("b.wav", { .scene = "10", .take = "9" }),
        addTake("c.wav", { .scene = "10", .take = "10" }),
        addTake("d.wav", { .scene = "\xC3\x84", .take = "1" }),
        addTake("e.wav", { .scene = "a", .take = "1" }),
        addTake("f.wav", { .scene = "B", .take = "1" }),
    });
    EXPECT_EQ(filenames(takes), (Names{ "c.wav", "b.wav", "a.wav", "f.wav", "e.wav", "d.wav" }));
}

TEST_F(Takes, theFileNumberDecidesBeforeTheScene)
{
    const std::vector<TakeInfo> takes
        = read({ addTake("AAD0002_1.wav", { .scene = "1" }), addTake("AAD0001_1.wav", { .scene = "2" }) });
    EXPECT_EQ(filenames(takes), (Names{ "AAD0001_1.wav", "AAD0002_1.wav" }));
}

TEST_F(Takes, filesOfOneTakeAreNotGrouped)
{
    const TakeFile same{ .scene = "1", .take = "1" };
    EXPECT_EQ(read({ addTake("AAD0001_1.wav", same), addTake("AAD0001_2.wav", same) }).size(), 2u);
}

TEST_F(Takes, aMonoFileWithoutTrackMetadataHasTheTrackMix)
{
    EXPECT_EQ(readOne("a.wav").tracks, Names{ "Mix" });
}

TEST_F(Takes, aFileOfThreeChannelsWithoutTrackMetadataHasMixAndNumberedTracks)
{
    EXPECT_EQ(readOne("a.wav", { .channels = 3 }).tracks, (Names{ "Mix", "Track1", "Track2" }));
}

TEST_F(Takes, tracksStandInOrderOfChannelThenNameAndEmptyOnesStay)
{
    const std::string ixml = "<TRACK_LIST>"
                             "<TRACK><CHANNEL_INDEX>10</CHANNEL_INDEX><NAME>ten</NAME></TRACK>"
                             "<TRACK><CHANNEL_INDEX>2</CHANNEL_INDEX><NAME>b</NAME></TRACK>"
                             "<TRACK><CHANNEL_INDEX>2</CHANNEL_INDEX><NAME>a</NAME></TRACK>"
                             "<TRACK><CHANNEL_INDEX>-1</CHANNEL_INDEX><NAME>first</NAME></TRACK>"
                             "<TRACK><CHANNEL_INDEX>11</CHANNEL_INDEX></TRACK>"
                             "</TRACK_LIST>";
    const TakeInfo take = readBytes(WavBuilder().fmt(48000, 2, 24).ixml(ixml).dataFrames(1).bytes());
    EXPECT_EQ(take.tracks, (Names{ "first", "a", "b", "ten", "" }));
}

TEST_F(Takes, aRecordingThatStartsAtMidnightHasNoTimecode)
{
    const TakeInfo take = readOne("a.wav", { .timeReference = 0, .seconds = 10 });
    EXPECT_EQ(take.timecodeIn, "");
    EXPECT_EQ(take.timecodeOut, "");
}

TEST_F(Takes, withoutATimestampRateThereIsNoTimecode)
{
    const TakeInfo take = readOne("a.wav", { .timestampRate = 0, .timeReference = 48000 });
    EXPECT_EQ(take.timecodeIn, "");
    EXPECT_EQ(take.timecodeOut, "");
}

TEST_F(Takes, withoutAFrameRateThereIsNoTimecode)
{
    const TakeInfo take = readOne("a.wav", { .timecodeRate = "", .timeReference = 48000 });
    EXPECT_EQ(take.timecodeIn, "");
    EXPECT_EQ(take.timecodeOut, "");
}

TEST_F(Takes, aNegativeFrameRateGivesNoTimecode)
{
    EXPECT_EQ(readOne("a.wav", { .timecodeRate = "-25", .timeReference = 48000 }).timecodeIn, "");
}

TEST_F(Takes, timecodeCountsInTheTimestampRateAndNotInTheAudioRate)
{
    const TakeInfo take = readOne("a.wav", { .timestampRate = 48048, .timeReference = 48048ull * 100, .seconds = 10 });
    EXPECT_EQ(take.timecodeIn, "00:01:40:00");
    EXPECT_EQ(take.timecodeOut, "00:01:50:00");
}

TEST_F(Takes, theEndCountsWholeSamplesOnly)
{
    // 7 frames at 4 Hz last 1.75 s, which are 1.75 samples of the timestamp's rate.
    const std::string ixml
        = "<SPEED><TIMECODE_RATE>25/1</TIMECODE_RATE><TIMESTAMP_SAMPLE_RATE>1</TIMESTAMP_SAMPLE_RATE>"
          "<TIMESTAMP_SAMPLES_SINCE_MIDNIGHT_HI>0</TIMESTAMP_SAMPLES_SINCE_MIDNIGHT_HI>"
          "<TIMESTAMP_SAMPLES_SINCE_MIDNIGHT_LO>100</TIMESTAMP_SAMPLES_SINCE_MIDNIGHT_LO></SPEED>";
    const TakeInfo take = readBytes(WavBuilder().fmt(4, 1, 8).ixml(ixml).dataFrames(7).bytes());
    EXPECT_EQ(take.duration, 1.75);
    EXPECT_EQ(take.timecodeIn, "00:01:40:00");
    EXPECT_EQ(take.timecodeOut, "00:01:41:00");
}

TEST_F(Takes, aFileThatIsNoWavGivesATakeOfEmptyTexts)
{
    const TakeInfo take = readBytes("just a text, not a recording");
    EXPECT_EQ(take.filename, "x.wav");
    EXPECT_TRUE(take.fileDate.isValid());
    EXPECT_EQ(take.scene + take.take + take.project + take.soundRoll + take.notes, "");
    EXPECT_EQ(take.timecodeIn + take.timecodeOut, "");
    EXPECT_EQ(take.duration, 0.0);
    EXPECT_EQ(take.frameRate, 0.0);
    EXPECT_EQ(take.sampleRate, 0u);
    EXPECT_EQ(take.bitDepth, 0);
    EXPECT_TRUE(take.tracks.empty());
    EXPECT_FALSE(take.isPoly);
}

TEST_F(Takes, anEmptyFileGivesATake)
{
    EXPECT_EQ(readBytes("").filename, "x.wav");
}

TEST_F(Takes, lengthsAndRatesPastEveryIntegerAreCutOffQuietly)
{
    const std::string ixml = "<SPEED><TIMECODE_RATE>1e300</TIMECODE_RATE><TIMESTAMP_SAMPLE_RATE>4294967295</"
                             "TIMESTAMP_SAMPLE_RATE></SPEED>";
    BextFields bext;
    bext.timeReference = 19999999999ull;
    const TakeInfo take = readBytes(WavBuilder::rf64().ds64(~0ull).fmt(1, 1, 8).bext(bext).ixml(ixml).data("").bytes());
    EXPECT_GT(take.duration, 1e19);
    EXPECT_EQ(take.timecodeIn.substr(0, 9), "00:00:04:");
    EXPECT_FALSE(take.timecodeOut.empty());
    EXPECT_FALSE(SoundReportDialog::formatDuration(take.duration, take.frameRate).isEmpty());
}

TEST_F(Takes, aNameBeyondAsciiIsReadAndKept)
{
    const std::string name = "S\xC3\xA8ne_\xE6\x97\xA5\xE6\x9C\xAC.wav";
    const TakeInfo take = readOne(name,
        { .scene = "\xC3\x9C"
                   "1" });
    EXPECT_EQ(take.filename, name);
    EXPECT_EQ(take.scene,
        "\xC3\x9C"
        "1");
}

TEST_F(Takes, twoThousandFilesAreReadAndSorted)
{
    QStringList paths;
    for (int i = 1999; i >= 0; --i)
        paths << addTake("t" + std::to_string(i) + ".wav", { .scene = std::to_string(10000 + i) });
    const std::vector<TakeInfo> takes = read(paths);
    ASSERT_EQ(takes.size(), 2000u);
    EXPECT_EQ(takes.front().scene, "10000");
    EXPECT_EQ(takes.front().shortNumber, "s2000");
    EXPECT_EQ(takes.back().scene, "11999");
}

TEST(NameWithoutWav, onlyAFinalWavInAnyCaseIsTakenOff)
{
    const auto shown = [](const char* name) {
        TakeInfo take;
        take.filename = name;
        return nameWithoutWav(take).toStdString();
    };
    EXPECT_EQ(shown("FILE.WAV"), "FILE");
    EXPECT_EQ(shown("a.wav.Wav"), "a.wav");
    EXPECT_EQ(shown("name.wave"), "name.wave");
    EXPECT_EQ(shown("wav"), "wav");
    EXPECT_EQ(shown(".wav"), "");
}

namespace {

std::string timecode(unsigned long long samples, unsigned int rate, double fps)
{
    return SoundReportDialog::formatTimecode(samples, rate, fps).toStdString();
}

std::string duration(double seconds, double fps)
{
    return SoundReportDialog::formatDuration(seconds, fps).toStdString();
}

std::string framerate(double fps)
{
    return SoundReportDialog::formatFramerate(fps).toStdString();
}

constexpr double kInfinite = std::numeric_limits<double>::infinity();
constexpr double kNoNumber = std::numeric_limits<double>::quiet_NaN();

} // namespace

TEST(FormatTimecode, hoursGoOnPastADay)
{
    EXPECT_EQ(timecode(48000ull * 3600 * 30, 48000, 25.0), "30:00:00:00");
}

TEST(FormatTimecode, aHundredHoursTakeThreeDigits)
{
    EXPECT_EQ(timecode(48000ull * 3600 * 100, 48000, 25.0), "100:00:00:00");
}

TEST(FormatTimecode, aRateOfZeroGivesDashes)
{
    EXPECT_EQ(timecode(48000, 0, 25.0), "--:--:--:--");
    EXPECT_EQ(timecode(48000, 48000, 0.0), "--:--:--:--");
}

TEST(FormatTimecode, aCountOfZeroIsFormatted)
{
    EXPECT_EQ(timecode(0, 48000, 25.0), "00:00:00:00");
}

TEST(FormatTimecode, framesAreTruncated)
{
    EXPECT_EQ(timecode(48000 * 61 + 47999, 48000, 25.0), "00:01:01:24");
    EXPECT_EQ(timecode(48000 + 1919, 48000, 25.0), "00:00:01:00");
}

TEST(FormatTimecode, aBrokenRateIsAppliedAsItStandsWithoutDropFrameCounting)
{
    EXPECT_EQ(timecode(48000ull * 60, 48000, 29.97), "00:01:00:00");
    EXPECT_EQ(timecode(48000 + 47000, 48000, 29.97), "00:00:01:29");
}

TEST(FormatTimecode, anInfiniteRateIsNoDanger)
{
    EXPECT_EQ(timecode(48000, 48000, kInfinite), "00:00:01:00");
}

TEST(FormatDuration, anUnknownRateCountsThirtyFrames)
{
    EXPECT_EQ(duration(1.5, 0.0), "00:00:01:15");
    EXPECT_EQ(duration(1.5, -24.0), "00:00:01:15");
    EXPECT_EQ(duration(1.5, kNoNumber), "00:00:01:15");
}

TEST(FormatDuration, aKnownRateIsUsed)
{
    EXPECT_EQ(duration(3661.5, 24.0), "01:01:01:12");
}

TEST(FormatDuration, zeroIsWrittenOut)
{
    EXPECT_EQ(duration(0.0, 25.0), "00:00:00:00");
}

TEST(FormatDuration, endlessIsNoDanger)
{
    EXPECT_EQ(duration(kInfinite, 25.0).substr(0, 20), "9223372036854775807:");
    EXPECT_EQ(duration(kNoNumber, 25.0), "00:00:00:00");
}

TEST(FormatFramerate, twoDecimalsWithoutTrailingZeros)
{
    EXPECT_EQ(framerate(23.976), "23.98nd-C");
    EXPECT_EQ(framerate(24000.0 / 1001.0), "23.98nd-C");
    EXPECT_EQ(framerate(25.0), "25nd-C");
    EXPECT_EQ(framerate(30.0), "30nd-C");
    EXPECT_EQ(framerate(100.0), "100nd-C");
    EXPECT_EQ(framerate(47.95), "47.95nd-C");
    EXPECT_EQ(framerate(12.5), "12.5nd-C");
}

TEST(FormatFramerate, theDropFrameSuffixFollowsTheRateAlone)
{
    EXPECT_EQ(framerate(29.97), "29.97df-C");
    EXPECT_EQ(framerate(30000.0 / 1001.0), "29.97df-C");
    EXPECT_EQ(framerate(59.94), "59.94df-C");
    EXPECT_EQ(framerate(29.9799), "29.98df-C");
    EXPECT_EQ(framerate(29.9801), "29.98nd-C");
    EXPECT_EQ(framerate(59.9299), "59.93nd-C");
}

TEST(FormatFramerate, zeroAndLessGiveNothing)
{
    EXPECT_EQ(framerate(0.0), "");
    EXPECT_EQ(framerate(-25.0), "");
}

TEST(ReportTexts, aCommaLocaleChangesNothing)
{
    const CommaLocale comma;
    if (!comma.works())
        GTEST_SKIP() << "no locale with a decimal comma on this machine";
    EXPECT_EQ(framerate(23.976), "23.98nd-C");
    EXPECT_EQ(duration(3661.5, 23.976), "01:01:01:11");
    EXPECT_EQ(timecode(72000, 48000, 29.97), "00:00:01:14");
}
