#include "core/BwfMetadataReader.h"

#include "tests/support/TempFolder.h"
#include "tests/support/WavBuilder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

namespace {

class ReadMetadata : public testing::Test {
protected:
    BwfMetadata read(const std::string& bytes, const std::string& name = "take.wav")
    {
        writeBytes(folder.file(name), bytes);
        return BwfMetadataReader::readMetadata(folder.file(name));
    }
    BwfMetadata read(const WavBuilder& file) { return read(file.bytes()); }

    TempFolder folder;
};

WavBuilder plain() { return WavBuilder().fmt(48000, 2, 24).dataFrames(4); }

BextFields sceneInDescription()
{
    BextFields fields;
    fields.description = "sSCENE=x\nsCENE=7B\n";
    return fields;
}

} // namespace

TEST_F(ReadMetadata, missingFileThrowsFilesystemError)
{
    EXPECT_THROW(BwfMetadataReader::readMetadata(folder.file("none.wav")), std::filesystem::filesystem_error);
}

TEST_F(ReadMetadata, folderThrowsFilesystemError)
{
    EXPECT_THROW(BwfMetadataReader::readMetadata(folder.path().string()), std::filesystem::filesystem_error);
}

TEST_F(ReadMetadata, durationComesFromTheDataSize)
{
    const BwfMetadata record = read(WavBuilder().fmt(48000, 2, 24).data("").claimSize("data", 28800000));
    EXPECT_EQ(record.duration, 100.0);
}

TEST_F(ReadMetadata, bextWithoutIxmlLeavesSceneEmpty)
{
    const BwfMetadata record = read(plain().bext(sceneInDescription()));
    EXPECT_EQ(record.scene, "");
    EXPECT_EQ(record.description, sceneInDescription().description);
}

TEST_F(ReadMetadata, emptyIxmlStillLetsTheDescriptionSpeak)
{
    EXPECT_EQ(read(plain().bext(sceneInDescription()).ixml("")).scene, "7B");
}

TEST_F(ReadMetadata, ixmlBehindDataIsFound)
{
    EXPECT_EQ(read(plain().ixml("<SCENE>12A</SCENE>")).scene, "12A");
}
