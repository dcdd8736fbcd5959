#pragma once

#include "audio/AudioOutput.h"
#include "audio/AudioRateConverter.h"
#include "audio/PlaybackMixer.h"
#include "audio/StereoRing.h"
#include "audio/TrackPeaks.h"
#include "audio/Transport.h"
#include "audio/WavFileReader.h"

#include <atomic>
#include <chrono>
#include <cstdint>
#include <thread>
#include <vector>

/// The private state of TagwellAudioPlayer: what its threads share. For the player's own sources and its tests.
struct PlayerState {
    static constexpr double kDefaultRate = 48000.0; ///< Where the device can't tell its rate.

    WavFileReader reader;
    AudioRateConverter converter;
    AudioOutput::UnitPtr outputUnit; ///< Null when there is none.
    uint32_t outputDevice = 0; ///< 0 is none.

    std::thread mixerThread;
    std::atomic<bool> mixerRunning{ false }; ///< The mixer thread is to go on. Interface thread stores.
    std::atomic<bool> openFlag{ false }; ///< A file is open. Interface thread stores.
    Transport transport;
    StereoRing stereoRing;
    TrackPeaks peaks;

    // The rest changes only while neither the mixer nor the render thread is there.
    WavHeader file; ///< Of the file opened last.
    double deviceRate = kDefaultRate; ///< Of the output path, in Hz.
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
