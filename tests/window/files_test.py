"""Opening, saving and the ends of the program, the bad ones too."""

import shutil
import unittest

from desktop import wait_for
from editor import ROOT, Editor

TUNE = "greensleeves.gui"
UNTITLED = "Quillon"  # what the toolkit calls a box without a title


def example(name):
    return ROOT / "examples" / name


def record(measure, code):
    """A record of a tune file: a head of 4/4, or a quarter note on the third string."""
    slot = '"2"' if code == 7 else '""'
    lines = [f"{measure},{code},0", "0,4,4,0", '0,""," "," ",""', '""', '""', slot]
    return "".join(line + "\r\n" for line in lines + ['""'] * 3)


def full_table():
    """The header, and 300 measures of a head and four notes: records 0 to 1500."""
    measures = (record(i, 999) + 4 * record(i, 7) for i in range(1, 301))
    return record(0, 0) + "".join(measures)


class Files(unittest.TestCase):
    def edit(self, editor):
        editor.press("Down")
        editor.type("7")
        editor.press("Enter")
        editor.settle()

    def test_open_by_menu_and_throw_an_edit_away(self):
        with Editor(files=[example(TUNE)]) as editor:
            editor.start()
            empty = editor.staff()
            editor.menu("mnuOpen")
            editor.answer("Open", TUNE)
            self.assertGreater(editor.staff().differing(empty), 1000)
            self.assertEqual(editor.caption(), "LYRANO Tablature Editor for Guitar")
            self.edit(editor)
            editor.menu("mnuExit")
            editor.dialog(UNTITLED)
            editor.press("Alt+n")
            self.assertEqual(editor.ended(), 0)
            self.assertEqual((editor.work / TUNE).read_bytes(), example(TUNE).read_bytes())

    def test_save_an_edit_when_asked(self):
        with Editor(TUNE, files=[example(TUNE)]) as editor:
            editor.start()
            self.edit(editor)
            editor.menu("mnuExit")
            editor.dialog(UNTITLED)
            editor.press("Alt+y")
            self.assertEqual(editor.ended(), 0)
            self.assertIn(b'"7"\r\n', (editor.work / TUNE).read_bytes())
            self.assertNotIn(b'"7"\r\n', example(TUNE).read_bytes())

    def test_save_as_asks_before_it_replaces_a_file(self):
        """Also one that is named by the extension that is added."""
        with Editor(files=[example(TUNE)]) as editor:
            editor.start()
            self.edit(editor)
            for answer in ("Alt+n", "Alt+y"):
                editor.menu("mnuSaveAs")
                editor.dialog("Save As")
                editor.type(TUNE.removesuffix(".gui"))
                editor.press("Enter")
                editor.dialog("File Exists")
                before = (editor.work / TUNE).read_bytes()
                self.assertEqual(before, example(TUNE).read_bytes())
                editor.press(answer)
                if answer == "Alt+n":
                    editor.dialog("Save As")
                    editor.press("Escape")
                editor.back()
            self.assertIn(b'"7"\r\n', (editor.work / TUNE).read_bytes())

    def test_exit_goes_on_but_a_close_does_not_when_saving_is_cancelled(self):
        with Editor() as editor:
            editor.start()
            editor.type("3")
            editor.press("Enter")
            editor.menu("mnuExit")
            editor.dialog(UNTITLED)
            editor.press("Alt+y")
            editor.dialog("Save As")
            editor.press("Escape")
            editor.back()
            self.assertIsNone(editor.process.poll())
            editor.desktop.ask_to_close(editor.window)
            editor.dialog(UNTITLED)
            editor.press("Alt+y")
            editor.dialog("Save As")
            editor.press("Escape")
            self.assertEqual(editor.ended(), 0)
            self.assertEqual(list(editor.work.glob("*.gui")), [])

    def test_save_as_adds_the_extension(self):
        with Editor() as editor:
            editor.start()
            editor.type("3")
            editor.press("Enter")
            editor.menu("mnuSaveAs")
            editor.answer("Save As", "first")
            self.assertIn(b'"3"\r\n', (editor.work / "first.gui").read_bytes())

    def test_a_missing_file(self):
        with Editor("none.gui") as editor:
            editor.dialog(UNTITLED)
            editor.press("Enter")
            editor.start()
            self.assertEqual(editor.caption(), "Lyrano - Tablature Editor for Guitar")
            editor.menu("mnuExit")
            self.assertEqual(editor.ended(), 0)

    def test_a_note_of_unsaved_work_leaves_the_keys_to_the_window(self):
        with Editor(TUNE, files=[example(TUNE)]) as editor:
            own = editor.folder / "data/quillon"
            own.mkdir()
            shutil.copy(example(TUNE), own / "reel-Rescue-20240101-120000-abcdefgh.gui")
            editor.start()
            wait_for("the note", lambda: "Quillon" in editor.titles())
            editor.look("note-of-unsaved-work")
            self.edit(editor)
            editor.menu("mnuSave")
            editor.settle()
            self.assertIn(b'"7"\r\n', (editor.work / TUNE).read_bytes())
            editor.menu("mnuExit")
            self.assertEqual(editor.ended(), 0)

    def test_a_damaged_file_ends_the_program_after_its_message(self):
        with Editor("damaged.gui") as editor:
            (editor.work / "damaged.gui").write_bytes(example(TUNE).read_bytes()[:5000])
            editor.dialog(UNTITLED)
            editor.press("Enter")
            editor.dialog("Run-time error")
            editor.press("Enter")
            self.assertEqual(editor.ended(), 1)

    def test_a_run_time_error_keeps_the_work(self):
        with Editor("full.gui") as editor:
            (editor.work / "full.gui").write_bytes(full_table().encode())
            editor.start()
            editor.menu("mnuAppend")
            editor.dialog("Run-time error")
            editor.look("run-time-error")
            editor.press("Enter")
            self.assertEqual(editor.ended(), 1)
            self.assertEqual((editor.work / "full.gui").read_bytes(), full_table().encode())
