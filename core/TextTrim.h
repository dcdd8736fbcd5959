#pragma once

#include <cstddef>
#include <string_view>

/// `text` without blanks, tabs, carriage returns and line feeds at both ends. A view into `text`. Any thread.
inline std::string_view trimBlanks(std::string_view text)
{
    constexpr std::string_view kBlanks = " \t\r\n";
    const size_t begin = text.find_first_not_of(kBlanks);
    if (begin == std::string_view::npos)
        return {};
    return text.substr(begin, text.find_last_not_of(kBlanks) - begin + 1);
}
