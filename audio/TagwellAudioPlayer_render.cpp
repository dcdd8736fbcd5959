// The render thread: stereo ring to the device's buffers. Nothing here locks, allocates or calls the system.

#include "audio/TagwellAudioPlayer.h"

#include "audio/AudioOutput.h"
#include "audio/PlayerState.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace {

using AudioOutput::Buffer;
using AudioOutput::BufferList;

// What the callback has taken from the ring; frames beyond `count` are silence.
struct Taken {
    std::array<StereoFrame, StereoRing::kRenderBatch> frames;
    uint32_t count;
};

void fillChannel(const Buffer& buffer, uint32_t frames, const Taken& taken, float StereoFrame::*side)
{
    if (!buffer.mData)
        return;
    auto* out = static_cast<float*>(buffer.mData);
    for (uint32_t i = 0; i < taken.count; ++i)
        out[i] = taken.frames[i].*side;
    std::fill(out + taken.count, out + frames, 0.0f);
}

// One buffer for each channel: left, right, and silence in all others.
void fillSeparate(const Buffer* buffers, uint32_t bufferCount, uint32_t frames, const Taken& taken)
{
    fillChannel(buffers[0], frames, taken, &StereoFrame::left);
    fillChannel(buffers[1], frames, taken, &StereoFrame::right);
    for (uint32_t b = 2; b < bufferCount; ++b) {
        if (buffers[b].mData)
            std::memset(buffers[b].mData, 0, buffers[b].mDataByteSize);
    }
}

// One buffer of interleaved channels. Its own size says how many frames it wants, not the callback's argument.
void fillInterleaved(const Buffer& buffer, const Taken& taken)
{
    const size_t channels = std::max(buffer.mNumberChannels, 1U);
    const size_t frames = buffer.mDataByteSize / (channels * sizeof(float));
    if (!buffer.mData || frames < 1)
        return;
    auto* out = static_cast<float*>(buffer.mData);
    for (size_t f = 0; f < frames; ++f) {
        const StereoFrame frame = f < taken.count ? taken.frames[f] : StereoFrame{};
        out[0] = frame.left;
        if (channels >= 2) {
            out[1] = frame.right;
            std::fill(out + 2, out + channels, 0.0f);
        }
        out += channels;
    }
}

} // namespace

int32_t TagwellAudioPlayer::renderCallback(void* context, uint32_t* /*actionFlags*/, const void* /*timeStamp*/,
    uint32_t /*busNumber*/, uint32_t frames, AudioOutput::BufferList* bufferList)
{
    if (!context || !bufferList)
        return 0;
    auto& state = *static_cast<PlayerState*>(context);
    Taken taken;
    taken.count = frames > 0 && state.transport.runs() ? state.stereoRing.take(frames, taken.frames.data()) : 0;

    const Buffer* buffers = AudioOutput::buffersOf(bufferList);
    const uint32_t bufferCount = bufferList->mNumberBuffers;
    if (bufferCount >= 2 && buffers[0].mNumberChannels <= 1) {
        fillSeparate(buffers, bufferCount, frames, taken);
        return 0;
    }
    for (uint32_t b = 0; b < bufferCount; ++b)
        fillInterleaved(buffers[b], taken);
    return 0;
}
