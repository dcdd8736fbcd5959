#include "core/BwfMetadataWriter.h"

#include "core/BwfMetadata.h"
#include "core/BwfMetadataReader.h"
#include "core/ChunkWalk.h"
#include "core/MetadataChanges.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string_view>
#include <vector>

namespace {

/// The file's size in bytes, and with it the stream at its end; 0 on a failed stream. Fails the stream if the size
/// can't be told: what is not written for that reason must not pass as written.
uint64_t sizeOf(std::ios& stream)
{
    // One step where `seekg` and `tellg` would take two.
    const std::streamoff end = stream ? std::streamoff(stream.rdbuf()->pubseekoff(0, std::ios::end)) : -1;
    if (end < 0)
        stream.setstate(std::ios::failbit);
    return end < 0 ? 0 : static_cast<uint64_t>(end);
}

/// Bytes of the file from `position` on; 0 past its end or on a failed stream.
uint64_t bytesFrom(std::fstream& stream, uint64_t position)
{
    const uint64_t size = sizeOf(stream);
    return size > position ? size - position : 0;
}

/// Overwrites what lies inside the file and drops the rest: a `bext` payload shorter than its fields is not
/// guarded against otherwise, but the file must never grow.
void overwrite(std::fstream& stream, uint64_t position, std::string_view bytes)
{
    const uint64_t room = bytesFrom(stream, position);
    stream.seekp(static_cast<std::streamoff>(position));
    stream.write(bytes.data(), static_cast<std::streamsize>(std::min<uint64_t>(room, bytes.size())));
}

/// A text field of `size` bytes that always ends in at least one NUL.
std::string textField(const std::string& text, size_t size)
{
    std::string field = size == 0 ? std::string() : text.substr(0, size - 1);
    field.resize(size, '\0');
    return field;
}

template <size_t Width> std::array<char, Width> littleEndian(uint64_t value)
{
    std::array<char, Width> bytes{};
    for (char& each : bytes) {
        each = static_cast<char>(value & 0xFF);
        value >>= 8;
    }
    return bytes;
}

template <size_t Width> void writeLittleEndian(std::ostream& stream, uint64_t value)
{
    const std::array<char, Width> bytes = littleEndian<Width>(value);
    stream.write(bytes.data(), Width);
}

uint32_t readFourBytes(std::istream& stream)
{
    std::array<char, 4> bytes{};
    stream.read(bytes.data(), bytes.size());
    return littleEndian32(bytes.data());
}

/// Finds the chunks that the steps of one save write into. Each step finds what a search of its own from the first
/// chunk would find, but each header is visited once.
class ChunkSearch {
public:
    explicit ChunkSearch(std::istream& searched) : stream(searched) { }

    /// As BwfMetadataWriter::findChunk.
    bool find(std::string_view id, uint32_t& size, uint32_t& position)
    {
        // Where the walk goes on inside the fields that are written, the headers there may be others by now.
        if (first("bext") && stepOver(*first("bext")) < kBextFieldsBytes)
            forget();
        const ChunkWalk::Header* header = stream ? first(id) : nullptr;
        if (!header)
            header = walkTo(id);
        return header && standAtPayload(*header, size, position);
    }

private:
    /// In 32 bits, as the walk has it: the size 0xFFFFFFFF steps by 0, into the payload itself.
    static uint32_t stepOver(const ChunkWalk::Header& header) { return header.size + header.size % 2; }

    const ChunkWalk::Header* first(std::string_view id) const
    {
        const auto found = std::find_if(visited.begin(), visited.end(), [id](const auto& each) { return each.is(id); });
        return found == visited.end() ? nullptr : &*found;
    }

    void forget()
    {
        visited.clear();
        walk.reset();
    }

    const ChunkWalk::Header* walkTo(std::string_view id)
    {
        if (!walk)
            walk.emplace(sizeOf(stream));
        ChunkWalk::Header header;
        while (walk->next(stream, header)) {
            const bool wanted = header.is(id);
            if (wanted || (header.is("iXML") && !first("iXML")))
                visited.push_back(header);
            if (wanted)
                return &visited.back();
        }
        return nullptr;
    }

    /// A position is held in 32 bits. One that does not fit must not be cut to them here: the cut position is some
    /// other place of the same file, mostly audio, and would be written over. So a chunk behind the first 4 GiB counts
    /// as not found, with all that follows from it: the stream fails as if the search had run off the end.
    bool standAtPayload(const ChunkWalk::Header& header, uint32_t& size, uint32_t& position)
    {
        const uint64_t payload = header.offset + ChunkWalk::kHeaderBytes;
        if (payload > UINT32_MAX) {
            stream.setstate(std::ios::failbit);
            return false;
        }
        stream.seekg(static_cast<std::streamoff>(payload));
        size = header.size;
        position = static_cast<uint32_t>(payload);
        return true;
    }

    std::istream& stream;
    std::optional<ChunkWalk> walk;
    std::vector<ChunkWalk::Header> visited; // Those that were asked for, and the first `iXML`.
};

bool saveDescription(std::fstream& file, ChunkSearch& chunks, const BwfMetadata& current, const BwfMetadata& updated)
{
    uint32_t size = 0;
    uint32_t position = 0;
    if (!chunks.find("bext", size, position))
        return false;
    return BwfMetadataWriter::updateBextDescription(file, position, editedDescription(current, updated));
}

bool saveTimeReference(std::fstream& file, ChunkSearch& chunks, uint64_t timeReference)
{
    uint32_t size = 0;
    uint32_t position = 0;
    if (!chunks.find("bext", size, position))
        return false;
    return BwfMetadataWriter::updateBextTimeReference(file, position, timeReference);
}

bool saveIxml(std::fstream& file, ChunkSearch& chunks, const BwfMetadata& current, const BwfMetadata& updated)
{
    uint32_t size = 0;
    uint32_t position = 0;
    if (!chunks.find("iXML", size, position))
        return false;
    return BwfMetadataWriter::updateIxmlFields(file, position, size, current, updated);
}

} // namespace

bool BwfMetadataWriter::writeMetadata(const std::string& path, const BwfMetadata& updated)
{
    // What was not read would pass for empty here, and the Description that is built from it would lose its lines.
    const std::optional<BwfMetadata> read = BwfMetadataReader::readMetadataWhole(path);
    if (!read)
        return false;
    const BwfMetadata& current = *read;
    const MetadataChanges changes = changesBetween(current, updated);
    if (!changes.any())
        return true;

    // Without a buffer of its own, so that each write reaches the file, and fails, within its own step.
    std::fstream file;
    file.rdbuf()->pubsetbuf(nullptr, 0);
    file.open(path, std::ios::in | std::ios::out | std::ios::binary);
    if (!file.is_open())
        return false;

    // The stream is not cleared between the steps: see the class comment. Each step stands by itself, and one that
    // comes to nothing takes nothing back.
    ChunkSearch chunks(file);
    const bool descriptionSaved = changes.bext && saveDescription(file, chunks, current, updated);
    const bool timeReferenceSaved = changes.timeReference && saveTimeReference(file, chunks, updated.timeReference);
    const bool ixmlSaved = (changes.ixml || changes.tracks) && saveIxml(file, chunks, current, updated);
    file.close();
    return descriptionSaved || timeReferenceSaved || ixmlSaved;
}

bool BwfMetadataWriter::findChunk(std::ifstream& stream, std::string_view id, uint32_t& size, uint32_t& position)
{
    return ChunkSearch(stream).find(id, size, position);
}

bool BwfMetadataWriter::findChunk(std::fstream& stream, std::string_view id, uint32_t& size, uint32_t& position)
{
    return ChunkSearch(stream).find(id, size, position);
}

bool BwfMetadataWriter::updateBextDescription(std::fstream& stream, uint32_t position, const std::string& text)
{
    if (bytesFrom(stream, position) >= kDescriptionBytes)
        writeString(stream, text, kDescriptionBytes, position);
    else
        overwrite(stream, position, textField(text, kDescriptionBytes));
    return true;
}

bool BwfMetadataWriter::updateBextTimeReference(std::fstream& stream, uint32_t position, uint64_t value)
{
    const std::array<char, 8> bytes = littleEndian<8>(value); // Both halves, the low one first.
    overwrite(stream, position + kTimeReferenceOffset, { bytes.data(), bytes.size() });
    return stream.good();
}

void BwfMetadataWriter::writeString(std::fstream& stream, const std::string& text, size_t fieldSize, uint32_t position)
{
    const std::string field = textField(text, fieldSize);
    stream.seekp(static_cast<std::streamoff>(position));
    stream.write(field.data(), static_cast<std::streamsize>(field.size()));
}

void BwfMetadataWriter::writeString(std::ofstream& stream, const std::string& text, size_t fieldSize)
{
    const std::string field = textField(text, fieldSize);
    stream.write(field.data(), static_cast<std::streamsize>(field.size()));
}

void BwfMetadataWriter::writeUint32LE(std::ofstream& stream, uint32_t value)
{
    writeLittleEndian<4>(stream, value);
}
void BwfMetadataWriter::writeUint32LE(std::fstream& stream, uint32_t value)
{
    writeLittleEndian<4>(stream, value);
}
void BwfMetadataWriter::writeUint16LE(std::ofstream& stream, uint16_t value)
{
    writeLittleEndian<2>(stream, value);
}
void BwfMetadataWriter::writeUint64LE(std::ofstream& stream, uint64_t value)
{
    writeLittleEndian<8>(stream, value);
}

uint32_t BwfMetadataWriter::readUint32LE(std::ifstream& stream)
{
    return readFourBytes(stream);
}
uint32_t BwfMetadataWriter::readUint32LE(std::fstream& stream)
{
    return readFourBytes(stream);
}
