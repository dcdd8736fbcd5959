#include "audio/TagwellAudioPlayer.h"

#include "audio/AudioOutput.h"
#include "audio/PlayerState.h"

#include <algorithm>

uint32_t PlayerState::queuedFrames() const
{
    // The read counter comes first. The other way about, a render call between the two loads could carry it past the
    // write counter, and a nearly empty ring would look full.
    const uint64_t read = stereoRead.load(std::memory_order_acquire);
    return framesBetween(read, stereoWrite.load(std::memory_order_acquire));
}

uint32_t PlayerState::framesBetween(uint64_t read, uint64_t write)
{
    if (read >> kCounterBits != write >> kCounterBits)
        return 0;
    return static_cast<uint32_t>(write - read) & kStereoMask;
}

uint64_t PlayerState::movedOn(uint64_t word, uint32_t frames)
{
    return (word >> kCounterBits << kCounterBits) | static_cast<uint32_t>(word + frames);
}

void PlayerState::emptyStereoRing()
{
    // Nobody else changes the count of clears, and both words have the same.
    const uint64_t cleared = ((stereoWrite.load(std::memory_order_relaxed) >> kCounterBits) + 1) << kCounterBits;
    stereoWrite.store(cleared, std::memory_order_release);
    stereoRead.store(cleared, std::memory_order_release);
}

void PlayerState::zeroPeaks()
{
    for (std::atomic<float>& peak : peaks)
        peak.store(0.0F, std::memory_order_relaxed);
}

TagwellAudioPlayer::TagwellAudioPlayer() : state(std::make_unique<PlayerState>()), mixer(0) { }

TagwellAudioPlayer::~TagwellAudioPlayer()
{
    close();
}

bool TagwellAudioPlayer::open(const std::string& path)
{
    close();
    try {
        return openStopped(path);
    } catch (...) {
        close();
        throw;
    }
}

bool TagwellAudioPlayer::openStopped(const std::string& path)
{
    if (!state->reader.open(path))
        return false;
    state->channels = state->reader.getChannels();
    state->sampleRate = state->reader.getSampleRate();
    state->bitDepth = state->reader.getBitsPerSample();
    state->formatCode = state->reader.getFormatCode();
    if (state->channels < 1 || state->sampleRate <= 0) {
        state->reader.close();
        return false;
    }

    mixer.reset(state->channels);
    state->zeroPeaks();
    if (!setupAudioUnit()) {
        state->reader.close();
        return false;
    }
    if (!state->converter.setup(state->sampleRate, state->deviceRate)) {
        teardownAudioUnit();
        state->reader.close();
        return false;
    }
    startThreads();
    return true;
}

// The reader reads ahead before any play, so that the first block is there when it is wanted.
void TagwellAudioPlayer::startThreads()
{
    state->reader.startPrefetch(state->channels);
    state->emptyStereoRing();
    state->transport.stop();
    state->transport.clearFinished();
    state->paused.store(false, std::memory_order_release);
    state->audioStarted.store(false, std::memory_order_release);
    state->openFlag.store(true, std::memory_order_release);
    state->mixerRunning.store(true, std::memory_order_release);
    state->mixerThread = std::thread([this] { mixerLoop(); });
}

void TagwellAudioPlayer::close()
{
    stop();
    state->mixerRunning.store(false, std::memory_order_release);
    if (state->mixerThread.joinable())
        state->mixerThread.join();
    teardownAudioUnit();
    state->converter.teardown();
    state->reader.close();
    state->openFlag.store(false, std::memory_order_release);
    state->channels = 0;
    state->sampleRate = 0;
}

bool TagwellAudioPlayer::setupAudioUnit()
{
    teardownAudioUnit();
    state->outputDevice = AudioOutput::defaultOutputDevice();
    if (state->outputDevice == 0)
        return false;
    const double nominal = AudioOutput::nominalSampleRate(state->outputDevice);
    state->deviceRate = nominal > 0.0 ? nominal : PlayerState::kDefaultRate;

    state->outputUnit = AudioOutput::newUnit();
    if (!state->outputUnit)
        return false;
    if (!AudioOutput::setStreamFormat(state->outputUnit, state->deviceRate)
        || !AudioOutput::setRenderCallback(state->outputUnit, &TagwellAudioPlayer::renderCallback, state.get())) {
        // Never initialised, so there is nothing to take back but the unit itself.
        AudioOutput::dispose(state->outputUnit);
        state->outputUnit = nullptr;
        return false;
    }
    if (!AudioOutput::initialize(state->outputUnit)) {
        teardownAudioUnit();
        return false;
    }
    return true;
}

void TagwellAudioPlayer::teardownAudioUnit()
{
    if (!state->outputUnit)
        return;
    AudioOutput::stop(state->outputUnit);
    AudioOutput::uninitialize(state->outputUnit);
    AudioOutput::dispose(state->outputUnit);
    state->outputUnit = nullptr;
}

bool TagwellAudioPlayer::play()
{
    if (!isOpen() || !state->outputUnit)
        return false;
    state->audioStarted.store(false, std::memory_order_release);
    state->paused.store(false, std::memory_order_release);
    state->transport.start();
    return AudioOutput::start(state->outputUnit) == 0;
}

void TagwellAudioPlayer::pause()
{
    state->paused.store(true, std::memory_order_release);
}

void TagwellAudioPlayer::resume()
{
    if (!state->transport.playing() && isOpen()) {
        (void)play(); // Nobody is there to tell; the transport shows Playing either way.
        return;
    }
    state->paused.store(false, std::memory_order_release);
}

void TagwellAudioPlayer::stop()
{
    state->transport.stop();
    state->paused.store(false, std::memory_order_release);
    if (state->outputUnit)
        AudioOutput::stop(state->outputUnit);
    state->emptyStereoRing();
    state->converter.reset();
    if (state->reader.isOpen())
        state->reader.setPosition(0);
    state->transport.clearFinished();
    state->audioStarted.store(false, std::memory_order_release);
    state->zeroPeaks();
}

void TagwellAudioPlayer::seekSeconds(double seconds)
{
    if (!state->reader.isOpen())
        return;
    state->transport.beginSeek();
    state->emptyStereoRing();
    state->converter.reset();
    state->reader.seekSeconds(std::max(seconds, 0.0));
    state->transport.endSeek();
}

bool TagwellAudioPlayer::isOpen() const
{
    return state->openFlag.load(std::memory_order_acquire);
}

bool TagwellAudioPlayer::isPlaying() const
{
    return state->transport.playing() && !isPaused();
}

bool TagwellAudioPlayer::isPaused() const
{
    return state->paused.load(std::memory_order_acquire);
}

bool TagwellAudioPlayer::isFinished() const
{
    return state->transport.finished();
}

double TagwellAudioPlayer::positionSeconds() const
{
    if (!state->reader.isOpen() || state->sampleRate < 1 || !(state->deviceRate > 0.0))
        return 0.0;
    // Two clocks: what the mixer has taken counts in file frames, what it has queued counts in device frames.
    const double queued = state->queuedFrames() / state->deviceRate;
    const double consumed = static_cast<double>(state->reader.getPosition()) / state->sampleRate;
    return std::max(consumed - queued, 0.0);
}

double TagwellAudioPlayer::durationSeconds() const
{
    return state->reader.isOpen() ? state->reader.getDuration() : 0.0;
}

int32_t TagwellAudioPlayer::sampleRate() const
{
    return state->sampleRate;
}
int32_t TagwellAudioPlayer::channels() const
{
    return state->channels;
}
int32_t TagwellAudioPlayer::bitDepth() const
{
    return state->bitDepth;
}
int32_t TagwellAudioPlayer::formatCode() const
{
    return state->formatCode;
}
double TagwellAudioPlayer::deviceSampleRate() const
{
    return state->deviceRate;
}

void TagwellAudioPlayer::setTrackGain(int32_t track, float gain)
{
    mixer.setGain(track, gain);
}
void TagwellAudioPlayer::setTrackMuted(int32_t track, bool on)
{
    mixer.setMuted(track, on);
}
void TagwellAudioPlayer::setTrackSolo(int32_t track, bool on)
{
    mixer.setSolo(track, on);
}

float TagwellAudioPlayer::trackPeak(int32_t track) const
{
    if (track < 0 || track >= state->channels)
        return 0.0F;
    return state->peaks[static_cast<size_t>(track)].load(std::memory_order_relaxed);
}
