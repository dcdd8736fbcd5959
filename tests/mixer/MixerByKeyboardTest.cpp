#include "core/BwfMetadata.h"
#include "mixer/FilePlaybackMixerDialog.h"
#include "mixer/MeterWidget.h"
#include "mixer/WaveformWidget.h"
#include "tests/support/DrivenOutput.h"
#include "tests/support/KeyboardWalk.h"
#include "tests/support/TempFolder.h"
#include "tests/support/WavBuilder.h"

#include <QAccessible>
#include <QLabel>
#include <QPushButton>
#include <QSignalSpy>
#include <QSlider>
#include <QTest>

#include <gtest/gtest.h>

#include <memory>

namespace {

constexpr uint32_t kRate = 8000;
constexpr size_t kSeconds = 60;

/// The mixer on a minute of silence on two tracks, as it is used without a mouse and without a screen.
class MixerByKeyboard : public testing::Test {
protected:
    MixerByKeyboard()
    {
        DrivenOutput::reset();
        const std::string path = folder.file(std::string(200, 'n') + ".wav");
        WavBuilder().fmt(kRate, 2, 16).dataFrames(kRate * kSeconds).write(path);
        BwfMetadata metadata;
        metadata.frameRate = 25.0;
        dialog = new FilePlaybackMixerDialog(QString::fromStdString(path), { "Boom", "Lav Anna" }, metadata, nullptr);
        dialog->show();
        EXPECT_TRUE(QTest::qWaitForWindowActive(dialog));
    }
    ~MixerByKeyboard() override { delete dialog; }

    template <typename Widget = QWidget> Widget* find(const char* name) const
    {
        auto* found = dialog->findChild<Widget*>(QLatin1String(name));
        EXPECT_TRUE(found) << name;
        return found;
    }

    std::string spoken(const char* name, QAccessible::Text which) const
    {
        return QAccessible::queryAccessibleInterface(find(name))->text(which).toStdString();
    }
    std::string name(const char* widget) const { return spoken(widget, QAccessible::Name); }
    std::string state(const char* widget) const { return spoken(widget, QAccessible::Description); }
    QAccessibleValueInterface& value(const char* widget) const
    {
        return *QAccessible::queryAccessibleInterface(find(widget))->valueInterface();
    }

    void press(Qt::Key key) { QTest::keyClick(find("waveform"), key); }
    std::string time() const { return find<QLabel>("timeLabel")->text().toStdString(); }

    TempFolder folder;
    FilePlaybackMixerDialog* dialog = nullptr;
};

} // namespace

TEST_F(MixerByKeyboard, tabGoesRoundBothWays)
{
    KeyboardWalk::expectRoundBothWays(*dialog);
}

TEST_F(MixerByKeyboard, tabGoesFromTransportToWaveformToTheTracksControls)
{
    find("playPauseButton")->setFocus();
    const QStringList order = KeyboardWalk::round(*dialog);
    EXPECT_EQ(order,
        QStringList({ "QPushButton playPauseButton", "QPushButton stopButton", "WaveformWidget waveform",
            "FaderSlider fader0", "QPushButton muteButton0", "QPushButton soloButton0", "FaderSlider fader1",
            "QPushButton muteButton1", "QPushButton soloButton1" }));
}

TEST_F(MixerByKeyboard, everyControlHasAName)
{
    EXPECT_EQ(KeyboardWalk::namelessControls(*dialog), QStringList());
}

TEST_F(MixerByKeyboard, theScrolledAreaIsNoStopAndHasAName)
{
    EXPECT_EQ(find("stripScroll")->focusPolicy(), Qt::NoFocus);
    EXPECT_EQ(name("stripScroll"), "Tracks");
}

TEST_F(MixerByKeyboard, rightAndLeftGoFiveSecondsOnAndBack)
{
    press(Qt::Key_Right);
    EXPECT_EQ(time(), "00:05 / 01:00");
    press(Qt::Key_Right);
    press(Qt::Key_Right);
    EXPECT_EQ(time(), "00:15 / 01:00");
    press(Qt::Key_Left);
    EXPECT_EQ(time(), "00:10 / 01:00");
}

TEST_F(MixerByKeyboard, stepsEndAtTheStartAndAtTheEndOfTheFile)
{
    press(Qt::Key_Left);
    EXPECT_EQ(time(), "00:00 / 01:00");
    for (int i = 0; i < 20; ++i)
        press(Qt::Key_Right);
    EXPECT_EQ(time(), "01:00 / 01:00");
}

TEST_F(MixerByKeyboard, homeGoesToTheStart)
{
    press(Qt::Key_Right);
    press(Qt::Key_Home);
    EXPECT_EQ(time(), "00:00 / 01:00");
}

TEST_F(MixerByKeyboard, aClickOnTheWaveformGivesItTheKeyboard)
{
    QTest::mouseClick(find("waveform"), Qt::LeftButton);
    EXPECT_TRUE(find("waveform")->hasFocus());
}

TEST_F(MixerByKeyboard, otherKeysOnTheWaveformPassOnToTheDialog)
{
    find("waveform")->setFocus();
    press(Qt::Key_Return);
    EXPECT_EQ(find<QPushButton>("playPauseButton")->text(), " Pause");
    press(Qt::Key_Right);
    EXPECT_NE(time().substr(0, 5), "00:00") << "while it plays too";
}

TEST(WaveformKeys, withoutAFileAskForNothing)
{
    WaveformWidget waveform;
    QSignalSpy steps(&waveform, &WaveformWidget::stepRequested);
    QSignalSpy seeks(&waveform, &WaveformWidget::seekRequested);
    for (const Qt::Key key : { Qt::Key_Left, Qt::Key_Right, Qt::Key_Home })
        QTest::keyClick(&waveform, key);
    EXPECT_EQ(steps.count() + seeks.count(), 0);
}

TEST_F(MixerByKeyboard, withAModifierTheKeysAreNotTheWaveforms)
{
    QTest::keyClick(find("waveform"), Qt::Key_Right, Qt::AltModifier);
    EXPECT_EQ(time(), "00:00 / 01:00");
}

TEST_F(MixerByKeyboard, aFaderSpeaksDecibels)
{
    find<QSlider>("fader0")->setValue(-120);
    EXPECT_EQ(name("fader0"), "Fader Boom");
    EXPECT_EQ(spoken("fader0", QAccessible::Value), "-12.0 dB");
    EXPECT_EQ(state("fader0"), "-12.0 dB");
    EXPECT_EQ(value("fader0").currentValue(), QVariant(-12.0));
    EXPECT_EQ(value("fader0").minimumValue(), QVariant(-60.0));
    EXPECT_EQ(value("fader0").maximumValue(), QVariant(6.0));
    EXPECT_EQ(value("fader0").minimumStepSize(), QVariant(0.1));
    find<QSlider>("fader0")->setValue(-600);
    EXPECT_EQ(state("fader0"), "-\u221e dB");
}

TEST_F(MixerByKeyboard, aFaderIsSetInDecibelsWithinItsRange)
{
    value("fader0").setCurrentValue(-3.5);
    EXPECT_EQ(find<QSlider>("fader0")->value(), -35);
    EXPECT_EQ(find<QLabel>("dbLabel0")->text(), "-3.5 dB");
    value("fader0").setCurrentValue(1e9);
    EXPECT_EQ(find<QSlider>("fader0")->value(), 60);
}

TEST_F(MixerByKeyboard, aMeterSaysItsLevelAndItsClipIndicator)
{
    auto* const meter = find<MeterWidget>("meter1");
    EXPECT_EQ(name("meter1"), "Meter Lav Anna");
    EXPECT_EQ(state("meter1"), "-\u221e dB, not clipped");
    meter->setValue(500);
    EXPECT_EQ(state("meter1"), "-6.0 dB, not clipped");
    EXPECT_NEAR(value("meter1").currentValue().toDouble(), -6.02, 0.01);
    meter->setValue(1000);
    EXPECT_EQ(state("meter1"), "0.0 dB, clipped");
    meter->setValue(100);
    EXPECT_EQ(state("meter1"), "-20.0 dB, clipped") << "the indicator stays on";
    meter->clearClip();
    EXPECT_EQ(state("meter1"), "-20.0 dB, not clipped");
}

TEST_F(MixerByKeyboard, muteAndSoloSayOnAndOff)
{
    for (const char* const button : { "muteButton0", "soloButton0" }) {
        EXPECT_EQ(state(button), "Off");
        find<QPushButton>(button)->click();
        EXPECT_EQ(state(button), "On");
        find<QPushButton>(button)->click();
        EXPECT_EQ(state(button), "Off");
    }
}

TEST_F(MixerByKeyboard, theBadgeSaysThatItIsTheFrameRate)
{
    EXPECT_EQ(name("frameRateBadge"), "Frame rate");
    EXPECT_EQ(state("frameRateBadge"), "25");
}

TEST_F(MixerByKeyboard, theWaveformSaysWhereThePlayheadStands)
{
    press(Qt::Key_Right);
    EXPECT_EQ(name("waveform"), "Waveform");
    EXPECT_EQ(state("waveform"), "5.0 s of 60.0 s");
    value("waveform").setCurrentValue(30.0);
    EXPECT_EQ(time(), "00:30 / 01:00");
}

TEST_F(MixerByKeyboard, aLongFileNameLeavesTheDialogsSizesAlone)
{
    EXPECT_EQ(find<QLabel>("titleLabel")->text().size(), 204);
    EXPECT_EQ(dialog->size(), QSize(720, 560));
    EXPECT_EQ(dialog->minimumSizeHint().expandedTo(QSize(520, 460)), QSize(520, dialog->minimumSizeHint().height()));
}

TEST(MixerOfAHostileFile, aRateOfHundredsOfDigitsLeavesTheDialogsSizesAlone)
{
    DrivenOutput::reset();
    TempFolder folder;
    const std::string path = folder.file("a.wav");
    WavBuilder().fmt(kRate, 2, 16).dataFrames(kRate).write(path);
    BwfMetadata metadata;
    metadata.frameRate = 1e300;
    FilePlaybackMixerDialog* const dialog
        = new FilePlaybackMixerDialog(QString::fromStdString(path), { "Boom" }, metadata, nullptr);
    dialog->show();
    EXPECT_TRUE(QTest::qWaitForWindowExposed(dialog));
    EXPECT_EQ(dialog->size(), QSize(720, 560));
    EXPECT_LE(dialog->minimumSizeHint().width(), 520);
    delete dialog;
}
