#include "cli/CsvReader.h"

#include <string_view>

namespace {

constexpr int kEnd = std::char_traits<char>::eof();
constexpr std::string_view kMark = "\xEF\xBB\xBF"; // U+FEFF, as spreadsheets write it in front of UTF-8.

} // namespace

int CsvReader::get()
{
    const int byte = stream.get();
    if (byte == kEnd)
        return kEnd;
    ++position;
    if (byte == '\n')
        ++lineNumber;
    return byte;
}

void CsvReader::passMark()
{
    std::string front(kMark.size(), '\0');
    stream.read(front.data(), static_cast<std::streamsize>(front.size()));
    if (front == kMark) {
        position = kMark.size();
        return;
    }
    stream.clear(stream.rdstate() & std::ios::badbit);
    stream.seekg(0);
}

bool CsvReader::next(std::vector<std::string>& cells)
{
    cells.clear();
    if (!wrong.empty())
        return false;
    if (position == 0)
        passMark();
    rowLine = lineNumber;
    rowOffset = position;
    if (peek() == kEnd) {
        if (stream.bad())
            wrong = "it can't be read";
        return false;
    }
    rowIsOver = false;
    while (!rowIsOver) {
        cells.emplace_back();
        const bool isQuoted = peek() == '"';
        if (!(isQuoted ? takeQuoted(cells.back()) : takeCell(cells.back()))) {
            cells.clear();
            return false;
        }
    }
    return true;
}

// Up to the comma or the line end, which is passed. A CR that no LF follows belongs to the cell.
bool CsvReader::takeCell(std::string& cell)
{
    for (int byte = get(); byte != ','; byte = get()) {
        const bool isLineEnd = byte == '\n' || (byte == '\r' && peek() == '\n');
        if (byte == kEnd || isLineEnd) {
            if (byte == '\r')
                get();
            rowIsOver = true;
            break;
        }
        if (byte == '"') {
            wrong = "line " + std::to_string(lineNumber) + ": a quote stands inside a cell that isn't quoted";
            return false;
        }
        cell += static_cast<char>(byte);
    }
    if (stream.bad())
        wrong = "it can't be read";
    return wrong.empty();
}

bool CsvReader::takeQuoted(std::string& cell)
{
    const size_t begin = lineNumber;
    get();
    for (;;) {
        const int byte = get();
        if (byte == kEnd) {
            wrong = "line " + std::to_string(begin) + ": a quote is never closed";
            return false;
        }
        if (byte == '"' && peek() != '"')
            break;
        if (byte == '"')
            get();
        cell += static_cast<char>(byte);
    }
    std::string rest;
    if (!takeCell(rest))
        return false;
    if (!rest.empty())
        wrong = "line " + std::to_string(begin) + ": text stands behind a closing quote";
    return rest.empty();
}
