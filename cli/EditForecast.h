#pragma once

#include "cli/EditOptions.h"
#include "core/BwfMetadata.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

/// What becomes of an edit in one file.
enum class EditOutcome {
    /// The file says all of it already; nothing is written.
    Nothing,
    /// Every place that the file has for it says so afterwards.
    Whole,
    /// It goes into the Description of `bext`, and the iXML stays as it is.
    DescriptionOnly,
    /// Parts of it go in, others are lost.
    Partly,
    /// None of it can be written, or only over what is none of it.
    Refused,
};

/// "nothing", "whole", "description-only", "partly", "refused".
std::string_view nameOf(EditOutcome outcome);

/// Why an edit isn't written whole.
struct EditObstacle {
    /// For machines, in small letters and hyphens. It keeps its meaning.
    std::string code;
    /// For people, without the path and without a full stop.
    std::string words;
};

/// What BwfMetadataWriter::writeMetadata would do to a file. A plain value.
struct EditForecast {
    EditOutcome outcome = EditOutcome::Nothing;
    /// Bytes that the edited iXML text is longer than its chunk; 0 if it fits or there is none.
    uint64_t ixmlMissing = 0;
    /// Bytes of the Description that would be cut off at its end; 0 if it isn't written.
    uint64_t descriptionMissing = 0;
    /// Why it isn't whole, the most telling first; empty if it is, or if there is nothing to write.
    std::vector<EditObstacle> obstacles;

    /// The writer's answer: at least one step was carried out, or there was nothing to do.
    bool writerSucceeds = false;
    /// The writer would write past the end of a `bext` that is shorter than its fields, or into a file that the reader
    /// can't read back. Nothing but the outcome and the obstacles is told then.
    bool doesDamage = false;
    /// The 256 bytes of the Description afterwards; nothing if it isn't written.
    std::optional<std::string> descriptionField;
    /// The time reference of `bext` afterwards; nothing if it isn't written.
    std::optional<uint64_t> timeReference;
    /// The payload of the iXML chunk afterwards, as long as before; nothing if it isn't written.
    std::optional<std::string> ixmlPayload;
    /// What the reader says afterwards.
    BwfMetadata after;
};

/// What the writer would make of the file at `path` for a record of wanted values, told from the file's bytes as they
/// are now. Nothing is written. Throws FileError if the file isn't there, can't be read whole or is no WAV file, and
/// std::filesystem::filesystem_error if it vanishes meanwhile. Thread: any; blocks.
EditForecast forecastEdit(const std::string& path, const BwfMetadata& wanted);

/// The same for an edit without its start; tracks that the file doesn't list are obstacles.
EditForecast forecastEdit(const std::string& path, const EditRequest& request);
