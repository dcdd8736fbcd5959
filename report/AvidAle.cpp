#include "report/AvidAle.h"

#include "app/files/WavSuffix.h"
#include "core/NumberText.h"

#include <QString>

#include <algorithm>
#include <array>
#include <initializer_list>

namespace {

constexpr qsizetype kNameCharacters = 32;
constexpr std::string_view kLineEnd = "\r\n";

// In the order of the values below. The last one is never empty, so that no line ends in a tab.
constexpr std::array<std::string_view, 14> kColumns{ "Name", "Tracks", "Start", "End", "Duration", "Tape", "Scene",
    "Take", "Soundroll", "Source File", "FPS", "DESCRIPT", "Audio SR", "Audio Bit Depth" };

struct AudioFormat {
    uint32_t sampleRate;
    std::string_view name;
};

constexpr std::array<AudioFormat, 4> kAudioFormats{ { { 22050, "22kHz" }, { 24000, "24kHz" }, { 44100, "44kHz" },
    { 48000, "48kHz" } } };

// Some readers end a line at any of these characters, and none knows quotes.
bool breaksLine(QChar character)
{
    const char16_t code = character.unicode();
    return code < 0x20 || (code >= 0x7F && code < 0xA0) || code == 0x2028 || code == 0x2029;
}

QString onOneLine(const std::string& text)
{
    QString line = QString::fromStdString(text);
    line.remove(QChar(QChar::ByteOrderMark));
    std::replace_if(line.begin(), line.end(), breaksLine, QLatin1Char(' '));
    return line.trimmed();
}

std::string valueOf(const std::string& text)
{
    return onOneLine(text).toStdString();
}

std::string clipName(const std::string& fileName)
{
    const QString name = withoutWavSuffix(onOneLine(fileName));
    const bool splitsPair = name.size() > kNameCharacters && name[kNameCharacters - 1].isHighSurrogate();
    return name.left(splitsPair ? kNameCharacters - 1 : kNameCharacters).toStdString();
}

std::string tracksOf(uint16_t channels)
{
    std::string tracks;
    for (uint32_t channel = 1; channel <= channels; ++channel)
        tracks += "A" + std::to_string(channel);
    return tracks;
}

// The fewest digits up to `decimals`: 24, 29.97, 23.976.
std::string rateText(const FrameRate& rate, int decimals)
{
    std::string text = NumberText::formatFixed(double(rate.numerator) / rate.denominator, decimals);
    while (text.back() == '0')
        text.pop_back();
    if (text.back() == '.')
        text.pop_back();
    return text;
}

void appendLine(std::string& out, std::initializer_list<std::string_view> values)
{
    std::string_view separator;
    for (const std::string_view value : values) {
        out.append(separator).append(value);
        separator = "\t";
    }
    out += kLineEnd;
}

std::string_view audioFormatOf(const std::vector<AvidClip>& clips)
{
    const auto isOther = [&clips](const AvidClip& clip) { return clip.sampleRate != clips.front().sampleRate; };
    if (clips.empty() || std::any_of(clips.begin(), clips.end(), isOther))
        return {};
    for (const AudioFormat& format : kAudioFormats) {
        if (format.sampleRate == clips.front().sampleRate)
            return format.name;
    }
    return {};
}

void appendHeading(std::string& out, const AvidHeading& heading, const std::vector<AvidClip>& clips)
{
    constexpr FrameRate kUsual{ 24, 1 };
    appendLine(out, { "Heading" });
    appendLine(out, { "FIELD_DELIM", "TABS" });
    appendLine(out, { "VIDEO_FORMAT", heading.videoFormat });
    if (const std::string_view format = audioFormatOf(clips); !format.empty())
        appendLine(out, { "AUDIO_FORMAT", format });
    appendLine(out, { "TAPE", valueOf(heading.tape) });
    appendLine(out, { "FPS", rateText(clips.empty() ? kUsual : clips.front().rate, 3) });
    out += kLineEnd;
}

void appendColumns(std::string& out)
{
    appendLine(out, { "Column" });
    std::string names;
    for (const std::string_view name : kColumns)
        names.append(names.empty() ? "" : "\t").append(name);
    appendLine(out, { names });
    out += kLineEnd;
}

void appendClip(std::string& out, const AvidHeading& heading, const AvidClip& clip)
{
    const auto label = [&clip](uint64_t frame) { return frameLabel(frame, clip.rate, clip.dropFrame); };
    const std::string roll = valueOf(clip.soundRoll.empty() ? heading.tape : clip.soundRoll);
    const uint64_t start = clip.startFrame % labelledFramesPerDay(clip.rate, clip.dropFrame);
    appendLine(out,
        { clipName(clip.fileName), tracksOf(clip.channels), label(start), label(start + clip.frames),
            label(clip.frames), roll, valueOf(clip.scene), valueOf(clip.take), roll, valueOf(clip.fileName),
            rateText(clip.rate, 2), valueOf(clip.note), std::to_string(clip.sampleRate),
            std::to_string(clip.bitDepth) });
}

} // namespace

std::string avidAle(const AvidHeading& heading, const std::vector<AvidClip>& clips)
{
    std::string out;
    appendHeading(out, heading, clips);
    appendColumns(out);
    appendLine(out, { "Data" });
    for (const AvidClip& clip : clips)
        appendClip(out, heading, clip);
    return out;
}
