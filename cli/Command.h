#pragma once

#include "cli/Arguments.h"
#include "cli/Io.h"

#include <span>
#include <string_view>

/// One command of the program. A plain value of constants; the help and the completion are made from it.
struct Command {
    std::string_view name;
    /// What it does, one line, without a full stop.
    std::string_view words;
    /// What it takes besides options.
    std::string_view operands;
    /// Those that are its own; the common ones come on top.
    std::span<const Option> options;
    /// Command lines that show it at work, one a line.
    std::string_view example;
    /// More to know, in lines; may be empty.
    std::string_view notes;
    /// Does it. The arguments fit the options.
    Exit (*run)(const Arguments& arguments, Io& io);
};

/// Options that every command has.
inline constexpr Option kCommonOptions[] = {
    { .name = "null", .words = "paths on standard input end with a NUL, not with a line", .letter = '0' },
    { .name = "help", .words = "say what the command does, and end", .letter = 'h' },
};
