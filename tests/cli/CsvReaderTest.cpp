#include "cli/CsvReader.h"

#include "cli/CsvText.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

namespace {

using Rows = std::vector<std::vector<std::string>>;

struct Table {
    Rows rows;
    std::vector<size_t> lines;
    std::vector<uint64_t> offsets;
    std::string complaint;
};

Table read(const std::string& text)
{
    std::istringstream stream(text);
    CsvReader reader(stream);
    Table table;
    for (std::vector<std::string> cells; reader.next(cells);) {
        table.rows.push_back(cells);
        table.lines.push_back(reader.line());
        table.offsets.push_back(reader.offset());
    }
    table.complaint = reader.complaint();
    return table;
}

TEST(CsvReader, rowsEndInEitherLineEndAndTheLastNeedsNone)
{
    const Rows wanted{ { "a", "b" }, { "1", "" }, { "", "2" } };
    EXPECT_EQ(wanted, read("a,b\r\n1,\r\n,2\r\n").rows);
    EXPECT_EQ(wanted, read("a,b\n1,\n,2").rows);
    EXPECT_TRUE(read("").rows.empty());
    EXPECT_EQ((Rows{ { "" }, { "" } }), read("\n\r\n").rows);
}

TEST(CsvReader, quotedCellsHoldCommasQuotesAndLineEnds)
{
    EXPECT_EQ((Rows{ { "a,b", "say \"hi\"", "x\r\ny\n", "" }, { "z" } }),
        read("\"a,b\",\"say \"\"hi\"\"\",\"x\r\ny\n\",\"\"\r\nz\r\n").rows);
}

TEST(CsvReader, bytesStayAsTheyAre)
{
    const std::string odd("\xFF\xFE\0\x80 \t\rx", 8);
    EXPECT_EQ((Rows{ { odd, "1" } }), read(odd + ",1\n").rows);
}

TEST(CsvReader, markOfUtf8IsPassedOverInFrontOnly)
{
    EXPECT_EQ((Rows{ { "path" }, { "\xEF\xBB\xBF" } }), read("\xEF\xBB\xBFpath\n\xEF\xBB\xBF\n").rows);
    EXPECT_EQ((Rows{ { "\xEF\xBB" } }), read("\xEF\xBB").rows);
    EXPECT_EQ((Rows{ { "\xEF\xBBx", "y" } }), read("\xEF\xBBx,y").rows);
    EXPECT_EQ((Rows{ { "a,b" } }), read("\xEF\xBB\xBF\"a,b\"").rows);
}

TEST(CsvReader, whatIsNoCsvIsNamedWithItsLineAndEndsTheTable)
{
    EXPECT_EQ("line 2: a quote is never closed", read("a\n\"b\nc").complaint);
    EXPECT_EQ("line 2: text stands behind a closing quote", read("a\n\"b\"c\nd").complaint);
    EXPECT_EQ("line 1: a quote stands inside a cell that isn't quoted", read("a\"b\"\nc").complaint);
    EXPECT_EQ(1u, read("a\n\"b\"c\nd").rows.size());
}

TEST(CsvReader, linesAndOffsetsAreThoseOfTheRowsBeginnings)
{
    const Table table = read("\xEF\xBB\xBFh\r\n\"1\n2\",x\n3");
    EXPECT_EQ((std::vector<size_t>{ 1, 2, 4 }), table.lines);
    EXPECT_EQ((std::vector<uint64_t>{ 3, 6, 14 }), table.offsets);
}

TEST(CsvReader, readsFromTheMiddleByAnOffset)
{
    std::istringstream stream("h\n1,2\n3,4\n");
    stream.seekg(6);
    CsvReader reader(stream, 6);
    std::vector<std::string> cells;
    ASSERT_TRUE(reader.next(cells));
    EXPECT_EQ((std::vector<std::string>{ "3", "4" }), cells);
}

TEST(CsvReader, readsBackWhatARowWrites)
{
    const std::vector<std::string> cells{ "plain", "", "a,b", "\"", "\"\"", "\r", "\n", "\r\n", " x ", "\xFF" };
    CsvRow row;
    for (const std::string& cell : cells)
        row.add(cell);
    EXPECT_EQ((Rows{ cells }), read(std::move(row).end()).rows);
}

} // namespace
