#pragma once

#include "core/ChunkWalk.h"

#include <array>
#include <cstdint>
#include <istream>
#include <optional>
#include <string>
#include <string_view>

/// The chunks of one file, as far as they have been met. Several steps that open the same file one after the other
/// share a map, so that each header is visited once; each step finds what a walk of its own would have found.
class ChunkMap {
public:
    struct Chunk {
        /// Payload size as the file gives it.
        uint32_t size = 0;
        /// Offset of the payload's first byte, cut to 32 bits.
        uint32_t position = 0;
    };

    /// Reads the file's header, once for all streams. The stream is asked for the file's size unless it is given.
    /// True if the header is "RIFF" or "RF64" with the form type "WAVE".
    bool begin(std::istream& stream, std::optional<uint64_t> fileBytes = std::nullopt);
    /// The file's first four bytes; fewer if there are fewer. Empty before `begin`.
    std::string_view fileId() const { return { fileHeader.data(), fileIdBytes }; }

    /// The first chunk called `id`, one of kKnownIds. Nothing if there is none or the stream had failed; the stream is
    /// failed then. A chunk whose size field the file cuts is found, but fails the stream.
    std::optional<Chunk> find(std::istream& stream, std::string_view id);

    /// As ChunkWalk::read.
    std::size_t read(std::istream& stream, uint64_t offset, char* target, std::size_t count);
    /// As ChunkWalk::available.
    uint64_t available(uint64_t offset, uint64_t count) const;

    /// As ChunkWalk::brokeOff. False before `begin`.
    bool brokeOff() const { return walk && walk->brokeOff(); }

    static constexpr std::array<std::string_view, 5> kKnownIds{ "data", "ds64", "fmt ", "bext", "iXML" };

private:
    struct Entry {
        bool met = false;
        ChunkWalk::Header header;
    };

    Entry* entryOf(std::string_view id);
    bool isWave() const;

    std::optional<ChunkWalk> walk;
    std::array<char, 12> fileHeader{};
    std::size_t fileIdBytes = 0;
    std::array<Entry, kKnownIds.size()> entries{};
};
