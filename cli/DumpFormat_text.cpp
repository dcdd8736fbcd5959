#include "cli/DumpFormat.h"

#include "cli/DumpFields.h"
#include "cli/PlainText.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <utility>

namespace {

constexpr size_t kValueColumn = 28; // The longest name is "bext.originator_reference".
constexpr std::string_view kMissing = "-";

class LineSink : public FieldSink {
public:
    explicit LineSink(std::string& target) : out(target) { }

    void number(std::string_view name, std::optional<uint64_t> value) override
    {
        line(name, value ? std::to_string(*value) : std::string(kMissing));
    }
    void real(std::string_view name, std::optional<double> value) override
    {
        if (!value)
            return none(name);
        std::array<char, 32> digits{};
        const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), *value);
        line(name, { digits.data(), end.ptr });
    }
    void flag(std::string_view name, bool value) override { line(name, value ? "yes" : "no"); }
    void none(std::string_view name) override { line(name, kMissing); }
    void beginGroup(std::string_view name) override { prefix = std::string(name) + '.'; }
    void endGroup() override { prefix.clear(); }

    void tracks(std::string_view name, const std::vector<BwfTrack>& list) override
    {
        if (list.empty())
            none(name);
        for (const BwfTrack& track : list)
            putText(&track == &list.front() ? name : std::string_view(), trackText(track));
    }

    void chunks(std::string_view name, const FileFacts& facts) override
    {
        std::string_view title = name;
        for (const ChunkList::Chunk& chunk : facts.chunks.chunks) {
            std::string text = oneLine(asUtf8({ chunk.id.data(), chunk.id.size() }));
            text += " at " + std::to_string(chunk.offset) + ", " + std::to_string(chunk.size) + " bytes";
            if (chunk.is("iXML"))
                text += ", " + std::to_string(freeBytesOf(facts.path, chunk)) + " of them free";
            line(std::exchange(title, {}), text);
        }
        if (facts.chunks.isCut)
            line({}, "and more");
    }

protected:
    // A value of several lines goes on in the same column.
    void putText(std::string_view name, std::string_view value) override
    {
        if (value.empty())
            return none(name);
        std::string_view title = name;
        while (!value.empty()) {
            const size_t end = std::min(value.find('\n'), value.size());
            std::string_view part = value.substr(0, end);
            if (part.ends_with('\r'))
                part.remove_suffix(1);
            line(std::exchange(title, {}), oneLine(asUtf8(part)));
            value.remove_prefix(std::min(end + 1, value.size()));
        }
    }

private:
    void line(std::string_view name, std::string_view value)
    {
        const std::string title = name.empty() ? std::string() : prefix + std::string(name);
        out.append("  ").append(title);
        out.append(title.size() < kValueColumn ? kValueColumn - title.size() : 1, ' ');
        out.append(value).append("\n");
    }

    std::string& out;
    std::string prefix;
};

class TextDump : public DumpFormat {
public:
    explicit TextDump(bool chunksToo) : withChunks(chunksToo) { }

    void file(const FileFacts& facts, std::string& out) override
    {
        if (std::exchange(hasText, true))
            out += '\n';
        out += oneLine(asUtf8(facts.path)) + '\n';
        LineSink sink(out);
        visitFields(facts, withChunks, sink);
    }

    void failed(const std::string&, const FileError&, std::string&) override { }

private:
    bool withChunks;
    bool hasText = false;
};

} // namespace

std::unique_ptr<DumpFormat> textDump(bool withChunks)
{
    return std::make_unique<TextDump>(withChunks);
}
