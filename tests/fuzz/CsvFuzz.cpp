// Any bytes as a CSV table: what is read, written as rows and read again is the same, and each row is found again by
// its offset.

#include "cli/CsvReader.h"
#include "cli/CsvText.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace {

using Row = std::vector<std::string>;

struct Table {
    std::vector<Row> rows;
    std::vector<uint64_t> offsets;
};

Table read(const std::string& text)
{
    std::istringstream stream(text);
    CsvReader reader(stream);
    Table table;
    for (Row cells; reader.next(cells);) {
        table.rows.push_back(cells);
        table.offsets.push_back(reader.offset());
    }
    return table;
}

Row rowAt(const std::string& text, uint64_t offset)
{
    std::istringstream stream(text);
    stream.seekg(static_cast<std::streamoff>(offset));
    CsvReader reader(stream, offset);
    Row cells;
    if (!reader.next(cells))
        std::abort();
    return cells;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const std::string text(reinterpret_cast<const char*>(data), size);
    const Table table = read(text);
    // A row in front, since a mark of UTF-8 there is passed over.
    std::string written = "head\r\n";
    for (const Row& cells : table.rows) {
        CsvRow row;
        for (const std::string& cell : cells)
            row.add(cell);
        written += std::move(row).end();
    }
    std::vector<Row> again = read(written).rows;
    again.erase(again.begin());
    if (again != table.rows)
        std::abort();
    for (std::size_t i = 0; i < std::min<std::size_t>(table.rows.size(), 50); ++i) {
        if (table.offsets[i] != 0 && rowAt(text, table.offsets[i]) != table.rows[i])
            std::abort();
    }
    return 0;
}
