#pragma once

#include "audio/PrefetchProducer.h"
#include "audio/PrefetchRing.h"
#include "audio/WavHeader.h"

#include <atomic>
#include <cstdint>
#include <fstream>
#include <optional>
#include <string>
#include <thread>
#include <vector>

/// Sample frames out of a RIFF or RF64 WAV file of any size, as interleaved 32-bit floats with full scale 1.0.
///
/// There are two read paths behind `readFrames`. The synchronous one reads the file in the caller's thread. After
/// `startPrefetch` a thread of this class decodes the file ahead of time into a PrefetchRing, and `readFrames` takes
/// the frames out of the ring without a lock and without touching the file.
///
/// Threads: the roles of PrefetchRing. The owner calls `open`, `close`, `startPrefetch`, `stopPrefetch` and, without
/// prefetching, everything else; it calls these four only while neither consumer nor requester is inside a call.
/// While prefetching runs the producer is the thread that `startPrefetch` starts, and it alone touches the file; the
/// consumer calls `readFrames` and `isAtEnd`, the requester `setPosition` and `seekSeconds`.
class WavFileReader {
public:
    static constexpr int32_t kMaxChannels = WavHeader::kMaxChannels;

    WavFileReader() = default;
    /// Closes the file and ends the producer.
    ~WavFileReader();
    WavFileReader(const WavFileReader&) = delete;
    WavFileReader& operator=(const WavFileReader&) = delete;

    /// Closes what was open and opens `path` (UTF-8) at frame 0, without prefetching.
    /// Thread: owner. False if it isn't a regular file that can be read, or if `readWavHeader` makes nothing of it; the
    /// reader is then closed.
    bool open(const std::string& path);

    /// Ends the producer, closes the file and sets all that describes it to 0. Harmless on a closed reader.
    /// Thread: owner. Returns when the producer has ended, after at most one block read or one sleep of 5 ms.
    void close();

    /// True between a successful `open` and `close`.
    bool isOpen() const { return opened; }
    /// What the file's header says; all 0 when closed.
    const WavHeader& getHeader() const { return header; }
    /// Three fields of it, see there.
    int32_t getSampleRate() const { return header.sampleRate; }
    int32_t getChannels() const { return header.channels; }
    int64_t getTotalFrames() const { return header.totalFrames; }
    /// Seconds; 0.0 when closed or when the sample rate is below 1.
    double getDuration() const;

    /// The frame that the reader's user has reached: the ring's position while prefetching runs, else the next frame of
    /// the synchronous path. 0 when closed. Thread: any.
    int64_t getPosition() const;
    /// True while the producer is to run. Thread: any.
    bool isPrefetching() const { return prefetchRunning.load(std::memory_order_acquire); }

    /// Goes to `frame`, clamped to 0 ... total frames; ignored when closed. While prefetching runs this is a request:
    /// `getPosition` jumps at once, and reads give 0 until the producer has taken it.
    /// Thread: owner, or requester while prefetching runs; then it never blocks, allocates or touches the file.
    void setPosition(int64_t frame);

    /// Goes to a time as `setPosition` does, its frame cut towards zero; beyond either end goes to that end,
    /// not-a-number to 0. Ignored when closed and when the sample rate is below 1. Thread: as `setPosition`.
    void seekSeconds(double seconds);

    /// True once all frames that the `data` chunk claims were delivered, or after a seek to the end; true when closed.
    /// Never becomes true by reading where the file is shorter than it claims. Thread: owner, or consumer.
    bool isAtEnd() const;

    /// Delivers at most `frames` frames to `out` and moves on behind them. `outChannels` is the number of the file's
    /// first channels to deliver; below 1 or above the file's number means all. `out` takes `frames` x that many
    /// floats. Fewer frames come where the file ends, or where the ring runs dry. Thread: owner, or consumer while
    /// prefetching runs. 0 if closed, if `frames` is below 1 or if nothing is there.
    int32_t readFrames(float* out, int32_t frames, int32_t outChannels);

    /// The path of `readFrames` without prefetching; see there. A read that comes out short leaves the file's stream
    /// failed, and all later ones give 0 until the file is opened again, even after a seek.
    /// Thread: owner, never while prefetching runs. Reads the file in the calling thread, and may allocate up to
    /// 256 KiB at the first read of more than PrefetchRing::kBlockFrames.
    int32_t readFramesSync(float* out, int32_t frames, int32_t outChannels);

    /// The ring's `read`; see there. Thread: consumer only, while prefetching runs.
    int32_t readFramesFromRing(float* out, int32_t frames, int32_t outChannels)
    {
        return prefetchRing.read(out, frames, outChannels);
    }

    /// Makes the ring and starts the producer at the current position. `maxChannels` is the number of the file's first
    /// channels that the ring keeps; below 1 or above the file's number means all. Ignored when closed or running.
    /// Thread: owner. Allocates 256 KiB for each channel.
    /// Throws std::system_error when the system refuses a thread; the reader then isn't prefetching.
    void startPrefetch(int32_t maxChannels);

    /// The same without a thread: the caller makes the producer's passes. The reader is open and not prefetching. The
    /// result is the reader's and ends with `stopPrefetch`. Thread: owner, who is then the producer.
    PrefetchProducer& startPrefetchByHand(int32_t maxChannels);

    /// Ends the producer and returns when it has ended; ignored without one. Reads go on synchronously from where
    /// `startPrefetch` found the position. Thread: owner.
    void stopPrefetch();

    /// The functions of the same names in WavHeader.h, on the file's stream, and `findWavChunk`.
    /// Thread: owner, never while prefetching runs.
    bool findChunk(const char* id, uint32_t& size, bool consumeHeader);
    uint16_t readUint16LE();
    uint32_t readUint32LE();
    uint64_t readUint64LE();

    /// One stored sample of the open file as a float; 0.0 when closed. `bytes` has four readable bytes for
    /// floats, and as many as a sample is wide otherwise. Thread: any.
    float convertSampleToFloat(const uint8_t* bytes) const;

private:
    bool parseHeader();
    void goToFrame(int64_t frame);
    void prefetchLoop();

    // The file, as found by `open`; constant while prefetching runs.
    std::string filePath; // UTF-8.
    std::ifstream stream; // The producer's alone while it runs.
    bool opened = false;
    WavHeader header;
    std::atomic<int64_t> position{ 0 }; // Next frame of the synchronous path; any thread may read it.
    std::vector<uint8_t> scratch; // Raw bytes of a piece of a synchronous read; grows, never shrinks.

    PrefetchRing prefetchRing;
    std::optional<PrefetchProducer> producer; // Of the last start; the prefetch thread's while it runs.
    std::thread prefetchThread;
    std::atomic<bool> prefetchRunning{ false }; // Owner writes; the producer runs and reads branch on it.
};
