#include "core/BwfMetadataReader.h"

#include "core/ChunkWalk.h"
#include "tests/support/PlainReader.h"
#include "tests/support/TempFolder.h"
#include "tests/support/WavBuilder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>

namespace {

struct Found {
    bool found = false;
    uint32_t size = 0;
    uint32_t position = 0;
    bool good = false;
    int64_t at = 0;

    bool operator==(const Found&) const = default;
};

std::ostream& operator<<(std::ostream& out, const Found& result)
{
    return out << "found " << result.found << " size " << result.size << " position " << result.position << " good "
               << result.good << " at " << result.at;
}

Found ours(std::istream& stream, const std::string& id)
{
    Found result;
    result.found = BwfMetadataReader::findChunk(stream, id, result.size, result.position);
    result.good = stream.good();
    result.at = static_cast<std::streamoff>(stream.tellg());
    return result;
}

Found naive(std::istream& stream, const std::string& id)
{
    Found result;
    result.found = PlainReader::findChunk(stream, id, result.size, result.position);
    result.good = stream.good();
    result.at = static_cast<std::streamoff>(stream.tellg());
    return result;
}

class FindChunk : public testing::Test {
protected:
    std::ifstream open(const std::string& bytes)
    {
        writeBytes(path, bytes);
        return std::ifstream(path, std::ios::binary);
    }
    Found find(const std::string& bytes, const std::string& id)
    {
        std::ifstream stream = open(bytes);
        return ours(stream, id);
    }

    TempFolder folder;
    std::string path = folder.file("a.wav");
};

WavBuilder twoChunks()
{
    return WavBuilder().chunk("one ", "abcd").chunk("two ", "efghij");
}

} // namespace

TEST_F(FindChunk, positionIsTheFirstPayloadByteAndTheStreamStandsThere)
{
    EXPECT_EQ(find(twoChunks().bytes(), "two "), (Found{ true, 6, 32, true, 32 }));
}

TEST_F(FindChunk, caseMatters)
{
    EXPECT_FALSE(find(twoChunks().bytes(), "Two ").found);
}

TEST_F(FindChunk, missingChunkFailsTheStreamAndEverySearchAfterIt)
{
    std::ifstream stream = open(twoChunks().bytes());
    EXPECT_FALSE(ours(stream, "none").found);
    EXPECT_TRUE(stream.fail());
    EXPECT_FALSE(ours(stream, "one ").found);
}

TEST_F(FindChunk, missingChunkLeavesTheOutputsUntouched)
{
    std::ifstream stream = open(twoChunks().bytes());
    uint32_t size = 7;
    uint32_t position = 8;
    EXPECT_FALSE(BwfMetadataReader::findChunk(stream, "none", size, position));
    EXPECT_EQ(size, 7u);
    EXPECT_EQ(position, 8u);
}

TEST_F(FindChunk, everySearchStartsAtTheFirstChunkAgain)
{
    std::ifstream stream = open(twoChunks().bytes());
    EXPECT_TRUE(ours(stream, "two ").found);
    EXPECT_EQ(ours(stream, "one ").position, 20u);
}

TEST_F(FindChunk, endOfFileBitAloneDoesNotHinderASearch)
{
    std::ifstream stream = open(twoChunks().bytes());
    stream.setstate(std::ios::eofbit);
    EXPECT_TRUE(ours(stream, "one ").found);
}

TEST_F(FindChunk, padByteBehindAnOddChunkIsSteppedOver)
{
    EXPECT_EQ(find(WavBuilder().chunk("odd ", "abc").chunk("two ", "x").bytes(), "two ").position, 32u);
}

TEST_F(FindChunk, missingPadByteLosesTheWalk)
{
    EXPECT_FALSE(find(WavBuilder().chunk("odd ", "abc").omitPadByte().chunk("two ", "xxxx").bytes(), "two ").found);
}

TEST_F(FindChunk, fileThatEndsInsideTheSizeFieldMatchesOnAFailedStream)
{
    const std::string bytes = twoChunks().trailing("last\x05\x01").bytes();
    EXPECT_EQ(find(bytes, "last"), (Found{ true, 0x105, 0xFFFFFFFFu, false, -1 }));
}

TEST_F(FindChunk, fileThatEndsInsideTheIdDoesNotMatch)
{
    EXPECT_FALSE(find(twoChunks().trailing("las").bytes(), "last").found);
}

TEST_F(FindChunk, placeholderSizeIsAStepOfZero)
{
    const std::string inside = std::string(8, '\0') + "in  " + le32(2) + "xy";
    EXPECT_EQ(find(WavBuilder().chunk("data", inside).claimSize("data", 0xFFFFFFFFu).bytes(), "in  "),
        (Found{ true, 2, 36, true, 36 }));
}

TEST_F(FindChunk, sizesUpToTheGreatestEvenOneStepFarBehindTheEnd)
{
    for (uint32_t size : { 0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFDu, 0xFFFFFFFEu })
        EXPECT_FALSE(find(twoChunks().claimSize("one ", size).bytes(), "two ").found) << size;
}

TEST_F(FindChunk, readWriteStreamIsSearchedAndWrittenBehindTheSearch)
{
    writeBytes(path, twoChunks().bytes());
    std::fstream stream(path, std::ios::in | std::ios::out | std::ios::binary);
    const Found found = ours(stream, "two ");
    stream.seekp(found.position);
    stream.write("EF", 2);
    stream.close();
    EXPECT_EQ(readBytes(path), WavBuilder().chunk("one ", "abcd").chunk("two ", "EFghij").bytes());
}

TEST_F(FindChunk, positionBehindFourGigabytesIsCutTo32Bits)
{
    writeBytes(path, WavBuilder().chunk("big ", "").claimSize("big ", 0xFFFFFFFEu).bytes());
    std::filesystem::resize_file(path, 20 + 0xFFFFFFFEull);
    std::ofstream(path, std::ios::binary | std::ios::app) << "far " << le32(2) << "xy";
    std::ifstream stream(path, std::ios::binary);
    EXPECT_EQ(ours(stream, "far "), (Found{ true, 2, 26, true, 26 + 0x100000000 }));
}

TEST(ChunkWalkHeader, payloadBehindFourGigabytesKeepsItsWholeOffsetBesideTheCutOne)
{
    ChunkWalk::Header header;
    header.offset = 0x1'0000'0010;
    EXPECT_EQ(header.payload(), 0x1'0000'0018u);
    EXPECT_EQ(header.payloadIn32Bits(), 0x18u);
}

TEST_F(FindChunk, longRunsOfEmptyChunksEndAtTheSamePlaces)
{
    for (size_t zeros = 0; zeros < 80; ++zeros) {
        // Runs that cross the first block's end in every phase.
        const std::string inside = std::string(8150 + zeros, '\0') + "mark" + le32(1) + "x";
        const std::string bytes = WavBuilder::rf64().chunk("data", inside).claimSize("data", 0xFFFFFFFFu).bytes();
        std::ifstream one = open(bytes);
        std::ifstream other = open(bytes);
        EXPECT_EQ(ours(one, "mark"), naive(other, "mark")) << zeros;
    }
}

TEST_F(FindChunk, chunksWithNullIdsAreFound)
{
    const std::string null(4, '\0');
    EXPECT_EQ(find(twoChunks().chunk(null, "").chunk(null, "").bytes(), null).position, 46u);
}

TEST_F(FindChunk, textStreamThatIsTooShortFails)
{
    std::istringstream stream("RIFF");
    EXPECT_FALSE(ours(stream, "data").found);
    EXPECT_TRUE(stream.fail());
}

// Small steps, long steps, odd sizes and cut ends by chance, against a walk that reads and seeks for each header.
TEST_F(FindChunk, visitsAreThoseOfAPlainWalk)
{
    std::mt19937 engine(7);
    const auto random = [&engine] { return static_cast<uint32_t>(engine()); };
    const std::string ids[] = { "data", "bext", "none" };
    for (int round = 0; round < 40; ++round) {
        std::string bytes = WavBuilder().bytes();
        const size_t length = random() % 20000;
        const uint32_t shape = random() % 4;
        while (bytes.size() < length) {
            const bool rare = random() % 200 == 0;
            bytes += rare ? ids[random() % 3] : std::string(4, static_cast<char>(random() % 2 * 'x'));
            const uint32_t sizes[] = { 0, random() % 4, random() % 40, 0xFFFFFFFFu };
            bytes += le32(sizes[shape]);
            bytes.append(random() % 3, '\0');
        }
        for (const std::string& id : ids) {
            std::ifstream one = open(bytes);
            std::ifstream other = open(bytes);
            EXPECT_EQ(ours(one, id), naive(other, id)) << "round " << round << " id " << id;
        }
    }
}

TEST(LittleEndianReaders, bytesThatDoNotArriveCountAsZero)
{
    std::istringstream two("\x01\x02\x03");
    EXPECT_EQ(BwfMetadataReader::readUint16LE(two), 0x0201u);
    EXPECT_EQ(BwfMetadataReader::readUint16LE(two), 0x0003u);
    std::istringstream four("\x01\x02\x03\x04\xFF");
    EXPECT_EQ(BwfMetadataReader::readUint32LE(four), 0x04030201u);
    EXPECT_EQ(BwfMetadataReader::readUint32LE(four), 0xFFu);
    std::istringstream eight("\x01\x02\x03\x04\x05\x06\x07\x88");
    EXPECT_EQ(BwfMetadataReader::readUint64LE(eight), 0x8807060504030201u);
    EXPECT_EQ(BwfMetadataReader::readUint64LE(eight), 0u);
}
