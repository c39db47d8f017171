"""Tunes of other programs: brought in, changed, saved and handed on."""

import unittest
import xml.etree.ElementTree

from desktop import wait_for
from editor import ROOT, Editor

BOOK = ROOT / "tests/exchange/tunes/hpps_031.abc"
QUESTION = "Quillon"  # what the toolkit calls a box without a title
CARET = 100  # pixels that blink


class Exchange(unittest.TestCase):
    def written(self, path):
        wait_for(f"the file {path.name}", lambda: path.exists() and path.stat().st_size)

    def test_a_tune_is_imported_changed_saved_exported_and_undone(self):
        with Editor(files=[BOOK]) as editor:
            editor.start()
            editor.type("7")
            editor.press("Enter")
            mine = editor.staff()

            editor.press("Alt+r", "i")
            editor.dialog("Import")
            editor.type(BOOK.name)
            editor.press("Enter")
            editor.dialog(QUESTION)
            editor.press("Alt+n")
            editor.back()
            imported = editor.staff()
            self.assertGreater(imported.differing(mine), 500)
            editor.look("imported")

            editor.type("9")
            editor.press("Enter")
            self.assertGreater(editor.staff().differing(imported), CARET)
            editor.press("Ctrl+s")
            editor.answer("Save As", "mine")
            self.written(editor.work / "mine.gui")

            editor.press("Alt+r", "x")
            editor.dialog("Export")
            editor.look("export")
            editor.press("Ctrl+a")
            editor.type("mine.musicxml")
            editor.press("Enter")
            editor.back()
            self.written(editor.work / "mine.musicxml")
            score = xml.etree.ElementTree.parse(editor.work / "mine.musicxml")
            self.assertEqual(score.getroot().tag, "score-partwise")

            editor.press("Ctrl+z", "Ctrl+z", "Ctrl+z")  # the name, the note and the import
            self.assertLess(editor.staff().differing(mine), CARET)
            editor.press("Ctrl+y")
            self.assertLess(editor.staff().differing(imported), CARET)

    def test_a_start_with_a_tune_of_another_program_asks_nothing(self):
        with Editor(BOOK.name, files=[BOOK]) as editor:
            editor.start(imports=True)
            note = wait_for("the note", lambda: editor.titles().count("Quillon"))
            self.assertEqual(note, 1)
            editor.look("started")
            editor.type("9")
            editor.press("Enter", "Ctrl+s")
            editor.dialog("Save As")
            editor.press("Escape")
            editor.back()


if __name__ == "__main__":
    unittest.main()
