// Edits by the program that are killed, torn or starved in the middle. The file is looked at from outside, before and
// after.

#include "tests/support/ChangedRanges.h"
#include "tests/support/RunProcess.h"
#include "tests/support/TempFolder.h"
#include "tests/support/WavBuilder.h"

#include <gtest/gtest.h>

#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <linux/fs.h>
#include <memory>
#include <string>
#include <sys/ioctl.h>
#include <unistd.h>
#include <vector>

namespace {

namespace fs = std::filesystem;

constexpr size_t kDescription = 256;
constexpr size_t kIxmlBytes = 20000; // Several times the buffer of a file stream.
constexpr int kMaxCalls = 200; // Far more than an edit makes.

// In the builds with a sanitizer the program must bear a library in front of the sanitizer's own.
const std::string kPatientSanitizer = "ASAN_OPTIONS=verify_asan_link_order=0:detect_leaks=0";

std::string field(std::string text, size_t size, char fill = '\0')
{
    text.resize(size, fill);
    return text;
}

class SetFault : public testing::Test {
protected:
    void SetUp() override { again(); }

    static std::string ixml(const std::string& scene, const std::string& low)
    {
        return "<BWFXML><SCENE>" + scene
            + "</SCENE><SPEED><TIMECODE_RATE>25/1</TIMECODE_RATE><TIMESTAMP_SAMPLES_SINCE_MIDNIGHT_HI>0"
              "</TIMESTAMP_SAMPLES_SINCE_MIDNIGHT_HI><TIMESTAMP_SAMPLES_SINCE_MIDNIGHT_LO>"
            + low + "</TIMESTAMP_SAMPLES_SINCE_MIDNIGHT_LO></SPEED><NOTE>" + std::string(15000, 'x')
            + "</NOTE></BWFXML>";
    }

    void again()
    {
        BextFields bext;
        bext.description = "aSCENE=12\naSPEED=25.000-ND\n";
        bext.timeReference = 48000;
        builder = WavBuilder();
        builder.fmt(48000, 1, 24).bext(bext).ixmlPadded(ixml("12", "48000"), kIxmlBytes, ' ').dataFrames(2000);
        builder.write(path);
        proof = std::make_unique<FileProof>(path);
    }

    /// What the edit writes, in this order. One write each.
    std::vector<Patch> writes(size_t count = 3) const
    {
        const size_t bext = builder.payloadOffset("bext");
        std::vector<Patch> all{
            { bext, field("aSCENE=12A & B\naSPEED=25.000-ND\n", kDescription) },
            { bext + 338, le64(172800000) },
            { builder.payloadOffset("iXML"), field(ixml("12A &amp; B", "172800000"), kIxmlBytes, ' ') },
        };
        all.resize(count);
        return all;
    }

    /// The first `count` writes and half of the next one.
    std::vector<Patch> writesTornAfter(size_t count) const
    {
        std::vector<Patch> result = writes(count + 1);
        result.back().bytes.resize(result.back().bytes.size() / 2);
        return result;
    }

    /// How many of the writes are in the file, or -1 if it is in none of the states between two writes.
    int writesDone() const
    {
        for (size_t count = 0; count <= 3; ++count) {
            if (proof->patchedExactly(writes(count)).empty())
                return static_cast<int>(count);
        }
        return -1;
    }

    ProcessResult set(std::vector<std::string> environment = {}, std::vector<std::string> command = {})
    {
        environment.push_back(kPatientSanitizer);
        for (const char* word : { TAGWELL_CLI, "set", "--use-padding", "--scene", "12A & B", "--start", "01:00:00:00" })
            command.emplace_back(word);
        command.push_back(path);
        return runProcess(command, environment);
    }

    ProcessResult setWithFault(
        const std::string& call, int at, const std::string& how, const std::string& access = "read-write")
    {
        const std::string mark = marks.file("mark");
        fs::remove(mark);
        const ProcessResult result = set({ "LD_PRELOAD=" FAULTY_FILE_LIBRARY, "TAGWELL_FAULT_PATH=" + path,
            "TAGWELL_FAULT_CALL=" + call, "TAGWELL_FAULT_AT=" + std::to_string(at), "TAGWELL_FAULT_HOW=" + how,
            "TAGWELL_FAULT_MARK=" + mark, "TAGWELL_FAULT_ACCESS=" + access });
        faultHappened = fs::exists(mark);
        return result;
    }

    bool says(const ProcessResult& result, const std::string& words) const
    {
        return result.output == "tagwell-cli: " + path + ": " + words + "\n";
    }

    TempFolder folder;
    TempFolder marks;
    std::string path = folder.file("take.wav");
    WavBuilder builder;
    std::unique_ptr<FileProof> proof;
    bool faultHappened = false;
};

TEST_F(SetFault, withoutAFaultTheThreeWritesAreMade)
{
    const ProcessResult result = set();
    EXPECT_EQ(0, result.exitCode) << result.output;
    EXPECT_EQ("", proof->patchedExactly(writes()));
}

TEST_F(SetFault, killedInTheMiddleOfEachWriteNothingOutsideItsPlaceHasChanged)
{
    for (int at = 1; at <= 3; ++at) {
        again();
        EXPECT_EQ(SIGKILL, setWithFault("write", at, "half-kill").signal);
        EXPECT_TRUE(faultHappened);
        EXPECT_EQ("", proof->patchedExactly(writesTornAfter(static_cast<size_t>(at - 1)))) << "killed in write " << at;
    }
}

TEST_F(SetFault, killedBetweenWritesEachPlaceIsOldOrNew)
{
    ASSERT_TRUE(programExists("strace"));
    if (runProcess({ "strace", "-f", "-o", "/dev/null", "true" }).exitCode != 0)
        GTEST_SKIP() << "This system doesn't let one process trace another.";
    for (int at = 1; at <= 3; ++at) {
        again();
        const std::string inject = "inject=write,writev,pwrite64,pwritev:signal=KILL:when=" + std::to_string(at);
        EXPECT_EQ(SIGKILL, set({}, { "strace", "-f", "-o", "/dev/null", "-P", path, "-e", inject }).signal);
        EXPECT_EQ(at - 1, writesDone()) << "killed at write " << at;
    }
}

TEST_F(SetFault, errorInAnyWriteIsSaidAndTheWritesBehindItAreNotMade)
{
    for (const char* const how : { "error", "full" }) {
        for (int at = 1; at <= 3; ++at) {
            again();
            const ProcessResult result = setWithFault("write", at, how);
            EXPECT_EQ(1, result.exitCode);
            EXPECT_EQ(at - 1, writesDone());
            EXPECT_TRUE(says(result,
                "THE WRITE FAILED: " + std::to_string(at - 1)
                    + " of 3 places are written; look at it before you use it"))
                << result.output;
        }
    }
}

TEST_F(SetFault, errorInTheMiddleOfAWriteIsSaidAndStaysInsideThePlace)
{
    for (int at = 1; at <= 3; ++at) {
        again();
        EXPECT_EQ(1, setWithFault("write", at, "half-error").exitCode);
        EXPECT_EQ("", proof->patchedExactly(writesTornAfter(static_cast<size_t>(at - 1)))) << "error in write " << at;
    }
}

TEST_F(SetFault, writeThatTakesOnlyHalfIsCompleted)
{
    for (int at = 1; at <= 3; ++at) {
        again();
        EXPECT_EQ(0, setWithFault("write", at, "short").exitCode);
        EXPECT_EQ(3, writesDone());
    }
}

// Whatever goes wrong before the first write leaves the file as it is; whatever goes wrong behind it is said.
TEST_F(SetFault, faultInAnyReadOrSeekGivesAStatusAndWholePlaces)
{
    struct Fault {
        const char* call;
        const char* how;
        const char* access;
    };
    for (const Fault& fault : { Fault{ "read", "error", "read-write" }, Fault{ "read", "half-error", "read-write" },
             Fault{ "read", "end", "read-write" }, Fault{ "seek", "error", "read-write" },
             Fault{ "read", "error", "read" }, Fault{ "open", "error", "read-write" },
             Fault{ "open", "error", "read" } }) {
        SCOPED_TRACE(std::string(fault.call) + " " + fault.how + " " + fault.access);
        int at = 1;
        for (; at <= kMaxCalls; ++at) {
            again();
            const ProcessResult result = setWithFault(fault.call, at, fault.how, fault.access);
            const int done = writesDone();
            EXPECT_GE(done, 0) << at;
            if (!faultHappened) {
                EXPECT_EQ(0, result.exitCode);
                EXPECT_EQ(3, done);
                break;
            }
            // A fault behind the last write is said, too, though all is written by then.
            EXPECT_TRUE(done == 3 || result.exitCode == 1) << at << result.output;
        }
        EXPECT_GT(at, 1);
        EXPECT_LT(at, kMaxCalls);
    }
}

TEST_F(SetFault, fileThatMayOnlyBeReadIsSaidAndUntouched)
{
    const int descriptor = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    int flags = 0;
    const bool works = ioctl(descriptor, FS_IOC_GETFLAGS, &flags) == 0;
    int locked = flags | FS_IMMUTABLE_FL;
    const bool isImmutable = works && ioctl(descriptor, FS_IOC_SETFLAGS, &locked) == 0;
    if (!isImmutable)
        fs::permissions(path, fs::perms::owner_read);
    if (!isImmutable && geteuid() == 0) {
        close(descriptor);
        GTEST_SKIP() << "Nothing keeps this user from writing to a file.";
    }
    const ProcessResult result = set();
    const ProcessResult rehearsed
        = runProcess({ TAGWELL_CLI, "set", "-n", "--scene", "7", path }, { kPatientSanitizer });
    const std::string kept = proof->untouched();
    if (isImmutable)
        ioctl(descriptor, FS_IOC_SETFLAGS, &flags);
    close(descriptor);
    EXPECT_EQ(1, result.exitCode);
    EXPECT_TRUE(says(result, "not written: it can't be opened for writing: there is no permission for it"))
        << result.output;
    EXPECT_EQ(result.output, rehearsed.output);
    EXPECT_EQ("", kept);
}

} // namespace
