#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <vector>

/// An iXML text as an XML parser sees it, which is more than the core's literal tags: entities are resolved, and what
/// is no XML is told. A plain value; texts are UTF-8.
struct IxmlDocument {
    /// Texts beyond this many bytes aren't parsed: real ones have some kilobytes.
    static constexpr size_t kMostBytes = size_t{ 1 } << 20;

    enum class Form {
        WellFormed,
        /// `complaint` says why.
        NotWellFormed,
        /// Bytes that belong to no character, under a declaration of UTF-8 or none.
        NotUtf8,
        /// Declared in an encoding that isn't UTF-8; `complaint` names it. Not parsed.
        OtherEncoding,
        /// It has a document type, which no recorder writes and whose entities could grow without end. Not parsed on.
        HasDoctype,
        /// More than kMostBytes. Not parsed.
        TooLarge,
    };

    struct Track {
        std::string channelIndex;
        std::string interleaveIndex;
        std::string name;
    };

    Form form = Form::WellFormed;
    std::string complaint;
    /// The tracks of the track list, in order.
    std::vector<Track> tracks;

    /// Trimmed text of the first element at `path` below the root, names in capitals whatever the file has:
    /// "SPEED/TIMECODE_RATE". Empty if there is none, or the parser gave up in front of it.
    std::string_view value(std::string_view path) const;

    std::map<std::string, std::string, std::less<>> values;
};

/// Parses a chunk's payload; NULs at its end are padding and no part of it. Any thread.
IxmlDocument parseIxmlDocument(std::string_view payload);
