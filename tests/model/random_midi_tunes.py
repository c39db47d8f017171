#!/usr/bin/env python3
"""Random tune files that try the performance builder; the same seed gives the same tune.

Most tunes make musical sense: sections with repeats and numbered endings, a
D.S. or D.C. that finds its Sign, Coda or Fine. About a third of them are then
disturbed, so that searches run off the table and journeys never end. Cells,
codes and header fields hold what the editor can type and, now and then, what
only a file can bring.
"""

import argparse
import random
import sys
from dataclasses import dataclass, field

LAST_INDEX = 1500
HEAD = 999
EXTENSIONS = {6: "gui", 5: "bjo", 4: "bss"}

# Ticks of the editor, a quarter note is 12.
NOTE_TICKS = {1: 2, 2: 3, 3: 4, 4: 6, 5: 9, 6: 8, 7: 12, 8: 18, 9: 24, 10: 36, 11: 48}
REST_TICKS = {92: 24, 93: 48, 94: 2, 95: 3, 96: 4, 97: 6, 98: 8, 99: 12}

SIGNS = ["81", "82", "83", "84", "85", "86", "87", "88", "89"]
BARS = ["93", "94", "95", "98", "99"]
BRACKETS = ["1", "2", "3", "4"]
ODD_BRACKETS = ["1, 2", "1.", "2nd", "-1", "0", "last", " 2", "1 2", "1.5", "2.5", "0.5", "12"]
HUGE_BRACKETS = ["32767", "40000"]
REMARKS = ["/To Coda", "/TO CODA", "/to coda", "To Coda", "/To Coda ", "/slowly", "Chorus", "3"]

PLAIN_CELLS = ["x", "X", "(3)", "(12)", "5>", "7<", "<5", "/", "9/", "0"]
TWO_NOTE_CELLS = ["3-5", "5-3", "7=9", "0-2", "12-10", "3-x", "x-3", "-5", "=7", "3-5-7", "3=5-7",
                  "3--5", "6-8", "2=4=5", "3>-5"]
LAST_SEPARATOR_CELLS = ["3-", "5=", "-", "=", "3-5-"]
MARKED_CELLS = ["3-5^", "3^-5", "5=7^", "^", "^-", "0^", "x^", "(5)^", "3-^", "12>^"]
FILE_ONLY_CELLS = [" 3", "1 2", "3.5", "2.5", "5.5", "0.5-1.5", "7 ", ".", "a3", "3a", "1e1", "1d1", "+4",
                   "  ", "3 - 5", "5e"]
WIDE_CELLS = ["24", "36", "64", "99", "100", "127", "200", "1000", "99-5", "5-99", "32000"]
HUGE_CELLS = ["32767", "40000", "99999", "5-40000"]

CREDITS = ["", "Traditional", "Trad. 1892-1950", "arr. by J.S.", "5", "7-9", "12^", "3^", "87", "x", "Opus 3",
           "4=6", "1 2 3", "Jan - Mar"]
FONT_NAMES = ["", "Arial", "Times", "Liberation Serif"]
TUNING_INDEXES = ["", "", "", "0", "1", "2", "3", "5", "9", "x", "-1", " 1", "99999"]
CHORDS = ["", "", "", "", "G", "Am7", "D7sus4"]


@dataclass(eq=False)
class Measure:
    bar: str = ""
    bracket: str = ""
    sign: str = ""
    remark: str = ""
    notes: list = field(default_factory=list)  # pairs of code and six cells


# The form of the tune


def plain_section(rng):
    return [Measure() for _ in range(rng.randint(1, 4))]


def repeated_section(rng):
    section = plain_section(rng)
    section[0].bar = "98"
    if section[-1].bar:
        section.append(Measure())
    section[-1].bar = "99"
    return section


def section_with_endings(rng):
    section = plain_section(rng)
    section[0].bar = "98"
    count = rng.choice([2, 2, 2, 3, 4])
    for number in range(1, count + 1):
        ending = [Measure() for _ in range(rng.choice([1, 1, 2]))]
        ending[0].bracket = str(number)
        if number < count:
            ending[-1].bar = "99"
        section += ending
    return section


def sections(rng):
    measures = []
    for kind in rng.choices([plain_section, repeated_section, section_with_endings], k=rng.randint(1, 4)):
        section = kind(rng)
        # Without its start the repeat goes back to the one before, or to measure 1.
        if section[0].bar == "98" and rng.random() < (0.03 if measures else 0.4):
            section[0].bar = ""
        measures += section
    return measures


def free_measure(rng, measures, begin, end):
    """A measure of this range that has no sign yet; a new one if there is none."""
    free = [m for m in measures[begin:end] if m.sign == ""]
    if free:
        return rng.choice(free)
    measures.insert(begin, Measure())
    return measures[begin]


def give_route(rng, measures):
    """Puts in a D.S. or D.C. with the places that it needs."""
    from_sign = rng.random() < 0.5
    to_coda = rng.random() < 0.5
    middle = rng.randint(0, len(measures) - 1)
    if from_sign:
        free_measure(rng, measures, 0, middle + 1).sign = "87"
    if to_coda:
        at_no_repeat = [m for m in measures[middle:] if m.bar != "99"]
        if at_no_repeat and rng.random() < 0.9:  # a repeat at the same head undoes the jump
            rng.choice(at_no_repeat).remark = "/To Coda"
        else:
            measures[-1].remark = "/To Coda"
        measures += [Measure()] if rng.random() < 0.7 else []
        measures[-1].sign = "88" if from_sign else "85"
        coda = sections(rng)
        coda[0].sign = "84"
        measures += coda
    else:
        free_measure(rng, measures, middle, len(measures)).sign = "83"
        measures += [Measure(sign="89" if from_sign else "86")]
        if rng.random() < 0.4:
            measures += plain_section(rng)


def disturb(rng, measures):
    """Marks at random places, with no thought of the music."""
    for _ in range(rng.randint(1, 4)):
        measure = rng.choice(measures)
        what = rng.random()
        if what < 0.25:
            measure.bar = rng.choice(BARS + ["99", "98", ""])
        elif what < 0.50:
            measure.bracket = rng.choice(BRACKETS + ODD_BRACKETS if rng.random() < 0.95 else HUGE_BRACKETS)
        elif what < 0.75:
            measure.sign = rng.choice(SIGNS + [""])
        elif what < 0.90:
            measure.remark = rng.choice(REMARKS)
        elif len(measures) > 1:
            measures.remove(measure)


def random_form(rng):
    measures = sections(rng)
    if rng.random() < 0.55:
        give_route(rng, measures)
    if rng.random() < 0.35:
        disturb(rng, measures)
    for measure in measures:
        if measure.remark == "" and rng.random() < 0.05:
            measure.remark = rng.choice(REMARKS)
        if measure.bar == "" and rng.random() < 0.05:
            measure.bar = rng.choice(["93", "94", "95"])
        if measure.sign == "" and rng.random() < 0.03:
            measure.sign = rng.choice(["81", "82"])
    return measures


# Notes


def random_fret(rng, string):
    roll = rng.random()
    if string == 5 and roll < 0.4:
        return rng.randint(4, 12)  # the banjo's fifth string begins at fret 5
    if roll < 0.15:
        return 0
    return rng.randint(0, 7) if roll < 0.8 else rng.randint(8, 22)


def random_cell(rng, string, awaited, oddness):
    """A cell, and the fret that a tie or slur in it waits for on the next note."""
    if awaited is not None and rng.random() < 0.9:
        fret = awaited
    else:
        fret = random_fret(rng, string)
    roll = rng.random()
    if roll < 0.13:
        tie = rng.random() < 0.6
        return f"{fret}^", fret if tie else random_fret(rng, string)
    if roll < 0.86 or awaited is not None:
        return str(fret), None
    if roll < 0.90:
        return rng.choice(PLAIN_CELLS), None
    if roll < 0.95:
        return rng.choice(TWO_NOTE_CELLS), None
    if roll < 0.97:
        return rng.choice(LAST_SEPARATOR_CELLS), None
    if roll < 0.985:
        return rng.choice(MARKED_CELLS), None
    if roll < 0.985 + oddness:
        return rng.choice(FILE_ONLY_CELLS if rng.random() < 0.5 else WIDE_CELLS), None
    return str(fret), None


def random_note_code(rng, room):
    fitting = [code for code, ticks in NOTE_TICKS.items() if ticks <= room]
    return rng.choice(fitting or list(NOTE_TICKS))


def fill_measure(rng, measure, capacity, awaited, style):
    """Notes and rests up to the capacity, now and then short of it, over it or none at all."""
    if rng.random() < style["empty"]:
        return
    room = capacity if rng.random() < 0.85 else rng.randint(2, capacity + 12)
    room = min(room, style["room"])
    while room > 0:
        slots = [""] * 6
        if rng.random() < style["rests"]:
            code = rng.choice(list(REST_TICKS))
            room -= REST_TICKS[code]
            if rng.random() < 0.02:
                slots[rng.randrange(6)] = "3"
        else:
            code = random_note_code(rng, room)
            room -= NOTE_TICKS[code]
            for string in range(1, style["strings"] + 1):
                if rng.random() < (0.9 if awaited[string] is not None else style["density"]):
                    slots[string - 1], awaited[string] = random_cell(
                        rng, string, awaited[string], style["oddness"])
                else:
                    awaited[string] = None
        if rng.random() < style["odd codes"]:
            code = rng.choice([0, 0, 0, 12, 50, 90, 91, 100, 998, HEAD, -1, -999])
        measure.notes.append((code, slots))


# The file


def record_text(measure, code, beats, unit, bar="", chord="", slots=("",) * 6):
    lines = [f"{measure},{code},0", f"0,{unit},{beats},4", f'0,"{bar}"," "," ","{chord}"']
    return lines + [f'"{slot}"' for slot in slots]


def header_text(rng):
    size = 0
    if rng.random() < 0.6:
        size = rng.choice([rng.randint(1, 11), rng.randint(12, 99), rng.randint(90, 99), 20])
    elif rng.random() < 0.05:
        size = rng.choice([HEAD, -5, 100])
    slots = [rng.choice(CREDITS), rng.choice(CREDITS), rng.choice(FONT_NAMES),
             rng.choice(TUNING_INDEXES), rng.choice(["", "", "8", "10", "12"]), rng.choice(FONT_NAMES)]
    if size == HEAD and rng.random() < 0.5:
        slots[0] = rng.choice(SIGNS)
    return record_text(0, size, 0, 0, bar="99" if size == HEAD else "", chord="A tune", slots=slots)


def measure_records(rng, number, measure, beats, unit):
    head_slots = [measure.sign, measure.bracket, measure.remark, "", "", rng.choice(["", "", "", "NL"])]
    records = [record_text(number, HEAD, beats, unit, measure.bar, slots=head_slots)]
    for code, slots in measure.notes:
        records.append(record_text(number, code, beats, unit, chord=rng.choice(CHORDS), slots=slots))
    return records


def fill_table(rng, records, number):
    """Adds plain measures to the table's last record, which is then a telling one."""
    while len(records) <= LAST_INDEX:
        number += 1
        records.append(record_text(number, HEAD, 4, 4))
        records += [record_text(number, 7, 4, 4, slots=["", "3", "", "", "", ""]) for _ in range(4)]
    del records[LAST_INDEX + 1:]
    last = rng.choice([(HEAD, ""), (0, "3"), (7, "5"), (7, "5^"), (7, "0^"), (99, "")])
    records[LAST_INDEX] = record_text(number, last[0], 4, 4, slots=["", "", last[1], "", "", ""])


def set_measure(record, number):
    record[0] = f"{number},{record[0].split(',', 1)[1]}"


def spoil_numbers(rng, records):
    """Measure numbers that are not the editor's: no measure 1, a late one, or an end in measure 0."""
    kind = rng.choice(["none", "late", "zero"])
    if kind == "none":
        for record in records[1:]:
            set_measure(record, 2)
    elif kind == "late":
        set_measure(records[1], rng.choice([0, 2]))
    else:
        set_measure(records[-1], 0)


def random_tune(seed):
    """The strings of the tune's instrument and the bytes of its file."""
    rng = random.Random(f"tune {seed}")
    strings = rng.choice([6, 6, 5, 5, 4])
    style = {"strings": strings if rng.random() < 0.9 else 6,
             "density": rng.choice([0.15, 0.3, 0.5]),
             "rests": rng.choice([0.0, 0.1, 0.3]),
             "room": rng.choice([12, 24, 100]),
             "empty": rng.choice([0.0, 0.0, 0.0, 0.0, 0.15]),
             "oddness": rng.choice([0.0, 0.0, 0.015]),
             "odd codes": rng.choice([0.0, 0.0, 0.0, 0.02, 0.1])}
    measures = random_form(rng) if rng.random() < 0.99 else []
    beats, unit = rng.choice([(4, 4), (4, 4), (3, 4), (2, 4), (6, 8)])
    awaited = [None] * 7
    records = [header_text(rng)]
    number = 0
    for measure in measures:
        number += 1
        fill_measure(rng, measure, beats * (12 if unit == 4 else 6), awaited, style)
        if measure.notes and rng.random() < 0.001:
            rng.choice(measure.notes)[1][rng.randrange(strings)] = rng.choice(HUGE_CELLS)
        records += measure_records(rng, number, measure, beats, unit)
    if measures and rng.random() < 0.01:
        fill_table(rng, records, number)
    elif measures and rng.random() < 0.01:
        spoil_numbers(rng, records)

    line_end = rng.choice(["\r\n"] * 8 + ["\n", "\r"])
    text = line_end.join(line for record in records for line in record)
    if rng.random() < 0.9:
        text += line_end
    return strings, text.encode("latin-1")


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--seed", type=int, required=True)
    parser.add_argument("-o", "--output", help="the tune's file; standard output without it")
    options = parser.parse_args()
    _strings, data = random_tune(options.seed)
    if options.output:
        with open(options.output, "wb") as file:
            file.write(data)
    else:
        sys.stdout.buffer.write(data)


if __name__ == "__main__":
    main()
