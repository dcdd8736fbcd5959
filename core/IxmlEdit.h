#pragma once

#include <optional>
#include <string>

struct BwfMetadata;

/// An iXML text brought in line with a record of wanted values: by what differs between `current`, the record that
/// the text was read into, and `updated`. As in every record of wanted values, an empty text means that the element
/// stays; `circled` and `wildTrack` are taken as values; tracks are compared by list position, name and function.
///
/// The result may be longer than `text`: whether it fits where the text came from is the caller's question. Padding
/// at the end is part of the text and stays there. Nothing if there is nothing to write; an element that has no place
/// is skipped in silence. The result may also equal `text`: a WILD_TRACK element that is there keeps what it says when
/// the flag is set, and yet asks to be written.
///
/// A pure function; any thread.
std::optional<std::string> editedIxml(std::string text, const BwfMetadata& current, const BwfMetadata& updated);
