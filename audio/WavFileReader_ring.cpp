#include "audio/WavFileReader.h"

#include "audio/SampleDecode.h"

#include <algorithm>
#include <bit>
#include <chrono>
#include <cstring>

namespace {

constexpr std::chrono::nanoseconds kIdleSleep{ 5'000'000 };
constexpr uint64_t kSlotMask = WavFileReader::kRingFrames - 1;
static_assert((WavFileReader::kRingFrames & (WavFileReader::kRingFrames - 1)) == 0);

int64_t slotOf(uint64_t index)
{
    return static_cast<int64_t>(index & kSlotMask);
}

// Frames from `index` on that lie side by side before the ring's end, at most `frames`.
int64_t framesBeforeWrap(uint64_t index, int64_t frames)
{
    return std::min(frames, WavFileReader::kRingFrames - slotOf(index));
}

} // namespace

void WavFileReader::startPrefetch(int32_t maxChannels)
{
    if (!opened || isPrefetching())
        return;
    prepareRing(maxChannels);
    prefetchRunning = true;
    try {
        prefetchThread = std::thread(&WavFileReader::prefetchLoop, this);
    } catch (...) {
        prefetchRunning = false;
        throw;
    }
}

void WavFileReader::prepareRing(int32_t maxChannels)
{
    ringChannels = effectiveChannels(maxChannels);
    ring.assign(static_cast<size_t>(kRingFrames * ringChannels), 0.0f);
    readBlock.resize(static_cast<size_t>(frameBytes() * kBlockFrames + kSampleSlack));
    ringWriteIndex = 0;
    ringReadIndex = 0;
    flushGeneration = 0;
    flushReadIndex = 0;
    flushSeek = 0;
    seenGeneration = 0;
    seenSeek = 0;
    divideSeekWord();
    ringPosition = seekWord(0, position);
    seekTarget = kNoSeek;
}

void WavFileReader::divideSeekWord()
{
    constexpr int kFewestFrameBits = 32;
    frameBits = std::max(kFewestFrameBits, static_cast<int>(std::bit_width(static_cast<uint64_t>(totalFrames))));
}

uint64_t WavFileReader::seekWord(uint64_t seek, int64_t frame) const
{
    return seek << frameBits | static_cast<uint64_t>(frame);
}

int64_t WavFileReader::frameOf(uint64_t word) const
{
    return static_cast<int64_t>(word & ((uint64_t{ 1 } << frameBits) - 1));
}

// Only the requester changes the number, so what it finds in the position is its own. The highest number is left out:
// with the highest frame it would be kNoSeek.
uint64_t WavFileReader::nextSeekWord(int64_t frame) const
{
    const uint64_t numbers = (uint64_t{ 1 } << (64 - frameBits)) - 1;
    return seekWord((seekOf(ringPosition.load(std::memory_order_relaxed)) + 1) % numbers, frame);
}

void WavFileReader::stopPrefetch()
{
    if (prefetchRunning.exchange(false) && prefetchThread.joinable())
        prefetchThread.join();
}

void WavFileReader::prefetchLoop()
{
    int64_t frame = position;
    while (isPrefetching()) {
        if (!prefetchPass(frame))
            std::this_thread::sleep_for(kIdleSleep);
    }
}

// One block from file frame `frame` on, which moves on behind it. False if there was nothing to do or to be had: no
// room for a whole block, the file's end, or a read without a result; then the same frame is tried again in the next
// pass.
bool WavFileReader::prefetchPass(int64_t& frame)
{
    takeSeekRequest(frame);
    const uint64_t writeIndex = ringWriteIndex.load(std::memory_order_relaxed);
    const uint64_t used = writeIndex - ringReadIndex.load(std::memory_order_acquire);
    const int64_t room = kRingFrames - static_cast<int64_t>(used);
    const int64_t left = totalFrames - frame;
    if (room < kBlockFrames || left < 1)
        return false;

    const int64_t got = readBlockAt(frame, std::min<int64_t>(kBlockFrames, left));
    if (got < 1)
        return false;
    decodeIntoRing(writeIndex, got);
    ringWriteIndex.store(writeIndex + static_cast<uint64_t>(got), std::memory_order_release);
    frame += got;
    return true;
}

// The generation moves after flushReadIndex and flushSeek are final, so a consumer that sees the new generation finds
// values that are not older. The index goes before the number, see takeFlush.
void WavFileReader::takeSeekRequest(int64_t& frame)
{
    const uint64_t target = seekTarget.exchange(kNoSeek);
    if (target == kNoSeek)
        return;
    frame = std::min(frameOf(target), totalFrames);
    flushReadIndex.store(ringWriteIndex.load(std::memory_order_relaxed), std::memory_order_release);
    flushSeek.store(seekOf(target), std::memory_order_release);
    flushGeneration.fetch_add(1, std::memory_order_release);
}

// Frames really read. Each block clears the stream's failure and seeks, so that a file that was short a moment ago is
// tried anew.
int64_t WavFileReader::readBlockAt(int64_t frame, int64_t frames)
{
    stream.clear();
    seekStreamToFrame(frame);
    stream.read(reinterpret_cast<char*>(readBlock.data()), frames * frameBytes());
    return stream.gcount() / frameBytes();
}

void WavFileReader::decodeIntoRing(uint64_t firstIndex, int64_t frames)
{
    const FrameDecoder decode = frameDecoder(formatCode, bitsPerSample);
    const int64_t head = framesBeforeWrap(firstIndex, frames);
    decode(readBlock.data(), head, channels, ring.data() + slotOf(firstIndex) * ringChannels, ringChannels);
    decode(readBlock.data() + head * frameBytes(), frames - head, channels, ring.data(), ringChannels);
}

int32_t WavFileReader::readFramesFromRing(float* out, int32_t frames, int32_t outChannels)
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
    copyFromRing(readIndex, head, out, outChannels);
    copyFromRing(readIndex + static_cast<uint64_t>(head), count - head, out + head * outChannels, outChannels);
    ringReadIndex.store(readIndex + static_cast<uint64_t>(count), std::memory_order_release);
    countFrames(count);
    return static_cast<int32_t>(count);
}

// Loads the write index, and moves `readIndex` behind a flush that wasn't seen yet. False if a flush lands in the midst
// of it; the next read takes that one. Frames that a flush lets in are written after its generation, so where the
// generation is still the same behind the load of the write index, all frames below that belong to one seek, and
// `seenSeek` is its number.
bool WavFileReader::takeFlush(uint64_t& readIndex, uint64_t& writeIndex)
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
void WavFileReader::countFrames(int64_t frames)
{
    uint64_t place = ringPosition.load(std::memory_order_relaxed);
    if (seekOf(place) != seenSeek)
        return;
    const int64_t reached = std::min(frameOf(place) + frames, totalFrames);
    ringPosition.compare_exchange_strong(place, seekWord(seenSeek, reached), std::memory_order_relaxed);
}

// The frames lie side by side in the ring.
void WavFileReader::copyFromRing(uint64_t firstIndex, int64_t frames, float* out, int32_t outChannels) const
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
