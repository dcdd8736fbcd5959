#include "core/InPlaceEdit.h"

#include "core/BextLayout.h"
#include "core/BwfMetadata.h"
#include "core/BwfMetadataReader.h"
#include "core/ChunkList.h"
#include "core/MetadataChanges.h"
#include "core/PaddedIxmlEdit.h"
#include "core/SharedTexts.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <utility>

namespace {

using Kind = EditPlan::Problem::Kind;
using Place = EditPlan::Place;

constexpr uint32_t kNoStep = UINT32_MAX; // A walk in 32 bits doesn't step over a chunk of that size, but into it.

std::string littleEndian(uint64_t value)
{
    std::string bytes;
    for (size_t i = 0; i < BextLayout::kTimeReference.size; ++i)
        bytes += static_cast<char>(value >> (8 * i) & 0xFF);
    return bytes;
}

std::string descriptionField(const std::string& text)
{
    std::string field = text.substr(0, BextLayout::kDescription.size - 1);
    field.resize(BextLayout::kDescription.size, '\0');
    return field;
}

/// Reads what the plan needs, builds the patches, and reads the record that they give.
class Planning {
public:
    Planning(const InPlaceWish& wanted, const MetadataChanges& wantedChanges, std::istream& source)
        : wish(wanted), changes(wantedChanges), stream(source)
    {
    }

    EditPlan plan()
    {
        if (stream)
            build();
        if (!stream || blocks->brokeOff()) {
            result.patches.clear();
            result.problems.clear();
            problem(Kind::Unreadable);
        }
        return std::move(result);
    }

private:
    void problem(Kind kind, uint64_t missingBytes = 0, std::string field = {})
    {
        result.problems.push_back({ kind, missingBytes, std::move(field) });
    }

    void build()
    {
        blocks.emplace(stream);
        list = readChunkList(stream, *blocks);
        result.fileBytes = blocks->available(0, UINT64_MAX);
        if (!list.isWave || (list.fileId != "RIFF" && list.fileId != "RF64")) {
            problem(Kind::UnknownContainer);
            return;
        }
        const bool needsBext = changes.bext || changes.timeReference;
        // The writer's stream has failed by then, and so it leaves the iXML alone, too.
        if (needsBext && !planBext())
            return;
        planIxml();
        compare();
        std::erase_if(result.patches, [](const EditPlan::Patch& patch) { return patch.before == patch.after; });
    }

    /// The chunk that the reader finds, too. Null if there is none, or if the walk to it could go through audio.
    const ChunkList::Chunk* find(std::string_view id)
    {
        for (const ChunkList::Chunk& chunk : list.chunks) {
            if (chunk.is(id))
                return chunk.payload() <= UINT32_MAX && !chunk.isLarge ? &chunk : nullptr;
            if (chunk.isLarge || chunk.size == kNoStep)
                return nullptr;
        }
        return nullptr;
    }

    std::string read(uint64_t offset, uint64_t count)
    {
        std::string bytes(static_cast<size_t>(blocks->available(offset, count)), '\0');
        bytes.resize(blocks->read(stream, offset, bytes.data(), bytes.size()));
        return bytes;
    }

    bool planBext()
    {
        const ChunkList::Chunk* const bext = find("bext");
        if (!bext) {
            problem(Kind::NoBext);
            return false;
        }
        const uint64_t wanted
            = changes.timeReference ? BextLayout::kTimeReference.end() : BextLayout::kDescription.size;
        const uint64_t there = std::min<uint64_t>(bext->size, blocks->available(bext->payload(), bext->size));
        if (there < wanted) {
            problem(Kind::BextShort, wanted - there);
            return false;
        }
        const std::string fields = read(bext->payload(), wanted);
        if (changes.bext)
            planDescription(bext->payload(), fields);
        if (changes.timeReference)
            result.patches.push_back({ Place::TimeReference, bext->payload() + BextLayout::kTimeReference.offset,
                fields.substr(BextLayout::kTimeReference.offset, BextLayout::kTimeReference.size),
                littleEndian(*wish.start) });
        return true;
    }

    void planDescription(uint64_t offset, const std::string& fields)
    {
        const std::string text = editedDescription(wish.current, wish.updated);
        result.patches.push_back(
            { Place::Description, offset, fields.substr(0, BextLayout::kDescription.size), descriptionField(text) });
        if (text.size() >= BextLayout::kDescription.size)
            problem(Kind::DescriptionFull, text.size() - (BextLayout::kDescription.size - 1));
    }

    bool needsIxml() const { return changes.ixml || changes.tracks; }
    /// A start and user bits go where the iXML names some; an iXML that isn't there names none.
    bool concernsIxml() const { return needsIxml() || wish.start || (changes.bext && wish.usePadding); }

    void planIxml()
    {
        const ChunkList::Chunk* const ixml = find("iXML");
        if (!ixml) {
            if (needsIxml())
                problem(Kind::NoIxml);
            return;
        }
        if (blocks->available(ixml->payload(), ixml->size) < ixml->size) {
            if (concernsIxml())
                problem(Kind::IxmlCut);
            return;
        }
        payload = read(ixml->payload(), ixml->size);
        hasIxml = true;
        if (concernsIxml())
            editIxml(ixml->payload());
    }

    void editIxml(uint64_t offset)
    {
        IxmlPayload edited = editedIxmlPayload(payload, { wish.current, wish.updated, wish.start, wish.usePadding });
        switch (edited.state) {
        case IxmlPayload::State::Edited:
            result.patches.push_back({ Place::Ixml, offset, std::move(payload), edited.bytes });
            payload = std::move(edited.bytes);
            return;
        case IxmlPayload::State::Unchanged:
            return;
        case IxmlPayload::State::TooLong:
            return problem(Kind::IxmlFull, edited.missingBytes);
        case IxmlPayload::State::ForeignBytes:
            return problem(Kind::IxmlForeign);
        case IxmlPayload::State::NoPlaceForStart:
            return problem(Kind::NoPlaceForStart);
        }
    }

    /// What the reader takes from the iXML afterwards, with the start of `bext` behind it.
    BwfMetadata ixmlAfterwards() const
    {
        BwfMetadata after;
        after.sampleRate = wish.current.sampleRate;
        const uint64_t start = wish.start.value_or(wish.current.timeReference);
        after.timeReference = start <= BwfMetadata::kMaxTimeReference ? start : 0;
        if (hasIxml)
            BwfMetadataReader::parseIxml(payload, after);
        return after;
    }

    /// The record that the reader gives afterwards, as far as it is compared. An empty text adds to what the iXML says
    /// what only the Description does.
    BwfMetadata afterwards(BwfMetadata after) const
    {
        const EditPlan::Patch* const description = result.patchOf(Place::Description);
        after.description
            = description ? description->after.substr(0, description->after.find('\0')) : wish.current.description;
        if (hasIxml)
            BwfMetadataReader::parseIxml({}, after);
        return after;
    }

    void compare()
    {
        const bool isBlocked = std::any_of(result.problems.begin(), result.problems.end(),
            [](const EditPlan::Problem& each) { return each.kind != Kind::DescriptionFull; });
        if (isBlocked)
            return; // What stands in the way was said; every field would come out as it was.
        const BwfMetadata alone = ixmlAfterwards();
        const BwfMetadata after = afterwards(alone);
        const BwfMetadata wanted = wish.usePadding ? escapedForXml(wish.updated, wish.current) : wish.updated;
        compareTexts(alone, after, wanted);
        if (changes.bext && !wish.updated.ubits.empty() && !sameUbits(after.ubits, wish.updated.ubits))
            problem(Kind::NotKept, 0, "ubits");
        if (after.circled != wanted.circled)
            problem(Kind::NotKept, 0, "circled flag");
        if (after.wildTrack != wanted.wildTrack)
            problem(Kind::NotKept, 0, "wild track flag");
        if (wish.start && after.timeReference != *wish.start)
            problem(Kind::NotKept, 0, "start");
        compareTracks(after, wanted);
    }

    /// A new value must stand in the iXML itself, since the Description fills only what that doesn't say, and in the
    /// Description, since what that says otherwise is hidden from the reader.
    void compareTexts(const BwfMetadata& alone, const BwfMetadata& after, const BwfMetadata& wanted)
    {
        std::vector<std::string BwfMetadata::*> lost;
        if (changes.bext && result.problems.empty()) // Of a full Description the loss is known.
            lost = textsLostInDescription(wish.current, wish.updated);
        for (const SharedText& text : kSharedTexts) {
            const std::string& value = wanted.*text.field;
            const bool isChanged = !value.empty() && value != wish.current.*text.field;
            const bool isKept = value.empty() || after.*text.field == value;
            const bool isLost = std::find(lost.begin(), lost.end(), text.field) != lost.end();
            if (!isKept || isLost || (isChanged && alone.*text.field != value))
                problem(Kind::NotKept, 0, text.name);
        }
    }

    void compareTracks(const BwfMetadata& after, const BwfMetadata& wanted)
    {
        for (size_t i = 0; i < wanted.tracks.size(); ++i) {
            const BwfTrack& track = wanted.tracks[i];
            const bool isKept = i < after.tracks.size() && after.tracks[i].name == track.name
                && after.tracks[i].function == track.function;
            if (!isKept)
                problem(Kind::NotKept, 0, "track " + std::to_string(track.channelIndex));
        }
    }

    const InPlaceWish& wish;
    const MetadataChanges& changes;
    std::istream& stream;
    std::optional<ChunkWalk> blocks;
    ChunkList list;
    std::string payload; // Of the iXML as it will be.
    bool hasIxml = false;
    EditPlan result;
};

} // namespace

const EditPlan::Patch* EditPlan::patchOf(Place place) const
{
    const auto found
        = std::find_if(patches.begin(), patches.end(), [place](const Patch& patch) { return patch.place == place; });
    return found == patches.end() ? nullptr : &*found;
}

void InPlaceFile::open()
{
    stream.rdbuf()->pubsetbuf(nullptr, 0);
    if (wantsWriting) {
        errno = 0;
        stream.open(path, std::ios::in | std::ios::out | std::ios::binary);
        if (stream)
            return;
        notWritable = { errno, std::generic_category() };
        stream.clear();
    }
    stream.open(path, std::ios::in | std::ios::binary);
}

std::optional<BwfMetadata> InPlaceFile::read()
{
    // Opening a pipe would wait for its other end; asking for its size throws.
    (void)std::filesystem::file_size(path);
    open();
    return stream ? BwfMetadataReader::readMetadataWhole(path, stream) : std::nullopt;
}

EditPlan InPlaceFile::plan(const InPlaceWish& wish)
{
    MetadataChanges changes = changesBetween(wish.current, wish.updated);
    changes.timeReference = wish.start.has_value();
    if (!changes.any())
        return {};
    stream.clear();
    return Planning(wish, changes, stream).plan();
}

EditWrite InPlaceFile::write(const EditPlan& plan)
{
    EditWrite result;
    if (plan.patches.empty())
        return result;
    if (!wantsWriting || notWritable)
        return { EditWrite::State::NotOpened, 0, notWritable };
    if (!hasTheLength(plan) || !holdsAll(plan, &EditPlan::Patch::before))
        return { EditWrite::State::ChangedMeanwhile, 0, {} };
    while (result.patchesDone < plan.patches.size() && put(plan.patches[result.patchesDone]))
        ++result.patchesDone;
    const bool allDone = result.patchesDone == plan.patches.size();
    if (!allDone || !hasTheLength(plan) || !holdsAll(plan, &EditPlan::Patch::after))
        result.state = EditWrite::State::Failed;
    return result;
}

bool InPlaceFile::hasTheLength(const EditPlan& plan)
{
    const std::streamoff end = stream.rdbuf()->pubseekoff(0, std::ios::end);
    return end >= 0 && static_cast<uint64_t>(end) == plan.fileBytes;
}

bool InPlaceFile::holdsAll(const EditPlan& plan, std::string EditPlan::Patch::*bytes)
{
    return std::all_of(plan.patches.begin(), plan.patches.end(),
        [this, bytes](const EditPlan::Patch& patch) { return holds(patch.offset, patch.*bytes); });
}

bool InPlaceFile::holds(uint64_t offset, const std::string& wanted)
{
    std::string there(wanted.size(), '\0');
    stream.seekg(static_cast<std::streamoff>(offset));
    stream.read(there.data(), static_cast<std::streamsize>(there.size()));
    return stream && there == wanted;
}

bool InPlaceFile::put(const EditPlan::Patch& patch)
{
    stream.seekp(static_cast<std::streamoff>(patch.offset));
    stream.write(patch.after.data(), static_cast<std::streamsize>(patch.after.size()));
    return stream.good();
}
