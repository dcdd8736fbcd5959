#pragma once

#include "audio/SampleDecode.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <random>
#include <vector>

/// A stored sample format.
struct Format {
    int32_t code;
    int32_t bits;
};

inline constexpr Format kFormats[] = {
    { kFormatInteger, 16 },
    { kFormatInteger, 24 },
    { kFormatInteger, 32 },
    { kFormatFloat, 32 },
};

inline constexpr int32_t kChannelCounts[] = { 1, 2, 3, 5, 6, 7, 8, 31, 64 };

/// The rule in its plainest form: assemble the number, convert to single precision, multiply in single precision.
inline float expectedSample(const uint8_t* bytes, Format format)
{
    const int width = format.bits / 8;
    int64_t number = 0;
    for (int i = 0; i < width; ++i)
        number += static_cast<int64_t>(bytes[i]) << (8 * i);
    if (format.code == kFormatFloat)
        return std::bit_cast<float>(static_cast<uint32_t>(number));
    if (number >= int64_t{ 1 } << (format.bits - 1))
        number -= int64_t{ 1 } << format.bits;
    const float factor = static_cast<float>(std::ldexp(1.0, 1 - format.bits));
    return static_cast<float>(number) * factor;
}

/// Exactly as many bytes as the frames take, so that the address sanitizer sees any read beyond them.
inline std::vector<uint8_t> randomBytes(size_t size, uint32_t seed)
{
    std::mt19937 random(seed);
    std::vector<uint8_t> bytes(size);
    for (uint8_t& each : bytes)
        each = static_cast<uint8_t>(random() & 0xFF);
    return bytes;
}

inline void expectSameBits(float actual, float expected)
{
    ASSERT_EQ(std::bit_cast<uint32_t>(actual), std::bit_cast<uint32_t>(expected));
}

/// Random bytes through the loop of `format` give what the rule gives, bit for bit, and so does the rule for one
/// sample.
inline void checkLoop(Format format, int64_t frames, int32_t fileChannels, int32_t outChannels)
{
    SCOPED_TRACE(testing::Message() << "format " << format.code << ", " << format.bits << " bits, " << frames
                                    << " frames, " << outChannels << " of " << fileChannels << " channels");
    const int64_t width = format.bits / 8;
    const std::vector<uint8_t> in = randomBytes(static_cast<size_t>(frames * fileChannels * width), 7);
    std::vector<float> out(static_cast<size_t>(frames * outChannels));
    frameDecoder(format.code, format.bits)(in.data(), frames, fileChannels, out.data(), outChannels);
    for (int64_t frame = 0; frame < frames; ++frame) {
        for (int32_t channel = 0; channel < outChannels; ++channel) {
            const uint8_t* bytes = in.data() + (frame * fileChannels + channel) * width;
            expectSameBits(out[static_cast<size_t>(frame * outChannels + channel)], expectedSample(bytes, format));
            expectSameBits(decodeSample(bytes, format.code, format.bits), expectedSample(bytes, format));
        }
    }
}

/// All 2 to the 24 values of a packed sample, in long runs, against the rule bit for bit.
inline void checkEveryPackedValue()
{
    constexpr int32_t kRun = 4096;
    std::vector<uint8_t> in(3 * kRun);
    std::vector<float> expected(kRun);
    std::vector<float> out(kRun);
    for (int32_t first = -(1 << 23); first < 1 << 23; first += kRun) {
        for (int32_t i = 0; i < kRun; ++i) {
            const int32_t number = first + i;
            const auto sample = static_cast<size_t>(i);
            for (size_t byte = 0; byte < 3; ++byte)
                in[3 * sample + byte] = static_cast<uint8_t>((number >> (8 * byte)) & 0xFF);
            expected[sample] = static_cast<float>(number) * 0x1p-23f;
        }
        frameDecoder(kFormatInteger, 24)(in.data(), kRun, 1, out.data(), 1);
        ASSERT_EQ(std::memcmp(out.data(), expected.data(), out.size() * sizeof(float)), 0) << "from " << first;
    }
}
