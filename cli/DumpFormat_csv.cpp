#include "cli/DumpFormat.h"

#include "cli/CsvText.h"
#include "cli/DumpFields.h"

#include <array>
#include <charconv>
#include <utility>

namespace {

constexpr std::string_view kErrorColumn = "error";

/// Hands each field on as a name and a text.
class CellSink : public FieldSink {
public:
    void number(std::string_view name, std::optional<uint64_t> value) override
    {
        cell(name, value ? std::to_string(*value) : std::string());
    }
    void real(std::string_view name, std::optional<double> value) override
    {
        std::array<char, 32> digits{};
        char* end = digits.data();
        if (value)
            end = std::to_chars(digits.data(), digits.data() + digits.size(), *value).ptr;
        cell(name, { digits.data(), end });
    }
    void flag(std::string_view name, bool value) override { cell(name, value ? "yes" : "no"); }
    void none(std::string_view name) override { cell(name, {}); }
    void beginGroup(std::string_view name) override { prefix = std::string(name) + '.'; }
    void endGroup() override { prefix.clear(); }

    void tracks(std::string_view name, const std::vector<BwfTrack>& list) override
    {
        std::string text;
        for (const BwfTrack& track : list)
            text.append(text.empty() ? "" : "|").append(trackText(track));
        cell(name, text);
    }

    void chunks(std::string_view name, const FileFacts& facts) override
    {
        std::string text;
        for (const ChunkList::Chunk& chunk : facts.chunks.chunks) {
            text.append(text.empty() ? "" : "|").append(chunk.id.data(), chunk.id.size());
            text.append("@").append(std::to_string(chunk.offset)).append("+").append(std::to_string(chunk.size));
        }
        cell(name, text);
    }

protected:
    void putText(std::string_view name, std::string_view value) override { cell(name, value); }
    virtual void cell(std::string_view name, std::string_view value) = 0;

    std::string prefix;
};

class NameSink : public CellSink {
public:
    CsvRow row;

protected:
    void cell(std::string_view name, std::string_view) override { row.add(prefix + std::string(name)); }
};

class ValueSink : public CellSink {
public:
    CsvRow row;

protected:
    void cell(std::string_view, std::string_view value) override { row.add(value); }
};

class CsvDump : public DumpFormat {
public:
    explicit CsvDump(bool chunksToo) : withChunks(chunksToo) { }

    std::string head() override
    {
        NameSink sink;
        visitFields({}, withChunks, sink);
        sink.row.add(kErrorColumn);
        columns = sink.row.cells();
        return std::move(sink.row).end();
    }

    void file(const FileFacts& facts, std::string& out) override
    {
        ValueSink sink;
        visitFields(facts, withChunks, sink);
        sink.row.add({});
        out += std::move(sink.row).end();
    }

    void failed(const std::string& path, const FileError& error, std::string& out) override
    {
        CsvRow row;
        row.add(path);
        while (row.cells() + 1 < columns)
            row.add({});
        row.add(error.code);
        out += std::move(row).end();
    }

private:
    bool withChunks;
    size_t columns = 0;
};

} // namespace

std::unique_ptr<DumpFormat> csvDump(bool withChunks)
{
    return std::make_unique<CsvDump>(withChunks);
}
