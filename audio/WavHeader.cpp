#include "audio/WavHeader.h"

#include "audio/SampleDecode.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <limits>
#include <vector>

namespace {

constexpr uint32_t kDs64Fields = 24; // Bytes of the three sizes that open a `ds64` chunk.
constexpr uint32_t kFormatFields = 16; // Bytes of the fields that open a `fmt ` chunk.
constexpr uint32_t kSizeIsIn64 = 0xFFFFFFFF; // A chunk size that says: look into `ds64`.
constexpr size_t kChunkId = 4; // Bytes.
constexpr size_t kChunkHeader = 8; // Bytes of a chunk's id and size.
constexpr uint32_t kNearSkip = 4096; // Up to here reading on is cheaper than a seek, which drops the stream's buffer.

// Empty chunks without an id are read one by one until so many bytes of them lie in a row. A file with many short rows
// would otherwise pay for a block and a way back at each of them.
constexpr size_t kLongSilence = 4096;
constexpr size_t kSilenceBlock = 262144; // Bytes of one read through a long row; a multiple of a header.

template <typename T, size_t Bytes> T littleEndian(const char* bytes)
{
    T value = 0;
    for (size_t i = Bytes; i > 0; --i)
        value = static_cast<T>((static_cast<uint64_t>(value) << 8) | static_cast<unsigned char>(bytes[i - 1]));
    return value;
}

template <typename T, size_t Bytes> T readLittleEndian(std::istream& stream)
{
    std::array<char, Bytes> bytes{};
    stream.read(bytes.data(), Bytes);
    return littleEndian<T, Bytes>(bytes.data());
}

// Whether the header of a chunk is that of an empty one without an id.
bool isSilent(const char* header)
{
    return littleEndian<uint64_t, kChunkHeader>(header) == 0;
}

// Bytes at the start of the `count` ones that are whole headers of empty chunks without an id.
size_t silentBytes(const char* bytes, size_t count)
{
    if (count < kChunkHeader || !isSilent(bytes))
        return 0;
    // The first header is zero, so all bytes are if each equals the one a header further on.
    if (std::memcmp(bytes, bytes + kChunkHeader, count - kChunkHeader) == 0)
        return count - count % kChunkHeader;
    size_t silent = kChunkHeader;
    while (count - silent >= kChunkHeader && isSilent(bytes + silent))
        silent += kChunkHeader;
    return silent;
}

// Moves on behind the row of empty chunks in which `stream` stands, `before` bytes of which lie behind it, by blocks
// that are never longer than what was seen of the row. Leaves the stream as reading them one by one would: good at the
// first header that isn't one of them, or where less than a header is left of the file.
void skipSilence(std::istream& stream, size_t before)
{
    std::vector<char> block;
    for (size_t wanted = before;; wanted = std::min(wanted * 2, kSilenceBlock)) {
        block.resize(wanted);
        stream.read(block.data(), static_cast<std::streamsize>(wanted));
        const auto got = static_cast<size_t>(stream.gcount());
        if (stream.bad())
            return;
        const size_t silent = silentBytes(block.data(), got);
        if (silent == wanted)
            continue;
        // It was good before, so what failed it is the end of the file inside the block.
        stream.clear();
        stream.seekg(static_cast<std::streamoff>(silent) - static_cast<std::streamoff>(got), std::ios::cur);
        return;
    }
}

bool readId(std::istream& stream, const char* id)
{
    std::array<char, kChunkId> found{};
    stream.read(found.data(), found.size());
    return stream && std::memcmp(found.data(), id, found.size()) == 0;
}

// Either way the next read fails where the skip went beyond the file's end.
void skipForward(std::istream& stream, uint32_t bytes)
{
    if (bytes <= kNearSkip)
        stream.ignore(bytes);
    else
        stream.seekg(static_cast<std::streamoff>(bytes), std::ios::cur);
}

// The steps of readWavHeader. All of them lean on the stream's sticky failure: after one failed step every later one
// fails.

bool readFileId(std::istream& stream, WavHeader& header)
{
    std::array<char, kChunkId> id{};
    stream.read(id.data(), id.size());
    header.isRF64 = std::memcmp(id.data(), "RF64", id.size()) == 0;
    if (!header.isRF64 && std::memcmp(id.data(), "RIFF", id.size()) != 0)
        return false;
    readUint32LE(stream);
    return readId(stream, "WAVE");
}

// `ds64` has to be the very next chunk, and it is left without regard to a pad byte.
bool readDs64(std::istream& stream, uint64_t& size64)
{
    if (!readId(stream, "ds64"))
        return false;
    const uint32_t size = readUint32LE(stream);
    readUint64LE(stream);
    size64 = readUint64LE(stream);
    readUint64LE(stream);
    if (size > kDs64Fields)
        skipForward(stream, size - kDs64Fields);
    return true;
}

struct FormatFields {
    uint16_t format = 0;
    uint16_t channels = 0;
    uint32_t rate = 0;
    uint16_t bits = 0;
};

bool acceptFormat(const FormatFields& fields, WavHeader& header)
{
    const bool formatKnown = fields.format == kFormatInteger || fields.format == kFormatFloat;
    const bool channelsFit = fields.channels >= 1 && fields.channels <= WavHeader::kMaxChannels;
    const bool bitsKnown = fields.bits == 16 || fields.bits == 24 || fields.bits == 32;
    if (!formatKnown || !channelsFit || !bitsKnown)
        return false;
    header.formatCode = fields.format;
    header.channels = fields.channels;
    header.sampleRate = static_cast<int32_t>(fields.rate);
    header.bitsPerSample = fields.bits;
    header.bytesPerSample = header.bitsPerSample / 8;
    return true;
}

// The sixteen bytes are read whatever the chunk's size says, and no pad byte is skipped: behind a `fmt ` of odd size
// the walk stands one byte short of the next chunk, and such a file is not played.
bool readFormat(std::istream& stream, WavHeader& header)
{
    uint32_t size = 0;
    if (!findWavChunk(stream, "fmt ", size, true))
        return false;
    FormatFields fields;
    fields.format = readUint16LE(stream);
    fields.channels = readUint16LE(stream);
    fields.rate = readUint32LE(stream);
    readUint32LE(stream);
    readUint16LE(stream);
    fields.bits = readUint16LE(stream);
    if (size > kFormatFields)
        skipForward(stream, size - kFormatFields);
    return acceptFormat(fields, header);
}

// Whether the file really holds so many bytes is not looked at; reads find out. A frame has at least two bytes, so that
// the number of frames fits 63 bits whatever the size claims.
bool locateData(std::istream& stream, uint64_t size64, WavHeader& header)
{
    uint32_t size = 0;
    if (!findWavChunk(stream, "data", size, true))
        return false;
    header.dataStart = stream.tellg();
    header.dataSize = header.isRF64 && size == kSizeIsIn64 ? size64 : size;
    header.totalFrames = static_cast<int64_t>(header.dataSize / static_cast<uint64_t>(header.frameBytes()));
    return true;
}

} // namespace

uint16_t readUint16LE(std::istream& stream)
{
    return readLittleEndian<uint16_t, 2>(stream);
}

uint32_t readUint32LE(std::istream& stream)
{
    return readLittleEndian<uint32_t, 4>(stream);
}

uint64_t readUint64LE(std::istream& stream)
{
    return readLittleEndian<uint64_t, 8>(stream);
}

std::optional<WavHeader> readWavHeader(std::istream& stream)
{
    WavHeader header;
    uint64_t size64 = 0;
    if (!readFileId(stream, header) || (header.isRF64 && !readDs64(stream, size64)))
        return std::nullopt;
    if (!readFormat(stream, header) || !locateData(stream, size64, header))
        return std::nullopt;
    return header;
}

// A claimed size near 2 to the 64 has frames that no file offset reaches. Going there fails the stream, as any
// impossible seek does.
void goToWavFrame(std::istream& stream, const WavHeader& header, int64_t frame)
{
    const std::streamoff start = header.dataStart;
    if (frame > (std::numeric_limits<std::streamoff>::max() - start) / header.frameBytes()) {
        stream.setstate(std::ios::failbit);
        return;
    }
    stream.seekg(start + frame * header.frameBytes(), std::ios::beg);
}

bool findWavChunk(std::istream& stream, const char* id, uint32_t& size, bool consumeHeader)
{
    size_t silence = 0; // Bytes of empty chunks without an id that were just passed by.
    for (;;) {
        std::array<char, kChunkHeader> header{};
        stream.read(header.data(), header.size());
        size = littleEndian<uint32_t, 4>(header.data() + kChunkId);
        if (!stream)
            return false;
        if (std::memcmp(header.data(), id, kChunkId) == 0)
            break;
        silence = isSilent(header.data()) ? silence + header.size() : 0;
        // The sum is held in 32 bits: a size of 0xFFFFFFFF skips nothing.
        if (silence == kLongSilence)
            skipSilence(stream, silence);
        else
            skipForward(stream, size + (size & 1));
        if (!stream)
            return false;
    }
    if (!consumeHeader)
        stream.seekg(-static_cast<std::streamoff>(kChunkHeader), std::ios::cur);
    return true;
}
