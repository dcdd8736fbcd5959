#pragma once

#include <string>
#include <string_view>

// Foreign bytes as text that can be shown. Pure functions, any thread.

/// `text` on one line of a terminal: each control character becomes an escape such as "\n" or "\x1b". All other bytes
/// stay, those that are no UTF-8 too.
std::string oneLine(std::string_view text);

/// True if `text` is UTF-8 throughout: no overlong forms, no surrogates, nothing above U+10FFFF.
bool isUtf8(std::string_view text);

/// `text` with U+FFFD in place of each byte that belongs to no character of UTF-8.
std::string asUtf8(std::string_view text);
