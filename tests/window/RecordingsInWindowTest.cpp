#include "tests/window/WindowFixture.h"

#include <cstdlib>
#include <filesystem>

namespace {

/// Real recorder files, copied before they are opened.
class RecordingsInWindow : public WindowFixture {
protected:
    void SetUp() override
    {
        const char* recordings = std::getenv("TAGWELL_RECORDINGS");
        if (recordings == nullptr)
            GTEST_SKIP() << "TAGWELL_RECORDINGS is unset: no real recordings to open";
        copyAll(recordings);
    }

    // The originals may be read-only, folders included; nobody but root could fill a copy of such a folder.
    void copyAll(const std::filesystem::path& from)
    {
        namespace fs = std::filesystem;
        for (const fs::directory_entry& entry : fs::recursive_directory_iterator(from)) {
            const fs::path target = folder.path() / entry.path().lexically_relative(from);
            if (entry.is_directory()) {
                fs::create_directory(target);
            } else {
                fs::copy_file(entry.path(), target);
                fs::permissions(target, fs::perms::owner_write, fs::perm_options::add);
            }
        }
    }

    void open(const std::string& name) { window->openFiles({ path(name) }); }
};

TEST_F(RecordingsInWindow, polyFileOfRecorderA)
{
    open("recorder-a/A101_1.WAV");
    EXPECT_EQ(cell(0, FileColumn::Channels), "POLY (2)");
    EXPECT_EQ(cell(0, FileColumn::TapeId), "18Y12M31");
    EXPECT_EQ(cell(0, FileColumn::Scene), "A101");
    EXPECT_EQ(cell(0, FileColumn::Take), "1");
    EXPECT_EQ(cell(0, FileColumn::FrameRate), "23.976 fps");
    EXPECT_EQ(cell(0, FileColumn::SampleRate), "48000 Hz");
    EXPECT_NE(cell(0, FileColumn::StartTimecode), kMark);
}

TEST_F(RecordingsInWindow, stereoFileOfRecorderB)
{
    open("recorder-b/Scene_1_2AG-T001_TrL_R.WAV");
    EXPECT_EQ(cell(0, FileColumn::TapeId), "WINFO");
    EXPECT_EQ(cell(0, FileColumn::Scene), "Scene_1_2AG");
    EXPECT_EQ(cell(0, FileColumn::Take), "001");
    EXPECT_EQ(cell(0, FileColumn::FrameRate), "25 fps");
    EXPECT_EQ(cell(0, FileColumn::Notes), "Test 01 wavinfo");
}

TEST_F(RecordingsInWindow, allOfThemFromOneFolder)
{
    window->openFiles(window->collectWavFilesFromPaths({ path("") }));
    EXPECT_EQ(table()->rowCount(), 7);
    table()->selectAll();
    EXPECT_EQ(text("currentFileLabel"), "7 files selected");
    EXPECT_EQ(text("sampleRateLabel"), "48000 Hz");
}

} // namespace
