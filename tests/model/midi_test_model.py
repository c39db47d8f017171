#!/usr/bin/env python3
"""Tests of the MIDI model itself: worked examples, so that the model can be trusted as a reference."""

import os
import sys
import unittest

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))

import midi_model
import midi_reader
import random_midi_tunes
from midi_model import BuildFailure, Record, Tune, leading_number

OPEN = 60  # the open pitch of every string here


def head(bar="", bracket="", sign="", remark=""):
    return Record(measure=1, code=999, bar=bar, slots=["", sign, bracket, remark, "", "", ""])


def note(code, *cells):
    return Record(measure=1, code=code, slots=[""] + list(cells) + [""] * (6 - len(cells)))


def tune_of(*records, header=None):
    tune = Tune(midi_model.NoteTable())
    for index, record in enumerate([header or Record(), *records]):
        tune.table.records[index] = record
    tune.last_note = len(records)
    return tune


def measures(*heads):
    """A tune of one quarter note a measure, measure m with fret m on string 1."""
    records = []
    for number, measure_head in enumerate(heads, start=1):
        measure_head.measure = number
        records += [measure_head, note(7, str(number))]
    return tune_of(*records)


def tracks_of(tune, strings=6, tempo=120, pitches=(OPEN,) * 6, capo=0):
    return midi_model.build(tune, strings, tempo, pitches, capo, 25)[2]


def events_of(tune, string=1, **options):
    """The events of a track after its program change."""
    return tracks_of(tune, **options)[string - 1][1:]


def journey_of(tune):
    """The measures in the order in which they are played."""
    return [data1 - OPEN for _, _, data1, velocity in events_of(tune) if velocity > 0]


def note_pair(delta, pitch, length, velocity=100, string=1):
    return [(delta, 144 + string, pitch, velocity), (length, 144 + string, pitch, 0)]


class LeadingNumber(unittest.TestCase):
    def test_number_is_read_as_far_as_it_goes(self):
        for text, value in [("", 0), ("x", 0), ("(3)", 0), ("3^", 3), ("3-5", 3), ("12>", 12), ("1, 2", 1),
                            (" 1 2", 12), ("1.5.5", 1.5), (".5", 0.5), (".", 0), ("1e2", 100), ("1d1", 10),
                            ("2nd", 2), ("3e", 3), ("e5", 0)]:
            self.assertEqual(leading_number(text), value, text)

    def test_sign_is_read_only_where_asked(self):
        self.assertEqual(leading_number("-5"), 0)
        self.assertEqual(leading_number("+5"), 0)
        self.assertEqual(leading_number("-5", signed=True), -5)

    def test_number_too_large_for_a_real_overflows(self):
        with self.assertRaisesRegex(BuildFailure, "error 6"):
            leading_number("1e999")


class Ticks(unittest.TestCase):
    def test_ticks_are_floors(self):
        self.assertEqual([midi_model.note_ticks(code, 101) for code in range(0, 13)],
                         [0, 16, 25, 33, 50, 75, 67, 101, 151, 202, 303, 404, 0])
        self.assertEqual([midi_model.rest_ticks(code, 101) for code in range(91, 101)],
                         [0, 202, 404, 16, 25, 33, 50, 67, 101, 0])

    def test_three_triplet_eighths_lose_a_tick(self):
        tune = tune_of(head(), note(3, "1"), note(3, "2"), note(3, "3"))
        self.assertEqual(sum(delta for delta, *_ in events_of(tune, tempo=100)), 99)


class Cells(unittest.TestCase):
    def test_chord_sounds_on_each_string_at_the_same_tick(self):
        tune = tune_of(head(), note(7), note(7, "0", "1", "2"))
        for string in (1, 2, 3):
            self.assertEqual(events_of(tune, string), note_pair(120, OPEN + string - 1, 120, string=string))
        self.assertEqual(events_of(tune, 4), [])

    def test_rest_is_silence(self):
        tune = tune_of(head(), note(99), note(91), note(7, "3"), note(94, "5"), note(4, "5"))
        self.assertEqual(events_of(tune), note_pair(120, 63, 120) + note_pair(20, 65, 60))

    def test_tie_is_written_at_its_last_cell(self):
        tune = tune_of(head(), note(99), note(7, "3^"), note(4, "3^"), note(4, "3"))
        self.assertEqual(events_of(tune), note_pair(120, 63, 240))

    def test_tie_to_another_fret_is_a_slur(self):
        tune = tune_of(head(), *(note(7, cell) for cell in ["1^", "2^", "3^", "4^", "5", "6"]))
        self.assertEqual([event[3] for event in events_of(tune)],
                         [100, 0, 50, 0, 25, 0, 12, 0, 6, 0, 100, 0])

    def test_tie_over_a_bar_line_compares_with_the_head(self):
        tune = tune_of(head(), note(7, "3^"), head(), note(7, "3"))
        self.assertEqual(events_of(tune), note_pair(0, 63, 120) + note_pair(0, 63, 120, velocity=50))
        tune = tune_of(head(), note(7, "0^"), head(), note(7, "0"))
        self.assertEqual(events_of(tune), note_pair(0, 60, 240))

    def test_tie_from_fret_0_to_an_empty_cell_comes_late_and_long(self):
        tune = tune_of(head(), note(7, "0^"), note(7), note(7, "2"))
        self.assertEqual(events_of(tune), note_pair(120, 62, 240))

    def test_open_tie_at_the_end_is_not_closed(self):
        self.assertEqual(events_of(tune_of(head(), note(7, "0^"))), [])

    def test_cell_of_two_notes(self):
        first, second = (0, 145, 63, 100), (0, 145, 65, 66)
        tune = tune_of(head(), note(7, "3-5"))
        self.assertEqual(events_of(tune), [first, (60, 145, 63, 0), second, (60, 145, 65, 0)])
        self.assertEqual(events_of(tune_of(head(), note(7, "3=5"))), events_of(tune))

    def test_half_a_two_note_cell_goes_to_even(self):
        for tempo, half in [(121, 60), (123, 62)]:
            events = events_of(tune_of(head(), note(7, "3-5"), note(7, "1")), tempo=tempo)
            self.assertEqual([delta for delta, *_ in events], [0, half, 0, half, 0, tempo])

    def test_tied_cell_of_two_notes_keeps_its_half(self):
        tune = tune_of(head(), note(7, "3-5^"), note(7, "3"))
        self.assertEqual(events_of(tune), [(60, 145, 63, 0), (0, 145, 65, 66)] + note_pair(0, 63, 180))

    def test_separator_at_the_end_does_not_count(self):
        self.assertEqual(events_of(tune_of(head(), note(7, "3-"))), note_pair(0, 63, 120))

    def test_separator_at_the_start_plays_the_open_string_first(self):
        self.assertEqual([event[2] for event in events_of(tune_of(head(), note(7, "-5")))], [60, 60, 65, 65])

    def test_banjo_fifth_string_has_neck_frets_but_not_in_a_second_note(self):
        def pitches_of(cell):
            tune = tune_of(head(), note(7, "", "", "", "", cell))
            return [event[2] for event in events_of(tune, 5, strings=5)]
        self.assertEqual(pitches_of("5"), [65, 65])
        self.assertEqual(pitches_of("6"), [61, 61])
        self.assertEqual(pitches_of("6-8"), [61, 61, 68, 68])
        tune = tune_of(head(), note(7, "", "", "", "", "6"))
        self.assertEqual([event[2] for event in events_of(tune, 5)], [66, 66])

    def test_pitch_not_above_0_is_lost_with_its_ticks(self):
        tune = tune_of(head(), note(99), note(7, "0"), note(7, "1"))
        self.assertEqual(events_of(tune, pitches=[0] * 6), note_pair(120, 1, 120))

    def test_pitch_goes_to_even_and_data_bytes_are_held(self):
        pitches = [event[2] for event in events_of(tune_of(head(), *(note(7, c) for c in ["2.5", "3.5", "99"])))]
        self.assertEqual(pitches[::2], [62, 64, 127])

    def test_capo_raises_every_string(self):
        self.assertEqual(events_of(tune_of(head(), note(7, "0")), capo=2), note_pair(0, 62, 120))

    def test_pitch_outside_16_bits_overflows(self):
        with self.assertRaisesRegex(BuildFailure, "error 6"):
            tracks_of(tune_of(head(), note(7, "32767")))

    def test_tie_in_the_table_s_last_record_runs_off_it(self):
        tune = tune_of(head(), *(note(7, "1") for _ in range(1499)))
        self.assertEqual(len(events_of(tune)), 2998)
        tune.table.records[1500].slots[1] = "1^"
        with self.assertRaisesRegex(BuildFailure, "error 9"):
            tracks_of(tune)


class Header(unittest.TestCase):
    def test_header_with_a_title_size_is_played(self):
        def track(size):
            return events_of(tune_of(head(), note(7, "1"), header=Record(code=size, slots=["", "Trad."] + [""] * 5)))
        self.assertEqual(track(0), note_pair(0, 61, 120))
        self.assertEqual(track(20), note_pair(0, 60, 0) + note_pair(0, 61, 120))
        self.assertEqual(track(9), note_pair(0, 60, 240) + note_pair(0, 61, 120))
        self.assertEqual(track(99), note_pair(120, 61, 120))

    def test_selected_tuning_is_noted_in_the_header(self):
        rows = midi_model.DEFAULT_TUNINGS[6]
        for slot, asked, index in [("", None, 0), ("2", None, 2), ("9", None, 0), ("-1", None, 0), ("x", None, 0),
                                   ("99999", None, 0), ("2", 1, 1), ("2", 4, 0), ("2", -1, 0)]:
            tune = tune_of(header=Record(slots=["", "", "", "", slot, "", ""]))
            self.assertEqual(midi_model.select_tuning(tune, rows, asked), rows[index][1])
            self.assertEqual(tune.table[0].slots[4], str(index))


class Journey(unittest.TestCase):
    def assert_journey(self, tune, expected):
        self.assertEqual(journey_of(tune), expected)

    def test_repeat_without_endings(self):
        self.assert_journey(measures(head(), head("98"), head(), head("99"), head()), [1, 2, 3, 4, 2, 3, 4, 5])

    def test_repeat_without_a_start_goes_to_measure_1(self):
        self.assert_journey(measures(head(), head("99"), head()), [1, 2, 1, 2, 3])

    def test_repeat_at_the_end_of_the_tune(self):
        self.assert_journey(measures(head(), head("98"), head("99")), [1, 2, 3, 2, 3])

    def test_first_and_second_ending(self):
        tune = measures(head(), head("98"), head(), head(), head("99", "1"), head("", "2"), head())
        self.assert_journey(tune, [1, 2, 3, 4, 5, 2, 3, 4, 6, 7])

    def test_endings_of_two_measures(self):
        tune = measures(head(), head("", "1"), head("99"), head("", "2"), head())
        self.assert_journey(tune, [1, 2, 3, 1, 4, 5])

    def test_repeat_on_the_last_ending_runs_off_the_table(self):
        with self.assertRaisesRegex(BuildFailure, "error 9"):
            journey_of(measures(head(), head("99", "1"), head("99", "2")))

    def test_dc_al_fine(self):
        tune = measures(head(), head(sign="83"), head(), head(sign="86"), head())
        self.assert_journey(tune, [1, 2, 3, 4, 1, 2])

    def test_ds_al_fine(self):
        tune = measures(head(), head(sign="87"), head(sign="83"), head(sign="89"))
        self.assert_journey(tune, [1, 2, 3, 4, 2, 3])

    def test_dc_al_coda(self):
        tune = measures(head(), head(remark="/TO CODA"), head(), head(sign="85"), head(sign="84"), head())
        self.assert_journey(tune, [1, 2, 3, 4, 1, 2, 5, 6])

    def test_ds_al_coda(self):
        tune = measures(head(), head(sign="87"), head(remark="/To Coda"), head(sign="88"), head(sign="84"))
        self.assert_journey(tune, [1, 2, 3, 4, 2, 3, 5])

    def test_coda_in_the_very_next_measure_is_missed(self):
        tune = measures(head(remark="/To Coda"), head(sign="84"), head(sign="85"))
        with self.assertRaises(BuildFailure) as failure:
            journey_of(tune)
        self.assertEqual(failure.exception.detail, "No Coda follows measure 2.")

    def test_repeat_at_the_same_head_undoes_the_way_to_the_coda(self):
        tune = measures(head("99", remark="/To Coda"), head(sign="85"), head(), head(sign="84"))
        self.assert_journey(tune, [1, 1, 2, 1, 1, 4])

    def test_to_coda_in_the_last_measure_does_nothing(self):
        tune = measures(head(remark="/To Coda"), head(sign="85"), head(), head(sign="84", remark="/To Coda"))
        self.assert_journey(tune, [1, 2, 1, 4])

    def test_to_coda_waits_while_a_dc_goes_back_from_the_end(self):
        with self.assertRaises(BuildFailure) as failure:
            journey_of(measures(head(), head(sign="85", remark="/To Coda")))
        self.assertEqual(failure.exception.detail, "No Coda follows measure 1.")

    def test_plain_ds_and_dc_are_silent(self):
        self.assert_journey(measures(head(), head(sign="81"), head(sign="82"), head()), [1, 2, 3, 4])

    def test_dc_without_a_fine_never_ends(self):
        with self.assertRaisesRegex(BuildFailure, "never come to an end"):
            journey_of(measures(head(), head(sign="86")))

    def test_second_head_in_a_row_is_passed_over_unread(self):
        tune = tune_of(head(), note(7, "1"), head(), head("99"), note(7, "2"))
        self.assert_journey(tune, [1, 2])

    def test_note_after_a_code_0_is_played_and_a_second_code_0_too(self):
        tune = tune_of(head(), note(7, "1"), note(0, "5"), note(7, "2"), note(0, "5"), note(0, "3"))
        self.assert_journey(tune, [1, 2, 3])
        self.assertEqual(events_of(tune)[-1], (0, 145, 63, 0))

    def test_head_in_the_table_s_last_record_runs_off_it(self):
        tune = tune_of(head(), *(note(7) for _ in range(1498)), head())
        with self.assertRaisesRegex(BuildFailure, "error 9"):
            journey_of(tune)


class TuneFiles(unittest.TestCase):
    @staticmethod
    def load(*records, line_end="\r\n"):
        lines = []
        for measure, code, *slots in records:
            slots += [""] * (6 - len(slots))
            lines += [f"{measure},{code},0", "0,4,4,0", '0,""," "," ","a,b"', *(f'"{slot}"' for slot in slots)]
        return midi_model.load_tune(line_end.join(lines).encode("latin-1"))

    def test_line_ends_of_every_kind(self):
        for line_end in ("\r\n", "\n", "\r"):
            tune = self.load((0, 0), (1, 999), (1, 7, "", "3"), line_end=line_end)
            self.assertEqual((tune.last_note, tune.table[2].slots[2]), (2, "3"))

    def test_rhythm_slash_of_measure_1_moves_to_string_3(self):
        tune = self.load((0, 0), (1, 999), (1, 7, "", "/", "5"), (2, 999), (2, 7, "", "/", "5"))
        self.assertEqual(tune.table[2].slots[1:4], ["", "", "/"])
        self.assertEqual(tune.table[4].slots[1:4], ["", "/", "5"])

    def test_tune_without_a_measure_1_is_empty(self):
        self.assertEqual(self.load((0, 0), (2, 999), (2, 7, "1")).last_note, 0)
        self.assertEqual(self.load((0, 0), (1, 999), (0, 7, "1")).last_note, 0)

    def test_file_that_ends_inside_a_record_is_incompatible(self):
        with self.assertRaisesRegex(BuildFailure, "incompatible"):
            midi_model.load_tune(b"0,0,0\r\n0,0,0,0\r\n")
        with self.assertRaisesRegex(BuildFailure, "incompatible"):
            self.load(*[(1, 7)] * 1502)

    def test_tuning_file_of_52_rows_is_too_long(self):
        row = b'"Row",64,59,55,50\r\n'
        self.assertEqual(midi_model.read_tuning_file(row * 51, 4)[50], ("Row", [64, 59, 55, 50]))
        with self.assertRaisesRegex(BuildFailure, "error 9"):
            midi_model.read_tuning_file(row * 52, 4)


class WholeFile(unittest.TestCase):
    TUNE = measures(head(), head())
    TUNE.table[2].slots[1] = "3-5"

    @staticmethod
    def variable_length(value):
        encoded = bytes([value & 0x7F])
        while value := value >> 7:
            encoded = bytes([value & 0x7F | 0x80]) + encoded
        return encoded

    def file_of(self, tracks, running_status=False):
        chunks = [b"\x00\xff\x51\x03\x07\xa1\x20"]
        for events in tracks:
            chunk, last = b"", None
            for delta, status, data1, data2 in events:
                chunk += self.variable_length(delta)
                if not running_status or status != last:
                    chunk += bytes([status])
                chunk += bytes([data1]) if status < 224 and status >= 192 else bytes([data1, data2])
                last = status
            chunks.append(chunk)
        data = b"MThd\x00\x00\x00\x06\x00\x01" + bytes([0, len(chunks), 0, 120])
        for chunk in chunks:
            chunk += b"\x00\xff\x2f\x00"
            data += b"MTrk" + len(chunk).to_bytes(4, "big") + chunk
        return data

    def test_reader_gives_the_model_s_lines(self):
        built = midi_model.build(self.TUNE, 4, 120, [60] * 4, 0, 25)
        lines = list(midi_model.lines_of(*built))
        self.assertEqual(lines[:5], ["division 120", "track 0", "0 tempo 500000", "track 1", "0 193 25 0"])
        for running_status in (False, True):
            self.assertEqual(midi_reader.lines_of_file(self.file_of(built[2], running_status)), lines)

    def test_reader_refuses_what_is_not_exact(self):
        good = self.file_of([[(0, 193, 25, 0)]])
        midi_reader.lines_of_file(good)
        bad = [good + b"\x00", good[:-1], good.replace(b"\x00\xff\x2f", b"\x01\xff\x2f"),
               good.replace(b"\x00\xc1\x19", b"\x00\xc1\x99"), good.replace(b"\x06\x00\x01", b"\x06\x00\x00"),
               good.replace(b"\x00\xc1\x19", b"\x00\x19\x19"), good.replace(b"\x51\x03", b"\x58\x03")]
        for data in bad:
            with self.assertRaises(midi_reader.BadFile):
                midi_reader.lines_of_file(data)

    def test_tempo_value_is_cut(self):
        for tempo, value in [(30, 2000000), (120, 500000), (130, 461538), (210, 285714), (300, 200000)]:
            self.assertEqual(midi_model.build(self.TUNE, 4, tempo, [60] * 4, 0, 25)[:2], (tempo, value))

    def test_tempo_of_0_fails(self):
        with self.assertRaisesRegex(BuildFailure, "error 11"):
            midi_model.build(self.TUNE, 4, 0, [60] * 4, 0, 25)


class RandomTunes(unittest.TestCase):
    def test_same_seed_gives_the_same_tune(self):
        self.assertEqual(random_midi_tunes.random_tune(5), random_midi_tunes.random_tune(5))
        self.assertNotEqual(random_midi_tunes.random_tune(5), random_midi_tunes.random_tune(6))

    def test_tunes_reach_every_outcome(self):
        outcomes = set()
        for seed in range(400):
            strings, data = random_midi_tunes.random_tune(seed)
            tune = midi_model.load_tune(data)
            pitches = midi_model.select_tuning(tune, midi_model.DEFAULT_TUNINGS[strings])
            try:
                midi_model.build(tune, strings, 120, pitches, 0, 25)
                outcomes.add("built")
            except BuildFailure as failure:
                outcomes.add(failure.text)
        self.assertEqual(outcomes, {"built", "run-time error 6: overflow",
                                    "run-time error 9: subscript out of range",
                                    "The repeats and signs of this tune never come to an end."})


if __name__ == "__main__":
    unittest.main()
