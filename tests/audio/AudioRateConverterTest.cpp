// The converter's own decisions, over a resampler that only takes notes. Its functions stand here and so take the place
// of the library's.

#include "audio/AudioRateConverter.h"

#include "audio/RateEngine.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

namespace RateEngine {

struct Converter {
    double inputRate;
    double outputRate;
};

} // namespace RateEngine

namespace {

struct Notes {
    bool refuse = false;
    int32_t answer = 0; // Of `convert`.
    int made = 0;
    int alive = 0;
    int resets = 0;
    double inputRate = 0.0;
    double outputRate = 0.0;
    int32_t inputFrames = 0;
    int32_t capacity = 0;
};
Notes notes;

} // namespace

namespace RateEngine {

Converter* newConverter(double inputRate, double outputRate)
{
    if (notes.refuse)
        return nullptr;
    ++notes.made;
    ++notes.alive;
    notes.inputRate = inputRate;
    notes.outputRate = outputRate;
    return new Converter{ inputRate, outputRate };
}

int32_t convert(Converter*, const float*, int32_t inputFrames, float*, int32_t outputCapacity)
{
    notes.inputFrames = inputFrames;
    notes.capacity = outputCapacity;
    return notes.answer;
}

void reset(Converter*)
{
    ++notes.resets;
}

void dispose(Converter* converter)
{
    --notes.alive;
    delete converter;
}

} // namespace RateEngine

namespace {

class AudioRateConverterTest : public testing::Test {
protected:
    AudioRateConverterTest() { notes = {}; }

    // Copies show, since the resampler of this test writes nothing.
    int32_t convertRamp(int32_t frames, int32_t capacity)
    {
        input.resize(static_cast<size_t>(frames) * 2);
        for (size_t i = 0; i < input.size(); ++i)
            input[i] = static_cast<float>(i + 1);
        output.assign(static_cast<size_t>(capacity) * 2 + 2, -1.0f);
        return converter.convert(input.data(), frames, output.data(), capacity);
    }

    AudioRateConverter converter;
    std::vector<float> input;
    std::vector<float> output;
};

} // namespace

TEST_F(AudioRateConverterTest, equalRatesPassThroughWithoutAConverter)
{
    for (const double rate : { 48000.0, 48000.005, 47999.995 }) {
        EXPECT_TRUE(converter.setup(48000.0, rate));
        EXPECT_EQ(convertRamp(3, 8), 3);
        EXPECT_EQ(output[5], 6.0f);
    }
    EXPECT_EQ(notes.made, 0);
}

TEST_F(AudioRateConverterTest, ratesAHundredthApartAreConverted)
{
    EXPECT_TRUE(converter.setup(48000.0, 48000.02));
    EXPECT_EQ(notes.made, 1);
    EXPECT_EQ(notes.inputRate, 48000.0);
    EXPECT_EQ(notes.outputRate, 48000.02);
}

TEST_F(AudioRateConverterTest, exactlyAHundredthApartIsNotBelowIt)
{
    const double inputRate = 0.01;
    const double outputRate = 0.02;
    ASSERT_EQ(outputRate - inputRate, 0.01);
    EXPECT_TRUE(converter.setup(inputRate, outputRate));
    EXPECT_EQ(notes.made, 1);
}

TEST_F(AudioRateConverterTest, ratesOfZeroOrLessAreRefusedAndLeaveAPassThrough)
{
    const double bad[] = { 0.0, -48000.0, std::numeric_limits<double>::quiet_NaN() };
    for (const double rate : bad) {
        EXPECT_TRUE(converter.setup(44100.0, 48000.0));
        EXPECT_FALSE(converter.setup(rate, 48000.0));
        EXPECT_EQ(notes.alive, 0) << "the converter of the earlier setup is gone";
        EXPECT_FALSE(converter.setup(48000.0, rate));
        EXPECT_EQ(convertRamp(2, 2), 2);
        EXPECT_EQ(output[3], 4.0f);
    }
}

TEST_F(AudioRateConverterTest, setupIsFalseWhereTheSystemMakesNoConverter)
{
    notes.refuse = true;
    EXPECT_FALSE(converter.setup(44100.0, 48000.0));
    EXPECT_EQ(convertRamp(2, 2), 2) << "frames are copied";
}

TEST_F(AudioRateConverterTest, convertWithNothingToDoGivesZeroAndTouchesNothing)
{
    for (const double outputRate : { 48000.0, 44100.0 }) {
        ASSERT_TRUE(converter.setup(48000.0, outputRate));
        notes.answer = 5;
        float in[2] = { 1.0f, 2.0f };
        float out[2] = { -1.0f, -1.0f };
        EXPECT_EQ(converter.convert(in, 0, out, 1), 0);
        EXPECT_EQ(converter.convert(in, -1, out, 1), 0);
        EXPECT_EQ(converter.convert(in, 1, out, 0), 0);
        EXPECT_EQ(converter.convert(nullptr, 1, out, 1), 0);
        EXPECT_EQ(converter.convert(in, 1, nullptr, 1), 0);
        EXPECT_EQ(out[0], -1.0f);
        EXPECT_EQ(notes.inputFrames, 0) << "the resampler was asked";
    }
}

TEST_F(AudioRateConverterTest, passThroughIsCutAtTheCapacity)
{
    ASSERT_TRUE(converter.setup(48000.0, 48000.0));
    EXPECT_EQ(convertRamp(300, 256), 256);
    EXPECT_EQ(output[511], 512.0f);
    EXPECT_EQ(output[512], -1.0f);
}

TEST_F(AudioRateConverterTest, aFreshObjectPassesThrough)
{
    EXPECT_EQ(convertRamp(4, 8), 4);
    EXPECT_EQ(output[7], 8.0f);
}

TEST_F(AudioRateConverterTest, aBlockGoesToTheConverterWhole)
{
    ASSERT_TRUE(converter.setup(44100.0, 48000.0));
    notes.answer = 277;
    EXPECT_EQ(convertRamp(256, 1024), 277);
    EXPECT_EQ(notes.inputFrames, 256);
    EXPECT_EQ(notes.capacity, 1024);
}

TEST_F(AudioRateConverterTest, aFailingConversionGivesZeroFrames)
{
    ASSERT_TRUE(converter.setup(44100.0, 48000.0));
    notes.answer = 0;
    EXPECT_EQ(convertRamp(256, 1024), 0);
}

TEST_F(AudioRateConverterTest, resetReachesTheConverterAndDoesNothingWithoutOne)
{
    converter.reset();
    EXPECT_EQ(notes.resets, 0);
    ASSERT_TRUE(converter.setup(44100.0, 48000.0));
    converter.reset();
    EXPECT_EQ(notes.resets, 1);
}

TEST_F(AudioRateConverterTest, teardownTwiceIsHarmlessAndLeavesAPassThrough)
{
    ASSERT_TRUE(converter.setup(44100.0, 48000.0));
    converter.teardown();
    converter.teardown();
    EXPECT_EQ(notes.alive, 0);
    EXPECT_EQ(convertRamp(2, 2), 2);
}

TEST_F(AudioRateConverterTest, destructorDisposesOfTheConverter)
{
    {
        AudioRateConverter shortLived;
        ASSERT_TRUE(shortLived.setup(44100.0, 48000.0));
        EXPECT_EQ(notes.alive, 1);
    }
    EXPECT_EQ(notes.alive, 0);
}

TEST_F(AudioRateConverterTest, secondSetupDisposesOfTheFirstConverter)
{
    ASSERT_TRUE(converter.setup(44100.0, 48000.0));
    ASSERT_TRUE(converter.setup(96000.0, 48000.0));
    EXPECT_EQ(notes.made, 2);
    EXPECT_EQ(notes.alive, 1);
}
