#include "system/SilentErrors.h"

#include "tests/support/TempFolder.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <unistd.h>

#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace {

class SilentErrorsTest : public testing::Test {
protected:
    // The process's error output goes to a file of the test's own.
    SilentErrorsTest()
    {
        const int file = ::open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
        dup2(file, STDERR_FILENO);
        ::close(file);
    }
    ~SilentErrorsTest() override
    {
        dup2(ownErrors, STDERR_FILENO);
        ::close(ownErrors);
    }

    static void print(const std::string& text)
    {
        EXPECT_EQ(write(STDERR_FILENO, text.data(), text.size()), static_cast<ssize_t>(text.size()));
    }
    std::string printed() const { return readBytes(path); }

    const TempFolder folder;
    const std::string path = folder.file("printed");
    const int ownErrors = dup(STDERR_FILENO);
};

int openDescriptors()
{
    int count = 0;
    for (int i = 0; i < 256; ++i)
        count += fcntl(i, F_GETFD) < 0 ? 0 : 1;
    return count;
}

} // namespace

TEST_F(SilentErrorsTest, whatIsPrintedInBetweenIsNotHeard)
{
    print("before ");
    {
        const SilentErrors silence;
        print("within");
    }
    print("after");
    EXPECT_EQ(printed(), "before after");
}

TEST_F(SilentErrorsTest, twoThatOverlapRestoreTheOutputInEitherOrder)
{
    for (const size_t first : { size_t{ 0 }, size_t{ 1 } }) {
        std::vector<std::unique_ptr<SilentErrors>> silences;
        silences.push_back(std::make_unique<SilentErrors>());
        silences.push_back(std::make_unique<SilentErrors>());
        silences[first].reset();
        print("within");
        silences[1 - first].reset();
        print("after");
    }
    EXPECT_EQ(printed(), "afterafter");
}

TEST_F(SilentErrorsTest, manyThreadsAtOnceLeaveTheOutputAsItWas)
{
    const int before = openDescriptors();
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([] {
            for (int round = 0; round < 1000; ++round) {
                const SilentErrors silence;
                print("within");
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(openDescriptors(), before);
    EXPECT_EQ(printed(), "");
    print("after");
    EXPECT_EQ(printed(), "after");
}

TEST_F(SilentErrorsTest, aProcessWithoutAnErrorOutputKeepsNone)
{
    ::close(STDERR_FILENO);
    const int before = openDescriptors();
    {
        const SilentErrors silence;
    }
    EXPECT_EQ(fcntl(STDERR_FILENO, F_GETFD), -1);
    EXPECT_EQ(openDescriptors(), before);
}
