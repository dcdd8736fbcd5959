// The ring in one thread: the test plays producer, consumer and requester in turn.

#include "tests/audio/AllocationCounter.h"
#include "tests/audio/PrefetchStepper.h"
#include "tests/audio/SampleFiles.h"
#include "tests/support/TempFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <limits>
#include <memory>
#include <string>
#include <vector>

namespace {

constexpr int64_t kBlock = PrefetchRing::kBlockFrames;
constexpr int64_t kRing = PrefetchRing::kFrames;
constexpr int64_t kDataOffset = 44;

class PrefetchRingTest : public testing::Test {
protected:
    void start(int64_t frames, int32_t fileChannels = 1, int32_t maxChannels = 0)
    {
        numberedFile(frames, fileChannels).write(path);
        channels = fileChannels;
        ASSERT_TRUE(reader.open(path));
        producer = std::make_unique<PrefetchStepper>(reader, maxChannels);
    }

    std::vector<float> read(int64_t frames, int32_t outChannels = 0)
    {
        const int32_t stride = outChannels < 1 || outChannels > channels ? channels : outChannels;
        std::vector<float> out(static_cast<size_t>(frames * stride), -99.0f);
        const int32_t got = reader.readFrames(out.data(), static_cast<int32_t>(frames), outChannels);
        out.resize(static_cast<size_t>(got) * static_cast<size_t>(stride));
        return out;
    }

    // Reads `frames` frames of a mono file in one go and expects them to be those from `first` on.
    void expectFrames(int64_t first, int64_t frames)
    {
        const std::vector<float> out = read(frames);
        ASSERT_EQ(static_cast<int64_t>(out.size()), frames);
        for (int64_t i = 0; i < frames; ++i)
            ASSERT_EQ(out[static_cast<size_t>(i)], static_cast<float>(first + i)) << "frame " << i;
    }

    TempFolder folder;
    std::string path = folder.file("take.wav");
    int32_t channels = 1;
    WavFileReader reader;
    std::unique_ptr<PrefetchStepper> producer;
};

} // namespace

TEST_F(PrefetchRingTest, ringKeepsAllChannelsForZeroOrTooMany)
{
    for (const int32_t wanted : { 0, -1, 7, 1000 }) {
        start(10, 6, wanted);
        EXPECT_EQ(producer->ring().channels(), 6) << wanted;
        EXPECT_EQ(producer->ring().sampleCount(), 6u * kRing);
        producer.reset();
    }
}

TEST_F(PrefetchRingTest, channelsThatTheRingDoesNotKeepComeOutSilent)
{
    start(10, 6, 2);
    EXPECT_EQ(producer->ring().channels(), 2);
    producer->pass();
    EXPECT_EQ(read(2, 6), (std::vector<float>{ 0, 1, 0, 0, 0, 0, 6, 7, 0, 0, 0, 0 }));
    EXPECT_EQ(read(2, 1), (std::vector<float>{ 12, 18 }));
    EXPECT_EQ(read(2, 2), (std::vector<float>{ 24, 25, 30, 31 }));
    EXPECT_EQ(read(2, 3), (std::vector<float>{ 36, 37, 0, 42, 43, 0 }));
}

TEST_F(PrefetchRingTest, channelCountsOutsideTheFileMeanAllChannels)
{
    start(10, 3);
    producer->pass();
    EXPECT_EQ(read(1, 0), (std::vector<float>{ 0, 1, 2 }));
    EXPECT_EQ(read(1, 4), (std::vector<float>{ 3, 4, 5 }));
}

TEST_F(PrefetchRingTest, emptyRingGivesNothingAndLeavesThePosition)
{
    start(10);
    EXPECT_TRUE(read(5).empty());
    EXPECT_EQ(reader.getPosition(), 0);
    EXPECT_EQ(producer->ring().framesRead(), 0u);
    EXPECT_FALSE(reader.isAtEnd());
}

TEST_F(PrefetchRingTest, firstFramesAreThoseOfThePositionAtTheStart)
{
    numberedFile(100, 1).write(path);
    ASSERT_TRUE(reader.open(path));
    reader.setPosition(40);
    producer = std::make_unique<PrefetchStepper>(reader);
    EXPECT_EQ(reader.getPosition(), 40);
    producer->pass();
    expectFrames(40, 5);
    EXPECT_EQ(reader.getPosition(), 45);
}

TEST_F(PrefetchRingTest, ringHoldsExactlyItsCapacity)
{
    start(2 * kRing);
    EXPECT_EQ(producer->passUntilIdle(), kRing / kBlock);
    EXPECT_EQ(producer->ring().framesWritten(), static_cast<uint64_t>(kRing));
    expectFrames(0, kRing);
    EXPECT_TRUE(read(1).empty());
}

TEST_F(PrefetchRingTest, producerWaitsForRoomForAWholeBlock)
{
    start(2 * kRing);
    producer->passUntilIdle();
    expectFrames(0, kBlock - 1);
    EXPECT_FALSE(producer->pass());
    EXPECT_EQ(producer->ring().framesWritten(), static_cast<uint64_t>(kRing));
    expectFrames(kBlock - 1, 1);
    EXPECT_TRUE(producer->pass());
    EXPECT_FALSE(producer->pass());
    expectFrames(kBlock, kRing);
}

TEST_F(PrefetchRingTest, shortLastBlockWaitsForRoomForAWholeBlockToo)
{
    start(kRing + 5);
    producer->passUntilIdle();
    expectFrames(0, kBlock - 1);
    EXPECT_FALSE(producer->pass());
    expectFrames(kBlock - 1, 1);
    EXPECT_TRUE(producer->pass());
    EXPECT_EQ(producer->ring().framesWritten(), static_cast<uint64_t>(kRing + 5));
}

TEST_F(PrefetchRingTest, shortLastBlockEndsThePositionExactlyAtTheTotal)
{
    start(kBlock + 100);
    EXPECT_EQ(producer->passUntilIdle(), 2);
    expectFrames(0, kBlock);
    EXPECT_FALSE(reader.isAtEnd());
    EXPECT_EQ(read(kBlock).size(), 100u);
    EXPECT_EQ(reader.getPosition(), kBlock + 100);
    EXPECT_TRUE(reader.isAtEnd());
    EXPECT_TRUE(read(1).empty());
    EXPECT_FALSE(producer->pass());
}

TEST_F(PrefetchRingTest, framesGoThroughTheRingManyTimesOver)
{
    constexpr int64_t kFrames = 5 * kRing + 333;
    start(kFrames);
    int64_t frame = 0;
    for (int64_t step = 1; frame < kFrames; step = step * 7 % 4999 + 1) {
        producer->pass();
        const int64_t due = std::min(step, static_cast<int64_t>(producer->ring().framesWritten()) - frame);
        expectFrames(frame, due);
        frame += due;
    }
    EXPECT_EQ(frame, kFrames);
    EXPECT_TRUE(reader.isAtEnd());
}

TEST_F(PrefetchRingTest, blockAcrossTheWrapLandsOnBothSides)
{
    for (const int32_t maxChannels : { 0, 2 }) {
        start(2 * kRing, 3, maxChannels);
        // A short block at the file's end shifts all later blocks against the ring.
        reader.setPosition(2 * kRing - 100);
        ASSERT_TRUE(producer->pass());
        reader.setPosition(0);
        ASSERT_TRUE(producer->pass());
        ASSERT_EQ(read(1000, 2).size(), 2000u);
        int64_t frame = 1000;
        while (frame < kRing + kBlock) {
            producer->pass();
            const std::vector<float> out = read(3001, 2);
            for (size_t i = 0; i < out.size(); i += 2, ++frame) {
                ASSERT_EQ(out[i], static_cast<float>(3 * frame));
                ASSERT_EQ(out[i + 1], static_cast<float>(3 * frame + 1));
            }
        }
        EXPECT_EQ(producer->ring().framesWritten() % kBlock, 100u);
        EXPECT_GT(producer->ring().framesWritten(), static_cast<uint64_t>(kRing));
        producer.reset();
    }
}

TEST_F(PrefetchRingTest, everyStoredFormatGoesThroughTheRing)
{
    for (const uint16_t bits : { uint16_t{ 16 }, uint16_t{ 24 }, uint16_t{ 32 } }) {
        for (const uint16_t count : { uint16_t{ 1 }, uint16_t{ 5 }, uint16_t{ 64 } }) {
            WavBuilder().fmt(48000, count, bits).dataFrames(kBlock + 7).write(path);
            channels = count;
            WavFileReader direct;
            ASSERT_TRUE(direct.open(path));
            std::vector<float> expected(static_cast<size_t>((kBlock + 7) * count));
            ASSERT_EQ(direct.readFrames(expected.data(), kBlock + 7, count), kBlock + 7);

            ASSERT_TRUE(reader.open(path));
            producer = std::make_unique<PrefetchStepper>(reader);
            producer->passUntilIdle();
            EXPECT_EQ(read(kBlock + 7), expected) << bits << " bits, " << count << " channels";
            producer.reset();
        }
    }
}

TEST_F(PrefetchRingTest, pendingSeekGivesNothingAndTouchesNothing)
{
    start(1000);
    producer->pass();
    expectFrames(0, 10);
    reader.setPosition(500);
    float out[4] = { 7, 7, 7, 7 };
    EXPECT_EQ(reader.readFrames(out, 4, 1), 0);
    EXPECT_EQ(out[0], 7.0f);
    EXPECT_EQ(producer->ring().framesRead(), 10u);
    EXPECT_EQ(producer->ring().flushes(), 0u);
}

TEST_F(PrefetchRingTest, pendingSeekToTheFirstFrameGivesNothingEither)
{
    start(1000);
    producer->pass();
    expectFrames(0, 10);
    reader.setPosition(0);
    EXPECT_TRUE(read(4).empty());
    EXPECT_EQ(reader.getPosition(), 0);
    EXPECT_EQ(producer->ring().framesRead(), 10u);
}

TEST_F(PrefetchRingTest, positionJumpsWithTheRequest)
{
    start(1000);
    reader.setPosition(500);
    EXPECT_EQ(reader.getPosition(), 500);
    reader.seekSeconds(300.5 / 48000.0);
    EXPECT_EQ(reader.getPosition(), 300);
    EXPECT_TRUE(read(1).empty());
    EXPECT_EQ(reader.getPosition(), 300);
}

TEST_F(PrefetchRingTest, framesReadBetweenTheHalvesOfARequestDoNotMoveItsTarget)
{
    start(1000);
    producer->pass();
    expectFrames(0, 10);
    const uint64_t seek = producer->ring().beginSeek(500);
    expectFrames(10, 20);
    EXPECT_EQ(reader.getPosition(), 500);
    producer->ring().sendSeek(seek);
    EXPECT_TRUE(producer->pass());
    expectFrames(500, 20);
    EXPECT_EQ(reader.getPosition(), 520);
}

TEST_F(PrefetchRingTest, framesReadBeforeAFlushIsSeenDoNotMoveTheTarget)
{
    start(1000);
    producer->pass();
    expectFrames(0, 10);
    reader.setPosition(500);
    ASSERT_TRUE(producer->takeSeekUnseen());
    expectFrames(10, 20);
    EXPECT_EQ(reader.getPosition(), 500);
    producer->showSeek();
    EXPECT_TRUE(producer->pass());
    expectFrames(500, 20);
    EXPECT_EQ(reader.getPosition(), 520);
}

TEST_F(PrefetchRingTest, aSecondSeekToTheSameFrameIsASeekOfItsOwn)
{
    start(1000);
    producer->pass();
    reader.setPosition(500);
    producer->pass();
    expectFrames(500, 20);
    (void)producer->ring().beginSeek(500);
    const uint64_t seek = producer->ring().beginSeek(500);
    expectFrames(520, 20);
    EXPECT_EQ(reader.getPosition(), 500);
    producer->ring().sendSeek(seek);
    producer->pass();
    expectFrames(500, 20);
    EXPECT_EQ(reader.getPosition(), 520);
}

TEST_F(PrefetchRingTest, framesBeforeASeekToTheEndDoNotEndTheFile)
{
    start(1000);
    producer->pass();
    expectFrames(0, 10);
    reader.setPosition(995);
    ASSERT_TRUE(producer->takeSeekUnseen());
    expectFrames(10, 20);
    EXPECT_FALSE(reader.isAtEnd());
    EXPECT_EQ(reader.getPosition(), 995);
}

TEST_F(PrefetchRingTest, seekThrowsAwayAllFramesInTheRing)
{
    start(100000);
    producer->passUntilIdle();
    expectFrames(0, 10);
    reader.setPosition(90000);
    producer->takeSeek();
    EXPECT_EQ(producer->ring().flushes(), 1u);
    EXPECT_TRUE(read(100).empty());
    EXPECT_TRUE(producer->pass());
    expectFrames(90000, 100);
    EXPECT_EQ(reader.getPosition(), 90100);
}

TEST_F(PrefetchRingTest, fullRingGetsItsRoomBackWhenTheConsumerNoticesTheSeek)
{
    start(3 * kRing);
    producer->passUntilIdle();
    reader.setPosition(2 * kRing);
    EXPECT_FALSE(producer->pass());
    EXPECT_FALSE(producer->pass());
    EXPECT_TRUE(read(1).empty());
    EXPECT_EQ(producer->ring().framesRead(), static_cast<uint64_t>(kRing));
    EXPECT_TRUE(producer->pass());
    expectFrames(2 * kRing, kBlock);
}

TEST_F(PrefetchRingTest, laterSeekReplacesAnEarlierOne)
{
    start(1000);
    reader.setPosition(100);
    reader.setPosition(200);
    producer->pass();
    EXPECT_EQ(producer->ring().flushes(), 1u);
    expectFrames(200, 5);
}

TEST_F(PrefetchRingTest, seekToFrameZeroIsASeek)
{
    start(1000);
    producer->pass();
    expectFrames(0, 100);
    reader.setPosition(0);
    producer->pass();
    expectFrames(0, 100);
}

TEST_F(PrefetchRingTest, seekPastTheEndStandsAtTheTotalUntilANewSeek)
{
    start(1000);
    producer->pass();
    reader.setPosition(5000);
    EXPECT_EQ(reader.getPosition(), 1000);
    EXPECT_TRUE(reader.isAtEnd());
    EXPECT_FALSE(producer->pass());
    EXPECT_EQ(producer->nextFrame(), 1000);
    EXPECT_TRUE(read(10).empty());
    EXPECT_FALSE(producer->pass());
    EXPECT_TRUE(read(10).empty());
    EXPECT_EQ(reader.getPosition(), 1000);
    reader.setPosition(990);
    EXPECT_FALSE(reader.isAtEnd());
    EXPECT_TRUE(producer->pass());
    EXPECT_EQ(read(100).size(), 10u);
}

TEST_F(PrefetchRingTest, readIndexDoesNotGoBackWhenASecondSeekLandsBetweenTheLoads)
{
    start(100000);
    producer->pass();
    reader.setPosition(20000);
    producer->takeSeek();
    producer->pass();
    reader.setPosition(40000);
    ASSERT_TRUE(producer->takeSeekUnseen());
    producer->pass();
    // The generation is the first seek's, the index already the second one's.
    expectFrames(40000, 1000);
    producer->showSeek();
    expectFrames(41000, 1000);
    EXPECT_EQ(reader.getPosition(), 42000);
}

TEST_F(PrefetchRingTest, seeksAtTheFilesEndWakeTheProducer)
{
    start(kBlock);
    producer->passUntilIdle();
    EXPECT_EQ(static_cast<int64_t>(read(kBlock).size()), kBlock);
    EXPECT_FALSE(producer->pass());
    reader.setPosition(10);
    EXPECT_TRUE(producer->pass());
    expectFrames(10, 10);
}

TEST_F(PrefetchRingTest, fileCutInItsDataStopsTheFillingAndNeverEnds)
{
    numberedFile(2 * kBlock, 1).truncateTo(kDataOffset + 4 * 5000 + 2).write(path);
    ASSERT_TRUE(reader.open(path));
    producer = std::make_unique<PrefetchStepper>(reader);
    EXPECT_EQ(producer->passUntilIdle(), 2);
    expectFrames(0, 5000);
    EXPECT_FALSE(producer->pass());
    EXPECT_EQ(producer->nextFrame(), 5000);
    EXPECT_TRUE(read(1).empty());
    EXPECT_FALSE(reader.isAtEnd());
    reader.setPosition(4990);
    EXPECT_TRUE(producer->pass());
    expectFrames(4990, 10);
}

TEST_F(PrefetchRingTest, fileThatShrinksAndGrowsWhilePlayingIsReadOnWhereItStood)
{
    start(10 * kBlock);
    const std::string whole = readBytes(path);
    ASSERT_TRUE(producer->pass());

    std::filesystem::resize_file(path, static_cast<uintmax_t>(kDataOffset + 4 * 5 * kBlock));
    EXPECT_EQ(producer->passUntilIdle(), 4);
    std::filesystem::resize_file(path, 0);
    EXPECT_FALSE(producer->pass());
    expectFrames(0, 5 * kBlock);
    EXPECT_TRUE(read(1).empty());
    EXPECT_FALSE(reader.isAtEnd());

    std::ofstream(path, std::ios::binary | std::ios::in) << whole;
    EXPECT_EQ(producer->passUntilIdle(), 5);
    expectFrames(5 * kBlock, 5 * kBlock);
    EXPECT_TRUE(reader.isAtEnd());
}

TEST_F(PrefetchRingTest, dataSizeNearTheLimitOfItsFieldIsPlayedAsFarAsTheFileGoes)
{
    WavBuilder::rf64()
        .ds64(0xFFFFFFFFFFFFFFFF)
        .fmt(48000, 1, 32, 3)
        .data(numberedFloats(10, 1))
        .claimSize("data", 0xFFFFFFFF)
        .write(path);
    ASSERT_TRUE(reader.open(path));
    producer = std::make_unique<PrefetchStepper>(reader);
    EXPECT_TRUE(producer->pass());
    expectFrames(0, 10);
    for (const int64_t frame :
        { reader.getTotalFrames() - 1, reader.getTotalFrames() / 2, reader.getTotalFrames() / 2 - 100 }) {
        reader.setPosition(frame);
        EXPECT_FALSE(producer->pass());
        EXPECT_EQ(reader.getPosition(), frame);
        EXPECT_TRUE(read(1).empty());
    }
    reader.setPosition(std::numeric_limits<int64_t>::max());
    EXPECT_FALSE(producer->pass());
    EXPECT_TRUE(reader.isAtEnd());
    reader.setPosition(3);
    EXPECT_TRUE(producer->pass());
    expectFrames(3, 7);
}

TEST_F(PrefetchRingTest, synchronousReadsGoOnWhereTheyStoodBeforePrefetching)
{
    start(1000);
    producer->pass();
    expectFrames(0, 500);
    producer.reset();
    EXPECT_EQ(reader.getPosition(), 0);
    expectFrames(0, 10);
}

TEST_F(PrefetchRingTest, producerAndConsumerAllocateNothing)
{
    start(3 * kRing, 6, 2);
    std::vector<float> out(6 * 300);
    const int before = allocationsOfThisThread();
    int64_t got = 0;
    for (int i = 0; i < 2000; ++i) {
        producer->pass();
        got += reader.readFrames(out.data(), 300, i % 7);
        if (i % 100 == 99)
            reader.setPosition(i);
    }
    EXPECT_EQ(allocationsOfThisThread(), before);
    EXPECT_GT(got, 0);
}

TEST_F(PrefetchRingTest, allocationsAreReallyCounted)
{
    const int before = allocationsOfThisThread();
    const auto memory = std::make_unique<std::vector<int>>(10);
    EXPECT_GE(allocationsOfThisThread(), before + 2);
    EXPECT_EQ(memory->size(), 10u);
}
