#!/usr/bin/env python3
"""Makes the pictures of the README and the manual: does with the real window what each chapter tells, looks whether
that came about, and takes the picture. Started by tools/make_pictures, which brings the card.

Usage: pictures.py desk|small PROGRAM DEMO_FOLDER CARD FOLDER
"""

import datetime
import os
import pathlib
import shutil
import subprocess
import sys
import time

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent))

from driver import Desktop, wait_until  # noqa: E402
from sound_server import SoundServer  # noqa: E402
from tagwell import FILE_COLUMNS, Tagwell  # noqa: E402

DAY, DAY_BEFORE = "2026-05-14", "2026-05-13"
FIRST_MINUTE = datetime.datetime(2026, 5, 14, 9, 12, tzinfo=datetime.timezone.utc)
WINDOW_WIDTH = 1200  # At least, for every picture of the whole window.
FRAME = (1, 20, 1, 4)  # What the window manager adds at the left, top, right and bottom.
HEADING = 14  # What a pane's heading stands out above the pane.
MARK_RADIUS = 13
FEWEST_COLOURS = 24  # A picture of something has more.


def date_back(path, later=datetime.timedelta()):
    """Dates a file or folder as on the day of the shoot."""
    moment = (FIRST_MINUTE + later).timestamp()
    os.utime(path, (moment, moment))


class Pictures:
    """One program at a time on one desktop, with a fresh copy of the shoot day on the card for each chapter."""

    def __init__(self, desktop, program, demo, card, folder):
        self.desktop = desktop
        self.window = Tagwell(desktop, program)
        self.demo = demo
        self.card = card
        self.folder = folder

    # The card

    def fresh_day(self):
        """The demo recordings on an empty card, dated as on the day they tell of; their paths in the list's order."""
        for old in self.card.iterdir():
            shutil.rmtree(old) if old.is_dir() else old.unlink()
        day = self.card / DAY
        shutil.copytree(self.demo, day)
        files = sorted(day.iterdir(), key=lambda path: path.name.lower())
        for minutes, path in enumerate(files):
            date_back(path, datetime.timedelta(minutes=7 * minutes))
        return [str(path) for path in files]

    def settings(self):
        return pathlib.Path(self.desktop.environment["HOME"]) / ".config" / "Vorlund" / "config.ini"

    def open_day(self, sizes=None):
        """Starts the program on a fresh day, with `sizes` (by settings key) as those of the panes."""
        self.settings().unlink(missing_ok=True)
        if sizes:
            self.settings().parent.mkdir(parents=True, exist_ok=True)
            self.settings().write_text("".join("metadataManager.split.%s=%d\n" % size for size in sizes.items()))
        self.window.start(self.fresh_day())

    def close_program(self):
        self.desktop.stop()

    # Taking a picture

    def main_window(self):
        return self.desktop.find("frame", "Tagwell")

    def with_frame(self, node):
        left, top, right, bottom = FRAME
        x, y, width, height = self.desktop.rectangle(node)
        return x - left, y - top, width + left + right, height + top + bottom

    def of_window(self, name, marks=()):
        area = self.with_frame(self.main_window())
        if area[2] < WINDOW_WIDTH:
            raise SystemExit("%s: the window is only %d pixels wide" % (name, area[2]))
        self.take(name, area, marks)

    def take(self, name, area=None, marks=()):
        """The area (x, y, width, height; else all) of the screen, with a number at each point of `marks`."""
        path = self.folder / (name + ".png")
        self.desktop.xdotool("mousemove", self.desktop.size[0] - 1, self.desktop.size[1] - 1)
        time.sleep(0.4)  # Whatever moves comes to rest.
        self.desktop.screenshot(str(path))
        x, y, width, height = area or (0, 0, *self.desktop.size)
        words = ["-crop", "%dx%d+%d+%d" % (width, height, x, y), "+repage"]
        for number, (mark_x, mark_y) in enumerate(marks, 1):
            words += self.mark(str(number), mark_x - x, mark_y - y, width, height)
        self.convert(path, *words, "+dither", "-colors", "255", "-strip")
        self.check(path, (width, height))

    def mark(self, text, x, y, width, height):
        disc = "circle %d,%d %d,%d" % (x, y, x + MARK_RADIUS, y)
        label = "text %d,%d '%s'" % (x - width // 2, y - height // 2, text)
        return ["-fill", "#ffd60a", "-stroke", "#000000", "-strokewidth", "2", "-draw", disc, "-stroke", "none",
                "-fill", "#000000", "-font", "DejaVu-Sans-Bold", "-pointsize", "15", "-gravity", "center",
                "-draw", label, "-gravity", "northwest"]

    def convert(self, path, *words):
        subprocess.run(["convert", str(path), *words, str(path)], check=True)

    def check(self, path, size):
        told = subprocess.run(["identify", "-format", "%w %h %k", str(path)], check=True, capture_output=True,
                              text=True).stdout.split()
        width, height, colours = (int(word) for word in told)
        if (width, height) != tuple(size) or colours < FEWEST_COLOURS:
            raise SystemExit("%s: %d x %d pixels in %d colours" % (path.name, width, height, colours))
        print(path.name, flush=True)

    def expect(self, condition, what):
        wait_until(condition, what)

    # What the chapters share

    def beside(self, node):
        """A point for a number that leaves the widget's own text to be read."""
        x, y, width, height = self.desktop.rectangle(node)
        role = node.get_role_name()
        if role == "check box":
            return x + width + 20, y + height // 2
        if role == "table":
            return x + width - 20, y + height - 20
        return (x + width - 20, y + height // 2) if width >= 200 else (x + width // 2, y + height + 3)

    def button(self, name, within=None):
        return self.desktop.find("push button", name, within=within)

    def is_checked(self, node):
        return node.get_state_set().contains(self.desktop.atspi.StateType.CHECKED)

    def press_save(self):
        self.desktop.click(self.button("Save Changes to Selected Files"))

    def box(self, title, text):
        """The message box of that title, which must say the text."""
        box = self.desktop.find("alert", title)
        said = "\n".join(label.get_name() for label in self.desktop.all("label", within=box))
        if text not in said:
            raise SystemExit("the box %s says %r" % (title, said))
        return box

    def cell(self, row, column):
        return self.desktop.atspi.Table.get_accessible_at(self.window.table(), row, FILE_COLUMNS.index(column))

    # The chapters

    def day(self):
        self.open_day()
        self.window.select_rows([0])
        self.expect(lambda: self.window.field("Scene:") == "12A", "the first file in the panes")
        self.of_window("window")
        self.of_window("day-in-five-minutes", marks=[
            self.beside(self.button("Add...")),
            self.desktop.point(self.cell(3, "Notes"), (0.2, 0.5)),
            self.beside(self.desktop.find("text", "Scene:")),
            self.beside(self.button("Save Changes to Selected Files")),
            self.desktop.point(self.cell(2, ""), (0.05, 0.5)),
            self.beside(self.button("Create Sound Report...")),
        ])
        x, y, _, _ = self.desktop.rectangle(self.window.table())
        self.take("play-button", (x, y, 480, 120))
        self.close_program()

    def opening(self):
        self.open_day()
        before = self.card / DAY_BEFORE
        before.mkdir()
        date_back(before, -datetime.timedelta(days=1))
        date_back(self.card / DAY)
        self.desktop.click(self.button("Add..."))
        panel = self.desktop.find("dialog", "Add WAV Files or Folders")
        self.desktop.replace_text(self.desktop.find("text", "Folder:", within=panel), str(self.card))
        self.desktop.key("Return")
        self.desktop.click(wait_until(lambda: self.entry(DAY), "the day's folder"), at=(0.2, 0.5))
        self.expect(lambda: self.desktop.is_enabled(self.button("Add", within=panel)), "the panel's Add")
        self.of_window("opening")
        self.close_program()

    def entry(self, name):
        """The panel's entry of that name, None while there is none."""
        tree = self.desktop.find("tree", "Files and folders")
        entries = (tree.get_child_at_index(index) for index in range(tree.get_child_count()))
        return next((entry for entry in entries if entry is not None and entry.get_name() == name), None)

    def file_list(self):
        self.open_day(sizes={"files": 450, "details": 330})
        x, y, width, height = self.desktop.rectangle(self.desktop.find("panel", "Files"))
        self.take("list", (x, y - HEADING, width, height + HEADING))
        self.close_program()

    def one_file(self):
        self.open_day()
        self.window.select_rows([0])
        self.window.replace("Scene:", "12C")
        self.window.replace("Notes:", "Plane, overhead")
        self.desktop.click(self.desktop.find("check box", "Circled:"))
        self.expect(lambda: self.desktop.is_enabled(self.button("Save Changes to Selected Files")), "Save to light up")
        self.of_window("one-file")
        self.close_program()

    def several_files(self):
        self.open_day()
        self.window.select_rows([0, 1, 2, 3, 4])
        self.expect(lambda: self.desktop.all("label", "5 files selected"), "five files selected")
        if self.window.field("Scene:") != "—" or self.window.cell(1, "CIRCLED") != "Yes" or \
                self.is_checked(self.desktop.find("check box", "Circled:")):
            raise SystemExit("five files, one of them circled, show something else")
        self.of_window("several-files")
        self.close_program()

    def saving(self):
        self.open_day()
        self.window.select_rows([0])
        self.window.replace("Take:", "3")
        self.press_save()
        self.box("Success", "Metadata saved to 1 file(s)")
        self.of_window("saved")
        self.window.confirm("Success")

        self.window.select_rows([1])
        self.desktop.click(self.desktop.find("check box", "Circled:"))
        self.press_save()
        self.box("Error", "Failed to save metadata to:")
        self.of_window("save-failed")
        self.close_program()

    def does_not_fit(self):
        self.open_day()
        self.window.select_rows([0])
        self.window.replace("Scene:", "12A-Kitchen")
        self.press_save()
        self.box("Success", "Metadata saved to 1 file(s)")
        self.expect(lambda: self.window.cell(0, "SCENE") == "12A", "the old scene")
        self.of_window("does-not-fit")
        self.close_program()

    def start_timecode(self):
        self.open_day()
        self.window.select_rows([0])
        self.desktop.click(self.window.timecode_button())
        dialog = self.desktop.find("dialog", "Set New TC Start")
        self.button("OK", within=dialog)
        self.desktop.key("ctrl+a")
        self.desktop.type("10000012")
        self.expect(lambda: self.desktop.text(self.desktop.find("text", within=dialog)) == "10:00:00:12", "the digits")
        self.of_window("start-timecode")
        self.close_program()

    def playing(self):
        self.open_day()
        dialog = self.window.play(0)
        play = self.button(" Play", within=dialog)
        self.expect(lambda: self.desktop.is_enabled(play), "the file to be playable")
        for track, keys in (("Mix L", ["End"]), ("Boom", ["Next"] * 6), ("Anna", ["Next"] * 12), ("Spare", ["Home"])):
            self.desktop.atspi.Component.grab_focus(self.desktop.find("slider", "Fader " + track, within=dialog))
            self.desktop.key(*keys)
        self.desktop.click(self.desktop.find("check box", "Mute Mix R", within=dialog))
        self.desktop.click(play)
        self.button(" Pause", within=dialog)
        time.sleep(3.0)  # The playhead gets on its way.
        self.take("playback-mixer", self.with_frame(dialog))
        self.close_program()

    def report(self):
        self.open_day()
        self.desktop.click(self.button("Create Sound Report..."))
        dialog = self.desktop.find("dialog", "Sound Report Generator")
        table = self.desktop.find("table", within=dialog)
        self.desktop.click(self.desktop.atspi.Table.get_accessible_at(table, 0, 1))
        self.desktop.find("label", "12A-T1.WAV", within=dialog)
        self.take("report-dialog", self.with_frame(dialog))

        self.desktop.click(self.button("Configure...", within=dialog))
        configuration = self.desktop.find("dialog", "Sound Report Configuration")
        for label, text in (("Production Company:", "Field Pictures"), ("Project/Show Name:", "The Long Field"),
                            ("Director:", "R. Hale"), ("Sound Mixer:", "A. Moss"), ("Mixer Phone:", "555 0142"),
                            ("Mixer Email:", "moss@example.org")):
            self.desktop.replace_text(self.desktop.find("text", label, within=configuration), text)
        self.take("report-configuration", self.with_frame(configuration))
        self.desktop.click(self.button("OK", within=configuration))
        self.desktop.gone("dialog", "Sound Report Configuration")
        self.desktop.click(self.button("Close", within=dialog))
        self.desktop.gone("dialog", "Sound Report Generator")
        self.printed_report()
        self.close_program()

    def printed_report(self):
        report = self.card / "report.pdf"
        self.window.write_report("PDF", str(report))
        path = self.folder / "report-pdf.png"
        subprocess.run(["pdftoppm", "-png", "-r", "110", "-f", "1", "-l", "1", "-singlefile", str(report),
                        str(path.with_suffix(""))], check=True)
        self.convert(path, "-crop", "100%x60%+0+0", "+repage", "-bordercolor", "#888888", "-border", "1", "+dither",
                     "-colors", "64", "-strip")
        size = subprocess.run(["identify", "-format", "%w %h", str(path)], check=True, capture_output=True, text=True)
        self.check(path, [int(word) for word in size.stdout.split()])

    def keyboard(self):
        self.open_day()
        self.window.select_rows([0])
        first = self.focused()
        stops = [first]
        while True:
            self.desktop.key("Tab")
            wait_until(lambda: self.focused() != stops[-1], "Tab to leave " + stops[-1].get_name())
            if self.focused() == first:
                break
            stops.append(self.focused())
            if len(stops) > 30:
                raise SystemExit("Tab never comes back to the list")
        self.of_window("keyboard", marks=[self.beside(stop) for stop in stops])
        self.close_program()

    def focused(self):
        state = self.desktop.atspi.StateType.FOCUSED
        return wait_until(lambda: [node for node in self.desktop.all() if node.get_name()
                                   and node.get_state_set().contains(state)], "the focus")[0]

    def read_only_card(self):
        self.open_day()
        subprocess.run(["mount", "-o", "remount,bind,ro", str(self.card)], check=True)
        self.window.select_rows([0])
        self.window.replace("Take:", "3")
        self.press_save()
        self.box("Error", "Failed to save metadata to:")
        self.of_window("card-read-only")
        self.close_program()
        subprocess.run(["mount", "-o", "remount,bind,rw", str(self.card)], check=True)

    def no_sound(self):
        self.desktop.environment["PULSE_SERVER"] = "unix:" + str(self.card / "nothing")
        self.open_day()
        self.desktop.click(self.desktop.atspi.Table.get_accessible_at(self.window.table(), 0, 0))
        self.box("Playback", "Could not open this WAV for playback.")
        self.of_window("no-sound")
        self.close_program()

    def panes(self):
        self.open_day()
        self.window.select_rows([0])
        general = self.desktop.rectangle(self.desktop.find("panel", "GENERAL"))
        right = general[0] + general[2] + 3
        self.desktop.drag((right, general[1] + 200), (right + 90, general[1] + 200))
        buttons = self.desktop.rectangle(self.button("Clear"))
        between = (buttons[1] + buttons[3] + general[1]) // 2 + 8
        self.desktop.drag((general[0] + 500, between), (general[0] + 500, between + 100))
        self.expect(lambda: "metadataManager.split.general" in self.settings().read_text(), "the panes' sizes")
        self.of_window("panes")
        self.close_program()

    def characters(self):
        self.settings().unlink(missing_ok=True)
        files = self.fresh_day()
        path = pathlib.Path(files[0])
        data = path.read_bytes()
        path.write_bytes(data.replace(b"<NOTE>Plane overhead<", b"<NOTE>Caf\xe9, interior<"))
        date_back(path)
        self.window.start(files)
        self.window.select_rows([1])
        self.window.replace("Notes:", "Rain & wind <x")
        self.window.save()
        self.expect(lambda: self.window.cell(1, "Notes") == "Rain & wind", "the note up to the sign")
        self.window.select_rows([0])
        self.expect(lambda: self.window.field("Notes:") == "Caf\N{REPLACEMENT CHARACTER}, interior", "the sign")
        self.of_window("characters")
        self.close_program()

    def small_screen(self):
        self.open_day()
        self.window.select_rows([0])
        height = self.desktop.size[1]
        save = self.desktop.rectangle(self.button("Save Changes to Selected Files"))
        if save[1] < height:
            raise SystemExit("the Save button can be seen on a small screen")
        self.take("small-screen")
        title = self.desktop.rectangle(self.main_window())
        self.desktop.xdotool("mousemove", title[0] + 300, title[1] - 10)
        self.desktop.xdotool("click", "--repeat", 2, "--delay", 60, 1)
        def is_in_sight():
            x, y, _, tall = self.desktop.rectangle(self.button("Save Changes to Selected Files"))
            return x >= 0 and y + tall <= height
        self.expect(is_in_sight, "the Save button in the maximised window")
        self.take("small-screen-maximised")
        self.close_program()

    def of_the_desk(self):
        for chapter in (self.day, self.opening, self.file_list, self.one_file, self.several_files, self.saving,
                        self.does_not_fit, self.start_timecode, self.playing, self.report, self.keyboard,
                        self.read_only_card, self.panes, self.characters, self.no_sound):
            chapter()


def main():
    screen, program = sys.argv[1], os.path.abspath(sys.argv[2])
    demo, card, folder = (pathlib.Path(path) for path in sys.argv[3:6])
    # Cards of a user stand under /media in a folder that is called like the home folder.
    home = card.parents[1] / ".home" / card.parent.name
    home.mkdir(parents=True)
    surroundings = {"HOME": str(home), "TZ": "UTC"}
    with SoundServer() as sound:
        surroundings.update(sound.environment)
        if screen == "small":
            with Desktop(1024, 768, environment=surroundings) as desktop:
                Pictures(desktop, program, demo, card, folder).small_screen()
        else:
            with Desktop(environment=surroundings) as desktop:
                Pictures(desktop, program, demo, card, folder).of_the_desk()


main()
