#pragma once

#include "cli/Command.h"

inline constexpr Option kVerifyOptions[] = {
    { .name = "write", .value = "SUMS", .words = "write the sums into the file SUMS" },
    { .name = "check", .value = "SUMS", .words = "compare with the sums in SUMS; without FILE, all that it lists" },
};

Exit runVerify(const Arguments& arguments, Io& io);

/// Proves that the audio is what it was.
inline constexpr Command kVerifyCommand{
    .name = "verify",
    .words = "Sums up the audio of files, apart from their metadata, and compares it",
    .operands = "FILE...",
    .options = kVerifyOptions,
    .example = "tagwell-cli verify --write before.txt /media/card\n"
               "tagwell-cli verify --check before.txt",
    .notes = "A sum is the MD5 of the payload of the data chunk, exactly the bytes that it declares; a file that ends\n"
             "earlier has none. It is no sum of the whole file: md5sum gives other digits.\n"
             "A sum that the file itself carries (an \"MD5 \" chunk) is compared too, in both byte orders.",
    .run = runVerify,
};
