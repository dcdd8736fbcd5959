import gzip
import os
import pathlib
import re
import runpy
import shutil
import tempfile
import unittest

from support import PAPERS, SOURCE, main, run

CLI = os.environ["TAGWELL_CLI"]
BASH_FUNCTIONS = "/usr/share/bash-completion/bash_completion"
# Any one of these shows that completion offers recordings and folders, and nothing else.
FILES = ("a.WAV", "b c.wav", "c.txt", "day/")
RECORDINGS = ["a.WAV", "b c.wav", "day"]


def help_of(*command):
    done = run(CLI, *command, "--help")
    assert done.returncode == 0, done.stderr
    return done.stdout


def commands():
    """The names of the commands, as the program's own help lists them."""
    listed = help_of().split("\nCommands:\n", 1)[1].split("\n\n", 1)[0]
    return [line.split()[0] for line in listed.splitlines()]


def options(command):
    """[(["-0", "--null"], value's name or "")] of a command, as its own help lists them."""
    listed = help_of(command).split("\nOptions:\n", 1)[1].split("\n\n", 1)[0]
    found = [re.match(r" {2,}((?:-\w, )?--[\w-]+)(?: (\S+))? {2,}\S", line) for line in listed.splitlines()]
    assert all(found), listed
    return [(match[1].split(", "), match[2] or "") for match in found]


def flags(command):
    return sorted(flag for names, _ in options(command) for flag in names)


def choices(command, name):
    """The values that an option takes, as the program tells someone who gave another one; [] if it takes any."""
    said = run(CLI, command, name, "no such value").stderr
    told = re.search(re.escape(name) + r" takes (\S+\|\S+), not", said)
    return told[1].split("|") if told else []


def options_with_values():
    """(command, ["-n", "--name"], what is offered: None for files, a list of words, [] for any text)."""
    for command in commands():
        for names, value in options(command):
            if value in ("FILE", "OUT", "SUMS", "TABLE"):
                yield command, names, None
            elif value:
                yield command, names, choices(command, names[-1])


class Commands(unittest.TestCase):
    def setUp(self):
        whole = pathlib.Path(tempfile.mkdtemp(prefix="tagwell-completion-"))
        self.addCleanup(shutil.rmtree, whole)
        self.home, self.folder = whole / "home", whole / "day"
        self.home.mkdir()
        self.folder.mkdir()
        for name in FILES:
            path = self.folder / name
            path.mkdir() if name.endswith("/") else path.touch()

    def bash(self, *words):
        """What is offered for the last word. The shell takes "--name=value" apart at the sign before it asks."""
        taken_apart = [part for word in words for part in (re.split("(=)", word) if "=" in word else [word])]
        if taken_apart[-2:] == ["=", ""]:
            taken_apart.pop()
        script = 'source %s; source "$1"; COMP_LINE=$2; COMP_POINT=${#COMP_LINE}; COMP_TYPE=9; shift 2; ' \
                 'COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1)); compopt() { :; }; _tagwell_cli; ' \
                 'printf "%%s\\n" "${COMPREPLY[@]}"'
        done = run("bash", "-c", script % BASH_FUNCTIONS, "bash", PAPERS / "tagwell-cli.bash",
                   " ".join(("tagwell-cli", *words)), "tagwell-cli", *taken_apart, cwd=self.folder)
        self.assertEqual(done.stderr, "")
        return sorted(line for line in done.stdout.splitlines() if line)

    def fish(self, *words, program="tagwell-cli", folder=PAPERS):
        script = 'source $argv[1]; complete -C "$argv[2]"'
        done = run("fish", "--no-config", "-c", script, folder / (program + ".fish"), " ".join((program, *words)),
                   cwd=self.folder, environment={"HOME": str(self.home), "XDG_CONFIG_HOME": str(self.home)})
        self.assertEqual(done.stderr, "")
        return sorted(line.split("\t")[0] for line in done.stdout.splitlines())

    def zsh(self, command):
        """What the completion hands to zsh's own functions for a command's arguments."""
        script = '_describe() { print -l -- "${commands[@]}"; }; ' \
                 '_arguments() { if [[ $1 == -C ]]; then state=$wanted; return 1; fi; print -l -- "$@"; }; ' \
                 'wanted=$1; words=($2); complete_it() { source $3; }; complete_it "$@"'
        state = "arguments" if command else "command"
        done = run("zsh", "-f", "-c", script, "zsh", state, command, PAPERS / "tagwell-cli.zsh", cwd=self.folder)
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        return done.stdout.splitlines()

    def bashCompletesCommandsAndOptions(self):
        self.assertEqual(self.bash(""), sorted(commands() + ["--help", "--version"]))
        self.assertEqual(self.bash("du"), ["dump"])
        for command in commands():
            self.assertEqual(self.bash(command, "-"), flags(command))
            self.assertEqual(self.bash(command, "a.WAV", "--hel"), ["--help"])

    def bashCompletesValuesAndFiles(self):
        for command in commands():
            self.assertEqual(self.bash(command, ""), RECORDINGS)
        tried = list(options_with_values())
        self.assertTrue(tried)
        for command, names, words in tried:
            offered = sorted(["a.WAV", "b c.wav", "c.txt", "day"] if words is None else words)
            for name in names:
                self.assertEqual(self.bash(command, name, ""), offered, (command, name))
            self.assertEqual(self.bash(command, names[-1] + "="), offered, (command, names))
            if offered:
                begun = names[-1] + "=" + offered[-1][:2]
                self.assertEqual(self.bash(command, begun), offered[-1:], (command, names))

    def fishCompletesCommandsAndOptions(self):
        self.assertEqual(self.fish(""), sorted(commands()))
        self.assertEqual(self.fish("--"), ["--help", "--version"])
        for command in commands():
            long_flags = [flag for flag in flags(command) if flag.startswith("--")]
            self.assertEqual([offered.rstrip("=") for offered in self.fish(command, "--")], long_flags)

    def fishCompletesValuesAndFiles(self):
        for command in commands():
            self.assertEqual([name.rstrip("/") for name in self.fish(command, "")], RECORDINGS)
        window = {"program": "tagwell", "folder": SOURCE / "packaging" / "completions"}
        self.assertEqual([name.rstrip("/") for name in self.fish("", **window)], RECORDINGS)
        self.assertEqual(self.fish("d", **window), ["day/"])
        for command, names, words in options_with_values():
            offered = sorted(FILES if words is None else words)
            for name in names:
                self.assertEqual(self.fish(command, name, ""), offered, (command, name))

    def zshKnowsCommandsOptionsAndFiles(self):
        self.assertEqual([line.split(":")[0] for line in self.zsh("")], commands())
        for command in commands():
            *told, files = self.zsh(command)
            self.assertEqual(sorted(re.match(r"\*?(-[\w-]+)=?\[", line)[1] for line in told), flags(command))
            self.assertEqual(files, '*:recording:_files -g "*.(#i)wav"')
            # What stands behind the last ":" is where the values come from.
            values = {re.match(r"\*?(-[\w-]+)", line)[1]: line.rsplit(":", 1)[-1] for line in told}
            for _, names, words in (each for each in options_with_values() if each[0] == command):
                source = "_files" if words is None else "(%s)" % " ".join(words) if words else " "
                self.assertEqual([values[name] for name in names], [source] * len(names))

    def manPageTellsCommandsAndOptions(self):
        page = gzip.decompress((PAPERS / "tagwell-cli.1.gz").read_bytes()).decode().replace(r"\-", "-")
        before, *sections = re.split(r"(?m)^\.SS ", page.split("\n.SH EXIT STATUS\n")[0])
        told = {section.split("\n", 1)[0]: section for section in sections}
        self.assertEqual(sorted(told), sorted(commands()))
        for command, section in told.items():
            for names, value in options(command):
                tag = ", ".join(r"\fB%s\fR" % name for name in names) + (r" \fI%s\fR" % value if value else "")
                self.assertIn("\n.TP\n%s\n" % tag.replace("\\/", "\\e/"), before + section, command)

    def manPageTellsTheCodesOfCheck(self):
        sources = [SOURCE / "cli" / name for name in ("FileFindings.cpp", "TakeLedger.cpp")]
        codes = {code for path in sources for code in re.findall(r'"([a-z]+(?:-[a-z0-9]+)+)"', path.read_text("utf-8"))}
        self.assertIn("fields-disagree", codes)
        page = gzip.decompress((PAPERS / "tagwell-cli.1.gz").read_bytes()).decode().replace(r"\-", "-")
        section = page.split("\n.SS check\n")[1].split("\n.SS ")[0]
        told = re.findall(r"[a-z]+(?:-[a-z0-9]+)+", " ".join(re.findall(r"(?m)^\.TP\n\.B (.+)$", section)))
        self.assertEqual(sorted(told), sorted(codes))

    def manPageFormatsWhateverTheWordsHold(self):
        made = runpy.run_path(str(SOURCE / "packaging" / "commands.py"))
        words = ".a 'b' c\\d -e ~f " + "many words " * 10 + "'h'"
        source = made["man_options"]([{"name": "x-y", "letter": "x", "value": "A'B", "words": words, "repeats": False,
                                       "choices": ""}])
        page = self.folder / "x.1"
        page.write_text('.TH X 1 "2026-01-02"\n.SH NAME\nx \\- y\n.SH OPTIONS\n' + source + "\n")
        shown = run("man", "--warnings", "-E", "ascii", "-l", page, environment={"MANWIDTH": "200"})
        self.assertEqual(shown.stderr, "")
        self.assertIn("-x, --x-y A'B", shown.stdout)
        self.assertIn(".a 'b' c\\d -e ~f " + "many words " * 10 + "'h'", shown.stdout)


main()
