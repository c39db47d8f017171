#!/usr/bin/env python3
"""Edge cases of the page model, with positions worked out by hand."""

import unittest

from pages_model import (Printer, Screen, Settings, TooWide, argument_parser, draw_tune,
                         settings_for)
from pages_surface import Surface, number_text, quoted
from pages_tune import (HEAD, IncompatibleFile, NoteRecord, RuntimeFault, Tune, int_div, nearest,
                        open_tune, read_tune, single, val)
from random_page_tunes import record_text


def head(measure, beats=4, unit=4, **fields):
    return record(measure, HEAD, beats, unit, **fields)


def record(measure, code, beats=4, unit=4, cells=None, **fields):
    made = NoteRecord()
    made.Measure, made.NoteCode, made.Beats, made.BeatUnit = measure, code, beats, unit
    for name, value in fields.items():
        if name.startswith("slot"):
            made.Slot[int(name[4:])] = value
        else:
            setattr(made, name, value)
    for string, text in (cells or {}).items():
        made.Slot[string] = text
    return made


def note(measure, code=7, fret="3", string=1, **fields):
    return record(measure, code, cells={string: fret}, **fields)


def tune_of(records, title=" "):
    tune = Tune()
    header = NoteRecord()
    header.ChordText = title
    for index, made in enumerate([header] + records):
        tune.NoteTable[index] = made
    tune.LastNote = len(records)
    return tune


def layout_of(records, kind=Screen, title=" ", **settings):
    chosen = Settings()
    for name, value in settings.items():
        setattr(chosen, name, value)
    return kind(tune_of(records, title), chosen)


def log_of(records, kind=Screen, title=" ", **settings):
    """The log lines of all pages."""
    layout = layout_of(records, kind, title, **settings)
    layout.run()
    return [line for page in layout.pages for line in page.log]


def first_line(records, kind=Screen, **settings):
    """A layout whose first line has been built and spread, and not drawn."""
    layout = layout_of(records, kind, **settings)
    layout.set_page_values()
    layout.LineRight = layout.PageLineRight
    layout.LineWidth = layout.LineRight - layout.LineLeft
    layout.FirstColumnX = layout.LineLeft + 120
    layout.LineCapacity = int_div(layout.LineWidth, layout.CharUnit)
    layout.next_record = layout.build_line(1)
    layout.spread_line()
    return layout


def measures(count, notes=4, code=7):
    made = []
    for measure in range(1, count + 1):
        made += [head(measure)] + [note(measure, code) for _ in range(notes)]
    return made


class Numbers(unittest.TestCase):
    def test_rounding(self):
        self.assertEqual([nearest(v) for v in (0.5, 1.5, 2.5, -0.5, -1.5)], [0, 2, 2, 0, -2])
        self.assertEqual(int_div(-7, 2), -3)
        self.assertEqual(int_div(82.5, 2), 41)

    def test_val(self):
        values = {"": 0, "abc": 0, " 1 2": 12, "10pt": 10, "1e1": 10, "1d2x": 100, ".5": 0.5,
                  "-3.": -3, "1e": 1, "1.2.3": 1.2}
        for text, value in values.items():
            self.assertEqual(val(text), value, text)

    def test_single(self):
        self.assertNotEqual(single(0.8), 0.8)
        self.assertEqual(single(0.75), 0.75)

    def test_log_numbers(self):
        shown = [number_text(v) for v in (1, 1.0, 0.5, -0.001, 100, 82.25, 3.256, -0.5)]
        self.assertEqual(shown, ["1", "1", "0.5", "0", "100", "82.25", "3.26", "-0.5"])

    def test_log_texts(self):
        self.assertEqual(quoted('a"\\\xe9'), '"a\\"\\\\\\xe9"')
        surface = Surface("Arial", 10)
        surface.print("   ")
        self.assertEqual(surface.log, [])
        self.assertEqual((surface.CurrentX, surface.CurrentY), (0, 240))


class Files(unittest.TestCase):
    def test_round_trip(self):
        made = [NoteRecord()] + measures(2)
        tune = read_tune("".join(map(record_text, made)))
        self.assertEqual((tune.LastNote, tune.LastMeas), (10, 2))
        self.assertEqual(tune.NoteTable[7].Slot[1], "3")
        self.assertEqual(tune.NoteTable[7].LeftHand, " ")

    def test_end_of_file_inside_a_record(self):
        text = record_text(NoteRecord())
        with self.assertRaises(IncompatibleFile):
            read_tune("".join(text.splitlines(True)[:5]))

    def test_no_measure_1_counts_as_empty(self):
        text = "".join(map(record_text, [NoteRecord(), head(2), note(2), note(2)]))
        self.assertEqual(open_tune(text).LastNote, 0)

    def test_measure_1_is_shown_once(self):
        made = [head(1, BarCode=" 9"), note(1, 4, "/", 5, BeamCode=7), note(1, 4, "123")]
        tune = open_tune("".join(map(record_text, [NoteRecord()] + made)))
        table = tune.NoteTable
        self.assertEqual(table[1].BarCode, "")
        self.assertEqual((table[2].Slot[5], table[2].Slot[3]), ("", "/"))
        self.assertEqual([table[i].BeamCode for i in (2, 3)], [0, 5])
        self.assertEqual([table[i].Spacing for i in (2, 3)], [3, 4])
        self.assertEqual([table[i].XPos for i in (2, 3)], [48, 66])

    def test_beams_of_measure_1(self):
        for codes, beams in (((2, 2, 2, 2), [0, 2, 2, 2]), ((4, 2, 2), [0, 5, 2]), ((4,), [4]),
                             ((5, 2), [7, 3])):
            made = [head(1)] + [note(1, code) for code in codes]
            tune = open_tune("".join(map(record_text, [NoteRecord()] + made)))
            given = [tune.NoteTable[2 + i].BeamCode for i in range(len(codes))]
            self.assertEqual(given, beams, codes)


class Lines(unittest.TestCase):
    def test_unit_spacing_is_limited(self):
        # 40 units: head 2 + 1 for the signature, 12 quarters of 3, and the last grows to 4.
        layout = first_line([head(1)] + [note(1) for _ in range(12)])
        self.assertEqual(layout.LayoutTable[layout.k].Reserved, 40)
        self.assertEqual(layout.UnitSpacing, 150)

    def test_unit_spacing_is_cut(self):
        # 82 units on 11040: 134.6.
        layout = first_line([head(1)] + [note(1) for _ in range(26)])
        self.assertEqual(layout.LayoutTable[layout.k].Reserved, 82)
        self.assertEqual(layout.UnitSpacing, 134)

    def test_line_takes_whole_measures(self):
        # A measure is 14 units, the first one 15: seven of them are 99, eight are 113.
        layout = first_line(measures(9))
        self.assertEqual(layout.k, 35)
        self.assertEqual(layout.next_record, 36)

    def test_a_line_cut_by_the_table_gives_its_last_measure_back(self):
        records = [head(1)] + [record(1, 60) for _ in range(60)]
        records += [head(2)] + [record(2, 60) for _ in range(18)] + measures(3)[10:]
        layout = first_line(records)
        self.assertEqual(layout.k, 61)
        self.assertEqual(layout.next_record, 62)

    def test_a_trailing_head_waits_for_the_next_line(self):
        layout = first_line(measures(1) + [head(2), head(3)])
        self.assertEqual((layout.k, layout.next_record), (6, 7))
        layout = first_line(measures(1) + [head(2)])
        self.assertEqual((layout.k, layout.next_record), (5, 6))

    def test_hard_break(self):
        records = measures(3)
        records[5].Slot[6] = "NL"
        layout = first_line(records)
        self.assertEqual(layout.k, 5)

    def test_end_bar_moves_to_the_last_column(self):
        records = measures(2)
        records[0].BarCode = "99"
        layout = first_line(records)
        self.assertEqual([layout.LayoutTable[n].BarCode for n in (1, 5, 10)], ["", "99", "93"])
        self.assertEqual(layout.LayoutTable[5].Spacing, 4)

    def test_end_bar_of_an_empty_measure_is_lost(self):
        layout = first_line([head(1, BarCode="94")] + [head(2), note(2), note(2)])
        self.assertEqual(layout.LayoutTable[1].BarCode, "93")
        self.assertEqual(layout.LayoutTable[1].Spacing, 2 + 1 + 1)

    def test_begin_bar_takes_the_place_of_the_plain_bar(self):
        records = measures(2)
        records[5].BarCode = "98"
        layout = first_line(records)
        self.assertEqual([layout.LayoutTable[n].BarCode for n in (5, 6)], ["", "98"])
        self.assertEqual(layout.LayoutTable[6].Spacing, 3)

    def test_signature_on_a_repeat_start(self):
        layout = first_line([head(1, BarCode="98")] + measures(1)[1:])
        self.assertEqual(layout.LayoutTable[1].Spacing, 2 + 2 + 1)

    def test_twelve_beats_take_room_on_paper_only(self):
        records = [head(1, 12, 8)] + [record(1, 8, 12, 8, {1: "3"}) for _ in range(4)]
        self.assertEqual(first_line(records).LayoutTable[1].Spacing, 3)
        self.assertEqual(first_line(records, Printer).LayoutTable[1].Spacing, 5)

    def test_a_tune_in_one_line_has_a_short_staff(self):
        layout = first_line(measures(1))
        self.assertEqual(layout.LayoutTable[5].XPos, 520 + 150 * (3 + 9))
        self.assertEqual(layout.LineRight, 2320 + 900)

    def test_a_line_that_ends_in_a_block_rest(self):
        layout = first_line(measures(1) + [head(2), record(2, 93)])
        self.assertEqual(layout.LineRight, layout.LayoutTable[7].XPos + 1800)

    def test_too_wide(self):
        for records, measure in (
                (measures(1, notes=40) + measures(2), 1),
                ([head(1)] + [record(1, 60) for _ in range(90)], 1),
                (measures(1) + [head(2, slot6="NL"), head(3, slot6="NL"), note(3)], 2)):
            with self.assertRaises(TooWide) as failure:
                log_of(records)
            self.assertEqual(str(failure.exception),
                             f"Measure {measure} is too wide for a line.")

    def test_chords(self):
        records = [head(1), note(1, ChordText="Gsus4"), note(1), note(1, ChordText="Am"), note(1)]
        layout = first_line(records)
        self.assertEqual([layout.LayoutTable[n].Spacing for n in (2, 4)], [6, 3])
        # On paper the columns after it give the room: 6 < 3 + 3 fails, so the chord is widened.
        layout = first_line(records, Printer)
        self.assertEqual([layout.LayoutTable[n].Spacing for n in (2, 4)], [7, 3])

    def test_a_chord_on_the_last_column_sets_its_width_on_paper(self):
        layout = first_line([head(1), note(1), note(1, 11, ChordText="Am")], Printer)
        self.assertEqual(layout.LayoutTable[3].Spacing, 4)      # 3, then the line's end makes it 4

    def test_a_chord_walk_past_the_table_changes_nothing(self):
        layout = first_line([head(1), note(1, ChordText="m" * 40), note(1)], Printer)
        self.assertEqual(layout.LayoutTable[2].Spacing, 3)


class Pages(unittest.TestCase):
    def test_empty_tune(self):
        self.assertEqual(log_of([], title="A"),
                         ["clear", 'text 400 600 size=20 font="Arial" bold=0 "A"'])
        self.assertEqual(log_of([head(1)]), ["clear"])

    def test_credits_begin_at_one_x(self):
        tune = tune_of([])
        tune.NoteTable[0].Slot[1], tune.NoteTable[0].Slot[2] = "Trad.", "Arr. by X"
        layout = Screen(tune, Settings())
        layout.run()
        self.assertEqual(layout.surface.log[1:],
                         ['text 10540 600 size=10 font="Arial" bold=0 "Trad."',
                          'text 10540 840 size=10 font="Arial" bold=0 "Arr. by X"'])
        self.assertEqual(layout.PenY, 1080)

    def test_first_line_without_a_title(self):
        log = log_of(measures(1))
        self.assertEqual(log[1:7], [f"line 400 {765 + 165 * s} 3220 {765 + 165 * s} w=1"
                                    for s in range(6)])
        self.assertEqual(log[7:11], ['text 450 765 size=16 font="Arial" bold=0 " 4 "',
                                     'text 450 1095 size=16 font="Arial" bold=0 " 4 "',
                                     "line 400 765 400 1590 w=2",
                                     "line 3220 765 3220 1590 w=2"])
        self.assertEqual(log[11:13], ['text 970 650 size=10 font="Arial" bold=0 "3"',
                                      "line 1010 830 1010 1837.5 w=1"])

    def test_paper(self):
        log = log_of(measures(1), Printer, StaveSpace=0.75)
        # One page line of nothing above: top margin 1440, three gaps, one more for the staff.
        self.assertEqual(log[0], "line 1080 2100 3900 2100 w=3")
        self.assertIn('text 1650 1985 size=10 font="Arial" bold=0 "3"', log)

    def test_paper_title(self):
        log = log_of([], Printer, title="Tune")
        self.assertEqual(log, ['text 5360 1440 size=20 font="Arial" bold=0 "Tune"'])
        log = log_of([], Printer, title="Tune", TitleCentered=False)
        self.assertEqual(log, ['text 1080 1440 size=20 font="Arial" bold=0 "Tune"'])

    def test_paper_takes_three_body_sizes(self):
        layout = layout_of(measures(1), Printer, BodyFontSize=11)
        layout.run()
        self.assertEqual((layout.settings.BodyFontSize, layout.StringGap, layout.CharUnit),
                         (12, 185, 120))

    def test_only_six_pages_are_cleared(self):
        records = measures(50)
        for made in records[1:]:
            made.Slot[6] = "NL" if made.NoteCode == HEAD else ""
        layout = layout_of(records)
        layout.run()
        cleared = [page.log[0] == "clear" for page in layout.pages]
        self.assertEqual(cleared, [True] * 6 + [False] * (len(cleared) - 6))
        self.assertGreater(len(cleared), 6)

    def test_tenth_page(self):
        records = measures(80)
        for made in records[1:]:
            made.Slot[6] = "NL" if made.NoteCode == HEAD else ""
        with self.assertRaises(RuntimeFault) as fault:
            log_of(records)
        self.assertEqual(fault.exception.number, 340)
        layout = layout_of(records, Printer)
        layout.run()
        self.assertGreater(len(layout.pages), 10)

    def test_a_page_may_begin_after_the_last_line(self):
        # One line ends at 1440 + 4 * 165 + 6 * 165 + 82.5 + 165 = 3337.5; 9 inches are below it.
        layout = layout_of(measures(1), Printer, StaveSpace=9)
        layout.run()
        self.assertEqual([len(page.log) > 0 for page in layout.pages], [True, False])


class Furniture(unittest.TestCase):
    def test_top_row(self):
        log = log_of([head(1, slot2="1."), note(1), note(1)])
        self.assertEqual(log[1:4], ["line 520 1055 520 600 w=1", "line 520 600 2320 600 w=1",
                                    'text 560 600 size=10 font="Arial" bold=0 "1."'])
        self.assertEqual(log[4], "line 400 1095 2320 1095 w=1")

    def test_plain_da_capo_takes_the_row_and_prints_nothing(self):
        log = log_of([head(1, slot1="82"), note(1), note(1)])
        self.assertTrue(log[1].startswith("line 400 1095 "))

    def test_right_aligned_by_the_main_forms_font(self):
        # Last column at 520 + 150 * 6; its unit 150 twice, less 4 letters of 82.5.
        log = log_of([head(1, slot1="83"), note(1), note(1)])
        self.assertEqual(log[1], 'text 1390 600 size=10 font="Arial" bold=0 "Fine"')

    def test_chord_row(self):
        log = log_of([head(1), note(1, ChordText="Am"), note(1)])
        self.assertEqual(log[1], 'text 970 600 size=10 font="Arial" bold=0 "Am"')
        self.assertTrue(log[2].startswith("line 400 930 "))

    def test_repeat_dots(self):
        log = log_of([head(1, BarCode="98"), note(1), note(1)])
        self.assertEqual([line for line in log if line.endswith(" w=3")],
                         ["line 400 765 400 1590 w=3"])
        self.assertIn("circle 490 1012.5 30 w=2 fill=solid", log)
        self.assertIn("circle 490 1342.5 30 w=2 fill=solid", log)
        self.assertIn('text 550 765 size=16 font="Arial" bold=0 " 4 "', log)

    def test_four_strings(self):
        log = log_of(measures(1), NumStrings=4)
        self.assertIn('text 450 995 size=16 font="Arial" bold=0 " 4 "', log)


class Columns(unittest.TestCase):
    """Frets are at y 650 + 165 * (s - 1), stems end at 1837.5, column 2 is at x 970."""

    def columns(self, *records, **settings):
        log = log_of([head(1)] + list(records), **settings)
        start = next(i for i, line in enumerate(log) if line.endswith(" w=2"))
        while log[start].endswith(" w=2"):
            start += 1
        return log[start:]

    def test_connection(self):
        log = self.columns(note(1, 7, "3-5"), note(1))
        self.assertEqual(log[:3], ['text 970 650 size=10 font="Arial" bold=0 "3"',
                                   'text 1070 580 size=10 font="Tab" bold=0 "-"',
                                   'text 1170 650 size=10 font="Arial" bold=0 "5"'])

    def test_brackets_keep_the_connection_as_it_is(self):
        log = self.columns(note(1, 9, "3-5"), note(1))
        self.assertEqual(log[0], 'text 970 650 size=10 font="Arial" bold=0 "[3-5]"')

    def test_dot_counts_the_brackets(self):
        log = self.columns(note(1, 10, "3"), note(1))
        self.assertEqual(log[1], "circle 1320 808 20 w=1 fill=solid")

    def test_slide(self):
        log = self.columns(note(1, 7, "12>"), note(1))
        self.assertEqual(log[:2], ['text 970 650 size=10 font="Arial" bold=0 "12"',
                                   'text 1170 450 size=8 font="Tab" bold=0 ">"'])

    def test_tie(self):
        # Span 450, text 100: radius 350 \ 2 - 20, centre 970 + 100 + 155 + 10.
        log = self.columns(note(1, 7, "3^"), note(1))
        self.assertEqual(log[1], "arc 1235 765 155 0 3.25 0.5 w=1")

    def test_tie_over_the_bar(self):
        log = self.columns(note(1, 7, "3^"), head(2), note(2), note(2))
        # Column 3 is a head and column 4 is 3 + 2 units further on.
        self.assertEqual(log[1], "arc 1385 765 305 0 3.25 0.5 w=1")

    def test_tie_over_the_line_end(self):
        records = [head(1), note(1, 7, "3^"), head(2, slot6="NL"), note(2), note(2)]
        arcs = [line for line in log_of(records) if line.startswith("arc")]
        # LineRight is back at 11440: radius (11440 - 970) \ 2 - 20. The next line's note follows
        # two units of head after 520, at 820, 420 right of the staff's left end.
        self.assertEqual(arcs[0], "arc 6295 765 5215 1 3 0.5 w=1")
        self.assertTrue(arcs[1].startswith("arc 400 "))
        self.assertTrue(arcs[1].endswith(" 420 0 1.5 0.25 w=2"))

    def test_slash(self):
        log = self.columns(note(1, 7, "/", 3), note(1))
        self.assertEqual(log[:2], ['text 970 880 size=10 font="Tab" bold=0 "/"',
                                   "line 1010 1160 1010 1837.5 w=1"])

    def test_rests(self):
        log = self.columns(record(1, 92), record(1, 93), record(1, 97), note(1))
        self.assertEqual(log[:3], ["line 970 1065 1195 1065 w=8",
                                   "line 2320 970 2545 970 w=8",
                                   'text 3520 905 size=12 font="Tab" bold=0 "`"'])

    def test_beams(self):
        log = self.columns(note(1, 4, BeamCode=0), note(1, 2, BeamCode=5), note(1, 2, BeamCode=2))
        beams = [line for line in log if line.endswith(" w=2")]
        self.assertEqual(beams, ["line 1009 1837.5 1310 1837.5 w=2",
                                 "line 1009 1837.5 1610 1837.5 w=2",
                                 "line 1309 1787.5 1610 1787.5 w=2"])

    def test_stubs(self):
        log = self.columns(note(1, 5, BeamCode=7), note(1, 2, BeamCode=3))
        self.assertEqual(log[-2:], ["line 1009 1837.5 1310 1837.5 w=2",
                                    "line 1160 1787.5 1310 1787.5 w=2"])
        log = self.columns(note(1, 2, BeamCode=9), note(1, 4, BeamCode=5))
        self.assertEqual(log[2], "line 1010 1757.5 1140 1757.5 w=1")

    def test_triplet(self):
        log = self.columns(note(1, 3), note(1, 3), note(1, 3), note(1))
        bracket = log[2:7]
        self.assertEqual(bracket, ["line 970 1847.5 970 1937.5 w=1",
                                   "line 970 1937.5 1270 1937.5 w=1",
                                   "line 1390 1937.5 1690 1937.5 w=1",
                                   "line 1690 1847.5 1690 1937.5 w=1",
                                   'text 1270 1827.5 size=10 font="Arial" bold=0 "3"'])
        self.assertEqual(sum('"3"' in line and "1827.5" in line for line in log), 1)

    def test_triplet_runs_over_a_line(self):
        def brackets(*second_line):
            records = [head(1), note(1, 3, "5"), note(1, 3, "5"), *second_line, note(2, 7, "5")]
            return sum('"3"' in line for line in log_of(records))

        # A head makes the count 0; a line that begins without one goes on counting.
        self.assertEqual(brackets(head(2, slot6="NL"), note(2, 3, "5")), 2)
        self.assertEqual(brackets(record(2, 3, slot6="NL")), 1)

    def test_hand_letters(self):
        log = self.columns(note(1, LeftHand="1", RightHand="p"), note(1))
        # Right-hand letters put the stem's end two gaps below the staff's last gap.
        self.assertIn('text 1030 1590 size=10 font="Arial" bold=0 "p"', log)
        self.assertIn('text 971 2105 size=10 font="Arial" bold=0 "1"', log)

    def test_what_follows_the_line_is_printed_at_the_cursor(self):
        records = measures(9)
        records[35].Slot[6] = "xy"              # the head that the line gave back
        log = log_of(records)
        self.assertTrue(any('"xy"' in line for line in log))

    def test_paper_tie(self):
        log = log_of([head(1), note(1, 7, "3^"), note(1)], Printer)
        self.assertIn("arc 1925 2100 175 0 3.25 0.5 w=2", log)


class CommandLine(unittest.TestCase):
    def settings(self, header, *arguments):
        parsed = argument_parser().parse_args(["--format", "page-log", *arguments])
        return settings_for(parsed)(header)

    def test_precedence(self):
        header = NoteRecord()
        self.assertEqual(self.settings(header, "a.gui").BodyFontSize, 10)
        header.Slot[5], header.Slot[6], header.NoteCode = "12", "Serif", 27
        settings = self.settings(header, "a.gui")
        self.assertEqual((settings.BodyFontSize, settings.BodyFontName, settings.TitleFontSize),
                         (12, "Serif", 27))
        settings = self.settings(header, "--body-size", "8", "--body-font", "X", "a.gui")
        self.assertEqual((settings.BodyFontSize, settings.BodyFontName), (8, "X"))

    def test_strings(self):
        header = NoteRecord()
        for arguments, strings in ((("a.bjo",), 5), (("a.bss",), 4), (("a.txt",), 6),
                                   (("--strings", "5", "a.gui"), 5), (("A.BJO",), 6)):
            self.assertEqual(self.settings(header, *arguments).NumStrings, strings)

    def test_print_log(self):
        parsed = argument_parser().parse_args(["--format", "print-log", "a.gui"])
        log, problem = draw_tune(record_text(NoteRecord()), settings_for(parsed), "print-log")
        self.assertEqual((log, problem), ("page 1\nend\n", None))


if __name__ == "__main__":
    unittest.main()
