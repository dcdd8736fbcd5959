#pragma once

#include "mixer/WaveformPeaks.h"

#include <QRectF>

#include <cstddef>

/// Where a waveform of `width` × `height` pixels with `bars` bars draws what, and what a click in it means.
struct WaveformGeometry {
    int width = 0;
    int height = 0;
    size_t bars = 0; ///< At least 1 where bars are asked for.

    /// The row of the zero line.
    int middle() const { return height / 2; }

    /// Distance from bar to bar in pixels, with a fraction.
    float pitch() const;

    /// The rectangle of bar `index`. A bar without height is two pixels high, across the zero line.
    QRectF barRect(size_t index, WaveformPeak peak) const;

    /// The column of the playhead at 0.0 … 1.0 of the file.
    int playheadX(double position) const;

    /// The part of the file, 0.0 … 1.0, that a press at column `x` asks for; between two columns the nearer one
    /// counts. 0.0 if the widget has no width.
    double ratioAt(double x) const;
};
