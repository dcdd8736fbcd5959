// What a save leaves behind when it is stopped or refused by the system at any of its calls. The driver beside this
// file does the save under strace, which strikes at the call that the test names.

#include "tests/support/TempFolder.h"

#include <sys/wait.h>

#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <sstream>
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
        std::filesystem::create_directories(folder.file("deep/settings"));
        std::filesystem::remove(temporary());
        writeBytes(target(), kOld);
    }

    std::string target() const { return folder.file("deep/settings/config.ini"); }
    std::string temporary() const { return target() + ".tmp"; }

    /// The file as it must be after the save.
    std::string newFile() const
    {
        std::string text = kOld;
        return text.insert(text.find("recording."), "new=" + value + "\n");
    }

    /// Runs the driver under strace and gives what the shell would call its status. The sanitizer's leak check
    /// can't work under strace.
    int save(const std::string& straceOptions) const
    {
        const std::string command = "exec strace -E ASAN_OPTIONS=detect_leaks=0 -qq " + straceOptions + " "
            + SAVE_SETTINGS_DRIVER + " '" + target() + "' " + value + " 2>/dev/null";
        const int status = std::system(command.c_str());
        return WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
    }

    /// The system calls of a whole save, in order.
    std::vector<SystemCall> callsOfASave() const
    {
        const std::string log = folder.file("trace");
        EXPECT_EQ(save("-s 4096 -o '" + log + "'"), 0);
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

    TempFolder folder;
    std::string value = std::string(20000, 'v'); // Longer than any stream's buffer.
};

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
            EXPECT_TRUE(call.name.starts_with("rename")) << call.line.substr(0, 200);
        }
    }
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

TEST_F(ConfigManagerSaveTest, foldersThatCannotBeMadeAndAFailingCloseDoNotMatter)
{
    const std::vector<SystemCall> calls = callsOfASave();
    for (const char* refused : { "mkdir", "close" }) {
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
