#include "tests/cli/CliRun.h"

#include "cli/SumList.h"
#include "tests/support/TempFolder.h"
#include "tests/support/WavBuilder.h"

#include <QByteArray>
#include <QCryptographicHash>

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace {

namespace fs = std::filesystem;

constexpr uint32_t kPlaceholder = 0xFFFFFFFF;

std::string digestOf(const std::string& bytes)
{
    return QCryptographicHash::hash(QByteArray::fromStdString(bytes), QCryptographicHash::Md5).toStdString();
}

std::string digitsOf(const std::string& bytes)
{
    return QByteArray::fromStdString(digestOf(bytes)).toHex().toStdString();
}

std::string linesOf(const std::string& text)
{
    return std::string(kSumListHead) + "\n" + text;
}

class Verify : public testing::Test {
protected:
    std::string put(const std::string& name, const WavBuilder& wav)
    {
        const std::string path = folder.path().string() + "/" + name;
        wav.write(path);
        return path;
    }

    static WavBuilder recording(const std::string& audio) { return WavBuilder().fmt(48000, 1, 8).data(audio); }

    /// No temporary file is left beside the list.
    bool isAlone(const std::string& path)
    {
        for (const auto& entry : fs::directory_iterator(fs::path(path).parent_path())) {
            if (entry.path().filename().string().find("sums") != std::string::npos && entry.path() != path)
                return false;
        }
        return true;
    }

    TempFolder folder;
    std::string sums = folder.file("sums.txt");
};

TEST_F(Verify, sumIsThatOfTheAudioAlone)
{
    const std::string audio(300001, 'a'); // Odd, and more than is read at once.
    const std::string path = put("a.wav", WavBuilder().ixml("<x/>").fmt(48000, 1, 8).data(audio).chunk("more", "text"));
    const CliResult result = runCli({ "verify", path });
    EXPECT_EQ(Exit::Ok, result.exit);
    EXPECT_EQ(linesOf(digitsOf(audio) + "  " + path + "\n"), result.out);
    EXPECT_EQ("", result.err);
}

TEST_F(Verify, audioOfRf64IsTakenBySizeOfDs64)
{
    const std::string path = put("a.wav",
        WavBuilder::rf64().ds64(5).fmt(48000, 1, 8).data("12345").claimSize("data", kPlaceholder).chunk("bext", "x"));
    EXPECT_EQ(linesOf(digitsOf("12345") + "  " + path + "\n"), runCli({ "verify", path }).out);
}

TEST_F(Verify, emptyAudioHasTheSumOfNothing)
{
    const std::string path = put("a.wav", recording(""));
    EXPECT_EQ(linesOf("d41d8cd98f00b204e9800998ecf8427e  " + path + "\n"), runCli({ "verify", path }).out);
}

TEST_F(Verify, shorterFileIsAnErrorWithoutASum)
{
    for (const uint32_t size : { 7u, kPlaceholder }) {
        const std::string path = put("a.wav", recording("123456").claimSize("data", size));
        const CliResult result = runCli({ "verify", path });
        EXPECT_EQ(Exit::Found, result.exit);
        EXPECT_EQ(linesOf(""), result.out);
        EXPECT_EQ("tagwell-cli: " + path + ": its audio is cut: 6 of " + std::to_string(size) + " bytes can be read\n",
            result.err);
    }
}

TEST_F(Verify, fileWithoutAudioIsAnError)
{
    const std::string path = put("a.wav", WavBuilder().fmt(48000, 1, 8));
    EXPECT_EQ("tagwell-cli: " + path + ": it has no audio\n", runCli({ "verify", path }).err);
}

TEST_F(Verify, storedSumIsComparedInBothByteOrders)
{
    const std::string digest = digestOf("audio");
    const std::string reversed(digest.rbegin(), digest.rend());
    const auto resultOf = [this](const std::string& stored) {
        return runCli({ "verify", put("a.wav", recording("audio").chunk("MD5 ", stored)) });
    };
    EXPECT_NE(std::string::npos, resultOf(digest).out.find(": its MD5 chunk agrees\n"));
    EXPECT_NE(std::string::npos, resultOf(reversed).out.find(": its MD5 chunk agrees, bytes last first\n"));
    EXPECT_EQ(Exit::Ok, resultOf(reversed).exit);
    EXPECT_EQ(Exit::Found, resultOf(digestOf("other")).exit);
    EXPECT_NE(std::string::npos, resultOf(digestOf("other")).out.find(": its MD5 chunk DIFFERS\n"));
    EXPECT_EQ(Exit::Found, resultOf("short").exit);
    EXPECT_NE(std::string::npos, resultOf("short").out.find(": its MD5 chunk is no sum\n"));
}

TEST_F(Verify, everyStoredSumIsCompared)
{
    const std::string path
        = put("a.wav", recording("audio").chunk("MD5 ", digestOf("audio")).chunk("MD5 ", digestOf("other")));
    EXPECT_EQ(Exit::Found, runCli({ "verify", path }).exit);
}

TEST_F(Verify, editOfMetadataLeavesTheSumAndEditOfAudioDoesNot)
{
    const std::string path = put("a.wav", WavBuilder().ixml("<SCENE>1</SCENE>").fmt(48000, 1, 8).data("audio"));
    ASSERT_EQ(Exit::Ok, runCli({ "verify", "--write", sums, path }).exit);
    put("a.wav", WavBuilder().ixml("<SCENE>2</SCENE>").fmt(48000, 1, 8).data("audio"));
    const CliResult same = runCli({ "verify", "--check", sums });
    EXPECT_EQ(Exit::Ok, same.exit);
    EXPECT_EQ(path + ": OK\n", same.out);
    put("a.wav", WavBuilder().ixml("<SCENE>2</SCENE>").fmt(48000, 1, 8).data("audiO"));
    const CliResult other = runCli({ "verify", "--check", sums });
    EXPECT_EQ(Exit::Found, other.exit);
    EXPECT_EQ(path + ": FAILED\n", other.out);
}

TEST_F(Verify, listIsWhatVerifyPrints)
{
    put("a.wav", recording("a"));
    put("b.wav", recording("b"));
    const std::string printed = runCli({ "verify", folder.path().string() }).out;
    EXPECT_EQ("", runCli({ "verify", "--write", sums, folder.path().string() }).out);
    EXPECT_EQ(printed, readBytes(sums));
    EXPECT_TRUE(isAlone(sums));
}

TEST_F(Verify, oddNamesComeBackFromTheList)
{
    for (const std::string name :
        { "two\nlines.wav", "carriage\r.wav", "back\\slash.wav", "\xFF\xFE.wav", " blank .wav", "*star.wav" }) {
        const std::string path = put(name, recording("audio"));
        ASSERT_EQ(Exit::Ok, runCli({ "verify", "--write", sums, path }).exit);
        const std::string list = readBytes(sums);
        EXPECT_EQ(2, std::count(list.begin(), list.end(), '\n')) << list;
        EXPECT_EQ(Exit::Ok, runCli({ "verify", "--check", sums }).exit) << list;
        EXPECT_EQ(Exit::Ok, runCli({ "verify", "--check", sums, path }).exit) << list;
    }
}

TEST_F(Verify, fileThatIsNotListedFails)
{
    const std::string a = put("a.wav", recording("a"));
    const std::string b = put("b.wav", recording("b"));
    ASSERT_EQ(Exit::Ok, runCli({ "verify", "--write", sums, a }).exit);
    const CliResult result = runCli({ "verify", "--check", sums, folder.path().string() });
    EXPECT_EQ(Exit::Found, result.exit);
    EXPECT_EQ(a + ": OK\n" + b + ": FAILED, nothing was compared\n", result.out);
    EXPECT_EQ("tagwell-cli: " + b + ": it is not in the list of sums\n", result.err);
}

TEST_F(Verify, listedFileThatIsGoneFails)
{
    const std::string a = put("a.wav", recording("a"));
    ASSERT_EQ(Exit::Ok, runCli({ "verify", "--write", sums, a }).exit);
    fs::remove(a);
    const CliResult result = runCli({ "verify", "--check", sums });
    EXPECT_EQ(Exit::Found, result.exit);
    EXPECT_EQ("tagwell-cli: " + a + ": there is no such file\n", result.err);
}

TEST_F(Verify, listOfWholeFilesIsRefused)
{
    writeBytes(sums, digitsOf("x") + "  a.wav\n");
    const CliResult result = runCli({ "verify", "--check", sums });
    EXPECT_EQ(Exit::Found, result.exit);
    EXPECT_EQ("", result.out);
    EXPECT_NE(std::string::npos, result.err.find("no list of audio sums"));
}

TEST_F(Verify, linesThatAreNoSumsAreToldAndFail)
{
    const std::string a = put("a.wav", recording("a"));
    const std::string good = digitsOf("a") + "  " + a;
    for (const std::string& bad : { std::string("nonsense"), digitsOf("a") + " " + a,
             digitsOf("a").substr(1) + "g  " + a, "\\" + digitsOf("a") + "  back\\slash", digitsOf("b") + "  " + a }) {
        writeBytes(sums, linesOf(good + "\n\n# comment\n" + bad + "\n"));
        const CliResult result = runCli({ "verify", "--check", sums });
        EXPECT_EQ(Exit::Found, result.exit) << bad;
        EXPECT_EQ(a + ": OK\n", result.out);
        EXPECT_NE(std::string::npos, result.err.find(": line 5 is no sum")) << result.err;
    }
}

TEST_F(Verify, listWithOtherLineEndsStarsAndCapitalsIsRead)
{
    const std::string a = put("a.wav", recording("a"));
    std::string digits = digitsOf("a");
    std::transform(digits.begin(), digits.end(), digits.begin(), [](unsigned char each) { return std::toupper(each); });
    writeBytes(sums, std::string(kSumListHead) + "\r\n" + digits + " *" + a + "\r\n");
    EXPECT_EQ(a + ": OK\n", runCli({ "verify", "--check", sums }).out);
}

TEST_F(Verify, emptyListIsNoProof)
{
    writeBytes(sums, linesOf(""));
    EXPECT_EQ(Exit::Found, runCli({ "verify", "--check", sums }).exit);
}

TEST_F(Verify, interruptionLeavesTheOldList)
{
    const std::string a = put("a.wav", recording("a"));
    const std::string b = put("b.wav", recording("b"));
    writeBytes(sums, "old");
    EXPECT_EQ(Exit::Found, runCli({ "verify", "--write", sums, a, b }, { .interruptAfter = 1 }).exit);
    EXPECT_EQ("old", readBytes(sums));
    EXPECT_TRUE(isAlone(sums));
}

TEST_F(Verify, filesThatFailAreNotInTheList)
{
    const std::string a = put("a.wav", recording("a"));
    EXPECT_EQ(Exit::Found, runCli({ "verify", "--write", sums, folder.file("gone.wav"), a }).exit);
    EXPECT_EQ(linesOf(digitsOf("a") + "  " + a + "\n"), readBytes(sums));
}

TEST_F(Verify, listThatCannotBeWrittenIsToldBeforeTheWork)
{
    const std::string a = put("a.wav", recording("a"));
    int asked = 0;
    const CliResult result
        = runCli({ "verify", "--write", folder.file("none/sums"), a }, { .beforeFile = [&](int) { ++asked; } });
    EXPECT_EQ(Exit::Found, result.exit);
    EXPECT_EQ("tagwell-cli: " + folder.file("none/sums") + ": there is no such file\n", result.err);
    EXPECT_EQ(0, asked);
    EXPECT_EQ(Exit::Found, runCli({ "verify", "--write", "/dev/null", a }).exit);
    EXPECT_TRUE(fs::is_character_file("/dev/null"));
}

TEST_F(Verify, listNeverReplacesARecording)
{
    const std::string a = put("a.wav", recording("a"));
    const std::string other = put("other.bin", recording("b"));
    writeBytes(folder.file("empty.WAV"), "");
    fs::create_symlink(a, folder.file("link"));
    for (const std::string& target : { a, other, folder.file("link"), folder.file("empty.WAV") }) {
        const std::string before = readBytes(target);
        const CliResult result = runCli({ "verify", "--write", target, a });
        EXPECT_EQ(Exit::Found, result.exit);
        EXPECT_EQ("tagwell-cli: " + target + ": it is a recording, and none is replaced\n", result.err);
        EXPECT_EQ(before, readBytes(target));
    }
}

TEST_F(Verify, listKeepsPermissionsAndLinks)
{
    const std::string a = put("a.wav", recording("a"));
    writeBytes(sums, "old");
    fs::permissions(sums, fs::perms::owner_read | fs::perms::owner_write);
    fs::create_symlink(sums, folder.file("link"));
    ASSERT_EQ(Exit::Ok, runCli({ "verify", "--write", folder.file("link"), a }).exit);
    EXPECT_TRUE(fs::is_symlink(folder.file("link")));
    EXPECT_EQ(linesOf(digitsOf("a") + "  " + a + "\n"), readBytes(sums));
    EXPECT_EQ(fs::perms::owner_read | fs::perms::owner_write, fs::status(sums).permissions());
}

TEST_F(Verify, wrongUsageEndsWithTwo)
{
    for (const std::vector<std::string>& arguments :
        { std::vector<std::string>{ "verify" }, { "verify", "--write", sums }, { "verify", "--write" },
            { "verify", "--write", "a", "--check", "b", "c" }, { "verify", "--write=a", "--write=b", "c" } })
        EXPECT_EQ(Exit::Usage, runCli(arguments).exit);
}

} // namespace
