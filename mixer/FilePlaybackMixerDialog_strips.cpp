#include "mixer/FilePlaybackMixerDialog.h"

#include "app/look/ElidedLabel.h"
#include "app/look/Named.h"
#include "app/look/PlainToolTip.h"
#include "app/look/Theme.h"
#include "audio/TagwellAudioPlayer.h"
#include "mixer/FaderScale.h"
#include "mixer/FaderSlider.h"
#include "mixer/MeterWidget.h"
#include "mixer/MixerColours.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

#include <algorithm>

namespace {

constexpr int kStripWidth = 78;
constexpr int kStripMargin = 2;
constexpr int kCapWidth = 36;
constexpr int kCapHeight = 62;
constexpr int kNameFontPixels = 11;
constexpr int kDbFontPixels = 10;
constexpr char kGrooveBorder[] = "#444";

constexpr char kNameStyle[] = "font-size: %1px; font-weight: bold; color: %2;";
constexpr char kDbStyle[] = "font-size: %1px; color: %2;";

// The standard handle is as large as the cap and invisible: the slider itself draws the picture over it.
constexpr char kFaderStyle[]
    = "QSlider {    background: transparent;    padding: 0px;    margin: 0px;}QSlider::groove:vertical {    "
      "background: "
      "qlineargradient(x1:0, y1:0, x2:1, y2:0,         stop:0 #0a0a0a, stop:0.45 #222, stop:0.5 #333, stop:0.55 #222, "
      "stop:1 #0a0a0a);    width: 6px;    border-radius: 3px;    border: 1px solid %1;    margin: %2px 0px;}"
      "QSlider::handle:vertical {    width: %3px;    height: %4px;    margin: -%5px -%6px;    background: transparent; "
      "   "
      "border: none;}";

constexpr char kButtonStyle[]
    = "QPushButton {  background-color: #3a3a3a;  color: #ccc;  border: 1px solid #555;  border-radius: 3px;  "
      "font-size: 10px;  font-weight: bold;}QPushButton:checked {  background-color: #c0392b;  color: #fff;  border: "
      "1px "
      "solid #e74c3c;}QPushButton:hover { border: 1px solid #888; }";

QString faderStyle()
{
    return QString::fromLatin1(kFaderStyle)
        .arg(QLatin1String(kGrooveBorder), QString::number(30), QString::number(kCapWidth), QString::number(kCapHeight),
            QString::number(30), QString::number(15));
}

QString numbered(const char* name, int track)
{
    return QLatin1String(name) + QString::number(track);
}

QString labelStyle(const char* style, int pixels, const char* colour)
{
    return QString::fromLatin1(style).arg(QString::number(pixels), QLatin1String(colour));
}

QLabel* makeNameLabel(int track, const QString& name, QWidget* strip)
{
    // At most two lines, so that no name pushes the strip's controls out of sight.
    auto* label = named(numbered("nameLabel", track), new ElidedLabel(name, 2, strip));
    label->setAlignment(Qt::AlignCenter);
    label->setToolTip(plainToolTip(name));
    label->setStyleSheet(labelStyle(kNameStyle, kNameFontPixels, Theme::kTextPrimary));
    return label;
}

MeterWidget* makeMeter(int track, const QString& name, QWidget* strip)
{
    auto* meter = named(numbered("meter", track), new MeterWidget(strip));
    meter->setAccessibleName(QStringLiteral("Meter %1").arg(name));
    meter->setFixedHeight(12);
    // A strip is narrower than a meter that stands alone, and would cut off its clip indicator.
    meter->setMinimumWidth(0);
    meter->setArmed(true);
    return meter;
}

FaderSlider* makeFader(int track, const QString& name, QWidget* strip)
{
    auto* fader = named(numbered("fader", track), new FaderSlider(Qt::Vertical, strip));
    fader->setAccessibleName(QStringLiteral("Fader %1").arg(name));
    fader->setRange(FaderScale::kLowest, FaderScale::kHighest);
    fader->setValue(0);
    fader->setHandleDrawSize(kCapWidth, kCapHeight);
    fader->setMinimumHeight(180);
    // The style asks for the width of a groove only, which would cut the cap off at both sides.
    fader->setMinimumWidth(kCapWidth);
    fader->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Expanding);
    fader->setStyleSheet(faderStyle());
    return fader;
}

QLabel* makeDbLabel(int track, QWidget* strip)
{
    auto* label = named(numbered("dbLabel", track), new QLabel(QStringLiteral("0.0 dB"), strip));
    label->setAlignment(Qt::AlignCenter);
    label->setStyleSheet(labelStyle(kDbStyle, kDbFontPixels, kDimTextColour));
    return label;
}

QPushButton* makeToggle(const QString& letter, const QString& objectName, const QString& spokenName, QWidget* strip)
{
    auto* button = named(objectName, new QPushButton(letter, strip));
    button->setAccessibleName(spokenName);
    button->setCheckable(true);
    const auto sayState = [button](bool on) { button->setAccessibleDescription(QLatin1String(on ? "On" : "Off")); };
    QObject::connect(button, &QPushButton::toggled, button, sayState);
    sayState(false);
    button->setFixedSize(28, 22);
    button->setStyleSheet(QString::fromLatin1(kButtonStyle));
    return button;
}

} // namespace

FilePlaybackMixerDialog::ChannelStrip FilePlaybackMixerDialog::makeStrip(
    int track, const QString& name, QWidget* parent)
{
    ChannelStrip strip;
    strip.stripWidget = named(numbered("strip", track), new QWidget(parent));
    strip.stripWidget->setFixedWidth(kStripWidth);
    auto* column = new QVBoxLayout(strip.stripWidget);
    column->setContentsMargins(kStripMargin, kStripMargin, kStripMargin, kStripMargin);
    column->setSpacing(4);

    strip.nameLabel = makeNameLabel(track, name, strip.stripWidget);
    strip.meter = makeMeter(track, name, strip.stripWidget);
    strip.fader = makeFader(track, name, strip.stripWidget);
    strip.dbLabel = makeDbLabel(track, strip.stripWidget);
    column->addWidget(strip.nameLabel);
    column->addWidget(strip.meter);
    column->addWidget(strip.fader, 1, Qt::AlignHCenter);
    column->addWidget(strip.dbLabel);
    column->addLayout(makeButtonRow(strip, track, name));
    return strip;
}

void FilePlaybackMixerDialog::alignNames()
{
    int tallest = 0;
    for (const ChannelStrip& strip : strips)
        tallest = std::max(tallest, strip.nameLabel->heightForWidth(kStripWidth - 2 * kStripMargin));
    for (const ChannelStrip& strip : strips)
        strip.nameLabel->setMinimumHeight(tallest);
}

QLayout* FilePlaybackMixerDialog::makeButtonRow(ChannelStrip& strip, int track, const QString& name)
{
    strip.muteButton = makeToggle(
        QStringLiteral("M"), numbered("muteButton", track), QStringLiteral("Mute %1").arg(name), strip.stripWidget);
    strip.soloButton = makeToggle(
        QStringLiteral("S"), numbered("soloButton", track), QStringLiteral("Solo %1").arg(name), strip.stripWidget);
    auto* row = new QHBoxLayout;
    row->setSpacing(4);
    row->addStretch();
    row->addWidget(strip.muteButton);
    row->addWidget(strip.soloButton);
    row->addStretch();
    return row;
}

void FilePlaybackMixerDialog::connectStrip(int track)
{
    const ChannelStrip& strip = strips[static_cast<size_t>(track)];
    connect(strip.fader, &QSlider::valueChanged, this, [this, track](int value) { applyFader(track, value); });
    connect(strip.muteButton, &QPushButton::toggled, this, [this, track](bool on) {
        if (player)
            player->setTrackMuted(track, on);
    });
    connect(strip.soloButton, &QPushButton::toggled, this, [this, track](bool on) {
        if (player)
            player->setTrackSolo(track, on);
    });
}

void FilePlaybackMixerDialog::applyFader(int track, int sliderValue)
{
    if (track < 0 || static_cast<size_t>(track) >= strips.size())
        return;
    strips[static_cast<size_t>(track)].dbLabel->setText(sliderToDbText(sliderValue));
    if (player)
        player->setTrackGain(track, sliderToLinear(sliderValue));
}

QString FilePlaybackMixerDialog::sliderToDbText(int sliderValue)
{
    return FaderScale::text(sliderValue);
}

float FilePlaybackMixerDialog::sliderToLinear(int sliderValue)
{
    return FaderScale::gain(sliderValue);
}
