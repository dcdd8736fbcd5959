// The `bext` chunk.

#include "core/BwfMetadataReader.h"

#include "core/BextLayout.h"
#include "core/ChunkIndex.h"
#include "core/LittleEndian.h"
#include "core/MetadataStream.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace {

constexpr size_t kHistoryPieceBytes = size_t{ 64 } * 1024;

using BextLayout::Field;

// The fixed fields as they arrived. A field that the end of the file cuts did not arrive at all.
class FixedFields {
public:
    FixedFields(const char* bytes, size_t count) : payload(bytes), arrived(count) { }

    // Up to the first NUL.
    std::string text(Field field) const
    {
        const std::string_view bytes = bytesOf(field);
        return std::string(bytes.substr(0, bytes.find('\0')));
    }

    uint16_t number16(Field field) const
    {
        const std::string_view bytes = bytesOf(field);
        return bytes.empty() ? uint16_t{ 0 } : littleEndian16(bytes.data());
    }
    uint64_t number64(Field field) const
    {
        const std::string_view bytes = bytesOf(field);
        return bytes.empty() ? 0 : littleEndian64(bytes.data());
    }

    // Two lower-case hexadecimal digits for each byte.
    std::string hex(Field field) const
    {
        constexpr std::string_view kDigits = "0123456789abcdef";
        const std::string_view bytes = bytesOf(field);
        std::string digits(2 * bytes.size(), '\0');
        for (size_t i = 0; i < bytes.size(); ++i) {
            const auto byte = static_cast<unsigned char>(bytes[i]);
            digits[2 * i] = kDigits[byte >> 4];
            digits[2 * i + 1] = kDigits[byte & 0xF];
        }
        return digits;
    }

private:
    // Empty if they did not all arrive.
    std::string_view bytesOf(Field field) const
    {
        return field.end() <= arrived ? std::string_view(payload + field.offset, field.size) : std::string_view();
    }

    const char* payload;
    size_t arrived;
};

// HH:MM:SS by its form; the ranges of the numbers are open.
bool isTimeOfDay(const std::string& text)
{
    constexpr std::string_view kForm = "00:00:00";
    if (text.size() != kForm.size())
        return false;
    for (size_t i = 0; i < kForm.size(); ++i) {
        const bool digit = text[i] >= '0' && text[i] <= '9';
        if (kForm[i] == ':' ? text[i] != ':' : !digit)
            return false;
    }
    return true;
}

void takeFixedFields(const FixedFields& fields, BwfMetadata& record)
{
    record.description = fields.text(BextLayout::kDescription);
    record.originator = fields.text(BextLayout::kOriginator);
    record.originatorReference = fields.text(BextLayout::kOriginatorReference);
    record.originationDate = fields.text(BextLayout::kOriginationDate);
    record.originationTime = fields.text(BextLayout::kOriginationTime);
    if (!isTimeOfDay(record.originationTime))
        record.originationTime.clear();
    const uint64_t timeReference = fields.number64(BextLayout::kTimeReference);
    if (timeReference >= 1 && timeReference <= BwfMetadata::kMaxTimeReference)
        record.timeReference = timeReference;
    record.bextVersion = fields.number16(BextLayout::kVersion);
    record.umid = fields.hex(BextLayout::kUmid);
}

// Up to the first NUL, at most `count` bytes. A size field can claim more than any coding history has, so it is read
// piece by piece.
std::string readUpToNul(std::istream& stream, uint64_t offset, uint64_t count, ChunkIndex& chunks)
{
    std::string text;
    uint64_t left = chunks.available(offset, count);
    while (left > 0) {
        const auto piece = static_cast<size_t>(std::min<uint64_t>(left, kHistoryPieceBytes));
        const size_t before = text.size();
        text.resize(before + piece);
        text.resize(before + chunks.read(stream, offset + before, text.data() + before, piece));
        const size_t nul = text.find('\0', before);
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
    ChunkIndex chunks;
    readBextChunk(path, record, stream, chunks);
}

bool BwfMetadataReader::readBextChunk(
    const std::string& path, BwfMetadata& record, std::ifstream& stream, ChunkIndex& chunks)
{
    const OpenedFile opened(stream, path);
    if (!stream)
        return false;
    takeBextChunk(stream, record, chunks);
    return true;
}

// The fixed fields are read whatever the chunk's size says, so a shorter chunk is read on into what follows it. They
// are reached through the chunk's header, eight bytes in front of the payload in 32 bits.
void BwfMetadataReader::takeBextChunk(std::istream& stream, BwfMetadata& record, ChunkIndex& chunks)
{
    if (!chunks.begin(stream))
        return;
    const auto chunk = chunks.find(stream, ChunkIndex::Id::Bext);
    if (!chunk)
        return;
    const uint64_t begin = uint64_t{ chunk->payloadIn32Bits() - ChunkWalk::kHeaderBytes } + ChunkWalk::kHeaderBytes;
    std::array<char, BextLayout::kFixedBytes> payload;
    const size_t arrived = chunks.read(stream, begin, payload.data(), payload.size());
    takeFixedFields({ payload.data(), arrived }, record);
    if (chunk->size > BextLayout::kHistoryReserve) {
        const uint32_t count = chunk->size - BextLayout::kHistoryReserve;
        record.codingHistory = readUpToNul(stream, begin + BextLayout::kFixedBytes, count, chunks);
    }
}
