#include "core/ChunkIndex.h"

#include "tests/support/PlainReader.h"
#include "tests/support/TempFolder.h"
#include "tests/support/WavBuilder.h"

#include <gtest/gtest.h>

#include <array>
#include <fstream>
#include <random>

namespace {

using Id = ChunkIndex::Id;

constexpr std::array<Id, 5> kIds{ Id::Data, Id::Ds64, Id::Format, Id::Bext, Id::Ixml };
constexpr std::array<const char*, 5> kNames{ "data", "ds64", "fmt ", "bext", "iXML" };

struct Found {
    bool found = false;
    uint32_t size = 0;
    uint32_t position = 0;
    bool failed = false;

    bool operator==(const Found&) const = default;
};

std::ostream& operator<<(std::ostream& out, const Found& result)
{
    return out << "found " << result.found << " size " << result.size << " position " << result.position << " failed "
               << result.failed;
}

Found inIndex(ChunkIndex& index, std::istream& stream, size_t which)
{
    const auto header = index.find(stream, kIds[which]);
    if (!header)
        return { false, 0, 0, stream.fail() };
    return { true, header->size, header->payloadIn32Bits(), stream.fail() };
}

// A plain walk has no position to give where the file ends inside the header.
Found byPlainWalk(std::istream& stream, size_t which, uint32_t positionOfTheCut)
{
    Found result;
    result.found = PlainReader::findChunk(stream, kNames[which], result.size, result.position);
    result.failed = stream.fail();
    if (result.found && result.failed)
        result.position = positionOfTheCut;
    return result;
}

// Known and unknown chunks in any order, odd sizes, placeholders, a cut end.
std::string randomFile(std::mt19937& engine)
{
    const auto random = [&engine](uint32_t below) { return static_cast<uint32_t>(engine() % below); };
    std::string bytes = WavBuilder().bytes();
    const uint32_t chunks = random(12);
    for (uint32_t i = 0; i < chunks; ++i) {
        const uint32_t sizes[] = { 0, random(5), random(60), random(9000), 0xFFFFFFFFu };
        const uint32_t size = sizes[random(5)];
        bytes += random(3) == 0 ? "junk" : kNames[random(5)];
        bytes += le32(size);
        bytes.append(size == 0xFFFFFFFFu ? 8 * random(4) : size + size % 2, '\0');
    }
    if (random(3) == 0)
        bytes += std::string(kNames[random(5)]) + std::string(random(4), '\x05');
    return bytes;
}

class ChunkIndexTest : public testing::Test {
protected:
    std::ifstream open() const { return std::ifstream(path, std::ios::binary); }

    TempFolder folder;
    std::string path = folder.file("a.wav");
};

} // namespace

TEST_F(ChunkIndexTest, stepsWithStreamsOfTheirOwnFindWhatPlainWalksFind)
{
    std::mt19937 engine(11);
    for (int round = 0; round < 400; ++round) {
        const std::string bytes = randomFile(engine);
        writeBytes(path, bytes);
        ChunkIndex index;
        for (int step = 0; step < 8; ++step) {
            const size_t which = engine() % kIds.size();
            std::ifstream one = open();
            std::ifstream other = open();
            const Found found = inIndex(index, one, which);
            EXPECT_EQ(found, byPlainWalk(other, which, found.position)) << "round " << round << " " << kNames[which];
        }
    }
}

TEST_F(ChunkIndexTest, searchesOnOneStreamFindWhatPlainWalksFindUntilOneHasFailed)
{
    std::mt19937 engine(12);
    for (int round = 0; round < 400; ++round) {
        writeBytes(path, randomFile(engine));
        ChunkIndex index;
        std::ifstream one = open();
        std::ifstream other = open();
        index.begin(one);
        for (int step = 0; step < 4; ++step) {
            const size_t which = engine() % kIds.size();
            const Found found = inIndex(index, one, which);
            EXPECT_EQ(found, byPlainWalk(other, which, found.position)) << "round " << round << " " << kNames[which];
        }
    }
}

TEST_F(ChunkIndexTest, headerThatWasOverwrittenIsFoundAnewOnceForgotten)
{
    const WavBuilder builder = WavBuilder().chunk("bext", "abcd").chunk("iXML", "text").chunk("iXML", "more");
    const std::string bytes = builder.bytes();
    writeBytes(path, bytes);
    std::fstream stream(path, std::ios::in | std::ios::out | std::ios::binary);
    ChunkIndex index;
    ASSERT_TRUE(index.find(stream, Id::Ixml));
    const auto first = static_cast<std::streamoff>(bytes.find("iXML"));
    stream.seekp(first);
    stream.write("JUNK", 4);
    stream.flush();
    EXPECT_EQ(index.find(stream, Id::Ixml)->offset, static_cast<uint64_t>(first));
    index.forget();
    ASSERT_TRUE(index.find(stream, Id::Ixml));
    EXPECT_EQ(index.find(stream, Id::Ixml)->offset, bytes.rfind("iXML"));
}

TEST_F(ChunkIndexTest, whatWasForgottenDoesNotMendTheStream)
{
    writeBytes(path, WavBuilder().chunk("data", "abcd").bytes());
    std::ifstream stream = open();
    ChunkIndex index;
    EXPECT_FALSE(index.find(stream, Id::Bext));
    index.forget();
    EXPECT_FALSE(index.find(stream, Id::Data));
    EXPECT_TRUE(stream.fail());
}

TEST_F(ChunkIndexTest, fileIdIsKnownAlsoWhereASearchCameFirst)
{
    writeBytes(path, WavBuilder::rf64().chunk("data", "abcd").bytes());
    std::ifstream stream = open();
    ChunkIndex index;
    EXPECT_EQ(index.fileId(), "");
    EXPECT_TRUE(index.find(stream, Id::Data));
    EXPECT_TRUE(index.begin(stream));
    EXPECT_EQ(index.fileId(), "RF64");
}
