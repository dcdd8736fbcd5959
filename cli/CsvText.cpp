#include "cli/CsvText.h"

#include <algorithm>
#include <utility>

namespace {

// By hand: the library's search for one of several bytes took as long as reading the file.
bool needsQuotes(std::string_view cell)
{
    return std::any_of(
        cell.begin(), cell.end(), [](char each) { return each == ',' || each == '"' || each == '\r' || each == '\n'; });
}

} // namespace

void CsvRow::add(std::string_view cell)
{
    if (count++ > 0)
        text += ',';
    if (!needsQuotes(cell)) {
        text += cell;
        return;
    }
    text += '"';
    for (const char each : cell) {
        if (each == '"')
            text += '"';
        text += each;
    }
    text += '"';
}

std::string CsvRow::end() &&
{
    text += "\r\n";
    return std::move(text);
}
