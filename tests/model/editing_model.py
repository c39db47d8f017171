"""Insertion and deletion of notes and measures, copy and paste."""

from editor_state import APPEND, EDIT, FRET_ENTRY, INSERTED_MEASURE, TextBox
from measure_model import next_x
from number_rules import int16, val
from store_model import HEAD, TABLE_END, records_bytes


class Editing:
    # Notes

    def mnuNoteBefore(self):
        self.insert_note(after=False)

    def mnuInsNoteAfter(self):
        self.insert_note(after=True)

    def insert_note(self, after):
        if self.EntryState == APPEND:
            return
        self.Saved = 0
        for i in range(self.LastNote, self.CurNote - 1, -1):
            self.table[i + 1].copy_from(self.table[i])
        if after:
            self.CurNote += 1
        self.note().Slot = [""] * 7
        self.LastNote += 1
        self.MeasEnd += 1
        self.relayout()
        if after:
            self.CursorX = self.note().XPos
        self.redraw()

    def relayout(self):
        self.table[self.MeasHead + 1].XPos = 48
        for i in range(self.MeasHead + 2, self.MeasEnd + 1):
            self.table[i].XPos = next_x(self.table[i - 1])

    def mnuDelNote(self):
        if self.EntryState == APPEND:
            return
        self.Saved = 0
        if self.MeasEnd == self.MeasHead + 1:
            self.mnuDelMeas()
            return
        if self.CurNote != self.LastNote:
            for i in range(self.CurNote, self.LastNote):
                self.table[i].copy_from(self.table[i + 1])
            self.table[self.LastNote].clear()
            self.LastNote -= 1
        else:
            self.note().clear()
            self.LastNote -= 1
            self.CurNote -= 1
            self.CursorX = self.note().XPos
        self.MeasEnd -= 1
        self.redraw()
        self.CursorX = self.note().XPos

    # Measures

    def mnuInsMeas(self):
        self.Saved = 0
        self.next_caption, self.previous_caption = "OK", "Cancel"
        self.write_records("Temp.Sav", self.MeasHead, self.LastNote)
        self.table.clear(self.MeasHead, self.LastNote)
        self.LastNote = self.MeasHead - 1
        self.LastMeas = self.table[self.LastNote].Measure
        self.CurMeas = self.LastMeas + 1
        self.CurNote = self.MeasHead + 1
        self.MeasEnd = self.MeasHead - 1
        self.make_head(self.MeasHead)
        self.start_empty_staff()
        self.InputMode = INSERTED_MEASURE
        self.EntryState = APPEND
        self.cmdRefresh_on = False

    def write_records(self, name, first, last):
        self.files.write(name, records_bytes([self.table[i] for i in range(first, last + 1)]))

    def mnuDelMeas(self):
        if self.InputMode == INSERTED_MEASURE:
            return
        if self.CurNote == self.MeasHead + 1 and self.EntryState == APPEND:
            return
        if self.note().Measure == 1 and self.LastMeas == 1:
            self.delete_only_measure()
            return
        self.Saved = 0
        if self.EntryState == APPEND:
            self.delete_open_measure()
        elif self.CurMeas == self.LastMeas:
            self.delete_last_measure()
        else:
            self.delete_middle_measure()

    def delete_only_measure(self):
        self.table.clear(1)
        self.CursorX = 48
        self.CursorY = 24 + 10 * self.NumStrings
        self.CurMeas, self.LastMeas = 1, 0
        self.CurNote, self.LastNote = 2, 0
        self.MeasEnd, self.MeasHead = 0, 1
        self.CurValue = 7
        self.set_toolbar_value(7)
        self.MeasFill = 0
        self.EntryState = APPEND
        self.InputMode = FRET_ENTRY

    def delete_middle_measure(self):
        table = self.table
        table.clear(self.MeasHead, self.MeasEnd)
        for i in range(self.MeasEnd + 1, self.LastNote + 1):
            table[i].Measure = int16(table[i].Measure - 1)
        n = self.MeasEnd - self.MeasHead + 1
        self.LastNote -= n
        self.LastMeas -= 1
        for i in range(self.MeasHead, self.LastNote + 1):
            table[i].copy_from(table[i + n])
        table.clear(self.LastNote + 1)
        self.walk_measure_end()
        self.redraw()

    def delete_last_measure(self):
        self.table.clear(self.MeasHead, self.MeasEnd)
        self.LastNote = self.MeasHead - 1
        self.LastMeas = self.CurMeas = self.LastMeas - 1
        self.MeasEnd = self.MeasHead = self.LastNote
        self.step_head_down(self.table[self.MeasEnd].Measure)
        self.CurNote = self.MeasHead + 1
        self.CursorX = self.note().XPos
        self.redraw()

    def delete_open_measure(self):
        self.table.clear(self.MeasHead, self.MeasEnd)
        self.LastNote = self.CurNote = self.MeasHead - 1
        self.LastMeas = self.CurMeas = self.LastMeas - 1
        self.MeasEnd = self.MeasHead = self.LastNote
        self.step_head_down(self.CurMeas)
        self.CurNote = self.MeasEnd
        self.CursorX = self.note().XPos
        self.CursorY = 24 + 10 * self.NumStrings
        self.give_focus("StaffBox")

    def step_head_down(self, measure):
        while self.table[self.MeasHead - 1].Measure == measure:
            self.MeasHead -= 1

    # Copy and paste

    def mnuCopy(self):
        """The copy form takes the focus; each box holds one blank, after the caret."""
        self.copy_boxes = {"Text1": TextBox(" "), "Text2": TextBox(" ")}
        self.focus = "Text1"

    def copy_box_key(self, key, character):
        box = self.copy_boxes[self.focus]
        if character == "\r":
            self.copy_boxes[self.focus] = TextBox(box.text[:-1])
            if self.focus == "Text1":
                self.focus = "Text2"
            else:
                self.cmdCopyMeasure()
        elif character == "\x1b":
            self.copy_box_gone()
        else:
            box.key(key, character)

    def cmdCopyMeasure(self):
        self.copy_range(val(self.copy_boxes["Text1"].text), val(self.copy_boxes["Text2"].text))
        self.copy_box_gone()

    def copy_box_gone(self):
        self.redraw()  # the main form comes to the front again
        self.give_focus("StaffBox")

    def copy_range(self, first, last):
        end = self.LastMeas + 1
        if not (first <= last and 0 < first < end and last < end):
            return
        i = 1
        while self.table[i].Measure < first:
            i += 1
        start = i
        while i <= self.LastNote and self.table[i].Measure <= last:
            i += 1
        self.write_records("CopyBuff.Dat", start, i - 1)
        self.mnuPaste_on = True

    def mnuPaste(self):
        if self.InputMode != FRET_ENTRY:
            return
        if self.EntryState == EDIT and self.CurMeas == self.LastMeas:
            self.EntryState = APPEND
        if self.EntryState == APPEND:
            self.paste_at_end()
        else:
            self.paste_after_measure()

    def paste_at_end(self):
        self.CurMeas = self.LastMeas
        self.CurNote = self.LastNote
        for _ in self.take_records("CopyBuff.Dat"):
            self.stand_on_last_measure()
        self.CurNote = self.LastNote
        self.CurMeas = self.LastMeas
        self.stand_on_last_measure()
        self.EntryState = EDIT
        self.redraw()

    def stand_on_last_measure(self):
        self.MeasHead = self.MeasEnd = self.LastNote
        while self.head().NoteCode != HEAD:
            self.MeasHead -= 1

    def paste_after_measure(self):
        self.write_records("Temp.Dat", self.MeasEnd + 1, self.LastNote)
        self.LastMeas = self.CurMeas
        self.CurNote = self.LastNote = self.MeasEnd
        for record in self.take_records("CopyBuff.Dat"):
            if record.NoteCode == HEAD:
                self.MeasHead = self.CurNote
            self.MeasEnd = self.LastNote
        for _ in self.take_records("Temp.Dat"):
            pass
        self.CurMeas = self.head().Measure

    def take_records(self, name):
        """Reads records after CurNote, numbering measures by their heads."""
        for index, record in self.read_parked(name, self.CurNote + 1):
            self.CurNote = index
            if record.NoteCode == HEAD:
                self.CurMeas += 1
            record.Measure = self.CurMeas
            self.LastNote = self.CurNote
            self.LastMeas = self.CurMeas
            yield record
