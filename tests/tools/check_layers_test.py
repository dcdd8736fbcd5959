#!/usr/bin/env python3
"""Plants violations into a small copy of the tree and looks whether tools/check_layers.py complains of each."""

import contextlib
import io
import pathlib
import sys
import tempfile
import unittest

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
sys.dont_write_bytecode = True
sys.path.insert(0, str(ROOT / "tools"))
import check_layers  # noqa: E402


class Tree(unittest.TestCase):
    """A tree that has one clean file in each folder, and the document with its table."""

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.root = pathlib.Path(folder.name)
        for layer in check_layers.LAYERS:
            self.put(f"{layer.folder}/Clean.h", "#pragma once\n#include <string>\n")
        self.put(check_layers.DOCUMENT, f"Text.\n{check_layers.BEGIN}\n{check_layers.END}\nMore.\n")
        self.put(check_layers.PICTURE, "")
        check_layers.write_document(self.root)

    def put(self, path, text):
        (self.root / path).parent.mkdir(parents=True, exist_ok=True)
        (self.root / path).write_text(text, encoding="utf-8")

    def complaints(self, links=None):
        arguments = ["check_layers.py", "--root", str(self.root)]
        if links is not None:
            self.put("links.txt", links)
            arguments += ["--links", str(self.root / "links.txt")]
        printed = io.StringIO()
        before, sys.argv = sys.argv, arguments
        try:
            with contextlib.redirect_stdout(printed):
                self.status = check_layers.main()
        finally:
            sys.argv = before
        return printed.getvalue().splitlines()

    def expect(self, *parts, links=None):
        lines = self.complaints(links)
        self.assertEqual(1, self.status)
        self.assertEqual(1, len(lines), lines)
        for part in parts:
            self.assertIn(part, lines[0])

    def test_cleanTreePasses(self):
        self.assertEqual(["all includes and links point downwards"], self.complaints(links="tagwell_core core"))
        self.assertEqual(0, self.status)

    def test_includeUpwardsIsFound(self):
        self.put("core/Bad.cpp", '#include <string>\n#include "audio/Clean.h"\n')
        self.expect("core/Bad.cpp:2", "core must not include audio")

    def test_includeOfAFolderTwoLevelsUpInTheSameFolderNameIsFound(self):
        self.put("app/look/Bad.h", '#include "app/settings/Clean.h"\n')
        self.expect("app/look/Bad.h:1", "app/look must not include app/settings")

    def test_objectiveImportIsFound(self):
        self.put("app/files/Bad.mm", '#import "window/Clean.h"\n')
        self.expect("app/files/Bad.mm:1", "must not include window")

    def test_strayToolkitHeaderIsFound(self):
        self.put("core/Bad.h", "#include <QString>\n")
        self.expect("core/Bad.h:1", "core uses no Qt")

    def test_toolkitHeaderInALowerCaseSpellingIsFound(self):
        self.put("audio/Bad.h", "#include <qglobal.h>\n")
        self.expect("audio/Bad.h:1", "audio uses no Qt")

    def test_standardHeaderWithQIsNone(self):
        self.put("core/Good.h", "#include <queue>\n")
        self.assertEqual(["all includes and links point downwards"], self.complaints())

    def test_cycleInsideAFolderIsFound(self):
        self.put("core/A.h", '#include "core/B.h"\n')
        self.put("core/B.h", '#include "core/C.h"\n')
        self.put("core/C.h", '#include "core/A.h"\n')
        self.expect("include cycle: core/A.h -> core/B.h -> core/C.h -> core/A.h")

    def test_includeOfTestCodeIsFound(self):
        self.put("mixer/Bad.cpp", '#include "tests/support/WavBuilder.h"\n')
        self.expect("mixer/Bad.cpp:1", "is in no folder that mixer may include")

    def test_linkUpwardsIsFound(self):
        self.expect("tagwell_core must not link tagwell_settings",
                    links="tagwell_core core tagwell_build_options tagwell_settings")

    def test_linkedToolkitIsFound(self):
        self.expect("tagwell_audio uses no Qt, but links Qt6::Core", links="tagwell_audio audio Qt6::Core")

    def test_unknownTargetIsFound(self):
        self.expect("target tagwell_extra is not in the table's row", links="tagwell_extra core tagwell_core")

    def test_changedTableInTheDocumentIsFound(self):
        text = (self.root / check_layers.DOCUMENT).read_text(encoding="utf-8")
        self.put(check_layers.DOCUMENT, text.replace("`mixer/`", "`remixer/`", 1))
        self.expect(check_layers.DOCUMENT, "--write")

    def test_changedPictureIsFound(self):
        self.put(check_layers.PICTURE, "<svg/>")
        self.expect(check_layers.PICTURE, "--write")

    def test_rowThatStandsOnAHigherOneIsFound(self):
        rows = check_layers.LAYERS
        self.addCleanup(setattr, check_layers, "LAYERS", rows)
        check_layers.LAYERS = rows[:-1] + (rows[-1]._replace(stands_on=("core",)),)
        self.expect("stands on core, which is not below it")


if __name__ == "__main__":
    unittest.main()
