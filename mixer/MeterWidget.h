#pragma once

#include <QWidget>

#include <cstdint>

/// A horizontal bar meter with a smoothed level, a peak line that holds and falls, and a clip indicator that latches.
/// Its clock is `setValue`: without readings nothing moves. How it moves stands in MeterBallistics, where it draws in
/// MeterGeometry. The scale is linear in amplitude, so the middle of the bar is 6 dB below full scale.
/// Thread: main only.
class MeterWidget : public QWidget {
    Q_OBJECT

public:
    explicit MeterWidget(QWidget* parent = nullptr);

    /// Takes one reading in thousandths of full scale. Levels show clamped to 0 … 1000; the clip threshold of 867
    /// applies to the reading as it comes.
    void setValue(int newReading);

    /// A meter that isn't armed draws a grey bar without peak line and clip indicator; its state moves on all the same.
    void setArmed(bool on);

    /// Keeps a count of 1 to 20, clamped. The picture is a continuous bar and doesn't depend on it.
    void setVisibleSegments(int count);

    /// Clears the clip indicator.
    void clearClip();

    /// The last reading in thousandths of full scale, 0 to 1000.
    int reading() const { return value; }
    /// Whether the clip indicator is on.
    bool isClipped() const { return clipped; }

protected:
    /// A left click clears a clip indicator that is on; every other press goes to the base class.
    void mousePressEvent(QMouseEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

    int32_t value = 0; ///< Last reading, 0 to 1000.
    float smoothed = 0.0f; ///< Drawn level, 0 to 1000.
    int32_t peakHold = 0; ///< Position of the peak line, 0 to 1000.
    int32_t peakHoldTicks = 0; ///< Readings left before the peak line falls.
    int32_t clipTicks = 0; ///< Readings left before the clip indicator clears.
    bool armed = true; ///< The meter is live.
    bool clipped = false; ///< Clip indicator on.
    int32_t visibleSegments = 20; ///< 1 to 20, kept only.

private:
    void paintBar(QPainter& painter, const QRect& bar) const;
    void paintPeakLine(QPainter& painter, int x) const;
    void paintClip(QPainter& painter) const;
};
