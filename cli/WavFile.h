#pragma once

#include "core/ChunkList.h"
#include "core/MetadataStream.h"

#include <cstdint>
#include <fstream>
#include <optional>
#include <string>

/// A WAV file that is open for reading, with the list of its chunks. Thread: one at a time; blocks.
class WavFile {
public:
    /// Opens it. Throws FileError if there is no such file, it can't be opened, is no regular file or no WAV file.
    explicit WavFile(const std::string& path);

    const ChunkList& chunks() const { return list; }
    /// Bytes of the file from `offset` on, at most `count`.
    uint64_t available(uint64_t offset, uint64_t count) const { return blocks->available(offset, count); }
    /// The bytes from `offset` on, at most `count`; fewer where the file ends or can't be read.
    std::string read(uint64_t offset, uint64_t count);
    /// As ChunkWalk::read, into the caller's own memory: for what is read in large pieces.
    size_t read(uint64_t offset, char* target, size_t count);

private:
    static const std::string& regular(const std::string& path);

    std::ifstream stream;
    std::optional<OpenedFile> opened;
    std::optional<ChunkWalk> blocks;
    ChunkList list;
};
