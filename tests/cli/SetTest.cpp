#include "cli/EditForecast.h"
#include "cli/FileEdit.h"
#include "cli/FileFacts.h"
#include "cli/FileRun.h"
#include "cli/IxmlForm.h"
#include "core/BwfMetadata.h"
#include "core/BwfMetadataReader.h"
#include "tests/cli/CliRun.h"
#include "tests/support/ChangedRanges.h"
#include "tests/support/CommaLocale.h"
#include "tests/support/TempFolder.h"
#include "tests/support/WavBuilder.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

#include <filesystem>
#include <random>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

constexpr size_t kDescription = 256;
constexpr size_t kIxmlBytes = 900;

struct Speed {
    std::string rate = "25/1";
    std::string flag = "NDF";
    std::string low = "0000048000";
};

std::string ixml(const std::string& scene = "12", const Speed& speed = {})
{
    return "<BWFXML><SCENE>" + scene + "</SCENE><TAKE>3</TAKE><CIRCLED>TRUE</CIRCLED><SPEED><TIMECODE_RATE>"
        + speed.rate + "</TIMECODE_RATE><TIMECODE_FLAG>" + speed.flag + "</TIMECODE_FLAG>"
        + "<TIMESTAMP_SAMPLE_RATE>48000</TIMESTAMP_SAMPLE_RATE><TIMESTAMP_SAMPLES_SINCE_MIDNIGHT_HI>0000000000"
          "</TIMESTAMP_SAMPLES_SINCE_MIDNIGHT_HI><TIMESTAMP_SAMPLES_SINCE_MIDNIGHT_LO>"
        + speed.low + "</TIMESTAMP_SAMPLES_SINCE_MIDNIGHT_LO></SPEED>"
        + "<TRACK_LIST><TRACK><CHANNEL_INDEX>1</CHANNEL_INDEX><NAME>Boom</NAME><FUNCTION>MIX</FUNCTION></TRACK>"
          "<TRACK><CHANNEL_INDEX>4</CHANNEL_INDEX><NAME>Lav</NAME><FUNCTION></FUNCTION></TRACK></TRACK_LIST></BWFXML>";
}

WavBuilder recording(const std::string& text = ixml())
{
    BextFields bext;
    bext.description = "aSCENE=12\naTAKE=3\naSPEED=25.000-ND\n";
    bext.timeReference = 48000;
    return WavBuilder().fmt(48000, 1, 24).bext(bext).ixmlPadded(text, kIxmlBytes, ' ').dataFrames(500);
}

class Set : public testing::Test {
protected:
    std::string put(const std::string& name, const WavBuilder& wav = recording())
    {
        const std::string path = folder.file(name);
        wav.write(path);
        return path;
    }

    CliResult set(std::vector<std::string> arguments, const CliSetup& setup = {})
    {
        arguments.insert(arguments.begin(), "set");
        return runCli(arguments, setup);
    }

    static BwfMetadata recordOf(const std::string& path) { return BwfMetadataReader::readMetadata(path); }

    /// Refused with these words; the file is as it was.
    void expectRefused(const std::string& path, std::vector<std::string> arguments, const std::string& words)
    {
        const FileProof proof(path);
        arguments.push_back(path);
        const CliResult result = set(arguments);
        EXPECT_EQ(Exit::Found, result.exit);
        EXPECT_EQ("tagwell-cli: " + path + ": " + words + "\n", result.err);
        EXPECT_EQ("", result.out);
        EXPECT_EQ("", proof.untouched());
    }

    std::string table(const std::string& text)
    {
        const std::string path = tables.file("table.csv");
        writeBytes(path, text);
        return path;
    }

    TempFolder folder;
    TempFolder tables;
};

TEST_F(Set, shorterSceneChangesTheDescriptionAndTheIxmlAlone)
{
    const std::string path = put("a.wav");
    const FileProof proof(path);
    const CliResult result = set({ "--scene", "7", path });
    EXPECT_EQ(Exit::Ok, result.exit);
    EXPECT_EQ(path + ": written: scene '12' -> '7'\n", result.out);
    EXPECT_EQ("", result.err);
    const size_t bext = recording().payloadOffset("bext");
    const size_t text = recording().payloadOffset("iXML");
    EXPECT_EQ("", proof.changedWithin({ { bext, bext + kDescription }, { text, text + kIxmlBytes } }));
    EXPECT_EQ("7", recordOf(path).scene);
}

TEST_F(Set, whatIsNotNamedStays)
{
    const std::string path = put("a.wav");
    EXPECT_EQ(Exit::Ok, set({ "--scene", "7", path }).exit);
    const BwfMetadata record = recordOf(path);
    EXPECT_TRUE(record.circled);
    EXPECT_EQ("3", record.take);
    ASSERT_EQ(2u, record.tracks.size());
    EXPECT_EQ("MIX", record.tracks[0].function);
    EXPECT_EQ(48000u, record.timeReference);
}

TEST_F(Set, editThatCantBeWrittenWholeIsRefusedAndSaysByHowMuch)
{
    expectRefused(put("a.wav"), { "--scene", "123" }, "not written: its iXML is 1 byte too short");
    expectRefused(put("a.wav"), { "--scene", "12345", "--note", std::string(230, 'n') },
        "not written: its Description would lose 20 bytes at its end; its iXML is 249 bytes too short");
}

TEST_F(Set, partlyWritesWhatCanBeWrittenAndSaysWhatIsMissing)
{
    const std::string path = put("a.wav");
    const CliResult result = set({ "--partly", "--scene", "123", path });
    EXPECT_EQ(Exit::Found, result.exit);
    EXPECT_EQ(path + ": written in part: scene '12' -> '123'; its iXML is 1 byte too short\n", result.out);
    const BwfMetadata record = recordOf(path);
    EXPECT_EQ("12", record.scene);
    EXPECT_EQ("aSCENE=123\naTAKE=3\naSPEED=25.000-ND\n", record.description);
}

TEST_F(Set, paddingTakesAnyTextThatFitsItsChunk)
{
    const std::string path = put("a.wav");
    const FileProof proof(path);
    EXPECT_EQ(Exit::Ok,
        set({ "--use-padding", "--scene", "R&D <12>", "--wild", "yes", "--track", "4=Lav 2/LEFT", path }).exit);
    const size_t bext = recording().payloadOffset("bext");
    const size_t text = recording().payloadOffset("iXML");
    EXPECT_EQ("", proof.changedWithin({ { bext, bext + kDescription }, { text, text + kIxmlBytes } }));
    const BwfMetadata record = recordOf(path);
    EXPECT_EQ("R&amp;D &lt;12&gt;", record.scene);
    EXPECT_EQ("aSCENE=R&D <12>\naTAKE=3\naSPEED=25.000-ND\n", record.description);
    EXPECT_TRUE(record.wildTrack);
    EXPECT_EQ("Lav 2", record.tracks[1].name);
    EXPECT_EQ("LEFT", record.tracks[1].function);
    const FileProof again(path);
    EXPECT_EQ(path + ": nothing to do\n",
        set({ "--use-padding", "--scene", "R&amp;D &lt;12&gt;", "--wild", "yes", path }).out);
    EXPECT_EQ("", again.untouched());
}

TEST_F(Set, textThatWouldSpoilTheXmlIsRefusedInThePadding)
{
    expectRefused(put("a.wav"),
        { "--use-padding", "--scene",
            "\xFF"
            "12" },
        "not written: its iXML would no longer be well-formed XML");
    const std::string latin = "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>" + ixml();
    expectRefused(put("a.wav", recording(latin)), { "--use-padding", "--scene", "\xC3\xA4" },
        "not written: its iXML is in another encoding than UTF-8");
    EXPECT_EQ(Exit::Ok, set({ "--use-padding", "--scene", "plain", put("a.wav", recording(latin)) }).exit);
    const std::string doctype = "<!DOCTYPE BWFXML []>" + ixml();
    expectRefused(
        put("a.wav", recording(doctype)), { "--use-padding", "--scene", "13" }, "not written: its iXML has a DOCTYPE");
}

TEST_F(Set, textThatIsNoXmlAnywayCanBeEditedInThePadding)
{
    const std::string path = put("a.wav", recording("<NOTE>a & b</NOTE>" + ixml()));
    EXPECT_EQ("", ixmlFormComplaint("<a>&</a>", "<a>&</a>"));
    EXPECT_EQ(Exit::Ok, set({ "--use-padding", "--scene", "longer", path }).exit);
    EXPECT_EQ("a & b", recordOf(path).note);
}

TEST_F(Set, bytesBehindTheTextThatAreNoPaddingAreReported)
{
    expectRefused(put("a.wav", recording(ixml() + std::string(1, '\0') + "private")),
        { "--use-padding", "--scene", "13" },
        "not written: something else than padding stands behind the text of its iXML");
}

TEST_F(Set, trackThatTheFileLacksIsRefused)
{
    expectRefused(put("a.wav"), { "--track", "2=X" }, "not written: it has no track 2");
}

// The start.

TEST_F(Set, everyFrameThatIsTypedReadsBackExactly)
{
    const Speed rates[] = { { "24000/1001", "NDF", "0000048000" }, { "24/1", "NDF", "0000048000" },
        { "25/1", "NDF", "0000048000" }, { "30000/1001", "NDF", "0000048000" }, { "30000/1001", "DF", "0000048000" },
        { "30/1", "NDF", "0000048000" } };
    for (const Speed& speed : rates) {
        const std::string path = put("a.wav", recording(ixml("12", speed)));
        for (const char* const label : { "00:00:00:00", "00:00:00:01", "01:00:00:02", "10:09:08:07", "23:59:59:23" }) {
            ASSERT_EQ(Exit::Ok, set({ "--start", label, path }).exit) << speed.rate << label;
            std::string shown = label;
            if (speed.flag == "DF")
                shown[8] = ';';
            const FileFacts facts = readFileFacts(path);
            EXPECT_EQ(shown, facts.startLabel()) << speed.rate;
            BwfMetadata fromBext;
            BwfMetadataReader::readBextChunk(path, fromBext);
            EXPECT_EQ(fromBext.timeReference, facts.record.timeReference) << "both places agree";
        }
    }
}

TEST_F(Set, startChangesTheDigitsAndNothingElse)
{
    const std::string path = put("a.wav");
    const FileProof proof(path);
    const CliResult result = set({ "--start", "01:00:00:12", path });
    EXPECT_EQ(path + ": written: start '00:00:01:00' -> '01:00:00:12'\n", result.out);
    const size_t text = recording().payloadOffset("iXML");
    const size_t low = text + recording().bytes().substr(text).find("0000048000");
    EXPECT_EQ("",
        proof.patchedExactly({ { recording().payloadOffset("bext") + 338, le64(172823040) }, { low, "0172823040" } }));
}

TEST_F(Set, dropFrameLabelsThatDontExistAreRefused)
{
    const Speed drop{ "30000/1001", "DF", "0000048000" };
    const std::string path = put("a.wav", recording(ixml("12", drop)));
    expectRefused(path, { "--start", "01:01:00;00" }, "there is no 01:01:00;00 at 30000/1001 drop-frame");
    expectRefused(path, { "--start", "01:01:00:01" }, "there is no 01:01:00:01 at 30000/1001 drop-frame");
    EXPECT_EQ(Exit::Ok, set({ "--start", "01:01:00;02", path }).exit);
    EXPECT_EQ(Exit::Ok, set({ "--start", "01:10:00;00", path }).exit);
    expectRefused(put("b.wav"), { "--start", "01:00:00;00" }, "its timecode isn't drop-frame, and 01:00:00;00 is");
    expectRefused(put("b.wav"), { "--start", "01:00:00:25" }, "there is no 01:00:00:25 at 25/1");
    expectRefused(put("b.wav"), { "--start", "24:00:00:00" }, "there is no 24:00:00:00 at 25/1");
}

TEST_F(Set, startWithoutAFrameRateIsRefused)
{
    const std::string path = put("a.wav", WavBuilder().fmt(48000, 1, 24).bext({}).dataFrames(5));
    expectRefused(path, { "--start", "01:00:00:00" }, "it names no frame rate or no sample rate, which a start needs");
}

TEST_F(Set, startWhoseDigitsDontFitIsRefusedAndFitsWithThePadding)
{
    const std::string path = put("a.wav", recording(ixml("12", { "25/1", "NDF", "48000" })));
    expectRefused(path, { "--start", "01:00:00:00" }, "not written: its iXML is 4 bytes too short");
    EXPECT_EQ(Exit::Ok, set({ "--start", "01:00:00:00", "--use-padding", path }).exit);
    EXPECT_EQ("01:00:00:00", readFileFacts(path).startLabel());
}

// How it is done.

TEST_F(Set, dryRunSaysWhatWouldComeAndWritesNothing)
{
    const std::string path = put("a.wav");
    const FileProof proof(path);
    const CliResult result = set({ "-n", "--scene", "7", "--circled", "no", path });
    EXPECT_EQ(Exit::Ok, result.exit);
    EXPECT_EQ(path + ": would be written: scene '12' -> '7', circled no\n", result.out);
    EXPECT_EQ("", proof.untouched());
    expectRefused(path, { "--dry-run", "--scene", "123" }, "not written: its iXML is 1 byte too short");
}

TEST_F(Set, keepDatePutsTheModificationTimeBack)
{
    const std::string path = put("a.wav");
    const fs::file_time_type date = fs::last_write_time(path) - std::chrono::hours(1000) + std::chrono::nanoseconds(7);
    fs::last_write_time(path, date);
    ASSERT_EQ(Exit::Ok, set({ "--keep-date", "--scene", "7", path }).exit);
    EXPECT_EQ("7", recordOf(path).scene);
    EXPECT_EQ(date, fs::last_write_time(path));
    ASSERT_EQ(Exit::Ok, set({ "--scene", "8", path }).exit);
    EXPECT_NE(date, fs::last_write_time(path));
}

TEST_F(Set, verifyRefusesAFileWhoseAudioHasNoSum)
{
    expectRefused(put("a.wav", recording().claimSize("data", 5000)), { "--verify", "--circled", "no" },
        "its audio is cut: 1500 of 5000 bytes can be read");
    EXPECT_EQ(Exit::Ok, set({ "--verify", "--scene", "7", put("b.wav") }).exit);
}

TEST_F(Set, nothingToDoLeavesEvenTheDate)
{
    const std::string path = put("a.wav");
    const FileProof proof(path);
    const CliResult result = set({ "--scene", "12", "--circled", "yes", "--track", "1=Boom", path });
    EXPECT_EQ(Exit::Ok, result.exit);
    EXPECT_EQ(path + ": nothing to do\n", result.out);
    EXPECT_EQ("", proof.untouched());
}

TEST_F(Set, oneFileThatFailsDoesntEndTheRun)
{
    const std::string first = put("a.wav");
    const std::string last = put("c.wav");
    const CliResult result = set({ "--scene", "7", first, folder.file("gone.wav"), folder.path().string() + "/c.wav" });
    EXPECT_EQ(Exit::Found, result.exit);
    EXPECT_EQ("tagwell-cli: " + folder.file("gone.wav") + ": there is no such file\n", result.err);
    EXPECT_EQ("7", recordOf(last).scene);
}

TEST_F(Set, fileThatVanishesMeanwhileEndsItselfAlone)
{
    const std::string first = put("a.wav");
    const std::string second = put("b.wav");
    CliSetup setup;
    setup.beforeFile = [&](int file) {
        if (file == 0)
            fs::remove(first);
    };
    const CliResult result = set({ "--scene", "7", first, second }, setup);
    EXPECT_EQ(Exit::Found, result.exit);
    EXPECT_FALSE(fs::exists(first));
    EXPECT_EQ("7", recordOf(second).scene);
}

TEST_F(Set, whatIsNoRecordingIsLeftAlone)
{
    const std::string fifo = folder.file("pipe.wav");
    ASSERT_EQ(0, mkfifo(fifo.c_str(), 0600));
    EXPECT_EQ("tagwell-cli: " + fifo + ": it is no file\n", set({ "--scene", "7", fifo }).err);
    fs::remove(fifo);
    writeBytes(folder.file("text.wav"), "no recording");
    expectRefused(folder.file("text.wav"), { "--scene", "7" }, "not written: it is no WAV file that the window reads");
}

TEST_F(Set, interruptEndsBetweenTwoFiles)
{
    const std::vector<std::string> paths{ put("a.wav"), put("b.wav"), put("c.wav") };
    CliSetup setup;
    setup.interruptAfter = 2;
    const CliResult result = set({ "--scene", "7", paths[0], paths[1], paths[2] }, setup);
    EXPECT_EQ(Exit::Found, result.exit);
    EXPECT_EQ("tagwell-cli: interrupted after 2 of 3 files\n", result.err);
    EXPECT_EQ("7", recordOf(paths[1]).scene);
    EXPECT_EQ("12", recordOf(paths[2]).scene);
}

TEST_F(Set, wrongUsageTouchesNothing)
{
    const std::string path = put("a.wav");
    const FileProof proof(path);
    for (const std::vector<std::string>& arguments : std::vector<std::vector<std::string>>{ { path },
             { "--scene", "7" }, { "--scene", "", path }, { "--circled", "maybe", path }, { "--start", "1:2:3", path },
             { "--track", "Boom", path }, { "--from-csv", "x", "--scene", "7", path } })
        EXPECT_EQ(Exit::Usage, set(arguments).exit);
    EXPECT_EQ("", proof.untouched());
}

TEST_F(Set, namesOfAnyBytesAndTextsOfAnyBytesGoAsTheyAre)
{
    const std::string path = put("\xFF\n.wav");
    EXPECT_EQ(Exit::Ok, set({ "--scene", "\xE4", path }).exit);
    EXPECT_EQ("\xE4", recordOf(path).scene);
    EXPECT_EQ(path.substr(0, path.size() - 6) + "\xFF\\n.wav: nothing to do\n", set({ "--scene", "\xE4", path }).out);
}

TEST_F(Set, commaLocaleChangesNothing)
{
    const std::string plain = put("a.wav");
    const std::string comma = put("b.wav");
    const std::vector<std::string> edit{ "--scene", "7", "--start", "01:02:03:04", "--use-padding" };
    std::vector<std::string> first = edit;
    first.push_back(plain);
    ASSERT_EQ(Exit::Ok, set(first).exit);
    const CommaLocale locale;
    if (!locale.works())
        GTEST_SKIP() << "This machine can't make a locale.";
    std::vector<std::string> second = edit;
    second.push_back(comma);
    ASSERT_EQ(Exit::Ok, set(second).exit);
    EXPECT_EQ(readBytes(plain), readBytes(comma));
}

// The table.

TEST_F(Set, tableOfDumpGivenBackChangesNothing)
{
    std::vector<FileProof> proofs;
    const Speed drop{ "30000/1001", "DF", "0000048001" }; // Between two frames.
    const std::string tracks
        = "<BWFXML><TRACK_LIST><TRACK><CHANNEL_INDEX>0</CHANNEL_INDEX><NAME>a|b/c\\d</NAME></TRACK>"
          "<TRACK><CHANNEL_INDEX>2</CHANNEL_INDEX><NAME>=,\"</NAME></TRACK>"
          "<TRACK><CHANNEL_INDEX>2</CHANNEL_INDEX><NAME>x</NAME></TRACK></TRACK_LIST>"
          "<NOTE>two\r\nlines, \"quoted\" &amp; \xFF</NOTE><TAKE>01</TAKE></BWFXML>";
    const std::vector<std::string> paths{ put("a.wav"), put("b,\"\n.wav", recording(ixml("\xE4", drop))),
        put("c.wav", recording(tracks)), put("d.wav", WavBuilder().fmt(48000, 1, 24).dataFrames(3)),
        put("e.wav", WavBuilder().fmt(48000, 1, 24).bext({}).dataFrames(3)) };
    writeBytes(folder.file("f.wav"), "no recording");
    for (const std::string& path : paths)
        proofs.emplace_back(path);
    std::vector<std::string> dump{ "dump", "--csv", "--chunks", folder.file("f.wav") };
    dump.insert(dump.end(), paths.begin(), paths.end());
    const std::string csv = table(runCli(dump).out);
    for (const char* how : { "--use-padding", "--partly" }) {
        const CliResult result = set({ "--from-csv", csv, how });
        EXPECT_EQ("tagwell-cli: " + folder.file("f.wav") + ": it is no WAV file\n", result.err);
        EXPECT_EQ(Exit::Found, result.exit) << "for the file that is no recording";
        for (const FileProof& proof : proofs)
            EXPECT_EQ("", proof.untouched());
        EXPECT_NE(std::string::npos, result.out.find("e.wav: nothing to do\n"));
    }
}

TEST_F(Set, tableSetsEachFilesOwnValues)
{
    const std::string first = put("a.wav");
    const std::string second = put("b.wav");
    const std::string csv = table("scene,path,circled,wild_track,tracks,timecode_start,channels\r\n"
                                  "7,"
        + first + ",no,,1=Mix|4=,,99\r\n," + second + ",,,,02:00:00:00,\r\n\r\n");
    EXPECT_EQ(Exit::Ok, set({ "--from-csv", csv }).exit);
    const BwfMetadata a = recordOf(first);
    EXPECT_EQ("7", a.scene);
    EXPECT_FALSE(a.circled);
    EXPECT_EQ("Mix", a.tracks[0].name);
    EXPECT_EQ("MIX", a.tracks[0].function);
    EXPECT_EQ("", a.tracks[1].name);
    EXPECT_EQ("12", recordOf(second).scene);
    EXPECT_TRUE(recordOf(second).circled);
    EXPECT_EQ("02:00:00:00", readFileFacts(second).startLabel());
}

TEST_F(Set, wrongTableIsRefusedBeforeAnythingIsWritten)
{
    const std::string path = put("a.wav");
    const std::string link = folder.file("link.wav");
    fs::create_hard_link(path, link);
    const FileProof proof(path);
    const auto refused = [&](const std::string& text, const std::string& words) {
        const std::string csv = table(text);
        const CliResult result = set({ "--from-csv", csv });
        EXPECT_EQ(Exit::Found, result.exit);
        EXPECT_EQ("tagwell-cli: " + csv + ": " + words + "\n", result.err);
        EXPECT_EQ("", result.out);
        EXPECT_EQ("", proof.untouched());
    };
    refused("", "it is empty");
    refused("scene\n7\n", "it has no column 'path'");
    refused("path,scene,scenery\n" + path + ",7,8\n", "unknown column 'scenery'");
    refused("path,scene,scene\n" + path + ",7,8\n", "column 'scene' is there twice");
    refused("path,scene\n" + path + ",7\n" + link + ",8\n", link + ": this file is named twice");
    refused("path,scene\n" + path + ",7\n" + path + "x,8\n", path + "x: there is no such file");
    refused("path,scene\n" + path + ",7\n" + path + "\n", "line 3: 1 cells under 2 columns");
    refused("path,circled\n" + path + ",maybe\n", "line 2: circled takes yes or no, not 'maybe'");
    refused("path,scene\n" + path + ",7\n\"" + path, "line 3: a quote is never closed");
}

TEST_F(Set, tableMayNameOnlyTheFilesThatWereAskedFor)
{
    const std::string path = put("a.wav");
    const std::string other = put("b.wav");
    const std::string csv = table("path,scene\n" + path + ",7\n" + other + ",7\n");
    EXPECT_EQ(
        "tagwell-cli: " + csv + ": " + other + ": this file was not asked for\n", set({ "--from-csv", csv, path }).err);
    EXPECT_EQ("12", recordOf(path).scene);
    EXPECT_EQ(Exit::Ok, set({ "--from-csv", csv, folder.path().string() }).exit);
    EXPECT_EQ("7", recordOf(other).scene);
}

TEST_F(Set, fileThatWasAskedForBesidesATableAndIsNotThereEndsTheRunBeforeAnythingIsWritten)
{
    const std::string path = put("a.wav");
    const FileProof proof(path);
    const CliResult result
        = set({ "--from-csv", table("path,scene\n" + path + ",7\n"), path, folder.file("gone.wav") });
    EXPECT_EQ(Exit::Found, result.exit);
    EXPECT_EQ("tagwell-cli: " + folder.file("gone.wav") + ": there is no such file\n", result.err);
    EXPECT_EQ("", proof.untouched());
}

TEST_F(Set, missingTableIsSaid)
{
    const CliResult result = set({ "--from-csv", tables.file("gone.csv") });
    EXPECT_EQ(Exit::Found, result.exit);
    EXPECT_EQ("tagwell-cli: " + tables.file("gone.csv") + ": there is no such file\n", result.err);
    for (const std::string& path : { tables.path().string(), std::string("/dev/null") })
        EXPECT_EQ("tagwell-cli: " + path + ": it is no regular file, and its rows are read more than once\n",
            set({ "--from-csv", path }).err);
}

TEST_F(Set, tracksThatAreNoListEndTheirFileAlone)
{
    const std::string path = put("a.wav");
    const std::string other = put("b.wav");
    const std::string csv = table("path,tracks\n" + path + ",Boom\n" + other + ",1=New\n");
    const CliResult result = set({ "--from-csv", csv });
    EXPECT_EQ(
        "tagwell-cli: " + path + ": its cell of tracks is no list of N=NAME or N=NAME/FUNCTION with | between them\n",
        result.err);
    EXPECT_EQ("New", recordOf(other).tracks[0].name);
}

// What `check` foretells and what `set` does must be one.
TEST_F(Set, writesWholeExactlyWhatTheForecastCallsWhole)
{
    std::mt19937 random(3);
    const auto pick = [&random](size_t count) { return random() % count; };
    const std::string texts[] = { "1", "12", "123", "<", " x", std::string(240, 'n') };
    int whole = 0;
    for (int round = 0; round < 700; ++round) {
        WavBuilder wav;
        wav.fmt(48000, 1, 24);
        BextFields bext;
        bext.description = pick(2) == 0 ? "aSCENE=12\n" : "aSCENE=12\naTRK1=" + std::string(230, 't');
        if (pick(5) > 0)
            wav.bext(bext);
        if (pick(5) > 0)
            wav.ixml(pick(3) == 0 ? "<BWFXML><NOTE>12345</NOTE><WILD_TRACK>FALSE</WILD_TRACK></BWFXML>" : ixml());
        const std::string path = put("a.wav", wav.dataFrames(3));
        EditRequest request;
        if (pick(2) == 0)
            request.scene = texts[pick(std::size(texts))];
        if (pick(2) == 0)
            request.note = texts[pick(std::size(texts))];
        if (pick(5) == 0)
            request.ubits = "$00000001";
        if (pick(3) == 0)
            request.circled = pick(2) == 0;
        if (pick(3) == 0)
            request.wildTrack = pick(2) == 0;
        if (pick(4) == 0)
            request.tracks.push_back({ static_cast<int32_t>(pick(4) + 1), "Bo", std::nullopt });
        const EditForecast forecast = forecastEdit(path, request);
        const bool foretold = forecast.outcome == EditOutcome::Whole || forecast.outcome == EditOutcome::Nothing;
        bool written = true;
        try {
            EXPECT_EQ(Exit::Ok, editFile(path, request, {}).exit);
        } catch (const FileError&) {
            written = false;
        }
        EXPECT_EQ(foretold, written) << "round " << round
                                     << (forecast.obstacles.empty() ? "" : forecast.obstacles[0].words);
        whole += forecast.outcome == EditOutcome::Whole ? 1 : 0;
    }
    EXPECT_GT(whole, 15);
}

} // namespace
