#include "cli/DumpFormat.h"

#include "cli/DumpFields.h"
#include "cli/JsonText.h"
#include "cli/PlainText.h"

namespace {

constexpr uint64_t kSchemaVersion = 1; // Grows when a name changes its meaning, not when one joins.

class JsonSink : public FieldSink {
public:
    explicit JsonSink(std::string& out) : json(out) { }

    void begin() { json.beginObject().key("schema_version").number(kSchemaVersion); }
    void end() { json.endObject(); }

    void number(std::string_view name, std::optional<uint64_t> value) override
    {
        json.key(name);
        if (value)
            json.number(*value);
        else
            json.none();
    }
    void real(std::string_view name, std::optional<double> value) override
    {
        json.key(name);
        if (value)
            json.real(*value);
        else
            json.none();
    }
    void flag(std::string_view name, bool value) override { json.key(name).flag(value); }
    void none(std::string_view name) override { json.key(name).none(); }
    void beginGroup(std::string_view name) override { json.key(name).beginObject(); }
    void endGroup() override { json.endObject(); }

    void tracks(std::string_view name, const std::vector<BwfTrack>& list) override
    {
        json.key(name).beginArray();
        for (const BwfTrack& track : list) {
            json.beginObject().key("channel_index").real(track.channelIndex); // May be negative.
            json.key("name").text(track.name).key("function").text(track.function).endObject();
        }
        json.endArray();
    }

    void chunks(std::string_view name, const FileFacts& facts) override
    {
        json.key(name).beginArray();
        for (const ChunkList::Chunk& chunk : facts.chunks.chunks) {
            const std::string_view id(chunk.id.data(), chunk.id.size());
            metForeignBytes = metForeignBytes || !isUtf8(id);
            json.beginObject().key("id").text(id).key("offset").number(chunk.offset).key("size").number(chunk.size);
            json.key("padding_bytes").number(chunk.size % 2);
            if (chunk.is("iXML"))
                json.key("free_bytes").number(freeBytesOf(facts.path, chunk));
            json.endObject();
        }
        json.endArray().key("chunks_cut").flag(facts.chunks.isCut);
    }

protected:
    void putText(std::string_view name, std::string_view value) override { json.key(name).text(value); }

private:
    JsonText json;
};

class JsonDump : public DumpFormat {
public:
    explicit JsonDump(bool chunksToo) : withChunks(chunksToo) { }

    void file(const FileFacts& facts, std::string& out) override
    {
        JsonSink sink(out);
        sink.begin();
        visitFields(facts, withChunks, sink);
        sink.end();
        out += '\n';
    }

    void failed(const std::string& path, const FileError& error, std::string& out) override
    {
        JsonText json(out);
        json.beginObject().key("schema_version").number(kSchemaVersion).key("path").text(path);
        json.key("error").beginObject().key("code").text(error.code).key("message").text(error.words).endObject();
        json.key("not_utf8").flag(!isUtf8(path)).endObject();
        out += '\n';
    }

private:
    bool withChunks;
};

} // namespace

std::unique_ptr<DumpFormat> jsonDump(bool withChunks)
{
    return std::make_unique<JsonDump>(withChunks);
}
