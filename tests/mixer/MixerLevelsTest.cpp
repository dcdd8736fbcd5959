#include "tests/mixer/MixerDialogFixture.h"

TEST_F(MixerDialog, muteAndSoloAreHeard)
{
    openSteady({ 0.25f, 0.125f }, 48000 * 20);
    const float norm = 1.0f / std::sqrt(2.0f);
    click("playPauseButton");
    EXPECT_TRUE(hear(0.375f * norm));
    click("muteButton0");
    EXPECT_TRUE(hear(0.125f * norm));
    click("muteButton0");
    EXPECT_TRUE(hear(0.375f * norm));
    click("soloButton0");
    EXPECT_TRUE(hear(0.25f * norm));
    click("soloButton1");
    EXPECT_TRUE(hear(0.375f * norm)) << "both soloed";
    click("muteButton0");
    EXPECT_TRUE(hear(0.125f * norm)) << "mute wins over solo";
}

TEST_F(MixerDialog, theFaderIsHeardAndReadsInDecibel)
{
    openSteady({ 0.25f, 0.125f }, 48000 * 20);
    const float norm = 1.0f / std::sqrt(2.0f);
    click("playPauseButton");
    find<QSlider>("fader0")->setValue(-200);
    EXPECT_EQ(text("dbLabel0"), "-20.0 dB");
    EXPECT_EQ(text("dbLabel1"), "0.0 dB");
    EXPECT_TRUE(hear((0.025f + 0.125f) * norm));
    find<QSlider>("fader0")->setValue(-590);
    EXPECT_EQ(text("dbLabel0"), QStringLiteral(u"-\u221e dB"));
    EXPECT_TRUE(hear(0.125f * norm));
    find<QSlider>("fader0")->setValue(60);
    EXPECT_TRUE(hear((0.25f * 1.9952623f + 0.125f) * norm));
}

TEST_F(MixerDialog, draggingTheFaderMovesGainAndReadOut)
{
    openQuarters();
    auto* fader = find<QSlider>("fader0");
    const int unity = 31 + (fader->height() - 62) * 60 / 660;
    const QPoint start(fader->width() / 2, unity);
    const QPoint end(fader->width() / 2, fader->height() - 2);
    QTest::mousePress(fader, Qt::LeftButton, {}, start);
    QMouseEvent move(QEvent::MouseMove, end, fader->mapToGlobal(QPointF(end)), Qt::NoButton, Qt::LeftButton, {});
    QCoreApplication::sendEvent(fader, &move);
    QTest::mouseRelease(fader, Qt::LeftButton, {}, end);
    EXPECT_EQ(fader->value(), -600);
    EXPECT_EQ(text("dbLabel0"), QStringLiteral(u"-\u221e dB"));
}

TEST_F(MixerDialog, aRightClickOnAFaderDoesNothing)
{
    openQuarters();
    auto* fader = find<QSlider>("fader0");
    QTest::mouseClick(fader, Qt::RightButton, {}, QPoint(fader->width() / 2, fader->height() - 5));
    EXPECT_EQ(fader->value(), 0);
    EXPECT_EQ(text("dbLabel0"), "0.0 dB");
}

TEST_F(MixerDialog, metersShowEachTracksOwnPeak)
{
    openSteady({ 0.5f, 0.25f }, 48000 * 20);
    click("playPauseButton");
    ASSERT_TRUE(hear(0.75f / std::sqrt(2.0f)));
    tick();
    EXPECT_EQ(bar(0), 37) << "half of 72 pixels, and one of the peak line";
    EXPECT_EQ(bar(1), 19);
}

TEST_F(MixerDialog, metersFollowTheFaderAndClip)
{
    openSteady({ 0.5f }, 48000 * 20);
    click("playPauseButton");
    ASSERT_TRUE(hear(0.5f));
    tick();
    const QColor clipRed(255, 30, 30);
    EXPECT_NE(meterPicture(0).pixelColor(71, 6), clipRed);
    find<QSlider>("fader0")->setValue(60);
    ASSERT_TRUE(hear(0.5f * 1.9952623f));
    tick();
    EXPECT_EQ(meterPicture(0).pixelColor(71, 6), clipRed);
    EXPECT_GT(bar(0), 60);
}

TEST_F(MixerDialog, metersStandWhilePausedAndFallAfterStop)
{
    openSteady({ 0.5f }, 48000 * 20);
    click("playPauseButton");
    ASSERT_TRUE(hear(0.5f));
    click("playPauseButton");
    // The mixer may be inside its last block at the moment of the pause.
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    for (int i = 0; i < 40; ++i)
        tick();
    EXPECT_EQ(bar(0), 37);
    click("stopButton");
    for (int i = 0; i < 60; ++i)
        tick();
    EXPECT_EQ(bar(0), 0);
}

TEST_F(MixerDialog, aMutedTracksMeterFalls)
{
    openSteady({ 0.5f, 0.25f }, 48000 * 20);
    click("playPauseButton");
    ASSERT_TRUE(hear(0.75f / std::sqrt(2.0f)));
    tick();
    ASSERT_EQ(bar(0), 37);
    click("muteButton0");
    ASSERT_TRUE(hear(0.25f / std::sqrt(2.0f)));
    for (int attempt = 0; attempt < kTries && bar(0) > 0; ++attempt) {
        (void)DrivenOutput::pullStereo(512);
        shortSleep();
        tick();
    }
    EXPECT_EQ(bar(0), 0);
    EXPECT_EQ(bar(1), 19);
}

TEST_F(MixerDialog, theLastOf64TracksIsHeardByItsOwnSolo)
{
    std::vector<float> levels(64, 0.0625f);
    levels[63] = 0.5f;
    openSteady(levels, 48000);
    find<QPushButton>("soloButton63")->click();
    click("playPauseButton");
    EXPECT_TRUE(hear(0.5f * 0.125f));
}
