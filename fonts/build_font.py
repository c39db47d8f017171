#!/usr/bin/python3
"""Builds the notation font "Tab" from its outlines.

    build_font.py tab.glyphs OUT/TAB.TTF

tab.glyphs is described in its own head. The same outlines give the same bytes:
nothing of the clock or the machine goes into the file.
"""

import sys

from fontTools.fontBuilder import FontBuilder
from fontTools.pens.cu2quPen import Cu2QuPen
from fontTools.pens.ttGlyphPen import TTGlyphPen

UNITS_PER_EM = 1000
ASCENT = 1000  # text is placed by its top left corner: y = 1000 is that top
DESCENT = 700  # nothing hangs lower, so nothing is clipped
CURVE_ERROR = 0.5  # units by which a quadratic spline may leave its cubic
FONT_DATE = 3600000000  # seconds since 1904: 2018-01-29
VERSION = "1.000"


class Glyph:
    def __init__(self, character, advance):
        self.character = character
        self.advance = advance
        self.pen = TTGlyphPen(None)


def read_points(words, where):
    numbers = [int(word) for word in words]
    if len(numbers) % 2:
        raise SystemExit(f"{where}: a point lacks its y")
    return list(zip(numbers[0::2], numbers[1::2]))


def read_glyphs(path):
    """Returns the glyphs by name, in the file's order."""
    glyphs = {}
    pen = None
    with open(path, encoding="ascii") as lines:
        for number, line in enumerate(lines, 1):
            where = f"{path}:{number}"
            words = line.split()
            if not words or words[0] == "#":
                continue
            command, rest = words[0], words[1:]
            if command == "glyph":
                character, name, advance = rest
                glyph = glyphs[name] = Glyph(character, int(advance))
                pen = Cu2QuPen(glyph.pen, CURVE_ERROR)
            elif command == "M":
                pen.moveTo(*read_points(rest, where))
            elif command == "L":
                for point in read_points(rest, where):
                    pen.lineTo(point)
            elif command == "C":
                pen.curveTo(*read_points(rest, where))
            elif command == "Z":
                pen.closePath()
            else:
                raise SystemExit(f"{where}: unknown command {command}")
    return glyphs


def character_code(word):
    """The code of a glyph's character; None for a glyph that has none."""
    names = {"none": None, "space": 32}
    return names[word] if word in names else ord(word)


def build(glyphs):
    outlines = {name: glyph.pen.glyph() for name, glyph in glyphs.items()}
    codes = {name: character_code(glyph.character) for name, glyph in glyphs.items()}

    font = FontBuilder(UNITS_PER_EM, isTTF=True)
    font.setupGlyphOrder(list(glyphs))
    font.setupCharacterMap({code: name for name, code in codes.items() if code is not None})
    font.setupGlyf(outlines)
    left_edges = {name: getattr(outline, "xMin", 0) for name, outline in outlines.items()}
    font.setupHorizontalMetrics({name: (glyphs[name].advance, left_edges[name]) for name in glyphs})
    font.setupHorizontalHeader(ascent=ASCENT, descent=-DESCENT)
    font.setupNameTable(
        {
            "familyName": "Tab",
            "styleName": "Regular",
            "uniqueFontIdentifier": f"Tab-{VERSION}",
            "fullName": "Tab",
            "psName": "Tab",
            "version": f"Version {VERSION}",
        }
    )
    font.setupOS2(
        sTypoAscender=ASCENT,
        sTypoDescender=-DESCENT,
        sTypoLineGap=0,
        usWinAscent=ASCENT,
        usWinDescent=DESCENT,
        fsType=0,  # may be embedded and installed
        ulUnicodeRange1=1,
        ulCodePageRange1=1,
    )
    font.setupPost()
    head = font.font["head"]
    head.created = head.modified = FONT_DATE
    font.font.recalcTimestamp = False
    return font


def main():
    if len(sys.argv) != 3:
        raise SystemExit("usage: build_font.py tab.glyphs OUT/TAB.TTF")
    build(read_glyphs(sys.argv[1])).save(sys.argv[2])


if __name__ == "__main__":
    main()
