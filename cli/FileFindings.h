#pragma once

#include "cli/FileFacts.h"
#include "cli/Finding.h"
#include "cli/IxmlDocument.h"

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

/// One file, read for its findings. A plain value.
struct CheckedFile {
    FileFacts facts;
    /// Of the first iXML that stands in the file, be it one that the window doesn't see; empty without one.
    IxmlDocument ixml;
    /// The first 602 bytes of the first `bext`, fewer where it or the file is shorter.
    std::string bext;
    /// Bytes that the file has by its header.
    uint64_t declaredBytes = 0;
    /// The window finds these chunks.
    bool seesBext = false;
    bool seesIxml = false;
};

/// Reads it. Throws as `readFileFacts`. Thread: any; blocks.
CheckedFile readCheckedFile(const std::string& path);

/// All that the file by itself gives cause to say.
std::vector<Finding> findingsOf(const CheckedFile& file);

/// The lines "KEY=value" of a Description, by key in capitals and without the maker's letter in front: "SCENE", "TRK1".
/// Of a repeated key the last counts; keys that no maker is known for are left out, and so is a last line that the end
/// of the field may have cut.
std::map<std::string, std::string> descriptionValues(std::string_view description);
