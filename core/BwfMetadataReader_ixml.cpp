// The `iXML` chunk, and the Description as the fallback behind it.

#include "core/BwfMetadataReader.h"

#include "core/CantarMetadataParser.h"
#include "core/ChunkIndex.h"
#include "core/IxmlTags.h"
#include "core/MetadataStream.h"
#include "core/NumberText.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <limits>
#include <memory>
#include <optional>
#include <utility>

namespace {

using Element = IxmlTags::Element;
using Mark = IxmlTags::Mark;

constexpr size_t kMostTrackText = size_t{ 64 } * 1024 * 1024; // Bytes in all tracks of a file.
constexpr size_t kPieceBytes = size_t{ 64 } * 1024; // Of a chunk, read at once.
constexpr size_t kCacheLineBytes = 64;
constexpr size_t kSliceBytes = size_t{ 4 } * 1024; // Padding is told in these.
constexpr double kPullDenominator = 1001.0;
constexpr double kPullFactor = 1.001;
constexpr std::array<double, 3> kPulledRates{ 23.976, 29.97, 59.94 };
constexpr double kRateTolerance = 0.001;

// The rate of a recording that was pulled up to run with a 1001 timecode, clamped to what the field can hold.
uint32_t pulledRate(uint32_t sampleRate)
{
    constexpr double kMax = std::numeric_limits<uint32_t>::max();
    return static_cast<uint32_t>(std::min(sampleRate * kPullFactor + 0.5, kMax));
}

// Both halves are taken as 64-bit numbers, so a negative one wraps and then fails the caller's limit.
std::optional<uint64_t> combine(std::string_view low, std::string_view high)
{
    const std::optional<uint64_t> highValue = NumberText::parseUnsigned(high);
    const std::optional<uint64_t> lowValue = NumberText::parseUnsigned(low);
    if (!highValue || !lowValue)
        return std::nullopt;
    return *lowValue | (*highValue << 32);
}

void takeFraction(std::string_view numerator, std::string_view denominator, BwfMetadata& record)
{
    const std::optional<double> above = NumberText::parseDouble(numerator);
    const std::optional<double> below = NumberText::parseDouble(denominator);
    if (!above || !below)
        return;
    if (*below > 0.0)
        record.frameRate = *above / *below;
    if (record.timestampSampleRate == 0 && record.sampleRate != 0 && *below == kPullDenominator)
        record.timestampSampleRate = pulledRate(record.sampleRate);
}

void takeFrameRate(std::string_view text, BwfMetadata& record)
{
    const size_t slash = text.find('/');
    if (slash != std::string_view::npos) {
        takeFraction(text.substr(0, slash), text.substr(slash + 1), record);
        return;
    }
    if (const std::optional<double> rate = NumberText::parseDouble(text))
        record.frameRate = *rate;
}

// The block may run on to the end of the text. A time reference of 0 counts as a value here.
void takeSpeed(const IxmlTags& tags, BwfMetadata& record)
{
    const IxmlTags::Index begin = tags.find(Mark::SpeedBegin, Mark::SpeedBegin2, 0);
    if (begin == IxmlTags::kNone)
        return;
    const IxmlTags::Index end = tags.find(Mark::SpeedEnd, Mark::SpeedEnd2, begin);
    const IxmlTags::Range block{ begin, std::min(end, tags.all().end) };

    const std::optional<uint64_t> rate = NumberText::parseUnsigned(tags.value(Element::TimestampSampleRate, block));
    if (rate && *rate != 0 && *rate <= std::numeric_limits<uint32_t>::max())
        record.timestampSampleRate = static_cast<uint32_t>(*rate);

    const std::optional<uint64_t> samples = combine(
        tags.value(Element::SamplesSinceMidnightLo, block), tags.value(Element::SamplesSinceMidnightHi, block));
    if (samples && *samples <= BwfMetadata::kMaxTimeReference)
        record.timeReference = *samples;

    takeFrameRate(tags.value(Element::TimecodeRate, block), record);

    const std::string_view flag = tags.value(Element::TimecodeFlag, block);
    if (!flag.empty())
        record.dropFrame = flag == "DF" || flag == "df";
}

void takeUbits(const IxmlTags& tags, BwfMetadata& record)
{
    const std::string_view value = tags.value(Element::Ubits, tags.all());
    if (value.empty())
        return;
    record.ubits = value;
    if (value.front() != '$')
        record.ubits.insert(record.ubits.begin(), '$');
}

// Stricter than the SPEED block: both ends must be there, and a time reference of 0 is none.
void takeBext(const IxmlTags& tags, BwfMetadata& record)
{
    const IxmlTags::Index begin = tags.find(Mark::BextBegin, Mark::BextBegin2, 0);
    if (begin == IxmlTags::kNone)
        return;
    const IxmlTags::Index end = tags.find(Mark::BextEnd, Mark::BextEnd2, begin);
    if (end == IxmlTags::kNone)
        return;
    const IxmlTags::Range block{ begin, end };

    const std::string_view time = tags.value(Element::OriginationTime, block);
    if (!time.empty() && record.originationTime.empty()) {
        record.originationTime = time;
        std::replace(record.originationTime.begin(), record.originationTime.end(), '-', ':');
    }

    const std::string_view high = tags.value(Element::TimeReferenceHigh, block);
    const std::optional<uint64_t> samples
        = combine(tags.value(Element::TimeReferenceLow, block), high.empty() ? "0" : high);
    if (samples && *samples >= 1 && *samples <= BwfMetadata::kMaxTimeReference)
        record.timeReference = *samples;
}

void takeText(std::string_view value, std::string& field)
{
    if (!value.empty())
        field = value;
}

void takeFlag(std::string_view value, bool& flag)
{
    if (!value.empty())
        flag = value == "1" || NumberText::toUpperAscii(value) == "TRUE";
}

void takeProduction(const IxmlTags& tags, BwfMetadata& record)
{
    const IxmlTags::Range all = tags.all();
    takeText(tags.value(Element::Scene, all), record.scene);
    takeText(tags.value(Element::Project, all), record.project);
    takeText(tags.value(Element::Tape, all), record.tape);
    takeText(tags.value(Element::Take, all), record.take);
    takeText(tags.value(Element::Note, all), record.note);
    takeFlag(tags.value(Element::Circled, all), record.circled);
    takeFlag(tags.value(Element::WildTrack, all), record.wildTrack);
}

// A channel number converts once for all the tracks that pick it up.
class ChannelNumbers {
public:
    ChannelNumbers(const IxmlTags& tags, IxmlTags::Index listEnd) : cursor(tags, Element::ChannelIndex, listEnd) { }

    int32_t at(IxmlTags::Index track, int32_t counter)
    {
        const std::string_view value = cursor.value(track);
        if (value.data() != text.data()) {
            text = value;
            number = NumberText::parseInt(value);
        }
        return number.value_or(counter);
    }

private:
    IxmlTags::Cursor cursor;
    std::string_view text;
    std::optional<int32_t> number;
};

// One long name behind thousands of tracks without one belongs to each of them. No recorder writes that, and a copy for
// each would take all memory there is: texts beyond a limit that no real list comes near stay empty.
class TrackText {
public:
    std::string copy(std::string_view text)
    {
        if (text.size() > left)
            return {};
        left -= text.size();
        return std::string(text);
    }

private:
    size_t left = kMostTrackText;
};

// A track's text reaches to the end of the list, not to the end of the track: an element that one track lacks comes
// from the next one that has it.
void takeTracks(const IxmlTags& tags, BwfMetadata& record)
{
    const IxmlTags::Index listBegin = tags.find(Mark::TrackListBegin, Mark::TrackListBegin2, 0);
    if (listBegin == IxmlTags::kNone)
        return;
    const IxmlTags::Index listEnd = tags.find(Mark::TrackListEnd, Mark::TrackListEnd2, listBegin);
    if (listEnd == IxmlTags::kNone)
        return;

    ChannelNumbers channels(tags, listEnd);
    IxmlTags::Cursor names(tags, Element::Name, listEnd);
    IxmlTags::Cursor functions(tags, Element::Function, listEnd);
    TrackText text;
    int32_t counter = 1;
    IxmlTags::Index track = tags.find(Mark::TrackBegin, listBegin);
    while (track < listEnd) {
        record.tracks.push_back(
            { channels.at(track, counter), text.copy(names.value(track)), text.copy(functions.value(track)) });
        const IxmlTags::Index trackEnd = tags.find(Mark::TrackEnd, track);
        if (trackEnd == IxmlTags::kNone)
            return;
        track = tags.find(Mark::TrackBegin, trackEnd);
        ++counter;
    }
}

void takeIfEmpty(const std::string& value, std::string& field)
{
    if (field.empty())
        field = value;
}

void takeTrackNames(const TrackNameList& names, BwfMetadata& record)
{
    if (!record.tracks.empty())
        return;
    for (const auto& [index, name] : names.named())
        record.tracks.push_back({ static_cast<int32_t>(index + 1), name, {} });
}

// Recorders that write digital keys count samples in the rate of their timecode.
void deriveTimestampRate(BwfMetadata& record)
{
    if (record.sampleRate == 0 || record.timestampSampleRate != 0 || !(record.frameRate > 0.0))
        return;
    const bool pulled = std::any_of(kPulledRates.begin(), kPulledRates.end(),
        [&record](double rate) { return std::fabs(record.frameRate - rate) < kRateTolerance; });
    record.timestampSampleRate = pulled ? pulledRate(record.sampleRate) : record.sampleRate;
}

// The Description can only give what is missing; most files' iXML has it all.
bool lacksSomething(const BwfMetadata& record)
{
    const bool text = record.scene.empty() || record.tape.empty() || record.take.empty() || record.note.empty()
        || record.ubits.empty();
    return text || record.frameRate == 0.0 || record.tracks.empty() || record.timestampSampleRate == 0;
}

void takeDescription(BwfMetadata& record)
{
    if (record.description.empty() || !lacksSomething(record))
        return;
    const CantarMetadata parsed = CantarMetadataParser::parseDescription(record.description);
    takeIfEmpty(parsed.scene, record.scene);
    takeIfEmpty(parsed.tape, record.tape);
    takeIfEmpty(parsed.take, record.take);
    takeIfEmpty(parsed.note, record.note);
    takeIfEmpty(parsed.ubits, record.ubits);
    if (record.frameRate == 0.0) {
        if (const std::optional<double> rate = NumberText::parseDouble(parsed.frameRate))
            record.frameRate = *rate;
    }
    takeTrackNames(parsed.trackNames, record);
    if (parsed.digitalKeys)
        deriveTimestampRate(record);
}

// True if all bytes are the same NUL or blank.
bool isPadding(std::string_view bytes)
{
    return (bytes[0] == '\0' || bytes[0] == ' ') && std::memcmp(bytes.data(), bytes.data() + 1, bytes.size() - 1) == 0;
}

// Puts a text together from slices and holds back those of padding until something follows them: at the end of a chunk
// they hold no tag and end no value, and most chunks are mainly padding.
class UnpaddedText {
public:
    void add(std::string_view slice)
    {
        const bool isPad = isPadding(slice);
        if (!isPad || slice[0] != padding) {
            text.append(padded, padding);
            padded = 0;
        }
        if (isPad) {
            padding = slice[0];
            padded += slice.size();
        } else {
            text.append(slice);
        }
    }

    std::string text;

private:
    char padding = '\0';
    size_t padded = 0; // Bytes of `padding` that stand behind `text`.
};

struct alignas(kCacheLineBytes) CacheLine {
    char bytes[kCacheLineBytes];
};

// The chunk's text as far as the file holds it, less the padding at its end.
std::string readUnpadded(std::istream& stream, const ChunkWalk::Header& chunk, ChunkIndex& chunks)
{
    uint64_t at = chunk.payloadIn32Bits();
    uint64_t left = chunks.available(at, chunk.size);
    // The pieces stand to the cache lines as they stand in the file: copies between like places are the fastest.
    const uint64_t lines = std::min<uint64_t>(left, kPieceBytes) / kCacheLineBytes + 2;
    const auto room = std::make_unique_for_overwrite<CacheLine[]>(lines);
    char* const piece = reinterpret_cast<char*>(room.get()) + at % kCacheLineBytes;
    UnpaddedText result;
    while (left > 0) {
        const auto wanted = static_cast<size_t>(std::min<uint64_t>(left, kPieceBytes));
        const size_t arrived = chunks.read(stream, at, piece, wanted);
        const std::string_view bytes(piece, arrived);
        for (size_t slice = 0; slice < arrived; slice += kSliceBytes)
            result.add(bytes.substr(slice, kSliceBytes));
        if (arrived < wanted)
            break;
        at += arrived;
        left -= arrived;
    }
    return std::move(result.text);
}

} // namespace

void BwfMetadataReader::readIxmlChunk(const std::string& path, BwfMetadata& record)
{
    std::ifstream stream;
    ChunkIndex chunks;
    readIxmlChunk(path, record, stream, chunks);
}

bool BwfMetadataReader::readIxmlChunk(
    const std::string& path, BwfMetadata& record, std::ifstream& stream, ChunkIndex& chunks)
{
    const OpenedFile opened(stream, path);
    if (!stream)
        return false;
    takeIxmlChunk(stream, record, chunks);
    return true;
}

// What the size claims beyond the end of the file would be NUL bytes, which hold no tag: no room is made for them.
void BwfMetadataReader::takeIxmlChunk(std::istream& stream, BwfMetadata& record, ChunkIndex& chunks)
{
    if (!chunks.begin(stream))
        return;
    if (const auto chunk = chunks.find(stream, ChunkIndex::Id::Ixml))
        parseIxml(readUnpadded(stream, *chunk, chunks), record);
}

void BwfMetadataReader::parseIxml(std::string_view text, BwfMetadata& record)
{
    const IxmlTags tags(text);
    takeSpeed(tags, record);
    takeUbits(tags, record);
    takeBext(tags, record);
    takeProduction(tags, record);
    takeTracks(tags, record);
    takeDescription(record);
}
