#include "core/BwfMetadataWriter.h"

#include "core/BwfMetadata.h"
#include "core/BwfMetadataReader.h"
#include "tests/support/ChangedRanges.h"
#include "tests/support/TempFolder.h"
#include "tests/support/WavBuilder.h"

#include <gtest/gtest.h>

#include <fstream>
#include <locale>
#include <memory>
#include <string>

// The iXML text is edited in a file of fmt, iXML and data. Each test states what the whole payload is afterwards.

namespace {

constexpr size_t kPadding = 1000;

std::string padded(const std::string& text, size_t size)
{
    return text + std::string(size - text.size(), '\0');
}

std::string trackXml(const std::string& index, const std::string& inside)
{
    return "<TRACK><CHANNEL_INDEX>" + index + "</CHANNEL_INDEX>" + inside + "</TRACK>";
}

class IxmlEditTest : public testing::Test {
protected:
    /// Puts `text` into a file as the whole chunk and lets the writer edit it.
    bool edit(const std::string& text)
    {
        WavBuilder builder;
        builder.fmt(48000, 2, 24).ixml(text).dataFrames(40);
        builder.write(path);
        position = builder.payloadOffset("iXML");
        proof = std::make_unique<FileProof>(path);
        std::fstream stream(path, std::ios::in | std::ios::out | std::ios::binary);
        const bool done = BwfMetadataWriter::updateIxmlFields(
            stream, static_cast<uint32_t>(position), static_cast<uint32_t>(text.size()), current, updated);
        EXPECT_TRUE(stream.good());
        return done;
    }

    /// The chunk is written in full and holds this text, then NUL; nothing else has changed.
    void expectText(const std::string& text, size_t size)
    {
        EXPECT_EQ(proof->patchedExactly({ { position, padded(text, size) } }), "");
        EXPECT_NE(proof->untouched(), "") << "the chunk was not written";
    }

    /// One edit that succeeds, and its text.
    void expectEdit(const std::string& before, const std::string& after)
    {
        EXPECT_TRUE(edit(before));
        expectText(after, before.size());
    }

    /// The edit has no effect on the file and this result.
    void expectUntouched(const std::string& before, bool result)
    {
        EXPECT_EQ(edit(before), result);
        EXPECT_EQ(proof->untouched(), "");
    }

    TempFolder folder;
    std::string path = folder.file("take.wav");
    size_t position = 0;
    std::unique_ptr<FileProof> proof;
    BwfMetadata current;
    BwfMetadata updated;
};

} // namespace

TEST_F(IxmlEditTest, valueOfTheSameLengthReplacesTheOldOne)
{
    current.scene = "12";
    updated.scene = "13";
    expectEdit("<BWFXML><SCENE>12</SCENE></BWFXML>", "<BWFXML><SCENE>13</SCENE></BWFXML>");
    EXPECT_EQ(proof->changedExactly({ { position + 16, position + 17 } }), "");
}

TEST_F(IxmlEditTest, growthFailsEvenWithAThousandBytesOfNulAtTheEnd)
{
    current.scene = "12";
    updated.scene = "12A";
    expectUntouched("<BWFXML><SCENE>12</SCENE></BWFXML>" + std::string(kPadding, '\0'), false);
}

TEST_F(IxmlEditTest, growthFailsEvenWithAThousandBlanksAtTheEnd)
{
    current.scene = "12";
    updated.scene = "12A";
    expectUntouched("<BWFXML><SCENE>12</SCENE></BWFXML>" + std::string(kPadding, ' '), false);
}

TEST_F(IxmlEditTest, shrinkingMovesTheTextUpAndEndsItInNul)
{
    current.scene = "12A";
    updated.scene = "12";
    expectEdit("<BWFXML><SCENE>12A</SCENE></BWFXML>", "<BWFXML><SCENE>12</SCENE></BWFXML>");
    EXPECT_EQ(readBytes(path)[position + 34], '\0');
}

TEST_F(IxmlEditTest, paddingOfBlanksMovesUpWithTheText)
{
    current.scene = "12A";
    updated.scene = "12";
    expectEdit("<BWFXML><SCENE>12A</SCENE></BWFXML>    ", "<BWFXML><SCENE>12</SCENE></BWFXML>    ");
}

TEST_F(IxmlEditTest, growthIsPaidForByShrinkageInTheSameCall)
{
    updated.scene = "1234";
    updated.note = "a";
    expectEdit("<NOTE>abc</NOTE><SCENE>12</SCENE></BWFXML>", "<NOTE>a</NOTE><SCENE>1234</SCENE></BWFXML>");
}

TEST_F(IxmlEditTest, growthByOneMoreThanTheShrinkageFailsAsAWhole)
{
    updated.scene = "12345";
    updated.note = "a";
    expectUntouched("<NOTE>abc</NOTE><SCENE>12</SCENE></BWFXML>", false);
}

TEST_F(IxmlEditTest, newElementWithoutShrinkageFails)
{
    updated.note = "x";
    expectUntouched("<BWFXML><SCENE>12</SCENE></BWFXML>" + std::string(kPadding, '\0'), false);
}

TEST_F(IxmlEditTest, newElementIsALineInFrontOfTheClosingRoot)
{
    updated.note = "new";
    updated.scene = "1";
    const std::string scene(40, 's');
    expectEdit("<BWFXML>\n<SCENE>" + scene + "</SCENE>\n</BWFXML>\n",
        "<BWFXML>\n<SCENE>1</SCENE>\n  <NOTE>new</NOTE>\n</BWFXML>\n");
}

TEST_F(IxmlEditTest, eachOfTheFiveElementsAndCircledIsInsertedInItsOrder)
{
    updated.note = "n";
    updated.scene = "s";
    updated.tape = "t";
    updated.take = "k";
    updated.project = "p";
    updated.circled = true;
    current.wildTrack = true;
    const std::string paying = "<WILD_TRACK>" + std::string(300, 'x') + "</WILD_TRACK>";
    expectEdit(paying + "</BWFXML>",
        "  <NOTE>n</NOTE>\n  <SCENE>s</SCENE>\n  <TAPE>t</TAPE>\n  <TAKE>k</TAKE>\n  <PROJECT>p</PROJECT>\n"
        "  <CIRCLED>TRUE</CIRCLED>\n</BWFXML>");
}

TEST_F(IxmlEditTest, elementsAreEditedInAFixedOrder)
{
    // The note comes first and brings the scene that is then found in front of the old one.
    updated.note = "<SCENE>1</SCENE>";
    updated.scene = "22";
    expectEdit("<NOTE>" + std::string(17, 'n') + "</NOTE><SCENE>old</SCENE></BWFXML>",
        "<NOTE><SCENE>22</SCENE></NOTE><SCENE>old</SCENE></BWFXML>");
}

TEST_F(IxmlEditTest, emptyOrEqualValueSkipsTheElement)
{
    current.scene = updated.scene = "12";
    current.note = "kept";
    expectUntouched("<BWFXML><SCENE>99</SCENE><NOTE>kept</NOTE></BWFXML>", true);
}

TEST_F(IxmlEditTest, withoutElementAndClosingRootTheEditIsSkippedAndTrue)
{
    updated.scene = "12";
    updated.circled = true;
    updated.wildTrack = true;
    expectUntouched("<BWFXML><NOTE>x</NOTE>", true);
}

TEST_F(IxmlEditTest, elementThatCannotBePlacedDoesNotHoldBackTheOthers)
{
    updated.scene = "12";
    updated.note = "y";
    expectEdit("<BWFXML><NOTE>x</NOTE>", "<BWFXML><NOTE>y</NOTE>");
}

TEST_F(IxmlEditTest, openingTagAloneCountsAsMissing)
{
    updated.scene = "1";
    updated.note = "n";
    expectEdit("<SCENE>5<NOTE>" + std::string(30, 'x') + "</NOTE></BWFXML>",
        "<SCENE>5<NOTE>n</NOTE>  <SCENE>1</SCENE>\n</BWFXML>");
}

TEST_F(IxmlEditTest, everythingBetweenTheTagsGoesNestedElementsIncluded)
{
    updated.note = "n";
    expectEdit("<NOTE> a <SCENE>7</SCENE>\n b </NOTE></BWFXML>", "<NOTE>n</NOTE></BWFXML>");
}

TEST_F(IxmlEditTest, onlyTheFirstElementOfANameIsEdited)
{
    updated.scene = "9";
    expectEdit("<SCENE>1</SCENE><SCENE>2</SCENE></BWFXML>", "<SCENE>9</SCENE><SCENE>2</SCENE></BWFXML>");
}

TEST_F(IxmlEditTest, valuesGoInByteForByte)
{
    updated.note = "a<b>&\xFF\"";
    expectEdit("<NOTE>1234567</NOTE>", "<NOTE>a<b>&\xFF\"</NOTE>");
}

TEST_F(IxmlEditTest, lowerCaseElementIsNotSeenAndAnUpperCaseOneInserted)
{
    updated.scene = "2";
    updated.note = "n";
    expectEdit("<scene>1</scene><NOTE>" + std::string(30, 'x') + "</NOTE></BWFXML>",
        "<scene>1</scene><NOTE>n</NOTE>  <SCENE>2</SCENE>\n</BWFXML>");
    BwfMetadata read;
    BwfMetadataReader::parseIxml(readBytes(path), read);
    EXPECT_EQ(read.scene, "2");
}

TEST_F(IxmlEditTest, elementClosedBeforeItIsOpenedIsSkippedInSilence)
{
    updated.scene = "2";
    expectUntouched("</SCENE>abc<SCENE>1</SCENE></BWFXML>", true);
}

TEST_F(IxmlEditTest, elementClosedBeforeItIsOpenedDoesNotHoldBackTheOthers)
{
    updated.scene = "2";
    updated.note = "y";
    expectEdit(
        "</SCENE>abc<SCENE>1</SCENE><NOTE>x</NOTE></BWFXML>", "</SCENE>abc<SCENE>1</SCENE><NOTE>y</NOTE></BWFXML>");
}

TEST_F(IxmlEditTest, circledFromFalseToTrueShrinksByOne)
{
    updated.circled = true;
    expectEdit("<CIRCLED>FALSE</CIRCLED></BWFXML>", "<CIRCLED>TRUE</CIRCLED></BWFXML>");
}

TEST_F(IxmlEditTest, circledFromTrueToFalseGrowsByOneAndFails)
{
    current.circled = true;
    expectUntouched("<CIRCLED>TRUE</CIRCLED></BWFXML>" + std::string(kPadding, '\0'), false);
}

TEST_F(IxmlEditTest, circledFromTrueToFalseFitsWhenSomethingElseShrinks)
{
    current.circled = true;
    updated.take = "1";
    expectEdit("<CIRCLED>TRUE</CIRCLED><TAKE>01</TAKE>", "<CIRCLED>FALSE</CIRCLED><TAKE>1</TAKE>");
}

TEST_F(IxmlEditTest, equalFlagsLeaveTheirElementsAlone)
{
    current.circled = updated.circled = true;
    current.wildTrack = updated.wildTrack = true;
    expectUntouched("<CIRCLED>1</CIRCLED><WILD_TRACK>1</WILD_TRACK></BWFXML>", true);
}

TEST_F(IxmlEditTest, wildTrackFromTrueToFalseErasesTheElementAlone)
{
    current.wildTrack = true;
    expectEdit("<BWFXML>\n  <WILD_TRACK>TRUE</WILD_TRACK>\n</BWFXML>", "<BWFXML>\n  \n</BWFXML>");
}

TEST_F(IxmlEditTest, wildTrackElementThatSaysFalseCannotBeTurnedToTrueYetTheChunkIsWritten)
{
    updated.wildTrack = true;
    expectEdit("<WILD_TRACK>FALSE</WILD_TRACK></BWFXML>", "<WILD_TRACK>FALSE</WILD_TRACK></BWFXML>");
}

TEST_F(IxmlEditTest, wildTrackIsInsertedWhenSomethingElseShrinks)
{
    updated.wildTrack = true;
    updated.note = "n";
    expectEdit("<NOTE>" + std::string(60, 'x') + "</NOTE>\n</BWFXML>",
        "<NOTE>n</NOTE>\n  <WILD_TRACK>TRUE</WILD_TRACK>\n</BWFXML>");
}

TEST_F(IxmlEditTest, wildTrackWithoutPlaceIsSkipped)
{
    updated.wildTrack = true;
    expectUntouched("<BWFXML>", true);
}

TEST_F(IxmlEditTest, wildTrackThatIsNotThereNeedsNoErasing)
{
    current.wildTrack = true;
    expectUntouched("<wild_track>TRUE</wild_track></BWFXML>", true);
}

TEST_F(IxmlEditTest, wildTrackClosedBeforeItIsOpenedIsNotErased)
{
    current.wildTrack = true;
    expectUntouched("</WILD_TRACK>abc<WILD_TRACK>TRUE</BWFXML>", true);
}

TEST_F(IxmlEditTest, nameAndFunctionOfAListedTrackAreReplacedTogether)
{
    current.tracks = { { 1, "A", "F" } };
    updated.tracks = { { 1, "B", "F" } };
    // The function goes in again as the record tells it, whatever the file says.
    expectEdit(
        trackXml("1", "<NAME>A</NAME><FUNCTION>Z</FUNCTION>"), trackXml("1", "<NAME>B</NAME><FUNCTION>F</FUNCTION>"));
}

TEST_F(IxmlEditTest, changedFunctionAloneIsWrittenAndTheNameWithIt)
{
    current.tracks = { { 1, "A", "F" } };
    updated.tracks = { { 1, "A", "G" } };
    expectEdit(
        trackXml("1", "<NAME>X</NAME><FUNCTION>F</FUNCTION>"), trackXml("1", "<NAME>A</NAME><FUNCTION>G</FUNCTION>"));
}

TEST_F(IxmlEditTest, emptyNameAndFunctionAreWritten)
{
    current.tracks = { { 1, "A", "F" } };
    updated.tracks = { { 1, "", "" } };
    expectEdit(
        trackXml("1", "<NAME>A</NAME><FUNCTION>F</FUNCTION>"), trackXml("1", "<NAME></NAME><FUNCTION></FUNCTION>"));
}

TEST_F(IxmlEditTest, trackThatEqualsTheOldOneIsSkipped)
{
    current.tracks = { { 1, "A", "F" }, { 2, "B", "" } };
    updated.tracks = { { 5, "A", "F" }, { 2, "C", "" } };
    expectEdit(trackXml("1", "<NAME>x</NAME>") + trackXml("5", "<NAME>x</NAME>") + trackXml("2", "<NAME>B</NAME>"),
        trackXml("1", "<NAME>x</NAME>") + trackXml("5", "<NAME>x</NAME>") + trackXml("2", "<NAME>C</NAME>"));
}

TEST_F(IxmlEditTest, trackThatTheChunkDoesNotListByExactlyItsNumberIsSkipped)
{
    updated.tracks = { { 1, "B", "" } };
    for (const char* index : { "01", " 1", "1 ", "+1", "11", "" })
        expectUntouched(trackXml(index, "<NAME>A</NAME>"), true);
}

TEST_F(IxmlEditTest, negativeTrackNumberIsFoundByItsDecimal)
{
    updated.tracks = { { -2, "B", "" } };
    expectEdit(trackXml("-2", "<NAME>A</NAME>"), trackXml("-2", "<NAME>B</NAME>"));
}

TEST_F(IxmlEditTest, missingNameOrFunctionIsNotInserted)
{
    updated.tracks = { { 1, "B", "G" } };
    expectEdit(trackXml("1", "<NAME>A</NAME>"), trackXml("1", "<NAME>B</NAME>"));
    expectEdit(trackXml("1", "<FUNCTION>F</FUNCTION>"), trackXml("1", "<FUNCTION>G</FUNCTION>"));
    expectUntouched(trackXml("1", "") + "</BWFXML>", true);
}

TEST_F(IxmlEditTest, trackWithoutItsOwnTagsAroundIsSkipped)
{
    updated.tracks = { { 1, "B", "" } };
    expectUntouched("<CHANNEL_INDEX>1</CHANNEL_INDEX><NAME>A</NAME></TRACK>", true);
    expectUntouched("<TRACK><CHANNEL_INDEX>1</CHANNEL_INDEX><NAME>A</NAME>", true);
}

TEST_F(IxmlEditTest, nameBehindTheEndOfTheTrackIsNotTaken)
{
    updated.tracks = { { 1, "B", "" } };
    expectUntouched(trackXml("1", "") + trackXml("2", "<NAME>A</NAME>"), true);
}

TEST_F(IxmlEditTest, firstElementThatGivesTheNumberDecidesWhereverItStands)
{
    updated.tracks = { { 2, "Z", "" } };
    expectEdit("<TRACK>" + trackXml("2", "<NAME>A</NAME>") + trackXml("2", "<NAME>B</NAME>"),
        "<TRACK>" + trackXml("2", "<NAME>Z</NAME>") + trackXml("2", "<NAME>B</NAME>"));
}

TEST_F(IxmlEditTest, nameInFrontOfTheNumberIsFoundFromTheStartOfTheTrack)
{
    updated.tracks = { { 1, "Z", "" } };
    expectEdit("<TRACK><NAME>A</NAME><CHANNEL_INDEX>1</CHANNEL_INDEX></TRACK>",
        "<TRACK><NAME>Z</NAME><CHANNEL_INDEX>1</CHANNEL_INDEX></TRACK>");
}

TEST_F(IxmlEditTest, nameThatGrewNarrowsTheRangeForTheFunction)
{
    // "<FUNCTION>" begins 28 bytes in front of "</TRACK>": with 27 bytes of growth it is still in range, with 28 not.
    const std::string paying = "<NOTE>" + std::string(100, 'x') + "</NOTE>";
    const std::string function = "<FUNCTION>OLDVALU</FUNCTION>";
    ASSERT_EQ(function.size(), 28u);
    updated.note = "n";

    updated.tracks = { { 1, std::string(28, 'N'), "NEWVALU" } };
    expectEdit(paying + trackXml("1", "<NAME>A</NAME>" + function),
        "<NOTE>n</NOTE>" + trackXml("1", "<NAME>" + std::string(28, 'N') + "</NAME><FUNCTION>NEWVALU</FUNCTION>"));

    updated.tracks = { { 1, std::string(29, 'N'), "NEWVALU" } };
    expectEdit(paying + trackXml("1", "<NAME>A</NAME>" + function),
        "<NOTE>n</NOTE>" + trackXml("1", "<NAME>" + std::string(29, 'N') + "</NAME>" + function));
}

TEST_F(IxmlEditTest, nameThatShrankWidensTheRangeForTheFunctionPastTheEndOfTheTrack)
{
    // "<FUNCTION>" of the next track begins `gap` bytes behind the first "</TRACK>".
    const std::string next = trackXml("2", "<FUNCTION>F</FUNCTION>");
    const size_t gap = std::string("</TRACK>").size() + next.find("<FUNCTION>");
    const std::string name(gap + 1, 'N');
    updated.tracks = { { 1, "", "G" } };
    expectEdit(trackXml("1", "<NAME>" + name + "</NAME>") + next,
        trackXml("1", "<NAME></NAME>") + trackXml("2", "<FUNCTION>G</FUNCTION>"));
    updated.tracks = { { 1, "N", "G" } };
    expectEdit(trackXml("1", "<NAME>" + name + "</NAME>") + next, trackXml("1", "<NAME>N</NAME>") + next);
}

TEST_F(IxmlEditTest, functionInFrontOfTheNameIsEditedToo)
{
    updated.tracks = { { 1, "B", "G" } };
    expectEdit(
        trackXml("1", "<FUNCTION>F</FUNCTION><NAME>A</NAME>"), trackXml("1", "<FUNCTION>G</FUNCTION><NAME>B</NAME>"));
}

TEST_F(IxmlEditTest, nameClosedBeforeItIsOpenedIsSkippedInATrackToo)
{
    updated.tracks = { { 1, "B", "G" } };
    expectEdit(
        trackXml("1", "</NAME><NAME>A<FUNCTION>F</FUNCTION>"), trackXml("1", "</NAME><NAME>A<FUNCTION>G</FUNCTION>"));
}

TEST_F(IxmlEditTest, nameThatHoldsItsClosingTagBreaksTheNextSearch)
{
    const std::string before = trackXml("1", "<NAME>0123456789</NAME>");
    updated.tracks = { { 1, "a</NAME>b", "" } };
    expectEdit(before, trackXml("1", "<NAME>a</NAME>b</NAME>"));

    const std::string broken = trackXml("1", "<NAME>a</NAME>b</NAME>");
    updated.tracks = { { 1, "c", "" } };
    expectEdit(broken, trackXml("1", "<NAME>c</NAME>b</NAME>"));
}

TEST_F(IxmlEditTest, valueThatHoldsATrackIsFoundByTheNextEntry)
{
    const std::string brought = trackXml("2", "<NAME>x</NAME>");
    updated.tracks = { { 1, brought, "" }, { 2, "y", "" } };
    const std::string old(brought.size(), 'o');
    expectEdit(trackXml("1", "<NAME>" + old + "</NAME>"),
        trackXml("1", "<NAME>" + trackXml("2", "<NAME>y</NAME>") + "</NAME>"));
}

TEST_F(IxmlEditTest, repeatedNumberEditsTheFirstTrackEachTime)
{
    updated.tracks = { { 1, "B", "" }, { 1, "C", "" } };
    expectEdit(trackXml("1", "<NAME>A</NAME>") + trackXml("1", "<NAME>A</NAME>"),
        trackXml("1", "<NAME>C</NAME>") + trackXml("1", "<NAME>A</NAME>"));
}

TEST_F(IxmlEditTest, thousandsOfTracksAreEditedInOneCall)
{
    constexpr int kTracks = 20000;
    std::string before;
    std::string after;
    for (int i = 1; i <= kTracks; ++i) {
        before += trackXml(std::to_string(i), "<NAME>track</NAME>");
        after += trackXml(std::to_string(i), "<NAME>" + std::to_string(i % 10) + "</NAME>");
        updated.tracks.push_back({ i, std::to_string(i % 10), "" });
    }
    expectEdit(before, after);
}

TEST_F(IxmlEditTest, numbersAreSearchedWithoutTheGroupingOfTheLocale)
{
    struct Grouped : std::numpunct<char> {
        char do_thousands_sep() const override { return '.'; }
        std::string do_grouping() const override { return "\3"; }
    };
    const std::locale before = std::locale::global(std::locale(std::locale(), new Grouped));
    updated.tracks = { { 1234567, "B", "" } };
    expectEdit(trackXml("1234567", "<NAME>A</NAME>"), trackXml("1234567", "<NAME>B</NAME>"));
    std::locale::global(before);
}

TEST_F(IxmlEditTest, emptyChunkHasNothingToWrite)
{
    updated.scene = "12";
    updated.tracks = { { 1, "A", "" } };
    expectUntouched("", true);
}

TEST_F(IxmlEditTest, nulBytesInTheTextAreOrdinaryBytes)
{
    updated.scene = "2";
    using namespace std::string_literals;
    expectEdit("a\0b<SCENE>1</SCENE>\0c"s, "a\0b<SCENE>2</SCENE>\0c"s);
}

TEST_F(IxmlEditTest, chunkThatClaimsMoreThanTheFileHoldsIsNotWrittenAndTrue)
{
    WavBuilder builder;
    builder.fmt(48000, 1, 16).ixml("<SCENE>12A</SCENE></BWFXML>").claimSize("iXML", 0xFFFFFFFEu);
    builder.write(path);
    const FileProof before(path);
    updated.scene = "12";
    std::fstream stream(path, std::ios::in | std::ios::out | std::ios::binary);
    EXPECT_TRUE(BwfMetadataWriter::updateIxmlFields(
        stream, static_cast<uint32_t>(builder.payloadOffset("iXML")), 0xFFFFFFFEu, current, updated));
    EXPECT_TRUE(stream.fail());
    stream.close();
    EXPECT_EQ(before.untouched(), "");
}

TEST_F(IxmlEditTest, growthInAChunkThatClaimsMoreThanTheFileHoldsIsFalse)
{
    WavBuilder builder;
    builder.fmt(48000, 1, 16).ixml("<SCENE>12</SCENE></BWFXML>").claimSize("iXML", 0x7FFFFFFFu);
    builder.write(path);
    const FileProof before(path);
    updated.scene = "12A";
    std::fstream stream(path, std::ios::in | std::ios::out | std::ios::binary);
    EXPECT_FALSE(BwfMetadataWriter::updateIxmlFields(
        stream, static_cast<uint32_t>(builder.payloadOffset("iXML")), 0x7FFFFFFFu, current, updated));
    stream.close();
    EXPECT_EQ(before.untouched(), "");
}
