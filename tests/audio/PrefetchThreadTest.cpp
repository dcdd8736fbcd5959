// The ring with its own thread as the producer. Nothing here depends on time: each loop ends after a count of frames or
// seeks.

#include "audio/WavFileReader.h"

#include "tests/audio/SampleFiles.h"
#include "tests/support/TempFolder.h"

#include <gtest/gtest.h>

#include <atomic>
#include <filesystem>
#include <fstream>
#include <random>
#include <thread>
#include <vector>

namespace {

constexpr int64_t kFrames = 1'000'000; // Mono; below 2 to the 24, so each frame's number is exact.
constexpr int32_t kConsumerBlock = 256;

class PrefetchThreadTest : public testing::Test {
protected:
    static void SetUpTestSuite()
    {
        folder = new TempFolder;
        numberedFile(kFrames, 1).write(folder->file("numbered.wav"));
    }
    static void TearDownTestSuite()
    {
        delete folder;
        folder = nullptr;
    }

    void SetUp() override
    {
        ASSERT_TRUE(reader.open(path()));
        reader.startPrefetch(0);
    }

    static std::string path() { return folder->file("numbered.wav"); }

    // At least one frame; waits for it.
    int32_t readSome(float* out, int32_t frames)
    {
        for (;;) {
            if (const int32_t got = reader.readFrames(out, frames, 1); got > 0)
                return got;
            std::this_thread::yield();
        }
    }

    static TempFolder* folder;
    WavFileReader reader;
};

TempFolder* PrefetchThreadTest::folder = nullptr;

// By turns early and late in the file. No run of the lengths read here gets from one part into the other, or to the
// end.
std::vector<int64_t> seekTargets(size_t count)
{
    std::mt19937 random(11);
    std::vector<int64_t> targets;
    for (size_t i = 0; i < count; ++i) {
        const auto within = static_cast<int64_t>(random() % 400'000);
        targets.push_back(i % 2 == 0 ? 500'000 + within : within);
    }
    return targets;
}

// Follows what comes out of the ring: each frame is the one behind the last, or the target of a seek that was asked
// for, in the order of asking.
class RunChecker {
public:
    explicit RunChecker(const std::vector<int64_t>& seeks) : targets(seeks) { }

    // `asked` is the number of seeks asked for so far. False at the first wrong frame.
    bool accept(const float* samples, int32_t count, size_t asked)
    {
        for (int32_t i = 0; i < count; ++i) {
            const auto frame = static_cast<int64_t>(samples[i]);
            if (frame != next && !arrive(frame, asked))
                return false;
            next = frame + 1;
            ++run;
        }
        return true;
    }

    size_t arrived() const { return reached; } ///< Seeks that have arrived or were overtaken.
    int64_t runLength() const { return run; } ///< Frames since the last arrival.

private:
    bool arrive(int64_t frame, size_t asked)
    {
        for (size_t i = reached; i < asked; ++i) {
            if (targets[i] == frame) {
                reached = i + 1;
                run = 0;
                return true;
            }
        }
        return false;
    }

    const std::vector<int64_t>& targets;
    int64_t next = 0;
    int64_t run = 0;
    size_t reached = 0;
};

} // namespace

TEST_F(PrefetchThreadTest, everyFrameComesOnceAndInOrder)
{
    std::vector<float> out(kConsumerBlock);
    int64_t frame = 0;
    while (frame < kFrames) {
        const int32_t got = readSome(out.data(), 1 + static_cast<int32_t>(frame % kConsumerBlock));
        for (int32_t i = 0; i < got; ++i)
            ASSERT_EQ(out[static_cast<size_t>(i)], static_cast<float>(frame + i));
        frame += got;
    }
    EXPECT_EQ(reader.getPosition(), kFrames);
    EXPECT_TRUE(reader.isAtEnd());
    EXPECT_EQ(reader.readFrames(out.data(), 1, 1), 0);
}

TEST_F(PrefetchThreadTest, consumersOwnSeeksLeadToTheirTargets)
{
    const std::vector<int64_t> targets = seekTargets(400);
    RunChecker checker(targets);
    std::vector<float> out(kConsumerBlock);
    for (size_t seek = 1; seek <= targets.size(); ++seek) {
        reader.setPosition(targets[seek - 1]);
        ASSERT_EQ(reader.getPosition(), targets[seek - 1]);
        while (checker.arrived() < seek || checker.runLength() < static_cast<int64_t>(seek % 9) * 700) {
            const int32_t got = readSome(out.data(), kConsumerBlock);
            ASSERT_TRUE(checker.accept(out.data(), got, seek)) << "seek " << seek;
        }
    }
}

TEST_F(PrefetchThreadTest, tenThousandSeeksFromAThirdThreadLeaveEveryRunInOrder)
{
    const std::vector<int64_t> targets = seekTargets(10'000);
    // Relaxed on purpose: the test adds no order between the threads that the reader doesn't have itself.
    std::atomic<size_t> asked{ 0 };
    std::atomic<size_t> arrived{ 0 };
    std::atomic<bool> failed{ false };

    std::thread requester([&] {
        for (size_t i = 0; i < targets.size() && !failed.load(std::memory_order_relaxed); ++i) {
            asked.store(i + 1, std::memory_order_relaxed);
            reader.setPosition(targets[i]);
            // Each eighth seek is waited for. The others follow closely, and some of them overtake the one before.
            std::this_thread::yield();
            while (i % 8 == 7 && arrived.load(std::memory_order_relaxed) < i + 1
                && !failed.load(std::memory_order_relaxed))
                std::this_thread::yield();
        }
    });

    RunChecker checker(targets);
    std::vector<float> out(kConsumerBlock);
    while (checker.arrived() < targets.size() && !failed.load(std::memory_order_relaxed)) {
        // A requester that was held up must not see the run get far from its target.
        const bool wait = checker.runLength() > 50'000 && asked.load(std::memory_order_relaxed) <= checker.arrived();
        const int32_t got = wait ? 0 : reader.readFrames(out.data(), kConsumerBlock, 1);
        if (got == 0)
            std::this_thread::yield();
        if (!checker.accept(out.data(), got, asked.load(std::memory_order_relaxed)))
            failed.store(true, std::memory_order_relaxed);
        arrived.store(checker.arrived(), std::memory_order_relaxed);
    }
    requester.join();
    EXPECT_FALSE(failed.load());
    EXPECT_EQ(checker.arrived(), targets.size());
}

TEST(PrefetchPositionTest, positionIsExactBehindEverySeekFromAThirdThread)
{
    constexpr int32_t kChannels = 64;
    constexpr int64_t kLength = 80'000; // Its largest number is below 2 to the 24.
    constexpr size_t kSeeks = 300;
    TempFolder folder;
    numberedFile(kLength, kChannels).write(folder.file("wide.wav"));
    WavFileReader reader;
    ASSERT_TRUE(reader.open(folder.file("wide.wav")));
    reader.startPrefetch(0);
    std::atomic<size_t> asked{ 0 };
    std::atomic<size_t> arrived{ 0 };
    // By turns to the start and to the middle, so that what is read tells which seek it belongs to.
    const auto targetOf = [](size_t seek) { return seek % 2 == 0 ? int64_t{ 0 } : kLength / 2; };
    std::thread requester([&] {
        for (size_t seek = 1; seek <= kSeeks; ++seek) {
            reader.setPosition(targetOf(seek));
            asked.store(seek, std::memory_order_release);
            while (arrived.load(std::memory_order_acquire) < seek)
                std::this_thread::yield();
        }
    });

    std::vector<float> out(static_cast<size_t>(kConsumerBlock) * kChannels);
    size_t wrong = 0;
    while (arrived < kSeeks) {
        const int32_t got = reader.readFrames(out.data(), kConsumerBlock, kChannels);
        const size_t seek = asked.load(std::memory_order_acquire);
        if (got == 0 || seek == arrived)
            continue;
        const int64_t next = static_cast<int64_t>(out[static_cast<size_t>(got - 1) * kChannels]) / kChannels + 1;
        if (next - got != targetOf(seek))
            continue;
        if (reader.getPosition() != next)
            ++wrong;
        arrived.store(seek, std::memory_order_release);
    }
    requester.join();
    EXPECT_EQ(wrong, 0U);
}

TEST_F(PrefetchThreadTest, fileIsReadToItsEndAfterAStormOfSeeks)
{
    std::vector<float> out(kConsumerBlock);
    std::thread requester([this] {
        for (int64_t i = 0; i < 200; ++i)
            reader.setPosition(i * 1000);
    });
    for (int i = 0; i < 2000; ++i)
        reader.readFrames(out.data(), kConsumerBlock, 1);
    requester.join();

    reader.setPosition(kFrames - 10'000);
    int64_t last = 0;
    while (last < kFrames - 1) {
        const int32_t got = readSome(out.data(), kConsumerBlock);
        last = static_cast<int64_t>(out[static_cast<size_t>(got - 1)]);
    }
    EXPECT_TRUE(reader.isAtEnd());
    EXPECT_EQ(reader.readFrames(out.data(), kConsumerBlock, 1), 0);
}

TEST_F(PrefetchThreadTest, secondStartChangesNothing)
{
    std::vector<float> out(1000);
    int32_t got = 0;
    while (got < 1000)
        got += readSome(out.data() + got, 1000 - got);
    reader.startPrefetch(1);
    EXPECT_TRUE(reader.isPrefetching());
    EXPECT_EQ(reader.getPosition(), 1000);
    readSome(out.data(), 1);
    EXPECT_EQ(out[0], 1000.0f);
}

TEST_F(PrefetchThreadTest, stopGoesBackToTheSynchronousPathWhereItStood)
{
    std::vector<float> out(1000);
    readSome(out.data(), 1000);
    reader.stopPrefetch();
    reader.stopPrefetch();
    EXPECT_FALSE(reader.isPrefetching());
    EXPECT_EQ(reader.getPosition(), 0);
    EXPECT_EQ(reader.readFrames(out.data(), 3, 1), 3);
    EXPECT_EQ(out[2], 2.0f);
    EXPECT_EQ(reader.getPosition(), 3);
}

TEST_F(PrefetchThreadTest, prefetchingMayBeStartedAgainAndGoesOnFromThePosition)
{
    reader.stopPrefetch();
    reader.setPosition(777);
    reader.startPrefetch(0);
    float sample = 0;
    readSome(&sample, 1);
    EXPECT_EQ(sample, 777.0f);
}

TEST_F(PrefetchThreadTest, closeEndsTheThreadWithFramesAndSeeksInFlight)
{
    std::vector<float> out(1000);
    for (int64_t i = 0; i < 50; ++i) {
        reader.setPosition(i);
        if (i % 2 == 0)
            readSome(out.data(), 1000);
        // A thread that still ran would end the process when the next start replaces its handle.
        reader.close();
        EXPECT_FALSE(reader.isPrefetching());
        EXPECT_FALSE(reader.isOpen());
        EXPECT_EQ(reader.getPosition(), 0);
        ASSERT_TRUE(reader.open(path()));
        reader.startPrefetch(0);
    }
}

TEST_F(PrefetchThreadTest, openEndsTheThreadOfTheFileBefore)
{
    ASSERT_TRUE(reader.open(path()));
    EXPECT_FALSE(reader.isPrefetching());
    float sample = 5;
    EXPECT_EQ(reader.readFrames(&sample, 1, 1), 1);
    EXPECT_EQ(sample, 0.0f);
}

TEST(PrefetchStartTest, closedReaderStartsNothing)
{
    WavFileReader reader;
    reader.startPrefetch(0);
    EXPECT_FALSE(reader.isPrefetching());
}

TEST(PrefetchStartTest, destructorEndsTheThread)
{
    TempFolder folder;
    numberedFile(100, 1).write(folder.file("take.wav"));
    for (int i = 0; i < 20; ++i) {
        WavFileReader reader;
        ASSERT_TRUE(reader.open(folder.file("take.wav")));
        reader.startPrefetch(0);
    }
}

TEST(PrefetchStartTest, fileThatShrinksAndGrowsIsPlayedOnByTheRunningThread)
{
    TempFolder folder;
    const std::string path = folder.file("take.wav");
    constexpr int64_t kTotal = 4 * PrefetchRing::kFrames;
    numberedFile(kTotal, 1).write(path);
    const std::string whole = readBytes(path);
    WavFileReader reader;
    ASSERT_TRUE(reader.open(path));
    reader.startPrefetch(0);

    std::vector<float> out(kConsumerBlock);
    int64_t frame = 0;
    while (frame < kTotal) {
        // Half, nothing, whole: by turns, every so many frames. What was cut comes back as it was.
        const int64_t turn = frame / 20'000 % 3;
        std::filesystem::resize_file(path, turn == 0 ? whole.size() / 2 : turn == 1 ? 0 : whole.size());
        const int32_t early = reader.readFrames(out.data(), kConsumerBlock, 1);
        std::ofstream(path, std::ios::binary | std::ios::in) << whole;
        int32_t got = early;
        while (got == 0)
            got = reader.readFrames(out.data(), kConsumerBlock, 1);
        frame += got;
    }
    EXPECT_EQ(frame, kTotal);
    EXPECT_TRUE(reader.isAtEnd());
}
