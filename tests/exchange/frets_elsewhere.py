#!/usr/bin/env python3
"""What becomes of strings and frets on a trip through MusicXML: through MuseScore 3, and through ours.

    frets_elsewhere.py --export QUILLON_EXPORT [--from SEED] [--count N]

Random tunes, and the examples, are written as MusicXML. Both programs read these documents and write them
again. A note is moved if its string or fret is another one afterwards. The exit status is 1 if ours moved
any.
"""

import pathlib
import subprocess
import sys
import tempfile
import xml.etree.ElementTree

import comparison
import random_forms

EXAMPLES = pathlib.Path(__file__).resolve().parent.parent.parent / "examples"
STRINGS = {extension: strings for strings, extension in random_forms.tunes.EXTENSIONS.items()}


def chords_of(path):
    """The places of the notes that begin together, (string, fret) each, in order."""
    chords = []
    for note in xml.etree.ElementTree.parse(path).iter("note"):
        if note.find("rest") is not None:
            continue
        if note.find("chord") is None:
            chords.append([])
        technical = note.find("notations/technical")
        place = [] if technical is None else [technical.findtext(n) for n in ("string", "fret")]
        chords[-1].append(tuple(place))
    return [sorted(chord) for chord in chords]


def moved(before, after):
    """How many of the notes stand elsewhere afterwards."""
    if len(before) != len(after):
        return sum(map(len, before))
    return sum(len(one) - sum(place in two for place in one) for one, two in zip(before, after))


def convert(options, scores, folder):
    """The documents as ours and as MuseScore write them anew."""
    ours, theirs = folder / "ours", folder / "theirs"
    ours.mkdir()
    theirs.mkdir()
    jobs = []
    for score in scores:
        extension = score.stem.split("_")[0]
        tune = folder / f"{score.stem}.{extension}"
        subprocess.run([options.export, score, "--strings", str(STRINGS[extension]), "-o", tune],
                       check=True, capture_output=True)
        subprocess.run([options.export, tune, "-o", ours / score.name], check=True,
                       capture_output=True)
        jobs.append((score, theirs / score.name))
    comparison.run_musescore(jobs, folder)
    return ours, theirs


def written(options, folder):
    """The tunes as MusicXML."""
    tunes = [(path.stem, path.suffix[1:], path.read_bytes()) for path in sorted(EXAMPLES.iterdir())
             if path.suffix[1:] in STRINGS]
    for seed in comparison.seeds_of(options):
        tunes.append((f"tune{seed}", *random_forms.random_tune(seed)))
    for name, extension, data in tunes:
        tune, score = folder / f"in.{extension}", folder / f"{extension}_{name}.musicxml"
        tune.write_bytes(data)
        subprocess.run([options.export, tune, "-o", score], capture_output=True, check=False)
        if score.exists():
            yield score


def main():
    options = comparison.parser_for(__doc__).parse_args()
    sums = {}  # by kind of tune: notes, moved by ours, moved by MuseScore
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        scores = list(written(options, folder))
        ours, theirs = convert(options, scores, folder)
        for score in scores:
            kind = score.stem.split("_")[0] + (" random" if "_tune" in score.stem else " example")
            before = chords_of(score)
            sum_of_kind = sums.setdefault(kind, [0, 0, 0])
            sum_of_kind[0] += sum(map(len, before))
            sum_of_kind[1] += moved(before, chords_of(ours / score.name))
            sum_of_kind[2] += moved(before, chords_of(theirs / score.name))
    for kind, (notes, by_us, by_them) in sorted(sums.items()):
        print(f"{kind}: {notes} notes, moved by Quillon {by_us}, by MuseScore {by_them}")
    return 1 if any(by_us for _, by_us, _ in sums.values()) else 0


if __name__ == "__main__":
    sys.exit(main())
