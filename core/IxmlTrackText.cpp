#include "core/IxmlTrackText.h"

#include "core/IxmlNames.h"

#include <bit>
#include <charconv>

namespace {

constexpr std::string_view kChannelOpen = "<CHANNEL_INDEX>";
constexpr std::string_view kChannelClose = "</CHANNEL_INDEX>";

// In the order of IxmlTrackText::Content.
constexpr std::array<std::string_view, 6> kTags
    = { "<TRACK>", "</TRACK>", "<NAME>", "</NAME>", "<FUNCTION>", "</FUNCTION>" };

constexpr std::string_view nameIn(std::string_view openingTag)
{
    return openingTag.substr(1, openingTag.size() - 2);
}
static_assert(nameIn(kChannelOpen) == IxmlNames::kChannelIndex);
static_assert(nameIn(kTags[0]) == IxmlNames::kTrack);
static_assert(nameIn(kTags[2]) == IxmlNames::kName);
static_assert(nameIn(kTags[4]) == IxmlNames::kFunction);

std::string channelElement(int32_t channelIndex)
{
    return std::string(kChannelOpen).append(std::to_string(channelIndex)).append(kChannelClose);
}

} // namespace

// The tag at the start of `text`; Bytes if there is none. A CHANNEL_INDEX counts only if it says its number in the
// plain decimal that an edit looks for, not as "01", " 1" or "+1".
IxmlTrackText::Content IxmlTrackText::tagAt(std::string_view text, int32_t& channelIndex)
{
    const char third = text.size() > 2 ? text[2] : '\0'; // Differs in each tag.
    for (size_t tag = 0; tag < kTags.size(); ++tag) {
        if (third == kTags[tag][2] && text.starts_with(kTags[tag]))
            return static_cast<Content>(tag);
    }
    if (!text.starts_with(kChannelOpen))
        return Bytes;
    text.remove_prefix(kChannelOpen.size());
    if (std::from_chars(text.data(), text.data() + text.size(), channelIndex).ec != std::errc())
        return Bytes;
    const std::string number = std::to_string(channelIndex);
    return text.starts_with(number) && text.substr(number.size()).starts_with(kChannelClose) ? ChannelIndex : Bytes;
}

// Calls `onTag(offset, tag, channelIndex)` for each tag in the order of the text.
template <class OnTag> void IxmlTrackText::forEachTag(std::string_view text, OnTag onTag)
{
    int32_t channelIndex = 0;
    for (size_t at = text.find('<'); at != std::string_view::npos; at = text.find('<', at + 1)) {
        const Content tag = tagAt(text.substr(at), channelIndex);
        if (tag != Bytes)
            onTag(at, tag, channelIndex);
    }
}

IxmlTrackText::IxmlTrackText(std::string_view ixml) : parts(1), blocks(1)
{
    size_t begin = 0;
    forEachTag(ixml, [&](size_t at, Content tag, int32_t channelIndex) {
        parts.back() = ixml.substr(begin, at - begin);
        noteBytes(parts.size() - 1);
        begin = at;
        parts.emplace_back();
        blocks.resize((parts.size() - 1) / kPerBlock + 1);
        noteTag(parts.size() - 1, tag, channelIndex);
    });
    parts.back() = ixml.substr(begin);
    noteBytes(parts.size() - 1);
}

void IxmlTrackText::noteTag(size_t part, Content tag, int32_t channelIndex)
{
    blocks[part / kPerBlock].holders[tag] |= uint64_t{ 1 } << part % kPerBlock;
    if (tag == ChannelIndex)
        numbers.emplace_hint(numbers.end(), channelIndex, part);
}

void IxmlTrackText::noteBytes(size_t part)
{
    blocks[part / kPerBlock].bytes += parts[part].size();
    if (!parts[part].empty())
        noteTag(part, Bytes, 0);
}

// Notes what the part holds; nothing may be noted of it yet.
void IxmlTrackText::noteAll(size_t part)
{
    noteBytes(part);
    forEachTag(parts[part], [&](size_t, Content tag, int32_t channelIndex) { noteTag(part, tag, channelIndex); });
}

// Takes back what is noted of the part, which must still have the text that was noted.
void IxmlTrackText::forgetAll(size_t part)
{
    Block& block = blocks[part / kPerBlock];
    block.bytes -= parts[part].size();
    for (uint64_t& each : block.holders)
        each &= ~(uint64_t{ 1 } << part % kPerBlock);
    forEachTag(parts[part], [&](size_t, Content tag, int32_t channelIndex) {
        if (tag == ChannelIndex)
            numbers.erase({ channelIndex, part });
    });
}

// The first part from this one on that holds it; kNoPart if there is none. The search ends once it has passed `limit`
// bytes of whole blocks: most tracks have no FUNCTION, and each would look through all tracks behind it.
size_t IxmlTrackText::firstPartFrom(size_t part, Content content, size_t limit) const
{
    const size_t firstBlock = part / kPerBlock;
    uint64_t mask = UINT64_MAX << part % kPerBlock;
    size_t passed = 0; // Bytes of the blocks behind the first, in which the search may begin anywhere.
    for (size_t block = firstBlock; block < blocks.size() && passed < limit; ++block, mask = UINT64_MAX) {
        if (const uint64_t bits = blocks[block].holders[content] & mask; bits != 0)
            return block * kPerBlock + static_cast<size_t>(std::countr_zero(bits));
        passed += block == firstBlock ? 0 : blocks[block].bytes;
    }
    return kNoPart;
}

// The last part up to this one that holds it; kNoPart if there is none.
size_t IxmlTrackText::lastPartUpTo(size_t part, Content content) const
{
    uint64_t mask = UINT64_MAX >> (kPerBlock - 1 - part % kPerBlock);
    for (size_t block = part / kPerBlock + 1; block-- > 0; mask = UINT64_MAX) {
        if (const uint64_t bits = blocks[block].holders[content] & mask; bits != 0)
            return block * kPerBlock + static_cast<size_t>(std::bit_width(bits)) - 1;
    }
    return kNoPart;
}

// Where the first element begins that gives this number.
std::optional<IxmlTrackText::Place> IxmlTrackText::firstNumber(int32_t channelIndex) const
{
    const auto found = numbers.lower_bound({ channelIndex, 0 });
    if (found == numbers.end() || found->first != channelIndex)
        return std::nullopt;
    return Place{ found->second, parts[found->second].find(channelElement(channelIndex)) };
}

// Where the first of these tags begins, at `from` or behind it. May be nothing if that is `limit` bytes away.
std::optional<IxmlTrackText::Place> IxmlTrackText::firstFrom(Place from, Content tag, size_t limit) const
{
    size_t part = firstPartFrom(from.part, tag, limit);
    if (part == from.part) {
        const size_t offset = parts[part].find(kTags[tag], from.offset);
        if (offset != std::string::npos)
            return Place{ part, offset };
        part = firstPartFrom(part + 1, tag, limit);
    }
    if (part == kNoPart)
        return std::nullopt;
    return Place{ part, parts[part].find(kTags[tag]) };
}

// Where the last of these tags begins, at `from` or in front of it.
std::optional<IxmlTrackText::Place> IxmlTrackText::lastUpTo(Place from, Content tag) const
{
    size_t part = lastPartUpTo(from.part, tag);
    if (part == from.part) {
        const size_t offset = parts[part].rfind(kTags[tag], from.offset);
        if (offset != std::string::npos)
            return Place{ part, offset };
        part = part == 0 ? kNoPart : lastPartUpTo(part - 1, tag);
    }
    if (part == kNoPart)
        return std::nullopt;
    return Place{ part, parts[part].rfind(kTags[tag]) };
}

// Bytes from one place to another, which must not stand in front of it.
size_t IxmlTrackText::distance(Place from, Place to) const
{
    size_t bytes = to.offset; // From the start of `from.part` on.
    for (size_t part = from.part; part < to.part;) {
        const bool wholeBlock = part % kPerBlock == 0 && to.part - part >= kPerBlock;
        bytes += wholeBlock ? blocks[part / kPerBlock].bytes : parts[part].size();
        part += wholeBlock ? kPerBlock : 1;
    }
    return bytes - from.offset;
}

bool IxmlTrackText::setTrack(const BwfTrack& wanted)
{
    const auto number = firstNumber(wanted.channelIndex);
    if (!number)
        return false;
    const auto track = lastUpTo(*number, TrackOpen);
    const auto end = firstFrom(*number, TrackClose);
    if (!track || !end)
        return false;

    // The limit is where the track ended before its name changed, also for the function: a name that grew narrows
    // the range for FUNCTION by as many bytes, one that shrank widens it, past the end of the track if need be.
    const size_t limit = distance(*track, *end);
    const bool named = setElement(*track, NameOpen, limit, wanted.name);
    const bool functioned = setElement(*track, FunctionOpen, limit, wanted.function);
    return named || functioned;
}

// Replaces what the first element of a kind behind `track` says, if it begins less than `limit` bytes behind it.
bool IxmlTrackText::setElement(Place track, Content openTag, size_t limit, const std::string& value)
{
    auto open = firstFrom(track, openTag, limit);
    if (!open || distance(track, *open) >= limit)
        return false;
    const auto close = firstFrom(track, static_cast<Content>(openTag + 1));
    if (!close || *close < *open) // Closed before it is opened: no bytes stand between that could be replaced.
        return false;
    open->offset += kTags[openTag].size();
    replace(*open, *close, value);
    return true;
}

// Replaces the bytes from one place up to another, which stands behind it.
void IxmlTrackText::replace(Place from, Place to, std::string_view value)
{
    for (size_t part = from.part; part <= to.part; part = firstPartFrom(part + 1, Bytes)) {
        const bool first = part == from.part;
        const size_t end = part == to.part ? to.offset : parts[part].size();
        replaceInPart(part, first ? from.offset : 0, end, first ? value : std::string_view());
    }
}

void IxmlTrackText::replaceInPart(size_t part, size_t begin, size_t end, std::string_view value)
{
    std::string& text = parts[part];
    const std::string_view before = std::string_view(text).substr(begin, end - begin);
    if (before.find('<') == std::string_view::npos && value.find('<') == std::string_view::npos) {
        blocks[part / kPerBlock].bytes += value.size() - before.size(); // No tag comes or goes.
        text.replace(begin, end - begin, value);
        return;
    }
    forgetAll(part);
    text.replace(begin, end - begin, value);
    noteAll(part);
}

std::string IxmlTrackText::edited() const
{
    std::string result;
    for (const std::string& part : parts)
        result += part;
    return result;
}
