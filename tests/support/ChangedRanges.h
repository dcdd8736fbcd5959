#pragma once

#include <cstdint>
#include <iosfwd>
#include <string>
#include <string_view>
#include <vector>

/// Bytes of a file from `begin` up to, not including, `end`.
struct ByteRange {
    uint64_t begin = 0;
    uint64_t end = 0;

    bool operator==(const ByteRange&) const = default;
};
std::ostream& operator<<(std::ostream& out, const ByteRange& range);

/// What a test expects to find at a place of the file after the write.
struct Patch {
    uint64_t offset = 0;
    std::string bytes;
};

/// A chunk as it stands in the file: where its header begins and what its size field says.
struct ChunkPlace {
    std::string id;
    uint64_t offset = 0;
    uint32_t size = 0;

    bool operator==(const ChunkPlace&) const = default;
};

/// The longest runs of bytes that differ, in order. Bytes that only one of the two has count as different.
std::vector<ByteRange> changedRanges(std::string_view before, std::string_view after);

/// The chunks from offset 12 on, by a walk of its own that knows the `ds64` size of an RF64 file's `data`. Ends
/// where the file does; bad sizes end it early.
std::vector<ChunkPlace> chunkList(std::string_view file);

/// The whole payload of the first `data` chunk, as far as the file holds it; empty if there is none.
std::string dataPayload(std::string_view file);

/// A WAV file as it was before a write, and the proofs about what the write did to it. Each proof checks, besides
/// what its name says, that the file's length, the chunk list and the whole `data` payload are what they were, and
/// that nothing else stands in the file's folder. A proof answers with the empty text, or with what is wrong.
/// Keeps the file in memory twice; not for files past some 100 MB.
class FileProof {
public:
    /// Reads the file and sets its modification time back by an hour: clocks of file systems tick coarsely, and a
    /// write in the same tick must show. Throws std::filesystem::filesystem_error when the file is missing.
    explicit FileProof(const std::string& path);

    /// No byte and no time stamp has changed since.
    std::string untouched() const;
    /// Exactly these runs of bytes have changed, no more and no less.
    std::string changedExactly(const std::vector<ByteRange>& ranges) const;
    /// The file is the old one with these bytes in these places, whether they differ from the old ones or not.
    std::string patchedExactly(const std::vector<Patch>& patches) const;
    /// Something has changed in each of these ranges, and nothing outside them.
    std::string changedWithin(const std::vector<ByteRange>& ranges) const;
    /// Whatever has changed lies in these ranges.
    std::string unchangedOutside(const std::vector<ByteRange>& ranges) const;

    /// The file as it was.
    const std::string& before() const { return bytes; }

private:
    std::string frameKept(const std::string& after) const;

    std::string file;
    std::string bytes;
    int64_t modified = 0; // Nanoseconds.
    std::vector<std::string> neighbours;
};
