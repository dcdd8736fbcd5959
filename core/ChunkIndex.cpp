#include "core/ChunkIndex.h"

#include <algorithm>

namespace {

constexpr size_t kIdBytes = 4;
constexpr size_t kFormTypeOffset = 8;

// In the order of ChunkIndex::Id.
constexpr std::array<std::string_view, 5> kNames{ "data", "ds64", "fmt ", "bext", "iXML" };

} // namespace

bool ChunkIndex::begin(std::istream& stream, std::optional<uint64_t> fileBytes)
{
    if (!walk)
        walk = fileBytes ? ChunkWalk(*fileBytes) : ChunkWalk(stream);
    if (!headerRead) {
        headerRead = true;
        fileIdBytes = std::min(walk->read(stream, 0, fileHeader.data(), fileHeader.size()), kIdBytes);
    }
    return isWave();
}

bool ChunkIndex::isWave() const
{
    const std::string_view formType(fileHeader.data() + kFormTypeOffset, kIdBytes);
    return (fileId() == "RIFF" || fileId() == "RF64") && formType == "WAVE";
}

void ChunkIndex::note(const ChunkWalk::Header& header)
{
    static_assert(kNames.size() == kIds);
    for (size_t id = 0; id < kIds; ++id) {
        if (!first[id] && header.is(kNames[id]))
            first[id] = header;
    }
}

std::optional<ChunkWalk::Header> ChunkIndex::find(std::istream& stream, Id id)
{
    if (!stream)
        return std::nullopt;
    if (!walk)
        walk.emplace(stream);
    std::optional<ChunkWalk::Header>& wanted = first[static_cast<size_t>(id)];
    ChunkWalk::Header header;
    while (!wanted && walk->next(stream, header))
        note(header);
    // Met on another stream, a header that the file cuts has failed that one alone.
    if (wanted && walk->available(wanted->offset, ChunkWalk::kHeaderBytes) < ChunkWalk::kHeaderBytes) {
        char cut[ChunkWalk::kHeaderBytes];
        walk->read(stream, wanted->offset, cut, sizeof cut);
    }
    return wanted;
}

size_t ChunkIndex::read(std::istream& stream, uint64_t offset, char* target, size_t count)
{
    return walk->read(stream, offset, target, count);
}

uint64_t ChunkIndex::available(uint64_t offset, uint64_t count) const
{
    return walk->available(offset, count);
}
