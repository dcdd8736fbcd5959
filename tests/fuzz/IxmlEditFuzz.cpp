// Any iXML text edited by any two records: the edit must give what a literal search for each tag gives, one after the
// other in the text as it then stands.
//
// The records come off the front of the input, one byte or one field at a time; what is left is the text. A value is a
// piece of the list below, so that values hold tags often, or bytes of the input.

#include "core/BwfMetadata.h"
#include "core/IxmlEdit.h"
#include "tests/support/PlainIxmlEdit.h"

#include <cstdint>
#include <cstdlib>
#include <iterator>
#include <string>
#include <utility>

namespace {

class Input {
public:
    Input(const uint8_t* data, size_t size) : bytes(reinterpret_cast<const char*>(data), size) { }

    uint8_t byte()
    {
        if (at == bytes.size())
            return 0;
        return static_cast<uint8_t>(bytes[at++]);
    }

    /// A piece, or as many bytes of the input as the byte says.
    std::string value()
    {
        static const std::string kPieces[] = { "a", "longer", "<TRACK>", "</TRACK>", "<NAME>", "</NAME>", "<FUNCTION>",
            "</FUNCTION>", "<CHANNEL_INDEX>1</CHANNEL_INDEX>", "<CHANNEL_INDEX>", "</BWFXML>", "<NOTE>", "</NOTE>",
            "<WILD_TRACK>", "</CIRCLED>", "<NAME>n</NAME>", "</NAME></TRACK><TRACK>" };
        const size_t which = byte();
        if (which >= 128)
            return kPieces[(which - 128) % std::size(kPieces)];
        const std::string value = bytes.substr(at, which);
        at += value.size();
        return value;
    }

    BwfMetadata record()
    {
        BwfMetadata record;
        const uint8_t which = byte();
        record.circled = (which & 1) != 0;
        record.wildTrack = (which & 2) != 0;
        if ((which & 4) != 0) {
            for (std::string BwfMetadata::*field : { &BwfMetadata::note, &BwfMetadata::scene, &BwfMetadata::tape,
                     &BwfMetadata::take, &BwfMetadata::project })
                record.*field = value();
        }
        for (int i = which >> 3; i > 0; --i) {
            const auto channel = static_cast<int32_t>(static_cast<int8_t>(byte()));
            std::string name = value();
            record.tracks.push_back({ channel, std::move(name), value() });
        }
        return record;
    }

    std::string rest() const { return bytes.substr(at); }

private:
    std::string bytes;
    size_t at = 0;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    Input input(data, size);
    const BwfMetadata current = input.record();
    const BwfMetadata updated = input.record();
    std::string plain = input.rest();
    const auto edited = editedIxml(plain, current, updated);
    const std::string before = plain;
    const bool modified = PlainIxmlEdit::edit(plain, current, updated);
    if (edited.has_value() != modified || edited.value_or(before) != plain)
        std::abort();
    return 0;
}
