#include "mixer/MeterGeometry.h"

#include "mixer/MeterBallistics.h"

#include <algorithm>

namespace {

// A line of two pixels needs room beside the border.
constexpr int kFirstLineColumn = 3;
constexpr float kYellowFrom = 0.4f;
constexpr float kRedFrom = 0.7f;

float partOfFullScale(float level)
{
    return level / static_cast<float>(MeterBallistics::kFullScale);
}

} // namespace

QRect MeterGeometry::bar(float level) const
{
    const int length = static_cast<int>(partOfFullScale(level) * static_cast<float>(innerWidth()));
    const int drawn = std::min(innerWidth(), length);
    return drawn > 0 ? QRect(1, 1, drawn, innerHeight()) : QRect();
}

int MeterGeometry::peakLineX(int32_t position) const
{
    if (position <= 0)
        return -1;
    const int x = static_cast<int>(static_cast<float>(innerWidth()) * partOfFullScale(static_cast<float>(position)));
    return x >= kFirstLineColumn ? x + 1 : -1;
}

QColor meterPeakColour(int32_t position)
{
    const float part = partOfFullScale(static_cast<float>(position));
    if (part < kYellowFrom)
        return { 100, 255, 120, 220 };
    if (part < kRedFrom)
        return { 255, 240, 60, 220 };
    return { 255, 80, 60, 240 };
}
