#pragma once

#include "core/BwfMetadata.h"
#include "core/ChunkList.h"
#include "core/FrameTimecode.h"

#include <cstdint>
#include <optional>
#include <string>

/// What a command knows of one file. A plain value; texts are bytes of the file.
struct FileFacts {
    /// As the command line gave it.
    std::string path;
    /// What the window shows.
    BwfMetadata record;
    /// All chunks, those behind the audio of an RF64 file too.
    ChunkList chunks;
    /// Format code of `fmt `: 1 integer PCM, 3 floating point. Nothing without the chunk.
    std::optional<uint16_t> formatTag;
    /// Bytes of a sample frame by `fmt `; nothing without the chunk.
    std::optional<uint16_t> blockAlign;
    /// The rate of the timecode as a fraction; nothing if the file names none that makes sense.
    std::optional<FrameRate> frameRate;
    /// Samples per second in which the start counts exactly: what the file says itself, else the rate of the audio.
    /// Differs from the record's rate where that is derived. 0 means unknown.
    uint32_t startSampleRate = 0;
    /// Labels leave out numbers.
    bool dropFrame = false;

    /// "riff", "rf64" or "bw64".
    std::string container() const;
    /// The first `data` chunk; null if there is none. Valid as long as this object.
    const ChunkList::Chunk* data() const { return chunks.find("data"); }
    /// Sample frames of the audio as declared; nothing without `data` or `fmt `.
    std::optional<uint64_t> frameCount() const;
    /// The start as the frame since midnight; nothing if the file names no start, no rate or no frame rate. 0 samples
    /// are midnight where the file has a `bext`.
    std::optional<uint64_t> startFrame() const;
    /// Its label; empty where `startFrame` is nothing.
    std::string startLabel() const;
    /// The label of the frame behind the last one; empty where the start or the length is unknown.
    std::string endLabel() const;
};

/// Reads them. Throws FileError if the file isn't there, can't be opened, is no regular file or no WAV file, and
/// std::filesystem::filesystem_error if it vanishes meanwhile. Thread: any; blocks.
FileFacts readFileFacts(const std::string& path);

/// Bytes at the end of an iXML payload that hold nothing: blanks, tabs, line ends and NULs behind the last ">".
/// 0 if something else stands there. Throws as `readFileFacts`.
uint64_t freeBytesOf(const std::string& path, const ChunkList::Chunk& ixml);
