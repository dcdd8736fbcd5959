#pragma once

#include <cstddef>
#include <istream>
#include <map>
#include <string>
#include <string_view>
#include <vector>

/// First line of a list of audio checksums. It keeps the list from passing for one of whole files.
inline constexpr std::string_view kSumListHead = "# tagwell-cli audio MD5: sums of the audio alone, not of whole files";

/// "digits  path" with a line end. A path with a line feed, a carriage return or a backslash is written with escapes
/// and has a backslash in front of the line, as md5sum does.
std::string sumLine(std::string_view digits, std::string_view path);

/// A list of checksums, read back. A plain value.
struct SumList {
    /// The head stands there.
    bool isAudio = false;
    /// In the order of the list, each once.
    std::vector<std::string> paths;
    /// Numbers, from 1, of lines that are no checksum, or another one of a path that has one already.
    std::vector<size_t> badLines;

    /// 32 lower-case digits of a path, which may be written in another way ("./a" for "a"); empty if it isn't listed.
    std::string digitsOf(const std::string& path) const;
    /// Adds one. False if the path has other digits already.
    bool add(const std::string& digits, const std::string& path);

private:
    std::map<std::string, std::string> digitsByPath;
};

/// Reads a list; lines may end in CRLF, and "*" may stand in front of a path. Empty if `in` holds none.
SumList readSumList(std::istream& in);
