#pragma once

#include "mixer/WaveformPeaks.h"

#include <QPixmap>
#include <QWidget>

#include <cstdint>
#include <string>
#include <vector>

/// An overview of a WAV file's first channel as upright bars with a playhead; a click asks for a seek, and so do Left,
/// Right and Home while it has the keyboard. Reads the file by itself, apart from the player. The bars are made once at
/// load, so painting costs the same for all lengths of file. Thread: main only.
class WaveformWidget : public QWidget {
    Q_OBJECT

public:
    explicit WaveformWidget(QWidget* parent = nullptr);

    static constexpr double kStepSeconds = 5.0; ///< What Left and Right ask for.

    /// Shows the file at `path` (UTF-8). Reads it to its end before it returns. If it is shorter than it claims it is
    /// read twice, and its first channel is held in memory meanwhile, four bytes a frame. False if it can't be played
    /// or has no frames; the widget is then empty.
    bool loadFile(const std::string& path);

    /// Shows nothing.
    void clear();

    /// Makes the bars out of one channel's samples. The number has no effect.
    void generatePeaks(const std::vector<float>& samples, int count);

    /// Moves the playhead to 0.0 … 1.0 of the length, clamped. A move of 0.001 or less, the width of a bar, is not even
    /// stored, and neither is what isn't a number.
    void setPlaybackPosition(double position);

    /// Where the playhead stands in seconds; it may lag behind by a thousandth of the length.
    double positionSeconds() const { return playbackPosition * duration; }
    /// Length of the file in seconds; 0.0 while nothing is shown.
    double durationSeconds() const { return duration; }

signals:
    /// A left click at `ratio`, 0.0 … 1.0 of the length; Home is a click at the start.
    void seekRequested(double ratio);
    /// A key asks to go on by `seconds`, or back if that is negative, from where the file plays. The widget doesn't
    /// know that place closely enough in a long file.
    void stepRequested(double seconds);

protected:
    /// Asks for a seek; only the press counts, and only while a file with a length is shown.
    void mousePressEvent(QMouseEvent* event) override;
    /// Asks for a step or a seek, under the same condition; every other key goes to the base class.
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

    std::vector<WaveformPeak> peaks; ///< One for each bar, at most 1000; empty while nothing is shown.
    double playbackPosition = 0.0; ///< 0.0 … 1.0; may lag behind by 0.001.
    double duration = 0.0; ///< Seconds.
    int64_t totalFrames = 0; ///< Frames that the file claims.
    int32_t sampleRate = 48000; ///< Frames per second.

private:
    bool canSeek() const { return !peaks.empty() && duration > 0.0; }
    void loadAllSamples(const std::string& path, size_t expected);
    void drawBarsPicture(QSize pixels, qreal density);
    void paintBars(QPainter& painter) const;
    void paintLines(QPainter& painter) const;

    QPixmap barsPicture; // Ground and bars as last painted; null until the bars are painted again.
};
