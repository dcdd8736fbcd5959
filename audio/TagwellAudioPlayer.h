#pragma once

#include "audio/PlaybackMixer.h"

#include <cstdint>
#include <memory>
#include <string>

struct PlayerState;
namespace AudioOutput {
struct BufferList;
}

/// Plays one WAV file of up to 64 tracks through the default output device.
///
/// Four threads meet here, and none of them ever waits for another one's lock:
/// 1. interface thread: the caller; all public operations belong to it alone;
/// 2. prefetch thread: file to float ring, inside the reader, from `open` to `close`;
/// 3. mixer thread: float ring to stereo ring, from `open` to `close`;
/// 4. render thread: stereo ring to the device; the output's own, from the start of the unit to its stop.
/// The engine never calls back: poll `isFinished`, `positionSeconds` and `trackPeak`.
class TagwellAudioPlayer {
public:
    /// A player without a file. Touches neither the device nor any thread.
    TagwellAudioPlayer();
    /// Closes the file and returns when all threads have ended.
    ~TagwellAudioPlayer();
    TagwellAudioPlayer(const TagwellAudioPlayer&) = delete;
    TagwellAudioPlayer& operator=(const TagwellAudioPlayer&) = delete;

    /// Closes what was open, opens `path` (UTF-8), readies the default output and starts to read ahead; stands at
    /// 0.0, stopped, with unity gains and nothing muted or soloed. Takes less than 3 seconds even if the sound service
    /// doesn't answer. False if the file can't be played or there is no output device; the player is then closed.
    /// Throws std::system_error when the system refuses a thread, and leaves a closed player then too.
    [[nodiscard]] bool open(const std::string& path);

    /// Stops, ends the threads, lets go of the device and the file. Harmless when repeated.
    void close();

    /// Plays from where the reader stands; after the end of the file that is the end, so seek first. False if no file
    /// is open or the device refuses to start, which leaves `isPlaying` true all the same.
    bool play();
    /// Falls silent and keeps its place. The device runs on.
    void pause();
    /// Goes on after `pause`; from the stopped or finished state it starts as `play` does. Nothing if no file is open.
    void resume();
    /// Stops the device and goes back to 0.0. Harmless in every state.
    void stop();
    /// Goes to `seconds`; before the start is 0.0, beyond the end is the end. `positionSeconds` follows at once.
    /// Playing stays playing and paused stays paused; finished becomes stopped. Nothing if no file is open.
    void seekSeconds(double seconds);

    /// True from a successful `open` to `close`.
    bool isOpen() const;
    /// True while playing and not paused.
    bool isPlaying() const;
    bool isPaused() const;
    /// True once the file has played to its end, until `play`, `resume`, `stop` or `seekSeconds`. A file shorter than
    /// its header claims never gets there.
    bool isFinished() const;

    /// Seconds from the file's start to what is heard, without the latency of converter and device. Never below 0.0;
    /// 0.0 if no file is open.
    double positionSeconds() const;
    /// Seconds; 0.0 if no file is open.
    double durationSeconds() const;

    /// Frames per second of the file opened last; 0 after `close`.
    int32_t sampleRate() const;
    /// Channels of the file opened last, which are the tracks, 1 to 64; 0 after `close`.
    int32_t channels() const;
    /// 16, 24 or 32, of the file opened last.
    int32_t bitDepth() const;
    /// 1 is integer PCM, 3 is IEEE float, of the file opened last.
    int32_t formatCode() const;
    /// The device's frames per second as of the last `open`; 48000.0 before that and when the device can't tell.
    double deviceSampleRate() const;

    /// See PlaybackMixer. Heard from the next block on, about 80 ms later. Ignored if there is no such track.
    void setTrackGain(int32_t track, float gain);
    void setTrackMuted(int32_t track, bool on);
    void setTrackSolo(int32_t track, bool on);

    /// Linear peak of `track` behind its gain; may exceed 1.0. Falls by 8% with each mixed block, and stands still
    /// while nothing is mixed. 0.0 if there is no such track.
    float trackPeak(int32_t track) const;

private:
    bool openStopped(const std::string& path);
    bool setupAudioUnit();
    void teardownAudioUnit();
    void startThreads();
    void mixerLoop();
    static int32_t renderCallback(void* context, uint32_t* actionFlags, const void* timeStamp, uint32_t busNumber,
        uint32_t frames, AudioOutput::BufferList* bufferList);

    std::unique_ptr<PlayerState> state;
    PlaybackMixer mixer;
};
