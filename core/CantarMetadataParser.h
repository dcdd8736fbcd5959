#pragma once

#include <cstddef>
#include <initializer_list>
#include <map>
#include <string>
#include <string_view>

/// A list of track names that can have a great many empty entries: a file may name track 100000000 and no other.
/// Only names that are not empty take memory. Entries count from 0. A plain value.
class TrackNameList {
public:
    TrackNameList() = default;
    /// One entry for each name, in order, the empty ones included.
    TrackNameList(std::initializer_list<std::string_view> names);

    /// Number of entries, the empty ones included.
    size_t size() const { return count; }
    /// True when there are no entries at all; a list of empty names is not empty.
    bool empty() const { return count == 0; }
    /// The name of entry `index`; the empty text beyond the end, too. Valid until the list changes.
    const std::string& operator[](size_t index) const;
    /// Gives entry `index` a name. A shorter list grows up to it with empty entries.
    void set(size_t index, std::string_view name);
    /// The entries that are not empty, by rising index. Valid until the list goes.
    const std::map<size_t, std::string>& named() const { return names; }

    bool operator==(const TrackNameList&) const = default;

private:
    std::map<size_t, std::string> names;
    size_t count = 0;
};

/// What the key=value lines of a `bext` Description say. Texts are bytes of the file, empty where no line said so.
struct CantarMetadata {
    /// User bits as written in the text.
    std::string ubits;
    std::string scene;
    std::string take;
    std::string tape;
    /// Frame rate as text, its suffixes removed.
    std::string frameRate;
    /// Tag; in a text that is built it carries the project.
    std::string tag;
    std::string note;
    /// Name of track i + 1 at index i.
    TrackNameList trackNames;
    /// The text uses the digital form of the keys: "d" in front, "TS=" and "FRAMERATE=".
    bool digitalKeys = false;

    bool operator==(const CantarMetadata&) const = default;
};

/// Reads and builds the key=value text of a `bext` Description. Pure text work, no state, any thread.
class CantarMetadataParser {
public:
    CantarMetadataParser() = delete;

    /// `text` without blanks, tabs, carriage returns and line feeds at both ends.
    static std::string trim(std::string_view text);

    /// Takes one line into `record`. A line without "=" or with an unknown key changes nothing.
    static void parseField(std::string_view line, CantarMetadata& record);

    /// The record of a whole text; of repeated keys the last one wins. The default record if no line fits.
    static CantarMetadata parseDescription(std::string_view text);

    /// The lines of `record` in a fixed order, each with a line feed; empty values have no line. `frameRate` in frames
    /// per second goes before the record's own text if it is greater than 0.0. Any length; the empty text if there
    /// is nothing to say.
    static std::string buildDescription(const CantarMetadata& record, double frameRate);
};
