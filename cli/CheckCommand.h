#pragma once

#include "cli/Command.h"
#include "cli/EditOptions.h"

#include <array>
#include <iterator>

/// "json", and the options that name an edit, less its start: where a start fits is another question than where a text
/// does.
inline constexpr auto kCheckOptions = [] {
    std::array<Option, std::size(kEditOptions)> options{};
    options[0] = { .name = "json", .words = "one JSON object a file, one a line" };
    for (size_t i = 1; i < options.size(); ++i)
        options[i] = kEditOptions[i - 1];
    return options;
}();
static_assert(kEditOptions[std::size(kEditOptions) - 1].name == "start");

Exit runCheck(const Arguments& arguments, Io& io);

/// Finds what is wrong with files, or says what an edit would come to.
inline constexpr Command kCheckCommand{
    .name = "check",
    .words = "Finds what is wrong with files, alone and among each other, or what an edit would come to",
    .operands = "FILE...",
    .options = kCheckOptions,
    .example = "tagwell-cli check /media/card\n"
               "tagwell-cli check --scene 12A --circled yes /media/card",
    .notes = "Each finding is a line of path, severity, words and, in brackets, a code that doesn't change. Findings\n"
             "of severity info leave the exit status at 0.\n"
             "With an edit, each file gets one line instead: whether the edit would be written whole, in the\n"
             "Description only, partly, or refused, and how many bytes it misses. Nothing is written.",
    .run = runCheck,
};
