"""The state that all handlers share, the window's controls, and what several handlers do."""

from measure_model import clear_staff, redraw_measure
from number_rules import Int16
from store_model import HEAD, TABLE_END, ItemReader, MemoryFiles, NoteTable, read_record
from surface_model import PLAIN_PEN, XOR_PEN, RecordingSurface

REVIEW, APPEND, EDIT = 0, 1, 2

FRET_ENTRY, CHORD_TEXT, INSERTED_MEASURE, LEFT_HAND, RIGHT_HAND, REPEAT_BRACKET = 1, 2, 3, 4, 5, 6

# Rest code of each value code
REST_CODES = {1: 94, 2: 95, 3: 96, 4: 97, 5: 97, 6: 98, 7: 99, 8: 99, 9: 92, 10: 92, 11: 93}


class TextBox:
    """A one-line text box: the text before its caret, and the text after it."""

    def __init__(self, text=""):
        self.before, self.after = "", text

    def copy(self):
        box = TextBox()
        box.before, box.after = self.before, self.after
        return box

    @property
    def text(self):
        return self.before + self.after

    def key(self, name, character):
        if name == "Left":
            self.before, self.after = self.before[:-1], self.before[-1:] + self.after
        elif name == "Right":
            self.before, self.after = self.before + self.after[:1], self.after[1:]
        elif name == "Home":
            self.before, self.after = "", self.text
        elif name == "End":
            self.before, self.after = self.text, ""
        elif name == "Backspace":
            self.before = self.before[:-1]
        elif name == "Delete":
            self.after = self.after[1:]
        elif character is not None and character >= " ":
            self.before += character


class EditorState:
    """`NoteTable`, the tune and editing state, and the controls of the main form.

    `dialogs`, `prompts` and `questions` are the queues of answers that the next
    dialog, prompt and Yes/No question give; None is a cancel. `boxes` collects
    the message boxes shown, as (icon, title, text)."""

    NumStrings = Int16()
    LastNote = Int16()
    LastMeas = Int16()
    CurNote = Int16()
    CurMeas = Int16()
    MeasHead = Int16()
    MeasEnd = Int16()
    CursorX = Int16()
    CursorY = Int16()
    SavedCursorY = Int16()
    CurBeats = Int16()
    CurBeatUnit = Int16()
    CurValue = Int16()
    MeasCapacity = Int16()
    MeasFill = Int16()
    EndBarX = Int16()

    def __init__(self, files, program_files=None):
        self.files = files
        self.program_files = program_files or MemoryFiles()
        self.table = NoteTable()
        self.surface = RecordingSurface()

        self.NumStrings = 6
        self.FileName = ""
        self.CaretOn = 0
        self.CurMeas = 1
        self.LastMeas = 0
        self.CurNote = 1
        self.LastNote = 0
        self.MeasHead = 1
        self.MeasEnd = 0
        self.CursorX = self.CursorY = self.SavedCursorY = 0
        self.CurValue = 7
        self.CurBeats = self.CurBeatUnit = 4
        self.MeasCapacity = 48
        self.MeasFill = 0
        self.EndBarX = 0
        self.EntryState = APPEND
        self.InputMode = FRET_ENTRY
        self.Saved = 65535

        self.BodyFontName = self.TitleFontName = "Arial"
        self.BodyFontSize, self.TitleFontSize = 10.0, 20.0
        self.CurTuning = [0] * 6

        self.focus = ""
        self.down_button = 7
        self.next_caption, self.previous_caption = "Next", "Previous"
        self.lblMeasNum = self.lblLastNote = self.hdbkbox = ""
        self.bracket = TextBox()
        self.bracket_visible = False
        self.copy_boxes = {}  # while FrmCopyBox is there, by name
        self.timer_on = True
        self.cmdRefresh_on = True
        self.mnuSave_on = False
        self.mnuPaste_on = False
        self.midi_open = False
        self.tuning_setting = {}  # by strings

        self.dialogs, self.prompts, self.questions = [], [], []
        self.boxes = []

        self.tunes_begun = self.tunes_written = 0  # counts: of New and Open, of files

    # Controls

    def give_focus(self, control):
        if self.focus == control:
            return
        self.focus = control
        if control == "StaffBox":
            self.redraw()
            self.timer_on = True

    def show_box(self, icon, title, text):
        self.boxes.append((icon, title, text))

    def ask_file(self):
        return self.dialogs.pop(0) if self.dialogs else None

    def ask_text(self):
        """The answer to a prompt; a cancelled prompt gives an empty text."""
        return (self.prompts.pop(0) if self.prompts else None) or ""

    def ask_yes(self):
        return self.questions.pop(0) if self.questions else False

    def reset_captions(self):
        self.next_caption, self.previous_caption = "Next", "Previous"

    def set_toolbar_value(self, code):
        """Makes one button the only one that is down; without that button, none is."""
        self.down_button = code if 1 <= code <= 11 else 0

    # The blinking cursor

    def blink(self):
        self.CaretOn = ~self.CaretOn
        surface = self.surface
        surface.DrawMode = XOR_PEN
        surface.line(self.CursorX, self.CursorY, self.CursorX, self.CursorY - 8)
        surface.DrawMode = PLAIN_PEN

    def hide_caret(self):
        if self.CaretOn:
            self.blink()

    def tick(self):
        if self.timer_on:
            self.blink()

    # Measures

    def redraw(self):
        redraw_measure(self)

    def clear_staff(self):
        clear_staff(self)

    def head(self):
        return self.table[self.MeasHead]

    def note(self):
        return self.table[self.CurNote]

    def lowest_line(self):
        return 28 + 8 * self.NumStrings

    def find_measure(self):
        """Sets MeasHead and MeasEnd to measure CurMeas, or leaves both alone."""
        for index in range(1, TABLE_END + 1):
            if self.table[index].Measure == self.CurMeas:
                self.MeasHead = self.MeasEnd = index
                self.step_end_up()
                return True
        return False

    def step_end_up(self):
        """MeasEnd up to the measure's last record, or the end of the table."""
        while self.MeasEnd < TABLE_END and self.table[self.MeasEnd + 1].Measure == self.CurMeas:
            self.MeasEnd += 1

    def walk_measure_end(self):
        """MeasEnd from MeasHead upward, not stopped by the end of the table."""
        measure = self.head().Measure
        self.MeasEnd = self.MeasHead
        while self.table[self.MeasEnd + 1].Measure == measure:
            self.MeasEnd += 1

    def cursor_to_first_string(self, y_without):
        """The cursor on the highest filled string of the measure's first record."""
        s = self.table[self.MeasHead + 1].highest_filled_slot()
        self.CursorY = 28 + 8 * s if s else y_without

    def cursor_to_filled_string(self):
        """The cursor on the highest filled string of record CurNote, if any is filled."""
        s = self.note().highest_filled_slot()
        if s:
            self.CursorY = 28 + 8 * s

    def make_head(self, index):
        head = self.table[index]
        head.Measure = self.CurMeas
        head.NoteCode = HEAD
        head.Beats = self.CurBeats
        head.BeatUnit = self.CurBeatUnit

    def start_empty_staff(self):
        self.CursorX = 48
        self.clear_staff()
        self.timer_on = True
        self.give_focus("StaffBox")
        self.MeasFill = 0

    def read_parked(self, name, first):
        """Reads a scratch file's records into the table from index `first` on,
        handing each record and its index out after it is read."""
        reader = ItemReader(self.files.read(name))
        index = first
        while not reader.at_end():
            read_record(reader, self.table[index])
            yield index, self.table[index]
            index += 1

