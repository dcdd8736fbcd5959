#include "audio/AudioOutput.h"

#include <AudioToolbox/AudioToolbox.h>
#include <CoreAudio/CoreAudio.h>

#include <cstddef>

namespace {

// The render function is handed to the service as it stands, so the shapes must agree.
static_assert(sizeof(AudioOutput::Buffer) == sizeof(AudioBuffer));
static_assert(sizeof(AudioOutput::BufferList) == sizeof(AudioBufferList));
static_assert(offsetof(AudioOutput::Buffer, mData) == offsetof(AudioBuffer, mData));
static_assert(offsetof(AudioOutput::BufferList, mBuffers) == offsetof(AudioBufferList, mBuffers));
static_assert(sizeof(OSStatus) == sizeof(int32_t) && sizeof(AudioUnitRenderActionFlags) == sizeof(uint32_t));

constexpr AudioObjectPropertyElement kMainElement = 0;
constexpr AudioUnitElement kOutputBus = 0;

AudioUnit platform(AudioOutput::Unit* unit)
{
    return reinterpret_cast<AudioUnit>(unit);
}

template <typename Value>
OSStatus readProperty(AudioObjectID object, AudioObjectPropertySelector selector, Value& value)
{
    const AudioObjectPropertyAddress address{ selector, kAudioObjectPropertyScopeGlobal, kMainElement };
    UInt32 size = sizeof(Value);
    return AudioObjectGetPropertyData(object, &address, 0, nullptr, &size, &value);
}

} // namespace

namespace AudioOutput {

uint32_t defaultOutputDevice()
{
    // The status isn't looked at: on failure the id stays 0, which says the same.
    AudioDeviceID device = 0;
    (void)readProperty(kAudioObjectSystemObject, kAudioHardwarePropertyDefaultOutputDevice, device);
    return device;
}

double nominalSampleRate(uint32_t device)
{
    Float64 rate = 0.0;
    const OSStatus status = readProperty(device, kAudioDevicePropertyNominalSampleRate, rate);
    return status == 0 ? rate : 0.0;
}

Unit* newUnit()
{
    AudioComponentDescription description{};
    description.componentType = kAudioUnitType_Output;
    description.componentSubType = kAudioUnitSubType_DefaultOutput;
    description.componentManufacturer = kAudioUnitManufacturer_Apple;
    AudioComponent component = AudioComponentFindNext(nullptr, &description);
    if (!component)
        return nullptr;
    AudioUnit unit = nullptr;
    if (AudioComponentInstanceNew(component, &unit) != 0)
        return nullptr;
    return reinterpret_cast<Unit*>(unit);
}

bool setStreamFormat(Unit* unit, double rate)
{
    AudioStreamBasicDescription format{};
    format.mSampleRate = rate;
    format.mFormatID = kAudioFormatLinearPCM;
    format.mFormatFlags = kAudioFormatFlagIsFloat | kAudioFormatFlagIsPacked | kAudioFormatFlagIsNonInterleaved;
    format.mBytesPerPacket = 4;
    format.mFramesPerPacket = 1;
    format.mBytesPerFrame = 4;
    format.mChannelsPerFrame = 2;
    format.mBitsPerChannel = 32;
    return AudioUnitSetProperty(platform(unit), kAudioUnitProperty_StreamFormat, kAudioUnitScope_Input, kOutputBus,
               &format, sizeof(format))
        == 0;
}

bool setRenderCallback(Unit* unit, RenderFunction render, void* context)
{
    AURenderCallbackStruct callback{};
    callback.inputProc = reinterpret_cast<AURenderCallback>(render);
    callback.inputProcRefCon = context;
    return AudioUnitSetProperty(platform(unit), kAudioUnitProperty_SetRenderCallback, kAudioUnitScope_Input, kOutputBus,
               &callback, sizeof(callback))
        == 0;
}

bool initialize(Unit* unit)
{
    return AudioUnitInitialize(platform(unit)) == 0;
}

int32_t start(Unit* unit)
{
    return AudioOutputUnitStart(platform(unit));
}

void stop(Unit* unit)
{
    AudioOutputUnitStop(platform(unit));
}

void uninitialize(Unit* unit)
{
    AudioUnitUninitialize(platform(unit));
}

void dispose(Unit* unit)
{
    AudioComponentInstanceDispose(platform(unit));
}

} // namespace AudioOutput
