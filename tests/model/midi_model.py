#!/usr/bin/env python3
"""An independent model of the performance builder and its MIDI file.

Prints the events that `quillon-export TUNE -o out.mid` is expected to write:

    division 130
    track 0
    0 tempo 461538          delta, microseconds per quarter note
    track 1
    0 193 25 0              delta, status, data1, data2
    0 145 67 100

Track 0 is the tempo track, track N plays string N. A tune that cannot be
built prints `error: TEXT` instead, a second line with what is wrong in the
tune's own words where that is known, and the exit status is 1.

Written apart from the program, for differential testing: nothing here is
shared with it, and everything goes by plain reals, integers and lists.
"""

import argparse
import math
import os
import re
import sys
from dataclasses import dataclass, field

LAST_INDEX = 1500  # the note table's highest record
HEAD = 999         # note code of a measure's head record
LAST_TUNING = 50   # the tuning list's highest row

STRINGS_BY_EXTENSION = {"gui": 6, "bjo": 5, "bss": 4}
INSTRUMENT_DEFAULT = {6: 25, 5: 105, 4: 25}
TEMPO_DEFAULT = {6: 130, 5: 210, 4: 130}
TEMPO_RANGE = (30, 300)
CAPO_RANGE = (0, 12)

DEFAULT_TUNINGS = {
    6: [("Standard", [64, 59, 55, 50, 45, 40]),
        ("Dropped D", [64, 59, 55, 50, 45, 38]),
        ("Open D", [62, 57, 54, 50, 45, 38]),
        ("G Tuning", [64, 59, 55, 50, 43, 38])],
    5: [("G Tuning", [62, 59, 55, 50, 67]),
        ("C Tuning", [62, 59, 55, 48, 67]),
        ("D Tuning", [62, 57, 54, 50, 66])],
    4: [("Mandolin", [76, 69, 62, 55]),
        ("Bass", [43, 38, 33, 28]),
        ("Tenor Banjo", [69, 62, 55, 48]),
        ("Plectrum Banjo", [62, 59, 55, 48]),
        ("Ukulele", [71, 66, 62, 57]),
        ("Baritone Uke", [64, 59, 55, 50])],
}


# Failures


class BuildFailure(Exception):
    """The tune cannot be built; `detail` says more in the tune's own words."""

    def __init__(self, text, detail=""):
        super().__init__(text)
        self.text = text
        self.detail = detail


def overflow():
    return BuildFailure("run-time error 6: overflow")


def subscript_out_of_range(detail=""):
    return BuildFailure("run-time error 9: subscript out of range", detail)


def division_by_zero():
    return BuildFailure("run-time error 11: division by zero")


def incompatible_file():
    return BuildFailure("File is incompatible.")


def never_ending():
    return BuildFailure("The repeats and signs of this tune never come to an end.")


# Numbers

NUMBER = re.compile(r"([0-9]*\.?[0-9]*)([ed][+-]?[0-9]+)?", re.IGNORECASE)


def leading_number(text, signed=False):
    """The number that a text begins with, blanks left out everywhere; 0 without one.

    Cells and brackets are read without a sign, so that "-5" gives 0.
    """
    packed = re.sub(r"[ \t\r\n]", "", text)
    sign = 1
    if signed and packed[:1] in ("+", "-"):
        sign = -1 if packed[0] == "-" else 1
        packed = packed[1:]
    mantissa, exponent = NUMBER.match(packed).groups()
    if not any(char.isdigit() for char in mantissa):
        return 0.0
    value = float(mantissa + (exponent or "").lower().replace("d", "e"))
    if math.isinf(value):
        raise overflow()
    return sign * value


def to_int16(value):
    """Nearest integer, halves to even; a fault outside 16 bits."""
    nearest = round(value)
    if not -32768 <= nearest <= 32767:
        raise overflow()
    return nearest


def held(value, limits):
    """The value as a slider with these limits holds it."""
    return max(limits[0], min(limits[1], value))


# Tune files


class ItemReader:
    """Takes items one after the other; a line end counts like a comma."""

    def __init__(self, data):
        self.text = data.decode("latin-1")
        self.at = 0

    def at_end(self):
        return self.at >= len(self.text)

    def number(self):
        return to_int16(leading_number(self._to_separator(), signed=True))

    def string(self):
        if self.text[self.at:self.at + 1] != '"':
            return self._to_separator()
        begin = self.at + 1
        end = self.text.find('"', begin)
        if end < 0:  # the last quote of the file may be missing
            self.at = len(self.text)
            return self.text[begin:]
        self.at = end + 1
        if not self.at_end():
            self._to_separator()
        return self.text[begin:end]

    def _to_separator(self):
        if self.at_end():
            raise EOFError
        found = re.compile(r"([^,\r\n]*)(,|\r\n|\r|\n|\Z)").match(self.text, self.at)
        self.at = found.end()
        return found.group(1)


@dataclass
class Record:
    measure: int = 0
    code: int = 0
    bar: str = ""
    slots: list = field(default_factory=lambda: [""] * 7)  # slots[0] stays unused


class NoteTable:
    """Records 0 to 1500; any other index is the subscript fault."""

    def __init__(self):
        self.records = [Record() for _ in range(LAST_INDEX + 1)]

    def __getitem__(self, index):
        if not 0 <= index <= LAST_INDEX:
            raise subscript_out_of_range()
        return self.records[index]


@dataclass
class Tune:
    table: NoteTable
    last_note: int = 0


def read_record(items, record):
    record.measure, record.code, _x = (items.number() for _ in range(3))
    for _ in range(5):  # reserved, beat unit, beats, spacing, beam code
        items.number()
    record.bar = items.string()
    for _ in range(3):  # left hand, right hand, chord text
        items.string()
    for string in range(1, 7):
        record.slots[string] = items.string()


def load_tune(data):
    """The tune as opening its file leaves it, measure 1 shown once."""
    tune = Tune(NoteTable())
    items = ItemReader(data)
    index = 0
    try:
        while not items.at_end():
            read_record(items, tune.table[index])
            tune.last_note = index
            index += 1
    except (EOFError, BuildFailure):
        raise incompatible_file() from None
    show_first_measure(tune)
    return tune


def show_first_measure(tune):
    """What showing measure 1 does to the table, as far as it can be heard.

    A tune without a measure 1, or one that ends in a record of measure 0, is
    taken as empty. A rhythm slash moves to string 3.
    """
    table = tune.table
    head = next((i for i in range(1, LAST_INDEX + 1) if table[i].measure == 1), None)
    if table[tune.last_note].measure == 0 or head is None:
        tune.last_note = 0
        return
    index = head + 1
    while index <= LAST_INDEX and table[index].measure == 1:
        slots = table[index].slots
        for string in range(1, 7):
            if slots[string] == "/":
                slots[string] = ""
                slots[3] = "/"
        index += 1


# The MIDI form


def read_tuning_file(data, strings):
    """Rows of a name and as many pitches as there are strings."""
    items = ItemReader(data)
    rows = []
    while not items.at_end():
        if len(rows) > LAST_TUNING:
            raise subscript_out_of_range()
        rows.append((items.string(), [items.number() for _ in range(strings)]))
    return rows


def select_tuning(tune, tunings, asked=None):
    """The pitches of the tuning in force; its index is noted in the tune's header.

    `asked` is an index from outside that goes before the tune's own.
    """
    header = tune.table[0].slots
    wanted = leading_number(header[4], signed=True) if asked is None else asked
    index = round(wanted) if 0 <= wanted < len(tunings) else 0
    header[4] = str(index)
    return tunings[index][1]


# The performance


def note_ticks(code, n):
    """Ticks of a note code, n ticks to the quarter note."""
    return {1: n // 6, 2: n // 4, 3: n // 3, 4: n // 2,
            5: math.floor(n / 4 * 3), 6: math.floor(n / 3 * 2), 7: n,
            8: math.floor(n / 2 * 3), 9: 2 * n, 10: 3 * n, 11: 4 * n}.get(code, 0)


def rest_ticks(code, n):
    return {92: 2 * n, 93: 4 * n, 94: n // 6, 95: n // 4, 96: n // 3, 97: n // 2,
            98: math.floor(n / 3 * 2), 99: n}.get(code, 0)


def data_byte(value):
    return max(0, min(127, value))


def is_text(text, wanted):
    """Comparison without regard to case."""
    return text.lower() == wanted.lower()


def separator_position(cell):
    """Position from 1 of what parts a two-note cell, 0 if nothing does."""
    return cell.find("-") + 1 or cell.find("=") + 1


class StringPass:
    """One walk through the tune for one string; `events` is its track."""

    def __init__(self, tune, strings, string, open_pitch, beat_ticks, instrument):
        self.table = tune.table
        self.last_note = tune.last_note
        self.banjo_fifth = strings == 5 and string == 5
        self.string = string
        self.open_pitch = open_pitch
        self.beat_ticks = beat_ticks
        self.events = []
        self.write_event(192 + string, instrument, 0, 0)

        self.rest_ticks = 0
        self.note_ticks = 0
        self.velocity = 100

        self.at = 0  # the walking position
        self.repeat_start = 1
        self.segno_head = 1
        self.pass_number = 1
        self.ending_number = 1
        self.repeat_pending = False
        self.ds_pending = False
        self.dc_pending = False
        self.fine_pending = False
        self.coda_pending = False
        self.fine_mode = False
        self.coda_mode = False

    def write_event(self, status, data1, data2, delta):
        self.events.append((delta, status, data_byte(data1), data_byte(data2)))

    # Journey

    def journey_state(self):
        """Everything that the way through the tune depends on."""
        return (self.at, self.repeat_start, self.segno_head, self.pass_number,
                self.ending_number, self.repeat_pending, self.ds_pending, self.dc_pending,
                self.fine_pending, self.coda_pending, self.fine_mode, self.coda_mode)

    def walk(self):
        met = set()
        while self.at <= self.last_note:
            state = self.journey_state()
            if state in met:
                raise never_ending()
            met.add(state)

            if self.table[self.at].code == 0:
                self.at += 1
            if self.table[self.at].code == HEAD:
                if not self.take_head():
                    return
            self.take_record()
            self.at += 1
            if self.at > self.last_note:
                self.go_back_from_end()

    def go_back_from_end(self):
        if self.repeat_pending:
            self.pass_number = to_int16(self.pass_number + 1)
            self.at = self.repeat_start
            self.repeat_pending = False
        if self.at > self.last_note and self.ds_pending:
            self.at = self.repeat_start = self.segno_head
            self.ds_pending = False
        if self.at > self.last_note and self.dc_pending:
            self.at = self.repeat_start = 1
            self.dc_pending = False

    def take_head(self):
        """The head steps; false when the performance ends at this head."""
        if self.ds_pending:
            self.at = self.repeat_start = self.segno_head
            self.ds_pending = False
        if self.dc_pending:
            self.at = self.repeat_start = 1
            self.dc_pending = False
        if self.fine_pending:
            return False
        if self.coda_pending:
            self.skip_to_coda()
            self.coda_pending = False
        if self.repeat_pending:
            self.pass_number = to_int16(self.pass_number + 1)
            self.at = self.repeat_start
            self.repeat_pending = False

        if is_text(self.table[self.at].bar, "98") and self.at > self.repeat_start:
            self.repeat_start = self.at
            self.ending_number = self.pass_number = 1
        self.skip_played_endings()

        head = self.table[self.at]
        if is_text(head.bar, "99"):
            if self.pass_number == self.ending_number:
                self.repeat_pending = True
            else:
                self.pass_number = 1
        self.take_sign(head.slots[1])
        if is_text(head.slots[3], "/To Coda") and self.coda_mode:
            self.coda_pending = True
        self.at += 1
        return True

    def bracket(self):
        return leading_number(self.table[self.at].slots[2])

    def skip_played_endings(self):
        if not 0 < self.bracket() < self.pass_number:
            return
        while self.bracket() < self.pass_number:
            self.next_measure_head()
        self.pass_number = self.ending_number = to_int16(self.bracket())

    def take_sign(self, sign):
        if sign in ("88", "89", "85", "86"):
            if sign in ("88", "89"):
                self.ds_pending = True
            else:
                self.dc_pending = True
            if sign in ("88", "85"):
                self.coda_mode = True
            else:
                self.fine_mode = True
            self.ending_number = self.pass_number = 1
        elif sign == "87":
            self.segno_head = self.at
        elif sign == "83" and self.fine_mode:
            self.fine_pending = True

    def skip_to_coda(self):
        measure = self.table[self.at].measure
        index = self.at + 1
        while index <= LAST_INDEX:
            if self.table[index].slots[1] == "84" and self.table[index].code == HEAD:
                self.at = index
                return
            index += 1
        raise subscript_out_of_range(f"No Coda follows measure {measure}.")

    def next_measure_head(self):
        # A bracket read without its sign is never below 0, so any head will do.
        self.at += 1
        while self.table[self.at].code != HEAD:
            self.at += 1

    # Sound

    def take_record(self):
        record = self.table[self.at]
        if record.code > 90:
            self.rest_ticks += rest_ticks(record.code, self.beat_ticks)
        elif record.slots[self.string] == "":
            self.rest_ticks += note_ticks(record.code, self.beat_ticks)
        else:
            self.play_cell(record.slots[self.string], note_ticks(record.code, self.beat_ticks))

    def pitch_of(self, text):
        return to_int16(leading_number(text) + self.open_pitch)

    def play_cell(self, cell, ticks):
        note_status = 144 + self.string
        fret = leading_number(cell)
        tied = slur = False
        if "^" in cell:
            tied = fret == leading_number(self.table[self.at + 1].slots[self.string])
            slur = not tied
        separator = separator_position(cell)

        pitch = self.pitch_of(cell)
        if self.banjo_fifth and fret > 5:
            pitch -= 5
        if not tied and pitch > 0:
            self.write_event(note_status, pitch, self.velocity, self.rest_ticks)
            self.rest_ticks = 0
        self.note_ticks += ticks
        if 1 <= separator < len(cell):
            self.note_ticks = round(self.note_ticks / 2)
            self.write_event(note_status, pitch, 0, self.note_ticks)
            pitch = self.pitch_of(cell[separator:])
            self.write_event(note_status, pitch, math.floor(self.velocity / 3 * 2), 0)
            self.rest_ticks = 0
        if not tied:
            if pitch > 0:
                self.write_event(note_status, pitch, 0, self.note_ticks)
            self.note_ticks = 0
        self.velocity = self.velocity // 2 if slur else 100


def build(tune, strings, tempo, pitches, capo, instrument):
    """The file as its division, tempo value and one event list for each string."""
    open_pitches = [to_int16(capo + pitch) for pitch in pitches]
    if tempo == 0:
        raise division_by_zero()
    tracks = []
    for string in range(1, strings + 1):
        string_pass = StringPass(tune, strings, string, open_pitches[string - 1],
                                 tempo, instrument)
        string_pass.walk()
        tracks.append(string_pass.events)
    return tempo, 60000000 // tempo, tracks


def lines_of(division, tempo_value, tracks):
    yield f"division {division}"
    yield "track 0"
    yield f"0 tempo {tempo_value}"
    for number, events in enumerate(tracks, start=1):
        yield f"track {number}"
        for event in events:
            yield " ".join(map(str, event))


# The command


def option_parser():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("tune")
    parser.add_argument("--strings", type=int, choices=(4, 5, 6))
    parser.add_argument("--tempo", type=int)
    parser.add_argument("--tuning", type=int)
    parser.add_argument("--capo", type=int, default=0)
    parser.add_argument("--instrument", type=int)
    parser.add_argument("--tuning-file")
    return parser


def expected_lines(arguments):
    """The expected lines for these command-line arguments; BuildFailure if it cannot be built."""
    options = option_parser().parse_args(arguments)
    extension = os.path.splitext(options.tune)[1][1:]
    strings = options.strings or STRINGS_BY_EXTENSION.get(extension, 6)
    tempo = TEMPO_DEFAULT[strings] if options.tempo is None else options.tempo
    instrument = INSTRUMENT_DEFAULT[strings] if options.instrument is None else options.instrument

    with open(options.tune, "rb") as file:
        tune = load_tune(file.read())
    tunings = DEFAULT_TUNINGS[strings]
    if options.tuning_file:
        with open(options.tuning_file, "rb") as file:
            tunings = read_tuning_file(file.read(), strings)
    pitches = select_tuning(tune, tunings, options.tuning)
    return list(lines_of(*build(tune, strings, held(tempo, TEMPO_RANGE), pitches,
                                held(options.capo, CAPO_RANGE), instrument)))


def main():
    try:
        print("\n".join(expected_lines(sys.argv[1:])))
    except BuildFailure as failure:
        print(f"error: {failure.text}")
        if failure.detail:
            print(failure.detail)
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())
