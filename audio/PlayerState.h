#pragma once

#include "audio/AudioRateConverter.h"
#include "audio/PlaybackMixer.h"
#include "audio/TransportFlags.h"
#include "audio/WavFileReader.h"

#include <array>
#include <atomic>
#include <chrono>
#include <cstdint>
#include <thread>
#include <vector>

namespace AudioOutput {
struct Unit;
}

/// One frame of the stereo ring. Eight bytes at a multiple of eight, so that it moves in one piece and not through a
/// library's call. No initialisers, so that the render thread's stack array costs nothing.
struct alignas(8) StereoFrame {
    float left;
    float right;
};

/// The private state of TagwellAudioPlayer: what its threads share. For the player's own sources and its tests.
///
/// The stereo ring lies between the mixer thread and the render thread:
/// 1. Frame i of the ring lies in slot i & kStereoMask. The counters wrap at 32 bits, a multiple of the ring. In the
///    same word, above its counter, stands how often that was zeroed.
/// 2. The mixer thread writes slots, then moves `stereoWrite` with release; the render thread loads it with acquire
///    before it reads them, and moves `stereoRead` likewise afterwards. One slot stays empty, or full would look like
///    empty.
/// 3. The interface thread zeroes both counters at a seek and a stop, without asking either of the two. So each of them
///    moves its counter only if nobody has touched it since it was loaded, and a block that was under way is dropped.
///    The count above tells a zeroed counter from one that had not moved yet. Counters with different counts belong to
///    no common ring: the interface thread stands between them, and the ring is empty.
/// 4. For a moment around that the mixer thread may write a slot that the render thread is reading. The slots are
///    therefore relaxed atomics: the render thread then gets an old frame or a new one, both of which are sound.
struct PlayerState {
    static constexpr uint32_t kStereoFrames = 8192; ///< Power of two; about 170 ms at 48 kHz.
    static constexpr uint32_t kStereoMask = kStereoFrames - 1;
    static constexpr uint32_t kUsableFrames = kStereoFrames - 1; ///< One slot stays empty.
    static constexpr double kDefaultRate = 48000.0; ///< Where the device can't tell its rate.

    static_assert(std::atomic<StereoFrame>::is_always_lock_free);

    WavFileReader reader;
    AudioRateConverter converter;
    AudioOutput::Unit* outputUnit = nullptr; ///< Owned; null when there is none.
    uint32_t outputDevice = 0; ///< 0 is none.

    std::thread mixerThread;
    std::atomic<bool> mixerRunning{ false }; ///< The mixer thread is to go on. Interface thread writes.
    TransportFlags transport; ///< Playing and finished.
    std::atomic<bool> paused{ false }; ///< Interface thread writes.
    std::atomic<bool> openFlag{ false }; ///< Interface thread writes.
    /// A block was taken since the last start. Mixer thread sets, interface thread clears.
    std::atomic<bool> audioStarted{ false };

    std::vector<std::atomic<StereoFrame>> stereoRing = std::vector<std::atomic<StereoFrame>>(kStereoFrames);
    /// Lower half: frames ever written, wrapping; mixer thread. Upper half: how often it was zeroed; interface thread.
    std::atomic<uint64_t> stereoWrite{ 0 };
    /// Lower half: frames ever read, wrapping; render thread. Upper half: how often it was zeroed; interface thread.
    std::atomic<uint64_t> stereoRead{ 0 };

    /// Mixer thread writes, interface thread reads and zeroes; no order between them is needed.
    std::array<std::atomic<float>, PlaybackMixer::kMaxTracks> peaks{};
    float peakDecay = 0.92F; ///< Factor for each mixed block.

    // The rest changes only while neither the mixer nor the render thread is there.
    int32_t channels = 0;
    int32_t sampleRate = 0; ///< The file's, in Hz.
    int32_t bitDepth = 0;
    int32_t formatCode = 0;
    double deviceRate = kDefaultRate; ///< Of the output path, in Hz.

    /// Frames in the stereo ring, 0 to kUsableFrames. Thread: any.
    uint32_t queuedFrames() const;
    /// The same for the ring whose counters are `read` and `write`, in their words.
    static uint32_t framesBetween(uint64_t read, uint64_t write);
    /// `word` with its counter moved on by `frames`; the count of clears stays.
    static uint64_t movedOn(uint64_t word, uint32_t frames);
    static constexpr int kCounterBits = 32; ///< Of a word of the stereo ring; above them it counts the clears.

    /// Copies at most `frames` frames out of the stereo ring to `out` and answers how many; 0 unless the transport
    /// runs. `out` takes kRenderBatch frames, the most that come. Thread: render. Never blocks, allocates or calls the
    /// system.
    uint32_t takeFrames(uint32_t frames, StereoFrame* out);
    static constexpr uint32_t kRenderBatch = 2048;

    /// What the first half of `takeFrames` has copied.
    struct StereoTake {
        uint64_t from; ///< `stereoRead` before it.
        uint32_t count; ///< Frames copied.
    };
    /// The first half of `takeFrames`; the ring keeps the frames. Thread: render.
    StereoTake copyFrames(uint32_t frames, StereoFrame* out) const;
    /// The second half: takes the copied frames out of the ring, unless it was emptied since. Thread: render.
    void dropFrames(const StereoTake& take);

    /// Puts `frames` interleaved stereo frames into the ring behind `from`, which is a value of `stereoWrite`, and
    /// publishes them if that still stands there. The room left is not looked at. Thread: mixer. Never blocks or
    /// allocates.
    void publishFrames(uint64_t from, const float* stereo, uint32_t frames);

    /// Empties the stereo ring. Thread: interface.
    void emptyStereoRing();
    /// Thread: interface, or mixer.
    void zeroPeaks();
};

/// What one pass of the mixer thread works in, made once for the thread's life.
struct MixerBlocks {
    static constexpr int32_t kFileFrames = 256; ///< Of one pass at most.
    static constexpr int32_t kDeviceFrames = 1024; ///< That one pass makes of them at most.

    /// Room for `channels` tracks, at least one; all 0.0.
    explicit MixerBlocks(int32_t channels);

    std::vector<float> input; ///< Interleaved file frames.
    std::vector<float> stereo;
    std::vector<float> converted;
    std::vector<float> peaks; ///< One for each track.
};

/// One pass of the mixer thread: takes a block from the reader to the stereo ring if the transport runs and the ring
/// wants one, and notices the end of the file. Answers how long to sleep before the next pass; 0 if there is more to
/// do. Thread: mixer. Never blocks or allocates.
std::chrono::milliseconds mixerPass(PlayerState& state, const PlaybackMixer& mixer, MixerBlocks& blocks);
