#!/usr/bin/env python3
"""Makes the example tunes: types each one into the editor and saves it.

    make_examples.py [--player PROGRAM] [--check]

Each tune is given below as a short text. It is turned into a scenario with every key
and click of its entry (tests/scenarios/examples/NAME.scn); the player plays it
and saves the tune, which then gets its title and credits (examples/NAME.EXT).
With --check nothing is written: scenarios and tunes must already be up to date.

The text has one measure per line: marks in braces, then columns.

    {repeat-start} q [G]6:3,3:0'p e 2:1=3_2 r | as 4

- `q` sets the value of the columns that follow: s sixteenth, t eighth triplet,
  e eighth, q quarter, h half, w whole, a point for dotted.
- A column is its cells STRING:TEXT, with the chord in brackets before them, then
  ' and the right-hand letter, then _ and the left-hand letter.
- `r` is a rest of the value, `rh` and `rw` are the half and the whole rest.
- `as N` repeats the columns of measure N.
"""

import argparse
import os
import re
import subprocess
import sys
import tempfile
from dataclasses import dataclass

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
MODEL_PLAYER = os.path.join(ROOT, "tests/model/editor_model.py")
SCENARIOS = os.path.join(ROOT, "tests/scenarios/examples")
EXAMPLES = os.path.join(ROOT, "examples")

EXTENSIONS = {6: "gui", 5: "bjo", 4: "bss"}

# Value letter: note code, ticks (a quarter is 12)
VALUES = {
    "s": (2, 3), "t": (3, 4), "e": (4, 6), "e.": (5, 9), "q": (7, 12), "q.": (8, 18),
    "h": (9, 24), "h.": (10, 36), "w": (11, 48),
}

# Rest of a note code: rest code, ticks
RESTS = {2: (95, 3), 3: (96, 4), 4: (97, 6), 5: (97, 6), 7: (99, 12), 8: (99, 12),
         9: (92, 24), 10: (92, 24), 11: (93, 48)}

# Value key: the value that it gives, by the value in force
VALUE_KEYS = {
    "+": {1: 2, 2: 4, 3: 4, 4: 7, 5: 7, 6: 7, 7: 2, 8: 2, 9: 7, 10: 7, 11: 7},
    ".": {1: 5, 2: 5, 3: 5, 4: 5, 5: 5, 6: 8, 7: 8, 8: 8, 9: 8, 10: 8, 11: 8},
    "*": {1: 1, 2: 1, 3: 3, 4: 3, 5: 3, 6: 6, 7: 6, 8: 6},
}

# Marks put on the empty measure: key, field of the head record, text
START_MARKS = {
    "repeat-start": ("F8", "bar", "98"), "begin-double": ("F12", "bar", "95"),
    "sign": ("Shift+F5", 1, "87"), "coda": ("Shift+F4", 1, "84"), "break": ("Ctrl+N", 6, "NL"),
}

# Marks put on the full measure
END_MARKS = {
    "repeat": ("F6", "bar", "99"), "double": ("F9", "bar", "94"), "fine": ("Shift+F3", 1, "83"),
    "dc-fine": ("Shift+F2", 1, "86"), "ds-coda": ("Shift+F6", 1, "88"),
}

# Clicks on the figures that lead from 4/4 to a signature
SIGNATURE_CLICKS = {
    "4/4": (), "2/4": ("upper",) * 3, "3/4": ("upper",) * 4, "6/8": ("lower", "upper"),
}

FIGURE_Y = {4: {"upper": 40, "lower": 54}, 5: {"upper": 42, "lower": 58}, 6: {"upper": 44, "lower": 66}}


@dataclass
class Tune:
    name: str
    strings: int
    signature: str
    title: str
    credits: tuple
    text: str

    @property
    def file_name(self):
        return f"{self.name}.{EXTENSIONS[self.strings]}"


@dataclass
class Column:
    code: int
    ticks: int
    value: int  # the value in force; a half or whole rest does not need its own
    cells: dict  # text by string; empty for a rest
    chord: str = ""
    right: str = " "
    left: str = " "
    key: str = ""  # the rest's key


@dataclass
class Measure:
    marks: list
    columns: list


# Reading the tune texts

COLUMN = re.compile(r"(?:\[([^]]*)\])?([^'_]*)(?:'(.))?(?:_(.))?")


def read_measures(tune):
    measures = []
    for line in tune.text.strip().split("\n"):
        marks, columns = re.fullmatch(r"\s*(?:\{(.*)\})?\s*(.*?)\s*", line).groups()
        if columns.startswith("as "):
            columns = measures[int(columns[3:]) - 1].columns
        else:
            columns = read_columns(columns)
        measures.append(Measure([mark.strip() for mark in marks.split(";")] if marks else [], columns))
    beats, unit = map(int, tune.signature.split("/"))
    for number, measure in enumerate(measures, 1):
        ticks = sum(column.ticks for column in measure.columns)
        if ticks != beats * 48 // unit:
            sys.exit(f"{tune.name}, measure {number}: {ticks} ticks")
    return measures


def read_columns(text):
    columns = []
    value = None
    for token in text.split():
        if token in VALUES:
            value = token
        else:
            columns.append(read_column(token, value))
    return columns


def read_column(token, value):
    chord, cells, right, left = COLUMN.fullmatch(token).groups()
    if cells == "rh":
        return Column(92, 24, 0, {}, chord or "", key="Ctrl+H")
    if cells == "rw":
        return Column(93, 48, 0, {}, chord or "", key="Ctrl+W")
    code, ticks = VALUES[value]
    if cells == "r":
        return Column(*RESTS[code], code, {}, chord or "", key="F4")
    texts = dict(cell.split(":") for cell in cells.split(","))
    cells = {int(s): fret for s, fret in texts.items()}
    return Column(code, ticks, code, cells, chord or "", right or " ", left or " ")


# Typing


class Typist:
    """Writes down the keys of a tune's entry, with the cursor kept in mind."""

    def __init__(self, tune):
        self.tune = tune
        self.lines = []
        self.string = tune.strings  # the cursor's string
        self.value = 7

    def key(self, name, times=1):
        self.lines += [f"key {name}"] * times

    def type(self, text):
        if self.lines[-1].startswith("type "):
            self.lines[-1] += text
        else:
            self.lines.append("type " + text)

    def tune_lines(self, measures):
        tune = self.tune
        self.lines += [f"# {tune.title}, typed from nothing.", f"strings {tune.strings}"]
        for figure in SIGNATURE_CLICKS[tune.signature]:
            self.lines.append(f"click 9 {FIGURE_Y[tune.strings][figure]}")
        for number, measure in enumerate(measures, 1):
            if number > 1:
                self.key("Enter")  # presses the button that opens the next measure
            self.lines += ["", f"# Measure {number}"]
            self.measure(measure)
        self.lines += ["", f"dialog {tune.file_name}", "menu mnuSaveAs"]
        return self.lines

    def measure(self, measure):
        for mark in measure.marks:
            self.start_mark(mark)
        for column in measure.columns[:-1]:
            self.column(column)
        self.left_hand_letters(measure.columns[:-1])
        last = measure.columns[-1]
        self.column(last, left=last.left)
        for mark in measure.marks:
            if mark in END_MARKS:
                self.key(END_MARKS[mark][0])

    def start_mark(self, mark):
        if mark in START_MARKS:
            self.key(START_MARKS[mark][0])
        elif mark.startswith("ending "):
            self.key("F7")
            self.type(mark[7:])
            self.key("Enter")
        elif mark.startswith("remark "):
            self.lines += ["prompt " + mark[7:], "menu mnuRemarks"]
        elif mark not in END_MARKS:
            sys.exit(f"{self.tune.name}: no mark {mark}")

    def column(self, column, left=" "):
        if column.value:
            self.choose_value(column.value)
        if column.chord:
            self.key("F1")
            self.type(column.chord)
            self.key("Enter")
        if column.key:
            self.key(column.key)
            return
        strings = sorted(column.cells)
        if abs(strings[-1] - self.string) < abs(strings[0] - self.string):
            strings.reverse()
        for s in strings:
            self.go_to_string(s)
            self.type(column.cells[s])
        if column.right != " ":
            self.key("F2")
            self.letter(column.right)
        if left != " ":
            self.key("F3")
            self.letter(left)
        self.key("Enter")

    def left_hand_letters(self, columns):
        """The letters of the notes typed so far, by going back to the first of them."""
        marked = [i for i, column in enumerate(columns) if column.left != " "]
        if not marked:
            return
        self.key("Left", len(columns) - marked[0])
        for column in columns[marked[0]:]:
            if column.left != " ":
                self.key("F3")
                self.letter(column.left)
            self.key("Right")
        for column in reversed(columns):
            if column.cells:
                self.string = max(column.cells)
                break

    def letter(self, letter):
        self.lines.append("type " + letter)

    def go_to_string(self, s):
        n = self.tune.strings
        down = (s - self.string) % n
        if down <= n - down:
            self.key("Down", down)
        else:
            self.key("Up", n - down)
        self.string = s

    def choose_value(self, value):
        """By the shortest run of value keys, or with the toolbar."""
        if value == self.value:
            return
        reached = {self.value: ""}
        waiting = [self.value]
        for at in waiting:
            for key, gives in VALUE_KEYS.items():
                to = gives.get(at)
                if to and to not in reached:
                    reached[to] = reached[at] + key
                    waiting.append(to)
        if value in reached:
            self.type(reached[value])
        else:
            self.lines.append(f"toolbar {value}")
        self.value = value


# Playing, and looking at what came of it


def play(player, tune, script):
    with tempfile.TemporaryDirectory() as folder:
        path = os.path.join(folder, "script.scn")
        with open(path, "w", encoding="ascii") as file:
            file.write(script)
        subprocess.run([player, path], cwd=folder, check=True)
        with open(os.path.join(folder, tune.file_name), "rb") as file:
            return file.read().decode("cp1252")


def with_header(tune, text):
    lines = text.split("\r\n")
    lines[2] = f'0,""," "," ","{tune.title}"'
    lines[3], lines[4] = (f'"{credit}"' for credit in tune.credits)
    return "\r\n".join(lines)


def expected_records(measures):
    """What the tune must hold, derived fields left out: (code, bar, left, right, chord, slots)."""
    for measure in measures:
        bar, slots = "", [""] * 6
        for mark in measure.marks:
            known = START_MARKS.get(mark) or END_MARKS.get(mark)
            if known and known[1] == "bar":
                bar = known[2]
            elif known:
                slots[known[1] - 1] = known[2]
            else:
                kind, _, text = mark.partition(" ")
                slots[{"ending": 1, "remark": 2}[kind]] = text
        yield 999, bar, " ", " ", "", slots
        for column in measure.columns:
            slots = [column.cells.get(s, "") for s in range(1, 7)]
            yield column.code, "", column.left, column.right, column.chord, slots


def saved_records(text):
    lines = text.split("\r\n")
    for i in range(9, len(lines) - 1, 9):
        code = int(lines[i].split(",")[1])
        bar, left, right, chord = re.fullmatch(r'\d+,"(.*)","(.)","(.)","(.*)"', lines[i + 2]).groups()
        yield code, bar, left, right, chord, [line[1:-1] for line in lines[i + 3:i + 9]]


def check_saved(tune, measures, text):
    expected, saved = list(expected_records(measures)), list(saved_records(text))
    for i, (want, got) in enumerate(zip(expected, saved), 1):
        if want != got:
            sys.exit(f"{tune.name}, record {i}: typed {want}, saved {got}")
    if len(expected) != len(saved):
        sys.exit(f"{tune.name}: {len(expected)} records typed, {len(saved)} saved")


def put(path, text, encoding, check):
    data = text.encode(encoding)
    if not check:
        with open(path, "wb") as file:
            file.write(data)
        return
    with open(path, "rb") as file:
        if file.read() != data:
            sys.exit(f"{path}: differs")


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--player", default=MODEL_PLAYER, help="the program that plays scenarios")
    parser.add_argument("--check", action="store_true", help="compare, write nothing")
    options = parser.parse_args()
    player = os.path.abspath(options.player)
    for tune in TUNES:
        measures = read_measures(tune)
        script = "\n".join(Typist(tune).tune_lines(measures)) + "\n"
        text = play(player, tune, script)
        check_saved(tune, measures, text)
        put(os.path.join(SCENARIOS, tune.name + ".scn"), script, "ascii", options.check)
        put(os.path.join(EXAMPLES, tune.file_name), with_header(tune, text), "cp1252", options.check)


# The tunes

TUNES = (
    Tune("greensleeves", 6, "6/8", "Greensleeves", ("English, 16th century", "set for two voices on one guitar"), """
        {remark Gently} q r e r q r e 3:2
        {repeat-start} q [Am]5:0,2:1 e 2:3 e. 4:2,1:0 s 1:2 e 1:0
        q [G]6:3,2:3 e 2:0 e. 4:0,3:0 s 3:2 e 2:0
        q [Am]5:0,2:1 e 3:2 e. 4:2,3:2 s 3:1 e 3:2
        q [E]6:0,2:0 e 3:1 q 6:0,4:2 e 3:2
        as 2
        {break} as 3
        e. [Am]5:0,2:1_1 s 2:0 e 3:2_2 e. [E]6:0,3:1_1 s 4:4_4 e 3:1_1
        {ending 1.; repeat} q. [Am]5:0,3:2^ q 4:2,3:2 e 3:2
        {ending 2.} q. [Am]5:0,3:2 5:0,4:2,3:2
        {repeat-start} q. [C]5:3,1:3 e. 4:2,1:3 s 1:2 e 1:0
        as 3
        as 4
        {break} q [E]6:0,2:0 e 3:1 q. 6:0,4:2
        as 11
        as 3
        as 8
        {ending 1.; repeat} as 10
        {ending 2.; double} e [Am]5:0,3:2'p 4:2'p 3:2'i q. 5:0,4:2,3:2,2:1,1:0
    """),
    Tune("scarborough_fair", 6, "3/4", "Scarborough Fair", ("English ballad, 17th century", "set with a picked interlude"), """
        {remark Flowing} q [Am]5:0,3:2^ 4:2,3:2 3:2
        q [Am]5:0,1:0 3:2,1:0 3:2,1:0
        q. [G]6:3,2:0 e 2:1 q 3:0,2:0
        e [Am]5:0,3:2'p 4:2'i 3:2'm 2:1'a 3:2'm 4:2'i
        q [C]5:3 1:0 1:3
        q [Am]5:0,1:5^_4 3:2,1:5 [C]5:3,1:3_4
        {break} q [Am]5:0,1:0 [D]4:0,1:2 3:2,2:3
        e [Am]5:0,1:0'p 3:2'i 2:1'm 1:0'a 2:1'm 3:2'i
        rh q 1:5_4
        q [Am]5:0,1:5^ 3:2,1:5 1:5
        q [C]5:3,1:3^ 3:0,1:3 1:0
        q [C]5:3,1:0 2:3 2:1
        {break} q [G]6:3,2:0 h 4:0,3:0
        q [Am]5:0,3:2^ 4:2,3:2 1:0
        q [G]6:3,2:3^ 3:0,2:3 2:1
        q [G]6:3,2:0 3:2 3:0
        as 4
        {fine; double} h. [Am]5:0,4:2,3:2
        {break; remark Interlude} t [Am]5:0'p 3:2'i 2:1'm 1:0'a 2:1'm 3:2'i 4:2'p 3:2'i 2:1'm
        t [G]6:3'p 3:0'i 2:0'm 1:3'a 2:0'm 3:0'i 4:0'p 3:0'i 2:0'm
        t [D]4:0'p 3:2'i 2:3'm 1:2'a 2:3'm 3:2'i 4:0'p 3:2'i 2:3'm
        as 19
        {break} t [C]5:3'p 3:0'i 2:1'm 1:0'a 2:1'm 3:0'i 4:2'p 3:0'i 2:1'm
        as 20
        as 21
        as 19
        {break} as 19
        as 23
        as 20
        {dc-fine; double} t [Am]5:0'p 3:2'i 2:1'm q 1:0'a r
    """),
    Tune("auld_lang_syne", 6, "4/4", "Auld Lang Syne", ("Scottish, 18th century", "verse, chorus, variation and coda"), """
        {remark Warmly} q [G]3:/ 3:/ [C]3:/ 3:/
        q [G]3:/ 3:/ r 4:0
        {begin-double; sign} q. [G]6:3,3:0 e 3:0 q 4:0,3:0 2:0
        q. [D7]4:0,3:2 e 3:0 q 4:0,3:2 2:0
        q. [G]6:3,3:0 e 3:0 q 6:3,2:0 2:3
        h. [C]5:3,2:1,1:0 q 1:0
        {break} q. [G]6:3,2:3 e 2:0 q 4:0,2:0 3:0
        as 4
        q. [Em]6:0,3:0 e 4:2 q [C]5:3,4:2 [D7]4:0
        h. [G]6:3,3:0 q 1:0
        {remark Chorus} as 7
        q. [D7]4:0,3:2 e 3:0 q 4:0,3:2 1:0
        {break} q. [G]6:3,2:3 e 2:0 q 4:0,2:0 2:3
        h. [C]5:3,3:0,1:0 q 1:3
        as 7
        as 4
        {remark /To Coda} as 9
        {double} h. [G]6:3,3:0 q 4:0
        {break; remark Variation} q. [G]6:3,3:0 e 3:0 q 4:0,3:0 e 2:0 5:2
        q. [D7]4:0,3:0-2 e 3:0 q 4:0,3:2 2:0
        q. [G]6:3,4:0,3:0 e 3:0 q [G7]5:2,2:0 2:3
        q. [C]5:3,2:1,1:0 e 2:1 q 3:0 1:0
        q. [G]6:3,2:1=3 e 2:0 q 4:0,2:0 3:0
        q. [D7]4:0,3:2 e 3:0 q 4:0,3:2 e. 2:0 s 3:2
        {break} as 9
        h. [G]6:3,4:0,3:0 q 1:0
        q. [G]6:3,3:0,2:3 e 2:0 q 4:0,2:0 3:0
        as 12
        q. [G]6:3,2:1=3 e 2:0 q 4:0,2:0 2:3
        q [C]5:3,1:0^ 2:1,1:0^ 3:0,1:0 1:3
        {break} as 7
        as 20
        as 9
        {ds-coda; double} h. [G]6:3,4:0,3:0 q 4:0
        {break; coda} h. [Em]6:0,4:2,3:0 q 1:0
        as 7
        as 4
        as 9
        w [G]6:3,5:2,4:0,3:0,2:0,1:3
        {double} rw
    """),
    Tune("yankee_doodle", 5, "2/4", "Yankee Doodle", ("American, 18th century", "in three-finger style"), """
        {remark Lively} s [G]3:0'T 1:0'M 3:0'I 5:0'T 3:2'I 1:0'M 2:0'I 5:0'T
        s [G]3:0'I 1:0'M 2:0'I 5:0'T [D7]3:2'I 1:0'M 4:0'T 1:0'M
        s [G]3:0'T 1:0'M 3:0'I 1:0'M e 3:0-2'T s 2:0'I 1:0'M
        s [G]3:0'T 2:0'I 5:0'T 1:0'M [D7]4:4'T 3:2'I 1:0'M 3:2'I
        {break} as 1
        s [C]2:1'I 1:2'M 2:0'I 5:0'T 3:2'I 1:0'M 3:0'T 1:0'M
        s [D7]4:4'T 1:0'M 4:0'T 1:0'M 4:2'T 1:0'M 4:4'T 1:0'M
        {repeat} s [G]3:0'T 2:0'I 5:0'T 1:0'M q 3:0,1:0
        {break; repeat-start} e. [C]1:2'M s 1:4'I e 1:2'M 1:0'I
        e [C]1:2'M 1:4'I [G]1:5'M 5:0'T
        e. [G]1:0'M s 1:2'I e 1:0'M 2:1'I
        s [G]2:0'I 1:0'M 5:0'T 2:0'I 1:0'M 5:0'T 2:0'I 1:0'M
        e. [C]1:2'M s 1:4^'I e 1:2 1:0'M
        e [C]1:2'M 1:4'I 1:5'M 1:2'I
        e [G]1:0'M 5:0'T [D7]1:4'M 1:7'I
        {fine; repeat} e [G]1:5'M 5:0'T q 5:0,1:5
        {break; remark Up the neck} e [G]5:0,1:5 1:5 q 1:7=9
        e [G]5:0,1:5 1:9 [D7]1:7 1:0
        as 17
        q [G]5:0,1:5 [D7]1:4<
        as 17
        e [C]1:10 1:9 1:7 1:5
        e [D7]1:4 1:0 1:2 1:4
        q [G]5:0,1:5 r
        {break} as 1
        as 2
        as 7
        {dc-fine; double} q [G]5:0,1:5 r
    """),
    Tune("amazing_grace", 5, "3/4", "Amazing Grace", ("American hymn tune, 1829", "with a second verse up the neck"), """
        {remark Slowly} rh q 4:0'T
        e [G]3:0'T 1:0'M 5:0'T 1:0'M 2:0'I 3:0'T
        e [G]2:0'I 1:0'M 5:0'T 1:0'M q 3:2'T
        e [C]3:0'T 1:2'M 5:0'T 1:2'M q 4:2'T
        e [G]4:0'T 1:0'M 2:0'I 1:0'M q 4:0'T
        {break} e [G]3:0'T 1:0'M 5:0'T 1:0'M t 2:0'I 3:2'T 3:0'I
        q [G]3:2=4'T e 1:0'M 5:0'T q [D7]3:2'I
        e [D7]1:0'M 2:1'I 3:2'T 1:0'M 2:1'I 3:2'T
        q [D7]4:0,1:0^ 3:2,1:0 [G]2:0'I
        {break} q [G]2:3>'I e 5:0'T 1:0'M 2:0'I 3:0'T
        as 3
        as 4
        as 5
        {break} as 6
        e [Em]2:0'I 1:0'M 5:0'T 1:0'M q [D7]3:0-2'T
        e [G]3:0'T 2:0'I 1:0'M 5:0'T 1:0'M 2:0'I
        {double} h [G]3:0 q 1:0'M
        {break; remark Up the neck} e [G]1:5'M 3:0'T 2:0'I 5:0'T 1:9'M 1:5'I
        e [G]1:9'M 2:0'I 3:0'T 2:0'I q 5:7'T
        e [C]1:5'M 2:5'I 3:5'T 2:5'I q 1:2'M
        e [G]1:0'M 2:0'I 3:0'T 2:0'I q 1:0'M
        {break} e [G]1:5'M 3:0'T 2:0'I 5:0'T t 1:9'M 1:7'I 1:5'M
        q [G]1:7=9'M e 2:0'I 3:0'T q [D7]1:7'M
        e [D]1:12'M 2:10'I 3:11'T 1:12'M 2:10'I 3:11'T
        q [D]1:12^ 3:11,1:12 [G]1:9'M
        {break} q [G]1:12<'M e 3:0'T 2:0'I 1:9'M 1:5'I
        e [G]5:9'T 2:0'I 1:0'M 2:0'I q 5:7'T
        as 20
        as 21
        {break} as 18
        q [Em]1:9'M e 2:0'I 3:0'T q [D7]1:9-7'M
        e [G]1:5'M 2:0'I 3:0'T 1:5'M 2:0'I 5:0'T
        {double} h. [G]5:0,3:0,2:0,1:5
    """),
    Tune("irish_washerwoman", 4, "6/8", "The Irish Washerwoman", ("Jig, 18th century", "for mandolin"), """
        q r e r r 2:5 2:3
        {repeat-start} e [G]2:2 3:5 3:5 3:0 3:5 3:5
        e [G]2:2 3:5 2:2 2:5 2:3 2:2
        e [Am]2:3 2:0 2:0 3:2 2:0 2:0
        e [Am]2:3 2:0 2:3 [D7]1:0 2:5_4 2:3_2
        as 2
        as 3
        e [C]2:3 2:2 2:3 [D7]2:0 2:5 2:3
        {ending 1.; repeat} e [G]2:2 3:5 3:5 3:5 2:5 2:3
        {ending 2.} e [G]2:2 3:5 3:5 q 3:5 e 2:5
        {repeat-start} e [G]1:3 2:5 1:3 1:3 2:5 1:3
        e [G]1:3_2 2:5 1:3 1:7_4 1:5_3 1:3
        e [D]1:2 2:5 1:2 1:2 2:5 1:2
        e [D7]1:2 2:5 1:2 1:5 1:3 1:2
        e [C]1:0 1:3 1:3 [G]2:5 1:3 1:3
        e [C]2:3 1:3 1:3 [G]2:2 1:3 1:3
        as 8
        {ending 1.; repeat} as 10
        {ending 2.; double} e [G]2:2 3:5 3:5 q. 4:0,3:0,2:2,1:3
    """),
    Tune("drowsy_maggie", 4, "4/4", "Drowsy Maggie", ("Irish reel", "for mandolin"), """
        {repeat-start; remark Briskly} q [Em]3:2 e 2:2 3:2 2:5 3:2 2:2 3:2
        q [Em]3:2 e 2:2 3:2 [D]2:0 3:4 3:0 3:4
        as 1
        {ending 1.; repeat} e [G]2:2 2:0 2:2 2:4 [D]2:5 2:0 3:4 3:0
        {ending 2.} e [G]2:2 2:0 2:2 2:4 [D]2:5 2:0 2:2 2:4
        {break; repeat-start} q [D]2:5 e 1:2 2:5 q [A]2:4 e 1:0 2:4
        e [D]2:5 1:0 1:2 1:3 [A]1:5 1:2 1:3 1:0
        as 6
        e [G]2:2 2:0 2:2 2:4 [D]2:5 2:0 3:4 2:0
        {break} as 6
        as 7
        e [D]1:5_3 1:2_1 1:3_2 1:0 [A]1:2 2:5 1:0 2:4
        {repeat} as 4
        {break; repeat-start; remark With triplets} q [Em]3:2 t 2:2 2:2 2:2 e 2:5 3:2 2:2 3:2
        q [Em]3:0-2 e 2:2^ 2:0 [D]2:0 3:4 3:0 3:4
        as 14
        {ending 1.; repeat} e [G]2:2 2:0 t 2:2 2:2 2:4 e [D]2:5 2:0 3:4 3:0
        {ending 2.; double} e [D]2:2 2:0 3:4 3:0 h [Em]3:2,2:2,1:0
    """),
)


if __name__ == "__main__":
    main()
