#pragma once

#include <cstdint>
#include <string>
#include <vector>

/// The values of a `bext` payload. Texts longer than their field are cut at the field's width.
struct BextFields {
    std::string description; ///< 256 bytes at offset 0.
    std::string originator; ///< 32 bytes at offset 256.
    std::string originatorReference; ///< 32 bytes at offset 288.
    std::string originationDate; ///< 10 bytes at offset 320.
    std::string originationTime; ///< 8 bytes at offset 330.
    uint64_t timeReference = 0; ///< Samples since midnight, low half at offset 338, high half at 342.
    uint16_t version = 1; ///< Offset 346.
    std::string umid; ///< 64 bytes at offset 348.
    std::string codingHistory; ///< Everything from offset 602 on.
};

/// The payload bytes of `fields`: 602 bytes and the coding history.
std::string bextPayload(const BextFields& fields);

/// Little-endian bytes of `value`.
std::string le16(uint16_t value);
std::string le32(uint32_t value);
std::string le64(uint64_t value);

/// Builds a WAV file chunk by chunk, in the order of the calls, and can lie about it.
/// Sizes and pad bytes are right unless a call says otherwise; the header's size field always fits the
/// bytes as they come out, except in RF64, where it is 0xFFFFFFFF.
class WavBuilder {
public:
    /// An empty "RIFF"/"WAVE" file.
    WavBuilder();
    /// An empty "RF64"/"WAVE" file without `ds64`.
    static WavBuilder rf64();

    /// Replaces the first four bytes of the file.
    WavBuilder& fileId(const std::string& fourBytes);
    /// Replaces the form type at offset 8.
    WavBuilder& formType(const std::string& fourBytes);

    /// A 16-byte `fmt `. `tag` is 1 for integer PCM, 3 for IEEE float; `rate` in Hz.
    WavBuilder& fmt(uint32_t rate, uint16_t channels, uint16_t bits, uint16_t tag = 1);
    WavBuilder& bext(const BextFields& fields);
    /// An `iXML` chunk of exactly `text`.
    WavBuilder& ixml(const std::string& text);
    /// An `iXML` chunk of `size` bytes: `text`, then `pad`. Longer texts are not cut.
    WavBuilder& ixmlPadded(const std::string& text, size_t size, char pad);
    /// A `ds64` of 28 bytes: RIFF size 0, `dataSize`, `sampleCount`, no table.
    WavBuilder& ds64(uint64_t dataSize, uint64_t sampleCount = 0);
    /// A `data` chunk of `payload`.
    WavBuilder& data(const std::string& payload);
    /// A `data` chunk of `frames` frames of a byte pattern that differs in each byte, in the last `fmt `'s frame size.
    WavBuilder& dataFrames(size_t frames);
    /// Any other chunk. `id` has four bytes.
    WavBuilder& chunk(const std::string& id, const std::string& payload);

    /// The size field of the last chunk called `id` becomes `size`; its payload stays as it is.
    WavBuilder& claimSize(const std::string& id, uint32_t size);
    /// The chunk added last gets no pad byte, even if its size is odd.
    WavBuilder& omitPadByte();
    /// Bytes of the whole file behind the last chunk, as they stand.
    WavBuilder& trailing(const std::string& bytes);
    /// The file ends after `size` bytes.
    WavBuilder& truncateTo(size_t size);

    /// The file.
    std::string bytes() const;
    /// Offset in bytes of the first payload byte of the first chunk called `id`; 0 when there is none.
    size_t payloadOffset(const std::string& id) const;
    /// Writes the file to `path`. Throws std::runtime_error when that fails.
    void write(const std::string& path) const;

private:
    struct Chunk {
        std::string id;
        std::string payload;
        uint32_t size = 0;
        bool padded = true;
    };

    std::string header = "RIFF";
    std::string form = "WAVE";
    std::vector<Chunk> chunks;
    std::string tail;
    size_t limit = SIZE_MAX;
    size_t frameBytes = 0;
};
