#include "core/IxmlTrackText.h"

#include "tests/support/PlainIxmlEdit.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <iterator>
#include <random>
#include <string>
#include <vector>

namespace {

constexpr unsigned kRandomTexts = 20000;

/// Texts and values made of the tags themselves and of pieces that almost are one.
class PieceSource {
public:
    explicit PieceSource(unsigned seed) : random(seed) { }

    std::string text(size_t pieces)
    {
        static const std::string kPieces[] = { "<TRACK>", "</TRACK>", "<NAME>", "</NAME>", "<FUNCTION>", "</FUNCTION>",
            "<CHANNEL_INDEX>1</CHANNEL_INDEX>", "<CHANNEL_INDEX>2</CHANNEL_INDEX>", "<CHANNEL_INDEX>-3</CHANNEL_INDEX>",
            "<CHANNEL_INDEX>01</CHANNEL_INDEX>", "<CHANNEL_INDEX>", "</CHANNEL_INDEX>", "<", ">", "</", "NAME>", "1",
            "abc", "TRACK>", "<TRACK", "<NAM" };
        std::string result;
        for (size_t i = 0; i < pieces; ++i)
            result += kPieces[number(std::size(kPieces))];
        return result;
    }

    std::string value() { return number(4) == 0 ? text(number(4)) : std::string(number(20), 'x'); }
    size_t number(size_t below) { return random() % below; }
    BwfTrack track()
    {
        const int32_t channel = std::array{ 1, 2, -3, 7 }[number(4)];
        std::string name = value();
        return { channel, std::move(name), value() };
    }

private:
    std::mt19937 random;
};

/// Makes the same edits in both texts and compares them after each.
testing::AssertionResult sameEdits(const std::string& text, const std::vector<BwfTrack>& edits)
{
    std::string plain = text;
    IxmlTrackText parts(text);
    for (const BwfTrack& each : edits) {
        const std::string before = plain;
        const bool plainDone = PlainIxmlEdit::setTrack(plain, each);
        if (parts.setTrack(each) != plainDone || parts.edited() != plain)
            return testing::AssertionFailure() << "track " << each.channelIndex << ", name " << each.name
                                               << ", function " << each.function << ", on " << before;
    }
    return testing::AssertionSuccess();
}

std::string number(int channel)
{
    return "<CHANNEL_INDEX>" + std::to_string(channel) + "</CHANNEL_INDEX>";
}

/// Track lists that no recorder writes, with 150 numbers each.
std::vector<std::string> hostileTexts()
{
    constexpr int kNumbers = 150;
    std::vector<std::string> texts(7);
    texts[5] = "<TRACK>";
    for (int i = 1; i <= kNumbers; ++i) {
        const std::string name = "<NAME>name" + std::to_string(i);
        texts[0] += "<TRACK>" + number(i) + name + "</NAME><FUNCTION>f</FUNCTION></TRACK>\n";
        texts[1] += "<TRACK>" + number(i) + name + "<FUNCTION>f</TRACK>\n"; // Never closed but at the end.
        texts[2] += "<TRACK>" + number(i) + name + "</NAME><FUNCTION>f</FUNCTION>\n"; // The same for the track.
        texts[3] += "<TRACK>" + name + "</NAME><FUNCTION>f</FUNCTION>" + number(i) + "</TRACK>\n";
        texts[4] += "<TRACK>" + number(i) + "</TRACK>\n"; // The only name stands at the end.
        texts[5] += number(i);
        texts[6] += "<TRACK>" + number(1) + name + "</NAME>" + number(i % 7) + "</TRACK>\n";
    }
    for (std::string& each : texts)
        each += "<NAME>last</NAME><FUNCTION>last</FUNCTION></TRACK>tail";
    return texts;
}

/// An edit of each number, in ascending order, with values of changing length.
std::vector<BwfTrack> editsOfAll(const std::string& value)
{
    std::vector<BwfTrack> edits;
    for (int i = 0; i <= 151; ++i)
        edits.push_back({ i, value + std::string(static_cast<size_t>(i % 9), 'n'), value });
    return edits;
}

} // namespace

TEST(IxmlTrackText, anyChainOfEditsEndsInTheTextThatPlainSearchesGive)
{
    for (unsigned seed = 0; seed < kRandomTexts; ++seed) {
        PieceSource source(seed);
        const std::string text = source.text(source.number(60));
        std::vector<BwfTrack> edits(8);
        std::generate(edits.begin(), edits.end(), [&] { return source.track(); });
        ASSERT_TRUE(sameEdits(text, edits)) << "seed " << seed;
    }
}

TEST(IxmlTrackText, longTextsAreEditedLikeShortOnes)
{
    for (unsigned seed = 0; seed < 500; ++seed) {
        PieceSource source(seed);
        const std::string filler = source.text(source.number(2000)); // Hundreds of parts, between and behind.
        std::vector<BwfTrack> edits(20);
        std::generate(edits.begin(), edits.end(), [&] { return source.track(); });
        ASSERT_TRUE(sameEdits("<TRACK><NAME>" + filler + "</NAME></TRACK>", edits)) << "seed " << seed;
    }
}

TEST(IxmlTrackText, hostileTrackListsAreEditedAsByPlainSearchInEveryOrder)
{
    const std::vector<std::string> texts = hostileTexts();
    for (const char* value : { "", "plain", "</NAME>", "<NAME>", "</TRACK><TRACK>",
             "<CHANNEL_INDEX>151</CHANNEL_INDEX></NAME><FUNCTION>", "<TRACK><NAME>a</NAME></TRACK>" }) {
        std::vector<BwfTrack> edits = editsOfAll(value);
        for (size_t i = 0; i < texts.size(); ++i) {
            EXPECT_TRUE(sameEdits(texts[i], edits)) << "ascending, text " << i;
            EXPECT_TRUE(sameEdits(texts[i], { edits.rbegin(), edits.rend() })) << "descending, text " << i;
            std::mt19937 random(static_cast<unsigned>(i));
            std::shuffle(edits.begin(), edits.end(), random);
            EXPECT_TRUE(sameEdits(texts[i], edits)) << "shuffled, text " << i;
        }
    }
}

TEST(IxmlTrackText, aNameNarrowsTheRangeOfAFunctionThatIsHundredsOfTagsAway)
{
    std::string filler;
    for (int i = 0; i < 200; ++i)
        filler += number(9);
    const std::string text = "<TRACK>" + number(1) + filler + "<NAME></NAME>" + filler
        + "<FUNCTION>old</FUNCTION></TRACK><TRACK>" + number(2) + filler + "</TRACK>";
    const size_t room = std::string("<FUNCTION>old</FUNCTION>").size(); // From where FUNCTION begins to the limit.
    for (const size_t grown : { room - 1, room, room + 1 }) {
        IxmlTrackText edited(text);
        EXPECT_TRUE(edited.setTrack({ 1, std::string(grown, 'n'), "new" }));
        EXPECT_EQ(edited.edited().find("new") != std::string::npos, grown < room) << grown;
        EXPECT_TRUE(sameEdits(text, { { 1, std::string(grown, 'n'), "new" }, { 1, "short", "newer" } })) << grown;
    }
}

TEST(IxmlTrackText, aTrackThatCameWithAValueReachesAsFarAsAnyOther)
{
    const auto fillerOf = [](int tags) {
        std::string filler;
        for (int i = 0; i < tags; ++i)
            filler += number(9);
        return filler;
    };
    for (int inFront = 0; inFront < 66; ++inFront) { // Wherever the track stands among the noted parts.
        for (int between = 50; between < 70; ++between) {
            const std::string text = fillerOf(inFront) + "<TRACK>" + number(1) + "<NAME></NAME></TRACK>"
                + fillerOf(between) + number(2) + "<FUNCTION></FUNCTION></TRACK>";
            EXPECT_TRUE(sameEdits(text, { { 1, std::string(200, 'x') + "<TRACK>", "" }, { 2, "", "LEFT" } }))
                << inFront << ", " << between;
        }
    }
}

TEST(IxmlTrackText, onlyThePlainDecimalOfANumberIsFound)
{
    const auto edit = [](const std::string& spelling, int32_t channel) {
        IxmlTrackText text("<TRACK><CHANNEL_INDEX>" + spelling + "</CHANNEL_INDEX><NAME>a</NAME></TRACK>");
        return text.setTrack({ channel, "b", "" });
    };
    for (const char* spelling : { "01", "+1", " 1", "1 ", "1.0", "", "-1", "4294967297" })
        EXPECT_FALSE(edit(spelling, 1)) << spelling;
    EXPECT_TRUE(edit("1", 1));
    EXPECT_FALSE(edit("-0", 0));
    EXPECT_TRUE(edit("-2147483648", INT32_MIN));
}

TEST(IxmlTrackText, aTextWithoutTagsStaysAsItIs)
{
    const std::string bytes("no tag\0here", 11);
    EXPECT_EQ(IxmlTrackText(bytes).edited(), bytes);
    EXPECT_EQ(IxmlTrackText("").edited(), "");
}

TEST(IxmlTrackText, theTextThatCameInIsNotNeededAfterwards)
{
    std::string source = "<TRACK><CHANNEL_INDEX>1</CHANNEL_INDEX><NAME>a</NAME></TRACK>";
    IxmlTrackText text(source);
    source.assign(source.size(), '-');
    EXPECT_TRUE(text.setTrack({ 1, "Boom", "" }));
    EXPECT_EQ(text.edited(), "<TRACK><CHANNEL_INDEX>1</CHANNEL_INDEX><NAME>Boom</NAME></TRACK>");
}
