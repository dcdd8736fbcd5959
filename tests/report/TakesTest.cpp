// From files to the sorted take list.

#include "report/ReportTexts.h"
#include "report/TakeInfo.h"
#include "tests/report/ReportFixture.h"
#include "tests/support/WavBuilder.h"

#include <QDir>
#include <QFile>

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

    TakeInfo readOne(const std::string& name, const Recording& file = {})
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
    Recording file;
    file.scene = "12A";
    file.take = "3";
    file.tape = "ROLL7";
    file.project = "Doc";
    file.note = "plane at the end";
    file.trackNames = { "Boom", "Lav" };
    file.frameRate = "25/1";
    file.timeReference = 48000ull * 3723;
    file.timestampRate = 48000;
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
    EXPECT_FALSE(readOne("a.wav", { .channels = 1 }).isPoly);
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
    const Recording same{ .scene = "1", .take = "1" };
    EXPECT_EQ(read({ addTake("AAD0001_1.wav", same), addTake("AAD0001_2.wav", same) }).size(), 2u);
}

TEST_F(Takes, aMonoFileWithoutTrackMetadataHasTheTrackMix)
{
    EXPECT_EQ(readOne("a.wav", { .channels = 1 }).tracks, Names{ "Mix" });
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
    const TakeInfo take
        = readOne("a.wav", { .frameRate = "25/1", .timeReference = 0, .timestampRate = 48000, .seconds = 10 });
    EXPECT_EQ(take.timecodeIn, "");
    EXPECT_EQ(take.timecodeOut, "");
}

TEST_F(Takes, withoutATimestampRateThereIsNoTimecode)
{
    const TakeInfo take = readOne("a.wav", { .frameRate = "25/1", .timeReference = 48000, .timestampRate = 0 });
    EXPECT_EQ(take.timecodeIn, "");
    EXPECT_EQ(take.timecodeOut, "");
}

TEST_F(Takes, withoutAFrameRateThereIsNoTimecode)
{
    const TakeInfo take = readOne("a.wav", { .frameRate = "", .timeReference = 48000, .timestampRate = 48000 });
    EXPECT_EQ(take.timecodeIn, "");
    EXPECT_EQ(take.timecodeOut, "");
}

TEST_F(Takes, aNegativeFrameRateGivesNoTimecode)
{
    EXPECT_EQ(readOne("a.wav", { .frameRate = "-25", .timeReference = 48000, .timestampRate = 48000 }).timecodeIn, "");
}

TEST_F(Takes, timecodeCountsInTheTimestampRateAndNotInTheAudioRate)
{
    const TakeInfo take = readOne(
        "a.wav", { .frameRate = "25/1", .timeReference = 48048ull * 100, .timestampRate = 48048, .seconds = 10 });
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
    EXPECT_FALSE(reportDuration(take).isEmpty());
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

TEST_F(Takes, onlyPathsOfFilesAreKeptInTheirOrder)
{
    const QString b = addTake("b.wav", {});
    const QString a = addTake("a.wav", {});
    const QList<QFileInfo> files = filesAmong({ b, path("gone.wav"), "", path(""), a });
    ASSERT_EQ(files.size(), 2);
    EXPECT_EQ(files[0].filePath(), b);
    EXPECT_EQ(files[1].filePath(), a);
}

TEST_F(Takes, aFolderGivesTheVisibleWavFilesDirectlyInItByName)
{
    for (const char* name : { "b.wav", "A.WAV", "a.Wav", "c.wave", "wav", ".wav", ".hidden.wav", "d.wav.txt", "e" })
        addTake(name, {});
    QDir(path("")).mkpath("folder.wav");
    addTake("folder.wav/below.wav", {});
    ASSERT_TRUE(QFile::link(path("e"), path("link.wav")));
    ASSERT_TRUE(QFile::link(path("gone"), path("broken.wav")));
    QStringList names;
    for (const QFileInfo& file : wavFilesIn(path("")))
        names << file.fileName();
    EXPECT_EQ(names, (QStringList{ "A.WAV", "a.Wav", "b.wav", "link.wav" }));
}

TEST_F(Takes, aFolderThatIsMissingOrAFileGivesNone)
{
    EXPECT_TRUE(wavFilesIn(path("nowhere")).isEmpty());
    EXPECT_TRUE(wavFilesIn(addTake("a.wav", {})).isEmpty());
}

TEST_F(Takes, theRollIsTheFirstTapeNameElseTheFirstFilesFolder)
{
    QDir(path("")).mkpath("DAY1");
    const QList<QFileInfo> files{ QFileInfo(addTake("DAY1/a.wav", {})), QFileInfo(addTake("b.wav", {})) };
    const auto roll = [&files](const Names& tapes) {
        std::vector<TakeInfo> takes(tapes.size());
        for (size_t i = 0; i < tapes.size(); ++i)
            takes[i].soundRoll = tapes[i];
        return soundRollOf(takes, files).toStdString();
    };
    EXPECT_EQ(roll({ "", "T2", "T3" }), "T2");
    EXPECT_EQ(roll({ "", "" }), "DAY1");
    EXPECT_EQ(roll({}), "DAY1");
    EXPECT_EQ(roll({ "\xEF\xBB\xBF", "T2" }), "DAY1");
    EXPECT_EQ(soundRollOf({}, {}), "");
}
