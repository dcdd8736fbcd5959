#include "cli/EditTable.h"

#include "cli/CsvReader.h"
#include "cli/DumpFields.h"
#include "cli/DumpFormat.h"
#include "cli/FileRun.h"
#include "cli/PlainText.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <sstream>
#include <unordered_set>

namespace {

constexpr std::string_view kPathColumn = "path";
constexpr std::string_view kTracksColumn = "tracks";
constexpr std::string_view kStartColumn = "timecode_start";
constexpr size_t kMostComplaints = 20;

struct TextColumn {
    std::string_view name;
    std::optional<std::string> EditRequest::*wanted;
};

constexpr TextColumn kTextColumns[] = {
    { "scene", &EditRequest::scene },
    { "take", &EditRequest::take },
    { "tape", &EditRequest::tape },
    { "project", &EditRequest::project },
    { "note", &EditRequest::note },
    { "ubits", &EditRequest::ubits },
};

struct FlagColumn {
    std::string_view name;
    std::optional<bool> EditRequest::*wanted;
};

constexpr FlagColumn kFlagColumns[] = {
    { "circled", &EditRequest::circled },
    { "wild_track", &EditRequest::wildTrack },
};

/// The names that `dump` writes, with its list of chunks.
const std::unordered_set<std::string>& knownColumns()
{
    static const std::unordered_set<std::string> known = [] {
        std::istringstream head(csvDump(true)->head());
        std::vector<std::string> names;
        CsvReader(head).next(names);
        return std::unordered_set<std::string>(names.begin(), names.end());
    }();
    return known;
}

std::string inQuotes(std::string_view text)
{
    return "'" + oneLine(text) + "'";
}

std::string tracksText(const std::vector<BwfTrack>& tracks)
{
    std::string text;
    for (const BwfTrack& track : tracks)
        text.append(text.empty() ? "" : "|").append(trackText(track));
    return text;
}

/// Pieces between bars; a bar behind a "\" belongs to its piece.
std::vector<std::string> piecesOf(std::string_view text)
{
    std::vector<std::string> pieces(1);
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '|') {
            pieces.emplace_back();
            continue;
        }
        pieces.back() += text[i];
        if (text[i] == '\\' && i + 1 < text.size())
            pieces.back() += text[++i];
    }
    return pieces;
}

/// Nothing if the text is no list of tracks, or names one twice.
std::optional<std::vector<TrackEdit>> tracksOf(std::string_view text)
{
    std::vector<TrackEdit> tracks;
    for (const std::string& piece : piecesOf(text)) {
        std::optional<TrackEdit> track = parseTrackEdit(piece);
        if (!track)
            return std::nullopt;
        const bool isRepeated = std::any_of(tracks.begin(), tracks.end(),
            [&](const TrackEdit& each) { return each.channelIndex == track->channelIndex; });
        if (isRepeated)
            return std::nullopt;
        tracks.push_back(std::move(*track));
    }
    return tracks;
}

/// What is wrong with a cell by its form; empty if nothing is.
std::string complaintOf(std::string_view column, std::string_view cell)
{
    if (cell.empty())
        return {};
    const auto isColumn = [column](const FlagColumn& each) { return each.name == column; };
    if (std::any_of(std::begin(kFlagColumns), std::end(kFlagColumns), isColumn) && cell != "yes" && cell != "no")
        return std::string(column) + " takes yes or no, not " + inQuotes(cell);
    return {};
}

void takeCell(std::string_view column, const std::string& cell, const FileFacts& facts, EditRequest& request)
{
    for (const TextColumn& text : kTextColumns) {
        if (text.name == column)
            request.*text.wanted = cell;
    }
    for (const FlagColumn& flag : kFlagColumns) {
        if (flag.name == column)
            request.*flag.wanted = cell == "yes";
    }
    // A list or a start as `dump` shows it is none that is wanted: the start may lie between two frames, and a list of
    // a file can hold what nobody could ask for.
    if (column == kStartColumn && cell != facts.startLabel())
        request.start = cell;
    if (column != kTracksColumn || cell == tracksText(facts.record.tracks))
        return;
    std::optional<std::vector<TrackEdit>> tracks = tracksOf(cell);
    if (!tracks)
        throw FileError("bad-tracks", "its cell of tracks is no list of N=NAME or N=NAME/FUNCTION with | between them");
    request.tracks = std::move(*tracks);
}

} // namespace

EditTable::EditTable(const std::string& csvPath) : source(csvPath)
{
    std::error_code error;
    if (std::filesystem::exists(source, error) && !std::filesystem::is_regular_file(source, error))
        throw RunError{ source, "it is no regular file, and its rows are read more than once" };
    errno = 0;
    stream.open(source, std::ios::binary);
    if (!stream)
        throw RunError{ source, fileErrorOf({ errno, std::generic_category() }).words };
    CsvReader reader(stream);
    std::vector<std::string> cells;
    if (reader.next(cells))
        takeHeader(cells);
    else if (reader.complaint().empty())
        wrong.emplace_back("it is empty");
    while (wrong.size() < kMostComplaints && reader.next(cells))
        takeRow(cells, reader.line(), reader.offset());
    if (!reader.complaint().empty())
        wrong.push_back(reader.complaint());
}

void EditTable::takeHeader(const std::vector<std::string>& cells)
{
    columns.names = cells;
    const auto path = std::find(cells.begin(), cells.end(), kPathColumn);
    columns.path = static_cast<size_t>(path - cells.begin());
    if (path == cells.end())
        wrong.push_back("it has no column " + inQuotes(kPathColumn));
    std::unordered_set<std::string> met;
    for (const std::string& name : cells) {
        if (!knownColumns().contains(name))
            wrong.push_back("unknown column " + inQuotes(name));
        else if (!met.insert(name).second)
            wrong.push_back("column " + inQuotes(name) + " is there twice");
    }
}

void EditTable::takeRow(const std::vector<std::string>& cells, size_t line, uint64_t offset)
{
    const bool isEmpty = cells.size() == 1 && cells.front().empty();
    if (isEmpty || columns.path == columns.names.size())
        return;
    const std::string where = "line " + std::to_string(line) + ": ";
    if (cells.size() != columns.names.size()) {
        wrong.push_back(
            where + std::to_string(cells.size()) + " cells under " + std::to_string(columns.names.size()) + " columns");
        return;
    }
    for (size_t i = 0; i < cells.size(); ++i) {
        const std::string complaint = complaintOf(columns.names[i], cells[i]);
        if (!complaint.empty())
            wrong.push_back(where + complaint);
    }
    files.push_back(cells[columns.path]);
    offsets.push_back(offset);
}

void EditTable::throwChanged() const
{
    throw RunError{ source, "it was changed while it was worked through" };
}

EditRequest EditTable::request(size_t index, const FileFacts& facts)
{
    stream.clear();
    stream.seekg(static_cast<std::streamoff>(offsets[index]));
    CsvReader reader(stream, offsets[index]);
    std::vector<std::string> cells;
    if (!reader.next(cells) || cells.size() != columns.names.size() || cells[columns.path] != files[index])
        throwChanged();
    EditRequest request;
    for (size_t i = 0; i < cells.size(); ++i) {
        if (!cells[i].empty())
            takeCell(columns.names[i], cells[i], facts, request);
    }
    return request;
}
