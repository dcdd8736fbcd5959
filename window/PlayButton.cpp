#include "window/PlayButton.h"

#include "app/look/Named.h"
#include "app/look/Theme.h"

#include <QPainter>
#include <QPixmap>
#include <QToolButton>

#include <array>

namespace {

constexpr int kIconSize = 18;
constexpr QSize kPlayButtonSize(28, 24);
constexpr char kPlayColour[] = "#1a7f37";
constexpr std::array kTriangle{ QPoint(5, 3), QPoint(5, 15), QPoint(15, 9) };

/// The triangle at `density` pixels to the unit.
QPixmap playPicture(int density)
{
    QPixmap pixmap(kIconSize * density, kIconSize * density);
    pixmap.setDevicePixelRatio(density);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(QLatin1String(kPlayColour)));
    painter.drawPolygon(kTriangle.data(), static_cast<int>(kTriangle.size()));
    painter.end();
    return pixmap;
}

} // namespace

QIcon drawPlayIcon()
{
    QIcon icon(playPicture(1));
    icon.addPixmap(playPicture(2)); // Blown up from one pixel to the unit it would be blurred on a dense screen.
    return icon;
}

QAbstractButton* makePlayButton(const QIcon& icon, QWidget* parent)
{
    auto* button = named("playButton", new QToolButton(parent));
    button->setIcon(icon);
    button->setIconSize(QSize(kIconSize, kIconSize));
    button->setText(QString());
    button->setToolTip(QStringLiteral("Play this file with a track mixer"));
    button->setAutoRaise(true);
    button->setFocusPolicy(Qt::NoFocus);
    button->setCursor(Qt::PointingHandCursor);
    button->setAccessibleName(QStringLiteral("Play"));
    button->setFixedSize(kPlayButtonSize);
    button->setStyleSheet(Theme::playButtonStyleSheet());
    return button;
}
