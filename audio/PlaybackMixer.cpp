#include "audio/PlaybackMixer.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstring>

namespace {

// Four samples at once. Both compilers turn these into the vector registers that every x86-64 and arm64 has.
using Float4 __attribute__((vector_size(16))) = float;
using Int4 __attribute__((vector_size(16))) = int32_t;

constexpr size_t kLanes = 4;
// Frames whose lane sums are held at once: 1 KiB, well inside the first-level cache.
constexpr int32_t kFrameChunk = 64;
constexpr size_t kWide = 4; // Vectors of the wide pass: 16 tracks are one cache line of a frame.

using TrackValues = std::array<float, PlaybackMixer::kMaxTracks>;
using LaneSums = std::array<Float4, kFrameChunk>;

Float4 load(const float* from)
{
    Float4 value;
    std::memcpy(&value, from, sizeof value);
    return value;
}

void store(float* to, Float4 value)
{
    std::memcpy(to, &value, sizeof value);
}

Float4 magnitude(Float4 value)
{
    const Int4 bits = std::bit_cast<Int4>(value) & 0x7FFFFFFF;
    return std::bit_cast<Float4>(bits);
}

// Adds `kVectors` x 4 neighbouring tracks of each frame to the lane sums. Gains and peaks stay in registers over all
// frames.
template <size_t kVectors>
void addTracks(const float* input, int32_t frames, int32_t stride, const float* gains, LaneSums& sums, float* peaks)
{
    Float4 gain[kVectors];
    Float4 peak[kVectors];
    for (size_t v = 0; v < kVectors; ++v) {
        gain[v] = load(gains + v * kLanes);
        peak[v] = load(peaks + v * kLanes);
    }
    for (int32_t frame = 0; frame < frames; ++frame) {
        Float4 sum = sums[static_cast<size_t>(frame)];
        for (size_t v = 0; v < kVectors; ++v) {
            const Float4 sample = load(input + v * kLanes) * gain[v];
            const Float4 level = magnitude(sample);
            peak[v] = level > peak[v] ? level : peak[v];
            sum += sample;
        }
        sums[static_cast<size_t>(frame)] = sum;
        input += stride;
    }
    for (size_t v = 0; v < kVectors; ++v)
        store(peaks + v * kLanes, peak[v]);
}

void addSingleTrack(const float* input, int32_t frames, int32_t stride, float gain, LaneSums& sums, float& peak)
{
    float highest = peak;
    for (int32_t frame = 0; frame < frames; ++frame) {
        const float sample = *input * gain;
        const float level = std::abs(sample);
        highest = level > highest ? level : highest;
        sums[static_cast<size_t>(frame)][0] += sample;
        input += stride;
    }
    peak = highest;
}

// The sum of all tracks, lane by lane, for one chunk of frames.
void sumTracks(
    const float* input, int32_t frames, int32_t stride, const TrackValues& gains, LaneSums& sums, TrackValues& peaks)
{
    std::fill_n(sums.begin(), frames, Float4{});
    const auto tracks = static_cast<size_t>(stride);
    size_t track = 0;
    for (; track + kWide * kLanes <= tracks; track += kWide * kLanes)
        addTracks<kWide>(input + track, frames, stride, gains.data() + track, sums, peaks.data() + track);
    for (; track + kLanes <= tracks; track += kLanes)
        addTracks<1>(input + track, frames, stride, gains.data() + track, sums, peaks.data() + track);
    for (; track < tracks; ++track)
        addSingleTrack(input + track, frames, stride, gains[track], sums, peaks[track]);
}

// A sum that is no number, which only a damaged float file can make, has no place between the limits and becomes
// silence.
float clampToFullScale(float value)
{
    if (value > 1.0f)
        return 1.0f;
    if (value >= -1.0f)
        return value;
    return value < -1.0f ? -1.0f : 0.0f;
}

void fillSilence(int32_t frames, int32_t tracks, float* outStereo, float* outPeaks)
{
    if (outStereo && frames >= 1)
        std::fill_n(outStereo, 2 * static_cast<size_t>(frames), 0.0f);
    if (outPeaks && tracks >= 1)
        std::fill_n(outPeaks, tracks, 0.0f);
}

} // namespace

PlaybackMixer::PlaybackMixer(int32_t tracks)
{
    reset(tracks);
}

void PlaybackMixer::reset(int32_t tracks)
{
    trackCount = std::clamp(tracks, 0, kMaxTracks);
    normalisation = tracks < 1 ? 1.0f : 1.0f / std::sqrt(static_cast<float>(trackCount));
    for (size_t i = 0; i < gains.size(); ++i) {
        gains[i].store(1.0f, std::memory_order_relaxed);
        mutes[i].store(false, std::memory_order_relaxed);
        solos[i].store(false, std::memory_order_relaxed);
    }
}

void PlaybackMixer::setGain(int32_t track, float linear)
{
    if (!inUse(track))
        return;
    const float taken = std::isfinite(linear) && linear > 0.0f ? linear : 0.0f;
    gains[static_cast<size_t>(track)].store(taken, std::memory_order_relaxed);
}

void PlaybackMixer::setMuted(int32_t track, bool on)
{
    if (inUse(track))
        mutes[static_cast<size_t>(track)].store(on, std::memory_order_relaxed);
}

void PlaybackMixer::setSolo(int32_t track, bool on)
{
    if (inUse(track))
        solos[static_cast<size_t>(track)].store(on, std::memory_order_relaxed);
}

float PlaybackMixer::gain(int32_t track) const
{
    return inUse(track) ? gains[static_cast<size_t>(track)].load(std::memory_order_relaxed) : 0.0f;
}

bool PlaybackMixer::muted(int32_t track) const
{
    return !inUse(track) || mutes[static_cast<size_t>(track)].load(std::memory_order_relaxed);
}

bool PlaybackMixer::solo(int32_t track) const
{
    return inUse(track) && solos[static_cast<size_t>(track)].load(std::memory_order_relaxed);
}

float PlaybackMixer::effectiveGain(int32_t track, bool anySolo) const
{
    const auto index = static_cast<size_t>(track);
    if (mutes[index].load(std::memory_order_relaxed))
        return 0.0f;
    if (anySolo && !solos[index].load(std::memory_order_relaxed))
        return 0.0f;
    return gains[index].load(std::memory_order_relaxed);
}

bool PlaybackMixer::anySoloed() const
{
    return std::any_of(solos.begin(), solos.begin() + trackCount,
        [](const std::atomic<bool>& each) { return each.load(std::memory_order_relaxed); });
}

void PlaybackMixer::mixToStereo(const float* input, int32_t frames, float* outStereo, float* outPeaks) const
{
    if (!input || !outStereo || frames < 1 || trackCount < 1) {
        fillSilence(frames, trackCount, outStereo, outPeaks);
        return;
    }

    const bool anySolo = anySoloed();
    TrackValues blockGains;
    for (int32_t track = 0; track < trackCount; ++track)
        blockGains[static_cast<size_t>(track)] = effectiveGain(track, anySolo);
    TrackValues blockPeaks{};

    LaneSums sums;
    for (int32_t done = 0; done < frames; done += kFrameChunk) {
        const int32_t count = std::min(kFrameChunk, frames - done);
        sumTracks(input, count, trackCount, blockGains, sums, blockPeaks);
        for (int32_t frame = 0; frame < count; ++frame) {
            const Float4 lanes = sums[static_cast<size_t>(frame)];
            const float sum = (lanes[0] + lanes[1]) + (lanes[2] + lanes[3]);
            const float sample = clampToFullScale(sum * normalisation);
            *outStereo++ = sample;
            *outStereo++ = sample;
        }
        input += static_cast<ptrdiff_t>(count) * trackCount;
    }
    if (outPeaks)
        std::copy_n(blockPeaks.begin(), trackCount, outPeaks);
}
