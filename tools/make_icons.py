#!/usr/bin/env python3
"""Draws the icon pictures out of assets/tagwell.svg: assets/tagwell.png for windows, assets/tagwell.icns for bundles.

Needs rsvg-convert (package librsvg2-bin). The results are kept in the repository, so builds don't run this.
"""

import pathlib
import struct
import subprocess

ASSETS = pathlib.Path(__file__).resolve().parent.parent / "assets"

# Block names of the icon container and the edge of the picture in each, in pixels.
ICNS_BLOCKS = ((b"icp4", 16), (b"icp5", 32), (b"ic07", 128), (b"ic08", 256), (b"ic09", 512), (b"ic10", 1024))


def rendered(edge):
    command = ["rsvg-convert", "-w", str(edge), "-h", str(edge), str(ASSETS / "tagwell.svg")]
    return subprocess.run(command, check=True, capture_output=True).stdout


def container():
    blocks = b""
    for name, edge in ICNS_BLOCKS:
        picture = rendered(edge)
        blocks += name + struct.pack(">I", 8 + len(picture)) + picture
    return b"icns" + struct.pack(">I", 8 + len(blocks)) + blocks


(ASSETS / "tagwell.png").write_bytes(rendered(256))
(ASSETS / "tagwell.icns").write_bytes(container())
