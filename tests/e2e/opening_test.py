import os
import pathlib
import shutil
import unittest

from support import WindowTest, main, wait_until


class Opening(WindowTest):
    def copies_of_recordings(self):
        source = os.environ.get("TAGWELL_RECORDINGS")
        if not source:
            raise unittest.SkipTest("TAGWELL_RECORDINGS is not set")
        copies = []
        for path in sorted(pathlib.Path(source).glob("*/*.WAV")):
            copies.append(str(self.folder / path.name))
            shutil.copyfile(path, copies[-1])
        self.assertEqual(len(copies), 7)
        return copies

    def showsWhatRealRecordersWrote(self):
        self.window.start(self.copies_of_recordings())
        self.picture("recordings")

        row = self.window.row(self.window.row_of("A101_1.WAV"))
        self.assertEqual(row["Channels"], "POLY (2)")
        self.assertEqual(row["TAPEID"], "18Y12M31")
        self.assertEqual(row["SCENE"], "A101")
        self.assertEqual(row["TAKE"], "1")
        self.assertEqual(row["FRAME RATE"], "23.976 fps")
        self.assertEqual(row["SAMPLE RATE"], "48000 Hz")
        self.assertRegex(row["START TC"], r"^\d\d:\d\d:\d\d:\d\d$")

        row = self.window.row(self.window.row_of("Scene_1_2AG-T001_TrL_R.WAV"))
        self.assertEqual(row["Channels"], "POLY (2)")
        self.assertEqual(row["TAPEID"], "WINFO")
        self.assertEqual(row["SCENE"], "Scene_1_2AG")
        self.assertEqual(row["TAKE"], "001")
        self.assertEqual(row["FRAME RATE"], "25 fps")
        self.assertEqual(row["Notes"], "Test 01 wavinfo")
        self.assert_printed_nothing()

    def dropsAFolder(self):
        files = self.demo_files()
        self.window.start([])
        self.window.drop_from(self.drag_source, [os.path.dirname(files[0])])
        wait_until(lambda: self.window.row_count() == len(files), "the folder's rows")
        shown = [self.window.cell(row, "File Name") for row in range(len(files))]
        self.assertEqual(shown, sorted((os.path.basename(path) for path in files), key=str.lower))
        self.assertEqual(self.settings()["metadataManager.lastDir"], os.path.dirname(files[0]))
        self.assert_printed_nothing()

    def printsNothingInASessionWithoutARuntimeFolder(self):
        del self.desktop.environment["XDG_RUNTIME_DIR"]
        self.window.start(self.demo_files()[:1])
        self.assertEqual(self.window.quit(), 0)
        self.assert_printed_nothing()

    def quitsWithoutAQuestionAndPrintsNothing(self):
        self.window.start(self.demo_files()[:1])
        self.window.select_rows([0])
        self.window.replace("Scene:", "unsaved")
        self.assertEqual(self.window.quit(), 0)
        self.assert_printed_nothing()


main()
