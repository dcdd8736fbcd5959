#include "mixer/MeterWidget.h"

#include "mixer/MeterBallistics.h"
#include "mixer/MeterGeometry.h"

#include <QLinearGradient>
#include <QMouseEvent>
#include <QPainter>

#include <algorithm>
#include <array>

namespace {

constexpr int kMostSegments = 20;

struct Stop {
    double at;
    QRgb colour;
};

constexpr std::array kArmedStops{
    Stop{ 0.0, qRgb(0, 190, 80) },
    Stop{ 0.28, qRgb(0, 210, 60) },
    Stop{ 0.4, qRgb(80, 220, 0) },
    Stop{ 0.55, qRgb(230, 210, 0) },
    Stop{ 0.7, qRgb(255, 160, 0) },
    Stop{ 0.82, qRgb(255, 60, 20) },
    Stop{ 1.0, qRgb(255, 20, 20) },
};

constexpr std::array kUnarmedStops{
    Stop{ 0.0, qRgb(42, 42, 48) },
    Stop{ 0.5, qRgb(38, 38, 44) },
    Stop{ 1.0, qRgb(32, 32, 38) },
};

constexpr std::array kGlossStops{
    Stop{ 0.0, qRgba(255, 255, 255, 55) },
    Stop{ 0.4, qRgba(255, 255, 255, 0) },
    Stop{ 1.0, qRgba(0, 0, 0, 25) },
};

template <size_t N> void setStops(QLinearGradient& gradient, const std::array<Stop, N>& stops)
{
    for (const Stop& stop : stops)
        gradient.setColorAt(stop.at, QColor::fromRgba(stop.colour));
}

} // namespace

MeterWidget::MeterWidget(QWidget* parent) : QWidget(parent)
{
    setMinimumHeight(12);
    setMinimumWidth(100);
    setToolTip(QStringLiteral(u"Clip indicator \u2014 clears after 10s, on new take, or click"));
}

void MeterWidget::setValue(int newReading)
{
    using namespace MeterBallistics;
    const int32_t peakBefore = peakHold;
    const int levelBefore = static_cast<int>(smoothed);
    const bool clippedBefore = clipped;

    value = clampedReading(newReading);
    smoothed = nextLevel(smoothed, value);
    const PeakLine line = nextPeakLine({ peakHold, peakHoldTicks }, value);
    peakHold = line.position;
    peakHoldTicks = line.callsLeft;
    const Clip clip = nextClip({ clipped, clipTicks }, newReading);
    clipped = clip.on;
    clipTicks = clip.callsLeft;

    if (peakHold != peakBefore || static_cast<int>(smoothed) != levelBefore || clipped != clippedBefore)
        update();
}

void MeterWidget::setArmed(bool on)
{
    if (armed == on)
        return;
    armed = on;
    update();
}

void MeterWidget::setVisibleSegments(int count)
{
    const int32_t clamped = std::clamp(count, 1, kMostSegments);
    if (visibleSegments == clamped)
        return;
    visibleSegments = clamped;
    update();
}

void MeterWidget::clearClip()
{
    if (!clipped && clipTicks == 0)
        return;
    clipped = false;
    clipTicks = 0;
    update();
}

void MeterWidget::mousePressEvent(QMouseEvent* event)
{
    if (event->button() != Qt::LeftButton || !clipped) {
        QWidget::mousePressEvent(event);
        return;
    }
    clearClip();
    event->accept();
}

void MeterWidget::paintEvent(QPaintEvent*)
{
    const MeterGeometry geometry{ width(), height() };
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing, false);
    painter.fillRect(geometry.outer(), QColor(18, 18, 22));
    painter.fillRect(geometry.inner(), QColor(24, 24, 30));

    const QRect bar = geometry.bar(smoothed);
    if (!bar.isEmpty())
        paintBar(painter, bar);
    if (!armed)
        return;
    const int lineX = geometry.peakLineX(peakHold);
    if (lineX >= 0)
        paintPeakLine(painter, lineX);
    if (clipped)
        paintClip(painter);
}

void MeterWidget::paintBar(QPainter& painter, const QRect& bar) const
{
    // The gradient spans the widget and not the bar, so that colours stand still as the bar moves.
    QLinearGradient colours(1, 0, width() - 1, 0);
    if (!armed) {
        setStops(colours, kUnarmedStops);
        painter.fillRect(bar, colours);
        return;
    }
    setStops(colours, kArmedStops);
    painter.fillRect(bar, colours);

    QLinearGradient gloss(0, 1, 0, height() - 1);
    setStops(gloss, kGlossStops);
    painter.fillRect(bar, gloss);
}

void MeterWidget::paintPeakLine(QPainter& painter, int x) const
{
    painter.setPen(QPen(meterPeakColour(peakHold), 2.0));
    painter.drawLine(x, 1, x, height() - 2);
}

void MeterWidget::paintClip(QPainter& painter) const
{
    const MeterGeometry geometry{ width(), height() };
    painter.fillRect(geometry.clipBlock(), QColor(255, 30, 30));
    painter.setPen(QPen(QColor(255, 80, 80), 1.0));
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(0, 0, width() - 1, height() - 1);
}
