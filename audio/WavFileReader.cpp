#include "audio/WavFileReader.h"

#include "audio/SampleDecode.h"

#include <algorithm>
#include <filesystem>
#include <limits>
#include <system_error>

namespace {

// Bytes of one piece of a synchronous read: with its floats, less than the cache next to a core.
constexpr int64_t kPieceBytes = 262144;
static_assert(kPieceBytes >= WavFileReader::kMaxChannels * 4);

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
    position = 0;
    growScratch(kBlockFrames);
    return true;
}

void WavFileReader::close()
{
    stopPrefetch();
    stream.close();
    stream.clear();
    opened = false;
    isRF64 = false;
    sampleRate = 0;
    channels = 0;
    bitsPerSample = 0;
    bytesPerSample = 0;
    formatCode = 0;
    dataSize = 0;
    totalFrames = 0;
    position = 0;
}

double WavFileReader::getDuration() const
{
    if (sampleRate < 1)
        return 0.0;
    return static_cast<double>(totalFrames) / sampleRate;
}

int64_t WavFileReader::getPosition() const
{
    return isPrefetching() ? frameOf(ringPosition.load()) : position.load();
}

void WavFileReader::setPosition(int64_t frame)
{
    if (!opened)
        return;
    goToFrame(std::clamp<int64_t>(frame, 0, totalFrames));
}

void WavFileReader::seekSeconds(double seconds)
{
    if (sampleRate < 1 || !opened)
        return;
    goToFrame(std::clamp<int64_t>(truncatedToFrame(seconds * sampleRate), 0, totalFrames));
}

void WavFileReader::goToFrame(int64_t frame)
{
    if (isPrefetching()) {
        // The position goes first, so that it has jumped before the first new frame can be counted on top of it.
        const uint64_t word = nextSeekWord(frame);
        ringPosition.store(word, std::memory_order_relaxed);
        seekTarget.store(word, std::memory_order_release);
        return;
    }
    position = frame;
    seekStreamToFrame(frame);
}

// A claimed size near 2 to the 64 has frames that no file offset reaches. Going there fails the stream, as any
// impossible seek does.
void WavFileReader::seekStreamToFrame(int64_t frame)
{
    const std::streamoff start = dataStart;
    if (frame > (std::numeric_limits<std::streamoff>::max() - start) / frameBytes()) {
        stream.setstate(std::ios::failbit);
        return;
    }
    stream.seekg(start + frame * frameBytes(), std::ios::beg);
}

bool WavFileReader::isAtEnd() const
{
    return getPosition() >= totalFrames;
}

int32_t WavFileReader::effectiveChannels(int32_t wanted) const
{
    return wanted < 1 || wanted > channels ? channels : wanted;
}

int32_t WavFileReader::readFrames(float* out, int32_t frames, int32_t outChannels)
{
    if (frames < 1 || !opened)
        return 0;
    if (!isPrefetching())
        return readFramesSync(out, frames, outChannels);
    return readFramesFromRing(out, frames, effectiveChannels(outChannels));
}

// The stream's failure state is left as it is: after a short read nothing more comes until the file is opened again.
// A long read goes piece by piece, so that the bytes of each are decoded while they are in the cache.
int32_t WavFileReader::readFramesSync(float* out, int32_t frames, int32_t outChannels)
{
    const int64_t start = position;
    const int64_t count = std::min<int64_t>(totalFrames - start, frames);
    if (count < 1)
        return 0;
    const FrameDecoder decode = frameDecoder(formatCode, bitsPerSample);
    const int32_t decodedChannels = effectiveChannels(outChannels);
    const int64_t pieceFrames = std::min(count, kPieceBytes / frameBytes());
    growScratch(pieceFrames);

    seekStreamToFrame(start);
    int64_t done = 0;
    while (done < count && stream) {
        const int64_t wanted = std::min(pieceFrames, count - done);
        stream.read(reinterpret_cast<char*>(scratch.data()), wanted * frameBytes());
        const int64_t got = stream.gcount() / frameBytes();
        decode(scratch.data(), got, channels, out + done * decodedChannels, decodedChannels);
        done += got;
    }
    position = start + done;
    return static_cast<int32_t>(done);
}

void WavFileReader::growScratch(int64_t frames)
{
    const size_t size = static_cast<size_t>(frames * frameBytes() + kSampleSlack);
    if (scratch.size() < size)
        scratch.resize(size);
}

float WavFileReader::convertSampleToFloat(const uint8_t* bytes) const
{
    return decodeSample(bytes, formatCode, bitsPerSample);
}
