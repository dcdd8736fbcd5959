#pragma once

#include "cli/FileFacts.h"
#include "cli/FileRun.h"

#include <memory>
#include <string>

/// A form in which `dump` shows files. Thread: main only.
class DumpFormat {
public:
    virtual ~DumpFormat() = default;

    /// What stands in front of all files; may be empty.
    virtual std::string head() { return {}; }
    /// Appends what is known of a file.
    virtual void file(const FileFacts& facts, std::string& out) = 0;
    /// Appends what stands for a file that couldn't be read; nothing where the complaint is enough.
    virtual void failed(const std::string& path, const FileError& error, std::string& out) = 0;
};

/// Lines of name and value, the values in one column; an empty line between files.
std::unique_ptr<DumpFormat> textDump(bool withChunks);
/// An object a line, for failed files too.
std::unique_ptr<DumpFormat> jsonDump(bool withChunks);
/// A row a file under a row of names, for failed files too; the last column says what failed.
std::unique_ptr<DumpFormat> csvDump(bool withChunks);
