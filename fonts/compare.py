#!/usr/bin/python3
"""Draws the notation font beside Emmentaler, LilyPond's, each pair of signs in one height.

    compare.py TAB.TTF OUT.png

Needs rsvg-convert and Debian's lilypond-fonts; without them it says so and makes nothing.
"""

import pathlib
import shutil
import subprocess
import sys

from fontTools.pens.boundsPen import BoundsPen
from fontTools.pens.svgPathPen import SVGPathPen
from fontTools.ttLib import TTFont

FOLDER = pathlib.Path("/usr/share/lilypond")
PAIRS = [
    ("segno", "scripts.segno"),
    ("coda", "scripts.coda"),
    ("restQuarter", "rests.2"),
    ("rest8th", "rests.3"),
    ("rest16th", "rests.4"),
    ("flag8th", "flags.d3"),
    ("flag16th", "flags.d4"),
]
HEIGHT = 240  # pixels, of a sign
CELL = 320
PRINTED = 30  # pixels: about the height of a sign at 10 points and 300 dpi


class Face:
    def __init__(self, path):
        self.glyphs = TTFont(path).getGlyphSet()

    def draw(self, name, x, y, height):
        """The sign `height` pixels high, its top left corner at (x, y)."""
        bounds = BoundsPen(self.glyphs)
        self.glyphs[name].draw(bounds)
        left, bottom, _, top = bounds.bounds
        outline = SVGPathPen(self.glyphs)
        self.glyphs[name].draw(outline)
        scale = height / (top - bottom)
        place = f"translate({x:.2f} {y:.2f}) scale({scale:.5f} {-scale:.5f})"
        return (
            f'<path transform="{place} translate({-left:.2f} {-top:.2f})"'
            f' d="{outline.getCommands()}"/>\n'
        )


def sheet(ours, theirs):
    shapes = ""
    for column, names in enumerate(PAIRS):
        for row, (face, name) in enumerate(zip((theirs, ours), reversed(names))):
            x, y = 20 + column * CELL, 20 + row * (HEIGHT + 40)
            shapes += face.draw(name, x, y, HEIGHT)
            shapes += face.draw(name, x + 240, y + HEIGHT - PRINTED, PRINTED)
    width, height = len(PAIRS) * CELL, 2 * (HEIGHT + 40)
    return (
        f'<svg xmlns="http://www.w3.org/2000/svg" width="{width}" height="{height}">\n'
        f'<rect width="{width}" height="{height}" fill="#fff"/>\n{shapes}</svg>\n'
    )


def main():
    if len(sys.argv) != 3:
        raise SystemExit("usage: compare.py TAB.TTF OUT.png")
    found = sorted(FOLDER.glob("*/fonts/otf/emmentaler-20.otf"))
    if not found or not shutil.which("rsvg-convert"):
        print("compare.py: no picture; install lilypond-fonts and librsvg2-bin")
        return
    svg = sheet(Face(sys.argv[1]), Face(found[-1]))
    subprocess.run(["rsvg-convert", "-o", sys.argv[2]], input=svg.encode("ascii"), check=True)


if __name__ == "__main__":
    main()
