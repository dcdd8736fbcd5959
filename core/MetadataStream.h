#pragma once

#include <fstream>
#include <string>

/// The file at `path` for binary reading, closed with the object; not open if that fails. Without a buffer of its own:
/// its readers take what they need in one piece.
inline std::ifstream openForReading(const std::string& path)
{
    std::ifstream stream;
    stream.rdbuf()->pubsetbuf(nullptr, 0);
    stream.open(path, std::ios::in | std::ios::binary);
    return stream;
}
