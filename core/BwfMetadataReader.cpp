#include "core/BwfMetadataReader.h"

#include "core/ChunkIndex.h"
#include "core/LittleEndian.h"
#include "core/MetadataStream.h"

#include <filesystem>

namespace {

constexpr size_t kDs64Bytes = 16; // Of the payload, as far as it is read.
constexpr size_t kFmtBytes = 16;

// The size of the audio. On RF64 the `data` header's own size is never looked at.
uint64_t dataSizeOf(std::istream& stream, bool isRF64, ChunkIndex& chunks)
{
    if (!isRF64) {
        const auto data = chunks.find(stream, ChunkIndex::Id::Data);
        return data ? data->size : 0;
    }
    const auto sizes = chunks.find(stream, ChunkIndex::Id::Ds64);
    if (!sizes)
        return 0;
    char payload[kDs64Bytes] = {};
    chunks.read(stream, sizes->payloadIn32Bits(), payload, sizeof payload);
    return littleEndian64(payload + 8);
}

void readFormat(std::istream& stream, BwfMetadata& record, ChunkIndex& chunks)
{
    const auto format = chunks.find(stream, ChunkIndex::Id::Format);
    if (!format)
        return;
    char payload[kFmtBytes] = {};
    chunks.read(stream, format->payloadIn32Bits(), payload, sizeof payload);
    record.channels = littleEndian16(payload + 2);
    record.sampleRate = littleEndian32(payload + 4);
    record.bitsPerSample = littleEndian16(payload + 14);
}

void takeName(const std::string& path, BwfMetadata& record)
{
    const std::filesystem::path file(path);
    record.fileName = file.filename().string();
    record.fileSize = std::filesystem::file_size(file);
}

void computeDuration(uint64_t dataSize, BwfMetadata& record)
{
    const uint32_t frameBytes = record.bitsPerSample / 8u * record.channels;
    if (dataSize == 0 || frameBytes == 0 || record.sampleRate == 0)
        return;
    // NOLINTNEXTLINE(bugprone-integer-division): half a frame at the end is none.
    record.duration = static_cast<double>(dataSize / frameBytes) / record.sampleRate;
}

} // namespace

BwfMetadata BwfMetadataReader::readMetadata(const std::string& path)
{
    BwfMetadata record;
    readSteps(path, record);
    return record;
}

std::optional<BwfMetadata> BwfMetadataReader::readMetadataWhole(const std::string& path)
{
    std::optional<BwfMetadata> record(std::in_place);
    if (!readSteps(path, *record))
        record.reset();
    return record;
}

std::optional<BwfMetadata> BwfMetadataReader::readMetadataWhole(const std::string& path, std::istream& opened)
{
    std::optional<BwfMetadata> record(std::in_place);
    takeName(path, *record);
    ChunkIndex chunks;
    takeFileInfo(opened, *record, chunks);
    opened.clear(); // As a file that is opened anew.
    takeBextChunk(opened, *record, chunks);
    opened.clear();
    takeIxmlChunk(opened, *record, chunks);
    if (chunks.brokeOff())
        record.reset();
    return record;
}

// Each step goes its way, whatever has become of those in front of it.
bool BwfMetadataReader::readSteps(const std::string& path, BwfMetadata& record)
{
    std::ifstream stream;
    ChunkIndex chunks;
    const bool first = readFileInfo(path, record, stream, chunks);
    const bool second = readBextChunk(path, record, stream, chunks);
    const bool third = readIxmlChunk(path, record, stream, chunks);
    return first && second && third && !chunks.brokeOff();
}

void BwfMetadataReader::readFileInfo(const std::string& path, BwfMetadata& record)
{
    std::ifstream stream;
    ChunkIndex chunks;
    readFileInfo(path, record, stream, chunks);
}

bool BwfMetadataReader::readFileInfo(
    const std::string& path, BwfMetadata& record, std::ifstream& stream, ChunkIndex& chunks)
{
    takeName(path, record);
    const OpenedFile opened(stream, path);
    if (!stream)
        return false;
    takeFileInfo(stream, record, chunks);
    return true;
}

// The order of the searches matters: a file without `data` (without `ds64` in RF64) has failed the stream when the
// format's turn comes, and so ends up with no format either.
void BwfMetadataReader::takeFileInfo(std::istream& stream, BwfMetadata& record, ChunkIndex& chunks)
{
    const bool isWave = chunks.begin(stream, record.fileSize);
    record.isRF64 = chunks.fileId() == "RF64";
    if (!isWave)
        return;
    const uint64_t dataSize = dataSizeOf(stream, record.isRF64, chunks);
    readFormat(stream, record, chunks);
    computeDuration(dataSize, record);
}

bool BwfMetadataReader::findChunk(std::istream& stream, std::string_view id, uint32_t& size, uint32_t& position)
{
    stream.seekg(ChunkWalk::kFirstChunk); // Takes back that the end was met, though no failure.
    const std::optional<ChunkWalk::Header> header = ChunkWalk(stream).find(stream, id);
    if (!header)
        return false;
    stream.seekg(static_cast<std::streamoff>(header->payload()));
    size = header->size;
    position = static_cast<uint32_t>(static_cast<std::streamoff>(stream.tellg()));
    return true;
}

uint16_t BwfMetadataReader::readUint16LE(std::istream& stream)
{
    char bytes[2] = {};
    stream.read(bytes, sizeof bytes);
    return littleEndian16(bytes);
}

uint32_t BwfMetadataReader::readUint32LE(std::istream& stream)
{
    char bytes[4] = {};
    stream.read(bytes, sizeof bytes);
    return littleEndian32(bytes);
}

uint64_t BwfMetadataReader::readUint64LE(std::istream& stream)
{
    char bytes[8] = {};
    stream.read(bytes, sizeof bytes);
    return littleEndian64(bytes);
}
