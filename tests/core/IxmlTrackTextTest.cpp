#include "core/IxmlTrackText.h"

#include <gtest/gtest.h>

#include <array>
#include <iterator>
#include <random>
#include <string>

using Kind = IxmlTrackText::Kind;

namespace {

constexpr size_t kNowhere = std::string::npos;

/// The same edit by plain searches in one string.
bool plainSet(std::string& text, size_t track, const std::string& name, size_t limit, const std::string& value)
{
    const std::string openTag = "<" + name + ">";
    const size_t open = text.find(openTag, track);
    const size_t close = text.find("</" + name + ">", track);
    if (open == kNowhere || close == kNowhere || open >= limit || close < open)
        return false;
    text.replace(open + openTag.size(), close - open - openTag.size(), value);
    return true;
}

bool plainEdit(std::string& text, int32_t channel, const std::string& name, const std::string& function)
{
    const size_t found = text.find("<CHANNEL_INDEX>" + std::to_string(channel) + "</CHANNEL_INDEX>");
    if (found == kNowhere)
        return false;
    const size_t track = text.rfind("<TRACK>", found);
    const size_t limit = text.find("</TRACK>", found);
    if (track == kNowhere || limit == kNowhere)
        return false;
    const bool named = plainSet(text, track, "NAME", limit, name);
    return plainSet(text, track, "FUNCTION", limit, function) || named;
}

bool indexedSet(IxmlTrackText& text, IxmlTrackText::Tag& track, Kind openKind, Kind closeKind, size_t limit,
    const std::string& value)
{
    const auto open = text.firstBehind(track, openKind);
    const auto close = text.firstBehind(track, closeKind);
    if (open == IxmlTrackText::kNone || close == IxmlTrackText::kNone || text.position(open) >= limit || close < open)
        return false;
    const size_t position = text.position(track);
    if (text.replaceBetween(open, close, value))
        track = text.tagAt(position);
    return true;
}

bool indexedEdit(IxmlTrackText& text, int32_t channel, const std::string& name, const std::string& function)
{
    const auto found = text.firstChannelIndex(channel);
    if (found == IxmlTrackText::kNone)
        return false;
    auto track = text.lastInFrontOf(found, Kind::TrackOpen);
    const auto end = text.firstBehind(found, Kind::TrackClose);
    if (track == IxmlTrackText::kNone || end == IxmlTrackText::kNone)
        return false;
    const size_t limit = text.position(end);
    const bool named = indexedSet(text, track, Kind::NameOpen, Kind::NameClose, limit, name);
    return indexedSet(text, track, Kind::FunctionOpen, Kind::FunctionClose, limit, function) || named;
}

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

    std::string plainValue() { return std::string(number(20), 'x'); }
    std::string value() { return number(4) == 0 ? text(number(4)) : plainValue(); }
    size_t number(size_t below) { return random() % below; }
    int32_t channel() { return std::array{ 1, 2, -3, 7 }[number(4)]; }

private:
    std::mt19937 random;
};

} // namespace

TEST(IxmlTrackText, anyChainOfEditsEndsInTheTextThatPlainSearchesGive)
{
    for (unsigned seed = 0; seed < 4000; ++seed) {
        PieceSource source(seed);
        std::string plain = source.text(source.number(60));
        IxmlTrackText indexed(plain);
        for (size_t edit = 0; edit < 12; ++edit) {
            const int32_t channel = source.channel();
            const std::string name = source.value();
            const std::string function = source.value();
            const std::string before = plain;
            ASSERT_EQ(indexedEdit(indexed, channel, name, function), plainEdit(plain, channel, name, function))
                << "seed " << seed << " on " << before;
            ASSERT_EQ(indexed.edited(), plain) << "seed " << seed << " on " << before;
        }
    }
}

TEST(IxmlTrackText, onlyThePlainDecimalOfANumberIsFound)
{
    for (const char* spelling : { "01", "+1", " 1", "1 ", "1.0", "", "-1" }) {
        IxmlTrackText text(std::string("<CHANNEL_INDEX>") + spelling + "</CHANNEL_INDEX>");
        EXPECT_EQ(text.firstChannelIndex(1), IxmlTrackText::kNone) << spelling;
    }
    IxmlTrackText text("<CHANNEL_INDEX>-2147483648</CHANNEL_INDEX>");
    EXPECT_EQ(text.firstChannelIndex(INT32_MIN), 0u);
}

TEST(IxmlTrackText, aTextWithoutTagsStaysAsItIs)
{
    const std::string bytes("no tag\0here", 11);
    EXPECT_EQ(IxmlTrackText(bytes).edited(), bytes);
    EXPECT_EQ(IxmlTrackText("").edited(), "");
}
