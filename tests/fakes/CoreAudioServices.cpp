#include "tests/fakes/CoreAudioServices.h"

#include <cstring>

namespace CoreAudioServices {

State state;

void begin()
{
    state = State();
}

namespace {

OSStatus answer(const std::string& line)
{
    state.calls.push_back(line);
    if (state.onCall)
        state.onCall(line);
    const auto found = state.statuses.find(line);
    return found == state.statuses.end() ? 0 : found->second;
}

uintptr_t lastHandle = 0x1000;

template <typename Handle> Handle make()
{
    lastHandle += 16; // One count for all kinds, so that no two are alike.
    void* handle = reinterpret_cast<void*>(lastHandle);
    state.alive.insert(handle);
    return static_cast<Handle>(handle);
}

void expectAlive(void* handle)
{
    if (!state.alive.contains(handle))
        ++state.strangeHandles;
}

OSStatus onUnit(const std::string& line, AudioUnit unit)
{
    expectAlive(unit);
    return answer(line);
}

} // namespace
} // namespace CoreAudioServices

using namespace CoreAudioServices;

extern "C" {

OSStatus AudioObjectGetPropertyData(
    AudioObjectID object, const AudioObjectPropertyAddress* address, UInt32, const void*, UInt32* size, void* data)
{
    state.objects.push_back(object);
    state.addresses.push_back(*address);
    state.propertySizes.push_back(*size);
    const bool asksDevice = address->mSelector == kAudioHardwarePropertyDefaultOutputDevice;
    const OSStatus status = answer(asksDevice ? "get default device" : "get nominal rate");
    // A rate is left behind even where the status says that it means nothing.
    if (!asksDevice)
        std::memcpy(data, &state.rate, sizeof(state.rate));
    else if (status == 0)
        std::memcpy(data, &state.device, sizeof(state.device));
    return status;
}

OSStatus AudioConverterNew(const AudioStreamBasicDescription* source, const AudioStreamBasicDescription* destination,
    AudioConverterRef* converter)
{
    state.source = *source;
    state.destination = *destination;
    const OSStatus status = answer("AudioConverterNew");
    *converter = status == 0 && state.givesConverter ? make<AudioConverterRef>() : nullptr;
    return status;
}

OSStatus AudioConverterFillComplexBuffer(AudioConverterRef converter, AudioConverterComplexInputDataProc proc,
    void* userData, UInt32* packetCount, AudioBufferList* output, AudioStreamPacketDescription*)
{
    expectAlive(converter);
    state.lastConverter = converter;
    const OSStatus status = answer("AudioConverterFillComplexBuffer");
    if (state.fill)
        return state.fill(proc, userData, packetCount, output);
    *packetCount = 0;
    return status;
}

OSStatus AudioConverterReset(AudioConverterRef converter)
{
    expectAlive(converter);
    return answer("AudioConverterReset");
}

OSStatus AudioConverterDispose(AudioConverterRef converter)
{
    expectAlive(converter);
    state.alive.erase(converter);
    return answer("AudioConverterDispose");
}

AudioComponent AudioComponentFindNext(AudioComponent, const AudioComponentDescription* description)
{
    state.component = *description;
    (void)answer("AudioComponentFindNext");
    static char component;
    return state.hasComponent ? reinterpret_cast<AudioComponent>(&component) : nullptr;
}

OSStatus AudioComponentInstanceNew(AudioComponent, AudioComponentInstance* instance)
{
    const OSStatus status = answer("AudioComponentInstanceNew");
    if (status == 0)
        *instance = make<AudioComponentInstance>();
    return status;
}

OSStatus AudioComponentInstanceDispose(AudioComponentInstance instance)
{
    expectAlive(instance);
    state.alive.erase(instance);
    return answer("AudioComponentInstanceDispose");
}

OSStatus AudioUnitSetProperty(AudioUnit unit, AudioUnitPropertyID property, AudioUnitScope scope,
    AudioUnitElement element, const void* data, UInt32 size)
{
    state.scopes.push_back(scope);
    state.elements.push_back(element);
    if (property == kAudioUnitProperty_StreamFormat && size == sizeof(state.unitFormat))
        std::memcpy(&state.unitFormat, data, size);
    if (property == kAudioUnitProperty_SetRenderCallback && size == sizeof(state.unitCallback))
        std::memcpy(&state.unitCallback, data, size);
    return onUnit("AudioUnitSetProperty " + std::to_string(property), unit);
}

OSStatus AudioUnitInitialize(AudioUnit unit)
{
    return onUnit("AudioUnitInitialize", unit);
}
OSStatus AudioUnitUninitialize(AudioUnit unit)
{
    return onUnit("AudioUnitUninitialize", unit);
}
OSStatus AudioOutputUnitStart(AudioUnit unit)
{
    return onUnit("AudioOutputUnitStart", unit);
}
OSStatus AudioOutputUnitStop(AudioUnit unit)
{
    return onUnit("AudioOutputUnitStop", unit);
}

} // extern "C"
