#include "core/BwfMetadataWriter.h"

#include "core/BwfMetadata.h"
#include "core/IxmlEdit.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace {

constexpr size_t kReadBlock = size_t{ 1 } << 20;

// Reads the chunk in blocks, so that a size field that claims more than the file holds costs only what is there.
// The bytes that are missing would be NUL, which no search can find, and the short read leaves the stream failed,
// so that nothing is written back.
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

} // namespace

bool BwfMetadataWriter::updateIxmlFields(
    std::fstream& stream, uint32_t position, uint32_t size, const BwfMetadata& current, const BwfMetadata& updated)
{
    std::string text = readText(stream, position, size);
    const size_t room = text.size();
    std::optional<std::string> edited = editedIxml(std::move(text), current, updated);
    if (!edited)
        return true;
    // The text began as the whole chunk, padding included, so padding is no room to grow into.
    if (edited->size() > room)
        return false;
    // A short read: the file ends inside the chunk, and a failed stream writes nothing. Writing the rest of the
    // size as NUL would grow the file.
    if (!stream)
        return true;
    std::string& whole = *edited;
    whole.resize(room, '\0');
    stream.seekp(static_cast<std::streamoff>(position));
    stream.write(whole.data(), static_cast<std::streamsize>(whole.size()));
    return true;
}
