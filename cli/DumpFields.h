#pragma once

#include "cli/FileFacts.h"
#include "cli/FileRun.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// Takes the fields of a file in their order. Missing values are nothing; texts are bytes of the file.
class FieldSink {
public:
    virtual ~FieldSink() = default;

    void text(std::string_view name, std::string_view value);
    virtual void number(std::string_view name, std::optional<uint64_t> value) = 0;
    virtual void real(std::string_view name, std::optional<double> value) = 0;
    virtual void flag(std::string_view name, bool value) = 0;
    virtual void none(std::string_view name) = 0;
    virtual void tracks(std::string_view name, const std::vector<BwfTrack>& list) = 0;
    virtual void chunks(std::string_view name, const FileFacts& facts) = 0;
    /// Fields up to `endGroup` have the group's name and a point in front of theirs.
    virtual void beginGroup(std::string_view name) = 0;
    virtual void endGroup() = 0;

    /// A text so far was no UTF-8.
    bool metForeignBytes = false;

protected:
    virtual void putText(std::string_view name, std::string_view value) = 0;
};

/// Gives `sink` all fields of a file; `withChunks` adds the list of its chunks.
void visitFields(const FileFacts& facts, bool withChunks, FieldSink& sink);

/// HH:MM:SS:FF as the window shows the record's start; empty if it shows none.
std::string nominalLabel(const BwfMetadata& record);

/// "1=Boom" or "1=Boom/MIX": number, name and, if there is one, function. A "\" stands in front of each "\", "|" and
/// "/" inside name and function.
std::string trackText(const BwfTrack& track);
