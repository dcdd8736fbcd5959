#pragma once

#include "tests/support/ChangedRanges.h"
#include "tests/support/WavBuilder.h"

#include <string>
#include <vector>

/// The values of a recording that the saving tests build: all of them stand in the iXML text, and the Description
/// holds nothing.
struct TakeFields {
    std::string scene = "12A";
    std::string take = "01";
    std::string tape = "R01";
    std::string project = "Alpha";
    std::string note = "first";
    std::string circled = "FALSE"; ///< "TRUE" is shorter, so a file can be circled in place but not uncircled alone.
    std::string wildTrack; ///< No element if empty.
    std::vector<std::string> tracks{ "Boom", "Lav" };
    std::string function = "dry"; ///< Of each track.
    bool withBext = true;
    uint64_t timeReference = 172800000; ///< 01:00:00:00 at 48000 Hz.
    std::string rate = "25/1"; ///< No element if empty.
};

inline std::string ixmlText(const TakeFields& fields)
{
    const auto element = [](const std::string& name, const std::string& value) {
        return "<" + name + ">" + value + "</" + name + ">\n";
    };
    std::string text = "<BWFXML>\n" + element("PROJECT", fields.project) + element("SCENE", fields.scene)
        + element("TAKE", fields.take) + element("TAPE", fields.tape) + element("NOTE", fields.note)
        + element("CIRCLED", fields.circled);
    if (!fields.wildTrack.empty())
        text += element("WILD_TRACK", fields.wildTrack);
    if (!fields.rate.empty())
        text += "<SPEED>\n" + element("TIMECODE_RATE", fields.rate) + "</SPEED>\n";
    text += "<TRACK_LIST>\n";
    for (size_t i = 0; i < fields.tracks.size(); ++i)
        text += "<TRACK>\n" + element("CHANNEL_INDEX", std::to_string(i + 1)) + element("NAME", fields.tracks[i])
            + element("FUNCTION", fields.function) + "</TRACK>\n";
    return text + "</TRACK_LIST>\n</BWFXML>\n";
}

/// The recording as it comes off the machine.
inline WavBuilder takeFile(const TakeFields& fields)
{
    BextFields bext;
    bext.timeReference = fields.timeReference;
    WavBuilder file;
    file.fmt(48000, 2, 24);
    if (fields.withBext)
        file.bext(bext);
    return file.ixml(ixmlText(fields)).dataFrames(48);
}

/// Where the Description, TimeReference and the value of an iXML element lie in the file of `fields`.
inline ByteRange descriptionRange(const TakeFields& fields)
{
    const uint64_t begin = takeFile(fields).payloadOffset("bext");
    return { begin, begin + 256 };
}

inline ByteRange timeReferenceRange(const TakeFields& fields)
{
    const uint64_t begin = takeFile(fields).payloadOffset("bext") + 338;
    return { begin, begin + 8 };
}

inline ByteRange ixmlRange(const TakeFields& fields)
{
    const uint64_t begin = takeFile(fields).payloadOffset("iXML");
    return { begin, begin + ixmlText(fields).size() };
}

inline ByteRange elementRange(const TakeFields& fields, const std::string& element, const std::string& value)
{
    const std::string tag = "<" + element + ">";
    const uint64_t begin = ixmlRange(fields).begin + ixmlText(fields).find(tag + value) + tag.size();
    return { begin, begin + value.size() };
}
