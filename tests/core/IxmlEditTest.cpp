#include "core/IxmlEdit.h"

#include "core/BwfMetadata.h"
#include "tests/support/PlainIxmlEdit.h"

#include <gtest/gtest.h>

#include <iterator>
#include <random>
#include <string>

// What each rule does to a text is shown, in a file, by the tests of BwfMetadataWriter::updateIxmlFields. Here: what
// the edit gives back, and that it is what plain searches give.

namespace {

constexpr unsigned kRandomTexts = 20000;

/// Texts and records made of few enough pieces that their elements meet.
class RecordSource {
public:
    explicit RecordSource(unsigned seed) : random(seed) { }

    std::string text()
    {
        static const std::string kNames[] = { "NOTE", "SCENE", "TAPE", "TAKE", "PROJECT", "CIRCLED", "WILD_TRACK",
            "BWFXML", "TRACK", "NAME", "FUNCTION" };
        std::string result;
        for (size_t i = number(40); i > 0; --i) {
            const std::string name = kNames[number(std::size(kNames))];
            switch (number(6)) {
            case 0:
                result += "<" + name + ">";
                break;
            case 1:
                result += "</" + name + ">";
                break;
            case 2:
                result += "<" + name + ">" + value() + "</" + name + ">\n";
                break;
            case 3:
                result += "<CHANNEL_INDEX>" + std::to_string(number(3)) + "</CHANNEL_INDEX>";
                break;
            case 4:
                result += "<TRACK><CHANNEL_INDEX>1</CHANNEL_INDEX><NAME>a</NAME><FUNCTION>b</FUNCTION></TRACK>";
                break;
            default:
                result += std::string(number(3), '\0') + "note";
            }
        }
        return result;
    }

    BwfMetadata record()
    {
        BwfMetadata record;
        for (std::string BwfMetadata::*field :
            { &BwfMetadata::note, &BwfMetadata::scene, &BwfMetadata::tape, &BwfMetadata::take, &BwfMetadata::project })
            record.*field = value();
        record.circled = number(2) == 0;
        record.wildTrack = number(2) == 0;
        for (size_t i = number(4); i > 0; --i) {
            std::string name = value();
            record.tracks.push_back({ static_cast<int32_t>(number(3)), std::move(name), value() });
        }
        return record;
    }

private:
    size_t number(size_t below) { return random() % below; }
    std::string value()
    {
        static const std::string kValues[]
            = { "", "", "a", "longer", "<TAKE>", "</NOTE>", "</BWFXML>", "<TRACK>", "</NAME>", "<TAPE>t</TAPE>" };
        return kValues[number(std::size(kValues))];
    }

    std::mt19937 random;
};

} // namespace

TEST(IxmlEdit, anyRecordGivesTheTextThatPlainSearchesGive)
{
    unsigned edited = 0;
    for (unsigned seed = 0; seed < kRandomTexts; ++seed) {
        RecordSource source(seed);
        const std::string text = source.text();
        const BwfMetadata current = source.record();
        const BwfMetadata updated = source.record();
        std::string plain = text;
        const bool modified = PlainIxmlEdit::edit(plain, current, updated);
        const auto result = editedIxml(text, current, updated);
        ASSERT_EQ(result.has_value(), modified) << "seed " << seed << " on " << text;
        if (result) {
            ++edited;
            ASSERT_EQ(*result, plain) << "seed " << seed << " on " << text;
        }
    }
    EXPECT_GT(edited, kRandomTexts / 2); // Else the texts would test little.
}

TEST(IxmlEdit, equalRecordsGiveNothingToWrite)
{
    BwfMetadata record;
    record.scene = "12";
    record.circled = true;
    record.tracks = { { 1, "Boom", "MIX" } };
    EXPECT_FALSE(editedIxml("<BWFXML><SCENE>9</SCENE></BWFXML>", record, record));
}

TEST(IxmlEdit, anElementWithoutPlaceGivesNothingToWrite)
{
    BwfMetadata updated;
    updated.scene = "12";
    updated.tracks = { { 1, "Boom", "" } };
    EXPECT_FALSE(editedIxml("no closing root, no track", BwfMetadata(), updated));
    EXPECT_FALSE(editedIxml("", BwfMetadata(), updated));
}

TEST(IxmlEdit, aTextThatGrewIsGivenBackWithItsPadding)
{
    BwfMetadata updated;
    updated.scene = "12A";
    EXPECT_EQ(editedIxml(std::string("<BWFXML><SCENE>1</SCENE></BWFXML>\0\0 ", 36), BwfMetadata(), updated),
        std::string("<BWFXML><SCENE>12A</SCENE></BWFXML>\0\0 ", 38));
}

TEST(IxmlEdit, aTextThatShrankIsGivenBackShorter)
{
    BwfMetadata current;
    current.wildTrack = true;
    EXPECT_EQ(
        editedIxml("<BWFXML><WILD_TRACK>TRUE</WILD_TRACK></BWFXML>", current, BwfMetadata()), "<BWFXML></BWFXML>");
}

TEST(IxmlEdit, aWildTrackThatIsThereAsksForTheSameTextToBeWritten)
{
    const std::string text = "<BWFXML><WILD_TRACK>FALSE</WILD_TRACK></BWFXML>";
    BwfMetadata updated;
    updated.wildTrack = true;
    EXPECT_EQ(editedIxml(text, BwfMetadata(), updated), text);
}

TEST(IxmlEdit, eachTrackIsEditedInTheTextThatTheOneBeforeItLeft)
{
    BwfMetadata updated;
    updated.tracks = { { 1, "<TRACK><CHANNEL_INDEX>2</CHANNEL_INDEX><NAME>a</NAME></TRACK>", "" }, { 2, "b", "" } };
    EXPECT_EQ(editedIxml("<TRACK><CHANNEL_INDEX>1</CHANNEL_INDEX><NAME>x</NAME></TRACK>", BwfMetadata(), updated),
        "<TRACK><CHANNEL_INDEX>1</CHANNEL_INDEX><NAME><TRACK><CHANNEL_INDEX>2</CHANNEL_INDEX><NAME>b</NAME></TRACK>"
        "</NAME></TRACK>");
}
