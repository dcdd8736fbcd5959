#include "tests/mixer/MixerDialogFixture.h"

TEST_F(MixerDialog, closingWhilePlayingEndsPlaybackAndDeletesIt)
{
    openQuarters();
    click("playPauseButton");
    ASSERT_TRUE(hear(0.5f));
    dialog->close();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(dialog.isNull());
    EXPECT_EQ(DrivenOutput::unitsAlive(), 0);
}

TEST_F(MixerDialog, escapeClosesAndDeletesIt)
{
    openQuarters();
    QTest::keyClick(dialog.data(), Qt::Key_Escape);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(dialog.isNull());
}

TEST_F(MixerDialog, aFileRemovedFromDiskPlaysOn)
{
    openQuarters();
    click("playPauseButton");
    ASSERT_TRUE(hear(0.5f));
    std::filesystem::remove(folder.file("take.wav"));
    clickWaveform(0.9);
    EXPECT_TRUE(hear(0.0625f));
    tick();
    EXPECT_EQ(text("timeLabel").mid(5), " / 00:08");
}

TEST_F(MixerDialog, aFileCutShortWhilePlayingFallsSilentAndStopsOnDemand)
{
    openQuarters();
    click("playPauseButton");
    ASSERT_TRUE(hear(0.5f));
    std::filesystem::resize_file(folder.file("take.wav"), 100);
    clickWaveform(0.9);
    tick();
    EXPECT_EQ(playText(), " Pause");
    click("stopButton");
    EXPECT_EQ(playText(), " Play");
}

TEST_F(MixerDialog, aDeviceThatDoesNotStartLeavesTheButtonAtPause)
{
    openQuarters();
    DrivenOutput::failAt(DrivenOutput::Step::Start);
    click("playPauseButton");
    EXPECT_EQ(playText(), " Pause");
    click("stopButton");
    EXPECT_EQ(playText(), " Play");
}

TEST_F(MixerDialog, anUnplayableFileGivesTheBoxAndSilentStrips)
{
    writeBytes(folder.file("text.wav"), "no sound at all");
    openUnplayable(folder.file("text.wav"), { QStringLiteral("Boom"), QStringLiteral(" ") }, [](QMessageBox& box) {
        EXPECT_EQ(box.windowTitle(), "Playback");
        EXPECT_EQ(box.text(), "Could not open this WAV for playback.");
        EXPECT_EQ(box.icon(), QMessageBox::Warning);
        EXPECT_EQ(box.buttons().size(), 1);
        EXPECT_NE(box.parentWidget()->findChild<QWidget*>("strip1"), nullptr) << "all stands when the box comes";
        EXPECT_EQ(box.parentWidget()->findChild<QTimer*>("uiTimer"), nullptr) << "but the timer";
    });
    EXPECT_TRUE(find<QTimer>("uiTimer")->isActive());
    EXPECT_EQ(text("infoLabel"), "Could not open this file for playback.");
    EXPECT_FALSE(find("playPauseButton")->isEnabled());
    EXPECT_FALSE(find("stopButton")->isEnabled());
    EXPECT_EQ(text("timeLabel"), "00:00 / 00:00");
    EXPECT_EQ(text("nameLabel0"), "Boom");
    EXPECT_EQ(text("nameLabel1"), "Track 2");
    find<QSlider>("fader0")->setValue(-200);
    EXPECT_EQ(text("dbLabel0"), "-20.0 dB") << "it stays usable as a display";
    click("muteButton0");
    tick();
    EXPECT_EQ(bar(0), 0);
}

TEST_F(MixerDialog, withoutPlayerAndNamesOneStripStands)
{
    openUnplayable(folder.file("missing.wav"), {});
    EXPECT_EQ(text("nameLabel0"), "Track 1");
    EXPECT_EQ(dialog->findChild<QWidget*>("strip1"), nullptr);
}

TEST_F(MixerDialog, aClaimOf65535TracksThatDoNotPlayEndsAt512Strips)
{
    openUnplayable(folder.file("missing.wav"), QList<QString>(65535));
    EXPECT_EQ(text("nameLabel511"), "Track 512");
    EXPECT_EQ(dialog->findChild<QWidget*>("strip512"), nullptr);
}

TEST_F(MixerDialog, withoutDeviceTheWaveformStillShows)
{
    DrivenOutput::setDevice(0);
    openUnplayable(write("take.wav", WavBuilder().fmt(48000, 1, 16).data(quarters())), { QStringLiteral("Boom") });
    EXPECT_EQ(text("infoLabel"), "Could not open this file for playback.");
    auto* waveform = find("waveform");
    const QImage picture = waveform->grab().toImage();
    EXPECT_GT(picture.pixelColor(20, waveform->height() / 2 - 20).green(), 150);
    clickWaveform(0.5);
    EXPECT_EQ(text("timeLabel"), "00:00 / 00:00") << "a click does nothing without a player";
}
