#include "audio/SampleDecode.h"

#include "audio/WideDecode.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <type_traits>

// Samples are copied into integers and floats as they lie in the file.
static_assert(std::endian::native == std::endian::little, "sample data is little-endian");

namespace {

// Full scale of each integer width is a power of two, so the products below are exact.
constexpr float kScale16 = 1.0f / 32768.0f;
constexpr float kScale32 = 1.0f / 2147483648.0f;

template <typename T> T load(const uint8_t* bytes)
{
    T value;
    std::memcpy(&value, bytes, sizeof value);
    return value;
}

struct Integer16 {
    static constexpr int64_t kBytes = 2;
    static float decode(const uint8_t* bytes) { return static_cast<float>(load<int16_t>(bytes)) * kScale16; }
};

// The three bytes go to the upper end of a 32-bit integer, which brings the sign along. The value is 256 times too
// large and the factor 256 times too small for 24 bits; both are powers of two, so the result is the same to the last
// bit.
struct Integer24 {
    static constexpr int64_t kBytes = 3;
    static float decode(const uint8_t* bytes)
    {
        const uint32_t raised = (static_cast<uint32_t>(bytes[0]) << 8) | (static_cast<uint32_t>(bytes[1]) << 16)
            | (static_cast<uint32_t>(bytes[2]) << 24);
        return static_cast<float>(static_cast<int32_t>(raised)) * kScale32;
    }
};

struct Integer32 {
    static constexpr int64_t kBytes = 4;
    static float decode(const uint8_t* bytes) { return static_cast<float>(load<int32_t>(bytes)) * kScale32; }
};

// A float is four bytes at a distance of `Width` bytes from the next one.
template <int64_t Width> struct Float {
    static constexpr int64_t kBytes = Width;
    static float decode(const uint8_t* bytes) { return load<float>(bytes); }
};

template <typename Sample> void decodeRun(const uint8_t* in, int64_t samples, float* out)
{
    for (int64_t i = 0; i < samples; ++i)
        out[i] = Sample::decode(in + i * Sample::kBytes);
}

// All channels of the file are one long run. Packed samples have a faster way for all but its last few.
template <typename Sample> void decodeAll(const uint8_t* in, int64_t samples, float* out)
{
    int64_t done = 0;
    if constexpr (std::is_same_v<Sample, Integer24>)
        done = decodeWide24(in, samples, out);
    decodeRun<Sample>(in + done * Sample::kBytes, samples - done, out + done);
}

template <typename Sample>
void decodeFrames(const uint8_t* in, int64_t frames, int32_t fileChannels, float* out, int32_t outChannels)
{
    if (outChannels == fileChannels) {
        decodeAll<Sample>(in, frames * fileChannels, out);
        return;
    }
    const int64_t stride = fileChannels * Sample::kBytes;
    if (outChannels == 1) {
        for (int64_t frame = 0; frame < frames; ++frame)
            out[frame] = Sample::decode(in + frame * stride);
        return;
    }
    for (int64_t frame = 0; frame < frames; ++frame)
        decodeRun<Sample>(in + frame * stride, outChannels, out + frame * outChannels);
}

void writeSilence(const uint8_t*, int64_t frames, int32_t, float* out, int32_t outChannels)
{
    std::fill_n(out, frames * outChannels, 0.0f);
}

FrameDecoder floatDecoder(int32_t bitsPerSample)
{
    switch (bitsPerSample) {
    case 16:
        return decodeFrames<Float<2>>;
    case 24:
        return decodeFrames<Float<3>>;
    case 32:
        return decodeFrames<Float<4>>;
    default:
        return writeSilence;
    }
}

} // namespace

FrameDecoder frameDecoder(int32_t formatCode, int32_t bitsPerSample)
{
    if (formatCode == kFormatFloat)
        return floatDecoder(bitsPerSample);
    if (formatCode != kFormatInteger)
        return writeSilence;
    switch (bitsPerSample) {
    case 16:
        return decodeFrames<Integer16>;
    case 24:
        return decodeFrames<Integer24>;
    case 32:
        return decodeFrames<Integer32>;
    default:
        return writeSilence;
    }
}

float decodeSample(const uint8_t* bytes, int32_t formatCode, int32_t bitsPerSample)
{
    if (formatCode == kFormatFloat)
        return Float<4>::decode(bytes);
    if (formatCode != kFormatInteger)
        return 0.0f;
    switch (bitsPerSample) {
    case 16:
        return Integer16::decode(bytes);
    case 24:
        return Integer24::decode(bytes);
    case 32:
        return Integer32::decode(bytes);
    default:
        return 0.0f;
    }
}
