#include "app/settings/ReplacementFile.h"

#include "tests/support/TempFolder.h"

#include <sys/file.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>
#include <functional>
#include <utility>

namespace {

/// What another process does between our opening of the temporary file and our lock. Once.
std::function<void()> beforeTheLock;

/// What every lock is answered with; 0 asks the system.
int lockError = 0;

class ReplacementFileTest : public testing::Test {
protected:
    std::string target() const { return folder.file("settings"); }
    std::string temporary() const { return folder.file("settings.tmp"); }
    void TearDown() override { lockError = 0; }

    TempFolder folder;
};

} // namespace

// Stands in front of the C library's.
extern "C" int flock(int descriptor, int operation) noexcept
{
    if (beforeTheLock)
        std::exchange(beforeTheLock, nullptr)();
    if (lockError != 0) {
        errno = lockError;
        return -1;
    }
    return static_cast<int>(syscall(SYS_flock, descriptor, operation));
}

TEST_F(ReplacementFileTest, takesTheTargetsPlaceAsAWhole)
{
    writeBytes(target(), "old");
    ReplacementFile file(target());
    ASSERT_TRUE(file.isOpen());
    EXPECT_TRUE(file.write("new "));
    EXPECT_TRUE(file.write("text"));
    EXPECT_TRUE(file.flush());
    EXPECT_EQ(readBytes(target()), "old");
    EXPECT_TRUE(file.takeTargetsPlace());
    EXPECT_EQ(readBytes(target()), "new text");
    EXPECT_FALSE(std::filesystem::exists(temporary()));
}

TEST_F(ReplacementFileTest, leavesNothingIfItDoesNotTakeTheTargetsPlace)
{
    writeBytes(target(), "old");
    EXPECT_TRUE(ReplacementFile(target()).write("half"));
    EXPECT_EQ(readBytes(target()), "old");
    EXPECT_FALSE(std::filesystem::exists(temporary()));
}

TEST_F(ReplacementFileTest, aSecondOneForTheSameTargetIsNotOpenWhileTheFirstLives)
{
    const ReplacementFile first(target());
    EXPECT_TRUE(first.write("first"));
    EXPECT_FALSE(ReplacementFile(target()).isOpen());
    EXPECT_EQ(readBytes(temporary()), "first");
}

TEST_F(ReplacementFileTest, aTemporaryFileThatBecameTheTargetBeforeTheLockIsNotTouched)
{
    writeBytes(temporary(), "another's, whole");
    beforeTheLock = [this] { std::filesystem::rename(temporary(), target()); };
    const ReplacementFile file(target());
    EXPECT_FALSE(beforeTheLock);
    ASSERT_TRUE(file.isOpen());
    EXPECT_TRUE(file.write("ours"));
    EXPECT_EQ(readBytes(target()), "another's, whole");
    EXPECT_EQ(readBytes(temporary()), "ours");
}

TEST_F(ReplacementFileTest, aTemporaryFileThatWasReplacedBeforeTheLockIsNotTheOneThatIsWritten)
{
    writeBytes(temporary(), "first");
    beforeTheLock = [this] {
        std::filesystem::rename(temporary(), target());
        writeBytes(temporary(), "second, left behind");
    };
    ReplacementFile file(target());
    ASSERT_TRUE(file.isOpen());
    EXPECT_TRUE(file.write("ours"));
    EXPECT_EQ(readBytes(target()), "first");
    EXPECT_TRUE(file.takeTargetsPlace());
    EXPECT_EQ(readBytes(target()), "ours");
}

TEST_F(ReplacementFileTest, aFileSystemWithoutLocksIsNoReasonNotToSave)
{
    for (const int error : { ENOLCK, ENOSYS, EOPNOTSUPP, EINVAL }) {
        lockError = error;
        writeBytes(target(), "old");
        ReplacementFile file(target());
        ASSERT_TRUE(file.isOpen()) << error;
        EXPECT_TRUE(file.write("new"));
        EXPECT_TRUE(file.takeTargetsPlace());
        EXPECT_EQ(readBytes(target()), "new");
    }
}

TEST_F(ReplacementFileTest, aLockThatAnotherHoldsIsWaitedForInVain)
{
    for (const int error : { EWOULDBLOCK, EINTR }) {
        lockError = error;
        EXPECT_FALSE(ReplacementFile(target()).isOpen()) << error;
    }
}
