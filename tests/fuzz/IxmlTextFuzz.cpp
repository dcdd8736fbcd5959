// Any bytes as an iXML text, those behind the first byte of value 1 as the Description: the one pass must find what a
// search for each tag finds.

#include "core/BwfMetadataReader.h"

#include "tests/support/PlainReader.h"

#include <cstdint>
#include <cstdlib>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const std::string input(reinterpret_cast<const char*>(data), size);
    const std::string text = input.substr(0, input.find('\1'));
    BwfMetadata plain;
    plain.sampleRate = 48000;
    if (text.size() < input.size())
        plain.description = input.substr(text.size() + 1, 256);
    BwfMetadata record = plain;
    BwfMetadataReader::parseIxml(text, record);
    PlainReader::parseIxml(text, plain);
    if (recordText(record) != recordText(plain))
        std::abort();
    return 0;
}
