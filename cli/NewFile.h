#pragma once

#include <string>
#include <string_view>

/// A file that comes to be as a whole or not at all: it is written under another name in the same folder and renamed at
/// the end, so a full disk or an interruption leaves what was there before. Thread: main only.
class NewFile {
public:
    /// Begins it. A file that is there already keeps its permissions; a link goes on leading to its file. Throws
    /// RunError if the folder can't be written to, or `path` is a recording or something that a file can't replace.
    explicit NewFile(const std::string& path);
    /// Removes what was written unless it was committed.
    ~NewFile();
    NewFile(const NewFile&) = delete;
    NewFile& operator=(const NewFile&) = delete;

    /// Appends bytes. Throws RunError if the disk takes no more.
    void write(std::string_view bytes);
    /// Puts the file in its place, safe on the disk. Throws RunError if that fails. Call once, last.
    void commit();

private:
    [[noreturn]] void throwLastError() const;
    void flush();

    std::string target;
    std::string temporary; // Empty once committed.
    int descriptor = -1;
    std::string buffer;
};
