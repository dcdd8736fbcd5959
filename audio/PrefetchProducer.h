#pragma once

#include "audio/PrefetchRing.h"
#include "audio/WavHeader.h"

#include <cstdint>
#include <istream>
#include <vector>

/// The producer's side of a PrefetchRing: reads the file block by block, decodes it into the ring, and takes the seeks.
/// Thread: one for all calls, which has the stream to itself.
class PrefetchProducer {
public:
    /// Begins at file frame `first`. Ring, stream and header are the caller's, outlive the object and stay as they are
    /// but for what it does itself; the ring was reset for this header's file.
    PrefetchProducer(PrefetchRing& target, std::istream& file, const WavHeader& format, int64_t first);

    /// Takes a pending seek, then writes one block and moves on behind it. False if there was nothing to do or to be
    /// had: no room for a whole block, the file's end, or a read without a result; then the same frame is tried again
    /// in the next pass. Never allocates; waits for the file.
    bool pass();
    /// The first half of taking a seek: goes to its target, unseen by the consumer. The second half is the ring's
    /// `announceFlush`. False if no seek is pending.
    bool takeSeek();

    /// The file frame of the next block.
    int64_t nextFrame() const { return frame; }
    /// The ring that it fills.
    PrefetchRing& ring() const { return prefetchRing; }

private:
    int64_t readBlockAt(int64_t firstFrame, int64_t frames);
    void decodeIntoRing(int64_t frames);

    PrefetchRing& prefetchRing;
    std::istream& stream;
    const WavHeader& header;
    int64_t frame;
    std::vector<uint8_t> readBlock; // Raw bytes of one block.
};
