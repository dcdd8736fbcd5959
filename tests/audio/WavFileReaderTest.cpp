#include "audio/WavFileReader.h"

#include "tests/audio/SampleFiles.h"
#include "tests/support/TempFolder.h"
#include "tests/support/WavBuilder.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

#include <array>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <limits>
#include <type_traits>
#include <vector>

static_assert(!std::is_copy_constructible_v<WavFileReader> && !std::is_copy_assignable_v<WavFileReader>);

namespace {

class WavFileReaderTest : public testing::Test {
protected:
    bool open(const WavBuilder& file) { return openBytes(file.bytes()); }
    bool openBytes(const std::string& bytes)
    {
        writeBytes(path, bytes);
        return reader.open(path);
    }

    // What the reader delivers for `frames` frames of `outChannels` channels, with `stride` floats for each.
    std::vector<float> read(int32_t frames, int32_t outChannels, int32_t stride)
    {
        std::vector<float> out(static_cast<size_t>(frames * stride), -99.0f);
        const int32_t got = reader.readFrames(out.data(), frames, outChannels);
        out.resize(static_cast<size_t>(got * stride));
        return out;
    }

    void expectClosed()
    {
        EXPECT_FALSE(reader.isOpen());
        EXPECT_EQ(reader.getSampleRate(), 0);
        EXPECT_EQ(reader.getChannels(), 0);
        EXPECT_EQ(reader.getHeader().bitsPerSample, 0);
        EXPECT_EQ(reader.getHeader().formatCode, 0);
        EXPECT_EQ(reader.getTotalFrames(), 0);
        EXPECT_EQ(reader.getPosition(), 0);
        EXPECT_EQ(reader.getDuration(), 0.0);
        float sample = 5.0f;
        EXPECT_EQ(reader.readFrames(&sample, 1, 1), 0);
        EXPECT_EQ(sample, 5.0f);
    }

    TempFolder folder;
    std::string path = folder.file("take.wav");
    WavFileReader reader;
};

using WavFileReaderHeaderTest = WavFileReaderTest;
using WavFileReaderSeekTest = WavFileReaderTest;
using WavFileReaderReadTest = WavFileReaderTest;
using WavFileReaderHostileTest = WavFileReaderTest;

WavBuilder formatFile(uint16_t channels, uint16_t bits, uint16_t tag = 1)
{
    WavBuilder file;
    file.fmt(48000, channels, bits, tag).data(std::string(1024, '\1'));
    return file;
}

std::string fmtPayload(uint16_t channels, uint16_t bits)
{
    return le16(1) + le16(channels) + le32(48000) + le32(0) + le16(0) + le16(bits);
}

} // namespace

TEST_F(WavFileReaderHeaderTest, newReaderIsClosed)
{
    expectClosed();
    EXPECT_TRUE(reader.isAtEnd());
}

TEST_F(WavFileReaderHeaderTest, openTellsWhatTheFileSays)
{
    ASSERT_TRUE(open(WavBuilder().fmt(96000, 6, 24).dataFrames(100)));
    EXPECT_TRUE(reader.isOpen());
    EXPECT_EQ(reader.getSampleRate(), 96000);
    EXPECT_EQ(reader.getChannels(), 6);
    EXPECT_EQ(reader.getHeader().bitsPerSample, 24);
    EXPECT_EQ(reader.getHeader().formatCode, 1);
    EXPECT_EQ(reader.getTotalFrames(), 100);
    EXPECT_EQ(reader.getPosition(), 0);
    EXPECT_FALSE(reader.isAtEnd());
    EXPECT_FALSE(reader.isPrefetching());
    EXPECT_DOUBLE_EQ(reader.getDuration(), 100.0 / 96000.0);
}

TEST_F(WavFileReaderHeaderTest, oneToSixtyFourChannelsOpen)
{
    for (uint16_t channels = 1; channels <= 64; ++channels) {
        ASSERT_TRUE(open(formatFile(channels, 16)));
        EXPECT_EQ(reader.getChannels(), channels);
    }
}

TEST_F(WavFileReaderHeaderTest, sixtyFiveChannelsDoNotOpen)
{
    EXPECT_FALSE(open(formatFile(65, 16)));
    EXPECT_FALSE(open(formatFile(0xFFFF, 16)));
    expectClosed();
}

TEST_F(WavFileReaderHeaderTest, noChannelsDoNotOpen)
{
    EXPECT_FALSE(open(formatFile(0, 16)));
    expectClosed();
}

TEST_F(WavFileReaderHeaderTest, integerAndFloatFormatsOpen)
{
    for (const uint16_t tag : { uint16_t{ 1 }, uint16_t{ 3 } }) {
        for (const uint16_t bits : { uint16_t{ 16 }, uint16_t{ 24 }, uint16_t{ 32 } }) {
            ASSERT_TRUE(open(formatFile(2, bits, tag)));
            EXPECT_EQ(reader.getHeader().formatCode, tag);
            EXPECT_EQ(reader.getHeader().bitsPerSample, bits);
        }
    }
}

TEST_F(WavFileReaderHeaderTest, eightBitAndOtherWidthsDoNotOpen)
{
    for (const int bits : { 0, 1, 8, 12, 15, 17, 20, 31, 33, 48, 64, 0xFFFF })
        EXPECT_FALSE(open(formatFile(2, static_cast<uint16_t>(bits)))) << bits;
}

TEST_F(WavFileReaderHeaderTest, extensibleAndOtherFormatsDoNotOpen)
{
    for (const int tag : { 0xFFFE, 0, 2, 6, 7, 0x55, 0x0301 })
        EXPECT_FALSE(open(formatFile(2, 16, static_cast<uint16_t>(tag)))) << tag;
}

TEST_F(WavFileReaderHeaderTest, otherFileIdsAndFormTypesDoNotOpen)
{
    EXPECT_FALSE(open(formatFile(1, 16).fileId("RIFX")));
    EXPECT_FALSE(open(formatFile(1, 16).fileId("BW64")));
    EXPECT_FALSE(open(formatFile(1, 16).fileId("riff")));
    EXPECT_FALSE(open(formatFile(1, 16).formType("AVI ")));
}

TEST_F(WavFileReaderHeaderTest, whatIsNoRegularFileDoesNotOpen)
{
    EXPECT_FALSE(reader.open(folder.file("missing.wav")));
    EXPECT_FALSE(reader.open(folder.path().string()));
    EXPECT_FALSE(reader.open(""));
    EXPECT_FALSE(reader.open("/dev/zero"));
    expectClosed();
}

TEST_F(WavFileReaderHeaderTest, pipeDoesNotOpenAndDoesNotWait)
{
    const std::string pipe = folder.file("pipe.wav");
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_FALSE(reader.open(pipe));
}

TEST_F(WavFileReaderHeaderTest, linkToAFileOpens)
{
    formatFile(1, 16).write(path);
    std::filesystem::create_symlink(path, folder.file("link.wav"));
    EXPECT_TRUE(reader.open(folder.file("link.wav")));
}

TEST_F(WavFileReaderHeaderTest, fileCutAnywhereBeforeItsSamplesDoesNotOpen)
{
    const WavBuilder riff = WavBuilder().chunk("junk", "abc").fmt(48000, 2, 16).dataFrames(4);
    const WavBuilder rf64 = WavBuilder::rf64().ds64(16).fmt(48000, 2, 16).dataFrames(4).claimSize("data", 0xFFFFFFFF);
    for (const WavBuilder& whole : { riff, rf64 }) {
        const size_t start = whole.payloadOffset("data");
        for (size_t size = 0; size < start; ++size)
            EXPECT_FALSE(open(WavBuilder(whole).truncateTo(size))) << size;
        EXPECT_TRUE(open(WavBuilder(whole).truncateTo(start)));
    }
}

TEST_F(WavFileReaderHeaderTest, dataBeforeFmtDoesNotOpen)
{
    EXPECT_FALSE(open(WavBuilder().data(std::string(64, '\0')).fmt(48000, 1, 16)));
}

TEST_F(WavFileReaderHeaderTest, fileWithoutDataDoesNotOpen)
{
    EXPECT_FALSE(open(WavBuilder().fmt(48000, 1, 16).chunk("LIST", "abcd")));
}

TEST_F(WavFileReaderHeaderTest, otherChunksAreWalkedOverWithTheirPadBytes)
{
    const std::string big(70001, 'x');
    ASSERT_TRUE(open(WavBuilder()
                         .chunk("bext", "abc")
                         .chunk("iXML", big)
                         .fmt(48000, 1, 16)
                         .chunk("odd ", "1")
                         .chunk("big ", big)
                         .chunk("none", "")
                         .data(le16(0x4000))));
    EXPECT_EQ(read(1, 1, 1), std::vector<float>{ 0.5f });
}

TEST_F(WavFileReaderHeaderTest, oddChunkWithoutPadByteLosesTheWalk)
{
    EXPECT_FALSE(open(WavBuilder().chunk("odd ", "abc").omitPadByte().fmt(48000, 1, 16).dataFrames(4)));
}

TEST_F(WavFileReaderHeaderTest, chunkThatClaimsMoreThanTheFileLosesTheWalk)
{
    EXPECT_FALSE(
        open(WavBuilder().chunk("junk", "abcd").claimSize("junk", 0x7FFFFFFF).fmt(48000, 1, 16).dataFrames(4)));
    EXPECT_FALSE(open(WavBuilder().chunk("junk", "abcd").claimSize("junk", 3000).fmt(48000, 1, 16).dataFrames(4)));
    EXPECT_FALSE(
        open(WavBuilder().chunk("junk", "abcd").claimSize("junk", 0xFFFFFFFE).fmt(48000, 1, 16).dataFrames(4)));
}

TEST_F(WavFileReaderHeaderTest, chunkOfLargestOddSizeSkipsNothing)
{
    // The size and its pad byte add up to 0 in 32 bits.
    EXPECT_TRUE(open(WavBuilder().chunk("junk", "").claimSize("junk", 0xFFFFFFFF).fmt(48000, 1, 16).dataFrames(4)));
}

TEST_F(WavFileReaderHeaderTest, silenceBetweenChunksIsPassedByWhateverItsLength)
{
    const WavBuilder head = WavBuilder().fmt(48000, 1, 16);
    const std::string tail = WavBuilder().data(le16(0x4000)).bytes().substr(12);
    for (const size_t around : { size_t{ 0 }, size_t{ 4096 }, size_t{ 8192 }, size_t{ 12288 }, size_t{ 1048576 } }) {
        for (size_t headers = around < 16 ? 0 : around / 8 - 2; headers <= around / 8 + 2; ++headers) {
            ASSERT_TRUE(openBytes(head.bytes() + std::string(headers * 8, '\0') + tail)) << headers;
            EXPECT_EQ(reader.getTotalFrames(), 1);
            EXPECT_EQ(read(1, 1, 1), std::vector<float>{ 0.5f }) << headers;
        }
    }
}

TEST_F(WavFileReaderHeaderTest, manyChunksAndShortSilencesMakeNoLongSilence)
{
    WavBuilder builder;
    builder.fmt(48000, 1, 16);
    for (int i = 0; i < 700; ++i) {
        builder.chunk("junk", "not a header of its own!").chunk("junk", "nor is this");
        builder.chunk(std::string(4, '\0'), "");
    }
    ASSERT_TRUE(open(builder.data(le16(0x4000))));
    EXPECT_EQ(read(1, 1, 1), std::vector<float>{ 0.5f });
}

TEST_F(WavFileReaderHeaderTest, silenceThatIsNoWholeNumberOfHeadersLosesTheWalk)
{
    const std::string head = WavBuilder().fmt(48000, 1, 16).bytes();
    const std::string tail = WavBuilder().dataFrames(0).bytes().substr(12);
    for (const size_t bytes : { size_t{ 7 }, size_t{ 4097 }, size_t{ 8195 }, size_t{ 100004 } })
        EXPECT_FALSE(openBytes(head + std::string(bytes, '\0') + tail)) << bytes;
}

TEST_F(WavFileReaderHeaderTest, silenceUpToTheFilesEndIsNoChunk)
{
    for (size_t bytes = 8190; bytes <= 8202; ++bytes) {
        ASSERT_TRUE(openBytes(WavBuilder().fmt(48000, 1, 16).data("").bytes() + std::string(bytes, '\0')));
        uint32_t size = 7;
        EXPECT_FALSE(reader.findChunk("last", size, true));
        EXPECT_EQ(size, 0u) << bytes;
        EXPECT_FALSE(reader.findChunk("last", size, true)) << "the stream has failed";
    }
}

TEST_F(WavFileReaderHeaderTest, aChunkWithoutAnIdIsFoundInSilence)
{
    ASSERT_TRUE(openBytes(WavBuilder().fmt(48000, 1, 16).data("").bytes() + std::string(10000, '\0')));
    const char none[4] = {};
    uint32_t size = 7;
    for (int i = 0; i < 1250; ++i)
        ASSERT_TRUE(reader.findChunk(none, size, true)) << i;
    EXPECT_FALSE(reader.findChunk(none, size, true));
}

TEST_F(WavFileReaderHeaderTest, longFmtIsLeftBehindWhole)
{
    ASSERT_TRUE(open(WavBuilder().chunk("fmt ", fmtPayload(1, 16) + std::string(24, 'x')).data(le16(0x4000))));
    EXPECT_EQ(read(1, 1, 1), std::vector<float>{ 0.5f });
}

TEST_F(WavFileReaderHeaderTest, oddFmtLeavesTheWalkOneByteShort)
{
    EXPECT_FALSE(open(WavBuilder().chunk("fmt ", fmtPayload(1, 16) + "x").data(le16(0x4000))));
    EXPECT_TRUE(open(WavBuilder().chunk("fmt ", fmtPayload(1, 16) + "x").omitPadByte().data(le16(0x4000))));
}

TEST_F(WavFileReaderHeaderTest, shortFmtIsReadAsSixteenBytes)
{
    ASSERT_TRUE(open(WavBuilder().chunk("fmt ", fmtPayload(3, 24)).claimSize("fmt ", 2).dataFrames(0)));
    EXPECT_EQ(reader.getChannels(), 3);
    EXPECT_EQ(reader.getHeader().bitsPerSample, 24);
}

TEST_F(WavFileReaderHeaderTest, firstFmtCounts)
{
    ASSERT_TRUE(open(WavBuilder().fmt(44100, 2, 16).fmt(96000, 4, 24).dataFrames(3)));
    EXPECT_EQ(reader.getSampleRate(), 44100);
}

TEST_F(WavFileReaderHeaderTest, rf64TakesTheSizeFromDs64WhenTheChunkHasNone)
{
    ASSERT_TRUE(open(WavBuilder::rf64().ds64(40).fmt(48000, 2, 16).dataFrames(100).claimSize("data", 0xFFFFFFFF)));
    EXPECT_EQ(reader.getTotalFrames(), 10);
}

TEST_F(WavFileReaderHeaderTest, rf64KeepsAnyOtherSizeOfTheChunk)
{
    ASSERT_TRUE(open(WavBuilder::rf64().ds64(40).fmt(48000, 2, 16).dataFrames(100)));
    EXPECT_EQ(reader.getTotalFrames(), 100);
    ASSERT_TRUE(open(WavBuilder::rf64().ds64(40).fmt(48000, 2, 16).dataFrames(100).claimSize("data", 0xFFFFFFFE)));
    EXPECT_EQ(reader.getTotalFrames(), 0xFFFFFFFELL / 4);
}

TEST_F(WavFileReaderHeaderTest, riffTakesTheLargestSizeAsItStands)
{
    ASSERT_TRUE(open(WavBuilder().ds64(40).fmt(48000, 2, 16).dataFrames(100).claimSize("data", 0xFFFFFFFF)));
    EXPECT_EQ(reader.getTotalFrames(), 0xFFFFFFFFLL / 4);
}

TEST_F(WavFileReaderHeaderTest, rf64NeedsDs64AsItsVeryFirstChunk)
{
    EXPECT_FALSE(open(WavBuilder::rf64().chunk("JUNK", "abcd").ds64(40).fmt(48000, 2, 16).dataFrames(100)));
    EXPECT_FALSE(open(WavBuilder::rf64().fmt(48000, 2, 16).dataFrames(100)));
}

TEST_F(WavFileReaderHeaderTest, ds64IsLeftBehindWithoutRegardToAPadByte)
{
    const std::string fields = le64(0) + le64(40) + le64(0);
    const auto file = [&](const std::string& rest, bool padded) {
        WavBuilder builder = WavBuilder::rf64();
        builder.chunk("ds64", fields + rest);
        if (!padded)
            builder.omitPadByte();
        return builder.fmt(48000, 2, 16).dataFrames(100).claimSize("data", 0xFFFFFFFF);
    };
    EXPECT_TRUE(open(file("", true)));
    EXPECT_TRUE(open(file(std::string(400, 'x'), true)));
    EXPECT_FALSE(open(file("x", true)));
    EXPECT_TRUE(open(file("x", false)));
}

TEST_F(WavFileReaderHeaderTest, shortDs64IsReadAsTwentyFourBytes)
{
    const std::string fields = le64(0) + le64(40) + le64(0);
    ASSERT_TRUE(open(WavBuilder::rf64()
                         .chunk("ds64", fields)
                         .claimSize("ds64", 0)
                         .fmt(48000, 2, 16)
                         .dataFrames(100)
                         .claimSize("data", 0xFFFFFFFF)));
    EXPECT_EQ(reader.getTotalFrames(), 10);
}

TEST_F(WavFileReaderHeaderTest, emptyDataOpensAtItsEnd)
{
    ASSERT_TRUE(open(WavBuilder().fmt(48000, 2, 16).dataFrames(0)));
    EXPECT_EQ(reader.getTotalFrames(), 0);
    EXPECT_EQ(reader.getDuration(), 0.0);
    EXPECT_TRUE(reader.isAtEnd());
    EXPECT_TRUE(read(1, 2, 2).empty());
}

TEST_F(WavFileReaderHeaderTest, bytesThatMakeNoWholeFrameDoNotCount)
{
    ASSERT_TRUE(open(WavBuilder().fmt(48000, 2, 24).data(std::string(6 * 5 + 5, '\0'))));
    EXPECT_EQ(reader.getTotalFrames(), 5);
}

TEST_F(WavFileReaderHeaderTest, sampleRateIsNotJudged)
{
    ASSERT_TRUE(open(WavBuilder().fmt(0, 1, 16).dataFrames(10)));
    EXPECT_EQ(reader.getSampleRate(), 0);
    EXPECT_EQ(reader.getDuration(), 0.0);
    ASSERT_TRUE(open(WavBuilder().fmt(0xFFFFFFFF, 1, 16).dataFrames(10)));
    EXPECT_EQ(reader.getSampleRate(), -1);
    EXPECT_EQ(reader.getDuration(), 0.0);
}

TEST_F(WavFileReaderHeaderTest, failedOpenClosesWhatWasOpen)
{
    ASSERT_TRUE(open(formatFile(2, 16)));
    EXPECT_FALSE(reader.open(folder.file("missing.wav")));
    expectClosed();
}

TEST_F(WavFileReaderHeaderTest, closeForgetsTheFileAndMayBeRepeated)
{
    ASSERT_TRUE(open(formatFile(2, 16)));
    reader.setPosition(5);
    reader.close();
    reader.close();
    expectClosed();
}

TEST_F(WavFileReaderHeaderTest, rf64IsForgottenByTheNextOpen)
{
    ASSERT_TRUE(open(WavBuilder::rf64().ds64(40).fmt(48000, 2, 16).dataFrames(100)));
    ASSERT_TRUE(open(WavBuilder().fmt(48000, 2, 16).dataFrames(100).claimSize("data", 0xFFFFFFFF)));
    EXPECT_EQ(reader.getTotalFrames(), 0xFFFFFFFFLL / 4);
}

TEST_F(WavFileReaderHeaderTest, findChunkStopsAtTheBodyOrBackAtTheHeader)
{
    ASSERT_TRUE(open(WavBuilder().fmt(48000, 1, 16).dataFrames(0).chunk("LIST", "ab").chunk("tail", le32(0xA1B2C3D4))));
    uint32_t size = 0;
    ASSERT_TRUE(reader.findChunk("tail", size, false));
    EXPECT_EQ(size, 4u);
    ASSERT_TRUE(reader.findChunk("tail", size, true));
    EXPECT_EQ(reader.readUint32LE(), 0xA1B2C3D4u);
}

TEST_F(WavFileReaderHeaderTest, findChunkGivesTheSizeOfEachChunkOnItsWay)
{
    ASSERT_TRUE(open(
        WavBuilder().fmt(48000, 1, 16).dataFrames(0).chunk("LIST", "abcdef").chunk("huge", "").claimSize("huge", 900)));
    uint32_t size = 0;
    reader.findChunk("huge", size, true);
    EXPECT_EQ(size, 900u);
    EXPECT_FALSE(reader.findChunk("none", size, true));
}

TEST_F(WavFileReaderHeaderTest, numbersAreReadLowByteFirst)
{
    ASSERT_TRUE(open(WavBuilder()
                         .fmt(48000, 1, 16)
                         .dataFrames(0)
                         .trailing(le16(0x8102) + le32(0x83040506) + le64(0x8708090A0B0C0D0EULL))));
    EXPECT_EQ(reader.readUint16LE(), 0x8102);
    EXPECT_EQ(reader.readUint32LE(), 0x83040506u);
    EXPECT_EQ(reader.readUint64LE(), 0x8708090A0B0C0D0EULL);
}

TEST_F(WavFileReaderSeekTest, positionsAreClampedToTheFile)
{
    ASSERT_TRUE(open(numberedFile(100, 1)));
    reader.setPosition(-1);
    EXPECT_EQ(reader.getPosition(), 0);
    reader.setPosition(99);
    EXPECT_EQ(reader.getPosition(), 99);
    EXPECT_FALSE(reader.isAtEnd());
    reader.setPosition(101);
    EXPECT_EQ(reader.getPosition(), 100);
    EXPECT_TRUE(reader.isAtEnd());
    reader.setPosition(std::numeric_limits<int64_t>::min());
    EXPECT_EQ(reader.getPosition(), 0);
    reader.setPosition(std::numeric_limits<int64_t>::max());
    EXPECT_EQ(reader.getPosition(), 100);
}

TEST_F(WavFileReaderSeekTest, secondsBeyondTheEndsAreClamped)
{
    ASSERT_TRUE(open(numberedFile(100, 1)));
    for (const double late : { 1.0, 1e9, 1e300, std::numeric_limits<double>::infinity() }) {
        reader.seekSeconds(late);
        EXPECT_EQ(reader.getPosition(), 100) << late;
    }
    for (const double early : { -1e-9, -1.0, -1e300, -std::numeric_limits<double>::infinity(), std::nan("") }) {
        reader.seekSeconds(early);
        EXPECT_EQ(reader.getPosition(), 0) << early;
    }
}

TEST_F(WavFileReaderSeekTest, secondsAreCutToTheFrameBefore)
{
    ASSERT_TRUE(open(numberedFile(100, 1)));
    reader.seekSeconds(10.99 / 48000.0);
    EXPECT_EQ(reader.getPosition(), 10);
}

TEST_F(WavFileReaderSeekTest, secondsMeanNothingWithoutASampleRate)
{
    ASSERT_TRUE(open(WavBuilder().fmt(0, 1, 16).dataFrames(10)));
    reader.setPosition(3);
    reader.seekSeconds(0.0);
    EXPECT_EQ(reader.getPosition(), 3);
}

TEST_F(WavFileReaderSeekTest, closedReaderIgnoresSeeks)
{
    reader.setPosition(3);
    reader.seekSeconds(1.0);
    EXPECT_EQ(reader.getPosition(), 0);
}

TEST_F(WavFileReaderSeekTest, readsGoOnFromTheNewPosition)
{
    ASSERT_TRUE(open(numberedFile(100, 2)));
    reader.setPosition(40);
    EXPECT_EQ(read(2, 2, 2), (std::vector<float>{ 80, 81, 82, 83 }));
    reader.setPosition(7);
    EXPECT_EQ(read(1, 2, 2), (std::vector<float>{ 14, 15 }));
    EXPECT_EQ(reader.getPosition(), 8);
}

TEST_F(WavFileReaderReadTest, everyFormatIsDecodedInEveryChannelCount)
{
    // Byte patterns as they lie in the file; 0.5, -1.0 and a quarter in each format.
    const std::array<std::pair<uint16_t, std::array<std::string, 3>>, 4> rows = { {
        { 16, { le16(0x4000), le16(0x8000), le16(0x2000) } },
        { 24, { std::string("\0\0\x40", 3), std::string("\0\0\x80", 3), std::string("\0\0\x20", 3) } },
        { 32, { le32(0x40000000), le32(0x80000000), le32(0x20000000) } },
        { 3, { le32(0x3F000000), le32(0xBF800000), le32(0x3E800000) } },
    } };
    constexpr std::array<float, 3> kValues = { 0.5f, -1.0f, 0.25f };
    for (const auto& [bits, patterns] : rows) {
        for (uint16_t channels = 1; channels <= 64; ++channels) {
            std::string payload;
            std::vector<float> expected;
            for (size_t i = 0; i < 50u * channels; ++i) {
                payload += patterns[i % 3];
                expected.push_back(kValues[i % 3]);
            }
            const bool isFloat = bits == 3;
            ASSERT_TRUE(open(WavBuilder().fmt(48000, channels, isFloat ? 32 : bits, isFloat ? 3 : 1).data(payload)));
            ASSERT_EQ(read(50, channels, channels), expected) << bits << " bits, " << channels << " channels";
        }
    }
}

TEST_F(WavFileReaderReadTest, oneSampleFollowsTheFormatOfTheFile)
{
    const uint8_t bytes[4] = { 0x00, 0x00, 0x80, 0x3F };
    EXPECT_EQ(reader.convertSampleToFloat(bytes), 0.0f);
    ASSERT_TRUE(open(formatFile(1, 24)));
    EXPECT_EQ(reader.convertSampleToFloat(bytes), -1.0f);
    ASSERT_TRUE(open(formatFile(1, 16)));
    EXPECT_EQ(reader.convertSampleToFloat(bytes + 1), -1.0f);
    ASSERT_TRUE(open(formatFile(1, 32, 3)));
    EXPECT_EQ(reader.convertSampleToFloat(bytes), 1.0f);
}

TEST_F(WavFileReaderReadTest, firstChannelsComeWithTheirOwnStride)
{
    ASSERT_TRUE(open(numberedFile(100, 6)));
    EXPECT_EQ(read(3, 2, 2), (std::vector<float>{ 0, 1, 6, 7, 12, 13 }));
}

TEST_F(WavFileReaderReadTest, channelCountsOutsideTheFileMeanAllChannels)
{
    for (const int32_t wanted : { 0, 7, -1, 1000 }) {
        ASSERT_TRUE(open(numberedFile(100, 6)));
        EXPECT_EQ(read(2, wanted, 6), (std::vector<float>{ 0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11 })) << wanted;
    }
}

TEST_F(WavFileReaderReadTest, askingForNoFramesGivesNone)
{
    ASSERT_TRUE(open(numberedFile(100, 1)));
    float sample = 5.0f;
    EXPECT_EQ(reader.readFrames(&sample, 0, 1), 0);
    EXPECT_EQ(reader.readFrames(&sample, -3, 1), 0);
    EXPECT_EQ(sample, 5.0f);
    EXPECT_EQ(reader.getPosition(), 0);
}

TEST_F(WavFileReaderReadTest, lastReadIsShortAndTheNextGivesNothing)
{
    ASSERT_TRUE(open(numberedFile(100, 1).chunk("tail", "abcd")));
    EXPECT_EQ(read(70, 1, 1).size(), 70u);
    EXPECT_EQ(read(70, 1, 1).size(), 30u);
    EXPECT_TRUE(reader.isAtEnd());
    EXPECT_TRUE(read(70, 1, 1).empty());
    EXPECT_EQ(reader.getPosition(), 100);
    reader.setPosition(99);
    EXPECT_EQ(read(70, 1, 1), std::vector<float>{ 99 });
}

TEST_F(WavFileReaderReadTest, oneReadMayTakeMoreThanABlock)
{
    constexpr int32_t kFrames = 3 * PrefetchRing::kBlockFrames + 5;
    ASSERT_TRUE(open(numberedFile(kFrames, 2)));
    const std::vector<float> all = read(kFrames, 2, 2);
    ASSERT_EQ(all.size(), 2u * kFrames);
    for (size_t i = 0; i < all.size(); ++i)
        ASSERT_EQ(all[i], static_cast<float>(i));
}

TEST_F(WavFileReaderReadTest, longReadOfManyPiecesIsWholeAndCutWhereTheFileEnds)
{
    constexpr int32_t kFrames = 200000;
    const WavBuilder whole = numberedFile(kFrames, 3);
    ASSERT_TRUE(open(WavBuilder(whole).truncateTo(whole.payloadOffset("data") + 12 * 150000 + 5)));
    const std::vector<float> out = read(kFrames, 2, 2);
    ASSERT_EQ(out.size(), 2u * 150000);
    for (size_t i = 0; i < out.size(); ++i)
        ASSERT_EQ(out[i], static_cast<float>(i / 2 * 3 + i % 2));
    EXPECT_EQ(reader.getPosition(), 150000);
    EXPECT_TRUE(read(1, 1, 1).empty());
}

TEST_F(WavFileReaderReadTest, narrowFloatFilesDeliverTheirFrames)
{
    ASSERT_TRUE(open(WavBuilder().fmt(48000, 2, 24, 3).dataFrames(9000)));
    EXPECT_EQ(read(9000, 2, 2).size(), 18000u);
    ASSERT_TRUE(open(WavBuilder().fmt(48000, 64, 16, 3).dataFrames(50)));
    EXPECT_EQ(read(50, 1, 1).size(), 50u);
}

TEST_F(WavFileReaderHostileTest, fileCutInItsDataDeliversWhatIsThereAndNeverEnds)
{
    const WavBuilder whole = numberedFile(100, 2);
    ASSERT_TRUE(open(WavBuilder(whole).truncateTo(whole.payloadOffset("data") + 8 * 10 + 3)));
    EXPECT_EQ(reader.getTotalFrames(), 100);
    EXPECT_EQ(read(50, 2, 2).size(), 20u);
    EXPECT_EQ(reader.getPosition(), 10);
    EXPECT_TRUE(read(50, 2, 2).empty());
    EXPECT_FALSE(reader.isAtEnd());
}

TEST_F(WavFileReaderHostileTest, shortReadSilencesTheReaderUntilItIsOpenedAgain)
{
    const WavBuilder whole = numberedFile(100, 1);
    ASSERT_TRUE(open(WavBuilder(whole).truncateTo(whole.payloadOffset("data") + 4 * 10)));
    EXPECT_EQ(read(50, 1, 1).size(), 10u);
    reader.setPosition(0);
    EXPECT_EQ(reader.getPosition(), 0);
    EXPECT_TRUE(read(5, 1, 1).empty());
    ASSERT_TRUE(reader.open(path));
    EXPECT_EQ(read(5, 1, 1).size(), 5u);
}

TEST_F(WavFileReaderHostileTest, readThatEndsWithTheCutFileIsNotShort)
{
    const WavBuilder whole = numberedFile(100, 1);
    ASSERT_TRUE(open(WavBuilder(whole).truncateTo(whole.payloadOffset("data") + 4 * 10)));
    EXPECT_EQ(read(10, 1, 1).size(), 10u);
    reader.setPosition(0);
    EXPECT_EQ(read(10, 1, 1).size(), 10u);
}

TEST_F(WavFileReaderHostileTest, fileThatShrinksWhileOpenGivesAShortRead)
{
    ASSERT_TRUE(open(numberedFile(100000, 1)));
    EXPECT_EQ(read(10, 1, 1).size(), 10u);
    std::filesystem::resize_file(path, 44 + 4 * 50000);
    EXPECT_EQ(read(100000, 1, 1).size(), 49990u);
    std::filesystem::resize_file(path, 0);
    reader.setPosition(0);
    EXPECT_TRUE(read(10, 1, 1).empty());
    EXPECT_FALSE(reader.isAtEnd());
}

TEST_F(WavFileReaderHostileTest, dataSizeNearTheLimitOfItsFieldIsCountedWithoutOverflow)
{
    for (const uint64_t size :
        { 0xFFFFFFFFFFFFFFFFULL, 0xFFFFFFFFFFFFFFFEULL, 0x8000000000000000ULL, 0x7FFFFFFFFFFFFFFFULL }) {
        ASSERT_TRUE(
            open(WavBuilder::rf64().ds64(size).fmt(48000, 1, 16).data(le16(0x4000)).claimSize("data", 0xFFFFFFFF)));
        EXPECT_EQ(reader.getTotalFrames(), static_cast<int64_t>(size / 2));
        EXPECT_DOUBLE_EQ(reader.getDuration(), static_cast<double>(size / 2) / 48000.0);
        EXPECT_EQ(read(1, 1, 1), std::vector<float>{ 0.5f });
        EXPECT_FALSE(reader.isAtEnd());
        EXPECT_TRUE(read(1, 1, 1).empty());
    }
}

TEST_F(WavFileReaderHostileTest, positionsThatNoFileReachesAreKeptAndGiveNothing)
{
    const WavBuilder file = WavBuilder::rf64()
                                .ds64(0xFFFFFFFFFFFFFFFF)
                                .fmt(48000, 1, 16)
                                .data(le16(0x4000))
                                .claimSize("data", 0xFFFFFFFF);
    for (const int64_t frame :
        { int64_t{ 0x7FFFFFFFFFFFFFFE }, int64_t{ 0x4000000000000000 }, int64_t{ 0x3FFFFFFFFFFFFFF0 } }) {
        ASSERT_TRUE(open(file));
        reader.setPosition(frame);
        EXPECT_EQ(reader.getPosition(), frame);
        EXPECT_TRUE(read(1, 1, 1).empty());
    }
    ASSERT_TRUE(open(file));
    reader.seekSeconds(std::numeric_limits<double>::infinity());
    EXPECT_EQ(reader.getPosition(), reader.getTotalFrames());
    EXPECT_TRUE(reader.isAtEnd());
    EXPECT_TRUE(read(1, 1, 1).empty());
}

TEST_F(WavFileReaderHostileTest, framesBeyondFourGibibytesAreReached)
{
    // Sparse: 64 channels of 32 bits, the last frame behind 4 GiB of zeros.
    constexpr int64_t kFrames = (int64_t{ 1 } << 32) / 256 + 1;
    const WavBuilder head
        = WavBuilder::rf64().ds64(kFrames * 256).fmt(48000, 64, 32, 3).data("").claimSize("data", 0xFFFFFFFF);
    head.write(path);
    const auto start = static_cast<int64_t>(std::filesystem::file_size(path));
    std::filesystem::resize_file(path, static_cast<uintmax_t>(start + (kFrames - 1) * 256));
    std::ofstream(path, std::ios::binary | std::ios::app) << numberedFloats(1, 64);

    ASSERT_TRUE(reader.open(path));
    EXPECT_EQ(reader.getTotalFrames(), kFrames);
    reader.setPosition(kFrames - 2);
    const std::vector<float> out = read(8, 2, 2);
    EXPECT_EQ(out, (std::vector<float>{ 0, 0, 0, 1 }));
    EXPECT_TRUE(reader.isAtEnd());
}
