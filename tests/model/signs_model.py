"""Rests, bar signs, navigation signs, repeat brackets, remarks, line breaks."""

from editor_state import APPEND, INSERTED_MEASURE, REPEAT_BRACKET, REST_CODES, TextBox
from measure_model import (
    SPACINGS, bar_line, bracket_lines, draw_begin_bar, draw_end_bar, draw_sign, next_x, repeat_dots)

DOUBLE_BAR, BEGIN_DOUBLE_BAR, REPEAT_START, REPEAT_SIGN = "94", "95", "98", "99"

CODA, SIGN = "84", "87"


class Signs:
    # Rests

    def mnuRest(self):
        self.enter_rest(REST_CODES.get(self.CurValue))

    def mnuHalfRest(self):
        self.enter_block_rest(92)

    def mnuWholeRest(self):
        self.enter_block_rest(93)

    def cmdRest(self):
        self.mnuRest()
        self.give_focus("StaffBox")

    def enter_block_rest(self, code):
        self.enter_rest(code)
        self.give_focus("cmdNext" if self.MeasFill >= self.MeasCapacity else "StaffBox")

    def enter_rest(self, code):
        self.Saved = 0
        note = self.note()
        note.Measure = self.CurMeas
        note.Beats = self.CurBeats
        note.BeatUnit = self.CurBeatUnit
        note.BeamCode = 0
        note.Slot = [""] * 7
        if code is not None:
            note.NoteCode = code
            note.Spacing = SPACINGS[code]
        if self.EntryState == APPEND:
            self.append_rest()
        else:
            self.move_past_rest()

    def append_rest(self):
        self.MeasEnd = self.CurNote
        self.LastMeas = self.CurMeas
        self.redraw()
        if self.MeasFill >= self.MeasCapacity:
            self.timer_on = False
            self.LastNote = self.CurNote
            self.give_focus("cmdNext")
        else:
            self.CursorX += self.note().Spacing * 6
            self.LastNote = self.CurNote
            self.CurNote += 1

    def move_past_rest(self):
        self.hide_caret()
        self.redraw()
        if self.CurNote + 1 != self.LastNote:
            if self.CurNote < self.MeasEnd:
                self.CurNote += 1
            self.cursor_to_filled_string()
            self.CursorX = self.note().XPos
        else:
            self.CursorX = next_x(self.note())
            self.CurNote = self.LastNote
        if self.CurNote == self.LastNote:
            self.EntryState = APPEND

    # Bar signs

    def mnuRptSign(self):
        if self.put_bar_sign(REPEAT_SIGN):
            draw_end_bar(self)
            repeat_dots(self, self.EndBarX - 7)

    def mnuRptStart(self):
        if self.put_bar_sign(REPEAT_START):
            draw_begin_bar(self)
            repeat_dots(self, 32)

    def mnuDoubBar(self):
        if self.put_bar_sign(DOUBLE_BAR):
            draw_end_bar(self)

    def mnuBegDoubBar(self):
        if self.put_bar_sign(BEGIN_DOUBLE_BAR):
            draw_begin_bar(self)
            bar_line(self, self.EndBarX)

    def put_bar_sign(self, code):
        """True if the sign was set; a measure that has one loses it instead."""
        self.Saved = 0
        head = self.head()
        if head.BarCode:
            head.BarCode = ""
            self.redraw()
            return False
        head.BarCode = code
        return True

    # Navigation signs

    def mnuDS(self):
        self.toggle_sign("81")

    def mnuDC(self):
        self.toggle_sign("82")

    def mnuFine(self):
        self.toggle_sign("83")

    def mnuCoda(self):
        self.toggle_sign(CODA)

    def mnuDCcoda(self):
        self.toggle_sign("85")

    def mnuDCfine(self):
        self.toggle_sign("86")

    def mnuSign(self):
        self.toggle_sign(SIGN)

    def mnuDScoda(self):
        self.toggle_sign("88")

    def mnuDSfine(self):
        self.toggle_sign("89")

    def toggle_sign(self, code):
        self.Saved = 0
        head = self.head()
        if head.Slot[1] == code:
            head.Slot[1] = ""
            self.redraw()
            return
        draw_sign(self, code)
        head.Slot[1] = code
        if code not in (CODA, SIGN):
            self.redraw()

    # Texts of the measure

    def mnuRepeatEnds(self):
        if self.InputMode == INSERTED_MEASURE:
            return
        self.Saved = 0
        head = self.head()
        if head.Slot[2]:
            head.Slot[2] = ""
            self.redraw()
            return
        self.InputMode = REPEAT_BRACKET
        bracket_lines(self)
        self.bracket_visible = True
        self.bracket = TextBox(head.Slot[2])
        self.give_focus("txtRptBracket")

    def mnuRemarks(self):
        head = self.head()
        head.Slot[3] = self.ask_text()
        self.surface.text_at(48, 4, head.Slot[3])
        self.give_focus("StaffBox")

    def mnuHardBrk(self):
        head = self.head()
        if head.Slot[6]:
            head.Slot[6] = ""
            self.redraw()
        else:
            head.Slot[6] = "NL"
            self.hdbkbox = "Line Break"
