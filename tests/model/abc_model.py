#!/usr/bin/env python3
"""What an ABC tune sounds like: an independent reading, for comparison with quillon-export.

    abc_model.py FILE       prints onset, pitch and length of each note, in quarters

The tune is read into bars, the bars into sections, and a section is a body with endings. A note
that is tied is one note; `cuts` are the moments where the tie crosses a bar line.
"""

import collections
import re
import sys
from fractions import Fraction

Note = collections.namedtuple("Note", "onset pitch length cuts")

SCALE = {"C": 0, "D": 2, "E": 4, "F": 5, "G": 7, "A": 9, "B": 11}
SHARPS = "FCGDAEB"
TONICS = {name: i - 1 for i, name in enumerate("FCGDAEB")}
MODES = {"": 0, "maj": 0, "ion": 0, "m": -3, "min": -3, "aeo": -3, "mix": -1, "dor": -2, "phr": -4,
         "lyd": 1, "loc": -5}
ACCIDENTALS = {"^": 1, "^^": 2, "_": -1, "__": -2, "=": 0}

TOKEN = re.compile(
    r"""(?P<field>\[[A-Za-z]:[^]]*\])
      | (?P<text>"[^"]*"|![^!\s|]*!|\{[^}]*\})
      | (?P<bar>:*\[?\|[|:\]]*|::+)
      | (?P<ending>\[?\d[\d,-]*)
      | (?P<tuplet>\(\d+(?::\d*)?(?::\d*)?)
      | (?P<open>\[)
      | (?P<close>\](?P<outer>\d*/*\d*))
      | (?P<note>(?P<accidental>\^\^?|__?|=)?(?P<letter>[A-Ga-g])(?P<octave>[',]*)
        (?P<length>\d*(?:/+\d*)?))
      | (?P<rest>[zx](?P<restlength>\d*(?:/+\d*)?))
      | (?P<tie>-)
      | (?P<broken>>+|<+)
      | (?P<other>.)""",
    re.VERBOSE,
)


def key_of(text):
    """Semitones by letter."""
    text = text.strip()
    if text[:2] in ("HP", "Hp"):
        return {"F": 1, "C": 1}
    match = re.match(r"([A-G])([#b]?)\s*([A-Za-z]*)", text)
    if not match:
        return {}
    tonic, sign, mode = match.groups()
    mode = mode.lower() if mode.lower() == "m" else mode.lower()[:3]
    fifths = TONICS[tonic] + {"#": 7, "b": -7, "": 0}[sign] + MODES.get(mode, 0)
    key = collections.Counter()
    for i in range(abs(fifths)):
        key[(SHARPS if fifths > 0 else SHARPS[::-1])[i % 7]] += 1 if fifths > 0 else -1
    return key


def length_of(text):
    """The factor that stands behind a note."""
    upper, slashes, lower = re.fullmatch(r"(\d*)(/*)(\d*)", text).groups()
    factor = Fraction(int(upper or 1))
    if slashes:
        factor /= int(lower) if lower else 2 ** len(slashes)
    return factor


def meter_of(text):
    text = text.strip()
    if text.startswith("C"):
        return Fraction(1), False
    upper, lower = map(int, text.split("/"))
    return Fraction(upper, lower), lower == 8 and upper % 3 == 0 and upper > 3


class Bar:
    def __init__(self):
        self.events = []  # [length, [[pitch, step, tied], ...]]
        self.start = self.end = self.double = self.part = False
        self.passes = []


class Reading:
    """A tune's bars."""

    def __init__(self, lines):
        self.bars = [Bar()]
        self.meter, self.compound = Fraction(1), False
        self.unit = None
        self.key = {}
        self.order, self.parts = "", []
        self.accidentals = {}
        self.last = None  # the last event
        self.factor, self.members = Fraction(1), 0
        self.broken = 0
        self.chord = None
        music = False
        for line in lines:
            line = re.sub(r"%.*", "", line).rstrip().rstrip("\\")
            field = re.match(r"([A-Za-z]):(?![|:])(.*)", line)
            if field:
                self.take_field(field[1], field[2], music)
                music = music or field[1] == "K"
            elif music and line.strip():
                for token in TOKEN.finditer(line):
                    self.take(token)
        if not self.bars[-1].events:
            self.bars.pop()

    def take_field(self, name, text, music=True):
        if name == "M":
            self.meter, self.compound = meter_of(text)
        elif name == "L":
            self.unit = Fraction(text.strip())
        elif name == "K":
            self.key = key_of(text)
            self.accidentals = {}
            if self.unit is None:
                self.unit = Fraction(1, 16 if self.meter < Fraction(3, 4) else 8)
        elif name == "P" and music:
            self.next_bar()
            self.bars[-1].part = True
            self.parts.append((text.strip()[:1], len(self.bars) - 1))
        elif name == "P":
            self.order = "".join(letter * int(count or 1)
                                 for letter, count in re.findall(r"([A-Z])(\d*)", text))

    def take(self, token):
        kind = token.lastgroup if token.lastgroup not in ("outer",) else "close"
        for name in ("note", "rest", "close"):
            if token[name] is not None:
                kind = name
        if kind == "field":
            self.take_field(token["field"][1], token["field"][3:-1])
        elif kind == "text":
            if token["text"][0] == "{" and self.last:
                for note in self.last[1]:
                    note[2] = False
        elif kind == "bar":
            self.take_bar(token["bar"])
        elif kind == "ending":
            self.next_bar()
            for first, last in re.findall(r"(\d+)(?:-(\d+))?", token["ending"]):
                self.bars[-1].passes += range(int(first), int(last or first) + 1)
        elif kind == "tuplet":
            self.take_tuplet(token["tuplet"])
        elif kind == "open":
            self.chord = []
        elif kind == "close" and self.chord is not None:
            notes, self.chord = self.chord, None
            if notes:
                self.add(notes[0][1] * length_of(token["outer"]), [note for note, _ in notes])
        elif kind == "note":
            self.take_note(token)
        elif kind == "rest":
            self.add(4 * self.unit * length_of(token["restlength"]), [])
        elif kind == "tie":
            notes = self.chord[-1:] if self.chord else [(n, 0) for n in self.last[1]] if self.last else []
            for note, _ in notes:
                note[2] = True
        elif kind == "broken":
            self.broken = len(token["broken"]) * (1 if token["broken"][0] == ">" else -1)

    def take_tuplet(self, text):
        notes, time, count = (re.findall(r"\d+|(?<=:)(?=:|$)", text) + ["", ""])[:3]
        notes = int(notes)
        usual = {2: 3, 3: 2, 4: 3, 6: 2, 8: 3}.get(notes, 3 if self.compound else 2)
        self.factor = Fraction(int(time or usual), notes)
        self.members = int(count or notes)

    def take_note(self, token):
        letter = token["letter"].upper()
        octave = (token["letter"].islower() + token["octave"].count("'") - token["octave"].count(","))
        step = (letter, octave)
        if token["accidental"]:
            self.accidentals[letter] = ACCIDENTALS[token["accidental"]]
        shift = self.accidentals.get(letter, self.key.get(letter, 0))
        pitch = 60 + 12 * octave + SCALE[letter] + shift
        for before in self.last[1] if self.last else []:
            if before[2] and before[1] == step and not token["accidental"]:
                pitch = before[0]
        length = 4 * self.unit * length_of(token["length"])
        note = [pitch, step, False]
        if self.chord is not None:
            self.chord.append((note, length))
        else:
            self.add(length, [note])

    def add(self, length, notes):
        if self.members > 0:
            length *= self.factor
            self.members -= 1
        event = [length, notes]
        if self.broken and self.last and self.last[0] == length:
            shorter = length / 2 ** abs(self.broken)
            pair = [2 * length - shorter, shorter]
            self.last[0], event[0] = pair if self.broken > 0 else pair[::-1]
        self.broken = 0
        self.bars[-1].events.append(event)
        self.last = event

    def next_bar(self):
        if self.bars[-1].events:
            self.bars.append(Bar())

    def take_bar(self, sign):
        self.next_bar()
        self.accidentals = {}
        before = self.bars[-2] if len(self.bars) > 1 else Bar()
        if "|" not in sign or sign[0] == ":":
            before.end = True
            if self.last:
                for note in self.last[1]:
                    note[2] = False
        if any(double in sign for double in ("||", "]", "[")):
            before.double = True
        if "|" not in sign or sign[-1] == ":":
            self.bars[-1].start = True


class Section:
    def __init__(self):
        self.body = []
        self.endings = []  # (passes, bars)
        self.repeated = False

    def played(self):
        if not self.endings:
            return self.body * (2 if self.repeated else 1)
        last = max(number for passes, _ in self.endings for number in passes)
        order = []
        for number in range(1, last + 1):
            order += self.body
            for passes, bars in self.endings:
                if number in passes:
                    order += bars
        return order


def sections_of(bars):
    """Cuts where a repeat begins, by a sign or because one has ended."""
    sections = [Section()]
    explicit = closed = False
    for bar in bars:
        section = sections[-1]
        later = bool(bar.passes) and min(bar.passes) > 1
        if bar.start or (closed and not later):
            if section.body or section.endings:
                sections.append(section := Section())
            explicit = explicit and not closed or bar.start
        closed = False
        if bar.passes:
            section.endings.append((bar.passes, []))
        (section.endings[-1][1] if section.endings else section.body).append(bar)
        if bar.end:
            section.repeated = closed = True
            explicit = False
        elif bar.double and not explicit and any(s.repeated for s in sections):
            closed = True
    return sections


def order_of(reading):
    bars = reading.bars
    runs = [bars]
    written = "".join(name for name, _ in reading.parts)
    if reading.parts:
        starts = [start for _, start in reading.parts] + [len(bars)]
        runs = [bars[: starts[0]]] + [bars[a:b] for a, b in zip(starts, starts[1:])]
    if reading.parts and reading.order and reading.order != written:
        named = {}
        for (name, _), run in zip(reading.parts, runs[1:]):
            named.setdefault(name, run)
        runs = runs[:1] + [named[name] for name in reading.order if name in named]
        return [bar for run in runs for section in sections_of(run) for bar in section.played()]
    return [bar for section in sections_of(bars) for bar in section.played()]


def notes_of(text):
    reading = Reading(text.splitlines())
    notes = []
    ringing = {}  # pitch: index of the note that is tied on
    now = Fraction(0)
    for bar in order_of(reading):
        for i, (length, event) in enumerate(bar.events):
            following = {}
            for pitch, _, tied in event:
                if pitch in ringing:
                    index = ringing[pitch]
                    old = notes[index]
                    cuts = old.cuts + ((now,) if i == 0 else ())
                    notes[index] = old._replace(length=now + length - old.onset, cuts=cuts)
                else:
                    index = len(notes)
                    notes.append(Note(now, pitch, length, ()))
                if tied:
                    following[pitch] = index
            ringing = following
            now += length
    return sorted(notes)


if __name__ == "__main__":
    with open(sys.argv[1], encoding="latin-1") as file:
        for note in notes_of(file.read()):
            print(float(note.onset), note.pitch, float(note.length))
