#include "cli/SumList.h"

#include <algorithm>
#include <filesystem>
#include <optional>

namespace {

constexpr size_t kDigits = 32;
constexpr size_t kPathColumn = kDigits + 2; // Behind a blank and a blank or "*".

std::string keyOf(const std::string& path)
{
    return std::filesystem::path(path).lexically_normal().string();
}

// The path that escapes stand for; nothing if one of them is unknown.
std::optional<std::string> unescaped(std::string_view text)
{
    std::string path;
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '\\') {
            path += text[i];
            continue;
        }
        const char letter = ++i < text.size() ? text[i] : '\0';
        if (letter != 'n' && letter != 'r' && letter != '\\')
            return std::nullopt;
        path += letter == 'n' ? '\n' : letter == 'r' ? '\r' : '\\';
    }
    return path;
}

bool isHexDigit(char letter)
{
    return (letter >= '0' && letter <= '9') || (letter >= 'a' && letter <= 'f') || (letter >= 'A' && letter <= 'F');
}

// False if the line is no checksum or contradicts an earlier one.
bool takeLine(std::string_view line, SumList& list)
{
    const bool escaped = line.starts_with('\\');
    line.remove_prefix(escaped ? 1 : 0);
    if (line.size() <= kPathColumn || line[kDigits] != ' ' || (line[kDigits + 1] != ' ' && line[kDigits + 1] != '*'))
        return false;
    std::string digits(line.substr(0, kDigits));
    if (!std::all_of(digits.begin(), digits.end(), isHexDigit))
        return false;
    std::transform(digits.begin(), digits.end(), digits.begin(),
        [](char letter) { return letter >= 'A' && letter <= 'F' ? static_cast<char>(letter - 'A' + 'a') : letter; });
    const std::string_view name = line.substr(kPathColumn);
    const std::optional<std::string> path = escaped ? unescaped(name) : std::string(name);
    return path && list.add(digits, *path);
}

} // namespace

std::string sumLine(std::string_view digits, std::string_view path)
{
    std::string line;
    if (path.find_first_of("\n\r\\") != std::string_view::npos)
        line += '\\';
    line.append(digits).append("  ");
    for (const char each : path) {
        if (each == '\n')
            line += "\\n";
        else if (each == '\r')
            line += "\\r";
        else if (each == '\\')
            line += "\\\\";
        else
            line += each;
    }
    return line + '\n';
}

std::string SumList::digitsOf(const std::string& path) const
{
    const auto found = digitsByPath.find(keyOf(path));
    return found == digitsByPath.end() ? std::string() : found->second;
}

bool SumList::add(const std::string& digits, const std::string& path)
{
    const auto [entry, isNew] = digitsByPath.emplace(keyOf(path), digits);
    if (isNew)
        paths.push_back(path);
    return entry->second == digits;
}

SumList readSumList(std::istream& in)
{
    SumList list;
    std::string line;
    for (size_t number = 1; std::getline(in, line); ++number) {
        if (line.ends_with('\r'))
            line.pop_back();
        if (number == 1)
            list.isAudio = line == kSumListHead;
        if (!list.isAudio)
            break;
        if (!line.empty() && line.front() != '#' && !takeLine(line, list))
            list.badLines.push_back(number);
    }
    return list;
}
