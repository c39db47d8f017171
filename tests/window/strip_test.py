"""The strip beside the menus, in the real window."""

import unittest

from desktop import wait_for
from editor import ROOT, Editor

TUNE = ROOT / "examples/greensleeves.gui"


class Strip(unittest.TestCase):
    def saved(self, editor):
        """The tune's bytes as Ctrl+S writes them. A menu that is still open would hold the key."""
        editor.settle()
        path = editor.work / TUNE.name
        path.write_bytes(b"")
        editor.press("Ctrl+s")
        wait_for("the saved tune", lambda: path.stat().st_size)
        editor.desktop.settle(editor.window)
        return path.read_bytes()

    def test_three_deleted_measures_come_back_by_undo_and_go_again_by_redo(self):
        with Editor(TUNE.name, files=[TUNE]) as editor:
            editor.start()
            whole = self.saved(editor)
            for _ in range(3):
                editor.menu("mnuDelMeas")
            cut = self.saved(editor)
            self.assertLess(len(cut), len(whole))
            editor.press("Ctrl+z", "Ctrl+z", "Ctrl+z")
            self.assertEqual(self.saved(editor), whole)
            editor.press("Ctrl+Shift+z", "Ctrl+y", "Ctrl+y")
            self.assertEqual(self.saved(editor), cut)

    def test_more_opens_by_its_letter_and_shows_the_keys_beside_the_window(self):
        with Editor(TUNE.name, files=[TUNE]) as editor:
            editor.start()
            editor.press("Alt+r", "k")
            editor.dialog("Keys")
            editor.press("Escape")
            editor.back()
            editor.press("Alt+r", "p")
            editor.dialog("Playing Order")
            editor.press("Escape")
            editor.back()
