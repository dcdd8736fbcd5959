#pragma once

#include <atomic>
#include <cstdint>

/// Whether the transport plays, whether it is paused, and whether the file has played to its end.
///
/// Playing and finished stand in one word with a count of what the interface thread has done to it. The mixer thread
/// finds the end of the file in several steps, and the interface thread may seek, stop or start in the midst of them.
/// The mixer thread therefore marks the word before it looks, and ends the playing by an exchange against that mark:
/// whatever the interface thread has done since then stays.
class Transport {
public:
    /// Thread: any.
    bool playing() const { return plays(word.load(std::memory_order_acquire)); }
    /// Thread: any.
    bool finished() const { return (word.load(std::memory_order_acquire) & kFinished) != 0; }
    /// Thread: any.
    bool paused() const { return pauseFlag.load(std::memory_order_acquire); }
    /// Playing and not paused. Thread: any.
    bool runs() const { return playing() && !paused(); }
    /// A block was taken since the last start. Thread: any.
    bool audioStarted() const { return audioStartedFlag.load(std::memory_order_acquire); }

    /// Plays, isn't paused and hasn't finished; no block was taken. Thread: interface.
    void start()
    {
        forgetAudio();
        resume();
        change(kPlaying | kFinished, kPlaying);
    }
    /// Plays no more and isn't paused; finished stays as it is. Thread: interface.
    void stop()
    {
        change(kPlaying, 0);
        resume();
    }
    /// Hasn't finished; playing stays as it is. An end that the mixer thread is about to find counts no more.
    /// Thread: interface.
    void clearFinished() { change(kFinished, 0); }
    /// No block was taken since the last start. Thread: interface.
    void forgetAudio() { audioStartedFlag.store(false, std::memory_order_release); }
    /// Thread: interface.
    void pause() { pauseFlag.store(true, std::memory_order_release); }
    /// Thread: interface.
    void resume() { pauseFlag.store(false, std::memory_order_release); }
    /// A seek is under way until `endSeek`: between the two the ring may be empty while the reader still stands at the
    /// end, and that is no end. Thread: interface.
    void beginSeek() { change(kSeeking, kSeeking); }
    /// The seek is done; as `clearFinished`. Thread: interface.
    void endSeek() { change(kSeeking | kFinished, 0); }

    /// The word as it stands, for `plays` and `finish`. Thread: mixer.
    uint64_t mark() const { return word.load(std::memory_order_acquire); }
    /// What `playing` was when `mark` was taken.
    static bool plays(uint64_t mark) { return (mark & kPlaying) != 0; }
    /// A block was taken. Thread: mixer.
    void startAudio() { audioStartedFlag.store(true, std::memory_order_release); }
    /// Has finished and plays no more, both at once, if nothing has changed since `mark` and no seek was under way
    /// then; else nothing happens, and the result is false. Thread: mixer. One attempt.
    bool finish(uint64_t mark)
    {
        return (mark & kSeeking) == 0
            && word.compare_exchange_strong(
                mark, (mark & ~kPlaying) | kFinished, std::memory_order_acq_rel, std::memory_order_relaxed);
    }
    /// `playing`, as a part of the order of all changes: if this is true, whatever the thread that stops does behind
    /// its stop comes after what was done before this call. Thread: mixer. One attempt.
    bool stillPlaying() { return plays(word.fetch_add(0, std::memory_order_acq_rel)); }

private:
    static constexpr uint64_t kPlaying = 1;
    static constexpr uint64_t kFinished = 2;
    static constexpr uint64_t kSeeking = 4;
    static constexpr uint64_t kOneChange = 8;

    // The mixer thread changes the word at most once between two changes, so this ends at the second attempt.
    void change(uint64_t bits, uint64_t values)
    {
        uint64_t old = word.load(std::memory_order_relaxed);
        while (!word.compare_exchange_weak(
            old, ((old & ~bits) | values) + kOneChange, std::memory_order_acq_rel, std::memory_order_relaxed)) { }
    }

    std::atomic<uint64_t> word{ 0 };
    std::atomic<bool> pauseFlag{ false }; // Interface thread stores.
    std::atomic<bool> audioStartedFlag{ false }; // Mixer thread sets, interface thread clears.
};
