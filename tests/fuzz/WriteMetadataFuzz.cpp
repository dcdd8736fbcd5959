// Saves any record over any file. Whatever comes of it, the length stays, and so does every byte outside the
// Description, the time reference and the payload of the iXML chunk that is found.

#include "core/BwfMetadata.h"
#include "core/BwfMetadataReader.h"
#include "core/BwfMetadataWriter.h"
#include "tests/support/ChangedRanges.h"
#include "tests/support/TempFolder.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace {

/// Takes the wanted record off the front of the input; what is left is the file.
class Input {
public:
    Input(const uint8_t* data, size_t size) : bytes(reinterpret_cast<const char*>(data), size) { }

    uint8_t byte()
    {
        if (bytes.empty())
            return 0;
        const auto value = static_cast<uint8_t>(bytes.front());
        bytes.erase(0, 1);
        return value;
    }

    std::string text()
    {
        const size_t length = std::min<size_t>(byte(), bytes.size());
        const std::string value = bytes.substr(0, length);
        bytes.erase(0, length);
        return value;
    }

    uint64_t number()
    {
        uint64_t value = 0;
        for (int i = 0; i < 8; ++i)
            value = value << 8 | byte();
        return value;
    }

    const std::string& rest() const { return bytes; }

private:
    std::string bytes;
};

BwfMetadata wantedRecord(Input& input)
{
    BwfMetadata wanted;
    const uint8_t which = input.byte();
    wanted.circled = (which & 1) != 0;
    wanted.wildTrack = (which & 2) != 0;
    if (which & 4)
        wanted.timeReference = input.number();
    for (std::string BwfMetadata::*field : { &BwfMetadata::scene, &BwfMetadata::take, &BwfMetadata::tape,
             &BwfMetadata::note, &BwfMetadata::project, &BwfMetadata::ubits }) {
        if (which & 8)
            wanted.*field = input.text();
    }
    for (int i = which >> 5; i > 0; --i) {
        const auto channel = static_cast<int32_t>(static_cast<int8_t>(input.byte()));
        std::string name = input.text();
        wanted.tracks.push_back({ channel, std::move(name), input.text() });
    }
    return wanted;
}

/// The payload of the first chunk of that name, by a walk of this target's own: eight bytes, then the size and its
/// pad byte on, in 32 bits. Nothing if there is none in the file.
std::optional<ByteRange> findPayload(const std::string& file, const char* id)
{
    for (uint64_t at = 12; at + 8 <= file.size();) {
        uint32_t size = 0;
        std::memcpy(&size, file.data() + at + 4, sizeof size);
        if (std::memcmp(file.data() + at, id, 4) == 0)
            return ByteRange{ at + 8, at + 8 + size };
        at += 8 + uint64_t{ static_cast<uint32_t>(size + size % 2) };
    }
    return std::nullopt;
}

std::vector<ByteRange> writableRanges(const std::string& file)
{
    std::vector<ByteRange> ranges;
    if (const auto bext = findPayload(file, "bext")) {
        ranges.push_back({ bext->begin, bext->begin + 256 });
        ranges.push_back({ bext->begin + 338, bext->begin + 346 });
    }
    if (const auto ixml = findPayload(file, "iXML"))
        ranges.push_back(*ixml);
    return ranges;
}

bool allowed(const ByteRange& changed, const std::vector<ByteRange>& ranges)
{
    for (uint64_t at = changed.begin; at < changed.end; ++at) {
        if (std::none_of(ranges.begin(), ranges.end(),
                [at](const ByteRange& each) { return at >= each.begin && at < each.end; }))
            return false;
    }
    return true;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static const TempFolder folder;
    static const std::string path = folder.file("hostile.wav");
    Input input(data, size);
    const BwfMetadata wanted = wantedRecord(input);
    const std::string& before = input.rest();
    writeBytes(path, before);

    (void)BwfMetadataWriter::writeMetadata(path, wanted); // Any answer will do; the file is what counts.

    const std::string after = readBytes(path);
    if (after.size() != before.size())
        std::abort();
    // The Description of a short `bext` runs over the header of what follows. The iXML chunk is looked for after that,
    // in the file as it then is.
    std::vector<ByteRange> ranges = writableRanges(before);
    const std::vector<ByteRange> later = writableRanges(after);
    ranges.insert(ranges.end(), later.begin(), later.end());
    for (const ByteRange& each : changedRanges(before, after)) {
        if (!allowed(each, ranges))
            std::abort();
    }
    (void)BwfMetadataReader::readMetadata(path);
    return 0;
}
