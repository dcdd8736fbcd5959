#pragma once

#include <AudioToolbox/AudioToolbox.h>
#include <CoreAudio/CoreAudio.h>

#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

/// A recording fake of the system's audio services: every call is written down, every answer can be set, handles that
/// are made and not given back are counted.
namespace CoreAudioServices {

/// The answers and everything that was seen. A fresh one for each test, by `begin`.
struct State {
    /// One line for each call, in order: "AudioConverterNew", "AudioUnitSetProperty 8", ...
    std::vector<std::string> calls;
    /// Status to answer by a line of `calls`; 0 where nothing is set.
    std::map<std::string, OSStatus> statuses;

    /// Called with each line before the call is answered, in the thread that calls.
    std::function<void(const std::string&)> onCall;

    AudioDeviceID device = 42;
    double rate = 48000.0;
    bool hasComponent = true;
    bool givesConverter = true; ///< False: AudioConverterNew answers 0 and leaves the handle null.

    std::vector<AudioObjectPropertyAddress> addresses;
    std::vector<AudioObjectID> objects;
    std::vector<UInt32> propertySizes;
    AudioStreamBasicDescription source{};
    AudioStreamBasicDescription destination{};
    AudioComponentDescription component{};
    AudioStreamBasicDescription unitFormat{};
    AURenderCallbackStruct unitCallback{};
    std::vector<AudioUnitScope> scopes;
    std::vector<AudioUnitElement> elements;

    /// The body of AudioConverterFillComplexBuffer; without one it answers 0 packets.
    std::function<OSStatus(AudioConverterComplexInputDataProc, void*, UInt32*, AudioBufferList*)> fill;
    AudioConverterRef lastConverter = nullptr;

    std::set<void*> alive; ///< Handles made and not disposed of.
    int strangeHandles = 0; ///< Calls with a handle that isn't alive.
};

extern State state;

/// Forgets everything.
void begin();

} // namespace CoreAudioServices
