// Rests, bar signs, endings, navigation signs, remarks and line breaks. A rest is a record of its
// own; everything else is a text in the head record of the measure in the view.

#include "editor/editor.h"

#include "notation/symbols.h"

namespace quillon {

void Editor::mnuRest()
{
    EnterRest(RestCodeOf(form.CurValue));
}

void Editor::mnuHalfRest()
{
    EnterRest(kHalfRest);
    FocusAfterLongRest();
}

void Editor::mnuWholeRest()
{
    EnterRest(kWholeRest);
    FocusAfterLongRest();
}

void Editor::FocusAfterLongRest()
{
    SetFocus(form.MeasFill >= form.MeasCapacity ? Control::cmdNext : Control::StaffBox);
}

/// Makes record CurNote a rest. Code 0 leaves its value as it is.
void Editor::EnterRest(int restCode)
{
    form.Saved = SavedState::Unsaved;
    NoteRecord& rest = Current();
    rest.Measure = tune.CurMeas;
    rest.Beats = form.CurBeats;
    rest.BeatUnit = form.CurBeatUnit;
    rest.BeamCode = 0;
    for (std::string& slot : rest.Slots)
        slot.clear();
    if (restCode != 0) {
        rest.NoteCode = restCode;
        rest.Spacing = SpacingOf(restCode);
    }
    if (form.EntryState == EntryState::Append) {
        form.MeasEnd = tune.CurNote;
        tune.LastMeas = tune.CurMeas;
        view.RedrawMeasure();
        if (form.MeasFill >= form.MeasCapacity) {
            form.Timer1Enabled = false;
            tune.LastNote = tune.CurNote;
            SetFocus(Control::cmdNext);
        } else {
            form.CursorX += rest.Spacing * 6;
            tune.LastNote = tune.CurNote;
            ++tune.CurNote;
        }
        return;
    }
    HideCaret();
    view.RedrawMeasure();
    if (tune.CurNote + 1 != tune.LastNote) {
        if (tune.CurNote < form.MeasEnd)
            ++tune.CurNote;
        CursorToFilledString();
        form.CursorX = Current().XPos;
    } else {
        form.CursorX = EndOf(tune.CurNote);
        tune.CurNote = tune.LastNote;
    }
    if (tune.CurNote == tune.LastNote)
        form.EntryState = EntryState::Append;
}

void Editor::mnuRptSign()
{
    ToggleBar(kRepeatEnd);
}

void Editor::mnuRptStart()
{
    ToggleBar(kRepeatStart);
}

void Editor::mnuDoubBar()
{
    ToggleBar(kDoubleBar);
}

void Editor::mnuBegDoubBar()
{
    ToggleBar(kBeginDoubleBar);
}

/// Removes whatever bar sign the measure has; sets `code` only if there was none.
void Editor::ToggleBar(std::string_view code)
{
    form.Saved = SavedState::Unsaved;
    if (!Head().BarCode.empty()) {
        Head().BarCode.clear();
        view.RedrawMeasure();
        return;
    }
    Head().BarCode = code;
    view.DrawBar(code, code == kBeginDoubleBar);
}

void Editor::mnuDS()
{
    ToggleSign(kDs);
}

void Editor::mnuDC()
{
    ToggleSign(kDc);
}

void Editor::mnuFine()
{
    ToggleSign(kFine);
}

void Editor::mnuCoda()
{
    ToggleSign(kCoda);
}

void Editor::mnuDCcoda()
{
    ToggleSign(kDcAlCoda);
}

void Editor::mnuDCfine()
{
    ToggleSign(kDcAlFine);
}

void Editor::mnuSign()
{
    ToggleSign(kSign);
}

void Editor::mnuDScoda()
{
    ToggleSign(kDsAlCoda);
}

void Editor::mnuDSfine()
{
    ToggleSign(kDsAlFine);
}

/// Sets a navigation sign in place of any other, or removes it if the measure already has it.
void Editor::ToggleSign(std::string_view code)
{
    form.Saved = SavedState::Unsaved;
    std::string& sign = Head().Slot(1);
    const bool set = sign != code;
    if (set) {
        view.DrawSign(code);
        sign = code;
    } else {
        sign.clear();
    }
    // A glyph is drawn over what is there.
    if (!set || !FindSign(code)->Glyph)
        view.RedrawMeasure();
}

void Editor::mnuRepeatEnds()
{
    if (form.InputMode == InputMode::Insert)
        return;
    form.Saved = SavedState::Unsaved;
    if (!Head().Slot(2).empty()) {
        Head().Slot(2).clear();
        view.RedrawMeasure();
        return;
    }
    form.InputMode = InputMode::Bracket;
    view.DrawBracket();
    form.txtRptBracket.Visible = true;
    form.txtRptBracket.Enabled = true;
    form.txtRptBracket.Text = Head().Slot(2);
    SetFocus(Control::txtRptBracket);
}

// Saved is left alone here and in mnuHardBrk.
void Editor::mnuRemarks()
{
    std::string& remark = Head().Slot(3);
    remark = dialogs.Prompt("Remarks: ", remark).value_or("");
    view.StaffBox.PrintLineAt(kFirstNoteX, 4, remark);
    SetFocus(Control::StaffBox);
}

void Editor::mnuHardBrk()
{
    std::string& lineBreak = Head().Slot(6);
    if (!lineBreak.empty()) {
        lineBreak.clear();
        view.RedrawMeasure();
    } else {
        lineBreak = kLineBreak;
        view.hdbkbox = "Line Break";
    }
}

}  // namespace quillon
