#include "cli/FileFacts.h"

#include "cli/WavFile.h"
#include "core/BwfMetadataReader.h"
#include "core/LittleEndian.h"

#include <algorithm>

namespace {

constexpr size_t kFmtBytes = 16;
constexpr size_t kBlockAlignOffset = 12;
constexpr uint64_t kPieceBytes = uint64_t{ 64 } * 1024;
constexpr std::string_view kIxmlPadding("\x20\x09\x0D\x0A\0", 5);

void readFormat(WavFile& file, FileFacts& facts)
{
    const ChunkList::Chunk* const format = facts.chunks.find("fmt ");
    if (!format)
        return;
    std::string payload = file.read(format->payload(), std::min<uint64_t>(kFmtBytes, format->size));
    payload.resize(kFmtBytes);
    facts.formatTag = littleEndian16(payload.data());
    facts.blockAlign = littleEndian16(payload.data() + kBlockAlignOffset);
}

// Without a rate of the timestamp the reader derives one for pulled timecodes, 1001/1000 of the audio's, so that the
// nominal formula comes out right. The exact one wants what the file says itself. A record that has no audio rate yet
// gets none derived.
uint32_t startSampleRateOf(const std::string& path, const FileFacts& facts)
{
    const BwfMetadata& record = facts.record;
    const bool isPulled = facts.frameRate && facts.frameRate->denominator != 1;
    if (record.timestampSampleRate == 0)
        return record.sampleRate;
    if (!isPulled || record.timestampSampleRate == record.sampleRate)
        return record.timestampSampleRate;
    BwfMetadata stated;
    BwfMetadataReader::readIxmlChunk(path, stated);
    return stated.timestampSampleRate != 0 ? stated.timestampSampleRate : record.sampleRate;
}

} // namespace

std::string FileFacts::container() const
{
    std::string name = chunks.fileId;
    std::transform(name.begin(), name.end(), name.begin(),
        [](char letter) { return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter; });
    return name;
}

std::optional<uint64_t> FileFacts::frameCount() const
{
    const ChunkList::Chunk* const audio = data();
    if (!audio || blockAlign.value_or(0) == 0)
        return std::nullopt;
    return audio->size / *blockAlign;
}

std::optional<uint64_t> FileFacts::startFrame() const
{
    const bool hasStart = record.timeReference != 0 || chunks.find("bext") != nullptr;
    if (!hasStart || !frameRate || startSampleRate == 0)
        return std::nullopt;
    return frameAtSample(record.timeReference, *frameRate, startSampleRate);
}

std::string FileFacts::startLabel() const
{
    const auto start = startFrame();
    return start ? frameLabel(*start, *frameRate, dropFrame) : std::string();
}

std::string FileFacts::endLabel() const
{
    const auto start = startFrame();
    const auto count = frameCount();
    if (!start || !count)
        return {};
    const uint64_t day = labelledFramesPerDay(*frameRate, dropFrame);
    const uint64_t length = framesInLength(*count, *frameRate, startSampleRate);
    return frameLabel(*start % day + length % day, *frameRate, dropFrame);
}

FileFacts readFileFacts(const std::string& path)
{
    FileFacts facts;
    facts.path = path;
    {
        WavFile file(path);
        facts.chunks = file.chunks();
        readFormat(file, facts);
    }
    facts.record = BwfMetadataReader::readMetadata(path);
    facts.frameRate = exactFrameRate(facts.record.frameRate);
    facts.startSampleRate = startSampleRateOf(path, facts);
    facts.dropFrame = facts.frameRate && countsDropFrame(*facts.frameRate, facts.record.dropFrame);
    return facts;
}

uint64_t freeBytesOf(const std::string& path, const ChunkList::Chunk& ixml)
{
    WavFile file(path);
    const uint64_t whole = file.available(ixml.payload(), ixml.size);
    for (uint64_t left = whole; left > 0;) {
        const uint64_t count = std::min(left, kPieceBytes);
        left -= count;
        const std::string piece = file.read(ixml.payload() + left, count);
        const size_t last = piece.find_last_not_of(kIxmlPadding);
        if (last != std::string::npos)
            return piece[last] == '>' ? whole - left - last - 1 : 0;
    }
    return 0;
}
