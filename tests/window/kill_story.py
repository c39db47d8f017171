"""What a typist does before the editor is killed, and what must be on the disk after each action.

Everything is played on the models of tests/model first, which share nothing with the program: their
table, their scratch file, their Saved and their saved files say what the disk has to hold, and their
writer of tune files makes the bytes. The rule:

- While Saved is 0, one copy keeps up with the tune. It holds the table, and after it the tail that
  an insertion has parked, under measure numbers that count on.
- Else there is none, whatever a remark or a paste has changed since: they leave Saved alone.
- Save in an insertion writes the table alone. The copy from before, which has the tail, stays for good,
  though the tune counts as saved and a later "OK" brings the tail back.
- It stays too when a command throws the tail away, such as an append or another insertion. The next
  copy is another file.
- No to the save question takes the copy away. Nothing else does, least of all another start.
"""

import pathlib
import sys

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1] / "model"))

from editor_model import ScenarioPlayer  # noqa: E402
from editor_state import FRET_ENTRY, INSERTED_MEASURE  # noqa: E402
from number_rules import RunTimeFault  # noqa: E402
from random_scripts import ScriptWriter  # noqa: E402
from store_model import HEAD, MemoryFiles, NoteRecord, records_bytes, tune_bytes  # noqa: E402

MENU_KEYS = {
    "mnuNew": ("Alt+F", '"n'),
    "mnuOpen": ("Alt+F", '"o'),
    "mnuAppend": ("Alt+F", '"d'),
    "mnuSave": ("Alt+F", '"s'),
    "mnuSaveAs": ("Alt+F", '"a'),
    "mnuNoteBefore": ("Alt+E", '"b'),
    "mnuInsNoteAfter": ("Alt+E", '"a'),
    "mnuDelNote": ("Alt+E", "Down", "Down", "Return"),
    "mnuInsMeas": ("Alt+E", '"i'),
    "mnuDelMeas": ("Alt+E", '"d'),
    "mnuRemarks": ("Alt+E", '"m'),
    "mnuChord": ("F1",),
    "mnuRHEdit": ("F2",),
    "mnuLHEdit": ("F3",),
    "mnuHardBrk": ("Ctrl+N",),
    "mnuPaste": ("Ctrl+P",),
    "mnuRest": ("F4",),
    "mnuHalfRest": ("Ctrl+H",),
    "mnuWholeRest": ("Ctrl+W",),
    "mnuRptSign": ("F6",),
    "mnuRptStart": ("F8",),
    "mnuDoubBar": ("F9",),
    "mnuBegDoubBar": ("F12",),
}
CLICKED = ("cmdNext", "cmdPrevious", "cmdRest", "lblMeasNum")
ANSWERS = ("dialog", "prompt", "ask")  # lines that wait for the command after them
TAIL_FILE = "Temp.Sav"


class Disk:
    """`copy` holds the bytes of the copy that goes along with the tune, None without one; `left`
    those of the copies that stay for good; `tunes` those of the saved tunes, by name."""

    def __init__(self, copy, left, tunes):
        self.copy, self.left, self.tunes = copy, left, tunes

    def copies(self):
        return sorted(self.left + ([] if self.copy is None else [self.copy]))


class Action:
    """One thing that is done: its tokens for key_feed.cpp, and the disk after it. `between` are
    copies that are right in the midst of it, as a key may be two events. While it is done no file
    grows beyond a few bytes if `full` is set."""

    def __init__(self, line, tokens, disk, between=(), full=False):
        self.line, self.tokens, self.disk = line, tokens, disk
        self.between, self.full = between, full


class Player(ScenarioPlayer):
    """Tells of the state between the two events of a key, and of what is asked and shown."""

    def __init__(self, files):
        super().__init__(files)
        self.asked = []
        self.key_was_down = lambda: None
        editor = self.editor
        for name in ("ask_file", "ask_yes", "ask_text"):
            setattr(editor, name, self._noting(name, getattr(editor, name)))
        editor.show_box = lambda icon, *_: icon == "question" or self.asked.append(("box", None))
        take_fonts = editor.take_fonts
        editor.take_fonts = lambda: (self._replace_fonts(), take_fonts())
        key_down = editor.StaffBox_key_down
        editor.StaffBox_key_down = lambda key: (key_down(key), self.key_was_down())

    def _replace_fonts(self):
        """Digits that were typed into the header record by accident are the name of no font."""
        header = self.editor.table[0]
        for s in 3, 6:
            if header.Slot[s]:
                header.Slot[s] = "Arial"

    def event(self, kind, handler, *arguments):
        """Keeps no history: nothing here is undone."""
        handler(*arguments)

    def _noting(self, name, ask):
        def noting():
            self.asked.append((name, ask()))
            return self.asked[-1][1]

        return noting


class Typist(ScriptWriter):
    """Writes down actions instead of lines. `tunes` are those that are in `folder` already, `named`
    is the one that the program is started with, "" without one."""

    def __init__(self, seed, folder, tunes, named):
        self.folder = folder
        self.named = named
        self.tail = []  # what an insertion has taken out of the table
        self.played = []
        self.disk = Disk(None, [], tunes)
        super().__init__(seed, 0, tunes)

    def replay(self):
        """Plays the lines from the start, to be rid of one that has ended in a fault."""
        self.player = Player(MemoryFiles(self.tunes))
        if self.named:
            self.editor.focus = ""  # nothing has it yet
        for line in self.lines:
            self._play_line(line)
        self.answers = []

    def _play_line(self, line):
        """No answer that was not wanted waits for another command."""
        self.player.play_line(line)
        if line.partition(" ")[0] not in ANSWERS:
            for queue in (self.editor.dialogs, self.editor.prompts, self.editor.questions):
                queue.clear()

    # Lines of a scenario

    def emit(self, line):
        word, _, rest = line.partition(" ")
        on_button = self.editor.focus in ("cmdNext", "cmdPrevious", "cmdRest")
        if word in ANSWERS:
            self.answers.append(line)
        elif word == "type" and not on_button:
            for character in rest:
                self._play("type " + character, ['"' + character])
        elif word == "key" and (not on_button or rest in ("Enter", "Space")):
            self._play(line, ["Return" if rest == "Enter" else rest])
        elif word == "menu" and rest in MENU_KEYS and self._is_on(rest):
            self._play(line, [*MENU_KEYS[rest]])
        elif word == "press" and rest in CLICKED:
            self._play(line, ["@" + rest])
        elif word == "copy":
            first, last = rest.split()
            boxes = ("?Text1", '"' + first, "Return", "?Text2", '"' + last, "Return", "?MainWin")
            self._play(line, ["Ctrl+C", *boxes])
        # Anything else is for looking, or for forms and timers, which change no tune.

    def _is_on(self, name):
        editor = self.editor
        return {"mnuSave": editor.mnuSave_on, "mnuPaste": editor.mnuPaste_on}.get(name, True)

    def _play(self, line, tokens):
        editor = self.editor
        tail = [self._copied(editor.table[i]) for i in range(editor.MeasHead, editor.LastNote + 1)]
        between = []
        self.player.key_was_down = lambda: editor.Saved == 0 and between.append(self._work())
        self.player.asked.clear()
        lines = self.answers + [line]
        self.answers = []
        try:
            for each in lines:
                self._play_line(each)
        except RunTimeFault:
            self.replay()
            return
        self.lines += lines
        self._follow(line, tail)
        self.played.append(Action(line, tokens + self._answer_tokens(), self.disk, between))

    def _answer_tokens(self):
        """Keys for the dialogs that come, in their order."""
        tokens = []
        for kind, answer in self.player.asked:
            if kind == "box":
                tokens += ["?QMessageBox", "Return"]
            elif kind == "ask_yes":
                tokens += ["?QMessageBox", "Alt+Y" if answer else "Alt+N"]
            elif kind == "ask_text":
                tokens += ["?QInputDialog", *(['"' + answer, "Return"] if answer else ["Escape"])]
            else:
                path = ['"' + f"{self.folder}/{answer}", "Return"]
                tokens += ["?QFileDialog", *(path if answer else ["Escape"])]
        return tokens + ["?MainWin"] if tokens else []

    # What the disk must hold

    @staticmethod
    def _copied(record):
        copied = NoteRecord()
        copied.copy_from(record)
        return copied

    def _work(self):
        """The tune as a file that holds the parked tail too, whose measures count on."""
        table, last = self.editor.table, self.editor.LastNote
        measure = table[max(last, 0)].Measure
        tail = [self._copied(record) for record in self.tail]
        for record in tail:
            measure += record.NoteCode == HEAD
            record.Measure = measure
        return tune_bytes(table, last) + records_bytes(tail)

    def _follow(self, line, tail):
        """A copy stays for good when the tail in it was thrown away, or saved work lacks it."""
        editor, disk = self.editor, self.disk
        contents = self.player.editor.files.contents
        read_back = TAIL_FILE not in contents
        inserting = line == "menu mnuInsMeas"
        lost = not read_back and (inserting or editor.InputMode != INSERTED_MEASURE)
        discarded = ("ask_yes", False) in self.player.asked
        left = list(disk.left)
        if self.tail and (lost or editor.Saved != 0) and not discarded and disk.copy is not None:
            left.append(disk.copy)
        if inserting:
            self.tail = tail
        elif lost or read_back:
            self.tail = []
        tunes = {name: data for name, data in contents.items() if name.endswith(".gui")}
        self.disk = Disk(self._work() if editor.Saved == 0 else None, left, tunes)

    # Starts

    def greet(self):
        """The start without a tune."""
        self.played.append(Action("start", ["?Splash", "Return", "?MainWin"], self.disk))

    def open_named(self):
        """The start with a tune, which is opened as from the menu."""
        self.emit("dialog " + self.named)
        self.emit("menu mnuOpen")
        self.played[-1].tokens = ["?MainWin", "?StaffBox"]

    # Chapters

    def leave_modes(self):
        """On to where every command does something."""
        if self.editor.InputMode == INSERTED_MEASURE:
            self.emit("press cmdNext")
        if self.editor.InputMode != FRET_ENTRY:
            self.emit("key Enter")
        if self.editor.focus != "StaffBox":
            self.emit("press cmdNext")

    def edit(self):
        """A change of the tune, whatever was there before."""
        self.leave_modes()
        self.append()
        self.emit("type " + self.pick(*"0123579"))
        self.emit("key Enter")

    def save_new(self):
        self.leave_modes()
        self.emit(f"dialog tune{len(self.disk.tunes) + 1}.gui")
        self.emit("menu mnuSaveAs")

    def save_twice(self):
        """With work before each."""
        for _ in range(2):
            self.edit()
            self.emit("menu mnuSave")

    def insert(self):
        """A measure before others, so that there is a tail, sometimes saved in between."""
        self.edit()
        self.emit("press cmdPrevious")
        self.emit("menu mnuInsMeas")
        for character in "3", "5":
            self.emit("type " + character)
            self.emit("key Enter")
            if self.chance(0.5):
                self.emit("menu mnuSave")
        self.emit("press " + self.pick("cmdNext", "cmdNext", "cmdPrevious"))

    def fill_disk(self):
        """The copy stays as it was, and follows when there is room again."""
        self.edit()
        self.leave_modes()
        for full in (True, True, False):
            before, count = self.disk, len(self.played)
            self.emit("type " + self.pick(*"0123"))
            if full and len(self.played) > count:
                action = self.played[-1]
                action.full = True
                action.disk = self.disk = Disk(before.copy, before.left, before.tunes)

    def save_as_or_not(self):
        if self.chance(0.5):
            self.save_new()
        else:
            self.emit("dialog cancel")
            self.emit("menu mnuSaveAs")

    def open(self):
        self._answer_question()
        self.emit("dialog " + self.pick("cancel", *self.disk.tunes))
        self.emit("menu mnuOpen")

    def new(self):
        self._answer_question()
        self.emit("menu mnuNew")

    def _answer_question(self):
        if self.editor.Saved == 0:
            self.emit("ask " + self.pick("yes", "no"))
            if not self.editor.FileName and self.answers == ["ask yes"]:
                self.emit(f"dialog tune{len(self.disk.tunes) + 1}.gui")

    def wander(self, count):
        """Any actions, at least as many as that."""
        end = len(self.played) + count
        while len(self.played) < end:
            (action,) = self.rng.choices(list(WANDERINGS), list(WANDERINGS.values()))
            action(self)

    def tell(self):
        """A whole life. Returns how many of its actions are looked at one by one."""
        if self.named:
            self.open_named()
        else:
            self.greet()
        chapters = [Typist.insert, Typist.fill_disk, Typist.save_twice]
        self.rng.shuffle(chapters)
        self.edit()
        if not self.named:
            self.save_new()
        for chapter in chapters:
            chapter(self)
            self.wander(self.rng.randrange(8))
        looked_at = len(self.played)
        self.wander(250)
        return looked_at


WANDERINGS = {
    Typist.type_note: 12,
    Typist.loose_keys: 8,
    Typist.back_up: 2,
    Typist.edit: 4,
    Typist.step: 8,
    Typist.go_to: 2,
    Typist.append: 2,
    Typist.chord: 3,
    Typist.hand_letter: 3,
    Typist.remark: 1,
    Typist.rest: 4,
    Typist.bar_sign: 3,
    Typist.hard_break: 1,
    Typist.insert_note: 4,
    Typist.delete_note: 3,
    Typist.delete_measure: 2,
    Typist.insert_measure: 4,
    Typist.insert: 3,
    Typist.copy: 3,
    Typist.paste: 1,
    Typist.save_as_or_not: 1,
    Typist.save_again: 3,
    Typist.open: 1,
    Typist.new: 1,
    Typist.leave_mode: 2,
}
