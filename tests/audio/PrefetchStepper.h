#pragma once

#include "audio/WavFileReader.h"

/// Plays the producer of an open reader in the test's own thread, one pass at a time. The reader believes that it is
/// prefetching for as long as the object lives. One thread for all calls, which is the consumer and requester as well.
class PrefetchStepper {
public:
    /// `wavReader` is open, not prefetching, and outlives the object. `maxChannels` as in `startPrefetch`.
    explicit PrefetchStepper(WavFileReader& wavReader, int32_t maxChannels = 0)
        : reader(wavReader), frame(wavReader.position)
    {
        reader.prepareRing(maxChannels);
        reader.prefetchRunning = true;
    }
    ~PrefetchStepper() { reader.prefetchRunning = false; }
    PrefetchStepper(const PrefetchStepper&) = delete;
    PrefetchStepper& operator=(const PrefetchStepper&) = delete;

    /// One pass. False where the producer would now sleep.
    bool pass() { return reader.prefetchPass(frame); }
    /// Passes until the producer would sleep, at most `limit`; gives how many of them wrote a block.
    int passUntilIdle(int limit = 100)
    {
        int blocks = 0;
        while (blocks < limit && pass())
            ++blocks;
        return blocks;
    }
    /// The first step of a pass alone: takes a pending seek.
    void takeSeek() { reader.takeSeekRequest(frame); }
    /// Takes a pending seek and leaves its generation unseen until `showSeek`, as when the consumer loaded the
    /// generation just before the seek, and the index of the flush just after it.
    void takeSeekUnseen()
    {
        takeSeek();
        --reader.flushGeneration;
    }
    void showSeek() { ++reader.flushGeneration; }
    /// Takes back the second half of a request, as when the requester has stored the position and not yet the target;
    /// `completeRequest` is that half.
    void holdRequest() { held = reader.seekTarget.exchange(WavFileReader::kNoSeek); }
    void completeRequest() { reader.seekTarget = held; }

    uint64_t writeIndex() const { return reader.ringWriteIndex; }
    uint64_t readIndex() const { return reader.ringReadIndex; }
    uint64_t generation() const { return reader.flushGeneration; }
    int32_t ringChannels() const { return reader.ringChannels; }
    size_t ringSamples() const { return reader.ring.size(); }
    int64_t nextFrame() const { return frame; }

private:
    WavFileReader& reader;
    int64_t frame;
    uint64_t held = WavFileReader::kNoSeek;
};
