#!/usr/bin/env python3
"""Checks of the editor's model against cases worked out by hand."""

import unittest

from editor_model import ScenarioPlayer
from measure_log_model import measure_log
from number_rules import RunTimeFault, quoted, val
from random_scripts import random_tunes_for, script_for
from random_tunes import tune_text
from store_model import (
    HEAD, ItemReader, MemoryFiles, NoteRecord, load_active_tuning, record_text, records_bytes, tune_bytes)
from tune_loading import load_tune
from tune_model import tune_output


def play(script, files=None):
    player = ScenarioPlayer(MemoryFiles() if files is None else files)
    player.status = player.play([line.strip() for line in script.strip().split("\n")])
    return player


def editor_after(script, files=None):
    return play(script, files).editor


def head(measure=1, beats=4, unit=4, **fields):
    return record(Measure=measure, NoteCode=HEAD, Beats=beats, BeatUnit=unit, **fields)


def record(slots=None, **fields):
    made = NoteRecord()
    for name, value in fields.items():
        setattr(made, name, value)
    for s, text in (slots or {}).items():
        made.Slot[s] = text
    return made


def measure(number, codes, beats=4, unit=4, text="3", **head_fields):
    """A head and its notes, all on string 2; a code may come with a text of its own."""
    records = [head(number, beats, unit, **head_fields)]
    for code in codes:
        cell = text
        if isinstance(code, tuple):
            code, cell = code
        slots = {2: cell} if code < 90 else {}
        records.append(record(slots, Measure=number, NoteCode=code, Beats=beats, BeatUnit=unit))
    return records


def opened(*measures, script="", name="tune.gui"):
    records = [NoteRecord()] + [r for m in measures for r in m]
    files = MemoryFiles({name: records_bytes(records)})
    return editor_after(f"dialog {name}\nmenu mnuOpen\n{script}", files)


def beam_codes(codes, beats=4, unit=4):
    editor = opened(measure(1, codes, beats, unit))
    return [editor.table[i].BeamCode for i in range(2, 2 + len(codes))]


class NumberRules(unittest.TestCase):
    def test_val(self):
        for text, value in ((" 1 2x", 12), ("-.5", -0.5), ("1.5.2", 1.5), ("2d1z", 20), ("abc", 0), ("", 0), ("1e", 1)):
            self.assertEqual(val(text), value, text)

    def test_quoting(self):
        self.assertEqual(quoted('a"\\\xe9\n'), '"a\\"\\\\\\xe9\\x0a"')


class TuneFiles(unittest.TestCase):
    def test_an_empty_tune_saves_as_nine_lines(self):
        files = MemoryFiles()
        play("dialog a.gui\nmenu mnuSaveAs", files)
        self.assertEqual(files.contents["a.gui"].count(b"\r\n"), 9)

    def test_a_record_is_nine_lines(self):
        note = record({2: "3"}, Measure=1, NoteCode=7, XPos=48, BeatUnit=4, Beats=4, Spacing=4)
        self.assertEqual(record_text(note), '1,7,48\r\n0,4,4,4\r\n0,""," "," ",""\r\n""\r\n"3"\r\n' + '""\r\n' * 4)

    def test_a_quoted_text_reads_as_number_0_and_a_rest_after_a_quote_is_lost(self):
        reader = ItemReader(b'"7",2.5\r\n"a"bc,"d\r\ne"\r\n')
        self.assertEqual([reader.number(), reader.number()], [0, 2])
        self.assertEqual([reader.string(), reader.string()], ["a", "d\r\ne"])
        self.assertTrue(reader.at_end())

    def test_a_file_cut_inside_a_record_ends_the_program(self):
        files = MemoryFiles({"a.gui": tune_bytes(opened(measure(1, [7])).table, 2)[:-20]})
        player = play("dialog a.gui\nmenu mnuOpen", files)
        self.assertEqual((player.status, player.output[-1]), (1, "fault: run-time error 424: object required"))

    def test_a_missing_file_leaves_the_tune_and_takes_the_name(self):
        editor = opened(measure(1, [7]), script="dialog none.gui\nmenu mnuOpen")
        self.assertEqual(editor.boxes, [("stop", "", "File Not Found")])
        self.assertEqual((editor.FileName, editor.LastNote, editor.Saved), ("none.gui", 2, 1))

    def test_save_as_does_nothing_in_an_inserted_measure(self):
        editor = opened(measure(1, [7]), script="menu mnuInsMeas\ndialog b.gui\nmenu mnuSaveAs")
        self.assertEqual(editor.FileName, "tune.gui")

    def test_empty_slots_are_not_saved(self):
        editor = opened(measure(1, [7, 7]))
        editor.table[2].Measure = 0
        self.assertEqual(len(tune_bytes(editor.table, editor.LastNote).split(b"\r\n")), 3 * 9 + 1)


class Tunings(unittest.TestCase):
    def test_six_numbers_are_read_across_lines(self):
        files = MemoryFiles()
        self.assertEqual(load_active_tuning(files, 5)[1], [62, 59, 55, 50, 67, 0])
        self.assertEqual(load_active_tuning(files, 4)[1], [76, 69, 62, 55, 0, 43])

    def test_a_single_short_tuning_is_replaced_by_the_defaults(self):
        files = MemoryFiles({"Strings4.tun": b'"Mine",1,2,3,4\r\n'})
        self.assertEqual(load_active_tuning(files, 4)[0], "Mandolin")


class MeasureView(unittest.TestCase):
    def test_beams(self):
        self.assertEqual(beam_codes([4, 4]), [0, 5])
        self.assertEqual(beam_codes([4]), [4])
        self.assertEqual(beam_codes([2, 2, 2, 2]), [0, 2, 2, 2])
        self.assertEqual(beam_codes([4, 2, 2]), [0, 5, 2])
        self.assertEqual(beam_codes([5, 2]), [7, 3])
        self.assertEqual(beam_codes([3, 3, 3]), [0, 5, 5])

    def test_a_quarter_rest_ends_a_group_in_simple_time_only(self):
        self.assertEqual(beam_codes([4, 99, 4], 6, 8)[2], 4)
        self.assertEqual(beam_codes([2, 99, 2], 6, 8)[2], 3)
        self.assertEqual(beam_codes([2, 99, 2])[2], 1)

    def test_a_short_measure_ends_at_350_and_a_full_one_after_its_last_note(self):
        self.assertEqual(opened(measure(1, [7])).EndBarX, 350)
        self.assertEqual(opened(measure(1, [7, 7, 7, 7])).EndBarX, 48 + 4 * 24)

    def test_a_chord_text_widens_its_note(self):
        editor = opened(measure(1, [7, 7]))
        editor.table[2].ChordText = "Gmaj7"
        editor.redraw()
        self.assertEqual((editor.table[2].Spacing, editor.table[3].XPos), (6, 84))

    def test_a_long_note_stands_in_brackets_with_its_tie_after_them(self):
        lines = opened(measure(1, [(9, "12^")])).surface.lines
        self.assertIn('text 48 36 size=10 font="Arial" bold=1 "[12]"', lines)
        self.assertIn("arc 84 42 12 0.5 3 0.5 w=1", lines)

    def test_a_bend_mark_stands_at_its_place_in_size_8(self):
        editor = opened(measure(1, [7]))
        editor.table[2].Slot = ["", "5>", "", "", "", "", ""]
        editor.redraw()
        self.assertIn('text 54 20 size=8 font="Tab" bold=1 ">"', editor.surface.lines)

    def test_a_slash_moves_to_string_3(self):
        editor = opened(measure(1, [7]))
        editor.table[2].Slot = ["", "", "", "", "", "/", ""]
        editor.redraw()
        self.assertEqual(editor.table[2].Slot[3:6], ["/", "", ""])
        self.assertIn('text 48 44 size=10 font="tab" bold=1 "/"', editor.surface.lines)

    def test_a_connection_stands_in_three_pieces(self):
        lines = opened(measure(1, [(7, "10-7")])).surface.lines
        self.assertIn('text 48 36 size=10 font="Arial" bold=1 "10"', lines)
        self.assertIn('text 58 34 size=10 font="Tab" bold=1 "-"', lines)
        self.assertIn('text 63 36 size=10 font="Arial" bold=1 "7"', lines)

    def test_a_remark_with_a_slash_ends_at_the_last_note(self):
        marked = measure(1, [7, 7])
        marked[0].Slot[3] = "/abcdefgh"
        editor = opened(marked)
        editor.redraw()
        self.assertIn('text 39 4 size=10 font="Arial" bold=1 "abcdefgh"', editor.surface.lines)

    def test_one_bracket_for_three_triplet_notes(self):
        lines = opened(measure(1, [3, 3, 3])).surface.lines
        self.assertEqual(sum(line.endswith(' "3"') and " 111 " in line for line in lines), 1)
        self.assertIn("line 66 114 78 114 w=1", lines)

    def test_the_log_of_a_measure(self):
        log = measure_log(load_tune("t.bss", MemoryFiles({"t.bss": records_bytes([NoteRecord()] + measure(1, [7]))})))
        self.assertEqual(log.decode().split("\n"), [
            "measure 1 head=1 end=2 beats=4 unit=4 capacity=48 fill=12 endbar=350",
            "note 2 code=7 spacing=4 xpos=48 beam=0",
            "clear",
            'text 2 32 size=16 font="Arial" bold=1 " 4 "',
            'text 2 44 size=16 font="Arial" bold=1 " 4 "',
            'text 48 36 size=10 font="Arial" bold=1 "3"',
            "line 51 48 51 92 w=1",
            "line 350 36 350 60 w=1",
            ""])


class Typing(unittest.TestCase):
    def test_a_two_digit_fret(self):
        editor = editor_after("type 12")
        self.assertEqual((editor.table[2].Slot[6], editor.CursorX), ("12", 60))
        editor = editor_after("type 12\nkey Enter")
        self.assertEqual((editor.table[2].Spacing, editor.CursorX, editor.CurNote), (4, 72, 3))

    def test_a_four_character_text_widens_a_quarter(self):
        self.assertEqual(editor_after("type 1234\nkey Enter").table[2].Spacing, 5)

    def test_two_strings_make_a_chord(self):
        note = editor_after("type 3\nkey Up\ntype 2\nkey Enter").table[2]
        self.assertEqual((note.Slot[5], note.Slot[6]), ("2", "3"))

    def test_enter_on_an_empty_place_does_nothing(self):
        editor = editor_after("key Enter")
        self.assertEqual((editor.LastNote, editor.CursorX, editor.CurNote), (0, 48, 2))

    def test_a_full_measure_hands_over_to_next(self):
        editor = editor_after("toolbar 9" + "\ntype 1\nkey Enter" * 2)
        self.assertEqual((editor.focus, editor.timer_on, editor.CurNote, editor.LastNote), ("cmdNext", False, 3, 3))
        editor = editor_after("toolbar 11\ntype 1\nkey Enter\nkey Space")
        self.assertEqual((editor.CurMeas, editor.MeasHead, editor.CurNote, editor.focus), (2, 3, 4, "StaffBox"))

    def test_backspace_on_the_only_note(self):
        editor = editor_after("type 5\nkey Enter\nkey Backspace\nclick 5 60")
        self.assertEqual((editor.CursorX, editor.MeasEnd, editor.CurBeatUnit, editor.CurBeats), (48, 0, 8, 3))

    def test_the_offered_signatures(self):
        self.assertEqual(editor_after("click 5 40\nclick 5 40\nclick 5 40").CurBeats, 2)
        self.assertEqual(editor_after("click 5 60" + "\nclick 5 40" * 3).CurBeats, 12)
        self.assertEqual(editor_after("click 5 60" + "\nclick 5 40" * 4).CurBeats, 3)

    def test_a_hand_letter_leaves_the_cursor_after_the_note(self):
        editor = opened(measure(1, [7, 7]), script="key F3\ntype 1\ntype 5")
        self.assertEqual((editor.table[2].LeftHand, editor.table[2].Slot[2]), ("1", "35"))

    def test_backspace_in_a_hand_mode_meets_a_string_outside(self):
        files = MemoryFiles({"t.gui": records_bytes([NoteRecord()] + measure(1, [7]))})
        player = play("dialog t.gui\nmenu mnuOpen\nkey F3\nkey Backspace", files)
        self.assertEqual(player.output[-1], "fault: run-time error 9: subscript out of range")

    def test_the_caret_takes_itself_off(self):
        player = play("tick\nlog\ntick\nlog")
        self.assertEqual(sum("mode=xor" in line for line in player.output), 1)

    def test_bracket_text_box(self):
        editor = editor_after("key F7\ntype 1.\nkey Enter")
        self.assertEqual((editor.table[1].Slot[2], editor.InputMode, editor.focus), ("1.", 1, "StaffBox"))

    def test_keys_move_the_caret_of_a_text_box(self):
        for keys, text in (("Left", "1x."), ("Home", "x1."), ("Home Right Right Right", "1.x"), ("Left Delete", "1x"),
                           ("Home Delete End", ".x"), ("Left Backspace", "x."), ("Home Backspace", "x1."),
                           ("Up", "1.x"), ("Escape", "1.x"), ("F5", "1.x")):
            moves = "".join(f"key {key}\n" for key in keys.split())
            self.assertEqual(editor_after(f"key F7\ntype 1.\n{moves}type x").bracket.text, text, keys)


class Navigation(unittest.TestCase):
    def three(self, script):
        return opened(measure(1, [11]), measure(2, [11]), measure(3, [7]), script=script)

    def test_review_wraps(self):
        self.assertEqual(self.three("press cmdNext\npress cmdNext\npress cmdNext").CurMeas, 1)
        self.assertEqual(self.three("press cmdPrevious").CurMeas, 3)

    def test_the_unfilled_end_appends(self):
        editor = self.three("press cmdPrevious")
        self.assertEqual((editor.EntryState, editor.CurNote, editor.CursorX), (1, 7, 72))

    def test_goto(self):
        for answer, number in (("0", 1), ("-1", 1), ("4", 1), ("2.5", 2), ("1.5", 2), ("3.5", 4), ("3", 3)):
            editor = self.three(f"prompt {answer}\npress lblMeasNum")
            self.assertEqual(editor.CurMeas, number, answer)

    def test_a_rest_first_leaves_the_cursor_at_54(self):
        self.assertEqual(opened(measure(1, [99, 7])).CursorY, 54)

    def test_next_in_an_empty_measure_does_nothing(self):
        editor = editor_after("press cmdNext")
        self.assertEqual((editor.CurMeas, editor.CurNote, editor.focus), (1, 2, "StaffBox"))

    def test_ok_with_nothing_entered_keeps_the_numbers(self):
        editor = self.three("menu mnuInsMeas\npress cmdNext")
        self.assertEqual((editor.LastMeas, editor.LastNote, editor.CurMeas, editor.EntryState), (3, 6, 1, 0))

    def test_ok_moves_the_tail(self):
        editor = self.three("menu mnuInsMeas\ntype 1\nkey Enter\npress cmdNext")
        self.assertEqual([editor.table[i].Measure for i in range(1, 9)], [1, 1, 2, 2, 3, 3, 4, 4])
        self.assertEqual((editor.focus, editor.files.contents.get("Temp.Sav")), ("cmdNext", None))

    def test_cancel_brings_the_tail_back(self):
        editor = self.three("menu mnuInsMeas\ntype 1\nkey Enter\npress cmdPrevious")
        self.assertEqual([editor.table[i].Measure for i in range(1, 8)], [1, 1, 2, 2, 3, 3, 0])
        self.assertEqual((editor.LastNote, editor.LastMeas), (6, 3))


class Editing(unittest.TestCase):
    def five(self, script):
        return opened(*(measure(n, [(11, str(n))]) for n in range(1, 6)), script=script)

    def test_deleting_measure_3_of_5(self):
        editor = self.five("prompt 3\npress lblMeasNum\nmenu mnuDelMeas")
        self.assertEqual([editor.table[i].Slot[2] for i in (2, 4, 6, 8)], ["1", "2", "4", "5"])
        self.assertEqual((editor.LastMeas, editor.LastNote, editor.CurMeas, editor.table[6].Measure), (4, 8, 3, 3))

    def test_deleting_the_only_measure(self):
        editor = opened(measure(1, [11]), script="menu mnuDelNote")
        self.assertTrue(editor.table[1].is_clear())
        self.assertEqual((editor.CursorY, editor.CurNote, editor.EntryState), (84, 2, 1))
        self.assertTrue(len(editor.surface.lines) > 3)

    def test_delete_at_84_is_a_fault(self):
        files = MemoryFiles({"t.gui": records_bytes([NoteRecord()] + measure(1, [11]))})
        player = play("dialog t.gui\nmenu mnuOpen\nmenu mnuDelNote\nkey Delete", files)
        self.assertEqual(player.status, 1)

    def test_inserting_a_note_keeps_its_value(self):
        editor = opened(measure(1, [7, 4]), script="menu mnuInsNoteAfter")
        self.assertEqual([editor.table[i].NoteCode for i in (2, 3, 4)], [7, 7, 4])
        self.assertEqual((editor.table[3].Slot[2], editor.CurNote, editor.CursorX), ("", 3, 72))

    def test_a_second_paste_comes_before_the_first(self):
        script = "prompt 2\npress lblMeasNum\ncopy 4 4\nmenu mnuPaste\nprompt 2\npress lblMeasNum\ncopy 1 1\nmenu mnuPaste"
        editor = self.five(script)
        heads = [i for i in range(1, editor.LastNote + 1) if editor.table[i].NoteCode == HEAD]
        self.assertEqual([editor.table[i + 1].Slot[2] for i in heads], ["1", "2", "1", "4", "3", "4", "5"])
        self.assertEqual([editor.table[i].Measure for i in heads], list(range(1, 8)))

    def test_a_refused_copy_is_silent(self):
        for bounds in ("6 6", "2 1", "0 1", "1 6"):
            self.assertFalse(self.five(f"copy {bounds}").mnuPaste_on, bounds)

    def test_the_copy_boxes_lose_their_blank(self):
        editor = self.five("menu mnuCopy\ntype 2\nkey Enter\ntype 3\nkey Enter")
        self.assertEqual(editor.files.contents["CopyBuff.Dat"].count(b",999,"), 2)

    def test_after_the_blank_enter_cuts_the_digit(self):
        editor = self.five("menu mnuCopy\nkey End\ntype 12\nkey Enter\ntype 1\nkey Enter")
        self.assertEqual(editor.copy_boxes["Text1"].text, " 1")
        self.assertTrue(editor.mnuPaste_on)

    def test_escape_closes_the_copy_box(self):
        editor = self.five("menu mnuCopy\ntype 1\nkey Escape")
        self.assertEqual((editor.focus, editor.mnuPaste_on), ("StaffBox", False))


class Signs(unittest.TestCase):
    def test_a_bar_sign_takes_away_another(self):
        editor = opened(measure(1, [11], BarCode="99"), script="key F9")
        self.assertEqual(editor.table[1].BarCode, "")
        editor = opened(measure(1, [11], BarCode="99"), script="key F9\nkey F9")
        self.assertEqual(editor.table[1].BarCode, "94")
        self.assertEqual(editor.surface.lines[-2:], ["line 144 36 144 76 w=3", "line 141 36 141 76 w=1"])

    def test_a_sign_replaces_another(self):
        editor = opened(measure(1, [11]), script="key Shift+F5\nkey Shift+F9")
        self.assertEqual(editor.table[1].Slot[1], "82")

    def test_a_dotted_rest_loses_its_dot(self):
        editor = editor_after("toolbar 8\nkey F4")
        self.assertEqual((editor.table[2].NoteCode, editor.MeasFill), (99, 12))

    def test_a_rest_that_fills_goes_to_next(self):
        self.assertEqual(editor_after("key Ctrl+W").focus, "cmdNext")

    def test_a_rest_over_a_note_keeps_its_chord(self):
        played = measure(1, [7, 7])
        played[1].ChordText, played[1].LeftHand = "G", "1"
        note = opened(played, script="key F4").table[2]
        self.assertEqual((note.NoteCode, note.Slot[2], note.ChordText, note.LeftHand), (99, "", "G", "1"))

    def test_a_cancelled_remark_is_wiped(self):
        marked = measure(1, [7])
        marked[0].Slot[3] = "Intro"
        self.assertEqual(opened(marked, script="prompt cancel\nmenu mnuRemarks").table[1].Slot[3], "")


class Files(unittest.TestCase):
    def open_with_header(self, script="", **fields):
        slots = fields.pop("slots", {})
        records = [record(slots, **fields)] + measure(1, [7])
        return play(f"dialog t.gui\nmenu mnuOpen\n{script}", MemoryFiles({"t.gui": records_bytes(records)}))

    def test_the_body_size_is_a_single(self):
        self.assertEqual(self.open_with_header(slots={5: "8.1"}).editor.BodyFontSize, 8.100000381469727)
        for size in ("1e39", "1e999", "-4e38"):
            player = self.open_with_header(slots={5: size})
            self.assertEqual(player.output, ["fault: run-time error 6: overflow"])
            self.assertEqual(player.editor.boxes, [])

    def test_the_midi_form_selects_a_tuning_once(self):
        for kept, row in (("", "0"), ("2", "2"), ("9", "0"), ("-1", "0")):
            self.assertEqual(self.open_with_header("menu mnuOpnMidi", slots={4: kept}).editor.table[0].Slot[4], row)
        editor = self.open_with_header("menu mnuOpnMidi\nmenu mnuNew\nmenu mnuOpnMidi").editor
        self.assertEqual(editor.table[0].Slot[4], "")

    def test_a_menu_command_leaves_the_copy_boxs_caret(self):
        editor = editor_after("press cmdRest\nmenu mnuCopy\ntype .\nmenu mnuHardBrk\ntype 21")
        self.assertEqual(editor.copy_boxes["Text1"].text, ".21 ")


class RandomInput(unittest.TestCase):
    def test_a_seed_gives_the_same_script(self):
        tunes = random_tunes_for(7)
        self.assertEqual(script_for(7, 60, tunes), script_for(7, 60, tunes))

    def test_a_valid_tune_comes_back_with_its_texts(self):
        for seed in range(20):
            data = tune_text(seed, "valid", "gui")
            back = tune_output(load_tune("t.gui", MemoryFiles({"t.gui": data})))
            self.assertEqual(len(back.split(b"\n")), len(data.split(b"\n")))


if __name__ == "__main__":
    unittest.main()
