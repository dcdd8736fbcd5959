#pragma once

#include "cli/Arguments.h"
#include "core/BwfMetadata.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// What an edit wants of one track. A plain value.
struct TrackEdit {
    /// The channel number that the file lists, from 1.
    int32_t channelIndex = 0;
    /// May be empty: then the track has no name.
    std::string name;
    /// Nothing leaves it as it is; an empty one takes it away.
    std::optional<std::string> function;
};

/// What is wanted of every file of an edit; what isn't named stays as each file has it. Texts are bytes as the system
/// gave them and never empty, since the writer takes an empty one for "leave it". A plain value.
struct EditRequest {
    std::optional<std::string> scene;
    std::optional<std::string> take;
    std::optional<std::string> tape;
    std::optional<std::string> project;
    std::optional<std::string> note;
    std::optional<std::string> ubits;
    std::optional<bool> circled;
    std::optional<bool> wildTrack;
    /// In their order, each channel number once.
    std::vector<TrackEdit> tracks;
    /// Start timecode as it was typed: right by its form, but only a file's rate tells whether it exists.
    std::optional<std::string> start;

    /// True if nothing is wanted.
    bool isEmpty() const;
};

/// The options that name an edit. `start` is the last one.
inline constexpr Option kEditOptions[] = {
    { .name = "scene", .value = "TEXT", .words = "the scene" },
    { .name = "take", .value = "TEXT", .words = "the take" },
    { .name = "tape", .value = "TEXT", .words = "the tape" },
    { .name = "project", .value = "TEXT", .words = "the project" },
    { .name = "note", .value = "TEXT", .words = "the note" },
    { .name = "ubits", .value = "TEXT", .words = "the user bits" },
    { .name = "circled", .value = "yes|no", .words = "whether the take is circled", .choices = "yes|no" },
    { .name = "wild", .value = "yes|no", .words = "whether it is a wild track", .choices = "yes|no" },
    { .name = "track",
        .value = "N=NAME[/FUNCTION]",
        .words = "name, and function, of the track with channel number N; \\/ is a / of the name",
        .repeats = true },
    { .name = "start", .value = "HH:MM:SS:FF", .words = "the start timecode" },
};

/// An edit, or what is wrong with the options that name it.
struct ParsedEdit {
    EditRequest request;
    /// What is wrong, in words for the user; empty if nothing is.
    std::string complaint;
};

/// The edit that the options name. Options that aren't known to the command count as not given.
ParsedEdit parseEdit(const Arguments& arguments);

/// One track of an edit: "N=NAME" or "N=NAME/FUNCTION", with a "\" in front of each "\", "|" and "/" that belongs to a
/// text. Nothing if it has another form.
std::optional<TrackEdit> parseTrackEdit(std::string_view text);

/// True for four numbers of two digits, with ":" between them or ";" in front of the last.
bool looksLikeTimecode(std::string_view text);

/// An edit applied to a file.
struct WantedRecord {
    /// The file's own record with what was asked for; the start is left out.
    BwfMetadata record;
    /// Channel numbers that the file doesn't list.
    std::vector<int32_t> unknownTracks;
};

/// What `request` makes of a file whose record is `current`. Of several tracks with one number the first is meant, as
/// in the writer.
WantedRecord wantedRecord(const BwfMetadata& current, const EditRequest& request);
