#pragma once

#include <QIcon>
#include <QStyle>

class QWidget;

/// The style's own icon in the colour of a button's text, also of a disabled one, since the style draws it for light
/// buttons. `widget` tells the style. Empty if the style has no such icon. Thread: main only.
QIcon transportIcon(const QWidget& widget, QStyle::StandardPixmap which);
