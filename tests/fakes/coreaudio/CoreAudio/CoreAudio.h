#pragma once

// Stand-in for the system's header: only the names that the audio sources use, in the system's spelling, types and
// values.

#include <cstdint>

typedef uint32_t UInt32;
typedef int32_t SInt32;
typedef double Float64;
typedef SInt32 OSStatus;

typedef UInt32 AudioObjectID;
typedef AudioObjectID AudioDeviceID;
typedef UInt32 AudioObjectPropertySelector;
typedef UInt32 AudioObjectPropertyScope;
typedef UInt32 AudioObjectPropertyElement;

struct AudioObjectPropertyAddress {
    AudioObjectPropertySelector mSelector;
    AudioObjectPropertyScope mScope;
    AudioObjectPropertyElement mElement;
};

constexpr UInt32 fourCharacters(const char (&text)[5])
{
    return static_cast<UInt32>(text[0]) << 24 | static_cast<UInt32>(text[1]) << 16 | static_cast<UInt32>(text[2]) << 8
        | static_cast<UInt32>(text[3]);
}

constexpr AudioObjectID kAudioObjectSystemObject = 1;
constexpr AudioObjectPropertyScope kAudioObjectPropertyScopeGlobal = fourCharacters("glob");
constexpr AudioObjectPropertySelector kAudioHardwarePropertyDefaultOutputDevice = fourCharacters("dOut");
constexpr AudioObjectPropertySelector kAudioDevicePropertyNominalSampleRate = fourCharacters("nsrt");

extern "C" OSStatus AudioObjectGetPropertyData(AudioObjectID object, const AudioObjectPropertyAddress* address,
    UInt32 qualifierSize, const void* qualifier, UInt32* size, void* data);
