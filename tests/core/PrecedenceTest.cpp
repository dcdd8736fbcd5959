// Which source of a field wins: `bext`, the iXML and its blocks, or the lines of the Description. Each row is a whole
// file, read through readMetadata.

#include "core/BwfMetadataReader.h"

#include "tests/support/TempFolder.h"
#include "tests/support/WavBuilder.h"

#include <gtest/gtest.h>

#include <functional>
#include <sstream>

namespace {

struct Row {
    const char* name;
    BextFields bext;
    std::string ixml; // Without a chunk if it is kNoIxml.
    std::function<std::string(const BwfMetadata&)> field;
    std::string expected;
};

const std::string kNoIxml = "-";

std::string element(const std::string& tag, const std::string& value)
{
    return "<" + tag + ">" + value + "</" + tag + ">";
}

std::string speedTime(const std::string& high, const std::string& low)
{
    return element("SPEED",
        element("TIMESTAMP_SAMPLES_SINCE_MIDNIGHT_HI", high) + element("TIMESTAMP_SAMPLES_SINCE_MIDNIGHT_LO", low));
}

std::string bextTime(const std::string& high, const std::string& low)
{
    return element("BEXT", element("BWF_TIME_REFERENCE_LOW", low) + element("BWF_TIME_REFERENCE_HIGH", high));
}

std::string rate(const std::string& value)
{
    return element("SPEED", element("TIMECODE_RATE", value));
}

BextFields time(uint64_t reference)
{
    BextFields fields;
    fields.timeReference = reference;
    return fields;
}

BextFields clock(const std::string& timeOfDay)
{
    BextFields fields;
    fields.originationTime = timeOfDay;
    fields.originationDate = "2024-01-02";
    return fields;
}

BextFields says(const std::string& description)
{
    BextFields fields;
    fields.description = description;
    return fields;
}

std::string number(double value)
{
    std::ostringstream out;
    out << value;
    return out.str();
}

std::string timeReference(const BwfMetadata& record)
{
    return std::to_string(record.timeReference);
}
std::string timestampRate(const BwfMetadata& record)
{
    return std::to_string(record.timestampSampleRate);
}
std::string frameRate(const BwfMetadata& record)
{
    return number(record.frameRate);
}
std::string dropFrame(const BwfMetadata& record)
{
    return record.dropFrame ? "drop" : "non-drop";
}
std::string originationTime(const BwfMetadata& record)
{
    return record.originationTime;
}
std::string originationDate(const BwfMetadata& record)
{
    return record.originationDate;
}
std::string scene(const BwfMetadata& record)
{
    return record.scene;
}
std::string tape(const BwfMetadata& record)
{
    return record.tape;
}
std::string take(const BwfMetadata& record)
{
    return record.take;
}
std::string note(const BwfMetadata& record)
{
    return record.note;
}
std::string ubits(const BwfMetadata& record)
{
    return record.ubits;
}
std::string project(const BwfMetadata& record)
{
    return record.project;
}

std::string flags(const BwfMetadata& record)
{
    return std::string(record.circled ? "circled " : "") + (record.wildTrack ? "wild" : "");
}

std::string tracks(const BwfMetadata& record)
{
    std::string text;
    for (const BwfTrack& track : record.tracks)
        text += std::to_string(track.channelIndex) + track.name + " ";
    return text;
}

class Precedence : public testing::TestWithParam<Row> { };

const std::string kDrop = element("SPEED", element("TIMECODE_FLAG", "DF"));
const std::string kTracks = element("TRACK_LIST", element("TRACK", element("NAME", "A")));

std::vector<Row> timeRows()
{
    return {
        { "bextTimeAlone", time(5), kNoIxml, timeReference, "5" },
        { "bextTimeStaysUnderIxmlWithoutTime", time(5), "<SCENE>1</SCENE>", timeReference, "5" },
        { "bextTimeOfZeroIsNone", time(0), kNoIxml, timeReference, "0" },
        { "bextTimeBeyondTheLimitIsNone", time(20000000001), kNoIxml, timeReference, "0" },
        { "speedTimeOverBextTime", time(5), speedTime("0", "6"), timeReference, "6" },
        { "speedTimeOfZeroOverBextTime", time(5), speedTime("0", "0"), timeReference, "0" },
        { "speedTimeNeedsBothTags", time(5), element("SPEED", element("TIMESTAMP_SAMPLES_SINCE_MIDNIGHT_LO", "6")),
            timeReference, "5" },
        { "ixmlBextTimeOverSpeedTime", time(5), bextTime("0", "7") + speedTime("0", "6"), timeReference, "7" },
        { "ixmlBextTimeOfZeroIsNone", time(5), bextTime("0", "0") + speedTime("0", "6"), timeReference, "6" },
        { "ixmlBextTimeBeyondTheLimitIsNone", time(5), bextTime("5", "0"), timeReference, "5" },
        { "clockOfBextFirst", clock("01:02:03"), element("BEXT", element("BWF_ORIGINATION_TIME", "04-05-06")),
            originationTime, "01:02:03" },
        { "clockOfIxmlWhereBextsIsMalformed", clock("01-02-03"),
            element("BEXT", element("BWF_ORIGINATION_TIME", "04-05-06")), originationTime, "04:05:06" },
        { "dateOfBextAlone", clock(""), element("BEXT", element("BWF_ORIGINATION_DATE", "2025-09-09")), originationDate,
            "2024-01-02" },
    };
}

std::vector<Row> rateRows()
{
    const std::string both
        = element("SPEED", element("TIMESTAMP_SAMPLE_RATE", "47952") + element("TIMECODE_RATE", "24000/1001"));
    return {
        { "timestampRateOfIxmlFirst", says("TS=1"), both, timestampRate, "47952" },
        { "timestampRateOfTheFractionNext", says("TS=1"), rate("25025/1001"), timestampRate, "48048" },
        { "timestampRateOfDigitalKeysLast", says("TS=1"), rate("25"), timestampRate, "48000" },
        { "timestampRateOfPulledDigitalKeys", says("TS=1"), rate("29.97"), timestampRate, "48048" },
        { "timestampRateOfNothing", says("SCENE=1"), rate("25"), timestampRate, "0" },
        { "timestampRateZeroOfIxmlIsNone", says("TS=1"),
            element("SPEED", element("TIMESTAMP_SAMPLE_RATE", "0") + element("TIMECODE_RATE", "25")), timestampRate,
            "48000" },
        { "frameRateOfIxmlFirst", says("SPEED=30-ND"), rate("25"), frameRate, "25" },
        { "negativeFrameRateOfIxmlStays", says("SPEED=30-ND"), rate("-25"), frameRate, "-25" },
        { "frameRateOfTheDescriptionWhereZero", says("SPEED=30-ND"), rate("0"), frameRate, "30" },
        { "frameRateOfTheDescriptionWhereUnknown", says("SPEED=30-ND"), "", frameRate, "30" },
        { "dropFrameOfIxmlAlone", says("SPEED=30-DF"), kDrop, dropFrame, "drop" },
        { "dropFrameNotOfTheDescription", says("SPEED=29.97-DF"), "", dropFrame, "non-drop" },
    };
}

std::vector<Row> textRows()
{
    std::vector<Row> rows;
    const auto add = [&rows](const char* first, const char* second, const char* third, const char* tag, auto field) {
        const std::string line = std::string(tag) + "=d\n";
        rows.push_back({ first, says(line), element(tag, "x"), field, "x" });
        rows.push_back({ second, says(line), element(tag, " "), field, "d" });
        rows.push_back({ third, says(line), kNoIxml, field, "" });
    };
    add("sceneOfIxml", "sceneOfTheDescription", "sceneOfTheDescriptionNeedsIxml", "SCENE", scene);
    add("tapeOfIxml", "tapeOfTheDescription", "tapeOfTheDescriptionNeedsIxml", "TAPE", tape);
    add("takeOfIxml", "takeOfTheDescription", "takeOfTheDescriptionNeedsIxml", "TAKE", take);
    add("noteOfIxml", "noteOfTheDescription", "noteOfTheDescriptionNeedsIxml", "NOTE", note);
    return rows;
}

std::vector<Row> otherRows()
{
    return {
        { "userBitsOfIxmlWithDollar", says("TS=2"), element("UBITS", "1"), ubits, "$1" },
        { "userBitsOfTheDescriptionAsTheyStand", says("TS=2"), "", ubits, "2" },
        { "projectOfIxmlAlone", says("TAG=t\nPROJECT=p"), element("PROJECT", "x"), project, "x" },
        { "projectNotOfTheDescription", says("TAG=t\nPROJECT=p"), "", project, "" },
        { "flagsOfIxmlAlone", says("CIRCLED=TRUE"), element("CIRCLED", "TRUE") + element("WILD_TRACK", "1"), flags,
            "circled wild" },
        { "flagsNotOfTheDescription", says("CIRCLED=TRUE\nWILD_TRACK=TRUE"), "", flags, "" },
        { "tracksOfIxmlFirst", says("TRK1=D\nTRK2=E"), kTracks, tracks, "1A " },
        { "tracksOfTheDescription", says("TRK1=D\nTRK3=E"), "", tracks, "1D 3E " },
        { "tracksOfTheDescriptionNeedIxml", says("TRK1=D"), kNoIxml, tracks, "" },
    };
}

} // namespace

TEST_P(Precedence, theFirstSourceThatCountsGivesTheValue)
{
    const Row& row = GetParam();
    TempFolder folder;
    WavBuilder file;
    file.fmt(48000, 2, 24).bext(row.bext).data("");
    if (row.ixml != kNoIxml)
        file.ixml(row.ixml);
    file.write(folder.file("a.wav"));
    EXPECT_EQ(row.field(BwfMetadataReader::readMetadata(folder.file("a.wav"))), row.expected);
}

const auto kRowName = [](const testing::TestParamInfo<Row>& row) { return std::string(row.param.name); };
INSTANTIATE_TEST_SUITE_P(Time, Precedence, testing::ValuesIn(timeRows()), kRowName);
INSTANTIATE_TEST_SUITE_P(Rate, Precedence, testing::ValuesIn(rateRows()), kRowName);
INSTANTIATE_TEST_SUITE_P(Text, Precedence, testing::ValuesIn(textRows()), kRowName);
INSTANTIATE_TEST_SUITE_P(Other, Precedence, testing::ValuesIn(otherRows()), kRowName);
