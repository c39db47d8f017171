"""A part of the page marked with the mouse and copied as a picture."""

import subprocess
import unittest

from desktop import PATIENCE, Picture
from editor import ROOT, Editor


class Clipboard(unittest.TestCase):
    def test_the_marked_part_without_its_border(self):
        tune = ROOT / "examples/greensleeves.gui"
        with Editor(tune.name, files=[tune]) as editor:
            editor.start()
            x, y, width, _ = editor.desktop.place(editor.window)
            left, top = x + width // 2 - 300, y + 150  # on the page
            right, bottom = left + 480, top + 230
            before = editor.picture().crop(left - x, top - y, right - left, bottom - top)
            editor.desktop.drag((left, top), (left + 100, bottom + 20), (right, bottom))
            after = editor.picture().crop(left - x, top - y, right - left, bottom - top)
            editor.look("marquee")
            editor.menu("mnuClipbrd")
            editor.settle()
            copied = Picture.from_png(
                subprocess.run(
                    ["xclip", "-selection", "clipboard", "-t", "image/png", "-o"],
                    check=True,
                    capture_output=True,
                    timeout=PATIENCE,
                ).stdout
            )
            self.assertGreater(before.differing(after), 100, "the marquee is to be seen")
            self.assertEqual((copied.width, copied.height), (479, 229))
            self.assertEqual(copied.differing(before.crop(1, 1, 479, 229)), 0)
            self.assertGreater(copied.differing(blank(479, 229)), 1000, "there is something in it")


def blank(width, height):
    return Picture(width, height, b"\xff" * (4 * width * height))
