#pragma once

#include <cstddef>
#include <cstdint>
#include <istream>
#include <memory>
#include <optional>
#include <string_view>

/// Steps from chunk header to chunk header through a WAV file, out of a block buffer.
///
/// 1. The visits and their order are those of a walk that reads eight bytes and seeks by the chunk's size, plus one
///    when that is odd, in 32 bits: a size of 0xFFFFFFFF is a step of 0, and the walk goes on inside that chunk.
/// 2. Blocks are only read where the file holds them, so reading ahead never fails the stream. The stream fails when
///    a visit itself lies at or across the end of the file, and is never cleared.
/// 3. Nothing is remembered of a stream but the file's bytes, so a walk can go on with another stream on the same file.
class ChunkWalk {
public:
    struct Header {
        char id[4] = {};
        /// Payload size as the file gives it; bytes that the file no longer held count as 0.
        uint32_t size = 0;
        /// Offset in the file of the header's first byte.
        uint64_t offset = 0;

        /// Offset in the file of the payload's first byte.
        uint64_t payload() const { return offset + kHeaderBytes; }
        /// The same as the reader holds it, in 32 bits: behind the first 4 GiB it is some other place of the file.
        uint32_t payloadIn32Bits() const { return static_cast<uint32_t>(payload()); }
        /// Bytes from the payload to the next header, formed in 32 bits: the size 0xFFFFFFFF steps by 0.
        uint32_t step() const { return size + size % 2; }
        bool is(std::string_view fourBytes) const { return std::string_view(id, sizeof id) == fourBytes; }
    };

    /// Bytes of a chunk header: id and size.
    static constexpr uint32_t kHeaderBytes = 8;
    /// Offset of the first chunk, behind the file's header.
    static constexpr uint64_t kFirstChunk = 12;

    /// A walk through a file of `fileBytes` bytes, in front of the first chunk.
    explicit ChunkWalk(uint64_t fileBytes);
    /// The same for the file under `stream`, which is asked for its size. A failed stream has size 0. The stream is
    /// failed if its size can't be told.
    explicit ChunkWalk(std::istream& stream);

    /// The next header. False if the walk is over or the stream had failed before; the stream is failed then.
    /// True with a failed stream if the file ends inside the header's size field.
    bool next(std::istream& stream, Header& header);

    /// The next header called `id` (four bytes, case matters). Nothing, with the stream failed, if there is none.
    std::optional<Header> find(std::istream& stream, std::string_view id);

    /// Reads up to `count` bytes from `offset` into `target` and says how many there were. Fewer than `count` fail the
    /// stream; a failed stream gives none.
    size_t read(std::istream& stream, uint64_t offset, char* target, size_t count);

    /// Bytes of the file from `offset` on, at most `count`.
    uint64_t available(uint64_t offset, uint64_t count) const;

    /// True once a read was an error or gave less than the file holds, on any stream. The end of the file is neither.
    bool brokeOff() const { return broken; }

private:
    struct Block {
        std::unique_ptr<char[]> bytes;
        size_t capacity = 0;
        uint64_t begin = 0;
        size_t size = 0; // Bytes that hold the file from `begin` on.

        uint64_t end() const { return begin + size; }
        bool holds(uint64_t offset, uint64_t count) const { return offset >= begin && offset + count <= end(); }
        void reserve(size_t count); // What it held is lost if it grows.
    };

    size_t fetch(std::istream& stream, uint64_t offset, char* target, size_t count);
    const Block* blockWith(std::istream& stream, uint64_t offset, size_t count);
    size_t blockBytesAt(uint64_t offset) const;
    void skipEmptyChunks();

    uint64_t fileEnd = 0;
    bool broken = false;
    uint64_t position = kFirstChunk;
    Block head; // The first bytes that were read. They are kept, since most of what is wanted later stands there.
    Block later; // Whatever was read last behind them.
};
