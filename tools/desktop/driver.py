"""Drives the real program on a virtual display the way a person does: real mouse, real keys, widgets found by their
accessible names. Used by the demonstration of ./run and by the end-to-end tests.

A Desktop brings its own X server, window manager, session bus and home folder, all gone when it is closed.
Needs Xvfb, openbox, dbus-daemon, xdotool, ImageMagick's import, and AT-SPI's Python bindings.
"""

import os
import shutil
import signal
import subprocess
import tempfile
import time

import gi

gi.require_version("Atspi", "2.0")

WAIT_SECONDS = 30.0

# Roles that newer versions of the accessibility library name differently, by the name that is used here.
OLDER_ROLE_NAMES = {"button": "push button"}
TABLE_ROLES = ("table", "tree", "tree table", "list")


def role_of(node):
    name = node.get_role_name()
    return OLDER_ROLE_NAMES.get(name, name)


class NotFound(AssertionError):
    """A widget, a text or a state that did not come in time."""


def wait_until(condition, what, seconds=WAIT_SECONDS):
    """The first true value of `condition()`; NotFound when none came in time. Failing look-ups count as false."""
    end = time.monotonic() + seconds
    while True:
        value = condition()
        if value:
            return value
        if time.monotonic() > end:
            raise NotFound("waited in vain for " + what)
        time.sleep(0.05)


class Desktop:
    """One virtual display with one program on it. Use as a context manager."""

    def __init__(self, width=1400, height=960, environment=None):
        self.size = (width, height)
        self.home = tempfile.mkdtemp(prefix="tagwell-desktop-")
        self.runtime = os.path.join(self.home, "runtime")
        os.mkdir(self.runtime, 0o700)
        self.processes = []
        self.program = None
        self.output = None
        self.environment = dict(os.environ)
        self.environment.update(
            HOME=self.home,
            XDG_RUNTIME_DIR=self.runtime,
            LC_ALL="C.UTF-8",
            QT_QPA_PLATFORM="xcb",
            QT_LINUX_ACCESSIBILITY_ALWAYS_ON="1",
            GTK_A11Y="none",
        )
        for name in ("WAYLAND_DISPLAY", "DISPLAY", "AT_SPI_BUS_ADDRESS", "QT_SCALE_FACTOR"):
            self.environment.pop(name, None)
        self.environment.update(environment or {})

    def __enter__(self):
        try:
            self._start_display()
            self._start_bus()
        except BaseException:
            self.close()
            raise
        return self

    def __exit__(self, *_):
        self.close()

    # Start and stop

    def _spawn(self, command, **options):
        process = subprocess.Popen(
            command, env=self.environment, stdin=subprocess.DEVNULL, stderr=subprocess.DEVNULL, **options)
        self.processes.append(process)
        return process

    def _start_display(self):
        read_end, write_end = os.pipe()
        screen = "%dx%dx24" % self.size
        # Without -noreset the server starts afresh when its last client leaves. A short visit before the window manager
        # has come would do that, and throw out the window manager on its way in.
        self._spawn(["Xvfb", "-displayfd", str(write_end), "-screen", "0", screen, "-nolisten", "tcp", "-dpi", "96",
                     "-noreset"], pass_fds=[write_end], stdout=subprocess.DEVNULL)
        os.close(write_end)
        with os.fdopen(read_end) as pipe:
            number = pipe.readline().strip()
        if not number:
            raise NotFound("Xvfb gave no display")
        self.environment["DISPLAY"] = ":" + number
        self._spawn(["openbox", "--sm-disable"], stdout=subprocess.DEVNULL)
        wait_until(self._is_managed, "the window manager")

    def _is_managed(self):
        """Whether a window manager has said how many desktops there are."""
        return subprocess.run(["xdotool", "get_num_desktops"], env=self.environment, stdout=subprocess.DEVNULL,
                              stderr=subprocess.DEVNULL).returncode == 0

    def _start_bus(self):
        bus = self._spawn(["dbus-daemon", "--session", "--nofork", "--print-address=1"],
                          stdout=subprocess.PIPE, text=True)
        self.environment["DBUS_SESSION_BUS_ADDRESS"] = bus.stdout.readline().strip()
        # The bindings connect with this process's own environment.
        for name in ("DISPLAY", "DBUS_SESSION_BUS_ADDRESS", "XDG_RUNTIME_DIR"):
            os.environ[name] = self.environment[name]
        os.environ.pop("AT_SPI_BUS_ADDRESS", None)
        from gi.repository import Atspi
        self.atspi = Atspi
        Atspi.init()

    def start(self, command):
        """Starts the program under test. Whatever it prints is kept for printed()."""
        self.output = tempfile.TemporaryFile()
        self.program = subprocess.Popen(command, env=self.environment, stdin=subprocess.DEVNULL,
                                        stdout=self.output, stderr=subprocess.STDOUT)
        return self.program

    def printed(self):
        """All that the program has written to its standard output and error, as bytes."""
        self.output.seek(0)
        return self.output.read()

    def stop(self):
        """Ends the program if it still runs; its exit status."""
        if self.program.poll() is None:
            self.program.terminate()
        return self.program.wait(timeout=WAIT_SECONDS)

    def wait_for_exit(self):
        """The program's exit status once it has ended by itself. NotFound with its windows if it doesn't."""
        try:
            return self.program.wait(timeout=WAIT_SECONDS)
        except subprocess.TimeoutExpired:
            raise NotFound("waited in vain for the program's end; its windows:\n" + self._tree_if_any()) from None

    def _tree_if_any(self):
        try:
            return self.tree()
        except gi.repository.GLib.Error as error:
            return "no answer: %s" % error

    def close(self):
        if self.program is not None and self.program.poll() is None:
            self.program.kill()
            self.program.wait()
        for process in reversed(self.processes):
            process.send_signal(signal.SIGTERM)
        for process in self.processes:
            try:
                process.wait(timeout=5)
            except subprocess.TimeoutExpired:
                process.kill()
                process.wait()
        shutil.rmtree(self.home, ignore_errors=True)

    # Looking

    def _walk(self, node, depth):
        """The node and what is below it. A table's cells are left out: there may be thousands, and `cell` gets at them."""
        yield node
        if depth == 0 or role_of(node) in TABLE_ROLES:
            return
        for index in range(node.get_child_count()):
            child = node.get_child_at_index(index)
            if child is not None:
                yield from self._walk(child, depth - 1)

    def _applications(self):
        desktop = self.atspi.get_desktop(0)
        for index in range(desktop.get_child_count()):
            application = desktop.get_child_at_index(index)
            if application is not None and application.get_process_id() == self.program.pid:
                yield application

    def all(self, role=None, name=None, showing=True, within=None):
        """All widgets of that role and accessible name, in the order of the tree."""
        found = []
        roots = [within] if within is not None else list(self._applications())
        for root in roots:
            for node in self._walk(root, 30):
                if role is not None and role_of(node) != role:
                    continue
                if name is not None and node.get_name() != name:
                    continue
                if showing and not node.get_state_set().contains(self.atspi.StateType.SHOWING):
                    continue
                found.append(node)
        return found

    def find(self, role=None, name=None, within=None, seconds=WAIT_SECONDS):
        """The first such widget, waiting until it shows."""
        def look():
            try:
                return self.all(role, name, within=within)
            except gi.repository.GLib.Error:
                return []  # The tree changed under the walk.
        return wait_until(look, "%s %r" % (role, name), seconds)[0]

    def gone(self, role=None, name=None):
        """Waits until no such widget shows."""
        def look():
            try:
                return not self.all(role, name)
            except gi.repository.GLib.Error:
                return False
        wait_until(look, "%s %r to go" % (role, name))

    def text(self, node):
        """The text that an editor holds."""
        return self.atspi.Text.get_text(node, 0, -1)

    def is_enabled(self, node):
        return node.get_state_set().contains(self.atspi.StateType.ENABLED)

    def rectangle(self, node):
        """(x, y, width, height) on the screen in pixels."""
        extents = node.get_extents(self.atspi.CoordType.SCREEN)
        return extents.x, extents.y, extents.width, extents.height

    def cell(self, table, row, column):
        """The cell's text in a table."""
        return self.atspi.Table.get_accessible_at(table, row, column).get_name()

    def tree(self):
        """The widgets as text, for a failing test's message."""
        lines = []
        def show(node, depth):
            lines.append("%s%s %r" % ("  " * depth, role_of(node), node.get_name()))
            children = (node.get_child_at_index(index) for index in range(min(node.get_child_count(), 60)))
            for child in children:
                if child is not None:
                    show(child, depth + 1)
        for application in self._applications():
            show(application, 0)
        return "\n".join(lines)

    def screenshot(self, path):
        """The whole display as a picture."""
        subprocess.run(["import", "-window", "root", path], env=self.environment, check=True)

    # Acting

    def xdotool(self, *words):
        subprocess.run(["xdotool", *[str(word) for word in words]], env=self.environment, check=True,
                       stdout=subprocess.DEVNULL)

    def point(self, node, at=(0.5, 0.5)):
        x, y, width, height = self.rectangle(node)
        return int(x + width * at[0]), int(y + height * at[1])

    def click(self, node, at=(0.5, 0.5), button=1, times=1, modifier=None):
        """Presses and releases a mouse button over the widget, at a fraction of its width and height."""
        x, y = self.point(node, at)
        self.xdotool("mousemove", "--sync", x, y) if self._pointer() != (x, y) else None
        if modifier:
            self.xdotool("keydown", modifier)
        self.xdotool("click", "--repeat", times, "--delay", 60, button)
        if modifier:
            self.xdotool("keyup", modifier)

    def activate(self, window):
        """Clicks a window's title bar and waits until the window has the keyboard: keys sent right after the click may
        still go to the window that had it before."""
        self.click(window, at=(0.5, 0.02))
        active = self.atspi.StateType.ACTIVE
        wait_until(lambda: window.get_state_set().contains(active), "%r to become active" % window.get_name())

    def _pointer(self):
        words = subprocess.run(["xdotool", "getmouselocation", "--shell"], env=self.environment, check=True,
                               capture_output=True, text=True).stdout.split()
        values = dict(word.split("=") for word in words)
        return int(values["X"]), int(values["Y"])

    def drag(self, start, end, steps=12, rest=0.0):
        """Presses the left button at one point of the screen, moves in steps, releases at another. `rest` is how many
        seconds the hand rests before it presses, moves and lets go: two programs have to agree on a drag."""
        self.xdotool("mousemove", start[0], start[1])
        time.sleep(rest)
        self.xdotool("mousedown", 1)
        time.sleep(rest)
        for step in range(1, steps + 1):
            x = start[0] + (end[0] - start[0]) * step // steps
            y = start[1] + (end[1] - start[1]) * step // steps
            self.xdotool("mousemove", x, y)
            time.sleep(0.03)
        time.sleep(rest)
        self.xdotool("mouseup", 1)

    def key(self, *keys):
        self.xdotool("key", "--delay", 30, *keys)

    def type(self, text):
        self.xdotool("type", "--delay", 25, "--", text)

    def replace_text(self, node, text):
        """Clicks into an editor, selects all of it, types."""
        self.click(node)
        self.key("ctrl+a")
        self.type(text)
