// Any bytes as a Description: parsed as the plain parser does, and what is built from the result says the same again.

#include "core/CantarMetadataParser.h"

#include "tests/support/PlainReader.h"

#include <cstdint>
#include <cstdlib>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const std::string text(reinterpret_cast<const char*>(data), size);
    CantarMetadata record = CantarMetadataParser::parseDescription(text);
    if (record != PlainReader::parseDescription(text))
        std::abort();
    CantarMetadata again = CantarMetadataParser::parseDescription(CantarMetadataParser::buildDescription(record, 0.0));
    // Analogue user bits are not read back, and a digital text without scene and user bits does not show it.
    if (!record.digitalKeys)
        record.ubits.clear();
    if (record.ubits.empty() && record.scene.empty())
        record.digitalKeys = false;
    if (record != again)
        std::abort();
    return 0;
}
