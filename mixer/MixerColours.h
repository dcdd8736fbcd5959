#pragma once

/// Text that stands back behind the rest: facts of the file, levels. As "#rrggbb".
inline constexpr char kDimTextColour[] = "#999999";
