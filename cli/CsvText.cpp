#include "cli/CsvText.h"

#include <utility>

void CsvRow::add(std::string_view cell)
{
    if (count++ > 0)
        text += ',';
    if (cell.find_first_of(",\"\r\n") == std::string_view::npos) {
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
