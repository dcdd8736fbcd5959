// What a save leaves behind when it is stopped or refused by the system at any of its calls. The driver beside this
// file does the save under strace, which strikes at the call that the test names.

#include "tests/support/RunProcess.h"
#include "tests/support/TempFolder.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <sstream>
#include <thread>
#include <vector>

namespace {

/// The n-th call of that name in the life of the process, counted from 1.
struct SystemCall {
    std::string name;
    int number = 0;
    std::string line;
};

constexpr char kOld[] = "# Vorlund Configuration\n\naudio.buffersize=256\naudio.driver=\naudio.samplerate=48000\n"
                        "media.bitdepth=24\nmedia.format=0\nrecording.directory=\nz=old\n";

class ConfigManagerSaveTest : public testing::Test {
protected:
    ConfigManagerSaveTest() { putOldFile(); }

    void putOldFile() const
    {
        std::filesystem::create_directories(folder.file("home/.config/Vorlund"));
        std::filesystem::remove(temporary());
        writeBytes(target(), kOld);
    }

    /// The default file of a driver that lives in the folder "home" of ours.
    std::string target() const { return folder.file("home/.config/Vorlund/config.ini"); }
    std::string temporary() const { return target() + ".tmp"; }

    /// The file as it must be after the save.
    std::string newFile() const
    {
        std::string text = kOld;
        return text.insert(text.find("recording."), "new=" + value + "\n");
    }

    /// Runs the driver under strace and gives what the shell would call its status. The sanitizer's leak check
    /// can't work under strace.
    int save(const std::string& straceOptions, const std::string& what = "") const
    {
        const std::string command = "HOME='" + folder.file("home") + "' exec strace -E ASAN_OPTIONS=detect_leaks=0 -qq "
            + straceOptions + " " + SAVE_SETTINGS_DRIVER + " '" + target() + "' " + value + " " + what + " 2>/dev/null";
        const int status = std::system(command.c_str());
        return WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
    }

    /// The system calls of a whole save, in order.
    std::vector<SystemCall> callsOfASave(const std::string& what = "") const
    {
        const std::string log = folder.file("trace");
        EXPECT_EQ(save("-s 4096 -o '" + log + "'", what), 0);
        EXPECT_EQ(readBytes(target()), newFile());
        putOldFile();

        std::vector<SystemCall> calls;
        std::map<std::string, int> counts;
        bool inside = false;
        std::istringstream trace(readBytes(log));
        for (std::string line; std::getline(trace, line);) {
            const std::string name = line.substr(0, line.find('('));
            const int number = ++counts[name];
            if (line.find("/save-ends") != std::string::npos)
                inside = false;
            if (inside)
                calls.push_back({ name, number, line });
            if (line.find("/save-begins") != std::string::npos)
                inside = true;
        }
        std::filesystem::remove(log);
        return calls;
    }

    static std::string inject(const SystemCall& call, const std::string& what)
    {
        return "-o /dev/null -e inject=" + call.name + ":" + what + ":when=" + std::to_string(call.number);
    }

    /// A failing call of that kind on the settings file itself, whatever name the call goes by.
    std::string injectOnFile(const std::string& call, const std::string& what) const
    {
        return "-o /dev/null -P '" + target() + "' -e inject=" + call + ":" + what;
    }

    TempFolder folder;
    std::string value = std::string(20000, 'v'); // Longer than any stream's buffer.
};

bool has(const std::vector<SystemCall>& calls, const std::string& name)
{
    return std::any_of(
        calls.begin(), calls.end(), [&name](const SystemCall& call) { return call.name.starts_with(name); });
}

size_t indexOf(const std::vector<SystemCall>& calls, const std::string& name)
{
    for (size_t i = 0; i < calls.size(); ++i) {
        if (calls[i].name.starts_with(name))
            return i;
    }
    ADD_FAILURE() << "no call of " << name;
    return 0;
}

} // namespace

TEST_F(ConfigManagerSaveTest, killedAtAnyCallTheFileIsTheOldOneOrTheNewOne)
{
    const std::vector<SystemCall> calls = callsOfASave();
    ASSERT_GE(calls.size(), 5u);
    size_t oldFiles = 0;
    for (const SystemCall& call : calls) {
        putOldFile();
        ASSERT_EQ(save(inject(call, "signal=KILL")), 128 + SIGKILL) << call.line.substr(0, 200);
        const std::string left = readBytes(target());
        EXPECT_TRUE(left == kOld || left == newFile()) << call.line.substr(0, 200);
        oldFiles += left == kOld;

        // What the kill left lying around does not stand in the way of the next save.
        EXPECT_EQ(save("-o /dev/null"), 0) << call.line.substr(0, 200);
        EXPECT_EQ(readBytes(target()), newFile());
        EXPECT_FALSE(std::filesystem::exists(temporary()));
    }
    EXPECT_GE(oldFiles, 5u) << "the kills came too late to say anything";
}

TEST_F(ConfigManagerSaveTest, theBytesAreOnTheDiskBeforeTheNameMoves)
{
    const std::vector<SystemCall> calls = callsOfASave();
    const size_t written = indexOf(calls, "write");
    const size_t flushed = indexOf(calls, "fsync");
    const size_t renamed = indexOf(calls, "rename");
    EXPECT_LT(written, flushed);
    EXPECT_LT(flushed, renamed);
    for (size_t i = flushed; i < renamed; ++i)
        EXPECT_FALSE(calls[i].name.starts_with("write")) << calls[i].line;
}

TEST_F(ConfigManagerSaveTest, theFileItselfIsNeverOpenedForWriting)
{
    const std::string quoted = '"' + target() + '"';
    for (const SystemCall& call : callsOfASave()) {
        if (call.line.find(quoted) != std::string::npos) {
            EXPECT_TRUE(call.name.starts_with("rename") || call.line.find("R_OK") != std::string::npos)
                << call.line.substr(0, 200);
        }
    }
}

TEST_F(ConfigManagerSaveTest, anUnflushedSaveDoesNotWaitForTheDisk)
{
    EXPECT_TRUE(has(callsOfASave(), "fsync"));
    const std::vector<SystemCall> calls = callsOfASave("unflushed");
    EXPECT_TRUE(has(calls, "rename"));
    for (const char* waits : { "fsync", "fdatasync", "sync" })
        EXPECT_FALSE(has(calls, waits)) << waits;
}

TEST_F(ConfigManagerSaveTest, killedAtAnyCallOfAnUnflushedSaveTheFileIsTheOldOneOrTheNewOne)
{
    const std::vector<SystemCall> calls = callsOfASave("unflushed");
    ASSERT_GE(calls.size(), 5u);
    for (const SystemCall& call : calls) {
        putOldFile();
        ASSERT_EQ(save(inject(call, "signal=KILL"), "unflushed"), 128 + SIGKILL) << call.line.substr(0, 200);
        const std::string left = readBytes(target());
        EXPECT_TRUE(left == kOld || left == newFile()) << call.line.substr(0, 200);
    }
}

TEST_F(ConfigManagerSaveTest, whatWasSavedUnflushedIsFlushedOnceAfterwards)
{
    const std::string log = folder.file("flushes");
    for (const char* what : { "unflushed", "last" }) {
        putOldFile();
        EXPECT_EQ(save("-e trace=fsync -o '" + log + "'", what), 0) << what;
        const std::string flushes = readBytes(log);
        EXPECT_EQ(std::count(flushes.begin(), flushes.end(), '\n'), 1) << what << "\n" << flushes;
        EXPECT_EQ(readBytes(target()), newFile()) << what;
    }
    EXPECT_EQ(save("-o /dev/null -e inject=fsync:error=EIO", "unflushed"), 1) << "the flush tells that it failed";
}

TEST_F(ConfigManagerSaveTest, aCallThatIsRefusedIsAFalseResultAndLeavesTheOldFileAlone)
{
    const std::vector<SystemCall> calls = callsOfASave();
    for (const char* refused : { "openat", "write", "fsync", "rename" }) {
        const SystemCall& call = calls[indexOf(calls, refused)];
        for (const char* error : { "error=EIO", "error=ENOSPC", "error=EROFS" }) {
            putOldFile();
            EXPECT_EQ(save(inject(call, error)), 1) << refused << " " << error;
            EXPECT_EQ(readBytes(target()), kOld) << refused << " " << error;
            EXPECT_FALSE(std::filesystem::exists(temporary())) << refused << " " << error;
        }
    }
}

TEST_F(ConfigManagerSaveTest, foldersThatCannotBeMadeAFailingCloseAndMissingLocksDoNotMatter)
{
    const std::vector<SystemCall> calls = callsOfASave();
    for (const char* refused : { "mkdir", "close", "flock" }) {
        putOldFile();
        EXPECT_EQ(save(inject(calls[indexOf(calls, refused)], "error=EIO")), 0) << refused;
        EXPECT_EQ(readBytes(target()), newFile()) << refused;
    }
}

TEST_F(ConfigManagerSaveTest, aFileSystemThatCannotFlushIsTakenAsFlushed)
{
    const std::vector<SystemCall> calls = callsOfASave();
    EXPECT_EQ(save(inject(calls[indexOf(calls, "fsync")], "error=EINVAL")), 0);
    EXPECT_EQ(readBytes(target()), newFile());
}

TEST_F(ConfigManagerSaveTest, aWriteThatIsInterruptedIsTriedAgain)
{
    const std::vector<SystemCall> calls = callsOfASave();
    EXPECT_EQ(save(inject(calls[indexOf(calls, "write")], "error=EINTR")), 0);
    EXPECT_EQ(readBytes(target()), newFile());
}

TEST_F(ConfigManagerSaveTest, aSizeLimitInTheMiddleOfTheTextLeavesTheOldFile)
{
    // The first write is cut short at 4096 bytes, the next one fails.
    const std::string command = "trap '' XFSZ; ulimit -f 8; exec " SAVE_SETTINGS_DRIVER " '" + target() + "' " + value;
    const int status = std::system(command.c_str());
    EXPECT_EQ(WEXITSTATUS(status), 1);
    EXPECT_EQ(readBytes(target()), kOld);
    EXPECT_FALSE(std::filesystem::exists(temporary()));
}

// A file that is there and can't be read.

TEST_F(ConfigManagerSaveTest, aFileThatCannotBeOpenedForReadingIsNeverReplaced)
{
    for (const char* error : { "error=EACCES", "error=EIO", "error=EMFILE" }) {
        EXPECT_EQ(save(injectOnFile("/^open", error), "unread"), 1) << error;
        EXPECT_EQ(readBytes(target()), kOld) << error;
        EXPECT_FALSE(std::filesystem::exists(temporary())) << error;
    }
}

TEST_F(ConfigManagerSaveTest, aFileWhoseReadingBreaksOffIsNeverReplaced)
{
    const std::string longFile = std::string(kOld) + "zz=" + std::string(30000, 'z') + "\n";
    for (const char* when : { "error=EIO:when=1", "error=EIO:when=2" }) {
        writeBytes(target(), longFile);
        EXPECT_EQ(save(injectOnFile("/^readv?$", when), "unread"), 1) << when;
        EXPECT_EQ(readBytes(target()), longFile) << when;
    }
}

TEST_F(ConfigManagerSaveTest, aFileThatHasBecomeUnreadableIsNotReplaced)
{
    EXPECT_EQ(save(injectOnFile("/access", "error=EACCES")), 1);
    EXPECT_EQ(readBytes(target()), kOld);
    EXPECT_EQ(save("-o /dev/null"), 0);
    EXPECT_EQ(readBytes(target()), newFile());
}

TEST_F(ConfigManagerSaveTest, endingWithoutMemoryLosesTheSaveButNotTheFileOrTheProcess)
{
    int oldFiles = 0;
    for (int allocations = 0; readBytes(target()) == kOld && allocations < 1000; ++allocations) {
        const ProcessResult end
            = runProcess({ SAVE_SETTINGS_DRIVER, target(), value, "exhausted", std::to_string(allocations) },
                { "HOME=" + folder.file("home") });
        ASSERT_EQ(end.exitCode, 0) << end.signal << " with " << allocations << "\n" << end.output;
        EXPECT_FALSE(std::filesystem::exists(temporary())) << allocations;
        ++oldFiles;
    }
    EXPECT_GE(oldFiles, 3) << "the save hardly allocates, so this has shown nothing";
    EXPECT_EQ(readBytes(target()), newFile());
}

// Several that save at once.

TEST_F(ConfigManagerSaveTest, anothersTemporaryFileIsNotTouchedWhileHeHoldsIt)
{
    writeBytes(temporary(), "half of another's");
    const int other = open(temporary().c_str(), O_RDONLY);
    ASSERT_EQ(flock(other, LOCK_EX), 0);
    EXPECT_EQ(save("-o /dev/null"), 1);
    EXPECT_EQ(readBytes(temporary()), "half of another's");
    EXPECT_EQ(readBytes(target()), kOld);
    close(other);
    EXPECT_EQ(save("-o /dev/null"), 0);
    EXPECT_EQ(readBytes(target()), newFile());
}

TEST_F(ConfigManagerSaveTest, twoThatSaveAtOnceNeverShowAnEmptyOrHalfFile)
{
    writeBytes(target(), newFile());
    std::atomic<int> running = 2;
    std::vector<std::thread> savers;
    for (int i = 0; i < 2; ++i) {
        savers.emplace_back([&] {
            EXPECT_EQ(runProcess({ SAVE_SETTINGS_DRIVER, target(), value, "many", "400" }).exitCode, 0);
            --running;
        });
    }
    int looks = 0;
    int bad = 0;
    for (; running > 0; ++looks)
        bad += readBytes(target()) != newFile();
    for (std::thread& saver : savers)
        saver.join();
    EXPECT_EQ(bad, 0) << "of " << looks;
    EXPECT_GT(looks, 0);
    EXPECT_FALSE(std::filesystem::exists(temporary()));
}
