"""Moving between measures, opening new ones, ending an inserted measure."""

from editor_state import (
    APPEND, CHORD_TEXT, EDIT, FRET_ENTRY, INSERTED_MEASURE, LEFT_HAND, REPEAT_BRACKET, REST_CODES,
    REVIEW, RIGHT_HAND)
from measure_model import next_x
from number_rules import rounded16, val


class Navigation:
    def cmdNext(self):
        self.cmdRefresh_on = True
        self.reset_captions()
        if self.InputMode in (CHORD_TEXT, LEFT_HAND, RIGHT_HAND, REPEAT_BRACKET):
            self.InputMode = FRET_ENTRY
            self.redraw()
        if self.InputMode == INSERTED_MEASURE:
            self.commit_inserted_measure()
            return
        if self.EntryState == EDIT and self.step_forward_in_edit():
            return
        if self.EntryState == REVIEW:
            self.step_forward_in_review()
        if self.EntryState == APPEND and (
            self.CurNote > self.MeasHead + 1 or self.MeasFill == self.MeasCapacity
        ):
            self.open_new_measure()
        self.show_value_of_note()
        self.give_focus("StaffBox")

    def step_forward_in_edit(self):
        """True if the unfilled end of the tune was reached, where cmdNext stops."""
        if self.CurMeas < self.LastMeas:
            self.CurMeas += 1
        else:
            self.EntryState = APPEND
        self.find_measure()
        if self.EntryState == EDIT:
            self.CursorX = self.table[self.MeasHead + 1].XPos
            self.CurNote = self.MeasHead + 1
            self.cursor_to_first_string(self.lowest_line())
            self.redraw()
            if self.CurMeas == self.LastMeas and self.MeasFill < self.MeasCapacity:
                self.EntryState = APPEND
                self.MeasEnd = self.LastNote
                self.CurNote = self.LastNote + 1
                self.CursorX = next_x(self.table[self.MeasEnd])
                self.give_focus("StaffBox")
                return True
        else:
            self.CurNote = self.MeasEnd
        self.give_focus("StaffBox")
        return False

    def step_forward_in_review(self):
        found = False
        if self.LastMeas != 0:
            self.CurMeas += 1
            if self.CurMeas > self.LastMeas:
                self.CurMeas = 1
            found = self.find_measure()
            self.redraw()
            self.CurNote = self.MeasHead + 1
            self.CursorX = self.note().XPos
            self.cursor_to_first_string(54)
            self.give_focus("StaffBox")
        if not found:
            self.EntryState = APPEND
            self.LastMeas = 0
            self.CurMeas = 1
            self.CurNote = 2
            self.LastNote = 0

    def open_new_measure(self):
        self.CurMeas += 1
        self.CurNote += 1 if self.MeasFill < self.MeasCapacity else 2
        self.MeasHead = self.CurNote - 1
        self.make_head(self.MeasHead)
        self.start_empty_staff()

    def show_value_of_note(self):
        code = self.note().NoteCode
        if 1 <= code <= 89:
            self.set_toolbar_value(code)

    def cmdPrevious(self):
        self.cmdRefresh_on = True
        if self.InputMode in (CHORD_TEXT, REPEAT_BRACKET):
            self.InputMode = FRET_ENTRY
            self.redraw()
        if self.InputMode == INSERTED_MEASURE:
            self.cancel_inserted_measure()
            return
        if self.LastMeas == 0:
            return
        if self.EntryState == APPEND:
            self.EntryState = EDIT
        self.CurMeas = self.LastMeas if self.CurMeas < 2 else self.CurMeas - 1
        if self.find_measure():
            if self.MeasEnd == self.MeasHead:
                # The walk back takes one step past the head, whatever is there.
                self.MeasEnd += 1
                self.step_end_up()
            self.CurNote = self.MeasEnd
        self.cursor_to_first_string(self.lowest_line())
        self.redraw()
        if self.CurMeas == self.LastMeas and self.MeasFill < self.MeasCapacity:
            self.EntryState = APPEND
            self.CursorX = next_x(self.note())
            self.CurNote += 1
        else:
            self.CursorX = self.table[self.MeasHead + 1].XPos
            self.CurNote = self.MeasHead + 1
        self.show_value_of_note()
        self.give_focus("StaffBox")

    def commit_inserted_measure(self):
        self.InputMode = FRET_ENTRY
        self.EntryState = REVIEW
        delta = 1 if self.MeasEnd > self.MeasHead else 0
        for index, record in self.read_parked("Temp.Sav", self.LastNote + 1):
            record.Measure = rounded16(record.Measure + delta)
            self.LastNote = index
            self.LastMeas = record.Measure
        self.files.delete("Temp.Sav")
        self.CurMeas = self.head().Measure
        self.walk_measure_end()
        self.CursorX = self.table[self.MeasHead + 1].XPos
        self.redraw()

    def cancel_inserted_measure(self):
        self.InputMode = FRET_ENTRY
        self.EntryState = REVIEW
        self.table.clear(self.MeasHead)
        for index, record in self.read_parked("Temp.Sav", self.MeasHead):
            self.LastNote = index
            self.LastMeas = record.Measure
        self.files.delete("Temp.Sav")
        self.walk_measure_end()
        self.reset_captions()
        self.redraw()
        self.give_focus("StaffBox")

    def lblMeasNum_click(self):
        if self.EntryState == APPEND:
            self.EntryState = EDIT
        value = val(self.ask_text())
        if 0 < value < self.LastMeas + 1:
            self.CurMeas = rounded16(value)
        self.find_measure()
        self.CurNote = self.MeasHead + 1
        self.CursorX = self.note().XPos
        self.give_focus("StaffBox")
        self.redraw()

    def mnuAppend(self):
        self.Saved = 0
        self.CurNote = self.LastNote
        self.CurMeas = self.LastMeas
        self.lblMeasNum = str(self.CurMeas + 1)
        self.EntryState = APPEND
        self.InputMode = FRET_ENTRY
        self.cmdNext()

    def Toolbar1_click(self, button):
        self.CurValue = button
        self.set_toolbar_value(button)
        note = self.note()
        if note.NoteCode < 12:
            note.NoteCode = button
        elif 92 <= note.NoteCode <= 99:
            note.NoteCode = REST_CODES[button]
        self.redraw()
