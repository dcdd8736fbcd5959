#include "core/BwfMetadataWriter.h"

#include "core/BextLayout.h"
#include "core/BwfMetadata.h"
#include "core/BwfMetadataReader.h"
#include "core/CantarMetadataParser.h"
#include "core/ChunkIndex.h"
#include "core/LittleEndian.h"
#include "core/MetadataStream.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string_view>
#include <vector>

namespace {

constexpr double kDefaultFrameRate = 24.0; // For the rate line of a Description whose file tells no rate.

// Which steps a save needs: the difference between what is wanted and what the file holds.
struct Changes {
    bool timeReference = false;
    bool bext = false;
    bool ixml = false;
    bool tracks = false;

    bool any() const { return timeReference || bext || ixml || tracks; }
};

// An empty text stands for "leave it as it is".
bool textChanged(const std::string& updated, const std::string& current)
{
    return !updated.empty() && updated != current;
}

// Entries that only the file has do not count, and neither does the channel number.
bool anyTrackChanged(const std::vector<BwfTrack>& updated, const std::vector<BwfTrack>& current)
{
    if (updated.size() > current.size())
        return true;
    return !std::equal(updated.begin(), updated.end(), current.begin(),
        [](const BwfTrack& a, const BwfTrack& b) { return a.name == b.name && a.function == b.function; });
}

Changes changesBetween(const BwfMetadata& current, const BwfMetadata& updated)
{
    const bool sharedText = textChanged(updated.note, current.note) || textChanged(updated.scene, current.scene)
        || textChanged(updated.tape, current.tape) || textChanged(updated.take, current.take)
        || textChanged(updated.project, current.project);

    Changes changes;
    changes.timeReference = updated.timeReference != 0 && updated.timeReference != current.timeReference;
    // User bits go to the Description only, the two flags and the tracks to the iXML only.
    changes.bext = sharedText || textChanged(updated.ubits, current.ubits);
    changes.ixml = sharedText || updated.circled != current.circled || updated.wildTrack != current.wildTrack;
    changes.tracks = anyTrackChanged(updated.tracks, current.tracks);
    return changes;
}

// The Description that the file gets. What the old one said stays where it is not changed, even if the iXML says
// otherwise; what the parser doesn't know is lost. The rate is the file's, never the wanted record's.
std::string descriptionFor(const BwfMetadata& current, const BwfMetadata& updated)
{
    CantarMetadata wanted;
    if (!current.description.empty())
        wanted = CantarMetadataParser::parseDescription(current.description);

    const auto overlay = [](std::string& field, const std::string& newValue, const std::string& oldValue) {
        if (textChanged(newValue, oldValue))
            field = newValue;
    };
    overlay(wanted.scene, updated.scene, current.scene);
    overlay(wanted.tape, updated.tape, current.tape);
    overlay(wanted.take, updated.take, current.take);
    overlay(wanted.note, updated.note, current.note);
    overlay(wanted.ubits, updated.ubits, current.ubits);
    overlay(wanted.tag, updated.project, current.project); // The tag line carries the project.

    const double rate = current.frameRate > 0.0 ? current.frameRate : kDefaultFrameRate;
    return CantarMetadataParser::buildDescription(wanted, rate);
}

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
    const std::string text = descriptionFor(current, updated);
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
    const Changes changes = changesBetween(current, updated);
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
