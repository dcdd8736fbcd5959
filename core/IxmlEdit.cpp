#include "core/IxmlEdit.h"

#include "core/BwfMetadata.h"
#include "core/IxmlNames.h"
#include "core/IxmlTrackText.h"

#include <string_view>
#include <utility>

// The text is edited by literal tags, without any knowledge of XML, and values go in byte for byte, "<" and "&"
// included. The reader knows literal tags, too, but not the same ones:
//
// 1. It also takes a lower-case element where there is no upper-case one. Here that is not seen, and an upper-case
//    element is put in beside it; the reader goes by that one from then on.
// 2. It ends a value at the next "<" of any kind. Here the value reaches to the closing tag, nested elements included.

namespace {

constexpr std::string_view kRootClose = "</BWFXML>";

// The text and whether it has to be written.
struct Edited {
    std::string text;
    bool modified = false;
};

// First opening and first closing tag of a name, each searched on its own from the start of the text.
struct Element {
    size_t open = std::string::npos;
    size_t close = std::string::npos;
    size_t openSize = 0;
    size_t closeSize = 0;

    bool complete() const { return open != std::string::npos && close != std::string::npos; }
    // A closing tag in front of the opening one leaves no bytes between that could be replaced.
    bool inOrder() const { return open < close; }
};

Element findElement(const std::string& text, std::string_view name)
{
    const std::string open = std::string("<").append(name).append(">");
    const std::string close = std::string("</").append(name).append(">");
    return { text.find(open), text.find(close), open.size(), close.size() };
}

// A new line in front of the closing root tag. Without that tag there is no place, and the element is skipped.
void insertElement(Edited& ixml, std::string_view name, std::string_view value)
{
    const size_t root = ixml.text.find(kRootClose);
    if (root == std::string::npos)
        return;
    std::string line;
    line.append("  <").append(name).append(">").append(value).append("</").append(name).append(">\n");
    ixml.text.insert(root, line);
    ixml.modified = true;
}

void setElement(Edited& ixml, std::string_view name, std::string_view value)
{
    const Element element = findElement(ixml.text, name);
    if (!element.complete()) {
        insertElement(ixml, name, value);
        return;
    }
    // Closed before it is opened: skipped in silence, like an element that has no place. Replacing "between" would
    // have to take bytes that belong to something else.
    if (!element.inOrder())
        return;
    const size_t start = element.open + element.openSize;
    ixml.text.replace(start, element.close - start, value);
    ixml.modified = true;
}

void setWildTrack(Edited& ixml, bool wanted)
{
    const Element element = findElement(ixml.text, IxmlNames::kWildTrack);
    if (!element.complete()) {
        if (wanted)
            insertElement(ixml, IxmlNames::kWildTrack, "TRUE");
        return;
    }
    // An element that is there keeps what it says, so FALSE can't be turned to TRUE here; yet the chunk is written.
    if (wanted) {
        ixml.modified = true;
        return;
    }
    if (!element.inOrder()) // As in `setElement`.
        return;
    ixml.text.erase(element.open, element.close + element.closeSize - element.open);
    ixml.modified = true;
}

void setScalars(Edited& ixml, const BwfMetadata& current, const BwfMetadata& updated)
{
    struct Scalar {
        std::string_view name;
        std::string BwfMetadata::*field;
    };
    static constexpr Scalar kScalars[] = {
        { IxmlNames::kNote, &BwfMetadata::note },
        { IxmlNames::kScene, &BwfMetadata::scene },
        { IxmlNames::kTape, &BwfMetadata::tape },
        { IxmlNames::kTake, &BwfMetadata::take },
        { IxmlNames::kProject, &BwfMetadata::project },
    };
    for (const Scalar& each : kScalars) {
        const std::string& value = updated.*each.field;
        if (!value.empty() && value != current.*each.field)
            setElement(ixml, each.name, value);
    }
}

void setFlags(Edited& ixml, const BwfMetadata& current, const BwfMetadata& updated)
{
    if (updated.circled != current.circled)
        setElement(ixml, IxmlNames::kCircled, updated.circled ? "TRUE" : "FALSE");
    if (updated.wildTrack != current.wildTrack)
        setWildTrack(ixml, updated.wildTrack);
}

bool trackIsAsBefore(const BwfMetadata& current, const BwfMetadata& updated, size_t index)
{
    return index < current.tracks.size() && current.tracks[index].name == updated.tracks[index].name
        && current.tracks[index].function == updated.tracks[index].function;
}

void setTracks(Edited& ixml, const BwfMetadata& current, const BwfMetadata& updated)
{
    size_t index = 0;
    while (index < updated.tracks.size() && trackIsAsBefore(current, updated, index))
        ++index;
    if (index == updated.tracks.size())
        return;

    IxmlTrackText text(ixml.text);
    for (; index < updated.tracks.size(); ++index) {
        if (!trackIsAsBefore(current, updated, index) && text.setTrack(updated.tracks[index]))
            ixml.modified = true;
    }
    ixml.text = text.edited();
}

} // namespace

std::optional<std::string> editedIxml(std::string text, const BwfMetadata& current, const BwfMetadata& updated)
{
    Edited ixml{ std::move(text) };
    setScalars(ixml, current, updated);
    setFlags(ixml, current, updated);
    setTracks(ixml, current, updated);
    if (!ixml.modified)
        return std::nullopt;
    return std::move(ixml.text);
}
