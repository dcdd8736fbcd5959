#pragma once

#include <cmath>
#include <cstdint>
#include <limits>

/// The whole part of `value`; 0 for a negative number or none at all, the greatest number for what lies beyond. Any
/// thread.
inline uint64_t wholeOf(double value)
{
    if (!(value > 0.0))
        return 0;
    constexpr auto kGreatest = std::numeric_limits<uint64_t>::max();
    // The limit itself is no double; the one next to it is 2^64, which no longer fits.
    if (value >= std::ldexp(1.0, std::numeric_limits<uint64_t>::digits))
        return kGreatest;
    return static_cast<uint64_t>(value);
}
