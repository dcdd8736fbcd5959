#pragma once

#include <QString>

/// What a fader's position means: tenths of a decibel, -600 to 60, unity at 0, the lowest eleven being silence.
/// Thread: any.
namespace FaderScale {

inline constexpr int kLowest = -600;
inline constexpr int kHighest = 60;
inline constexpr int kLowestAudible = -589;
inline constexpr double kTenthsPerDecibel = 10.0;

/// "6.0 dB", "-20.0 dB", and "-∞ dB" below -589. The point stands in every locale.
QString text(int tenths);

/// Linear gain: 1.0 at 0, and 0.0 below -589.
float gain(int tenths);

} // namespace FaderScale
