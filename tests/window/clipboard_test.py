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
            # The part without its border fills a picture as large as the marquee.
            self.assertEqual((copied.width, copied.height), (480, 230))
            part = before.crop(1, 1, 479, 229)
            self.assertGreater(len(ink(copied)), 1000, "there is something in it")
            self.assertEqual(ink(copied) - near(ink(part, 200)), set())
            self.assertEqual(ink(part) - near(ink(copied, 200)), set())


def ink(picture, lightest=100):
    """Row and column of the pixels that are darker than `lightest`."""
    return {
        divmod(i, picture.width)
        for i, blue in enumerate(picture.data[::4])
        if blue < lightest
    }


def near(pixels):
    """The pixels and those around them: to fill the picture, a line moves by a pixel or two."""
    return {(y + i, x + j) for y, x in pixels for i in range(-2, 3) for j in range(-2, 3)}
