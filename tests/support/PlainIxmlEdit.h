#pragma once

#include "core/BwfMetadata.h"

#include <string>

/// The edit of an iXML text once more, as plain as it gets: each tag searched in the whole text, each value put in
/// where it belongs, one after the other. The truth that the fast edit is compared with, and a baseline of the
/// benchmarks. True if the chunk would have to be written.
namespace PlainIxmlEdit {

/// Replaces what a scalar element says, or puts a new one in front of the closing root.
bool setElement(std::string& text, const std::string& name, const std::string& value);
bool setWildTrack(std::string& text, bool wanted);
/// Name and function of the first track that lists the channel number.
bool setTrack(std::string& text, const BwfTrack& wanted);
/// All that differs between the two records.
bool edit(std::string& text, const BwfMetadata& current, const BwfMetadata& updated);

} // namespace PlainIxmlEdit
