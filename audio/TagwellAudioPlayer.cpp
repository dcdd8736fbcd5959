#include "audio/TagwellAudioPlayer.h"

#include "audio/AudioOutput.h"
#include "audio/PlayerState.h"

#include <algorithm>
#include <utility>

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
    state->file = state->reader.getHeader();
    if (state->file.channels < 1 || state->file.sampleRate <= 0) {
        state->reader.close();
        return false;
    }

    mixer.reset(state->file.channels);
    state->peaks.zero();
    if (!setupAudioUnit()) {
        state->reader.close();
        return false;
    }
    if (!state->converter.setup(state->file.sampleRate, state->deviceRate)) {
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
    state->reader.startPrefetch(state->file.channels);
    state->stereoRing.clear();
    state->transport.stop();
    state->transport.clearFinished();
    state->transport.forgetAudio();
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
    state->file.channels = 0;
    state->file.sampleRate = 0;
}

bool TagwellAudioPlayer::setupAudioUnit()
{
    teardownAudioUnit();
    AudioOutput::DevicePtr device = AudioOutput::openDefaultDevice();
    state->outputDevice = device ? AudioOutput::deviceId(*device) : 0;
    if (!device)
        return false;
    const double nominal = AudioOutput::nominalSampleRate(*device);
    state->deviceRate = nominal > 0.0 ? nominal : PlayerState::kDefaultRate;

    state->outputUnit = AudioOutput::newUnit(std::move(device));
    if (!state->outputUnit)
        return false;
    AudioOutput::Unit& unit = *state->outputUnit;
    if (!AudioOutput::setStreamFormat(unit, state->deviceRate)
        || !AudioOutput::setRenderCallback(unit, &TagwellAudioPlayer::renderCallback, state.get())) {
        // Never initialised, so there is nothing to take back but the unit itself.
        state->outputUnit.reset();
        return false;
    }
    if (!AudioOutput::initialize(unit)) {
        teardownAudioUnit();
        return false;
    }
    return true;
}

void TagwellAudioPlayer::teardownAudioUnit()
{
    if (!state->outputUnit)
        return;
    AudioOutput::stop(*state->outputUnit);
    AudioOutput::uninitialize(*state->outputUnit);
    state->outputUnit.reset();
}

bool TagwellAudioPlayer::play()
{
    if (!isOpen() || !state->outputUnit)
        return false;
    state->transport.start();
    return AudioOutput::start(*state->outputUnit) == 0;
}

void TagwellAudioPlayer::pause()
{
    state->transport.pause();
}

void TagwellAudioPlayer::resume()
{
    if (!state->transport.playing() && isOpen()) {
        (void)play(); // Nobody is there to tell; the transport shows Playing either way.
        return;
    }
    state->transport.resume();
}

void TagwellAudioPlayer::stop()
{
    state->transport.stop();
    if (state->outputUnit)
        AudioOutput::stop(*state->outputUnit);
    state->stereoRing.clear();
    state->converter.reset();
    if (state->reader.isOpen())
        state->reader.setPosition(0);
    state->transport.clearFinished();
    state->transport.forgetAudio();
    state->peaks.zero();
}

void TagwellAudioPlayer::seekSeconds(double seconds)
{
    if (!state->reader.isOpen())
        return;
    state->transport.beginSeek();
    state->stereoRing.clear();
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
    return state->transport.runs();
}

bool TagwellAudioPlayer::isPaused() const
{
    return state->transport.paused();
}

bool TagwellAudioPlayer::isFinished() const
{
    return state->transport.finished();
}

double TagwellAudioPlayer::positionSeconds() const
{
    if (!state->reader.isOpen() || state->file.sampleRate < 1 || !(state->deviceRate > 0.0))
        return 0.0;
    // Two clocks: what the mixer has taken counts in file frames, what it has queued counts in device frames.
    const double queued = state->stereoRing.queued() / state->deviceRate;
    const double consumed = static_cast<double>(state->reader.getPosition()) / state->file.sampleRate;
    return std::max(consumed - queued, 0.0);
}

double TagwellAudioPlayer::durationSeconds() const
{
    return state->reader.isOpen() ? state->reader.getDuration() : 0.0;
}

int32_t TagwellAudioPlayer::sampleRate() const
{
    return state->file.sampleRate;
}
int32_t TagwellAudioPlayer::channels() const
{
    return state->file.channels;
}
int32_t TagwellAudioPlayer::bitDepth() const
{
    return state->file.bitsPerSample;
}
int32_t TagwellAudioPlayer::formatCode() const
{
    return state->file.formatCode;
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
    if (track < 0 || track >= state->file.channels)
        return 0.0f;
    return state->peaks.at(static_cast<size_t>(track));
}
