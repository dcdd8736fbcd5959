import json
import os
import pathlib
import subprocess
import tempfile
import unittest

from support import ID, SOURCE, main, run


class Recordings(unittest.TestCase):
    """The tests' recordings are found beside the checkout."""

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.place = pathlib.Path(folder.name).resolve()
        (self.place / "checkout").mkdir()

    def find(self, **environment):
        clean = {name: value for name, value in os.environ.items() if name != "TAGWELL_RECORDINGS"}
        script = '. "$1"; find_recordings; echo "found $(printenv TAGWELL_RECORDINGS)"'
        done = subprocess.run(["bash", "-euc", script, "bash", SOURCE / "tools" / "recordings.sh"], check=True,
                              cwd=self.place / "checkout", env=dict(clean, **environment), capture_output=True, text=True)
        return done.stdout

    def areFoundBesideTheCheckout(self):
        for beside in ("shared/recordings", "recordings"):
            (self.place / beside / "recorder-a").mkdir(parents=True)
            self.assertEqual(self.find(), "found %s\n" % (self.place / beside))

    def areLeftWhereTheUserNamedThem(self):
        (self.place / "recordings" / "recorder-a").mkdir(parents=True)
        self.assertEqual(self.find(TAGWELL_RECORDINGS="/elsewhere"), "found /elsewhere\n")

    def ofAnotherKindAreNotTaken(self):
        (self.place / "recordings").mkdir()
        said = self.find()
        self.assertIn("CONTRIBUTING.md", said)
        self.assertTrue(said.endswith("found \n"), said)


class ReleaseManifest(unittest.TestCase):
    def takesTheArchiveInPlaceOfTheCheckout(self):
        done = run(SOURCE / "packaging" / "flatpak" / "for_release.py", "https://example.org/a.tar.xz", "ab" * 32)
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        with tempfile.TemporaryDirectory() as folder:
            path = pathlib.Path(folder) / (ID + ".yml")
            path.write_text(done.stdout)
            parsed = json.loads(run("flatpak-builder", "--show-manifest", path).stdout)
        checkout = json.loads(
            run("flatpak-builder", "--show-manifest", SOURCE / "packaging" / "flatpak" / (ID + ".yml")).stdout)
        self.assertEqual(parsed["modules"][-1].pop("sources"),
                         [{"type": "archive", "url": "https://example.org/a.tar.xz", "sha256": "ab" * 32}])
        checkout["modules"][-1].pop("sources")
        self.assertEqual(parsed, checkout)


main()
