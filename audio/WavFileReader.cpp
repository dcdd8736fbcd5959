#include "audio/WavFileReader.h"

#include "audio/SampleDecode.h"

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <limits>
#include <system_error>

namespace {

// Bytes of one piece of a synchronous read: with its floats, less than the cache next to a core.
constexpr int64_t kPieceBytes = 262144;
static_assert(kPieceBytes >= int64_t{ WavFileReader::kMaxChannels } * 4);

constexpr std::chrono::nanoseconds kIdleSleep{ 5'000'000 }; // Of the producer without anything to do.

// Opening a pipe would wait for its other end.
bool isRegularFile(const std::string& path)
{
    std::error_code ignored;
    return std::filesystem::is_regular_file(path, ignored);
}

// Cut towards zero. What doesn't fit into 64 bits comes out as the nearest number that does, not-a-number as 0.
int64_t truncatedToFrame(double value)
{
    constexpr double kLimit = 9223372036854775808.0; // 2 to the 63.
    if (value >= kLimit)
        return std::numeric_limits<int64_t>::max();
    if (!(value > 0.0))
        return 0;
    return static_cast<int64_t>(value);
}

// Makes room in `scratch` for `frames` stored frames of a file with this header.
void growScratch(std::vector<uint8_t>& scratch, const WavHeader& header, int64_t frames)
{
    const auto size = static_cast<size_t>(frames * header.frameBytes() + kSampleSlack);
    if (scratch.size() < size)
        scratch.resize(size);
}

} // namespace

WavFileReader::~WavFileReader()
{
    close();
}

bool WavFileReader::open(const std::string& path)
{
    close();
    filePath = path;
    if (isRegularFile(filePath))
        stream.open(filePath, std::ios::binary);
    if (!stream.is_open() || !parseHeader()) {
        close();
        return false;
    }
    opened = true;
    position.store(0, std::memory_order_seq_cst);
    growScratch(scratch, header, PrefetchRing::kBlockFrames);
    return true;
}

void WavFileReader::close()
{
    stopPrefetch();
    producer.reset();
    stream.close();
    stream.clear();
    opened = false;
    header = WavHeader{};
    position.store(0, std::memory_order_seq_cst);
}

bool WavFileReader::parseHeader()
{
    const std::optional<WavHeader> found = readWavHeader(stream);
    header = found.value_or(WavHeader{});
    return found.has_value();
}

double WavFileReader::getDuration() const
{
    if (header.sampleRate < 1)
        return 0.0;
    return static_cast<double>(header.totalFrames) / header.sampleRate;
}

int64_t WavFileReader::getPosition() const
{
    return isPrefetching() ? prefetchRing.position() : position.load(std::memory_order_seq_cst);
}

void WavFileReader::setPosition(int64_t frame)
{
    if (!opened)
        return;
    goToFrame(std::clamp<int64_t>(frame, 0, header.totalFrames));
}

void WavFileReader::seekSeconds(double seconds)
{
    if (header.sampleRate < 1 || !opened)
        return;
    goToFrame(std::clamp<int64_t>(truncatedToFrame(seconds * header.sampleRate), 0, header.totalFrames));
}

void WavFileReader::goToFrame(int64_t frame)
{
    if (isPrefetching()) {
        prefetchRing.requestSeek(frame);
        return;
    }
    position.store(frame, std::memory_order_seq_cst);
    goToWavFrame(stream, header, frame);
}

bool WavFileReader::isAtEnd() const
{
    return getPosition() >= header.totalFrames;
}

int32_t WavFileReader::readFrames(float* out, int32_t frames, int32_t outChannels)
{
    if (frames < 1 || !opened)
        return 0;
    if (!isPrefetching())
        return readFramesSync(out, frames, outChannels);
    return readFramesFromRing(out, frames, header.effectiveChannels(outChannels));
}

// The stream's failure state is left as it is: after a short read nothing more comes until the file is opened again.
// A long read goes piece by piece, so that the bytes of each are decoded while they are in the cache.
int32_t WavFileReader::readFramesSync(float* out, int32_t frames, int32_t outChannels)
{
    const int64_t start = position.load(std::memory_order_seq_cst);
    const int64_t count = std::min<int64_t>(header.totalFrames - start, frames);
    if (count < 1)
        return 0;
    const FrameDecoder decode = frameDecoder(header.formatCode, header.bitsPerSample);
    const int32_t decodedChannels = header.effectiveChannels(outChannels);
    const int64_t pieceFrames = std::min(count, kPieceBytes / header.frameBytes());
    growScratch(scratch, header, pieceFrames);

    goToWavFrame(stream, header, start);
    int64_t done = 0;
    while (done < count && stream) {
        const int64_t wanted = std::min(pieceFrames, count - done);
        stream.read(reinterpret_cast<char*>(scratch.data()), wanted * header.frameBytes());
        const int64_t got = stream.gcount() / header.frameBytes();
        decode(scratch.data(), got, header.channels, out + done * decodedChannels, decodedChannels);
        done += got;
    }
    position.store(start + done, std::memory_order_seq_cst);
    return static_cast<int32_t>(done);
}

void WavFileReader::startPrefetch(int32_t maxChannels)
{
    if (!opened || isPrefetching())
        return;
    startPrefetchByHand(maxChannels);
    try {
        prefetchThread = std::thread(&WavFileReader::prefetchLoop, this);
    } catch (...) {
        prefetchRunning.store(false, std::memory_order_seq_cst);
        throw;
    }
}

PrefetchProducer& WavFileReader::startPrefetchByHand(int32_t maxChannels)
{
    const int64_t first = position.load(std::memory_order_seq_cst);
    prefetchRing.reset(header.effectiveChannels(maxChannels), first, header.totalFrames);
    producer.emplace(prefetchRing, stream, header, first);
    prefetchRunning.store(true, std::memory_order_seq_cst);
    return *producer;
}

void WavFileReader::stopPrefetch()
{
    if (prefetchRunning.exchange(false, std::memory_order_seq_cst) && prefetchThread.joinable())
        prefetchThread.join();
}

void WavFileReader::prefetchLoop()
{
    while (isPrefetching()) {
        if (!producer->pass())
            std::this_thread::sleep_for(kIdleSleep);
    }
}

bool WavFileReader::findChunk(const char* id, uint32_t& size, bool consumeHeader)
{
    return findWavChunk(stream, id, size, consumeHeader);
}

uint16_t WavFileReader::readUint16LE()
{
    return ::readUint16LE(stream);
}

uint32_t WavFileReader::readUint32LE()
{
    return ::readUint32LE(stream);
}

uint64_t WavFileReader::readUint64LE()
{
    return ::readUint64LE(stream);
}

float WavFileReader::convertSampleToFloat(const uint8_t* bytes) const
{
    return decodeSample(bytes, header.formatCode, header.bitsPerSample);
}
