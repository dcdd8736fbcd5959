#include "tests/report/AvidAleValidator.h"

#include <algorithm>
#include <array>
#include <map>
#include <optional>
#include <regex>
#include <set>

namespace {

using Strings = std::vector<std::string>;

Strings split(const std::string& text, const std::string& separator)
{
    Strings parts;
    size_t begin = 0;
    for (size_t end = 0; (end = text.find(separator, begin)) != std::string::npos; begin = end + separator.size())
        parts.push_back(text.substr(begin, end - begin));
    parts.push_back(text.substr(begin));
    return parts;
}

/// The rates as the rows spell them, with their nominal one.
const std::map<std::string, int>& rates()
{
    static const std::map<std::string, int> kRates = { { "23.98", 24 }, { "24", 24 }, { "25", 25 }, { "29.97", 30 },
        { "30", 30 }, { "47.95", 48 }, { "48", 48 }, { "50", 50 }, { "59.94", 60 }, { "60", 60 } };
    return kRates;
}

/// Frames of a label, counted by walking over the minutes; nothing if there is no such label.
std::optional<long> framesOf(const std::string& label, int nominal)
{
    static const std::regex kForm("(\\d\\d):(\\d\\d):(\\d\\d)([:;])(\\d\\d)");
    std::smatch match;
    if (!std::regex_match(label, match, kForm))
        return std::nullopt;
    const std::array<int, 4> numbers{ std::stoi(match[1]), std::stoi(match[2]), std::stoi(match[3]),
        std::stoi(match[5]) };
    const bool drop = match[4] == ";";
    const int dropped = drop ? nominal / 15 : 0;
    if (numbers[0] > 23 || numbers[1] > 59 || numbers[2] > 59 || numbers[3] >= nominal || (drop && nominal % 30 != 0))
        return std::nullopt;
    if (drop && numbers[1] % 10 != 0 && numbers[2] == 0 && numbers[3] < dropped)
        return std::nullopt;
    long frames = (static_cast<long>(numbers[0]) * 3600 + numbers[1] * 60 + numbers[2]) * nominal + numbers[3];
    for (int minute = 1; minute <= numbers[0] * 60 + numbers[1]; ++minute)
        frames -= minute % 10 == 0 ? 0 : dropped;
    return frames;
}

/// Takes a text apart and notes what is wrong with it.
class Validation {
public:
    explicit Validation(const std::string& wholeText) : text(wholeText) { }

    Strings run()
    {
        checkBytes();
        lines = split(text, "\r\n");
        if (lines.back().empty())
            lines.pop_back();
        else
            complain("the last line has no end");
        checkHeading();
        checkColumns();
        while (complaints.empty() && at < lines.size())
            checkRow(lines[at++]);
        return complaints;
    }

    Strings columns;
    std::vector<Strings> rows;

private:
    void complain(const std::string& words) { complaints.push_back(words); }

    void checkBytes()
    {
        if (text.starts_with("\xEF\xBB\xBF"))
            complain("it begins with a byte order mark");
        for (size_t i = 0; i < text.size(); ++i) {
            const bool lineEnd
                = (text[i] == '\r' && text[i + 1] == '\n') || (text[i] == '\n' && i > 0 && text[i - 1] == '\r');
            if (static_cast<unsigned char>(text[i]) < 0x20 && text[i] != '\t' && !lineEnd)
                complain("a control character at byte " + std::to_string(i));
        }
        for (const std::string separator : { "\xC2\x85", "\xE2\x80\xA8", "\xE2\x80\xA9" }) {
            if (text.find(separator) != std::string::npos)
                complain("a character that ends a line for some readers");
        }
    }

    std::string next() { return at < lines.size() ? lines[at++] : std::string("(end)"); }

    void expect(const std::string& line)
    {
        const std::string found = next();
        if (found != line)
            complain("'" + found + "' where '" + line + "' belongs");
    }

    void checkHeading()
    {
        expect("Heading");
        expect("FIELD_DELIM\tTABS");
        Strings keys;
        std::map<std::string, std::string> values;
        for (std::string line = next(); !line.empty() && line != "(end)"; line = next()) {
            const Strings pair = split(line, "\t");
            if (pair.size() != 2 || pair[1].empty())
                return complain("'" + line + "' in the heading");
            keys.push_back(pair[0]);
            values[pair[0]] = pair[1];
        }
        static const std::set<std::string> kVideo = { "NTSC", "PAL", "720", "1080", "CUSTOM" };
        static const std::set<std::string> kAudio = { "22kHz", "24kHz", "44kHz", "48kHz" };
        if (!kVideo.contains(values["VIDEO_FORMAT"]))
            complain("VIDEO_FORMAT is '" + values["VIDEO_FORMAT"] + "'");
        if (std::count(keys.begin(), keys.end(), "AUDIO_FORMAT") != 0 && !kAudio.contains(values["AUDIO_FORMAT"]))
            complain("AUDIO_FORMAT is '" + values["AUDIO_FORMAT"] + "'");
        if (values["TAPE"].empty())
            complain("no TAPE");
        if (keys.empty() || keys.back() != "FPS" || values["FPS"].empty())
            complain("FPS isn't the last of the heading");
        else if (values["FPS"] != "23.976" && !rates().contains(values["FPS"]))
            complain("FPS is '" + values["FPS"] + "'");
    }

    void checkColumns()
    {
        expect("Column");
        columns = split(next(), "\t");
        for (const std::string name : { "Name", "Tracks", "Start", "End", "Duration", "Tape", "FPS", "Source File" }) {
            if (std::count(columns.begin(), columns.end(), name) != 1)
                complain("column " + name + " isn't there once");
        }
        static const std::set<std::string> kStandard = { "Name", "Tracks", "Start", "End", "Duration", "Tape", "Scene",
            "Take", "Soundroll", "Source File", "FPS", "DESCRIPT", "Audio SR", "Audio Bit Depth" };
        for (const std::string& name : columns) {
            if (!kStandard.contains(name))
                complain("column '" + name + "' is no standard one");
        }
        expect("");
        expect("Data");
    }

    std::string value(const Strings& row, const std::string& name) const
    {
        return row[static_cast<size_t>(std::find(columns.begin(), columns.end(), name) - columns.begin())];
    }

    void checkRow(const std::string& line)
    {
        const Strings row = split(line, "\t");
        rows.push_back(row);
        if (row.size() != columns.size())
            return complain("a row of " + std::to_string(row.size()) + " values: '" + line + "'");
        if (row.back().empty())
            complain("a row ends in a tab: '" + line + "'");
        const std::string name = value(row, "Name");
        if (name.empty() || std::count_if(name.begin(), name.end(), [](char c) { return (c & 0xC0) != 0x80; }) > 32)
            complain("the name '" + name + "'");
        checkTracks(value(row, "Tracks"));
        checkTimes(row);
        if (value(row, "Tape").empty() || value(row, "Source File").empty())
            complain("no tape or no file in '" + line + "'");
    }

    void checkTracks(const std::string& tracks)
    {
        std::string wanted;
        for (int n = 1; wanted.size() < tracks.size(); ++n)
            wanted += "A" + std::to_string(n);
        if (tracks.empty() || wanted != tracks)
            complain("the tracks '" + tracks + "'");
    }

    void checkTimes(const Strings& row)
    {
        const auto rate = rates().find(value(row, "FPS"));
        if (rate == rates().end())
            return complain("the rate '" + value(row, "FPS") + "'");
        const auto frames = [&](const char* column) { return framesOf(value(row, column), rate->second); };
        const auto start = frames("Start");
        const auto end = frames("End");
        const auto duration = frames("Duration");
        if (!start || !end || !duration)
            return complain("a timecode of '" + value(row, "Name") + "'");
        const bool drop = value(row, "Start")[8] == ';';
        const long day = *framesOf(drop ? "23:59:59;00" : "23:59:59:00", rate->second) + rate->second;
        if (*end != (*start + *duration) % day)
            complain("end isn't start and duration in '" + value(row, "Name") + "'");
        if (value(row, "End")[8] != value(row, "Start")[8] || value(row, "Duration")[8] != value(row, "Start")[8])
            complain("drop-frame marks differ in '" + value(row, "Name") + "'");
        if (drop && rate->first == "23.98")
            complain("drop-frame at 23.98");
    }

    const std::string& text;
    Strings lines;
    size_t at = 0;
    Strings complaints;
};

} // namespace

Strings avidAleComplaints(const std::string& text)
{
    return Validation(text).run();
}

Strings avidAleColumn(const std::string& text, const std::string& name)
{
    Validation validation(text);
    validation.run();
    const auto found = std::find(validation.columns.begin(), validation.columns.end(), name);
    Strings values;
    for (const Strings& row : validation.rows) {
        if (found != validation.columns.end())
            values.push_back(row[static_cast<size_t>(found - validation.columns.begin())]);
    }
    return values;
}
