#pragma once

#include <cstdint>

/// How a meter moves, apart from the widget that draws it. Levels run from 0 to 1000, linear in amplitude. The clock is
/// the call: one for each reading, 20 a second in the mixer.
namespace MeterBallistics {

inline constexpr int kFullScale = 1000;
/// Readings from here on are over: -1.24 dB below full scale.
inline constexpr int kClipThreshold = 867;
inline constexpr int kClipCalls = 200; ///< Readings below the threshold until the clip indicator clears: 10 seconds.
inline constexpr int kPeakHoldCalls = 30; ///< Readings for which the peak line stands still: 1.5 seconds.
inline constexpr int kPeakFallPerCall = 12; ///< Fall of the peak line for each reading after that.

/// The peak line.
struct PeakLine {
    int32_t position = 0; ///< 0 to 1000.
    int32_t callsLeft = 0; ///< Readings until it falls.
};

/// The clip indicator.
struct Clip {
    bool on = false;
    int32_t callsLeft = 0; ///< Readings below the threshold until it clears.
};

/// A reading as the meter shows it, 0 to 1000.
int clampedReading(int reading);

/// The drawn level after a clamped reading: up at once, down by 12% of the distance, and onto the reading once it is
/// less than 0.5 away.
float nextLevel(float level, int reading);

/// The peak line after a clamped reading.
PeakLine nextPeakLine(PeakLine line, int reading);

/// The clip indicator after a reading as it came, not clamped.
Clip nextClip(Clip clip, int reading);

} // namespace MeterBallistics
