#pragma once

#include "cli/Arguments.h"
#include "cli/Io.h"

#include <string>
#include <vector>

/// The files that a command line means.
struct NamedFiles {
    /// In their order, each once. Bytes as the system has them; they need not exist.
    std::vector<std::string> paths;
    /// `Found` if a folder held something that couldn't be looked at, or no WAV file at all; it was said on `err`.
    Exit exit = Exit::Ok;
};

/// The operands' files: a folder stands for the WAV files under it, "-" for the paths on standard input, one a line, or
/// each with a NUL behind it if the option "null" was given; that option by itself reads standard input, too. Paths
/// from there may be folders as well.
NamedFiles namedFiles(const Arguments& arguments, Io& io);

/// True if the command line names files, be it none in the end.
bool namesFiles(const Arguments& arguments);
