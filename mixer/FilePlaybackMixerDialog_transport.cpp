#include "mixer/FilePlaybackMixerDialog.h"

#include "audio/TagwellAudioPlayer.h"
#include "core/Timecode.h"
#include "mixer/MeterWidget.h"
#include "mixer/TransportIcon.h"
#include "mixer/WaveformWidget.h"

#include <QIcon>
#include <QLabel>
#include <QPushButton>

#include <algorithm>
#include <cmath>

namespace {

constexpr double kShortestDuration = 0.001; // Seconds; keeps the playhead of an empty file from dividing by zero.
constexpr float kMeterFullScale = 1000.0f;

int meterReading(float peak)
{
    // Written so that a peak that isn't a number reads 0.
    const float clamped = peak > 0.0f ? std::min(peak, 1.0f) : 0.0f;
    return static_cast<int>(clamped * kMeterFullScale);
}

} // namespace

void FilePlaybackMixerDialog::onPlayPause()
{
    if (!player)
        return;
    if (player->isPlaying()) {
        player->pause();
    } else if (player->isPaused()) {
        player->resume();
    } else {
        // After the end there is nothing left to play, so it starts over; a click on the waveform has cleared that.
        if (player->isFinished())
            player->seekSeconds(0.0);
        // An output that doesn't start leaves the transport in play, as the button then shows.
        (void)player->play();
    }
    updateTransportUi();
}

void FilePlaybackMixerDialog::onStop()
{
    if (!player)
        return;
    player->stop();
    waveform->setPlaybackPosition(0.0);
    updateTimecodeDisplay(0.0);
    timeLabel->setText(QStringLiteral("00:00 / %1").arg(formatTime(player->durationSeconds())));
    updateTransportUi();
}

void FilePlaybackMixerDialog::onWaveformSeek(double ratio)
{
    if (!player)
        return;
    const double clamped = std::clamp(ratio, 0.0, 1.0);
    const double duration = player->durationSeconds();
    const double seconds = clamped * duration;
    player->seekSeconds(seconds);
    waveform->setPlaybackPosition(clamped);
    showPosition(seconds, duration);
}

void FilePlaybackMixerDialog::stepBy(double seconds)
{
    if (!player || !(player->durationSeconds() > 0.0))
        return;
    onWaveformSeek((player->positionSeconds() + seconds) / player->durationSeconds());
}

void FilePlaybackMixerDialog::onUiTick()
{
    if (!player)
        return;
    updateTransportUi();
    const double duration = std::max(player->durationSeconds(), kShortestDuration);
    const double position = std::clamp(player->positionSeconds(), 0.0, duration);
    waveform->setPlaybackPosition(position / duration);
    showPosition(position, duration);
    for (size_t i = 0; i < strips.size(); ++i)
        strips[i].meter->setValue(meterReading(player->trackPeak(static_cast<int>(i))));
}

void FilePlaybackMixerDialog::showPosition(double seconds, double durationSeconds)
{
    timeLabel->setText(QStringLiteral("%1 / %2").arg(formatTime(seconds), formatTime(durationSeconds)));
    updateTimecodeDisplay(seconds);
}

void FilePlaybackMixerDialog::updateTimecodeDisplay(double seconds)
{
    if (!timecodeLabel)
        return;
    if (frameRate <= 0.0) {
        timecodeLabel->setText(QStringLiteral("--:--:--:--"));
        return;
    }
    const Timecode now
        = Timecode::fromPlaybackPosition(timeReference, timestampSampleRate, frameRate, dropFrame, seconds);
    timecodeLabel->setText(QString::fromStdString(now.toString()));
}

void FilePlaybackMixerDialog::updateTransportUi()
{
    if (!player)
        return;
    const bool playing = player->isPlaying();
    const QString text = playing ? QStringLiteral(" Pause") : QStringLiteral(" Play");
    // Icon and text always change together. Setting them anew 20 times a second would lay out the row each time.
    if (playPauseButton->text() == text)
        return;
    playPauseButton->setIcon(transportIcon(*playPauseButton, playing ? QStyle::SP_MediaPause : QStyle::SP_MediaPlay));
    playPauseButton->setText(text);
}

QString FilePlaybackMixerDialog::formatTime(double seconds)
{
    // Far beyond any file, and within what the cast can take.
    constexpr double kLongest = 1e15;
    const bool usable = std::isfinite(seconds) && seconds >= 0.0;
    const auto total = usable ? static_cast<qint64>(std::floor(std::min(seconds, kLongest) + 0.5)) : 0;
    const QChar zero = QLatin1Char('0');
    return QStringLiteral("%1:%2").arg(total / 60, 2, 10, zero).arg(total % 60, 2, 10, zero);
}
