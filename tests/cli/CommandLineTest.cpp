#include "tests/cli/CliRun.h"

#include "cli/CommandLine.h"
#include "cli/Progress.h"
#include "tests/support/TempFolder.h"
#include "tests/support/WavBuilder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <sstream>

namespace {

namespace fs = std::filesystem;

/// A folder with recordings.
class CommandLine : public testing::Test {
protected:
    std::string put(const std::string& name)
    {
        const std::string path = folder.path().string() + "/" + name;
        fs::create_directories(fs::path(path).parent_path());
        WavBuilder().fmt(48000, 1, 24).dataFrames(10).write(path);
        return path;
    }

    /// Paths that the run's text output is headed by, in order.
    static std::vector<std::string> paths(const CliResult& result)
    {
        std::vector<std::string> found;
        std::istringstream lines(result.out);
        for (std::string line; std::getline(lines, line);) {
            if (line.starts_with("/"))
                found.push_back(line);
        }
        return found;
    }

    TempFolder folder;
};

using Paths = std::vector<std::string>;

TEST_F(CommandLine, versionIsTheFirstLine)
{
    const CliResult result = runCli({ "--version" });
    EXPECT_EQ(Exit::Ok, result.exit);
    EXPECT_EQ("tagwell-cli " TAGWELL_VERSION "\n", result.out);
    EXPECT_EQ("", result.err);
}

TEST_F(CommandLine, helpNamesEachCommand)
{
    const CliResult result = runCli({ "--help" });
    EXPECT_EQ(Exit::Ok, result.exit);
    for (const Command& command : allCommands())
        EXPECT_NE(std::string::npos, result.out.find("\n  " + std::string(command.name) + " ")) << command.name;
}

TEST_F(CommandLine, helpOfEachCommandHasItsOptionsAndAnExample)
{
    for (const Command& command : allCommands()) {
        const CliResult result = runCli({ std::string(command.name), "--help" });
        EXPECT_EQ(Exit::Ok, result.exit);
        for (const Option& option : command.options)
            EXPECT_NE(std::string::npos, result.out.find("--" + std::string(option.name))) << option.name;
        EXPECT_NE(std::string::npos, result.out.find("Example:\n  tagwell-cli " + std::string(command.name)));
    }
}

TEST_F(CommandLine, wrongUsageEndsWithTwoAndDoesNothing)
{
    const std::string file = put("A.wav");
    const std::vector<std::vector<std::string>> wrong = { {}, { "paint" }, { "dump" }, { "dump", "--loud", file },
        { "dump", "-x", file }, { "dump", "--json=yes", file }, { "dump", "--json", "--csv", file } };
    for (const auto& arguments : wrong) {
        const CliResult result = runCli(arguments);
        EXPECT_EQ(Exit::Usage, result.exit);
        EXPECT_EQ("", result.out);
        EXPECT_EQ(1, std::count(result.err.begin(), result.err.end(), '\n')) << result.err;
    }
}

TEST_F(CommandLine, folderStandsForItsRecordingsInTheOrderOfTheWindow)
{
    const Paths expected = { put("day/a1.wav"), put("day/B/x.WAV"), put("day/c.Wav") };
    put("day/.hidden.wav");
    writeBytes(folder.file("day/notes.txt"), "no recording");
    EXPECT_EQ(expected, paths(runCli({ "dump", folder.file("day") })));
}

TEST_F(CommandLine, filesComeInTheirOrderAndEachOnce)
{
    const std::string a = put("a.wav");
    const std::string b = put("b.wav");
    EXPECT_EQ((Paths{ b, a }), paths(runCli({ "dump", b, folder.path().string(), b })));
}

TEST_F(CommandLine, listOnStandardInputHasOnePathALine)
{
    const std::string a = put("a.wav");
    const std::string b = put("b.wav");
    EXPECT_EQ((Paths{ b, a }), paths(runCli({ "dump", "-" }, { .in = b + "\n\n" + a + "\n" })));
}

TEST_F(CommandLine, nullSeparatedListKeepsLineFeedsInNames)
{
    const std::string odd = put("two\nlines.wav");
    const std::string list = odd + std::string(1, '\0');
    for (const std::vector<std::string>& arguments : { Paths{ "dump", "-0", "-" }, Paths{ "dump", "--null" } }) {
        const CliResult result = runCli(arguments, { .in = list });
        EXPECT_EQ(Exit::Ok, result.exit) << result.err;
        EXPECT_EQ(1u, paths(result).size());
    }
}

TEST_F(CommandLine, doubleDashEndsTheOptions)
{
    const CliResult result = runCli({ "dump", "--", "--json" });
    EXPECT_EQ(Exit::Found, result.exit);
    EXPECT_EQ("tagwell-cli: --json: there is no such file\n", result.err);
}

TEST_F(CommandLine, failedFileIsOneLineAndTheRestGoesOn)
{
    const std::string a = put("a.wav");
    const std::string missing = folder.file("gone\nfar.wav");
    const CliResult result = runCli({ "dump", missing, a });
    EXPECT_EQ(Exit::Found, result.exit);
    EXPECT_EQ("tagwell-cli: " + folder.file("gone\\nfar.wav") + ": there is no such file\n", result.err);
    EXPECT_EQ(Paths{ a }, paths(result));
}

TEST_F(CommandLine, folderWithoutRecordingsIsNoSuccess)
{
    fs::create_directory(folder.file("empty"));
    const CliResult result = runCli({ "dump", folder.file("empty") });
    EXPECT_EQ(Exit::Found, result.exit);
    EXPECT_NE(std::string::npos, result.err.find("no WAV file"));
}

TEST_F(CommandLine, recordingThatTheWalkCannotNameIsReported)
{
    const std::string bytes = put("day/\xE9t\xE9.wav");
    const std::string plain = put("day/a.wav");
    const CliResult walked = runCli({ "dump", folder.file("day") });
    EXPECT_EQ(Exit::Found, walked.exit);
    EXPECT_EQ(Paths{ plain }, paths(walked));
    EXPECT_NE(std::string::npos, walked.err.find(bytes));
    EXPECT_EQ(Exit::Ok, runCli({ "dump", bytes }).exit);
}

TEST_F(CommandLine, folderWithAnyNameIsWalked)
{
    put("\xFF/a.wav");
    EXPECT_EQ(1u, paths(runCli({ "dump", folder.path().string() + "/\xFF" })).size());
}

TEST_F(CommandLine, interruptionEndsBetweenTwoFilesAndSaysHowFarItCame)
{
    const std::string a = put("a.wav");
    const std::string b = put("b.wav");
    const CliResult result = runCli({ "dump", a, b }, { .interruptAfter = 1 });
    EXPECT_EQ(Exit::Found, result.exit);
    EXPECT_EQ(Paths{ a }, paths(result));
    EXPECT_EQ("tagwell-cli: interrupted after 1 of 2 files\n", result.err);
}

TEST_F(CommandLine, fullDiskUnderStandardOutputIsNotSilent)
{
    const std::string a = put("a.wav");
    const CliResult result = runCli({ "dump", a }, { .outRoom = 100 });
    EXPECT_EQ(Exit::Found, result.exit);
    EXPECT_EQ("tagwell-cli: standard output can't be written\n", result.err);
}

TEST_F(CommandLine, progressShowsOnATerminalAfterHalfASecondAndGoesAway)
{
    std::vector<std::string> arguments = { "dump" };
    for (int i = 0; i < 4; ++i)
        arguments.push_back(put(std::to_string(i) + ".wav"));
    const CliResult slow = runCli(arguments, { .errIsTerminal = true, .millisPerLook = 300 });
    EXPECT_NE(std::string::npos, slow.err.find("2 of 4 files"));
    EXPECT_EQ('\r', slow.err.back());
    EXPECT_EQ("", runCli(arguments, { .errIsTerminal = true, .millisPerLook = 100 }).err);
    EXPECT_EQ("", runCli(arguments, { .millisPerLook = 300 }).err);
}

TEST(ProgressLine, tellsFilesAndTheTimeLeft)
{
    EXPECT_EQ("12 of 5000 files, 4:10 left", progressLine(12, 5000, 600, 80));
    EXPECT_EQ("0 of 5 files", progressLine(0, 5, 600, 80));
    EXPECT_EQ("5 of 5 files, 0:00 left", progressLine(5, 5, 600, 80));
    EXPECT_EQ("12 of", progressLine(12, 5000, 600, 6));
    EXPECT_EQ("", progressLine(1, 1, 1, 0));
}

} // namespace
