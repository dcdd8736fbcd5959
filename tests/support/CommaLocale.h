#pragma once

#include "tests/support/TempFolder.h"

#include <locale>
#include <string>

/// Gives the process numbers as they are written in German, in C and C++, for its lifetime: the decimal mark is a comma
/// and thousands are grouped. Makes that locale itself. Main thread only; one at a time.
class CommaLocale {
public:
    CommaLocale();
    ~CommaLocale();
    CommaLocale(const CommaLocale&) = delete;
    CommaLocale& operator=(const CommaLocale&) = delete;

    /// False if the machine lacks the tools for it (localedef and its character sets): skip the test then.
    bool works() const { return active; }

private:
    TempFolder folder;
    std::string before;
    std::locale beforeCpp;
    bool active = false;
};
