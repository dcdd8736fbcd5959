#pragma once

#include <string>
#include <vector>

struct BwfMetadata;

/// Which steps a save needs: the difference between what is wanted and what the file holds. A plain value.
struct MetadataChanges {
    /// The time reference of `bext`.
    bool timeReference = false;
    /// The Description of `bext`.
    bool bext = false;
    /// The production fields of the iXML.
    bool ixml = false;
    /// The track list of the iXML.
    bool tracks = false;

    bool any() const { return timeReference || bext || ixml || tracks; }
};

/// The steps that turn `current`, a file's record, into `updated`, a record of wanted values: an empty text or a time
/// reference of 0 leaves the field as it is. Any thread.
MetadataChanges changesBetween(const BwfMetadata& current, const BwfMetadata& updated);

/// The Description that the file gets; any length, cut only when it is written. What the old one said stays where it is
/// not changed, even if the iXML says otherwise; what the parser doesn't know is lost. The rate is the file's, never
/// the wanted record's. Any thread.
std::string editedDescription(const BwfMetadata& current, const BwfMetadata& updated);

/// Which of the changed texts a reader of that Description alone doesn't find in it as they were asked for: a line end
/// inside a text ends its line, and what follows passes for lines of its own. Any thread.
std::vector<std::string BwfMetadata::*> textsLostInDescription(const BwfMetadata& current, const BwfMetadata& updated);
