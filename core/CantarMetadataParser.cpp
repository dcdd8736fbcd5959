#include "core/CantarMetadataParser.h"

#include "core/NumberText.h"
#include "core/TextTrim.h"

#include <array>
#include <optional>

namespace {

constexpr int kFrameRateDecimals = 3;

using TextField = std::string CantarMetadata::*;

struct KeyRule {
    std::string_view key; // Folded to upper case.
    TextField field;
    bool digital; // Only these keys mark a text as digital; "DTAKE" and its like do not.
};

// "AUBITS" has no entry on purpose: that line is written but never read back.
constexpr std::array<KeyRule, 18> kKeyRules{ {
    { "TS", &CantarMetadata::ubits, true },
    { "DUBITS", &CantarMetadata::ubits, true },
    { "DSCENE", &CantarMetadata::scene, true },
    { "ASCENE", &CantarMetadata::scene, false },
    { "SCENE", &CantarMetadata::scene, false },
    { "DTAKE", &CantarMetadata::take, false },
    { "ATAKE", &CantarMetadata::take, false },
    { "TAKE", &CantarMetadata::take, false },
    { "DTAPE", &CantarMetadata::tape, false },
    { "ATAPE", &CantarMetadata::tape, false },
    { "TAPE", &CantarMetadata::tape, false },
    { "DFRAMERATE", &CantarMetadata::frameRate, false },
    { "ASPEED", &CantarMetadata::frameRate, false },
    { "SPEED", &CantarMetadata::frameRate, false },
    { "ATAG", &CantarMetadata::tag, false },
    { "TAG", &CantarMetadata::tag, false },
    { "ANOTE", &CantarMetadata::note, false },
    { "NOTE", &CantarMetadata::note, false },
} };

constexpr std::array<std::string_view, 3> kTrackPrefixes{ "DTRK", "ATRK", "TRK" };

// "25.000FF" is "25.000", "23.976-ND" is "23.976". The key's case is open, the suffix's is not.
std::string_view cleanFrameRate(std::string_view value)
{
    if (value.ends_with("FF"))
        value.remove_suffix(2);
    return value.substr(0, value.find('-'));
}

bool assignText(std::string_view key, std::string_view value, CantarMetadata& record)
{
    for (const KeyRule& rule : kKeyRules) {
        if (rule.key != key)
            continue;
        record.*rule.field = rule.field == &CantarMetadata::frameRate ? cleanFrameRate(value) : value;
        record.digitalKeys = record.digitalKeys || rule.digital;
        return true;
    }
    return false;
}

// Tracks count from 1. A number of 0 or below has no entry, and an empty name says nothing.
void assignTrackName(std::string_view key, std::string_view value, CantarMetadata& record)
{
    for (std::string_view prefix : kTrackPrefixes) {
        if (!key.starts_with(prefix))
            continue;
        const std::optional<int32_t> number = NumberText::parseInt(key.substr(prefix.size()));
        if (number && *number > 0 && !value.empty())
            record.trackNames.set(static_cast<size_t>(*number) - 1, value);
        return;
    }
}

void appendLine(std::string& text, std::string_view key, std::string_view value)
{
    if (!value.empty())
        text.append(key).append("=").append(value).append("\n");
}

// The suffixes are fixed: an analogue line says non-drop whatever the file's own timecode does.
void appendFrameRate(std::string& text, const CantarMetadata& record, double frameRate)
{
    const std::string value
        = frameRate > 0.0 ? NumberText::formatFixed(frameRate, kFrameRateDecimals) : record.frameRate;
    if (value.empty())
        return;
    if (record.digitalKeys)
        appendLine(text, "dFRAMERATE", value + "FF");
    else
        appendLine(text, "aSPEED", value + "-ND");
}

} // namespace

TrackNameList::TrackNameList(std::initializer_list<std::string_view> list)
{
    for (std::string_view name : list)
        set(count, name);
}

const std::string& TrackNameList::operator[](size_t index) const
{
    static const std::string none;
    const auto entry = names.find(index);
    return entry == names.end() ? none : entry->second;
}

void TrackNameList::set(size_t index, std::string_view name)
{
    if (index >= count)
        count = index + 1;
    if (name.empty())
        names.erase(index);
    else
        names[index] = name;
}

std::string CantarMetadataParser::trim(std::string_view text)
{
    return std::string(trimBlanks(text));
}

void CantarMetadataParser::parseField(std::string_view line, CantarMetadata& record)
{
    const size_t equals = line.find('=');
    if (equals == std::string_view::npos)
        return;
    const std::string key = NumberText::toUpperAscii(trimBlanks(line.substr(0, equals)));
    const std::string_view value = trimBlanks(line.substr(equals + 1));
    if (!assignText(key, value, record))
        assignTrackName(key, value, record);
}

CantarMetadata CantarMetadataParser::parseDescription(std::string_view text)
{
    CantarMetadata record;
    while (!text.empty()) {
        const std::string_view line = text.substr(0, text.find('\n'));
        parseField(line, record);
        text.remove_prefix(line.size() < text.size() ? line.size() + 1 : line.size());
    }
    return record;
}

std::string CantarMetadataParser::buildDescription(const CantarMetadata& record, double frameRate)
{
    const std::string prefix = record.digitalKeys ? "d" : "a";
    std::string text;
    appendLine(text, record.digitalKeys ? "TS" : "aUBITS", record.ubits);
    appendLine(text, prefix + "SCENE", record.scene);
    appendLine(text, prefix + "TAKE", record.take);
    appendLine(text, prefix + "TAPE", record.tape);
    appendFrameRate(text, record, frameRate);
    appendLine(text, "aTAG", record.tag);
    appendLine(text, "aNOTE", record.note);
    for (const auto& [index, name] : record.trackNames.named())
        appendLine(text, prefix + "TRK" + std::to_string(index + 1), name);
    return text;
}
