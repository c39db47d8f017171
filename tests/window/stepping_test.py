"""Going through a tune with the keyboard alone, and what the window shows of it."""

import re
import subprocess
import unittest

from editor import EXPORT, ROOT, Editor

# Fewer pixels than this may differ between two pictures of the same: the cursor, which blinks, at
# one place in the one and at another place in the other.
CURSOR_PIXELS = 100


def example(name):
    return ROOT / "examples" / name


def next_measure(editor):
    editor.press("Tab", "Enter")  # from the staff to Next; the focus comes back by itself


def previous_measure(editor):
    editor.press("Tab", "Tab", "Enter")


def go_to(editor, number):
    editor.press("Tab", "Tab", "Tab", "Space")
    editor.answer("Quillon", str(number))


def drawings(tune):
    """What each measure draws, by the export command."""
    log = subprocess.run(
        [EXPORT, tune, "--format", "measure-log", "-o", "-"], check=True, capture_output=True
    ).stdout.decode()
    parts = re.split(r"^measure .*\n", log, flags=re.MULTILINE)[1:]
    return [re.sub(r"^note .*\n", "", part, flags=re.MULTILINE) for part in parts]


class Stepping(unittest.TestCase):
    def assertSame(self, one, other, what):
        self.assertLess(one.differing(other), CURSOR_PIXELS, what)

    def assertChanged(self, one, other, what):
        self.assertGreater(one.differing(other), CURSOR_PIXELS, what)

    def test_next_goto_and_previous_show_the_same_measures(self):
        tune = example("scarborough_fair.gui")
        drawn = drawings(tune)
        count = len(drawn)
        with Editor(tune.name, files=[tune]) as editor:
            editor.start()
            walked = [editor.staff()]
            for number in range(2, count + 1):
                next_measure(editor)
                walked.append(editor.staff())
                if drawn[number - 1] != drawn[number - 2]:
                    self.assertChanged(walked[-2], walked[-1], f"Next to measure {number}")
            next_measure(editor)
            self.assertSame(editor.staff(), walked[0], "Next after the last measure")
            previous_measure(editor)
            self.assertSame(editor.staff(), walked[-1], "Previous before the first measure")
            for number in (7, 1, count, 12):
                go_to(editor, number)
                self.assertSame(editor.staff(), walked[number - 1], f"measure {number} by number")
            for number in (11, 10, 9):
                previous_measure(editor)
                self.assertSame(editor.staff(), walked[number - 1], f"Previous to {number}")
            go_to(editor, count + 1)
            self.assertSame(editor.staff(), walked[8], "a number that is no measure's")
            editor.menu("mnuExit")
            self.assertEqual(editor.ended(), 0, "nothing was changed, nothing is asked")

    def test_ten_measures_to_look_at(self):
        tune = example("auld_lang_syne.gui")
        seen = []
        with Editor(tune.name, files=[tune]) as editor:
            editor.start()
            self.assertEqual(editor.caption(), "Lyrano - Tablature Editor for Guitar")
            for number in (1, 2, 3, 6, 8, 18, 19, 24, 34, 40):
                go_to(editor, number)
                seen.append(editor.staff())
                editor.look(f"measure-{number:02}")
        for i, one in enumerate(seen):
            for other in seen[:i]:
                self.assertChanged(one, other, "two measures")

    def test_captions(self):
        for name, mode in (
            ("greensleeves.gui", "Guitar"),
            ("amazing_grace.bjo", "Banjo"),
            ("drowsy_maggie.bss", "Mandolin/Bass"),
        ):
            with Editor(name, files=[example(name)]) as editor:
                editor.start()
                self.assertEqual(editor.caption(), "Lyrano - Tablature Editor for " + mode)
        with Editor() as editor:
            editor.start()
            for command, mode in (
                (None, "Guitar"),
                ("mnuBanjo", "Banjo"),
                ("mnuMandolin", "Mandolin/Bass"),
                ("mnuGuitar", "Guitar"),
            ):
                if command:
                    editor.menu(command)
                editor.settle()
                self.assertEqual(editor.caption(), "LYRANO Tablature Editor for " + mode)

    def test_note_value_by_keyboard(self):
        with Editor() as editor:
            editor.start()
            before = editor.buttons()
            editor.press("Tab", "Tab", "Tab", "Tab", "Right", "Right", "Space")  # 7, 8, 9
            editor.press("Shift+Tab", "Shift+Tab", "Shift+Tab", "Shift+Tab")
            after = editor.buttons()
            editor.toolbar(7)
            self.assertEqual(editor.buttons().differing(before), 0)
            editor.toolbar(9)
            self.assertEqual(editor.buttons().differing(after), 0)
            self.assertGreater(after.differing(before), 0)
