// A moment: everything that decides what the editor does next, and what it shows, as one value.
//
// What has a file of its own is not part of it (tunes, settings, tunings, the copy buffer), nor
// is `Saved`, which is about the disk. The scratch files of parked tails are: they come and go
// with the state that refers to them. Page view, marquee and the other forms only look on
// and are left alone.

#pragma once

#include "editor/main_form.h"
#include "notation/measure_view.h"
#include "store/page_settings.h"
#include "store/tune.h"
#include "store/tune_file.h"
#include "store/tunings.h"

#include <array>
#include <filesystem>
#include <optional>
#include <string>
#include <tuple>

namespace quillon {

/// The same values, wherever they live: in the running program, or in a moment.
struct Values {
    Tune& Music;
    MainForm& Form;
    DrawSurface& StaffBox;
    Int16& EndBarX;
    std::string& lblMeasNum;
    std::string& lblLastNote;
    std::string& hdbkbox;
    PageSettings& Page;
    std::array<Int16, kStringSlots>& CurTuning;
};

/// The fields of a moment but for the table, the picture and the parked tail. A field is known by
/// its place in this list, in journals too: new ones go at the end.
inline auto FieldsOf(const Values& v)
{
    Tune& tune = v.Music;
    MainForm& form = v.Form;
    DrawSurface& staff = v.StaffBox;
    PageSettings& page = v.Page;
    return std::tie(
        // The tune
        tune.NumStrings, tune.LastNote, tune.LastMeas, tune.CurNote, tune.CurMeas, tune.FileName,
        // The editing state
        form.MeasHead, form.MeasEnd, form.CursorX, form.CursorY, form.SavedCursorY, form.CurBeats,
        form.CurBeatUnit, form.CurValue, form.MeasCapacity, form.MeasFill, form.EntryState,
        form.InputMode, form.CaretOn,
        // The controls
        form.Focus, form.Caption, form.cmdNextCaption, form.cmdPreviousCaption,
        form.cmdRefreshEnabled, form.mnuSaveEnabled, form.mnuPasteEnabled,
        form.txtRptBracket.Visible, form.txtRptBracket.Enabled, form.txtRptBracket.Text,
        form.FrmCopyBox.Text1, form.FrmCopyBox.Text2, form.BoxCaret, form.Timer1Enabled,
        form.Toolbar1, form.Line1Visible,
        // The measure view
        staff.CurrentX, staff.CurrentY, staff.Font.Name, staff.Font.Size, staff.Font.Bold,
        staff.DrawWidth, staff.DrawStyle, staff.DrawMode, staff.FillSolid, v.EndBarX, v.lblMeasNum,
        v.lblLastNote, v.hdbkbox,
        // Fonts and margins
        page.BodyFontName, page.BodyFontSize, page.TitleFontName, page.TitleFontSize, page.PageLeft,
        page.PageRight, page.PageTop, page.StaveSpace, page.TitleCentered, page.FormFontName,
        // The tuning in force
        v.CurTuning);
}

inline constexpr std::array kScratchFiles{kInsertScratch, kPasteScratch};

/// The bytes of a scratch file, nothing if it is missing.
using ScratchBytes = std::optional<std::string>;
using Scratch = std::array<ScratchBytes, kScratchFiles.size()>;

struct Moment {
    explicit Moment(const Values& live);

    Tune Music;
    MainForm Form;
    DrawSurface StaffBox;
    Int16 EndBarX;
    std::string lblMeasNum;
    std::string lblLastNote;
    std::string hdbkbox;
    PageSettings Page;
    std::array<Int16, kStringSlots> CurTuning;
    Scratch ScratchFiles;

    quillon::Values Values()
    {
        return {Music, Form, StaffBox, EndBarX, lblMeasNum, lblLastNote, hdbkbox, Page, CurTuning};
    }

    /// Whether the program can go on from here: the invariants that handlers rely on hold.
    bool IsSound() const;

    /// Brings the program to this moment, and the scratch files on disk. A path/file-access Fault
    /// when one of them cannot be written; the program is then as it was.
    void PutBack(const quillon::Values& live);
};

/// A scratch file, reread when it has changed.
class ScratchFile {
public:
    /// `anyway`: it may have been written twice within one tick of the disk's clock.
    const ScratchBytes& Read(const char* name, bool anyway);

private:
    ScratchBytes bytes;
    std::filesystem::file_time_type written;
};

/// The part of the table that is the user's work: all that a tune file holds except the fields that
/// a redraw works out anew.
std::string WorkBytes(const Tune& tune);

}  // namespace quillon
