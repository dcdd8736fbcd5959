#include "core/ChunkWalk.h"

#include "core/LittleEndian.h"
#include "core/MetadataStream.h"

#include <algorithm>
#include <cstring>

namespace {

// Holds what stands in front of the audio in most files, a padded iXML of 5 KB included.
constexpr size_t kFirstBlockBytes = 8192;
// Behind a jump mostly one header is wanted.
constexpr size_t kSmallBlockBytes = 512;
// Where headers follow each other closely, blocks double up to this; it still fits into the processor's cache.
constexpr size_t kLargeBlockBytes = size_t{ 256 } * 1024;

uint64_t wordAt(const char* bytes)
{
    uint64_t word = 0;
    std::memcpy(&word, bytes, sizeof word);
    return word;
}

bool isZero(const char* bytes, size_t words)
{
    uint64_t sum = 0;
    for (size_t i = 0; i < words; ++i)
        sum |= wordAt(bytes + i * sizeof sum);
    return sum == 0;
}

} // namespace

ChunkWalk::ChunkWalk(uint64_t fileBytes) : fileEnd(fileBytes) { }

ChunkWalk::ChunkWalk(std::istream& stream) : fileEnd(streamBytes(stream)) { }

bool ChunkWalk::next(std::istream& stream, Header& header)
{
    char bytes[kHeaderBytes] = {};
    if (read(stream, position, bytes, kHeaderBytes) < sizeof header.id)
        return false;
    std::memcpy(header.id, bytes, sizeof header.id);
    header.size = littleEndian32(bytes + sizeof header.id);
    header.offset = position;
    position = header.payload() + header.step();
    if (isZero(bytes, 1))
        skipEmptyChunks();
    return true;
}

std::optional<ChunkWalk::Header> ChunkWalk::find(std::istream& stream, std::string_view id)
{
    Header header;
    while (next(stream, header)) {
        if (header.is(id))
            return header;
    }
    return std::nullopt;
}

// Digital silence reads as one empty chunk without an id after the other. Whoever did not want the first of them wants
// none, so those that lie in the block are passed by together.
void ChunkWalk::skipEmptyChunks()
{
    constexpr size_t kWords = 8;
    constexpr size_t kStride = kWords * kHeaderBytes;
    const Block& block = later.holds(position, 0) ? later : head;
    if (!block.holds(position, 0))
        return;
    const char* at = block.bytes.get() + (position - block.begin);
    const char* const end = block.bytes.get() + block.size;
    while (end - at >= static_cast<ptrdiff_t>(kStride) && isZero(at, kWords))
        at += kStride;
    while (end - at >= static_cast<ptrdiff_t>(kHeaderBytes) && isZero(at, 1))
        at += kHeaderBytes;
    position = block.end() - static_cast<uint64_t>(end - at);
}

size_t ChunkWalk::read(std::istream& stream, uint64_t offset, char* target, size_t count)
{
    if (!stream || count == 0) // A block behind the end of the file has no memory to copy nothing from.
        return 0;
    if (available(offset, count) == count) {
        if (const Block* block = blockWith(stream, offset, count)) {
            std::memcpy(target, block->bytes.get() + (offset - block->begin), count);
            return count;
        }
    }
    return fetch(stream, offset, target, count);
}

// A seek that fails leaves the stream failed in front of the end of the file, as an error in the read does.
size_t ChunkWalk::fetch(std::istream& stream, uint64_t offset, char* target, size_t count)
{
    stream.seekg(static_cast<std::streamoff>(offset));
    stream.read(target, static_cast<std::streamsize>(count));
    const size_t arrived = stream.bad() ? 0 : static_cast<size_t>(stream.gcount());
    const bool endedInError = stream.fail() && !stream.eof();
    broken = broken || endedInError || arrived < available(offset, count);
    return arrived;
}

uint64_t ChunkWalk::available(uint64_t offset, uint64_t count) const
{
    return offset < fileEnd ? std::min(count, fileEnd - offset) : 0;
}

// A block that holds `count` bytes from `offset` on, read if need be. Null if they are too many for a block or did not
// arrive whole.
const ChunkWalk::Block* ChunkWalk::blockWith(std::istream& stream, uint64_t offset, size_t count)
{
    if (head.holds(offset, count))
        return &head;
    if (later.holds(offset, count))
        return &later;
    const size_t wanted = blockBytesAt(offset);
    if (count > wanted)
        return nullptr;
    Block& block = head.capacity == 0 ? head : later;
    const auto held = static_cast<size_t>(available(offset, wanted));
    block.reserve(held);
    block.begin = offset;
    block.size = fetch(stream, offset, block.bytes.get(), held);
    return block.holds(offset, count) ? &block : nullptr;
}

size_t ChunkWalk::blockBytesAt(uint64_t offset) const
{
    if (head.capacity == 0)
        return kFirstBlockBytes;
    const Block& last = later.size != 0 ? later : head;
    const bool close = last.size != 0 && last.holds(offset, 0);
    return close ? std::clamp(last.size * 2, kSmallBlockBytes, kLargeBlockBytes) : kSmallBlockBytes;
}

void ChunkWalk::Block::reserve(size_t count)
{
    if (count <= capacity)
        return;
    bytes = std::make_unique_for_overwrite<char[]>(count);
    capacity = count;
}
