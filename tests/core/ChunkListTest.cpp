#include "core/ChunkList.h"

#include "tests/support/TempFolder.h"
#include "tests/support/WavBuilder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace {

constexpr uint64_t kPlaceholder = 0xFFFFFFFF;
constexpr uint64_t kGigabyte = uint64_t{ 1 } << 30;

ChunkList listOf(const std::string& bytes)
{
    std::istringstream stream(bytes);
    ChunkWalk blocks(stream);
    return readChunkList(stream, blocks);
}

/// "fmt @12+16", one for each chunk.
std::vector<std::string> shown(const ChunkList& list)
{
    std::vector<std::string> lines;
    for (const ChunkList::Chunk& chunk : list.chunks)
        lines.push_back(
            std::string(chunk.id.data(), 4) + "@" + std::to_string(chunk.offset) + "+" + std::to_string(chunk.size));
    return lines;
}

using Lines = std::vector<std::string>;

WavBuilder rf64With(uint64_t dataSize)
{
    return WavBuilder::rf64().ds64(dataSize).fmt(48000, 1, 24);
}

TEST(ChunkList, hasEachChunkWithItsPlaceAndSize)
{
    const ChunkList list
        = listOf(WavBuilder().fmt(48000, 1, 24).chunk("junk", "odd").data("123456").ixml("<x/>").bytes());
    EXPECT_TRUE(list.isWave);
    EXPECT_EQ("RIFF", list.fileId);
    EXPECT_EQ((Lines{ "fmt @12+16", "junk@36+3", "data@48+6", "iXML@62+4" }), shown(list));
    EXPECT_FALSE(list.isCut);
}

TEST(ChunkList, seesWhatTheWalkSees)
{
    const std::string bytes = WavBuilder()
                                  .fmt(48000, 1, 24)
                                  .data("audio")
                                  .omitPadByte()
                                  .chunk("more", "abc")
                                  .claimSize("more", 0xFFFFFFFF)
                                  .bytes();
    std::istringstream stream(bytes);
    ChunkWalk walk(stream);
    ChunkWalk::Header header;
    Lines expected;
    while (walk.next(stream, header))
        expected.push_back(
            std::string(header.id, 4) + "@" + std::to_string(header.offset) + "+" + std::to_string(header.size));
    EXPECT_EQ(expected, shown(listOf(bytes)));
}

TEST(ChunkList, audioOfRf64IsSteppedOverByDs64)
{
    const std::string bytes = rf64With(5).data("12345").claimSize("data", kPlaceholder).chunk("bext", "fields").bytes();
    const ChunkList list = listOf(bytes);
    EXPECT_EQ((Lines{ "ds64@12+28", "fmt @48+16", "data@72+5", "bext@86+6" }), shown(list));
    EXPECT_TRUE(list.find("data")->isLarge);
    EXPECT_FALSE(list.find("bext")->isLarge);
}

TEST(ChunkList, bw64IsSteppedOverToo)
{
    const std::string bytes
        = rf64With(4).fileId("BW64").data("1234").claimSize("data", kPlaceholder).chunk("axml", "<a/>").bytes();
    EXPECT_NE(nullptr, listOf(bytes).find("axml"));
}

TEST(ChunkList, ds64MeansNothingInRiff)
{
    const std::string bytes
        = WavBuilder().ds64(5).data("12345").claimSize("data", kPlaceholder).chunk("bext", "fields").bytes();
    EXPECT_EQ(kPlaceholder, listOf(bytes).find("data")->size);
}

TEST(ChunkList, sizeInTheHeaderOfRf64HoldsUnlessItIsThePlaceholder)
{
    const ChunkList list = listOf(rf64With(1000).data("123456").chunk("bext", "fields").bytes());
    EXPECT_EQ(6u, list.find("data")->size);
    EXPECT_NE(nullptr, list.find("bext"));
}

TEST(ChunkList, tableOfDs64HoldsSizesOfOtherChunks)
{
    const std::string table = le64(0) + le64(4) + le64(0) + le32(1) + "big " + le64(6);
    const std::string bytes = WavBuilder::rf64()
                                  .chunk("ds64", table)
                                  .chunk("big ", "abcdef")
                                  .claimSize("big ", kPlaceholder)
                                  .data("1234")
                                  .claimSize("data", kPlaceholder)
                                  .bytes();
    EXPECT_EQ((Lines{ "ds64@12+40", "big @60+6", "data@74+4" }), shown(listOf(bytes)));
}

TEST(ChunkList, chunkBehindFiveGigabytesOfAudioIsFound)
{
    const TempFolder folder;
    const std::string path = folder.file("long.wav");
    rf64With(5 * kGigabyte).data("").claimSize("data", kPlaceholder).write(path);
    const uint64_t payload = std::filesystem::file_size(path);
    std::filesystem::resize_file(path, payload + 5 * kGigabyte);
    std::ofstream(path, std::ios::binary | std::ios::app) << "bext" << le32(4) << "text";

    std::ifstream stream(path, std::ios::binary);
    ChunkWalk blocks(stream);
    const ChunkList list = readChunkList(stream, blocks);
    ASSERT_NE(nullptr, list.find("bext"));
    EXPECT_EQ(payload + 5 * kGigabyte, list.find("bext")->offset);
    EXPECT_EQ(4u, list.chunks.size());
}

TEST(ChunkList, sizeOfDs64PastTheEndOfTheFileEndsTheList)
{
    for (const uint64_t size : { uint64_t{ 100 }, ~uint64_t{ 0 }, ~uint64_t{ 0 } - 7, uint64_t{ 1 } << 63 }) {
        const ChunkList list
            = listOf(rf64With(size).data("1234").claimSize("data", kPlaceholder).chunk("bext", "fields").bytes());
        EXPECT_EQ(3u, list.chunks.size()) << size;
        EXPECT_EQ(size, list.find("data")->size);
    }
}

TEST(ChunkList, tableThatClaimsMoreThanItHoldsIsReadAsFarAsItGoes)
{
    const std::string table = le64(0) + le64(4) + le64(0) + le32(0xFFFFFFFF) + "big " + le64(6) + "cut";
    const std::string bytes
        = WavBuilder::rf64().chunk("ds64", table).chunk("big ", "abcdef").claimSize("big ", kPlaceholder).bytes();
    EXPECT_EQ(6u, listOf(bytes).find("big ")->size);
}

TEST(ChunkList, millionsOfEmptyChunksAreCut)
{
    const std::string bytes = WavBuilder().trailing(std::string(8 * (ChunkList::kMostChunks + 10), '\0')).bytes();
    const ChunkList list = listOf(bytes);
    EXPECT_EQ(ChunkList::kMostChunks, list.chunks.size());
    EXPECT_TRUE(list.isCut);
    EXPECT_FALSE(listOf(bytes.substr(0, 12 + 8 * ChunkList::kMostChunks)).isCut);
}

TEST(ChunkList, headerThatTheFileCutsCountsAsTheWalkCountsIt)
{
    const std::string whole = WavBuilder().fmt(48000, 1, 24).chunk("last", "").bytes();
    EXPECT_EQ((Lines{ "fmt @12+16", "last@36+0" }), shown(listOf(whole.substr(0, whole.size() - 2))));
    EXPECT_EQ((Lines{ "fmt @12+16" }), shown(listOf(whole.substr(0, whole.size() - 5))));
}

TEST(ChunkList, whatIsNoWavFileHasNone)
{
    for (const std::string bytes :
        { "", "RIFF", "RIFF\1\2\3\4WAV", "RIFF\1\2\3\4AVI fmt ....", "OggS\1\2\3\4WAVEfmt ...." }) {
        const ChunkList list = listOf(bytes);
        EXPECT_FALSE(list.isWave) << bytes;
        EXPECT_TRUE(list.chunks.empty()) << bytes;
    }
}

} // namespace
