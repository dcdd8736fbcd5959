#include "core/BwfMetadataWriter.h"

#include "tests/support/TempFolder.h"
#include "tests/support/WavBuilder.h"

#include <gtest/gtest.h>

#include <fstream>
#include <string>

// The class's small operations, each on a stream.

namespace {

class WriterStreamTest : public testing::Test {
protected:
    void open(const std::string& bytes)
    {
        writeBytes(path, bytes);
        stream.open(path, std::ios::in | std::ios::out | std::ios::binary);
    }
    std::string written()
    {
        stream.close();
        return readBytes(path);
    }

    TempFolder folder;
    std::string path = folder.file("bytes");
    std::fstream stream;
};

} // namespace

TEST_F(WriterStreamTest, findChunkGivesSizeAndPositionAndStandsAtThePayload)
{
    WavBuilder builder;
    builder.fmt(48000, 1, 16).chunk("odd ", "abc").chunk("want", "payload!");
    open(builder.bytes());
    uint32_t size = 0;
    uint32_t position = 0;
    EXPECT_TRUE(BwfMetadataWriter::findChunk(stream, "want", size, position));
    EXPECT_EQ(size, 8u);
    EXPECT_EQ(position, builder.payloadOffset("want"));
    EXPECT_EQ(stream.get(), 'p');

    std::ifstream in(path, std::ios::binary);
    position = 0;
    EXPECT_TRUE(BwfMetadataWriter::findChunk(in, "want", size, position));
    EXPECT_EQ(position, builder.payloadOffset("want"));
}

TEST_F(WriterStreamTest, searchThatRanOffTheEndLeavesTheStreamFailedForEveryLaterOne)
{
    WavBuilder builder;
    open(builder.fmt(48000, 1, 16).bytes());
    uint32_t size = 7;
    uint32_t position = 7;
    EXPECT_FALSE(BwfMetadataWriter::findChunk(stream, "FMT ", size, position));
    EXPECT_FALSE(BwfMetadataWriter::findChunk(stream, "fmt ", size, position));
    EXPECT_EQ(size, 7u);
    EXPECT_EQ(position, 7u);
}

TEST_F(WriterStreamTest, writeStringAlwaysEndsTheFieldInNul)
{
    open("0123456789");
    BwfMetadataWriter::writeString(stream, "abcdef", 4, 3);
    EXPECT_EQ(written(),
        std::string("012abc\0"
                    "789",
            10));
}

TEST_F(WriterStreamTest, writeStringFillsTheFieldWithNul)
{
    open("0123456789");
    BwfMetadataWriter::writeString(stream, "a", 4, 3);
    BwfMetadataWriter::writeString(stream, "", 1, 0);
    EXPECT_EQ(written(),
        std::string("\0"
                    "12a\0\0\0"
                    "789",
            10));
}

TEST_F(WriterStreamTest, writeStringOnAWriteStreamGoesOnWhereItStands)
{
    std::ofstream out(path, std::ios::binary);
    BwfMetadataWriter::writeString(out, "abcdef", 4);
    BwfMetadataWriter::writeString(out, "g", 3);
    BwfMetadataWriter::writeString(out, "h", 0);
    out.close();
    EXPECT_EQ(readBytes(path), std::string("abc\0g\0\0", 7));
}

TEST_F(WriterStreamTest, numbersAreWrittenLowByteFirst)
{
    std::ofstream out(path, std::ios::binary);
    BwfMetadataWriter::writeUint16LE(out, 0x0102);
    BwfMetadataWriter::writeUint32LE(out, 0x03040506u);
    BwfMetadataWriter::writeUint64LE(out, 0x0708090A0B0C0D0Eu);
    out.close();
    EXPECT_EQ(readBytes(path), "\x02\x01\x06\x05\x04\x03\x0E\x0D\x0C\x0B\x0A\x09\x08\x07");
}

TEST_F(WriterStreamTest, fourByteNumberIsReadBackFromBothKindsOfStream)
{
    open("....");
    BwfMetadataWriter::writeUint32LE(stream, 0xFEDCBA98u);
    stream.seekg(0);
    EXPECT_EQ(BwfMetadataWriter::readUint32LE(stream), 0xFEDCBA98u);
    EXPECT_EQ(BwfMetadataWriter::readUint32LE(stream), 0u) << "bytes past the end count as 0";
    EXPECT_EQ(written(), "\x98\xBA\xDC\xFE");
    std::ifstream in(path, std::ios::binary);
    EXPECT_EQ(BwfMetadataWriter::readUint32LE(in), 0xFEDCBA98u);
}

TEST_F(WriterStreamTest, descriptionIsTrueEvenOnAFailedStreamAndWritesNothing)
{
    open(std::string(600, 'x'));
    stream.setstate(std::ios::failbit);
    EXPECT_TRUE(BwfMetadataWriter::updateBextDescription(stream, 0, "text"));
    EXPECT_FALSE(BwfMetadataWriter::updateBextTimeReference(stream, 0, 5));
    EXPECT_EQ(written(), std::string(600, 'x'));
}
