#include "cli/DumpFields.h"

#include "cli/PlainText.h"
#include "core/Timecode.h"

#include <cmath>

namespace {

constexpr double kThousand = 1000.0;

template <typename Number> std::optional<uint64_t> knownNumber(Number value)
{
    return value != 0 ? std::optional<uint64_t>(value) : std::nullopt;
}

// Missing where the file can't say anything, so that an empty text means an empty text.
void textOrNone(FieldSink& sink, std::string_view name, const std::string& value)
{
    if (value.empty())
        sink.none(name);
    else
        sink.text(name, value);
}

void visitFile(const FileFacts& facts, FieldSink& sink)
{
    sink.text("path", facts.path);
    sink.text("file_name", facts.record.fileName);
    sink.number("size_bytes", facts.record.fileSize);
    sink.text("container", facts.container());
}

void visitFormat(const FileFacts& facts, FieldSink& sink)
{
    const BwfMetadata& record = facts.record;
    const ChunkList::Chunk* const data = facts.data();
    sink.number("format_tag", facts.formatTag);
    sink.number("channels", knownNumber(record.channels));
    sink.number("sample_rate", knownNumber(record.sampleRate));
    sink.number("bits_per_sample", knownNumber(record.bitsPerSample));
    sink.number("block_align", facts.blockAlign);
    sink.number("data_offset", data ? std::optional(data->payload()) : std::nullopt);
    sink.number("data_bytes", data ? std::optional(data->size) : std::nullopt);
    sink.number("frame_count", facts.frameCount());
    sink.real("duration_seconds", record.duration > 0.0 ? std::optional(record.duration) : std::nullopt);
}

void visitBext(const BwfMetadata& record, FieldSink& sink)
{
    sink.beginGroup("bext");
    sink.text("description", record.description);
    sink.text("originator", record.originator);
    sink.text("originator_reference", record.originatorReference);
    sink.text("origination_date", record.originationDate);
    sink.text("origination_time", record.originationTime);
    sink.number("time_reference", record.timeReference);
    sink.number("version", record.bextVersion);
    sink.text("umid", record.umid);
    sink.text("coding_history", record.codingHistory);
    sink.endGroup();
}

void visitSlate(const BwfMetadata& record, FieldSink& sink)
{
    sink.text("project", record.project);
    sink.text("scene", record.scene);
    sink.text("take", record.take);
    sink.text("tape", record.tape);
    sink.text("note", record.note);
    sink.flag("circled", record.circled);
    sink.flag("wild_track", record.wildTrack);
    sink.text("ubits", record.ubits);
}

void visitTime(const FileFacts& facts, FieldSink& sink)
{
    const BwfMetadata& record = facts.record;
    textOrNone(sink, "timecode_rate", facts.frameRate ? facts.frameRate->toString() : std::string());
    const bool hasRate = record.frameRate > 0.0 && std::isfinite(record.frameRate);
    sink.real(
        "frame_rate", hasRate ? std::optional(std::round(record.frameRate * kThousand) / kThousand) : std::nullopt);
    sink.flag("drop_frame", record.dropFrame);
    sink.number("timestamp_samples", record.timeReference);
    sink.number("timestamp_sample_rate", knownNumber(facts.startSampleRate));
    textOrNone(sink, "timecode_start", facts.startLabel());
    textOrNone(sink, "timecode_end", facts.endLabel());
    textOrNone(sink, "timecode_nominal", nominalLabel(record));
}

void appendEscaped(std::string& text, std::string_view value)
{
    for (const char each : value) {
        if (each == '\\' || each == '|' || each == '/')
            text += '\\';
        text += each;
    }
}

} // namespace

void FieldSink::text(std::string_view name, std::string_view value)
{
    metForeignBytes = metForeignBytes || !isUtf8(value);
    putText(name, value);
}

void visitFields(const FileFacts& facts, bool withChunks, FieldSink& sink)
{
    visitFile(facts, sink);
    visitFormat(facts, sink);
    visitBext(facts.record, sink);
    visitSlate(facts.record, sink);
    visitTime(facts, sink);
    for (const BwfTrack& track : facts.record.tracks)
        sink.metForeignBytes = sink.metForeignBytes || !isUtf8(track.name) || !isUtf8(track.function);
    sink.tracks("tracks", facts.record.tracks);
    if (withChunks)
        sink.chunks("chunks", facts);
    sink.flag("not_utf8", sink.metForeignBytes);
}

std::string nominalLabel(const BwfMetadata& record)
{
    const uint32_t rate = record.timestampSampleRate != 0 ? record.timestampSampleRate : record.sampleRate;
    return Timecode::cutStartText(record.timeReference, rate, record.frameRate);
}

std::string trackText(const BwfTrack& track)
{
    std::string text = std::to_string(track.channelIndex) + '=';
    appendEscaped(text, track.name);
    if (!track.function.empty()) {
        text += '/';
        appendEscaped(text, track.function);
    }
    return text;
}
