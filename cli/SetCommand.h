#pragma once

#include "cli/Command.h"
#include "cli/EditOptions.h"

#include <algorithm>
#include <array>

inline constexpr Option kOwnSetOptions[] = {
    { .name = "from-csv", .value = "TABLE", .words = "take files and values from TABLE, as dump --csv writes it" },
    { .name = "use-padding", .words = "let the iXML text grow into the blanks or NULs at the end of its chunk" },
    { .name = "partly", .words = "write what can be written, where an edit doesn't go in whole" },
    { .name = "verify", .words = "compare length and sum of the audio before and after" },
    { .name = "keep-date", .words = "put the modification time back" },
    { .name = "dry-run", .words = "say what would be written, and write nothing", .letter = 'n' },
};

/// What is set, then how.
inline constexpr auto kSetOptions = [] {
    std::array<Option, std::size(kEditOptions) + std::size(kOwnSetOptions)> all;
    std::copy(std::begin(kEditOptions), std::end(kEditOptions), all.begin());
    std::copy(std::begin(kOwnSetOptions), std::end(kOwnSetOptions), all.begin() + std::size(kEditOptions));
    return all;
}();

Exit runSet(const Arguments& arguments, Io& io);

/// Writes into files.
inline constexpr Command kSetCommand{
    .name = "set",
    .words = "Corrects the metadata of files in place",
    .operands = "FILE...",
    .options = kSetOptions,
    .example = "tagwell-cli set --scene 12A --circled yes A101_1.WAV\n"
               "tagwell-cli set --use-padding --verify --keep-date --note 'wind & rain' /media/card\n"
               "tagwell-cli dump --csv /media/card > day.csv; (edit it) ; tagwell-cli set --from-csv day.csv",
    .notes
    = "What isn't named stays as each file has it. An edit that can't be written whole is refused before a byte\n"
      "of its file is touched. Length and audio of a file never change; what was written is read back.\n"
      "--start needs the file's frame rate; the iXML's own start is written along, so that all readers agree.\n"
      "With --use-padding new values go into the iXML with &amp; &lt; &gt; for & < >; the window shows these as\n"
      "they stand in the file. Without it they go in byte for byte, as the window writes them.\n"
      "TABLE: one row a file, columns path, scene, take, tape, project, note, ubits, circled, wild_track, tracks\n"
      "and timecode_start; other columns of dump are passed over. An empty cell leaves its field as it is.",
    .run = runSet,
};
