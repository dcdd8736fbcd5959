#include "tests/support/Recording.h"

namespace {

std::string element(const std::string& name, const std::string& value)
{
    return value.empty() ? std::string() : "<" + name + ">" + value + "</" + name + ">\n";
}

std::string trackList(const Recording& recording)
{
    std::string tracks;
    for (size_t i = 0; i < recording.trackNames.size(); ++i) {
        const std::string number = std::to_string(i + 1);
        tracks += element("TRACK",
            element("CHANNEL_INDEX", number) + element("NAME", recording.trackNames[i])
                + element("FUNCTION", recording.function.empty() ? "F" + number : recording.function));
    }
    return element("TRACK_LIST", tracks);
}

// All chunks in front of the audio.
WavBuilder headOf(const Recording& recording)
{
    BextFields bext;
    bext.timeReference = recording.timeReference;
    WavBuilder builder;
    builder.fmt(recording.sampleRate, recording.channels, recording.bits);
    if (recording.withBext)
        builder.bext(bext);
    return builder.ixml(recording.ixml());
}

} // namespace

Recording Recording::usual()
{
    Recording recording;
    recording.scene = "12A";
    recording.take = "01";
    recording.project = "Alpha";
    recording.tape = "R01";
    recording.note = "first";
    recording.frameRate = "25/1";
    recording.wildTrack.clear();
    recording.timeReference = 172800000; // 01:00:00:00 at 48000 Hz.
    recording.trackNames = { "Boom", "Lav" };
    recording.function = "dry";
    recording.frames = 48;
    return recording;
}

std::string Recording::ixml() const
{
    const std::string stamp = timestampRate != 0 ? std::to_string(timestampRate) : std::string();
    const std::string speed = element("TIMECODE_RATE", frameRate) + element("TIMESTAMP_SAMPLE_RATE", stamp);
    return "<BWFXML>\n" + element("PROJECT", project) + element("SCENE", scene) + element("TAKE", take)
        + element("TAPE", tape) + element("NOTE", note) + element("UBITS", ubits) + element("CIRCLED", circled)
        + element("WILD_TRACK", wildTrack) + element("SPEED", speed) + trackList(*this) + "</BWFXML>\n";
}

WavBuilder Recording::file() const
{
    return headOf(*this).dataFrames(frames != 0 ? frames : sampleRate);
}

WavBuilder Recording::fileWithoutAudio() const
{
    const uint32_t frameBytes = channels * (bits / 8u);
    return headOf(*this).data("").claimSize("data", seconds * sampleRate * frameBytes);
}

ByteRange Recording::descriptionRange() const
{
    const uint64_t begin = file().payloadOffset("bext");
    return { begin, begin + 256 };
}

ByteRange Recording::timeReferenceRange() const
{
    const uint64_t begin = file().payloadOffset("bext") + 338;
    return { begin, begin + 8 };
}

ByteRange Recording::ixmlRange() const
{
    const uint64_t begin = file().payloadOffset("iXML");
    return { begin, begin + ixml().size() };
}

ByteRange Recording::elementRange(const std::string& element, const std::string& value) const
{
    const std::string tag = "<" + element + ">";
    const uint64_t begin = ixmlRange().begin + ixml().find(tag + value) + tag.size();
    return { begin, begin + value.size() };
}
