#include "tests/cli/CliRun.h"

#include "tests/support/CommaLocale.h"
#include "tests/support/TempFolder.h"
#include "tests/support/WavBuilder.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <sstream>

namespace {

namespace fs = std::filesystem;

constexpr uint32_t kRate = 48000;
constexpr uint64_t kStart = 480000; // Ten seconds after midnight.
constexpr uint32_t kPlaceholder = 0xFFFFFFFF;

/// The texts that a recording of these tests is made of; each is as a recorder would write it.
struct Take {
    std::string scene = "1";
    std::string take = "1";
    std::string tape = "R1";
    std::string start = std::to_string(kStart);
    std::string tracks
        = "<TRACK_COUNT>1</TRACK_COUNT><TRACK><CHANNEL_INDEX>1</CHANNEL_INDEX><INTERLEAVE_INDEX>1</INTERLEAVE_INDEX>"
          "<NAME>Boom</NAME></TRACK>";
    std::string more = {};
    std::string speed = "<TIMECODE_RATE>25/1</TIMECODE_RATE>";
    std::string description = {};
    uint64_t timeReference = kStart;
    size_t seconds = 1;

    std::string ixml() const
    {
        return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\r\n<BWFXML><SCENE>" + scene + "</SCENE><TAKE>" + take
            + "</TAKE><TAPE>" + tape + "</TAPE>" + more + "<SPEED>" + speed
            + "<TIMESTAMP_SAMPLE_RATE>48000</TIMESTAMP_SAMPLE_RATE><TIMESTAMP_SAMPLES_SINCE_MIDNIGHT_HI>0"
              "</TIMESTAMP_SAMPLES_SINCE_MIDNIGHT_HI><TIMESTAMP_SAMPLES_SINCE_MIDNIGHT_LO>"
            + start + "</TIMESTAMP_SAMPLES_SINCE_MIDNIGHT_LO></SPEED><TRACK_LIST>" + tracks
            + "</TRACK_LIST></BWFXML>\r\n";
    }
    BextFields bext() const
    {
        BextFields fields;
        fields.description = description;
        fields.originationDate = "2024-05-01";
        fields.timeReference = timeReference;
        return fields;
    }
    WavBuilder wav() const
    {
        return WavBuilder().bext(bext()).ixml(ixml()).fmt(kRate, 1, 8).dataFrames(seconds * kRate);
    }
};

class Check : public testing::Test {
protected:
    std::string put(const std::string& name, const WavBuilder& wav)
    {
        const std::string path = folder.file(name);
        wav.write(path);
        return path;
    }
    std::string put(const std::string& name, const Take& take) { return put(name, take.wav()); }

    std::vector<QJsonObject> problemsOf(const std::vector<std::string>& paths)
    {
        std::vector<std::string> arguments = { "check", "--json" };
        arguments.insert(arguments.end(), paths.begin(), paths.end());
        result = runCli(arguments);
        std::vector<QJsonObject> problems;
        std::istringstream lines(result.out);
        for (std::string line; std::getline(lines, line);) {
            const QJsonObject object = QJsonDocument::fromJson(QByteArray::fromStdString(line)).object();
            EXPECT_EQ(1, object["schema_version"].toInt()) << line;
            for (const QJsonValue& problem : object["problems"].toArray())
                problems.push_back(problem.toObject());
        }
        return problems;
    }

    /// The codes of all findings over the files, each followed by a blank.
    std::string codesOfFiles(const std::vector<std::string>& paths)
    {
        std::string codes;
        for (const QJsonObject& problem : problemsOf(paths))
            codes += problem["code"].toString().toStdString() + " ";
        return codes;
    }
    std::string codesOf(const WavBuilder& wav) { return codesOfFiles({ put("a.wav", wav) }); }
    std::string codesOf(const Take& take) { return codesOf(take.wav()); }

    TempFolder folder;
    CliResult result; ///< Of the last run that was asked for its findings.
};

TEST_F(Check, soundFileGivesNothing)
{
    EXPECT_EQ("", codesOf(Take()));
    EXPECT_EQ(Exit::Ok, result.exit);
    const CliResult text = runCli({ "check", folder.file("a.wav") });
    EXPECT_EQ(Exit::Ok, text.exit);
    EXPECT_EQ("", text.out);
}

TEST_F(Check, missingChunksAreTold)
{
    const Take take;
    const auto frames = [](WavBuilder wav) { return wav.dataFrames(10); };
    EXPECT_EQ("no-bext ", codesOf(frames(WavBuilder().ixml(take.ixml()).fmt(kRate, 1, 8))));
    EXPECT_EQ("no-ixml no-frame-rate ", codesOf(frames(WavBuilder().bext(take.bext()).fmt(kRate, 1, 8))));
    EXPECT_EQ("no-data ", codesOf(WavBuilder().bext(take.bext()).ixml(take.ixml()).fmt(kRate, 1, 8)));
    EXPECT_EQ("no-fmt ", codesOf(WavBuilder().bext(take.bext()).ixml(take.ixml()).data("audio!")));
    EXPECT_EQ(
        "data-before-fmt ", codesOf(WavBuilder().bext(take.bext()).ixml(take.ixml()).data("audio!").fmt(kRate, 1, 8)));
}

TEST_F(Check, shortBextIsTold)
{
    const Take take;
    const std::string whole = bextPayload(take.bext());
    const auto withBext = [&](const std::string& payload) {
        return WavBuilder().chunk("bext", payload).ixml(take.ixml()).fmt(kRate, 1, 8).dataFrames(10);
    };
    EXPECT_EQ("", codesOf(withBext(whole)));
    EXPECT_EQ("bext-short ", codesOf(withBext(whole.substr(0, 600))));
    EXPECT_EQ("2 too few for its fields",
        problemsOf({ folder.file("a.wav") }).front()["message"].toString().toStdString().substr(24));
}

TEST_F(Check, fieldsThatDisagreeAreToldWithBothValues)
{
    Take take;
    take.description = "sSCENE=2\r\ngTAKE=1\r\nTAPE=R1\r\nsTRK1=Lav\r\nsSPEED=024.000-ND\r\nsOTHER=9\r\n";
    const std::vector<QJsonObject> problems = problemsOf({ put("a.wav", take) });
    ASSERT_EQ(3u, problems.size());
    EXPECT_EQ("scene", problems[0]["field"].toString());
    EXPECT_EQ("1", problems[0]["ixml"].toString());
    EXPECT_EQ("2", problems[0]["bext"].toString());
    EXPECT_EQ("track 1", problems[1]["field"].toString());
    EXPECT_EQ("Boom", problems[1]["ixml"].toString());
    EXPECT_EQ("Lav", problems[1]["bext"].toString());
    EXPECT_EQ("frame_rate", problems[2]["field"].toString());
    EXPECT_EQ(Exit::Found, result.exit);
    EXPECT_NE(std::string::npos,
        runCli({ "check", folder.file("a.wav") })
            .out.find(": warning: its scene is '1' in the iXML and '2' in the Description [fields-disagree]\n"));
}

TEST_F(Check, valuesThatMeanTheSameAgree)
{
    Take take;
    take.scene = "A &amp; B";
    take.more = "<UBITS>0a000000</UBITS><CIRCLED>TRUE</CIRCLED><NOTE> n </NOTE>";
    take.description = "SCENE=A & B\r\nUBITS=$0A000000\r\nCIRCLED=true\r\nNOTE=n\r\nSPEED=25.000ND\r\n";
    EXPECT_EQ("", codesOf(take));
}

TEST_F(Check, lineThatTheEndOfTheDescriptionCutsIsNotCompared)
{
    Take take;
    take.more = "<NOTE>" + std::string(300, 'n') + "</NOTE>";
    take.description = "NOTE=" + std::string(300, 'n');
    EXPECT_EQ("", codesOf(take));
    take.description = "NOTE=" + std::string(200, 'n');
    EXPECT_EQ("fields-disagree ", codesOf(take));
}

TEST_F(Check, startOfTheIxmlIsComparedWithThatOfBext)
{
    Take take;
    take.start = std::to_string(kStart + 1);
    EXPECT_EQ("start-differs ", codesOf(take));
    EXPECT_EQ(Exit::Found, result.exit);
    take.start = "0000480000";
    EXPECT_EQ("", codesOf(take));
    take.start = "soon";
    EXPECT_EQ("start-unreadable ", codesOf(take));
}

TEST_F(Check, signedLowHalfIsTheSameStart)
{
    Take take;
    take.timeReference = 2354414956;
    take.start = "-1940552340";
    const auto withBlock = [](const std::string& low, const std::string& high) {
        return "<BEXT><BWF_TIME_REFERENCE_LOW>" + low + "</BWF_TIME_REFERENCE_LOW><BWF_TIME_REFERENCE_HIGH>" + high
            + "</BWF_TIME_REFERENCE_HIGH></BEXT>";
    };
    take.more = withBlock("-1940552340", "0");
    EXPECT_EQ("", codesOf(take));
    take.more = withBlock("", "");
    EXPECT_EQ("", codesOf(take));
    take.more = withBlock("-1940552341", "0");
    EXPECT_EQ("start-differs ", codesOf(take));
}

TEST_F(Check, startCountedInAnotherRateIsComparedAsAMoment)
{
    Take take;
    take.start = "480480";
    take.speed = "<TIMECODE_RATE>25/1</TIMECODE_RATE><TIMESTAMP_SAMPLE_RATE>48048</TIMESTAMP_SAMPLE_RATE>";
    EXPECT_EQ("", codesOf(take));
}

TEST_F(Check, originationTimeIsNoStart)
{
    BextFields fields = Take().bext();
    fields.originationTime = "13:00:00";
    EXPECT_EQ("", codesOf(WavBuilder().bext(fields).ixml(Take().ixml()).fmt(kRate, 1, 8).dataFrames(10)));
}

TEST_F(Check, ixmlThatIsNoXmlIsTold)
{
    const auto codesWith = [this](const std::string& ixml) {
        return codesOf(WavBuilder().bext(Take().bext()).ixml(ixml).fmt(kRate, 1, 8).dataFrames(10));
    };
    const std::string good = Take().ixml();
    EXPECT_EQ("", codesWith(good + std::string(500, '\0')));
    EXPECT_EQ("", codesWith(good + std::string(500, ' ')));
    EXPECT_EQ("ixml-not-well-formed ", codesWith(good + std::string(5, '\0') + "more"));
    Take take;
    take.scene = "a & b";
    EXPECT_EQ("ixml-not-well-formed no-frame-rate ", codesWith("<BWFXML>a & b</BWFXML>"));
    EXPECT_EQ("ixml-not-well-formed ", codesWith(take.ixml()));
    take.scene = "\xE9";
    EXPECT_EQ("ixml-not-utf8 ", codesWith(take.ixml()));
    std::string latin = good;
    latin.replace(latin.find("UTF-8"), 5, "ISO-8859-1");
    EXPECT_EQ("ixml-encoding ", codesWith(latin));
    std::string doctype = good;
    doctype.insert(doctype.find("<BWFXML>"), "<!DOCTYPE BWFXML [<!ENTITY a \"aaaa\">]>");
    EXPECT_EQ("ixml-doctype ", codesWith(doctype));
    EXPECT_EQ("ixml-too-large ", codesWith(good + std::string((size_t{ 1 } << 20) + 1, ' ')));
}

TEST_F(Check, metadataBehindTheAudioOfRf64IsTold)
{
    const Take take;
    const std::string path = put("a.wav",
        WavBuilder::rf64()
            .ds64(6)
            .fmt(kRate, 1, 8)
            .data("audio!")
            .claimSize("data", kPlaceholder)
            .bext(take.bext())
            .ixml(take.ixml()));
    EXPECT_EQ("behind-rf64-audio behind-rf64-audio no-frame-rate ", codesOfFiles({ path }));
    EXPECT_EQ("",
        codesOf(WavBuilder::rf64()
                    .ds64(6)
                    .bext(take.bext())
                    .ixml(take.ixml())
                    .fmt(kRate, 1, 8)
                    .data("audio!")
                    .claimSize("data", kPlaceholder)));
}

TEST_F(Check, containerThatTheWindowDoesNotReadIsTold)
{
    const std::string codes = codesOf(Take().wav().fileId("BW64"));
    EXPECT_EQ("container-not-shown no-frame-rate ", codes);
}

TEST_F(Check, sizesPastTheEndAreTold)
{
    EXPECT_EQ("size-past-end ", codesOf(Take().wav().claimSize("data", 1000000)));
    EXPECT_EQ("data", problemsOf({ folder.file("a.wav") }).front()["field"].toString());
    const std::string whole = Take().wav().bytes();
    writeBytes(folder.file("cut.wav"), whole.substr(0, whole.size() - 10));
    EXPECT_EQ("size-past-end size-past-end ", codesOfFiles({ folder.file("cut.wav") }));
}

TEST_F(Check, padByteThatIsMissingAtTheEndIsNone)
{
    const Take take;
    EXPECT_EQ("", codesOf(WavBuilder().bext(take.bext()).ixml(take.ixml()).fmt(kRate, 1, 8).data("odd").omitPadByte()));
}

TEST_F(Check, tracksAreCountedAgainstChannels)
{
    Take take;
    take.tracks += "<TRACK><CHANNEL_INDEX>2</CHANNEL_INDEX><NAME>Lav</NAME></TRACK>";
    EXPECT_EQ("track-count ", codesOf(take));
    take.tracks = "<TRACK_COUNT>2</TRACK_COUNT><TRACK><CHANNEL_INDEX>4</CHANNEL_INDEX><NAME>Lav</NAME></TRACK>";
    EXPECT_EQ("track-count ", codesOf(take));
    take.tracks = "<TRACK><CHANNEL_INDEX>4</CHANNEL_INDEX><NAME>Lav</NAME></TRACK>";
    EXPECT_EQ("", codesOf(take));
    take.tracks = "<TRACK><CHANNEL_INDEX>1</CHANNEL_INDEX><INTERLEAVE_INDEX>2</INTERLEAVE_INDEX></TRACK>";
    EXPECT_EQ("interleave-index ", codesOf(take));
}

TEST_F(Check, formatOfTheIxmlIsComparedWithFmt)
{
    Take take;
    take.speed += "<FILE_SAMPLE_RATE>96000</FILE_SAMPLE_RATE><AUDIO_BIT_DEPTH>24</AUDIO_BIT_DEPTH>";
    EXPECT_EQ("sample-rate-differs bit-depth-differs ", codesOf(take));
}

TEST_F(Check, frameRateThatIsMissingOrOddIsTold)
{
    Take take;
    take.speed = "";
    EXPECT_EQ("no-frame-rate ", codesOf(take));
    take.speed = "<TIMECODE_RATE>25/0</TIMECODE_RATE>";
    EXPECT_EQ("no-frame-rate ", codesOf(take));
    take.speed = "<TIMECODE_RATE>5000/1</TIMECODE_RATE>";
    EXPECT_EQ("odd-frame-rate ", codesOf(take));
    take.speed = "<TIMECODE_RATE>25/1</TIMECODE_RATE><TIMECODE_FLAG>DF</TIMECODE_FLAG>";
    EXPECT_EQ("odd-drop-frame ", codesOf(take));
    take.speed = "<TIMECODE_RATE>30000/1001</TIMECODE_RATE><TIMECODE_FLAG>DF</TIMECODE_FLAG>";
    EXPECT_EQ("", codesOf(take));
}

/// A take that begins `seconds` after midnight.
Take takeAt(uint64_t seconds, const std::string& number, size_t length = 1)
{
    Take take;
    take.take = number;
    take.timeReference = seconds * kRate;
    take.start = std::to_string(take.timeReference);
    take.seconds = length;
    return take;
}

TEST_F(Check, sceneAndTakeThatTwoFilesHaveIsToldAtTheSecond)
{
    const std::string a = put("a.wav", takeAt(10, "1"));
    const std::string b = put("b.wav", takeAt(20, "1"));
    const std::string c = put("c.wav", takeAt(30, "2"));
    const std::vector<QJsonObject> problems = problemsOf({ c, a, b });
    ASSERT_EQ(1u, problems.size());
    EXPECT_EQ("duplicate-take", problems[0]["code"].toString());
    EXPECT_EQ(a, problems[0]["other_path"].toString().toStdString());
    Take unknown = takeAt(10, "");
    const std::string d = put("d.wav", unknown);
    unknown = takeAt(20, "");
    EXPECT_EQ("", codesOfFiles({ d, put("e.wav", unknown) }));
}

TEST_F(Check, timecodesThatOverlapOnOneRollAreTold)
{
    const std::string a = put("a.wav", takeAt(10, "1", 3));
    EXPECT_EQ("timecode-overlap ", codesOfFiles({ a, put("b.wav", takeAt(12, "2")) }));
    EXPECT_EQ("timecode-overlap ", codesOfFiles({ put("b.wav", takeAt(12, "2")), a }));
    EXPECT_EQ("", codesOfFiles({ a, put("b.wav", takeAt(13, "2")) }));
    Take otherRoll = takeAt(12, "2");
    otherRoll.tape = "R2";
    EXPECT_EQ("", codesOfFiles({ a, put("b.wav", otherRoll) }));
    BextFields otherDay = takeAt(12, "2").bext();
    otherDay.originationDate = "2024-05-02";
    EXPECT_EQ("",
        codesOfFiles({ a,
            put("b.wav",
                WavBuilder().bext(otherDay).ixml(takeAt(12, "2").ixml()).fmt(kRate, 1, 8).dataFrames(kRate)) }));
}

// One long take, many short ones: an earlier one that ends late must not be lost behind later ones.
TEST_F(Check, overlapIsFoundBehindTakesThatBeganLater)
{
    const std::string a = put("a.wav", takeAt(10, "1", 9));
    const std::string b = put("b.wav", takeAt(30, "2"));
    const std::string c = put("c.wav", takeAt(17, "3"));
    EXPECT_EQ("timecode-overlap ", codesOfFiles({ a, b, c }));
}

TEST_F(Check, filesOfOneTakeBelongTogether)
{
    const auto family = [](const std::string& uid, uint64_t seconds) {
        Take take = takeAt(seconds, "1", 3);
        take.more = "<FILE_SET><FAMILY_UID>" + uid + "</FAMILY_UID></FILE_SET>";
        return take;
    };
    EXPECT_EQ("", codesOfFiles({ put("a_1.wav", family("F", 10)), put("a_2.wav", family("F", 11)) }));
    EXPECT_EQ("duplicate-take timecode-overlap ",
        codesOfFiles({ put("a_1.wav", family("F", 10)), put("a_2.wav", family("G", 11)) }));
    // Without a family: the same scene, take and start under another name.
    EXPECT_EQ("", codesOfFiles({ put("a_1.wav", takeAt(10, "1")), put("a_2.wav", takeAt(10, "1")) }));
    EXPECT_EQ("timecode-overlap ", codesOfFiles({ put("a_1.wav", takeAt(10, "1")), put("a_2.wav", takeAt(10, "2")) }));
}

TEST_F(Check, takeOfASecondRecorderIsNoDuplicate)
{
    Take other = takeAt(11, "1", 3);
    other.tape = "R2";
    EXPECT_EQ("", codesOfFiles({ put("a.wav", takeAt(10, "1", 3)), put("b.wav", other) }));
    Take later = takeAt(40, "1", 3);
    later.tape = "R2";
    EXPECT_EQ("duplicate-take ", codesOfFiles({ put("a.wav", takeAt(10, "1", 3)), put("b.wav", later) }));
}

TEST_F(Check, copyIsToldByItsFileUid)
{
    Take take = takeAt(10, "1");
    take.more = "<FILE_UID>U1</FILE_UID>";
    EXPECT_EQ("duplicate-file-uid ", codesOfFiles({ put("a.wav", take), put("b.wav", take) }));
}

TEST_F(Check, fileThatFailsIsALineOfJsonAndTheRestGoesOn)
{
    const std::string gone = folder.file("gone.wav");
    const std::string a = put("a.wav", Take());
    const CliResult both = runCli({ "check", "--json", gone, a });
    EXPECT_EQ(Exit::Found, both.exit);
    EXPECT_EQ(2, std::count(both.out.begin(), both.out.end(), '\n'));
    EXPECT_NE(std::string::npos, both.out.find("\"error\":{\"code\":\"not-found\""));
    EXPECT_EQ("tagwell-cli: " + gone + ": there is no such file\n", both.err);
}

TEST_F(Check, oddNamesAndValuesStayOnTheirLine)
{
    Take take;
    take.description = "SCENE=\x1b[2J\r\n";
    const std::string path = put("two\nlines\xFF.wav", take);
    const CliResult text = runCli({ "check", path });
    EXPECT_EQ(1, std::count(text.out.begin(), text.out.end(), '\n')) << text.out;
    EXPECT_EQ(std::string::npos, text.out.find('\x1b'));
    const CliResult json = runCli({ "check", "--json", path });
    EXPECT_EQ(1, std::count(json.out.begin(), json.out.end(), '\n')) << json.out;
    EXPECT_NE(std::string::npos, json.out.find("\"not_utf8\":true"));
}

TEST_F(Check, commaLocaleChangesNothing)
{
    Take take;
    take.speed = "<TIMECODE_RATE>23.976</TIMECODE_RATE>";
    take.description = "SPEED=025.000-ND\r\n";
    const std::string path = put("a.wav", take);
    const std::string plain = runCli({ "check", path }).out;
    const CommaLocale locale;
    if (!locale.works())
        GTEST_SKIP() << "the locale can't be made here";
    EXPECT_EQ(plain, runCli({ "check", path }).out);
}

TEST_F(Check, editIsToldForEachFile)
{
    Take roomy;
    roomy.more = "<NOTE>a long note</NOTE>";
    const std::string a = put("a.wav", Take());
    const std::string b = put("b.wav", roomy);
    const std::string c = put("c.wav", WavBuilder().ixml("<BWFXML/>").fmt(kRate, 1, 8).dataFrames(1));
    const std::string before = readBytes(a);
    const CliResult text = runCli({ "check", "--scene", "123", "--note", "n", a, b, c });
    EXPECT_EQ(Exit::Found, text.exit);
    // "123" for "1", and a line for the note.
    EXPECT_EQ(a + ": would be written in the Description only: its iXML is 19 bytes too short [ixml-full]\n" + b
            + ": would be written whole\n" + c
            + ": would be refused: it has no bext that the window can see [no-bext]\n",
        text.out);
    EXPECT_EQ(before, readBytes(a));
    EXPECT_EQ(Exit::Ok, runCli({ "check", "--scene", "123", "--note", "n", b }).exit);
    const CliResult json = runCli({ "check", "--json", "--scene", "123", "--note", "n", a });
    const QJsonObject edit = QJsonDocument::fromJson(QByteArray::fromStdString(json.out)).object()["edit"].toObject();
    EXPECT_EQ("description-only", edit["outcome"].toString());
    EXPECT_EQ(19, edit["ixml_missing_bytes"].toInt());
}

TEST_F(Check, wrongUsageEndsWithTwo)
{
    for (const std::vector<std::string>& arguments :
        { std::vector<std::string>{ "check" }, { "check", "--circled", "maybe", "a.wav" },
            { "check", "--track", "x", "a.wav" }, { "check", "--note=", "a.wav" }, { "check", "--csv", "a.wav" } })
        EXPECT_EQ(Exit::Usage, runCli(arguments).exit);
}

TEST_F(Check, hostileFilesGiveALineEach)
{
    std::vector<std::string> arguments = { "check", "--json" };
    for (const auto& entry : fs::recursive_directory_iterator(TAGWELL_FUZZ_CORPUS)) {
        if (entry.is_regular_file())
            arguments.push_back(entry.path().string());
    }
    ASSERT_GT(arguments.size(), 10u);
    const CliResult json = runCli(arguments);
    EXPECT_EQ(arguments.size() - 2, static_cast<size_t>(std::count(json.out.begin(), json.out.end(), '\n')));
    arguments.insert(arguments.begin() + 2, { "--scene", "12A", "--circled", "yes", "--wild", "yes" });
    const CliResult edit = runCli(arguments);
    EXPECT_EQ(arguments.size() - 8, static_cast<size_t>(std::count(edit.out.begin(), edit.out.end(), '\n')));
}

TEST_F(Check, recordingsGiveNothing)
{
    const char* const recordings = std::getenv("TAGWELL_RECORDINGS");
    if (!recordings)
        GTEST_SKIP() << "TAGWELL_RECORDINGS is not set";
    EXPECT_EQ("", codesOfFiles({ recordings }));
    EXPECT_EQ(Exit::Ok, result.exit);
    EXPECT_EQ(7, std::count(result.out.begin(), result.out.end(), '\n'));
}

} // namespace
