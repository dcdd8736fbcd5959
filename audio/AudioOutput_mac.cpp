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

template <typename Value>
OSStatus readProperty(AudioObjectID object, AudioObjectPropertySelector selector, Value& value)
{
    const AudioObjectPropertyAddress address{ selector, kAudioObjectPropertyScopeGlobal, kMainElement };
    UInt32 size = sizeof(Value);
    return AudioObjectGetPropertyData(object, &address, 0, nullptr, &size, &value);
}

} // namespace

namespace AudioOutput {

struct Device {
    AudioDeviceID id;
};

struct Unit {
    AudioUnit instance;
};

DevicePtr openDefaultDevice()
{
    // The status isn't looked at: on failure the id stays 0, which says the same.
    AudioDeviceID id = 0;
    (void)readProperty(kAudioObjectSystemObject, kAudioHardwarePropertyDefaultOutputDevice, id);
    return DevicePtr(id != 0 ? new Device{ id } : nullptr);
}

uint32_t deviceId(const Device& device)
{
    return device.id;
}

double nominalSampleRate(Device& device)
{
    Float64 rate = 0.0;
    const OSStatus status = readProperty(device.id, kAudioDevicePropertyNominalSampleRate, rate);
    return status == 0 ? rate : 0.0;
}

UnitPtr newUnit(DevicePtr device)
{
    if (!device)
        return nullptr;
    AudioComponentDescription description{};
    description.componentType = kAudioUnitType_Output;
    description.componentSubType = kAudioUnitSubType_DefaultOutput;
    description.componentManufacturer = kAudioUnitManufacturer_Apple;
    AudioComponent component = AudioComponentFindNext(nullptr, &description);
    if (!component)
        return nullptr;
    AudioUnit instance = nullptr;
    if (AudioComponentInstanceNew(component, &instance) != 0)
        return nullptr;
    return UnitPtr(new Unit{ instance });
}

bool setStreamFormat(Unit& unit, double rate)
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
    return AudioUnitSetProperty(unit.instance, kAudioUnitProperty_StreamFormat, kAudioUnitScope_Input, kOutputBus,
               &format, sizeof(format))
        == 0;
}

bool setRenderCallback(Unit& unit, RenderFunction render, void* context)
{
    AURenderCallbackStruct callback{};
    callback.inputProc = reinterpret_cast<AURenderCallback>(render);
    callback.inputProcRefCon = context;
    return AudioUnitSetProperty(unit.instance, kAudioUnitProperty_SetRenderCallback, kAudioUnitScope_Input, kOutputBus,
               &callback, sizeof(callback))
        == 0;
}

bool initialize(Unit& unit)
{
    return AudioUnitInitialize(unit.instance) == 0;
}

int32_t start(Unit& unit)
{
    return AudioOutputUnitStart(unit.instance);
}

void stop(Unit& unit)
{
    AudioOutputUnitStop(unit.instance);
}

void uninitialize(Unit& unit)
{
    AudioUnitUninitialize(unit.instance);
}

void DeviceDeleter::operator()(Device* device) const
{
    delete device;
}

void UnitDeleter::operator()(Unit* unit) const
{
    AudioComponentInstanceDispose(unit->instance);
    delete unit;
}

} // namespace AudioOutput
