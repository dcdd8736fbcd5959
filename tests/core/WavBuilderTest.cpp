#include "tests/support/WavBuilder.h"

#include <gtest/gtest.h>

TEST(WavBuilder, laysOutHeaderChunksAndPadBytes)
{
    const std::string file = WavBuilder().fmt(48000, 1, 16).chunk("odd ", "abc").data("xy").bytes();
    EXPECT_EQ(file.substr(0, 4), "RIFF");
    EXPECT_EQ(file.substr(4, 4), le32(static_cast<uint32_t>(file.size() - 8)));
    EXPECT_EQ(file.substr(36, 12), "odd " + le32(3) + "abc" + std::string(1, '\0'));
    EXPECT_EQ(file.substr(48), "data" + le32(2) + "xy");
}

TEST(WavBuilder, liesOnRequest)
{
    WavBuilder builder;
    builder.fmt(48000, 1, 16).chunk("odd ", "abc").omitPadByte().data("xy").claimSize("data", 0xFFFFFFFFu);
    EXPECT_EQ(builder.bytes().substr(builder.payloadOffset("data") - 4), le32(0xFFFFFFFFu) + "xy");
    EXPECT_EQ(builder.payloadOffset("data"), 12u + 24u + 11u + 8u);
    EXPECT_EQ(builder.truncateTo(20).bytes().size(), 20u);
}
