#pragma once

#include "audio/PlaybackMixer.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cstddef>

/// The peak of each track, which falls with the blocks. Mixer thread raises, interface thread reads and zeroes; relaxed
/// throughout, since an old peak serves a meter as well as a new one.
class TrackPeaks {
public:
    static constexpr float peakDecay = 0.92f; ///< Factor for each mixed block.

    /// Linear, behind the gain; may exceed 1.0. `track` is 0 to PlaybackMixer::kMaxTracks - 1. Thread: any.
    float at(size_t track) const { return peaks[track].load(std::memory_order_relaxed); }

    /// Takes in one block: its peak for each of the first `tracks` tracks, or what the old one has fallen to.
    /// Thread: mixer.
    void raise(const float* blockPeaks, size_t tracks)
    {
        for (size_t track = 0; track < tracks; ++track) {
            const float fallen = peakDecay * at(track);
            peaks[track].store(std::max(blockPeaks[track], fallen), std::memory_order_relaxed);
        }
    }

    /// All 0.0. Thread: interface, or mixer.
    void zero()
    {
        for (std::atomic<float>& peak : peaks)
            peak.store(0.0f, std::memory_order_relaxed);
    }

private:
    std::array<std::atomic<float>, PlaybackMixer::kMaxTracks> peaks{};
};
