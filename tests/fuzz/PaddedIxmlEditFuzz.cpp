// Any payload edited by any wish. The length stays, bytes behind the text that the edit doesn't take stay, nothing
// grows without leave, and what the edit gives can be edited again. Then any file edited in place through a plan:
// nothing changes outside the Description, the time reference and the iXML payload.
//
// The wish comes off the front of the input, one byte or one field at a time; what is left is the payload, or the file.

#include "core/BwfMetadata.h"
#include "core/BwfMetadataReader.h"
#include "core/InPlaceEdit.h"
#include "core/PaddedIxmlEdit.h"
#include "tests/support/ChangedRanges.h"
#include "tests/support/TempFolder.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <iterator>
#include <optional>
#include <string>
#include <utility>

namespace {

class Input {
public:
    Input(const uint8_t* data, size_t size) : bytes(reinterpret_cast<const char*>(data), size) { }

    uint8_t byte() { return at == bytes.size() ? uint8_t{ 0 } : static_cast<uint8_t>(bytes[at++]); }

    /// A piece, or as many bytes of the input as the byte says.
    std::string value()
    {
        static const std::string kPieces[] = { "a", "longer", "a & b", "<", "</BWFXML>", "<NOTE>", "</NOTE>",
            "<WILD_TRACK>", "</CIRCLED>", "<NAME>n</NAME>", "$12345678", "\n", " " };
        const size_t which = byte();
        if (which >= 128)
            return kPieces[(which - 128) % std::size(kPieces)];
        const std::string text = bytes.substr(at, which);
        at += text.size();
        return text;
    }

    uint64_t number()
    {
        uint64_t value = 0;
        for (int i = 0; i < 8; ++i)
            value = value << 8 | byte();
        return value;
    }

    std::string rest() const { return bytes.substr(at); }

private:
    std::string bytes;
    size_t at = 0;
};

struct Wanted {
    uint8_t which = 0;
    std::optional<uint64_t> start;
    BwfMetadata values;

    explicit Wanted(Input& input) : which(input.byte())
    {
        values.circled = (which & 1) != 0;
        values.wildTrack = (which & 2) != 0;
        if ((which & 4) != 0)
            start = input.number() >> (input.byte() % 64);
        if ((which & 8) != 0) {
            for (std::string BwfMetadata::*field : { &BwfMetadata::note, &BwfMetadata::scene, &BwfMetadata::tape,
                     &BwfMetadata::take, &BwfMetadata::project, &BwfMetadata::ubits })
                values.*field = input.value();
        }
        for (int i = which >> 6; i > 0; --i) {
            const auto channel = static_cast<int32_t>(static_cast<int8_t>(input.byte()));
            std::string name = input.value();
            values.tracks.push_back({ channel, std::move(name), input.value() });
        }
    }

    bool usePadding() const { return (which & 16) != 0; }
    bool isFile() const { return (which & 32) != 0; }
};

void require(bool condition)
{
    if (!condition)
        std::abort();
}

void editPayload(const std::string& payload, const Wanted& wanted)
{
    BwfMetadata current;
    BwfMetadataReader::parseIxml(payload, current);
    const IxmlPayload edited
        = editedIxmlPayload(payload, { current, wanted.values, wanted.start, wanted.usePadding() });
    require((edited.missingBytes > 0) == (edited.state == IxmlPayload::State::TooLong));
    if (edited.state != IxmlPayload::State::Edited) {
        require(edited.bytes.empty());
        return;
    }
    require(edited.bytes.size() == payload.size() && edited.bytes != payload);
    if (!wanted.usePadding())
        return;
    const std::optional<IxmlRoom> before = ixmlRoom(payload);
    require(before.has_value());
    // Nothing that isn't padding is taken from behind the text, and what is left there is what stood there.
    const size_t last = edited.bytes.find_last_of('>');
    require(last != std::string::npos && ixmlRoom(edited.bytes).has_value());
    const size_t kept = payload.size() - std::max(before->textBytes, std::min(payload.size(), last + 3));
    require(edited.bytes.substr(payload.size() - kept) == payload.substr(payload.size() - kept));
}

bool isInside(const ByteRange& changed, const EditPlan& plan)
{
    return std::any_of(plan.patches.begin(), plan.patches.end(), [&](const EditPlan::Patch& patch) {
        return changed.begin >= patch.offset && changed.end <= patch.offset + patch.after.size();
    });
}

void editFile(const std::string& before, const Wanted& wanted)
{
    static const TempFolder folder;
    static const std::string path = folder.file("hostile.wav");
    writeBytes(path, before);
    InPlaceFile file(path, true);
    const std::optional<BwfMetadata> current = file.read();
    require(current.has_value());
    const EditPlan plan = file.plan({ *current, wanted.values, wanted.start, wanted.usePadding() });
    require(file.write(plan).state == EditWrite::State::Written);
    const std::string after = readBytes(path);
    require(after.size() == before.size());
    require(dataPayload(after) == dataPayload(before) && chunkList(after) == chunkList(before));
    for (const ByteRange& each : changedRanges(before, after))
        require(isInside(each, plan));
    for (const EditPlan::Patch& patch : plan.patches)
        require(patch.before.size() == patch.after.size() && patch.before != patch.after
            && before.compare(patch.offset, patch.before.size(), patch.before) == 0);
    const BwfMetadata read = BwfMetadataReader::readMetadata(path);
    if (plan.problems.empty() && wanted.start)
        require(read.timeReference == *wanted.start);
    if (plan.problems.empty())
        require(read.circled == wanted.values.circled && read.wildTrack == wanted.values.wildTrack);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    Input input(data, size);
    const Wanted wanted(input);
    if (wanted.isFile())
        editFile(input.rest(), wanted);
    else
        editPayload(input.rest(), wanted);
    return 0;
}
