#include "mixer/WaveformWidget.h"

#include "audio/WavFileReader.h"
#include "mixer/WaveformGeometry.h"

#include <QFileInfo>
#include <QKeyEvent>
#include <QLinearGradient>
#include <QMouseEvent>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace {

constexpr QColor kGround(26, 26, 26);
constexpr int kReadFrames = 8192;
constexpr double kSmallestMove = 0.001;

/// Frames that the reader can still deliver at most. The header may claim far more than the file holds.
size_t framesToExpect(const WavFileReader& reader, const std::string& path)
{
    const qint64 fileBytes = QFileInfo(QString::fromStdString(path)).size();
    const qint64 frameBytes = reader.getHeader().frameBytes();
    return static_cast<size_t>(std::min<qint64>(reader.getTotalFrames(), fileBytes / frameBytes));
}

/// Hands the first channel to `take(samples, count)` block by block, from the start to the end of what is there. The
/// reader decodes no more than that channel.
template <typename Take> void readFirstChannel(WavFileReader& reader, Take take)
{
    std::vector<float> block(kReadFrames);
    while (!reader.isAtEnd()) {
        const int32_t got = reader.readFrames(block.data(), kReadFrames, 1);
        if (got < 1)
            break;
        take(block.data(), static_cast<size_t>(got));
    }
}

} // namespace

WaveformWidget::WaveformWidget(QWidget* parent) : QWidget(parent)
{
    setMinimumHeight(80);
    setMaximumHeight(120);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setCursor(Qt::PointingHandCursor);
    setFocusPolicy(Qt::StrongFocus);
}

bool WaveformWidget::loadFile(const std::string& path)
{
    clear();
    WavFileReader reader;
    if (!reader.open(path))
        return false;
    sampleRate = reader.getSampleRate();
    totalFrames = reader.getTotalFrames();
    duration = reader.getDuration();
    if (totalFrames < 1 || reader.getChannels() < 1)
        return false;

    const size_t expected = framesToExpect(reader, path);
    WaveformPeakBuilder builder(expected);
    readFirstChannel(reader, [&builder](const float* block, size_t count) { builder.add(block, count); });
    if (builder.complete())
        peaks = builder.scaledPeaks();
    else
        loadAllSamples(path, expected);
    update();
    return true;
}

// A file shorter than it claims: how long the bars are shows only at its end. The failed read needs a new reader.
void WaveformWidget::loadAllSamples(const std::string& path, size_t expected)
{
    WavFileReader reader;
    std::vector<float> samples;
    samples.reserve(expected);
    if (reader.open(path)) {
        readFirstChannel(reader,
            [&samples](const float* block, size_t count) { samples.insert(samples.end(), block, block + count); });
    }
    generatePeaks(samples, static_cast<int>(kMostWaveformBars));
}

void WaveformWidget::clear()
{
    peaks.clear();
    barsPicture = QPixmap();
    playbackPosition = 0.0;
    duration = 0.0;
    totalFrames = 0;
    update();
}

void WaveformWidget::generatePeaks(const std::vector<float>& samples, int)
{
    peaks = waveformPeaks(samples);
    barsPicture = QPixmap();
}

void WaveformWidget::setPlaybackPosition(double position)
{
    const double clamped = std::clamp(position, 0.0, 1.0);
    if (!(std::fabs(clamped - playbackPosition) > kSmallestMove))
        return;
    playbackPosition = clamped;
    update();
}

void WaveformWidget::mousePressEvent(QMouseEvent* event)
{
    if (!canSeek() || event->button() != Qt::LeftButton)
        return;
    emit seekRequested(WaveformGeometry{ width(), height(), peaks.size() }.ratioAt(event->position().x()));
}

void WaveformWidget::keyPressEvent(QKeyEvent* event)
{
    const bool ours = canSeek() && (event->modifiers() & ~Qt::KeypadModifier) == Qt::NoModifier;
    if (ours && event->key() == Qt::Key_Left)
        emit stepRequested(-kStepSeconds);
    else if (ours && event->key() == Qt::Key_Right)
        emit stepRequested(kStepSeconds);
    else if (ours && event->key() == Qt::Key_Home)
        emit seekRequested(0.0);
    else
        QWidget::keyPressEvent(event);
}

void WaveformWidget::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    if (peaks.empty()) {
        painter.fillRect(rect(), kGround);
        painter.setPen(QColor(80, 80, 80));
        painter.drawText(rect(), Qt::AlignCenter, QStringLiteral("Select a file to view waveform"));
        return;
    }
    // Only the playhead moves, 20 times a second; the bars are drawn once for each size.
    const qreal density = painter.device()->devicePixelRatioF();
    const QSize pixels = (QSizeF(size()) * density).toSize();
    if (barsPicture.size() != pixels || !qFuzzyCompare(barsPicture.devicePixelRatio(), density))
        drawBarsPicture(pixels, density);
    painter.drawPixmap(0, 0, barsPicture);
    paintLines(painter);
}

void WaveformWidget::drawBarsPicture(QSize pixels, qreal density)
{
    barsPicture = QPixmap(pixels);
    barsPicture.setDevicePixelRatio(density);
    barsPicture.fill(kGround);
    QPainter painter(&barsPicture);
    painter.setRenderHint(QPainter::Antialiasing);
    paintBars(painter);
}

void WaveformWidget::paintBars(QPainter& painter) const
{
    QLinearGradient colours(0, 0, 0, height());
    colours.setColorAt(0.0, QColor(0, 180, 220));
    colours.setColorAt(0.5, QColor(0, 220, 180));
    colours.setColorAt(1.0, QColor(0, 180, 220));
    painter.setPen(Qt::NoPen);
    painter.setBrush(colours);

    const WaveformGeometry geometry{ width(), height(), peaks.size() };
    for (size_t i = 0; i < peaks.size(); ++i)
        painter.drawRect(geometry.barRect(i, peaks[i]));
}

void WaveformWidget::paintLines(QPainter& painter) const
{
    const WaveformGeometry geometry{ width(), height(), peaks.size() };
    const QPen grey(QColor(60, 60, 60), 1);
    painter.setPen(grey);
    painter.drawLine(0, geometry.middle(), width(), geometry.middle());
    if (playbackPosition > 0.0) {
        const int x = geometry.playheadX(playbackPosition);
        painter.setPen(QPen(QColor(0, 255, 100), 2));
        painter.drawLine(x, 0, x, height());
    }
    painter.setPen(grey);
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(0, 0, width() - 1, height() - 1);
}

void WaveformWidget::resizeEvent(QResizeEvent*)
{
    update();
}
