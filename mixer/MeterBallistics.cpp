#include "mixer/MeterBallistics.h"

#include <algorithm>

namespace MeterBallistics {

namespace {

constexpr float kKeptPerCall = 0.88f;
constexpr float kSnapDistance = 0.5f;

} // namespace

int clampedReading(int reading)
{
    return std::clamp(reading, 0, kFullScale);
}

float nextLevel(float level, int reading)
{
    const auto target = static_cast<float>(reading);
    if (target >= level)
        return target;
    const float fallen = (level - target) * kKeptPerCall + target;
    return fallen < target + kSnapDistance ? target : fallen;
}

PeakLine nextPeakLine(PeakLine line, int reading)
{
    if (reading >= line.position)
        return { reading, kPeakHoldCalls };
    if (line.callsLeft < 1)
        return { std::max(reading, line.position - kPeakFallPerCall), line.callsLeft };
    return { line.position, line.callsLeft - 1 };
}

Clip nextClip(Clip clip, int reading)
{
    if (reading >= kClipThreshold)
        return { true, kClipCalls };
    if (!clip.on || clip.callsLeft < 1)
        return clip;
    const int32_t left = clip.callsLeft - 1;
    return { left > 0, left };
}

} // namespace MeterBallistics
