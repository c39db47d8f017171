#!/usr/bin/env python3
"""Writes a random tune to standard output.

    random_tunes.py --seed N --kind valid|odd --ext gui|bjo|bss

A valid tune is one that the editor could have made, but for stale derived fields
(`Spacing`, `XPos`, `BeamCode`), which every redraw recomputes. An odd one has been
tampered with: in its records, and now and then in its text."""

import argparse
import random
import sys

from measure_model import TICKS, derived_spacing
from store_model import HEAD, NUMBER_FIELDS, NoteRecord, records_bytes

STRINGS_OF = {"gui": 6, "bjo": 5, "bss": 4}

SIGNATURES = ((4, 4), (3, 4), (2, 4), (5, 4), (6, 4), (6, 8), (3, 8), (9, 8), (12, 8))

# Runs of note codes, each filling whole multiples of a sixteenth
FIGURES = (
    (2,), (2, 2), (2, 2, 2, 2), (4,), (4, 4), (4, 2, 2), (2, 2, 4), (2, 4, 2), (5, 2), (2, 5),
    (7,), (7, 7), (8,), (8, 4), (4, 8), (9,), (10,), (11,), (1, 1, 1), (3, 3, 3), (6, 6, 6),
    (4, 1, 1, 1), (1, 1, 1, 4), (1, 1, 1, 1, 1, 1), (4, 4, 4), (5, 2, 4), (4, 2, 2, 4),
    (94, 1, 1), (1, 94, 1), (1, 1, 94), (96, 3, 3), (3, 96, 3), (98, 6, 6), (6, 98, 6),
    (95,), (97,), (99,), (92,), (93,), (4, 97), (97, 4), (2, 95, 2, 2), (99, 7), (4, 95, 2), (5, 95),
)

REMARKS = ("Intro", "/To Coda", "/", "To Coda", "/rit.", "Chorus (soft)", "Tune: D A D G A D")
CHORDS = ("G", "C", "Am", "D7", "F#m7", "Gmaj7", "Bb/F", "Csus4", "NC")
BRACKETS = ("1.", "2.", "1,2", "3.", "last")
TITLES = ("", " ", "Old Reel", "Cold Frosty Morning", "A\\B, or C", "Caf\xe9")


class TuneWriter:
    def __init__(self, rng, extension):
        self.rng = rng
        self.strings = STRINGS_OF[extension]
        self.records = []

    def chance(self, probability):
        return self.rng.random() < probability

    def valid(self):
        self.records = [self.header()]
        beats, unit = self.rng.choice(SIGNATURES)
        measures = self.rng.choice((0, 1, 1, 2, 3, 4, 5, 6, 8, 12, 20))
        for measure in range(1, measures + 1):
            if self.chance(0.15):
                beats, unit = self.rng.choice(SIGNATURES)
            capacity = beats * 12 if unit == 4 else beats * 6
            if measure == measures and self.chance(0.4):
                capacity = self.rng.randrange(3, capacity + 1)
            self.add_measure(measure, beats, unit, capacity)
        return self.records

    def header(self):
        header = NoteRecord()
        rng = self.rng
        header.ChordText = rng.choice(TITLES)
        header.Slot[1] = rng.choice(("", "Trad.", "Words: N.N."))
        header.Slot[2] = rng.choice(("", "arr. 2020"))
        if self.chance(0.3):
            header.NoteCode = rng.choice((12, 14, 20, 24))
            header.Slot[3] = rng.choice(("Arial", "Times New Roman"))
        if self.chance(0.3):
            header.Slot[5] = rng.choice(("8", "10", "12"))
            header.Slot[6] = rng.choice(("Arial", "Courier New", "Serif"))
        header.Slot[4] = rng.choice(("", "", "0", "1", "2"))
        return header

    def add_measure(self, measure, beats, unit, ticks):
        self.records.append(self.head(measure, beats, unit))
        x = 48
        for code in self.codes_filling(ticks):
            note = NoteRecord()
            note.Measure, note.NoteCode, note.Beats, note.BeatUnit = measure, code, beats, unit
            if code < 90:
                self.put_frets(note)
                if self.chance(0.1):
                    note.LeftHand = self.rng.choice("1234TPH")
                if self.chance(0.1):
                    note.RightHand = self.rng.choice("pimaT")
            if self.chance(0.12):
                note.ChordText = self.rng.choice(CHORDS)
            self.put_derived(note, x)
            x += note.Spacing * 6
            self.records.append(note)

    def codes_filling(self, ticks):
        codes = []
        while ticks >= 3:
            figure = self.rng.choice(FIGURES)
            length = sum(TICKS[code] for code in figure)
            if length <= ticks:
                codes += figure
                ticks -= length
        return codes

    def head(self, measure, beats, unit):
        head = NoteRecord()
        rng = self.rng
        head.Measure, head.NoteCode, head.Beats, head.BeatUnit = measure, HEAD, beats, unit
        if self.chance(0.25):
            head.BarCode = rng.choice(("94", "95", "98", "99"))
        if self.chance(0.2):
            head.Slot[1] = str(rng.randrange(81, 90))
        if self.chance(0.15):
            head.Slot[2] = rng.choice(BRACKETS)
        if self.chance(0.15):
            head.Slot[3] = rng.choice(REMARKS)
        if measure > 1 and self.chance(0.1):
            head.Slot[6] = "NL"
        return head

    def put_frets(self, note):
        for s in self.rng.sample(range(1, self.strings + 1), self.rng.choice((1, 1, 1, 1, 2, 2, 3))):
            note.Slot[s] = self.cell()

    def cell(self):
        rng = self.rng
        fret = str(rng.choice((0, 0, 1, 2, 3, 4, 5, 7, 9, 10, 12, 15)))
        shape = rng.random()
        if shape < 0.6:
            return fret
        if shape < 0.7:
            return fret + rng.choice("-=") + str(rng.randrange(0, 13))
        if shape < 0.8:
            return fret + "^"
        if shape < 0.9:
            return fret + rng.choice("<>")
        return rng.choice(("/", "x", "X", f"({fret})", fret + ">^", "-" + fret, "=" + fret))

    def put_derived(self, note, x):
        """Fresh, missing or stale values."""
        note.Spacing = derived_spacing(note)
        note.XPos = x
        if self.chance(0.1):
            note.Spacing = note.XPos = 0
        if self.chance(0.6):
            note.BeamCode = self.rng.randrange(0, 11)

    # Odd tunes

    def odd(self):
        self.valid()
        for _ in range(self.rng.randrange(1, 8)):
            if len(self.records) > 1:
                self.rng.choice(self.ODD_EDITS)(self, self.rng.randrange(1, len(self.records)))
        return self.records

    def odd_code(self, i):
        self.records[i].NoteCode = self.rng.choice((-3, 0, 12, 50, 90, 91, 100, 120, *range(1, 12), *range(92, 100)))

    def odd_number(self, i):
        name = self.rng.choice(NUMBER_FIELDS[2:])
        value = self.rng.choice((-40, -3, -1, 0, 1, 2, 3, 5, 7, 16, 40, 300))
        setattr(self.records[i], name, value)

    def odd_signature(self, i):
        record = self.head_of(i)
        record.Beats = self.rng.choice((-12, -2, -1, 0, 1, 3, 7, 13, 100))
        record.BeatUnit = self.rng.choice((-8, -4, 0, 2, 4, 8, 16, 32))

    def odd_bar(self, i):
        record = self.head_of(i)
        record.BarCode = self.rng.choice(("0", " ", "93", "1", "97", "100", "x", "-9", "099"))

    def odd_sign(self, i):
        record = self.head_of(i)
        record.Slot[1] = self.rng.choice(("80", "90", " 83", "Coda", "8"))

    def odd_cell(self, i):
        s = self.rng.randrange(1, 7)
        self.records[i].Slot[s] = self.rng.choice((
            "/", "/^", "^", "<", ">", "<^", "^<", "5>^", "5^>", " 7 ", " ", "  ", "5-", "-", "=", "5-7=9",
            "5=7-9", "12345678", "123456789012345678", "/5", "//", "[5]", "<5>", "5 <", " <5", "7^^", "x-x"))

    def odd_chord(self, i):
        self.records[i].ChordText = self.rng.choice((" ", "Abcdefghijklmnop", "C\x85\xff", "\t", "a\\b"))

    def odd_break(self, i):
        self.records[i].Slot[6] = self.rng.choice(("NL", "nl", "NL "))

    def odd_header(self, i):
        header = self.records[0]
        header.Slot[5] = self.rng.choice(("9", "14.5", "-3", "large", "0", "1e2"))
        if self.chance(0.3):
            header.Slot[5] = self.rng.choice(("1e39", "-1e39", "3.5e38", "1e999", "1d400"))
        header.NoteCode = self.rng.choice((0, -14, 11, 32767))
        header.Slot[4] = self.rng.choice(("", "-1", "1.5", "9", "x", "2"))

    def lose_record(self, i):
        del self.records[i]

    def double_record(self, i):
        copy = NoteRecord()
        copy.copy_from(self.records[i])
        self.records.insert(i, copy)

    def empty_record(self, i):
        self.records[i].Measure = 0

    def empty_measure(self, i):
        number = self.records[i].Measure
        self.records = [r for r in self.records if r.Measure != number or r.NoteCode == HEAD]

    def lose_measure(self, i):
        number = self.records[i].Measure
        if self.chance(0.3):
            self.records[1:] = [r for r in self.records[1:] if r.Measure != number]

    def renumber(self, i):
        self.records[i].Measure = self.rng.choice((1, 2, 3, -1, 7))

    def long_measure(self, i):
        for _ in range(self.rng.randrange(1, 10)):
            self.double_record(i)

    def huge_measure(self, i):
        if self.chance(0.2):
            for _ in range(self.rng.randrange(40, 110)):
                self.double_record(i)

    def head_of(self, i):
        """The head of record i's measure, if it has one."""
        return next((r for r in self.records[i::-1] if r.NoteCode == HEAD), self.records[i])

    ODD_EDITS = (
        odd_code, odd_code, odd_number, odd_number, odd_signature, odd_bar, odd_sign, odd_cell, odd_cell,
        odd_cell, odd_chord, odd_break, odd_header, lose_record, double_record, empty_record, empty_measure,
        lose_measure, renumber, long_measure, long_measure, huge_measure)

    def odd_bytes(self, data):
        """The text itself tampered with; about half of these cannot be loaded."""
        rng = self.rng
        at = rng.randrange(len(data))
        return rng.choice((
            lambda: data.replace(b"\r\n", b"\n"),
            lambda: data.replace(b"\r\n", b"\r"),
            lambda: data[:-2],
            lambda: data[:-3],
            lambda: data[:at],
            lambda: data + b"\r\n",
            lambda: data.replace(b'""', b"", 3),
            lambda: data.replace(b",0,", b',"7",', 2),
            lambda: data.replace(b",4,", b",4.5,", 1),
            lambda: data.replace(b",4,", b",3.5,", 1),
            lambda: data.replace(b",4,", b",1e1,", 1),
            lambda: data.replace(b",4,", b",40000,", 1),
            lambda: data.replace(b"0,0,0", rng.choice((b"32768,0,0", b"0,40000,0", b"0,0,-32769", b"7,-8,32767")), 1),
            lambda: data.replace(b'" "', b'"long"', 3),
            lambda: data.replace(b'"Trad."', b'"A "quoted" word"'),
            lambda: data.replace(b'"Trad."', b'"say "yes", then"'),
            lambda: data.replace(b'" "', b'"  "', 2),
            lambda: data.replace(b'"', b'"a\r\nb', 1) if rng.random() < 0.3 else data,
            lambda: b"",
        ))()


def tune_text(seed, kind, extension):
    rng = random.Random(f"tune {seed} {kind} {extension}")
    writer = TuneWriter(rng, extension)
    if kind == "valid":
        return records_bytes(writer.valid())
    data = records_bytes(writer.odd())
    return writer.odd_bytes(data) if writer.chance(0.2) else data


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--seed", type=int, required=True)
    parser.add_argument("--kind", choices=("valid", "odd"), default="valid")
    parser.add_argument("--ext", choices=tuple(STRINGS_OF), default="gui")
    options = parser.parse_args()
    sys.stdout.buffer.write(tune_text(options.seed, options.kind, options.ext))


if __name__ == "__main__":
    main()
