// The program as a process of its own: what only the system between it and its caller can show.

#include "tests/support/RunProcess.h"
#include "tests/support/TempFolder.h"
#include "tests/support/WavBuilder.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstdlib>

namespace {

constexpr int kMostTries = 20000; // Waits of a millisecond for a program that has something to say.

/// A folder with `count` recordings.
class Program : public testing::Test {
protected:
    void makeFiles(int count)
    {
        const WavBuilder wav = WavBuilder().bext({}).fmt(48000, 1, 24).dataFrames(10);
        for (int i = 0; i < count; ++i)
            wav.write(folder.file(std::to_string(i) + ".wav"));
    }

    ProcessResult shell(const std::string& script)
    {
        return runProcess({ "sh", "-c", script, "sh", TAGWELL_CLI, all }, {});
    }

    TempFolder folder;
    std::string all = folder.path().string();
};

TEST_F(Program, startsWithoutADisplayAndEndsWithItsStatus)
{
    makeFiles(2);
    const std::vector<std::string> noDisplay
        = { "DISPLAY=", "WAYLAND_DISPLAY=", "QT_QPA_PLATFORM=none", "HOME=/nonexistent" };
    EXPECT_EQ(0, runProcess({ TAGWELL_CLI, "dump", "--json", all }, noDisplay).exitCode);
    EXPECT_EQ(1, runProcess({ TAGWELL_CLI, "dump", folder.file("gone.wav") }, noDisplay).exitCode);
    EXPECT_EQ(2, runProcess({ TAGWELL_CLI, "dump" }, noDisplay).exitCode);
    EXPECT_EQ("tagwell-cli " TAGWELL_VERSION "\n", runProcess({ TAGWELL_CLI, "--version" }, noDisplay).output);
}

TEST_F(Program, fullDiskUnderStandardOutputGivesAStatus)
{
    makeFiles(1);
    const ProcessResult result = shell("\"$1\" dump \"$2\" >/dev/full");
    EXPECT_EQ(1, result.exitCode);
    EXPECT_EQ("tagwell-cli: standard output can't be written\n", result.output);
    EXPECT_EQ(1, shell("\"$1\" --help >/dev/full").exitCode);
}

TEST_F(Program, closedStandardOutputGivesAStatus)
{
    makeFiles(1);
    EXPECT_EQ(1, shell("\"$1\" dump \"$2\" >&-").exitCode);
}

TEST_F(Program, readerThatGoesAwayEndsItQuietly)
{
    makeFiles(200);
    EXPECT_EQ("1\n", shell("\"$1\" dump \"$2\" | head -n 0 | wc -l; echo 1").output.substr(2));
}

TEST_F(Program, fullDiskUnderTheListOfSumsLeavesTheOldOne)
{
    makeFiles(1);
    const std::string sums = folder.file("sums");
    writeBytes(sums, "old");
    const ProcessResult result = shell("trap '' XFSZ; ulimit -f 0; exec \"$1\" verify --write \"$2/sums\" \"$2\"");
    EXPECT_EQ(1, result.exitCode);
    EXPECT_EQ(0u, result.output.find("tagwell-cli: " + sums + ": ")) << result.output;
    EXPECT_EQ("old", readBytes(sums));
    int entries = 0;
    for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator(folder.path()))
        ++entries;
    EXPECT_EQ(2, entries);
}

TEST_F(Program, namesOfAnyBytesArriveAsTheyAre)
{
    const std::string name = all + "/\xFF\n.wav";
    WavBuilder().fmt(48000, 1, 24).dataFrames(1).write(name);
    const ProcessResult result = runProcess({ TAGWELL_CLI, "dump", "--csv", name }, { "LC_ALL=C" });
    EXPECT_EQ(0, result.exitCode);
    EXPECT_NE(std::string::npos, result.output.find("\"" + name + "\",")) << result.output;
}

/// Takes all that comes until the other end is closed.
std::string drain(int descriptor)
{
    std::string text;
    std::array<char, 4096> block{};
    for (ssize_t count = 0; (count = read(descriptor, block.data(), block.size())) > 0;)
        text.append(block.data(), static_cast<size_t>(count));
    return text;
}

// The pipe that nobody reads holds the program up in the middle of the files, so it is known to be at work.
TEST_F(Program, interruptEndsBetweenTwoFilesWithAllThatWasDone)
{
    makeFiles(400);
    int out[2];
    int err[2];
    ASSERT_EQ(0, pipe2(out, O_CLOEXEC));
    ASSERT_EQ(0, pipe2(err, O_CLOEXEC));
    const pid_t child = fork();
    if (child == 0) {
        dup2(out[1], STDOUT_FILENO);
        dup2(err[1], STDERR_FILENO);
        execl(TAGWELL_CLI, "tagwell-cli", "dump", all.c_str(), nullptr);
        _exit(127);
    }
    close(out[1]);
    close(err[1]);
    const int capacity = fcntl(out[0], F_GETPIPE_SZ);
    int there = 0;
    for (int tries = 0; there < capacity / 2 && tries < kMostTries; ++tries, usleep(1000))
        ASSERT_EQ(0, ioctl(out[0], FIONREAD, &there));
    kill(child, SIGINT);
    const std::string printed = drain(out[0]);
    const std::string said = drain(err[0]);
    close(out[0]);
    close(err[0]);
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_TRUE(WIFEXITED(status));
    EXPECT_EQ(1, WEXITSTATUS(status));

    const std::string wanted = "tagwell-cli: interrupted after ";
    ASSERT_EQ(0u, said.find(wanted)) << said;
    const int done = std::atoi(said.c_str() + wanted.size());
    EXPECT_GT(done, 0);
    EXPECT_LT(done, 400);
    int files = 0;
    for (size_t at = printed.find("  not_utf8"); at != std::string::npos; at = printed.find("  not_utf8", at + 1))
        ++files;
    EXPECT_EQ(done, files);
}

} // namespace
