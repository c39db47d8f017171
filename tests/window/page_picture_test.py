"""The exported picture of a page is the page that the window shows, pixel by pixel."""

import subprocess
import unittest

from desktop import Picture
from editor import EXPORT, ROOT, WHITE, Editor

PAPER_WIDTH = 816  # pixels: 8.5 inches at 96 dpi
NOTCHES = 5  # of the wheel at a time: less than is to be seen at once
MOST_NOTCHES = 60  # from a page's top to its end


def colours(picture):
    """Three bytes a pixel."""
    data = bytearray(picture.data)
    del data[3::4]
    return bytes(data)


class Paper:
    """The place of page 1 in a picture of the window. Each of its rows has a border on its sides."""

    def __init__(self, seen):
        self.x, self.y = self._top_left(seen)
        self.border = seen.pixel(self.x - 1, self.y)
        self.area = range(self.y, self._end(seen))

    @staticmethod
    def _top_left(seen):
        for y in range(seen.height):
            white = [seen.pixel(x, y) == WHITE for x in range(seen.width)]
            if True in white:
                x = white.index(True)
                if white[x : x + PAPER_WIDTH] == [True] * PAPER_WIDTH:
                    return x, y
        raise AssertionError("there is no page in the window")

    def _end(self, seen):
        y = self.y
        while seen.pixel(self.x - 1, y) == self.border:
            y += 1
        return y

    def shown(self, seen):
        """The colours of the rows that are to be seen, and whether the last of the page is."""
        rows = [
            y
            for y in self.area
            if seen.pixel(self.x - 1, y) == self.border and seen.pixel(self.x, y) == WHITE
        ]
        part = seen.crop(self.x, rows[0], PAPER_WIDTH, len(rows))
        return colours(part), rows[-1] + 1 < self.area.stop


class PagePicture(unittest.TestCase):
    def test_of_a_guitar_tune(self):
        self.compare("auld_lang_syne.gui")

    def test_of_a_banjo_tune(self):
        self.compare("amazing_grace.bjo")

    def test_in_the_engraved_look(self):
        # A tune without ties: how a curve's edge is smoothed depends on the place in the window.
        self.compare("irish_washerwoman.bss", "engraved")

    def compare(self, name, look="plain"):
        tune = ROOT / "examples" / name
        png = subprocess.run(
            [EXPORT, tune, "--look", look, "--dpi", "96", "--format", "png", "-o", "-"],
            check=True,
            capture_output=True,
        ).stdout
        page = Picture.from_png(png)
        self.assertEqual(page.width, PAPER_WIDTH)
        page = colours(page)
        with Editor(name, files=[tune]) as editor:
            editor.start()
            if look == "engraved":
                editor.press("Alt+r")
                editor.press("l")  # Engraved Look
                editor.settle()
                editor.look("engraved")
            paper = Paper(editor.picture())
            part, last = paper.shown(editor.picture())
            self.assertTrue(page.startswith(part), "the page's first rows")
            left, top, _, _ = editor.desktop.place(editor.window)
            turned = 0
            while not last and turned < MOST_NOTCHES:
                editor.desktop.turn_wheel(left + paper.x, top + paper.y, NOTCHES)
                turned += NOTCHES
                part, last = paper.shown(editor.picture())
                self.assertTrue(part in page, f"{turned} notches of the wheel down the page")
            self.assertTrue(last and page.endswith(part), "the page's last rows")
