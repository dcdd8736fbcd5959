#include "tests/support/PlainIxmlEdit.h"

namespace {

constexpr size_t kNowhere = std::string::npos;

bool insertLine(std::string& text, const std::string& name, const std::string& value)
{
    const size_t root = text.find("</BWFXML>");
    if (root == kNowhere)
        return false;
    text.insert(root, "  <" + name + ">" + value + "</" + name + ">\n");
    return true;
}

bool setInTrack(std::string& text, size_t track, const std::string& name, size_t limit, const std::string& value)
{
    const std::string openTag = "<" + name + ">";
    const size_t open = text.find(openTag, track);
    const size_t close = text.find("</" + name + ">", track);
    if (open == kNowhere || close == kNowhere || open >= limit || close < open)
        return false;
    text.replace(open + openTag.size(), close - open - openTag.size(), value);
    return true;
}

} // namespace

bool PlainIxmlEdit::setElement(std::string& text, const std::string& name, const std::string& value)
{
    const size_t open = text.find("<" + name + ">");
    const size_t close = text.find("</" + name + ">");
    if (open == kNowhere || close == kNowhere)
        return insertLine(text, name, value);
    if (close < open)
        return false;
    const size_t begin = open + name.size() + 2;
    text.replace(begin, close - begin, value);
    return true;
}

bool PlainIxmlEdit::setWildTrack(std::string& text, bool wanted)
{
    const std::string closeTag = "</WILD_TRACK>";
    const size_t open = text.find("<WILD_TRACK>");
    const size_t close = text.find(closeTag);
    if (open == kNowhere || close == kNowhere)
        return wanted && insertLine(text, "WILD_TRACK", "TRUE");
    if (wanted)
        return true;
    if (close < open)
        return false;
    text.erase(open, close + closeTag.size() - open);
    return true;
}

bool PlainIxmlEdit::setTrack(std::string& text, const BwfTrack& wanted)
{
    const size_t number = text.find("<CHANNEL_INDEX>" + std::to_string(wanted.channelIndex) + "</CHANNEL_INDEX>");
    if (number == kNowhere)
        return false;
    const size_t track = text.rfind("<TRACK>", number);
    const size_t limit = text.find("</TRACK>", number);
    if (track == kNowhere || limit == kNowhere)
        return false;
    const bool named = setInTrack(text, track, "NAME", limit, wanted.name);
    return setInTrack(text, track, "FUNCTION", limit, wanted.function) || named;
}

bool PlainIxmlEdit::edit(std::string& text, const BwfMetadata& current, const BwfMetadata& updated)
{
    bool modified = false;
    const auto scalar = [&](const std::string& name, const std::string& before, const std::string& after) {
        if (!after.empty() && after != before)
            modified = setElement(text, name, after) || modified;
    };
    scalar("NOTE", current.note, updated.note);
    scalar("SCENE", current.scene, updated.scene);
    scalar("TAPE", current.tape, updated.tape);
    scalar("TAKE", current.take, updated.take);
    scalar("PROJECT", current.project, updated.project);
    if (updated.circled != current.circled)
        modified = setElement(text, "CIRCLED", updated.circled ? "TRUE" : "FALSE") || modified;
    if (updated.wildTrack != current.wildTrack)
        modified = setWildTrack(text, updated.wildTrack) || modified;
    for (size_t i = 0; i < updated.tracks.size(); ++i) {
        const BwfTrack& wanted = updated.tracks[i];
        if (i < current.tracks.size() && current.tracks[i].name == wanted.name
            && current.tracks[i].function == wanted.function)
            continue;
        modified = setTrack(text, wanted) || modified;
    }
    return modified;
}
