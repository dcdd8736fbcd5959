#include "mixer/WaveformPeaks.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace {

// Below this a file counts as silent and isn't blown up.
constexpr float kQuietest = 0.001f;

// One comparison waits for the one before it. Side by side they don't, and the compiler makes vectors of them.
constexpr size_t kLanes = 16;

// Written so that a sample that isn't a number loses both comparisons.
float lower(float sample, float lowest)
{
    return sample < lowest ? sample : lowest;
}
float higher(float sample, float highest)
{
    return sample > highest ? sample : highest;
}

WaveformPeak peakOf(const float* samples, size_t count)
{
    std::array<float, kLanes> lowest{};
    std::array<float, kLanes> highest{};
    size_t i = 0;
    for (; i + kLanes <= count; i += kLanes) {
        for (size_t lane = 0; lane < kLanes; ++lane) {
            lowest[lane] = lower(samples[i + lane], lowest[lane]);
            highest[lane] = higher(samples[i + lane], highest[lane]);
        }
    }
    for (; i < count; ++i) {
        lowest[0] = lower(samples[i], lowest[0]);
        highest[0] = higher(samples[i], highest[0]);
    }
    return { *std::min_element(lowest.begin(), lowest.end()), *std::max_element(highest.begin(), highest.end()) };
}

void scaleToFullHeight(std::vector<WaveformPeak>& peaks)
{
    float loudest = 0.0f;
    for (const WaveformPeak& peak : peaks)
        loudest = std::max({ loudest, std::fabs(peak.first), std::fabs(peak.second) });
    if (!(loudest > kQuietest))
        return;
    const float factor = 1.0f / loudest;
    for (WaveformPeak& peak : peaks) {
        peak.first *= factor;
        peak.second *= factor;
    }
}

} // namespace

WaveformPeakBuilder::WaveformPeakBuilder(size_t plannedSamples)
    : planned(plannedSamples)
    , perBar(std::max<size_t>(1, plannedSamples / kMostWaveformBars))
    , peaks(std::min(plannedSamples, kMostWaveformBars))
{
}

void WaveformPeakBuilder::add(const float* samples, size_t count)
{
    const size_t end = taken + count;
    while (taken < end && taken / perBar < peaks.size()) {
        WaveformPeak& bar = peaks[taken / perBar];
        const size_t inBar = std::min(end - taken, perBar - taken % perBar);
        const WaveformPeak part = peakOf(samples, inBar);
        bar = { std::min(bar.first, part.first), std::max(bar.second, part.second) };
        samples += inBar;
        taken += inBar;
    }
    taken = end;
}

std::vector<WaveformPeak> WaveformPeakBuilder::scaledPeaks() const
{
    std::vector<WaveformPeak> scaled = peaks;
    scaleToFullHeight(scaled);
    return scaled;
}

std::vector<WaveformPeak> waveformPeaks(const std::vector<float>& samples)
{
    WaveformPeakBuilder builder(samples.size());
    builder.add(samples.data(), samples.size());
    return builder.scaledPeaks();
}
