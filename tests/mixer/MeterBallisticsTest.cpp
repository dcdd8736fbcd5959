#include "mixer/MeterBallistics.h"
#include "mixer/MeterGeometry.h"

#include <gtest/gtest.h>

#include <array>

using namespace MeterBallistics;

TEST(MeterReading, isClampedToFullScale)
{
    EXPECT_EQ(clampedReading(-1), 0);
    EXPECT_EQ(clampedReading(0), 0);
    EXPECT_EQ(clampedReading(1000), 1000);
    EXPECT_EQ(clampedReading(2000), 1000);
}

TEST(MeterLevel, risesAtOnce)
{
    EXPECT_EQ(nextLevel(0.0f, 1000), 1000.0f);
    EXPECT_EQ(nextLevel(499.6f, 500), 500.0f);
}

TEST(MeterLevel, keepsEightyEightPercentOfTheExcess)
{
    EXPECT_FLOAT_EQ(nextLevel(1000.0f, 0), 880.0f);
    EXPECT_FLOAT_EQ(nextLevel(1000.0f, 500), 940.0f);
}

TEST(MeterLevel, twentyCallsLeaveAboutEightPercent)
{
    float level = 1000.0f;
    for (int call = 0; call < 20; ++call)
        level = nextLevel(level, 0);
    EXPECT_NEAR(level, 77.56f, 0.01f);
}

TEST(MeterLevel, snapsOntoTheReadingWithinHalf)
{
    EXPECT_EQ(nextLevel(100.56f, 100), 100.0f); // 0.56 x 0.88 is below 0.5.
    EXPECT_GT(nextLevel(100.58f, 100), 100.5f);
}

TEST(MeterPeakLine, takesAHigherOrEqualReadingAndHoldsThirtyCalls)
{
    const PeakLine raised = nextPeakLine({ 500, 3 }, 600);
    EXPECT_EQ(raised.position, 600);
    EXPECT_EQ(raised.callsLeft, 30);
    EXPECT_EQ(nextPeakLine({ 500, 3 }, 500).callsLeft, 30);
}

TEST(MeterPeakLine, standsStillForThirtyCallsThenFallsTwelveUntilItMeetsTheLevel)
{
    PeakLine line = nextPeakLine({}, 1000);
    for (int call = 0; call < 30; ++call) {
        line = nextPeakLine(line, 950);
        EXPECT_EQ(line.position, 1000) << call;
    }
    constexpr std::array kFall{ 988, 976, 964, 952, 950 };
    for (const int expected : kFall) {
        line = nextPeakLine(line, 950);
        EXPECT_EQ(line.position, expected);
    }
    line = nextPeakLine(line, 950);
    EXPECT_EQ(line.callsLeft, 30) << "meeting the level is a new peak";
}

TEST(MeterPeakLine, neverFallsBelowTheReading)
{
    EXPECT_EQ(nextPeakLine({ 5, 0 }, 0).position, 0);
}

TEST(MeterClip, latchesFrom867)
{
    EXPECT_FALSE(nextClip({}, 866).on);
    const Clip clip = nextClip({}, 867);
    EXPECT_TRUE(clip.on);
    EXPECT_EQ(clip.callsLeft, 200);
}

TEST(MeterClip, clearsWithThe200thCallBelow)
{
    Clip clip = nextClip({}, 1000);
    for (int call = 1; call < 200; ++call) {
        clip = nextClip(clip, 866);
        EXPECT_TRUE(clip.on) << call;
    }
    clip = nextClip(clip, 866);
    EXPECT_FALSE(clip.on);
    EXPECT_EQ(clip.callsLeft, 0);
}

TEST(MeterClip, aFurtherClipStartsTheTimeAnew)
{
    Clip clip = nextClip({}, 1000);
    for (int call = 0; call < 150; ++call)
        clip = nextClip(clip, 0);
    clip = nextClip(clip, 900);
    EXPECT_EQ(clip.callsLeft, 200);
}

TEST(MeterGeometry, theBarLiesWithinTheBorder)
{
    const MeterGeometry geometry{ 102, 12 };
    EXPECT_EQ(geometry.bar(1000.0f), QRect(1, 1, 100, 10));
    EXPECT_EQ(geometry.bar(500.0f), QRect(1, 1, 50, 10));
    EXPECT_EQ(geometry.bar(509.9f), QRect(1, 1, 50, 10));
}

TEST(MeterGeometry, aBarBelowAPixelIsNone)
{
    const MeterGeometry geometry{ 102, 12 };
    EXPECT_TRUE(geometry.bar(9.9f).isEmpty());
    EXPECT_EQ(geometry.bar(10.0f), QRect(1, 1, 1, 10));
}

TEST(MeterGeometry, aWidgetWithoutInsideHasNoBar)
{
    EXPECT_TRUE((MeterGeometry{ 2, 2 }).bar(1000.0f).isEmpty());
    EXPECT_TRUE((MeterGeometry{ 0, 0 }).bar(1000.0f).isEmpty());
}

TEST(MeterGeometry, thePeakLineStartsAtTheThirdColumn)
{
    const MeterGeometry geometry{ 102, 12 };
    EXPECT_EQ(geometry.peakLineX(0), -1);
    EXPECT_EQ(geometry.peakLineX(29), -1);
    EXPECT_EQ(geometry.peakLineX(30), 4);
    EXPECT_EQ(geometry.peakLineX(500), 51);
    EXPECT_EQ(geometry.peakLineX(1000), 101);
}

TEST(MeterGeometry, theClipBlockIsFourColumnsAtTheRight)
{
    const QRect block = MeterGeometry{ 102, 12 }.clipBlock();
    EXPECT_EQ(block.left(), 97);
    EXPECT_EQ(block.right(), 100);
    EXPECT_EQ(block.top(), 1);
    EXPECT_EQ(block.bottom(), 10);
}

TEST(MeterPeakColour, changesAtFourAndSevenTenths)
{
    EXPECT_EQ(meterPeakColour(399), QColor(100, 255, 120, 220));
    EXPECT_EQ(meterPeakColour(400), QColor(255, 240, 60, 220));
    EXPECT_EQ(meterPeakColour(699), QColor(255, 240, 60, 220));
    EXPECT_EQ(meterPeakColour(700), QColor(255, 80, 60, 240));
}
