#include "core/ChunkMap.h"

#include <algorithm>

namespace {

constexpr std::size_t kIdBytes = 4;
constexpr std::size_t kFormTypeOffset = 8;

} // namespace

bool ChunkMap::begin(std::istream& stream, std::optional<uint64_t> fileBytes)
{
    if (!walk) {
        walk = fileBytes ? ChunkWalk(*fileBytes) : ChunkWalk(stream);
        fileIdBytes = std::min(walk->read(stream, 0, fileHeader.data(), fileHeader.size()), kIdBytes);
    }
    return isWave();
}

bool ChunkMap::isWave() const
{
    const std::string_view formType(fileHeader.data() + kFormTypeOffset, kIdBytes);
    return (fileId() == "RIFF" || fileId() == "RF64") && formType == "WAVE";
}

std::optional<ChunkMap::Chunk> ChunkMap::find(std::istream& stream, std::string_view id)
{
    Entry* const wanted = entryOf(id);
    if (!stream || !wanted)
        return std::nullopt;
    ChunkWalk::Header header;
    while (!wanted->met && walk->next(stream, header)) {
        Entry* const known = entryOf({ header.id, sizeof header.id });
        if (known && !known->met)
            *known = { true, header };
    }
    if (!wanted->met)
        return std::nullopt;
    const uint64_t payload = wanted->header.offset + ChunkWalk::kHeaderBytes;
    if (walk->available(wanted->header.offset, ChunkWalk::kHeaderBytes) < ChunkWalk::kHeaderBytes) {
        char cut[ChunkWalk::kHeaderBytes];
        walk->read(stream, wanted->header.offset, cut, sizeof cut);
    }
    return Chunk{ wanted->header.size, static_cast<uint32_t>(payload) };
}

std::size_t ChunkMap::read(std::istream& stream, uint64_t offset, char* target, std::size_t count)
{
    return walk->read(stream, offset, target, count);
}

uint64_t ChunkMap::available(uint64_t offset, uint64_t count) const
{
    return walk->available(offset, count);
}

ChunkMap::Entry* ChunkMap::entryOf(std::string_view id)
{
    for (std::size_t i = 0; i < kKnownIds.size(); ++i) {
        if (kKnownIds[i] == id)
            return &entries[i];
    }
    return nullptr;
}
