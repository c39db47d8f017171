#!/usr/bin/env python3
"""Seeds for the fuzzers that random changes would hardly ever reach: tables that are full, have one
place left or are exceeded by a few records.

    full_tables.py FOLDER      writes FOLDER/NAME/full_* for each fuzzer NAME that has a table
"""

import sys
from pathlib import Path

LAST_RECORD = 1500
LAST_TUNING = 50
HEAD, QUARTER = 999, 7

# Scripts that come close to the table's end in full.gui, which is next to them.
SCRIPTS = {
    "append": "menu mnuAppend\ntoolbar 7\ntype 5\nkey Enter\npress cmdNext\n",
    "next": "press cmdPrevious\npress cmdNext\n",
    "go": "prompt 300\npress lblMeasNum\nkey Left\ntype 5\nkey Enter\npress cmdNext\n",
    "note_after": "press cmdPrevious\nkey Left\nmenu mnuInsNoteAfter\ntype 5\nkey Enter\n",
    "note_before": "press cmdPrevious\nmenu mnuNoteBefore\ntype 5\nkey Enter\n",
    "measures": "prompt 2\nmenu mnuInsMeas\n",
    "paste": "copy 1 9\nmenu mnuCopy\nmenu mnuPaste\n",
    "delete": "press cmdPrevious\nmenu mnuDelMeas\nmenu mnuAppend\ntype 5\nkey Enter\n",
    "signs": "press cmdPrevious\nmenu mnuRptSign\nmenu mnuDoubBar\nmenu mnuDSfine\n",
    "save": "menu mnuSave\nmenu mnuOpnMidi\nmenu mnuPageSet\nmenu mnuPrint\n",
}


def record(measure, code, fret="", chord=""):
    """A record with nothing in quotes, so that a full table stays well below 64 KB."""
    return f"{measure},{code},0,0,4,4,4,0,,,,{chord},,{fret},,,,\n"


def tune(records, notes_in_measure, chord=""):
    lines = [record(0, 0)]
    for i in range(records):
        measure, place = divmod(i, notes_in_measure + 1)
        code = QUARTER if place else HEAD
        lines.append(record(measure + 1, code, place or "", chord))
    return "".join(lines)


def tunings(rows, strings):
    """What FuzzedDataProvider takes as the file, and as the choice of the instrument after it."""
    row = "Tuning" + ",60" * strings + "\n"
    return row * rows + "\\ " + chr(6 - strings)


def write(path, text):
    path.parent.mkdir(parents=True, exist_ok=True)
    path.write_text(text, newline="\n")


def main(folder):
    for records in (LAST_RECORD - 1, LAST_RECORD, LAST_RECORD + 1, LAST_RECORD + 6):
        for notes in (0, 4, records):
            write(folder / "tune_fuzzer" / f"full_{records}_{notes}", tune(records, notes))
    write(folder / "tune_fuzzer" / "full_lines", tune(200, 19, "Am7"))
    for rows in (LAST_TUNING, LAST_TUNING + 1, LAST_TUNING + 2, LAST_TUNING + 7):
        for strings in (4, 5, 6):
            write(folder / "tuning_fuzzer" / f"full_{rows}_{strings}", tunings(rows, strings))
    for name, script in SCRIPTS.items():
        opened = "ask no\ndialog full.gui\nmenu mnuOpen\n"
        write(folder / "scenario_fuzzer" / f"full_{name}", opened + script)


main(Path(sys.argv[1]))
