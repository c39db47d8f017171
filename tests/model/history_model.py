"""Undo and redo, by keeping whole moments: a copy of everything after each event.

A step begins in the moment before the event that made it, and undoing it leads
there. What was left by undoing it comes back by redoing it."""

from operator import attrgetter

from editor_state import CHORD_TEXT, INSERTED_MEASURE, LEFT_HAND, REPEAT_BRACKET, RIGHT_HAND
from number_rules import RunTimeFault
from store_model import NUMBER_FIELDS, NoteRecord

# What is no part of a moment: the disk, answers to come, boxes shown, forms beside the main one, and
# `Saved`, which tells about the disk
OUTSIDE = {"files", "program_files", "table", "surface", "Saved", "midi_open", "tuning_setting", "dialogs",
           "prompts", "questions", "boxes", "tunes_begun", "tunes_written"}

SCRATCH_FILES = ("Temp.Sav", "Temp.Dat")

# A record as a tuple
FIELDS = NUMBER_FIELDS + ("BarCode", "LeftHand", "RightHand", "ChordText", "Slot")
fields_of = attrgetter(*FIELDS)
AT = {name: i for i, name in enumerate(FIELDS)}
CLEAR = fields_of(NoteRecord())

# A redraw derives these again
DERIVED = {AT["XPos"], AT["Spacing"], AT["BeamCode"]}
WORK = [i for i in range(len(FIELDS)) if i not in DERIVED]

COMMAND, KEY, ENTER = "command", "key", "enter"


class Moment:
    def __init__(self, editor, before=None):
        self.records = [self.frozen(record, i, before) for i, record in enumerate(editor.table.records)]
        self.values = {name: copied(value) for name, value in vars(editor).items() if name not in OUTSIDE}
        self.surface = {name: copied(value) for name, value in vars(editor.surface).items()}
        self.scratch = {name: read_or_none(editor.files, name) for name in SCRATCH_FILES}
        self.typing = typing_in(editor)
        self.page = (editor.BodyFontName, editor.BodyFontSize, editor.TitleFontName, editor.TitleFontSize)
        self.name = (editor.FileName, editor.NumStrings)
        self.last_note = editor.LastNote
        self.tune = None  # which of the tunes that were begun

    @staticmethod
    def frozen(record, index, before):
        fields = fields_of(record)
        if fields == CLEAR:
            return CLEAR
        if before is not None and before.records[index] == fields:
            return before.records[index]
        return fields[:-1] + (list(record.Slot),)

    def put_back(self, editor):
        for record, fields in zip(editor.table.records, self.records):
            for name, value in zip(FIELDS, fields):
                setattr(record, name, copied(value))
        vars(editor).update({name: copied(value) for name, value in self.values.items()})
        vars(editor.surface).update({name: copied(value) for name, value in self.surface.items()})
        for name, data in self.scratch.items():
            if data is not None:
                editor.files.write(name, data)
            elif read_or_none(editor.files, name) is not None:
                editor.files.delete(name)

    def work(self):
        """What a tune file holds, but for the derived fields."""
        used = [fields for i, fields in enumerate(self.records[: max(self.last_note, 0) + 1])
                if i == 0 or fields[AT["Measure"]] > 0]
        return [[fields[i] for i in WORK] for fields in used]


class Step:
    def __init__(self, begun_in):
        self.begun_in = begun_in
        self.left = None  # the moment that undoing it left


class History:
    """`undone` holds the steps to redo, the next one last."""

    def __init__(self, editor):
        self.editor = editor
        self.steps, self.undone = [], []
        self.now = Moment(editor)
        self.now.tune = 0
        self.filed = {0: self.now.work()}  # by tune: the work as its file has it
        self.counts = (editor.tunes_begun, editor.tunes_written)
        self.typing = None  # what the open step is about: a kind, and a record

    def before_event(self):
        """The caret may have blinked since the last event."""
        if self.editor.surface.lines != self.now.surface["lines"]:
            self.after_event(COMMAND)

    def after_event(self, kind):
        old, new = self.now, Moment(self.editor, self.now)
        begun = self.take_files(old, new)
        self.now = new
        entered = new.typing[0] != "note" and new.typing[0] != old.typing[0]
        worked = {i for i, (a, b) in enumerate(zip(old.records, new.records)) if a is not b and is_work(i, a, b)}
        changed = bool(worked) or old.page != new.page or old.name != new.name
        goes_on = (self.typing is not None and worked <= {self.typing[1]}
                   and old.page == new.page and old.name == new.name)
        begins = begun or entered or changed and not goes_on
        if begins:
            self.steps.append(Step(old))
            self.undone.clear()
        self.typing = self.still_typed(kind, old, new, entered) if begins else self.typing
        if begun or kind == ENTER or self.typing != new.typing:
            self.typing = None

    @staticmethod
    def still_typed(kind, old, new, entered):
        """What goes on in a step that has just begun."""
        return new.typing if entered or kind == KEY and old.typing == new.typing else None

    def take_files(self, old, new):
        """Whether a tune was begun; keeps what its file has."""
        begun, written = self.counts
        self.counts = (self.editor.tunes_begun, self.editor.tunes_written)
        begins = self.counts[0] != begun
        if self.counts[1] != written:
            self.filed[old.tune] = (old if begins else new).work()
        new.tune = len(self.filed) if begins else old.tune
        if begins:
            self.filed[new.tune] = new.work()
        return begins

    def undo(self, count):
        self.before_event()
        if count and self.steps:
            for _ in range(min(count, len(self.steps))):
                step = self.steps.pop()
                step.left, self.now = self.now, step.begun_in
                self.undone.append(step)
            self.arrive()

    def redo(self, count):
        self.before_event()
        if count and self.undone:
            for _ in range(min(count, len(self.undone))):
                step = self.undone.pop()
                self.now = step.left
                self.steps.append(step)
            self.arrive()

    def arrive(self):
        self.now.put_back(self.editor)
        self.editor.Saved = int(self.now.work() == self.filed[self.now.tune])
        self.typing = None


def typing_in(editor):
    note, head = editor.CurNote, editor.MeasHead
    return {CHORD_TEXT: ("chord", note), LEFT_HAND: ("left", note), RIGHT_HAND: ("right", note),
            REPEAT_BRACKET: ("bracket", head)}.get(editor.InputMode, ("note", note))


def is_work(index, old, new):
    """A button's value in a free record is a choice, no note."""
    differs = {i for i in WORK if old[i] != new[i]}
    free = index > 0 and old[AT["Measure"]] == new[AT["Measure"]] == 0
    return bool(differs - {AT["NoteCode"]} if free else differs)


def copied(value):
    if isinstance(value, list):
        return list(value)
    if isinstance(value, dict):
        return {name: copied(one) for name, one in value.items()}
    return value.copy() if hasattr(value, "copy") else value


def read_or_none(files, name):
    try:
        return files.read(name)
    except RunTimeFault:
        return None
