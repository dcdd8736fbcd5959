#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

/// Decoded frames on their way from the thread that reads the file to the one that plays them, without a lock; and the
/// road of a seek in the other direction. Knows nothing of files.
///
/// Threads, in the order of the names used below:
/// - owner: calls `reset`, while nobody else is inside a call.
/// - requester: the one thread that seeks. May be the consumer.
/// - producer: the one thread that takes the seeks and writes frames.
/// - consumer: the one thread that reads frames.
///
/// What keeps the ring free of data races, although its samples are plain floats:
/// 1. The indexes count frames since the reset and never go back; frame i lies in slot i & (kFrames - 1).
/// 2. The producer writes slots of frames from `ringWriteIndex` on, and only where a whole block fits below
///    `ringReadIndex` + kFrames. It never looks at `flushReadIndex` for room.
/// 3. The consumer reads slots of frames from its read index up to `ringWriteIndex`, and stores `ringReadIndex` when it
///    has copied them.
/// So a slot changes hands by a release store and an acquire load in either direction, whatever seeks come in between.
///
/// What keeps the position right across seeks: requests are numbered. The number travels with the target through
/// `seekTarget` to the producer, from there with the flush to the consumer, and stands beside the frame in
/// `ringPosition`. The consumer counts frames only where its own number is the one that stands there.
class PrefetchRing {
public:
    static constexpr int64_t kFrames = 65536; ///< Power of two: a slot is index & (kFrames - 1).
    static constexpr int32_t kBlockFrames = 4096; ///< The producer writes when so many slots are free.

    /// Empties the ring for `channels` floats a frame, at least 1, out of a file of `total` frames, and sets its
    /// position to `position`, 0 to `total`. Thread: owner. Allocates 256 KiB for each channel.
    void reset(int32_t channels, int64_t position, int64_t total);

    /// Asks the producer to go on from file frame `frame`, 0 to the total; replaces what was asked for and not taken
    /// yet. `position` jumps at once, and reads give 0 until the producer has taken the seek.
    /// Thread: requester. Never blocks or allocates.
    void requestSeek(int64_t frame) { sendSeek(beginSeek(frame)); }
    /// The first half of `requestSeek`: the position jumps. The result is for `sendSeek`. Thread: requester.
    [[nodiscard]] uint64_t beginSeek(int64_t frame);
    /// The second half: the producer and the consumer learn of the seek. Thread: requester.
    void sendSeek(uint64_t word) { seekTarget.store(word, std::memory_order_release); }

    /// Takes the pending seek: all frames written so far are from before it. The result is the file frame of the next
    /// write; nothing if no seek was pending. `announceFlush` has to follow. Thread: producer.
    std::optional<int64_t> takeSeek();
    /// The consumer sees what `takeSeek` has found. Thread: producer.
    void announceFlush() { flushGeneration.fetch_add(1, std::memory_order_release); }

    /// Slots that lie side by side.
    struct Piece {
        float* samples; ///< Interleaved, `channels` floats a frame; the ring's.
        int64_t frames;
    };
    /// Where the next frames belong: `head` first, then `tail`, which begins anew at the ring's start.
    struct Region {
        Piece head;
        Piece tail;
    };
    /// True if a whole block fits. Thread: producer.
    bool hasRoom() const;
    /// Room for the next `frames` frames, 1 to kBlockFrames, after `hasRoom` was true. Thread: producer.
    Region writable(int64_t frames);
    /// Gives the first `frames` frames of the region to the consumer. Thread: producer.
    void publish(int64_t frames);

    /// Copies at most `frames` frames, at least 1, to `out` and moves on behind them; fewer when the ring runs dry,
    /// 0 while a seek is pending. `out` gets `outChannels` floats a frame, at least 1; those beyond the ring's channels
    /// are 0.0. Thread: consumer. Never blocks, allocates or calls the system.
    int32_t read(float* out, int32_t frames, int32_t outChannels);

    /// The file frame that the consumer has reached, or that was sought last. Thread: any.
    // Relaxed: no other data hangs on it.
    int64_t position() const { return frameOf(ringPosition.load(std::memory_order_relaxed)); }

    /// Floats of one frame. Thread: any, between two resets.
    int32_t channels() const { return ringChannels; }
    /// Floats of all slots. Thread: any, between two resets.
    size_t sampleCount() const { return ring.size(); }
    /// Frames ever written, ever read or skipped, and seeks announced, since the reset. Thread: any.
    uint64_t framesWritten() const { return ringWriteIndex.load(std::memory_order_acquire); }
    uint64_t framesRead() const { return ringReadIndex.load(std::memory_order_acquire); }
    uint64_t flushes() const { return flushGeneration.load(std::memory_order_acquire); }

private:
    static constexpr uint64_t kNoSeek = UINT64_MAX;

    // A frame and the number of the seek that led there, in one word: the frame below, the number above it. The frame
    // gets as many bits as this file's frames need, and 32 at least; the number gets the others and begins anew at
    // 0 when they don't hold it. A file that claims 2 to the 62 frames leaves it one value: its position is then
    // the only one that may run a few frames ahead after a seek.
    uint64_t seekWord(uint64_t seek, int64_t frame) const { return seek << frameBits | static_cast<uint64_t>(frame); }
    uint64_t seekOf(uint64_t word) const { return word >> frameBits; }
    int64_t frameOf(uint64_t word) const { return static_cast<int64_t>(word & ((uint64_t{ 1 } << frameBits) - 1)); }

    bool takeFlush(uint64_t& readIndex, uint64_t& writeIndex);
    void copyOut(uint64_t firstIndex, int64_t frames, float* out, int32_t outChannels) const;
    void countFrames(int64_t frames);

    // Constant between two resets.
    int32_t ringChannels = 0;
    int64_t totalFrames = 0; // Of the file.
    int frameBits = 63; // Of a seek's word.

    std::vector<float> ring; // kFrames x ringChannels; producer and consumer own disjoint slots.
    // Producer stores with release after the samples; consumer loads with acquire. Counts frames ever
    // written and never wraps back, so "full" and "empty" need no spare slot.
    std::atomic<uint64_t> ringWriteIndex{ 0 };
    // Consumer stores with release after its copy; producer loads with acquire. Frames ever consumed or skipped.
    std::atomic<uint64_t> ringReadIndex{ 0 };
    // Producer increments with release, after flushReadIndex and flushSeek are final; consumer loads with acquire.
    // Counts the seeks carried out.
    std::atomic<uint64_t> flushGeneration{ 0 };
    // Producer stores with release, consumer loads with acquire: ringWriteIndex at the last seek. All frames
    // below it are from before that seek.
    std::atomic<uint64_t> flushReadIndex{ 0 };
    // Producer stores with release, consumer loads with acquire: the number of that seek.
    std::atomic<uint64_t> flushSeek{ 0 };
    uint64_t seenGeneration = 0; // Consumer only: the last generation that it has acted on.
    uint64_t seenSeek = 0; // Consumer only: the number of the seek whose frames it reads.
    // A seek's word. Requester stores with release, producer exchanges it for kNoSeek, consumer loads with acquire.
    std::atomic<uint64_t> seekTarget{ kNoSeek };
    // A seek's word: the file frame that the consumer has reached, or that was sought last. Requester stores, consumer
    // adds in one attempt that fails where a seek came in between; both relaxed.
    std::atomic<uint64_t> ringPosition{ 0 };
};
