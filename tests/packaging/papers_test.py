import gzip
import json
import os
import pathlib
import plistlib
import re
import runpy
import shutil
import struct
import subprocess
import tempfile
import unittest
import xml.etree.ElementTree as tree

from support import BUILD, DESKTOP_ENTRY, ID, METAINFO, PAPERS, SOURCE, VERSION, desktop_entry, main, run

# The one line that validators before 1.0 have about the form of the developer's name that later ones ask for.
OLDER_VALIDATOR = re.compile(r"I: com\.brindleaudio\.tagwell:\d+: unknown-tag developer\n")
ICON_SIZES = (16, 22, 24, 32, 48, 64, 128, 256, 512)
MAN_PAGES = sorted(PAPERS.glob("*.1.gz"))


def changelog_releases():
    """(version, date) of each dated release, newest first, as a reader of the changelog sees them."""
    return re.findall(r"(?m)^## \[([0-9.]+)\] - (\d{4}-\d\d-\d\d)$", (SOURCE / "CHANGELOG.md").read_text("utf-8"))


def png_size(path):
    data = path.read_bytes()
    assert data[:8] == b"\x89PNG\r\n\x1a\n", path
    return struct.unpack(">II", data[16:24])


class Papers(unittest.TestCase):
    def metainfoIsSilentUnderThePedanticValidator(self):
        older = " 0." in run("appstreamcli", "--version").stdout
        done = run("appstreamcli", "validate", "--pedantic", "--no-net", "--no-color", METAINFO)
        said = OLDER_VALIDATOR.sub("", done.stdout, count=1) if older else done.stdout
        self.assertEqual(done.returncode, 0, done.stdout)
        self.assertRegex(said, r"\A\s*\S* ?Validation was successful[^\n]*\n*\Z")
        self.assertEqual(done.stderr, "")

    def metainfoTellsTheReleasesOfTheChangelog(self):
        told = [(release.get("version"), release.get("date")) for release in tree.parse(METAINFO).iter("release")]
        self.assertEqual(told, changelog_releases())
        self.assertTrue(told)

    def metainfoShowsPicturesThatExist(self):
        shown = [image.text for image in tree.parse(METAINFO).iter("image")]
        self.assertTrue(shown)
        for address in shown:
            place, name = address.rsplit("/", 1)
            self.assertTrue(place.endswith("/%s/pictures" % VERSION), address)
            self.assertTrue((SOURCE / "docs" / "pictures" / name).is_file(), address)

    def metainfoAndDesktopEntryAgree(self):
        root, entry = tree.parse(METAINFO).getroot(), desktop_entry()
        self.assertEqual(root.findtext("id"), ID)
        self.assertEqual(root.findtext("launchable"), DESKTOP_ENTRY.name)
        self.assertEqual(root.findtext("icon"), entry["Icon"])
        self.assertEqual(root.findtext("name"), entry["Name"])
        self.assertLessEqual(len(root.findtext("summary")), 35)
        self.assertEqual(sorted(binary.text for binary in root.iter("binary")),
                         sorted(page.name[:-len(".1.gz")] for page in MAN_PAGES))
        for kind in root.iter("mediatype"):
            self.assertIn(kind.text, entry["MimeType"].split(";"))

    def desktopEntryIsValidAndFoundByWhatPeopleSearchFor(self):
        done = run("desktop-file-validate", "--warn-kde", DESKTOP_ENTRY)
        self.assertEqual((done.returncode, done.stdout, done.stderr), (0, "", ""))
        entry = desktop_entry()
        keywords = entry["Keywords"].split(";")
        for word in ("sound report", "ALE", "BWF", "iXML", "timecode"):
            self.assertIn(word, keywords)
        self.assertNotIn("Actions", entry)
        self.assertEqual(entry["Exec"], "tagwell %F")

    def manPagesAreSilentUnderManAndMandoc(self):
        self.assertTrue(MAN_PAGES)
        for packed in MAN_PAGES:
            with tempfile.TemporaryDirectory() as folder:
                page = pathlib.Path(folder) / packed.name[:-len(".gz")]
                page.write_bytes(gzip.decompress(packed.read_bytes()))
                formatted = run("man", "--warnings", "-E", "UTF-8", "-l", "-Tutf8", "-Z", page)
                self.assertEqual((formatted.returncode, formatted.stderr), (0, ""))
                self.assertIn("font", formatted.stdout)
                linted = run("mandoc", "-Tlint", page)
                self.assertEqual((linted.returncode, linted.stdout, linted.stderr), (0, "", ""))
                named = run("lexgrog", page)
                self.assertEqual(named.returncode, 0, named.stdout)

    def manPagesHaveTheSectionsThatPeopleLookFor(self):
        for packed in MAN_PAGES:
            page = gzip.decompress(packed.read_bytes()).decode()
            sections = re.findall(r"(?m)^\.SH \"?([A-Z ]+)\"?$", page)
            for section in ("NAME", "SYNOPSIS", "DESCRIPTION", "EXIT STATUS", "FILES", "EXAMPLES"):
                self.assertIn(section, sections, packed.name)
            self.assertNotRegex(page, "@[A-Z]+@")

    def completionsParse(self):
        checks = {".bash": ("bash", "-n"), ".zsh": ("zsh", "-n"), ".fish": ("fish", "--no-execute")}
        for program in (page.name[:-len(".1.gz")] for page in MAN_PAGES):
            folder = PAPERS if program == "tagwell-cli" else SOURCE / "packaging" / "completions"
            for suffix, check in checks.items():
                done = run(*check, folder / (program + suffix))
                self.assertEqual((done.returncode, done.stdout, done.stderr), (0, "", ""))

    def bashCompletesWavFilesAndFolders(self):
        with tempfile.TemporaryDirectory() as folder:
            for name in ("a.WAV", "b c.wav", "c.txt"):
                (pathlib.Path(folder) / name).touch()
            (pathlib.Path(folder) / "day").mkdir()
            # The quoted pattern of the printed rule goes through the shell once more.
            script = 'source "$1"; rule=$(complete -p tagwell); rule=${rule#complete}; rule=${rule% tagwell}; ' \
                     'eval "compgen $rule -- \'\'"'
            done = run("bash", "-c", script, "bash", SOURCE / "packaging" / "completions" / "tagwell.bash", cwd=folder)
            self.assertEqual(sorted(done.stdout.splitlines()), ["a.WAV", "b c.wav", "day"])

    def manualShowsPicturesThatAreInstalled(self):
        shown = re.findall(r"\]\(([^)#]+\.(?:png|svg))\)", (SOURCE / "docs" / "manual.md").read_text("utf-8"))
        self.assertTrue(shown)
        for path in shown:
            self.assertTrue(path.startswith("pictures/"), path)
            self.assertTrue((SOURCE / "docs" / path).is_file(), path)

    def copyrightHoldsTheLicence(self):
        text = (SOURCE / "packaging" / "debian" / "copyright").read_text("utf-8")
        self.assertTrue(text.startswith(
            "Format: https://www.debian.org/doc/packaging-manuals/copyright-format/1.0/\n"))
        licence = (SOURCE / "LICENSE").read_text("utf-8").split("\n\n", 2)[2]
        quoted = text.split("\nLicense: MIT\n ", 1)[1]
        plain = "\n".join("" if line == " ." else line[1:] for line in (" " + quoted).splitlines())
        self.assertEqual(plain.strip(), licence.strip())
        names = set(re.findall(r"(?m)^License: (\S+)$", text))
        stated = {tree.parse(METAINFO).findtext(tag) for tag in ("project_license", "metadata_license")}
        self.assertEqual(names, stated)


class Version(unittest.TestCase):
    def write_papers(self, changelog):
        """Runs the writer on the project with another changelog; its process and the folder it wrote to."""
        folder = pathlib.Path(tempfile.mkdtemp(prefix="tagwell-papers-"))
        self.addCleanup(shutil.rmtree, folder)
        shutil.copytree(SOURCE / "packaging", folder / "packaging")
        (folder / "CHANGELOG.md").write_text(changelog, encoding="utf-8")
        return run(SOURCE / "packaging" / "papers.py", "--version", VERSION, "--homepage", "https://example.org",
                   "--maintainer", "A <a@example.org>", "--docs", "/usr/share/doc/tagwell", "--source", folder,
                   "--commands", BUILD / "packaging" / "commands.json", "--out", folder / "out", "tagwell"), folder / "out"

    def standsInOnePlace(self):
        """No file states the version but the one that the build reads it from, and the list of releases."""
        skipped = {".git", "build", ".cache"}
        stating = []
        for path in SOURCE.rglob("*"):
            if path.is_file() and not skipped.intersection(path.relative_to(SOURCE).parts):
                if re.search(rb"(?<![0-9.])" + re.escape(VERSION.encode()) + rb"(?![0-9])", path.read_bytes()):
                    stating.append(str(path.relative_to(SOURCE)))
        self.assertEqual(sorted(stating), ["CHANGELOG.md", "CMakeLists.txt"])

    def isInEveryPaper(self):
        self.assertEqual(changelog_releases()[0][0], VERSION)
        debian = gzip.decompress((PAPERS / "changelog.gz").read_bytes()).decode()
        self.assertTrue(debian.startswith("tagwell (%s) " % VERSION), debian)
        self.assertEqual(next(tree.parse(METAINFO).iter("release")).get("version"), VERSION)
        for packed in MAN_PAGES:
            self.assertIn("Tagwell %s" % VERSION, gzip.decompress(packed.read_bytes()).decode().splitlines()[0])
        self.assertIn('set(CPACK_PACKAGE_VERSION "%s")' % VERSION, (BUILD / "CPackConfig.cmake").read_text("utf-8"))
        with open(BUILD / "packaging" / "Info.plist", "rb") as file:
            plist = plistlib.load(file)
        self.assertEqual((plist["CFBundleShortVersionString"], plist["CFBundleVersion"]), (VERSION, VERSION))

    def isInTheProgram(self):
        program = pathlib.Path(os.environ["TAGWELL_PROGRAM"]).read_bytes()
        self.assertIn(VERSION.encode("utf-16-le") + b"\0\0", program)
        main_source = (SOURCE / "app" / "main.cpp").read_text("utf-8")
        self.assertRegex(main_source, r"setApplicationVersion\([^;]*TAGWELL_VERSION")

    def aChangelogOfAnotherVersionFailsTheBuild(self):
        done, _ = self.write_papers("# Changelog\n\n## [0.9.1] - 2025-01-02\n\n### Added\n\n- All.\n")
        self.assertNotEqual(done.returncode, 0)
        self.assertIn(VERSION, done.stderr)

    def aReleaseWithoutDateFailsTheBuild(self):
        for heading in ("## [%s]" % VERSION, "## %s - 2026-01-01" % VERSION, "## [%s] - soon" % VERSION):
            done, _ = self.write_papers("# Changelog\n\n%s\n\n### Added\n\n- All.\n" % heading)
            self.assertNotEqual(done.returncode, 0, heading)
            self.assertIn("CHANGELOG.md:3", done.stderr)

    def linesOutsideTheFormFailTheBuild(self):
        for body in ("### News\n\n- All.\n", "- All.\n", "### Added\n\nAll of it.\n", "### Added\n\n  more\n"):
            done, _ = self.write_papers("# Changelog\n\n## [%s] - 2026-01-01\n\n%s" % (VERSION, body))
            self.assertNotEqual(done.returncode, 0, body)
            self.assertRegex(done.stderr, r"\ACHANGELOG\.md:[57]: ")

    def whatIsNotReleasedIsLeftOut(self):
        done, out = self.write_papers("# Changelog\n\n## [Unreleased]\n\n### Added\n\n- A promise.\n\n"
                                      "## [%s] - 2026-01-02\n\n### Fixed\n\n- A & `b`\n  of two lines.\n" % VERSION)
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        metainfo = (out / METAINFO.name).read_text("utf-8")
        debian = gzip.decompress((out / "changelog.gz").read_bytes()).decode()
        self.assertNotIn("promise", metainfo + debian)
        self.assertIn("<li>A &amp; b of two lines.</li>", metainfo)
        self.assertIn("  * A & b of two lines.\n", debian)
        self.assertIn(" -- A <a@example.org>  Fri, 02 Jan 2026 12:00:00 +0000\n", debian)

    def everyDatedReleaseIsTold(self):
        done, out = self.write_papers("# Changelog\n\n## [%s] - 2026-01-02\n\n### Fixed\n\n- New.\n\n"
                                      "## [0.1.0] - 2025-12-31\n\n### Added\n\n- Old.\n" % VERSION)
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        releases = list(tree.parse(out / METAINFO.name).iter("release"))
        self.assertEqual([release.get("date") for release in releases], ["2026-01-02", "2025-12-31"])
        debian = gzip.decompress((out / "changelog.gz").read_bytes()).decode()
        parsed = subprocess.run(["dpkg-parsechangelog", "--all", "--show-field", "Changes", "-l", "-"], input=debian,
                                capture_output=True, text=True, check=True)
        self.assertEqual(parsed.stderr, "")
        self.assertEqual(re.findall(r"tagwell \(([^)]+)\)", parsed.stdout), [VERSION, "0.1.0"])


class Icons(unittest.TestCase):
    theme = SOURCE / "assets" / "icons" / "hicolor"

    def haveTheSizeOfTheirFolder(self):
        found = {path.parts[-3] for path in self.theme.rglob("*.png")}
        self.assertEqual(found, {"%dx%d" % (edge, edge) for edge in ICON_SIZES})
        for edge in ICON_SIZES:
            picture = self.theme / ("%dx%d" % (edge, edge)) / "apps" / (ID + ".png")
            self.assertEqual(png_size(picture), (edge, edge))

    def symbolicIsMadeFromTheDrawing(self):
        kept = self.theme / "symbolic" / "apps" / (ID + "-symbolic.svg")
        self.assertEqual(kept.read_text("utf-8"), runpy.run_path(str(SOURCE / "tools" / "make_icons.py"))["symbolic"]())
        root = tree.parse(kept).getroot()
        self.assertEqual([child.tag.rsplit("}", 1)[1] for child in root], ["path"])

    def scalableIsTheDrawing(self):
        kept = self.theme / "scalable" / "apps" / (ID + ".svg")
        self.assertEqual(kept.read_bytes(), (SOURCE / "assets" / "tagwell.svg").read_bytes())


class Flatpak(unittest.TestCase):
    def setUp(self):
        done = run("flatpak-builder", "--show-manifest", SOURCE / "packaging" / "flatpak" / (ID + ".yml"))
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        self.manifest = json.loads(done.stdout)

    def manifestParses(self):
        self.assertEqual(self.manifest["id"], ID)
        self.assertEqual(self.manifest["runtime"], "org.kde.Platform")
        self.assertEqual(self.manifest["sdk"], "org.kde.Sdk")
        self.assertGreaterEqual([int(part) for part in self.manifest["runtime-version"].split(".")], [6, 8])
        self.assertEqual(self.manifest["command"], "tagwell")
        self.assertEqual([module["name"] for module in self.manifest["modules"]], ["libsamplerate", "tagwell"])
        for source in (source for module in self.manifest["modules"] for source in module["sources"]):
            if source["type"] == "archive":
                self.assertRegex(source["sha256"], "^[0-9a-f]{64}$")

    def manifestAsksForNoMoreThanItNeeds(self):
        self.assertEqual(set(self.manifest["finish-args"]), {
            "--share=ipc", "--socket=wayland", "--socket=fallback-x11", "--device=dri", "--socket=pulseaudio",
            "--filesystem=xdg-music", "--filesystem=/media", "--filesystem=/run/media", "--filesystem=/mnt",
            "--filesystem=xdg-config/Vorlund:create"})


class Bundle(unittest.TestCase):
    """The property list as the system would read it, and the icon container's directory."""

    def declaresItselfAndItsDocuments(self):
        with open(BUILD / "packaging" / "Info.plist", "rb") as file:
            plist = plistlib.load(file)
        self.assertEqual(plist["CFBundleIdentifier"], ID)
        self.assertEqual(plist["CFBundleExecutable"], "tagwell")
        self.assertEqual(plist["CFBundlePackageType"], "APPL")
        self.assertIs(plist["NSHighResolutionCapable"], True)
        self.assertEqual(plist["CFBundleIconFile"], "tagwell.icns")
        [document] = plist["CFBundleDocumentTypes"]
        self.assertEqual(document["LSItemContentTypes"], ["com.microsoft.waveform-audio"])
        self.assertTrue(document["CFBundleTypeName"])
        self.assertEqual((document["CFBundleTypeRole"], document["LSHandlerRank"]), ("Editor", "Alternate"))

    def iconHoldsAllSizes(self):
        icon = (SOURCE / "assets" / "tagwell.icns").read_bytes()
        self.assertEqual((icon[:4], struct.unpack(">I", icon[4:8])[0]), (b"icns", len(icon)))
        position, edges = 8, []
        while position < len(icon):
            size = struct.unpack(">I", icon[position + 4:position + 8])[0]
            picture = icon[position + 8:position + size]
            self.assertEqual(picture[:8], b"\x89PNG\r\n\x1a\n")
            edges.append(struct.unpack(">I", picture[16:20])[0])
            position += size
        self.assertEqual(position, len(icon))
        self.assertEqual(edges, [16, 32, 128, 256, 512, 1024])


main()
