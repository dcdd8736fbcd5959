#pragma once

#include <cstdint>

/// Turns the first of `samples` packed 24-bit samples into floats, many at a time, and gives how many were done: all
/// but fewer than eight, or 0 where the processor has no instructions for it. Results equal those of the plain loop bit
/// for bit. Reads nothing behind the last sample. Any thread; never blocks or allocates.
int64_t decodeWide24(const uint8_t* in, int64_t samples, float* out);
