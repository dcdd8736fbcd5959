#pragma once

#include <array>
#include <atomic>
#include <cstdint>

/// Mixes the tracks of a file down to two equal channels, with a gain, a mute and a solo for each track, and
/// measures each track's peak. A track is a channel of the file; there is no pan.
///
/// Threads: the setters and getters belong to the interface thread, `mixToStereo` to the mixer thread, both at the
/// same time. Gains, mutes and solos are shared without any order between them: each stands alone and is
/// read once for each block, so a change takes effect at the next block at the latest. `reset` needs the mixer thread
/// to be away. Nothing here blocks or allocates.
class PlaybackMixer {
public:
    /// The program's limit on tracks.
    static constexpr int32_t kMaxTracks = 64;

    /// As after `reset(tracks)`.
    explicit PlaybackMixer(int32_t tracks);
    PlaybackMixer(const PlaybackMixer&) = delete;
    PlaybackMixer& operator=(const PlaybackMixer&) = delete;

    /// `tracks`, clamped to 0 to 64, with unity gains and no mute or solo. The sum will be scaled by one over the
    /// square root of their number, whatever is muted later.
    void reset(int32_t tracks);

    /// Linear gain of `track`, without an upper limit. Below 0, infinite or not a number is taken as 0.0. Ignored
    /// if `track` is not in use.
    void setGain(int32_t track, float linear);
    /// Ignored if `track` is not in use.
    void setMuted(int32_t track, bool on);
    /// While any track is soloed only soloed tracks are heard, and of these only those not muted. Ignored if `track` is
    /// not in use.
    void setSolo(int32_t track, bool on);

    /// Linear. 0.0 if `track` is not in use.
    float gain(int32_t track) const;
    /// True if `track` is not in use.
    bool muted(int32_t track) const;
    /// False if `track` is not in use.
    bool solo(int32_t track) const;

    /// The gain with which `track`, 0 to 63, is heard; `anySolo` tells that at least one track is soloed. Mute
    /// wins over solo. There is no range check.
    float effectiveGain(int32_t track, bool anySolo) const;

    /// Mixes `frames` frames of one interleaved sample per track into `outStereo`, `frames` frames of two equal
    /// samples within -1.0 to 1.0. `outPeaks` may be null; else it receives for each track the highest magnitude
    /// behind its gain, before scaling and clamping, so it may exceed 1.0. Where there is nothing to mix (a null
    /// buffer, no frames, no tracks) the outputs that are there are filled with 0.0. Thread: mixer thread. Never blocks
    /// or allocates.
    void mixToStereo(const float* input, int32_t frames, float* outStereo, float* outPeaks) const;

private:
    bool inUse(int32_t track) const { return track >= 0 && track < trackCount; }
    bool anySoloed() const;

    int32_t trackCount = 0;
    float normalisation = 1.0f;
    std::array<std::atomic<float>, kMaxTracks> gains{};
    std::array<std::atomic<bool>, kMaxTracks> mutes{};
    std::array<std::atomic<bool>, kMaxTracks> solos{};
};
