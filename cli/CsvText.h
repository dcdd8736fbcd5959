#pragma once

#include <cstddef>
#include <string>
#include <string_view>

/// One row of CSV as RFC 4180 has it: quotes around what holds a comma, a quote or a line end, and CRLF at the end.
/// Cells are bytes and stay as they are.
class CsvRow {
public:
    void add(std::string_view cell);
    /// Cells so far.
    size_t cells() const { return count; }
    /// The row with its line end; it is over then.
    std::string end() &&;

private:
    std::string text;
    size_t count = 0;
};
