#!/usr/bin/env python3
"""Writes a random scenario script to standard output.

    random_scripts.py --seed N --length L

The writer plays the script on the model while it writes, so that it can do what
makes sense at that point: finish measures, leave text modes, answer questions.
Scripts with the tunes of `random_tunes_for(seed)` beside them open those."""

import argparse
import random
import sys

from editor_model import ScenarioPlayer
from editor_state import (
    APPEND, CHORD_TEXT, FRET_ENTRY, INSERTED_MEASURE, LEFT_HAND, REPEAT_BRACKET, RIGHT_HAND)
from number_rules import RunTimeFault
from random_tunes import BRACKETS, CHORDS, REMARKS, tune_text
from store_model import MemoryFiles

FRETS = ("0", "1", "2", "3", "5", "7", "10", "12", "x", "5^", "7>", "2<", "3-5", "2=4", "/", "(7)", "X",
         "12345", "5>^", "-")

SIGN_KEYS = [f"Shift+F{n}" for n in range(1, 10)]
SIGN_MENUS = ["mnuSign", "mnuCoda", "mnuFine", "mnuDS", "mnuDC", "mnuDSfine", "mnuDCfine", "mnuDScoda",
              "mnuDCcoda"]
BAR_KEYS = ["F6", "F8", "F9", "F12"]
BAR_MENUS = ["mnuRptSign", "mnuRptStart", "mnuDoubBar", "mnuBegDoubBar"]
COPY_BOXES = ("Text1", "Text2")
CARET_KEYS = ("Left", "Left", "Right", "Home", "End", "Delete", "Backspace")
FAULTS_KEPT = 0.1


def random_tunes_for(seed):
    """Tunes for the folder that the script of this seed runs in, by file name."""
    rng = random.Random(f"tunes {seed}")
    tunes = {}
    for i in range(1, 5):
        kind = rng.choice(("valid", "valid", "odd"))
        extension = rng.choice(("gui", "gui", "bjo", "bss"))
        tunes[f"{kind}{i}.{extension}"] = tune_text(rng.randrange(10**9), kind, extension)
    return tunes


class Finished(Exception):
    pass


class ScriptWriter:
    def __init__(self, seed, length, tunes):
        self.rng = random.Random(f"script {seed}")
        self.length = length
        self.tunes = tunes
        self.lines = []
        self.replay()

    def write(self):
        try:
            if self.chance(0.35):
                self.open_tune()
            while True:
                action, = self.rng.choices(list(ACTIONS), list(ACTIONS.values()))
                action(self)
                self.look()
        except Finished:
            return self.lines

    def replay(self):
        self.player = ScenarioPlayer(MemoryFiles(self.tunes))
        for line in self.lines:
            self.player.play_line(line)

    @property
    def editor(self):
        return self.player.editor

    def emit(self, line):
        """Adds a line and plays it. Most lines that end in a fault are taken back."""
        if len(self.lines) >= self.length:
            raise Finished
        self.lines.append(line)
        try:
            self.player.play_line(line)
        except RunTimeFault:
            if self.chance(FAULTS_KEPT):
                raise Finished from None
            self.lines.pop()
            self.replay()
            self.lines.append("# " + line)

    def chance(self, probability):
        return self.rng.random() < probability

    def pick(self, *choices):
        return self.rng.choice(choices)

    def command(self, menu, key=None):
        self.emit(f"key {key}" if key and self.chance(0.5) else f"menu {menu}")

    def look(self):
        if self.chance(0.25):
            self.emit("state")
        if self.chance(0.1):
            self.emit("log")
        if self.chance(0.06):
            self.emit("table")
        if self.chance(0.02):
            self.emit("shown")

    # Typing

    def type_note(self):
        self.choose_value()
        for _ in range(self.pick(1, 1, 1, 2, 3)):
            if self.chance(0.6):
                self.emit("key " + self.pick("Up", "Down"))
            self.emit("type " + self.pick(*FRETS))
        if self.chance(0.93):
            self.emit("key Enter")

    def choose_value(self):
        chance = self.rng.random()
        if chance < 0.3:
            self.emit(f"toolbar {self.rng.randrange(1, 12)}")
        elif chance < 0.5:
            self.emit("type " + self.pick("+", ".", "*", "++", "*+", "+."))

    def fill_measure(self):
        if self.chance(0.7):
            self.emit(f"toolbar {self.pick(2, 4, 4, 7, 7, 9, 1, 3, 6)}")
        for _ in range(self.rng.randrange(2, 14)):
            if self.editor.focus != "StaffBox":
                break
            if self.chance(0.1):
                self.rest()
            else:
                self.type_note()
        if self.editor.focus == "cmdNext" and self.chance(0.85):
            self.emit("key " + self.pick("Enter", "Space"))

    def loose_keys(self):
        for _ in range(self.rng.randrange(1, 6)):
            self.emit("key " + self.pick(
                "Left", "Left", "Right", "Right", "Up", "Down", "Enter", "Backspace", "Delete", "Escape",
                "F5", "Space", "Home", "End"))

    def wild_text(self):
        characters = "0123456789-><xX^/()=+.*abZ!"
        self.emit("type " + "".join(self.pick(*characters) for _ in range(self.rng.randrange(1, 6))))

    def back_up(self):
        for _ in range(self.rng.randrange(1, 5)):
            self.emit("key Backspace")

    # Moving

    def step(self):
        for _ in range(self.pick(1, 1, 2, 3)):
            self.emit("press " + self.pick("cmdNext", "cmdPrevious"))

    def go_to(self):
        last = self.editor.LastMeas
        self.emit("prompt " + self.pick(
            "cancel", "0", "-1", "0.5", "abc", "1.5", "2.5", str(last), f"{last + 1}", f"{last}.9",
            *(str(n) for n in range(1, max(last, 1) + 1))))
        self.emit("press lblMeasNum")

    def append(self):
        self.emit("menu mnuAppend")

    def click(self):
        if self.editor.MeasHead > self.editor.MeasEnd and self.chance(0.7):
            for _ in range(self.rng.randrange(1, 6)):
                self.click_at(self.rng.randrange(0, 20), self.rng.randrange(28, 80))
        else:
            self.click_at(self.rng.randrange(0, 360), self.rng.randrange(10, 110))

    def click_at(self, x, y):
        half = self.pick("", "", "", "", ".5")
        self.emit(f"click {x}{half} {y}{half}")

    def click_note(self):
        editor = self.editor
        if 0 <= editor.MeasHead < editor.MeasEnd <= 1500:
            i = self.rng.randrange(editor.MeasHead + 1, editor.MeasEnd + 1)
            x = editor.table[i].XPos + self.pick(-1, 0, 1, 5, 18, 19, 40)
            self.emit(f"click {x} {self.pick(30, 36, 40, 52, 53, 60, 68, 70, 90)}")

    def tick(self):
        self.emit("tick")

    def caret_under_bar(self):
        """A bar sign drawn over the caret, which moves afterwards."""
        self.emit("tick")
        self.command(*self.pick(("mnuRptSign", "F6"), ("mnuRptStart", "F8"), ("mnuDoubBar", "F9")))
        for _ in range(self.rng.randrange(1, 4)):
            self.emit(self.pick("key Up", "key Down", "key Left", "key Right", "tick", "type 3", "log"))

    def label(self):
        self.emit("press " + self.pick("lblLastNote", "hdbkbox"))

    # Text modes

    def chord(self):
        self.command("mnuChord", "F1")
        text = self.pick(*CHORDS)
        self.emit("type " + text + self.pick("", "", " a", "\xe9"))
        if self.chance(0.3):
            self.emit("key Backspace")
        self.leave_text()

    def hand_letter(self):
        self.command(*self.pick(("mnuLHEdit", "F3"), ("mnuRHEdit", "F2")))
        self.emit(self.pick("type 1", "type T", "type p", "type im", "key Enter", "type \xe9", "key Escape"))

    def leave_text(self):
        """Usually by Enter, else by some other way that ends a text mode, or not at all."""
        chance = self.rng.random()
        if chance < 0.75:
            self.emit("key Enter")
        elif chance < 0.85:
            self.step()
        elif chance < 0.93:
            self.click()

    def bracket(self):
        self.command("mnuRepeatEnds", "F7")
        if self.editor.focus == "txtRptBracket":
            if self.chance(0.15):
                self.emit(self.pick("press cmdRefresh", "press cmdRest", "key F4"))
                self.emit("type " + self.pick(*BRACKETS))
            self.emit("type " + self.pick(*BRACKETS))
            while self.editor.focus == "txtRptBracket" and self.chance(0.5):
                self.emit(self.pick("key " + self.pick(*CARET_KEYS), "key " + self.pick("Up", "Down", "Escape", "F5"),
                                    "type " + self.pick("7", "2.")))
            self.leave_text()

    def remark(self):
        self.emit("prompt " + self.pick("cancel", *REMARKS))
        self.emit("menu mnuRemarks")

    # Rests, bars, signs

    def rest(self):
        chance = self.rng.random()
        if chance < 0.4:
            self.command("mnuRest", "F4")
        elif chance < 0.55:
            self.emit("press cmdRest")
        elif chance < 0.85:
            self.command("mnuHalfRest", "Ctrl+H")
        else:
            self.command("mnuWholeRest", "Ctrl+W")

    def bar_sign(self):
        i = self.rng.randrange(4)
        self.command(BAR_MENUS[i], BAR_KEYS[i])

    def navigation_sign(self):
        line = self.pick("menu " + self.pick(*SIGN_MENUS), "key " + self.pick(*SIGN_KEYS))
        for _ in range(self.pick(1, 1, 2, 3)):
            self.emit(line)

    def hard_break(self):
        self.command("mnuHardBrk", "Ctrl+N")

    # Insertion, deletion, copying

    def insert_note(self):
        self.emit("menu " + self.pick("mnuNoteBefore", "mnuInsNoteAfter"))
        if self.chance(0.7):
            self.type_note()

    def delete_note(self):
        if self.editor.EntryState == APPEND and self.chance(0.7):
            self.emit("key Left")
        for _ in range(self.pick(1, 1, 2, 3)):
            self.emit("menu mnuDelNote")

    def delete_measure(self):
        if self.editor.EntryState != APPEND and self.chance(0.2):
            self.append()
        self.emit("menu mnuDelMeas")

    def insert_measure(self):
        self.emit("menu mnuInsMeas")
        self.look()
        for _ in range(self.rng.randrange(0, 5)):
            action = self.pick(self.type_note, self.type_note, self.rest, self.loose_keys, self.back_up, self.click,
                               self.delete_measure, self.insert_note)
            action()
        if self.chance(0.85):
            self.emit("press " + self.pick("cmdNext", "cmdNext", "cmdPrevious"))

    def copy(self):
        last = max(self.editor.LastMeas, 1)
        first = self.rng.randrange(1, last + 1)
        to = self.pick(first, first, min(first + 1, last), last, first - 1, last + 1)
        self.emit(f"copy {first}{self.pick('', '', '', '', '.5')} {to}")
        if self.chance(0.6):
            self.step()
        if self.chance(0.8):
            self.paste()

    def copy_box(self):
        """The copy box typed into, with other commands in between; left in some way or not at all."""
        last = self.editor.LastMeas
        self.command("mnuCopy", "Ctrl+C")
        for _ in range(self.rng.randrange(1, 9)):
            chance = self.rng.random()
            if chance < 0.5:
                self.emit("type " + self.pick("1", "1", "2", "3", "12", ".", ".5", "0", "-1", "x", " ", "1 ", "\xe9",
                                              str(last), str(last + 1)))
            elif chance < 0.6:
                self.emit("key " + self.pick(*CARET_KEYS))
            elif chance < 0.75:
                self.emit("key Enter")
            elif chance < 0.85:
                self.emit("key " + self.pick("F4", "F8", "F12", "F5", "Shift+F5", "Ctrl+H", "Ctrl+N", "Ctrl+C",
                                             "Space", "Escape", "Up"))
            elif chance < 0.95:
                self.emit("menu " + self.pick("mnuHardBrk", "mnuRptStart", "mnuRest", "mnuSign", "mnuChord", "mnuPaste",
                                              "mnuLHEdit", "mnuDelMeas", "mnuNoteBefore", "mnuInsMeas", "mnuCopy",
                                              "mnuRepeatEnds", "mnuAppend", "mnuPgDown"))
            else:
                self.emit(self.pick("tick", "press lblLastNote", "press cmdRest", "press cmdNext", "toolbar 4"))
        if self.chance(0.8):
            self.leave_copy_box()
        if self.chance(0.5):
            self.paste()

    def leave_copy_box(self):
        if self.chance(0.5):
            self.emit("press cmdCopyMeasure")
        while self.editor.focus in COPY_BOXES:
            self.emit("key Enter")

    def paste(self):
        self.command("mnuPaste", "Ctrl+P")

    # Files and modes

    def save(self):
        self.emit("dialog " + self.pick("saved.gui", "saved.bjo", "nowhere/tune.gui", "cancel", "saved.gui"))
        self.emit("menu mnuSaveAs")

    def save_again(self):
        self.emit("menu mnuSave")

    def open(self):
        self.answer_question()
        if self.chance(0.3):
            self.emit("dialog " + self.pick("cancel", "missing.gui", "saved.gui"))
            self.emit("menu mnuOpen")
        else:
            self.open_tune()
        self.emit("shown")

    def open_tune(self):
        self.emit("dialog " + self.pick(*self.tunes))
        self.emit("menu mnuOpen")

    def new(self):
        self.answer_question()
        self.emit("menu mnuNew")

    def change_strings(self):
        self.answer_question()
        self.emit(f"strings {self.pick(4, 5, 6)}")

    def answer_question(self):
        if self.editor.Saved == 0:
            if self.chance(0.75):
                self.emit("ask no")
            elif self.chance(0.7):
                self.emit("ask yes")
                self.emit("dialog " + self.pick("saved.gui", "cancel", "saved.bjo"))

    def undo(self):
        self.emit(self.pick("undo", "undo", "undo", "undo 2", "undo 3", f"undo {self.rng.randrange(30)}"))
        self.after_going_back()

    def redo(self):
        self.emit(self.pick("redo", "redo", "redo 2", f"redo {self.rng.randrange(30)}"))
        self.after_going_back()

    def after_going_back(self):
        if self.chance(0.5):
            self.emit("steps")
        if self.chance(0.3):
            self.pick(self.undo, self.redo)()

    def refresh(self):
        self.emit("press cmdRefresh")

    def page_view(self):
        self.emit("menu " + self.pick("mnuLargeview", "mnuSmallView", "mnuPgDown"))

    def other_form(self):
        self.emit("menu " + self.pick("mnuTuning", "mnuOpnMidi", "mnuSetup", "mnuAbout", "mnuPrint"))

    def leave_mode(self):
        """Out of a text mode, an inserted measure or a copy box that was left open."""
        mode = self.editor.InputMode
        if self.editor.focus in COPY_BOXES:
            self.leave_copy_box()
        elif mode == INSERTED_MEASURE:
            self.emit("press " + self.pick("cmdNext", "cmdPrevious"))
        elif mode in (CHORD_TEXT, LEFT_HAND, RIGHT_HAND, REPEAT_BRACKET):
            self.emit(self.pick("key Enter", "press cmdNext", "press cmdPrevious"))
        elif mode == FRET_ENTRY and self.editor.EntryState != APPEND:
            self.append()


ACTIONS = {
    ScriptWriter.fill_measure: 14,
    ScriptWriter.type_note: 10,
    ScriptWriter.loose_keys: 12,
    ScriptWriter.wild_text: 3,
    ScriptWriter.back_up: 3,
    ScriptWriter.choose_value: 3,
    ScriptWriter.step: 12,
    ScriptWriter.go_to: 4,
    ScriptWriter.append: 3,
    ScriptWriter.click: 6,
    ScriptWriter.click_note: 6,
    ScriptWriter.tick: 5,
    ScriptWriter.caret_under_bar: 2,
    ScriptWriter.label: 0.5,
    ScriptWriter.chord: 5,
    ScriptWriter.hand_letter: 4,
    ScriptWriter.bracket: 4,
    ScriptWriter.remark: 2,
    ScriptWriter.rest: 6,
    ScriptWriter.bar_sign: 5,
    ScriptWriter.navigation_sign: 5,
    ScriptWriter.hard_break: 2,
    ScriptWriter.insert_note: 4,
    ScriptWriter.delete_note: 3,
    ScriptWriter.delete_measure: 2,
    ScriptWriter.insert_measure: 4,
    ScriptWriter.copy: 3,
    ScriptWriter.copy_box: 2,
    ScriptWriter.paste: 2,
    ScriptWriter.save: 1.5,
    ScriptWriter.save_again: 1,
    ScriptWriter.open: 2,
    ScriptWriter.new: 1,
    ScriptWriter.change_strings: 1,
    ScriptWriter.refresh: 1.5,
    ScriptWriter.page_view: 0.5,
    ScriptWriter.other_form: 1,
    ScriptWriter.leave_mode: 3,
    ScriptWriter.undo: 7,
    ScriptWriter.redo: 4,
}


def script_for(seed, length, tunes):
    """The lines of a script; it ends in a full look at what came out."""
    return ScriptWriter(seed, length, tunes).write() + ["state", "table", "log", "shown"]


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--seed", type=int, required=True)
    parser.add_argument("--length", type=int, default=150)
    options = parser.parse_args()
    lines = script_for(options.seed, options.length, random_tunes_for(options.seed))
    sys.stdout.buffer.write("".join(line + "\n" for line in lines).encode("latin-1"))


if __name__ == "__main__":
    main()
