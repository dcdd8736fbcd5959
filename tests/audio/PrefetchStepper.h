#pragma once

#include "audio/WavFileReader.h"

/// Plays the producer of an open reader in the test's own thread, one pass at a time. The reader believes that it is
/// prefetching for as long as the object lives. One thread for all calls, which is the consumer and requester as well.
class PrefetchStepper {
public:
    /// `wavReader` is open, not prefetching, and outlives the object. `maxChannels` as in `startPrefetch`.
    explicit PrefetchStepper(WavFileReader& wavReader, int32_t maxChannels = 0)
        : reader(wavReader), producer(wavReader.startPrefetchByHand(maxChannels))
    {
    }
    ~PrefetchStepper() { reader.stopPrefetch(); }
    PrefetchStepper(const PrefetchStepper&) = delete;
    PrefetchStepper& operator=(const PrefetchStepper&) = delete;

    /// One pass. False where the producer would now sleep.
    bool pass() { return producer.pass(); }
    /// Passes until the producer would sleep, at most `limit`; gives how many of them wrote a block.
    int passUntilIdle(int limit = 100)
    {
        int blocks = 0;
        while (blocks < limit && pass())
            ++blocks;
        return blocks;
    }
    /// The first step of a pass alone: takes a pending seek.
    void takeSeek()
    {
        if (producer.takeSeek())
            showSeek();
    }
    /// Takes a pending seek and leaves its generation unseen until `showSeek`, as when the consumer loaded the
    /// generation just before the seek, and the index of the flush just after it. False if none is pending.
    bool takeSeekUnseen() { return producer.takeSeek(); }
    void showSeek() { ring().announceFlush(); }
    /// The ring that the reader and the producer share.
    PrefetchRing& ring() const { return producer.ring(); }
    /// The file frame of the next block.
    int64_t nextFrame() const { return producer.nextFrame(); }

private:
    WavFileReader& reader;
    PrefetchProducer& producer;
};
