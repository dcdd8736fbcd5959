// The converter with the real resampler.

#include "audio/AudioRateConverter.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>
#include <vector>

namespace {

constexpr double kTone = 997.0; // Hz.
constexpr int32_t kBlock = 256;
constexpr int32_t kCapacity = 1024;

// `frames` frames of a stereo cosine: left as it is, right inverted and at half level.
std::vector<float> cosine(double rate, size_t frames)
{
    std::vector<float> stereo;
    for (size_t i = 0; i < frames; ++i) {
        const double value = 0.5 * std::cos(2.0 * std::numbers::pi * kTone * static_cast<double>(i) / rate);
        stereo.push_back(static_cast<float>(value));
        stereo.push_back(static_cast<float>(-0.5 * value));
    }
    return stereo;
}

std::vector<float> convertInBlocks(AudioRateConverter& converter, const std::vector<float>& input)
{
    std::vector<float> all;
    std::vector<float> block(size_t{ kCapacity } * 2);
    const auto frames = static_cast<int32_t>(input.size() / 2);
    for (int32_t done = 0; done < frames; done += kBlock) {
        const int32_t count = std::min(kBlock, frames - done);
        const int32_t made = converter.convert(input.data() + 2 * size_t(done), count, block.data(), kCapacity);
        EXPECT_GE(made, 0);
        EXPECT_LE(made, kCapacity);
        all.insert(all.end(), block.begin(), block.begin() + 2 * made);
    }
    return all;
}

// Highest deviation from the ideal tone, in dB below full scale, away from the onset.
double deviation(const std::vector<float>& stereo, double rate)
{
    const std::vector<float> ideal = cosine(rate, stereo.size() / 2);
    double highest = 1e-12;
    for (size_t i = 1000; i < stereo.size(); ++i)
        highest = std::max(highest, static_cast<double>(std::abs(stereo[i] - ideal[i])));
    return 20.0 * std::log10(highest);
}

} // namespace

TEST(RateConversion, toneComesOutAtTheNewRateInEveryRatio)
{
    const double rates[] = { 32000.0, 44100.0, 48000.0, 88200.0, 96000.0, 192000.0 };
    for (const double from : rates) {
        for (const double to : rates) {
            if (from == to || to > 4.0 * from)
                continue;
            AudioRateConverter converter;
            ASSERT_TRUE(converter.setup(from, to));
            const auto frames = static_cast<size_t>(from / 10.0);
            const std::vector<float> out = convertInBlocks(converter, cosine(from, frames));
            EXPECT_LT(deviation(out, to), -90.0) << from << " to " << to;
            const double expected = static_cast<double>(frames) * to / from;
            EXPECT_NEAR(static_cast<double>(out.size() / 2), expected, 0.02 * to) << from << " to " << to;
        }
    }
}

TEST(RateConversion, nothingFromBeforeAResetComesOutAfterIt)
{
    AudioRateConverter converter;
    ASSERT_TRUE(converter.setup(44100.0, 48000.0));
    convertInBlocks(converter, cosine(44100.0, 4410));
    converter.reset();
    const std::vector<float> out = convertInBlocks(converter, std::vector<float>(4410 * 2, 0.0f));
    ASSERT_FALSE(out.empty());
    EXPECT_EQ(out, std::vector<float>(out.size(), 0.0f));
}

TEST(RateConversion, afterAResetTheSameInputGivesTheSameOutput)
{
    AudioRateConverter converter;
    ASSERT_TRUE(converter.setup(96000.0, 48000.0));
    const std::vector<float> input = cosine(96000.0, 9600);
    const std::vector<float> first = convertInBlocks(converter, input);
    converter.reset();
    EXPECT_EQ(convertInBlocks(converter, input), first);
}

TEST(RateConversion, aRatioBeyondFourIsCutAtTheCapacityAndGoesOn)
{
    AudioRateConverter converter;
    ASSERT_TRUE(converter.setup(8000.0, 192000.0));
    const std::vector<float> out = convertInBlocks(converter, cosine(8000.0, 8000));
    EXPECT_GT(out.size(), 0U);
    EXPECT_LE(out.size() / 2, 32U * kCapacity);
}

TEST(RateConversion, aRatioThatNoFilterServesIsRefused)
{
    AudioRateConverter converter;
    EXPECT_FALSE(converter.setup(1.0, 48000.0));
    constexpr double kEndless = std::numeric_limits<double>::infinity();
    EXPECT_FALSE(converter.setup(kEndless, 48000.0));
    EXPECT_FALSE(converter.setup(kEndless, kEndless));
}
