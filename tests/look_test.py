#!/usr/bin/python3
"""Pages in both looks, as pictures of many programs: what the looks promise, measured in pixels.

    look_test.py QUILLON_EXPORT [NUMBER]

With a NUMBER two of the tunes are looked at, which depend on it: a dense one and an example. Programs that are not installed are left out, and named.
"""

import concurrent.futures
import functools
import pathlib
import re
import shutil
import statistics
import subprocess
import sys
import tempfile
import xml.etree.ElementTree

ROOT = pathlib.Path(__file__).resolve().parent.parent
DENSE = sorted(ROOT.glob("tests/golden/every_sign*.[gb]??"))
EXAMPLES = [
    ROOT / "examples/greensleeves.gui",
    ROOT / "examples/yankee_doodle.bjo",
    ROOT / "examples/drowsy_maggie.bss",
]
DENSITIES = (96, 144, 192, 300)  # of a screen at 1x, 1.5x and 2x, and of print
DENSITIES_OF_PDF = {"plain": (300,), "engraved": (96, 300)}  # plain pens are dots of a printer
STRINGS = {".gui": 6, ".bjo": 5, ".bss": 4}
# Where a repeat's upper dot is, in gaps under the first string. An engraved one is in mid-gap.
UPPER_DOT = {"plain": {6: 1.5, 5: 1.2, 4: 0.7}, "engraved": {6: 1.5, 5: 1.5, 4: 0.5}}
COARSE = "gs", 96  # blackens each pixel that a line only touches
NO_DOT = {6: 2.5, 5: 0.5, 4: 1.5}  # a mid-gap without dots
LEAST_THICK = 1.2  # times a thin bar
COARSE_GAP = 20  # pixels: below, a dot may be one pixel wide in the row that is measured
VALLEY = 60  # greys between two marks that are apart
BODY = ("--body-size", "10")  # the screen's pages are laid out for it
LEAST_BEAM = 2.5  # times a string line


def output(*command):
    done = subprocess.run(command, check=True, capture_output=True)
    return done.stdout


class Picture:
    """Grey pixels, 0 is black."""

    def __init__(self, pgm):
        head = re.match(rb"P5\s+(?:#[^\n]*\n\s*)*(\d+)\s+(\d+)\s+255\s", pgm)
        self.width, self.height = int(head[1]), int(head[2])
        self.pixels = pgm[head.end() :]
        self.dark = self.pixels.translate(bytes(int(grey < 128) for grey in range(256)))

    def row(self, y):
        return self.dark[y * self.width : (y + 1) * self.width]

    def greys(self, y):
        return self.pixels[y * self.width : (y + 1) * self.width]

    def is_dark(self, x, y):
        return self.dark[y * self.width + x] == 1

    def ink(self, x, top, bottom):
        """Thickness of what is between two rows of a column, in pixels with their greys."""
        column = self.pixels[top * self.width + x : bottom * self.width + x : self.width]
        return sum(255 - grey for grey in column) / 255

    @functools.cached_property
    def strings(self):
        """The middle of each string line. Most of what is long and level is a string, and all of
        them begin at one left edge, unlike beams."""
        lines = []
        for y in range(self.height):
            ink = self.width - sum(self.greys(y)) / 255
            if ink < 0.18 * self.width:
                continue
            if not lines or y - lines[-1][-1][0] > 1:
                lines.append([])
            lines[-1].append((y, ink, re.search(rb"[\x00-\xc0]", self.greys(y)).start()))
        starts = [min(start for _, _, start in line) for line in lines]
        left = statistics.mode(starts)
        return [
            sum((y + 0.5) * ink for y, ink, _ in line) / sum(ink for _, ink, _ in line)
            for line, start in zip(lines, starts)
            if abs(start - left) <= 3
        ]

    def staves(self, count):
        """First string and gap of each staff that has all its strings."""
        lines = self.strings
        for i in range(len(lines) - count + 1):
            staff = lines[i : i + count]
            gap = (staff[-1] - staff[0]) / (count - 1)
            if all(abs(b - a - gap) < 0.25 * gap for a, b in zip(staff, staff[1:])):
                yield staff[0], gap


def runs(line):
    """Start and length of each run of dark pixels."""
    return [(run.start(), run.end() - run.start()) for run in re.finditer(b"\1+", line)]


# Programs that make pictures of a file: Picture(page) = PROGRAMS[name](file, page, density)


def pgm_of_png(png):
    return output("convert", png, "-background", "white", "-flatten", "-colorspace", "gray",
                  "-depth", "8", "pgm:-")  # fmt: skip


def poppler(pdf, page, density):
    return output("pdftoppm", "-gray", "-r", str(density), "-f", str(page), "-l", str(page), pdf)


def mupdf(pdf, page, density):
    return output("mutool", "draw", "-q", "-c", "gray", "-F", "pgm", "-r", str(density), "-o", "-",
                  pdf, str(page))  # fmt: skip


def ghostscript(pdf, page, density):
    return output("gs", "-q", "-dNOPAUSE", "-dBATCH", "-dSAFER", "-sDEVICE=pgmraw", f"-r{density}",
                  "-dGraphicsAlphaBits=4", "-dTextAlphaBits=4", f"-dFirstPage={page}",
                  f"-dLastPage={page}", "-sOutputFile=-", pdf)  # fmt: skip


def librsvg(svg, density):
    png = svg.with_suffix(".rsvg.png")
    output("rsvg-convert", "-d", str(density), "-p", str(density), "-o", png, svg)
    return pgm_of_png(png)


def inkscape(svg, density):
    png = svg.with_suffix(".inkscape.png")
    output("inkscape", f"--export-dpi={density}", "-o", png, svg)
    return pgm_of_png(png)


def chromium(svg, density):
    png = svg.with_suffix(".chromium.png")
    output("chromium", "--headless", "--no-sandbox", "--disable-gpu", "--hide-scrollbars",
           f"--force-device-scale-factor={density / 96}", "--window-size=816,1056",
           f"--screenshot={png}", svg.as_uri())  # fmt: skip
    return pgm_of_png(png)


OF_PDF = {"pdftoppm": poppler, "mutool": mupdf, "gs": ghostscript}
OF_SVG = {"rsvg-convert": librsvg, "inkscape": inkscape, "chromium": chromium}


def installed(programs):
    for name in programs:
        if not shutil.which(name):
            print(f"left out: {name} is not installed")
    return {name: make for name, make in programs.items() if shutil.which(name)}


# What is measured


def overlap(one, other):
    return all(one[i] < other[i + 2] and other[i] < one[i + 2] for i in (0, 1))


def figures(texts):
    """The boxes of the fret numbers. Time signatures are larger, and narrow lines of music have
    them print over what is beside them."""
    numbers = [box for text, box in texts if text.isdigit()]
    size = statistics.mode(round(72 * (bottom - top)) for _, top, _, bottom in numbers)
    is_figure = {box: 72 * (box[3] - box[1]) < 1.2 * size for box in numbers}
    others = [box for _, box in texts if not is_figure.get(box)]
    return [
        box
        for box in numbers
        if is_figure[box] and not any(overlap(box, other) for other in others)
    ]


def figures_of_pdf(pdf, page):
    """Left, top, right and bottom of each, in inches."""
    bbox = output("pdftotext", "-bbox", "-f", str(page), "-l", str(page), pdf, "-").decode()
    boxes = []
    for place, text in re.findall(r"<word (.*?)>(.*?)</word>", bbox):
        left, top, right, bottom = (float(number) / 72 for number in re.findall(r"[\d.]+", place))
        boxes.append((text, (left, top, right, bottom)))
    return figures(boxes)


def figures_of_svg(svg):
    """Of an SVG with texts. A digit is 0.556 of its size wide."""
    boxes = []
    for text in xml.etree.ElementTree.parse(svg).iter("{http://www.w3.org/2000/svg}text"):
        size = float(text.get("font-size")) / 1440
        left, baseline = float(text.get("x")) / 1440, float(text.get("y")) / 1440
        right = left + 0.556 * size * len(text.text)
        boxes.append((text.text, (left, baseline - 0.9 * size, right, baseline + 0.2 * size)))
    return figures(boxes)


def stands_alone(picture, box, density):
    """Whether nothing dark leads out of a figure's box to its left or right."""
    left, top, right, bottom = (round(inches * density) for inches in box)
    middle = (top + bottom) // 2
    todo = [
        (x, y)
        for x in range(left, right + 1)
        for y in range(middle - (bottom - top) // 4, middle + (bottom - top) // 4)
        if picture.is_dark(x, y)
    ]
    seen = set(todo)
    while todo:
        x, y = todo.pop()
        if x < left - 1 or x > right + 1:
            return False
        for near in (x - 1, y), (x + 1, y), (x, y - 1), (x, y + 1):
            if top <= near[1] <= bottom and near not in seen and picture.is_dark(*near):
                seen.add(near)
                todo.append(near)
    return True


def touched(picture, boxes, density):
    return sum(not stands_alone(picture, box, density) for box in boxes)


def string_width(picture, count):
    """In pixels."""
    widths = []
    for first, gap in picture.staves(count):
        for string in range(count):
            top = round(first + (string - 0.35) * gap)
            bottom = round(first + (string + 0.35) * gap)
            widths += [picture.ink(x, top, bottom) for x in range(0, picture.width, 7)]
    return statistics.median(width for width in widths if width > 0)


def level_strokes(picture, count):
    """Widths of the level strokes under each staff: beams and brackets."""
    widths = []
    for first, gap in picture.staves(count):
        bottom = first + (count - 1) * gap
        above = set()
        for y in range(round(bottom + 0.5 * gap), min(round(bottom + 4.5 * gap), picture.height)):
            long = {run for run in runs(picture.row(y)) if run[1] >= 0.9 * gap}
            for start, length in long:
                if not any(abs(start - x) <= 2 for x, _ in above):
                    widths.append(thinnest(picture, start, length, y, round(gap)))
            above = long
    return widths


def thinnest(picture, start, length, y, most):
    """Of a stroke, where no stem is on it."""
    widths = []
    for x in range(start + 1, start + length - 1):
        end = y
        while end < picture.height and end - y < most and picture.is_dark(x, end):
            end += 1
        widths.append(picture.ink(x, y - 2, end + 2))
    return min(widths)


def marks(line):
    """Middle and ink of each dark mark in a row of greys. Between two of them it is lighter by a
    good part of the way to white."""
    found = []
    start, darkest, lightest = 0, 255, 255
    for x, grey in enumerate(line + b"\xff"):
        if darkest == 255 or grey < darkest:
            if grey <= lightest - VALLEY:
                if darkest == 255:
                    start = x
                darkest = grey
            lightest = max(lightest, grey) if darkest == 255 else lightest
        if darkest < 255 and grey >= darkest + VALLEY:
            inks = [255 - line[i] for i in range(max(start - 1, 0), x)]
            total = sum(inks)
            place = sum((max(start - 1, 0) + i) * ink for i, ink in enumerate(inks)) / total
            found.append((place, total / 255))
            darkest, lightest = 255, grey
    return found


def is_in(places, x):
    return any(abs(x - place) <= 1.5 for place in places)


def bars_of(picture, first, gap, count):
    """Middle and ink of the marks that reach from the first string to the last, and no further."""
    rows = [marks(picture.greys(int(first + (i + 0.5) * gap))) for i in range(count - 1)]
    below = [x for x, _ in marks(picture.greys(int(first + (count - 0.6) * gap)))]

    return [
        (x, ink)
        for x, ink in rows[count // 2 - 1]
        if all(is_in([place for place, _ in row], x) for row in rows) and not is_in(below, x)
    ]


def repeat_bars(picture, count, dot):
    """How many thick bars have a thin bar and a dot beside them, all three apart."""
    found = 0
    for first, gap in picture.staves(count):
        bars = bars_of(picture, first, gap, count)
        least = 0.9 if gap < COARSE_GAP else 0.1 * gap
        free = [x for x, _ in marks(picture.greys(int(first + NO_DOT[count] * gap)))]
        dots = [
            x
            for x, ink in marks(picture.greys(int(first + dot * gap)))
            if least < ink < 0.7 * gap and not is_in(free, x)
        ]
        for thick, thick_ink in bars:
            for thin, thin_ink in bars:
                if not 0 < abs(thin - thick) < 0.7 * gap or thick_ink < LEAST_THICK * thin_ink:
                    continue
                beyond = [(x - thin) * (1 if thin > thick else -1) for x in dots]
                found += any(1.5 < distance < 0.75 * gap for distance in beyond)
    return found


def differences(one, other):
    """Black pixels of one picture near which the other has no dark one."""
    black = re.compile(rb"[\x00-\x30]")
    count = 0
    for match in black.finditer(one.pixels):
        y, x = divmod(match.start(), one.width)
        around = b"".join(
            other.pixels[row * other.width + max(x - 1, 0) : row * other.width + x + 2]
            for row in range(max(y - 1, 0), min(y + 2, other.height))
        )
        count += min(around, default=255) > 0xC0
    return count


class Looks:
    def __init__(self, program, folder):
        self.program = pathlib.Path(program).resolve()
        self.folder = folder
        self.passed = self.failed = 0
        self.of_pdf = installed(OF_PDF)
        self.of_svg = installed(OF_SVG)

    def check(self, what, holds, seen=""):
        if holds:
            self.passed += 1
        else:
            self.failed += 1
            print(f"failed: {what}{': ' if seen != '' else ''}{seen}", flush=True)

    def make(self, tune, extension, *options):
        """The file of page 1."""
        place = self.folder / f"{tune.stem}{'-'.join(options)}.{extension}"
        output(self.program, tune, *BODY, *options, "-o", place)
        return place

    def repeats(self, tune, form):
        """How many repeat bars there are on page 1."""
        log = output(self.program, tune, *BODY, "--format", form, "-o", "-").decode()
        page = log.partition("page 2\n")[0]
        return len(re.findall(r"^circle \S+ \S+ 30 ", page, re.MULTILINE)) // 2

    def engraved(self, what, picture, boxes, density, count):
        self.check_none(f"{what}: something touches a figure", touched(picture, boxes, density))
        if density < 300:
            return
        string = string_width(picture, count)
        strokes = [width / string for width in level_strokes(picture, count)]
        beams = [width for width in strokes if width >= LEAST_BEAM]
        between = [round(width, 2) for width in strokes if 2.1 < width < LEAST_BEAM]
        self.check(f"{what}: there are beams", beams)
        self.check(f"{what}: beams are thick", not between, between)

    def check_none(self, what, count):
        self.check(what, count == 0, count)

    def bars(self, what, picture, count, look, expected):
        if what.startswith("every_sign"):
            return  # signs and figures are crowded into its bars
        seen = repeat_bars(picture, count, UPPER_DOT[look][count])
        self.check(f"{what}: the marks of repeat bars are apart", seen == expected,
                   f"{seen} of {expected}")  # fmt: skip

    def pdfs(self, tune, count):
        for look in ("plain", "engraved"):
            pdf = self.make(tune, "pdf", "--look", look)
            boxes = figures_of_pdf(pdf, 1)
            self.check(f"{pdf.name}: has figures", len(boxes) > 20, len(boxes))
            seen = {}
            for density in DENSITIES_OF_PDF[look]:
                for name, program in self.of_pdf.items():
                    what = f"{pdf.name}, {name}, {density} dpi"
                    picture = seen[name, density] = Picture(program(pdf, 1, density))
                    self.bars(what, picture, count, look, self.repeats(tune, "print-log"))
                    if look == "engraved" and (name, density) != COARSE:
                        self.engraved(what, picture, boxes, density, count)
            self.agree(pdf.name, {name: seen[name, 300] for name in self.of_pdf})

    def svgs(self, tune, count):
        boxes = figures_of_svg(self.make(tune, "svg", "--text"))
        for look in ("plain", "engraved"):
            svg = self.make(tune, "svg", "--look", look)
            seen = {}
            for name, program in self.of_svg.items():
                what = f"{svg.name}, {name}"
                picture = seen[name] = Picture(program(svg, 96))
                self.bars(what, picture, count, look, self.repeats(tune, "page-log"))
                if look == "engraved":
                    self.engraved(what, picture, boxes, 96, count)
            self.agree(svg.name, seen)

    def pngs(self, tune, count):
        boxes = figures_of_svg(self.make(tune, "svg", "--text"))
        for look in ("plain", "engraved"):
            for density in DENSITIES:
                png = self.make(tune, "png", "--look", look, "--dpi", str(density))
                picture = Picture(pgm_of_png(png))
                self.bars(png.name, picture, count, look, self.repeats(tune, "page-log"))
                if look == "engraved":
                    self.engraved(png.name, picture, boxes, density, count)

    def agree(self, what, pictures):
        (first, one), *others = pictures.items()
        for name, other in others:
            self.check(f"{what}: {first} and {name} agree in size",
                       (one.width, one.height) == (other.width, other.height))  # fmt: skip
            self.check_none(f"{what}: {name} lacks what {first} has", differences(one, other))
            self.check_none(f"{what}: {first} lacks what {name} has", differences(other, one))


def look_at(program, tune):
    """How many checks of a tune passed, and how many failed."""
    count = STRINGS[tune.suffix]
    with tempfile.TemporaryDirectory() as folder:
        looks = Looks(program, pathlib.Path(folder))
        looks.pdfs(tune, count)
        looks.svgs(tune, count)
        looks.pngs(tune, count)
    return looks.passed, looks.failed


def main():
    if len(sys.argv) not in (2, 3):
        raise SystemExit("usage: look_test.py QUILLON_EXPORT [NUMBER]")
    tunes = [*DENSE, *EXAMPLES]
    if len(sys.argv) == 3:
        number = int(sys.argv[2])
        tunes = [DENSE[number % len(DENSE)], EXAMPLES[number // len(DENSE) % len(EXAMPLES)]]
    with concurrent.futures.ProcessPoolExecutor() as processes:
        results = list(processes.map(look_at, [sys.argv[1]] * len(tunes), tunes))
    passed, failed = (sum(column) for column in zip(*results))
    print(f"{passed} passed, {failed} failed")
    sys.exit(failed > 0)


if __name__ == "__main__":
    main()
