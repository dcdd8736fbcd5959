#include "tests/support/WavBuilder.h"

#include "tests/support/TempFolder.h"

namespace {

std::string littleEndian(uint64_t value, int width)
{
    std::string bytes;
    for (int i = 0; i < width; ++i)
        bytes += static_cast<char>((value >> (8 * i)) & 0xFF);
    return bytes;
}

std::string fixedField(std::string text, size_t width)
{
    text.resize(width, '\0');
    return text;
}

} // namespace

std::string le16(uint16_t value)
{
    return littleEndian(value, 2);
}
std::string le32(uint32_t value)
{
    return littleEndian(value, 4);
}
std::string le64(uint64_t value)
{
    return littleEndian(value, 8);
}

std::string bextPayload(const BextFields& fields)
{
    return fixedField(fields.description, 256) + fixedField(fields.originator, 32)
        + fixedField(fields.originatorReference, 32) + fixedField(fields.originationDate, 10)
        + fixedField(fields.originationTime, 8) + le64(fields.timeReference) + le16(fields.version)
        + fixedField(fields.umid, 64) + std::string(190, '\0') + fields.codingHistory;
}

WavBuilder::WavBuilder() = default;

WavBuilder WavBuilder::rf64()
{
    WavBuilder builder;
    builder.header = "RF64";
    return builder;
}

WavBuilder& WavBuilder::fileId(const std::string& fourBytes)
{
    header = fourBytes;
    return *this;
}

WavBuilder& WavBuilder::formType(const std::string& fourBytes)
{
    form = fourBytes;
    return *this;
}

WavBuilder& WavBuilder::fmt(uint32_t rate, uint16_t channels, uint16_t bits, uint16_t tag)
{
    const uint32_t align = channels * (bits / 8u);
    frameBytes = align;
    return chunk("fmt ",
        le16(tag) + le16(channels) + le32(rate) + le32(rate * align) + le16(static_cast<uint16_t>(align)) + le16(bits));
}

WavBuilder& WavBuilder::bext(const BextFields& fields)
{
    return chunk("bext", bextPayload(fields));
}

WavBuilder& WavBuilder::ixml(const std::string& text)
{
    return chunk("iXML", text);
}

WavBuilder& WavBuilder::ixmlPadded(const std::string& text, size_t size, char pad)
{
    std::string payload = text;
    if (payload.size() < size)
        payload.resize(size, pad);
    return chunk("iXML", payload);
}

WavBuilder& WavBuilder::ds64(uint64_t dataSize, uint64_t sampleCount)
{
    return chunk("ds64", le64(0) + le64(dataSize) + le64(sampleCount) + le32(0));
}

WavBuilder& WavBuilder::data(const std::string& payload)
{
    return chunk("data", payload);
}

WavBuilder& WavBuilder::dataFrames(size_t frames)
{
    std::string payload(frames * frameBytes, '\0');
    for (size_t i = 0; i < payload.size(); ++i)
        payload[i] = static_cast<char>((i * 37 + i / 251) & 0xFF);
    return chunk("data", payload);
}

WavBuilder& WavBuilder::chunk(const std::string& id, const std::string& payload)
{
    chunks.push_back({ id, payload, static_cast<uint32_t>(payload.size()), true });
    return *this;
}

WavBuilder& WavBuilder::claimSize(const std::string& id, uint32_t size)
{
    for (auto it = chunks.rbegin(); it != chunks.rend(); ++it) {
        if (it->id == id) {
            it->size = size;
            break;
        }
    }
    return *this;
}

WavBuilder& WavBuilder::omitPadByte()
{
    chunks.back().padded = false;
    return *this;
}

WavBuilder& WavBuilder::trailing(const std::string& bytes)
{
    tail += bytes;
    return *this;
}

WavBuilder& WavBuilder::truncateTo(size_t size)
{
    limit = size;
    return *this;
}

std::string WavBuilder::bytes() const
{
    std::string body = form;
    for (const Chunk& each : chunks) {
        body += each.id + le32(each.size) + each.payload;
        if (each.padded && each.payload.size() % 2 != 0)
            body += '\0';
    }
    body += tail;
    const uint32_t size = header == "RF64" ? 0xFFFFFFFFu : static_cast<uint32_t>(body.size());
    std::string file = header + le32(size) + body;
    if (file.size() > limit)
        file.resize(limit);
    return file;
}

size_t WavBuilder::payloadOffset(const std::string& id) const
{
    size_t offset = 12;
    for (const Chunk& each : chunks) {
        if (each.id == id)
            return offset + 8;
        offset += 8 + each.payload.size();
        if (each.padded && each.payload.size() % 2 != 0)
            ++offset;
    }
    return 0;
}

void WavBuilder::write(const std::string& path) const
{
    writeBytes(path, bytes());
}
