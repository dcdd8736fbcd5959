#pragma once

#include <cstddef>
#include <cstdint>
#include <fstream>
#include <string>
#include <string_view>

struct BwfMetadata;

/// Brings the metadata of a Broadcast WAV file in line with a record of wanted values, in place.
///
/// 1. Only bytes inside the `bext` and `iXML` payloads that are already there are overwritten: Description,
///    TimeReference and the iXML text. Chunk ids, chunk sizes, `ds64` and the audio are never written, with the one
///    exception of a `bext` shorter than its own fields, which is written past its end into what follows.
/// 2. The file's length never changes: nothing is written at or past its end.
/// 3. No chunk is made, moved or resized, no other file is made, nothing is rolled back.
/// 4. The stream is never cleared. Once a search has run off the end of the file, every later one fails, so an
///    edit that needs `bext` in a file without it leaves the `iXML` chunk alone too.
///
/// Static operations without state. Any thread, as long as no two work on one file at a time; calls block until
/// they are done. Positions and sizes are bytes.
class BwfMetadataWriter {
public:
    BwfMetadataWriter() = delete;

    /// Writes what differs between `updated` and a fresh read of the file. An empty text or a `timeReference` of 0
    /// in `updated` means that the field stays; `circled` and `wildTrack` are always taken as values; tracks are
    /// compared by list position, name and function. True if at least one of the steps (Description,
    /// TimeReference, iXML) was carried out, or if there was nothing to do, in which case the file is not even
    /// opened for writing. False, with nothing written, if the file can't be read whole (see
    /// BwfMetadataReader::readMetadataWhole) or opened for writing; false if no step could be done. Write errors are
    /// not all seen. Throws std::filesystem::filesystem_error when the file is missing.
    [[nodiscard]] static bool writeMetadata(const std::string& path, const BwfMetadata& updated);

    /// Overwrites the 256 bytes of the Description at `position`, the first byte of the `bext` payload: at most
    /// 255 bytes of `text`, the rest NUL. The cut is blind to lines and to characters of several bytes. Bytes that
    /// would lie past the end of the file are left out. Always true, even if the stream has failed.
    static bool updateBextDescription(std::fstream& stream, uint32_t position, const std::string& text);

    /// Overwrites the eight bytes of TimeReference, samples since midnight, at offset 338 behind `position`.
    /// Bytes that would lie past the end of the file are left out. False if the stream has failed.
    static bool updateBextTimeReference(std::fstream& stream, uint32_t position, uint64_t value);

    /// Edits the iXML text of `size` bytes at `position` by what differs between `current` and `updated`, and
    /// writes it back into the same bytes, NUL up to `size`. Padding is part of the text, so any net growth fails.
    /// True if the chunk was written or there was nothing to write; false if the edited text doesn't fit, and
    /// then nothing is written. If the file ends inside the chunk, the stream is failed afterwards and nothing is
    /// written, whatever the result.
    static bool updateIxmlFields(
        std::fstream& stream, uint32_t position, uint32_t size, const BwfMetadata& current, const BwfMetadata& updated);

    /// Looks for the first chunk called `id` (four bytes, case matters) from offset 12 on. On success the stream
    /// stands at the payload. False if there is none or its payload begins behind the first 4 GiB; the stream is then
    /// failed for good and the outputs are untouched.
    static bool findChunk(std::ifstream& stream, std::string_view id, uint32_t& size, uint32_t& position);
    static bool findChunk(std::fstream& stream, std::string_view id, uint32_t& size, uint32_t& position);

    /// Writes a field of `fieldSize` bytes at `position`: at most `fieldSize` - 1 bytes of `text`, the rest NUL, so
    /// that at least one NUL ends it. A field of 0 bytes writes nothing. Errors stay on the stream.
    static void writeString(std::fstream& stream, const std::string& text, size_t fieldSize, uint32_t position);
    /// As above, at the place where the stream stands.
    static void writeString(std::ofstream& stream, const std::string& text, size_t fieldSize);

    /// Writes the value, low byte first. Errors stay on the stream.
    static void writeUint32LE(std::ofstream& stream, uint32_t value);
    static void writeUint32LE(std::fstream& stream, uint32_t value);
    static void writeUint16LE(std::ofstream& stream, uint16_t value);
    static void writeUint64LE(std::ofstream& stream, uint64_t value);

    /// The next four bytes, low byte first; bytes that the stream doesn't deliver count as 0.
    static uint32_t readUint32LE(std::ifstream& stream);
    static uint32_t readUint32LE(std::fstream& stream);
};
