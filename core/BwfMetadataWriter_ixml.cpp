#include "core/BwfMetadataWriter.h"

#include "core/BwfMetadata.h"
#include "core/IxmlTrackText.h"

#include <algorithm>
#include <string_view>

// The text is edited by literal tags in upper case, without any knowledge of XML: a lower-case element is not seen,
// and values go in byte for byte, "<" and "&" included. The reader works the same way, so the two agree on what an
// element is.

namespace {

constexpr size_t kReadBlock = size_t{ 1 } << 20;
constexpr std::string_view kRootClose = "</BWFXML>";
constexpr std::string_view kWildTrack = "WILD_TRACK";

/// The text and whether the chunk has to be written.
struct Edited {
    std::string text;
    bool modified = false;
};

/// First opening and first closing tag of a name, each searched on its own from the start of the text.
struct Element {
    size_t open = std::string::npos;
    size_t close = std::string::npos;
    size_t openSize = 0;
    size_t closeSize = 0;

    bool complete() const { return open != std::string::npos && close != std::string::npos; }
    /// A closing tag in front of the opening one leaves no bytes between that could be replaced.
    bool inOrder() const { return open < close; }
};

Element findElement(const std::string& text, std::string_view name)
{
    const std::string open = std::string("<").append(name).append(">");
    const std::string close = std::string("</").append(name).append(">");
    return { text.find(open), text.find(close), open.size(), close.size() };
}

/// Reads the chunk in blocks, so that a size field that claims more than the file holds costs only what is there.
/// The bytes that are missing would be NUL, which no search can find, and the short read leaves the stream failed,
/// so that nothing is written back. `held` is the number of bytes that came.
std::string readText(std::fstream& stream, uint32_t position, uint32_t size)
{
    stream.seekg(static_cast<std::streamoff>(position));
    std::string text;
    while (stream && text.size() < size) {
        const size_t start = text.size();
        const size_t wanted = std::min<size_t>(size - start, kReadBlock);
        text.resize(start + wanted);
        stream.read(text.data() + start, static_cast<std::streamsize>(wanted));
        text.resize(start + static_cast<size_t>(stream.gcount()));
    }
    return text;
}

/// A new line in front of the closing root tag. Without that tag there is no place, and the element is skipped.
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
    const Element element = findElement(ixml.text, kWildTrack);
    if (!element.complete()) {
        if (wanted)
            insertElement(ixml, kWildTrack, "TRUE");
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
        { "NOTE", &BwfMetadata::note },
        { "SCENE", &BwfMetadata::scene },
        { "TAPE", &BwfMetadata::tape },
        { "TAKE", &BwfMetadata::take },
        { "PROJECT", &BwfMetadata::project },
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
        setElement(ixml, "CIRCLED", updated.circled ? "TRUE" : "FALSE");
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

bool BwfMetadataWriter::updateIxmlFields(
    std::fstream& stream, uint32_t position, uint32_t size, const BwfMetadata& current, const BwfMetadata& updated)
{
    Edited ixml{ readText(stream, position, size) };
    const size_t room = ixml.text.size();
    setScalars(ixml, current, updated);
    setFlags(ixml, current, updated);
    setTracks(ixml, current, updated);

    if (!ixml.modified)
        return true;
    // The text began as the whole chunk, padding included, so padding is no room to grow into.
    if (ixml.text.size() > room)
        return false;
    // A short read: the file ends inside the chunk, and a failed stream writes nothing. Writing the rest of the
    // size as NUL would grow the file.
    if (!stream)
        return true;
    ixml.text.resize(room, '\0');
    stream.seekp(static_cast<std::streamoff>(position));
    stream.write(ixml.text.data(), static_cast<std::streamsize>(ixml.text.size()));
    return true;
}
