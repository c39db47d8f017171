// The main form's commands around the tune: start-up, settings, files, the save question, exit,
// instruments, and the pages. It owns the tune and everything that shows it; the measure editor's
// handlers are in `editor`.

#pragma once

#include "editor/editor.h"
#include "editor/main_form.h"
#include "midi/midi_form.h"
#include "midi/midi_setup.h"
#include "midi/tuning_form.h"
#include "notation/measure_view.h"
#include "notation/page_view.h"
#include "notation/placed_lines.h"
#include "platform/platform.h"
#include "shell/page_setup.h"
#include "store/page_settings.h"
#include "store/tune.h"
#include "store/tunings.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace quillon {

/// The path on a command line: without its double quotes.
std::string PathOf(const std::string& commandLine);

class MainWin {
public:
    MainWin(const Platform& thePlatform, const TextMetrics& textMetrics);
    ~MainWin();

    Platform platform;
    Tune tune;
    MainForm form;
    PageSettings page;
    Tunings tunings;
    MeasureView view;
    PageView pages;
    Editor editor;

    // The forms that it opens. They are open alongside it and work on the same tune.
    MidiForm frmBldMidi;
    MidiSetup frmMidiSetup;
    std::vector<TuningForm> tuningForms;  // Guitar, banjo, bass
    std::optional<PageSetup> frmPgSetup;  // while it is open

    /// Start-up. False when the notation font is missing: the box was shown, the program ends.
    bool Load();

    /// The first time that the form becomes active. `commandLine` is the text after the program's
    /// name: one path, with or without double quotes, or nothing.
    void FirstActivate(const std::string& commandLine);

    /// The Splash form has gone, by its button or its timer.
    void SplashClosed();

    /// The system closes the form. It closes even if the work is still unsaved.
    void Unload();

    /// Before the tune's file is emptied and written: its path, and what it will hold.
    std::function<void(const std::string& path, const std::string& bytes)> BeforeWriting =
        [](const std::string&, const std::string&) {};

    /// Asks whether to save the tune, if it is unsaved. False if it is still unsaved then.
    bool MayLeaveTune();

    // File
    void mnuNew();
    void mnuOpen();
    void OpenDropped(const std::string& path);  // as mnuOpen, with the dialog's answer given
    void mnuSave();
    void mnuSaveAs();
    void mnuPageSet();
    void mnuPrint();
    void mnuExit();

    // Edit
    void mnuClipbrd();

    // Instrument
    void mnuGuitar();
    void mnuBanjo();
    void mnuMandolin();

    // MIDI
    void mnuOpnMidi();
    void mnuSetup();
    void mnuTuning();

    // Help
    void mnuAbout();

    /// Puts a tune that is in no file, given as the bytes of one, in the place of the present tune,
    /// which has just been begun. False if the pages cannot hold it; then they stay blank.
    bool FillNewTune(const std::string& bytes);

    /// Lays the tune out on the pages, then gives StaffBox the focus. Nothing while a measure is
    /// being inserted.
    void cmdRefresh();

    /// Shows the pages of a tune that another one has given way to. Nothing but the pages changes.
    /// False if they cannot hold it; then they are blank.
    bool ShowPages();

    /// Where a refresh would put the lines of this state of the tune.
    std::vector<PlacedLine> PlacesOf(const Tune& performed) const;

    /// Path of a file in the program's own folder.
    std::string ProgramFile(const std::string& name) const;

    /// Reads the tune FileName and shows its first measure. False when it cannot be opened: the
    /// box was shown, the tune stays.
    bool LoadTune();

    /// As above, from the bytes of a file. Bytes that are no tune: the box, then an
    /// object-required Fault.
    void ShowTune(std::optional<std::string> bytes);

private:
    const TextMetrics& metrics;

    void ReadSettings();
    void ShowStringLines();
    void ResetTuneState(int cursorY);
    void AskToSave();
    void OpenTune(const std::function<std::optional<std::string>()>& choosePath);
    void IncompatibleFile();
    void ShowFirstMeasure();
    void FontsFromHeader();
    void WriteTuneFile();
    void ChooseInstrument(int numStrings);
    void LoadActiveTuning(bool writeSetting);
    void ReportTooWide(std::optional<int> measure);
};

}  // namespace quillon
