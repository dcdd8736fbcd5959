#include "mixer/FilePlaybackMixerDialog.h"

#include "app/look/Theme.h"
#include "core/BwfMetadata.h"
#include "tests/support/DrivenOutput.h"
#include "tests/support/TempFolder.h"
#include "tests/support/WavBuilder.h"

#include <QAbstractButton>
#include <QApplication>
#include <QImage>
#include <QLabel>
#include <QLocale>
#include <QMessageBox>
#include <QMouseEvent>
#include <QPointer>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QSlider>
#include <QTest>
#include <QTextDocument>
#include <QTimer>
#include <QVBoxLayout>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <filesystem>
#include <functional>
#include <thread>

namespace {

// 8 seconds in four quarters, each half as loud as the one before.
constexpr size_t kQuarterFrames = 96000;
constexpr std::array kQuarterLevels{ 0.5f, 0.25f, 0.125f, 0.0625f };

// Bounds of the waits for the engine's threads, in tries of at least a millisecond. They only decide when a test fails.
constexpr int kTries = 20000;
constexpr uint32_t kPullFrames = 64;

std::string sample16(float level)
{
    return le16(static_cast<uint16_t>(static_cast<int16_t>(level * 32768.0f)));
}

std::string quarters()
{
    std::string bytes;
    for (const float level : kQuarterLevels) {
        for (size_t frame = 0; frame < kQuarterFrames; ++frame)
            bytes += sample16(level);
    }
    return bytes;
}

/// Interleaved frames in which each channel holds its level.
std::string steady(const std::vector<float>& levels, size_t frames)
{
    std::string frame;
    for (const float level : levels)
        frame += sample16(level);
    std::string bytes;
    bytes.reserve(frame.size() * frames);
    for (size_t i = 0; i < frames; ++i)
        bytes += frame;
    return bytes;
}

void shortSleep()
{
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
}

class MixerDialog : public testing::Test {
protected:
    void SetUp() override { DrivenOutput::reset(); }
    void TearDown() override
    {
        delete dialog;
        EXPECT_EQ(DrivenOutput::unitsAlive(), 0) << "the player let go of the device";
    }

    std::string write(const std::string& name, const WavBuilder& builder)
    {
        builder.write(folder.file(name));
        return folder.file(name);
    }

    void open(const std::string& path, const QList<QString>& names = {}, const BwfMetadata& metadata = {})
    {
        dialog = new FilePlaybackMixerDialog(QString::fromStdString(path), names, metadata, nullptr);
        dialog->show();
    }

    void openQuarters(const BwfMetadata& metadata = {})
    {
        open(write("take.wav", WavBuilder().fmt(48000, 1, 16).data(quarters())), { QStringLiteral("Boom") }, metadata);
    }

    void openSteady(const std::vector<float>& levels, size_t frames, const QList<QString>& names = {})
    {
        const auto channels = static_cast<uint16_t>(levels.size());
        open(write("take.wav", WavBuilder().fmt(48000, channels, 16).data(steady(levels, frames))), names);
    }

    /// Opens and answers the warning box with `answer`, which sees it.
    void openUnplayable(
        const std::string& path, const QList<QString>& names,
        const std::function<void(QMessageBox&)>& answer = [](QMessageBox&) {})
    {
        int boxes = 0;
        QTimer::singleShot(0, qApp, [&] {
            auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
            ASSERT_NE(box, nullptr);
            ++boxes;
            answer(*box);
            QTest::mouseClick(box->button(QMessageBox::Ok), Qt::LeftButton);
        });
        open(path, names);
        EXPECT_EQ(boxes, 1);
    }

    template <typename Widget = QWidget> Widget* find(const QString& name) const
    {
        auto* found = dialog->findChild<Widget*>(name);
        if (!found)
            ADD_FAILURE() << "no " << name.toStdString();
        return found;
    }

    QString text(const char* label) const { return find<QLabel>(QLatin1String(label))->text(); }
    QString playText() const { return find<QPushButton>("playPauseButton")->text(); }
    void click(const char* button) { QTest::mouseClick(find<QWidget>(QLatin1String(button)), Qt::LeftButton); }
    void tick() { ASSERT_TRUE(QMetaObject::invokeMethod(dialog, "onUiTick", Qt::DirectConnection)); }

    void clickWaveform(double ratio)
    {
        auto* waveform = find("waveform");
        const int x = static_cast<int>(ratio * waveform->width());
        QTest::mouseClick(waveform, Qt::LeftButton, {}, QPoint(x, waveform->height() / 2));
    }

    /// Pulls what the device would until a whole piece has this level. False if it never comes.
    bool hear(float level)
    {
        for (int attempt = 0; attempt < kTries; ++attempt) {
            const std::vector<float> heard = DrivenOutput::pullStereo(kPullFrames);
            const auto off = [level](float sample) { return std::fabs(sample - level) > 1e-4f; };
            if (!heard.empty() && std::none_of(heard.begin(), heard.end(), off))
                return true;
            shortSleep();
        }
        return false;
    }

    /// The first sample that isn't silence; 0.0 if none comes.
    float firstHeard()
    {
        for (int attempt = 0; attempt < kTries; ++attempt) {
            for (const float sample : DrivenOutput::pullStereo(kPullFrames)) {
                if (sample != 0.0f)
                    return sample;
            }
            shortSleep();
        }
        return 0.0f;
    }

    /// Plays on until the button has gone back to " Play". False if it never does.
    bool playToTheEnd()
    {
        for (int attempt = 0; attempt < kTries && playText() != QLatin1String(" Play"); ++attempt) {
            (void)DrivenOutput::pullStereo(1024);
            shortSleep();
            tick();
        }
        return playText() == QLatin1String(" Play");
    }

    /// The column of the playhead in the waveform; -1 without one.
    int playhead() const
    {
        const QImage picture = find("waveform")->grab().toImage();
        for (int x = 0; x < picture.width(); ++x) {
            if (picture.pixelColor(x, 5) == QColor(0, 255, 100))
                return x;
        }
        return -1;
    }

    /// As above, in parts of the waveform's width.
    double playheadPart() const { return static_cast<double>(playhead()) / find("waveform")->width(); }

    QImage meterPicture(int track) const { return find(QStringLiteral("meter%1").arg(track))->grab().toImage(); }

    /// Pixels from the left that are lit by the bar or by the peak line at its end.
    int bar(int track) const
    {
        const QImage picture = meterPicture(track);
        int length = 0;
        while (length + 1 < picture.width() - 1 && picture.pixelColor(length + 1, 6).value() > 100)
            ++length;
        return length;
    }

    TempFolder folder;
    QPointer<FilePlaybackMixerDialog> dialog;
};

BwfMetadata atOneOClock()
{
    BwfMetadata metadata;
    metadata.frameRate = 25.0;
    metadata.sampleRate = 48000;
    metadata.timeReference = uint64_t{ 3600 } * 48000;
    return metadata;
}

} // namespace

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

TEST_F(MixerDialog, isANonModalToolWindowThatDeletesItself)
{
    openQuarters();
    EXPECT_EQ(dialog->windowTitle(), "Playback Mixer");
    EXPECT_EQ(dialog->windowFlags() & Qt::Tool, Qt::Tool);
    EXPECT_FALSE(dialog->isModal());
    EXPECT_TRUE(dialog->testAttribute(Qt::WA_DeleteOnClose));
    EXPECT_EQ(dialog->minimumSize(), QSize(520, 460));
    EXPECT_EQ(dialog->size(), QSize(720, 560));
    EXPECT_EQ(dialog->styleSheet(), Theme::filledMainStyleSheet());
    EXPECT_EQ(dialog->filePath, QString::fromStdString(folder.file("take.wav")));
}

TEST_F(MixerDialog, rowsStandInOrderWithTwelvePixelMargins)
{
    openQuarters();
    auto* rows = qobject_cast<QVBoxLayout*>(dialog->layout());
    ASSERT_NE(rows, nullptr);
    EXPECT_EQ(rows->contentsMargins(), QMargins(12, 12, 12, 12));
    EXPECT_EQ(rows->spacing(), 10);
    ASSERT_EQ(rows->count(), 6);
    EXPECT_EQ(rows->itemAt(0)->widget(), find("titleLabel"));
    EXPECT_EQ(rows->itemAt(1)->widget(), find("infoLabel"));
    EXPECT_EQ(rows->itemAt(2)->layout()->itemAt(0)->widget(), find("playPauseButton"));
    EXPECT_EQ(rows->itemAt(2)->layout()->itemAt(1)->widget(), find("stopButton"));
    EXPECT_EQ(rows->itemAt(2)->layout()->itemAt(3)->widget(), find("timeLabel"));
    EXPECT_EQ(rows->itemAt(3)->layout()->itemAt(0)->widget(), find("timecodeLabel"));
    EXPECT_EQ(rows->itemAt(3)->layout()->itemAt(2)->widget(), find("frameRateBadge"));
    EXPECT_EQ(rows->itemAt(4)->widget(), find("waveform"));
    EXPECT_EQ(rows->itemAt(5)->widget(), find("stripScroll"));
    EXPECT_EQ(rows->stretch(5), 1);
}

TEST_F(MixerDialog, labelsHaveTheirSizesColoursAndAlignments)
{
    openQuarters();
    const auto style = [this](const char* label) { return find<QLabel>(QLatin1String(label))->styleSheet(); };
    EXPECT_EQ(style("titleLabel"), "font-size: 15px; font-weight: 700; color: #f0f0f0;");
    EXPECT_EQ(style("infoLabel"), "color: #999999;");
    EXPECT_EQ(style("timecodeLabel"),
        "font-size: 28px; font-family: 'Courier New', 'Monaco', 'Menlo', monospace; font-weight: bold; padding: 0px; "
        "letter-spacing: 1px; background-color: transparent; color: #B8E0FF;");
    EXPECT_EQ(style("frameRateBadge"),
        QStringLiteral("font-size: 14px; color: %1; font-weight: bold; padding: 4px 10px; background-color: #4a2020; "
                       "border: 1px solid %2; border-radius: 4px;")
            .arg(QLatin1String(Theme::kDanger), QLatin1String(Theme::kDangerBorder)));
    EXPECT_EQ(find<QLabel>("timecodeLabel")->alignment(), Qt::AlignLeft | Qt::AlignVCenter);
    EXPECT_EQ(find<QLabel>("timeLabel")->alignment(), Qt::AlignRight | Qt::AlignVCenter);
    EXPECT_EQ(find("timeLabel")->minimumWidth(), 110);
}

TEST_F(MixerDialog, theWaveformAndTheStripsHaveTheirRoom)
{
    openQuarters();
    EXPECT_EQ(find("waveform")->minimumHeight(), 90);
    EXPECT_EQ(find("waveform")->maximumHeight(), 130);
    const auto* scroll = find<QScrollArea>("stripScroll");
    EXPECT_TRUE(scroll->widgetResizable());
    EXPECT_EQ(scroll->horizontalScrollBarPolicy(), Qt::ScrollBarAsNeeded);
    EXPECT_EQ(scroll->verticalScrollBarPolicy(), Qt::ScrollBarAlwaysOff);
    EXPECT_EQ(scroll->minimumHeight(), 280);
    EXPECT_EQ(scroll->widget()->layout()->contentsMargins(), QMargins(6, 6, 6, 6));
    EXPECT_EQ(scroll->widget()->layout()->spacing(), 8);
}

TEST_F(MixerDialog, aStripsLabelsAreSmallAndCentredAndItsCheckedButtonsRed)
{
    openQuarters();
    const auto* name = find<QLabel>("nameLabel0");
    EXPECT_EQ(name->styleSheet(), "font-size: 11px; font-weight: bold; color: #f0f0f0;");
    EXPECT_EQ(name->alignment(), Qt::AlignCenter);
    EXPECT_TRUE(name->wordWrap());
    EXPECT_EQ(find("dbLabel0")->styleSheet(), "font-size: 10px; color: #999999;");
    EXPECT_EQ(find<QLabel>("dbLabel0")->alignment(), Qt::AlignCenter);
    for (const char* button : { "muteButton0", "soloButton0" }) {
        EXPECT_EQ(find(QLatin1String(button))->styleSheet(),
            "QPushButton {  background-color: #3a3a3a;  color: #ccc;  border: 1px solid #555;  border-radius: 3px;  "
            "font-size: 10px;  font-weight: bold;}QPushButton:checked {  background-color: #c0392b;  color: #fff;  "
            "border: 1px solid #e74c3c;}QPushButton:hover { border: 1px solid #888; }");
    }
}

TEST_F(MixerDialog, aFaderHasADarkGrooveAndTakesTheHeight)
{
    openQuarters();
    const auto* fader = find<QSlider>("fader0");
    EXPECT_EQ(fader->orientation(), Qt::Vertical);
    EXPECT_EQ(fader->minimumHeight(), 180);
    EXPECT_EQ(fader->sizePolicy().horizontalPolicy(), QSizePolicy::Fixed);
    EXPECT_EQ(fader->sizePolicy().verticalPolicy(), QSizePolicy::Expanding);
    EXPECT_EQ(fader->styleSheet(),
        "QSlider {    background: transparent;    padding: 0px;    margin: 0px;}QSlider::groove:vertical {    "
        "background: qlineargradient(x1:0, y1:0, x2:1, y2:0,         stop:0 #0a0a0a, stop:0.45 #222, stop:0.5 #333, "
        "stop:0.55 #222, stop:1 #0a0a0a);    width: 6px;    border-radius: 3px;    border: 1px solid #444;    "
        "margin: 30px 0px;}QSlider::handle:vertical {    width: 36px;    height: 62px;    margin: -30px -15px;    "
        "background: transparent;    border: none;}");
    const int before = fader->height();
    dialog->resize(720, 760);
    QCoreApplication::processEvents();
    EXPECT_EQ(find("fader0")->height(), before + 200);
}

TEST_F(MixerDialog, aStripStacksNameMeterFaderLevelAndButtons)
{
    openQuarters();
    auto* column = find("strip0")->layout();
    EXPECT_EQ(column->contentsMargins(), QMargins(2, 2, 2, 2));
    EXPECT_EQ(column->spacing(), 4);
    ASSERT_EQ(column->count(), 5);
    EXPECT_EQ(column->itemAt(0)->widget(), find("nameLabel0"));
    EXPECT_EQ(column->itemAt(1)->widget(), find("meter0"));
    EXPECT_EQ(column->itemAt(2)->widget(), find("fader0"));
    EXPECT_EQ(column->itemAt(3)->widget(), find("dbLabel0"));
    EXPECT_EQ(column->itemAt(4)->layout()->spacing(), 4);
    EXPECT_EQ(column->itemAt(4)->layout()->itemAt(1)->widget(), find("muteButton0"));
    EXPECT_EQ(column->itemAt(4)->layout()->itemAt(2)->widget(), find("soloButton0"));
    EXPECT_EQ(find("strip0")->width(), 78);
    EXPECT_EQ(find("meter0")->height(), 12);
    EXPECT_EQ(find("meter0")->width(), 74) << "as wide as the strip has room";
    EXPECT_EQ(find("muteButton0")->size(), QSize(28, 22));
    EXPECT_GE(find("fader0")->height(), 180);
}

TEST_F(MixerDialog, capAndGrooveLieWithinTheFader)
{
    openQuarters();
    EXPECT_EQ(find("fader0")->width(), 36);
    // The cap stands in the middle of the fader, from its left to its right edge.
    const QImage picture = find("fader0")->grab().toImage();
    EXPECT_GT(qGray(picture.pixel(6, 31)), 90);
    EXPECT_GT(qGray(picture.pixel(29, 31)), 90);
}

TEST_F(MixerDialog, faderRunsFromMinus60ToPlus6AndStartsAtUnity)
{
    openQuarters();
    auto* fader = find<QSlider>("fader0");
    EXPECT_EQ(fader->minimum(), -600);
    EXPECT_EQ(fader->maximum(), 60);
    EXPECT_EQ(fader->value(), 0);
    EXPECT_EQ(text("dbLabel0"), "0.0 dB");
    EXPECT_FALSE(find<QPushButton>("muteButton0")->isChecked());
    EXPECT_FALSE(find<QPushButton>("soloButton0")->isChecked());
}

TEST_F(MixerDialog, namesItsControlsForAssistiveTools)
{
    openQuarters();
    EXPECT_EQ(find("fader0")->accessibleName(), "Fader Boom");
    EXPECT_EQ(find("muteButton0")->accessibleName(), "Mute Boom");
    EXPECT_EQ(find("soloButton0")->accessibleName(), "Solo Boom");
    EXPECT_EQ(find("meter0")->accessibleName(), "Meter Boom");
    EXPECT_EQ(find("waveform")->accessibleName(), "Waveform");
    EXPECT_EQ(find<QPushButton>("muteButton0")->text(), "M");
    EXPECT_EQ(find<QPushButton>("soloButton0")->text(), "S");
}

TEST_F(MixerDialog, tellsFileFormatAndLength)
{
    openQuarters(atOneOClock());
    EXPECT_EQ(text("titleLabel"), "take.wav");
    EXPECT_EQ(text("infoLabel"), QStringLiteral(u"1 ch \u00b7 48000 Hz \u00b7 16-bit PCM \u00b7 00:08 \u00b7 25"));
    EXPECT_EQ(text("timeLabel"), "00:00 / 00:08");
    EXPECT_EQ(text("frameRateBadge"), "25");
}

TEST_F(MixerDialog, tellsFloatAndLeavesOutAnUnknownRate)
{
    open(write("float.wav", WavBuilder().fmt(44100, 2, 32, 3).data(std::string(8 * 44100, '\0'))));
    EXPECT_EQ(text("infoLabel"), QStringLiteral(u"2 ch \u00b7 44100 Hz \u00b7 32-bit IEEE float \u00b7 00:01"));
}

TEST_F(MixerDialog, aFileNameThatLooksLikeMarkupIsShownAsItIs)
{
    open(write("<b>bold<i>.wav", WavBuilder().fmt(48000, 1, 16).data(steady({ 0.1f }, 100))),
        { QStringLiteral("<h1>Boom") });
    EXPECT_EQ(text("titleLabel"), "<b>bold<i>.wav");
    EXPECT_EQ(find<QLabel>("titleLabel")->textFormat(), Qt::PlainText);
    EXPECT_EQ(text("nameLabel0"), "<h1>Boom");
    EXPECT_EQ(find<QLabel>("nameLabel0")->textFormat(), Qt::PlainText);
}

TEST_F(MixerDialog, aNameThatLooksLikeMarkupIsShownAsItIsInItsToolTip)
{
    const QString name = QStringLiteral("<img src='/dev/zero'> & <b>Boom");
    openSteady({ 0.1f, 0.1f }, 100, { name, QStringLiteral("Tom & Jerry") });
    // A tool tip takes what looks like markup for markup, and reads the files that it names.
    QTextDocument shown;
    shown.setHtml(find("nameLabel0")->toolTip());
    EXPECT_EQ(shown.toPlainText(), name);
    EXPECT_EQ(find("nameLabel1")->toolTip(), "Tom & Jerry");
}

TEST_F(MixerDialog, withoutTimecodeShowsDashes)
{
    openQuarters();
    EXPECT_EQ(text("timecodeLabel"), "--:--:--:--");
    EXPECT_EQ(text("frameRateBadge"), "--");
    clickWaveform(0.5);
    tick();
    EXPECT_EQ(text("timecodeLabel"), "--:--:--:--");
}

TEST_F(MixerDialog, aNegativeFrameRateIsNoTimecode)
{
    BwfMetadata metadata = atOneOClock();
    metadata.frameRate = -25.0;
    openQuarters(metadata);
    EXPECT_EQ(text("timecodeLabel"), "--:--:--:--");
    EXPECT_EQ(text("frameRateBadge"), "--");
}

TEST_F(MixerDialog, startsAtTheFilesTimecode)
{
    openQuarters(atOneOClock());
    EXPECT_EQ(text("timecodeLabel"), "01:00:00:00");
}

TEST_F(MixerDialog, theTimestampRateCountsBeforeTheSampleRate)
{
    BwfMetadata metadata = atOneOClock();
    metadata.timestampSampleRate = 96000;
    openQuarters(metadata);
    EXPECT_EQ(text("timecodeLabel"), "00:30:00:00");
}

TEST_F(MixerDialog, dropFrameShowsInReadOutAndBadge)
{
    BwfMetadata metadata = atOneOClock();
    metadata.frameRate = 29.97;
    metadata.dropFrame = true;
    openQuarters(metadata);
    EXPECT_EQ(text("frameRateBadge"), "29.97 DF");
    EXPECT_TRUE(text("timecodeLabel").contains(QLatin1Char(';')));
}

TEST_F(MixerDialog, channelsBeyondTheNamesAreNumbered)
{
    openSteady({ 0.1f, 0.1f, 0.1f, 0.1f, 0.1f }, 100,
        { QStringLiteral(" Boom "), QStringLiteral("Lav"), QStringLiteral("  \t"), QString() });
    EXPECT_EQ(text("nameLabel0"), "Boom");
    EXPECT_EQ(text("nameLabel1"), "Lav");
    EXPECT_EQ(text("nameLabel2"), "Track 3") << "blanks are no name";
    EXPECT_EQ(text("nameLabel3"), "Track 4");
    EXPECT_EQ(text("nameLabel4"), "Track 5");
    EXPECT_EQ(find("nameLabel0")->toolTip(), "Boom");
}

TEST_F(MixerDialog, namesOfAnyLengthLeaveTheStripsInLine)
{
    const QString endless = QStringLiteral("Wireless_Lavalier_07 ").repeated(20);
    openSteady({ 0.1f, 0.1f, 0.1f }, 100, { QStringLiteral("Boom"), QStringLiteral("Anna Lav Backup"), endless });
    QCoreApplication::processEvents();
    EXPECT_EQ(text("nameLabel2"), endless.trimmed());
    for (const char* part : { "meter", "fader", "muteButton" }) {
        const int y = find(QLatin1String(part) + QLatin1String("0"))->y();
        EXPECT_EQ(find(QLatin1String(part) + QLatin1String("1"))->y(), y) << part;
        EXPECT_EQ(find(QLatin1String(part) + QLatin1String("2"))->y(), y) << part;
    }
    EXPECT_LE(find("nameLabel2")->height(), 2 * find("nameLabel2")->fontMetrics().lineSpacing() + 1);
}

TEST_F(MixerDialog, namesBeyondTheChannelsAreNotShown)
{
    openSteady({ 0.1f }, 100, { QStringLiteral("Boom"), QStringLiteral("Lav") });
    EXPECT_EQ(dialog->findChild<QWidget*>("strip1"), nullptr);
    EXPECT_EQ(text("nameLabel0"), "Boom");
}

TEST_F(MixerDialog, withoutNamesTracksAreNumbered)
{
    openSteady({ 0.1f, 0.1f }, 100);
    EXPECT_EQ(text("nameLabel0"), "Track 1");
    EXPECT_EQ(text("nameLabel1"), "Track 2");
}

TEST_F(MixerDialog, sixtyFourStripsStandSideBySideAndScroll)
{
    openSteady(std::vector<float>(64, 0.01f), 4800);
    EXPECT_NE(dialog->findChild<QWidget*>("strip63"), nullptr);
    EXPECT_EQ(dialog->findChild<QWidget*>("strip64"), nullptr);
    EXPECT_EQ(text("nameLabel63"), "Track 64");
    auto* scroll = find<QScrollArea>("stripScroll");
    EXPECT_GT(scroll->horizontalScrollBar()->maximum(), 60 * 78);
    EXPECT_EQ(scroll->verticalScrollBarPolicy(), Qt::ScrollBarAlwaysOff);
    EXPECT_EQ(find("strip1")->x() - find("strip0")->x(), 78 + 8);
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
