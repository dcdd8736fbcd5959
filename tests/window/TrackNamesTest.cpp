#include "window/TrackNames.h"

#include "core/BwfMetadata.h"

#include <gtest/gtest.h>

namespace {

BwfTrack track(int32_t channel, const std::string& name)
{
    BwfTrack made;
    made.channelIndex = channel;
    made.name = name;
    return made;
}

QList<QString> namesOf(uint16_t channels, std::vector<BwfTrack> tracks)
{
    BwfMetadata record;
    record.channels = channels;
    record.tracks = std::move(tracks);
    return mixerTrackNames(record);
}

using Names = QList<QString>;

} // namespace

TEST(TrackNames, monoWithoutTracksIsTrack1)
{
    EXPECT_EQ(namesOf(1, {}), Names({ "Track 1" }));
}

TEST(TrackNames, withoutChannelsThereIsOneName)
{
    EXPECT_EQ(namesOf(0, {}), Names({ "Track 1" }));
}

TEST(TrackNames, gapsAreNumbered)
{
    EXPECT_EQ(
        namesOf(4, { track(1, "Boom"), track(2, "Lav"), track(4, "Mix") }), Names({ "Boom", "Lav", "Track 3", "Mix" }));
}

TEST(TrackNames, channelsDecideOverTheOrder)
{
    EXPECT_EQ(namesOf(2, { track(2, "Lav"), track(1, "Boom") }), Names({ "Boom", "Lav" }));
}

TEST(TrackNames, indexesBeyondTheChannelsFallBackToTheOrder)
{
    EXPECT_EQ(namesOf(2, { track(5, "Boom"), track(6, "Lav") }), Names({ "Boom", "Lav" }));
    EXPECT_EQ(namesOf(2, { track(5, "Boom"), track(6, "Lav"), track(7, "More") }), Names({ "Boom", "Lav" }));
}

TEST(TrackNames, oneFittingIndexRulesOutTheOrder)
{
    EXPECT_EQ(namesOf(2, { track(5, "Boom"), track(2, "Lav") }), Names({ "Track 1", "Lav" }));
}

TEST(TrackNames, laterTracksOfAChannelWin)
{
    EXPECT_EQ(namesOf(1, { track(1, "Boom"), track(1, "Lav") }), Names({ "Lav" }));
}

TEST(TrackNames, blankNamesPlaceNothing)
{
    EXPECT_EQ(namesOf(2, { track(1, "Boom"), track(1, "  "), track(2, "") }), Names({ "Boom", "Track 2" }));
    EXPECT_EQ(namesOf(2, { track(1, " "), track(9, "Lav") }), Names({ "Track 1", "Lav" }))
        << "by order, as none was placed";
}

TEST(TrackNames, areTrimmedAndUtf8)
{
    EXPECT_EQ(namesOf(1, { track(1, "\t T\xC3\xB6n ") }), Names({ QStringLiteral(u"T\u00f6n") }));
}

TEST(TrackNames, indexesOfAnySignAndSizeAreHarmless)
{
    EXPECT_EQ(
        namesOf(1, { track(0, "A"), track(-1, "B"), track(INT32_MAX, "C"), track(INT32_MIN, "D") }), Names({ "A" }));
}
