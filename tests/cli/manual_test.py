"""Types what the manual's chapter "From a script" tells to type, in a folder as the chapter describes it, and compares
what comes out with what stands there.

A command stands behind "$ " in a block marked as console, goes on over lines that end in a backslash, and is followed
by what it prints, errors included. A line "..." stands for any lines. Each section starts with a card of its own.
"""

import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import unittest

MANUAL = pathlib.Path(os.environ["TAGWELL_MANUAL"])
CLI = pathlib.Path(os.environ["TAGWELL_CLI"])
RECORDINGS = os.environ["TAGWELL_DEMO_RECORDINGS"]
# Each section of the chapter with commands in it, by the test that types them.
SECTIONS = {
    "aCardCanBeLookedOver": "In short",
    "aSceneIsRenamedOverACard": "Task 1: rename a scene over a card",
    "filesWhosePlacesDisagreeAreFound": "Task 2: find files whose two places disagree",
    "eachFolderGetsAReport": "Task 3: a report for each folder",
    "theSoundIsProvedUntouched": "Task 4: prove the sound untouched",
    "metadataGoesIntoADatabase": "Task 5: metadata into a database",
    "aTableIsCorrectedByHand": "Correct a whole day in a spreadsheet",
    "aStartIsSetToTheFrame": "Set a start to the frame",
}


def chapter():
    """{title: text} of the chapter's sections."""
    text = MANUAL.read_text(encoding="utf-8")
    begin = re.search(r"(?m)^## \d+\. From a script$", text)
    rest = text[begin.end():]
    end = re.search(r"(?m)^## ", rest)
    _, *parts = re.split(r"(?m)^### (.+)$", rest[:end.start()] if end else rest)
    return dict(zip(parts[::2], parts[1::2]))


def blocks(text):
    """(kind, content) of each fenced block."""
    return re.findall(r"(?ms)^```(\w*)\n(.*?)^```$", text)


def commands(text):
    """[(command, [line that it prints])] of a section."""
    found = []
    for _, content in blocks(text):
        lines = iter(content.splitlines())
        for line in lines:
            if line.startswith("$ "):
                command = line[2:]
                while command.endswith("\\"):
                    command += "\n" + next(lines)
                found.append((command, []))
            else:
                found[-1][1].append(line)
    return found


def matches(printed, told):
    """True if the lines are the told ones; "..." stands for any number of lines."""
    if not told:
        return not printed
    if told[0] == "...":
        return any(matches(printed[skipped:], told[1:]) for skipped in range(len(printed) + 1))
    return bool(printed) and printed[0] == told[0] and matches(printed[1:], told[1:])


class Manual(unittest.TestCase):
    def setUp(self):
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="tagwell-manual-"))
        self.addCleanup(shutil.rmtree, self.folder)
        path = "%s:%s" % (CLI.parent, os.environ["PATH"])
        self.environment = {"PATH": path, "HOME": str(self.folder), "LC_ALL": "C.UTF-8", "LC_COLLATE": "C"}

    def make_card(self):
        """The card of the chapter: CARD with a folder for each roll."""
        day = self.folder / "day"
        subprocess.run([RECORDINGS, day], check=True)
        for path in sorted(day.iterdir()):
            roll = re.search(rb"<TAPE>(\w+)</TAPE>", path.read_bytes()[:8000])[1].decode()
            (self.folder / "CARD" / roll).mkdir(parents=True, exist_ok=True)
            path.rename(self.folder / "CARD" / roll / path.name)
        day.rmdir()

    def type_all(self, typed):
        """What each command prints, lines of both streams in their order, in one shell."""
        mark = "=== %s ===" % self.folder.name
        script = "".join("%s\n(x=$?; echo; echo '%s'; exit $x)\n" % (command, mark) for command in typed)
        done = subprocess.run(["bash", "-c", script], cwd=self.folder, env=self.environment, stdin=subprocess.DEVNULL,
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT, encoding="utf-8")
        printed = done.stdout.split("\n%s\n" % mark)
        self.assertEqual(len(printed), len(typed) + 1, done.stdout)
        return [text.splitlines() for text in printed[:-1]]

    def try_section(self, title):
        self.make_card()
        told = commands(chapter()[title])
        self.assertTrue(told)
        for (command, lines), printed in zip(told, self.type_all([command for command, _ in told])):
            if not matches(printed, lines):
                self.assertEqual("\n".join(printed), "\n".join(lines), "printed and told for $ " + command)

    def everyCommandOfTheChapterIsTried(self):
        sections = chapter()
        self.assertEqual([title for title in sections if commands(sections[title])], list(SECTIONS.values()))
        self.assertEqual(sum(title.startswith("Task ") for title in sections), 5)
        for title, text in sections.items():
            self.assertEqual(text.count("```"), 2 * len(blocks(text)), title)
            for kind, content in blocks(text):
                self.assertEqual(kind, "console", title)
                self.assertTrue(content.startswith("$ "), content)
        indented = re.search(r"(?m)^ {4,}\S", re.sub(r"(?ms)^```.*?^```$", "", "".join(sections.values())))
        self.assertIsNone(indented)

    def everyOptionThatItNamesExists(self):
        known = set()
        listed = subprocess.run([CLI, "--help"], capture_output=True, text=True, check=True).stdout
        for command in re.findall(r"(?m)^  (\w+) {2,}", listed.split("Commands:\n")[1].split("\n\n")[0]):
            text = subprocess.run([CLI, command, "--help"], capture_output=True, text=True, check=True).stdout
            known |= set(re.findall(r"(?m)^ +(?:-\w, )?(--[a-z-]+)", text))
        named = set(re.findall(r"`(?:tagwell-cli [^`]*)?(--[a-z-]+)", "".join(chapter().values())))
        self.assertTrue(named)
        self.assertEqual(named - known - {"--version"}, set())

    def aLineThatIsUntrueIsFound(self):
        self.assertTrue(matches(["a", "b"], ["a", "b"]))
        self.assertTrue(matches(["a", "x", "y", "b"], ["a", "...", "b"]))
        self.assertTrue(matches(["a", "b"], ["a", "...", "b"]))
        for told in ([], ["a"], ["a", "c"], ["a", "b", "c"], ["...", "a"], ["...", "c", "..."]):
            self.assertFalse(matches(["a", "b"], told), told)
        self.make_card()
        [status, silent] = self.type_all(["false\necho $?", "true"])
        self.assertEqual((status, silent), (["1"], []))
        told = commands("```console\n$ a \\\n  b\nc\n\nd\n$ e\n```\n")
        self.assertEqual(told, [("a \\\n  b", ["c", "", "d"]), ("e", [])])


def section_test(title):
    return lambda self: self.try_section(title)


for name, section in SECTIONS.items():
    setattr(Manual, name, section_test(section))

if __name__ == "__main__":
    result = unittest.main(exit=False, verbosity=2).result
    sys.exit(0 if result.testsRun and result.wasSuccessful() and not result.skipped else 1)
