// The playback reader over foreign bytes: open, then reads and seeks on both paths as the last bytes of the input say.

#include "tests/audio/PrefetchStepper.h"
#include "tests/support/TempFolder.h"
#include "tests/support/WavBuilder.h"

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

extern "C" size_t LLVMFuzzerMutate(uint8_t* data, size_t size, size_t maxSize);

namespace {

constexpr size_t kStepBytes = 16; // Bytes at the input's end that choose what is done, one step each.
constexpr int32_t kMostFrames = 700;

std::vector<std::string> makeSeeds()
{
    std::vector<std::string> seeds;
    for (const uint16_t bits : { uint16_t{ 16 }, uint16_t{ 24 }, uint16_t{ 32 } }) {
        seeds.push_back(WavBuilder().chunk("bext", "abc").fmt(48000, 2, bits).dataFrames(60).bytes());
        seeds.push_back(WavBuilder().fmt(48000, 5, bits, 3).dataFrames(20).claimSize("data", 0x7FFFFFF0).bytes());
        seeds.push_back(WavBuilder::rf64()
                            .ds64(0xFFFFFFFFFFFFFFF0)
                            .fmt(96000, 64, bits)
                            .dataFrames(3)
                            .claimSize("data", 0xFFFFFFFF)
                            .bytes());
    }
    for (std::string& seed : seeds)
        seed += std::string("\x00\x11\x22\x33\x44\x55\x66\x77\x81\x92\xA3\xB4\xC5\xD6\xE7\xF8", kStepBytes);
    return seeds;
}

// A position anywhere in the claimed range, beyond it or before it.
int64_t somePosition(const WavFileReader& reader, int value)
{
    const int64_t total = reader.getTotalFrames();
    switch (value % 4) {
    case 0:
        return value - 64;
    case 1:
        return total - value;
    case 2:
        return total / 256 * value;
    default:
        return INT64_MAX - value;
    }
}

void check(bool holds)
{
    if (!holds)
        std::abort();
}

void readOnce(WavFileReader& reader, std::vector<float>& out, int value)
{
    const int32_t frames = 1 + value * 37 % kMostFrames;
    const int64_t before = reader.getPosition();
    const int32_t got = reader.readFrames(out.data(), frames, value % 67);
    check(got >= 0 && got <= frames && reader.getPosition() == before + got);
}

void act(WavFileReader& reader, std::vector<float>& out, int value)
{
    switch (value & 3) {
    case 0:
        reader.setPosition(somePosition(reader, value >> 2));
        break;
    case 1:
        reader.seekSeconds((value - 100) * 0.37 * reader.getDuration() / 64.0);
        break;
    default:
        readOnce(reader, out, value);
    }
    check(reader.getPosition() >= 0 && reader.getPosition() <= reader.getTotalFrames());
}

void play(const std::string& path, const uint8_t* steps)
{
    WavFileReader reader;
    if (!reader.open(path))
        return;
    std::vector<float> out(static_cast<size_t>(kMostFrames) * WavFileReader::kMaxChannels);
    for (size_t i = 0; i < kStepBytes / 2; ++i)
        act(reader, out, steps[i]);

    // A ring of all channels takes up to 16 MiB to clear, so it is made for few inputs only.
    PrefetchStepper producer(reader, steps[0] % 64 == 0 ? 0 : 1 + steps[0] % 3);
    for (size_t i = kStepBytes / 2; i < kStepBytes; ++i) {
        producer.pass();
        act(reader, out, steps[i]);
        producer.passUntilIdle(steps[i] % 5);
    }
}

} // namespace

extern "C" size_t LLVMFuzzerCustomMutator(uint8_t* data, size_t size, size_t maxSize, unsigned seed)
{
    static const std::vector<std::string> seeds = makeSeeds();
    const std::string& chosen = seeds[seed % seeds.size()];
    // Without a corpus there is nothing to start from but an empty input.
    if (size < 8 && chosen.size() <= maxSize) {
        std::memcpy(data, chosen.data(), chosen.size());
        return chosen.size();
    }
    return LLVMFuzzerMutate(data, size, maxSize);
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static const TempFolder folder;
    static const std::string path = folder.file("take.wav");
    if (size < kStepBytes)
        return 0;
    writeBytes(path, std::string(reinterpret_cast<const char*>(data), size - kStepBytes));
    play(path, data + size - kStepBytes);
    return 0;
}
