#include "core/IxmlTrackText.h"

#include <algorithm>
#include <charconv>
#include <numeric>
#include <utility>

namespace {

constexpr std::string_view kChannelOpen = "<CHANNEL_INDEX>";
constexpr std::string_view kChannelClose = "</CHANNEL_INDEX>";

struct PlainTag {
    IxmlTrackText::Kind kind;
    std::string_view bytes;
};

constexpr std::array kPlainTags = {
    PlainTag{ IxmlTrackText::Kind::TrackOpen, "<TRACK>" },
    PlainTag{ IxmlTrackText::Kind::TrackClose, "</TRACK>" },
    PlainTag{ IxmlTrackText::Kind::NameOpen, "<NAME>" },
    PlainTag{ IxmlTrackText::Kind::NameClose, "</NAME>" },
    PlainTag{ IxmlTrackText::Kind::FunctionOpen, "<FUNCTION>" },
    PlainTag{ IxmlTrackText::Kind::FunctionClose, "</FUNCTION>" },
};

/// Length of the whole CHANNEL_INDEX element at the start of `where`; 0 if there is none, or if it says its number
/// in any other way than the plain decimal that an edit looks for ("01", " 1", "+1").
size_t channelElement(std::string_view where, int32_t& channelIndex)
{
    if (!where.starts_with(kChannelOpen))
        return 0;
    where.remove_prefix(kChannelOpen.size());
    const auto [end, error] = std::from_chars(where.data(), where.data() + where.size(), channelIndex);
    if (error != std::errc())
        return 0;
    const auto digits = static_cast<size_t>(end - where.data());
    if (!where.substr(digits).starts_with(kChannelClose) || where.substr(0, digits) != std::to_string(channelIndex))
        return 0;
    return kChannelOpen.size() + digits + kChannelClose.size();
}

} // namespace

IxmlTrackText::KeyList::KeyList(std::vector<uint64_t> ascending)
    : keys(std::move(ascending)), forward(keys.size() + 1), backward(keys.size() + 1)
{
    std::iota(forward.begin(), forward.end(), 0u);
    std::iota(backward.begin(), backward.end(), 0u);
}

size_t IxmlTrackText::KeyList::follow(std::vector<uint32_t>& links, size_t slot)
{
    while (links[slot] != slot) {
        links[slot] = links[links[slot]]; // Halves the road for whoever comes next.
        slot = links[slot];
    }
    return slot;
}

void IxmlTrackText::KeyList::remove(uint64_t key)
{
    const auto slot = static_cast<size_t>(std::lower_bound(keys.begin(), keys.end(), key) - keys.begin());
    forward[slot] = static_cast<uint32_t>(slot + 1);
    backward[slot + 1] = static_cast<uint32_t>(slot);
}

uint64_t IxmlTrackText::KeyList::firstFrom(uint64_t key)
{
    const auto start = static_cast<size_t>(std::lower_bound(keys.begin(), keys.end(), key) - keys.begin());
    const size_t slot = follow(forward, start);
    return slot == keys.size() ? kNoKey : keys[slot];
}

uint64_t IxmlTrackText::KeyList::lastUpTo(uint64_t key)
{
    const auto start = static_cast<size_t>(std::upper_bound(keys.begin(), keys.end(), key) - keys.begin());
    const size_t slot = follow(backward, start);
    return slot == 0 ? kNoKey : keys[slot - 1];
}

IxmlTrackText::IxmlTrackText(std::string ixml) : text(std::move(ixml))
{
    buildIndex();
}

/// Groups the elements by their number, in the order of the text within a group.
uint64_t IxmlTrackText::channelKey(int32_t channelIndex, Tag tag)
{
    return uint64_t{ static_cast<uint32_t>(channelIndex) } << 32 | tag;
}

bool IxmlTrackText::matchTag(std::string_view where, size_t offset, Entry& found)
{
    const std::string_view rest = where.substr(offset);
    found.offset = offset;
    for (const PlainTag& each : kPlainTags) {
        if (rest.starts_with(each.bytes)) {
            found.kind = each.kind;
            found.length = static_cast<uint32_t>(each.bytes.size());
            return true;
        }
    }
    found.kind = Kind::ChannelIndex;
    found.length = static_cast<uint32_t>(channelElement(rest, found.channelIndex));
    return found.length != 0;
}

bool IxmlTrackText::findTag(std::string_view where, size_t from, Entry& found)
{
    for (size_t at = where.find('<', from); at != std::string_view::npos; at = where.find('<', at + 1)) {
        if (matchTag(where, at, found))
            return true;
    }
    return false;
}

void IxmlTrackText::buildIndex()
{
    entries.clear();
    edits.clear();
    std::array<std::vector<uint64_t>, kKinds> keys;
    Entry found;
    for (size_t from = 0; findTag(text, from, found); from = found.offset + found.length) {
        const auto tag = static_cast<Tag>(entries.size());
        entries.push_back(found);
        const bool isChannel = found.kind == Kind::ChannelIndex;
        keys[static_cast<size_t>(found.kind)].push_back(isChannel ? channelKey(found.channelIndex, tag) : tag);
    }

    std::vector<uint64_t>& channelKeys = keys[static_cast<size_t>(Kind::ChannelIndex)];
    std::sort(channelKeys.begin(), channelKeys.end());
    for (size_t kind = 0; kind < kKinds; ++kind)
        lists[kind] = KeyList(std::move(keys[kind]));

    std::vector<uint64_t> numbers(entries.size());
    std::iota(numbers.begin(), numbers.end(), uint64_t{ 0 });
    standing = KeyList(std::move(numbers));
    growth.assign(entries.size() + 1, 0);
}

IxmlTrackText::Tag IxmlTrackText::firstChannelIndex(int32_t channelIndex)
{
    const uint64_t key = listOf(Kind::ChannelIndex).firstFrom(channelKey(channelIndex, 0));
    const Tag tag = static_cast<Tag>(key); // Of no key this is kNone.
    if (tag == kNone || entries[tag].channelIndex != channelIndex)
        return kNone;
    return tag;
}

IxmlTrackText::Tag IxmlTrackText::lastInFrontOf(Tag tag, Kind kind)
{
    return static_cast<Tag>(listOf(kind).lastUpTo(tag));
}

IxmlTrackText::Tag IxmlTrackText::firstBehind(Tag tag, Kind kind)
{
    return static_cast<Tag>(listOf(kind).firstFrom(tag));
}

size_t IxmlTrackText::position(Tag tag) const
{
    int64_t shift = 0;
    for (size_t node = tag; node > 0; node &= node - 1)
        shift += growth[node];
    return static_cast<size_t>(static_cast<int64_t>(entries[tag].offset) + shift);
}

IxmlTrackText::Tag IxmlTrackText::tagAt(size_t offset) const
{
    const auto found = std::lower_bound(entries.begin(), entries.end(), offset,
        [](const Entry& entry, size_t wanted) { return entry.offset < wanted; });
    return static_cast<Tag>(found - entries.begin());
}

void IxmlTrackText::addGrowth(Tag behind, int64_t bytes)
{
    for (size_t node = size_t{ behind } + 1; node < growth.size(); node += node & (~node + 1))
        growth[node] += bytes;
}

void IxmlTrackText::removeBetween(Tag open, Tag close)
{
    for (uint64_t key = standing.firstFrom(uint64_t{ open } + 1); key < close; key = standing.firstFrom(key)) {
        const Tag tag = static_cast<Tag>(key);
        const Entry& entry = entries[tag];
        standing.remove(tag);
        listOf(entry.kind).remove(entry.kind == Kind::ChannelIndex ? channelKey(entry.channelIndex, tag) : tag);
    }
    edits.erase(edits.upper_bound(open), edits.lower_bound(close));
}

bool IxmlTrackText::replaceBetween(Tag open, Tag close, const std::string& value)
{
    const size_t before = position(close) - position(open) - entries[open].length;
    removeBetween(open, close);
    addGrowth(open, static_cast<int64_t>(value.size()) - static_cast<int64_t>(before));
    edits[open] = { close, value };

    Entry found;
    if (!findTag(value, 0, found))
        return false;
    text = edited();
    buildIndex();
    return true;
}

std::string IxmlTrackText::edited() const
{
    std::string result;
    size_t from = 0;
    for (const auto& [open, edit] : edits) {
        const size_t end = entries[open].offset + entries[open].length;
        result.append(text, from, end - from).append(edit.value);
        from = entries[edit.close].offset;
    }
    return result.append(text, from);
}
