#!/usr/bin/env python3
"""An independent model of the page layout and the print pass.

    pages_model.py [options] TUNE --format page-log|print-log

prints what `quillon-export` with the same arguments and `-o -` must print, byte for byte. The
options are those of `quillon-export` that bear on pages. Exit status: 0 done; 1 the tune or the
layout failed, with the reason on standard error and nothing on standard output; 2 bad usage;
3 the print pass met a fault that the model does not follow.
"""

import argparse
import math
import os
import sys

from pages_surface import Surface, text_width
from pages_tune import (HEAD, IncompatibleFile, NoteRecord, RecordTable, RuntimeFault, int16,
                        int_div, nearest, open_tune, single, val)

MAX_COLUMN = 80
LAST_PAGE_ELEMENT = 8
LAST_CLEARED_ELEMENT = 5
MAIN_FORM_FONT_SIZE = 8.25

COLUMN_WIDTHS = {
    HEAD: 2, 1: 2, 2: 2, 3: 2, 4: 2, 5: 2, 6: 2, 7: 3, 8: 3, 9: 5, 10: 8, 11: 12,
    92: 5, 93: 12, 94: 3, 95: 3, 96: 3, 97: 3, 98: 3, 99: 3,
}

# The count only has to find the beats of beamed notes: 9, 10 and 11 add nothing.
COLUMN_TICKS = {
    1: 2, 94: 2, 2: 3, 95: 3, 3: 4, 96: 4, 4: 6, 97: 6, 5: 9, 6: 8, 98: 8,
    7: 12, 99: 12, 8: 18, 92: 24, 93: 48,
}

REST_GLYPHS = {94: "%", 95: "%", 96: "`", 97: "`", 98: "~", 99: "~"}
TRIPLET_CODES = (1, 3, 6, 94, 96, 98)
SIGN_GLYPHS = {"87": "$", "84": "@"}
SIGN_TEXTS = {"89": "D.S. Al Fine", "88": "D.S. Al Coda", "86": "D.C. Al Fine",
              "85": "D.C. Al Coda", "83": "Fine"}
SIGNATURE_SIZES = {8: 12, 10: 16, 12: 18}
REPEAT_DOTS = {4: (0.75, 2.25), 5: (1.1, 2.75), 6: (1.5, 3.5)}

# Pen thickness, (screen, printer).
STAFF_PEN = (1, 3)
EDGE_PEN = (2, 2)
THICK_BAR_PEN = (3, 6)
THIN_BAR_PEN = (2, 2)
BLOCK_REST_PEN = (8, 15)
BEAM_PEN = (2, 3)
FORWARD_STUB_PEN = (1, 3)
TIE_IN_PEN = (2, 2)
TIE_PEN = (1, 2)


class TooWide(Exception):
    """The measure that fits into no line; the layout stops before it."""

    def __init__(self, measure):
        super().__init__(f"Measure {measure} is too wide for a line.")


class Unmodelled(Exception):
    """A fault of which a print pass would skip one operation and go on; the model does not."""


class Settings:
    """The page settings: defaults, then the tune's header, then the options."""

    def __init__(self):
        self.NumStrings = 6
        self.BodyFontName = "Arial"
        self.BodyFontSize = 10.0
        self.TitleFontName = "Arial"
        self.TitleFontSize = 20.0
        self.PageLeft = 1.0
        self.PageRight = 1.0
        self.PageTop = 1.0
        self.StaveSpace = 0.75
        self.TitleCentered = True

    def take_header(self, header):
        if header.Slot[6] != "":
            self.BodyFontName = header.Slot[6]
        if header.Slot[5] != "":
            self.BodyFontSize = single(val(header.Slot[5]))
        if header.Slot[3] != "":
            self.TitleFontName = header.Slot[3]
        if header.NoteCode != 0:
            self.TitleFontSize = single(header.NoteCode)


class Layout:
    """Lays a tune out line by line and draws it. `Screen` and `Printer` fill in the values."""

    printing = False

    def __init__(self, tune, settings):
        self.tune = tune
        self.settings = settings
        self.NoteTable = tune.NoteTable
        self.LayoutTable = RecordTable(MAX_COLUMN)
        self.LineBottom = 0
        self.TieCarry = [0] * 7
        self.TripletCount = 0
        self.StemX = 0
        self.surface = None
        self.pages = []                 # the surfaces, each with its log

    # What differs between screen and printer

    def set_page_values(self):
        """LineLeft, PageLineRight, TitleY, StringGap, CharUnit, line_distance."""
        raise NotImplementedError

    def start_page(self):
        raise NotImplementedError

    def print_title(self, title):
        raise NotImplementedError

    def pen(self, widths):
        self.surface.DrawWidth = widths[1 if self.printing else 0]

    # The run

    def run(self):
        self.set_page_values()
        self.LineRight = self.PageLineRight
        self.LineWidth = self.LineRight - self.LineLeft
        self.FirstColumnX = self.LineLeft + 120
        self.LineCapacity = int_div(self.LineWidth, self.CharUnit)
        self.start_page()
        self.print_heading()

        i = 1
        while i < self.tune.LastNote:
            i = self.build_line(i)
            self.spread_line()
            self.draw_furniture()
            self.draw_columns()
            self.finish_line(i)

    def print_heading(self):
        surface = self.surface
        header = self.NoteTable[0]
        surface.CurrentY = self.TitleY
        if header.ChordText != " ":
            surface.FontName = self.settings.TitleFontName
            surface.FontSize = self.settings.TitleFontSize
            self.print_title(header.ChordText)
        self.body_font()
        self.print_credits(header.Slot[1], header.Slot[2])
        self.PenY = surface.CurrentY

    def print_credits(self, first, second):
        surface = self.surface
        credit_x = self.LineLeft
        if first or second:
            credit_x = self.LineRight - surface.text_width(second)
        if first:
            credit_x = min(credit_x, self.LineRight - surface.text_width(first))
            surface.CurrentX = credit_x
            surface.print(first)
        if second:
            surface.CurrentX = credit_x
            surface.print(second)

    def body_font(self):
        self.surface.FontName = self.settings.BodyFontName
        self.surface.FontSize = self.settings.BodyFontSize

    def print_symbol(self, glyph):
        """One glyph of the symbol font at the cursor, in the size that is set."""
        self.surface.FontName = "Tab"
        self.surface.print(glyph)
        self.surface.FontName = self.settings.BodyFontName

    # Building a line

    def build_line(self, i):
        """Fills columns 1 to `self.k` with the measures from record i on; gives the next i."""
        slots = self.LayoutTable
        for n in range(1, MAX_COLUMN + 1):
            slots[n] = NoteRecord()
        first = i
        i, k = self.copy_records(i)
        copied = k
        if self.printing:
            self.make_room_for_chords(k)

        if k == MAX_COLUMN:
            while k > 0 and slots[k].Measure == slots[k - 1].Measure:
                k -= 1
            k -= 1
        self.make_room_for_signatures(k)
        self.move_bars(k)
        if slots[k].NoteCode == HEAD:
            k -= 1
        for n in range(1, k + 1):
            slots[n].Reserved = int16(slots[n - 1].Reserved + slots[n].Spacing)
        while k > 0 and slots[k].Reserved > self.LineCapacity:
            k -= 1
        if k < self.tune.LastNote:
            while k > 0 and slots[k].Measure == slots[k + 1].Measure:
                k -= 1
        if k <= 0:
            raise TooWide(self.NoteTable[first].Measure)

        self.set_plain_bars(k)
        last = slots[k]
        if last.Spacing < 4:
            last.Reserved = int16(last.Reserved + 4 - last.Spacing)
            last.Spacing = 4
        self.k = k
        return i - (copied - k)

    def copy_records(self, i):
        """Copies records into columns up to a hard break; gives the next i and the columns."""
        k = 0
        hard_break = False
        while i <= self.tune.LastNote and k < MAX_COLUMN and not hard_break:
            k += 1
            self.LayoutTable[k] = self.column_of(self.NoteTable[i])
            i += 1
            hard_break = i <= self.tune.LastNote and self.NoteTable[i].Slot[6] == "NL"
        return i, k

    def column_of(self, record):
        column = NoteRecord()
        for field in ("Measure", "NoteCode", "BeatUnit", "Beats", "BeamCode", "BarCode",
                      "LeftHand", "RightHand", "ChordText"):
            setattr(column, field, getattr(record, field))
        column.Slot = list(record.Slot)
        column.Spacing = COLUMN_WIDTHS.get(record.NoteCode, record.Spacing)
        if column.NoteCode != HEAD:
            for text in column.Slot[1:]:
                if text and len(text) >= column.Spacing:
                    column.Spacing = int16(len(text) + 1)
        if not self.printing and len(column.ChordText) >= column.Spacing:
            column.Spacing = int16(len(column.ChordText) + 1)
        return column

    def make_room_for_chords(self, k):
        for n in range(1, k + 1):
            length = len(self.LayoutTable[n].ChordText)
            if length > 1 and n == k:
                self.LayoutTable[n].Spacing = int16(length + 1)
            elif length > 1:
                try:
                    self.spread_chord_text(n)
                except RuntimeFault as fault:       # the walk left the table: on to the next one
                    if fault.number != 9:
                        raise

    def spread_chord_text(self, n):
        """Lets a chord text use the room of the columns after it, up to the next chord."""
        slots = self.LayoutTable
        length = len(slots[n].ChordText) + 1
        total = slots[n].Spacing
        j = n + 1
        while length >= total:
            if slots[j].ChordText:
                slots[n].Spacing = int16(length + 1)
            else:
                total += slots[j].Spacing
            j += 1

    def signature_changes(self, n):
        column, before = self.LayoutTable[n], self.LayoutTable[n - 1]
        return (column.BeatUnit, column.Beats) != (before.BeatUnit, before.Beats)

    def make_room_for_signatures(self, k):
        for n in range(1, k):
            if self.signature_changes(n):
                column = self.LayoutTable[n]
                column.Spacing += 2 if column.BarCode == "98" else 1
                if self.printing and column.Beats == 12:
                    column.Spacing += 2
                int16(column.Spacing)

    def move_bars(self, k):
        """An end bar is stored in the head and drawn at the measure's last column."""
        slots = self.LayoutTable
        for n in range(1, k + 1):
            bar = slots[n].BarCode
            if slots[n].NoteCode == HEAD and bar in ("94", "99"):
                j = n
                while j < MAX_COLUMN - 1 and slots[j].Measure == slots[j + 1].Measure:
                    j += 1
                slots[j].BarCode = bar
                slots[n].BarCode = ""               # on a head without notes the bar is lost
                slots[j].Spacing = int16(slots[j].Spacing + 1)
            if bar in ("95", "98"):
                slots[n].Spacing = int16(slots[n].Spacing + 1)

    def set_plain_bars(self, k):
        slots = self.LayoutTable
        for n in range(1, k):
            if (slots[n].Measure != slots[n + 1].Measure
                    and slots[n].BarCode == "" and slots[n + 1].BarCode == ""):
                slots[n].BarCode = "93"
        if slots[k].BarCode == "":
            slots[k].BarCode = "93"

    def spread_line(self):
        slots, k = self.LayoutTable, self.k
        if slots[k].Reserved == 0:
            raise RuntimeFault(11)
        self.UnitSpacing = min(math.trunc(self.LineWidth / slots[k].Reserved), 150)
        slots[1].XPos = int16(self.FirstColumnX)
        for n in range(2, k + 1):
            slots[n].XPos = int16(slots[n - 1].XPos + self.UnitSpacing * slots[n - 1].Spacing)
        last = slots[k]
        if last.XPos < 9000 and k == self.tune.LastNote:
            self.LineRight = int16(last.XPos + 6 * self.UnitSpacing)
        if last.NoteCode in (92, 93) and last.XPos < 9000:
            self.LineRight = int16(last.XPos + 12 * self.UnitSpacing)

    def finish_line(self, i):
        slots = self.LayoutTable
        self.PenY = self.LineBottom + self.line_distance
        self.surface.print(slots[self.k + 1].Slot[6])
        taken = self.NoteTable[i - 1]
        slots[0].Beats, slots[0].BeatUnit = taken.Beats, taken.BeatUnit
        limit = self.surface.Height - (3140 if self.settings.NumStrings == 6 else 2840)
        if self.PenY > limit:
            self.LineBottom = 0
            self.PenY = self.TitleY
            self.start_page()

    # Line furniture: all that belongs to no single note

    def draw_furniture(self):
        self.TopRowUsed = False
        self.RightHandInLine = 0
        for n in range(1, self.k + 1):
            if self.LayoutTable[n].RightHand > " ":
                self.RightHandInLine = 1
            if self.LayoutTable[n].NoteCode == HEAD:
                self.draw_above_measure(n)
        self.draw_chord_row()
        self.draw_staff()
        for n in range(1, self.k + 1):
            self.draw_signature(n)
            self.draw_left_edge(n)
            self.draw_bar(n)

    def draw_above_measure(self, n):
        head = self.LayoutTable[n]
        if head.Slot[2]:
            self.need_top_row()
            self.draw_repeat_bracket(n)
        if head.Slot[1]:
            self.need_top_row()
            self.print_sign(n)
        if head.Slot[3]:
            self.need_top_row()
            self.print_remark(n)

    def need_top_row(self):
        if not self.TopRowUsed:
            self.RowTop = self.PenY
            self.PenY += 3 * self.StringGap
            self.TopRowUsed = True

    def draw_repeat_bracket(self, n):
        slots, surface = self.LayoutTable, self.surface
        start = slots[n].XPos
        j = n
        while slots[j].BarCode < "93" and j < self.k:
            j += 1
        right = self.LineRight if j == self.k else slots[j].XPos
        surface.line(start, self.PenY - 40, start, self.RowTop)
        surface.line(start, self.RowTop, right, self.RowTop)
        surface.CurrentX = start + 40
        surface.CurrentY = self.PenY - 3 * self.StringGap
        surface.print(slots[n].Slot[2])

    def print_sign(self, n):
        code = self.LayoutTable[n].Slot[1]
        self.surface.CurrentY = self.RowTop
        if code in SIGN_GLYPHS:
            self.surface.CurrentX = self.LayoutTable[n + 1].XPos - 2 * self.UnitSpacing
            self.print_symbol(SIGN_GLYPHS[code])
        elif code in SIGN_TEXTS:
            self.print_at_measure_end(n, SIGN_TEXTS[code])

    def print_remark(self, n):
        text = self.LayoutTable[n].Slot[3]
        self.surface.CurrentY = self.RowTop
        if text[0] == "/":
            self.print_at_measure_end(n, text[1:])
        else:
            self.surface.CurrentX = self.LayoutTable[n + 1].XPos
            self.surface.print(text)

    def print_at_measure_end(self, n, text):
        """Right-aligned, by the text's width in the main form's font."""
        slots = self.LayoutTable
        w = n
        while slots[w + 1].Measure == slots[n].Measure:
            w += 1
        self.surface.CurrentX = (slots[w].XPos + 2 * self.UnitSpacing
                                 - text_width(text, MAIN_FORM_FONT_SIZE))
        self.surface.print(text)

    def draw_chord_row(self):
        surface = self.surface
        chord_row_used = False
        for n in range(1, self.k + 1):
            column = self.LayoutTable[n]
            if column.ChordText:
                surface.CurrentX = column.XPos
                surface.CurrentY = self.PenY - (2 * self.StringGap if self.TopRowUsed else 0)
                surface.print(column.ChordText)
                chord_row_used = chord_row_used or not self.TopRowUsed
        if chord_row_used:
            self.PenY += 2 * self.StringGap
        elif not self.TopRowUsed:
            self.PenY += self.StringGap

    def draw_staff(self):
        self.pen(STAFF_PEN)
        for s in range(self.settings.NumStrings):
            y = self.PenY + s * self.StringGap
            self.surface.line(self.LineLeft, y, self.LineRight, y)

    def draw_signature(self, n):
        if not self.signature_changes(n):
            return
        surface, column = self.surface, self.LayoutTable[n]
        body_size = self.settings.BodyFontSize
        repeat_start = column.BarCode == "98"
        if n == 1:
            x = self.LineLeft + (self.UnitSpacing if repeat_start else 50)
        else:
            x = column.XPos + (self.UnitSpacing if repeat_start else 0)
        surface.CurrentX, surface.CurrentY = x, self.PenY
        surface.FontSize = SIGNATURE_SIZES.get(body_size, surface.FontSize)
        surface.print(f" {column.Beats} ")
        surface.CurrentY = self.PenY + 2 * self.StringGap
        if self.settings.NumStrings == 4:
            surface.CurrentY -= 100
        surface.CurrentX = x
        surface.print(f" {column.BeatUnit} ")
        surface.FontSize = body_size

    def draw_left_edge(self, n):
        if n == 1 and self.LayoutTable[1].BarCode == "":
            self.pen(EDGE_PEN)
            self.staff_high_line(self.LineLeft)

    def staff_high_line(self, x):
        bottom = self.PenY + (self.settings.NumStrings - 1) * self.StringGap
        self.surface.line(x, self.PenY, x, bottom)

    def draw_bar(self, n):
        slots = self.LayoutTable
        bar = slots[n].BarCode
        end_x = self.LineRight if n == self.k else slots[n + 1].XPos
        start_x = self.LineLeft if n == 1 else slots[n].XPos
        if bar == "93":
            self.pen(EDGE_PEN)
            self.staff_high_line(end_x)
        elif bar in ("94", "99"):
            self.draw_double_bar(end_x, end_x - 40)
            if bar == "99":
                self.draw_repeat_dots(end_x - 40 - 50)
        elif bar in ("95", "98"):
            self.draw_double_bar(start_x, start_x + 40)
            if bar == "98":
                self.draw_repeat_dots(start_x + 40 + 50)
        self.surface.DrawWidth = 1

    def draw_double_bar(self, thick_x, thin_x):
        self.pen(THICK_BAR_PEN)
        self.staff_high_line(thick_x)
        self.pen(THIN_BAR_PEN)
        self.staff_high_line(thin_x)

    def draw_repeat_dots(self, x):
        for gaps in REPEAT_DOTS[self.settings.NumStrings]:
            self.surface.dot(x, self.PenY + gaps * self.StringGap, 30)

    # Note columns

    def draw_columns(self):
        self.clear_beat()
        self.TickCount = 0
        for n in range(1, self.k + 1):
            self.draw_column(n)
            self.LineRight = self.PageLineRight

    def clear_beat(self):
        self.BeamStartX = self.Beam2StartX = 0

    def draw_column(self, n):
        column = self.LayoutTable[n]
        if column.NoteCode == HEAD:
            self.TickCount = 0
            self.clear_beat()
        self.StemString = 0
        if column.NoteCode != HEAD:
            for s in range(1, 7):
                self.draw_cell(n, s)
        self.draw_block_rest(column)
        self.draw_glyph_rest(column)
        self.find_stem_end()
        self.draw_stem(column)
        self.start_beams(column)
        self.draw_beams(n)
        self.TickCount += COLUMN_TICKS.get(column.NoteCode, 0)
        self.print_right_hand(column)
        self.draw_triplet(n)
        self.print_left_hand(column)
        if self.TripletCount == 3:
            self.TripletCount = 0

    def fret_y(self, s):
        return self.PenY + 50 + s * self.StringGap - 2 * self.StringGap

    def string_y(self, s):
        return self.PenY + (s - 1) * self.StringGap

    def draw_cell(self, n, s):
        surface, column = self.surface, self.LayoutTable[n]
        x, y = column.XPos, self.fret_y(s)
        text = column.Slot[s]
        surface.CurrentX, surface.CurrentY = x, y
        if text == "/":
            self.print_slash(y)
            self.StemString = s
            return
        if not text:
            return

        if self.TieCarry[s] == 1:
            self.draw_tie_in(x, s)
            surface.CurrentX, surface.CurrentY = x, y
        self.StemString = s
        tie = text.find("^") + 1
        self.TieCarry[s] = 1 if tie > 0 and n == self.k else 0
        slide_mark = "<" if "<" in text else ">"
        slide = text.find(slide_mark) + 1
        shown = text[:-1] if tie > 0 or slide > 0 else text
        if column.NoteCode >= 9:
            shown = "[" + shown + "]"

        self.print_fret(shown, joined=column.NoteCode < 9)
        if column.BeamCode in (6, 7, 8) or column.NoteCode == 10:
            dot_x = x + surface.text_width(shown) + int_div(surface.text_width("5"), 2)
            surface.dot(dot_x, surface.CurrentY - int_div(self.StringGap, 2), 20)
        if slide > 0:
            self.print_slide(slide_mark, x + self.CharUnit * (slide - 1), y)
        if tie > 0:
            self.draw_tie(n, s, shown)

    def print_slash(self, y):
        surface = self.surface
        surface.FontName = "Tab"
        small = surface.FontSize == self.settings.BodyFontSize - 2
        surface.CurrentY = y - (40 if small else 100)
        self.print_symbol("/")

    def draw_tie_in(self, x, s):
        self.pen(TIE_IN_PEN)
        self.surface.arc(self.LineLeft, self.string_y(s), x - self.LineLeft, 0, 1.5, 0.25)
        self.surface.DrawWidth = 1

    def print_fret(self, shown, joined):
        """A fret text; a connection between two frets is a glyph, unless the text is bracketed."""
        surface = self.surface
        for mark, rise in (("-", 70), ("=", 80)):
            if joined and mark in shown:
                before, after = shown.split(mark, 1)
                surface.put(before)
                surface.FontName = "Tab"
                line_y = surface.CurrentY
                surface.CurrentY = line_y - rise
                surface.put(mark)
                surface.FontName = self.settings.BodyFontName
                surface.CurrentY = line_y
                surface.print(after)
                return
        surface.print(shown)

    def print_slide(self, mark, x, y):
        surface = self.surface
        surface.CurrentX = x
        surface.FontSize = self.settings.BodyFontSize - 2
        surface.CurrentY = y if mark == "<" else y - 200
        self.print_symbol(mark)
        self.body_font()

    def draw_tie(self, n, s, shown):
        slots = self.LayoutTable
        x = slots[n].XPos
        length = self.CharUnit * len(shown)
        if n == self.k:
            span = self.LineRight - x + length
        elif slots[n + 1].NoteCode == HEAD:
            span = slots[n + 2].XPos - x
        else:
            span = slots[n + 1].XPos - x
        radius = int_div(span - length, 2) - (0 if self.printing else 20)
        centre = x + length + radius + (0 if self.printing else 10)
        start, end = (1.0, 3.0) if n == self.k else (0, 3.25)
        self.pen(TIE_PEN)
        self.surface.arc(centre, self.string_y(s), radius, start, end, 0.5)
        self.surface.DrawWidth = 1

    def draw_block_rest(self, column):
        if column.NoteCode == 93:
            x, y = column.XPos + 4 * self.UnitSpacing, self.PenY + self.StringGap + 40
        elif column.NoteCode == 92:
            x, y = column.XPos, self.PenY + 2 * self.StringGap - 30
        else:
            return
        self.pen(BLOCK_REST_PEN)
        self.surface.line(x, y, x + 1.5 * self.UnitSpacing, y)
        self.surface.DrawWidth = 1

    def draw_glyph_rest(self, column):
        if column.NoteCode < 94:
            return
        surface = self.surface
        surface.CurrentX = column.XPos
        surface.CurrentY = self.PenY + (0 if self.settings.NumStrings < 5 else 140)
        surface.FontSize = self.settings.BodyFontSize + 2
        if column.NoteCode in REST_GLYPHS:
            self.print_symbol(REST_GLYPHS[column.NoteCode])
        self.body_font()

    def find_stem_end(self):
        room = 2 * self.StringGap if self.RightHandInLine == 1 else self.StringGap / 2
        self.StemEnd = self.PenY + self.settings.NumStrings * self.StringGap + room
        self.reach_down_to(self.StemEnd + self.StringGap)

    def reach_down_to(self, y):
        self.LineBottom = max(self.LineBottom, y)

    def draw_stem(self, column):
        if column.NoteCode < 11 and self.StemString > 0:
            self.StemX = column.XPos + 40
            top = self.PenY + self.StringGap * self.StemString - 100
            self.surface.line(self.StemX, top, self.StemX, self.StemEnd)

    def start_beams(self, column):
        beat = 12 if column.BeatUnit == 4 else 18
        if self.TickCount % beat == 0 or column.NoteCode == 99:
            self.clear_beat()
        if column.NoteCode < 6 and self.BeamStartX == 0:
            self.BeamStartX = column.XPos
        if column.NoteCode < 3 and (self.Beam2StartX == 0 or column.BeamCode > 2):
            self.Beam2StartX = column.XPos

    def draw_beams(self, n):
        code = self.LayoutTable[n].BeamCode
        if code == 1:
            self.print_flag(n, ")")
        elif code in (4, 8):
            self.print_flag(n, "(")
        if code in (2, 3, 5, 6, 10):
            self.draw_beam(self.BeamStartX + 39, self.StemEnd, BEAM_PEN)
        if code == 2:
            self.draw_beam(self.Beam2StartX + 39, self.StemEnd - 50, BEAM_PEN)
        elif code == 3:
            half = math.trunc((self.StemX - (self.LayoutTable[n - 1].XPos + 39)) / 2)
            self.draw_beam(self.StemX - half, self.StemEnd - 50, BEAM_PEN)
        elif code in (9, 10):
            half = math.trunc((self.LayoutTable[n + 1].XPos - self.StemX) / 2)
            self.pen(FORWARD_STUB_PEN)
            y = self.StemEnd - 80
            self.surface.line(self.StemX, y, self.StemX + half, y)
        self.surface.DrawWidth = 1

    def print_flag(self, n, glyph):
        self.surface.CurrentX = self.LayoutTable[n].XPos + 40
        self.surface.CurrentY = self.StemEnd - self.StringGap - 140
        self.print_symbol(glyph)

    def draw_beam(self, start_x, y, pen):
        """A beam from `start_x` to the stem."""
        self.pen(pen)
        self.surface.line(start_x, y, self.StemX, y)

    def print_right_hand(self, column):
        if column.RightHand > " ":
            self.surface.CurrentX = column.XPos + 60
            self.surface.CurrentY = self.StemEnd - 3 * self.StringGap
            self.surface.print(column.RightHand)

    def draw_triplet(self, n):
        slots = self.LayoutTable
        if slots[n].NoteCode not in TRIPLET_CODES:
            self.TripletCount = 0
            return
        if self.TripletCount == 0:
            a, b = slots[n].XPos, slots[n + 2].XPos
            self.draw_triplet_bracket(a, a + (b - a) / 2, b + 120)
        self.TripletCount += 1

    def draw_triplet_bracket(self, left, middle, right):
        surface, top, bottom = self.surface, self.StemEnd + 10, self.StemEnd + 100
        surface.line(left, top, left, bottom)
        surface.line(left, bottom, middle, bottom)
        surface.line(middle + 120, bottom, right, bottom)
        surface.line(right, top, right, bottom)
        surface.CurrentX, surface.CurrentY = middle, self.StemEnd - 10
        surface.print("3")
        self.reach_down_to(self.StemEnd - 10)

    def print_left_hand(self, column):
        if column.LeftHand > " ":
            y = self.StemEnd + (140 if self.TripletCount > 0 else 20)
            self.surface.CurrentX, self.surface.CurrentY = column.XPos + 1, y
            self.reach_down_to(y)
            self.surface.print(column.LeftHand)


class Screen(Layout):
    """The run that draws on the page surfaces."""

    def set_page_values(self):
        self.LineLeft = 400
        self.PageLineRight = int16(nearest(Surface.Width - 800))
        self.TitleY = 600
        self.StringGap = 165
        self.CharUnit = 100
        self.line_distance = 500

    def start_page(self):
        element = len(self.pages)
        if element > LAST_PAGE_ELEMENT:
            raise RuntimeFault(340)
        self.surface = Surface(self.settings.BodyFontName, self.settings.BodyFontSize)
        if element <= LAST_CLEARED_ELEMENT:
            self.surface.clear()
        self.pages.append(self.surface)

    def print_title(self, title):
        self.surface.CurrentX = 400
        self.surface.print(title)


class Printer(Layout):
    """The print pass."""

    printing = True

    def set_page_values(self):
        settings = self.settings
        self.LineLeft = nearest(single(settings.PageLeft * 1440) - 360)
        self.PageLineRight = int16(nearest(Surface.Width - single(settings.PageRight * 1440)))
        self.TitleY = nearest(single(settings.PageTop * 1440))
        if settings.BodyFontSize not in (8, 10, 12):
            settings.BodyFontSize = 12.0
        self.StringGap = {8: 140, 10: 165, 12: 185}[settings.BodyFontSize]
        self.CharUnit = {8: 80, 10: 100, 12: 120}[settings.BodyFontSize]
        self.line_distance = single(settings.StaveSpace * 1440)

    def run(self):
        try:
            super().run()
        except RuntimeFault as fault:
            raise Unmodelled(str(fault)) from fault

    def start_page(self):
        self.surface = Surface(self.settings.BodyFontName, self.settings.BodyFontSize)
        self.pages.append(self.surface)
        if len(self.pages) > 1:
            self.surface.print(" ")

    def print_heading(self):
        super().print_heading()
        self.PenY += 3 * self.StringGap
        self.surface.CurrentY = self.PenY

    def print_title(self, title):
        surface = self.surface
        surface.CurrentX = self.LineLeft
        if self.settings.TitleCentered:
            rest = surface.Width - surface.text_width(title)
            surface.CurrentX = int_div(nearest(rest), 2) - 360
        surface.print(title)


def log_text(pages, printing, ended):
    lines = []
    for number, page in enumerate(pages, 1):
        lines.append(f"page {number}")
        lines.extend(page.log)
    if printing and ended:
        lines.append("end")
    return "".join(line + "\n" for line in lines)


def draw_tune(data, settings_of, log_format):
    """The log of a tune file's text: (log, None), or (the log so far, what went wrong).

    `settings_of` gives the settings for a header record.
    """
    printing = log_format == "print-log"
    try:
        tune = open_tune(data)
        layout = (Printer if printing else Screen)(tune, settings_of(tune.NoteTable[0]))
    except IncompatibleFile:
        return "", "File is incompatible."
    except RuntimeFault as fault:
        return "", str(fault)
    try:
        layout.run()
    except (RuntimeFault, TooWide) as failure:
        return log_text(layout.pages, printing, False), str(failure)
    return log_text(layout.pages, printing, True), None


# The command line

def argument_parser():
    parser = argparse.ArgumentParser(prog="pages_model.py", allow_abbrev=False)
    parser.add_argument("tune")
    parser.add_argument("--format", choices=("page-log", "print-log"), required=True)
    parser.add_argument("--strings", type=int, choices=(4, 5, 6))
    parser.add_argument("--body-font")
    parser.add_argument("--body-size", type=float)
    parser.add_argument("--title-font")
    parser.add_argument("--title-size", type=float)
    parser.add_argument("--left", type=float)
    parser.add_argument("--right", type=float)
    parser.add_argument("--top", type=float)
    parser.add_argument("--stave-space", type=float)
    parser.add_argument("--center-title", choices=("yes", "no"))
    return parser


def settings_for(options):
    """A function that gives the settings for a tune's header record."""
    strings = {"gui": 6, "bjo": 5, "bss": 4}.get(options.tune[-3:], 6)
    sizes = {"BodyFontSize": options.body_size, "TitleFontSize": options.title_size,
             "PageLeft": options.left, "PageRight": options.right, "PageTop": options.top,
             "StaveSpace": options.stave_space}
    names = {"BodyFontName": options.body_font, "TitleFontName": options.title_font}

    def settings_of(header):
        settings = Settings()
        settings.NumStrings = options.strings or strings
        settings.take_header(header)
        for name, value in sizes.items():
            if value is not None:
                setattr(settings, name, single(value))
        for name, value in names.items():
            if value is not None:
                setattr(settings, name, value)
        if options.center_title:
            settings.TitleCentered = options.center_title == "yes"
        return settings

    return settings_of


def main(arguments):
    options = argument_parser().parse_args(arguments)
    try:
        with open(options.tune, encoding="latin-1", newline="") as file:
            data = file.read()
    except OSError:
        log, problem = "", "File Not Found"
    else:
        try:
            log, problem = draw_tune(data, settings_for(options), options.format)
        except Unmodelled as fault:
            print(f"pages_model.py: {options.tune}: print pass: {fault}", file=sys.stderr)
            return 3
    if problem:
        print(f"quillon-export: {os.path.basename(options.tune)}: {problem}", file=sys.stderr)
        return 1
    sys.stdout.write(log)
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
