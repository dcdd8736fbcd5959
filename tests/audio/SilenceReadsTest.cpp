// How often the file is read for a header. The function below stands in front of the C library's and counts its calls.

#include "audio/WavFileReader.h"
#include "tests/support/TempFolder.h"
#include "tests/support/WavBuilder.h"

#include <gtest/gtest.h>

#include <dlfcn.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

namespace {

int reads = 0;

} // namespace

extern "C" ssize_t read(int file, void* to, size_t size)
{
    static const auto real = reinterpret_cast<ssize_t (*)(int, void*, size_t)>(dlsym(RTLD_NEXT, "read"));
    ++reads;
    return real(file, to, size);
}

TEST(SilenceReadsTest, longSilenceIsReadInLargeBlocks)
{
    const TempFolder folder;
    const std::string path = folder.file("preallocated.wav");
    constexpr std::uintmax_t kSilence = 64 * 1024 * 1024;
    WavBuilder().fmt(48000, 1, 16).write(path);
    std::filesystem::resize_file(path, std::filesystem::file_size(path) + kSilence);
    std::ofstream(path, std::ios::binary | std::ios::app) << WavBuilder().data(le16(0x4000)).bytes().substr(12);
    WavFileReader reader;
    reads = 0;
    ASSERT_TRUE(reader.open(path));
    EXPECT_GT(reads, 256) << "the calls are really counted: one of them brings a quarter of a mebibyte at most";
    EXPECT_LT(reads, 300);
    EXPECT_EQ(reader.getTotalFrames(), 1);
}
