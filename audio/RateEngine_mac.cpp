#include "audio/RateEngine.h"

#include <AudioToolbox/AudioToolbox.h>

#include <algorithm>

namespace {

constexpr UInt32 kChannels = 2;
constexpr UInt32 kFrameBytes = 8; // Two interleaved 32-bit floats.
constexpr OSStatus kUnspecifiedError = 0x77686174; // The four characters "what".

// What is left of the caller's block during one convert call.
struct InputCursor {
    const float* next;
    UInt32 framesLeft;
};

AudioConverterRef platform(RateEngine::Converter* converter)
{
    return reinterpret_cast<AudioConverterRef>(converter);
}

AudioStreamBasicDescription stereoFloat(double rate)
{
    AudioStreamBasicDescription description{};
    description.mSampleRate = rate;
    description.mFormatID = kAudioFormatLinearPCM;
    description.mFormatFlags = kAudioFormatFlagIsFloat | kAudioFormatFlagIsPacked;
    description.mBytesPerPacket = kFrameBytes;
    description.mFramesPerPacket = 1;
    description.mBytesPerFrame = kFrameBytes;
    description.mChannelsPerFrame = kChannels;
    description.mBitsPerChannel = 32;
    return description;
}

// Lends the caller's block to the converter without copying. Zero packets tell it that the block is used up; it keeps
// its filter state for the next call.
OSStatus provideInput(AudioConverterRef, UInt32* packetCount, AudioBufferList* bufferList,
    AudioStreamPacketDescription** descriptions, void* userData)
{
    if (descriptions)
        *descriptions = nullptr;
    auto* cursor = static_cast<InputCursor*>(userData);
    if (!bufferList || !packetCount || !cursor)
        return kUnspecifiedError;
    const UInt32 count = std::min(cursor->framesLeft, *packetCount);
    bufferList->mNumberBuffers = 1;
    AudioBuffer& buffer = bufferList->mBuffers[0];
    buffer.mNumberChannels = kChannels;
    buffer.mDataByteSize = count * kFrameBytes;
    // The service's type has no const; it only reads.
    buffer.mData = count != 0 ? const_cast<float*>(cursor->next) : nullptr;
    cursor->next += size_t{ count } * kChannels;
    cursor->framesLeft -= count;
    *packetCount = count;
    return 0;
}

} // namespace

namespace RateEngine {

Converter* newConverter(double inputRate, double outputRate)
{
    const AudioStreamBasicDescription source = stereoFloat(inputRate);
    const AudioStreamBasicDescription destination = stereoFloat(outputRate);
    AudioConverterRef made = nullptr;
    if (AudioConverterNew(&source, &destination, &made) != 0)
        return nullptr;
    return reinterpret_cast<Converter*>(made);
}

int32_t convert(Converter* converter, const float* input, int32_t inputFrames, float* output, int32_t outputCapacity)
{
    InputCursor cursor{ input, static_cast<UInt32>(inputFrames) };
    AudioBufferList list{};
    list.mNumberBuffers = 1;
    list.mBuffers[0].mNumberChannels = kChannels;
    list.mBuffers[0].mDataByteSize = static_cast<UInt32>(outputCapacity) * kFrameBytes;
    list.mBuffers[0].mData = output;
    auto packets = static_cast<UInt32>(outputCapacity);
    const OSStatus status
        = AudioConverterFillComplexBuffer(platform(converter), provideInput, &cursor, &packets, &list, nullptr);
    return status == 0 ? static_cast<int32_t>(packets) : 0;
}

void reset(Converter* converter)
{
    AudioConverterReset(platform(converter));
}

void dispose(Converter* converter)
{
    AudioConverterDispose(platform(converter));
}

} // namespace RateEngine
