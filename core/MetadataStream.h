#pragma once

#include <cstdint>
#include <fstream>
#include <istream>
#include <string>

/// The size in bytes of the file under `stream`, and with it the stream at its end; 0 on a failed stream. Fails the
/// stream if the size can't be told: what is not done for that reason must not pass as done.
inline uint64_t streamBytes(std::istream& stream)
{
    // One step where `seekg` and `tellg` would take two.
    const std::streamoff end = stream ? std::streamoff(stream.rdbuf()->pubseekoff(0, std::ios::end, std::ios::in)) : -1;
    if (end < 0)
        stream.setstate(std::ios::failbit);
    return end < 0 ? 0 : static_cast<uint64_t>(end);
}

/// Holds a file open for binary reading on a stream that serves several files or steps, and closes it at the end.
/// The stream has no buffer of its own: its readers take what they need in one piece.
class OpenedFile {
public:
    /// `used` must outlive the object and be closed. A failure of its last file is forgotten if the opening succeeds;
    /// the stream is failed if it doesn't.
    OpenedFile(std::ifstream& used, const std::string& path) : stream(used)
    {
        stream.rdbuf()->pubsetbuf(nullptr, 0);
        stream.open(path, std::ios::in | std::ios::binary);
    }
    ~OpenedFile() { stream.close(); }
    OpenedFile(const OpenedFile&) = delete;
    OpenedFile& operator=(const OpenedFile&) = delete;

private:
    std::ifstream& stream;
};
