#pragma once

#include <cstdint>

/// Format tags of a `fmt ` chunk that can be played.
inline constexpr int32_t kFormatInteger = 1;
inline constexpr int32_t kFormatFloat = 3;

/// Bytes that must be readable behind the last sample given to a decoder. A float sample is always taken as four bytes,
/// also where the file says that it has two or three.
inline constexpr int32_t kSampleSlack = 2;

/// Turns `frames` stored frames into interleaved floats; full scale is 1.0, nothing is clipped.
/// `in` holds `frames` x `fileChannels` little-endian samples, and `kSampleSlack` readable bytes behind them.
/// `out` takes `frames` x `outChannels` floats: the first `outChannels` (1 to `fileChannels`) of each frame.
/// Neither is kept. Any thread; never blocks or allocates.
using FrameDecoder = void (*)(const uint8_t* in, int64_t frames, int32_t fileChannels, float* out, int32_t outChannels);

/// The loop for one sample format, to be chosen once for each block. Formats that don't exist get a loop that writes
/// 0.0.
FrameDecoder frameDecoder(int32_t formatCode, int32_t bitsPerSample);

/// One stored sample as a float, by the same rule as the loops; 0.0 for a format that doesn't exist.
/// `bytes` has four readable bytes for floats, and as many as the sample is wide otherwise. Any thread.
float decodeSample(const uint8_t* bytes, int32_t formatCode, int32_t bitsPerSample);
