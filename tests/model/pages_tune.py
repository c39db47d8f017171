"""The tune as the page model sees it: number rules, records, the file reader and measure 1.

Part of the page model, which is written apart from the program so that the two can be compared.
Texts are single-byte: one Python character is one byte of the file.
"""

import re
import struct

MAX_RECORD = 1500
HEAD = 999

FAULT_TEXTS = {
    5: "invalid procedure call",
    6: "overflow",
    9: "subscript out of range",
    11: "division by zero",
    340: "control array element does not exist",
}


class RuntimeFault(Exception):
    """A run-time error of the program, by its number."""

    def __init__(self, number):
        super().__init__(f"run-time error {number}: {FAULT_TEXTS[number]}")
        self.number = number


class IncompatibleFile(Exception):
    """The tune file cannot be read to its end."""


# Numbers

def int16(value):
    """`value`, which must fit a signed 16-bit variable."""
    if not -32768 <= value <= 32767:
        raise RuntimeFault(6)
    return value


def single(value):
    """`value` as a single float holds it."""
    try:
        return struct.unpack("<f", struct.pack("<f", value))[0]
    except OverflowError:
        raise RuntimeFault(6) from None


def nearest(value):
    """The nearest integer, ties to the even one."""
    return round(value)


def int_div(dividend, divisor):
    """Integer division: both operands are rounded first, the quotient is cut toward zero."""
    dividend, divisor = nearest(dividend), nearest(divisor)
    if divisor == 0:
        raise RuntimeFault(11)
    quotient = abs(dividend) // abs(divisor)
    return quotient if (dividend < 0) == (divisor < 0) else -quotient


LEADING_NUMBER = re.compile(r"([+-]?(?:\d+\.?\d*|\.\d+))(?:[ed]([+-]?\d+))?", re.IGNORECASE)


def val(text):
    """The leading number of a text, blanks skipped everywhere; 0 if there is none."""
    found = LEADING_NUMBER.match(re.sub(r"[ \t\r\n]", "", text))
    if not found:
        return 0.0
    value = float(found.group(1) + "e" + (found.group(2) or "0"))
    if value in (float("inf"), float("-inf")):
        raise RuntimeFault(6)
    return value


# Records

class NoteRecord:
    """One record; `Slot[1]` to `Slot[6]` are the strings, `Slot[0]` is not used."""

    __slots__ = ("Measure", "NoteCode", "XPos", "Reserved", "BeatUnit", "Beats", "Spacing",
                 "BeamCode", "BarCode", "LeftHand", "RightHand", "ChordText", "Slot")

    def __init__(self):
        self.Measure = self.NoteCode = self.XPos = self.Reserved = 0
        self.BeatUnit = self.Beats = self.Spacing = self.BeamCode = 0
        self.BarCode = self.ChordText = ""
        self.LeftHand = self.RightHand = " "
        self.Slot = [""] * 7


class RecordTable:
    """Records 0 to `last`. Any other index is the subscript fault."""

    def __init__(self, last):
        self.records = [NoteRecord() for _ in range(last + 1)]

    def __getitem__(self, index):
        if not 0 <= index < len(self.records):
            raise RuntimeFault(9)
        return self.records[index]

    def __setitem__(self, index, record):
        if not 0 <= index < len(self.records):
            raise RuntimeFault(9)
        self.records[index] = record


class Tune:
    def __init__(self):
        self.NoteTable = RecordTable(MAX_RECORD)
        self.LastNote = 0
        self.LastMeas = 0


# The tune file

class ItemReader:
    """Takes a file apart into items; a line end counts like a comma."""

    def __init__(self, data):
        self.data = data
        self.at = 0

    def at_end(self):
        return self.at >= len(self.data)

    def number(self):
        """A 16-bit number; what is not numeric reads as 0."""
        value = nearest(val(self._bare_item()))
        if not -32768 <= value <= 32767:
            raise IncompatibleFile
        return value

    def text(self):
        if self.at_end():
            raise IncompatibleFile
        if self.data[self.at] != '"':
            return self._bare_item()
        close = self.data.find('"', self.at + 1)
        if close < 0:
            text, self.at = self.data[self.at + 1:], len(self.data)
            return text
        text, self.at = self.data[self.at + 1:close], close + 1
        if not self.at_end():
            self._bare_item()                       # whatever follows the closing quote
        return text

    def character(self):
        return (self.text() or " ")[0]

    def _bare_item(self):
        if self.at_end():
            raise IncompatibleFile
        end = self.at
        while end < len(self.data) and self.data[end] not in ",\r\n":
            end += 1
        item = self.data[self.at:end]
        self.at = end + (2 if self.data[end:end + 2] == "\r\n" else 1)
        return item


def read_record(items, record):
    record.Measure, record.NoteCode, record.XPos = (items.number() for _ in range(3))
    record.Reserved, record.BeatUnit, record.Beats, record.Spacing = (
        items.number() for _ in range(4))
    record.BeamCode = items.number()
    record.BarCode = items.text()
    record.LeftHand = items.character()
    record.RightHand = items.character()
    record.ChordText = items.text()
    for string in range(1, 7):
        record.Slot[string] = items.text()


def read_tune(data):
    """The tune of a file's text, before any measure has been shown."""
    tune = Tune()
    items = ItemReader(data)
    index = 0
    while not items.at_end():
        if index > MAX_RECORD:
            raise IncompatibleFile
        record = tune.NoteTable[index]
        read_record(items, record)
        tune.LastNote, tune.LastMeas = index, record.Measure
        index += 1
    return tune


def open_tune(data):
    """The tune of a file's text once measure 1 has been shown."""
    tune = read_tune(data)
    show_first_measure(tune)
    return tune


# Showing a measure: the fields that the measure view derives

VIEW_SPACING = {
    1: 2, 2: 2, 3: 2, 94: 2, 95: 2, 96: 2,
    4: 3, 5: 3, 6: 3, 97: 3, 98: 3,
    7: 4, 8: 4, 99: 4,
    9: 8, 92: 8, 10: 12, 11: 16, 93: 16,
}

VIEW_TICKS = {
    1: 2, 94: 2, 2: 3, 95: 3, 3: 4, 96: 4, 4: 6, 97: 6, 5: 9, 6: 8, 98: 8,
    7: 12, 99: 12, 8: 18, 9: 24, 92: 24, 10: 36, 11: 48, 93: 48,
}


def find_measure(tune, number):
    """First and last index of a measure, or None."""
    table = tune.NoteTable
    for head in range(1, MAX_RECORD + 1):
        if table[head].Measure == number:
            end = head
            while end < MAX_RECORD and table[end + 1].Measure == number:
                end += 1
            return head, end
    return None


def show_first_measure(tune):
    """A loaded tune brings up measure 1; without one it counts as empty."""
    found = find_measure(tune, 1) if tune.LastMeas != 0 else None
    if not found:
        tune.LastNote = tune.LastMeas = 0
        return
    show_measure(tune.NoteTable, *found)
    tune.NoteTable[found[0] + 1]                    # the cursor goes to its first note


def show_measure(table, head, end):
    """Derives BarCode of the head and Spacing, XPos, BeamCode and the "/" cells of the notes."""
    if table[head].BarCode < "1":
        table[head].BarCode = ""
    for index in range(head + 1, end + 1):
        derive_spacing(table[index])

    beams = BeamPass(table, table[head])
    x = 48
    for index in range(head + 1, end + 1):
        beams.step(index)
        note = table[index]
        beams.MeasFill = int16(beams.MeasFill + VIEW_TICKS.get(note.NoteCode, 0))
        note.XPos = x
        x = int16(x + 6 * note.Spacing)
    table[head].BeamCode = 0

    triplet_count = 0
    for index in range(head + 1, end + 1):
        gather_slash(table[index])
        triplet_count = view_triplet(table, index, triplet_count)


def derive_spacing(note):
    note.Spacing = VIEW_SPACING.get(note.NoteCode, note.Spacing)
    for text in [note.ChordText] + note.Slot[1:]:
        if len(text) >= note.Spacing:
            note.Spacing = int16(len(text) + 1)


def gather_slash(note):
    """A rhythm slash is on string 3, whichever string it was typed on."""
    for string in range(1, 7):
        if note.Slot[string] == "/":
            note.Slot[string] = ""
            note.Slot[3] = "/"


def view_triplet(table, index, count):
    """The triplet count after a note; opening a bracket asks the record two further on."""
    code = table[index].NoteCode
    if code in (1, 3, 6):
        if count == 0 and code != 6:
            table[index + 2]
        count += 1
    elif code in (94, 96, 98):
        if count > 0:
            count += 1
        else:
            if code != 98:
                table[index + 2]
            count = 1
    return 0 if count > 2 else count


class BeamPass:
    """Works out BeamCode note by note. `MeasFill` is the tick at which the next note starts."""

    def __init__(self, table, head):
        self.table = table
        self.CurBeatUnit = head.BeatUnit
        self.MeasCapacity = int16(head.Beats * (12 if head.BeatUnit == 4 else 6))
        self.MeasFill = 0
        self._clear_group()

    def _clear_group(self):
        self.BeamHalves = self.BeamNotes = self.BeamRun = self.BeamPrev = 0

    def step(self, index):
        note = self.table[index]
        if self.MeasFill == 0:
            self._clear_group()
        if self.BeamNotes == 3:
            self.BeamNotes = self.BeamHalves = 0
        if note.BeatUnit == 4 and note.Beats in (2, 4) and self.MeasFill * 2 == self.MeasCapacity:
            self._clear_group()
        if note.BeatUnit == 4:
            if self.MeasFill % 12 == 0:
                self._clear_group()
            self._simple_time(index)
            if self.BeamHalves == 4:
                self.table[index - 1].BeamCode = 5
                self.BeamHalves = 0
        else:
            if self.MeasFill % 18 == 0:
                self._clear_group()
            self._compound_time(index)

    def _grow(self, index):
        self.BeamRun += 1
        self.BeamPrev = index

    def _grow_and_count(self, index):
        self._grow(index)
        self.BeamNotes += 1

    def _end(self):
        self.BeamNotes = self.BeamRun = self.BeamPrev = 0

    def _simple_time(self, c):
        note, before = self.table[c], self.table[c - 1]
        last = self.table[self.BeamPrev]
        run = self.BeamRun
        code = note.NoteCode

        if code == 1:
            note.BeamCode = 2 if run else 1
            if run > 0:
                if self.MeasFill % 6 == 0:
                    note.BeamCode = 3
                if last.BeamCode == 1:
                    if last.NoteCode == 1:
                        last.BeamCode = 0
                    else:
                        last.BeamCode = 9
                        note.BeamCode = 3
                elif last.BeamCode == 3:
                    last.BeamCode = 5
                elif last.BeamCode == 4:
                    last.BeamCode = 0
                    note.BeamCode = 3
                if before.NoteCode == 94 and before.BeamCode == 3:
                    note.BeamCode = 3
            self._grow_and_count(c)
        elif code == 2:
            note.BeamCode = 2 if run else 1
            if run > 0:
                if last.BeamCode == 1:
                    last.BeamCode = 0
                elif last.BeamCode == 3:
                    last.BeamCode = 5
                elif last.BeamCode == 4:
                    note.BeamCode = 3
                    last.BeamCode = 0
                elif last.BeamCode == 5:
                    note.BeamCode = 3
                elif last.BeamCode == 8:
                    last.BeamCode = 7
                    note.BeamCode = 3
            self._grow(c)
        elif code == 3:
            if run:
                note.BeamCode = 5
                if last.BeamCode == 4:
                    last.BeamCode = 0
            else:
                note.BeamCode = 4
            self._grow_and_count(c)
        elif code == 4:
            if run:
                note.BeamCode = 5
                last.BeamCode = {1: 9, 4: 0, 8: 7}.get(last.BeamCode, last.BeamCode)
            else:
                note.BeamCode = 4
            self._grow(c)
            self.BeamHalves += 1
        elif code == 5:
            note.BeamCode = 6 if run else 8
            if run > 0 and last.BeamCode == 1:
                last.BeamCode = 9
            self._grow(c)
        elif code in (6, 7):
            note.BeamCode = 0
            self._end()
        elif code == 8:
            note.BeamCode = 7
            self._end()
        elif code == 94:
            self._sixteenth_rest(note, before)
        elif code == 96:
            self.BeamNotes += 1
        elif code == 99:
            self._end()

    def _compound_time(self, c):
        note, before = self.table[c], self.table[c - 1]
        last = self.table[self.BeamPrev]
        run = self.BeamRun
        code = note.NoteCode

        if code == 1:
            note.BeamCode = 2 if run else 1
            if run > 0:
                if self.MeasFill % 6 == 0:
                    note.BeamCode = 3
                if last.BeamCode == 1:
                    last.BeamCode = 0 if note.BeamCode != 3 else 9
                elif last.BeamCode == 3:
                    if last.NoteCode != 2:
                        last.BeamCode = 5
                elif last.BeamCode == 4:
                    last.BeamCode = 0
                    note.BeamCode = 3
                elif last.BeamCode in (5, 6):
                    note.BeamCode = 3
                elif last.BeamCode == 8:
                    last.BeamCode = 7
                    note.BeamCode = 3
                if before.NoteCode == 94 and before.BeamCode == 5:
                    note.BeamCode = 5
            if before.NoteCode == 94 and before.BeamCode == 3:
                note.BeamCode = 3
            self._grow_and_count(c)
        elif code == 2:
            note.BeamCode = 2 if run else 1
            if run > 0:
                if 8 < before.NoteCode < 100:
                    note.BeamCode = 3
                if last.BeamCode == 1:
                    last.BeamCode = 0 if note.BeamCode != 3 else 9
                elif last.BeamCode == 3:
                    last.BeamCode = 5 if note.BeamCode == 2 else 10
                elif last.BeamCode == 4:
                    last.BeamCode = 0
                    note.BeamCode = 3
                elif last.BeamCode == 5:
                    note.BeamCode = 3
                    if run > 2 and before.NoteCode == 4 and self.table[c - 2].BeamCode == 3:
                        self.table[c - 2].BeamCode = 10
                elif last.BeamCode == 6:
                    note.BeamCode = 3
                elif last.BeamCode == 8:
                    last.BeamCode = 7
                    note.BeamCode = 3
            self._grow(c)
        elif code == 3:
            if run:
                note.BeamCode = 5
                if last.BeamCode == 3:
                    if self.table[self.BeamPrev - 1].NoteCode != 5:
                        last.BeamCode = 9
                else:
                    last.BeamCode = {1: 9, 4: 0, 8: 7}.get(last.BeamCode, last.BeamCode)
            else:
                note.BeamCode = 4
            self._grow_and_count(c)
        elif code == 4:
            if run:
                note.BeamCode = 5
                if last.BeamCode == 3:
                    if before.NoteCode > 8:
                        last.BeamCode = 10
                else:
                    last.BeamCode = {1: 9, 4: 0, 8: 7}.get(last.BeamCode, last.BeamCode)
            else:
                note.BeamCode = 4
            self._grow(c)
        elif code == 5:
            note.BeamCode = 6 if run else 8
            if run > 0:
                last.BeamCode = {1: 9, 8: 7, 4: 0}.get(last.BeamCode, last.BeamCode)
            self._grow(c)
        elif code in (6, 7):
            note.BeamCode = 0
            self._end()
        elif code == 8:
            note.BeamCode = 7
            self._end()
        elif code == 94:
            self._sixteenth_rest(note, before)
        elif code == 96:
            self.BeamNotes += 1

    def _sixteenth_rest(self, note, before):
        self.BeamNotes += 1
        if self.BeamRun >= 1:
            if self.MeasFill % 6 == 0:
                note.BeamCode = 3
            elif before.NoteCode == 94 and before.BeamCode == 5:
                note.BeamCode = 3
