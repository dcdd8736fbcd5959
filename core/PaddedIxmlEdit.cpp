#include "core/PaddedIxmlEdit.h"

#include "core/IxmlEdit.h"
#include "core/IxmlTags.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace {

using Element = IxmlTags::Element;
using Mark = IxmlTags::Mark;

constexpr std::string_view kPadding("\x20\x09\x0D\x0A\0", 5);
constexpr unsigned kHalfBits = 32;

/// A piece of the text and what takes its place.
struct Replacement {
    size_t begin = 0;
    size_t size = 0;
    std::string bytes;
};

std::string replaced(std::string text, std::vector<Replacement> replacements)
{
    std::sort(replacements.begin(), replacements.end(),
        [](const Replacement& first, const Replacement& second) { return first.begin > second.begin; });
    for (const Replacement& each : replacements)
        text.replace(each.begin, each.size, each.bytes);
    return text;
}

std::string digitsOf(uint64_t number, size_t width)
{
    std::string digits = std::to_string(number);
    if (digits.size() < width)
        digits.insert(0, width - digits.size(), '0');
    return digits;
}

/// The two halves of a start in one block.
class StartHalves {
public:
    StartHalves(const std::string& ixml, uint64_t samples)
        : text(ixml), low(samples & UINT32_MAX), high(samples >> kHalfBits)
    {
    }

    /// False if the high half has no place.
    bool take(std::string_view lowValue, std::string_view highValue)
    {
        if (lowValue.empty())
            return true;
        if (highValue.empty() && high != 0)
            return false;
        replace(lowValue, low);
        if (!highValue.empty())
            replace(highValue, high);
        return true;
    }

    std::string edited() { return replaced(text, std::move(replacements)); }

private:
    void replace(std::string_view value, uint64_t number)
    {
        const auto begin = static_cast<size_t>(value.data() - text.data());
        replacements.push_back({ begin, value.size(), digitsOf(number, value.size()) });
    }

    const std::string& text;
    uint64_t low;
    uint64_t high;
    std::vector<Replacement> replacements;
};

bool takeSpeed(const IxmlTags& tags, StartHalves& halves)
{
    const IxmlTags::Index begin = tags.find(Mark::SpeedBegin, Mark::SpeedBegin2, 0);
    if (begin == IxmlTags::kNone)
        return true;
    const IxmlTags::Index end = tags.find(Mark::SpeedEnd, Mark::SpeedEnd2, begin);
    const IxmlTags::Range block{ begin, std::min(end, tags.all().end) };
    return halves.take(
        tags.value(Element::SamplesSinceMidnightLo, block), tags.value(Element::SamplesSinceMidnightHi, block));
}

bool takeBext(const IxmlTags& tags, StartHalves& halves)
{
    const IxmlTags::Index begin = tags.find(Mark::BextBegin, Mark::BextBegin2, 0);
    if (begin == IxmlTags::kNone)
        return true;
    const IxmlTags::Index end = tags.find(Mark::BextEnd, Mark::BextEnd2, begin);
    if (end == IxmlTags::kNone)
        return true;
    const IxmlTags::Range block{ begin, end };
    return halves.take(tags.value(Element::TimeReferenceLow, block), tags.value(Element::TimeReferenceHigh, block));
}

/// A value that stands in the text takes the place of the old one; nothing is put in that wasn't there.
std::string withValue(const std::string& text, Element element, std::string_view value)
{
    const IxmlTags tags(text);
    const std::string_view old = tags.value(element, tags.all());
    if (old.empty())
        return text;
    return replaced(text, { { static_cast<size_t>(old.data() - text.data()), old.size(), std::string(value) } });
}

/// The literal edit leaves a WILD_TRACK element that is there as it is. Its value is set here, an empty one too.
std::string withWildTrack(std::string text, const IxmlWish& wish)
{
    constexpr std::string_view kOpen = "<WILD_TRACK>";
    if (!wish.updated.wildTrack || wish.current.wildTrack)
        return text;
    const size_t open = text.find(kOpen);
    const size_t close = text.find("</WILD_TRACK>");
    if (open < close && close != std::string::npos)
        text.replace(open + kOpen.size(), close - open - kOpen.size(), "TRUE");
    return text;
}

/// The element has eight digits, without the sign that the record shows in front of them.
std::string withUbits(const std::string& text, const IxmlWish& wish)
{
    std::string_view ubits = wish.updated.ubits;
    if (ubits.empty() || ubits == wish.current.ubits)
        return text;
    ubits.remove_prefix(ubits.front() == '$' ? 1 : 0);
    return withValue(text, Element::Ubits, xmlEscaped(ubits));
}

void escapeIfNew(std::string& text, std::string_view current)
{
    if (!text.empty() && text != current)
        text = xmlEscaped(text);
}

/// Nothing if the start has no place.
std::optional<std::string> editedText(const std::string& text, const IxmlWish& wish)
{
    std::string edited;
    if (wish.usePadding) {
        const BwfMetadata escaped = escapedForXml(wish.updated, wish.current);
        edited = editedIxml(text, wish.current, escaped).value_or(text);
        edited = withUbits(withWildTrack(edited, wish), wish);
    } else {
        edited = editedIxml(text, wish.current, wish.updated).value_or(text);
    }
    if (!wish.start)
        return edited;
    return ixmlWithStart(edited, *wish.start);
}

/// Growth is taken from the front of the padding. What shrinkage leaves is filled as the padding is: a NUL would spoil
/// the text for an XML parser where there was none.
std::string padded(std::string edited, std::string_view payload, const IxmlRoom& room)
{
    const std::string_view tail = payload.substr(room.textBytes);
    if (edited.size() >= room.textBytes)
        return edited.append(tail.substr(edited.size() - room.textBytes));
    const char fill = !tail.empty() && tail.front() == '\0' ? '\0' : ' ';
    return edited.append(room.textBytes - edited.size(), fill).append(tail);
}

} // namespace

std::optional<IxmlRoom> ixmlRoom(std::string_view payload)
{
    const size_t last = payload.find_last_not_of(kPadding);
    if (last == std::string_view::npos || payload[last] != '>')
        return std::nullopt;
    if (payload.substr(0, last).find('\0') != std::string_view::npos)
        return std::nullopt;
    size_t end = last + 1;
    if (payload.substr(end).starts_with('\r'))
        ++end;
    if (payload.substr(end).starts_with('\n'))
        ++end;
    return IxmlRoom{ end, payload.size() - end };
}

std::string xmlEscaped(std::string_view text)
{
    std::string escaped;
    for (const char each : text) {
        if (each == '&')
            escaped += "&amp;";
        else if (each == '<')
            escaped += "&lt;";
        else if (each == '>')
            escaped += "&gt;";
        else if (static_cast<unsigned char>(each) >= ' ' || each == '\t' || each == '\n' || each == '\r')
            escaped += each;
    }
    return escaped;
}

BwfMetadata escapedForXml(BwfMetadata updated, const BwfMetadata& current)
{
    for (std::string BwfMetadata::*field :
        { &BwfMetadata::note, &BwfMetadata::scene, &BwfMetadata::tape, &BwfMetadata::take, &BwfMetadata::project })
        escapeIfNew(updated.*field, current.*field);
    static const BwfTrack kNone;
    for (size_t i = 0; i < updated.tracks.size(); ++i) {
        const BwfTrack& old = i < current.tracks.size() ? current.tracks[i] : kNone;
        escapeIfNew(updated.tracks[i].name, old.name);
        escapeIfNew(updated.tracks[i].function, old.function);
    }
    return updated;
}

std::optional<std::string> ixmlWithStart(const std::string& text, uint64_t samples)
{
    const IxmlTags tags(text);
    StartHalves halves(text, samples);
    if (!takeSpeed(tags, halves) || !takeBext(tags, halves))
        return std::nullopt;
    return halves.edited();
}

IxmlPayload editedIxmlPayload(const std::string& payload, const IxmlWish& wish)
{
    IxmlRoom room{ payload.size(), 0 };
    if (wish.usePadding) {
        const std::optional<IxmlRoom> found = ixmlRoom(payload);
        if (!found)
            return { IxmlPayload::State::ForeignBytes, {}, 0 };
        room = *found;
    }
    std::optional<std::string> edited = editedText(payload.substr(0, room.textBytes), wish);
    if (!edited)
        return { IxmlPayload::State::NoPlaceForStart, {}, 0 };
    if (edited->size() > payload.size())
        return { IxmlPayload::State::TooLong, {}, edited->size() - payload.size() };
    if (wish.usePadding)
        *edited = padded(std::move(*edited), payload, room);
    else
        edited->resize(payload.size(), '\0');
    if (*edited == payload)
        return {};
    return { IxmlPayload::State::Edited, std::move(*edited), 0 };
}
