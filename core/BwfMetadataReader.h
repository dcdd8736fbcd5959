#pragma once

#include "core/BwfMetadata.h"

#include <cstdint>
#include <iosfwd>
#include <optional>
#include <string>
#include <string_view>

class ChunkIndex;

/// Reads what a Broadcast WAV file, RIFF or RF64, says about itself. The audio is stepped over.
/// Nothing that stands in a file is an error: what is found is filled in, the rest stays as it is. Paths and texts are
/// bytes, taken to be UTF-8 elsewhere. No state, any thread; all calls block.
class BwfMetadataReader {
public:
    BwfMetadataReader() = delete;

    /// All that the file at `path` says: the next three calls in their order, on an empty record.
    /// Throws std::filesystem::filesystem_error if there is no such file or it can't be examined.
    static BwfMetadata readMetadata(const std::string& path);

    /// The same for somebody who is going to write: nothing if the file could not be read for what it is, be it that it
    /// can't be opened, that a read is an error, or that a read gives less than the file has by its size. The end of
    /// the file inside a chunk is none of these. Throws as `readMetadata`.
    static std::optional<BwfMetadata> readMetadataWhole(const std::string& path);

    /// The same through `opened`, an unfailed stream on the file at `path`, for somebody who goes on with it. It may be
    /// failed afterwards. Throws as `readMetadata`.
    static std::optional<BwfMetadata> readMetadataWhole(const std::string& path, std::istream& opened);

    /// Fills in name, size, audio format, duration and whether the file is RF64.
    /// Throws as `readMetadata`. A file that can't be opened or is no WAV file leaves the rest of the record as it is.
    static void readFileInfo(const std::string& path, BwfMetadata& record);

    /// Fills in the `bext` fields and a valid time reference. The record stays as it is if the file is missing, can't
    /// be opened, is no WAV file or has no such chunk; fields that the end of the file cuts come out empty or 0.
    static void readBextChunk(const std::string& path, BwfMetadata& record);

    /// Finds the `iXML` chunk and hands its text to `parseIxml`. The record stays as it is if the file is missing,
    /// can't be opened, is no WAV file or has no such chunk: then the Description isn't looked at either.
    static void readIxmlChunk(const std::string& path, BwfMetadata& record);

    /// Fills in the production fields, the timecode values and the track list from iXML text, then what is still
    /// missing from the record's own `description`. `text` may hold NUL bytes. An element that is missing or makes
    /// no sense leaves its field alone.
    static void parseIxml(std::string_view text, BwfMetadata& record);

    /// Walks from the first chunk to the first one called `id` (four bytes, case matters) and leaves the stream at its
    /// payload. `size` is the payload's size as the file gives it, `position` its offset cut to 32 bits.
    /// False if there is none; the stream is then failed, the outputs are untouched, and since nothing clears it
    /// every later search on it is false, too. A chunk whose size field the file cuts counts as found on a failed
    /// stream.
    static bool findChunk(std::istream& stream, std::string_view id, uint32_t& size, uint32_t& position);

    /// Little-endian numbers from the stream's position. Bytes that the stream doesn't deliver count as 0.
    static uint16_t readUint16LE(std::istream& stream);
    static uint32_t readUint32LE(std::istream& stream);
    static uint64_t readUint64LE(std::istream& stream);

private:
    // All three into an empty record. False if they could not read the file whole.
    static bool readSteps(const std::string& path, BwfMetadata& record);
    // The same with what the steps of one file share: a closed stream, and the chunks that have been met.
    // False if the file can't be opened.
    static bool readFileInfo(const std::string& path, BwfMetadata& record, std::ifstream& stream, ChunkIndex& chunks);
    static bool readBextChunk(const std::string& path, BwfMetadata& record, std::ifstream& stream, ChunkIndex& chunks);
    static bool readIxmlChunk(const std::string& path, BwfMetadata& record, std::ifstream& stream, ChunkIndex& chunks);
    // The same on an open file whose name and size the record has.
    static void takeFileInfo(std::istream& stream, BwfMetadata& record, ChunkIndex& chunks);
    static void takeBextChunk(std::istream& stream, BwfMetadata& record, ChunkIndex& chunks);
    static void takeIxmlChunk(std::istream& stream, BwfMetadata& record, ChunkIndex& chunks);
};
