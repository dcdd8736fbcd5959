#include "window/TimecodeEntry.h"

#include <QStringList>

#include <gtest/gtest.h>

#include <limits>

namespace {

/// What a user does at one place of an edit: `text` is what it then holds, `cursor` where the cursor stands.
struct Step {
    const char* text;
    int cursor;
    const char* formatted;
    int newCursor;
};

} // namespace

// The digits.

TEST(TimecodeDigits, everyNumberOfDigitsHasItsColons)
{
    const QStringList formatted
        = { "", "1", "12", "12:3", "12:34", "12:34:5", "12:34:56", "12:34:56:7", "12:34:56:78", "12:34:56:78" };
    for (int count = 0; count < formatted.size(); ++count)
        EXPECT_EQ(formatTimecodeDigits(QString("123456789").left(count)), formatted[count]);
}

TEST(TimecodeDigits, everythingButDigitsGoes)
{
    EXPECT_EQ(formatTimecodeDigits("1a2;3 -4"), "12:34");
    EXPECT_EQ(formatTimecodeDigits("::::"), "");
    EXPECT_EQ(formatTimecodeDigits("01:02:03;04"), "01:02:03:04");
    EXPECT_EQ(formatTimecodeDigits(QString::fromUtf8("²½Ⅷ一")), "");
}

TEST(TimecodeDigits, decimalDigitsOfEveryScriptStay)
{
    EXPECT_EQ(formatTimecodeDigits(QString::fromUtf8("٠١٢")), QString::fromUtf8("٠١:٢"));
    EXPECT_EQ(formatTimecodeDigits(QString::fromUtf8("１２３")), QString::fromUtf8("１２:３"));
}

TEST(TimecodeDigits, aCompleteEntryStaysAsItIs)
{
    EXPECT_EQ(formatTimecodeDigits("01:02:03:04"), "01:02:03:04");
}

TEST(TimecodeCursor, staysBehindTheSameDigit)
{
    const Step steps[] = {
        { "0", 1, "0", 1 }, // Typed from the start.
        { "010", 3, "01:0", 4 }, { "01:020", 6, "01:02:0", 7 }, { "01:02:030", 9, "01:02:03:0", 10 },
        { "01:2:03:04", 3, "01:20:30:4", 3 }, // The 0 of the minutes taken out.
        { "01:02:0:04", 7, "01:02:00:4", 7 }, // The 3 of the seconds taken out.
        { "0102:03:04", 2, "01:02:03:04", 3 }, // A colon taken out comes back, and the cursor stands behind it.
        { "01:02:03:045", 12, "01:02:03:04", 11 }, // A ninth digit.
        { "a", 1, "", 0 }, // A letter alone: the cursor can't stand behind the end.
    };
    for (const Step& step : steps) {
        const QString formatted = formatTimecodeDigits(step.text);
        EXPECT_EQ(formatted, step.formatted);
        EXPECT_EQ(cursorInFormattedDigits(step.text, step.cursor, formatted), step.newCursor) << step.text;
    }
}

TEST(TimecodeCursor, countsColonsOnAhead)
{
    // The place is worked out from the number of colons, counted to where the cursor would be if all colons of the
    // new text stood in front of it. So in the first pairs it may end up one or two places further on.
    EXPECT_EQ(cursorInFormattedDigits("1:02:03:04", 0, "10:20:30:4"), 1);
    EXPECT_EQ(cursorInFormattedDigits("01:x02:03:04", 4, "01:02:03:04"), 5);
    EXPECT_EQ(cursorInFormattedDigits("x01", 1, "01"), 1);
}

// The samples.

TEST(TimecodeSamples, wholeSecondsAndFramesAddUp)
{
    EXPECT_EQ(parseTimecodeToSamples("01:00:00:12", 48000, 25.0), 172823040u);
    EXPECT_EQ(parseTimecodeToSamples("00:00:01:00", 48000, 25.0), 48000u);
    EXPECT_EQ(parseTimecodeToSamples("00:01:00:00", 48000, 25.0), 2880000u);
    EXPECT_EQ(parseTimecodeToSamples("23:59:59:24", 96000, 25.0), 8294396160u);
}

TEST(TimecodeSamples, theFractionIsCutAtTheEndOnly)
{
    // One frame is 2002.002 samples; 500 of them are 1001001.001.
    EXPECT_EQ(parseTimecodeToSamples("00:00:00:01", 48000, 23.976), 2002u);
    EXPECT_EQ(parseTimecodeToSamples("00:00:00:500", 48000, 23.976), 1001001u);
    EXPECT_EQ(parseTimecodeToSamples("00:00:00:02", 44100, 29.97), 2942u); // 2942.94
}

TEST(TimecodeSamples, framesHaveNoUpperBound)
{
    EXPECT_EQ(parseTimecodeToSamples("00:00:00:99", 48000, 25.0), 190080u); // 3.96 seconds.
    EXPECT_EQ(parseTimecodeToSamples("00:00:00:2147483647", 48000, 48000.0), 2147483647u);
}

TEST(TimecodeSamples, highRatesDoNotOverflow)
{
    EXPECT_EQ(parseTimecodeToSamples("23:59:59:00", std::numeric_limits<unsigned int>::max(), 25.0),
        86399u * uint64_t{ 4294967295u });
}

TEST(TimecodeSamples, whatIsOutOfRangeIsZero)
{
    for (const char* text : { "24:00:00:00", "25:00:00:00", "00:60:00:00", "00:00:60:00", "99:99:99:99", "-1:00:00:00",
             "01:-1:00:00", "01:00:-1:00", "01:00:00:-1", "01:00:00:2147483648", "4294967297:00:00:00" })
        EXPECT_EQ(parseTimecodeToSamples(text, 48000, 25.0), 0u) << text;
}

TEST(TimecodeSamples, whatIsNotFourNumbersIsZero)
{
    for (const char* text : { "", "01", "01:00:00", "01:00:00:00:", "01:00:00:00:00", "01:00::00", ":::", "a1:00:00:00",
             "01:00:00;00", "01:00:00:1.", "01:00:00:0x1" })
        EXPECT_EQ(parseTimecodeToSamples(text, 48000, 25.0), 0u) << text;
}

TEST(TimecodeSamples, midnightIsZeroLikeAFailure)
{
    EXPECT_EQ(parseTimecodeToSamples("00:00:00:00", 48000, 25.0), 0u);
}

TEST(TimecodeSamples, withoutARateThereIsNoTime)
{
    EXPECT_EQ(parseTimecodeToSamples("01:00:00:00", 0, 25.0), 0u);
    EXPECT_EQ(parseTimecodeToSamples("01:00:00:00", 48000, 0.0), 0u);
    EXPECT_EQ(parseTimecodeToSamples("01:00:00:00", 48000, -25.0), 0u);
    EXPECT_EQ(parseTimecodeToSamples("01:00:00:00", 48000, std::numeric_limits<double>::quiet_NaN()), 0u);
}

TEST(TimecodeSamples, moreSamplesThanFitAreZero)
{
    EXPECT_EQ(parseTimecodeToSamples("00:00:00:01", 48000, std::numeric_limits<double>::denorm_min()), 0u);
    EXPECT_EQ(parseTimecodeToSamples("01:00:00:99", 48000, 1e-20), 0u);
}

TEST(TimecodeSamples, aFrameRateBeyondMeasureCountsOnlyTheSeconds)
{
    EXPECT_EQ(parseTimecodeToSamples("00:00:01:50", 48000, std::numeric_limits<double>::infinity()), 48000u);
}
