#pragma once

#include <cstddef>
#include <cstdint>
#include <istream>
#include <string>
#include <vector>

/// Reads CSV as RFC 4180 has it, row by row: cells may be quoted, and a quoted one may hold commas, line ends and,
/// twice each, quotes. Rows end in CRLF or LF. Cells are bytes and stay as they are. A mark of UTF-8 in front of the
/// first row is passed over. Takes no more memory than the longest row. Thread: any; one object belongs to one.
class CsvReader {
public:
    /// Reads from where `source` stands, `offset` bytes behind the beginning of the file. The stream is not owned and
    /// must be able to seek.
    explicit CsvReader(std::istream& source, uint64_t offset = 0) : stream(source), position(offset) { }

    /// The next row. False at the end, and if something is wrong, which `complaint` then says.
    bool next(std::vector<std::string>& cells);

    /// What is wrong, in words for the user; empty if nothing is.
    const std::string& complaint() const { return wrong; }
    /// Line of the file, from 1, in which the row read last begins.
    size_t line() const { return rowLine; }
    /// Bytes in front of the row read last.
    uint64_t offset() const { return rowOffset; }

private:
    int get();
    int peek() { return stream.peek(); }
    bool takeCell(std::string& cell);
    bool takeQuoted(std::string& cell);
    void passMark();

    std::istream& stream;
    std::string wrong;
    uint64_t position;
    size_t lineNumber = 1;
    size_t rowLine = 0;
    uint64_t rowOffset = 0;
    bool rowIsOver = false;
};
