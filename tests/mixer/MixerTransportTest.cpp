#include "tests/mixer/MixerDialogFixture.h"

TEST_F(MixerDialog, playPauseResumeAndStopChangeTheButton)
{
    openQuarters();
    EXPECT_EQ(playText(), " Play");
    EXPECT_TRUE(find("playPauseButton")->isEnabled());
    EXPECT_TRUE(find("stopButton")->isEnabled());
    EXPECT_EQ(find<QPushButton>("stopButton")->text(), " Stop");
    click("playPauseButton");
    EXPECT_EQ(playText(), " Pause");
    EXPECT_TRUE(hear(0.5f));
    click("playPauseButton");
    EXPECT_EQ(playText(), " Play");
    click("playPauseButton");
    EXPECT_EQ(playText(), " Pause");
    EXPECT_TRUE(hear(0.5f));
    click("stopButton");
    EXPECT_EQ(playText(), " Play");
    EXPECT_FALSE(DrivenOutput::started());
}

TEST_F(MixerDialog, theIconChangesWithTheText)
{
    openQuarters();
    auto* button = find<QPushButton>("playPauseButton");
    const QImage play = button->icon().pixmap(16).toImage();
    click("playPauseButton");
    EXPECT_NE(button->icon().pixmap(16).toImage(), play);
    click("playPauseButton");
    EXPECT_EQ(button->icon().pixmap(16).toImage(), play);
}

TEST_F(MixerDialog, theIconsHaveTheColourOfTheButtonsText)
{
    openQuarters();
    for (const char* button : { "playPauseButton", "stopButton" }) {
        const QIcon icon = find<QPushButton>(QLatin1String(button))->icon();
        const QImage on = icon.pixmap(16).toImage();
        const QImage off = icon.pixmap(16, QIcon::Disabled).toImage();
        EXPECT_EQ(on.pixelColor(7, 8), QColor(QLatin1String(Theme::kTextPrimary))) << button;
        EXPECT_EQ(off.pixelColor(7, 8), QColor(0x66, 0x66, 0x66)) << button;
        EXPECT_EQ(on.pixelColor(0, 0).alpha(), 0) << button;
    }
}

TEST_F(MixerDialog, pausedIsSilent)
{
    openQuarters();
    click("playPauseButton");
    ASSERT_TRUE(hear(0.5f));
    click("playPauseButton");
    for (const float sample : DrivenOutput::pullStereo(1024))
        EXPECT_EQ(sample, 0.0f);
}

TEST_F(MixerDialog, stopGoesBackToTheTop)
{
    openQuarters(atOneOClock());
    click("playPauseButton");
    clickWaveform(0.5);
    ASSERT_TRUE(hear(0.125f));
    tick();
    EXPECT_GT(playhead(), 0);
    click("stopButton");
    EXPECT_EQ(playhead(), -1);
    EXPECT_EQ(text("timeLabel"), "00:00 / 00:08");
    EXPECT_EQ(text("timecodeLabel"), "01:00:00:00");
    click("playPauseButton");
    EXPECT_EQ(firstHeard(), 0.5f);
}

TEST_F(MixerDialog, aClickWhileStoppedMovesTheDisplayAtOnceAndPlayStartsThere)
{
    openQuarters(atOneOClock());
    clickWaveform(0.8);
    EXPECT_EQ(text("timeLabel"), "00:06 / 00:08");
    EXPECT_EQ(text("timecodeLabel").left(9), "01:00:06:");
    EXPECT_NEAR(playheadPart(), 0.8, 0.01);
    EXPECT_EQ(playText(), " Play");
    click("playPauseButton");
    EXPECT_EQ(firstHeard(), 0.0625f);
}

TEST_F(MixerDialog, aClickWhilePlayingIsHeard)
{
    openQuarters();
    click("playPauseButton");
    ASSERT_TRUE(hear(0.5f));
    clickWaveform(0.6);
    EXPECT_EQ(text("timeLabel"), "00:05 / 00:08");
    EXPECT_EQ(playText(), " Pause");
    EXPECT_TRUE(hear(0.125f));
    clickWaveform(0.05);
    EXPECT_TRUE(hear(0.5f)) << "and back";
}

TEST_F(MixerDialog, aClickWhilePausedMovesAndStaysPaused)
{
    openQuarters();
    click("playPauseButton");
    ASSERT_TRUE(hear(0.5f));
    click("playPauseButton");
    clickWaveform(0.3);
    EXPECT_EQ(text("timeLabel"), "00:02 / 00:08");
    EXPECT_EQ(playText(), " Play");
    tick();
    EXPECT_EQ(text("timeLabel"), "00:02 / 00:08");
    click("playPauseButton");
    EXPECT_TRUE(hear(0.25f));
}

TEST_F(MixerDialog, aClickAfterTheEndStartsFromTheClick)
{
    openQuarters();
    click("playPauseButton");
    clickWaveform(0.97);
    ASSERT_TRUE(playToTheEnd());
    clickWaveform(0.3);
    click("playPauseButton");
    EXPECT_EQ(firstHeard(), 0.25f);
}

TEST_F(MixerDialog, theEndTurnsTheButtonBackAndPlayStartsFromTheTop)
{
    openQuarters();
    click("playPauseButton");
    clickWaveform(0.97);
    ASSERT_TRUE(playToTheEnd());
    EXPECT_EQ(text("timeLabel"), "00:08 / 00:08");
    click("playPauseButton");
    EXPECT_EQ(playText(), " Pause");
    EXPECT_EQ(firstHeard(), 0.5f);
}

TEST_F(MixerDialog, theTickFollowsThePosition)
{
    openQuarters(atOneOClock());
    clickWaveform(0.5);
    click("playPauseButton");
    for (int attempt = 0; attempt < kTries && !text("timecodeLabel").startsWith("01:00:05"); ++attempt) {
        (void)DrivenOutput::pullStereo(512);
        shortSleep();
        tick();
    }
    EXPECT_EQ(text("timecodeLabel").left(8), "01:00:05");
    EXPECT_EQ(text("timeLabel").mid(5), " / 00:08");
    EXPECT_GE(playheadPart(), 0.61) << "five of eight seconds";
    EXPECT_LT(playheadPart(), 0.76);
}

TEST_F(MixerDialog, theTimerTicksEveryFiftyMilliseconds)
{
    openQuarters();
    auto* timer = find<QTimer>("uiTimer");
    EXPECT_EQ(timer->interval(), 50);
    EXPECT_TRUE(timer->isActive());
}

TEST_F(MixerDialog, theTimerItselfTurnsTheButtonBackAtTheEnd)
{
    openSteady({ 0.5f }, 4800);
    click("playPauseButton");
    for (int attempt = 0; attempt < kTries && playText() != QLatin1String(" Play"); ++attempt) {
        (void)DrivenOutput::pullStereo(512);
        QTest::qWait(1);
    }
    EXPECT_EQ(playText(), " Play");
}

TEST_F(MixerDialog, aFileWithoutFramesTicksAtZero)
{
    open(write("empty.wav", WavBuilder().fmt(48000, 1, 16).data("")));
    EXPECT_EQ(text("timeLabel"), "00:00 / 00:00");
    tick();
    EXPECT_EQ(text("timeLabel"), "00:00 / 00:00");
    EXPECT_LE(playhead(), 0) << "at the start, where it is not drawn";
    clickWaveform(0.5);
    click("playPauseButton");
    tick();
    click("stopButton");
    EXPECT_EQ(playText(), " Play");
}

TEST_F(MixerDialog, aLengthBelowAMillisecondCountsAsOne)
{
    openSteady({ 0.5f }, 24); // Half a millisecond.
    clickWaveform(0.99);
    EXPECT_NEAR(playheadPart(), 0.99, 0.01);
    tick();
    EXPECT_NEAR(playheadPart(), 0.48, 0.01) << "frame 23 of 48";
}
