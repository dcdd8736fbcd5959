#pragma once

#include <QString>

/// The dark look: nine named colours, as "#rrggbb", and the style sheets that use them.
/// Other greys stand as literals inside the sheets, where each belongs to one state of one control.
/// Thread: main only.
namespace Theme {

inline constexpr char kBgWindow[] = "#1e1e1e"; ///< Background of windows and widgets.
inline constexpr char kTextPrimary[] = "#f0f0f0"; ///< All text, and the arrows of spin and combo boxes.
inline constexpr char kBorder[] = "#444444"; ///< Borders, grid lines, the separator in menus.
inline constexpr char kAccent[] = "#0A84FF"; ///< Border of the editor with the focus, handles of sliders.
inline constexpr char kAccentTeal[] = "#55aaaa"; ///< A checked box.
inline constexpr char kAccentTealHi[] = "#66cccc"; ///< Border of a checked box.
inline constexpr char kBgSurface[] = "#2a2a2a"; ///< Background behind the title of a group box.
inline constexpr char kDanger[] = "#ff3333"; ///< Text of the mixer's frame rate badge.
inline constexpr char kDangerBorder[] = "#ff4444"; ///< Border of that badge.

/// The sheet of windows and dialogs before filling, with places %1 to %7 for the first seven colours above, in
/// their order.
QString mainStyleSheet();

/// The sheet of windows and dialogs, ready for QWidget::setStyleSheet. Cascades to every child.
QString filledMainStyleSheet();

/// Makes a table light, with purple selection; stands above the main sheet for the two tables of the main window.
QString fileTableStyleSheet();

/// The handles of both splitters of the main window.
QString splitterHandleStyleSheet();

/// The flat button that shows the start timecode.
QString timecodeButtonStyleSheet();

/// The play button of a row: transparent, with a green veil under the pointer and when pressed.
QString playButtonStyleSheet();

} // namespace Theme
