#include "report/AvidAle.h"

#include "tests/report/AvidAleValidator.h"

#include <gtest/gtest.h>

namespace {

using Strings = std::vector<std::string>;

AvidClip clip()
{
    AvidClip clip;
    clip.fileName = "A101_1.WAV";
    clip.scene = "A101";
    clip.take = "1";
    clip.soundRoll = "18Y12M31";
    clip.startFrame = 1094376;
    clip.frames = 120;
    clip.rate = { 24000, 1001 };
    clip.channels = 2;
    clip.sampleRate = 48000;
    clip.bitDepth = 24;
    return clip;
}

std::string written(const std::vector<AvidClip>& clips)
{
    return avidAle({ .videoFormat = "1080", .tape = "18Y12M31" }, clips);
}

Strings valuesOf(const AvidClip& one, const std::string& column)
{
    const std::string text = written({ one });
    EXPECT_EQ(Strings(), avidAleComplaints(text)) << text;
    return avidAleColumn(text, column);
}

TEST(AvidAle, wholeTextIsAsAnImportAsksForIt)
{
    const std::string expected = "Heading\r\nFIELD_DELIM\tTABS\r\nVIDEO_FORMAT\t1080\r\nAUDIO_FORMAT\t48kHz\r\n"
                                 "TAPE\t18Y12M31\r\nFPS\t23.976\r\n\r\nColumn\r\n"
                                 "Name\tTracks\tStart\tEnd\tDuration\tTape\tScene\tTake\tSoundroll\tSource File\tFPS\t"
                                 "DESCRIPT\tAudio SR\tAudio Bit Depth\r\n\r\nData\r\n"
                                 "A101_1\tA1A2\t12:39:59:00\t12:40:04:00\t00:00:05:00\t18Y12M31\tA101\t1\t18Y12M31\t"
                                 "A101_1.WAV\t23.98\t\t48000\t24\r\n";
    EXPECT_EQ(expected, written({ clip() }));
    EXPECT_EQ(Strings(), avidAleComplaints(expected));
}

TEST(AvidAle, everyRateAndStartIsValid)
{
    for (const FrameRate& rate : { FrameRate{ 24000, 1001 }, { 24, 1 }, { 25, 1 }, { 30000, 1001 }, { 30, 1 },
             { 48, 1 }, { 50, 1 }, { 60000, 1001 }, { 60, 1 } }) {
        for (const bool flag : { false, true }) {
            AvidClip one = clip();
            one.rate = rate;
            one.dropFrame = countsDropFrame(rate, flag && rate.denominator != 1);
            const uint64_t day = labelledFramesPerDay(rate, one.dropFrame);
            for (uint64_t start = 0; start < day; start += day / 977) {
                one.startFrame = start;
                one.frames = 1 + start % 100000;
                const std::string text = written({ one });
                ASSERT_EQ(Strings(), avidAleComplaints(text)) << text;
            }
        }
    }
}

TEST(AvidAle, dropFrameIsMarked)
{
    AvidClip one = clip();
    one.rate = { 30000, 1001 };
    one.dropFrame = true;
    one.startFrame = 1799; // The last frame in front of the first two numbers that are left out.
    one.frames = 1;
    EXPECT_EQ(Strings{ "00:00:59;29" }, valuesOf(one, "Start"));
    EXPECT_EQ(Strings{ "00:01:00;02" }, valuesOf(one, "End"));
    EXPECT_EQ(Strings{ "00:00:00;01" }, valuesOf(one, "Duration"));
}

TEST(AvidAle, endBehindMidnightStartsAgain)
{
    AvidClip one = clip();
    one.startFrame = labelledFramesPerDay(one.rate, false) - 24;
    one.frames = 48;
    EXPECT_EQ(Strings{ "23:59:59:00" }, valuesOf(one, "Start"));
    EXPECT_EQ(Strings{ "00:00:01:00" }, valuesOf(one, "End"));
}

TEST(AvidAle, textsCannotBreakTheTable)
{
    AvidClip one = clip();
    one.note = "a\tb\r\nc\xC2\x85"
               "d\xE2\x80\xA8"
               "e\x0B"
               "f\xEF\xBB\xBF";
    one.scene = "\t";
    one.take = "\xFF";
    EXPECT_EQ(Strings{ "a b  c d e f" }, valuesOf(one, "DESCRIPT"));
    EXPECT_EQ(Strings{ "" }, valuesOf(one, "Scene"));
    EXPECT_EQ(Strings{ "\xEF\xBF\xBD" }, valuesOf(one, "Take"));
}

TEST(AvidAle, tracksAreNamedWithoutGaps)
{
    AvidClip one = clip();
    one.channels = 12;
    EXPECT_EQ(Strings{ "A1A2A3A4A5A6A7A8A9A10A11A12" }, valuesOf(one, "Tracks"));
}

TEST(AvidAle, longNameIsCutAndTheFileKeepsItsOwn)
{
    AvidClip one = clip();
    one.fileName = std::string(40, 'n') + ".wav";
    EXPECT_EQ(Strings{ std::string(32, 'n') }, valuesOf(one, "Name"));
    EXPECT_EQ(Strings{ one.fileName }, valuesOf(one, "Source File"));
}

TEST(AvidAle, audioFormatIsLeftOutWhereNoneFits)
{
    AvidClip other = clip();
    other.sampleRate = 96000;
    EXPECT_EQ(std::string::npos, written({ other }).find("AUDIO_FORMAT"));
    EXPECT_EQ(std::string::npos, written({ clip(), other }).find("AUDIO_FORMAT"));
    other.sampleRate = 44100;
    EXPECT_NE(std::string::npos, written({ other }).find("AUDIO_FORMAT\t44kHz\r\n"));
    EXPECT_EQ(Strings(), avidAleComplaints(written({ clip(), other })));
}

TEST(AvidAle, clipWithoutARollGoesUnderTheHeadings)
{
    AvidClip one = clip();
    one.soundRoll = "";
    EXPECT_EQ(Strings{ "18Y12M31" }, valuesOf(one, "Tape"));
}

// The validator must see what it is there for.
TEST(AvidAleValidator, seesEachBrokenRule)
{
    const std::string good = written({ clip() });
    ASSERT_EQ(Strings(), avidAleComplaints(good));
    const std::pair<const char*, const char*> changes[] = { { "\r\n", "\n" }, { "Heading", "\xEF\xBB\xBFHeading" },
        { "VIDEO_FORMAT\t1080", "VIDEO_FORMAT\t4K" }, { "VIDEO_FORMAT\t1080\r\n", "" }, { "TAPE\t18Y12M31\r\n", "" },
        { "48kHz", "96kHz" }, { "FPS\t23.976\r\n", "FPS\t23.976\r\nX\tY\r\n" }, { "Tracks\t", "tracks\t" },
        { "\t24\r\n", "\t\r\n" }, { "\t24\r\n", "\t24\t\r\n" }, { "A1A2", "A2A1" }, { "A1A2", "A1A5" },
        { "12:40:04:00", "12:40:03:23" }, { "12:39:59:00", "12:39:59;00" }, { "23.98", "23.97" },
        { "Data\r\n", "Data\r\n\r\n" }, { "A101\t1\t", "A101\t1\t\t" } };
    for (const auto& [from, to] : changes) {
        std::string bad = good;
        ASSERT_NE(std::string::npos, bad.find(from));
        bad.replace(bad.find(from), std::string(from).size(), to);
        EXPECT_NE(Strings(), avidAleComplaints(bad)) << from << " to " << to;
    }
}

} // namespace
