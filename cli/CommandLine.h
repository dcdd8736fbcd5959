#pragma once

#include "cli/Command.h"
#include "cli/Io.h"

#include <span>
#include <string>

/// All commands, in the order of the help.
std::span<const Command> allCommands();

/// Does what a command line asks for. `given` are the arguments behind the program's name, as bytes.
/// Whatever is said goes to `io`; `Usage` if the line made no sense, `Found` also if standard output failed.
Exit runCommandLine(std::span<const std::string> given, Io& io);

/// Says on `err` what is wrong with the command line and where help is; always `Usage`.
Exit refuseUsage(Io& io, std::string_view command, std::string_view complaint);
