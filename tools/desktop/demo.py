#!/usr/bin/env python3
"""Does a sound mixer's main job through the real window on a virtual display: open, drop a folder, look, correct,
save, play, report. Leaves screenshots and the reports behind and prints where they are.

Usage: demo.py PROGRAM FOLDER FILE...
"""

import os
import pathlib
import shutil
import subprocess
import sys
import time

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent))

from driver import Desktop  # noqa: E402
from sound_server import SoundServer  # noqa: E402
from tagwell import Tagwell  # noqa: E402


class Demonstration:
    def __init__(self, desktop, program, folder):
        self.desktop = desktop
        self.folder = folder
        self.window = Tagwell(desktop, program)
        self.made = []

    def picture(self, name):
        path = self.folder / (name + ".png")
        time.sleep(0.3)  # Whatever moves comes to rest.
        self.desktop.screenshot(str(path))
        self.made.append(path)

    def look(self, drag_source, dropped):
        self.picture("1-opened")
        self.window.drop_from(drag_source, [dropped])
        self.picture("2-folder-dropped")
        self.window.select_rows([0])
        self.picture("3-one-selected")
        self.window.select_rows([0, 1, 2])
        self.picture("4-several-selected")

    def correct(self):
        self.window.select_rows([0])
        self.window.replace("Scene:", "12C")
        self.window.enter_timecode("09154512")
        self.picture("5-edited-before-saving")
        self.window.save()
        self.picture("6-saved")

    def play(self):
        dialog = self.window.play(1)
        button = self.desktop.find("push button", " Play", within=dialog)
        if not self.desktop.is_enabled(button):
            raise SystemExit("the file could not be opened for playback")
        self.desktop.click(button)
        time.sleep(2.0)
        self.picture("7-playing")
        self.window.close_dialog(dialog)

    def report(self):
        for kind in ("PDF", "CSV", "ALE"):
            path = self.folder / ("report." + kind.lower())
            self.window.write_report(kind, str(path), lambda: kind == "PDF" and self.picture("8-report"))
            self.made.append(path)
        subprocess.run(["pdftoppm", "-png", "-r", "80", "-f", "1", "-l", "1", "-singlefile",
                        str(self.folder / "report.pdf"), str(self.folder / "report-page-1")], check=True)
        self.made.append(self.folder / "report-page-1.png")


def main():
    program, folder, files = sys.argv[1], pathlib.Path(sys.argv[2]), sys.argv[3:]
    folder.mkdir(parents=True, exist_ok=True)
    for old in list(folder.glob("*.png")) + list(folder.glob("report.*")):
        old.unlink()
    second_day = folder / "second-day"
    shutil.rmtree(second_day, ignore_errors=True)
    second_day.mkdir()
    shutil.copy(files[-1], second_day / "44-T9.WAV")

    drag_source = os.path.join(os.path.dirname(program), "..", "tools", "tagwell_drag_source")
    with SoundServer() as sound, Desktop(environment=sound.environment) as desktop:
        demonstration = Demonstration(desktop, program, folder)
        demonstration.window.start(files)
        demonstration.look(drag_source, str(second_day))
        demonstration.correct()
        demonstration.play()
        demonstration.report()
        demonstration.window.quit()
    for path in demonstration.made:
        print(path)


main()
