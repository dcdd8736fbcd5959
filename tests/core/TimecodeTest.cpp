#include "core/Timecode.h"

#include "tests/support/CommaLocale.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <limits>
#include <random>
#include <string>

namespace {

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kTiny = std::numeric_limits<double>::denorm_min();
constexpr double kHuge = std::numeric_limits<double>::max();
constexpr int64_t kMaxCount = std::numeric_limits<int64_t>::max();
constexpr int64_t kMinCount = std::numeric_limits<int64_t>::min();
constexpr int64_t kDropFramesPerDay = 2589408;

Timecode timecode(int hours, int minutes, int seconds, int frames, int rate, bool drop)
{
    Timecode made;
    made.hours = hours;
    made.minutes = minutes;
    made.seconds = seconds;
    made.frames = frames;
    made.frameRate = rate;
    made.dropFrame = drop;
    return made;
}

std::string textOf(int64_t count, int rate, bool drop)
{
    return Timecode::fromFrames(count, rate, drop).toString();
}

std::string playing(uint64_t reference, uint32_t sampleRate, double rate, bool drop, double position)
{
    return Timecode::fromPlaybackPosition(reference, sampleRate, rate, drop, position).toString();
}

bool isTimeOfDay(const Timecode& moment)
{
    return moment.hours >= 0 && moment.hours < 24 && moment.minutes >= 0 && moment.minutes < 60 && moment.seconds >= 0
        && moment.seconds < 60 && moment.frames >= 0 && (moment.frameRate < 1 || moment.frames < moment.frameRate);
}

} // namespace

TEST(Timecode, startsAsZeroWithoutDropFrame)
{
    const Timecode fresh;
    EXPECT_EQ(fresh.toString(), "00:00:00:00");
    EXPECT_EQ(fresh.frameRate, 0);
    EXPECT_FALSE(fresh.dropFrame);
}

TEST(TimecodeToString, dropFrameStandsBehindASemicolon)
{
    EXPECT_EQ(timecode(1, 2, 3, 4, 30, true).toString(), "01:02:03;04");
}

TEST(TimecodeToString, otherTimecodeStandsBehindAColon)
{
    EXPECT_EQ(timecode(1, 2, 3, 4, 30, false).toString(), "01:02:03:04");
}

TEST(TimecodeToString, theSeparatorFollowsTheFlagAndNotTheRate)
{
    EXPECT_EQ(timecode(0, 0, 0, 0, 25, true).toString(), "00:00:00;00");
}

TEST(TimecodeToString, moreThanTwoDigitsAreKept)
{
    EXPECT_EQ(timecode(100, 0, 0, 119, 120, false).toString(), "100:00:00:119");
}

TEST(TimecodeToString, theSmallestNumbersAreWrittenInFull)
{
    const int lowest = std::numeric_limits<int32_t>::min();
    EXPECT_EQ(timecode(lowest, -1, -10, 0, 25, false).toString(), "-2147483648:-01:-10:00");
}

TEST(TimecodeFromFrames, dropFrameSkipsTwoNumbersAtAMinuteButNotAtTheTenth)
{
    EXPECT_EQ(textOf(1799, 30, true), "00:00:59;29");
    EXPECT_EQ(textOf(1800, 30, true), "00:01:00;02");
    EXPECT_EQ(textOf(17981, 30, true), "00:09:59;29");
    EXPECT_EQ(textOf(17982, 30, true), "00:10:00;00");
}

TEST(TimecodeFromFrames, theFirstTwoFramesOfTenMinutesDropNothing)
{
    EXPECT_EQ(textOf(0, 30, true), "00:00:00;00");
    EXPECT_EQ(textOf(1, 30, true), "00:00:00;01");
    EXPECT_EQ(textOf(17983, 30, true), "00:10:00;01");
}

TEST(TimecodeFromFrames, keepsRateAndFlag)
{
    const Timecode made = Timecode::fromFrames(10, 25, true);
    EXPECT_EQ(made.frameRate, 25);
    EXPECT_TRUE(made.dropFrame);
    EXPECT_EQ(made.toString(), "00:00:00;10");
}

TEST(TimecodeFromFrames, otherRatesDropNothing)
{
    EXPECT_EQ(textOf(1800, 30, false), "00:01:00:00");
    EXPECT_EQ(textOf(3600, 60, true), "00:01:00;00");
    EXPECT_EQ(textOf(1500, 25, true), "00:01:00;00");
}

TEST(TimecodeFromFrames, dropFrameAtTwentyNineTakesTheSameDroppedNumbers)
{
    // 1800 frames get two back, and 1802 is 62 seconds of 29 frames and 4 more.
    EXPECT_EQ(textOf(1800, 29, true), "00:01:02;04");
}

TEST(TimecodeFromFrames, hoursRunOn)
{
    EXPECT_EQ(textOf(3 * 24 * 3600 * 25, 25, false), "72:00:00:00");
    EXPECT_EQ(textOf(3 * kDropFramesPerDay, 30, true), "72:00:00;00");
}

TEST(TimecodeFromFrames, aRateBelowOneGivesZeros)
{
    for (const int rate : { 0, -1, std::numeric_limits<int>::min() }) {
        const Timecode made = Timecode::fromFrames(123456, rate, true);
        EXPECT_EQ(made.toString(), "00:00:00;00");
        EXPECT_EQ(made.frameRate, rate);
    }
}

TEST(TimecodeFromFrames, negativeCountsTruncateTowardsZero)
{
    const Timecode made = Timecode::fromFrames(-1, 25, false);
    EXPECT_EQ(made.frames, -1);
    EXPECT_EQ(made.seconds, 0);
    const Timecode minute = Timecode::fromFrames(-1526, 25, false);
    EXPECT_EQ(minute.minutes, -1);
    EXPECT_EQ(minute.seconds, -1);
    EXPECT_EQ(minute.frames, -1);
}

TEST(TimecodeFromFrames, negativeDropFrameCountsGoThroughTheSameDivision)
{
    // (-1796 - 2) / 1798 is -1, so two numbers are put back.
    const Timecode made = Timecode::fromFrames(-1796, 30, true);
    EXPECT_EQ(made.seconds, -59);
    EXPECT_EQ(made.frames, -28);
    const Timecode before = Timecode::fromFrames(-1795, 30, true);
    EXPECT_EQ(before.seconds, -59);
    EXPECT_EQ(before.frames, -25);
}

TEST(TimecodeFromFrames, theLargestCountsClampTheHoursOnly)
{
    const Timecode most = Timecode::fromFrames(kMaxCount, 30, true);
    EXPECT_EQ(most.hours, std::numeric_limits<int32_t>::max());
    EXPECT_LT(most.minutes, 60);
    EXPECT_LT(most.seconds, 60);
    EXPECT_LT(most.frames, 30);
    const Timecode least = Timecode::fromFrames(kMinCount, 1, false);
    EXPECT_EQ(least.hours, std::numeric_limits<int32_t>::min());
    EXPECT_EQ(least.frames, 0);
    EXPECT_EQ(least.seconds, -8); // 2^63 is 8 modulo 60.
}

TEST(TimecodeToFrames, dropFrameCounts)
{
    EXPECT_EQ(timecode(0, 10, 0, 0, 30, true).toFrames(), 17982);
    EXPECT_EQ(timecode(1, 0, 0, 0, 30, true).toFrames(), 107892);
    EXPECT_EQ(timecode(0, 1, 0, 2, 30, true).toFrames(), 1800);
}

TEST(TimecodeToFrames, dropFrameAtTwentyNineCountsInThirties)
{
    EXPECT_EQ(timecode(0, 10, 1, 0, 29, true).toFrames(), 17982 + 30);
}

TEST(TimecodeToFrames, otherRatesMultiply)
{
    EXPECT_EQ(timecode(1, 2, 3, 4, 25, false).toFrames(), 3723 * 25 + 4);
    EXPECT_EQ(timecode(1, 2, 3, 4, 25, true).toFrames(), 3723 * 25 + 4);
    EXPECT_EQ(timecode(0, 1, 0, 0, 30, false).toFrames(), 1800);
}

TEST(TimecodeToFrames, wholeSecondsAreFormedIn32Bits)
{
    // 100000 hours are 360000000 seconds; times 24 that is 8640000000, which leaves 50065408 of 2^32.
    EXPECT_EQ(timecode(100000, 0, 0, 5, 24, false).toFrames(), 50065408 + 5);
    // 20000 hours at 30 frames are 2160000000, which is a negative number in 32 bits.
    EXPECT_EQ(timecode(20000, 0, 0, 0, 30, false).toFrames(), 2160000000 - 4294967296);
}

TEST(TimecodeToFrames, framesAreAddedIn64Bits)
{
    const int most = std::numeric_limits<int32_t>::max();
    EXPECT_EQ(timecode(0, 0, 1, most, most, false).toFrames(), 2 * int64_t{ most });
}

TEST(TimecodeToFrames, dropFrameHoursOf32BitsDoNotOverflow)
{
    const int most = std::numeric_limits<int32_t>::max();
    EXPECT_EQ(timecode(most, 0, 0, 0, 30, true).toFrames(), int64_t{ most } * 107892);
}

TEST(TimecodeRoundTrip, everyDropFrameCountOfADayComesBack)
{
    int64_t wrong = 0;
    int64_t forbidden = 0;
    for (int64_t count = 0; count < kDropFramesPerDay; ++count) {
        const Timecode made = Timecode::fromFrames(count, 30, true);
        wrong += made.toFrames() != count;
        forbidden += made.minutes % 10 != 0 && made.seconds == 0 && made.frames < 2;
        wrong += !isTimeOfDay(made);
    }
    EXPECT_EQ(wrong, 0);
    EXPECT_EQ(forbidden, 0) << "timecodes with a dropped number";
}

TEST(TimecodeRoundTrip, dropFrameTimecodesGoUpWithTheCount)
{
    Timecode last = Timecode::fromFrames(0, 30, true);
    int64_t stepsBack = 0;
    for (int64_t count = 1; count < kDropFramesPerDay; ++count) {
        const Timecode next = Timecode::fromFrames(count, 30, true);
        const auto order = [](const Timecode& each) {
            return ((int64_t{ each.hours } * 60 + each.minutes) * 60 + each.seconds) * 30 + each.frames;
        };
        stepsBack += order(next) <= order(last);
        last = next;
    }
    EXPECT_EQ(stepsBack, 0);
}

TEST(TimecodeRoundTrip, countsOfOtherRatesComeBack)
{
    std::mt19937_64 random(1);
    for (const int rate : { 1, 24, 25, 30, 48, 50, 60, 120 }) {
        std::uniform_int_distribution<int64_t> counts(0, Timecode::framesPerDay(rate, false) - 1);
        for (int i = 0; i < 20000; ++i) {
            const int64_t count = counts(random);
            EXPECT_EQ(Timecode::fromFrames(count, rate, false).toFrames(), count) << rate;
        }
    }
}

TEST(TimecodeRoundTrip, negativeCountsMirrorPositiveOnesWithoutDropFrame)
{
    std::mt19937_64 random(2);
    std::uniform_int_distribution<int64_t> counts(0, Timecode::framesPerDay(25, false));
    for (int i = 0; i < 20000; ++i) {
        const int64_t count = counts(random);
        EXPECT_EQ(Timecode::fromFrames(-count, 25, false).toFrames(), -count);
    }
}

TEST(TimecodeNominalRate, roundsHalvesAwayFromZero)
{
    EXPECT_EQ(Timecode::nominalFrameRate(23.976), 24);
    EXPECT_EQ(Timecode::nominalFrameRate(24.0), 24);
    EXPECT_EQ(Timecode::nominalFrameRate(29.97), 30);
    EXPECT_EQ(Timecode::nominalFrameRate(59.94), 60);
    EXPECT_EQ(Timecode::nominalFrameRate(24.5), 25);
    EXPECT_EQ(Timecode::nominalFrameRate(25.5), 26);
    EXPECT_EQ(Timecode::nominalFrameRate(0.5), 1);
    EXPECT_EQ(Timecode::nominalFrameRate(0.49999999999999994), 0);
}

TEST(TimecodeNominalRate, subnormalRatesCountAndRoundToZero)
{
    EXPECT_EQ(Timecode::nominalFrameRate(kTiny), 0);
}

TEST(TimecodeNominalRate, whatIsNotPositiveAndFiniteIsTwentyFour)
{
    for (const double rate : { 0.0, -0.0, -25.0, kNan, kInfinity, -kInfinity })
        EXPECT_EQ(Timecode::nominalFrameRate(rate), 24) << rate;
}

TEST(TimecodeNominalRate, ratesBeyond32BitsAreClamped)
{
    EXPECT_EQ(Timecode::nominalFrameRate(1e10), std::numeric_limits<int>::max());
    EXPECT_EQ(Timecode::nominalFrameRate(kHuge), std::numeric_limits<int>::max());
}

TEST(TimecodeDropFrame, needsTheFlagAndARateOfTwentyNineOrThirty)
{
    EXPECT_TRUE(Timecode::usesDropFrame(29.97, true));
    EXPECT_TRUE(Timecode::usesDropFrame(30.0, true));
    EXPECT_TRUE(Timecode::usesDropFrame(29.0, true));
    EXPECT_TRUE(Timecode::usesDropFrame(28.5, true));
    EXPECT_FALSE(Timecode::usesDropFrame(30.5, true));
    EXPECT_FALSE(Timecode::usesDropFrame(29.97, false));
    EXPECT_FALSE(Timecode::usesDropFrame(25.0, true));
    EXPECT_FALSE(Timecode::usesDropFrame(59.94, true));
}

TEST(TimecodeDropFrame, needsAPositiveFiniteRate)
{
    for (const double rate : { 0.0, -29.97, kNan, kInfinity, kHuge, kTiny })
        EXPECT_FALSE(Timecode::usesDropFrame(rate, true)) << rate;
}

TEST(TimecodeFramesPerDay, onlyThirtyHasADropFrameCount)
{
    EXPECT_EQ(Timecode::framesPerDay(30, true), 2589408);
    EXPECT_EQ(Timecode::framesPerDay(30, false), 2592000);
    EXPECT_EQ(Timecode::framesPerDay(29, true), 29 * 86400);
    EXPECT_EQ(Timecode::framesPerDay(60, true), 60 * 86400);
}

TEST(TimecodeFramesPerDay, ratesBelowOneCountAsTwentyFour)
{
    EXPECT_EQ(Timecode::framesPerDay(0, false), 2073600);
    EXPECT_EQ(Timecode::framesPerDay(-30, true), 2073600);
}

TEST(TimecodeFramesPerDay, theLargestRateDoesNotOverflow)
{
    EXPECT_EQ(Timecode::framesPerDay(std::numeric_limits<int>::max(), true), 2147483647LL * 86400);
}

TEST(TimecodePlaying, addsThePositionToTheStart)
{
    EXPECT_EQ(playing(172800000, 48000, 25.0, false, 1.0), "01:00:01:00");
    EXPECT_EQ(playing(172800000, 48000, 25.0, false, 0.04), "01:00:00:01");
    EXPECT_EQ(playing(0, 48000, 25.0, false, 3661.52), "01:01:01:13");
}

TEST(TimecodePlaying, aDayAndASecondWraps)
{
    EXPECT_EQ(playing(uint64_t{ 86401 } * 48000, 48000, 25.0, false, 0.0), "00:00:01:00");
}

TEST(TimecodePlaying, aDropFrameStartOfADayWrapsTo2592Frames)
{
    // 86400 s at 30 frames are 2592 frames more than a drop-frame day holds.
    EXPECT_EQ(playing(uint64_t{ 86400 } * 48000, 48000, 29.97, true, 0.0), "00:01:26;14");
}

TEST(TimecodePlaying, theDayOfDropFrameIsItsOwn)
{
    // One frame before the drop-frame day is over, and at its end.
    const double elapsedOfDay = 2589408 / 29.97;
    EXPECT_EQ(playing(0, 48000, 29.97, true, elapsedOfDay - 0.01), "23:59:59;29");
    EXPECT_EQ(playing(0, 48000, 29.97, true, elapsedOfDay), "00:00:00;00");
}

TEST(TimecodePlaying, theStartCountsInTheNominalRateAndThePositionInTheRealOne)
{
    // A start of 1000 s is 24000 frames of 24 and not 23976; 1000 s more are 23976 frames.
    EXPECT_EQ(playing(48000000, 48000, 23.976, false, 0.0), "00:16:40:00");
    EXPECT_EQ(playing(48000000, 48000, 23.976, false, 1000.0), "00:33:19:00");
}

TEST(TimecodePlaying, theStartIsRoundedAndThePositionCut)
{
    // 960 samples are half a frame of 25.
    EXPECT_EQ(playing(960, 48000, 25.0, false, 0.0), "00:00:00:01");
    EXPECT_EQ(playing(959, 48000, 25.0, false, 0.0), "00:00:00:00");
    EXPECT_EQ(playing(0, 48000, 25.0, false, 0.0399), "00:00:00:00");
}

TEST(TimecodePlaying, aPositionAHairBelowAFrameIsThatFrame)
{
    EXPECT_EQ(playing(0, 48000, 25.0, false, std::nextafter(0.04, 0.0)), "00:00:00:01");
    EXPECT_EQ(playing(0, 48000, 25.0, false, 0.04 - 1e-9), "00:00:00:00");
}

TEST(TimecodePlaying, badPositionsCountAsZero)
{
    for (const double position : { kNan, -1.0, -0.0, kInfinity, -kInfinity })
        EXPECT_EQ(playing(172800000, 48000, 25.0, false, position), "01:00:00:00") << position;
}

TEST(TimecodePlaying, aZeroSampleRateOrReferenceStartsAtMidnight)
{
    EXPECT_EQ(playing(172800000, 0, 25.0, false, 1.0), "00:00:01:00");
    EXPECT_EQ(playing(0, 48000, 25.0, false, 1.0), "00:00:01:00");
}

TEST(TimecodePlaying, badRatesCountAsTwentyFour)
{
    for (const double rate : { 0.0, -25.0, kNan, kInfinity }) {
        const Timecode made = Timecode::fromPlaybackPosition(48000, 48000, rate, true, 1.5);
        EXPECT_EQ(made.toString(), "00:00:02:12") << rate;
        EXPECT_EQ(made.frameRate, 24);
        EXPECT_FALSE(made.dropFrame);
    }
}

TEST(TimecodePlaying, aRateThatRoundsToZeroGivesZerosWithThatRate)
{
    const Timecode made = Timecode::fromPlaybackPosition(48000, 48000, 0.3, true, 1000.0);
    EXPECT_EQ(made.toString(), "00:00:00:00");
    EXPECT_EQ(made.frameRate, 0);
}

TEST(TimecodePlaying, theFlagIsDroppedWhereTheRateHasNoDropFrame)
{
    EXPECT_EQ(playing(0, 48000, 25.0, true, 60.0), "00:01:00:00");
    EXPECT_EQ(playing(0, 48000, 30.0, true, 60.0), "00:01:00;02");
    EXPECT_EQ(playing(0, 48000, 29.97, true, 0.0), "00:00:00;00");
}

TEST(TimecodePlaying, dropFrameAtTwentyNineWrapsAfterItsPlainDay)
{
    EXPECT_EQ(playing(0, 48000, 29.0, true, 86400.0), "00:00:00;00");
    // Its last frame has the dropped numbers of 30-frame counting put back, which carries it past 24 hours.
    EXPECT_EQ(playing(0, 48000, 29.0, true, 86399.999), "24:01:26;13");
}

TEST(TimecodePlaying, hugeStartsWrapByTheTrueRemainder)
{
    // 2^63 samples at one a second: 2^63 mod 86400 seconds is 55808, that is 15:30:08.
    EXPECT_EQ(playing(uint64_t{ 1 } << 63, 1, 25.0, false, 0.0), "15:30:08:00");
}

TEST(TimecodePlaying, everyCombinationOfExtremesIsATimeOfDay)
{
    constexpr std::array<uint64_t, 5> kReferences{ 0, 1, 20000000000, uint64_t{ 1 } << 63, UINT64_MAX };
    constexpr std::array<uint32_t, 4> kSampleRates{ 0, 1, 48000, UINT32_MAX };
    constexpr std::array kRates{ 0.0, kTiny, 0.4, 1.0, 23.976, 29.0, 29.97, 30.0, 1e9, 2147483647.0, 1e18, kHuge, kNan,
        kInfinity, -kHuge };
    constexpr std::array kPositions{ 0.0, kTiny, 1.0, 86399.999, 1e18, 1e300, kHuge, kNan, -1.0, kInfinity };
    for (const uint64_t reference : kReferences) {
        for (const uint32_t sampleRate : kSampleRates) {
            for (const double rate : kRates) {
                for (const double position : kPositions) {
                    for (const bool drop : { false, true }) {
                        const Timecode made
                            = Timecode::fromPlaybackPosition(reference, sampleRate, rate, drop, position);
                        const bool runsPastTheDay = rate == 29.0 && drop;
                        EXPECT_TRUE(runsPastTheDay || isTimeOfDay(made))
                            << reference << ' ' << sampleRate << ' ' << rate << ' ' << position;
                        EXPECT_EQ(made.frameRate, Timecode::nominalFrameRate(rate));
                        EXPECT_EQ(made.dropFrame, Timecode::usesDropFrame(rate, drop));
                    }
                }
            }
        }
    }
}

TEST(TimecodePlaying, randomPositionsAgreeWithIntegerArithmetic)
{
    std::mt19937_64 random(3);
    std::uniform_int_distribution<int64_t> frames(0, 3 * Timecode::framesPerDay(25, false));
    for (int i = 0; i < 20000; ++i) {
        const int64_t start = frames(random);
        const int64_t elapsed = frames(random);
        const int64_t day = Timecode::framesPerDay(25, false);
        const auto made = Timecode::fromPlaybackPosition(
            static_cast<uint64_t>(start) * 1920, 48000, 25.0, false, static_cast<double>(elapsed) / 25.0);
        EXPECT_EQ(made.toFrames(), (start + elapsed) % day);
    }
}

struct RateText {
    double rate;
    bool drop;
    const char* text;
};

class TimecodeRateText : public testing::TestWithParam<RateText> { };

TEST_P(TimecodeRateText, isWrittenAsPeopleDo)
{
    EXPECT_EQ(Timecode::formatFrameRate(GetParam().rate, GetParam().drop), GetParam().text);
}

constexpr std::array kRateTexts{
    RateText{ 0.0, false, "--" },
    RateText{ -25.0, false, "--" },
    RateText{ kNan, true, "--" },
    RateText{ kInfinity, false, "--" },
    RateText{ 23.976, false, "23.976" },
    RateText{ 23.976, true, "23.976" },
    RateText{ 23.98, false, "23.976" },
    RateText{ 23.9, false, "23.976" },
    RateText{ 23.8999, false, "23.9" },
    RateText{ 23.995, false, "23.976" },
    RateText{ 24.0, false, "24" },
    RateText{ 24.019, true, "24" },
    RateText{ 24.03, false, "24.03" },
    RateText{ 24.985, false, "25" },
    RateText{ 25.0, true, "25" },
    RateText{ 29.97, true, "29.97 DF" },
    RateText{ 29.97, false, "29.97 NDF" },
    RateText{ 29.9, false, "29.97 NDF" },
    RateText{ 29.995, true, "29.97 DF" },
    RateText{ 30.0, true, "30 DF" },
    RateText{ 30.0, false, "30" },
    RateText{ 30.015, true, "30 DF" },
    RateText{ 47.952, false, "47.952" },
    RateText{ 48.0, false, "48" },
    RateText{ 50.0, false, "50" },
    RateText{ 12.5, true, "12.5" },
    RateText{ 59.94, true, "59.94" },
    RateText{ 59.9, false, "59.94" },
    RateText{ 59.99, false, "59.94" },
    RateText{ 60.0, false, "60" },
    RateText{ 60.01, true, "60" },
    RateText{ 100.0, false, "100" },
    RateText{ 119.88, false, "119.88" },
    RateText{ 0.0001, false, "0" },
    RateText{ kTiny, false, "0" },
    RateText{ 1e15, false, "1000000000000000" },
};
INSTANTIATE_TEST_SUITE_P(Table, TimecodeRateText, testing::ValuesIn(kRateTexts));

TEST(TimecodeRateTextLimits, theLargestRateIsWrittenInFull)
{
    const std::string text = Timecode::formatFrameRate(kHuge, false);
    EXPECT_EQ(text.size(), 309u);
    EXPECT_EQ(text.substr(0, 6), "179769");
}

TEST(TimecodeRateTextLimits, aCommaLocaleChangesNothing)
{
    const CommaLocale comma;
    if (!comma.works())
        GTEST_SKIP() << "no locale with a decimal comma on this machine";
    EXPECT_EQ(Timecode::formatFrameRate(47.952, false), "47.952");
    EXPECT_EQ(timecode(1234567, 0, 0, 0, 25, false).toString(), "1234567:00:00:00") << "thousands are not grouped";
}
