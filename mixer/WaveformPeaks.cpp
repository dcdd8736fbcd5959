#include "mixer/WaveformPeaks.h"

#include <algorithm>
#include <cmath>

namespace {

// Below this a file counts as silent and isn't blown up.
constexpr float kQuietest = 0.001f;

WaveformPeak peakOf(const float* first, const float* last)
{
    float lowest = 0.0f;
    float highest = 0.0f;
    for (; first != last; ++first) {
        lowest = *first < lowest ? *first : lowest;
        highest = *first > highest ? *first : highest;
    }
    return {lowest, highest};
}

void scaleToFullHeight(std::vector<WaveformPeak>& peaks)
{
    float loudest = 0.0f;
    for (const WaveformPeak& peak : peaks)
        loudest = std::max({loudest, std::fabs(peak.first), std::fabs(peak.second)});
    if (!(loudest > kQuietest))
        return;
    const float factor = 1.0f / loudest;
    for (WaveformPeak& peak : peaks) {
        peak.first *= factor;
        peak.second *= factor;
    }
}

} // namespace

std::vector<WaveformPeak> waveformPeaks(const std::vector<float>& samples)
{
    std::vector<WaveformPeak> peaks;
    if (samples.empty())
        return peaks;
    const size_t bars = std::min(samples.size(), kMostWaveformBars);
    const size_t perBar = samples.size() / bars;
    peaks.reserve(bars);
    for (size_t bar = 0; bar < bars; ++bar)
        peaks.push_back(peakOf(samples.data() + bar * perBar, samples.data() + (bar + 1) * perBar));
    scaleToFullHeight(peaks);
    return peaks;
}
