"""The program without a mouse, as a screen reader finds it."""

from support import WindowTest, main, wait_until

FOCUSED_ROLES = ("table", "push button", "text", "check box", "slider")


class Keyboard(WindowTest):
    environment = {"PULSE_SERVER": "unix:/nonexistent"}

    def focused(self):
        """(role, name) of the widget or cell that has the keyboard."""
        state = self.desktop.atspi.StateType.FOCUSED
        for node in self.desktop.all():
            if node.get_state_set().contains(state):
                return self.role(node), node.get_name()
        return None

    @staticmethod
    def role(node):
        from driver import role_of
        return role_of(node)

    def go_to(self, role, name):
        for _ in range(40):
            if self.focused() == (role, name):
                return
            before = self.focused()
            self.desktop.key("Tab")
            wait_until(lambda: self.focused() != before, "the keyboard to move on")
        self.fail("Tab doesn't come to %s %r" % (role, name))

    def everyControlInTheTreeHasAName(self):
        self.window.start(self.demo_files())
        self.window.select_rows([0])
        nameless = [self.role(node) for node in self.focusable() if not node.get_name()]
        self.assertEqual(nameless, [])
        self.assertEqual(self.window.timecode(), "09:12:00:00")

        self.desktop.key("Return")
        self.window.confirm("Playback")
        dialog = self.desktop.find("dialog", "Playback Mixer")
        nameless = [self.role(node) for node in self.focusable(dialog) if not node.get_name()]
        self.assertEqual(nameless, [])
        self.assertIn("Tracks", [node.get_name() for node in self.desktop.all(within=dialog)])
        rate = self.desktop.find(name="Frame rate", within=dialog)
        self.assertEqual(rate.get_description(), "25")
        fader = self.desktop.all("slider", within=dialog)[1]
        self.assertTrue(fader.get_name().startswith("Fader "))
        self.desktop.atspi.Value.set_current_value(fader, -12.0)
        wait_until(lambda: fader.get_description() == "-12.0 dB", "the fader to say its decibels")
        self.assertAlmostEqual(self.desktop.atspi.Value.get_current_value(fader), -12.0)
        meter = self.desktop.all("progress bar", within=dialog)[0]
        self.assertTrue(meter.get_name().startswith("Meter "))
        self.assertTrue(meter.get_description().endswith(" dB, not clipped"))
        self.assert_printed_nothing()

    def focusable(self, within=None):
        state = self.desktop.atspi.StateType.FOCUSABLE
        nodes = [node for node in self.desktop.all(within=within) if node.get_state_set().contains(state)]
        return [node for node in nodes if self.role(node) not in ("frame", "dialog", "filler", "menu item", "menu")]

    def aRowIsPlayedByReturnUnderTheNameThatItsCellSpeaks(self):
        self.window.start(self.demo_files())
        cell = self.desktop.atspi.Table.get_accessible_at(self.window.table(), 0, 0)
        self.assertEqual(cell.get_name(), "Play 12A-T1.WAV")
        self.go_to("table", "Files")
        self.picture("keyboard-list")
        self.desktop.key("Down")
        wait_until(lambda: self.window.field("Scene:") == "12A", "the first row to be selected")
        self.desktop.key("Return")
        self.assertIn("Could not open", self.window.confirm("Playback"))
        dialog = self.desktop.find("dialog", "Playback Mixer")
        self.desktop.find("label", "12A-T1.WAV", within=dialog)
        self.desktop.key("Tab", "Tab")
        self.picture("keyboard-mixer")
        self.assert_printed_nothing()

    def removingByKeyboardLeavesItInTheList(self):
        files = self.demo_files()
        self.window.start(files)
        self.window.select_rows([2])
        self.go_to("push button", "Remove File")
        self.desktop.key("space")
        wait_until(lambda: self.window.row_count() == len(files) - 1, "the row to go")
        self.desktop.key("space", "space")
        self.assertEqual(self.window.row_count(), len(files) - 1)
        wait_until(lambda: self.focused() == ("table", "Files"), "the keyboard to be in the list")
        self.assert_printed_nothing()


main()
