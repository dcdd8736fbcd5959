// Size fields that claim what the file does not hold: the record is the one that the claim leads to, and the memory is
// that of the file.

#include "core/BwfMetadataReader.h"

#include "tests/support/PlainReader.h"
#include "tests/support/TempFolder.h"
#include "tests/support/WavBuilder.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <new>

namespace {

std::atomic<size_t> requestedBytes{ 0 };

constexpr size_t kMemoryLimit = 16u << 20;
constexpr uint32_t kSizes[] = { 0, 1, 0x7FFFFFFF, 0xFFFFFFFE, 0xFFFFFFFF };

/// Bytes asked for by `readMetadata`, all requests together, and its record.
struct Measured {
    std::string record;
    size_t bytes = 0;
};

Measured measure(const std::string& path)
{
    const size_t before = requestedBytes;
    const BwfMetadata record = BwfMetadataReader::readMetadata(path);
    const size_t after = requestedBytes;
    return { recordText(record), after - before };
}

WavBuilder everyChunk(bool rf64)
{
    BextFields fields;
    fields.description = "SCENE=7B\nTRK100000000=x";
    fields.codingHistory = "A=PCM,F=48000\r\n12345678";
    WavBuilder file = rf64 ? WavBuilder::rf64() : WavBuilder();
    return file.ds64(600).fmt(48000, 2, 24).bext(fields).ixml("<TAKE>3</TAKE>").data("123456");
}

class HostileSizes : public testing::TestWithParam<std::tuple<bool, std::string, uint32_t>> { };

} // namespace

// Kept from being inlined into code that then seems to free foreign memory.
[[gnu::noinline]] void* operator new(size_t size)
{
    requestedBytes += size;
    if (void* memory = std::malloc(size ? size : 1))
        return memory;
    throw std::bad_alloc();
}
[[gnu::noinline]] void operator delete(void* memory) noexcept
{
    std::free(memory);
}
[[gnu::noinline]] void operator delete(void* memory, size_t) noexcept
{
    std::free(memory);
}

TEST_P(HostileSizes, readAsStepByStepInTheMemoryOfTheFile)
{
    const auto& [rf64, id, size] = GetParam();
    TempFolder folder;
    const std::string path = folder.file("a.wav");
    WavBuilder file = everyChunk(rf64);
    if (id == "RIFF")
        writeBytes(path, file.bytes().replace(4, 4, le32(size)));
    else
        file.claimSize(id, size).write(path);
    const Measured measured = measure(path);
    EXPECT_EQ(measured.record, recordText(PlainReader::readMetadata(path)));
    EXPECT_LT(measured.bytes, kMemoryLimit);
}

INSTANTIATE_TEST_SUITE_P(EveryField, HostileSizes,
    testing::Combine(
        testing::Bool(), testing::Values("RIFF", "ds64", "fmt ", "bext", "iXML", "data"), testing::ValuesIn(kSizes)));

TEST(HostileFiles, chunksAtTheEndClaimingFourGigabytesCostNothing)
{
    TempFolder folder;
    const std::string path = folder.file("a.wav");
    for (const char* id : { "bext", "iXML" }) {
        WavBuilder().fmt(48000, 2, 24).data("").chunk(id, "<SCENE>1</SCENE>").claimSize(id, 0xFFFFFFFF).write(path);
        const Measured measured = measure(path);
        EXPECT_EQ(measured.record, recordText(PlainReader::readMetadata(path))) << id;
        EXPECT_LT(measured.bytes, 1u << 20) << id;
    }
}

TEST(HostileFiles, codingHistoryOfALargeSparseFileEndsAtItsFirstNul)
{
    TempFolder folder;
    const std::string path = folder.file("a.wav");
    BextFields fields;
    fields.codingHistory = "A=PCM";
    WavBuilder().fmt(48000, 2, 24).data("").bext(fields).claimSize("bext", 0xFFFFFFFE).write(path);
    std::filesystem::resize_file(path, 3'000'000'000u);
    const size_t before = requestedBytes;
    EXPECT_EQ(BwfMetadataReader::readMetadata(path).codingHistory, "A=PCM");
    EXPECT_LT(requestedBytes - before, 1u << 20);
}

TEST(HostileFiles, ixmlOfALargeSparseFileIsReadInTheMemoryOfItsText)
{
    TempFolder folder;
    const std::string path = folder.file("a.wav");
    WavBuilder().fmt(48000, 2, 24).data("").ixml("<TAKE>3</TAKE>").claimSize("iXML", 0xFFFFFFFE).write(path);
    std::filesystem::resize_file(path, 300'000'000u);
    const size_t before = requestedBytes;
    EXPECT_EQ(BwfMetadataReader::readMetadata(path).take, "3");
    EXPECT_LT(requestedBytes - before, 1u << 20);
}

TEST(HostileFiles, silenceBehindAPlaceholderIsWalkedInTheMemoryOfAFewBlocks)
{
    TempFolder folder;
    const std::string path = folder.file("a.wav");
    WavBuilder::rf64().ds64(600).fmt(48000, 2, 24).data("").claimSize("data", 0xFFFFFFFF).write(path);
    std::filesystem::resize_file(path, 64u << 20);
    std::ofstream(path, std::ios::binary | std::ios::app) << "iXML" << le32(23) << "<SCENE>far away</SCENE>";
    const size_t before = requestedBytes;
    EXPECT_EQ(BwfMetadataReader::readMetadata(path).scene, "far away");
    EXPECT_LT(requestedBytes - before, 2u << 20);
}

TEST(HostileFiles, endlessTrackListsStayInTheMemoryOfTheirEntries)
{
    std::string text = "<TRACK_LIST>";
    while (text.size() < 512 * 1024)
        text += "<TRACK></TRACK>";
    text += "</TRACK_LIST>";
    BwfMetadata record;
    const size_t before = requestedBytes;
    BwfMetadataReader::parseIxml(text, record);
    EXPECT_LT(requestedBytes - before, 20u << 20);
    EXPECT_EQ(record.tracks.size(), 34952u);
}
