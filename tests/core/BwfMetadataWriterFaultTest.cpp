// Saves that are killed, torn, refused or starved. The save runs in a process of its own; the file is looked at from
// outside, before and after.

#include "tests/support/ChangedRanges.h"
#include "tests/support/RunProcess.h"
#include "tests/support/TempFolder.h"
#include "tests/support/WavBuilder.h"

#include <gtest/gtest.h>

#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <linux/fs.h>
#include <memory>
#include <string>
#include <sys/ioctl.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace {

namespace fs = std::filesystem;

constexpr int kTrue = 0;
constexpr int kFalse = 1;
constexpr size_t kDescription = 256;
constexpr size_t kIxmlBytes = 20000; // Several times the buffer of a file stream.
constexpr uint64_t kNewTimeReference = 0x0102030405060708u;
constexpr int kMaxCalls = 200; // Far more than a save makes.

const std::vector<std::string> kEverything = { "scene=9", "timeReference=" + std::to_string(kNewTimeReference) };
const std::vector<std::string> kNothing = {};

std::string field(std::string text, size_t size)
{
    text.resize(size, '\0');
    return text;
}

// In the builds with a sanitizer the driver must bear a library in front of the sanitizer's own and a tracer.
const std::vector<std::string> kPatientSanitizers = { "ASAN_OPTIONS=verify_asan_link_order=0:detect_leaks=0" };

class WriterFaultTest : public testing::Test {
protected:
    void SetUp() override
    {
        BextFields bext;
        bext.description = "aSCENE=12\naTAKE=3\n";
        bext.timeReference = 1;
        builder.fmt(48000, 1, 24)
            .bext(bext)
            .ixmlPadded("<BWFXML><SCENE>12</SCENE>" + rest, kIxmlBytes, '\0')
            .dataFrames(2000);
        builder.write(path);
        proof = std::make_unique<FileProof>(path);
    }

    /// What the save writes, in this order. One write each.
    std::vector<Patch> writes() const
    {
        const size_t bext = builder.payloadOffset("bext");
        return {
            { bext, field("aSCENE=9\naTAKE=3\naSPEED=24.000-ND\n", kDescription) },
            { bext + 338, le64(kNewTimeReference) },
            { builder.payloadOffset("iXML"), field("<BWFXML><SCENE>9</SCENE>" + rest, kIxmlBytes) },
        };
    }

    std::vector<Patch> firstWrites(size_t count) const
    {
        std::vector<Patch> result = writes();
        result.resize(std::min(count, result.size()));
        return result;
    }

    /// The first `count` writes and half of the next one.
    std::vector<Patch> writesTornAfter(size_t count) const
    {
        std::vector<Patch> result = firstWrites(count + 1);
        result.back().bytes.resize(result.back().bytes.size() / 2);
        return result;
    }

    ProcessResult save(const std::vector<std::string>& fields, std::vector<std::string> environment = {},
        std::vector<std::string> command = {})
    {
        command.insert(command.end(), { driver, path });
        command.insert(command.end(), fields.begin(), fields.end());
        environment.insert(environment.end(), kPatientSanitizers.begin(), kPatientSanitizers.end());
        return runProcess(command, environment);
    }

    /// `faultHappened` tells afterwards whether there was such a call at all.
    ProcessResult saveWithFault(
        const std::string& call, int at, const std::string& how, const std::vector<std::string>& fields = kEverything)
    {
        const std::string mark = marks.file("mark");
        fs::remove(mark);
        const ProcessResult result = save(fields,
            { "LD_PRELOAD=" FAULTY_FILE_LIBRARY, "TAGWELL_FAULT_PATH=" + path, "TAGWELL_FAULT_CALL=" + call,
                "TAGWELL_FAULT_AT=" + std::to_string(at), "TAGWELL_FAULT_HOW=" + how, "TAGWELL_FAULT_MARK=" + mark,
                "TAGWELL_FAULT_ACCESS=" + access });
        faultHappened = fs::exists(mark);
        return result;
    }

    /// The same for a fault that must happen.
    ProcessResult saveWithSureFault(
        const std::string& call, int at, const std::string& how, const std::vector<std::string>& fields = kEverything)
    {
        const ProcessResult result = saveWithFault(call, at, how, fields);
        EXPECT_TRUE(faultHappened) << call << " " << at;
        return result;
    }

    /// How many of the writes are in the file, or -1 if it is in none of the states between two writes.
    int writesDone() const
    {
        for (size_t count = 0; count <= writes().size(); ++count) {
            if (proof->patchedExactly(firstWrites(count)).empty())
                return static_cast<int>(count);
        }
        return -1;
    }

    void again()
    {
        builder.write(path);
        proof = std::make_unique<FileProof>(path);
    }

    const std::string rest = "<TRACK_LIST><TRACK><CHANNEL_INDEX>1</CHANNEL_INDEX><NAME>Boom</NAME></TRACK></TRACK_LIST>"
        + std::string(15000, 'x') + "</BWFXML>";
    TempFolder folder;
    TempFolder marks;
    bool faultHappened = false;
    std::string access = "read-write"; ///< How the file is open when the fault happens.
    std::string path = folder.file("take.wav");
    std::string driver = SAVE_METADATA_DRIVER;
    WavBuilder builder;
    std::unique_ptr<FileProof> proof;
};

bool tracingWorks()
{
    return runProcess({ "strace", "-f", "-o", "/dev/null", "true" }).exitCode == 0;
}

} // namespace

TEST_F(WriterFaultTest, saveWithoutFaultMakesItsThreeWritesAndIsTrue)
{
    const ProcessResult result = save(kEverything);
    EXPECT_EQ(result.exitCode, kTrue) << result.output;
    EXPECT_EQ(proof->patchedExactly(writes()), "");
    EXPECT_EQ(result.output, "") << "nothing is ever printed";
}

// Killed.

TEST_F(WriterFaultTest, killedAtEachWriteEveryFieldIsOldOrNewAndTheRestEqual)
{
    ASSERT_TRUE(programExists("strace"));
    if (!tracingWorks())
        GTEST_SKIP() << "This system doesn't let one process trace another.";
    for (int at = 1; at <= kMaxCalls; ++at) {
        again();
        const std::string inject
            = "inject=write,writev,pwrite64,pwritev,pwritev2:signal=KILL:when=" + std::to_string(at);
        const ProcessResult result
            = save(kEverything, {}, { "strace", "-f", "-o", "/dev/null", "-P", path, "-e", inject });
        if (result.signal != SIGKILL) {
            EXPECT_EQ(result.exitCode, kTrue) << result.output;
            EXPECT_EQ(at, 4) << "the save makes three writes";
            EXPECT_EQ(writesDone(), 3);
            return;
        }
        EXPECT_EQ(writesDone(), at - 1) << "killed at write " << at;
    }
    FAIL() << "the save never came to its end";
}

TEST_F(WriterFaultTest, killedInTheMiddleOfEachWriteNothingOutsideItsFieldHasChanged)
{
    for (int at = 1; at <= 3; ++at) {
        again();
        EXPECT_EQ(saveWithSureFault("write", at, "half-kill").signal, SIGKILL);
        EXPECT_EQ(proof->patchedExactly(writesTornAfter(static_cast<size_t>(at - 1))), "") << "killed in write " << at;
    }
}

// Errors.

TEST_F(WriterFaultTest, errorWritingTheDescriptionIsNotSeenAndEndsTheSave)
{
    EXPECT_EQ(saveWithSureFault("write", 1, "error").exitCode, kTrue);
    EXPECT_EQ(proof->untouched(), "");
}

TEST_F(WriterFaultTest, errorWritingTheTimeReferenceEndsTheSaveAndKeepsTheDescription)
{
    EXPECT_EQ(saveWithSureFault("write", 2, "error").exitCode, kTrue);
    EXPECT_EQ(writesDone(), 1);
}

TEST_F(WriterFaultTest, errorWritingTheTimeReferenceAloneIsFalse)
{
    EXPECT_EQ(saveWithSureFault("write", 1, "error", { "timeReference=5" }).exitCode, kFalse);
    EXPECT_EQ(proof->untouched(), "");
}

TEST_F(WriterFaultTest, errorWritingTheIxmlIsNotLookedAt)
{
    EXPECT_EQ(saveWithSureFault("write", 3, "error").exitCode, kTrue);
    EXPECT_EQ(writesDone(), 2);
}

TEST_F(WriterFaultTest, fullDiskInTheMiddleOfAWriteLeavesNothingOutsideTheField)
{
    for (int at = 1; at <= 3; ++at) {
        again();
        EXPECT_EQ(saveWithSureFault("write", at, "half-error").exitCode, kTrue);
        EXPECT_EQ(proof->patchedExactly(writesTornAfter(static_cast<size_t>(at - 1))), "") << "error in write " << at;
    }
}

TEST_F(WriterFaultTest, fullDiskAtEachWriteLeavesTheFieldsInFrontOfItWritten)
{
    for (int at = 1; at <= 3; ++at) {
        again();
        EXPECT_EQ(saveWithSureFault("write", at, "full").exitCode, kTrue);
        EXPECT_EQ(writesDone(), at - 1);
    }
}

TEST_F(WriterFaultTest, writeThatTakesOnlyHalfIsCompleted)
{
    for (int at = 1; at <= 3; ++at) {
        again();
        EXPECT_EQ(saveWithSureFault("write", at, "short").exitCode, kTrue);
        EXPECT_EQ(writesDone(), 3);
    }
}

TEST_F(WriterFaultTest, errorInAnySeekLeavesWholeFieldsAndFalseMeansUntouched)
{
    for (int at = 1; at <= kMaxCalls; ++at) {
        again();
        const ProcessResult result = saveWithFault("seek", at, "error");
        EXPECT_GE(writesDone(), 0) << "seek " << at;
        if (!faultHappened) {
            EXPECT_GT(at, 3);
            EXPECT_EQ(writesDone(), 3);
            return;
        }
        ASSERT_TRUE(result.exitCode == kTrue || result.exitCode == kFalse) << "seek " << at;
        if (result.exitCode == kFalse) {
            EXPECT_EQ(proof->untouched(), "") << "seek " << at;
        }
    }
    FAIL() << "the save never came to its end";
}

TEST_F(WriterFaultTest, timeReferenceAloneIsTrueExactlyIfItIsWrittenWhateverSeekFails)
{
    const Patch wanted = { builder.payloadOffset("bext") + 338, le64(5) };
    for (int at = 1; at <= kMaxCalls; ++at) {
        again();
        const ProcessResult result = saveWithFault("seek", at, "error", { "timeReference=5" });
        const bool written = proof->patchedExactly({ wanted }).empty();
        if (!faultHappened) {
            EXPECT_TRUE(written);
            return;
        }
        EXPECT_EQ(result.exitCode, written ? kTrue : kFalse) << "seek " << at;
        if (!written) {
            EXPECT_EQ(proof->untouched(), "") << "seek " << at;
        }
    }
    FAIL() << "the save never came to its end";
}

TEST_F(WriterFaultTest, errorInAnyReadLeavesWholeFieldsAndFalseMeansUntouched)
{
    for (int at = 1; at <= kMaxCalls; ++at) {
        again();
        const ProcessResult result = saveWithFault("read", at, "error");
        EXPECT_GE(writesDone(), 0) << "read " << at;
        if (!faultHappened) {
            EXPECT_GT(at, 1);
            EXPECT_EQ(writesDone(), 3);
            return;
        }
        ASSERT_TRUE(result.exitCode == kTrue || result.exitCode == kFalse) << "read " << at;
        if (result.exitCode == kFalse) {
            EXPECT_EQ(proof->untouched(), "") << "read " << at;
        }
    }
    FAIL() << "the save never came to its end";
}

TEST_F(WriterFaultTest, errorInClosingHasNoEffect)
{
    EXPECT_EQ(saveWithSureFault("close", 1, "error").exitCode, kTrue);
    EXPECT_EQ(writesDone(), 3);
    again();
    EXPECT_EQ(saveWithSureFault("close", 1, "error", { "circled=true" }).exitCode, kFalse) << "no room for the element";
    EXPECT_EQ(proof->untouched(), "");
}

// The read in front of the save.

namespace {

struct Layout {
    const char* name;
    WavBuilder file;
};

/// Where the metadata can stand to the audio, and files in which a search runs off the end.
std::vector<Layout> layouts()
{
    BextFields bext;
    bext.description = "aSCENE=12\naTAKE=3\naTAG=Film\naNOTE=wind\naTRK1=Boom\n";
    bext.codingHistory = std::string(800, 'h');
    // Its rate goes into the Description: a save that has not read it writes another one.
    const std::string ixml = "<BWFXML><SPEED><TIMECODE_RATE>25/1</TIMECODE_RATE></SPEED><TAKE>3</TAKE></BWFXML>";
    constexpr size_t kFrames = 30000; // More than all that is read ahead.

    std::vector<Layout> result(5);
    result[0].name = "in front of the audio";
    result[0].file.fmt(48000, 1, 24).bext(bext).ixmlPadded(ixml, kIxmlBytes, '\0').dataFrames(kFrames);
    result[1].name = "behind the audio";
    result[1].file.fmt(48000, 1, 24).dataFrames(kFrames).bext(bext).ixmlPadded(ixml, 100000, ' ');
    result[2].name = "RF64";
    result[2].file = WavBuilder::rf64();
    result[2].file.ds64(3 * kFrames).fmt(48000, 1, 24).bext(bext).ixml(ixml).dataFrames(kFrames);
    result[3].name = "no iXML";
    result[3].file.fmt(48000, 1, 24).bext(bext).dataFrames(kFrames);
    result[4].name = "no audio, iXML cut";
    result[4].file.bext(bext).ixml(ixml).claimSize("iXML", 5000);
    return result;
}

} // namespace

class ReadFaultTest : public WriterFaultTest {
protected:
    enum class Outcome { NoSuchCall, Refused, Complete, Other };

    ReadFaultTest() { access = "read"; }

    /// Saves once without a fault in each layout, and then once for each call of the kind, which goes wrong.
    /// Each of these saves must come to `wanted`, or also to `allowed`.
    void expectEach(const std::string& call, const std::string& how, Outcome wanted, Outcome allowed)
    {
        for (const Layout& layout : layouts()) {
            SCOPED_TRACE(call + " " + how + ", " + layout.name);
            builder = layout.file;
            again();
            ASSERT_EQ(save(kTake).exitCode, kTrue);
            saved = readBytes(path);
            ASSERT_NE(saved, proof->before());
            calls = 0;
            bool wantedCame = false;
            for (Outcome outcome = saveWithNext(call, how); outcome != Outcome::NoSuchCall;
                 outcome = saveWithNext(call, how)) {
                EXPECT_TRUE(outcome == wanted || outcome == allowed) << "call " << calls;
                wantedCame = wantedCame || outcome == wanted;
                ASSERT_LT(calls, kMaxCalls) << "the save never came to its end";
            }
            EXPECT_TRUE(wantedCame);
        }
    }
    void expectEachRefused(const std::string& call, const std::string& how)
    {
        expectEach(call, how, Outcome::Refused, Outcome::Refused);
    }

    int calls = 0; ///< The last call that was let go wrong; one more than there were at the end.

private:
    Outcome saveWithNext(const std::string& call, const std::string& how)
    {
        again();
        const ProcessResult result = saveWithFault(call, ++calls, how, kTake);
        if (!faultHappened)
            return Outcome::NoSuchCall;
        if (result.exitCode == kFalse && proof->untouched().empty())
            return Outcome::Refused;
        return result.exitCode == kTrue && readBytes(path) == saved ? Outcome::Complete : Outcome::Other;
    }

    const std::vector<std::string> kTake = { "take=4" };
    std::string saved; ///< What the file is to be when all goes well.
};

TEST_F(ReadFaultTest, eachOfTheThreeOpensThatFailsIsFalseAndUntouched)
{
    expectEachRefused("open", "error");
    EXPECT_EQ(calls, 4);
}

TEST_F(ReadFaultTest, errorInAnyReadIsFalseAndUntouched)
{
    expectEachRefused("read", "error");
}

TEST_F(ReadFaultTest, errorInTheMiddleOfAnyReadIsFalseAndUntouched)
{
    expectEachRefused("read", "half-error");
}

TEST_F(ReadFaultTest, errorInAnySeekIsFalseAndUntouched)
{
    expectEachRefused("seek", "error");
}

// As when another program cuts the file meanwhile. Where nothing stands behind the read, nothing is missed.
TEST_F(ReadFaultTest, fileThatEndsInFrontOfItsSizeIsFalseAndUntouched)
{
    expectEach("read", "end", Outcome::Refused, Outcome::Complete);
}

TEST_F(ReadFaultTest, readThatGivesOnlyHalfGoesOnAndTheSaveIsComplete)
{
    expectEach("read", "short", Outcome::Complete, Outcome::Complete);
}

TEST_F(ReadFaultTest, saveThatWouldHaveNothingToWriteIsFalseToo)
{
    EXPECT_EQ(saveWithSureFault("read", 1, "error", kNothing).exitCode, kFalse);
    EXPECT_EQ(proof->untouched(), "");
}

// Refused.

namespace {

/// The command that runs the rest as a user without any rights; empty if this process has none itself.
std::vector<std::string> asPlainUser()
{
    if (geteuid() != 0)
        return {};
    return { "setpriv", "--reuid=65534", "--regid=65534", "--clear-groups" };
}

} // namespace

TEST_F(WriterFaultTest, readOnlyFileOfAPlainUserIsFalseAndUntouched)
{
    ASSERT_TRUE(geteuid() != 0 || programExists("setpriv"));
    // The build folder may be closed to other users, so the driver comes along.
    fs::copy_file(driver, folder.file("driver"));
    driver = folder.file("driver");
    fs::permissions(driver, fs::perms(0755));
    fs::permissions(folder.path(), fs::perms(0755));
    proof = std::make_unique<FileProof>(path);
    fs::permissions(path, fs::perms(0444));

    EXPECT_EQ(save(kEverything, {}, asPlainUser()).exitCode, kFalse);
    EXPECT_EQ(proof->untouched(), "");
    EXPECT_EQ(save(kNothing, {}, asPlainUser()).exitCode, kTrue) << "nothing to write, so nothing is opened";
    EXPECT_EQ(proof->untouched(), "");
}

namespace {

bool setImmutable(const std::string& path, bool on)
{
    const int descriptor = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    int flags = 0;
    bool done = descriptor >= 0 && ioctl(descriptor, FS_IOC_GETFLAGS, &flags) == 0;
    flags = on ? flags | FS_IMMUTABLE_FL : flags & ~FS_IMMUTABLE_FL;
    done = done && ioctl(descriptor, FS_IOC_SETFLAGS, &flags) == 0;
    close(descriptor);
    return done;
}

/// A small file system in memory on a folder, for as long as the object lives.
class SmallDisk {
public:
    explicit SmallDisk(std::string where) : folder(std::move(where))
    {
        fs::create_directory(folder);
        mounted = mount("none", folder.c_str(), "tmpfs", 0, "size=128k") == 0;
    }
    ~SmallDisk()
    {
        if (mounted)
            umount2(folder.c_str(), MNT_DETACH);
    }
    SmallDisk(const SmallDisk&) = delete;
    SmallDisk& operator=(const SmallDisk&) = delete;

    bool ready() const { return mounted; }
    bool makeReadOnly() const { return mount("none", folder.c_str(), nullptr, MS_REMOUNT | MS_RDONLY, nullptr) == 0; }
    /// Takes all the room that is left.
    void fill() const
    {
        const int descriptor = open((folder + "/filler").c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
        const std::string block(4096, 'f');
        while (write(descriptor, block.data(), block.size()) > 0) { }
        close(descriptor);
    }

private:
    std::string folder;
    bool mounted = false;
};

constexpr const char* kNoMounts = "This process may not mount file systems.";

} // namespace

TEST_F(WriterFaultTest, immutableFileIsFalseAndUntouched)
{
    if (!setImmutable(path, true))
        GTEST_SKIP() << "This file system or user can't make a file immutable.";
    const int exitCode = save(kEverything).exitCode;
    ASSERT_TRUE(setImmutable(path, false));
    EXPECT_EQ(exitCode, kFalse);
    EXPECT_EQ(proof->untouched(), "");
}

TEST_F(WriterFaultTest, fileOnAReadOnlyMountIsFalseAndUntouched)
{
    const SmallDisk disk(folder.file("disk"));
    if (!disk.ready())
        GTEST_SKIP() << kNoMounts;
    path = folder.file("disk/take.wav");
    again();
    ASSERT_TRUE(disk.makeReadOnly());
    EXPECT_EQ(save(kEverything).exitCode, kFalse);
    EXPECT_EQ(save(kNothing).exitCode, kTrue);
    EXPECT_EQ(proof->untouched(), "");
}

TEST_F(WriterFaultTest, fullDiskUnderAFileWithAHoleIsTrueAndTheBytesAsBefore)
{
    const SmallDisk disk(folder.file("disk"));
    if (!disk.ready())
        GTEST_SKIP() << kNoMounts;
    path = folder.file("disk/take.wav");
    // The Description lies in a page that the file has never had, so the first write needs room that isn't there.
    constexpr size_t kPage = 4096;
    WavBuilder holed;
    holed.fmt(48000, 1, 24)
        .chunk("JUNK", std::string(kPage - 12 - 24 - 8 - 8, 'j'))
        .chunk("bext", std::string(8192, '\0'));
    ASSERT_EQ(holed.payloadOffset("bext"), kPage);
    writeBytes(path, holed.bytes().substr(0, kPage));
    fs::resize_file(path, holed.bytes().size());
    ASSERT_EQ(readBytes(path), holed.bytes());
    disk.fill();

    const FileProof before(path);
    EXPECT_EQ(save({ "scene=9" }).exitCode, kTrue) << "a failed write of the Description is not seen";
    EXPECT_EQ(before.changedExactly({}), "");
    EXPECT_EQ(save({ "timeReference=5" }).exitCode, kFalse);
    EXPECT_EQ(before.changedExactly({}), "");
}
