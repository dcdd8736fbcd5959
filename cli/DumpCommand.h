#pragma once

#include "cli/Command.h"

inline constexpr Option kDumpOptions[] = {
    { .name = "json", .words = "one JSON object a file, one a line" },
    { .name = "csv", .words = "one row a file under a row of names, RFC 4180" },
    { .name = "chunks", .words = "also each chunk with its id, offset and size" },
};

Exit runDump(const Arguments& arguments, Io& io);

/// Shows all that is known of files.
inline constexpr Command kDumpCommand{
    .name = "dump",
    .words = "Shows all that the files say about themselves",
    .operands = "FILE...",
    .options = kDumpOptions,
    .example = "tagwell-cli dump A101_1.WAV\n"
               "tagwell-cli dump --json /media/card | jq -r 'select(.circled) | .path'",
    .notes = "timecode_start counts exact frames, timecode_end is the frame behind the last one;\n"
             "timecode_nominal is what the window shows.\n"
             "In JSON and text, bytes that are no UTF-8 are shown as U+FFFD; not_utf8 tells. CSV keeps the bytes.",
    .run = runDump,
};
