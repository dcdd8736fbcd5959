// The loops as a processor without wide instructions runs them: linked with the source for other processors, whatever
// this machine has.

#include "audio/SampleDecode.h"

#include "audio/WideDecode.h"

#include "tests/audio/DecodeChecks.h"

#include <gtest/gtest.h>

TEST(PlainDecode, nothingIsDoneAheadOfThePlainLoop)
{
    const std::vector<uint8_t> in = randomBytes(3 * 64, 3);
    std::vector<float> out(64);
    EXPECT_EQ(decodeWide24(in.data(), 64, out.data()), 0);
}

TEST(PlainDecode, loopsOverAllChannelsFollowTheSampleRule)
{
    for (const Format format : kFormats) {
        for (const int32_t channels : kChannelCounts)
            checkLoop(format, 67, channels, channels);
    }
}

TEST(PlainDecode, everyPackedValueIsDecodedExactly)
{
    checkEveryPackedValue();
}
