#!/usr/bin/env python3
"""Compares what quillon-export makes of ABC tunes with what the tunes say.

Each tune is turned into a MIDI file, whose notes must have the pitches, onsets and lengths of
abc_model.py, to a sixteenth of a quarter. The tune may be moved by octaves as a whole, and a tie
over a bar line may sound again. Random tunes come first, then all files of --tunes. The exit status
is 1 if anything differed.
"""

import argparse
import os
import subprocess
import sys
import tempfile
from fractions import Fraction

import abc_model
import midi_reader
import random_abc

TIME_LIMIT = 20  # seconds for one export
TOLERANCE = Fraction(1, 16)
TEMPO = 120  # its quarter has 120 ticks, in which every value of a tune is exact


def notes_of_midi(data):
    """(onset, pitch, length) of each note, in quarters."""
    notes, started, now = [], {}, 0
    for line in midi_reader.lines_of_file(data):
        words = line.split()
        if words[0] == "track":
            started, now = {}, 0
        if len(words) != 4 or words[1] == "tempo":
            continue
        delta, status, pitch, velocity = map(int, words)
        now += delta
        if status >> 4 != 9:
            continue
        if velocity:
            started[pitch] = now
        else:
            begin = started.pop(pitch)
            notes.append((Fraction(begin, TEMPO), pitch, Fraction(now - begin, TEMPO)))
    return sorted(notes)


def near(one, two):
    return abs(one - two) <= TOLERANCE


def take(note, shift, sounding):
    """Takes what sounds of a note out of `sounding`; false if it does not."""
    at, end = note.onset, note.onset + note.length
    while not near(at, end):
        found = [n for n in sounding if n[1] == note.pitch + shift and near(n[0], at)]
        if not found:
            return False
        sounding.remove(found[0])
        at = found[0][0] + found[0][2]
        if not near(at, end) and not any(near(at, cut) for cut in note.cuts):
            return False
    return True


def difference(wanted, sounding):
    """None, or the first note that is missing or too many."""
    if not wanted or not sounding:
        return None if not wanted and not sounding else "one of them is silent"
    shift = max(n[1] for n in sounding) - max(n.pitch for n in wanted)
    if shift % 12:
        return f"moved by {shift} semitones"
    for note in wanted:
        if not take(note, shift, sounding):
            return f"{float(note.onset)}: {note.pitch + shift} for {float(note.length)} is missing"
    return f"{float(sounding[0][0])}: {sounding[0][1]} is too many" if sounding else None


def compare(export, text, strings, folder):
    """None, or what differs."""
    tune, out = os.path.join(folder, "tune.abc"), os.path.join(folder, "tune.mid")
    with open(tune, "w", encoding="latin-1") as file:
        file.write(text)
    command = [export, tune, "--strings", str(strings), "--tempo", str(TEMPO), "-o", out]
    run = subprocess.run(command, capture_output=True, text=True, timeout=TIME_LIMIT, check=False)
    if run.returncode:
        return run.stderr.strip()
    with open(out, "rb") as file:
        found = difference(abc_model.notes_of(text), notes_of_midi(file.read()))
    return found and f"{found}\n{run.stderr}"


def tunes_of(folder):
    for name in sorted(os.listdir(folder)):
        with open(os.path.join(folder, name), encoding="latin-1") as file:
            yield name, file.read()


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("--export", required=True, help="the program")
    parser.add_argument("--from", dest="first", type=int, default=1, help="first seed")
    parser.add_argument("--count", type=int, default=100, help="number of random tunes")
    parser.add_argument("--tunes", help="a folder of ABC files")
    options = parser.parse_args()
    export = os.path.abspath(options.export)

    tunes = [(f"seed {seed}", random_abc.random_tune(seed))
             for seed in range(options.first, options.first + options.count)]
    if options.tunes:
        tunes += tunes_of(options.tunes)
    failed = 0
    with tempfile.TemporaryDirectory() as folder:
        for i, (name, text) in enumerate(tunes):
            for strings in [6, 5, 4] if not name.startswith("seed") else [4 + i % 3]:
                found = compare(export, text, strings, folder)
                if found:
                    failed += 1
                    print(f"FAILED: {name}, {strings} strings: {found}\n{text}")
    print(f"{len(tunes) - failed} passed, {failed} failed")
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
