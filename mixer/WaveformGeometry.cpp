#include "mixer/WaveformGeometry.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr int kHeightMargin = 10;
constexpr float kGap = 0.5f;
constexpr int kFlatHeight = 2;

/// Cut towards zero. An infinite sample in the file scales itself to not-a-number, which counts as 0.
int toPixels(float length)
{
    return std::isfinite(length) ? static_cast<int>(length) : 0;
}

} // namespace

float WaveformGeometry::pitch() const
{
    return static_cast<float>(width) / static_cast<float>(bars);
}

QRectF WaveformGeometry::barRect(size_t index, WaveformPeak peak) const
{
    const float scale = static_cast<float>(height - kHeightMargin) * 0.5f;
    const int low = toPixels(peak.first * scale);
    const int high = toPixels(peak.second * scale);
    const float left = static_cast<float>(index) * pitch();
    const float barWidth = std::max(1.0f, pitch() - kGap);
    if (high > low)
        return { left, static_cast<qreal>(middle() - high), barWidth, static_cast<qreal>(high - low) };
    return { left, static_cast<qreal>(middle() - 1), barWidth, kFlatHeight };
}

int WaveformGeometry::playheadX(double position) const
{
    return static_cast<int>(position * width);
}

double WaveformGeometry::ratioAt(double x) const
{
    if (width < 1)
        return 0.0;
    return std::clamp(std::round(x) / width, 0.0, 1.0);
}
