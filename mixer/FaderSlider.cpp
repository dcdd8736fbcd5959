#include "mixer/FaderSlider.h"

#include <QCoreApplication>
#include <QFileInfo>
#include <QMouseEvent>
#include <QPainter>
#include <QStyle>
#include <QStyleFactory>
#include <QStyleOptionSlider>

#include <algorithm>
#include <array>

namespace {

constexpr char kPictureName[] = "fader.png";

// Relative to the program's folder, first hit first: beside it, in an application bundle, and up from the places
// where builds put the program.
constexpr std::array kPictureFolders{ "/", "/../Resources/", "/../../", "/../../../assets/", "/../../assets/" };

} // namespace

QPoint faderCapTopLeft(QPoint handleCentre, QSize cap)
{
    return handleCentre - QPoint((cap.width() - 1) / 2, (cap.height() - 1) / 2);
}

FaderSlider::FaderSlider(Qt::Orientation orientation, QWidget* parent) : QSlider(orientation, parent)
{
    if (QStyle* fusion = QStyleFactory::create(QStringLiteral("Fusion"))) {
        fusion->setParent(this);
        setStyle(fusion);
    }
    reloadHandlePixmap();
}

FaderSlider::~FaderSlider() = default;

QString FaderSlider::findFaderImagePath()
{
    const QString folder = QCoreApplication::applicationDirPath();
    for (const char* place : kPictureFolders) {
        const QFileInfo candidate(folder + QLatin1String(place) + QLatin1String(kPictureName));
        if (candidate.exists())
            return candidate.absoluteFilePath();
    }
    return folder + QLatin1String(kPictureFolders.front()) + QLatin1String(kPictureName);
}

void FaderSlider::reloadHandlePixmap()
{
    QPixmap loaded;
    if (!loaded.load(findFaderImagePath()))
        return;
    handlePixmap = loaded;
    scaledHandle = QPixmap();
    updateScaledCache();
    update();
}

void FaderSlider::updateScaledCache()
{
    if (handlePixmap.isNull() || handleWidth < 1 || handleHeight < 1) {
        scaledHandle = QPixmap();
        return;
    }
    // On a dense screen the cap is scaled to the pixels it really covers, else it would be blown up and blurred.
    const qreal density = devicePixelRatioF();
    const QSize size = (QSizeF(handleWidth, handleHeight) * density).toSize();
    scaledHandle = handlePixmap.scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    scaledHandle.setDevicePixelRatio(density);
}

bool FaderSlider::scaledCacheFits() const
{
    return !scaledHandle.isNull() && qFuzzyCompare(scaledHandle.devicePixelRatio(), devicePixelRatioF())
        && scaledHandle.deviceIndependentSize().toSize() == QSize(handleWidth, handleHeight);
}

void FaderSlider::setHandleDrawSize(int width, int height)
{
    handleWidth = std::max(width, 1);
    handleHeight = std::max(height, 1);
    updateScaledCache();
    update();
}

void FaderSlider::mousePressEvent(QMouseEvent* event)
{
    if (event->button() == Qt::RightButton) {
        event->ignore();
        return;
    }
    QSlider::mousePressEvent(event);
}

void FaderSlider::paintEvent(QPaintEvent* event)
{
    QSlider::paintEvent(event);
    if (handlePixmap.isNull())
        return;
    if (!scaledCacheFits())
        updateScaledCache();
    if (scaledHandle.isNull())
        return;

    QStyleOptionSlider option;
    initStyleOption(&option);
    const QRect handle = style()->subControlRect(QStyle::CC_Slider, &option, QStyle::SC_SliderHandle, this);
    QPainter painter(this);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawPixmap(faderCapTopLeft(handle.center(), QSize(handleWidth, handleHeight)), scaledHandle);
}
