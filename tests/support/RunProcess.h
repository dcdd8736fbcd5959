#pragma once

#include <string>
#include <vector>

/// How a child process ended.
struct ProcessResult {
    /// Exit code; -1 if it was killed or could not be started.
    int exitCode = -1;
    /// The signal that ended it; 0 if none did.
    int signal = 0;
    /// What it wrote to standard output; standard error joins it if that was asked for.
    std::string output;
};

/// Runs `command` (program, looked up in PATH, and arguments) with `environment` ("NAME=value") on top of this
/// process's own, standard input empty, and waits for its end. Blocks; any thread.
ProcessResult runProcess(
    const std::vector<std::string>& command, const std::vector<std::string>& environment = {}, bool withErrors = true);

/// True if a program of that name can be found in PATH.
bool programExists(const std::string& name);
