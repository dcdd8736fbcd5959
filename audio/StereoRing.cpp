#include "audio/StereoRing.h"

#include <algorithm>
#include <cstddef>

uint32_t StereoRing::queued() const
{
    // The read counter comes first. The other way about, a render call between the two loads could carry it past the
    // write counter, and a nearly empty ring would look full.
    const uint64_t read = stereoRead.load(std::memory_order_acquire);
    return framesBetween(read, stereoWrite.load(std::memory_order_acquire));
}

// Frames in the ring whose counters' words are `read` and `write`.
uint32_t StereoRing::framesBetween(uint64_t read, uint64_t write)
{
    if (read >> kCounterBits != write >> kCounterBits)
        return 0;
    return static_cast<uint32_t>(write - read) & kMask;
}

// `word` with its counter moved on by `frames`; the count of clears stays.
uint64_t StereoRing::movedOn(uint64_t word, uint32_t frames)
{
    return (word >> kCounterBits << kCounterBits) | static_cast<uint32_t>(word + frames);
}

bool StereoRing::publish(uint64_t from, const float* stereo, uint32_t frames)
{
    for (uint32_t i = 0; i < frames; ++i) {
        const StereoFrame frame{ stereo[2 * size_t{ i }], stereo[2 * size_t{ i } + 1] };
        slots[(from + i) & kMask].store(frame, std::memory_order_relaxed);
    }
    return advance(from, frames);
}

bool StereoRing::advance(uint64_t from, uint32_t frames)
{
    return stereoWrite.compare_exchange_strong(
        from, movedOn(from, frames), std::memory_order_release, std::memory_order_relaxed);
}

uint32_t StereoRing::take(uint32_t frames, StereoFrame* out)
{
    const Taken copied = copy(frames, out);
    drop(copied);
    return copied.count;
}

StereoRing::Taken StereoRing::copy(uint32_t frames, StereoFrame* out) const
{
    const uint64_t from = stereoRead.load(std::memory_order_relaxed);
    const uint32_t available = framesBetween(from, stereoWrite.load(std::memory_order_acquire));
    const uint32_t count = std::min({ frames, available, kRenderBatch });
    for (uint32_t i = 0; i < count; ++i)
        out[i] = slots[(from + i) & kMask].load(std::memory_order_relaxed);
    return { from, count };
}

void StereoRing::drop(const Taken& copied)
{
    uint64_t expected = copied.from;
    stereoRead.compare_exchange_strong(
        expected, movedOn(copied.from, copied.count), std::memory_order_release, std::memory_order_relaxed);
}

void StereoRing::clear()
{
    // Nobody else changes the count of clears, and both words have the same.
    const uint64_t cleared = ((stereoWrite.load(std::memory_order_relaxed) >> kCounterBits) + 1) << kCounterBits;
    stereoWrite.store(cleared, std::memory_order_release);
    stereoRead.store(cleared, std::memory_order_release);
}
