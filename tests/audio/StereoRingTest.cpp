// The stereo ring in one thread: the test plays mixer, render and interface thread in turn.

#include "audio/StereoRing.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

class StereoRingTest : public testing::Test {
protected:
    // Frame i is i + 1 on the left and -(i + 1) on the right, counted on from the frame queued last.
    static std::vector<float> numbered(uint32_t first, uint32_t frames)
    {
        std::vector<float> stereo;
        for (uint32_t i = 0; i < frames; ++i) {
            stereo.push_back(static_cast<float>(first + i));
            stereo.push_back(-static_cast<float>(first + i));
        }
        return stereo;
    }

    static void queue(StereoRing& ring, uint32_t first, uint32_t frames)
    {
        ASSERT_TRUE(ring.publish(ring.mark(), numbered(first, frames).data(), frames));
    }

    // What `take` gives, interleaved.
    static std::vector<float> take(StereoRing& ring, uint32_t frames)
    {
        std::vector<StereoFrame> out(StereoRing::kRenderBatch);
        out.resize(ring.take(frames, out.data()));
        std::vector<float> stereo;
        for (const StereoFrame& frame : out) {
            stereo.push_back(frame.left);
            stereo.push_back(frame.right);
        }
        return stereo;
    }

    StereoRing ring;
};

} // namespace

TEST_F(StereoRingTest, framesCrossTheEndOfTheRingInOrder)
{
    StereoRing shifted(8190, 8190);
    queue(shifted, 1, 6);
    EXPECT_EQ(take(shifted, 6), numbered(1, 6));
}

TEST_F(StereoRingTest, countersWrapAt32BitsWithoutALoss)
{
    StereoRing late(0xFFFFFFFEU, 0xFFFFFFFEU);
    queue(late, 1, 6);
    EXPECT_EQ(late.mark(), 4U) << "the count of clears above the counter stays";
    EXPECT_EQ(late.queued(), 6U);
    EXPECT_EQ(take(late, 6), numbered(1, 6));
    EXPECT_EQ(late.taken(), 4U);
}

TEST_F(StereoRingTest, theRingHolds8191Frames)
{
    queue(ring, 1, 8191);
    EXPECT_EQ(ring.queued(), 8191U);
}

TEST_F(StereoRingTest, oneTakeGives2048FramesAtMost)
{
    queue(ring, 1, 5000);
    EXPECT_EQ(take(ring, 4096), numbered(1, 2048));
    EXPECT_EQ(take(ring, 4096), numbered(2049, 2048));
    EXPECT_EQ(take(ring, 4096), numbered(4097, 904));
}

TEST_F(StereoRingTest, framesTakenBeforeAClearDoNotCountAgainstTheEmptyRing)
{
    queue(ring, 1, 8191);
    std::vector<StereoFrame> out(StereoRing::kRenderBatch);
    const StereoRing::Taken copied = ring.copy(512, out.data());
    ASSERT_EQ(copied.count, 512U);
    ASSERT_EQ(copied.from, 0U) << "the counter that a clear leaves as it is";
    ring.clear();
    ring.drop(copied);
    EXPECT_EQ(ring.queued(), 0U);
    queue(ring, 8192, 3);
    EXPECT_EQ(take(ring, 512), numbered(8192, 3));
}

TEST_F(StereoRingTest, aBlockThatASeekHasOvertakenIsDropped)
{
    queue(ring, 1, 500);
    EXPECT_FALSE(ring.publish(400, numbered(1, 10).data(), 10));
    EXPECT_EQ(ring.mark(), 500U);
    EXPECT_TRUE(ring.publish(500, numbered(1, 10).data(), 10));
    EXPECT_EQ(ring.mark(), 510U);
}

TEST_F(StereoRingTest, aBlockThatAClearHasOvertakenIsDroppedThoughTheCounterStoodAtZero)
{
    const uint64_t from = ring.mark();
    ASSERT_EQ(from, 0U);
    ring.clear();
    EXPECT_FALSE(ring.publish(from, numbered(1, 10).data(), 10));
    EXPECT_EQ(ring.queued(), 0U);
    EXPECT_TRUE(ring.publish(ring.mark(), numbered(1, 10).data(), 10));
    EXPECT_EQ(ring.queued(), 10U);
}

TEST_F(StereoRingTest, aRingOfWhichOnlyOneCounterIsClearedIsEmpty)
{
    queue(ring, 1, 10);
    const uint64_t written = ring.mark();
    ring.clear();
    const uint64_t cleared = ring.mark();
    ASSERT_NE(cleared, 0U) << "it counts the clears";
    std::vector<StereoFrame> out(StereoRing::kRenderBatch);
    StereoRing readCleared(cleared, written);
    EXPECT_EQ(readCleared.queued(), 0U);
    EXPECT_EQ(readCleared.take(10, out.data()), 0U);
    StereoRing writeCleared(0, cleared + 10);
    EXPECT_EQ(writeCleared.queued(), 0U);
    EXPECT_EQ(writeCleared.take(10, out.data()), 0U);
}
