#include "cli/FileEdit.h"

#include "cli/AudioSum.h"
#include "cli/FileFacts.h"
#include "cli/FileRun.h"
#include "cli/IxmlForm.h"
#include "cli/PlainText.h"
#include "core/SharedTexts.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <filesystem>
#include <optional>
#include <vector>

namespace {

using Kind = EditPlan::Problem::Kind;

std::string bytesWords(uint64_t count)
{
    return std::to_string(count) + (count == 1 ? " byte" : " bytes");
}

/// Names of what differs, for one line: "scene 12 -> 12A, circled".
class ChangeList {
public:
    void text(const std::string& name, const std::string& before, const std::string& after)
    {
        if (before != after)
            add(name + " '" + oneLine(before) + "' -> '" + oneLine(after) + "'");
    }
    void flag(const std::string& name, bool before, bool after)
    {
        if (before != after)
            add(name + (after ? " yes" : " no"));
    }
    std::string words;

private:
    void add(const std::string& change) { words.append(words.empty() ? "" : ", ").append(change); }
};

std::string trackName(const BwfTrack& track)
{
    return track.function.empty() ? track.name : track.name + "/" + track.function;
}

timespec dateOf(const std::string& path)
{
    struct stat status = {};
    if (stat(path.c_str(), &status) != 0)
        throw fileErrorOf({ errno, std::generic_category() });
    return status.st_mtim;
}

void putDateBack(const std::string& path, const timespec& modified)
{
    const std::array<timespec, 2> times{ timespec{ 0, UTIME_OMIT }, modified };
    if (utimensat(AT_FDCWD, path.c_str(), times.data(), 0) != 0)
        throw FileError("date-lost",
            "it was written, but its date couldn't be put back: "
                + fileErrorOf({ errno, std::generic_category() }).words);
}

/// What must not change.
struct Untouchables {
    std::string audio;
    uint64_t fileBytes = 0;

    /// Throws FileError, or filesystem_error, as `readAudioSum` does.
    explicit Untouchables(const std::string& path)
        : audio(readAudioSum(path).digits), fileBytes(std::filesystem::file_size(path))
    {
    }
    bool operator==(const Untouchables&) const = default;
};

/// One file on its way through the steps.
class FileEditing {
public:
    FileEditing(const std::string& filePath, const EditRequest& wantedEdit, const EditManner& editManner)
        : path(filePath), request(wantedEdit), manner(editManner), file(filePath, !editManner.dryRun)
    {
    }

    FileEditResult run()
    {
        // The long reading comes first: what another program writes meanwhile is in the record that the plan is made
        // of.
        std::optional<Untouchables> before;
        if (manner.verify && !manner.dryRun)
            before.emplace(path);
        readFile();
        const EditPlan plan = file.plan({ current, wanted.record, start, manner.usePadding });
        takeProblems(plan);
        checkForm(plan);
        if (!hindrances.empty() && (!manner.partly || plan.patches.empty() || isDangerous))
            refuse();
        if (plan.patches.empty())
            return { Exit::Ok, "nothing to do" };
        if (manner.dryRun)
            askForWriting();
        else
            write(plan, before);
        return result();
    }

private:
    void readFile()
    {
        current = readWhole();
        if (request.start)
            takeStart();
        wanted = wantedRecord(current, request);
        for (const int32_t track : wanted.unknownTracks)
            hindrances.push_back({ "no-track", "it has no track " + std::to_string(track) });
    }

    BwfMetadata readWhole()
    {
        try {
            if (std::optional<BwfMetadata> whole = file.read())
                return std::move(*whole);
        } catch (const std::filesystem::filesystem_error&) {
            std::error_code error;
            if (std::filesystem::exists(path, error) && !std::filesystem::is_regular_file(path, error))
                throw FileError("not-a-file", "it is no file");
            throw;
        }
        throw FileError("io-error", "it can't be read whole");
    }

    /// The facts that a start is counted by. They are read without asking for whole reads, and a rate that an error
    /// took away would move the start: so they must agree with what was read whole, and with themselves.
    FileFacts factsForStart() const
    {
        FileFacts facts = readFileFacts(path);
        const BwfMetadata& record = facts.record;
        const bool isSame = record.frameRate == current.frameRate && record.dropFrame == current.dropFrame
            && record.sampleRate == current.sampleRate && record.timestampSampleRate == current.timestampSampleRate
            && record.timeReference == current.timeReference;
        if (!isSame || readFileFacts(path).startSampleRate != facts.startSampleRate)
            throw FileError("io-error", "it can't be read whole");
        return facts;
    }

    void takeStart()
    {
        const FileFacts facts = factsForStart();
        if (!facts.frameRate || facts.startSampleRate == 0)
            throw FileError("no-rate", "it names no frame rate or no sample rate, which a start needs");
        const bool asksDrop = request.start->find(';') != std::string::npos;
        if (asksDrop && !facts.dropFrame)
            throw FileError("not-drop-frame", "its timecode isn't drop-frame, and " + *request.start + " is");
        const std::optional<uint64_t> frame = frameOfLabel(*request.start, *facts.frameRate, facts.dropFrame);
        if (!frame)
            throw FileError("no-such-timecode",
                "there is no " + *request.start + " at " + facts.frameRate->toString()
                    + (facts.dropFrame ? " drop-frame" : ""));
        start = sampleOfFrame(*frame, *facts.frameRate, facts.startSampleRate);
        startBefore = facts.startLabel();
        startAfter = frameLabel(*frame, *facts.frameRate, facts.dropFrame);
        if (frameAtSample(*start, *facts.frameRate, facts.startSampleRate) != *frame)
            throw FileError("not-kept", "the start wouldn't come out again as it was asked for");
    }

    void takeProblems(const EditPlan& plan)
    {
        for (const EditPlan::Problem& problem : plan.problems) {
            isDangerous = isDangerous || problem.kind == Kind::UnknownContainer || problem.kind == Kind::Unreadable;
            hindrances.push_back(hindranceOf(problem));
        }
    }

    /// Only a text that grows is written as XML; the other one goes in as the window writes it.
    void checkForm(const EditPlan& plan)
    {
        const EditPlan::Patch* const ixml = plan.patchOf(EditPlan::Place::Ixml);
        if (!manner.usePadding || !ixml)
            return;
        std::string words = ixmlFormComplaint(ixml->before, ixml->after);
        if (words.empty())
            return;
        hindrances.push_back({ "ixml-form", std::move(words) });
        isDangerous = true;
    }

    [[noreturn]] void refuse() const { throw FileError(hindrances.front().code, "not written: " + hindranceWords()); }

    std::string hindranceWords() const
    {
        std::string words;
        for (const EditHindrance& each : hindrances)
            words.append(words.empty() ? "" : "; ").append(each.words);
        return words;
    }

    void askForWriting() const
    {
        errno = 0;
        if (access(path.c_str(), W_OK) != 0)
            failToOpen({ errno, std::generic_category() });
    }

    void write(const EditPlan& plan, const std::optional<Untouchables>& before)
    {
        const timespec date = manner.keepDate ? dateOf(path) : timespec{};
        const EditWrite written = file.write(plan);
        if (written.state != EditWrite::State::Written)
            fail(written, plan);
        if (before && *before != Untouchables(path))
            throw FileError("audio-changed", "ITS LENGTH OR ITS AUDIO IS ANOTHER ONE than before the edit");
        if (manner.keepDate)
            putDateBack(path, date);
    }

    [[noreturn]] static void failToOpen(std::error_code error)
    {
        const FileError reason = fileErrorOf(error);
        throw FileError(reason.code, "not written: it can't be opened for writing: " + reason.words);
    }

    [[noreturn]] static void fail(const EditWrite& written, const EditPlan& plan)
    {
        if (written.state == EditWrite::State::NotOpened)
            failToOpen(written.error);
        if (written.state == EditWrite::State::ChangedMeanwhile)
            throw FileError("changed", "not written: it was changed meanwhile");
        throw FileError("write-failed",
            "THE WRITE FAILED: " + std::to_string(written.patchesDone) + " of " + std::to_string(plan.patches.size())
                + " places are written; look at it before you use it");
    }

    FileEditResult result() const
    {
        std::string words = manner.dryRun ? "would be written" : "written";
        if (hindrances.empty())
            return { Exit::Ok, words + changes() };
        return { Exit::Found, words + " in part" + changes() + "; " + hindranceWords() };
    }

    std::string changes() const
    {
        ChangeList list;
        for (const SharedText& text : kSharedTexts)
            list.text(text.name, current.*text.field, wanted.record.*text.field);
        list.text("ubits", current.ubits, wanted.record.ubits);
        list.flag("circled", current.circled, wanted.record.circled);
        list.flag("wild", current.wildTrack, wanted.record.wildTrack);
        for (size_t i = 0; i < current.tracks.size(); ++i)
            list.text("track " + std::to_string(current.tracks[i].channelIndex), trackName(current.tracks[i]),
                trackName(wanted.record.tracks[i]));
        if (start)
            list.text("start", startBefore, startAfter);
        return list.words.empty() ? std::string() : ": " + list.words;
    }

    const std::string& path;
    const EditRequest& request;
    const EditManner& manner;
    BwfMetadata current;
    WantedRecord wanted;
    InPlaceFile file;
    std::optional<uint64_t> start;
    std::string startBefore;
    std::string startAfter;
    std::vector<EditHindrance> hindrances;
    bool isDangerous = false; // Not even a part of it may be written.
};

} // namespace

EditHindrance hindranceOf(const EditPlan::Problem& problem)
{
    switch (problem.kind) {
    case Kind::UnknownContainer:
        return { "unknown-container", "it is no WAV file that the window reads" };
    case Kind::Unreadable:
        return { "io-error", "it can't be read whole" };
    case Kind::NoBext:
        return { "no-bext", "it has no bext that can be reached" };
    case Kind::BextShort:
        return { "bext-short", "its bext is " + bytesWords(problem.missingBytes) + " shorter than its fields" };
    case Kind::DescriptionFull:
        return { "description-full", "its Description would lose " + bytesWords(problem.missingBytes) + " at its end" };
    case Kind::NoIxml:
        return { "no-ixml", "it has no iXML that can be reached" };
    case Kind::IxmlCut:
        return { "ixml-cut", "the file ends inside its iXML" };
    case Kind::IxmlFull:
        return { "ixml-full", "its iXML is " + bytesWords(problem.missingBytes) + " too short" };
    case Kind::IxmlForeign:
        return { "ixml-foreign", "something else than padding stands behind the text of its iXML" };
    case Kind::NoPlaceForStart:
        return { "no-place", "its iXML has no place for the high half of the start" };
    case Kind::NotKept:
        return { "not-kept", "the " + problem.field + " wouldn't come out again as it was asked for" };
    }
    return {};
}

FileEditResult editFile(const std::string& path, const EditRequest& request, const EditManner& manner)
{
    return FileEditing(path, request, manner).run();
}
