// The list of chunks over foreign bytes: it ends, stays inside the file, and its chunks follow one another.

#include "core/ChunkList.h"

#include <cstdint>
#include <cstdlib>
#include <sstream>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    std::istringstream stream(std::string(reinterpret_cast<const char*>(data), size));
    ChunkWalk blocks(stream);
    const ChunkList list = readChunkList(stream, blocks);
    uint64_t end = ChunkWalk::kFirstChunk;
    for (const ChunkList::Chunk& chunk : list.chunks) {
        if (chunk.offset < end || chunk.offset >= size)
            std::abort();
        end = chunk.payload();
    }
    if (list.chunks.size() > ChunkList::kMostChunks || (!list.isWave && !list.chunks.empty()))
        std::abort();
    return 0;
}
