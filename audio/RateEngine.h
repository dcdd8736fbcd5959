#pragma once

#include <cstdint>

/// The system's streaming resampler for interleaved stereo floats, as AudioRateConverter needs it. One source per
/// platform. When to convert at all and what the caller gets on failure is decided by AudioRateConverter.
namespace RateEngine {

/// A resampler with its filter history. Each platform has its own.
struct Converter;

/// A converter from `inputRate` to `outputRate`, both above 0, in frames per second. The caller owns it and ends
/// it with `dispose`. Null if the system can't convert between these rates.
Converter* newConverter(double inputRate, double outputRate);

/// Offers one block of `inputFrames` frames and writes at most `outputCapacity` frames, both at least 1. The number
/// varies around the ratio of the rates and may be 0 while the filter fills. What the capacity cuts off is not
/// offered again. Answers the frames written; 0 if the conversion fails.
/// Thread: one thread at a time. Allocates nothing and never blocks.
int32_t convert(Converter* converter, const float* input, int32_t inputFrames, float* output, int32_t outputCapacity);

/// Forgets the filter history, at the latest before the next block is converted.
/// Thread: any, also during `convert`; a block in flight may still be converted with the old history.
void reset(Converter* converter);

/// Ends the converter; the pointer is dead afterwards. No `convert` may be in flight.
void dispose(Converter* converter);

} // namespace RateEngine
