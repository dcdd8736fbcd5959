// The texts of the reports, without a window or an application object.

#include "report/ReportTexts.h"
#include "report/TakeInfo.h"
#include "tests/support/CommaLocale.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>

TEST(NameWithoutWav, onlyAFinalWavInAnyCaseIsTakenOff)
{
    const auto shown = [](const char* name) {
        TakeInfo take;
        take.filename = name;
        return nameWithoutWav(take).toStdString();
    };
    EXPECT_EQ(shown("FILE.WAV"), "FILE");
    EXPECT_EQ(shown("a.wav.Wav"), "a.wav");
    EXPECT_EQ(shown("name.wave"), "name.wave");
    EXPECT_EQ(shown("wav"), "wav");
    EXPECT_EQ(shown(".wav"), "");
    EXPECT_EQ(shown(""), "");
    EXPECT_EQ(shown(":a.wav"), ":a");
    EXPECT_EQ(shown("file:b.wAv"), "file:b");
    EXPECT_EQ(shown("back\\slash.wav"), "back\\slash");
}

namespace {

std::string timecode(unsigned long long samples, unsigned int rate, double fps)
{
    return reportTimecode(samples, rate, fps).toStdString();
}

std::string duration(double seconds, double fps)
{
    return reportDuration(seconds, fps).toStdString();
}

std::string framerate(double fps)
{
    return reportFrameRate(fps).toStdString();
}

std::string field(const char* value)
{
    return csvField(QString::fromUtf8(value)).toStdString();
}

constexpr double kInfinite = std::numeric_limits<double>::infinity();
constexpr double kNoNumber = std::numeric_limits<double>::quiet_NaN();

} // namespace

TEST(ReportTimecode, hoursGoOnPastADay)
{
    EXPECT_EQ(timecode(48000ull * 3600 * 30, 48000, 25.0), "30:00:00:00");
}

TEST(ReportTimecode, aHundredHoursTakeThreeDigits)
{
    EXPECT_EQ(timecode(48000ull * 3600 * 100, 48000, 25.0), "100:00:00:00");
}

TEST(ReportTimecode, aRateOfZeroGivesDashes)
{
    EXPECT_EQ(timecode(48000, 0, 25.0), "--:--:--:--");
    EXPECT_EQ(timecode(48000, 48000, 0.0), "--:--:--:--");
}

TEST(ReportTimecode, aCountOfZeroIsFormatted)
{
    EXPECT_EQ(timecode(0, 48000, 25.0), "00:00:00:00");
}

TEST(ReportTimecode, framesAreTruncated)
{
    EXPECT_EQ(timecode(48000 * 61 + 47999, 48000, 25.0), "00:01:01:24");
    EXPECT_EQ(timecode(48000 + 1919, 48000, 25.0), "00:00:01:00");
}

TEST(ReportTimecode, aBrokenRateIsAppliedAsItStandsWithoutDropFrameCounting)
{
    EXPECT_EQ(timecode(48000ull * 60, 48000, 29.97), "00:01:00:00");
    EXPECT_EQ(timecode(48000 + 47000, 48000, 29.97), "00:00:01:29");
}

TEST(ReportTimecode, anInfiniteRateIsNoDanger)
{
    EXPECT_EQ(timecode(48000, 48000, kInfinite), "00:00:01:00");
}

TEST(ReportDuration, anUnknownRateCountsThirtyFrames)
{
    EXPECT_EQ(duration(1.5, 0.0), "00:00:01:15");
    EXPECT_EQ(duration(1.5, -24.0), "00:00:01:15");
    EXPECT_EQ(duration(1.5, kNoNumber), "00:00:01:15");
}

TEST(ReportDuration, aKnownRateIsUsed)
{
    EXPECT_EQ(duration(3661.5, 24.0), "01:01:01:12");
}

TEST(ReportDuration, zeroIsWrittenOut)
{
    EXPECT_EQ(duration(0.0, 25.0), "00:00:00:00");
}

TEST(ReportDuration, endlessIsNoDanger)
{
    EXPECT_EQ(duration(kInfinite, 25.0).substr(0, 20), "9223372036854775807:");
    EXPECT_EQ(duration(kNoNumber, 25.0), "00:00:00:00");
}

TEST(ReportFrameRate, twoDecimalsWithoutTrailingZeros)
{
    EXPECT_EQ(framerate(23.976), "23.98nd-C");
    EXPECT_EQ(framerate(24000.0 / 1001.0), "23.98nd-C");
    EXPECT_EQ(framerate(25.0), "25nd-C");
    EXPECT_EQ(framerate(30.0), "30nd-C");
    EXPECT_EQ(framerate(100.0), "100nd-C");
    EXPECT_EQ(framerate(47.95), "47.95nd-C");
    EXPECT_EQ(framerate(12.5), "12.5nd-C");
}

TEST(ReportFrameRate, theDropFrameSuffixFollowsTheRateAlone)
{
    EXPECT_EQ(framerate(29.97), "29.97df-C");
    EXPECT_EQ(framerate(30000.0 / 1001.0), "29.97df-C");
    EXPECT_EQ(framerate(59.94), "59.94df-C");
    EXPECT_EQ(framerate(29.9799), "29.98df-C");
    EXPECT_EQ(framerate(29.9801), "29.98nd-C");
    EXPECT_EQ(framerate(59.9299), "59.93nd-C");
}

TEST(ReportFrameRate, zeroAndLessGiveNothing)
{
    EXPECT_EQ(framerate(0.0), "");
    EXPECT_EQ(framerate(-25.0), "");
}

TEST(ReportDuration, ofATakeIsThatOfItsLengthAtItsRate)
{
    TakeInfo take;
    take.duration = 3661.5;
    EXPECT_EQ(reportDuration(take).toStdString(), "01:01:01:15");
    take.frameRate = 24.0;
    EXPECT_EQ(reportDuration(take).toStdString(), "01:01:01:12");
}

TEST(CsvField, fourCharactersAskForQuotes)
{
    EXPECT_EQ(field("a,b"), "\"a,b\"");
    EXPECT_EQ(field("a\"b"), "\"a\"\"b\"");
    EXPECT_EQ(field("a\nb"), "\"a\nb\"");
    EXPECT_EQ(field("a\rb"), "\"a\rb\"");
    EXPECT_EQ(field("\""), "\"\"\"\"");
}

TEST(CsvField, blanksTabsAndSemicolonsAskForNone)
{
    EXPECT_EQ(field(""), "");
    EXPECT_EQ(field(" a "), " a ");
    EXPECT_EQ(field("a\tb"), "a\tb");
    EXPECT_EQ(field("a;b"), "a;b");
}

TEST(ReportTexts, aCommaLocaleChangesNothing)
{
    const CommaLocale comma;
    if (!comma.works())
        GTEST_SKIP() << "no locale with a decimal comma on this machine";
    EXPECT_EQ(framerate(23.976), "23.98nd-C");
    EXPECT_EQ(duration(3661.5, 23.976), "01:01:01:11");
    EXPECT_EQ(timecode(72000, 48000, 29.97), "00:00:01:14");
}
