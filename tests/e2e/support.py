"""What the end-to-end tests share: the program, its recordings, a desktop for each test."""

import os
import pathlib
import shutil
import subprocess
import sys
import tempfile
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[2] / "tools" / "desktop"))

from driver import Desktop, wait_until  # noqa: E402,F401
from tagwell import Tagwell  # noqa: E402

SKIPPED = 77  # The status that CTest shows as skipped.


class WindowTest(unittest.TestCase):
    """Each test has a desktop, the program's window on it (not yet started) and a folder for files."""

    environment = None

    def setUp(self):
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="tagwell-e2e-"))
        self.addCleanup(shutil.rmtree, self.folder, ignore_errors=True)
        self.desktop = Desktop(environment=self.environment)
        self.desktop.__enter__()
        self.addCleanup(self.desktop.close)
        self.window = Tagwell(self.desktop, os.environ["TAGWELL_PROGRAM"])
        self.drag_source = os.path.join(os.environ["TAGWELL_TOOLS"], "tagwell_drag_source")

    def demo_files(self):
        """Fresh demo recordings, sorted by path."""
        folder = self.folder / "day"
        generator = os.path.join(os.environ["TAGWELL_TOOLS"], "tagwell_demo_recordings")
        subprocess.run([generator, str(folder)], check=True)
        return sorted(str(path) for path in folder.iterdir())

    def picture(self, name):
        folder = pathlib.Path(os.environ["TAGWELL_PICTURES"])
        folder.mkdir(parents=True, exist_ok=True)
        self.desktop.screenshot(str(folder / (name + ".png")))

    def settings(self):
        """The settings file's lines as a dictionary."""
        path = pathlib.Path(self.desktop.home) / ".config" / "Vorlund" / "config.ini"
        lines = path.read_text().splitlines()
        return dict(line.split("=", 1) for line in lines if "=" in line)

    def assert_printed_nothing(self):
        self.assertEqual(self.desktop.printed(), b"")


def changed_ranges(before, after):
    """[(first, end)] of the bytes that differ; the lengths must be equal."""
    assert len(before) == len(after)
    ranges = []
    for index, (old, new) in enumerate(zip(before, after)):
        if old != new:
            if ranges and ranges[-1][1] == index:
                ranges[-1] = (ranges[-1][0], index + 1)
            else:
                ranges.append((index, index + 1))
    return ranges


def main():
    """Runs the tests named on the command line."""
    program = unittest.main(exit=False, verbosity=2)
    result = program.result
    if result.skipped and not result.failures and not result.errors:
        sys.exit(SKIPPED)
    sys.exit(0 if result.testsRun and result.wasSuccessful() else 1)
