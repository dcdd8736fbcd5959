#pragma once

#include "core/BwfMetadata.h"
#include "core/CantarMetadataParser.h"

#include <cstdint>
#include <fstream>
#include <string>

/// The metadata reader once more, as plain as it gets: one stream read and one seek for each chunk, one search through
/// the whole text for each tag, the standard conversions. The truth that the fast reader is compared with, and a
/// baseline of the benchmarks. Needs the C locale. Files should be small: where a size field claims more than 128 KiB,
/// no more than that is taken.
namespace PlainReader {

BwfMetadata readMetadata(const std::string& path);
void parseIxml(const std::string& text, BwfMetadata& record);
CantarMetadata parseDescription(const std::string& text);
bool findChunk(std::istream& stream, const std::string& id, uint32_t& size, uint32_t& position);

} // namespace PlainReader

/// Every field of a record, one a line, for comparisons that show what differs.
std::string recordText(const BwfMetadata& record);
/// The same for what a Description says.
std::string recordText(const CantarMetadata& record);
