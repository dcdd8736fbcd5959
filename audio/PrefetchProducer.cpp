#include "audio/PrefetchProducer.h"

#include "audio/SampleDecode.h"

#include <algorithm>

PrefetchProducer::PrefetchProducer(PrefetchRing& target, std::istream& file, const WavHeader& format, int64_t first)
    : prefetchRing(target)
    , stream(file)
    , header(format)
    , frame(first)
    , readBlock(static_cast<size_t>(format.frameBytes() * PrefetchRing::kBlockFrames + kSampleSlack))
{
}

bool PrefetchProducer::pass()
{
    if (takeSeek())
        prefetchRing.announceFlush();
    const int64_t left = header.totalFrames - frame;
    if (!prefetchRing.hasRoom() || left < 1)
        return false;

    const int64_t got = readBlockAt(frame, std::min<int64_t>(PrefetchRing::kBlockFrames, left));
    if (got < 1)
        return false;
    decodeIntoRing(got);
    prefetchRing.publish(got);
    frame += got;
    return true;
}

bool PrefetchProducer::takeSeek()
{
    const std::optional<int64_t> target = prefetchRing.takeSeek();
    if (target)
        frame = *target;
    return target.has_value();
}

// Frames really read. Each block clears the stream's failure and seeks, so that a file that was short a moment ago is
// tried anew.
int64_t PrefetchProducer::readBlockAt(int64_t firstFrame, int64_t frames)
{
    stream.clear();
    goToWavFrame(stream, header, firstFrame);
    stream.read(reinterpret_cast<char*>(readBlock.data()), frames * header.frameBytes());
    return stream.gcount() / header.frameBytes();
}

void PrefetchProducer::decodeIntoRing(int64_t frames)
{
    const FrameDecoder decode = frameDecoder(header.formatCode, header.bitsPerSample);
    const PrefetchRing::Region region = prefetchRing.writable(frames);
    const int32_t kept = prefetchRing.channels();
    const uint8_t* rest = readBlock.data() + region.head.frames * header.frameBytes();
    decode(readBlock.data(), region.head.frames, header.channels, region.head.samples, kept);
    decode(rest, region.tail.frames, header.channels, region.tail.samples, kept);
}
