#include "core/BwfMetadataWriter.h"

#include "core/BextLayout.h"
#include "core/BwfMetadata.h"
#include "core/BwfMetadataReader.h"
#include "core/ChunkIndex.h"
#include "core/LittleEndian.h"
#include "core/MetadataChanges.h"
#include "core/MetadataStream.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string_view>
#include <vector>

namespace {

// Bytes of the file from `position` on; 0 past its end or on a failed stream.
uint64_t bytesFrom(std::fstream& stream, uint64_t position)
{
    const uint64_t size = streamBytes(stream);
    return size > position ? size - position : 0;
}

// Overwrites what lies inside the file and drops the rest: a `bext` payload shorter than its fields is not
// guarded against otherwise, but the file must never grow.
void overwrite(std::fstream& stream, uint64_t position, std::string_view bytes)
{
    const uint64_t room = bytesFrom(stream, position);
    stream.seekp(static_cast<std::streamoff>(position));
    stream.write(bytes.data(), static_cast<std::streamsize>(std::min<uint64_t>(room, bytes.size())));
}

// A text field of `size` bytes that always ends in at least one NUL.
std::string textField(const std::string& text, size_t size)
{
    std::string field = size == 0 ? std::string() : text.substr(0, size - 1);
    field.resize(size, '\0');
    return field;
}

template <size_t Width> void writeLittleEndian(std::ostream& stream, uint64_t value)
{
    const std::array<char, Width> bytes = littleEndianBytes<Width>(value);
    stream.write(bytes.data(), Width);
}

// A chunk's payload as the writer holds it, with the stream at its first byte.
struct Payload {
    uint32_t position = 0;
    uint32_t size = 0;
};

// A position is held in 32 bits. One that does not fit must not be cut to them here: the cut position is some other
// place of the same file, mostly audio, and would be written over. So a chunk behind the first 4 GiB counts as not
// found, with all that follows from it: the stream fails as if the search had run off the end.
std::optional<Payload> standAtPayload(std::istream& stream, const std::optional<ChunkWalk::Header>& header)
{
    if (!header)
        return std::nullopt;
    if (header->payload() > UINT32_MAX) {
        stream.setstate(std::ios::failbit);
        return std::nullopt;
    }
    stream.seekg(static_cast<std::streamoff>(header->payload()));
    return Payload{ static_cast<uint32_t>(header->payload()), header->size };
}

bool findFirst(std::istream& stream, std::string_view id, uint32_t& size, uint32_t& position)
{
    const std::optional<Payload> found = standAtPayload(stream, ChunkWalk(stream).find(stream, id));
    if (!found)
        return false;
    size = found->size;
    position = found->position;
    return true;
}

// Where the walk goes on inside the fields that are written, the headers there may be others by now.
void forgetOverwritten(ChunkIndex& chunks, const ChunkWalk::Header& bext)
{
    if (bext.step() < BextLayout::kTimeReference.end())
        chunks.forget();
}

bool saveDescription(std::fstream& file, ChunkIndex& chunks, const BwfMetadata& current, const BwfMetadata& updated)
{
    const auto bext = chunks.find(file, ChunkIndex::Id::Bext);
    const auto payload = standAtPayload(file, bext);
    if (!payload)
        return false;
    const std::string text = editedDescription(current, updated);
    const bool saved = BwfMetadataWriter::updateBextDescription(file, payload->position, text);
    forgetOverwritten(chunks, *bext);
    return saved;
}

bool saveTimeReference(std::fstream& file, ChunkIndex& chunks, uint64_t timeReference)
{
    const auto bext = chunks.find(file, ChunkIndex::Id::Bext);
    const auto payload = standAtPayload(file, bext);
    if (!payload)
        return false;
    const bool saved = BwfMetadataWriter::updateBextTimeReference(file, payload->position, timeReference);
    forgetOverwritten(chunks, *bext);
    return saved;
}

bool saveIxml(std::fstream& file, ChunkIndex& chunks, const BwfMetadata& current, const BwfMetadata& updated)
{
    const auto payload = standAtPayload(file, chunks.find(file, ChunkIndex::Id::Ixml));
    return payload && BwfMetadataWriter::updateIxmlFields(file, payload->position, payload->size, current, updated);
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
    ChunkIndex chunks;
    const bool descriptionSaved = changes.bext && saveDescription(file, chunks, current, updated);
    const bool timeReferenceSaved = changes.timeReference && saveTimeReference(file, chunks, updated.timeReference);
    const bool ixmlSaved = (changes.ixml || changes.tracks) && saveIxml(file, chunks, current, updated);
    file.close();
    return descriptionSaved || timeReferenceSaved || ixmlSaved;
}

bool BwfMetadataWriter::findChunk(std::ifstream& stream, std::string_view id, uint32_t& size, uint32_t& position)
{
    return findFirst(stream, id, size, position);
}

bool BwfMetadataWriter::findChunk(std::fstream& stream, std::string_view id, uint32_t& size, uint32_t& position)
{
    return findFirst(stream, id, size, position);
}

bool BwfMetadataWriter::updateBextDescription(std::fstream& stream, uint32_t position, const std::string& text)
{
    constexpr BextLayout::Field kField = BextLayout::kDescription;
    static_assert(kField.offset == 0);
    if (bytesFrom(stream, position) >= kField.size)
        writeString(stream, text, kField.size, position);
    else
        overwrite(stream, position, textField(text, kField.size));
    return true;
}

bool BwfMetadataWriter::updateBextTimeReference(std::fstream& stream, uint32_t position, uint64_t value)
{
    constexpr BextLayout::Field kField = BextLayout::kTimeReference;
    const std::array<char, kField.size> bytes = littleEndianBytes<kField.size>(value);
    overwrite(stream, uint64_t{ position } + kField.offset, { bytes.data(), bytes.size() });
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
    return BwfMetadataReader::readUint32LE(stream);
}
uint32_t BwfMetadataWriter::readUint32LE(std::fstream& stream)
{
    return BwfMetadataReader::readUint32LE(stream);
}
