#include "mixer/FilePlaybackMixerDialog.h"

#include "app/look/ElidedLabel.h"
#include "app/look/Named.h"
#include "app/look/Theme.h"
#include "audio/TagwellAudioPlayer.h"
#include "core/BwfMetadata.h"
#include "core/Timecode.h"
#include "mixer/FaderSlider.h"
#include "mixer/MeterWidget.h"
#include "mixer/MixerAccessibility.h"
#include "mixer/MixerColours.h"
#include "mixer/TransportIcon.h"
#include "mixer/WaveformWidget.h"

#include <QFileInfo>
#include <QHBoxLayout>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QTimer>
#include <QVBoxLayout>

#include <algorithm>

namespace {

constexpr int kTickMilliseconds = 50;
constexpr int kFormatFloat = 3;

// Far more than any file that plays has. A broken header may claim 65535, whose widgets would fill the memory.
constexpr qsizetype kMostSilentStrips = 512;

constexpr char kTimecodeColour[] = "#B8E0FF";

constexpr char kTitleStyle[] = "font-size: 15px; font-weight: 700; color: %1;";
constexpr char kInfoStyle[] = "color: %1;";
constexpr char kTimecodeStyle[]
    = "font-size: 28px; font-family: 'Courier New', 'Monaco', 'Menlo', monospace; font-weight: bold; padding: 0px; "
      "letter-spacing: 1px; background-color: transparent; color: %1;";
constexpr char kBadgeStyle[]
    = "font-size: 14px; color: %1; font-weight: bold; padding: 4px 10px; background-color: #4a2020; "
      "border: 1px solid %2; border-radius: 4px;";

// The main sheet says nothing about scroll bars, and a dark ground alone makes them white lines.
constexpr char kScrollBarStyle[]
    = "QScrollBar:horizontal { background: transparent; height: 10px; margin: 0px; }"
      "QScrollBar::handle:horizontal { background: #4a4a4a; min-width: 40px; border-radius: 4px; margin: 1px 0px; }"
      "QScrollBar::handle:horizontal:hover { background: #666; }"
      "QScrollBar::add-line:horizontal, QScrollBar::sub-line:horizontal { width: 0px; }"
      "QScrollBar::add-page:horizontal, QScrollBar::sub-page:horizontal { background: transparent; }";

constexpr int kBadgeMaximumWidth = 160; // Pixels. Room for any rate in use; its font is in pixels too.

constexpr char kNoTimecode[] = "--:--:--:--";
constexpr char kNoFrameRate[] = "--";

QLabel* makeLabel(const char* name, const QString& text, QWidget* parent)
{
    auto* label = named(name, new QLabel(parent));
    // Names come out of files; one that looks like markup is still a name.
    label->setTextFormat(Qt::PlainText);
    label->setText(text);
    return label;
}

QPushButton* makeTransportButton(const char* name, QStyle::StandardPixmap icon, const QString& text, QWidget* parent)
{
    auto* button = named(name, new QPushButton(transportIcon(*parent, icon), text, parent));
    button->setEnabled(false);
    return button;
}

QString frameRateText(double rate, bool isDropFrame)
{
    return QString::fromStdString(Timecode::formatFrameRate(rate, isDropFrame));
}

} // namespace

FilePlaybackMixerDialog::FilePlaybackMixerDialog(
    const QString& path, const QList<QString>& trackNames, const BwfMetadata& metadata, QWidget* parent)
    : QDialog(parent)
    , filePath(path)
    , frameRate(metadata.frameRate)
    , dropFrame(metadata.dropFrame)
    , timeReference(metadata.timeReference)
    , timestampSampleRate(metadata.timestampSampleRate != 0 ? metadata.timestampSampleRate : metadata.sampleRate)
{
    setWindowTitle(QStringLiteral("Playback Mixer"));
    setWindowFlag(Qt::Tool);
    setModal(false);
    setAttribute(Qt::WA_DeleteOnClose);
    setMinimumSize(520, 460);
    resize(720, 560);
    setStyleSheet(Theme::filledMainStyleSheet());
    installMixerAccessibility();
    openPlayer();
    setupUi(trackNames);
}

FilePlaybackMixerDialog::~FilePlaybackMixerDialog()
{
    if (player)
        player->close();
}

void FilePlaybackMixerDialog::openPlayer()
{
    player = std::make_unique<TagwellAudioPlayer>();
    if (!player->open(filePath.toStdString()))
        player.reset();
}

void FilePlaybackMixerDialog::setupUi(const QList<QString>& trackNames)
{
    auto* rows = new QVBoxLayout(this);
    rows->setContentsMargins(12, 12, 12, 12);
    rows->setSpacing(10);
    addHeader(rows);
    addTransportRow(rows);
    addTimecodeRow(rows);
    addWaveform(rows);
    addStrips(rows, trackNames);

    connect(playPauseButton, &QPushButton::clicked, this, &FilePlaybackMixerDialog::onPlayPause);
    connect(stopButton, &QPushButton::clicked, this, &FilePlaybackMixerDialog::onStop);
    if (player)
        showPlayable();
    else
        warnUnplayable();
    startTimer();
}

void FilePlaybackMixerDialog::addHeader(QVBoxLayout* rows)
{
    titleLabel = named("titleLabel", new ElidedLabel(QFileInfo(filePath).fileName(), 1, this));
    titleLabel->setStyleSheet(QString::fromLatin1(kTitleStyle).arg(QLatin1String(Theme::kTextPrimary)));
    rows->addWidget(titleLabel);

    // A file may claim a rate of hundreds of digits.
    infoLabel = named("infoLabel", new ElidedLabel(infoText(), 1, this));
    infoLabel->setStyleSheet(QString::fromLatin1(kInfoStyle).arg(QLatin1String(kDimTextColour)));
    rows->addWidget(infoLabel);
}

void FilePlaybackMixerDialog::addTransportRow(QVBoxLayout* rows)
{
    playPauseButton = makeTransportButton("playPauseButton", QStyle::SP_MediaPlay, QStringLiteral(" Play"), this);
    stopButton = makeTransportButton("stopButton", QStyle::SP_MediaStop, QStringLiteral(" Stop"), this);
    timeLabel = makeLabel("timeLabel", QStringLiteral("00:00 / 00:00"), this);
    timeLabel->setMinimumWidth(110);
    timeLabel->setAlignment(Qt::AlignRight | Qt::AlignVCenter);

    auto* row = new QHBoxLayout;
    row->addWidget(playPauseButton);
    row->addWidget(stopButton);
    row->addStretch();
    row->addWidget(timeLabel);
    rows->addLayout(row);
}

void FilePlaybackMixerDialog::addTimecodeRow(QVBoxLayout* rows)
{
    timecodeLabel = makeLabel("timecodeLabel", QLatin1String(kNoTimecode), this);
    timecodeLabel->setAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    timecodeLabel->setStyleSheet(QString::fromLatin1(kTimecodeStyle).arg(QLatin1String(kTimecodeColour)));

    const QString rate = frameRate > 0.0 ? frameRateText(frameRate, dropFrame) : QString::fromLatin1(kNoFrameRate);
    frameRateBadge = makeLabel("frameRateBadge", rate, this);
    frameRateBadge->setMaximumWidth(kBadgeMaximumWidth);
    frameRateBadge->setStyleSheet(
        QString::fromLatin1(kBadgeStyle).arg(QLatin1String(Theme::kDanger), QLatin1String(Theme::kDangerBorder)));

    // The name takes the place of the text, which says nothing by itself.
    frameRateBadge->setAccessibleName(QStringLiteral("Frame rate"));
    frameRateBadge->setAccessibleDescription(rate);

    auto* row = new QHBoxLayout;
    row->addWidget(timecodeLabel);
    row->addStretch();
    row->addWidget(frameRateBadge);
    rows->addLayout(row);
    updateTimecodeDisplay(0.0);
}

void FilePlaybackMixerDialog::addWaveform(QVBoxLayout* rows)
{
    waveform = named("waveform", new WaveformWidget(this));
    waveform->setAccessibleName(QStringLiteral("Waveform"));
    waveform->setMinimumHeight(90);
    waveform->setMaximumHeight(130);
    // A file without a way to be heard may still be seen, so this doesn't ask for the player.
    waveform->loadFile(filePath.toStdString());
    connect(waveform, &WaveformWidget::seekRequested, this, &FilePlaybackMixerDialog::onWaveformSeek);
    connect(waveform, &WaveformWidget::stepRequested, this, [this](double seconds) {
        if (player && player->durationSeconds() > 0.0)
            onWaveformSeek((player->positionSeconds() + seconds) / player->durationSeconds());
    });
    rows->addWidget(waveform);
}

void FilePlaybackMixerDialog::addStrips(QVBoxLayout* rows, const QList<QString>& trackNames)
{
    stripScroll = named("stripScroll", new QScrollArea(this));
    stripScroll->setAccessibleName(QStringLiteral("Tracks"));
    // It has nothing to press, and scrolls to whatever control inside gets the keyboard.
    stripScroll->setFocusPolicy(Qt::NoFocus);
    stripScroll->setWidgetResizable(true);
    stripScroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    stripScroll->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    stripScroll->setMinimumHeight(280);
    stripScroll->horizontalScrollBar()->setStyleSheet(QLatin1String(kScrollBarStyle));

    auto* inside = new QWidget(stripScroll);
    auto* row = new QHBoxLayout(inside);
    row->setContentsMargins(6, 6, 6, 6);
    row->setSpacing(8);
    const int count = stripCount(trackNames);
    for (int track = 0; track < count; ++track) {
        const QString given = trackNames.value(track).trimmed();
        const QString name = given.isEmpty() ? QStringLiteral("Track %1").arg(track + 1) : given;
        strips.push_back(makeStrip(track, name, inside));
        row->addWidget(strips.back().stripWidget);
        connectStrip(track);
        applyFader(track, 0);
    }
    row->addStretch();
    alignNames();
    stripScroll->setWidget(inside);
    rows->addWidget(stripScroll, 1);
}

int FilePlaybackMixerDialog::stripCount(const QList<QString>& trackNames) const
{
    if (player && player->channels() >= 1)
        return player->channels();
    return static_cast<int>(std::clamp<qsizetype>(trackNames.size(), 1, kMostSilentStrips));
}

void FilePlaybackMixerDialog::showPlayable()
{
    playPauseButton->setEnabled(true);
    stopButton->setEnabled(true);
    timeLabel->setText(QStringLiteral("00:00 / %1").arg(formatTime(player->durationSeconds())));
    waveform->setPlaybackPosition(0.0);
    updateTimecodeDisplay(0.0);
}

void FilePlaybackMixerDialog::warnUnplayable()
{
    // The box stands over this dialog, which isn't shown yet and so has no place.
    adjustPosition(parentWidget());
    QMessageBox::warning(
        this, QStringLiteral("Playback"), QStringLiteral("Could not open this WAV for playback."), QMessageBox::Ok);
}

void FilePlaybackMixerDialog::startTimer()
{
    uiTimer = named("uiTimer", new QTimer(this));
    uiTimer->setInterval(kTickMilliseconds);
    connect(uiTimer, &QTimer::timeout, this, &FilePlaybackMixerDialog::onUiTick);
    uiTimer->start();
}

QString FilePlaybackMixerDialog::infoText() const
{
    if (!player)
        return QStringLiteral("Could not open this file for playback.");
    QString text = QStringLiteral(u"%1 ch \u00b7 %2 Hz \u00b7 %3-bit %4 \u00b7 %5")
                       .arg(QString::number(player->channels()), QString::number(player->sampleRate()),
                           QString::number(player->bitDepth()),
                           player->formatCode() == kFormatFloat ? QStringLiteral("IEEE float") : QStringLiteral("PCM"),
                           formatTime(player->durationSeconds()));
    if (frameRate > 0.0)
        text += QStringLiteral(u" \u00b7 %1").arg(frameRateText(frameRate, dropFrame));
    return text;
}
