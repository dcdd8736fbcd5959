// The mixer thread: file ring to stereo ring.

#include "audio/TagwellAudioPlayer.h"

#include "audio/PlayerState.h"

#include <algorithm>

namespace {

constexpr std::chrono::milliseconds kNoSleep{ 0 };
constexpr std::chrono::milliseconds kFullSleep{ 2 }; // The stereo ring holds what it should.
constexpr std::chrono::milliseconds kNoDataSleep{ 4 }; // The reader has delivered nothing.
constexpr std::chrono::milliseconds kIdleSleep{ 8 }; // The transport doesn't run.

constexpr double kFillSeconds = 0.08; // Of sound that the stereo ring is to hold.
constexpr uint32_t kMinimumTarget = 64;
constexpr uint32_t kMinimumRoom = 64;
constexpr double kLargestTarget = 1.0e9; // Keeps an absurd device rate inside 32 bits; the ring is smaller anyway.

uint32_t fillTarget(double deviceRate)
{
    const auto frames = static_cast<uint32_t>(std::min(deviceRate * kFillSeconds, kLargestTarget));
    return std::max(frames, kMinimumTarget);
}

// Nothing came and nothing is queued: if something was playing and the file is at its end, it has ended. A seek, a stop
// or a start since `mark` was taken has the last word.
void finishAtEnd(PlayerState& state, uint64_t mark, uint32_t used)
{
    if (state.transport.audioStarted() && state.reader.isAtEnd() && used == 0)
        state.transport.finish(mark);
}

void raisePeaks(PlayerState& state, const MixerBlocks& blocks)
{
    state.peaks.raise(blocks.peaks.data(), static_cast<size_t>(state.file.channels));
    // A stop in the meantime has zeroed the peaks, perhaps before the stores above. Either it is found here, or its
    // zeroes come after these stores.
    if (!state.transport.stillPlaying())
        state.peaks.zero();
}

} // namespace

MixerBlocks::MixerBlocks(int32_t channels)
    : input(static_cast<size_t>(kFileFrames) * static_cast<size_t>(std::max(channels, 1)))
    , stereo(static_cast<size_t>(kFileFrames) * 2)
    , converted(static_cast<size_t>(kDeviceFrames) * 2)
    , peaks(static_cast<size_t>(std::max(channels, 1)))
{
}

std::chrono::milliseconds mixerPass(PlayerState& state, const PlaybackMixer& mixer, MixerBlocks& blocks)
{
    const uint64_t mark = state.transport.mark();
    if (!Transport::plays(mark) || state.transport.paused())
        return kIdleSleep;

    const uint32_t used = state.stereoRing.queued();
    const uint32_t target = fillTarget(state.deviceRate);
    const uint32_t room = StereoRing::kUsableFrames - used;
    if (target <= used || room < kMinimumRoom) {
        finishAtEnd(state, mark, used);
        return kFullSleep;
    }

    // Device frames are counted here and file frames taken, without the ratio of the rates: the ring is topped up pass
    // by pass, so it gets there all the same.
    const uint32_t count = std::min({ target - used, room, static_cast<uint32_t>(MixerBlocks::kFileFrames) });
    const int32_t got = state.reader.readFrames(blocks.input.data(), static_cast<int32_t>(count), state.file.channels);
    if (got < 1) {
        finishAtEnd(state, mark, used);
        return kNoDataSleep;
    }

    // Loaded only now: the frames of a block that is dropped for a changed counter are then surely from before that
    // change. After a seek that was taken before the read, these are the first frames of the new place.
    const uint64_t from = state.stereoRing.mark();
    state.transport.startAudio();
    mixer.mixToStereo(blocks.input.data(), got, blocks.stereo.data(), blocks.peaks.data());
    raisePeaks(state, blocks);
    const int32_t made
        = state.converter.convert(blocks.stereo.data(), got, blocks.converted.data(), MixerBlocks::kDeviceFrames);
    if (made >= 1)
        state.stereoRing.publish(from, blocks.converted.data(), static_cast<uint32_t>(made));
    return kNoSleep;
}

void TagwellAudioPlayer::mixerLoop()
{
    MixerBlocks blocks(state->file.channels);
    while (state->mixerRunning.load(std::memory_order_acquire)) {
        const std::chrono::milliseconds rest = mixerPass(*state, mixer, blocks);
        if (rest > kNoSleep)
            std::this_thread::sleep_for(rest);
    }
}
