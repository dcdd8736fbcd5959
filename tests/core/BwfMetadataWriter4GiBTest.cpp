#include "tests/core/BwfMetadataWriterFixture.h"

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>
#include <sys/stat.h>

// Positions are held in 32 bits. A chunk behind the first 4 GiB is not found, since its cut position is audio.

namespace {

/// A sparse RIFF file whose `data` ends at a bit more than 4 GiB, with `behind` after it.
void writeBeyond4GiB(const std::string& path, const WavBuilder& front, const std::string& behind)
{
    constexpr uint32_t kAudio = 0xFFFFFFF0u;
    const std::string head = front.bytes() + "data" + le32(kAudio) + std::string(4096, '\x33');
    writeBytes(path, head);
    std::filesystem::resize_file(path, front.bytes().size() + 8 + kAudio);
    std::ofstream(path, std::ios::binary | std::ios::app) << behind;
}

struct SparseState {
    explicit SparseState(const std::string& path) : size(std::filesystem::file_size(path))
    {
        struct stat status { };
        stat(path.c_str(), &status);
        blocks = status.st_blocks;
        constexpr size_t kEnds = 64 * 1024;
        std::ifstream in(path, std::ios::binary);
        ends.resize(2 * kEnds);
        in.read(ends.data(), kEnds);
        in.seekg(-static_cast<std::streamoff>(kEnds), std::ios::end);
        in.read(ends.data() + kEnds, kEnds);
    }
    bool operator==(const SparseState&) const = default;

    uint64_t size = 0;
    int64_t blocks = 0; // A write into the hole between the two ends would take some.
    std::string ends;
};

} // namespace

TEST_F(WriterTest, bextBehind4GiBIsNotFoundAndNoAudioIsWrittenOver)
{
    WavBuilder front;
    front.fmt(48000, 1, 16);
    writeBeyond4GiB(path, front, "bext" + le32(602) + bextPayload(bextOf("aSCENE=12\n")));
    const SparseState before(path);
    updated.scene = "13";
    EXPECT_FALSE(save());
    updated.scene = "";
    updated.timeReference = 5;
    EXPECT_FALSE(save());
    EXPECT_TRUE(SparseState(path) == before);
}

TEST_F(WriterTest, bextBehind4GiBKeepsTheEditFromTheIxmlAsAMissingOneDoes)
{
    WavBuilder front;
    front.fmt(48000, 1, 16).ixml(kIxml);
    writeBeyond4GiB(path, front, "bext" + le32(602) + bextPayload(bextOf("aSCENE=12\n")));
    const SparseState before(path);
    updated.scene = "13";
    EXPECT_FALSE(save());
    EXPECT_TRUE(SparseState(path) == before);
}

TEST_F(WriterTest, ixmlBehind4GiBIsNotFoundAndNoAudioIsWrittenOver)
{
    WavBuilder front;
    front.fmt(48000, 1, 16).bext(bextOf("aSCENE=12\n"));
    writeBeyond4GiB(path, front, "iXML" + le32(static_cast<uint32_t>(kIxml.size())) + kIxml);
    const SparseState before(path);
    updated.circled = true;
    EXPECT_FALSE(save());
    EXPECT_TRUE(SparseState(path) == before);
}

namespace {

constexpr uint64_t k4GiB = uint64_t{ 1 } << 32;

/// A sparse RIFF file whose `bext` payload begins at `payload`. Its audio begins at offset 44.
void writeWithBextAt(const std::string& path, uint64_t payload, const std::string& bext)
{
    constexpr uint64_t kAudioBegin = 44;
    WavBuilder front;
    const std::string head = front.fmt(48000, 1, 16).bytes();
    EXPECT_EQ(head.size() + 8, kAudioBegin);
    writeBytes(
        path, head + "data" + le32(static_cast<uint32_t>(payload - 8 - kAudioBegin)) + std::string(4096, '\x33'));
    std::filesystem::resize_file(path, payload - 8);
    std::ofstream(path, std::ios::binary | std::ios::app) << "bext" << le32(static_cast<uint32_t>(bext.size())) << bext;
}

} // namespace

TEST_F(WriterTest, fieldsOfABextThatBeginsRightInFrontOf4GiBDoNotWrapToTheStartOfTheFile)
{
    constexpr uint64_t kLastPayload = k4GiB - 2; // Chunks begin at even offsets.
    std::string bext = bextPayload(bextOf("aSCENE=12\n"));
    writeWithBextAt(path, kLastPayload, bext);
    const SparseState before(path);
    updated.scene = "13";
    updated.timeReference = 0x0102030405060708u;
    EXPECT_TRUE(save());

    bext.replace(0, kDescription, field("aSCENE=13\naSPEED=24.000-ND\n", kDescription));
    bext.replace(kTimeReference, 8, le64(0x0102030405060708u));
    SparseState expected = before;
    expected.ends.replace(expected.ends.size() - bext.size(), bext.size(), bext);
    EXPECT_TRUE(SparseState(path) == expected);
}

TEST_F(WriterTest, bextThatBeginsAt4GiBIsNotFoundAndTheStartOfTheFileStays)
{
    writeWithBextAt(path, k4GiB, bextPayload(bextOf("aSCENE=12\n")));
    const SparseState before(path);
    updated.scene = "13";
    EXPECT_FALSE(save());
    updated.scene = "";
    updated.timeReference = 5;
    EXPECT_FALSE(save());
    EXPECT_TRUE(SparseState(path) == before);
}
