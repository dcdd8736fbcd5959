#pragma once

#include <atomic>
#include <cstdint>
#include <vector>

/// One frame of the stereo ring. Eight bytes at a multiple of eight, so that it moves in one piece and not through a
/// library's call. No initialisers, so that the render thread's stack array costs nothing.
struct alignas(8) StereoFrame {
    float left;
    float right;
};

/// Device frames on their way from the mixer thread to the render thread, without a lock; the interface thread may
/// empty the ring at any time. Knows nothing of playing and pausing.
///
/// 1. Frame i of the ring lies in slot i & kMask. The counters wrap at 32 bits, a multiple of the ring. In the same
///    word, above its counter, stands how often that was zeroed.
/// 2. The mixer thread writes slots, then moves `stereoWrite` with release; the render thread loads it with acquire
///    before it reads them, and moves `stereoRead` likewise afterwards. One slot stays empty, or full would look like
///    empty.
/// 3. The interface thread zeroes both counters at a seek and a stop, without asking either of the two. So each of them
///    moves its counter only if nobody has touched it since it was loaded, and a block that was under way is dropped.
///    The count above tells a zeroed counter from one that had not moved yet. Counters with different counts belong to
///    no common ring: the interface thread stands between them, and the ring is empty.
/// 4. For a moment around that the mixer thread may write a slot that the render thread is reading. The slots are
///    therefore relaxed atomics: the render thread then gets an old frame or a new one, both of which are sound.
class StereoRing {
public:
    static constexpr uint32_t kFrames = 8192; ///< Power of two; about 170 ms at 48 kHz.
    static constexpr uint32_t kUsableFrames = kFrames - 1; ///< One slot stays empty.
    static constexpr uint32_t kRenderBatch = 2048; ///< Frames of one `take` at most.
    static constexpr int kCounterBits = 32; ///< Of a counter's word; above them it counts the clears.

    /// An empty ring. Allocates 64 KiB.
    StereoRing() : StereoRing(0, 0) { }
    /// A ring whose counters' words begin at `readWord` and `writeWord`; the slots hold silence.
    StereoRing(uint64_t readWord, uint64_t writeWord) : stereoWrite(writeWord), stereoRead(readWord) { }

    /// Frames in the ring, 0 to kUsableFrames. Thread: any.
    uint32_t queued() const;
    /// Frames ever written and ever read since the last clear, wrapping at 32 bits. Thread: any.
    uint32_t written() const { return static_cast<uint32_t>(stereoWrite.load(std::memory_order_acquire)); }
    uint32_t taken() const { return static_cast<uint32_t>(stereoRead.load(std::memory_order_acquire)); }

    /// Where the next block goes, for `publish`. Thread: mixer.
    // Relaxed: only this thread's own frames lie below it, and a clear brings none.
    uint64_t mark() const { return stereoWrite.load(std::memory_order_relaxed); }
    /// Puts `frames` interleaved stereo frames into the ring behind `from`, which is a `mark`, and gives them to the
    /// render thread if the ring wasn't emptied since; else they are dropped, and the result is false. The room left
    /// is not looked at. Thread: mixer. Never blocks or allocates.
    bool publish(uint64_t from, const float* stereo, uint32_t frames);
    /// The second half of `publish`: gives `frames` slots behind `from` to the render thread as they are.
    /// Thread: mixer.
    bool advance(uint64_t from, uint32_t frames);

    /// Takes at most `frames` frames, and kRenderBatch, out of the ring to `out` and answers how many.
    /// Thread: render. Never blocks, allocates or calls the system.
    uint32_t take(uint32_t frames, StereoFrame* out);
    /// What the first half of `take` has copied.
    struct Taken {
        uint64_t from; ///< The read counter's word before it.
        uint32_t count; ///< Frames copied.
    };
    /// The first half of `take`; the ring keeps the frames. Thread: render.
    Taken copy(uint32_t frames, StereoFrame* out) const;
    /// The second half: takes the copied frames out of the ring, unless it was emptied since. Thread: render.
    void drop(const Taken& copied);

    /// Empties the ring. Thread: interface.
    void clear();

private:
    static constexpr uint32_t kMask = kFrames - 1;
    static_assert((kFrames & kMask) == 0);
    static_assert(std::atomic<StereoFrame>::is_always_lock_free);

    static uint32_t framesBetween(uint64_t read, uint64_t write);
    static uint64_t movedOn(uint64_t word, uint32_t frames);

    std::vector<std::atomic<StereoFrame>> slots = std::vector<std::atomic<StereoFrame>>(kFrames);
    // Lower half: frames ever written, wrapping; mixer thread. Upper half: how often it was zeroed; interface thread.
    std::atomic<uint64_t> stereoWrite;
    // Lower half: frames ever read, wrapping; render thread. Upper half: how often it was zeroed; interface thread.
    std::atomic<uint64_t> stereoRead;
};
