#include "core/FrameTimecode.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstdio>
#include <limits>
#include <random>
#include <string>

namespace {

constexpr FrameRate kFilm{ 24, 1 };
constexpr FrameRate kPulledFilm{ 24000, 1001 };
constexpr FrameRate kPulled30{ 30000, 1001 };
constexpr FrameRate kPulled60{ 60000, 1001 };
constexpr std::array kRates{ kPulledFilm, kFilm, FrameRate{ 25, 1 }, kPulled30, FrameRate{ 30, 1 }, FrameRate{ 50, 1 },
    kPulled60 };
constexpr std::array<uint32_t, 8> kSampleRates{ 32000, 44100, 47952, 48000, 48048, 88200, 96000, 192000 };
constexpr uint64_t kGreatest = std::numeric_limits<uint64_t>::max();

/// Counts labels one by one, as a person would.
class LabelCounter {
public:
    LabelCounter(uint32_t framesPerSecond, uint32_t droppedNumbers) : nominal(framesPerSecond), dropped(droppedNumbers)
    {
    }

    std::string label() const
    {
        std::array<char, 16> text{};
        std::snprintf(text.data(), text.size(), "%02u:%02u:%02u%c%02u", minutes / 60, minutes % 60, seconds,
            dropped > 0 ? ';' : ':', frames);
        return text.data();
    }

    void next()
    {
        if (++frames < nominal)
            return;
        frames = 0;
        if (++seconds < 60)
            return;
        seconds = 0;
        ++minutes;
        if (minutes % 10 != 0)
            frames = dropped;
    }

private:
    uint32_t nominal;
    uint32_t dropped;
    uint32_t minutes = 0;
    uint32_t seconds = 0;
    uint32_t frames = 0;
};

void expectEveryLabel(const FrameRate& rate, uint32_t dropped, uint64_t framesOfTheDay)
{
    const bool drop = dropped > 0;
    ASSERT_EQ(framesOfTheDay, labelledFramesPerDay(rate, drop));
    LabelCounter counter(rate.nominal(), dropped);
    for (uint64_t frame = 0; frame < framesOfTheDay; ++frame, counter.next()) {
        const std::string label = counter.label();
        ASSERT_EQ(label, frameLabel(frame, rate, drop));
        ASSERT_EQ(frame, frameOfLabel(label, rate, drop)) << label;
    }
    EXPECT_EQ(0u, counter.label().find("24:00:00"));
}

uint64_t product(uint64_t frame, const FrameRate& rate, uint32_t sampleRate)
{
    return frame * rate.denominator * sampleRate; // Of one day: far below 64 bits.
}

TEST(FrameTimecode, frameComesBackFromItsSamplesHoweverTheyWereRounded)
{
    std::mt19937_64 random(1);
    for (const FrameRate& rate : kRates) {
        for (const uint32_t sampleRate : kSampleRates) {
            for (uint64_t i = 0; i < 10000; ++i) {
                const uint64_t frame = i < 2000 ? i : random() % labelledFramesPerDay(rate, false);
                const uint64_t exact = product(frame, rate, sampleRate);
                const uint64_t below = exact / rate.numerator;
                const uint64_t above = (exact + rate.numerator - 1) / rate.numerator;
                ASSERT_EQ(frame, frameAtSample(below, rate, sampleRate)) << rate.toString() << ' ' << sampleRate;
                ASSERT_EQ(frame, frameAtSample(above, rate, sampleRate)) << rate.toString() << ' ' << sampleRate;
                ASSERT_EQ(frame, frameAtSample(sampleOfFrame(frame, rate, sampleRate), rate, sampleRate));
            }
        }
    }
}

TEST(FrameTimecode, frameBeginsAtTheNearestSample)
{
    EXPECT_EQ(2002u, sampleOfFrame(1, kPulledFilm, 48000));
    EXPECT_EQ(1602u, sampleOfFrame(1, kPulled30, 48000)); // 1601.6
    EXPECT_EQ(3203u, sampleOfFrame(2, kPulled30, 48000)); // 3203.2
    EXPECT_EQ(801u, sampleOfFrame(1, kPulled60, 48000)); // 800.8
    EXPECT_EQ(1920u, sampleOfFrame(1, { 25, 1 }, 48000));
}

TEST(FrameTimecode, sampleBeforeAFrameBelongsToTheOneBeforeWhereFramesAreWhole)
{
    EXPECT_EQ(0u, frameAtSample(1919, { 25, 1 }, 48000));
    EXPECT_EQ(1u, frameAtSample(1920, { 25, 1 }, 48000));
    EXPECT_EQ(1094376u, frameAtSample(2190940753, kPulledFilm, 48000));
    EXPECT_EQ("12:39:59:00", frameLabel(1094376, kPulledFilm, false));
}

TEST(FrameTimecode, lengthIsTheNearestNumberOfFrames)
{
    EXPECT_EQ(120u, framesInLength(240239, kPulledFilm, 48000)); // One sample short.
    EXPECT_EQ(0u, framesInLength(959, { 25, 1 }, 48000));
    EXPECT_EQ(1u, framesInLength(960, { 25, 1 }, 48000));
}

TEST(FrameTimecode, numbersThatNeedMoreThan64BitsStopAtTheGreatest)
{
    EXPECT_EQ(kGreatest, sampleOfFrame(kGreatest, kPulledFilm, 192000));
    EXPECT_EQ(kGreatest, frameAtSample(kGreatest, { 1000, 1 }, 1));
    EXPECT_EQ(kGreatest, framesInLength(kGreatest, { 1000, 1 }, 1));
    EXPECT_EQ(kGreatest / 2000, frameAtSample(kGreatest, kFilm, 48000));
}

TEST(FrameTimecode, everyLabelOfADayAt25)
{
    expectEveryLabel({ 25, 1 }, 0, 2160000);
}
TEST(FrameTimecode, everyDropFrameLabelOfADayAt2997)
{
    expectEveryLabel(kPulled30, 2, 2589408);
}
TEST(FrameTimecode, everyDropFrameLabelOfADayAt5994)
{
    expectEveryLabel(kPulled60, 4, 5178816);
}

TEST(FrameTimecode, labelsThatDropFrameLeavesOutNameNoFrame)
{
    for (const std::string label : { "00:01:00;00", "00:01:00;01", "23:59:00;00", "12:34:00:01" })
        EXPECT_FALSE(frameOfLabel(label, kPulled30, true)) << label;
    for (const std::string label : { "00:01:00;00", "00:01:00;01", "00:01:00;02", "00:01:00;03" })
        EXPECT_FALSE(frameOfLabel(label, kPulled60, true)) << label;
    EXPECT_EQ(1800u, frameOfLabel("00:01:00;02", kPulled30, true));
    EXPECT_EQ(3600u, frameOfLabel("00:01:00;04", kPulled60, true));
    EXPECT_EQ(17982u, frameOfLabel("00:10:00;00", kPulled30, true));
    EXPECT_EQ(1800u, frameOfLabel("00:01:00:00", kPulled30, false));
}

TEST(FrameTimecode, whatIsNoLabelNamesNoFrame)
{
    for (const std::string label : { "", "01:02:03", "1:02:03:04", "01:02:03:4", "01:02:03:04 ", "24:00:00:00",
             "00:60:00:00", "00:00:60:00", "00:00:00:24", "00-00-00-00", "0a:00:00:00", "-1:00:00:00", "00:00:00.00" })
        EXPECT_FALSE(frameOfLabel(label, kFilm, false)) << label;
    EXPECT_EQ(0u, frameOfLabel("00:00:00:00", kFilm, false));
}

TEST(FrameTimecode, labelsStartAgainAfterADay)
{
    EXPECT_EQ("00:00:00:01", frameLabel(2073601, kFilm, false));
    EXPECT_EQ("00:00:00;00", frameLabel(2589408, kPulled30, true));
    EXPECT_EQ("23:59:59:23", frameLabel(2073599, kFilm, false));
}

TEST(FrameTimecode, dropFrameIsCountedAtThirtyAndSixtyAlone)
{
    EXPECT_TRUE(countsDropFrame(kPulled30, true));
    EXPECT_TRUE(countsDropFrame(kPulled60, true));
    EXPECT_FALSE(countsDropFrame(kPulled30, false));
    EXPECT_FALSE(countsDropFrame(kPulledFilm, true));
    EXPECT_FALSE(countsDropFrame({ 25, 1 }, true));
}

TEST(FrameTimecode, rateIsTheFractionThatANumberStandsFor)
{
    for (const double film : { 24000.0 / 1001.0, 23.976, 23.98, 23.9760239 })
        EXPECT_EQ(kPulledFilm, exactFrameRate(film)) << film;
    for (const double video : { 30000.0 / 1001.0, 29.97 })
        EXPECT_EQ(kPulled30, exactFrameRate(video)) << video;
    EXPECT_EQ(kPulled60, exactFrameRate(59.94));
    EXPECT_EQ((FrameRate{ 48000, 1001 }), exactFrameRate(47.952));
    EXPECT_EQ(kFilm, exactFrameRate(24.0));
    EXPECT_EQ((FrameRate{ 120, 1 }), exactFrameRate(120.0));
    EXPECT_EQ((FrameRate{ 25, 2 }), exactFrameRate(12.5));
    EXPECT_EQ("24000/1001", kPulledFilm.toString());
    EXPECT_EQ(30u, kPulled30.nominal());
}

TEST(FrameTimecode, numbersThatAreNoRateGiveNone)
{
    const double kNan = std::numeric_limits<double>::quiet_NaN();
    const double kInfinity = std::numeric_limits<double>::infinity();
    for (const double number : { 0.0, -24.0, kNan, kInfinity, -kInfinity, 1000.5, 1e300, 1e-300, 24.12345 })
        EXPECT_FALSE(exactFrameRate(number)) << number;
}

TEST(FrameTimecode, everyRateThatIsFoundCanBeCountedIn)
{
    for (double number = 0.0001; number < 1000.0; number += 0.0137) {
        const auto rate = exactFrameRate(std::round(number * 1000.0) / 1000.0);
        if (!rate)
            continue;
        ASSERT_GT(rate->numerator, 0u);
        ASSERT_GT(rate->denominator, 0u);
        ASSERT_FALSE(frameLabel(frameAtSample(kGreatest, *rate, 1), *rate, countsDropFrame(*rate, true)).empty());
    }
}

} // namespace
