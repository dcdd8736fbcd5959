#pragma once

#include <cstdint>

#include <QColor>
#include <QRect>

/// Where a meter of `width` × `height` pixels draws what. A border of one pixel runs around the inner part. Rectangles
/// hold their first and last pixel.
struct MeterGeometry {
    int width = 0;
    int height = 0;

    int innerWidth() const { return width - 2; }
    int innerHeight() const { return height - 2; }

    QRect outer() const { return { 0, 0, width, height }; }
    QRect inner() const { return { 1, 1, innerWidth(), innerHeight() }; }

    /// The bar at a level of 0 to 1000. Empty if it is less than a pixel long.
    QRect bar(float level) const;

    /// The column of the peak line at 0 to 1000. -1 if the line is too far left to be drawn, which 0 always is.
    int peakLineX(int32_t position) const;

    /// The block at the right end that shows a clip.
    QRect clipBlock() const { return { width - 5, 1, 4, innerHeight() }; }
};

/// Green, yellow or red, by the line's position of 0 to 1000.
QColor meterPeakColour(int32_t position);
