#include "cli/FileFindings.h"

#include "cli/WavFile.h"
#include "core/BextLayout.h"
#include "core/BwfMetadataReader.h"
#include "core/LittleEndian.h"
#include "core/MetadataChanges.h"
#include "core/NumberText.h"
#include "core/TextTrim.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <fstream>
#include <set>

namespace {

constexpr size_t kBextBytes = 602;
constexpr size_t kFileHeaderBytes = 8; // Id and size; the size doesn't count them.
constexpr size_t kSizeOffset = 4;
constexpr uint64_t kTwoTo32 = uint64_t{ 1 } << 32;
constexpr double kRateTolerance = 0.01; // 23.976 and 23.98 are one rate.

using Findings = std::vector<Finding>;

std::string idOf(const ChunkList::Chunk& chunk)
{
    return std::string(chunk.id.data(), chunk.id.size());
}

std::string quoted(std::string_view text)
{
    return "'" + std::string(text) + "'";
}

// True if a walk that knows 32 bits alone finds the chunk where it stands: that is what the window sees.
bool isSeen(const std::string& path, const ChunkList& chunks, std::string_view id)
{
    const ChunkList::Chunk* const chunk = chunks.find(id);
    if (!chunk || (chunks.fileId != "RIFF" && chunks.fileId != "RF64"))
        return false;
    std::ifstream stream(path, std::ios::binary);
    uint32_t size = 0;
    uint32_t position = 0;
    return BwfMetadataReader::findChunk(stream, id, size, position) && position == chunk->payload();
}

void checkChunk(const CheckedFile& file, const char* id, bool isThere, bool isSeen, Findings& findings)
{
    const std::string code = NumberText::toUpperAscii(id) == "BEXT" ? "no-bext" : "no-ixml";
    if (!isThere)
        findings.push_back({ Severity::Warning, code, "no " + std::string(id) + " chunk can be found in it", id });
    else if (!isSeen && file.facts.chunks.fileId != "BW64")
        findings.push_back({ Severity::Warning, "behind-rf64-audio",
            "its " + std::string(id) + " stands where the window doesn't see it, behind the audio", id });
}

void checkPresence(const CheckedFile& file, Findings& findings)
{
    const ChunkList& chunks = file.facts.chunks;
    if (chunks.fileId == "BW64")
        findings.push_back({ Severity::Warning, "container-not-shown", "it is BW64, which the window doesn't read" });
    checkChunk(file, "bext", chunks.find("bext") != nullptr, file.seesBext, findings);
    checkChunk(file, "iXML", chunks.find("iXML") != nullptr, file.seesIxml, findings);
    if (!chunks.find("fmt "))
        findings.push_back({ Severity::Error, "no-fmt", "it has no fmt chunk", "fmt " });
    if (!chunks.find("data"))
        findings.push_back({ Severity::Error, "no-data", "it has no data chunk", "data" });
    if (chunks.find("fmt ") && chunks.find("data") && chunks.find("data")->offset < chunks.find("fmt ")->offset)
        findings.push_back({ Severity::Error, "data-before-fmt", "its data stands in front of fmt", "data" });
    const ChunkList::Chunk* const bext = chunks.find("bext");
    if (bext && bext->size < kBextBytes)
        findings.push_back({ Severity::Error, "bext-short",
            "its bext has " + std::to_string(bext->size) + " bytes, " + std::to_string(kBextBytes - bext->size)
                + " too few for its fields",
            "bext" });
}

void checkSizes(const CheckedFile& file, Findings& findings)
{
    const uint64_t declared = file.declaredBytes;
    const uint64_t size = file.facts.record.fileSize;
    const ChunkList& chunks = file.facts.chunks;
    for (const ChunkList::Chunk& chunk : chunks.chunks) {
        const uint64_t room = size - std::min(size, chunk.payload());
        if (chunk.size > room)
            findings.push_back({ Severity::Error, "size-past-end",
                "its " + idOf(chunk) + " chunk claims " + std::to_string(chunk.size) + " bytes where the file has "
                    + std::to_string(room),
                idOf(chunk) });
    }
    // Some recorders count the last pad byte and don't write it.
    if (chunks.fileId == "RIFF" && declared > size + 1)
        findings.push_back({ Severity::Error, "size-past-end",
            "its header claims " + std::to_string(declared) + " bytes where the file has " + std::to_string(size),
            "RIFF" });
    if (chunks.isCut)
        findings.push_back({ Severity::Info, "chunks-cut", "it has more chunks than were looked at" });
}

void checkForm(const IxmlDocument& ixml, Findings& findings)
{
    using Form = IxmlDocument::Form;
    const auto add = [&findings](Severity severity, const char* code, const std::string& words) {
        findings.push_back({ severity, code, words, "iXML" });
    };
    switch (ixml.form) {
    case Form::WellFormed:
        return;
    case Form::NotWellFormed:
        return add(Severity::Error, "ixml-not-well-formed", "its iXML is no well-formed XML: " + ixml.complaint);
    case Form::NotUtf8:
        return add(Severity::Error, "ixml-not-utf8", "its iXML holds bytes that are no UTF-8");
    case Form::OtherEncoding:
        return add(Severity::Warning, "ixml-encoding", "its iXML is declared as " + ixml.complaint + ", not as UTF-8");
    case Form::HasDoctype:
        return add(Severity::Warning, "ixml-doctype", "its iXML has a document type, which was not read on");
    case Form::TooLarge:
        return add(Severity::Warning, "ixml-too-large", "its iXML is too large to be looked at");
    }
}

std::string descriptionOf(const CheckedFile& file)
{
    if (file.bext.size() < BextLayout::kDescription.size)
        return {};
    const std::string field = file.bext.substr(0, BextLayout::kDescription.size);
    return field.substr(0, field.find('\0'));
}

std::string sameForm(std::string_view key, std::string_view value)
{
    if (key == "UBITS" && value.starts_with('$'))
        value.remove_prefix(1);
    return key == "UBITS" || key == "CIRCLED" ? NumberText::toUpperAscii(value) : std::string(value);
}

void checkText(const char* key, const std::string& field, std::string_view ixml,
    const std::map<std::string, std::string>& description, Findings& findings)
{
    const auto found = description.find(key);
    if (found == description.end() || found->second.empty() || ixml.empty())
        return;
    if (sameForm(key, ixml) == sameForm(key, found->second))
        return;
    findings.push_back({ Severity::Warning, "fields-disagree",
        "its " + field + " is " + quoted(ixml) + " in the iXML and " + quoted(found->second) + " in the Description",
        field, std::string(ixml), found->second });
}

// "24000/1001", "25", "23.976", "023.976-ND" and "29.97DF".
std::optional<double> rateIn(std::string_view text)
{
    const size_t slash = text.find('/');
    const std::optional<double> above = NumberText::parseDouble(text.substr(0, slash));
    if (slash == std::string_view::npos || !above)
        return above;
    const std::optional<double> below = NumberText::parseDouble(text.substr(slash + 1));
    return below && *below > 0.0 ? std::optional(*above / *below) : std::nullopt;
}

void checkRates(const CheckedFile& file, const std::map<std::string, std::string>& description, Findings& findings)
{
    const std::string_view ixml = file.ixml.value("SPEED/TIMECODE_RATE");
    for (const char* const key : { "SPEED", "FRAMERATE" }) {
        const auto found = description.find(key);
        const auto inIxml = rateIn(ixml);
        const auto inText = found == description.end() ? std::nullopt : rateIn(found->second);
        if (inIxml && inText && !(std::fabs(*inIxml - *inText) < kRateTolerance))
            findings.push_back({ Severity::Warning, "fields-disagree",
                "its frame rate is " + quoted(ixml) + " in the iXML and " + quoted(found->second)
                    + " in the Description",
                "frame_rate", std::string(ixml), found->second });
    }
}

void checkAgreement(const CheckedFile& file, Findings& findings)
{
    const auto description = descriptionValues(descriptionOf(file));
    const IxmlDocument& ixml = file.ixml;
    for (const char* const key : { "PROJECT", "SCENE", "TAKE", "TAPE", "NOTE", "UBITS", "CIRCLED" }) {
        std::string field(key);
        std::transform(
            field.begin(), field.end(), field.begin(), [](char each) { return static_cast<char>(each - 'A' + 'a'); });
        checkText(key, field, ixml.value(key), description, findings);
    }
    for (const IxmlDocument::Track& track : ixml.tracks) {
        const std::string key = "TRK" + track.channelIndex;
        checkText(key.c_str(), "track " + track.channelIndex, track.name, description, findings);
    }
    checkRates(file, description, findings);
}

/// A count of samples that the iXML gives in two halves of 32 bits. Some recorders write the low one as a signed
/// number, some the whole count.
struct Halves {
    std::string_view low;
    std::string_view high;

    static std::optional<uint64_t> half(std::string_view text)
    {
        if (text.starts_with('-')) {
            int32_t negative = 0;
            const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), negative);
            const bool whole = error == std::errc() && end == text.data() + text.size();
            return whole ? std::optional<uint64_t>(static_cast<uint32_t>(negative)) : std::nullopt;
        }
        uint64_t number = 0;
        const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
        return error == std::errc() && end == text.data() + text.size() ? std::optional(number) : std::nullopt;
    }

    std::optional<uint64_t> joined() const
    {
        const auto lowHalf = half(low);
        const auto highHalf = high.empty() ? std::optional<uint64_t>(0) : half(high);
        if (!lowHalf || !highHalf || *highHalf >= kTwoTo32 || (*lowHalf >= kTwoTo32 && *highHalf != 0))
            return std::nullopt;
        return *highHalf * kTwoTo32 + *lowHalf;
    }
};

// Equal as counts, or as moments where both name the rate that they count in.
bool sameStart(uint64_t ixml, uint32_t ixmlRate, uint64_t bext, uint32_t audioRate)
{
    if (ixml == bext)
        return true;
    constexpr uint64_t kMost = UINT64_MAX / UINT32_MAX;
    return ixmlRate != 0 && audioRate != 0 && ixml <= kMost && bext <= kMost && ixml * audioRate == bext * ixmlRate;
}

void checkStart(const CheckedFile& file, const Halves& halves, uint32_t rate, const char* field, Findings& findings)
{
    if (halves.low.empty())
        return;
    const std::optional<uint64_t> ixml = halves.joined();
    if (!ixml) {
        findings.push_back({ Severity::Warning, "start-unreadable",
            "its iXML gives a start of " + quoted(halves.high) + " and " + quoted(halves.low), field });
        return;
    }
    if (file.bext.size() < BextLayout::kTimeReference.end())
        return;
    const uint64_t bext = littleEndian64(file.bext.data() + BextLayout::kTimeReference.offset);
    if (!sameStart(*ixml, rate, bext, file.facts.record.sampleRate))
        findings.push_back({ Severity::Error, "start-differs",
            "its start is " + std::to_string(*ixml) + " samples in the iXML and " + std::to_string(bext) + " in bext",
            field, std::to_string(*ixml), std::to_string(bext) });
}

void checkStarts(const CheckedFile& file, Findings& findings)
{
    const IxmlDocument& ixml = file.ixml;
    const auto rate = Halves::half(ixml.value("SPEED/TIMESTAMP_SAMPLE_RATE")).value_or(0);
    checkStart(file,
        { ixml.value("SPEED/TIMESTAMP_SAMPLES_SINCE_MIDNIGHT_LO"),
            ixml.value("SPEED/TIMESTAMP_SAMPLES_SINCE_MIDNIGHT_HI") },
        rate < kTwoTo32 ? static_cast<uint32_t>(rate) : 0, "timestamp_samples", findings);
    checkStart(file, { ixml.value("BEXT/BWF_TIME_REFERENCE_LOW"), ixml.value("BEXT/BWF_TIME_REFERENCE_HIGH") }, 0,
        "bext.time_reference", findings);
}

void checkInterleave(const CheckedFile& file, Findings& findings)
{
    std::set<uint64_t> met;
    for (const IxmlDocument::Track& track : file.ixml.tracks) {
        if (track.interleaveIndex.empty())
            continue;
        const auto place = Halves::half(track.interleaveIndex);
        const bool inRange = place && *place >= 1 && *place <= file.facts.record.channels;
        if (!inRange || !met.insert(*place).second) {
            findings.push_back({ Severity::Warning, "interleave-index",
                "its track list gives a track the place " + quoted(track.interleaveIndex)
                    + (inRange ? " that another one has" : " that the audio doesn't have"),
                "tracks" });
            return;
        }
    }
}

void checkTracks(const CheckedFile& file, Findings& findings)
{
    const uint16_t channels = file.facts.record.channels;
    const size_t tracks = file.ixml.tracks.size();
    if (channels == 0 || tracks == 0 || file.ixml.form != IxmlDocument::Form::WellFormed)
        return;
    if (tracks != channels) {
        findings.push_back({ Severity::Warning, "track-count",
            "it lists " + std::to_string(tracks) + " tracks and has " + std::to_string(channels) + " channels",
            "tracks" });
        return;
    }
    const std::string_view count = file.ixml.value("TRACK_LIST/TRACK_COUNT");
    if (!count.empty() && Halves::half(count) != tracks)
        findings.push_back({ Severity::Warning, "track-count",
            "its track list says " + quoted(count) + " and has " + std::to_string(tracks) + " tracks", "tracks" });
    checkInterleave(file, findings);
}

void checkFormat(const CheckedFile& file, const char* path, uint32_t actual, const char* field, const char* code,
    const char* words, Findings& findings)
{
    const std::string_view stated = file.ixml.value(path);
    const auto number = Halves::half(stated);
    if (number && actual != 0 && *number != actual)
        findings.push_back({ Severity::Warning, code,
            std::string("its ") + words + " is " + std::string(stated) + " in the iXML and " + std::to_string(actual)
                + " in fmt",
            field });
}

void checkTime(const CheckedFile& file, Findings& findings)
{
    const FileFacts& facts = file.facts;
    if (!(facts.record.frameRate > 0.0)) {
        findings.push_back({ Severity::Warning, "no-frame-rate", "it names no frame rate", "frame_rate" });
        return;
    }
    if (!facts.frameRate)
        findings.push_back({ Severity::Warning, "odd-frame-rate",
            "its frame rate of " + NumberText::formatFixed(facts.record.frameRate, 3) + " is none that timecode has",
            "frame_rate" });
    else if (facts.record.dropFrame && !facts.dropFrame)
        findings.push_back({ Severity::Warning, "odd-drop-frame",
            "it says drop-frame at " + facts.frameRate->toString() + ", where no number is left out", "drop_frame" });
}

} // namespace

std::string_view nameOf(Severity severity)
{
    switch (severity) {
    case Severity::Info:
        return "info";
    case Severity::Warning:
        return "warning";
    case Severity::Error:
        return "error";
    }
    return {};
}

std::map<std::string, std::string> descriptionValues(std::string_view description)
{
    static const std::set<std::string, std::less<>> kKeys
        = { "PROJECT", "SCENE", "TAKE", "TAPE", "NOTE", "UBITS", "CIRCLED", "SPEED", "FRAMERATE" };
    std::map<std::string, std::string> values;
    const bool mayBeCut = description.size() + 1 >= BextLayout::kDescription.size;
    while (!description.empty()) {
        const size_t end = description.find_first_of("\r\n");
        const std::string_view line = description.substr(0, end);
        const size_t sign = line.find('=');
        if (end == std::string_view::npos && mayBeCut)
            break;
        description.remove_prefix(end == std::string_view::npos ? description.size() : end + 1);
        if (sign == std::string_view::npos)
            continue;
        std::string key = NumberText::toUpperAscii(trimBlanks(line.substr(0, sign)));
        const auto isKnown = [](std::string_view text) { return kKeys.contains(text) || text.starts_with("TRK"); };
        if (!isKnown(key))
            key.erase(0, 1);
        if (isKnown(key))
            values[key] = trimBlanks(line.substr(sign + 1));
    }
    return values;
}

CheckedFile readCheckedFile(const std::string& path)
{
    CheckedFile checked;
    checked.facts = readFileFacts(path);
    const ChunkList& chunks = checked.facts.chunks;
    WavFile file(path);
    if (const ChunkList::Chunk* const bext = chunks.find("bext"))
        checked.bext = file.read(bext->payload(), std::min<uint64_t>(bext->size, kBextBytes));
    if (const ChunkList::Chunk* const ixml = chunks.find("iXML"))
        checked.ixml = parseIxmlDocument(file.read(ixml->payload(), ixml->size));
    std::string header = file.read(0, kFileHeaderBytes);
    header.resize(kFileHeaderBytes);
    checked.declaredBytes = littleEndian32(header.data() + kSizeOffset) + kFileHeaderBytes;
    checked.seesBext = isSeen(path, chunks, "bext");
    checked.seesIxml = isSeen(path, chunks, "iXML");
    return checked;
}

std::vector<Finding> findingsOf(const CheckedFile& file)
{
    Findings findings;
    checkPresence(file, findings);
    checkSizes(file, findings);
    checkForm(file.ixml, findings);
    checkAgreement(file, findings);
    checkStarts(file, findings);
    checkTracks(file, findings);
    checkFormat(file, "SPEED/FILE_SAMPLE_RATE", file.facts.record.sampleRate, "sample_rate", "sample-rate-differs",
        "sample rate", findings);
    checkFormat(file, "SPEED/AUDIO_BIT_DEPTH", file.facts.record.bitsPerSample, "bits_per_sample", "bit-depth-differs",
        "bit depth", findings);
    checkTime(file, findings);
    return findings;
}
