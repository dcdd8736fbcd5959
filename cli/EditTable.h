#pragma once

#include "cli/EditOptions.h"
#include "cli/FileFacts.h"

#include <cstddef>
#include <cstdint>
#include <fstream>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// Edits out of a CSV table: one row a file, columns by the names of `dump --csv`, in any order. Columns that can't be
/// set are passed over, so that such a table can be edited and given back as it is; an empty cell leaves its field.
///
/// Of each row only the path and the place in the file are kept; the rest is read when its turn comes.
class EditTable {
public:
    /// Reads the table from end to end, without looking at any recording. `complaints` says afterwards what is wrong.
    /// Throws RunError if the file can't be read.
    explicit EditTable(const std::string& csvPath);

    /// What is wrong with it, one line each, in words for the user.
    const std::vector<std::string>& complaints() const { return wrong; }
    /// The files of the rows, in their order.
    const std::vector<std::string>& paths() const { return files; }

    /// What row `index` wants of its file. Throws RunError if the table is another one by now.
    EditRequest request(size_t index, const FileFacts& facts);

private:
    struct Columns {
        std::vector<std::string> names;
        size_t path = 0;
    };

    void takeHeader(const std::vector<std::string>& cells);
    void takeRow(const std::vector<std::string>& cells, size_t line, uint64_t offset);
    [[noreturn]] void throwChanged() const;

    std::string source;
    std::ifstream stream;
    Columns columns;
    std::vector<std::string> files;
    std::vector<uint64_t> offsets;
    std::vector<std::string> wrong;
};
