// What is left when the system refuses a thread. The function below stands in front of the C library's and refuses when
// it is told to.

#include "tests/audio/PlayerTestSupport.h"
#include "tests/audio/SampleFiles.h"

#include <dlfcn.h>
#include <pthread.h>

#include <atomic>
#include <cerrno>
#include <system_error>

namespace {

std::atomic<int> startsAllowed{ -1 }; // Until one is refused; negative means all.

} // namespace

extern "C" int pthread_create(
    pthread_t* thread, const pthread_attr_t* attributes, void* (*body)(void*), void* argument) noexcept
{
    static const auto real = reinterpret_cast<decltype(&pthread_create)>(dlsym(RTLD_NEXT, "pthread_create"));
    if (startsAllowed == 0)
        return EAGAIN;
    if (startsAllowed > 0)
        --startsAllowed;
    return real(thread, attributes, body, argument);
}

TEST(ThreadStartTest, aRefusedPrefetchThreadLeavesTheSynchronousPath)
{
    const TempFolder folder;
    numberedFile(100, 1).write(folder.file("take.wav"));
    WavFileReader reader;
    ASSERT_TRUE(reader.open(folder.file("take.wav")));
    reader.setPosition(40);
    startsAllowed = 0;
    EXPECT_THROW(reader.startPrefetch(0), std::system_error);
    startsAllowed = -1;
    EXPECT_FALSE(reader.isPrefetching());
    EXPECT_EQ(reader.getPosition(), 40);
    float sample = 0;
    EXPECT_EQ(reader.readFrames(&sample, 1, 1), 1);
    EXPECT_EQ(sample, 40.0f);

    reader.startPrefetch(0);
    EXPECT_TRUE(reader.isPrefetching());
    ASSERT_TRUE(comesTrue([&] { return reader.readFrames(&sample, 1, 1) == 1; }));
    EXPECT_EQ(sample, 41.0f);
}

TEST_F(PlayerTest, anOpenWithoutItsThreadsLeavesAClosedPlayer)
{
    const std::string path = monoFile(30000);
    for (const int allowed : { 0, 1 }) {
        startsAllowed = allowed; // The prefetch thread is the first, the mixer thread the second.
        EXPECT_THROW((void)player.open(path), std::system_error);
        startsAllowed = -1;
        EXPECT_EQ(DrivenOutput::unitsAlive(), 0) << allowed;
        EXPECT_FALSE(player.isOpen());
        EXPECT_FALSE(player.play());
        EXPECT_EQ(player.durationSeconds(), 0.0);
        EXPECT_EQ(player.channels(), 0);
    }
    ASSERT_TRUE(player.open(path));
    ASSERT_TRUE(player.play());
    EXPECT_EQ(hear(30000), numberedSamples(30000));
}
