#include "core/PaddedIxmlEdit.h"

#include "core/BwfMetadataReader.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

namespace {

using State = IxmlPayload::State;

constexpr uint64_t kHighHalf = uint64_t{ 1 } << 32;

BwfMetadata recordOf(const std::string& payload)
{
    BwfMetadata record;
    BwfMetadataReader::parseIxml(payload, record);
    return record;
}

/// One payload and what is wanted of it.
struct Edit {
    explicit Edit(std::string bytes) : payload(std::move(bytes)), current(recordOf(payload)), updated(current) { }

    IxmlPayload run() const { return editedIxmlPayload(payload, { current, updated, start, usePadding }); }

    std::string payload;
    BwfMetadata current;
    BwfMetadata updated;
    std::optional<uint64_t> start = std::nullopt;
    bool usePadding = true;
};

IxmlPayload withScene(const std::string& payload, const std::string& scene)
{
    Edit edit(payload);
    edit.updated.scene = scene;
    return edit.run();
}

std::string ixml(const std::string& inside)
{
    return "<BWFXML>" + inside + "</BWFXML>";
}

const std::string kNuls(20, '\0');

TEST(PaddedIxmlEdit, growthIsTakenFromThePaddingAndTheLengthStays)
{
    EXPECT_EQ(ixml("<SCENE>12ABC</SCENE>") + std::string(17, ' '),
        withScene(ixml("<SCENE>12</SCENE>") + std::string(20, ' '), "12ABC").bytes);
    EXPECT_EQ(ixml("<SCENE>12ABC</SCENE>") + std::string(17, '\0'),
        withScene(ixml("<SCENE>12</SCENE>") + kNuls, "12ABC").bytes);
}

TEST(PaddedIxmlEdit, growthUpToTheLastByteFitsAndOneMoreIsRefusedWithItsCount)
{
    const std::string payload = ixml("<SCENE>1</SCENE>") + "   ";
    EXPECT_EQ(ixml("<SCENE>1234</SCENE>"), withScene(payload, "1234").bytes);
    const IxmlPayload tooLong = withScene(payload, "123456");
    EXPECT_EQ(State::TooLong, tooLong.state);
    EXPECT_EQ(2u, tooLong.missingBytes);
    EXPECT_EQ("", tooLong.bytes);
}

TEST(PaddedIxmlEdit, withoutUseOfThePaddingAnyGrowthIsTooLong)
{
    Edit edit(ixml("<SCENE>1</SCENE>") + kNuls);
    edit.updated.scene = "12";
    edit.usePadding = false;
    EXPECT_EQ(State::TooLong, edit.run().state);
    EXPECT_EQ(1u, edit.run().missingBytes);
}

TEST(PaddedIxmlEdit, lineEndBehindTheTextIsNoPadding)
{
    for (const std::string& end : { std::string("\r\n"), std::string("\n"), std::string("\r") }) {
        EXPECT_EQ(ixml("<SCENE>123</SCENE>") + end, withScene(ixml("<SCENE>1</SCENE>") + end + "  ", "123").bytes);
        EXPECT_EQ(State::TooLong, withScene(ixml("<SCENE>1</SCENE>") + end + " ", "123").state);
    }
}

TEST(PaddedIxmlEdit, mixedPaddingLosesItsFrontAndKeepsTheRest)
{
    const std::string tail = "\n  \t" + std::string(3, '\0');
    EXPECT_EQ(ixml("<SCENE>123</SCENE>") + "\n\t" + std::string(3, '\0'),
        withScene(ixml("<SCENE>1</SCENE>") + tail, "123").bytes);
}

TEST(PaddedIxmlEdit, whatShrinkageLeavesIsFilledAsThePaddingIs)
{
    EXPECT_EQ(ixml("<SCENE>1</SCENE>") + "    ", withScene(ixml("<SCENE>123</SCENE>") + "  ", "1").bytes);
    EXPECT_EQ(ixml("<SCENE>1</SCENE>") + std::string(4, '\0'),
        withScene(ixml("<SCENE>123</SCENE>") + std::string(2, '\0'), "1").bytes);
    EXPECT_EQ(ixml("<SCENE>1</SCENE>") + "  ", withScene(ixml("<SCENE>123</SCENE>"), "1").bytes);
}

TEST(PaddedIxmlEdit, bytesBehindANulAreNobodysRoom)
{
    const std::string text = ixml("<SCENE>1</SCENE>");
    EXPECT_EQ(State::ForeignBytes, withScene(text + kNuls + "x", "12").state);
    EXPECT_EQ(State::ForeignBytes, withScene(text + kNuls + "<x>", "12").state);
    EXPECT_EQ(State::ForeignBytes, withScene(text + "x" + kNuls, "12").state);
    EXPECT_EQ(State::ForeignBytes, withScene("", "12").state);
    EXPECT_EQ(State::ForeignBytes, withScene(kNuls, "12").state);
}

TEST(PaddedIxmlEdit, newValuesAreEscapedAndOldOnesStay)
{
    Edit edit(ixml("<SCENE>1</SCENE><NOTE>a &amp; b</NOTE><TAPE>raw & raw</TAPE>") + std::string(40, ' '));
    edit.updated.scene = "a<b>&c";
    EXPECT_EQ(ixml("<SCENE>a&lt;b&gt;&amp;c</SCENE><NOTE>a &amp; b</NOTE><TAPE>raw & raw</TAPE>"),
        edit.run().bytes.substr(0, edit.run().bytes.find_last_of('>') + 1));
}

TEST(PaddedIxmlEdit, valueThatStandsThereEscapedAlreadyIsNoChange)
{
    EXPECT_EQ(State::Unchanged, withScene(ixml("<SCENE>a &amp; b</SCENE>") + "  ", "a & b").state);
    EXPECT_EQ(State::Unchanged, withScene(ixml("<SCENE>a &amp; b</SCENE>") + "  ", "a &amp; b").state);
}

TEST(PaddedIxmlEdit, charactersThatXmlForbidsAreLeftOut)
{
    EXPECT_EQ("ab\tc\nd\re\x7F\xFF",
        xmlEscaped(std::string("a\x01"
                               "b\tc\nd\re\0\x1F\x7F\xFF",
            13)));
}

TEST(PaddedIxmlEdit, trackNamesAndFunctionsGrow)
{
    const std::string track = "<TRACK_LIST><TRACK><CHANNEL_INDEX>2</CHANNEL_INDEX><NAME>B</NAME><FUNCTION></FUNCTION>"
                              "</TRACK></TRACK_LIST>";
    Edit edit(ixml(track) + kNuls);
    edit.updated.tracks[0].name = "R&D";
    edit.updated.tracks[0].function = "MIX";
    const BwfMetadata after = recordOf(edit.run().bytes);
    ASSERT_EQ(1u, after.tracks.size());
    EXPECT_EQ("R&amp;D", after.tracks[0].name);
    EXPECT_EQ("MIX", after.tracks[0].function);
    EXPECT_EQ(edit.payload.size(), edit.run().bytes.size());
}

TEST(PaddedIxmlEdit, wildTrackElementThatSaysFalseIsTurnedToTrue)
{
    Edit edit(ixml("<WILD_TRACK>FALSE</WILD_TRACK>") + "  ");
    edit.updated.wildTrack = true;
    EXPECT_EQ(ixml("<WILD_TRACK>TRUE</WILD_TRACK>") + "   ", edit.run().bytes);
    Edit empty(ixml("<WILD_TRACK></WILD_TRACK>") + "    ");
    empty.updated.wildTrack = true;
    EXPECT_EQ(ixml("<WILD_TRACK>TRUE</WILD_TRACK>"), empty.run().bytes);
}

TEST(PaddedIxmlEdit, userBitsThatStandInTheTextAreReplacedAndNoneArePutIn)
{
    Edit edit(ixml("<UBITS>12311801</UBITS>"));
    ASSERT_EQ("$12311801", edit.current.ubits);
    edit.updated.ubits = "$00000002";
    EXPECT_EQ(ixml("<UBITS>00000002</UBITS>"), edit.run().bytes);
    Edit none(ixml("<SCENE>1</SCENE>") + std::string(60, ' '));
    none.updated.ubits = "$00000002";
    EXPECT_EQ(State::Unchanged, none.run().state);
}

// The start.

std::string speed(const std::string& high, const std::string& low)
{
    return ixml("<SPEED><TIMESTAMP_SAMPLES_SINCE_MIDNIGHT_HI>" + high
        + "</TIMESTAMP_SAMPLES_SINCE_MIDNIGHT_HI><TIMESTAMP_SAMPLES_SINCE_MIDNIGHT_LO>" + low
        + "</TIMESTAMP_SAMPLES_SINCE_MIDNIGHT_LO></SPEED>");
}

std::string bext(const std::string& low, const std::string& high)
{
    return ixml("<BEXT><BWF_TIME_REFERENCE_LOW>" + low + "</BWF_TIME_REFERENCE_LOW><BWF_TIME_REFERENCE_HIGH>" + high
        + "</BWF_TIME_REFERENCE_HIGH></BEXT>");
}

TEST(IxmlStart, keepsTheWidthOfTheDigits)
{
    EXPECT_EQ(speed("0000000000", "0000000007"), ixmlWithStart(speed("0000000000", "2190940753"), 7));
    EXPECT_EQ(speed("0", "7"), ixmlWithStart(speed("0", "1"), 7));
    EXPECT_EQ(speed("1", "12"), ixmlWithStart(speed("0", "1"), kHighHalf + 12));
    EXPECT_EQ(speed("0", "0"), ixmlWithStart(speed("0", "1"), 0));
}

TEST(IxmlStart, isWrittenInBothBlocksAndNowhereElse)
{
    const std::string text = speed("0", "5") + bext("5", "0") + "<TIMESTAMP_SAMPLES_SINCE_MIDNIGHT_LO>5<";
    EXPECT_EQ(speed("0", "6") + bext("6", "0") + "<TIMESTAMP_SAMPLES_SINCE_MIDNIGHT_LO>5<", ixmlWithStart(text, 6));
}

TEST(IxmlStart, signedLowHalfBecomesUnsigned)
{
    EXPECT_EQ(bext("02354414956", "0"), ixmlWithStart(bext("-1940552340", "0"), 2354414956u));
}

TEST(IxmlStart, emptyElementsStayEmpty)
{
    EXPECT_EQ(bext("", ""), ixmlWithStart(bext("", ""), 7));
    EXPECT_EQ(speed("", ""), ixmlWithStart(speed("", ""), kHighHalf));
}

TEST(IxmlStart, highHalfWithoutAPlaceIsRefused)
{
    EXPECT_EQ(std::nullopt, ixmlWithStart(bext("5", ""), kHighHalf));
    EXPECT_EQ(bext("6", ""), ixmlWithStart(bext("5", ""), 6));
    Edit edit(bext("5", ""));
    edit.start = kHighHalf;
    EXPECT_EQ(State::NoPlaceForStart, edit.run().state);
}

TEST(IxmlStart, digitsThatGrowNeedRoom)
{
    Edit edit(speed("0", "5") + "  ");
    edit.start = 1234;
    EXPECT_EQ(State::TooLong, edit.run().state);
    EXPECT_EQ(1u, edit.run().missingBytes);
    edit.start = 123;
    EXPECT_EQ(speed("0", "123"), edit.run().bytes);
    edit.usePadding = false;
    EXPECT_EQ(State::TooLong, edit.run().state);
}

// Whatever the text and the values are: the length stays, what is named reads back, and the rest reads as before.
TEST(PaddedIxmlEdit, anyEditKeepsTheLengthAndReadsBackWhatWasAskedFor)
{
    std::mt19937 random(1);
    const auto pick = [&random](size_t count) { return random() % count; };
    const auto value = [&] {
        static const std::string kParts[] = { "a", "B", "7", " - ", "&", "<", ">", "\xC3\xA4", "\"", "</SCENE>" };
        std::string text = "v";
        for (size_t i = pick(12); i > 0; --i)
            text += kParts[pick(std::size(kParts))];
        return text + "w";
    };
    int edited = 0;
    for (int round = 0; round < 3000; ++round) {
        std::string inside;
        for (const char* name : { "SCENE", "TAKE", "TAPE", "NOTE", "PROJECT" }) {
            if (pick(3) > 0)
                inside += std::string("\r\n\t<") + name + ">" + xmlEscaped(value()) + "</" + name + ">";
        }
        const char fill = pick(2) == 0 ? ' ' : '\0';
        Edit edit(ixml(inside) + (pick(2) == 0 ? "\r\n" : "") + std::string(pick(150), fill));
        for (std::string BwfMetadata::*field : { &BwfMetadata::scene, &BwfMetadata::note }) {
            if (pick(2) == 0)
                edit.updated.*field = value();
        }
        edit.updated.circled = pick(2) == 0;
        const IxmlPayload result = edit.run();
        if (result.state != State::Edited)
            continue;
        ++edited;
        ASSERT_EQ(edit.payload.size(), result.bytes.size());
        const BwfMetadata after = recordOf(result.bytes);
        const BwfMetadata wanted = escapedForXml(edit.updated, edit.current);
        EXPECT_EQ(wanted.scene, after.scene);
        EXPECT_EQ(wanted.note, after.note);
        EXPECT_EQ(edit.updated.circled, after.circled);
        EXPECT_EQ(edit.current.take, after.take);
        EXPECT_EQ(edit.current.tape, after.tape);
        EXPECT_EQ(edit.current.project, after.project);
        EXPECT_TRUE(ixmlRoom(result.bytes));
    }
    EXPECT_GT(edited, 1000);
}

} // namespace
