#!/usr/bin/env python3
"""Draws all icons out of assets/tagwell.svg: the tree assets/icons/hicolor for desktops, with one picture for each size,
the drawing itself and a symbolic one; assets/tagwell.png for windows; assets/tagwell.icns for bundles.

Needs rsvg-convert (package librsvg2-bin). The results are kept in the repository, so builds don't run this.
"""

import pathlib
import shutil
import struct
import subprocess
import xml.etree.ElementTree

ASSETS = pathlib.Path(__file__).resolve().parent.parent / "assets"
DRAWING = ASSETS / "tagwell.svg"
ID = "com.brindleaudio.tagwell"
SIZES = (16, 22, 24, 32, 48, 64, 128, 256, 512)  # Edges in pixels.

# Block names of the icon container and the edge of the picture in each, in pixels.
ICNS_BLOCKS = ((b"icp4", 16), (b"icp5", 32), (b"ic07", 128), (b"ic08", 256), (b"ic09", 512), (b"ic10", 1024))

SVG = "{http://www.w3.org/2000/svg}"


def rendered(edge):
    command = ["rsvg-convert", "-w", str(edge), "-h", str(edge), str(DRAWING)]
    return subprocess.run(command, check=True, capture_output=True).stdout


def container():
    blocks = b""
    for name, edge in ICNS_BLOCKS:
        picture = rendered(edge)
        blocks += name + struct.pack(">I", 8 + len(picture)) + picture
    return b"icns" + struct.pack(">I", 8 + len(blocks)) + blocks


def round_hole(x, y, radius):
    return "M%g %ga%g %g 0 1 0 %g 0a%g %g 0 1 0 %g 0z" % (x - radius, y, radius, radius, 2 * radius, radius, radius,
                                                         -2 * radius)


def bar_hole(path, width):
    """A vertical line such as "M66 118v20" with round ends, as an outline."""
    start, length = path[1:].split("v")
    x, y = (float(value) for value in start.split())
    half = width / 2
    return "M%g %gv%ga%g %g 0 0 0 %g 0v%ga%g %g 0 0 0 %g 0z" % (
        x - half, y, float(length), half, half, width, -float(length), half, half, -width)


def symbolic():
    """The label alone in one colour, with its hole and every second bar cut out. Desktops paint it in the colour of their
    text, which they do to filled paths only. At 16 pixels one pixel is 12 units: the bars then fall on whole pixels."""
    root = xml.etree.ElementTree.parse(DRAWING).getroot()
    label = root.find(SVG + "path").get("d")
    hole = root.find(SVG + "circle")
    bars = root.find(SVG + "g")
    outline = label + round_hole(*(float(hole.get(name)) for name in ("cx", "cy", "r")))
    for bar in bars.findall(SVG + "path")[::2]:
        outline += bar_hole(bar.get("d"), 12)
    return ('<svg xmlns="http://www.w3.org/2000/svg" viewBox="36 32 192 192" width="16" height="16">\n'
            '  <path d="%s" fill="#2e3436" fill-rule="evenodd"/>\n</svg>\n' % outline)


def write(path, content):
    path.parent.mkdir(parents=True, exist_ok=True)
    path.write_bytes(content)


def main():
    theme = ASSETS / "icons" / "hicolor"
    shutil.rmtree(theme, ignore_errors=True)
    for edge in SIZES:
        write(theme / ("%dx%d" % (edge, edge)) / "apps" / (ID + ".png"), rendered(edge))
    write(theme / "scalable" / "apps" / (ID + ".svg"), DRAWING.read_bytes())
    write(theme / "symbolic" / "apps" / (ID + "-symbolic.svg"), symbolic().encode())
    write(ASSETS / "tagwell.png", rendered(256))
    write(ASSETS / "tagwell.icns", container())


if __name__ == "__main__":
    main()
