// The `bext` chunk.

#include "core/BwfMetadataReader.h"

#include "core/ChunkMap.h"
#include "core/MetadataStream.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace {

constexpr std::size_t kFixedBytes = 602;
// The coding history is taken eight bytes short, and from this chunk size on.
constexpr uint32_t kHistoryReserve = 610;
constexpr std::size_t kHistoryPieceBytes = 64 * 1024;
constexpr uint64_t kMaxTimeReference = 20'000'000'000;

// The fixed fields as they arrived. A field that the end of the file cuts did not arrive at all.
class FixedFields {
public:
    FixedFields(const char* bytes, std::size_t count) : payload(bytes), arrived(count) { }

    bool has(std::size_t offset, std::size_t width) const { return offset + width <= arrived; }

    /// Up to the first NUL, at most `width` bytes.
    std::string text(std::size_t offset, std::size_t width) const
    {
        if (!has(offset, width))
            return {};
        const std::string_view field(payload + offset, width);
        return std::string(field.substr(0, field.find('\0')));
    }

    uint16_t number16(std::size_t offset) const
    {
        return has(offset, 2) ? littleEndian16(payload + offset) : uint16_t{ 0 };
    }
    uint64_t number64(std::size_t offset) const { return has(offset, 8) ? littleEndian64(payload + offset) : 0; }

    /// Two lower-case hexadecimal digits for each byte.
    std::string hex(std::size_t offset, std::size_t width) const
    {
        constexpr char kDigits[] = "0123456789abcdef";
        std::string digits;
        if (!has(offset, width))
            return digits;
        digits.resize(2 * width);
        for (std::size_t i = 0; i < width; ++i) {
            const auto byte = static_cast<unsigned char>(payload[offset + i]);
            digits[2 * i] = kDigits[byte >> 4];
            digits[2 * i + 1] = kDigits[byte & 0xF];
        }
        return digits;
    }

private:
    const char* payload;
    std::size_t arrived;
};

// HH:MM:SS by its form; the ranges of the numbers are open.
bool isTimeOfDay(const std::string& text)
{
    constexpr std::string_view kForm = "00:00:00";
    if (text.size() != kForm.size())
        return false;
    for (std::size_t i = 0; i < kForm.size(); ++i) {
        const bool digit = text[i] >= '0' && text[i] <= '9';
        if (kForm[i] == ':' ? text[i] != ':' : !digit)
            return false;
    }
    return true;
}

void takeFixedFields(const FixedFields& fields, BwfMetadata& record)
{
    record.description = fields.text(0, 256);
    record.originator = fields.text(256, 32);
    record.originatorReference = fields.text(288, 32);
    record.originationDate = fields.text(320, 10);
    record.originationTime = fields.text(330, 8);
    if (!isTimeOfDay(record.originationTime))
        record.originationTime.clear();
    const uint64_t timeReference = fields.number64(338); // Low half first, so one number of eight bytes.
    if (timeReference >= 1 && timeReference <= kMaxTimeReference)
        record.timeReference = timeReference;
    record.bextVersion = fields.number16(346);
    record.umid = fields.hex(348, 64);
}

// Up to the first NUL, at most `count` bytes. A size field can claim more than any coding history has, so it is read
// piece by piece.
std::string readUpToNul(std::istream& stream, uint64_t offset, uint64_t count, ChunkMap& chunks)
{
    std::string text;
    uint64_t left = chunks.available(offset, count);
    while (left > 0) {
        const auto piece = static_cast<std::size_t>(std::min<uint64_t>(left, kHistoryPieceBytes));
        const std::size_t before = text.size();
        text.resize(before + piece);
        text.resize(before + chunks.read(stream, offset + before, text.data() + before, piece));
        const std::size_t nul = text.find('\0', before);
        if (nul != std::string::npos) {
            text.resize(nul);
            break;
        }
        if (text.size() < before + piece)
            break;
        left -= piece;
    }
    return text;
}

} // namespace

void BwfMetadataReader::readBextChunk(const std::string& path, BwfMetadata& record)
{
    std::ifstream stream;
    ChunkMap chunks;
    readBextChunk(path, record, stream, chunks);
}

bool BwfMetadataReader::readBextChunk(
    const std::string& path, BwfMetadata& record, std::ifstream& stream, ChunkMap& chunks)
{
    const OpenedFile opened(stream, path);
    if (!stream)
        return false;
    takeBextChunk(stream, record, chunks);
    return true;
}

// The 602 bytes are read whatever the chunk's size says, so a shorter chunk is read on into what follows it. They are
// reached through the chunk's header, eight bytes in front of the payload in 32 bits.
void BwfMetadataReader::takeBextChunk(std::istream& stream, BwfMetadata& record, ChunkMap& chunks)
{
    if (!chunks.begin(stream))
        return;
    const auto chunk = chunks.find(stream, "bext");
    if (!chunk)
        return;
    const uint64_t begin = uint64_t{ chunk->position - ChunkWalk::kHeaderBytes } + ChunkWalk::kHeaderBytes;
    std::array<char, kFixedBytes> payload;
    const std::size_t arrived = chunks.read(stream, begin, payload.data(), payload.size());
    takeFixedFields({ payload.data(), arrived }, record);
    if (chunk->size > kHistoryReserve)
        record.codingHistory = readUpToNul(stream, begin + kFixedBytes, chunk->size - kHistoryReserve, chunks);
}
