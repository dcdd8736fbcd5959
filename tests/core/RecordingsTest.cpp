// Files as they came off real recorders. They lie outside the project; TAGWELL_RECORDINGS names their folder.

#include "core/BwfMetadataReader.h"

#include "tests/support/PlainReader.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>

namespace {

class Recordings : public testing::Test {
protected:
    void SetUp() override
    {
        const char* const folder = std::getenv("TAGWELL_RECORDINGS");
        if (!folder)
            GTEST_SKIP() << "TAGWELL_RECORDINGS is not set";
        root = folder;
    }
    BwfMetadata read(const std::string& name) { return BwfMetadataReader::readMetadata((root / name).string()); }

    std::filesystem::path root;
};

} // namespace

TEST_F(Recordings, polyFileWithPaddedIxmlInFrontOfTheFormat)
{
    const BwfMetadata record = read("recorder-a/A101_1.WAV");
    EXPECT_EQ(record.fileName, "A101_1.WAV");
    EXPECT_EQ(record.fileSize, 1447578u);
    EXPECT_EQ(record.sampleRate, 48000u);
    EXPECT_EQ(record.channels, 2u);
    EXPECT_EQ(record.bitsPerSample, 24u);
    EXPECT_EQ(record.tape, "18Y12M31");
    EXPECT_EQ(record.scene, "A101");
    EXPECT_EQ(record.take, "1");
    EXPECT_EQ(record.project, "BMH");
    EXPECT_EQ(record.ubits, "$12311801");
    EXPECT_EQ(record.frameRate, 24000.0 / 1001.0);
    EXPECT_FALSE(record.dropFrame);
    EXPECT_EQ(record.timeReference, 2190940753u);
    EXPECT_EQ(record.originationDate, "2018-12-31");
    EXPECT_EQ(record.originationTime, "12:40:00");
    EXPECT_EQ(record.codingHistory, "A=PCM,F=48000,W=24,M=stereo,R=48000,T=2 Ch\r\n");
    ASSERT_EQ(record.tracks.size(), 2u);
    EXPECT_EQ(record.tracks[0].name, "MKH516 A");
    EXPECT_EQ(record.tracks[1].channelIndex, 2);
    EXPECT_EQ(record.tracks[1].name, "Boom");
}

TEST_F(Recordings, monoFileWithABextOf602BytesHasNoCodingHistory)
{
    const BwfMetadata record = read("recorder-a/A101_1_1.WAV");
    EXPECT_EQ(record.channels, 1u);
    EXPECT_EQ(record.codingHistory, "");
    EXPECT_EQ(record.scene, "A101");
    ASSERT_EQ(record.tracks.size(), 1u);
    EXPECT_EQ(record.tracks[0].name, "MKH516 A");
}

TEST_F(Recordings, stereoFileWithIxmlPaddedByNuls)
{
    const BwfMetadata record = read("recorder-b/Scene_1_2AG-T001_TrL_R.WAV");
    EXPECT_EQ(record.tape, "WINFO");
    EXPECT_EQ(record.scene, "Scene_1_2AG");
    EXPECT_EQ(record.take, "001");
    EXPECT_EQ(record.frameRate, 25.0);
    EXPECT_EQ(record.note, "Test 01 wavinfo");
    EXPECT_EQ(record.duration, 11.0);
}

TEST_F(Recordings, negativeTimeReferenceOfTheXmlLeavesTheOneOfBext)
{
    const BwfMetadata record = read("recorder-c/Sr001-2C-01_01.WAV");
    EXPECT_EQ(record.timeReference, 2354414956u);
    EXPECT_EQ(record.timestampSampleRate, 0u);
    EXPECT_EQ(record.scene, "2C");
    EXPECT_EQ(record.take, "01");
    EXPECT_EQ(record.frameRate, 25.0);
    EXPECT_EQ(record.note, "Tail Slate Cloth noise");
}

TEST_F(Recordings, allReadAsStepByStep)
{
    size_t files = 0;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(root)) {
        if (entry.path().extension() != ".WAV")
            continue;
        const std::string path = entry.path().string();
        EXPECT_EQ(recordText(BwfMetadataReader::readMetadata(path)), recordText(PlainReader::readMetadata(path)))
            << path;
        ++files;
    }
    EXPECT_EQ(files, 7u);
}
