#include "shell/main_win.h"

#include "notation/page_layout.h"
#include "notation/print_pass.h"
#include "store/staged_file.h"
#include "store/tune_file.h"

#include <system_error>

namespace quillon {

namespace {

constexpr const char* kIncompatible =
    "File is incompatible.  See the trouble shooting \r\n"
    "section in your manual for possible solutions\r\n\r\n"
    "You may need to eliminate the use of quote marks in your title or remarks.";

constexpr const char* kFontMissing =
    "You have not properly installed the font\r\n"
    " TAB.TTF.  Please refer to the manual and install  this font before proceding.\r\n\r\n"
    "You will now be aborted from the program";

constexpr const char* kSaveQuestion = "        FILE NOT SAVED\n\nDo you want to save your work?";

/// A setting as a number. One that is out of range counts as absent.
float SettingNumber(const Settings& settings, const std::string& key, const char* byDefault)
{
    try {
        return Single(Val(settings.Get(kPrefs, key, byDefault)));
    } catch (const Fault&) {
        return Single(Val(byDefault));
    }
}

bool SettingIsTrue(const Settings& settings, const std::string& key)
{
    const std::string text = settings.Get(kPrefs, key, "True");
    return text == "True" || text == "true" || SettingNumber(settings, key, "-1") != 0;
}

}  // namespace

std::string PathOf(const std::string& commandLine)
{
    if (!commandLine.starts_with('"'))
        return commandLine;
    return commandLine.size() < 2 ? "" : commandLine.substr(1, commandLine.size() - 2);
}

MainWin::MainWin(const Platform& thePlatform, const TextMetrics& textMetrics)
    : platform(thePlatform), view(tune, form, page, textMetrics), pages(textMetrics),
      editor(tune, form, view, platform.dialogs, platform.system),
      frmBldMidi(tune, tunings, platform),
      frmMidiSetup(page, platform.settings, platform.midiPorts), metrics(textMetrics)
{
    for (const TuningFormDesign& design : kTuningForms)
        tuningForms.emplace_back(design, tunings, platform.system);
}

MainWin::~MainWin() = default;

std::string MainWin::ProgramFile(const std::string& name) const
{
    return platform.system.ProgramFolder() + "/" + name;
}

bool MainWin::Load()
{
    page.TitleCentered = false;
    form.txtRptBracket.Text.clear();
    pages.ResetCounters();
    if (!platform.system.HasFont("TAB")) {
        platform.dialogs.Message(Icon::Stop, "Installation Error", kFontMissing);
        form.Saved = SavedState::Saved;
        platform.system.End();
        return false;
    }
    page.FormFontName = "Arial";
    form.mnuSaveEnabled = false;
    form.mnuPasteEnabled = false;
    pages.PageMax = 0;
    ReadSettings();
    tune.Table.Clear();
    form.CaretOn = 0;
    ResetTuneState(form.CursorY);
    tune.CurNote = 1;
    form.Saved = SavedState::BeforeTune;
    form.Timer1Enabled = true;
    form.FirstActivation = true;
    form.Caption = FindMode(tune.NumStrings)->Caption;
    ShowStringLines();
    LoadActiveTuning(false);
    return true;
}

void MainWin::ReadSettings()
{
    const Settings& settings = platform.settings;
    const auto real = [&](const char* key, const char* byDefault) {
        return SettingNumber(settings, key, byDefault);
    };
    page.BodyFontSize = real("FontSize", "10");
    page.BodyFontName = settings.Get(kPrefs, "FontName", "Arial");
    page.TitleFontName = settings.Get(kPrefs, "TitleFont", "Arial");
    page.TitleFontSize = real("TitleFontSize", "20");
    page.PageLeft = real("PageLeft", "1");
    page.PageRight = real("PageRight", "1");
    page.PageTop = real("PageTop", "1");
    page.StaveSpace = real("StaveSpace", ".75");
    const double numStrings = SettingNumber(settings, "NumStrings", "6");
    tune.NumStrings = numStrings >= 3.5 && numStrings <= 6.5 ? Round(numStrings) : 6;
    page.MidiDevice = NumberText(SettingNumber(settings, "MIDIDEVICE", "-1"));
    page.TitleCentered = SettingIsTrue(settings, "TitleCentered");
}

void MainWin::ShowStringLines()
{
    int string = 0;
    for (bool& visible : form.Line1Visible)
        visible = ++string <= tune.NumStrings;
}

/// The state of a fresh tune, but for record 1, which becomes a head where the caller says so.
void MainWin::ResetTuneState(int cursorY)
{
    tune.CurMeas = 1;
    tune.LastMeas = 0;
    tune.CurNote = 2;
    tune.LastNote = 0;
    form.MeasHead = 1;
    form.MeasEnd = 0;
    form.CurValue = kQuarter;
    form.CurBeats = 4;
    form.CurBeatUnit = 4;
    form.MeasCapacity = 48;
    form.MeasFill = 0;
    form.EntryState = EntryState::Append;
    form.InputMode = InputMode::Fret;
    form.CursorX = kFirstNoteX;
    form.CursorY = cursorY;
    form.Parked = {};
}

void MainWin::FirstActivate(const std::string& commandLine)
{
    if (commandLine.empty()) {
        form.FirstActivation = false;
        mnuNew();
        form.Focus = Control::None;
        platform.system.Show(Form::Splash);
        return;
    }
    tune.FileName = PathOf(commandLine);
    // A dot before them is not asked for.
    constexpr std::size_t length = 3;
    if (tune.FileName.size() >= length)
        if (const auto* mode = FindModeOfExtension(
                std::string_view(tune.FileName).substr(tune.FileName.size() - length)))
            tune.NumStrings = mode->NumStrings;
    ShowStringLines();
    form.Caption = FindMode(tune.NumStrings)->FileCaption;
    mnuOpen();
    form.FirstActivation = false;
}

void MainWin::SplashClosed()
{
    editor.SetFocus(Control::StaffBox);
}

void MainWin::Unload()
{
    if (form.Saved == SavedState::Unsaved)
        AskToSave();
}

bool MainWin::MayLeaveTune()
{
    if (form.Saved == SavedState::Unsaved)
        AskToSave();
    return form.Saved != SavedState::Unsaved;
}

void MainWin::AskToSave()
{
    if (!platform.dialogs.Ask("", kSaveQuestion)) {
        form.Saved = SavedState::Saved;
        form.Discarded = true;
    } else if (tune.FileName > " ") {
        mnuSave();
    } else {
        mnuSaveAs();
    }
}

void MainWin::mnuNew()
{
    pages.mnuSmallView();
    pages.ResetCounters();
    pages.BlankPages();
    pages.vsbPage = 0;
    form.cmdNextCaption = "Next";
    form.cmdPreviousCaption = "Previous";
    editor.HideCaret();
    if (!MayLeaveTune())
        return;
    ++form.Openings;
    tune.FileName.clear();
    form.mnuSaveEnabled = false;
    form.Saved = SavedState::Saved;
    tune.Table.Clear();
    ResetTuneState(StringY(tune.NumStrings));
    view.ClearStaff();
    form.Timer1Enabled = true;
    tune[1].Measure = 1;
    tune[1].NoteCode = kHead;
    tune[1].Beats = 4;
    tune[1].BeatUnit = 4;
    view.lblMeasNum = std::to_string(tune.CurMeas);
    view.lblLastNote = std::to_string(tune.LastNote);
    editor.SetToolbarValue(kQuarter);
    editor.SetFocus(Control::StaffBox);
}

void MainWin::mnuOpen()
{
    OpenTune([this]() -> std::optional<std::string> {
        if (form.FirstActivation)
            return tune.FileName;
        const InstrumentMode* mode = FindMode(tune.NumStrings);
        return platform.dialogs.OpenFile(mode->FileFilter, mode->Extension);
    });
}

void MainWin::OpenDropped(const std::string& path)
{
    OpenTune([&] { return path; });
}

void MainWin::OpenTune(const std::function<std::optional<std::string>()>& choosePath)
{
    pages.mnuSmallView();
    pages.ResetCounters();
    pages.PageMax = 0;
    form.cmdNextCaption = "Next";
    form.cmdPreviousCaption = "Previous";
    if (!MayLeaveTune())
        return;
    form.Saved = SavedState::Saved;  // before the dialog: a cancelled one leaves unsaved edits
                                     // marked as saved
    const auto path = choosePath();
    if (!path)
        return;
    tune.FileName = *path;
    if (!LoadTune())
        return;
    cmdRefresh();
    form.mnuSaveEnabled = true;
    platform.system.SetWaitCursor(false);
}

bool MainWin::FillNewTune(const std::string& bytes)
{
    ShowTune(bytes);
    const int lastMeas = tune.LastMeas;
    for (int measure = 1; measure <= lastMeas; ++measure)  // so that its beams are known
        editor.ShowMeasure(measure);
    ShowFirstMeasure();
    const bool fits = ShowPages();
    editor.SetFocus(Control::StaffBox);
    form.Saved = SavedState::Unsaved;
    platform.system.SetWaitCursor(false);
    return fits;
}

bool MainWin::LoadTune()
{
    std::optional<std::string> bytes;  // none of a file that is too large for a tune
    try {
        bytes = ReadFileBytes(tune.FileName);
    } catch (const Fault& fault) {
        if (fault.Number() != Error::Overflow) {
            platform.dialogs.Message(Icon::Stop, "", "File Not Found");
            return false;
        }
    }
    ShowTune(std::move(bytes));
    return true;
}

void MainWin::ShowTune(std::optional<std::string> bytes)
{
    ++form.Openings;
    try {
        tune.Table.Clear();
        pages.BlankPages();
        pages.vsbPage = 0;
        platform.system.SetWaitCursor(true);
        if (!bytes)
            throw Fault(Error::Overflow);
        ItemReader reader(std::move(*bytes));
        ReadTune(reader, tune);
    } catch (const Fault&) {
        IncompatibleFile();
    }
    FontsFromHeader();
    ShowFirstMeasure();
}

void MainWin::ShowFirstMeasure()
{
    form.EntryState = EntryState::Review;
    tune.CurMeas = 0;
    tune.CurNote = 0;
    editor.cmdNext();
}

/// The header's fonts override the settings; an empty field leaves what is in force.
void MainWin::FontsFromHeader()
{
    NoteRecord& header = tune[0];
    const auto takeFont = [&](std::string& slot, std::string& fontName) {
        if (slot.empty())
            return;
        if (platform.system.HasFont(slot))
            page.FormFontName = slot;
        else
            slot = "Arial";
        fontName = slot;
    };
    takeFont(header.Slot(6), page.BodyFontName);
    if (!header.Slot(5).empty())
        page.BodyFontSize = Single(Val(header.Slot(5)));
    takeFont(header.Slot(3), page.TitleFontName);
    if (header.NoteCode != 0)
        page.TitleFontSize = static_cast<float>(header.NoteCode);
}

/// Ends the program after the message: nothing after it is ever reached.
void MainWin::IncompatibleFile()
{
    platform.system.SetWaitCursor(false);
    platform.dialogs.Message(Icon::Stop, "", kIncompatible);
    view.ClearStaff();
    ResetTuneState(OffStringsY(tune.NumStrings));
    editor.SetToolbarValue(kQuarter);
    throw Fault(Error::ObjectRequired);
}

void MainWin::WriteTuneFile()
{
    if (IsLocked(tune.FileName))
        throw Fault::OfFile(Error::PathFileAccess, tune.FileName,
                            "a Quillon that is running keeps its unsaved work there");
    const std::string bytes = TuneBytes(tune);
    BeforeWriting(tune.FileName, bytes);
    WriteFileBytes(tune.FileName, bytes);
    try {
        SyncFile(tune.FileName);
    } catch (const std::system_error& error) {
        throw Fault::OfFile(Error::PathFileAccess, tune.FileName, error.code().message());
    }
    ++form.Writes;
}

// InputMode is not checked: during an insertion the parked tail is missing from the file.
void MainWin::mnuSave()
{
    form.Saved = SavedState::Unsaved;  // the file is emptied first: a failure leaves the tune in
                                       // the table alone
    WriteTuneFile();
    form.Saved = SavedState::Saved;
}

void MainWin::mnuSaveAs()
{
    if (form.InputMode == InputMode::Insert)
        return;
    const char* extension = FindMode(tune.NumStrings)->Extension;
    const auto path = platform.dialogs.SaveFile(tune.FileName, extension, extension);
    if (!path)
        return;
    tune.FileName = *path;
    if (!tune.FileName.empty()) {
        try {
            WriteTuneFile();
        } catch (const Fault&) {
            return;  // the tune stays unsaved, without a message
        }
    }
    form.Saved = SavedState::Saved;
    form.mnuSaveEnabled = true;
}

void MainWin::mnuExit()
{
    if (form.Saved == SavedState::Unsaved)
        AskToSave();
    if (form.Saved == SavedState::Saved)
        platform.system.End();
}

void MainWin::LoadActiveTuning(bool writeSetting)
{
    const InstrumentMode* mode = FindMode(tune.NumStrings);
    const bool rebuilt =
        quillon::LoadActiveTuning(ProgramFile(mode->TuningFile), mode->NumStrings, tunings);
    if (rebuilt && writeSetting)
        platform.settings.Set(kPrefs, "NumStrings", std::to_string(mode->NumStrings));
}

void MainWin::ChooseInstrument(int numStrings)
{
    pages.mnuSmallView();
    if (form.Saved == SavedState::Unsaved)
        AskToSave();
    if (form.Saved == SavedState::Unsaved)
        return;
    pages.BlankPages();
    tune.NumStrings = numStrings;
    form.Caption = FindMode(numStrings)->Caption;
    ShowStringLines();
    form.Saved = SavedState::Saved;
    LoadActiveTuning(true);
    platform.settings.Set(kPrefs, "NumStrings", std::to_string(numStrings));
    mnuNew();
}

void MainWin::mnuGuitar()
{
    ChooseInstrument(6);
}

void MainWin::mnuBanjo()
{
    ChooseInstrument(5);
}

void MainWin::mnuMandolin()
{
    ChooseInstrument(4);
}

void MainWin::cmdRefresh()
{
    if (form.InputMode == InputMode::Insert)
        return;
    ReportTooWide(LayOutPages(tune, page, pages));
    editor.SetFocus(Control::StaffBox);
}

bool MainWin::ShowPages()
{
    pages.mnuSmallView();
    pages.ResetCounters();
    pages.BlankPages();
    try {
        LayOutPages(tune, page, pages);
        return true;
    } catch (const Fault&) {
        pages.BlankPages();
        return false;
    }
}

std::vector<PlacedLine> MainWin::PlacesOf(const Tune& performed) const
{
    return PlaceLines(performed, page, metrics);
}

void MainWin::ReportTooWide(std::optional<int> measure)
{
    if (measure)
        platform.dialogs.Message(
            Icon::Stop, "", "Measure " + std::to_string(*measure) + " is too wide for a line.");
}

void MainWin::mnuPrint()
{
    ReportTooWide(PrintTune(tune, page, metrics, platform.printer));
    view.RedrawMeasure();
}

void MainWin::mnuClipbrd()
{
    pages.mnuClipbrd(platform.clipboard);
}

void MainWin::mnuPageSet()
{
    editor.HideCaret();
    form.FormEnabled = false;
    frmPgSetup.emplace(tune, page, platform, [this] {
        form.FormEnabled = true;
        editor.SetFocus(Control::StaffBox);
    });
    frmPgSetup->Activate();
    platform.system.Show(Form::frmPgSetup);
}

void MainWin::mnuOpnMidi()
{
    pages.mnuSmallView();
    frmBldMidi.Show();
    if (frmBldMidi.Loaded)
        platform.system.Show(Form::frmBldMidi);
}

void MainWin::mnuSetup()
{
    frmMidiSetup.Show();
    platform.system.Show(Form::frmMidiSetup);
}

void MainWin::mnuTuning()
{
    for (TuningForm& tuningForm : tuningForms) {
        if (tuningForm.design.NumStrings == tune.NumStrings) {
            tuningForm.Show();
            platform.system.Show(tuningForm.design.Name);
        }
    }
}

void MainWin::mnuAbout()
{
    platform.system.Show(Form::frmAbout);
}

}  // namespace quillon
