#include "audio/WavFileReader.h"

#include "audio/SampleDecode.h"

#include <algorithm>
#include <array>
#include <cstring>
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

} // namespace

uint16_t WavFileReader::readUint16LE()
{
    return readLittleEndian<uint16_t, 2>(stream);
}

uint32_t WavFileReader::readUint32LE()
{
    return readLittleEndian<uint32_t, 4>(stream);
}

uint64_t WavFileReader::readUint64LE()
{
    return readLittleEndian<uint64_t, 8>(stream);
}

bool WavFileReader::parseHeader()
{
    uint64_t size64 = 0;
    if (!readFileId())
        return false;
    if (isRF64 && !readDs64(size64))
        return false;
    return readFormat() && locateData(size64);
}

bool WavFileReader::readFileId()
{
    std::array<char, 4> id{};
    stream.read(id.data(), id.size());
    isRF64 = std::memcmp(id.data(), "RF64", id.size()) == 0;
    if (!isRF64 && std::memcmp(id.data(), "RIFF", id.size()) != 0)
        return false;
    readUint32LE();
    return readId("WAVE");
}

// `ds64` has to be the very next chunk, and it is left without regard to a pad byte.
bool WavFileReader::readDs64(uint64_t& size64)
{
    if (!readId("ds64"))
        return false;
    const uint32_t size = readUint32LE();
    readUint64LE();
    size64 = readUint64LE();
    readUint64LE();
    if (size > kDs64Fields)
        skipForward(size - kDs64Fields);
    return true;
}

// The sixteen bytes are read whatever the chunk's size says, and no pad byte is skipped: behind a `fmt ` of odd size
// the walk stands one byte short of the next chunk, and such a file is not played.
bool WavFileReader::readFormat()
{
    uint32_t size = 0;
    if (!findChunk("fmt ", size, true))
        return false;
    FormatFields fields;
    fields.format = readUint16LE();
    fields.channels = readUint16LE();
    fields.rate = readUint32LE();
    readUint32LE();
    readUint16LE();
    fields.bits = readUint16LE();
    if (size > kFormatFields)
        skipForward(size - kFormatFields);
    return acceptFormat(fields);
}

bool WavFileReader::acceptFormat(const FormatFields& fields)
{
    const bool formatKnown = fields.format == kFormatInteger || fields.format == kFormatFloat;
    const bool channelsFit = fields.channels >= 1 && fields.channels <= kMaxChannels;
    const bool bitsKnown = fields.bits == 16 || fields.bits == 24 || fields.bits == 32;
    if (!formatKnown || !channelsFit || !bitsKnown)
        return false;
    formatCode = fields.format;
    channels = fields.channels;
    sampleRate = static_cast<int32_t>(fields.rate);
    bitsPerSample = fields.bits;
    bytesPerSample = bitsPerSample / 8;
    return true;
}

// Whether the file really holds so many bytes is not looked at; reads find out. A frame has at least two bytes, so that
// the number of frames fits 63 bits whatever the size claims.
bool WavFileReader::locateData(uint64_t size64)
{
    uint32_t size = 0;
    if (!findChunk("data", size, true))
        return false;
    dataStart = stream.tellg();
    dataSize = isRF64 && size == kSizeIsIn64 ? size64 : size;
    totalFrames = static_cast<int64_t>(dataSize / static_cast<uint64_t>(frameBytes()));
    return true;
}

bool WavFileReader::findChunk(const char* id, uint32_t& size, bool consumeHeader)
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
            skipForward(size + (size & 1));
        if (!stream)
            return false;
    }
    if (!consumeHeader)
        stream.seekg(-static_cast<std::streamoff>(kChunkHeader), std::ios::cur);
    return true;
}

bool WavFileReader::readId(const char* id)
{
    std::array<char, 4> found{};
    stream.read(found.data(), found.size());
    return stream && std::memcmp(found.data(), id, found.size()) == 0;
}

// Either way the next read fails where the skip went beyond the file's end.
void WavFileReader::skipForward(uint32_t bytes)
{
    if (bytes <= kNearSkip)
        stream.ignore(bytes);
    else
        stream.seekg(static_cast<std::streamoff>(bytes), std::ios::cur);
}
