"""Keys and clicks on `StaffBox`, the text modes, and the repeat bracket's text box."""

from editor_state import (
    APPEND, CHORD_TEXT, EDIT, FRET_ENTRY, INSERTED_MEASURE, LEFT_HAND, REPEAT_BRACKET, REVIEW,
    RIGHT_HAND)
from measure_model import SPACINGS, next_x, print_signature
from store_model import STRINGS

BACKSPACE, ENTER = "\x08", "\r"

FRET_CHARACTERS = "0123456789-><xX^/()="

# CurValue: what "+", "." and "*" give; None stays
VALUE_KEYS = {
    1: (2, 5, 1),
    2: (4, 5, 1),
    3: (4, 5, 3),
    4: (7, 5, 3),
    5: (7, 5, 3),
    6: (7, 8, 6),
    7: (2, 8, 6),
    8: (2, 8, 6),
    9: (7, 8, None),
    10: (7, 8, None),
    11: (7, 8, None),
}

# Rest code: button shown by Left and Right; 92 differs between the two
REST_BUTTONS = {93: 11, 94: 1, 95: 2, 96: 3, 97: 4, 98: 6, 99: 7}

# Value that a click on a record selects
CLICKED_VALUES = {**{code: code for code in range(1, 12)}, 94: 1, 95: 2, 96: 3, 97: 4, 98: 6, 99: 7, 92: 9, 93: 11}

# Strings: y range of the upper and of the lower figure, upper bounds excluded
FIGURE_RANGES = {4: ((36, 46), (48, 59)), 5: ((34, 49), (51, 65)), 6: ((36, 54), (58, 75))}


def is_control(character):
    return character < " " or character == "\x7f"


class StaffInput:
    def cursor_string(self):
        return round((self.CursorY - 28) / 8)

    # Key down

    def StaffBox_key_down(self, key):
        self.hide_caret()
        if self.InputMode == CHORD_TEXT:
            return
        handler = {
            "Backspace": self.key_backspace,
            "Left": self.key_left,
            "Up": self.key_up,
            "Right": self.key_right,
            "Down": self.key_down,
            "Delete": self.key_delete,
        }.get(key)
        if handler:
            handler()

    def key_up(self):
        self.CursorY -= 8
        self.cursor_x_to_note()
        if self.CursorY < 36:
            self.CursorY = self.lowest_line()

    def key_down(self):
        self.CursorY += 8
        self.cursor_x_to_note()
        if self.CursorY > self.lowest_line():
            self.CursorY = 36

    def cursor_x_to_note(self):
        if self.note().XPos > 0:
            self.CursorX = self.note().XPos

    def key_delete(self):
        if self.InputMode == FRET_ENTRY:
            self.Saved = 0
            self.note().set_slot(self.cursor_string(), "")
            self.redraw()

    def key_backspace(self):
        if self.EntryState == REVIEW:
            self.Saved = 0
            self.note().set_slot(self.cursor_string(), "")
            self.CursorX = self.note().XPos
            self.redraw()
        elif self.EntryState == APPEND:
            self.take_back_note()

    def take_back_note(self):
        if self.CurNote > self.MeasHead + 1 and self.note().Measure == 0:
            self.Saved = 0
            self.CurNote -= 1
            self.LastNote -= 1
        self.note().clear()
        self.CurNote -= 1
        self.MeasEnd = self.CurNote
        self.redraw()
        self.CurNote = self.MeasEnd + 1
        if self.CurNote != self.MeasHead + 1:
            self.CursorX = next_x(self.table[self.CurNote - 1])
        else:
            self.CursorX = 48
            self.MeasEnd -= 1

    def key_left(self):
        if self.CurNote == self.MeasHead + 1:
            return
        if self.EntryState == APPEND:
            self.EntryState = EDIT
        self.hide_caret()
        self.CurNote -= 1
        self.CursorX = self.note().XPos
        self.show_button_of_note(half_rest=8)
        self.cursor_to_filled_string()

    def key_right(self):
        if self.EntryState == APPEND:
            return
        if self.EntryState == REVIEW and self.CurNote + 1 > self.MeasEnd:
            return
        self.hide_caret()
        if self.EntryState == EDIT and self.CurNote == self.LastNote:
            if self.MeasFill < self.MeasCapacity:
                self.CursorX = next_x(self.note())
                self.CurNote += 1
                self.EntryState = APPEND
            return
        if self.CurNote < self.MeasEnd:
            self.CurNote += 1
        self.show_button_of_note(half_rest=9)
        self.cursor_to_filled_string()
        self.CursorX = self.note().XPos

    def show_button_of_note(self, half_rest):
        code = self.note().NoteCode
        if code < 90:
            self.set_toolbar_value(code)
        elif code == 92:
            self.set_toolbar_value(half_rest)
        elif code in REST_BUTTONS:
            self.set_toolbar_value(REST_BUTTONS[code])

    # Key press

    def StaffBox_key_press(self, character):
        self.Saved = 0
        self.surface.CurrentX, self.surface.CurrentY = self.CursorX, self.CursorY
        if self.InputMode in (FRET_ENTRY, INSERTED_MEASURE):
            self.FretKey(character)
        elif self.InputMode == CHORD_TEXT:
            self.ChordKey(character)
        elif self.InputMode in (LEFT_HAND, RIGHT_HAND):
            self.HandKey(character)
        elif self.InputMode == REPEAT_BRACKET:
            self.BracketKey(character)

    def FretKey(self, character):
        s = self.cursor_string()
        if s < 1 or s > self.NumStrings:
            s = self.NumStrings
        if character in FRET_CHARACTERS:
            self.put_fret(s, character)
        elif character in "+.*":
            self.change_value("+.*".index(character))
        elif character == ENTER:
            if self.EntryState == APPEND:
                self.commit_note(s)
            else:
                self.CursorX = self.note().XPos
                self.redraw()

    def put_fret(self, s, character):
        note = self.note()
        note.NoteCode = self.CurValue
        note.Beats = self.CurBeats
        note.BeatUnit = self.CurBeatUnit
        if self.EntryState == APPEND:
            self.MeasEnd = self.LastNote = self.CurNote
        if self.CursorX == note.XPos:
            note.Slot[s] = character
        else:
            note.Slot[s] += character
        self.surface.text_at(self.CursorX, self.CursorY - 6, character)
        note.Measure = self.CurMeas
        if note.XPos == 0:
            note.XPos = self.CursorX
        self.CursorX += 6
        self.timer_on = True

    def change_value(self, key):
        value = VALUE_KEYS[self.CurValue][key] if self.CurValue in VALUE_KEYS else None
        if value is not None:
            self.CurValue = value
            self.set_toolbar_value(value)

    def commit_note(self, s):
        note = self.note()
        self.CursorX -= 6 * len(note.Slot[s])
        width = SPACINGS[self.CurValue] if 1 <= self.CurValue <= 11 else 0
        for i in STRINGS:
            if len(note.Slot[i]) >= width:
                width = len(note.Slot[i]) + 1
        if not any(note.Slot):
            return
        note.Measure = self.CurMeas
        note.NoteCode = self.CurValue
        note.Spacing = width
        note.Beats = self.CurBeats
        note.BeatUnit = self.CurBeatUnit
        self.MeasEnd = self.CurNote
        self.LastMeas = self.CurMeas
        self.redraw()
        self.CurNote = self.LastNote = self.MeasEnd
        if self.MeasFill >= self.MeasCapacity:
            self.timer_on = False
            self.give_focus("cmdNext")
        else:
            self.CurNote += 1
            self.CursorX += width * 6

    def ChordKey(self, character):
        if character == ENTER:
            note = self.note()
            self.CursorY = self.SavedCursorY
            self.CursorX = note.XPos
            if self.MeasEnd < self.CurNote:
                self.MeasEnd = self.CurNote
            self.InputMode = FRET_ENTRY
            self.redraw()
        elif character == BACKSPACE:
            note = self.note()
            if note.ChordText:
                note.ChordText = note.ChordText[:-1]
                self.redraw()
                self.surface.text_at(note.XPos, 12, note.ChordText)
                self.CursorX = note.XPos + 10 * len(note.ChordText)
        elif " " <= character <= "~":
            self.surface.text_at(self.CursorX, 12, character)
            self.note().ChordText += character
            self.CursorX += 10

    def HandKey(self, character):
        if character not in (ENTER, BACKSPACE):
            if is_control(character):
                return
            if self.InputMode == LEFT_HAND:
                self.surface.text_at(self.CursorX, self.CursorY - 8, character)
                self.note().LeftHand = character
            else:
                self.surface.text_at(self.CursorX, self.CursorY - 16, character)
                self.note().RightHand = character
        self.InputMode = FRET_ENTRY
        self.CursorY = self.SavedCursorY

    def BracketKey(self, character):
        if character == ENTER:
            self.CursorY = self.SavedCursorY
            self.CursorX = self.note().XPos
            self.InputMode = FRET_ENTRY
            self.redraw()
        elif not is_control(character):
            self.surface.text_at(self.CursorX, 6, character)
            self.head().Slot[2] += character
            self.CursorX += 8

    def txtRptBracket_key(self, key, character):
        if character == ENTER:
            self.head().Slot[2] = self.bracket.text
            self.bracket_visible = False
            self.give_focus("StaffBox")
            self.InputMode = FRET_ENTRY
        else:
            self.bracket.key(key, character)

    # Text modes

    def mnuChord(self):
        if self.InputMode == INSERTED_MEASURE:
            return
        note = self.note()
        self.SavedCursorY = self.CursorY
        self.InputMode = CHORD_TEXT
        self.Saved = 0
        if note.ChordText:
            note.ChordText = ""
            self.redraw()
        self.CursorY = 18
        note.XPos = self.CursorX

    def mnuLHEdit(self):
        self.start_hand_letter(LEFT_HAND, "LeftHand", 68 + 8 * self.NumStrings)

    def mnuRHEdit(self):
        self.start_hand_letter(RIGHT_HAND, "RightHand", 44 + 10 * self.NumStrings)

    def start_hand_letter(self, mode, field, y):
        if self.InputMode == INSERTED_MEASURE:
            return
        note = self.note()
        self.Saved = 0
        if self.InputMode == FRET_ENTRY:
            self.SavedCursorY = self.CursorY
        self.InputMode = mode
        setattr(note, field, " ")
        self.redraw()
        self.CursorY = y
        note.XPos = self.CursorX
        self.CursorX = note.XPos + 6

    # Mouse

    def StaffBox_mouse_down(self, x, y):
        if self.InputMode == REPEAT_BRACKET:
            self.head().Slot[2] = self.bracket.text
            self.give_focus("StaffBox")
            self.InputMode = FRET_ENTRY
        self.hide_caret()
        if x < 18 and self.MeasHead > self.MeasEnd and self.click_signature(y):
            return
        if self.InputMode != INSERTED_MEASURE:
            self.InputMode = FRET_ENTRY
        self.hide_caret()
        if self.MeasEnd < self.MeasHead:
            self.CursorX = 48
        else:
            self.click_note(x)
            self.take_clicked_value()
        snapped = next((line for line in (36, 44, 52, 60, 68) if y <= line), 76)
        self.CursorY = min(snapped, self.lowest_line())

    def click_signature(self, y):
        """True if a figure was hit, which changes it and repaints the staff."""
        upper, lower = FIGURE_RANGES[self.NumStrings]
        if lower[0] <= y < lower[1]:
            if self.CurBeatUnit == 8:
                self.CurBeatUnit, self.CurBeats = 4, 4
            else:
                self.CurBeatUnit, self.CurBeats = 8, 3
        elif upper[0] <= y < upper[1]:
            if self.CurBeatUnit == 8:
                self.CurBeats = self.CurBeats + 3 if self.CurBeats + 3 <= 12 else 3
            elif self.CurBeatUnit == 4:
                self.CurBeats = self.CurBeats + 1 if self.CurBeats + 1 <= 6 else 2
        else:
            return False
        self.head().Beats = self.CurBeats
        self.head().BeatUnit = self.CurBeatUnit
        self.StaffBox_paint()
        return True

    def StaffBox_paint(self):
        self.hide_caret()
        self.surface.clear()
        print_signature(self)
        self.CursorX = 48
        self.CursorY = self.lowest_line()

    def click_note(self, x):
        table = self.table
        if x > table[self.MeasEnd].XPos + 18:
            if self.MeasEnd == self.LastNote and self.MeasFill < self.MeasCapacity:
                self.EntryState = APPEND
                self.CursorX = next_x(table[self.MeasEnd])
                self.CurNote = self.LastNote + 1
            else:
                if self.EntryState == APPEND:
                    self.EntryState = EDIT
                self.CursorX = table[self.MeasEnd].XPos
                self.CurNote = self.MeasEnd
            return
        self.CurNote = self.MeasHead + 1
        if x < table[self.CurNote].XPos:
            self.CursorX = 48
        else:
            self.CursorX = table[self.CurNote].XPos
            for i in range(self.MeasHead + 1, self.MeasEnd):
                if x > table[i + 1].XPos:
                    self.CurNote = i + 1
                    self.CursorX = table[i + 1].XPos
        if self.EntryState == APPEND and self.CurNote < self.LastNote:
            self.EntryState = EDIT

    def take_clicked_value(self):
        value = CLICKED_VALUES.get(self.note().NoteCode, 0)
        if value:
            self.set_toolbar_value(value)
            self.CurValue = value
        else:
            self.CurValue = self.down_button
