#pragma once

#include <atomic>
#include <cstdint>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

/// Sample frames out of a RIFF or RF64 WAV file of any size, as interleaved 32-bit floats with full scale 1.0.
///
/// There are two read paths behind `readFrames`. The synchronous one reads the file in the caller's thread. After
/// `startPrefetch` a thread of this class decodes the file ahead of time into a ring, and `readFrames` takes the frames
/// out of the ring without a lock and without touching the file.
///
/// Threads, in the order of the names used below:
/// - owner: calls `open`, `close`, `startPrefetch`, `stopPrefetch` and, without prefetching, everything else.
///   It calls these four only while neither consumer nor requester is inside a call.
/// - producer: the thread that `startPrefetch` starts. It alone touches the file while it runs.
/// - consumer: the one thread that calls `readFrames` and `isAtEnd` while prefetching runs.
/// - requester: the one thread that calls `setPosition` or `seekSeconds` while prefetching runs. May be the consumer.
///
/// What keeps the ring free of data races, although its samples are plain floats:
/// 1. The indexes count frames since the start and never go back; frame i lies in slot i & (kRingFrames - 1).
/// 2. The producer writes slots of frames from `ringWriteIndex` on, and only where a whole block fits below
///    `ringReadIndex` + kRingFrames. It never looks at `flushReadIndex` for room.
/// 3. The consumer reads slots of frames from its read index up to `ringWriteIndex`, and stores `ringReadIndex` when it
///    has copied them.
/// So a slot changes hands by a release store and an acquire load in either direction, whatever seeks come in between.
///
/// What keeps the position right across seeks: requests are numbered. The number travels with the target through
/// `seekTarget` to the producer, from there with the flush to the consumer, and stands beside the frame in
/// `ringPosition`. The consumer counts frames only where its own number is the one that stands there.
class WavFileReader {
public:
    static constexpr int32_t kMaxChannels = 64;
    static constexpr int32_t kBlockFrames = 4096; ///< Frames of one read of the producer.
    static constexpr int64_t kRingFrames = 65536; ///< Power of two: a slot is index & (kRingFrames - 1).

    WavFileReader() = default;
    /// Closes the file and ends the producer.
    ~WavFileReader();
    WavFileReader(const WavFileReader&) = delete;
    WavFileReader& operator=(const WavFileReader&) = delete;

    /// Closes what was open and opens `path` (UTF-8) at frame 0, without prefetching.
    /// Thread: owner. False if it isn't a regular file that can be read, or isn't a WAV file of 1 to 64 channels in
    /// 16, 24 or 32 bits of integer PCM or float with `fmt ` before `data`; the reader is then closed.
    bool open(const std::string& path);

    /// Ends the producer, closes the file and sets all that describes it to 0. Harmless on a closed reader.
    /// Thread: owner. Returns when the producer has ended, after at most one block read or one sleep of 5 ms.
    void close();

    /// True between a successful `open` and `close`.
    bool isOpen() const { return opened; }
    /// Frames per second as the file says, unjudged: 0 and negative values are possible. 0 when closed.
    int32_t getSampleRate() const { return sampleRate; }
    /// Interleaved channels of a frame, 1 to 64; 0 when closed.
    int32_t getChannels() const { return channels; }
    /// 16, 24 or 32; 0 when closed.
    int32_t getBitsPerSample() const { return bitsPerSample; }
    /// 1 is integer PCM, 3 is IEEE float; 0 when closed.
    int32_t getFormatCode() const { return formatCode; }
    /// Whole frames of the `data` chunk as its size says; the file may really hold fewer. 0 when closed.
    int64_t getTotalFrames() const { return totalFrames; }
    /// Seconds; 0.0 when closed or when the sample rate is below 1.
    double getDuration() const;

    /// The frame that the reader's user has reached: `ringPosition` while prefetching runs, else the next frame of the
    /// synchronous path. 0 when closed. Thread: any.
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
    /// 256 KiB at the first read of more than kBlockFrames.
    int32_t readFramesSync(float* out, int32_t frames, int32_t outChannels);

    /// Copies at most `frames` frames out of the ring; fewer when it runs dry, 0 while a seek is pending.
    /// `frames` is at least 1; `outChannels` is 1 to the file's channels. Channels beyond the ring's are set to 0.0.
    /// Thread: consumer only, while prefetching runs. Never blocks, allocates or touches the file.
    int32_t readFramesFromRing(float* out, int32_t frames, int32_t outChannels);

    /// Makes the ring and starts the producer at the current position. `maxChannels` is the number of the file's first
    /// channels that the ring keeps; below 1 or above the file's number means all. Ignored when closed or running.
    /// Thread: owner. Allocates 256 KiB for each channel.
    /// Throws std::system_error when the system refuses a thread; the reader then isn't prefetching.
    void startPrefetch(int32_t maxChannels);

    /// Ends the producer and returns when it has ended; ignored without one. Reads go on synchronously from where
    /// `startPrefetch` found the position. Thread: owner.
    void stopPrefetch();

    /// Searches for the chunk `id` (four bytes) from the stream's current position on. `size` takes the size field of
    /// every chunk on the way. On a match the stream stands at the chunk's first body byte, or at its header when
    /// `consumeHeader` is false. Thread: owner, never while prefetching runs. False if the stream fails first.
    bool findChunk(const char* id, uint32_t& size, bool consumeHeader);

    /// The next 2, 4 or 8 bytes of the stream as a little-endian number. Bytes that can't be read count as 0.
    /// Thread: owner, never while prefetching runs.
    uint16_t readUint16LE();
    uint32_t readUint32LE();
    uint64_t readUint64LE();

    /// One stored sample of the open file as a float; 0.0 when closed. `bytes` has four readable bytes for
    /// floats, and as many as a sample is wide otherwise. Thread: any.
    float convertSampleToFloat(const uint8_t* bytes) const;

private:
    // Tests run the producer's passes by hand in their own thread through this.
    friend class PrefetchStepper;

    struct FormatFields {
        uint16_t format = 0;
        uint16_t channels = 0;
        uint32_t rate = 0;
        uint16_t bits = 0;
    };

    // Parsing. All of it leans on the stream's sticky failure: after one failed step every later one fails.
    bool parseHeader();
    bool readFileId();
    bool readDs64(uint64_t& size64);
    bool readFormat();
    bool acceptFormat(const FormatFields& fields);
    bool locateData(uint64_t size64);
    bool readId(const char* id);
    void skipForward(uint32_t bytes);

    // Bytes of one frame in the file; at least 2 when open.
    int64_t frameBytes() const { return static_cast<int64_t>(channels) * bytesPerSample; }
    // `wanted`, or all of the file's channels when it is below 1 or above them.
    int32_t effectiveChannels(int32_t wanted) const;
    void goToFrame(int64_t frame);
    void seekStreamToFrame(int64_t frame);
    void growScratch(int64_t frames);

    // A frame and the number of the seek that led there, in one word: the frame below, the number above it. The frame
    // gets as many bits as this file's frames need, and 32 at least; the number gets the others and begins anew at
    // 0 when they don't hold it. A file that claims 2 to the 62 frames leaves it one value: its position is then
    // the only one that may run a few frames ahead after a seek.
    void divideSeekWord();
    uint64_t seekWord(uint64_t seek, int64_t frame) const;
    uint64_t seekOf(uint64_t word) const { return word >> frameBits; }
    int64_t frameOf(uint64_t word) const;
    // Requester: the word of the next seek, which goes to `frame`.
    uint64_t nextSeekWord(int64_t frame) const;

    // Producer.
    void prepareRing(int32_t maxChannels);
    void prefetchLoop();
    bool prefetchPass(int64_t& frame);
    void takeSeekRequest(int64_t& frame);
    int64_t readBlockAt(int64_t frame, int64_t frames);
    void decodeIntoRing(uint64_t firstIndex, int64_t frames);

    // Consumer.
    bool takeFlush(uint64_t& readIndex, uint64_t& writeIndex);
    void copyFromRing(uint64_t firstIndex, int64_t frames, float* out, int32_t outChannels) const;
    void countFrames(int64_t frames);

    // The file, as found by `open`; constant while prefetching runs.
    std::string filePath; // UTF-8.
    std::ifstream stream; // The producer's alone while it runs.
    bool opened = false;
    bool isRF64 = false;
    int32_t sampleRate = 0; // Hz.
    int32_t channels = 0; // 1 to kMaxChannels.
    int32_t bitsPerSample = 0; // 16, 24 or 32.
    int32_t bytesPerSample = 0; // 2, 3 or 4.
    int32_t formatCode = 0; // kFormatInteger or kFormatFloat.
    uint64_t dataSize = 0; // Bytes of sample data as the file claims.
    int64_t totalFrames = 0; // Whole frames in dataSize.
    std::streampos dataStart = 0; // Position of the first sample byte.
    std::atomic<int64_t> position{ 0 }; // Next frame of the synchronous path; any thread may read it.
    std::vector<uint8_t> scratch; // Raw bytes of a piece of a synchronous read; grows, never shrinks.

    // The ring.
    std::thread prefetchThread;
    std::atomic<bool> prefetchRunning{ false }; // Owner writes; the producer runs and reads branch on it.
    int32_t ringChannels = 0; // Floats of one ring frame, 1 to channels; constant while prefetching runs.
    std::vector<float> ring; // kRingFrames x ringChannels; producer and consumer own disjoint slots.
    std::vector<uint8_t> readBlock; // Raw bytes of one block; producer only.

    // Producer writes with release after the samples; consumer loads with acquire. Counts frames ever
    // written and never wraps back, so "full" and "empty" need no spare slot.
    std::atomic<uint64_t> ringWriteIndex{ 0 };
    // Consumer writes with release after its copy; producer loads with acquire. Frames ever consumed or skipped.
    std::atomic<uint64_t> ringReadIndex{ 0 };
    // Producer increments with release, after flushReadIndex and flushSeek are final; consumer loads with acquire.
    // Counts the seeks carried out.
    std::atomic<uint64_t> flushGeneration{ 0 };
    // Producer writes: ringWriteIndex at the last seek. All frames below it are from before that seek.
    std::atomic<uint64_t> flushReadIndex{ 0 };
    // Producer writes: the number of that seek.
    std::atomic<uint64_t> flushSeek{ 0 };
    uint64_t seenGeneration = 0; // Consumer only: the last generation that it has acted on.
    uint64_t seenSeek = 0; // Consumer only: the number of the seek whose frames it reads.
    int frameBits = 63; // Of a seek's word; constant while prefetching runs.
    // A seek's word. Requester writes with release, producer exchanges it for kNoSeek.
    static constexpr uint64_t kNoSeek = UINT64_MAX;
    std::atomic<uint64_t> seekTarget{ kNoSeek };
    // A seek's word: the file frame that the consumer has reached, or that was sought last. Requester stores, consumer
    // adds in one attempt that fails where a seek came in between; both relaxed.
    std::atomic<uint64_t> ringPosition{ 0 };
};
