#include "audio/Transport.h"

#include <gtest/gtest.h>

TEST(TransportTest, anEndFoundBeforeASeekOrStopOrStartCountsNoMore)
{
    Transport transport;
    for (void (Transport::*change)() : { &Transport::clearFinished, &Transport::stop, &Transport::start }) {
        transport.start();
        const uint64_t mark = transport.mark();
        (transport.*change)();
        const bool playing = transport.playing();
        EXPECT_FALSE(transport.finish(mark));
        EXPECT_EQ(transport.playing(), playing);
        EXPECT_FALSE(transport.finished());
    }
    transport.start();
    EXPECT_TRUE(transport.finish(transport.mark()));
    EXPECT_FALSE(transport.playing());
    EXPECT_TRUE(transport.finished());
}

TEST(TransportTest, aPausedTransportPlaysAndDoesNotRun)
{
    Transport transport;
    transport.start();
    EXPECT_TRUE(transport.runs());
    transport.pause();
    EXPECT_TRUE(transport.playing());
    EXPECT_FALSE(transport.runs());
    transport.resume();
    EXPECT_TRUE(transport.runs());
    EXPECT_FALSE(transport.finished());
}

TEST(TransportTest, aStartForgetsThePauseTheEndAndTheBlocksBefore)
{
    Transport transport;
    transport.start();
    transport.startAudio();
    ASSERT_TRUE(transport.finish(transport.mark()));
    transport.pause();
    transport.start();
    EXPECT_TRUE(transport.runs());
    EXPECT_FALSE(transport.finished());
    EXPECT_FALSE(transport.audioStarted());
}

TEST(TransportTest, aStopForgetsThePauseAndKeepsTheEnd)
{
    Transport transport;
    transport.start();
    ASSERT_TRUE(transport.finish(transport.mark()));
    transport.pause();
    transport.stop();
    EXPECT_FALSE(transport.paused());
    EXPECT_TRUE(transport.finished());
    EXPECT_FALSE(transport.playing());
}

TEST(TransportTest, onlyAPlayingTransportIsStillPlaying)
{
    Transport transport;
    EXPECT_FALSE(transport.stillPlaying());
    transport.start();
    const uint64_t mark = transport.mark();
    EXPECT_TRUE(transport.stillPlaying());
    EXPECT_EQ(transport.mark(), mark) << "asking is no change";
    transport.stop();
    EXPECT_FALSE(transport.stillPlaying());
}
