"""File commands, the save question, new tune, instrument modes, page refresh."""

from editor_state import APPEND, FRET_ENTRY, INSERTED_MEASURE, REVIEW
from line_model import too_wide_measure
from number_rules import RunTimeFault, single, val
from store_model import DEFAULT_TUNINGS, ItemReader, load_active_tuning, read_record, tune_bytes

INCOMPATIBLE = (
    "File is incompatible.  See the trouble shooting \r\n"
    "section in your manual for possible solutions\r\n\r\n"
    "You may need to eliminate the use of quote marks in your title or remarks."
)

SAVE_QUESTION = "        FILE NOT SAVED\n\nDo you want to save your work?"


class EndOfProgram(Exception):
    """The exit command has ended the program."""


class FileCommands:
    def start(self):
        """Start-up with no command line, up to the first event."""
        self.load_tuning()
        self.mnuNew()

    def mnuNew(self):
        self.reset_captions()
        self.hide_caret()
        if not self.may_throw_away():
            return
        self.tunes_begun += 1
        self.FileName = ""
        self.mnuSave_on = False
        self.Saved = 1
        self.table.clear()
        self.CurMeas, self.LastMeas = 1, 0
        self.CurNote, self.LastNote = 2, 0
        self.MeasHead, self.MeasEnd = 1, 0
        self.CurValue = 7
        self.CurBeats = self.CurBeatUnit = 4
        self.MeasCapacity, self.MeasFill = 48, 0
        self.EntryState = APPEND
        self.InputMode = FRET_ENTRY
        self.make_head(1)
        self.clear_staff()
        self.CursorX = 48
        self.CursorY = self.lowest_line()
        self.timer_on = True
        self.lblMeasNum = str(self.CurMeas)
        self.lblLastNote = str(self.LastNote)
        self.set_toolbar_value(7)
        self.give_focus("StaffBox")

    def may_throw_away(self):
        """Asks about unsaved work; False if it is still unsaved after that."""
        if self.Saved == 0:
            self.ask_to_save()
        return self.Saved != 0

    def ask_to_save(self):
        self.show_box("question", "", SAVE_QUESTION)
        if not self.ask_yes():
            self.Saved = 1
        elif self.FileName > " ":
            self.mnuSave()
        else:
            self.mnuSaveAs()

    def mnuSave(self):
        self.write_tune()
        self.Saved = 1

    def write_tune(self):
        self.files.write(self.FileName, tune_bytes(self.table, self.LastNote))
        self.tunes_written += 1

    def mnuSaveAs(self):
        if self.InputMode == INSERTED_MEASURE:
            return
        path = self.ask_file()
        if path is None:
            return
        self.FileName = path
        if path:
            try:
                self.write_tune()
            except RunTimeFault:
                return
        self.Saved = 1
        self.mnuSave_on = True

    def mnuOpen(self):
        self.reset_captions()
        if not self.may_throw_away():
            return
        self.Saved = 1
        path = self.ask_file()
        if path is None:
            return
        self.FileName = path
        self.load_tune()

    def load_tune(self):
        """Opens FileName, from the point where its name is known."""
        try:
            data = self.files.read(self.FileName)
        except RunTimeFault:
            self.show_box("stop", "", "File Not Found")
            return
        self.tunes_begun += 1
        self.table.clear()
        try:
            self.read_tune(ItemReader(data))
        except RunTimeFault:
            self.show_box("stop", "", INCOMPATIBLE)
            raise RunTimeFault(424) from None
        self.take_fonts()
        self.EntryState = REVIEW
        self.CurMeas = 0
        self.CurNote = 0
        self.cmdNext()
        self.cmdRefresh()
        self.mnuSave_on = True

    def read_tune(self, reader):
        index = 0
        while not reader.at_end():
            read_record(reader, self.table[index])
            self.LastNote = index
            self.LastMeas = self.table[index].Measure
            index += 1

    def take_fonts(self):
        header = self.table[0]
        if header.Slot[6]:
            self.BodyFontName = header.Slot[6]
        if header.Slot[5]:
            self.BodyFontSize = single(val(header.Slot[5]))
        if header.Slot[3]:
            self.TitleFontName = header.Slot[3]
        if header.NoteCode:
            self.TitleFontSize = header.NoteCode

    def mnuPrint(self):
        """There is no printer: the dialog counts as cancelled."""
        self.redraw()

    def mnuOpnMidi(self):
        """The form, which stays open, selects the tune's tuning as it opens."""
        if self.midi_open:
            return
        self.midi_open = True
        header = self.table[0]
        row = val(header.Slot[4] or self.tuning_setting.get(self.NumStrings, "0"))
        header.Slot[4] = str(round(row) if 0 <= row < len(DEFAULT_TUNINGS[self.NumStrings]) else 0)
        self.tuning_setting[self.NumStrings] = header.Slot[4]

    def mnuExit(self):
        if self.Saved == 0:
            self.ask_to_save()
        if self.Saved == 1:
            raise EndOfProgram

    def cmdRefresh(self):
        if self.InputMode == INSERTED_MEASURE:
            return
        measure = too_wide_measure(self.table, self.LastNote)
        if measure is not None:
            self.show_box("stop", "", f"Measure {measure} is too wide for a line.")
        self.give_focus("StaffBox")

    # Instrument modes

    def mnuGuitar(self):
        self.change_instrument(6)

    def mnuBanjo(self):
        self.change_instrument(5)

    def mnuMandolin(self):
        self.change_instrument(4)

    def change_instrument(self, strings):
        if not self.may_throw_away():
            return
        self.NumStrings = strings
        self.Saved = 1
        self.load_tuning()
        self.mnuNew()

    def load_tuning(self):
        _, self.CurTuning = load_active_tuning(self.program_files, self.NumStrings)
