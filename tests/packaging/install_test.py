import os
import pathlib
import shutil
import subprocess
import sys
import tempfile
import unittest

from support import BUILD, ID, SOURCE, desktop_entry, main, run

sys.path.insert(0, str(SOURCE / "tools" / "desktop"))

PROGRAMS = [path.name[:-len(".1.in")] for path in (SOURCE / "packaging" / "man").iterdir()]
# What an installation consists of, below the prefix. A test compares the whole list, so that nothing comes in unseen.
INSTALLED = {
    "libexec/tagwell/tagwell",
    "libexec/tagwell/fader.png",
    "libexec/tagwell/tagwell-pdf.so",
    "share/tagwell/fader.png",
    "share/applications/" + ID + ".desktop",
    "share/metainfo/" + ID + ".metainfo.xml",
    "share/icons/hicolor/scalable/apps/" + ID + ".svg",
    "share/icons/hicolor/symbolic/apps/" + ID + "-symbolic.svg",
    "share/doc/tagwell/changelog.gz",
    "share/doc/tagwell/copyright",
    "share/doc/tagwell/manual.md",
}
INSTALLED |= {place % program for program in PROGRAMS for place in (
    "bin/%s", "share/man/man1/%s.1.gz", "share/bash-completion/completions/%s", "share/zsh/site-functions/_%s",
    "share/fish/vendor_completions.d/%s.fish")}
INSTALLED |= {"share/icons/hicolor/%dx%d/apps/%s.png" % (edge, edge, ID)
              for edge in (16, 22, 24, 32, 48, 64, 128, 256, 512)}
INSTALLED |= {"share/doc/tagwell/pictures/" + path.name for path in (SOURCE / "docs" / "pictures").glob("*.png")}


def files_below(folder):
    """The relative paths of everything that is not a folder."""
    return {str(path.relative_to(folder)) for path in folder.rglob("*") if path.is_symlink() or not path.is_dir()}


class Install(unittest.TestCase):
    def setUp(self):
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="tagwell-install-")).resolve()
        self.addCleanup(shutil.rmtree, self.folder)
        self.prefix = self.folder / "prefix"

    def install(self, prefix, **environment):
        done = run(os.environ["TAGWELL_CMAKE"], "--install", BUILD, "--prefix", prefix, environment=environment)
        self.assertEqual((done.returncode, done.stderr), (0, ""))

    def uninstall(self, **environment):
        done = run(os.environ["TAGWELL_CMAKE"], "--build", BUILD, "--target", "uninstall", environment=environment)
        self.assertEqual(done.returncode, 0, done.stdout + done.stderr)

    def putsEverythingInPlace(self):
        self.install(self.prefix)
        self.assertEqual(files_below(self.prefix), INSTALLED)
        program = (self.prefix / "bin" / "tagwell").resolve()
        self.assertEqual(program, self.prefix / "libexec" / "tagwell" / "tagwell")
        picture = program.parent / "fader.png"
        self.assertEqual(picture.read_bytes(), (SOURCE / "assets" / "fader.png").read_bytes())
        for link in (self.prefix / "bin" / "tagwell", picture):
            self.assertFalse(os.path.isabs(os.readlink(link)), link)
        # The links still hold when the tree is moved.
        moved = self.prefix.rename(self.folder / "moved")
        self.assertTrue((moved / "bin" / "tagwell").exists())
        self.assertTrue((moved / "libexec" / "tagwell" / "fader.png").exists())

    def theProgramsHaveNoRunPath(self):
        self.install(self.prefix)
        for program in [*("bin/" + program for program in PROGRAMS), "libexec/tagwell/tagwell-pdf.so"]:
            dynamic = run("readelf", "-d", self.prefix / program).stdout
            self.assertIn("(NEEDED)", dynamic)
            self.assertNotRegex(dynamic, r"\((RUNPATH|RPATH)\)")

    def theCommandLinePrintsWhereverTheTreeIs(self):
        self.install(self.prefix)
        moved = self.prefix.rename(self.folder / "moved")
        day, sheet = self.folder / "day", self.folder / "day.pdf"
        subprocess.run([os.environ["TAGWELL_DEMO_RECORDINGS"], day], check=True)
        done = run(moved / "bin" / "tagwell-cli", "report", "--format", "pdf", "-o", sheet, day,
                   environment={"HOME": str(self.folder), "DISPLAY": "", "WAYLAND_DISPLAY": ""})
        self.assertEqual((done.returncode, done.stdout, done.stderr), (0, "", ""))
        self.assertIn("Notes: Good for sound", run("pdftotext", sheet, "-").stdout)

    def honoursDestdirAndUninstallLeavesNothing(self):
        stage = self.folder / "stage"
        self.install("/opt/suite", DESTDIR=str(stage))
        self.assertEqual(files_below(stage), {"opt/suite/" + path for path in INSTALLED})
        self.uninstall(DESTDIR=str(stage))
        self.assertEqual(files_below(stage), set())
        self.assertEqual([path for path in stage.rglob("tagwell")], [])

    def uninstallKeepsWhatIsNotOurs(self):
        self.install(self.prefix)
        theirs = self.prefix / "share" / "doc" / "tagwell" / "notes.txt"
        theirs.write_text("mine")
        (self.prefix / "bin" / "other").write_text("other")
        self.uninstall()
        self.assertEqual(files_below(self.prefix), {"share/doc/tagwell/notes.txt", "bin/other"})

    def theWindowsClassFindsItsEntry(self):
        from driver import Desktop
        self.install(self.prefix)
        with Desktop() as desktop:
            desktop.start([str(self.prefix / "bin" / "tagwell")])
            desktop.find("frame", "Tagwell")
            window = subprocess.run(
                ["xdotool", "search", "--onlyvisible", "--name", "^Tagwell$"], env=desktop.environment, check=True,
                capture_output=True, text=True).stdout.split()[-1]
            said = subprocess.run(["xprop", "-id", window, "WM_CLASS"], env=desktop.environment, check=True,
                                  capture_output=True, text=True).stdout
            desktop.stop()
            self.assertEqual(desktop.printed(), b"")
        instance, window_class = (part.strip(' "\n') for part in said.split("=")[1].split(","))
        entries = list((self.prefix / "share" / "applications").iterdir())
        claiming = [path.name for path in entries if desktop_entry(path).get("StartupWMClass") == window_class]
        self.assertEqual(claiming, [ID + ".desktop"], "%s, %s" % (instance, window_class))


main()
