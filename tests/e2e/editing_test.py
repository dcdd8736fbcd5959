import pathlib

from support import WindowTest, changed_ranges, main


def chunk(data, name):
    """(offset, size) of a chunk's payload."""
    position = 12
    while position + 8 <= len(data):
        size = int.from_bytes(data[position + 4:position + 8], "little")
        if data[position:position + 4] == name:
            return position + 8, size
        position += 8 + size + size % 2
    raise AssertionError("no chunk " + name.decode())


class Editing(WindowTest):
    def savesASceneAndAStartTimecodeInPlace(self):
        path = pathlib.Path(self.demo_files()[0])
        before = path.read_bytes()
        self.window.start([str(path)])
        self.window.select_rows([0])
        self.assertEqual(self.window.field("Scene:"), "12A")
        self.window.replace("Scene:", "31C")
        self.window.enter_timecode("01000012")
        self.assertEqual(self.window.timecode(), "01:00:00:12")
        self.assertIn("Metadata saved to 1 file(s)", self.window.save())

        self.assertEqual(self.window.cell(0, "SCENE"), "31C")
        self.assertEqual(self.window.cell(0, "START TC"), "01:00:00:12")
        self.assertEqual(self.window.field("Scene:"), "31C")
        after = path.read_bytes()
        bext, _ = chunk(before, b"bext")
        ixml, _ = chunk(before, b"iXML")
        scene = before.index(b"<SCENE>12A", ixml) + len(b"<SCENE>")
        allowed = [(bext, bext + 256), (bext + 338, bext + 346), (scene, scene + 3)]
        for first, end in changed_ranges(before, after):
            self.assertTrue(any(low <= first and end <= high for low, high in allowed), (first, end))
        self.assertEqual(after[scene:scene + 3], b"31C")
        reference = int.from_bytes(after[bext + 338:bext + 346], "little")
        self.assertEqual(reference, 48000 * 3600 + 12 * 1920)
        self.assert_printed_nothing()

    def savesAProjectOverASelection(self):
        # Three uncircled files: clearing a mark would need a byte more than the text has.
        wanted = ("12A-T1.WAV", "12B-T1.WAV", "12B-T2.WAV")
        files = [pathlib.Path(path) for path in self.demo_files() if path.endswith(wanted)]
        self.window.start([str(path) for path in files])
        self.window.select_rows([0, 1, 2])
        self.assertEqual(self.window.field("Scene:"), "—")
        self.window.replace("Project:", "The Wide Field")
        self.assertIn("Metadata saved to 3 file(s)", self.window.save())
        for path in files:
            self.assertTrue(b"<PROJECT>The Wide Field</PROJECT>" in path.read_bytes(), path.name)
        self.assertEqual([self.window.cell(row, "SCENE") for row in range(3)], ["12A", "12B", "12B"])
        self.assert_printed_nothing()

    def aMarkThatDoesNotFitKeepsTheWholeTextAsItWas(self):
        # One of the two is circled: the box shows unchecked, and saving would clear the mark.
        files = [pathlib.Path(path) for path in self.demo_files()[:2]]
        self.window.start([str(path) for path in files])
        self.window.select_rows([0, 1])
        self.window.replace("Project:", "The Wide Field")
        self.assertIn("Metadata saved to 2 file(s)", self.window.save())
        self.assertEqual([self.window.cell(row, "CIRCLED") for row in range(2)], ["No", "Yes"])
        self.assertEqual(self.window.field("Project:"), "—")
        self.assert_printed_nothing()


main()
