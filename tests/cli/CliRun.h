#pragma once

#include "cli/Io.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

/// What a run of the command line in this process gave.
struct CliResult {
    Exit exit = Exit::Ok;
    std::string out;
    std::string err;
};

/// The surroundings of one run. A plain value; each is as it is where a script calls the program.
struct CliSetup {
    std::string in = {};
    bool outIsTerminal = false;
    bool errIsTerminal = false;
    int errColumns = 80;
    /// The clock moves by so much at each look.
    int64_t millisPerLook = 0;
    /// The user interrupts when so many questions have been answered by no; never if negative.
    int interruptAfter = -1;
    /// Standard output takes so many bytes and no more; all if negative.
    int64_t outRoom = -1;
    /// Called in front of each file with its number, from 0.
    std::function<void(int)> beforeFile = {};
};

/// Runs the program's command line.
CliResult runCli(const std::vector<std::string>& arguments, const CliSetup& setup = {});
