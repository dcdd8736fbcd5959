#include "core/IxmlTags.h"

#include "core/IxmlNames.h"
#include "core/TextTrim.h"

#include <algorithm>
#include <cstring>

namespace {

// What stands between "<" and ">", by kind: the elements in both cases, then the marks.
constexpr std::array<std::string_view, 52> kNames{ "TIMESTAMP_SAMPLE_RATE", "timestamp_sample_rate", //
    "TIMESTAMP_SAMPLES_SINCE_MIDNIGHT_HI", "timestamp_samples_since_midnight_hi", //
    "TIMESTAMP_SAMPLES_SINCE_MIDNIGHT_LO", "timestamp_samples_since_midnight_lo", //
    "TIMECODE_RATE", "timecode_rate", //
    "TIMECODE_FLAG", "timecode_flag", //
    "UBITS", "ubits", //
    "BWF_ORIGINATION_TIME", "bwf_origination_time", //
    "BWF_TIME_REFERENCE_LOW", "bwf_time_reference_low", //
    "BWF_TIME_REFERENCE_HIGH", "bwf_time_reference_high", //
    IxmlNames::kScene, "scene", //
    IxmlNames::kProject, "project", //
    IxmlNames::kTape, "tape", //
    IxmlNames::kTake, "take", //
    IxmlNames::kNote, "note", //
    IxmlNames::kCircled, "circled", //
    IxmlNames::kWildTrack, "wild_track", //
    IxmlNames::kChannelIndex, "channel_index", //
    IxmlNames::kName, "name", //
    IxmlNames::kFunction, "function", //
    "SPEED", "Speed", "/SPEED", "/Speed", //
    "BEXT", "Bext", "/BEXT", "/Bext", //
    "TRACK_LIST", "TrackList", "/TRACK_LIST", "/TrackList", //
    IxmlNames::kTrack, "/TRACK" };

constexpr size_t kMaxNameLength = 35;

// The kinds whose names have the same length and the same first letter are tried one by one; there are few of each.
struct NamesByLength {
    std::array<uint8_t, kNames.size()> kinds{};
    std::array<uint8_t, kMaxNameLength + 2> begin{}; // Of each length's kinds.
};

constexpr NamesByLength sortByLength()
{
    NamesByLength sorted;
    uint8_t count = 0;
    for (size_t length = 0; length <= kMaxNameLength; ++length) {
        sorted.begin[length] = count;
        for (size_t kind = 0; kind < kNames.size(); ++kind) {
            if (kNames[kind].size() == length)
                sorted.kinds[count++] = static_cast<uint8_t>(kind);
        }
    }
    sorted.begin[kMaxNameLength + 1] = count;
    return sorted;
}

constexpr NamesByLength kByLength = sortByLength();
static_assert(kByLength.begin.back() == kNames.size(), "a name is longer than kMaxNameLength");

constexpr size_t kUsualTags = 128; // Of a file with a handful of tracks.
constexpr uint8_t kUnknown = UINT8_MAX;

// The kind of the tag whose name begins at `name`, behind its "<"; kUnknown if it is none of ours.
uint8_t identify(const char* name, size_t left)
{
    // Half of all tags close an element, and most of those are not looked for.
    if (left > 1 && name[0] == '/' && name[1] != 'S' && name[1] != 'B' && name[1] != 'T')
        return kUnknown;
    const void* const close = std::memchr(name, '>', std::min(left, kMaxNameLength + 1));
    if (!close)
        return kUnknown;
    const auto length = static_cast<size_t>(static_cast<const char*>(close) - name);
    for (size_t i = kByLength.begin[length]; i < kByLength.begin[length + 1]; ++i) {
        const uint8_t kind = kByLength.kinds[i];
        if (kNames[kind].front() == *name && std::memcmp(kNames[kind].data(), name, length) == 0)
            return kind;
    }
    return kUnknown;
}

} // namespace

IxmlTags::IxmlTags(std::string_view ixml) : text(ixml)
{
    static_assert(kKinds == kNames.size());
    first.fill(kNone);
    tags.reserve(kUsualTags);
    bool open = false; // The last tag still waits for the "<" that ends its value.
    for (size_t at = text.find('<'); at != std::string_view::npos; at = text.find('<', at + 1)) {
        if (open)
            tags.back().valueEnd = at;
        const uint8_t kind = identify(text.data() + at + 1, text.size() - at - 1);
        open = kind != kUnknown;
        if (!open)
            continue;
        if (first[kind] == kNone)
            first[kind] = tags.size();
        const size_t valueBegin = at + kNames[kind].size() + 2;
        tags.push_back({ at, valueBegin, valueBegin, kind });
    }
}

IxmlTags::Index IxmlTags::findKind(uint8_t kind, Range range) const
{
    const Index earliest = first[kind];
    if (earliest >= range.end)
        return kNone;
    for (Index i = std::max(earliest, range.begin); i < range.end; ++i) {
        if (tags[i].kind == kind)
            return i;
    }
    return kNone;
}

IxmlTags::Index IxmlTags::find(Mark mark, Index from) const
{
    return findKind(kindOf(mark), { from, tags.size() });
}

IxmlTags::Index IxmlTags::find(Mark mark, Mark second, Index from) const
{
    const Index found = find(mark, from);
    return found != kNone ? found : find(second, from);
}

// A range is a text of its own: the "<" of the tag that ends it does not end a value in it.
std::string_view IxmlTags::valueAt(Index tag, Index rangeEnd) const
{
    const size_t textEnd = rangeEnd < tags.size() ? tags[rangeEnd].begin : text.size();
    const Tag& found = tags[tag];
    if (found.valueEnd >= textEnd)
        return {};
    return trimBlanks(text.substr(found.valueBegin, found.valueEnd - found.valueBegin));
}

std::string_view IxmlTags::value(Element element, Range range) const
{
    Index found = findKind(upperKind(element), range);
    if (found == kNone)
        found = findKind(lowerKind(element), range);
    return found == kNone ? std::string_view() : valueAt(found, range.end);
}

IxmlTags::Cursor::Cursor(const IxmlTags& tags, Element element, Index end) : source(tags), rangeEnd(end)
{
    upper.kind = upperKind(element);
    lower.kind = lowerKind(element);
}

// True if there is a tag of the spelling in the range from `begin` on.
bool IxmlTags::Cursor::advance(Spelling& spelling, Index begin) const
{
    if (spelling.at == kNone || spelling.at < begin) {
        const Index found = source.findKind(spelling.kind, { begin, rangeEnd });
        spelling.at = std::min(found, rangeEnd);
        if (spelling.at < rangeEnd)
            spelling.value = source.valueAt(spelling.at, rangeEnd);
    }
    return spelling.at < rangeEnd;
}

std::string_view IxmlTags::Cursor::value(Index begin)
{
    if (advance(upper, begin))
        return upper.value;
    return advance(lower, begin) ? lower.value : std::string_view();
}
