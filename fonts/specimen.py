#!/usr/bin/python3
"""Draws a specimen of the notation font: every glyph large and small, and in its places.

    specimen.py TAB.TTF OUT.png

The sheet is a PDF page with the fonts embedded, turned into pixels by pdftoppm.
Figures are set in whatever fontconfig gives for Arial.
"""

import os
import struct
import subprocess
import sys
import tempfile
import zlib

from fontTools.ttLib import TTFont

SHEET = (1440, 2120)  # points; one pixel each in the picture
TWIPS = 4 / 20  # scale of the page lines: four times the size of print
DOT = 1440 / 600  # twips: a printer's dot at 600 dpi
GLYPHS = "$@%`~()/<>-="


class Face:
    """A TrueType font as the PDF needs it."""

    def __init__(self, path):
        font = TTFont(path)
        cmap = font.getBestCmap()
        units = font["head"].unitsPerEm
        self.path = path
        self.ascent = font["hhea"].ascent / units
        self.name = font["name"].getDebugName(6)
        names = [cmap.get(code, ".notdef") for code in range(32, 127)]
        self.widths = [round(font["hmtx"][name][0] * 1000 / units) for name in names]

    def width(self, text, size):
        return sum(self.widths[ord(c) - 32] for c in text) * size / 1000


class Sheet:
    """A page in points, y downwards; `at` moves and scales what is drawn next."""

    def __init__(self, faces):
        self.faces = faces
        self.operations = []
        self.at(0, 0, 1)

    def at(self, x, y, scale):
        self.origin = (x, y)
        self.scale = scale

    def place(self, x, y):
        return self.origin[0] + x * self.scale, SHEET[1] - self.origin[1] - y * self.scale

    def line(self, x1, y1, x2, y2, width):
        (a, b), (c, d) = self.place(x1, y1), self.place(x2, y2)
        self.operations.append(f"{width * self.scale:.3f} w {a:.3f} {b:.3f} m {c:.3f} {d:.3f} l S")

    def text(self, x, y, text, size, face="body"):
        """Prints with the top left corner at x, y; returns the x behind the text."""
        a, b = self.place(x, y + self.faces[face].ascent * size)
        escaped = text.replace("\\", "\\\\").replace("(", "\\(").replace(")", "\\)")
        self.operations.append(
            f"BT /{face} {size * self.scale:.3f} Tf {a:.3f} {b:.3f} Td ({escaped}) Tj ET"
        )
        return x + self.faces[face].width(text, size)

    def pdf(self):
        objects = [
            "<< /Type /Catalog /Pages 2 0 R >>",
            "<< /Type /Pages /Kids [3 0 R] /Count 1 >>",
            "",  # the page and its content, known at the end
            "",
        ]
        resources = ""
        for key, face in self.faces.items():
            with open(face.path, "rb") as file:
                data = file.read()
            first = len(objects) + 1
            resources += f"/{key} {first} 0 R "
            objects.append(
                f"<< /Type /Font /Subtype /TrueType /BaseFont /{face.name}"
                f" /FirstChar 32 /LastChar 126 /Widths {str(face.widths).replace(',', '')}"
                " /Encoding /WinAnsiEncoding"
                f" /FontDescriptor {first + 1} 0 R >>"
            )
            objects.append(
                f"<< /Type /FontDescriptor /FontName /{face.name} /Flags 32"
                " /FontBBox [-200 -900 1200 1100]"
                " /ItalicAngle 0 /Ascent 1000 /Descent -700 /CapHeight 700 /StemV 80"
                f" /FontFile2 {first + 2} 0 R >>"
            )
            objects.append((f"<< /Length {len(data)} /Length1 {len(data)} >>", data))
        objects[2] = (
            f"<< /Type /Page /Parent 2 0 R /MediaBox [0 0 {SHEET[0]} {SHEET[1]}]"
            f" /Resources << /Font << {resources}>> >> /Contents 4 0 R >>"
        )
        content = "\n".join(self.operations).encode("ascii")
        objects[3] = (f"<< /Length {len(content)} >>", content)
        return pdf_file(objects)


def pdf_file(objects):
    out = bytearray(b"%PDF-1.4\n")
    offsets = []
    for number, item in enumerate(objects, 1):
        offsets.append(len(out))
        head, data = item if isinstance(item, tuple) else (item, None)
        out += f"{number} 0 obj\n{head}\n".encode("ascii")
        if data is not None:
            out += b"stream\n" + data + b"\nendstream\n"
        out += b"endobj\n"
    start = len(out)
    out += f"xref\n0 {len(objects) + 1}\n0000000000 65535 f \n".encode("ascii")
    out += b"".join(f"{offset:010} 00000 n \n".encode("ascii") for offset in offsets)
    out += f"trailer\n<< /Size {len(objects) + 1} /Root 1 0 R >>\n".encode("ascii")
    out += f"startxref\n{start}\n%%EOF\n".encode("ascii")
    return bytes(out)


def draw_sizes(sheet):
    """96 points, and 20 and 10 points at twice their size."""
    x = 30
    for glyph in GLYPHS:
        sheet.text(x, 0, glyph, 96, "tab")
        sheet.text(x, 170, glyph, 40, "tab")
        sheet.text(x + 60, 180, glyph, 20, "tab")
        sheet.text(x, 250, glyph, 14)
        x += 56 + sheet.faces["tab"].width(glyph, 96)


# One measure of the measure view, in points. A column is (step, {string: text}, below):
# below is a flag, "|" for a stem alone, or a rest.
MEASURE = [
    (24, {1: "5", 6: "3"}, "("),
    (24, {2: "12"}, ")"),
    (30, {4: "5-7"}, "|"),
    (30, {3: "5=7"}, "|"),
    (24, {2: "8>"}, "|"),
    (24, {5: "8<"}, "|"),
    (24, {3: "/"}, "("),
    (18, {}, "~"),
    (18, {}, "`"),
    (18, {}, "%"),
]


def draw_measure_view(sheet, strings):
    right = 48 + sum(column[0] for column in MEASURE)
    for i in range(strings):
        sheet.line(6, 36 + 8 * i, right, 36 + 8 * i, 0.75)
    sheet.line(right, 36, right, 28 + 8 * strings, 0.75)
    sheet.text(12, 12, "$" if strings != 5 else "@", 10, "tab")
    if strings == 6:
        sheet.line(6, 30, 6, 6, 0.75)
        sheet.line(6, 6, right, 6, 0.75)
    size, upper, lower = {4: (16, 32, 44), 5: (18, 32, 48), 6: (18, 36, 56)}[strings]
    sheet.text(2, upper, " 4", size, "bold")
    sheet.text(2, lower, " 4", size, "bold")
    x = 48
    for step, cells, below in MEASURE:
        cells = {string: text for string, text in cells.items() if string <= strings}
        for string, text in cells.items():
            draw_measure_cell(sheet, x, 20 + 8 * string, text)
        if below in "~`%":
            sheet.text(x, 36 if strings == 4 else 42, below, 10, "tab")
        elif cells:
            draw_measure_stem(sheet, x + 3, 32 + 8 * max(cells), 60 + 8 * strings, below)
        x += step


def draw_measure_cell(sheet, x, y, text):
    if text == "/":
        sheet.text(x, y, "/", 10, "tab")
    elif text[-1] in "<>":
        sheet.text(x, y, text[:-1], 10, "bold")
        sheet.text(x + 6 * (len(text) - 1), y - 8 if text[-1] == ">" else y, text[-1], 8, "tab")
    elif len(text) == 3:
        behind = sheet.text(x, y, text[0], 10, "bold")
        behind = sheet.text(behind, y - (2 if text[1] == "-" else 3), text[1], 10, "tab")
        sheet.text(behind, y, text[2], 10, "bold")
    else:
        sheet.text(x, y, text, 10, "bold")


def draw_measure_stem(sheet, x, top, end, flag):
    sheet.line(x, top, x, end, 0.75)
    if flag in "()":
        sheet.text(x, end - 18, flag, 10, "tab")
        sheet.text(x + 3, end - 18, "m", 10, "bold")


# One line of a page, in twips.
PAGE = [
    ({1: "5", 6: "3"}, "("),
    ({2: "12", 6: "8"}, ")"),
    ({4: "5-7"}, "|"),
    ({3: "5=7"}, "|"),
    ({2: "8>"}, "|"),
    ({5: "8<"}, "|"),
    ({3: "/"}, "|"),
    ({}, "~"),
    ({}, "`"),
    ({}, "%"),
]


def draw_page_line(sheet, columns, strings, body, gap, unit):
    step = 3.4 * unit
    right = 400 + step * len(columns)
    pen = 3 * gap
    for i in range(strings):
        sheet.line(0, pen + i * gap, right, pen + i * gap, 3 * DOT)
    for x in (0, right):
        sheet.line(x, pen, x, pen + (strings - 1) * gap, 2 * DOT)
    sheet.text(0, 0, "@", 20 * body, "tab")
    sheet.text(1.2 * step, 0, "$", 20 * body, "tab")
    sheet.line(1.2 * step, 0, 1.2 * step, pen - 40, DOT)
    sheet.line(1.2 * step, 0, 3.2 * step, 0, DOT)
    sheet.text(3.4 * step, 0, "Fine", 20 * body)
    sheet.text(1.9 * step, gap, "Am", 20 * body)
    end = pen + strings * gap + gap / 2
    x = 120
    for cells, below in columns:
        cells = {string: text for string, text in cells.items() if string <= strings}
        for string, text in cells.items():
            draw_page_cell(sheet, x, pen + 50 + string * gap - 2 * gap, text, body, unit)
        if below in "~`%":
            sheet.text(x, pen + (0 if strings < 5 else 140), below, 20 * (body + 2), "tab")
        elif cells:
            sheet.line(x + 40, pen + gap * max(cells) - 100, x + 40, end, DOT)
            if below in "()":
                sheet.text(x + 40, end - gap - 140, below, 20 * body, "tab")
        x += step


def draw_page_cell(sheet, x, y, text, body, unit):
    if text == "/":
        sheet.text(x, y - 100, "/", 20 * body, "tab")
    elif text[-1] in "<>":
        sheet.text(x, y, text[:-1], 20 * body)
        top = y - 200 if text[-1] == ">" else y
        sheet.text(x + unit * (len(text) - 1), top, text[-1], 20 * (body - 2), "tab")
    elif len(text) == 3:
        behind = sheet.text(x, y, text[0], 20 * body)
        behind = sheet.text(behind, y - (70 if text[1] == "-" else 80), text[1], 20 * body, "tab")
        sheet.text(behind, y, text[2], 20 * body)
    else:
        sheet.text(x, y, text, 20 * body)


def png_of_pgm(pgm):
    """Sixteen greys are enough for print and keep the file small."""
    _, size, _, pixels = pgm.split(b"\n", 3)
    width, height = map(int, size.split())
    rows = b"".join(
        b"\0" + bytes(a & 0xF0 | b >> 4 for a, b in zip(row[0::2], row[1::2]))
        for row in (pixels[y * width : (y + 1) * width] for y in range(height))
    )

    def chunk(kind, data):
        check = zlib.crc32(kind + data)
        return struct.pack(">I", len(data)) + kind + data + struct.pack(">I", check)

    header = struct.pack(">IIBBBBB", width, height, 4, 0, 0, 0, 0)
    chunks = chunk(b"IHDR", header) + chunk(b"IDAT", zlib.compress(rows, 9)) + chunk(b"IEND", b"")
    return b"\x89PNG\r\n\x1a\n" + chunks


def font_file(pattern):
    found = subprocess.run(["fc-match", "-f", "%{file}", pattern], capture_output=True, check=True)
    return found.stdout.decode()


def main():
    if len(sys.argv) != 3:
        raise SystemExit("usage: specimen.py TAB.TTF OUT.png")
    sheet = Sheet(
        {
            "tab": Face(sys.argv[1]),
            "body": Face(font_file("Arial")),
            "bold": Face(font_file("Arial:bold")),
        }
    )
    draw_sizes(sheet)
    for row, strings in enumerate((6, 5, 4)):
        sheet.at(20 if row < 2 else 740, (280, 740, 740)[row], (4, 2.4, 2.4)[row])
        draw_measure_view(sheet, strings)
    y = 1050
    for body, gap, unit in ((8, 140, 80), (10, 165, 100), (12, 185, 120)):
        sheet.at(20, y, TWIPS)
        draw_page_line(sheet, PAGE, 6, body, gap, unit)
        sheet.at(940, y, TWIPS)
        draw_page_line(sheet, PAGE[:2] + PAGE[7:], 5 if body == 10 else 4, body, gap, unit)
        y += 340
    with tempfile.TemporaryDirectory() as folder:
        page = os.path.join(folder, "sheet.pdf")
        with open(page, "wb") as file:
            file.write(sheet.pdf())
        command = ["pdftoppm", "-r", "72", "-gray", page]
        picture = subprocess.run(command, capture_output=True, check=True)
    with open(sys.argv[2], "wb") as file:
        file.write(png_of_pgm(picture.stdout))


if __name__ == "__main__":
    main()
