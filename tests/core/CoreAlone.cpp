// A program of the metadata core and nothing else; a test looks at what it is linked with.

#include "core/BwfMetadataReader.h"

#include <filesystem>

int main(int argc, char** argv)
{
    try {
        return argc == 2 && BwfMetadataReader::readMetadata(argv[1]).fileSize > 0 ? 0 : 1;
    } catch (const std::filesystem::filesystem_error&) {
        return 1;
    }
}
