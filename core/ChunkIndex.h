#pragma once

#include "core/ChunkWalk.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <istream>
#include <optional>
#include <string_view>

/// The chunks of one file that reading and saving ask for, as far as they have been met. The steps of one read or one
/// save share an index, so that each header is visited once; each step finds what a walk of its own from the first
/// chunk would have found.
///
/// 1. Nothing is remembered of a stream but the file's bytes, so each step may come with a stream of its own.
/// 2. What stands in the index is the file as it was: whoever overwrites bytes in which the walk may have met headers
///    calls `forget`.
/// 3. The stream is never cleared. A search that ran off the end fails every later one on the same stream.
class ChunkIndex {
public:
    enum class Id : uint8_t { Data, Ds64, Format, Bext, Ixml };

    /// Reads the file's header, once for all streams. The stream is asked for the file's size in bytes unless it is
    /// given. True if the header is "RIFF" or "RF64" with the form type "WAVE". A search needs no `begin`.
    bool begin(std::istream& stream, std::optional<uint64_t> fileBytes = std::nullopt);
    /// The file's first four bytes; fewer if there are fewer. Empty before `begin`.
    std::string_view fileId() const { return { fileHeader.data(), fileIdBytes }; }

    /// The header of the first chunk of that name, wherever it stands. Nothing if there is none or the stream had
    /// failed; the stream is failed then. A chunk whose size field the file cuts is found, but fails the stream.
    /// Where the stream stands afterwards is open.
    std::optional<ChunkWalk::Header> find(std::istream& stream, Id id);

    /// Makes the index as it was at first: all that is asked for after this comes from the file anew.
    void forget() { *this = ChunkIndex(); }

    /// As ChunkWalk::read. Only after `begin` or `find`.
    size_t read(std::istream& stream, uint64_t offset, char* target, size_t count);
    /// As ChunkWalk::available. Only after `begin` or `find`.
    uint64_t available(uint64_t offset, uint64_t count) const;

    /// As ChunkWalk::brokeOff. False before `begin` and `find`.
    bool brokeOff() const { return walk && walk->brokeOff(); }

private:
    static constexpr size_t kIds = 5;

    void note(const ChunkWalk::Header& header);
    bool isWave() const;

    std::optional<ChunkWalk> walk;
    std::array<char, 12> fileHeader{};
    bool headerRead = false;
    size_t fileIdBytes = 0;
    std::array<std::optional<ChunkWalk::Header>, kIds> first; // Of each id; nothing if it has not been met.
};
