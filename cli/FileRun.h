#pragma once

#include "cli/Io.h"

#include <exception>
#include <functional>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

/// What went wrong with one file. Thrown by what works on it; it ends that file and never the run.
struct FileError : std::exception {
    FileError(std::string errorCode, std::string errorWords) : code(std::move(errorCode)), words(std::move(errorWords))
    {
    }
    const char* what() const noexcept override { return words.c_str(); }

    /// For machines, in small letters and hyphens: "not-found". It keeps its meaning.
    std::string code;
    /// For people, without the path and without a full stop.
    std::string words;
};

/// What all files depend on went wrong, such as the file that a run writes. Thrown by anything; it ends the run.
struct RunError {
    std::string path;
    /// As FileError::words.
    std::string words;
};

/// The error that the system's `error` stands for.
FileError fileErrorOf(std::error_code error);

/// What a run does to each file.
struct FileWork {
    /// Works on the file at `path` and appends to `out` what standard output shall get. Throws FileError, or anything
    /// that a file system can throw. What it had appended by then is dropped.
    std::function<Exit(const std::string& path, std::string& out)> work;
    /// Appends what standard output shall get of a file for which `work` threw; may be empty.
    std::function<void(const std::string& path, const FileError& error, std::string& out)> failed = {};
};

/// One line on `err`: the program, the path and the words. What `out` got before stands there first.
void complain(Io& io, std::string_view path, std::string_view words);

/// Does `files` one after the other and writes each one's text when its work is over, so that a reader that goes away
/// can't end the process inside a file. Says on `err` what failed and goes on. Ends between two files when `io` is
/// interrupted, and when `out` takes no more; lets a RunError pass. The worst of all results; `Found` if a file failed
/// or not all were done.
Exit forEachFile(const std::vector<std::string>& files, Io& io, const FileWork& work);
