#pragma once

#include "tests/support/ChangedRanges.h"
#include "tests/support/WavBuilder.h"

#include <cstdint>
#include <string>
#include <vector>

/// A recording that says about itself, in its iXML text, what a test wants it to say; its Description says nothing.
/// Texts that are empty, and rates of 0, have no element.
struct Recording {
    std::string scene{};
    std::string take{};
    std::string project{};
    std::string tape{};
    std::string note{};
    std::string frameRate{}; ///< As in the iXML, such as "25/1".
    std::string ubits{};
    std::string circled = "FALSE";
    std::string wildTrack = "FALSE";
    uint64_t timeReference = 0; ///< In the `bext` chunk, samples since midnight.
    uint32_t timestampRate = 0;
    uint32_t sampleRate = 48000;
    uint16_t channels = 2;
    uint16_t bits = 24;
    std::vector<std::string> trackNames{}; ///< By channel, from 1.
    std::string function{}; ///< Of each track; if empty, F1, F2 and so on.
    bool withBext = true;
    uint32_t frames = 0; ///< 0 for a second.
    uint32_t seconds = 0; ///< What `fileWithoutAudio` claims to hold.

    /// A take with a start time and two tracks, that says something in each field: 12A, 01, Alpha, R01, "first".
    /// "FALSE" is longer than "TRUE", so that it can be circled in place but not uncircled; it has no WILD_TRACK.
    static Recording usual();

    std::string ixml() const;
    /// `fmt `, `bext`, `iXML` and `data`.
    WavBuilder file() const;
    /// The same without a byte of audio; `data` claims a length of `seconds`, so that a long take stays small.
    WavBuilder fileWithoutAudio() const;

    // Where things lie in the file.
    ByteRange descriptionRange() const;
    ByteRange timeReferenceRange() const;
    ByteRange ixmlRange() const;
    /// The text of the first `element` whose text begins with `value`, as far as `value` goes.
    ByteRange elementRange(const std::string& element, const std::string& value) const;
};
