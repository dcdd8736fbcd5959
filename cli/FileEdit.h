#pragma once

#include "cli/EditOptions.h"
#include "cli/Io.h"
#include "core/InPlaceEdit.h"

#include <string>

/// How files are edited. A plain value.
struct EditManner {
    bool usePadding = false;
    /// Write what can be written of an edit that isn't whole.
    bool partly = false;
    /// Compare length and sum of the audio before and after.
    bool verify = false;
    /// Put the modification time back.
    bool keepDate = false;
    /// Write nothing.
    bool dryRun = false;
};

/// What became of a file.
struct FileEditResult {
    /// `Found` if not all of the edit is in the file.
    Exit exit = Exit::Ok;
    /// One line for the user, without the path.
    std::string words;
};

/// Edits the file at `path`. Throws FileError if the edit is refused, with the file untouched, or if the write failed
/// or can't be proved; std::filesystem::filesystem_error if the file vanishes meanwhile. Blocks.
FileEditResult editFile(const std::string& path, const EditRequest& request, const EditManner& manner);

/// Why an edit isn't whole.
struct EditHindrance {
    /// For machines, in small letters and hyphens.
    std::string code;
    /// For people, without the path and without a full stop.
    std::string words;
};
EditHindrance hindranceOf(const EditPlan::Problem& problem);
