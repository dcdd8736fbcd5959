#include "tests/mixer/MixerDialogFixture.h"

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
