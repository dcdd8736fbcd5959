#!/usr/bin/env python3
"""Works with what is installed in another system: opens a recording, corrects it, makes a report, quits; then reads and
prints with the command line. Everything but the programs stays outside that system, so that it lends them nothing.
Needs to be root.

Usage: installed.py ROOT DAY PICTURES
ROOT is the other system's folder and shares /tmp with this one; DAY is a folder of demo recordings below /tmp.
"""

import pathlib
import subprocess
import sys

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent))

from driver import Desktop  # noqa: E402
from tagwell import Tagwell  # noqa: E402

HARDENED = ((["-h"], "DYN (Position-Independent Executable"), (["-d"], "BIND_NOW"), (["-l"], "GNU_RELRO"),
            (["--dyn-syms"], "__stack_chk_fail"), (["--dyn-syms"], "_chk@"))


def expect(condition, what):
    if not condition:
        raise SystemExit("not so: " + what)


def check_program(root):
    program = root / "usr" / "libexec" / "tagwell" / "tagwell"
    for options, sign in HARDENED:
        told = subprocess.run(["readelf", "-W", *options, str(program)], check=True, capture_output=True, text=True)
        expect(sign in told.stdout, "the program is built with " + sign)
    dynamic = subprocess.run(["readelf", "-d", str(program)], check=True, capture_output=True, text=True).stdout
    expect("RUNPATH" not in dynamic and "RPATH" not in dynamic, "the program has no path of its own to libraries")
    expect(b"/src/" not in program.read_bytes(), "the program does not know the folder that it was built in")
    expect((program.parent / "fader.png").is_file(), "the picture lies beside the program")


def correct(window, recording):
    before = recording.read_bytes()
    window.start([str(recording)])
    window.select_rows([0])
    window.replace("Scene:", "12C")
    window.save()
    expect(window.cell(0, "SCENE") == "12C", "the list shows the saved scene")
    after = recording.read_bytes()
    expect(len(before) == len(after) and before != after, "the recording was corrected in place")
    sound = before.index(b"data")
    expect(before[sound:sound + 4096] == after[sound:sound + 4096], "the sound is as it was")


def report(window, recording):
    path = recording.parent / "report.csv"
    window.write_report("CSV", str(path))
    expect("%s,12C," % recording.name in path.read_text(encoding="utf-8"), "the report has the take")


def command_line(root, day):
    """What the package leaves out of its dependencies shows here: the program and what it loads to print."""
    def run(*words):
        done = subprocess.run(["chroot", str(root), "tagwell-cli", *words], capture_output=True, text=True)
        expect((done.returncode, done.stderr) == (0, ""), "tagwell-cli %s ends well and in silence" % words[0])
        return done.stdout

    expect("12C" in run("dump", str(day)), "the command line shows the scene that the window saved")
    sheet = day / "sheet.pdf"
    run("report", "--format", "pdf", "-o", str(sheet), str(day))
    expect(sheet.read_bytes().startswith(b"%PDF-"), "the command line prints a report")


def main():
    root, day, pictures = (pathlib.Path(word) for word in sys.argv[1:])
    check_program(root)
    recording = sorted(day.glob("*.WAV"))[0]
    with Desktop() as desktop:
        window = Tagwell(desktop, "tagwell", "chroot", str(root))
        correct(window, recording)
        report(window, recording)
        desktop.screenshot(str(pictures / "window.png"))
        expect(window.quit() == 0, "the program ends with 0")
        expect(desktop.printed() == b"", "the program prints nothing")
        expect((pathlib.Path(desktop.home) / ".config" / "Vorlund" / "config.ini").is_file(), "the settings are kept")
    command_line(root, day)


main()
