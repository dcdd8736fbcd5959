#include "tests/support/ChangedRanges.h"

#include "tests/support/TempFolder.h"

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <ostream>
#include <sstream>

namespace {

constexpr uint64_t kHeaderBytes = 8;
constexpr uint64_t kFirstChunk = 12;

uint64_t numberAt(std::string_view file, uint64_t offset, int width)
{
    uint64_t value = 0;
    for (int i = width - 1; i >= 0; --i) {
        const uint64_t place = offset + static_cast<uint64_t>(i);
        value = value << 8 | (place < file.size() ? static_cast<unsigned char>(file[place]) : 0u);
    }
    return value;
}

uint64_t ds64DataSize(std::string_view file)
{
    for (uint64_t at = kFirstChunk; at + kHeaderBytes <= file.size();) {
        const uint64_t size = numberAt(file, at + 4, 4);
        if (file.substr(at, 4) == "ds64")
            return numberAt(file, at + kHeaderBytes + 8, 8);
        at += kHeaderBytes + size + size % 2;
    }
    return 0;
}

/// Size of the payload, which for the placeholder of an RF64 file stands in `ds64`.
uint64_t payloadSize(std::string_view file, uint64_t chunk)
{
    const uint64_t size = numberAt(file, chunk + 4, 4);
    const bool placeholder = size == UINT32_MAX && file.starts_with("RF64") && file.substr(chunk, 4) == "data";
    return placeholder ? ds64DataSize(file) : size;
}

int64_t modificationTime(const std::string& path)
{
    return std::filesystem::last_write_time(path).time_since_epoch().count();
}

int64_t setBackModificationTime(const std::string& path)
{
    const auto earlier = std::filesystem::file_time_type::clock::now() - std::chrono::hours(1);
    std::filesystem::last_write_time(path, earlier);
    return modificationTime(path);
}

std::vector<std::string> namesBeside(const std::string& path)
{
    std::vector<std::string> names;
    const std::filesystem::path folder = std::filesystem::absolute(path).parent_path();
    for (const auto& each : std::filesystem::directory_iterator(folder))
        names.push_back(each.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
}

std::string listed(const std::vector<ByteRange>& ranges)
{
    std::ostringstream out;
    for (size_t i = 0; i < ranges.size() && i < 20; ++i)
        out << ranges[i] << ' ';
    if (ranges.size() > 20)
        out << "and " << ranges.size() - 20 << " more";
    return out.str();
}

bool liesWithin(const ByteRange& inner, const ByteRange& outer)
{
    return inner.begin >= outer.begin && inner.end <= outer.end;
}

bool overlap(const ByteRange& a, const ByteRange& b)
{
    return a.begin < b.end && b.begin < a.end;
}

/// Neighbouring ranges made one, so that a run across their border lies within.
std::vector<ByteRange> joined(std::vector<ByteRange> ranges)
{
    std::sort(ranges.begin(), ranges.end(), [](const auto& a, const auto& b) { return a.begin < b.begin; });
    std::vector<ByteRange> result;
    for (const ByteRange& each : ranges) {
        if (!result.empty() && each.begin <= result.back().end)
            result.back().end = std::max(result.back().end, each.end);
        else
            result.push_back(each);
    }
    return result;
}

} // namespace

std::ostream& operator<<(std::ostream& out, const ByteRange& range)
{
    return out << '[' << range.begin << ',' << range.end << ')';
}

std::vector<ByteRange> changedRanges(std::string_view before, std::string_view after)
{
    std::vector<ByteRange> ranges;
    const size_t shared = std::min(before.size(), after.size());
    const size_t longer = std::max(before.size(), after.size());
    for (size_t at = 0; at < longer;) {
        if (at < shared) {
            const auto from = before.begin() + static_cast<std::ptrdiff_t>(at);
            const auto to = before.begin() + static_cast<std::ptrdiff_t>(shared);
            at = static_cast<size_t>(
                std::mismatch(from, to, after.begin() + static_cast<std::ptrdiff_t>(at)).first - before.begin());
            if (at == longer)
                break;
        }
        const size_t begin = at;
        while (at < longer && (at >= shared || before[at] != after[at]))
            ++at;
        ranges.push_back({ begin, at });
    }
    return ranges;
}

std::vector<ChunkPlace> chunkList(std::string_view file)
{
    std::vector<ChunkPlace> chunks;
    for (uint64_t at = kFirstChunk; at + kHeaderBytes <= file.size();) {
        chunks.push_back({ std::string(file.substr(at, 4)), at, static_cast<uint32_t>(numberAt(file, at + 4, 4)) });
        const uint64_t size = payloadSize(file, at);
        const uint64_t step = kHeaderBytes + size + size % 2;
        if (step < size || step > file.size() - at)
            break;
        at += step;
    }
    return chunks;
}

std::string dataPayload(std::string_view file)
{
    for (const ChunkPlace& each : chunkList(file)) {
        if (each.id == "data")
            return std::string(file.substr(each.offset + kHeaderBytes, payloadSize(file, each.offset)));
    }
    return {};
}

FileProof::FileProof(const std::string& path)
    : file(path), bytes(readBytes(path)), modified(setBackModificationTime(path)), neighbours(namesBeside(path))
{
}

std::string FileProof::frameKept(const std::string& after) const
{
    std::string wrong;
    if (after.size() != bytes.size())
        wrong += "the length went from " + std::to_string(bytes.size()) + " to " + std::to_string(after.size()) + "; ";
    if (chunkList(after) != chunkList(bytes))
        wrong += "the chunk list is another; ";
    if (dataPayload(after) != dataPayload(bytes))
        wrong += "the audio is another; ";
    if (namesBeside(file) != neighbours)
        wrong += "the folder holds other files; ";
    return wrong;
}

std::string FileProof::untouched() const
{
    std::string wrong = changedExactly({});
    if (modificationTime(file) != modified)
        wrong += "the modification time is another; ";
    return wrong;
}

std::string FileProof::changedExactly(const std::vector<ByteRange>& ranges) const
{
    const std::string after = readBytes(file);
    std::string wrong = frameKept(after);
    const std::vector<ByteRange> changed = changedRanges(bytes, after);
    if (changed != ranges)
        wrong += "changed are " + listed(changed) + "and not " + listed(ranges);
    return wrong;
}

std::string FileProof::patchedExactly(const std::vector<Patch>& patches) const
{
    std::string expected = bytes;
    for (const Patch& each : patches) {
        if (each.offset > expected.size() || each.bytes.size() > expected.size() - each.offset)
            return "a patch lies outside the file";
        expected.replace(each.offset, each.bytes.size(), each.bytes);
    }
    const std::string after = readBytes(file);
    std::string wrong = frameKept(after);
    if (after != expected)
        wrong += "changed are " + listed(changedRanges(bytes, after)) + "and other than expected "
            + listed(changedRanges(expected, after));
    return wrong;
}

std::string FileProof::changedWithin(const std::vector<ByteRange>& ranges) const
{
    std::string wrong = unchangedOutside(ranges);
    const std::vector<ByteRange> changed = changedRanges(bytes, readBytes(file));
    for (const ByteRange& range : ranges) {
        if (std::none_of(changed.begin(), changed.end(), [&](const ByteRange& each) { return overlap(each, range); }))
            wrong += "nothing changed in " + listed({ range });
    }
    return wrong;
}

std::string FileProof::unchangedOutside(const std::vector<ByteRange>& ranges) const
{
    const std::string after = readBytes(file);
    std::string wrong = frameKept(after);
    const std::vector<ByteRange> allowed = joined(ranges);
    for (const ByteRange& each : changedRanges(bytes, after)) {
        if (std::none_of(
                allowed.begin(), allowed.end(), [&](const ByteRange& range) { return liesWithin(each, range); }))
            wrong += "changed is " + listed({ each }) + "; ";
    }
    return wrong;
}
