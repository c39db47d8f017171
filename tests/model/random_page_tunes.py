#!/usr/bin/env python3
"""Random tune files that try the page layout.

    random_page_tunes.py --seed N --kind valid|odd [--out FILE]

A `valid` tune is one that the editor could have made. An `odd` one keeps to the file format, but
holds what only a hand-made file holds: unknown codes, stray bars, measures without a head, marks
in the middle of a text.
"""

import argparse
import random
import sys

from pages_tune import HEAD, MAX_RECORD, VIEW_TICKS, NoteRecord, RecordTable, show_measure

NOTE_CODES = (1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11)
REST_CODES = (92, 93, 94, 95, 96, 97, 98, 99)
SIGNATURES = ((4, 4), (3, 4), (2, 4), (5, 4), (12, 4), (6, 8), (9, 8), (12, 8), (3, 8), (7, 8),
              (2, 2), (3, 2), (12, 16))
SIGNS = ("81", "82", "83", "84", "85", "86", "87", "88", "89")
BARS = ("94", "95", "98", "99")
CHORDS = ("C", "G", "D7", "Am", "F#m7", "Bb", "Gsus4", "C/G", "Edim", "A7(no3)", "Cmaj7/E add 13")
REMARKS = ("/", "/To Coda", "/rit.", "Slowly", "Capo 2", "let ring", "/ last time, with feeling",
           "caf\xe9", " ", "Swing the eighths all the way through")
TITLES = ("", " ", "  ", "Cripple Creek", "The Long Road Home, with Variations",
          "Ma\xf1ana \\ back", "O", "A title that is longer than the page is wide " * 3)
CREDITS = ("", "", "Trad.", "Arr. by the player", "Words and music: nobody in particular, 1923")
FONTS = ("Arial", "Times New Roman", "Courier", "Bookman \xc9")


class TuneMaker:
    def __init__(self, seed, kind):
        self.random = random.Random(f"{kind} {seed}")
        self.odd = kind == "odd"
        self.records = []
        self.measure = 0
        pick = self.random
        self.strings = pick.choice((4, 5, 6))
        self.size = pick.choice((0, 1, 2, 5, 20, 60, 150, 400, 400))
        if pick.random() < 0.08:
            self.size = pick.randint(1000, MAX_RECORD)
        self.break_rate = pick.choice((0, 0, 0.05, 0.3, 1)) if pick.random() < 0.7 else 0.05
        self.furniture_rate = pick.choice((0, 0.05, 0.2, 0.6))
        self.chord_rate = pick.choice((0, 0, 0.05, 0.3))
        self.hand_rate = pick.choice((0, 0, 0.05, 0.4))
        self.tie_rate = pick.choice((0, 0.05, 0.25))
        self.triplet_rate = pick.choice((0, 0.1, 0.6))
        self.rest_rate = pick.choice((0, 0.1, 0.4))
        self.wide_rate = 0.0005 if pick.random() < 0.9 else 0.05
        self.signature = pick.choice(SIGNATURES)
        self.signature_rate = pick.choice((0, 0.1, 0.5))

    def chance(self, rate):
        return self.random.random() < rate

    def tune(self):
        header = self.header()
        while len(self.records) < self.size:
            self.add_measure()
        self.records = self.records[:MAX_RECORD]
        if self.odd:
            self.disturb()
        else:
            self.derive()
        return [header] + self.records

    # The header

    def header(self):
        pick = self.random
        header = NoteRecord()
        header.ChordText = pick.choice(TITLES)
        header.Slot[1], header.Slot[2] = pick.choice(CREDITS), pick.choice(CREDITS)
        if self.chance(0.4):
            header.Slot[3] = pick.choice(FONTS)
            header.NoteCode = pick.choice((8, 14, 20, 27, 36))
        if self.chance(0.5):
            header.Slot[6] = pick.choice(FONTS)
            header.Slot[5] = pick.choice(("8", "10", "12"))
        if self.chance(0.2):
            header.Slot[4] = "1"
        if self.odd and self.chance(0.2):
            header.Slot[5] = pick.choice(("9", "11.5", " 1 2", "10pt", "8.25", "1e1", "14", "0", "-10",
                                          "1e39", "1e999"))
        if self.odd and self.chance(0.1):
            header.NoteCode = pick.choice((1, 400))
        return header

    # Measures

    def add_measure(self):
        pick = self.random
        self.measure += 1
        if self.chance(self.signature_rate):
            self.signature = pick.choice(SIGNATURES)
        head = self.new_record(HEAD)
        self.furnish(head)
        self.records.append(head)
        if self.chance(0.02 if self.odd else 0.004):
            return                                          # an empty measure
        beats, unit = self.signature
        room = beats * (12 if unit == 4 else 6)
        if self.chance(self.wide_rate):
            room = pick.choice((100, 160, 260))
        if self.chance(0.03):
            room -= 6                                       # not full
        self.fill(room)

    def new_record(self, code):
        record = NoteRecord()
        record.Measure, record.NoteCode = self.measure, code
        record.Beats, record.BeatUnit = self.signature
        return record

    def furnish(self, head):
        pick = self.random
        if self.chance(self.furniture_rate):
            head.BarCode = pick.choice(BARS)
        if self.chance(self.furniture_rate):
            head.Slot[1] = pick.choice(SIGNS)
        if self.chance(self.furniture_rate):
            head.Slot[2] = pick.choice(("1.", "2.", "1., 3.", "2.-4. and the last time"))
        if self.chance(self.furniture_rate):
            head.Slot[3] = pick.choice(REMARKS)
        if self.measure > 1 and self.chance(self.break_rate):
            head.Slot[6] = "NL"

    def fill(self, room):
        """Notes and rests until `room` ticks are used up or no value fits."""
        pick = self.random
        favourite = pick.choice(NOTE_CODES)
        while room > 0:
            if self.chance(self.triplet_rate):
                codes = [pick.choice((1, 3, 6))] * 3
                if self.chance(0.3):
                    rest = {1: 94, 3: 96, 6: 98}[codes[0]]
                    codes[pick.randrange(3)] = rest
            elif self.chance(self.rest_rate):
                codes = [pick.choice(REST_CODES)]
            else:
                codes = [favourite if self.chance(0.5) else pick.choice(NOTE_CODES)]
            ticks = sum(VIEW_TICKS[code] for code in codes)
            if ticks > room:
                codes = [code for code in NOTE_CODES if VIEW_TICKS[code] <= room][-1:]
                ticks = sum(VIEW_TICKS[code] for code in codes)
            if not codes:
                return
            for code in codes:
                self.records.append(self.column(code))
            room -= ticks

    def column(self, code):
        pick = self.random
        column = self.new_record(code)
        if self.chance(self.chord_rate):
            column.ChordText = pick.choice(CHORDS)
        if code >= 90:
            return column
        for string in pick.sample(range(1, self.strings + 1), pick.choice((0, 1, 1, 1, 2, 3))):
            column.Slot[string] = self.cell()
        if self.chance(self.hand_rate):
            column.LeftHand = pick.choice("1234TLR\xb7")
        if self.chance(self.hand_rate):
            column.RightHand = pick.choice("pimatc")
        return column

    def cell(self):
        pick = self.random
        if self.chance(0.05):
            return pick.choice(("/", "x", "X", "(5)", "(12)"))
        text = str(pick.randint(0, 24))
        if self.chance(0.1):
            text += pick.choice("-=") + str(pick.randint(0, 15))
        if self.chance(0.05):
            text += pick.choice("<>")
        if self.chance(self.tie_rate):
            text += "^"
        return text

    # What the editor leaves in a tune, and what it does not

    def derive(self):
        """Every measure has been shown once, so the derived fields are those of the editor."""
        table = RecordTable(MAX_RECORD)
        for index, record in enumerate(self.records, 1):
            table[index] = record
        start = 1
        for index in range(2, len(self.records) + 2):
            if index == len(self.records) + 1 or table[index].NoteCode == HEAD:
                if start + 2 < MAX_RECORD - 80:
                    show_measure(table, start, index - 1)
                start = index

    def disturb(self):
        pick = self.random
        rate = pick.choice((0.005, 0.02, 0.1))
        if pick.random() < 0.5:
            changes = [pick.choice(DISTURBANCES)]
        else:
            changes = DISTURBANCES
        for record in self.records:
            record.BeamCode = pick.choice((0, 0, 0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10))
            record.Spacing = pick.randint(0, 6)
            if self.chance(rate):
                pick.choice(changes)(self, record)
        if self.chance(0.05):
            for record in self.records:
                record.Measure += 1                         # no measure 1: counts as empty
        elif self.chance(0.03):
            for record in self.records:
                record.Measure = 1                          # one measure, however long
        if self.chance(0.04):
            for record in self.records:
                if self.chance(0.9) and record.NoteCode != HEAD:
                    self.narrow_column(record)              # lines that fill all 80 columns
        if self.chance(0.2):
            self.end_in_heads()

    def end_in_heads(self):
        for _ in range(self.random.choice((1, 2))):
            if len(self.records) < MAX_RECORD:
                self.measure = self.records[-1].Measure + 1 if self.records else 1
                self.records.append(self.new_record(HEAD))

    def strange_code(self, record):
        record.NoteCode = self.random.choice((0, -1, 12, 50, 89, 90, 91, 100, 998, 1000, 999))

    def strange_cell(self, record):
        text = "".join(self.random.choice("0123456789-><xX^/()= ")
                       for _ in range(self.random.choice((1, 2, 3, 5, 12))))
        record.Slot[self.random.randint(1, 6)] = text

    def strange_bar(self, record):
        record.BarCode = self.random.choice(BARS + ("93", "96", " ", "0", "1", "9", "A", "999"))

    def strange_sign(self, record):
        record.Slot[1] = self.random.choice(("80", "8", " 87", "87", "x"))

    def strange_break(self, record):
        record.Slot[6] = self.random.choice(("NL", "NL", "nl", "NL ", "7"))

    def strange_beam(self, record):
        record.BeamCode = self.random.choice((11, 12, -1, 99))

    def strange_signature(self, record):
        record.Beats, record.BeatUnit = self.random.choice(((12, 8), (0, 0), (12, 12), (4, 4),
                                                            (100, 4), (3, 12), (-4, 4), (-12, 8),
                                                            (4, -4), (-100, -16)))

    def strange_hand(self, record):
        record.LeftHand = self.random.choice("\t\x01!\xff\"'")
        record.RightHand = self.random.choice("\t!\x80\\ ~")

    def long_chord(self, record):
        record.ChordText = self.random.choice((" ", "   ", "N.C. until the bell rings", "m" * 60))

    def cells_on_rest(self, record):
        record.NoteCode = self.random.choice(REST_CODES)
        record.Slot[self.random.randint(1, 6)] = self.cell()

    def head_to_note(self, record):
        if record.NoteCode == HEAD:
            record.NoteCode = 7

    def narrow_column(self, record):
        record.NoteCode, record.Spacing = 60, 0
        record.Slot = [""] * 7

    def write(self):
        return "".join(map(record_text, self.tune()))


DISTURBANCES = (
    TuneMaker.strange_code, TuneMaker.strange_cell, TuneMaker.strange_bar, TuneMaker.strange_sign,
    TuneMaker.strange_break, TuneMaker.strange_beam, TuneMaker.strange_signature,
    TuneMaker.strange_hand, TuneMaker.long_chord, TuneMaker.cells_on_rest, TuneMaker.head_to_note,
    TuneMaker.narrow_column,
)


def record_text(record):
    """The nine lines of a record."""
    def quote(text):
        return '"' + text.replace('"', "'") + '"'

    lines = [
        f"{record.Measure},{record.NoteCode},{record.XPos}",
        f"{record.Reserved},{record.BeatUnit},{record.Beats},{record.Spacing}",
        f"{record.BeamCode}," + ",".join(map(quote, (record.BarCode, record.LeftHand,
                                                     record.RightHand, record.ChordText))),
    ]
    lines += map(quote, record.Slot[1:])
    return "".join(line + "\r\n" for line in lines)


def tune_text(seed, kind):
    """The text of a random tune file, one character a byte."""
    return TuneMaker(seed, kind).write()


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--seed", type=int, required=True)
    parser.add_argument("--kind", choices=("valid", "odd"), default="valid")
    parser.add_argument("--out", help="a file; standard output if left out")
    options = parser.parse_args()
    data = tune_text(options.seed, options.kind).encode("latin-1")
    if options.out:
        with open(options.out, "wb") as file:
            file.write(data)
    else:
        sys.stdout.buffer.write(data)


if __name__ == "__main__":
    main()
