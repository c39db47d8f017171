#!/usr/bin/env python3
"""A model of the scripted window: plays a scenario and prints what it asks for.

    editor_model.py SCRIPT

Scratch files and tunes are in the current directory. The exit status is 0, 1
after a run-time fault, 2 after an unknown command."""

import sys

from editing_model import Editing
from editor_state import EditorState, TextBox
from files_model import EndOfProgram, FileCommands
from history_model import COMMAND, ENTER, KEY, History
from input_model import StaffInput
from navigation_model import Navigation
from number_rules import RunTimeFault, quoted
from signs_model import Signs
from store_model import NUMBER_FIELDS, DiskFiles


class Editor(Navigation, StaffInput, Editing, Signs, FileCommands, EditorState):
    """The main form with all its handlers."""


SHORTCUTS = {
    "F1": "mnuChord", "F2": "mnuRHEdit", "F3": "mnuLHEdit", "F4": "mnuRest",
    "F6": "mnuRptSign", "F7": "mnuRepeatEnds", "F8": "mnuRptStart", "F9": "mnuDoubBar",
    "F12": "mnuBegDoubBar",
    "Shift+F1": "mnuDSfine", "Shift+F2": "mnuDCfine", "Shift+F3": "mnuFine",
    "Shift+F4": "mnuCoda", "Shift+F5": "mnuSign", "Shift+F6": "mnuDScoda",
    "Shift+F7": "mnuDCcoda", "Shift+F8": "mnuDS", "Shift+F9": "mnuDC",
    "Ctrl+H": "mnuHalfRest", "Ctrl+W": "mnuWholeRest", "Ctrl+N": "mnuHardBrk",
    "Ctrl+C": "mnuCopy", "Ctrl+P": "mnuPaste",
}

KEY_CHARACTERS = {"Enter": "\r", "Backspace": "\x08", "Space": " ", "Escape": "\x1b"}

MENUS = {
    "mnuNew", "mnuOpen", "mnuAppend", "mnuSave", "mnuSaveAs", "mnuPrint", "mnuExit", "mnuOpnMidi",
    "mnuNoteBefore", "mnuInsNoteAfter", "mnuDelNote", "mnuCopy", "mnuPaste", "mnuInsMeas", "mnuDelMeas",
    "mnuChord", "mnuRemarks", "mnuRHEdit", "mnuLHEdit", "mnuHardBrk",
    "mnuRest", "mnuHalfRest", "mnuWholeRest",
    "mnuRptSign", "mnuRptStart", "mnuDoubBar", "mnuBegDoubBar",
    "mnuSign", "mnuCoda", "mnuFine", "mnuDS", "mnuDC", "mnuDSfine", "mnuDCfine", "mnuDScoda",
    "mnuDCcoda", "mnuRepeatEnds", "mnuGuitar", "mnuBanjo", "mnuMandolin",
}

# They change the page view or open a form beside the main one, and no print shows that.
QUIET_MENUS = {"mnuLargeview", "mnuSmallView", "mnuPgDown", "mnuTuning", "mnuSetup", "mnuAbout"}

BUTTONS = {"cmdNext", "cmdPrevious", "cmdRefresh", "cmdRest"}

INSTRUMENTS = {"6": "mnuGuitar", "5": "mnuBanjo", "4": "mnuMandolin"}


class UnknownCommand(Exception):
    pass


class ScenarioPlayer:
    """Plays script lines against an editor; `output` collects what they print.

    `marks` holds, for each script line played, the number of output lines
    before it."""

    def __init__(self, files, program_files=None):
        self.editor = Editor(files, program_files)
        self.output = []
        self.marks = []
        self.editor.start()
        self.history = History(self.editor)

    def play(self, lines):
        """Plays to the end and gives the exit status."""
        try:
            for line in lines:
                self.play_line(line)
        except RunTimeFault as fault:
            self.output.append(f"fault: {fault}")
            return 1
        except EndOfProgram:
            return 0
        except UnknownCommand:
            return 2
        return 0

    def play_line(self, line):
        self.marks.append(len(self.output))
        if not line.strip() or line.startswith("#"):
            return
        word, _, rest = line.partition(" ")
        command = getattr(self, "do_" + word, None)
        if command is None:
            raise UnknownCommand(line)
        command(rest)

    def event(self, kind, handler, *arguments):
        self.history.before_event()
        handler(*arguments)
        self.history.after_event(kind)

    # Commands

    def do_strings(self, rest):
        self.run_menu(INSTRUMENTS[rest.strip()])

    def do_menu(self, rest):
        name = rest.strip()
        if name not in MENUS | QUIET_MENUS:
            raise UnknownCommand(name)
        self.run_menu(name)

    def run_menu(self, name):
        editor = self.editor
        if name in QUIET_MENUS:
            return
        if name == "mnuSave" and not editor.mnuSave_on or name == "mnuPaste" and not editor.mnuPaste_on:
            return
        self.event(COMMAND, getattr(editor, name))

    def do_press(self, rest):
        name = rest.strip()
        if name == "lblMeasNum":
            self.event(COMMAND, self.editor.lblMeasNum_click)
        elif name in ("lblLastNote", "hdbkbox"):
            pass
        elif name == "cmdCopyMeasure":
            if self.editor.focus in ("Text1", "Text2"):
                self.event(COMMAND, self.editor.cmdCopyMeasure)
        elif name in BUTTONS:
            self.press_button(name)
        else:
            raise UnknownCommand(name)

    def press_button(self, name):
        if name == "cmdRefresh" and not self.editor.cmdRefresh_on:
            return
        self.event(COMMAND, self.press_enabled, name)

    def press_enabled(self, name):
        self.editor.give_focus(name)
        getattr(self.editor, name)()

    def do_toolbar(self, rest):
        self.event(COMMAND, self.editor.Toolbar1_click, int(rest))

    def do_click(self, rest):
        self.event(COMMAND, self.click, *map(float, rest.split()))

    def click(self, x, y):
        self.editor.give_focus("StaffBox")
        self.editor.StaffBox_mouse_down(x, y)

    def do_type(self, rest):
        for character in rest:
            self.event(KEY, self.key_to_focus, None, character)

    def do_key(self, rest):
        key = rest.strip()
        if key in SHORTCUTS and self.editor.focus not in ("Text1", "Text2"):
            self.run_menu(SHORTCUTS[key])
        elif self.editor.focus in BUTTONS:
            if key in ("Enter", "Space"):
                self.press_button(self.editor.focus)
        else:
            typed = ENTER if key == "Enter" else KEY
            kind = typed if self.editor.focus in ("StaffBox", "txtRptBracket") else COMMAND
            self.event(kind, self.key_to_focus, key, KEY_CHARACTERS.get(key))

    def key_to_focus(self, key, character):
        """Key down, then the key press where the key has a character."""
        editor = self.editor
        if editor.focus == "StaffBox":
            editor.StaffBox_key_down(key)
            if character is not None:
                editor.StaffBox_key_press(character)
        elif editor.focus == "txtRptBracket":
            editor.txtRptBracket_key(key, character)
        elif editor.focus in ("Text1", "Text2"):
            editor.copy_box_key(key, character)

    def do_tick(self, rest):
        self.editor.tick()

    def do_dialog(self, rest):
        self.editor.dialogs.append(None if rest == "cancel" else rest)

    def do_prompt(self, rest):
        self.editor.prompts.append(None if rest == "cancel" else rest)

    def do_ask(self, rest):
        self.editor.questions.append(rest.strip() == "yes")

    def do_copy(self, rest):
        self.event(COMMAND, self.copy, *rest.split())

    def copy(self, first, last):
        self.editor.mnuCopy()
        self.editor.copy_boxes = {"Text1": TextBox(first), "Text2": TextBox(last)}
        self.editor.cmdCopyMeasure()

    def do_undo(self, rest):
        self.history.undo(int(rest or 1))

    def do_redo(self, rest):
        self.history.redo(int(rest or 1))

    # Prints

    def do_steps(self, rest):
        self.print([f"undo={len(self.history.steps)} redo={len(self.history.undone)}"])

    def do_state(self, rest):
        editor = self.editor
        values = [(name, getattr(editor, name)) for name in (
            "NumStrings", "LastNote", "LastMeas", "CurNote", "CurMeas", "MeasHead", "MeasEnd",
            "CursorX", "CursorY", "SavedCursorY", "CurBeats", "CurBeatUnit", "CurValue",
            "MeasCapacity", "MeasFill", "EntryState", "InputMode", "CaretOn", "Saved", "FileName",
            "EndBarX")]
        values += [
            ("Focus", editor.focus),
            ("Toolbar1", editor.down_button),
            ("cmdNext", editor.next_caption),
            ("cmdPrevious", editor.previous_caption),
            ("lblMeasNum", editor.lblMeasNum),
            ("lblLastNote", editor.lblLastNote),
            ("hdbkbox", editor.hdbkbox),
            ("txtRptBracket", quoted(editor.bracket.text) if editor.bracket_visible else "hidden"),
            ("Timer1", on_off(editor.timer_on)),
            ("cmdRefresh", on_off(editor.cmdRefresh_on)),
            ("mnuSave", on_off(editor.mnuSave_on)),
            ("mnuPaste", on_off(editor.mnuPaste_on)),
        ]
        self.print(f"{name}={value}" for name, value in values)

    def do_table(self, rest):
        records = self.editor.table.records
        self.print(record_line(i, record) for i, record in enumerate(records) if not record.is_clear())

    def do_log(self, rest):
        self.print(self.editor.surface.lines)

    def do_shown(self, rest):
        self.print(
            f"box {icon} {box_text(title)} {box_text(text)}" for icon, title, text in self.editor.boxes)
        self.editor.boxes.clear()

    def print(self, lines):
        self.output.extend(lines)
        self.output.append("")


def on_off(flag):
    return "on" if flag else "off"


def record_line(index, record):
    numbers = " ".join(str(getattr(record, name)) for name in NUMBER_FIELDS)
    texts = [record.BarCode, record.LeftHand, record.RightHand, record.ChordText, *record.Slot[1:]]
    return f"{index}: {numbers} " + " ".join(map(quoted, texts))


def box_text(text):
    letters = {"\r": "\\r", "\n": "\\n"}
    return '"' + "".join(letters.get(c) or quoted(c)[1:-1] for c in text) + '"'


def script_lines(data):
    return data.decode("latin-1").split("\n")


def output_bytes(output):
    return "".join(line + "\n" for line in output).encode("latin-1")


def main():
    if len(sys.argv) != 2:
        sys.exit("usage: editor_model.py SCRIPT")
    with open(sys.argv[1], "rb") as file:
        lines = script_lines(file.read())
    player = ScenarioPlayer(DiskFiles())
    status = player.play(lines)
    sys.stdout.buffer.write(output_bytes(player.output))
    sys.exit(status)


if __name__ == "__main__":
    main()
