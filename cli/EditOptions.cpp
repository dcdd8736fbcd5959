#include "cli/EditOptions.h"

#include "cli/PlainText.h"

#include <algorithm>
#include <charconv>

namespace {

struct TextOption {
    std::string_view name;
    std::optional<std::string> EditRequest::*wanted;
    std::string BwfMetadata::*field;
};

constexpr TextOption kTextOptions[] = {
    { "scene", &EditRequest::scene, &BwfMetadata::scene },
    { "take", &EditRequest::take, &BwfMetadata::take },
    { "tape", &EditRequest::tape, &BwfMetadata::tape },
    { "project", &EditRequest::project, &BwfMetadata::project },
    { "note", &EditRequest::note, &BwfMetadata::note },
    { "ubits", &EditRequest::ubits, &BwfMetadata::ubits },
};

std::optional<bool> flagOf(const Arguments& arguments, std::string_view option)
{
    const std::optional<std::string> value = arguments.value(option);
    return value ? std::optional(*value == "yes") : std::nullopt;
}

std::string takeTexts(const Arguments& arguments, EditRequest& request)
{
    for (const TextOption& option : kTextOptions) {
        request.*option.wanted = arguments.value(option.name);
        if (arguments.value(option.name) == "")
            return "--" + std::string(option.name) + " takes no empty text: a field can be changed, not cleared";
    }
    return {};
}

std::string takeTracks(const Arguments& arguments, EditRequest& request)
{
    for (const std::string& text : arguments.values("track")) {
        const std::optional<TrackEdit> track = parseTrackEdit(text);
        if (!track)
            return "--track takes N=NAME or N=NAME/FUNCTION, not '" + oneLine(text) + "'";
        const auto isSame = [&](const TrackEdit& each) { return each.channelIndex == track->channelIndex; };
        if (std::any_of(request.tracks.begin(), request.tracks.end(), isSame))
            return "--track names track " + std::to_string(track->channelIndex) + " twice";
        request.tracks.push_back(*track);
    }
    return {};
}

std::string takeStart(const Arguments& arguments, EditRequest& request)
{
    request.start = arguments.value("start");
    if (request.start && !looksLikeTimecode(*request.start))
        return "--start takes HH:MM:SS:FF, not '" + oneLine(*request.start) + "'";
    return {};
}

bool isDigit(char letter)
{
    return letter >= '0' && letter <= '9';
}

} // namespace

bool EditRequest::isEmpty() const
{
    const bool noText = std::none_of(std::begin(kTextOptions), std::end(kTextOptions),
        [this](const TextOption& option) { return (this->*option.wanted).has_value(); });
    return noText && !circled && !wildTrack && tracks.empty() && !start;
}

ParsedEdit parseEdit(const Arguments& arguments)
{
    ParsedEdit edit;
    edit.request.circled = flagOf(arguments, "circled");
    edit.request.wildTrack = flagOf(arguments, "wild");
    for (const auto take : { takeTexts, takeTracks, takeStart }) {
        if (edit.complaint.empty())
            edit.complaint = take(arguments, edit.request);
    }
    return edit;
}

std::optional<TrackEdit> parseTrackEdit(std::string_view text)
{
    TrackEdit track;
    const size_t sign = text.find('=');
    if (sign == std::string_view::npos)
        return std::nullopt;
    const char* const end = text.data() + sign;
    const auto [stop, error] = std::from_chars(text.data(), end, track.channelIndex);
    if (error != std::errc() || stop != end || track.channelIndex < 1)
        return std::nullopt;
    for (size_t at = sign + 1; at < text.size(); ++at) {
        std::string& target = track.function ? *track.function : track.name;
        if (text[at] == '/') {
            if (track.function)
                return std::nullopt;
            track.function.emplace();
            continue;
        }
        if (text[at] == '\\' && ++at == text.size())
            return std::nullopt;
        target += text[at];
    }
    return track;
}

bool looksLikeTimecode(std::string_view text)
{
    constexpr std::string_view kForm = "00:00:00:00";
    constexpr size_t kLastSign = 8;
    if (text.size() != kForm.size())
        return false;
    for (size_t i = 0; i < kForm.size(); ++i) {
        const bool fits = kForm[i] == '0' ? isDigit(text[i]) : text[i] == ':' || (i == kLastSign && text[i] == ';');
        if (!fits)
            return false;
    }
    return true;
}

WantedRecord wantedRecord(const BwfMetadata& current, const EditRequest& request)
{
    WantedRecord wanted{ current, {} };
    for (const TextOption& option : kTextOptions) {
        if (request.*option.wanted)
            wanted.record.*option.field = *(request.*option.wanted);
    }
    wanted.record.circled = request.circled.value_or(current.circled);
    wanted.record.wildTrack = request.wildTrack.value_or(current.wildTrack);
    std::vector<BwfTrack>& tracks = wanted.record.tracks;
    for (const TrackEdit& edit : request.tracks) {
        const auto found = std::find_if(tracks.begin(), tracks.end(),
            [&edit](const BwfTrack& track) { return track.channelIndex == edit.channelIndex; });
        if (found == tracks.end()) {
            wanted.unknownTracks.push_back(edit.channelIndex);
            continue;
        }
        found->name = edit.name;
        found->function = edit.function.value_or(found->function);
    }
    return wanted;
}
