#!/usr/bin/env python3
"""for_release.py ADDRESS SHA256: prints the manifest beside this script with a source archive in place of the checkout."""

import pathlib
import sys

CHECKOUT = """      - type: dir
        path: ../..
        skip:
          - build
"""
ARCHIVE = """      - type: archive
        url: %s
        sha256: %s
"""
COMMENT_LINES = 2  # They tell how to build the checkout.

text = (pathlib.Path(__file__).resolve().parent / "com.brindleaudio.tagwell.yml").read_text(encoding="utf-8")
if text.count(CHECKOUT) != 1:
    raise SystemExit("the manifest does not take its source from the checkout")
lines = text.replace(CHECKOUT, ARCHIVE % tuple(sys.argv[1:3])).splitlines(keepends=True)
print("".join(lines[COMMENT_LINES:]), end="")
