#pragma once

#include <cstdint>
#include <istream>
#include <optional>

/// What the header of a RIFF or RF64 file says about its sample data. All 0 where no file is meant.
struct WavHeader {
    static constexpr int32_t kMaxChannels = 64;

    bool isRF64 = false;
    int32_t sampleRate = 0; ///< Frames per second as the file says, unjudged: 0 and negative values are possible.
    int32_t channels = 0; ///< Interleaved channels of a frame, 1 to kMaxChannels.
    int32_t bitsPerSample = 0; ///< 16, 24 or 32.
    int32_t bytesPerSample = 0; ///< 2, 3 or 4.
    int32_t formatCode = 0; ///< kFormatInteger or kFormatFloat.
    uint64_t dataSize = 0; ///< Bytes of sample data as the file claims; it may really hold fewer.
    int64_t totalFrames = 0; ///< Whole frames in `dataSize`.
    std::streampos dataStart = 0; ///< Position of the first sample byte.

    /// Bytes of one frame in the file; at least 2 in the header of a file.
    int64_t frameBytes() const { return static_cast<int64_t>(channels) * bytesPerSample; }
    /// `wanted`, or all of the file's channels when it is below 1 or above them.
    int32_t effectiveChannels(int32_t wanted) const { return wanted < 1 || wanted > channels ? channels : wanted; }
};

/// Reads the header of the file in `stream`, which stands at its first byte, as far as the first sample byte.
/// Thread: any that has the stream to itself; waits for the file. Nothing if it isn't a WAV file of 1 to 64 channels in
/// 16, 24 or 32 bits of integer PCM or float with `fmt ` before `data`.
std::optional<WavHeader> readWavHeader(std::istream& stream);

/// Puts `stream` before file frame `frame`, 0 to the total. Where that is beyond what a file can hold, the stream
/// fails. Thread: as `readWavHeader`.
void goToWavFrame(std::istream& stream, const WavHeader& header, int64_t frame);

/// Searches for the chunk `id` (four bytes) from the current position of `stream` on. `size` takes the size field of
/// every chunk on the way. On a match the stream stands at the chunk's first body byte, or at its header when
/// `consumeHeader` is false. Thread: as `readWavHeader`. False if the stream fails first.
bool findWavChunk(std::istream& stream, const char* id, uint32_t& size, bool consumeHeader);

/// The next 2, 4 or 8 bytes of `stream` as a little-endian number. Bytes that can't be read count as 0.
/// Thread: as `readWavHeader`.
uint16_t readUint16LE(std::istream& stream);
uint32_t readUint32LE(std::istream& stream);
uint64_t readUint64LE(std::istream& stream);
