#include "core/ChunkList.h"

#include "core/LittleEndian.h"

#include <algorithm>
#include <cstring>
#include <optional>

namespace {

constexpr uint32_t kPlaceholder = 0xFFFFFFFF; // A size that stands in `ds64`.
constexpr size_t kIdBytes = 4;
constexpr size_t kFileHeaderBytes = 12;

// `ds64`: size of the file, size of the audio, number of samples, eight bytes each; then a table of further sizes.
constexpr size_t kTableCountOffset = 24;
constexpr size_t kTableOffset = 28;
constexpr size_t kTableEntryBytes = 12;
constexpr size_t kMostTableEntries = 64; // Chunks beyond 4 GiB besides the audio are next to none.

class LargeSizes {
public:
    void take(std::string_view payload)
    {
        if (payload.size() >= 2 * sizeof(uint64_t))
            entries.push_back({ "data", littleEndian64(payload.data() + sizeof(uint64_t)) });
        if (payload.size() < kTableOffset)
            return;
        const uint64_t claimed = littleEndian32(payload.data() + kTableCountOffset);
        const uint64_t present = (payload.size() - kTableOffset) / kTableEntryBytes;
        for (size_t i = 0; i < std::min(claimed, present); ++i) {
            const char* const entry = payload.data() + kTableOffset + i * kTableEntryBytes;
            entries.push_back({ std::string(entry, kIdBytes), littleEndian64(entry + kIdBytes) });
        }
    }

    std::optional<uint64_t> of(std::string_view id) const
    {
        for (const Entry& entry : entries) {
            if (entry.id == id)
                return entry.size;
        }
        return std::nullopt;
    }

private:
    struct Entry {
        std::string id;
        uint64_t size = 0;
    };
    std::vector<Entry> entries;
};

class Listing {
public:
    Listing(std::istream& usedStream, ChunkWalk& usedBlocks) : stream(usedStream), blocks(usedBlocks) { }

    ChunkList list()
    {
        const std::string header = read(0, kFileHeaderBytes);
        result.fileId = header.substr(0, kIdBytes);
        hasLargeSizes = result.fileId == "RF64" || result.fileId == "BW64";
        const bool hasForm = std::string_view(header).substr(std::min(header.size(), 2 * kIdBytes)) == "WAVE";
        result.isWave = hasForm && (hasLargeSizes || result.fileId == "RIFF");
        while (result.isWave && takeChunk()) { }
        return std::move(result);
    }

private:
    std::string read(uint64_t offset, uint64_t count)
    {
        std::string bytes(static_cast<size_t>(blocks.available(offset, count)), '\0');
        if (!bytes.empty()) // No block holds nothing.
            bytes.resize(blocks.read(stream, offset, bytes.data(), bytes.size()));
        return bytes;
    }

    bool takeChunk()
    {
        std::string header = read(position, ChunkWalk::kHeaderBytes);
        if (header.size() < kIdBytes)
            return false;
        if (result.chunks.size() == ChunkList::kMostChunks) {
            result.isCut = true;
            return false;
        }
        header.resize(ChunkWalk::kHeaderBytes);
        ChunkList::Chunk chunk;
        std::memcpy(chunk.id.data(), header.data(), kIdBytes);
        chunk.offset = position;
        const uint32_t size = littleEndian32(header.data() + kIdBytes);
        chunk.size = size;
        if (const auto large = size == kPlaceholder ? sizes.of({ header.data(), kIdBytes }) : std::nullopt) {
            chunk.size = *large;
            chunk.isLarge = true;
        }
        if (hasLargeSizes && chunk.is("ds64") && result.find("ds64") == nullptr)
            sizes.take(
                read(chunk.payload(), std::min<uint64_t>(size, kTableOffset + kMostTableEntries * kTableEntryBytes)));
        result.chunks.push_back(chunk);
        return stepOver(chunk);
    }

    // A size of 32 bits steps as ChunkWalk does, so that the list shows what the reader sees.
    bool stepOver(const ChunkList::Chunk& chunk)
    {
        const auto size = static_cast<uint32_t>(chunk.size);
        const uint64_t step = chunk.isLarge ? chunk.size : uint64_t{ size + size % 2 };
        if (blocks.available(chunk.payload(), step) < step)
            return false;
        position = chunk.payload() + step + (chunk.isLarge ? step % 2 : 0);
        return true;
    }

    std::istream& stream;
    ChunkWalk& blocks;
    ChunkList result;
    LargeSizes sizes;
    bool hasLargeSizes = false;
    uint64_t position = ChunkWalk::kFirstChunk;
};

} // namespace

const ChunkList::Chunk* ChunkList::find(std::string_view id) const
{
    const auto found = std::find_if(chunks.begin(), chunks.end(), [id](const Chunk& chunk) { return chunk.is(id); });
    return found == chunks.end() ? nullptr : &*found;
}

ChunkList readChunkList(std::istream& stream, ChunkWalk& blocks)
{
    return Listing(stream, blocks).list();
}
