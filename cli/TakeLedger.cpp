#include "cli/TakeLedger.h"

#include <algorithm>
#include <filesystem>

namespace {

constexpr double kUnknownFrame = 1.0 / 24; // Seconds; a rate that isn't known can't matter much here.
constexpr size_t kMostCompared = 64; // Takes of one name that a file is compared with.

// A separator that no text of an iXML can hold keeps joined texts apart.
std::string joined(std::string_view first, std::string_view second)
{
    return std::string(first).append(1, '\0').append(second);
}

std::string nameOf(const std::string& path)
{
    return std::filesystem::path(path).filename().string();
}

} // namespace

// Rounding at both ends makes neighbours overlap by less than a frame.
bool TakeLedger::Entry::overlaps(const Entry& other) const
{
    if (!hasTime() || !other.hasTime())
        return false;
    return std::min(end, other.end) - std::max(begin, other.begin) > std::max(frame, other.frame);
}

bool TakeLedger::Entry::belongsTo(const Entry& other) const
{
    if (!family.empty() && family == other.family)
        return true;
    const bool together
        = hasTime() && other.hasTime() && std::max(begin, other.begin) - std::min(begin, other.begin) < frame;
    return together && take == other.take && nameOf(path) != nameOf(other.path);
}

TakeLedger::Entry TakeLedger::entryOf(const CheckedFile& file)
{
    const FileFacts& facts = file.facts;
    const BwfMetadata& record = facts.record;
    Entry entry;
    entry.path = facts.path;
    if (!record.scene.empty() && !record.take.empty())
        entry.take = joined(record.project, joined(record.scene, record.take));
    entry.family = file.ixml.value("FILE_SET/FAMILY_UID");
    if (!record.tape.empty())
        entry.roll = joined(record.tape, record.originationDate);
    entry.frame = facts.frameRate ? double(facts.frameRate->denominator) / facts.frameRate->numerator : kUnknownFrame;
    // 0 is midnight as well as "no start".
    if (record.timeReference != 0 && facts.startSampleRate != 0 && record.sampleRate != 0) {
        entry.begin = static_cast<double>(record.timeReference) / facts.startSampleRate;
        entry.end = entry.begin + static_cast<double>(facts.frameCount().value_or(0)) / record.sampleRate;
    }
    return entry;
}

void TakeLedger::checkName(const Entry& entry, std::vector<Finding>& findings) const
{
    const auto found = byTake.find(entry.take);
    if (entry.take.empty() || found == byTake.end())
        return;
    for (const size_t index : found->second) {
        const Entry& other = entries[index];
        const bool otherRecorder = entry.roll != other.roll && entry.overlaps(other);
        if (entry.belongsTo(other) || otherRecorder)
            continue;
        findings.push_back({ .severity = Severity::Warning,
            .code = "duplicate-take",
            .message = "it has the scene and take of " + other.path,
            .field = "take",
            .otherPath = other.path });
        return;
    }
}

void TakeLedger::checkUid(const CheckedFile& file, std::vector<Finding>& findings)
{
    const std::string uid(file.ixml.value("FILE_UID"));
    if (uid.empty())
        return;
    const auto [found, isNew] = byUid.emplace(uid, entries.size());
    if (isNew)
        return;
    const std::string& other = entries[found->second].path;
    findings.push_back({ .severity = Severity::Warning,
        .code = "duplicate-file-uid",
        .message = "it is a copy of " + other + " by its file UID",
        .field = "file_uid",
        .otherPath = other });
}

void TakeLedger::checkRoll(const Entry& entry, std::vector<Finding>& findings) const
{
    const auto roll = rolls.find(entry.roll);
    if (entry.roll.empty() || !entry.hasTime() || roll == rolls.end())
        return;
    const auto& byBegin = roll->second.byBegin;
    const auto end = byBegin.lower_bound(entry.end);
    for (auto each = byBegin.lower_bound(entry.begin - roll->second.longest); each != end; ++each) {
        const Entry& other = entries[each->second];
        if (!entry.overlaps(other) || entry.belongsTo(other))
            continue;
        findings.push_back({ .severity = Severity::Warning,
            .code = "timecode-overlap",
            .message = "its timecode overlaps that of " + other.path + " on the same roll",
            .field = "timecode_start",
            .otherPath = other.path });
        return;
    }
}

std::vector<Finding> TakeLedger::add(const CheckedFile& file)
{
    std::vector<Finding> findings;
    const Entry entry = entryOf(file);
    checkUid(file, findings);
    checkName(entry, findings);
    checkRoll(entry, findings);
    if (!entry.take.empty() && byTake[entry.take].size() < kMostCompared)
        byTake[entry.take].push_back(entries.size());
    if (!entry.roll.empty() && entry.hasTime()) {
        Roll& roll = rolls[entry.roll];
        roll.byBegin.emplace(entry.begin, entries.size());
        roll.longest = std::max(roll.longest, entry.end - entry.begin);
    }
    entries.push_back(entry);
    return findings;
}
