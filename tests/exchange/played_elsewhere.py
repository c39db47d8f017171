#!/usr/bin/env python3
"""Random tunes, played by programs that are not ours.

    played_elsewhere.py --export QUILLON_EXPORT --form musicxml|abc|ly [--from SEED] [--count N]

Each tune is exported in the form, and another program makes a MIDI file of that: MuseScore 3, abc2midi
or LilyPond. Its notes must be those of our own MIDI file in onset, pitch and length, to a sixteenth of
a quarter. Only what a tune strikes again behind a bar line may be one tied note elsewhere, and slides
are taken out for MuseScore, which fills them with notes between. Tunes that cannot be played are passed
over, and counted. LilyPond must engrave each without a word. The exit status is 1 if anything differed.
"""

import os
import pathlib
import re
import subprocess
import sys
import tempfile
from concurrent import futures

import comparison
import played_notes
import random_forms

TEMPO = 120  # its quarter has 120 ticks, in which every value of a tune is exact


def export(options, tunes, form):
    """Exports the tunes that can be; the files are named like the tunes."""
    out = tunes[0].parent / form
    out.mkdir()
    command = [options.export, *tunes, "--tempo", str(TEMPO), "--format", form, "-o", f"{out}/"]
    subprocess.run(command, capture_output=True, check=False)
    return {file.stem: file for file in out.iterdir()}


def play_in_musescore(scores, folder):
    jobs = []
    for name, score in scores.items():
        text = score.read_text(encoding="utf-8")
        score.write_text(re.sub(r"<slide [^>]*/>", "", text), encoding="utf-8")
        jobs.append((score, folder / f"{name}.mid"))
    comparison.run_musescore(jobs, folder)


def play_in_abc2midi(scores, folder):
    """As written: without chords of its own, and without notes of a chord one behind the other."""
    for name, score in scores.items():
        text = score.read_text(encoding="utf-8")
        quiet = "K:C\n%%MIDI gchordoff\n%%MIDI chordattack 0\n"
        score.write_text(text.replace("K:C\n", quiet, 1), encoding="utf-8")
        subprocess.run(["abc2midi", score, "-o", folder / f"{name}.mid"], capture_output=True,
                       check=False)


def lilypond(folder, file):
    """What LilyPond has to say of a file."""
    return subprocess.run(["lilypond", "--loglevel=WARN", file], cwd=folder, check=False,
                          capture_output=True, text=True).stderr


def play_in_lilypond(scores, folder):
    """The scores for the ear alone, of all tunes in one file. The whole scores must be engraved
    without a word; the number of those that are not."""
    names = list(scores)
    book = ['\\version "2.24.1"']
    for name in names:
        sound = re.search(r"^sound = (\{.*?^\})", scores[name].read_text(encoding="utf-8"), re.M | re.S)
        book.append(f"\\score {{ \\new Staff {sound[1]} \\midi {{ }} }}")
    (folder / "book.ly").write_text("\n".join(book), encoding="utf-8")
    print(lilypond(folder, "book.ly"), end="")
    for number, name in enumerate(names):
        made = folder / (f"book-{number}.midi" if number else "book.midi")
        if made.exists():
            made.rename(folder / f"{name}.mid")
    with tempfile.TemporaryDirectory() as pages, futures.ThreadPoolExecutor(os.cpu_count()) as pool:
        said = list(pool.map(lilypond, [pages] * len(names), scores.values()))
    for name, words in zip(names, said):
        if words:
            print(f"{name}: {words}", flush=True)
    return sum(map(bool, said))


PLAYERS = {"musicxml": play_in_musescore, "abc": play_in_abc2midi, "ly": play_in_lilypond}


def measure_ends(tune, order):
    """Where measures end in the tune as it is played, in quarters."""
    lengths = {}
    lines = tune.read_bytes().decode("latin-1").split("\r\n")
    for i in range(0, len(lines) - 1, 9):
        measure, code = lines[i].split(",")[:2]
        ticks = random_forms.TICKS.get(int(code), 0)
        lengths[int(measure)] = lengths.get(int(measure), 0) + ticks
    ends, now = [], 0
    for measure in order:
        now += lengths[measure]
        ends.append(now / 12)
    return ends


def compare(options, tune, ours, theirs):
    """None, or what differs."""
    if theirs is None:
        return "it was not played at all"
    wanted, found = played_notes.without_unisons(
        played_notes.notes_of_midi(ours.read_bytes()),
        played_notes.notes_of_midi(theirs.read_bytes()))
    wrong = played_notes.difference(found, wanted)
    if not wrong:
        return None
    run = subprocess.run([options.export, "--order", tune], capture_output=True, text=True, check=True)
    ends = measure_ends(tune, map(int, run.stdout.split()))
    again = lambda at: any(played_notes.near(at, end) for end in ends)  # noqa: E731
    return played_notes.difference(found, wanted, may_strike_again=again)


def run_batch(options, seeds, folder):
    """(tunes played, failures) of these seeds."""
    tunes = []
    for seed in seeds:
        extension, data = random_forms.random_tune(seed)
        tunes.append(folder / f"tune{seed}.{extension}")
        tunes[-1].write_bytes(data)
    ours = export(options, tunes, "mid")
    scores = export(options, [tune for tune in tunes if tune.stem in ours], options.form)
    for name in set(ours) - set(scores):
        print(f"{name}: can be played, but not exported")
    played = folder / "played"
    played.mkdir()
    failures = PLAYERS[options.form](scores, played) or 0
    failures += len(set(ours) - set(scores))
    for tune in tunes:
        if tune.stem not in scores:
            continue
        theirs = played / f"{tune.stem}.mid"
        wrong = compare(options, tune, ours[tune.stem], theirs if theirs.exists() else None)
        if wrong:
            failures += 1
            print(f"{tune.stem}: {wrong}", flush=True)
            if options.keep:
                for file in (tune, scores[tune.stem], ours[tune.stem], theirs):
                    if file.exists():
                        place = pathlib.Path(options.keep) / f"{options.form}_{file.parent.name}_{file.name}"
                        place.write_bytes(file.read_bytes())
    return len(ours), failures


def main():
    parser = comparison.parser_for(__doc__)
    parser.add_argument("--form", required=True, choices=PLAYERS)
    parser.add_argument("--keep", help="folder for the files of failing tunes, dropped without it")
    options = parser.parse_args()
    played, failures = comparison.run_in_batches(options, run_batch)
    silent = options.count - played
    print(f"{played - failures} passed, {failures} failed, {silent} cannot be played")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
