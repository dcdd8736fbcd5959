#pragma once

#include "core/BwfMetadata.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

// The payload of an iXML chunk brought in line with wanted values, as one text of unchanged length. Pure functions, any
// thread.

/// How an iXML payload is made up.
struct IxmlRoom {
    /// Bytes of the text, up to its last ">" and the line end behind that, if there is one.
    size_t textBytes = 0;
    /// Blanks, tabs, line ends and NULs behind it, which nobody misses.
    size_t freeBytes = 0;
};

/// Where the text of a payload ends. Nothing if something else than padding stands behind its last ">", or a NUL stands
/// in front of it: bytes behind a NUL belong to somebody else.
std::optional<IxmlRoom> ixmlRoom(std::string_view payload);

/// `text` as XML has it between two tags: "&", "<" and ">" as entities; without the control characters that XML
/// forbids.
std::string xmlEscaped(std::string_view text);

/// What is wanted of an iXML payload. The records are not owned and must outlive the wish.
struct IxmlWish {
    /// What the file says now.
    const BwfMetadata& current;
    /// As for `editedIxml`; user bits are looked at as well if the text may grow.
    const BwfMetadata& updated;
    /// Samples since midnight, 0 for midnight itself; nothing leaves the start as it is.
    std::optional<uint64_t> start;
    /// The text may grow into the padding. Its new values are then written as XML wants them; without it they go in
    /// byte for byte, and whatever the text lacks at its end becomes NUL.
    bool usePadding = false;
};

/// What became of it.
struct IxmlPayload {
    enum class State {
        /// Every value that has a place in the text is in it.
        Edited,
        /// There was nothing to do.
        Unchanged,
        /// It needs `missingBytes` more than there are.
        TooLong,
        /// What stands behind the text isn't padding.
        ForeignBytes,
        /// The start has a high half, and the text no place for it.
        NoPlaceForStart,
    };
    State state = State::Unchanged;
    /// As long as the old one; empty unless edited.
    std::string bytes;
    /// Bytes that are missing; 0 unless it is too long.
    size_t missingBytes = 0;
};

/// Edits a payload. Values that have no place are left out in silence: whether the result says what it should is told
/// by reading it.
IxmlPayload editedIxmlPayload(const std::string& payload, const IxmlWish& wish);

/// `updated` with each text that isn't what `current` has, in fields and tracks, escaped for XML.
BwfMetadata escapedForXml(BwfMetadata updated, const BwfMetadata& current);

/// The text with another start in its SPEED and BEXT blocks, where these name one. Each number is at least as wide as
/// before, with zeros in front, so that a start of equally many digits fits ever after. Nothing if the high half of the
/// start isn't 0 and has no place beside a low one.
std::optional<std::string> ixmlWithStart(const std::string& text, uint64_t samples);
