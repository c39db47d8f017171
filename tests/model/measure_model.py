"""The measure view: derives spacing, positions and beams of the current measure
and draws it. `editor` is the object that holds the table, the shared state, the
surface and the window's controls."""

import math

from number_rules import int16
from store_model import STRINGS

TICKS = {1: 2, 94: 2, 2: 3, 95: 3, 3: 4, 96: 4, 4: 6, 97: 6, 5: 9, 6: 8, 98: 8,
         7: 12, 99: 12, 8: 18, 9: 24, 92: 24, 10: 36, 11: 48, 93: 48}

SPACINGS = {1: 2, 2: 2, 3: 2, 94: 2, 95: 2, 96: 2, 4: 3, 5: 3, 6: 3, 97: 3, 98: 3,
            7: 4, 8: 4, 99: 4, 9: 8, 92: 8, 10: 12, 11: 16, 93: 16}

# Strings: font size, y of the upper figure, y of the lower figure
SIGNATURE_PLACES = {4: (16, 32, 44), 5: (18, 32, 48), 6: (18, 36, 56)}

# Strings: y of the two repeat dots
REPEAT_DOTS = {4: (43, 56), 5: (47, 65), 6: (47, 67)}

# Code of a navigation sign: font, x, text. None is the body font.
SIGNS = {
    "81": (None, 260, "D.S."),
    "82": (None, 260, "D.C."),
    "83": (None, 260, "Fine"),
    "84": ("Tab", 12, "@"),
    "85": (None, 248, "D.C. al Coda"),
    "86": (None, 248, "D.C. al Fine"),
    "87": ("Tab", 12, "$"),
    "88": (None, 248, "D.S. al Coda"),
    "89": (None, 248, "D.S. al Fine"),
}

REST_GLYPHS = {94: "%", 95: "%", 96: "`", 97: "`", 98: "~", 99: "~"}

FORM_FONT_SIZE = 8.25


def measure_capacity(beats, beat_unit):
    return int16(beats * 12 if beat_unit == 4 else beats * 6)


def derived_spacing(record):
    spacing = SPACINGS.get(record.NoteCode, record.Spacing)
    for text in (record.ChordText, *record.Slot[1:]):
        if len(text) >= spacing:
            spacing = int16(len(text) + 1)
    return spacing


def next_x(record):
    """The X of the note after this one."""
    return int16(record.XPos + int16(record.Spacing * 6))


def clear_staff(editor):
    surface = editor.surface
    surface.clear()
    editor.CaretOn = 0
    print_signature(editor)


def print_signature(editor):
    surface = editor.surface
    surface.FontSize, upper_y, lower_y = SIGNATURE_PLACES[editor.NumStrings]
    surface.text_at(2, upper_y, integer_text(editor.CurBeats))
    surface.text_at(2, lower_y, integer_text(editor.CurBeatUnit))
    surface.FontSize = 10
    surface.FontName = editor.BodyFontName


def integer_text(value):
    """An integer as it prints, with a blank before and one after it."""
    return f" {value} "


def redraw_measure(editor):
    table, surface = editor.table, editor.surface
    surface.FontName = editor.BodyFontName
    caller_note = editor.CurNote
    head = table[editor.MeasHead]
    editor.CurBeats = head.Beats
    editor.CurBeatUnit = head.BeatUnit
    editor.MeasCapacity = measure_capacity(head.Beats, head.BeatUnit)
    clear_staff(editor)
    beams = BeamPass(editor)
    editor.MeasFill = 0
    editor.hdbkbox = "Line Break" if head.Slot[6] == "NL" else ""
    if head.BarCode < "1":
        head.BarCode = ""
    notes = range(editor.MeasHead + 1, editor.MeasEnd + 1)
    for index in notes:
        table[index].Spacing = derived_spacing(table[index])
    editor.lblMeasNum = str(editor.CurMeas)
    print_remark(editor, head)
    x = 48
    for index in notes:
        note = table[index]
        beams.step(index)
        editor.MeasFill += TICKS.get(note.NoteCode, 0)
        note.XPos = x
        x = next_x(note)
    head.BeamCode = 0
    if editor.MeasFill >= editor.MeasCapacity:
        editor.EndBarX = next_x(table[editor.MeasEnd])
    else:
        editor.EndBarX = 350
    notes_pass = NotesPass(editor)
    for index in notes:
        notes_pass.draw(index)
    draw_bar(editor, head.BarCode)
    draw_bracket(editor, head)
    draw_sign(editor, head.Slot[1])
    if editor.InputMode == 1 and editor.MeasFill < editor.MeasCapacity and editor.CurMeas < editor.LastMeas:
        editor.MeasFill = editor.MeasCapacity
    editor.CurNote = caller_note
    editor.lblLastNote = str(editor.LastNote)


def print_remark(editor, head):
    remark = head.Slot[3]
    if not remark:
        return
    x = 48
    if remark[0] == "/":
        remark = remark[1:]
        twips = len(remark) * FORM_FONT_SIZE / 2 * 20
        x = editor.table[editor.MeasEnd].XPos - math.floor(twips / 1440 * 72)
    editor.surface.text_at(x, 4, remark)


class BeamPass:
    """Works out `BeamCode` note by note. `run` counts the notes of the present
    group, `last` is the record of its last note (0: none), `notes` and `halves`
    count triplet notes and eighths."""

    def __init__(self, editor):
        self.editor = editor
        self.table = editor.table
        self.notes = self.halves = self.run = self.last = 0

    def clear_group(self):
        self.notes = self.halves = self.run = self.last = 0

    def end(self):
        self.notes = self.run = self.last = 0

    def grow(self, c):
        self.run += 1
        self.last = c

    def code(self, index):
        return self.table[index].BeamCode

    def set_code(self, index, code):
        self.table[index].BeamCode = code

    def follows_short_rest(self, c, code):
        """The record before is a sixteenth triplet rest with this beam code."""
        before = self.table[c - 1]
        return before.NoteCode == 94 and before.BeamCode == code

    def step(self, c):
        fill = self.editor.MeasFill
        note = self.table[c]
        if fill == 0:
            self.clear_group()
        if self.notes == 3:
            self.notes = self.halves = 0
        if note.BeatUnit == 4 and note.Beats in (2, 4) and fill * 2 == self.editor.MeasCapacity:
            self.clear_group()
        if note.BeatUnit == 4:
            if fill % 12 == 0:
                self.clear_group()
            self.simple(c, note.NoteCode, fill)
            if self.halves == 4:
                self.set_code(c - 1, 5)
                self.halves = 0
        else:
            if fill % 18 == 0:
                self.clear_group()
            self.compound(c, note.NoteCode, fill)

    def simple(self, c, note_code, fill):
        code, set_code, table, last = self.code, self.set_code, self.table, self.last
        if note_code == 1:
            set_code(c, 2 if self.run else 1)
            if self.run > 0:
                if fill % 6 == 0:
                    set_code(c, 3)
                before = code(last)
                if before == 1:
                    if table[last].NoteCode == 1:
                        set_code(last, 0)
                    else:
                        set_code(last, 9)
                        set_code(c, 3)
                elif before == 3:
                    set_code(last, 5)
                elif before == 4:
                    set_code(last, 0)
                    set_code(c, 3)
                if self.follows_short_rest(c, 3):
                    set_code(c, 3)
            self.grow(c)
            self.notes += 1
        elif note_code == 2:
            set_code(c, 2 if self.run else 1)
            if self.run > 0:
                before = code(last)
                if before == 1:
                    set_code(last, 0)
                elif before == 3:
                    set_code(last, 5)
                elif before == 4:
                    set_code(c, 3)
                    set_code(last, 0)
                elif before == 5:
                    set_code(c, 3)
                elif before == 8:
                    set_code(last, 7)
                    set_code(c, 3)
            self.grow(c)
        elif note_code == 3:
            if self.run:
                set_code(c, 5)
                if code(last) == 4:
                    set_code(last, 0)
            else:
                set_code(c, 4)
            self.grow(c)
            self.notes += 1
        elif note_code == 4:
            if self.run:
                set_code(c, 5)
                before = code(last)
                if before == 1:
                    set_code(last, 9)
                elif before == 4:
                    set_code(last, 0)
                elif before == 8:
                    set_code(last, 7)
            else:
                set_code(c, 4)
            self.grow(c)
            self.halves += 1
        elif note_code == 5:
            set_code(c, 6 if self.run else 8)
            if self.run > 0 and code(last) == 1:
                set_code(last, 9)
            self.grow(c)
        elif note_code == 99:
            self.end()
        else:
            self.common(c, note_code, fill)

    def compound(self, c, note_code, fill):
        code, set_code, table, last = self.code, self.set_code, self.table, self.last
        if note_code == 1:
            set_code(c, 2 if self.run else 1)
            if self.run > 0:
                if fill % 6 == 0:
                    set_code(c, 3)
                before = code(last)
                if before == 1:
                    set_code(last, 9 if code(c) == 3 else 0)
                elif before == 3:
                    if table[last].NoteCode != 2:
                        set_code(last, 5)
                elif before == 4:
                    set_code(last, 0)
                    set_code(c, 3)
                elif before in (5, 6):
                    set_code(c, 3)
                elif before == 8:
                    set_code(last, 7)
                    set_code(c, 3)
                if self.follows_short_rest(c, 5):
                    set_code(c, 5)
            if self.follows_short_rest(c, 3):
                set_code(c, 3)
            self.grow(c)
            self.notes += 1
        elif note_code == 2:
            set_code(c, 2 if self.run else 1)
            if self.run > 0:
                if 8 < table[c - 1].NoteCode < 100:
                    set_code(c, 3)
                before = code(last)
                if before == 1:
                    set_code(last, 9 if code(c) == 3 else 0)
                elif before == 3:
                    set_code(last, 5 if code(c) == 2 else 10)
                elif before == 4:
                    set_code(last, 0)
                    set_code(c, 3)
                elif before == 5:
                    set_code(c, 3)
                    if self.run > 2 and table[c - 1].NoteCode == 4 and code(c - 2) == 3:
                        set_code(c - 2, 10)
                elif before == 6:
                    set_code(c, 3)
                elif before == 8:
                    set_code(last, 7)
                    set_code(c, 3)
            self.grow(c)
        elif note_code == 3:
            if self.run:
                set_code(c, 5)
                before = code(last)
                if before == 1:
                    set_code(last, 9)
                elif before == 3:
                    if table[last - 1].NoteCode != 5:
                        set_code(last, 9)
                elif before == 4:
                    set_code(last, 0)
                elif before == 8:
                    set_code(last, 7)
            else:
                set_code(c, 4)
            self.grow(c)
            self.notes += 1
        elif note_code == 4:
            if self.run:
                set_code(c, 5)
                before = code(last)
                if before == 1:
                    set_code(last, 9)
                elif before == 3:
                    if table[c - 1].NoteCode > 8:
                        set_code(last, 10)
                elif before == 4:
                    set_code(last, 0)
                elif before == 8:
                    set_code(last, 7)
            else:
                set_code(c, 4)
            self.grow(c)
        elif note_code == 5:
            set_code(c, 6 if self.run else 8)
            if self.run > 0:
                joined = {1: 9, 8: 7, 4: 0}.get(code(last))
                if joined is not None:
                    set_code(last, joined)
            self.grow(c)
        else:
            self.common(c, note_code, fill)

    def common(self, c, note_code, fill):
        """The rows that simple and compound time share."""
        if note_code in (6, 7):
            self.set_code(c, 0)
            self.end()
        elif note_code == 8:
            self.set_code(c, 7)
            self.end()
        elif note_code == 94:
            self.notes += 1
            if self.run >= 1:
                if fill % 6 == 0 or self.follows_short_rest(c, 5):
                    self.set_code(c, 3)
        elif note_code == 96:
            self.notes += 1


class NotesPass:
    """Draws the notes and rests of the measure from left to right."""

    def __init__(self, editor):
        self.editor = editor
        self.table = editor.table
        self.surface = editor.surface
        self.base_y = 60 + 8 * editor.NumStrings
        self.ticks = self.beam_x = self.beam2_x = self.triplet = 0

    def body_font(self):
        self.surface.FontName = self.editor.BodyFontName

    def draw(self, index):
        note = self.table[index]
        code = note.NoteCode
        if note.ChordText:
            self.surface.text_at(note.XPos, 12, note.ChordText)
        beat = 12 if self.editor.CurBeatUnit == 4 else 18
        if self.ticks % beat == 0 or code in (99, 92, 93):
            self.beam_x = self.beam2_x = 0
        if code < 6 and self.beam_x == 0:
            self.beam_x = note.XPos
        if code < 3 and (self.beam2_x == 0 or note.BeamCode >= 3):
            self.beam2_x = note.XPos
        gather_slashes(note)
        lowest = 0
        for s in STRINGS:
            if note.Slot[s]:
                self.draw_cell(note, s)
                lowest = s
        stem_top = 32 + 8 * lowest if lowest > 0 else 40
        if code >= 11:
            self.draw_stemless(index, note)
        else:
            self.draw_stem(index, note, stem_top)
        self.ticks += TICKS.get(code, 0)

    def draw_cell(self, note, s):
        surface = self.surface
        cell = note.Slot[s]
        y, dot_y = 20 + 8 * s, 26 + 8 * s
        surface.CurrentX, surface.CurrentY = note.XPos, y
        text = cell.strip(" ")
        tied = "^" in text
        if tied:
            text = text[:-1]
        bend_at = cell.find("<") + 1 or cell.find(">") + 1
        if bend_at:
            mark, text = text[-1:], text[:-1]
        if text == "/":
            surface.FontName = "tab"
            surface.text(text)
            self.body_font()
        else:
            if note.NoteCode in (9, 10, 11):
                text = f"[{text}]"
            self.print_fret(text)
            if note.BeamCode in (6, 7, 8) or note.NoteCode == 10:
                surface.disc(6 * len(text) + note.XPos, dot_y, 1)
        if tied:
            start = 6 * len(text) + note.XPos
            radius = 3 * (note.Spacing - len(text))
            surface.arc(start + radius, dot_y, radius, 0.5, 3, 0.5)
        if bend_at:
            surface.FontName, surface.FontSize = "Tab", 8
            mark_y = y - 8 if mark == ">" else y
            surface.text_at(note.XPos + 6 * (bend_at - 1), mark_y, mark)
            self.body_font()
            surface.FontSize = 10

    def print_fret(self, text):
        """The text, its first "-" (or else its first "=") as a raised connection sign."""
        surface = self.surface
        for sign, raised in (("-", 2), ("=", 3)):
            before, found, after = text.partition(sign)
            if not found:
                continue
            y = surface.CurrentY
            surface.text(before)
            surface.FontName = "Tab"
            surface.CurrentY = y - raised
            surface.text(sign)
            surface.CurrentY = y
            self.body_font()
            surface.text(after)
            return
        surface.text(text)

    def draw_stemless(self, index, note):
        surface = self.surface
        code = note.NoteCode
        glyph_y, bar_y = (36, 46) if self.editor.NumStrings == 4 else (42, 54)
        surface.FontName, surface.FontSize = "Tab", 10
        surface.CurrentX, surface.CurrentY = note.XPos, glyph_y
        if code in (92, 93):
            surface.DrawWidth = 5
            y = bar_y - 4 if code == 92 else bar_y
            surface.line(note.XPos + 8, y, note.XPos + 16, y)
            surface.DrawWidth = 1
        elif code in REST_GLYPHS:
            surface.text(REST_GLYPHS[code])
            if code in (94, 96, 98) and self.triplet > 0:
                self.triplet += 1
        self.body_font()
        if self.triplet == 0 and code in (94, 96, 98):
            self.triplet = 1
            x = note.XPos + 3
            far = x + 39 if code == 98 else self.short_bracket_end(index, note)
            self.draw_triplet_bracket(x, far, 9)
        if self.triplet > 2:
            self.triplet = 0

    def draw_stem(self, index, note, top):
        surface = self.surface
        code = note.NoteCode
        x, base = note.XPos + 3, self.base_y
        surface.line(x, top, x, base)
        self.draw_beams(note.BeamCode, x, base)
        if code in (1, 3, 6):
            if self.triplet == 0:
                if code == 6:
                    self.draw_triplet_bracket(x, x + 39, 15)
                else:
                    self.draw_triplet_bracket(x, self.short_bracket_end(index, note), 9)
            self.triplet += 1
            if self.triplet > 2:
                self.triplet = 0
        surface.text_at(x + 3, base - 18, note.RightHand)
        surface.text_at(x, base, note.LeftHand)

    def draw_beams(self, beam_code, x, base):
        surface = self.surface
        back, back2 = self.beam_x + 2, self.beam2_x + 2
        if beam_code in (1, 4, 8):
            surface.FontName = "Tab"
            surface.text_at(x, base - 18, ")" if beam_code == 1 else "(")
            self.body_font()
        elif beam_code in (2, 3):
            surface.line(x - 1, base, back, base)
            surface.line(x - 1, base - 3, back2 if beam_code == 2 else x - 6, base - 3)
        elif beam_code in (5, 6):
            surface.line(x, base, back, base)
        elif beam_code in (9, 10):
            if beam_code == 10:
                surface.line(x, base, back, base)
            surface.line(x, base - 3, x + 5, base - 3)

    def short_bracket_end(self, index, note):
        third = self.table[index + 2].XPos
        return third + 6 if third > note.XPos else note.XPos + 3 + 27

    def draw_triplet_bracket(self, x, far, gap):
        """`gap` is where the space for the 3 begins, right of the stem."""
        surface, base = self.surface, self.base_y
        surface.line(x - 3, base + 2, x - 3, base + 6)
        surface.line(x - 3, base + 6, x + gap, base + 6)
        surface.line(x + gap + 6, base + 6, far, base + 6)
        surface.line(far, base + 2, far, base + 6)
        surface.text_at(x + gap + 1, base + 3, "3")


def gather_slashes(note):
    """A rhythm slash is always on string 3; moving it there edits the record."""
    for s in STRINGS:
        if note.Slot[s] == "/":
            note.Slot[s] = ""
            note.Slot[3] = "/"


def bar_line(editor, x, thick=False):
    surface = editor.surface
    surface.DrawWidth = 3 if thick else 1
    surface.line(x, 36, x, 28 + 8 * editor.NumStrings)
    surface.DrawWidth = 1


def repeat_dots(editor, x):
    for y in REPEAT_DOTS[editor.NumStrings]:
        editor.surface.disc(x, y, 2)


def draw_begin_bar(editor):
    bar_line(editor, 23, thick=True)
    bar_line(editor, 27)


def draw_end_bar(editor):
    bar_line(editor, editor.EndBarX, thick=True)
    bar_line(editor, editor.EndBarX - 3)


def draw_bar(editor, bar_code):
    if bar_code == "":
        bar_line(editor, editor.EndBarX)
    elif bar_code in ("99", "94"):
        draw_end_bar(editor)
        if bar_code == "99":
            repeat_dots(editor, editor.EndBarX - 7)
    elif bar_code in ("98", "95", "93"):
        draw_begin_bar(editor)
        bar_line(editor, editor.EndBarX)
        if bar_code == "98":
            repeat_dots(editor, 32)


def bracket_lines(editor):
    editor.surface.line(6, 30, 6, 6)
    editor.surface.line(6, 6, editor.EndBarX, 6)


def draw_bracket(editor, head):
    if head.Slot[2] or editor.InputMode == 6:
        bracket_lines(editor)
        editor.surface.text_at(12, 12, head.Slot[2])


def draw_sign(editor, code):
    if code not in SIGNS:
        return
    font, x, text = SIGNS[code]
    if font:
        editor.surface.FontName = font
    editor.surface.text_at(x, 12, text)
    editor.surface.FontName = editor.BodyFontName
