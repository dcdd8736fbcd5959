#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

enum class Severity {
    /// Worth knowing; no reason to act.
    Info,
    /// Readers may show different things, or a person may be misled.
    Warning,
    /// Readers do show different things, or the file is broken.
    Error,
};

/// Something about a file that its owner should know. A plain value; texts are bytes of the file.
struct Finding {
    Severity severity = Severity::Warning;
    /// Small letters and hyphens; it keeps its meaning.
    std::string code;
    /// One line of words, without the path and without a full stop. Foreign bytes stand in it as they are.
    std::string message;
    /// The field or the chunk that is meant; may be empty.
    std::string field = {};
    /// What the iXML and the Description, or `bext`, say; only where they are compared.
    std::optional<std::string> ixml = {};
    std::optional<std::string> bext = {};
    /// The other file, where two are compared; may be empty.
    std::string otherPath = {};
};

/// "info", "warning", "error".
std::string_view nameOf(Severity severity);
