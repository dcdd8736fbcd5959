#include "mixer/FilePlaybackMixerDialog.h"

#include <QLocale>

#include <gtest/gtest.h>

#include <cmath>

TEST(MixerTime, roundsToWholeSeconds)
{
    EXPECT_EQ(FilePlaybackMixerDialog::formatTime(0.0), "00:00");
    EXPECT_EQ(FilePlaybackMixerDialog::formatTime(0.49), "00:00");
    EXPECT_EQ(FilePlaybackMixerDialog::formatTime(59.5), "01:00");
    EXPECT_EQ(FilePlaybackMixerDialog::formatTime(61.0), "01:01");
}

TEST(MixerTime, minutesRunOn)
{
    EXPECT_EQ(FilePlaybackMixerDialog::formatTime(7200.0), "120:00");
    EXPECT_EQ(FilePlaybackMixerDialog::formatTime(360000.0), "6000:00");
}

TEST(MixerTime, whatIsNoTimeIsZero)
{
    EXPECT_EQ(FilePlaybackMixerDialog::formatTime(-1.0), "00:00");
    EXPECT_EQ(FilePlaybackMixerDialog::formatTime(std::nan("")), "00:00");
    EXPECT_EQ(FilePlaybackMixerDialog::formatTime(INFINITY), "00:00");
}

TEST(MixerTime, theLongestTimeHasAText)
{
    EXPECT_EQ(FilePlaybackMixerDialog::formatTime(1e300), "16666666666666:40");
}

TEST(MixerFaderLaw, isTenthsOfADecibel)
{
    EXPECT_FLOAT_EQ(FilePlaybackMixerDialog::sliderToLinear(60), 1.9952623f);
    EXPECT_EQ(FilePlaybackMixerDialog::sliderToLinear(0), 1.0f);
    EXPECT_FLOAT_EQ(FilePlaybackMixerDialog::sliderToLinear(-200), 0.1f);
    EXPECT_FLOAT_EQ(FilePlaybackMixerDialog::sliderToLinear(-589), 0.0011350108f);
}

TEST(MixerFaderLaw, isSilentFromMinus59Decibel)
{
    EXPECT_EQ(FilePlaybackMixerDialog::sliderToLinear(-590), 0.0f);
    EXPECT_EQ(FilePlaybackMixerDialog::sliderToLinear(-600), 0.0f);
}

TEST(MixerFaderLaw, hasTexts)
{
    EXPECT_EQ(FilePlaybackMixerDialog::sliderToDbText(60), "6.0 dB");
    EXPECT_EQ(FilePlaybackMixerDialog::sliderToDbText(0), "0.0 dB");
    EXPECT_EQ(FilePlaybackMixerDialog::sliderToDbText(-200), "-20.0 dB");
    EXPECT_EQ(FilePlaybackMixerDialog::sliderToDbText(-1), "-0.1 dB");
    EXPECT_EQ(FilePlaybackMixerDialog::sliderToDbText(-589), "-58.9 dB");
    EXPECT_EQ(FilePlaybackMixerDialog::sliderToDbText(-590), QStringLiteral(u"-\u221e dB"));
    EXPECT_EQ(FilePlaybackMixerDialog::sliderToDbText(-600), QStringLiteral(u"-\u221e dB"));
}

TEST(MixerFaderLaw, textsKeepThePointUnderACommaLocale)
{
    const QLocale before;
    QLocale::setDefault(QLocale(QLocale::German));
    const QString text = FilePlaybackMixerDialog::sliderToDbText(-200);
    QLocale::setDefault(before);
    EXPECT_EQ(text, "-20.0 dB");
}
