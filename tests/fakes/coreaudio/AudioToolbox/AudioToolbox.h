#pragma once

// Stand-in for the system's header: only the names that the audio sources use, in the system's spelling, types and
// values.

#include <CoreAudio/CoreAudio.h>

typedef UInt32 AudioFormatID;
typedef UInt32 AudioFormatFlags;

constexpr AudioFormatID kAudioFormatLinearPCM = fourCharacters("lpcm");
constexpr AudioFormatFlags kAudioFormatFlagIsFloat = 1u << 0;
constexpr AudioFormatFlags kAudioFormatFlagIsPacked = 1u << 3;
constexpr AudioFormatFlags kAudioFormatFlagIsNonInterleaved = 1u << 5;

struct AudioStreamBasicDescription {
    Float64 mSampleRate;
    AudioFormatID mFormatID;
    AudioFormatFlags mFormatFlags;
    UInt32 mBytesPerPacket;
    UInt32 mFramesPerPacket;
    UInt32 mBytesPerFrame;
    UInt32 mChannelsPerFrame;
    UInt32 mBitsPerChannel;
    UInt32 mReserved;
};

struct AudioBuffer {
    UInt32 mNumberChannels;
    UInt32 mDataByteSize;
    void* mData;
};

struct AudioBufferList {
    UInt32 mNumberBuffers;
    AudioBuffer mBuffers[1];
};

struct AudioStreamPacketDescription;

typedef struct OpaqueAudioConverter* AudioConverterRef;
typedef OSStatus (*AudioConverterComplexInputDataProc)(AudioConverterRef converter, UInt32* packetCount,
    AudioBufferList* data, AudioStreamPacketDescription** descriptions, void* userData);

extern "C" OSStatus AudioConverterNew(const AudioStreamBasicDescription* source,
    const AudioStreamBasicDescription* destination, AudioConverterRef* converter);
extern "C" OSStatus AudioConverterFillComplexBuffer(AudioConverterRef converter,
    AudioConverterComplexInputDataProc proc, void* userData, UInt32* packetCount, AudioBufferList* output,
    AudioStreamPacketDescription* descriptions);
extern "C" OSStatus AudioConverterReset(AudioConverterRef converter);
extern "C" OSStatus AudioConverterDispose(AudioConverterRef converter);

typedef UInt32 AudioUnitPropertyID;
typedef UInt32 AudioUnitScope;
typedef UInt32 AudioUnitElement;
typedef UInt32 AudioUnitRenderActionFlags;
struct AudioTimeStamp;

typedef struct OpaqueAudioComponent* AudioComponent;
typedef struct ComponentInstanceRecord* AudioComponentInstance;
typedef AudioComponentInstance AudioUnit;

struct AudioComponentDescription {
    UInt32 componentType;
    UInt32 componentSubType;
    UInt32 componentManufacturer;
    UInt32 componentFlags;
    UInt32 componentFlagsMask;
};

constexpr UInt32 kAudioUnitType_Output = fourCharacters("auou");
constexpr UInt32 kAudioUnitSubType_DefaultOutput = fourCharacters("def ");
constexpr UInt32 kAudioUnitManufacturer_Apple = fourCharacters("appl");
constexpr AudioUnitPropertyID kAudioUnitProperty_StreamFormat = 8;
constexpr AudioUnitPropertyID kAudioUnitProperty_SetRenderCallback = 23;
constexpr AudioUnitScope kAudioUnitScope_Input = 1;

typedef OSStatus (*AURenderCallback)(void* context, AudioUnitRenderActionFlags* flags, const AudioTimeStamp* time,
    UInt32 bus, UInt32 frames, AudioBufferList* data);

struct AURenderCallbackStruct {
    AURenderCallback inputProc;
    void* inputProcRefCon;
};

extern "C" AudioComponent AudioComponentFindNext(AudioComponent after, const AudioComponentDescription* description);
extern "C" OSStatus AudioComponentInstanceNew(AudioComponent component, AudioComponentInstance* instance);
extern "C" OSStatus AudioComponentInstanceDispose(AudioComponentInstance instance);
extern "C" OSStatus AudioUnitSetProperty(AudioUnit unit, AudioUnitPropertyID property, AudioUnitScope scope,
    AudioUnitElement element, const void* data, UInt32 size);
extern "C" OSStatus AudioUnitInitialize(AudioUnit unit);
extern "C" OSStatus AudioUnitUninitialize(AudioUnit unit);
extern "C" OSStatus AudioOutputUnitStart(AudioUnit unit);
extern "C" OSStatus AudioOutputUnitStop(AudioUnit unit);
