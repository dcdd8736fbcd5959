"""What the packaging tests share: where things are, and the runner."""

import os
import pathlib
import subprocess
import sys
import unittest

SOURCE = pathlib.Path(os.environ["TAGWELL_SOURCE"])
BUILD = pathlib.Path(os.environ["TAGWELL_BUILD"])
PAPERS = BUILD / "packaging" / "papers"
VERSION = os.environ["TAGWELL_VERSION"]
ID = "com.brindleaudio.tagwell"
METAINFO = PAPERS / (ID + ".metainfo.xml")
DESKTOP_ENTRY = SOURCE / "packaging" / (ID + ".desktop")


def run(*command, **options):
    """The finished process, with its two outputs as text. Whatever its status."""
    environment = dict(os.environ, LC_ALL="C.UTF-8", **options.pop("environment", {}))
    return subprocess.run([str(word) for word in command], capture_output=True, text=True, env=environment,
                          stdin=subprocess.DEVNULL, **options)


def desktop_entry(path=DESKTOP_ENTRY):
    """The keys and values of a desktop entry."""
    lines = path.read_text(encoding="utf-8").splitlines()
    assert lines[0] == "[Desktop Entry]", lines[0]
    return dict(line.split("=", 1) for line in lines[1:] if line)


def main():
    """Runs the tests named on the command line."""
    result = unittest.main(exit=False, verbosity=2).result
    sys.exit(0 if result.testsRun and result.wasSuccessful() and not result.skipped else 1)
