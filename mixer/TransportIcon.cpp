#include "mixer/TransportIcon.h"

#include "app/look/Theme.h"

#include <QColor>
#include <QPainter>
#include <QPixmap>
#include <QWidget>

#include <array>

namespace {

// A button's icon on screens of one, one and a half, two and three pixels to the unit.
constexpr std::array kSides{ 16, 24, 32, 48 };

// As the main style sheet has it for the text of a disabled button.
constexpr char kDisabledColour[] = "#666";

QPixmap inColour(QPixmap picture, const char* colour)
{
    QPainter painter(&picture);
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.fillRect(picture.rect(), QColor(QLatin1String(colour)));
    painter.end();
    return picture;
}

} // namespace

QIcon transportIcon(const QWidget& widget, QStyle::StandardPixmap which)
{
    const QIcon standard = widget.style()->standardIcon(which, nullptr, &widget);
    QIcon icon;
    for (const int side : kSides) {
        const QPixmap picture = standard.pixmap(QSize(side, side), 1.0);
        if (picture.isNull())
            continue;
        icon.addPixmap(inColour(picture, Theme::kTextPrimary));
        icon.addPixmap(inColour(picture, kDisabledColour), QIcon::Disabled);
    }
    return icon;
}
