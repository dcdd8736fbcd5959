// Edits into the padding of copies of real recordings, read back by programs that have nothing to do with this one.

#include "cli/FileFacts.h"
#include "tests/cli/CliRun.h"
#include "tests/support/ChangedRanges.h"
#include "tests/support/RunProcess.h"
#include "tests/support/TempFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;

constexpr uint64_t kDescription = 256;
constexpr uint64_t kTimeReference = 338;

std::string toolOutput(const std::vector<std::string>& command)
{
    const ProcessResult result = runProcess(command, {}, false);
    EXPECT_EQ(0, result.exitCode) << command[0];
    std::string text = result.output;
    while (!text.empty() && text.back() == '\n')
        text.pop_back();
    return text;
}

std::string exif(const std::string& path, const std::string& tag)
{
    return toolOutput({ "exiftool", "-s3", "-n", "-" + tag, path });
}

std::string soundOf(const std::string& path)
{
    return toolOutput({ "ffmpeg", "-v", "error", "-i", path, "-map", "0:a", "-f", "md5", "-" });
}

std::string probe(const std::string& path, const std::string& tag)
{
    return toolOutput(
        { "ffprobe", "-v", "error", "-show_entries", "format_tags=" + tag, "-of", "default=nw=1:nk=1", path });
}

ByteRange payload(const std::string& file, const std::string& id)
{
    for (const ChunkPlace& each : chunkList(file)) {
        if (each.id == id)
            return { each.offset + 8, each.offset + 8 + each.size };
    }
    ADD_FAILURE() << "no " << id;
    return {};
}

class SetRecordings : public testing::Test {
protected:
    void SetUp() override
    {
        const char* const recordings = std::getenv("TAGWELL_RECORDINGS");
        if (!recordings || !*recordings)
            GTEST_SKIP() << "TAGWELL_RECORDINGS is not set: there are no recordings to edit copies of.";
        for (const char* const tool : { "ffmpeg", "ffprobe", "exiftool" })
            ASSERT_TRUE(programExists(tool)) << tool << " is not installed.";
        for (const auto& each : fs::recursive_directory_iterator(recordings)) {
            if (each.path().extension() != ".WAV")
                continue;
            const fs::path copy = folder.path() / each.path().filename();
            fs::copy_file(each.path(), copy);
            fs::permissions(copy, fs::perms::owner_write, fs::perm_options::add);
            copies.push_back(copy.string());
        }
        std::sort(copies.begin(), copies.end());
        ASSERT_FALSE(copies.empty());
    }

    static std::vector<ByteRange> writable(const std::string& file)
    {
        const uint64_t bext = payload(file, "bext").begin;
        return { { bext, bext + kDescription }, { bext + kTimeReference, bext + kTimeReference + 8 },
            payload(file, "iXML") };
    }

    std::vector<std::string> copies;
    TempFolder folder;
};

TEST_F(SetRecordings, longTextsGrowIntoThePaddingAndForeignToolsReadThem)
{
    const std::string scene = "Night & <day> long scene name";
    const std::string note = "wind \xC3\xA4nd rain; " + std::string(80, 'n');
    for (const std::string& path : copies) {
        const FileProof proof(path);
        const std::string sound = soundOf(path);
        const CliResult result
            = runCli({ "set", "--use-padding", "--verify", "--scene", scene, "--note", note, "--wild", "yes", path });
        EXPECT_EQ(Exit::Ok, result.exit) << result.err;
        EXPECT_EQ("", proof.unchangedOutside(writable(proof.before())));
        EXPECT_EQ(sound, soundOf(path));
        EXPECT_EQ(scene, exif(path, "BwfxmlScene")) << path;
        EXPECT_EQ(note, exif(path, "BwfxmlNote")) << path;
        EXPECT_EQ("TRUE", exif(path, "BwfxmlWildTrack")) << path;
        EXPECT_NE(std::string::npos, probe(path, "comment").find("SCENE=" + scene + "\n")) << path;
    }
}

TEST_F(SetRecordings, startIsTheSameInEveryPlaceAndReadsBackAsTyped)
{
    for (const std::string& path : copies) {
        for (const std::string label : { "00:00:00:00", "23:59:59:23", "01:02:03:04" }) {
            const FileProof proof(path);
            const CliResult result = runCli({ "set", "--start", label, path });
            ASSERT_EQ(Exit::Ok, result.exit) << result.err;
            EXPECT_EQ("", proof.unchangedOutside(writable(proof.before())));
            const FileFacts facts = readFileFacts(path);
            EXPECT_EQ(label, facts.startLabel()) << path;
            const std::string samples = std::to_string(facts.record.timeReference);
            EXPECT_EQ(samples, probe(path, "time_reference")) << path;
            EXPECT_EQ(samples, exif(path, "TimeReference")) << path;
        }
    }
}

TEST_F(SetRecordings, tableOfDumpGivenBackChangesNothing)
{
    std::vector<FileProof> proofs(copies.begin(), copies.end());
    TempFolder tables;
    const std::string csv = tables.file("day.csv");
    writeBytes(csv, runCli({ "dump", "--csv", folder.path().string() }).out);
    for (const char* const how : { "--use-padding", "--partly" })
        EXPECT_EQ(Exit::Ok, runCli({ "set", "--from-csv", csv, how }).exit);
    for (const FileProof& proof : proofs)
        EXPECT_EQ("", proof.untouched());
}

} // namespace
