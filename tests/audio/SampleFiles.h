#pragma once

#include "tests/support/WavBuilder.h"

#include <bit>
#include <cstdint>
#include <string>

/// `frames` float frames whose sample of channel c in frame f is f x `channels` + c: exact, and each one different,
/// below 2 to the 24.
inline std::string numberedFloats(int64_t frames, int32_t channels)
{
    std::string bytes;
    bytes.reserve(static_cast<size_t>(frames * channels * 4));
    for (int64_t i = 0; i < frames * channels; ++i)
        bytes += le32(std::bit_cast<uint32_t>(static_cast<float>(i)));
    return bytes;
}

/// A file of `numberedFloats` at 48 kHz.
inline WavBuilder numberedFile(int64_t frames, int32_t channels)
{
    WavBuilder file;
    file.fmt(48000, static_cast<uint16_t>(channels), 32, 3).data(numberedFloats(frames, channels));
    return file;
}
