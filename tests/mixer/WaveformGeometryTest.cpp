#include "mixer/WaveformGeometry.h"
#include "mixer/WaveformPeaks.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <random>
#include <vector>

namespace {

std::vector<float> ramp(size_t count)
{
    std::vector<float> samples(count);
    for (size_t i = 0; i < count; ++i)
        samples[i] = static_cast<float>(i + 1) / static_cast<float>(count);
    return samples;
}

} // namespace

TEST(WaveformPeaks, noSamplesGiveNoBars)
{
    EXPECT_TRUE(waveformPeaks({}).empty());
}

TEST(WaveformPeaks, upToAThousandSamplesHaveABarEach)
{
    EXPECT_EQ(waveformPeaks(ramp(1)).size(), 1u);
    EXPECT_EQ(waveformPeaks(ramp(500)).size(), 500u);
    EXPECT_EQ(waveformPeaks(ramp(1000)).size(), 1000u);
    EXPECT_FLOAT_EQ(waveformPeaks(ramp(500))[249].second, 0.5f);
}

TEST(WaveformPeaks, of1999SamplesTheLast999DoNotCount)
{
    std::vector<float> samples(1999, 0.25f);
    samples[1000] = 1.0f;
    samples[1998] = -1.0f;
    const auto peaks = waveformPeaks(samples);
    ASSERT_EQ(peaks.size(), 1000u);
    for (const WaveformPeak& peak : peaks)
        EXPECT_EQ(peak, WaveformPeak(0.0f, 1.0f));
}

TEST(WaveformPeaks, eachBarTakesItsOwnSamples)
{
    std::vector<float> samples(2000, 0.0f);
    samples[0] = 1.0f;
    samples[3] = -0.5f;
    samples[1999] = 0.25f;
    const auto peaks = waveformPeaks(samples);
    EXPECT_EQ(peaks[0], WaveformPeak(0.0f, 1.0f));
    EXPECT_EQ(peaks[1], WaveformPeak(-0.5f, 0.0f));
    EXPECT_EQ(peaks[2], WaveformPeak(0.0f, 0.0f));
    EXPECT_EQ(peaks[999], WaveformPeak(0.0f, 0.25f));
}

TEST(WaveformPeaks, theLoudestMomentFillsTheHeight)
{
    const auto peaks = waveformPeaks({ 0.1f, -0.2f });
    EXPECT_FLOAT_EQ(peaks[0].second, 0.5f);
    EXPECT_FLOAT_EQ(peaks[1].first, -1.0f);
}

TEST(WaveformPeaks, tooLoudFloatsAreScaledDown)
{
    const auto peaks = waveformPeaks({ 4.0f, -2.0f });
    EXPECT_FLOAT_EQ(peaks[0].second, 1.0f);
    EXPECT_FLOAT_EQ(peaks[1].first, -0.5f);
}

TEST(WaveformPeaks, quietFilesStayAsTheyAre)
{
    EXPECT_FLOAT_EQ(waveformPeaks({ 0.001f })[0].second, 0.001f);
    EXPECT_FLOAT_EQ(waveformPeaks({ 0.0011f })[0].second, 1.0f);
}

TEST(WaveformPeaks, silenceStaysZero)
{
    for (const WaveformPeak& peak : waveformPeaks(std::vector<float>(3000, 0.0f)))
        EXPECT_EQ(peak, WaveformPeak(0.0f, 0.0f));
}

TEST(WaveformPeaks, whatIsNotANumberIsPassedOver)
{
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const auto peaks = waveformPeaks({ nan, 0.5f });
    EXPECT_EQ(peaks[0], WaveformPeak(0.0f, 0.0f));
    EXPECT_EQ(peaks[1], WaveformPeak(0.0f, 1.0f));
}

TEST(WaveformPeaks, agreeWithThePlainRuleForAnyLength)
{
    std::mt19937 random(4);
    std::uniform_real_distribution<float> level(-1.0f, 1.0f);
    for (const size_t count : { 1u, 2u, 999u, 1000u, 1001u, 1999u, 2000u, 48001u }) {
        std::vector<float> samples(count);
        for (float& sample : samples)
            sample = level(random);
        samples[0] = 1.0f; // The scale is then 1.
        const auto peaks = waveformPeaks(samples);
        const size_t bars = std::min<size_t>(count, 1000);
        ASSERT_EQ(peaks.size(), bars);
        const size_t perBar = count / bars;
        for (size_t bar = 0; bar < bars; ++bar) {
            WaveformPeak expected(0.0f, 0.0f);
            for (size_t i = bar * perBar; i < (bar + 1) * perBar; ++i) {
                expected.first = std::min(expected.first, samples[i]);
                expected.second = std::max(expected.second, samples[i]);
            }
            EXPECT_EQ(peaks[bar], expected) << count << ' ' << bar;
        }
    }
}

TEST(WaveformPeaks, comeOutTheSameInBlocksOfAnySize)
{
    std::mt19937 random(5);
    std::uniform_real_distribution<float> level(-1.0f, 1.0f);
    for (const size_t count : { 1u, 999u, 1000u, 1999u, 4321u, 50000u }) {
        std::vector<float> samples(count);
        for (float& sample : samples)
            sample = level(random);
        for (const size_t block : { 1u, 7u, 8192u }) {
            WaveformPeakBuilder builder(count);
            for (size_t start = 0; start < count; start += block)
                builder.add(samples.data() + start, std::min(block, count - start));
            EXPECT_TRUE(builder.complete());
            EXPECT_EQ(builder.scaledPeaks(), waveformPeaks(samples)) << count << ' ' << block;
        }
    }
}

TEST(WaveformPeaks, areIncompleteWithFewerOrMoreSamplesThanPlanned)
{
    const std::vector<float> samples(2000, 0.5f);
    WaveformPeakBuilder builder(1500);
    builder.add(samples.data(), 1499);
    EXPECT_FALSE(builder.complete());
    builder.add(samples.data(), 1);
    EXPECT_TRUE(builder.complete());
    builder.add(samples.data(), 2000);
    EXPECT_FALSE(builder.complete());
}

TEST(WaveformGeometry, barsLieAtTheirPitch)
{
    const WaveformGeometry geometry{ 1000, 100, 500 };
    EXPECT_FLOAT_EQ(geometry.pitch(), 2.0f);
    const QRectF bar = geometry.barRect(3, { -1.0f, 1.0f });
    EXPECT_EQ(bar, QRectF(6.0, 5.0, 1.5, 90.0));
}

TEST(WaveformGeometry, barsAreNeverNarrowerThanAPixel)
{
    const WaveformGeometry geometry{ 500, 100, 1000 };
    EXPECT_EQ(geometry.barRect(1, { 0.0f, 1.0f }), QRectF(0.5, 5.0, 1.0, 45.0));
}

TEST(WaveformGeometry, aFlatBarIsTwoPixelsHigh)
{
    const WaveformGeometry geometry{ 500, 101, 1 };
    EXPECT_EQ(geometry.barRect(0, { 0.0f, 0.0f }), QRectF(0.0, 49.0, 499.5, 2.0));
    EXPECT_EQ(geometry.barRect(0, { -0.01f, 0.01f }), QRectF(0.0, 49.0, 499.5, 2.0));
}

TEST(WaveformGeometry, heightsAreCutTowardsZero)
{
    const WaveformGeometry geometry{ 10, 100, 10 };
    EXPECT_EQ(geometry.barRect(0, { -0.5f, 0.5f }), QRectF(0.0, 28.0, 1.0, 44.0)); // 22.5 pixels either way.
}

TEST(WaveformGeometry, aSingleSidedBarStandsOnTheZeroLine)
{
    const WaveformGeometry geometry{ 10, 100, 10 };
    const QRectF bar = geometry.barRect(0, { 0.0f, 1.0f });
    EXPECT_EQ(bar.bottom(), 50.0);
    EXPECT_EQ(bar.top(), 5.0);
}

TEST(WaveformGeometry, barsThatAreNotNumbersAreFlat)
{
    const float nan = std::numeric_limits<float>::quiet_NaN();
    EXPECT_EQ((WaveformGeometry{ 10, 100, 10 }).barRect(0, { nan, nan }).height(), 2.0);
}

TEST(WaveformGeometry, thePlayheadIsCutToAColumn)
{
    const WaveformGeometry geometry{ 300, 100, 1 };
    EXPECT_EQ(geometry.playheadX(0.5), 150);
    EXPECT_EQ(geometry.playheadX(0.999), 299);
    EXPECT_EQ(geometry.playheadX(1.0), 300);
}

TEST(WaveformGeometry, aPressCountsFromItsNearestColumn)
{
    const WaveformGeometry geometry{ 200, 100, 1 };
    EXPECT_DOUBLE_EQ(geometry.ratioAt(50.0), 0.25);
    EXPECT_DOUBLE_EQ(geometry.ratioAt(49.5), 0.25);
    EXPECT_DOUBLE_EQ(geometry.ratioAt(49.49), 0.245);
}

TEST(WaveformGeometry, pressesOutsideAreClamped)
{
    const WaveformGeometry geometry{ 200, 100, 1 };
    EXPECT_EQ(geometry.ratioAt(-3.0), 0.0);
    EXPECT_EQ(geometry.ratioAt(500.0), 1.0);
    EXPECT_EQ((WaveformGeometry{ 0, 100, 1 }).ratioAt(1.0), 0.0);
}
