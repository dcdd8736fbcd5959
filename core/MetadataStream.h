#pragma once

#include <fstream>
#include <string>

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
