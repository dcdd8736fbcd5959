#pragma once

#include "core/ChunkWalk.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <istream>
#include <string>
#include <string_view>
#include <vector>

/// All chunks of a file, the audio of an RF64 file stepped over by its `ds64`. A plain value.
///
/// ChunkWalk, which the reader and the writer use, knows sizes of 32 bits alone: in an RF64 file its walk goes on
/// inside the audio. This list is for looking at files, not for finding what shall be written.
struct ChunkList {
    struct Chunk {
        /// Four bytes; NULs where the file ends inside.
        std::array<char, 4> id{};
        /// Offset in the file of the id's first byte.
        uint64_t offset = 0;
        /// Payload bytes as the file declares them: those of `ds64` where it has the chunk, else those of the header.
        uint64_t size = 0;
        /// The size is one of `ds64`.
        bool isLarge = false;

        bool is(std::string_view fourBytes) const { return std::string_view(id.data(), id.size()) == fourBytes; }
        /// Offset in the file of the first payload byte.
        uint64_t payload() const { return offset + ChunkWalk::kHeaderBytes; }
    };

    /// Chunks that a list holds at most: a crafted file can have millions of empty ones.
    static constexpr size_t kMostChunks = 65536;

    /// The file's first four bytes; fewer if it has fewer.
    std::string fileId;
    /// The file begins with "RIFF", "RF64" or "BW64", and its form type is "WAVE".
    bool isWave = false;
    /// In their order; empty if the file is no WAV file.
    std::vector<Chunk> chunks;
    /// The list ends before the file does, since there are more than kMostChunks.
    bool isCut = false;

    /// The first chunk called `id`; null if there is none. Valid until the list changes.
    const Chunk* find(std::string_view id) const;
};

/// The chunks of the file under `stream`, through `blocks`, a fresh walk on the same file. Fewer where reading fails.
/// No allocation and no time beyond what the file holds, whatever it declares. Any thread; blocks.
ChunkList readChunkList(std::istream& stream, ChunkWalk& blocks);
