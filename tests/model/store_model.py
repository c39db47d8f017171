"""The note table, the nine-line record text, and the files that hold it.

Texts are `str` with one character per byte (Latin-1 at the boundaries), so that lengths
count bytes of the single-byte code page."""

import os

from number_rules import RunTimeFault, rounded16, val

TABLE_END = 1500
HEAD = 999

NUMBER_FIELDS = ("Measure", "NoteCode", "XPos", "Reserved", "BeatUnit", "Beats", "Spacing", "BeamCode")
STRINGS = range(1, 7)


class NoteRecord:
    """One record. `Slot` has indexes 1 to 6; index 0 is never used."""

    __slots__ = NUMBER_FIELDS + ("BarCode", "LeftHand", "RightHand", "ChordText", "Slot")

    def __init__(self):
        self.clear()

    def clear(self):
        self.Measure = self.NoteCode = self.XPos = self.Reserved = 0
        self.BeatUnit = self.Beats = self.Spacing = self.BeamCode = 0
        self.BarCode = self.ChordText = ""
        self.LeftHand = self.RightHand = " "
        self.Slot = ["", "", "", "", "", "", ""]

    def copy_from(self, other):
        for name in NUMBER_FIELDS:
            setattr(self, name, getattr(other, name))
        self.BarCode = other.BarCode
        self.LeftHand = other.LeftHand
        self.RightHand = other.RightHand
        self.ChordText = other.ChordText
        self.Slot = list(other.Slot)

    def is_clear(self):
        return (
            self.Measure == 0
            and not any(getattr(self, name) for name in NUMBER_FIELDS)
            and not (self.BarCode or self.ChordText or any(self.Slot))
            and self.LeftHand == self.RightHand == " "
        )

    def slot(self, s):
        check_string(s)
        return self.Slot[s]

    def set_slot(self, s, text):
        check_string(s)
        self.Slot[s] = text

    def highest_filled_slot(self):
        """The highest string with a text, 0 if there is none."""
        return max((s for s in STRINGS if self.Slot[s]), default=0)


def check_string(s):
    if not 1 <= s <= 6:
        raise RunTimeFault(9)


class NoteTable:
    """Records 0 to 1500. An index outside is the subscript fault."""

    def __init__(self):
        self.records = [NoteRecord() for _ in range(TABLE_END + 1)]

    def __getitem__(self, index):
        if 0 <= index <= TABLE_END:
            return self.records[index]
        raise RunTimeFault(9)

    def clear(self, first=0, last=TABLE_END):
        for index in range(first, last + 1):
            self[index].clear()


class ItemReader:
    """Reads comma and line separated items. Running out of items is fault 62."""

    def __init__(self, data):
        self.text = data.decode("latin-1")
        self.at = 0

    def at_end(self):
        return self.at >= len(self.text)

    def number(self):
        return rounded16(val(self._to_separator()))

    def string(self):
        if self.at_end():
            raise RunTimeFault(62)
        start = self.at
        while start < len(self.text) and self.text[start] in " \t":
            start += 1
        if self.text[start : start + 1] != '"':
            self.at = start
            return "" if self.at_end() else self._to_separator()
        closing = self.text.find('"', start + 1)
        if closing < 0:
            self.at = len(self.text)
            return self.text[start + 1 :]
        item = self.text[start + 1 : closing]
        self.at = closing + 1
        if not self.at_end():
            self._to_separator()
        return item

    def _to_separator(self):
        """The text up to the next comma or line end, which is consumed."""
        if self.at_end():
            raise RunTimeFault(62)
        start = end = self.at
        while end < len(self.text) and self.text[end] not in ",\r\n":
            end += 1
        self.at = end + (2 if self.text[end : end + 2] == "\r\n" else 1)
        return self.text[start:end]


def one_character(text):
    return text[:1] or " "


def read_record(reader, record):
    record.Measure = reader.number()
    record.NoteCode = reader.number()
    record.XPos = reader.number()
    record.Reserved = reader.number()
    record.BeatUnit = reader.number()
    record.Beats = reader.number()
    record.Spacing = reader.number()
    record.BeamCode = reader.number()
    record.BarCode = reader.string()
    record.LeftHand = one_character(reader.string())
    record.RightHand = one_character(reader.string())
    record.ChordText = reader.string()
    for s in STRINGS:
        record.Slot[s] = reader.string()


def record_text(record):
    """A record as its nine lines."""
    r = record
    return (
        f"{r.Measure},{r.NoteCode},{r.XPos}\r\n"
        f"{r.Reserved},{r.BeatUnit},{r.Beats},{r.Spacing}\r\n"
        f'{r.BeamCode},"{r.BarCode}","{r.LeftHand}","{r.RightHand}","{r.ChordText}"\r\n'
        + "".join(f'"{r.Slot[s]}"\r\n' for s in STRINGS)
    )


def records_bytes(records):
    return "".join(record_text(record) for record in records).encode("latin-1")


def tune_bytes(table, last_note):
    """A tune file: the header, then every record of 1..last_note that is in use."""
    used = [table[0]] + [table[i] for i in range(1, last_note + 1) if table[i].Measure > 0]
    return records_bytes(used)


class DiskFiles:
    """Files of a folder, by path relative to it."""

    def __init__(self, folder="."):
        self.folder = folder

    def read(self, name):
        try:
            with open(os.path.join(self.folder, name), "rb") as file:
                return file.read()
        except OSError:
            raise RunTimeFault(53) from None

    def write(self, name, data):
        try:
            with open(os.path.join(self.folder, name), "wb") as file:
                file.write(data)
        except OSError:
            raise RunTimeFault(75) from None

    def delete(self, name):
        os.remove(os.path.join(self.folder, name))


class MemoryFiles:
    """The same for tests: one flat folder in memory, so a path with a slash fails."""

    def __init__(self, contents=()):
        self.contents = dict(contents)

    def read(self, name):
        if name not in self.contents:
            raise RunTimeFault(53)
        return self.contents[name]

    def write(self, name, data):
        if not name or "/" in name:
            raise RunTimeFault(75)
        self.contents[name] = data

    def delete(self, name):
        del self.contents[name]


TUNING_FILES = {6: "Strings6.tun", 5: "Strings5.tun", 4: "Strings4.tun"}

DEFAULT_TUNINGS = {
    6: (
        ("Standard", 64, 59, 55, 50, 45, 40),
        ("Dropped D", 64, 59, 55, 50, 45, 38),
        ("Open D", 62, 57, 54, 50, 45, 38),
        ("G Tuning", 64, 59, 55, 50, 43, 38),
    ),
    5: (
        ("G Tuning", 62, 59, 55, 50, 67),
        ("C Tuning", 62, 59, 55, 48, 67),
        ("D Tuning", 62, 57, 54, 50, 66),
    ),
    4: (
        ("Mandolin", 76, 69, 62, 55),
        ("Bass", 43, 38, 33, 28),
        ("Tenor Banjo", 69, 62, 55, 48),
        ("Plectrum Banjo", 62, 59, 55, 48),
        ("Ukulele", 71, 66, 62, 57),
        ("Baritone Uke", 64, 59, 55, 50),
    ),
}


def default_tunings_bytes(strings):
    rows = (f'"{name}",' + ",".join(map(str, pitches)) for name, *pitches in DEFAULT_TUNINGS[strings])
    return "".join(row + "\r\n" for row in rows).encode("latin-1")


def load_active_tuning(files, strings):
    """The name and six numbers at the start of the mode's tuning file.

    It reads six numbers for every instrument, on across line ends; a file that
    cannot be read is replaced by the default rows."""
    name = TUNING_FILES[strings]
    while True:
        try:
            reader = ItemReader(files.read(name))
            return reader.string(), [reader.number() for _ in range(6)]
        except RunTimeFault:
            files.write(name, default_tunings_bytes(strings))
