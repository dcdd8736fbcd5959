#pragma once

#include "core/FrameTimecode.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// One clip of an Avid Log Exchange file that an editing system shall import. Texts are UTF-8 as the file holds them.
/// A plain value.
struct AvidClip {
    /// Name of the file with its extension.
    std::string fileName;
    std::string scene;
    std::string take;
    /// Tape or roll name; the heading's stands in for an empty one.
    std::string soundRoll;
    std::string note;
    /// First frame since midnight.
    uint64_t startFrame = 0;
    /// Length in frames, above 0.
    uint64_t frames = 0;
    FrameRate rate;
    /// Labels leave out numbers.
    bool dropFrame = false;
    /// Audio channels, above 0.
    uint16_t channels = 0;
    /// Samples per second, above 0.
    uint32_t sampleRate = 0;
    /// Bits per sample, above 0.
    uint16_t bitDepth = 0;
};

/// What the heading says of all clips.
struct AvidHeading {
    /// One of kAvidVideoFormats: the raster of the project that the file is imported into. Sound has none, but an
    /// import asks for it and refuses another project's.
    std::string_view videoFormat = "1080";
    /// The name that stands for clips without a roll; not empty.
    std::string tape;
};

/// The rasters that an import knows, "|" between them.
inline constexpr std::string_view kAvidVideoFormats = "NTSC|PAL|720|1080|CUSTOM";

/// The file's bytes: lines end in CRLF, no byte order mark, no tab behind the last value of a line. Start and end are
/// told from one count of frames; the end is the frame behind the last one. The heading's rate is the first clip's, and
/// each clip has a column of its own for its rate. A name beyond 32 characters is cut. The audio format is left out
/// where the clips have several or one that no import knows.
///
/// The report of the window, AleReport.h, is another text under the same suffix: it lacks what an import asks for.
std::string avidAle(const AvidHeading& heading, const std::vector<AvidClip>& clips);
