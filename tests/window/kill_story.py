"""What a typist does before the editor is killed, and what its journals must hold after each action.

Everything is played on the models of tests/model first, which share nothing with the program: their
table, their scratch file, their history and their saved files say what the disk has to hold, and
their writer of tune files makes the bytes. The rule:

- The journal of the run holds the table, and after it the tail that an insertion has parked, under
  measure numbers that count on. It does so whatever has been saved, and counts as changed when the
  table differs from its file.
- A tune that differs from its file is left behind in a journal of its own when another takes its
  place: as discarded after No to the save question, else as lost.
- So it is, as lost, when a command throws the tail away, or Save in an insertion writes the table alone.
- Nothing is left behind by going back and forth in the history.
"""

import pathlib
import sys
from typing import NamedTuple

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1] / "model"))

from editor_model import ScenarioPlayer  # noqa: E402
from editor_state import FRET_ENTRY, INSERTED_MEASURE  # noqa: E402
from history_model import History  # noqa: E402
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
GOING_BACK = {"undo": "Ctrl+Z", "redo": "Ctrl+Y"}
TAIL_FILE = "Temp.Sav"


class Work(NamedTuple):
    """What a journal holds: a tune's bytes, how its run has ended ("" if it has not said so), and
    whether the table differs from its file."""

    tune: bytes
    ended: str
    changed: bool


class Disk(NamedTuple):
    """`work` is what the journal of the run holds, `left` what is in others; `tunes` are the saved
    tunes, by name, `saved` the one that this run has saved last, "" if none."""

    work: Work
    left: tuple
    tunes: dict
    saved: str


class Past(NamedTuple):
    """The moments in which the steps began, and what the files had of their tunes."""

    moments: list
    filed: dict


class Action:
    """One thing that is done: its tokens for key_feed.cpp, and the disk and the past after it. While it
    is done no file grows if `full` is set."""

    def __init__(self, line, tokens, disk=None, past=None, full=False):
        self.line, self.tokens, self.disk, self.past, self.full = line, tokens, disk, past, full


class Player(ScenarioPlayer):
    """Tells what is asked and shown, and which work is left behind. The editor's `tail` is what an
    insertion has taken out of the table; like anything of the editor it is put back by undo."""

    def __init__(self, files):
        super().__init__(files)
        self.asked = []
        self.left = []
        self.saved = ""
        editor = self.editor
        editor.tail = []
        self.begin_history()
        for name in ("ask_file", "ask_yes", "ask_text"):
            setattr(editor, name, self._noting(name, getattr(editor, name)))
        editor.show_box = lambda icon, *_: icon == "question" or self.asked.append(("box", None))
        write = files.write
        files.write = lambda name, data: (self._note_saved(name), write(name, data))
        take_fonts = editor.take_fonts
        editor.take_fonts = lambda: (self._replace_fonts(), take_fonts())

    def begin_history(self):
        self.history = History(self.editor)

    def _note_saved(self, name):
        if name.endswith(".gui"):
            self.saved = name

    def _replace_fonts(self):
        """Digits that were typed into the header record by accident are the name of no font."""
        header = self.editor.table[0]
        for s in 3, 6:
            if header.Slot[s]:
                header.Slot[s] = "Arial"

    def _noting(self, name, ask):
        def noting():
            self.asked.append((name, ask()))
            return self.asked[-1][1]

        return noting

    def event(self, kind, handler, *arguments):
        super().event(kind, self._handle, handler, arguments)

    def _handle(self, handler, arguments):
        editor = self.editor
        before = self.work()
        counts = editor.tunes_begun, editor.tunes_written
        tail = [copied(editor.table[i]) for i in range(editor.MeasHead, editor.LastNote + 1)]
        handler(*arguments)
        begun, saved = editor.tunes_begun != counts[0], editor.tunes_written != counts[1]
        self._follow(before, begun and not saved, saved, handler == editor.mnuInsMeas, tail)

    def _follow(self, before, replaced, saved, inserting, tail):
        editor = self.editor
        discarded = ("ask_yes", False) in self.asked
        read_back = TAIL_FILE not in editor.files.contents
        thrown_away = not read_back and (inserting or editor.InputMode != INSERTED_MEASURE)
        tail_lost = editor.tail and (thrown_away or saved) and not discarded
        if before.changed and (replaced or tail_lost):
            self.left.append(before._replace(ended="discarded" if discarded else "lost"))
        if inserting:
            editor.tail = tail
        elif thrown_away or read_back:
            editor.tail = []

    def work(self):
        """The tune as a file that holds the parked tail too, whose measures count on."""
        table, last = self.editor.table, self.editor.LastNote
        measure = table[max(last, 0)].Measure
        tail = [copied(record) for record in self.editor.tail]
        for record in tail:
            measure += record.NoteCode == HEAD
            record.Measure = measure
        now = self.history.now
        changed = now.work() != self.history.filed[now.tune]
        return Work(tune_bytes(table, last) + records_bytes(tail), "", changed)


def copied(record):
    copy = NoteRecord()
    copy.copy_from(record)
    return copy


class Typist(ScriptWriter):
    """Writes down actions instead of lines. `tunes` are those that are in `folder` already, `named`
    is the one that the program is started with, "" without one."""

    def __init__(self, seed, folder, tunes, named):
        self.folder = folder
        self.named = named
        self.played = []
        super().__init__(seed, 0, tunes)
        self.disk = Disk(self.player.work(), (), tunes, "")

    def replay(self):
        """Plays the lines from the start, to be rid of one that has ended in a fault."""
        self.player = Player(MemoryFiles(self.tunes))
        if self.named:
            self._open_named()
        for line in self.lines:
            self._play_line(line)
        self.answers = []

    def _open_named(self):
        """The program's history begins when the tune is open."""
        self.editor.focus = ""  # nothing has it yet
        self._play_line("dialog " + self.named)
        self._play_line("menu mnuOpen")
        self.player.begin_history()

    def _play_line(self, line):
        """No answer that was not wanted waits for another command."""
        self.player.asked.clear()
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
        elif word in GOING_BACK:
            self._play(line, [GOING_BACK[word]])
        elif word == "copy":
            first, last = rest.split()
            boxes = ("?Text1", '"' + first, "Return", "?Text2", '"' + last, "Return", "?MainWin")
            self._play(line, ["Ctrl+C", *boxes])
        # Anything else is for looking, or for forms and timers, which change no tune.

    def _is_on(self, name):
        editor = self.editor
        return {"mnuSave": editor.mnuSave_on, "mnuPaste": editor.mnuPaste_on}.get(name, True)

    def _play(self, line, tokens):
        lines = self.answers + [line]
        self.answers = []
        try:
            for each in lines:
                self._play_line(each)
        except RunTimeFault:
            self.replay()
            return
        self.lines += lines
        contents = self.editor.files.contents
        tunes = {name: data for name, data in contents.items() if name.endswith(".gui")}
        player = self.player
        self.disk = Disk(player.work(), tuple(player.left), tunes, player.saved)
        self._note(line, tokens + self._answer_tokens())

    def _note(self, line, tokens):
        history = self.player.history
        steps = [step.begun_in for step in history.steps]
        self.played.append(Action(line, tokens, self.disk, Past(steps, dict(history.filed))))

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

    def undone(self, action, count):
        """What a journal must hold when so many steps have been undone after an action. No more can be
        played."""
        moment = action.past.moments[-count]
        moment.put_back(self.editor)
        self.player.history.now = moment
        self.player.history.filed = action.past.filed
        return self.player.work()

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
        """The journal stays as it was, and catches up when there is room again."""
        self.edit()
        self.leave_modes()
        for full in (True, True, False):
            before, count = self.disk, len(self.played)
            self.emit("type " + self.pick(*"0123"))
            if full and len(self.played) > count:
                action = self.played[-1]
                action.full = True
                action.disk = self.disk = before

    def undo(self):
        for _ in range(min(self.rng.randrange(1, 6), len(self.player.history.steps))):
            self.emit("undo")

    def redo(self):
        for _ in range(min(self.rng.randrange(1, 6), len(self.player.history.undone))):
            self.emit("redo")

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

    def start(self):
        if self.named:
            boxes = sum(kind == "box" for kind, _ in self.player.asked)
            tokens = ["?QMessageBox", "Return"] * boxes + ["?MainWin", "?StaffBox"]
        else:
            tokens = ["?Splash", "Return", "?MainWin"]
        self._note("start", tokens)

    def tell(self):
        """A whole life. Returns how many of its actions are looked at one by one."""
        self.start()
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
    Typist.undo: 4,
    Typist.redo: 3,
}
