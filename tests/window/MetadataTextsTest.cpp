#include "window/MetadataTexts.h"

#include "core/BwfMetadata.h"
#include "window/MetadataManagerWindow.h"

#include <QFileInfo>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

const QString kMark = QStringLiteral("\u2014");

struct SizeCase {
    uint64_t bytes;
    const char* text;
};

TEST(FileSizeText, stepsBy1024AndKeepsOneDecimal)
{
    constexpr uint64_t kKilo = 1024;
    for (const SizeCase& each :
        { SizeCase{ 0, "0.0 B" }, SizeCase{ 512, "512.0 B" }, SizeCase{ 1023, "1023.0 B" }, SizeCase{ 1024, "1.0 KB" },
            SizeCase{ 1536, "1.5 KB" }, SizeCase{ kKilo * kKilo - 1, "1024.0 KB" }, SizeCase{ kKilo * kKilo, "1.0 MB" },
            SizeCase{ kKilo * kKilo * kKilo, "1.0 GB" }, SizeCase{ kKilo * kKilo * kKilo * kKilo, "1.0 TB" },
            SizeCase{ kKilo * kKilo * kKilo * kKilo * kKilo, "1024.0 TB" } })
        EXPECT_EQ(MetadataManagerWindow::formatFileSize(each.bytes), QLatin1String(each.text)) << each.bytes;
}

TEST(TimecodeText, cutsFramesAndNeverRoundsThemUp)
{
    EXPECT_EQ(MetadataManagerWindow::formatTimecode(172824000, 48000, 25.0), QStringLiteral("01:00:00:12"));
}

TEST(TimecodeText, hoursWrapAt24)
{
    EXPECT_EQ(MetadataManagerWindow::formatTimecode(48000ull * 3600 * 25, 48000, 25.0), QStringLiteral("01:00:00:00"));
}

TEST(TimecodeText, separatesFramesByAColonAtDropFrameRatesToo)
{
    EXPECT_EQ(MetadataManagerWindow::formatTimecode(48000 * 60, 48000, 29.97), QStringLiteral("00:01:00:00"));
}

TEST(TimecodeText, isEmptyWithoutSamplesRateOrFrameRate)
{
    EXPECT_TRUE(MetadataManagerWindow::formatTimecode(0, 48000, 25.0).isEmpty());
    EXPECT_TRUE(MetadataManagerWindow::formatTimecode(48000, 0, 25.0).isEmpty());
    EXPECT_TRUE(MetadataManagerWindow::formatTimecode(48000, 48000, 0.0).isEmpty());
    EXPECT_TRUE(MetadataManagerWindow::formatTimecode(48000, 48000, -25.0).isEmpty());
    EXPECT_TRUE(MetadataManagerWindow::formatTimecode(48000, 48000, std::nan("")).isEmpty());
}

TEST(TimecodeText, survivesNumbersBeyondAllRanges)
{
    const double infinity = std::numeric_limits<double>::infinity();
    EXPECT_EQ(MetadataManagerWindow::formatTimecode(48000, 48000, infinity), QStringLiteral("00:00:01:00"));
    EXPECT_EQ(
        MetadataManagerWindow::formatTimecode(72000, 48000, 1e300), QStringLiteral("00:00:01:18446744073709551615"));
    EXPECT_EQ(MetadataManagerWindow::formatTimecode(std::numeric_limits<uint64_t>::max(), 1, 25.0).size(), 11);
}

TEST(DurationText, cutsToWholeSeconds)
{
    EXPECT_EQ(MetadataManagerWindow::formatDuration(3661.999), QStringLiteral("01:01:01"));
    EXPECT_EQ(MetadataManagerWindow::formatDuration(0.5), QStringLiteral("00:00:00"));
}

TEST(DurationText, doesNotWrapHours)
{
    EXPECT_EQ(MetadataManagerWindow::formatDuration(360000.0), QStringLiteral("100:00:00"));
}

TEST(DurationText, isTheMarkAtZeroAndBelow)
{
    EXPECT_EQ(MetadataManagerWindow::formatDuration(0.0), kMark);
    EXPECT_EQ(MetadataManagerWindow::formatDuration(-1.0), kMark);
    EXPECT_EQ(MetadataManagerWindow::formatDuration(std::nan("")), kMark);
}

struct FrameRateCase {
    double rate;
    const char* text;
};

TEST(FrameRateText, takesOffTrailingZerosAndPoint)
{
    for (const FrameRateCase& each : { FrameRateCase{ 25.0, "25 fps" }, FrameRateCase{ 23.976, "23.976 fps" },
             FrameRateCase{ 29.97, "29.97 fps" }, FrameRateCase{ 24.0, "24 fps" }, FrameRateCase{ 100.0, "100 fps" },
             FrameRateCase{ 24000.0 / 1001.0, "23.976 fps" }, FrameRateCase{ 0.0001, "0 fps" } })
        EXPECT_EQ(frameRateText(each.rate), QLatin1String(each.text)) << each.rate;
}

TEST(FrameRateText, isTheMarkAtZeroAndBelow)
{
    EXPECT_EQ(frameRateText(0.0), kMark);
    EXPECT_EQ(frameRateText(-25.0), kMark);
}

TEST(ChannelsText, hasADigitForNoneAWordForOneAndBothForMore)
{
    EXPECT_EQ(channelsText(0), QStringLiteral("0"));
    EXPECT_EQ(channelsText(1), QStringLiteral("MONO"));
    EXPECT_EQ(channelsText(2), QStringLiteral("POLY (2)"));
    EXPECT_EQ(channelsText(65535), QStringLiteral("POLY (65535)"));
}

BwfMetadata startingAt(uint64_t timeReference, uint32_t timestampRate)
{
    BwfMetadata record;
    record.sampleRate = 48000;
    record.timestampSampleRate = timestampRate;
    record.timeReference = timeReference;
    record.frameRate = 25.0;
    return record;
}

TEST(StartTimecodeText, countsInTheTimestampRateIfThereIsOne)
{
    EXPECT_EQ(startTimecodeText(startingAt(48048, 48048)), QStringLiteral("00:00:01:00"));
    EXPECT_EQ(startTimecodeText(startingAt(48000, 0)), QStringLiteral("00:00:01:00"));
}

TEST(StartTimecodeText, isTheMarkForAStartAtMidnight)
{
    EXPECT_EQ(startTimecodeText(startingAt(0, 0)), kMark);
}

TEST(StartTimecodeText, isTheMarkWithoutAnyRate)
{
    BwfMetadata record = startingAt(48000, 0);
    record.sampleRate = 0;
    EXPECT_EQ(startTimecodeText(record), kMark);
}

TEST(FileCellText, showsBytesThatAreNoUtf8WithoutHarm)
{
    BwfMetadata record;
    record.scene = "A\xff\xfe";
    EXPECT_TRUE(fileCellText(FileColumn::Scene, record, QFileInfo("x.wav")).startsWith(u'A'));
}

} // namespace
