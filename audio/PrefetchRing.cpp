#include "audio/PrefetchRing.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace {

constexpr uint64_t kSlotMask = PrefetchRing::kFrames - 1;
static_assert((PrefetchRing::kFrames & (PrefetchRing::kFrames - 1)) == 0);

int64_t slotOf(uint64_t index)
{
    return static_cast<int64_t>(index & kSlotMask);
}

// Frames from `index` on that lie side by side before the ring's end, at most `frames`.
int64_t framesBeforeWrap(uint64_t index, int64_t frames)
{
    return std::min(frames, PrefetchRing::kFrames - slotOf(index));
}

} // namespace

// Relaxed: nobody else is here, and whoever comes next learns of it by what the owner does to let them in.
void PrefetchRing::reset(int32_t channels, int64_t position, int64_t total)
{
    constexpr int kFewestFrameBits = 32;
    ringChannels = channels;
    totalFrames = total;
    frameBits = std::max(kFewestFrameBits, static_cast<int>(std::bit_width(static_cast<uint64_t>(total))));
    ring.assign(static_cast<size_t>(kFrames * channels), 0.0f);
    ringWriteIndex.store(0, std::memory_order_relaxed);
    ringReadIndex.store(0, std::memory_order_relaxed);
    flushGeneration.store(0, std::memory_order_relaxed);
    flushReadIndex.store(0, std::memory_order_relaxed);
    flushSeek.store(0, std::memory_order_relaxed);
    seenGeneration = 0;
    seenSeek = 0;
    ringPosition.store(seekWord(0, position), std::memory_order_relaxed);
    seekTarget.store(kNoSeek, std::memory_order_relaxed);
}

// The position goes first, so that it has jumped before the first new frame can be counted on top of it. Only the
// requester changes the number, so what it finds in the position is its own. The highest number is left out: with the
// highest frame it would be kNoSeek.
uint64_t PrefetchRing::beginSeek(int64_t frame)
{
    const uint64_t numbers = (uint64_t{ 1 } << (64 - frameBits)) - 1;
    const uint64_t last = seekOf(ringPosition.load(std::memory_order_relaxed));
    const uint64_t word = seekWord((last + 1) % numbers, frame);
    ringPosition.store(word, std::memory_order_relaxed);
    return word;
}

// The generation moves after flushReadIndex and flushSeek are final, so a consumer that sees the new generation finds
// values that are not older. The index goes before the number, see takeFlush.
std::optional<int64_t> PrefetchRing::takeSeek()
{
    const uint64_t target = seekTarget.exchange(kNoSeek, std::memory_order_seq_cst);
    if (target == kNoSeek)
        return std::nullopt;
    flushReadIndex.store(ringWriteIndex.load(std::memory_order_relaxed), std::memory_order_release);
    flushSeek.store(seekOf(target), std::memory_order_release);
    return std::min(frameOf(target), totalFrames);
}

bool PrefetchRing::hasRoom() const
{
    const uint64_t used
        = ringWriteIndex.load(std::memory_order_relaxed) - ringReadIndex.load(std::memory_order_acquire);
    return kFrames - static_cast<int64_t>(used) >= kBlockFrames;
}

PrefetchRing::Region PrefetchRing::writable(int64_t frames)
{
    const uint64_t index = ringWriteIndex.load(std::memory_order_relaxed);
    const int64_t head = framesBeforeWrap(index, frames);
    return { { ring.data() + slotOf(index) * ringChannels, head }, { ring.data(), frames - head } };
}

void PrefetchRing::publish(int64_t frames)
{
    const uint64_t index = ringWriteIndex.load(std::memory_order_relaxed);
    ringWriteIndex.store(index + static_cast<uint64_t>(frames), std::memory_order_release);
}

int32_t PrefetchRing::read(float* out, int32_t frames, int32_t outChannels)
{
    if (seekTarget.load(std::memory_order_acquire) != kNoSeek)
        return 0;

    uint64_t readIndex = ringReadIndex.load(std::memory_order_relaxed);
    uint64_t writeIndex = 0;
    if (!takeFlush(readIndex, writeIndex))
        return 0;
    const uint64_t available = writeIndex > readIndex ? writeIndex - readIndex : 0;
    const int64_t count = std::min(static_cast<int64_t>(available), static_cast<int64_t>(frames));
    if (count < 1) {
        // A flush is recorded even without a frame: the producer waits for the room.
        ringReadIndex.store(readIndex, std::memory_order_release);
        return 0;
    }
    const int64_t head = framesBeforeWrap(readIndex, count);
    copyOut(readIndex, head, out, outChannels);
    copyOut(readIndex + static_cast<uint64_t>(head), count - head, out + head * outChannels, outChannels);
    ringReadIndex.store(readIndex + static_cast<uint64_t>(count), std::memory_order_release);
    countFrames(count);
    return static_cast<int32_t>(count);
}

// Loads the write index, and moves `readIndex` behind a flush that wasn't seen yet. False if a flush lands in the midst
// of it; the next read takes that one. Frames that a flush lets in are written after its generation, so where the
// generation is still the same behind the load of the write index, all frames below that belong to one seek, and
// `seenSeek` is its number.
bool PrefetchRing::takeFlush(uint64_t& readIndex, uint64_t& writeIndex)
{
    const uint64_t generation = flushGeneration.load(std::memory_order_acquire);
    uint64_t index = readIndex;
    uint64_t seek = seenSeek;
    if (generation != seenGeneration) {
        seek = flushSeek.load(std::memory_order_acquire);
        // The read index never goes back, whatever is found.
        index = std::max(index, flushReadIndex.load(std::memory_order_acquire));
    }
    writeIndex = ringWriteIndex.load(std::memory_order_acquire);
    if (flushGeneration.load(std::memory_order_acquire) != generation)
        return false;
    readIndex = index;
    seenSeek = seek;
    seenGeneration = generation;
    return true;
}

// Frames from before the seek that was asked for last aren't counted on top of its target. The number says so where the
// request has come before; where it comes between the load and the exchange, the exchange fails.
void PrefetchRing::countFrames(int64_t frames)
{
    uint64_t place = ringPosition.load(std::memory_order_relaxed);
    if (seekOf(place) != seenSeek)
        return;
    const int64_t reached = std::min(frameOf(place) + frames, totalFrames);
    ringPosition.compare_exchange_strong(place, seekWord(seenSeek, reached), std::memory_order_relaxed);
}

// The frames lie side by side in the ring.
void PrefetchRing::copyOut(uint64_t firstIndex, int64_t frames, float* out, int32_t outChannels) const
{
    const float* in = ring.data() + slotOf(firstIndex) * ringChannels;
    if (ringChannels == outChannels) {
        std::memcpy(out, in, static_cast<size_t>(frames * ringChannels) * sizeof(float));
        return;
    }
    const int32_t copied = std::min(ringChannels, outChannels);
    for (int64_t frame = 0; frame < frames; ++frame) {
        std::copy_n(in, copied, out);
        std::fill(out + copied, out + outChannels, 0.0f);
        in += ringChannels;
        out += outChannels;
    }
}
