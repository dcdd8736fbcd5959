#include "core/BwfMetadataWriter.h"

#include "core/BwfMetadata.h"
#include "core/IxmlNames.h"
#include "core/IxmlTrackText.h"

#include <algorithm>
#include <string_view>
#include <utility>

// The text is edited by literal tags, without any knowledge of XML, and values go in byte for byte, "<" and "&"
// included. The reader knows literal tags, too, but not the same ones:
//
// 1. It also takes a lower-case element where there is no upper-case one. Here that is not seen, and an upper-case
//    element is put in beside it, if the text may grow; the reader goes by that one from then on.
// 2. It ends a value at the next "<" of any kind. Here the value reaches to the closing tag, nested elements included.

namespace {

constexpr size_t kReadBlock = size_t{ 1 } << 20;
constexpr std::string_view kRootClose = "</BWFXML>";

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
/// so that nothing is written back.
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

/// Replaces what the first element of a kind behind `track` says, if it begins in front of `limit`. True if it did.
/// `track` is numbered anew where the edit asks for that.
bool setInTrack(IxmlTrackText& text, IxmlTrackText::Tag& track, IxmlTrackText::Kind openKind,
    IxmlTrackText::Kind closeKind, size_t limit, const std::string& value)
{
    const IxmlTrackText::Tag open = text.firstBehind(track, openKind);
    const IxmlTrackText::Tag close = text.firstBehind(track, closeKind);
    if (open == IxmlTrackText::kNone || close == IxmlTrackText::kNone || text.position(open) >= limit)
        return false;
    if (close < open) // Closed before it is opened: skipped, as in `setElement`.
        return false;
    const size_t trackPosition = text.position(track); // In front of the edit, so it holds.
    if (text.replaceBetween(open, close, value))
        track = text.tagAt(trackPosition);
    return true;
}

/// Edits the track that lists the channel number by exactly these bytes; any other is left alone. True if it did.
bool setTrack(IxmlTrackText& text, const BwfTrack& wanted)
{
    using Kind = IxmlTrackText::Kind;
    const IxmlTrackText::Tag channel = text.firstChannelIndex(wanted.channelIndex);
    if (channel == IxmlTrackText::kNone)
        return false;
    IxmlTrackText::Tag track = text.lastInFrontOf(channel, Kind::TrackOpen);
    const IxmlTrackText::Tag trackEnd = text.firstBehind(channel, Kind::TrackClose);
    if (track == IxmlTrackText::kNone || trackEnd == IxmlTrackText::kNone)
        return false;

    // The limit is where the track ended before its name changed, also for the function: a name that grew narrows
    // the range for FUNCTION by as many bytes, one that shrank widens it, past the end of the track if need be.
    const size_t limit = text.position(trackEnd);
    const bool named = setInTrack(text, track, Kind::NameOpen, Kind::NameClose, limit, wanted.name);
    const bool functioned = setInTrack(text, track, Kind::FunctionOpen, Kind::FunctionClose, limit, wanted.function);
    return named || functioned;
}

void setTracks(Edited& ixml, const BwfMetadata& current, const BwfMetadata& updated)
{
    size_t index = 0;
    while (index < updated.tracks.size() && trackIsAsBefore(current, updated, index))
        ++index;
    if (index == updated.tracks.size())
        return;

    IxmlTrackText text(std::move(ixml.text));
    for (; index < updated.tracks.size(); ++index) {
        if (!trackIsAsBefore(current, updated, index) && setTrack(text, updated.tracks[index]))
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
