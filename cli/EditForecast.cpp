#include "cli/EditForecast.h"

#include "cli/FileRun.h"
#include "cli/WavFile.h"
#include "core/BextLayout.h"
#include "core/BwfMetadataReader.h"
#include "core/IxmlEdit.h"
#include "core/MetadataChanges.h"
#include "core/SharedTexts.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <fstream>
#include <utility>

namespace {

/// The chunks that the writer's search finds. It knows 32 bits of each position, and what the end of the file cuts
/// fails its stream.
struct Places {
    std::optional<ChunkWalk::Header> bext;
    std::optional<ChunkWalk::Header> ixml;
    uint64_t fileBytes = 0;

    static uint64_t payload(const ChunkWalk::Header& chunk) { return chunk.offset + ChunkWalk::kHeaderBytes; }
    bool isCut(const ChunkWalk::Header& chunk) const { return payload(chunk) > fileBytes; }
    /// Bytes of the file from the chunk's payload on.
    uint64_t bytesIn(const ChunkWalk::Header& chunk) const { return fileBytes - std::min(fileBytes, payload(chunk)); }
    static bool isTooFar(const ChunkWalk::Header& chunk) { return payload(chunk) > UINT32_MAX; }
    bool isUsable(const std::optional<ChunkWalk::Header>& chunk) const
    {
        return chunk && !isCut(*chunk) && !isTooFar(*chunk);
    }
};

Places findPlaces(const std::string& path)
{
    std::ifstream stream(path, std::ios::binary);
    Places places;
    const auto end = stream.rdbuf()->pubseekoff(0, std::ios::end);
    if (std::streamoff(end) < 0)
        throw FileError("io-error", "its size can't be told");
    places.fileBytes = static_cast<uint64_t>(std::streamoff(end));
    ChunkWalk walk(places.fileBytes);
    ChunkWalk::Header header;
    while ((!places.bext || !places.ixml) && walk.next(stream, header)) {
        if (header.is("bext") && !places.bext)
            places.bext = header;
        if (header.is("iXML") && !places.ixml)
            places.ixml = header;
    }
    return places;
}

std::string mismatchWords(const std::string& name, const std::string& place)
{
    return "the " + name + " wouldn't come out " + place + " as it was asked for";
}

/// Goes through the writer's steps in their order and keeps what each would write.
class Rehearsal {
public:
    explicit Rehearsal(const std::string& filePath) : path(filePath) { }

    /// `wantedOf` makes the wanted record out of the file's own.
    template <class WantedOf> EditForecast play(WantedOf wantedOf)
    {
        WavFile file(path);
        const std::optional<BwfMetadata> read = BwfMetadataReader::readMetadataWhole(path);
        if (!read)
            throw FileError("io-error", "it can't be read whole");
        current = *read;
        wanted = wantedOf(current);
        changes = changesBetween(current, wanted);
        forecast.after = current;
        forecast.writerSucceeds = true;
        if (!changes.any())
            return std::move(forecast);
        places = findPlaces(path);
        isKnown = file.chunks().fileId == "RIFF" || file.chunks().fileId == "RF64";
        rehearse(file);
        return std::move(forecast);
    }

private:
    void obstruct(std::string code, std::string words)
    {
        forecast.obstacles.push_back({ std::move(code), std::move(words) });
    }

    void refuse(std::string code, std::string words)
    {
        obstruct(std::move(code), std::move(words));
        forecast.outcome = EditOutcome::Refused;
        forecast.writerSucceeds = false;
    }

    void rehearse(WavFile& file)
    {
        errno = 0;
        if (faccessat(AT_FDCWD, path.c_str(), W_OK, AT_EACCESS) != 0) {
            const FileError error = fileErrorOf({ errno, std::generic_category() });
            return refuse(error.code, error.words);
        }
        if (seesDamage())
            return;
        const bool description = changes.bext && saveDescription();
        const bool timeReference = changes.timeReference && saveTimeReference();
        const bool ixml = (changes.ixml || changes.tracks) && saveIxml(file);
        forecast.writerSucceeds = description || timeReference || ixml;
        readBack(file);
        compare();
        conclude();
    }

    /// The writer doesn't ask how long the `bext` is, nor whether the reader knows the container: without the file's
    /// own record it would build a Description that has lost its lines.
    bool seesDamage()
    {
        if (!isKnown) {
            refuse("unknown-container", "its container is one that the window doesn't read");
            forecast.doesDamage = true;
            return true;
        }
        if (!(changes.bext || changes.timeReference) || !places.isUsable(places.bext))
            return false;
        const size_t wantedBytes
            = changes.timeReference ? BextLayout::kTimeReference.end() : BextLayout::kDescription.size;
        const uint32_t step = places.bext->size + places.bext->size % 2; // In 32 bits, as the walk has it.
        if (step >= wantedBytes)
            return false;
        refuse("bext-short",
            "its bext is " + std::to_string(wantedBytes - step) + " bytes shorter than its fields, and what follows "
                + "would be written over");
        forecast.doesDamage = true;
        return true;
    }

    /// As the writer's search: false if there is none, and then the stream is failed for good.
    bool find(const std::optional<ChunkWalk::Header>& chunk)
    {
        if (streamFailed || !chunk || Places::isTooFar(*chunk)) {
            streamFailed = true;
            return false;
        }
        streamFailed = places.isCut(*chunk);
        return true;
    }

    bool saveDescription()
    {
        if (!find(places.bext)) {
            obstructBext();
            return false;
        }
        if (streamFailed) {
            isBextCut = true;
            return true;
        }
        const std::string text = editedDescription(current, wanted);
        const size_t room = BextLayout::kDescription.size - 1;
        std::string field = text.substr(0, room);
        field.resize(BextLayout::kDescription.size, '\0');
        forecast.descriptionField = field;
        const uint64_t there = places.bytesIn(*places.bext);
        isBextCut = there < (changes.timeReference ? BextLayout::kTimeReference.end() : BextLayout::kDescription.size);
        forecast.descriptionMissing = text.size() - std::min(text.size(), room);
        return true;
    }

    bool saveTimeReference()
    {
        if (!find(places.bext)) {
            if (forecast.obstacles.empty())
                obstructBext();
            return false;
        }
        const uint64_t there = places.bytesIn(*places.bext);
        isBextCut = isBextCut || there < BextLayout::kTimeReference.end();
        if (there > BextLayout::kTimeReference.offset)
            forecast.timeReference = wanted.timeReference;
        return !streamFailed;
    }

    void obstructBext()
    {
        if (places.bext)
            obstruct("bext-far", "its bext stands behind the first 4 GiB");
        else
            obstruct("no-bext", "it has no bext that the window can see");
    }

    bool saveIxml(WavFile& file)
    {
        const bool wasFailed = streamFailed;
        if (!find(places.ixml)) {
            if (!wasFailed && places.ixml)
                obstruct("ixml-far", "its iXML stands behind the first 4 GiB");
            else if (!wasFailed)
                obstruct("no-ixml", "it has no iXML that the window can see");
            return false;
        }
        if (streamFailed) {
            obstruct("ixml-cut", "the file ends inside its iXML");
            return true;
        }
        std::string text = file.read(Places::payload(*places.ixml), places.ixml->size);
        const size_t room = text.size();
        std::optional<std::string> edited = editedIxml(std::move(text), current, wanted);
        return !edited || takeIxml(std::move(*edited), room);
    }

    bool takeIxml(std::string edited, size_t room)
    {
        if (edited.size() > room) {
            forecast.ixmlMissing = edited.size() - room;
            obstruct("ixml-full", "its iXML is " + std::to_string(forecast.ixmlMissing) + " bytes too short");
            return false;
        }
        if (room < places.ixml->size) {
            obstruct("ixml-cut", "the file ends inside its iXML");
            return true;
        }
        edited.resize(room, '\0');
        forecast.ixmlPayload = std::move(edited);
        return true;
    }

    /// The reader's steps, on what would stand in the file.
    void readBack(WavFile& file)
    {
        BwfMetadata& after = forecast.after;
        after = {};
        BwfMetadataReader::readFileInfo(path, after);
        BwfMetadataReader::readBextChunk(path, after);
        // A field that the end of the file cuts counts as none.
        const uint64_t there = places.bext ? places.bytesIn(*places.bext) : 0;
        if (forecast.descriptionField && there >= BextLayout::kDescription.size)
            after.description = forecast.descriptionField->substr(0, forecast.descriptionField->find('\0'));
        if (forecast.timeReference && there >= BextLayout::kTimeReference.end())
            // The reader takes a greater one for none.
            after.timeReference = wanted.timeReference <= BwfMetadata::kMaxTimeReference ? wanted.timeReference : 0;
        // Of a chunk whose header the end of the file cuts, the reader takes the empty text.
        if (!places.ixml || Places::isTooFar(*places.ixml))
            return;
        std::string text;
        if (!forecast.ixmlPayload)
            text = file.read(Places::payload(*places.ixml), places.ixml->size);
        BwfMetadataReader::parseIxml(forecast.ixmlPayload ? *forecast.ixmlPayload : text, after);
    }

    void compare()
    {
        if (forecast.descriptionMissing > 0)
            obstruct("description-full",
                "its Description would lose " + std::to_string(forecast.descriptionMissing) + " bytes at its end");
        if (isBextCut)
            obstruct("bext-cut", "the file ends inside its bext");
        if (forecast.ixmlPayload || !(changes.ixml || changes.tracks))
            compareFields(forecast.after);
        if (!forecast.ixmlPayload)
            return;
        compareEachPlace();
    }

    /// Each by itself, since the reader fills from the Description what the iXML doesn't say, and hides the rest of it.
    void compareEachPlace()
    {
        BwfMetadata alone;
        BwfMetadataReader::parseIxml(*forecast.ixmlPayload, alone);
        std::vector<std::string BwfMetadata::*> lost;
        if (forecast.descriptionField && forecast.descriptionMissing == 0)
            lost = textsLostInDescription(current, wanted);
        for (const SharedText& text : kSharedTexts) {
            const std::string& value = wanted.*text.field;
            if (value.empty() || value == current.*text.field || forecast.after.*text.field != value)
                continue;
            if (alone.*text.field != value)
                obstruct("not-kept", mismatchWords(text.name, "of the iXML"));
            if (std::find(lost.begin(), lost.end(), text.field) != lost.end())
                obstruct("not-kept", mismatchWords(text.name, "of the Description"));
        }
    }

    void compareFields(const BwfMetadata& after)
    {
        const auto miss = [this](const std::string& name) { obstruct("not-kept", mismatchWords(name, "again")); };
        for (const SharedText& text : kSharedTexts) {
            if (!(wanted.*text.field).empty() && after.*text.field != wanted.*text.field)
                miss(text.name);
        }
        if (!wanted.ubits.empty() && !sameUbits(after.ubits, wanted.ubits))
            miss("ubits");
        if (after.circled != wanted.circled)
            miss("circled flag");
        if (after.wildTrack != wanted.wildTrack)
            miss("wild track flag");
        if (wanted.timeReference != 0 && after.timeReference != wanted.timeReference)
            miss("start");
        for (size_t i = 0; i < wanted.tracks.size(); ++i) {
            const BwfTrack& track = wanted.tracks[i];
            const bool kept = i < after.tracks.size() && after.tracks[i].name == track.name
                && after.tracks[i].function == track.function;
            if (!kept)
                miss("track " + std::to_string(track.channelIndex));
        }
    }

    void conclude()
    {
        const bool bext = forecast.descriptionField || forecast.timeReference;
        const bool needsIxml = changes.ixml || changes.tracks;
        if (!bext && !forecast.ixmlPayload)
            forecast.outcome = EditOutcome::Refused;
        else if (forecast.obstacles.empty() && (forecast.ixmlPayload || !needsIxml))
            forecast.outcome = EditOutcome::Whole;
        else
            forecast.outcome = forecast.ixmlPayload ? EditOutcome::Partly : EditOutcome::DescriptionOnly;
        if (forecast.outcome != EditOutcome::Whole && forecast.obstacles.empty())
            obstruct("no-place", "its iXML has no place for it");
    }

    const std::string& path;
    BwfMetadata wanted;
    BwfMetadata current;
    MetadataChanges changes;
    Places places;
    bool isKnown = false; // The reader takes the file for a WAV file.
    bool streamFailed = false;
    bool isBextCut = false;
    EditForecast forecast;
};

} // namespace

std::string_view nameOf(EditOutcome outcome)
{
    switch (outcome) {
    case EditOutcome::Nothing:
        return "nothing";
    case EditOutcome::Whole:
        return "whole";
    case EditOutcome::DescriptionOnly:
        return "description-only";
    case EditOutcome::Partly:
        return "partly";
    case EditOutcome::Refused:
        return "refused";
    }
    return {};
}

EditForecast forecastEdit(const std::string& path, const BwfMetadata& wanted)
{
    return Rehearsal(path).play([&wanted](const BwfMetadata&) { return wanted; });
}

EditForecast forecastEdit(const std::string& path, const EditRequest& request)
{
    std::vector<int32_t> unknownTracks;
    EditForecast forecast = Rehearsal(path).play([&](const BwfMetadata& current) {
        WantedRecord wanted = wantedRecord(current, request);
        unknownTracks = std::move(wanted.unknownTracks);
        return std::move(wanted.record);
    });
    for (const int32_t track : unknownTracks)
        forecast.obstacles.push_back({ "no-track", "it has no track " + std::to_string(track) });
    if (unknownTracks.empty())
        return forecast;
    if (forecast.outcome == EditOutcome::Nothing)
        forecast.outcome = EditOutcome::Refused;
    else if (forecast.outcome == EditOutcome::Whole)
        forecast.outcome = EditOutcome::Partly;
    return forecast;
}
