#pragma once

#include <cstddef>
#include <utility>
#include <vector>

/// Lowest and highest sample of one bar; at most and at least 0.0, so each bar spans the zero line.
using WaveformPeak = std::pair<float, float>;

inline constexpr size_t kMostWaveformBars = 1000;

/// The bars of an overview: one for each sample up to 1000, else 1000 of equal length; samples left over at the end
/// don't count. If anything is louder than 0.001, all is scaled so that the loudest moment is 1.0. Empty without
/// samples. Samples that are not numbers are passed over.
std::vector<WaveformPeak> waveformPeaks(const std::vector<float>& samples);
