#pragma once

#include <cstddef>
#include <utility>
#include <vector>

/// Lowest and highest sample of one bar; at most and at least 0.0, so each bar spans the zero line.
using WaveformPeak = std::pair<float, float>;

inline constexpr size_t kMostWaveformBars = 1000;

/// Makes the bars of an overview while the samples come in: one for each sample up to 1000, else 1000 of equal length;
/// samples left over at the end don't count. Holds no samples. One that isn't a number is passed over.
class WaveformPeakBuilder {
public:
    /// Plans the bars for exactly so many samples.
    explicit WaveformPeakBuilder(size_t plannedSamples);

    /// Takes the next `count` samples.
    void add(const float* samples, size_t count);

    /// True if exactly the planned samples came; else the bars don't fit.
    bool complete() const { return taken == planned; }

    /// The bars, at most 1000. If anything is louder than 0.001, all is scaled so that the loudest moment is 1.0.
    /// Empty without samples.
    std::vector<WaveformPeak> scaledPeaks() const;

private:
    size_t planned;
    size_t taken = 0;
    size_t perBar; // Samples of a bar, at least 1.
    std::vector<WaveformPeak> peaks; // One for each planned bar, unscaled.
};

/// The bars of all `samples`.
std::vector<WaveformPeak> waveformPeaks(const std::vector<float>& samples);
