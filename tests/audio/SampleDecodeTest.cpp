#include "audio/SampleDecode.h"

#include "audio/WideDecode.h"

#include "tests/audio/DecodeChecks.h"

#include <gtest/gtest.h>

#include <bit>
#include <vector>

namespace {

float decoded(std::vector<uint8_t> bytes, int32_t code, int32_t bits)
{
    return decodeSample(bytes.data(), code, bits);
}

} // namespace

TEST(SampleDecode, loopsOverAllChannelsFollowTheSampleRule)
{
    for (const Format format : kFormats) {
        for (const int32_t channels : kChannelCounts)
            checkLoop(format, 67, channels, channels);
    }
}

TEST(SampleDecode, loopsOverTheFirstChannelsFollowTheSampleRule)
{
    for (const Format format : kFormats) {
        for (const int32_t channels : kChannelCounts) {
            for (int32_t wanted = 1; wanted < channels; wanted += 3)
                checkLoop(format, 13, channels, wanted);
        }
    }
}

TEST(SampleDecode, everyShortRunIsDecodedToItsEnd)
{
    for (const Format format : kFormats) {
        for (int64_t frames = 0; frames < 40; ++frames)
            checkLoop(format, frames, 1, 1);
    }
}

TEST(SampleDecode, everyPackedValueIsDecodedExactly)
{
    checkEveryPackedValue();
}

TEST(SampleDecode, wideWayTakesAllButFewerThanEightSamplesWhereTheProcessorHasIt)
{
#if defined(__linux__) && defined(__x86_64__)
    const bool available = __builtin_cpu_supports("avx2") != 0;
#else
    const bool available = decodeWide24(randomBytes(24, 5).data(), 8, std::vector<float>(8).data()) != 0;
#endif
    const std::vector<uint8_t> in = randomBytes(3 * 80, 5);
    for (size_t place = 0; place < 8; ++place) {
        for (int64_t samples = 0; samples <= 80; ++samples) {
            std::vector<float> out(96, -99.0f);
            const int64_t done = decodeWide24(in.data(), samples, out.data() + place);
            EXPECT_LE(done, samples);
            EXPECT_GT(done, available ? samples - 8 : -1);
            for (size_t i = 0; i < static_cast<size_t>(done); ++i)
                ASSERT_EQ(out[place + i], decodeSample(in.data() + 3 * i, kFormatInteger, 24)) << i;
            for (size_t i = 0; i < out.size(); ++i) {
                const bool inside = i >= place && i < place + static_cast<size_t>(done);
                ASSERT_TRUE(inside || out[i] == -99.0f) << "wrote outside its samples";
            }
        }
    }
}

TEST(SampleDecode, negativeFullScaleIsExactlyMinusOne)
{
    EXPECT_EQ(decoded({ 0x00, 0x80 }, kFormatInteger, 16), -1.0f);
    EXPECT_EQ(decoded({ 0x00, 0x00, 0x80 }, kFormatInteger, 24), -1.0f);
    EXPECT_EQ(decoded({ 0x00, 0x00, 0x00, 0x80 }, kFormatInteger, 32), -1.0f);
}

TEST(SampleDecode, positiveFullScaleIsALittleUnderOneWhereSinglePrecisionCanTell)
{
    EXPECT_EQ(decoded({ 0xFF, 0x7F }, kFormatInteger, 16), 32767.0f / 32768.0f);
    EXPECT_EQ(decoded({ 0xFF, 0xFF, 0x7F }, kFormatInteger, 24), 8388607.0f / 8388608.0f);
    // 2147483647 rounds to 2147483648 in single precision, before the factor.
    EXPECT_EQ(decoded({ 0xFF, 0xFF, 0xFF, 0x7F }, kFormatInteger, 32), 1.0f);
}

TEST(SampleDecode, smallestStepsAreThePowersOfTwo)
{
    EXPECT_EQ(decoded({ 0x01, 0x00 }, kFormatInteger, 16), 3.0517578e-5f);
    EXPECT_EQ(decoded({ 0x01, 0x00, 0x00 }, kFormatInteger, 24), 1.1920929e-7f);
    EXPECT_EQ(decoded({ 0x01, 0x00, 0x00, 0x00 }, kFormatInteger, 32), 4.656613e-10f);
    EXPECT_EQ(decoded({ 0xFF, 0xFF, 0xFF }, kFormatInteger, 24), -1.1920929e-7f);
}

TEST(SampleDecode, floatsBeyondFullScaleAndOddOnesPassUnchanged)
{
    for (const uint32_t bits : { 0x40800000u, 0xC1200000u, 0x7F800000u, 0x7FC00123u, 0x80000000u, 0x00000001u }) {
        uint8_t bytes[4];
        for (int i = 0; i < 4; ++i)
            bytes[i] = static_cast<uint8_t>(bits >> (8 * i));
        float out = 0.0f;
        frameDecoder(kFormatFloat, 32)(bytes, 1, 1, &out, 1);
        EXPECT_EQ(std::bit_cast<uint32_t>(out), bits);
    }
}

TEST(SampleDecode, unknownFormatsGiveSilence)
{
    const std::vector<uint8_t> in(64, 0x55);
    for (const Format format :
        { Format{ kFormatInteger, 8 }, Format{ kFormatInteger, 0 }, Format{ kFormatFloat, 64 }, Format{ 2, 16 } }) {
        std::vector<float> out(8, 9.0f);
        frameDecoder(format.code, format.bits)(in.data(), 4, 2, out.data(), 2);
        EXPECT_EQ(out, std::vector<float>(8, 0.0f));
    }
    EXPECT_EQ(decodeSample(in.data(), kFormatInteger, 8), 0.0f);
    EXPECT_EQ(decodeSample(in.data(), 2, 16), 0.0f);
}

TEST(SampleDecode, narrowFloatsAreTakenAsFourOverlappingBytes)
{
    const std::vector<uint8_t> in = { 0x00, 0x00, 0x80, 0x3F, 0x00, 0x40, 0x00, 0x00 };
    std::vector<float> out(2);
    frameDecoder(kFormatFloat, 16)(in.data(), 2, 1, out.data(), 1);
    EXPECT_EQ(out[0], 1.0f);
    EXPECT_EQ(out[1], std::bit_cast<float>(0x40003F80u));
}
