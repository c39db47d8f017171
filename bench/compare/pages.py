#!/usr/bin/env python3
"""The first page of a tune as Quillon, LilyPond and MuseScore engrave it, in one picture.

    bench/compare/pages.py QUILLON_EXPORT TUNE PICTURE.png [DENSITY]

The others are given what quillon-export writes for them. Programs that are not installed are left
out, and named. Needs ImageMagick.
"""

import os
import pathlib
import shutil
import subprocess
import sys
import tempfile


def run(*command):
    environment = {**os.environ, "QT_QPA_PLATFORM": "offscreen"}
    subprocess.run(command, check=True, capture_output=True, env=environment)


def first_page(folder, stem):
    """Pages are numbered in different ways, and only if there are several."""
    return sorted(folder.glob(f"{stem}*.png"), key=lambda path: (len(path.name), path.name))[0]


def quillon(look):
    def make(export, tune, folder, density):
        run(export, tune, "--look", look, "--dpi", density, "-o", folder / f"{look}.png")
        return first_page(folder, look)

    return make


def lilypond(export, tune, folder, density):
    run(export, tune, "-o", folder / "lilypond.ly")
    run("lilypond", "--png", f"-dresolution={density}", "-o", folder / "lilypond",
        folder / "lilypond.ly")  # fmt: skip
    return first_page(folder, "lilypond")


def musescore(export, tune, folder, density):
    run(export, tune, "-o", folder / "music.musicxml")
    program = shutil.which("mscore3") or shutil.which("musescore3")
    run(program, "-r", density, "-o", folder / "musescore.png", folder / "music.musicxml")
    return first_page(folder, "musescore")


ENGRAVERS = [
    ("Quillon, engraved", None, quillon("engraved")),
    ("Quillon, plain", None, quillon("plain")),
    ("LilyPond", "lilypond", lilypond),
    ("MuseScore", "mscore3", musescore),
]


def main():
    export, tune, picture = (pathlib.Path(argument).resolve() for argument in sys.argv[1:4])
    density = sys.argv[4] if len(sys.argv) > 4 else "110"
    pages = []
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        for title, needs, make in ENGRAVERS:
            if needs and not shutil.which(needs):
                print(f"left out: {needs} is not installed")
                continue
            pages += ["-label", title, make(export, tune, folder, density)]
        run("montage", "-background", "white", "-pointsize", "20", "-tile", "x1",
            "-geometry", "+10+10", *pages, picture)  # fmt: skip


main()
