#!/usr/bin/env python3
"""Draws the fader cap, assets/fader.png: a brushed metal cap with rim, highlight, centre line and soft shadow.

    tools/draw_fader.py assets/fader.png

Needs nothing but Python. The same bytes come out of every run. The cap is laid out on 36 by 62 units, the size at
which a strip of the mixer draws it, and is rendered at four pixels a unit: both that size and its double then come
out of whole-number averages and stay sharp.
"""

import math
import random
import struct
import sys
import zlib

WIDTH, HEIGHT = 36, 62  # Units.
SCALE = 4  # Pixels of the picture to a unit.
SAMPLES = 3  # Samples to a pixel along each axis.

CAP = (4.0, 4.5, 32.0, 57.5)  # Left, top, right, bottom of the cap in units; the line lies in the middle of the picture.
CORNER = 4.2
RIM = 0.9
SHADOW_OFFSET = (0.5, 2.0)
SHADOW_BLUR = 3.2
SHADOW_ALPHA = 0.62

# Brightness down the middle of the cap: (part of its height, grey of 255). Light falls from above: the upper bevel
# shines, the finger groove is dark on its upper wall and lit on the lower one.
PROFILE = [
    (0.00, 120), (0.025, 250), (0.06, 236), (0.085, 188), (0.12, 178), (0.34, 146), (0.375, 168), (0.395, 104),
    (0.45, 66), (0.50, 92), (0.56, 138), (0.60, 196), (0.625, 214), (0.645, 166), (0.70, 150), (0.90, 112),
    (0.935, 92), (0.965, 64), (1.00, 30),
]
LINE = (0.487, 0.513)  # The white centre line, parts of the cap's height.
LINE_INSET = 1.3


def profile(part):
    for (y0, v0), (y1, v1) in zip(PROFILE, PROFILE[1:]):
        if part <= y1:
            ease = (part - y0) / (y1 - y0)
            ease = ease * ease * (3 - 2 * ease)
            return v0 + (v1 - v0) * ease
    return PROFILE[-1][1]


def distance(x, y, box, corner):
    """Signed distance in units to a rounded rectangle; negative inside."""
    left, top, right, bottom = box
    dx = abs(x - (left + right) / 2) - (right - left) / 2 + corner
    dy = abs(y - (top + bottom) / 2) - (bottom - top) / 2 + corner
    return math.hypot(max(dx, 0), max(dy, 0)) + min(max(dx, dy), 0) - corner


def brushing(columns, rows):
    """Horizontal streaks: each row is noise drawn out along x, with a grey of its own."""
    source = random.Random(36062)
    lines = []
    for _ in range(rows):
        own = source.gauss(0, 3.4)
        streak, line = source.gauss(0, 4), []
        for _ in range(columns):
            streak = streak * 0.965 + source.gauss(0, 4) * 0.26
            line.append(own + streak)
        lines.append(line)
    return lines


def smooth(edge0, edge1, value):
    t = min(max((value - edge0) / (edge1 - edge0), 0.0), 1.0)
    return t * t * (3 - 2 * t)


def metal(x, y, inside, streak):
    """Colour of the cap's surface at a point, `inside` units within its edge."""
    left, top, right, bottom = CAP
    down = (y - top) / (bottom - top)
    across = (x - left) / (right - left)
    grey = profile(down) + streak * (0.35 + 0.65 * smooth(0.05, 0.12, down))
    # The sides fall away from the light; a broad sheen lies left of the middle.
    grey *= 1 - 0.34 * smooth(0.30, 0.52, abs(across - 0.5)) - 0.05 * across
    grey += 26 * math.exp(-((across - 0.34) / 0.13) ** 2) * (1 - 0.5 * down)
    grey += 34 * math.exp(-((inside - RIM - 0.45) / 0.32) ** 2) * (1 - down) ** 0.7
    cool = 1.0 + 0.018 * (1 - down)
    colour = [grey * 0.985, grey, grey * 1.012 * cool]
    if LINE[0] <= down <= LINE[1] and inside > LINE_INSET:
        white = 250 - 22 * abs(across - 0.42)
        return [white, white, white * 0.985]
    edge = smooth(RIM, RIM * 0.45, inside)
    rim = 46 - 26 * down
    return [channel * (1 - edge) + rim * edge for channel in colour]


def sample(x, y, streak):
    """Premultiplied red, green, blue and alpha at a point given in units."""
    fade = distance(x - SHADOW_OFFSET[0], y - SHADOW_OFFSET[1], CAP, CORNER)
    shadow = SHADOW_ALPHA * (1 - smooth(-SHADOW_BLUR, SHADOW_BLUR * 0.75, fade))
    inside = -distance(x, y, CAP, CORNER)
    if inside <= 0:
        return [0.0, 0.0, 0.0, shadow]
    return [min(max(channel, 0), 255) for channel in metal(x, y, inside, streak)] + [1.0]


def pixel(column, row, streaks):
    total = [0.0] * 4
    for sub_row in range(SAMPLES):
        for sub_column in range(SAMPLES):
            x = (column + (sub_column + 0.5) / SAMPLES) / SCALE
            y = (row + (sub_row + 0.5) / SAMPLES) / SCALE
            for i, value in enumerate(sample(x, y, streaks[row][column])):
                total[i] += value
    total = [value / SAMPLES ** 2 for value in total]
    alpha = total[3]
    if alpha <= 0:
        return bytes(4)
    red, green, blue = (min(255, round(value / alpha)) for value in total[:3])
    return bytes((red, green, blue, round(alpha * 255)))


def chunk(kind, data):
    return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", zlib.crc32(kind + data))


def main():
    columns, rows = WIDTH * SCALE, HEIGHT * SCALE
    streaks = brushing(columns, rows)
    lines = b"".join(
        b"\0" + b"".join(pixel(column, row, streaks) for column in range(columns)) for row in range(rows))
    header = struct.pack(">IIBBBBB", columns, rows, 8, 6, 0, 0, 0)
    with open(sys.argv[1], "wb") as out:
        out.write(b"\x89PNG\r\n\x1a\n" + chunk(b"IHDR", header) + chunk(b"IDAT", zlib.compress(lines, 9))
                  + chunk(b"IEND", b""))


if __name__ == "__main__":
    main()
