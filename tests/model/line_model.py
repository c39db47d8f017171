"""How a refresh of the pages cuts the tune into lines, as far as it can stop the
editor: a measure too wide for a line, or a run-time fault on the way."""

from number_rules import RunTimeFault, int16
from store_model import HEAD

LINE_WIDTH = 12240 - 800 - 400
LINE_CAPACITY = LINE_WIDTH // 100
COLUMNS = 80

COLUMN_WIDTHS = {HEAD: 2, 1: 2, 2: 2, 3: 2, 4: 2, 5: 2, 6: 2, 7: 3, 8: 3, 9: 5, 10: 8, 11: 12, 92: 5,
                 93: 12, 94: 3, 95: 3, 96: 3, 97: 3, 98: 3, 99: 3}


class Column:
    """What a line keeps of a record: the head of the measure, its width and bar."""

    __slots__ = ("Measure", "NoteCode", "Beats", "BeatUnit", "Spacing", "BarCode", "Reserved")

    def __init__(self, record=None):
        self.Measure = record.Measure if record else 0
        self.NoteCode = record.NoteCode if record else 0
        self.Beats = record.Beats if record else 0
        self.BeatUnit = record.BeatUnit if record else 0
        self.BarCode = record.BarCode if record else ""
        self.Spacing = column_spacing(record) if record else 0
        self.Reserved = 0


def column_spacing(record):
    spacing = COLUMN_WIDTHS.get(record.NoteCode, record.Spacing)
    if record.NoteCode != HEAD:
        for text in record.Slot[1:]:
            if text and len(text) >= spacing:
                spacing = int16(len(text) + 1)
    if len(record.ChordText) >= spacing:
        spacing = int16(len(record.ChordText) + 1)
    return spacing


def too_wide_measure(table, last_note):
    """The number of the measure that no line can hold, None if the run comes through."""
    signature = Column()
    i = 1
    while i < last_note:
        taken = take_line(table, last_note, i, signature)
        if taken == 0:
            return table[i].Measure
        i += taken
        signature.Beats, signature.BeatUnit = table[i - 1].Beats, table[i - 1].BeatUnit
    return None


def take_line(table, last_note, first, signature):
    """How many records from `first` on make one line; 0 if not one measure fits."""
    slots = [signature] + [Column() for _ in range(COLUMNS)]
    k, i = 0, first
    while i < last_note + 1 and k < COLUMNS:
        k += 1
        slots[k] = Column(table[i])
        i += 1
        if i <= last_note and table[i].Slot[6] == "NL":
            break
    if k == COLUMNS:
        while k > 0 and slots[k].Measure == slots[k - 1].Measure:
            k -= 1
        k -= 1
    if k <= 0:
        return 0
    for n in range(1, k):
        column, before = slots[n], slots[n - 1]
        if (column.Beats, column.BeatUnit) != (before.Beats, before.BeatUnit):
            column.Spacing = int16(column.Spacing + (2 if column.BarCode == "98" else 1))
    move_bars(slots, k)
    if slots[k].NoteCode == HEAD:
        k -= 1
    for n in range(1, k + 1):
        slots[n].Reserved = int16(slots[n - 1].Reserved + slots[n].Spacing)
    while k > 0 and slots[k].Reserved > LINE_CAPACITY:
        k -= 1
    if k < last_note:
        while k > 0 and slots[k].Measure == slots[k + 1].Measure:
            k -= 1
    if k > 0:
        spread(slots, k)
    return k


def move_bars(slots, k):
    for n in range(1, k + 1):
        column = slots[n]
        bar = column.BarCode
        if column.NoteCode == HEAD and bar in ("94", "99"):
            j = n
            while j < 79 and slots[j].Measure == slots[j + 1].Measure:
                j += 1
            column.BarCode = ""
            slots[j].BarCode = bar
            slots[j].Spacing = int16(slots[j].Spacing + 1)
        if bar in ("98", "95"):
            column.Spacing = int16(column.Spacing + 1)


def spread(slots, k):
    last = slots[k]
    if last.Spacing < 4:
        last.Reserved = int16(last.Reserved + 4 - last.Spacing)
        last.Spacing = 4
    if last.Reserved == 0:
        raise RunTimeFault(11)
    unit = min(int(LINE_WIDTH / last.Reserved), 150)
    x = 520
    for n in range(2, k + 1):
        x = int16(x + unit * slots[n - 1].Spacing)
