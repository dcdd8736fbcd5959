// Any bytes as a WAV file: the reader must come to the same record as the plain one, which reads and seeks for each
// chunk header.

#include "core/BwfMetadataReader.h"

#include "tests/support/PlainReader.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static const int file = memfd_create("tagwell", 0);
    static const std::string path = "/proc/self/fd/" + std::to_string(file);
    if (ftruncate(file, 0) != 0 || pwrite(file, data, size, 0) != static_cast<ssize_t>(size))
        return -1;
    if (recordText(BwfMetadataReader::readMetadata(path)) != recordText(PlainReader::readMetadata(path)))
        std::abort();
    return 0;
}
