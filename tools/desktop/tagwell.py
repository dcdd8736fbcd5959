"""The program's window as a person uses it: rows, fields, buttons, dialogs, by their visible or accessible names."""

import os
import subprocess

from driver import wait_until

FILE_COLUMNS = ("", "File Name", "File Size", "Channels", "TAPEID", "SCENE", "TAKE", "START TC", "LENGTH", "DATE",
                "CIRCLED", "SAMPLE RATE", "FRAME RATE", "Notes")


class Tagwell:
    def __init__(self, desktop, program, *before):
        """`before` are the words in front of the program that start it, such as "chroot" and a folder."""
        self.desktop = desktop
        self.command = [*before, program]

    def start(self, files):
        self.desktop.start([*self.command, *files])
        self.desktop.find("frame", "Tagwell")
        wait_until(lambda: self.row_count() == len(files), "a row for each file")

    def quit(self):
        """Quits by the keyboard; the exit status."""
        return self._end("ctrl+q")

    def close(self):
        """Closes the main window by the window manager's key; the exit status."""
        return self._end("alt+F4")

    def _end(self, key):
        self.desktop.activate(self.desktop.find("frame", "Tagwell"))
        self.desktop.key(key)
        return self.desktop.wait_for_exit()

    # The list

    def table(self):
        return self.desktop.find("table", "Files")

    def row_count(self):
        return self.desktop.atspi.Table.get_n_rows(self.table())

    def cell(self, row, column):
        """Text of a cell, by the column's title."""
        return self.desktop.cell(self.table(), row, FILE_COLUMNS.index(column))

    def row(self, row):
        """All texts of a row by column title, the play button's column left out."""
        table = self.table()
        return {title: self.desktop.cell(table, row, index) for index, title in enumerate(FILE_COLUMNS) if title}

    def row_of(self, file_name):
        for row in range(self.row_count()):
            if self.cell(row, "File Name") == file_name:
                return row
        raise AssertionError("no row shows " + file_name)

    def select_rows(self, rows):
        """Clicks the first row, and the others with Control held."""
        for number, row in enumerate(rows):
            cell = self.desktop.atspi.Table.get_accessible_at(self.table(), row, 1)
            self.desktop.click(cell, at=(0.3, 0.5), modifier="ctrl" if number else None)

    # The panes

    def replace(self, label, text):
        self.desktop.replace_text(self.desktop.find("text", label), text)

    def field(self, label):
        return self.desktop.text(self.desktop.find("text", label))

    def enter_timecode(self, digits):
        self.desktop.click(self.timecode_button())
        dialog = self.desktop.find("dialog", "Set New TC Start")
        self.desktop.find("push button", "OK", within=dialog)
        self.desktop.key("ctrl+a")
        self.desktop.type(digits)
        self.desktop.click(self.desktop.find("push button", "OK", within=dialog))
        self.desktop.gone("dialog", "Set New TC Start")

    def timecode_button(self):
        return self.desktop.find("push button", "Start timecode")

    def timecode(self):
        """What the button shows, which is its accessible description."""
        return self.timecode_button().get_description()

    def save(self):
        """Saves and returns the text of the box that follows."""
        self.desktop.click(self.desktop.find("push button", "Save Changes to Selected Files"))
        return self.confirm("Success")

    def confirm(self, title):
        """Presses OK in the message box of that title; its text."""
        box = self.desktop.find("alert", title)
        texts = [label.get_name() for label in self.desktop.all("label", within=box)]
        self.desktop.click(self.desktop.find("push button", "OK", within=box))
        self.desktop.gone("alert", title)
        return "\n".join(text for text in texts if text)

    # Drop, play, report

    def drop_from(self, drag_source, paths):
        """Drags the paths out of another program's window and drops them on the list."""
        desktop = self.desktop
        rows = self.row_count()
        source = subprocess.Popen([drag_source, *paths], env=desktop.environment)
        try:
            window = wait_until(lambda: self._window_of(source.pid), "the drag source's window")
            desktop.xdotool("windowmove", "--sync", window, desktop.size[0] - 180, desktop.size[1] - 120)
            start = (desktop.size[0] - 110, desktop.size[1] - 90)
            desktop.drag(start, desktop.point(self.table(), (0.5, 0.8)), steps=30, rest=0.5)
            wait_until(lambda: self.row_count() > rows, "the dropped files' rows")
        finally:
            source.terminate()
            source.wait()

    def _window_of(self, pid):
        found = subprocess.run(["xdotool", "search", "--onlyvisible", "--pid", str(pid)], env=self.desktop.environment,
                               capture_output=True, text=True).stdout.split()
        return found[-1] if found else None

    def play(self, row):
        """Presses a row's play button; the mixer dialog."""
        cell = self.desktop.atspi.Table.get_accessible_at(self.table(), row, 0)
        self.desktop.click(cell)
        return self.desktop.find("dialog", "Playback Mixer")

    def close_dialog(self, dialog):
        title = dialog.get_name()
        self.desktop.activate(dialog)
        self.desktop.key("alt+F4")
        self.desktop.gone("dialog", title)

    def write_report(self, kind, path, before_saving=lambda: None):
        """Makes a report through the dialogs: kind is "PDF", "CSV" or "ALE"."""
        desktop = self.desktop
        desktop.click(desktop.find("push button", "Create Sound Report..."))
        dialog = desktop.find("dialog", "Sound Report Generator")
        self._choose_format(dialog, kind)
        before_saving()
        desktop.click(desktop.find("push button", "Create Sound Report", within=dialog))
        chooser = desktop.find("dialog", "Save Sound Report")
        desktop.replace_text(desktop.find("text", "File name:", within=chooser), path)
        desktop.key("Return")
        desktop.gone("dialog", "Save Sound Report")
        # The toast is gone after two seconds, which a look at every widget can miss on a busy machine. The file stays,
        # and the dialog answers the mouse again when it is whole.
        wait_until(lambda: os.path.exists(path) and os.path.getsize(path) > 0, "the report " + path)
        desktop.click(desktop.find("push button", "Close", within=dialog))
        desktop.gone("dialog", "Sound Report Generator")

    def _choose_format(self, dialog, kind):
        desktop = self.desktop
        desktop.click(desktop.find("push button", "Configure...", within=dialog))
        configuration = desktop.find("dialog", "Sound Report Configuration")
        desktop.click(desktop.find("combo box", within=configuration))
        desktop.key("Home", *["Down"] * ("PDF", "CSV", "ALE").index(kind), "Return")
        desktop.click(desktop.find("push button", "OK", within=configuration))
        desktop.gone("dialog", "Sound Report Configuration")
