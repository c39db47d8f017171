// Moving between measures, opening a new one at the tune's end, and closing the dialogue of an
// inserted measure.

#include "editor/editor.h"

namespace quillon {

namespace {

/// Where review puts the cursor in a measure that begins with a rest: between two strings
/// (docs/kept_behaviour.md, "Editing").
constexpr int kReviewRestY = 54;

}  // namespace

void Editor::SetFocus(Control control)
{
    if (form.Focus == control)
        return;
    form.Focus = control;
    if (control == Control::StaffBox) {
        view.RedrawMeasure();
        form.Timer1Enabled = true;
    }
}

void Editor::Activate()
{
    view.RedrawMeasure();
}

void Editor::SetToolbarValue(int code)
{
    form.Toolbar1 = IsNoteValue(code) ? code : 0;
}

/// Finds the measure CurMeas. One that is not there leaves MeasHead and MeasEnd as they were.
/// MeasEnd ends up at least `leastSteps` after the head, whatever measure that is.
bool Editor::FindMeasure(int leastSteps)
{
    int i = 1;
    while (i <= kLastRecord && tune[i].Measure != tune.CurMeas)
        ++i;
    if (i > kLastRecord)
        return false;
    form.MeasHead = i;
    i += leastSteps;
    while (i < kLastRecord && tune[i + 1].Measure == tune.CurMeas)
        ++i;
    form.MeasEnd = i;
    return true;
}

/// MeasEnd goes to the end of the measure that starts at MeasHead.
void Editor::WalkMeasEnd()
{
    form.MeasEnd = form.MeasHead;
    while (tune[form.MeasEnd + 1].Measure == Head().Measure)
        ++form.MeasEnd;
}

/// Puts the cursor on the lowest string that the measure's first note plays, or to `otherwise`.
void Editor::CursorToFirstNoteOr(int otherwise)
{
    const int s = tune[form.MeasHead + 1].HighestFilledSlot();
    form.CursorY = s > 0 ? StringY(s) : otherwise;
}

/// X of the position after a note.
int Editor::EndOf(int note) const
{
    return tune[note].XPos + tune[note].Spacing * 6;
}

/// Makes record `head` the head of the empty measure CurMeas and shows it.
void Editor::StartMeasure(int head)
{
    form.MeasHead = head;
    Head().Measure = tune.CurMeas;
    Head().NoteCode = kHead;
    Head().Beats = form.CurBeats;
    Head().BeatUnit = form.CurBeatUnit;
    form.CursorX = kFirstNoteX;
    view.ClearStaff();
    form.Timer1Enabled = true;
    SetFocus(Control::StaffBox);
    form.MeasFill = 0;
}

void Editor::ShowMeasure(int number)
{
    form.InputMode = InputMode::Fret;
    tune.CurMeas = number;
    FindMeasure();
    view.RedrawMeasure();
}

void Editor::cmdNext()
{
    form.cmdRefreshEnabled = true;
    form.cmdNextCaption = "Next";
    form.cmdPreviousCaption = "Previous";
    if (form.InputMode != InputMode::Fret && form.InputMode != InputMode::Insert) {
        form.InputMode = InputMode::Fret;
        view.RedrawMeasure();
    }
    if (form.InputMode == InputMode::Insert) {
        CommitInsertedMeasure();
        return;
    }
    if (form.EntryState == EntryState::Edit && NextWhileEditing())
        return;
    if (form.EntryState == EntryState::Review)
        NextInReview();
    // An empty open measure never opens another one.
    if (form.EntryState == EntryState::Append &&
        (tune.CurNote > form.MeasHead + 1 || form.MeasFill == form.MeasCapacity))
        OpenMeasureAtEnd();
    ShowButtonOfNote();
    SetFocus(Control::StaffBox);
}

/// On to the next measure, or from the last one to the tune's end. True when the last measure has
/// room left: the cursor goes to its free end, and cmdNext is done.
bool Editor::NextWhileEditing()
{
    if (tune.CurMeas < tune.LastMeas)
        ++tune.CurMeas;
    else
        form.EntryState = EntryState::Append;
    FindMeasure();
    if (form.EntryState == EntryState::Append) {
        tune.CurNote = form.MeasEnd;
        SetFocus(Control::StaffBox);
        return false;
    }
    StandOnFirstNote();
    CursorToFirstNoteOr(StringY(tune.NumStrings));
    view.RedrawMeasure();
    const bool hasRoom = tune.CurMeas == tune.LastMeas && form.MeasFill < form.MeasCapacity;
    if (hasRoom) {
        form.EntryState = EntryState::Append;
        form.MeasEnd = tune.LastNote;
        tune.CurNote = tune.LastNote + 1;
        form.CursorX = EndOf(form.MeasEnd);
    }
    SetFocus(Control::StaffBox);
    return hasRoom;
}

/// On to the next measure, from the last one to the first. Where no measure is found, the tune
/// counts as empty from now on.
void Editor::NextInReview()
{
    bool found = false;
    if (tune.LastMeas != 0) {
        ++tune.CurMeas;
        if (tune.CurMeas > tune.LastMeas)
            tune.CurMeas = 1;
        found = FindMeasure();
        view.RedrawMeasure();
        StandOnFirstNote();
        CursorToFirstNoteOr(kReviewRestY);
        SetFocus(Control::StaffBox);
    }
    if (!found) {
        form.EntryState = EntryState::Append;
        tune.LastMeas = 0;
        tune.CurMeas = 1;
        tune.CurNote = 2;
        tune.LastNote = 0;
    }
}

void Editor::OpenMeasureAtEnd()
{
    ++tune.CurMeas;
    // A full measure leaves CurNote on its last note, otherwise it is on the free record.
    tune.CurNote += form.MeasFill < form.MeasCapacity ? 1 : 2;
    StartMeasure(tune.CurNote - 1);
}

void Editor::StandOnFirstNote()
{
    tune.CurNote = form.MeasHead + 1;
    form.CursorX = Current().XPos;
}

/// Presses the button of the note under the cursor; a rest, a head or a free record leaves it.
void Editor::ShowButtonOfNote()
{
    if (Current().NoteCode > 0 && Current().NoteCode < kEndOfNotes)
        SetToolbarValue(Current().NoteCode);
}

void Editor::cmdPrevious()
{
    form.cmdRefreshEnabled = true;
    if (form.InputMode == InputMode::Chord || form.InputMode == InputMode::Bracket) {
        form.InputMode = InputMode::Fret;
        view.RedrawMeasure();
    }
    if (form.InputMode == InputMode::Insert) {
        CancelInsertedMeasure();
        return;
    }
    if (tune.LastMeas == 0)
        return;
    if (form.EntryState == EntryState::Append)
        form.EntryState = EntryState::Edit;
    if (tune.CurMeas < 2)
        tune.CurMeas = tune.LastMeas;
    else
        --tune.CurMeas;
    if (FindMeasure(1))
        tune.CurNote = form.MeasEnd;
    CursorToFirstNoteOr(StringY(tune.NumStrings));
    view.RedrawMeasure();
    if (tune.CurMeas == tune.LastMeas && form.MeasFill < form.MeasCapacity) {
        form.EntryState = EntryState::Append;
        form.CursorX = EndOf(tune.CurNote);
        ++tune.CurNote;
    } else {
        StandOnFirstNote();
    }
    ShowButtonOfNote();
    SetFocus(Control::StaffBox);
}

/// Reads the parked tail into the records from `from`, each Measure raised by `renumberBy`, and
/// deletes the scratch file.
void Editor::ReadBackTail(int from, int renumberBy)
{
    ItemReader reader(ReadFileBytes(kInsertScratch));
    for (int i = from; !reader.AtEnd(); ++i) {
        ReadRecord(reader, tune[i]);
        tune[i].Measure += renumberBy;
        tune.LastNote = i;
        tune.LastMeas = tune[i].Measure;
    }
    DeleteFile(kInsertScratch);
    form.Parked = {};
}

void Editor::CommitInsertedMeasure()
{
    form.InputMode = InputMode::Fret;
    form.EntryState = EntryState::Review;
    const bool entered = form.MeasEnd > form.MeasHead;
    // With nothing entered the tail goes over the empty head, under its old numbers.
    ReadBackTail(tune.LastNote + 1, entered ? 1 : 0);
    tune.CurMeas = Head().Measure;
    WalkMeasEnd();
    form.CursorX = tune[form.MeasHead + 1].XPos;
    view.RedrawMeasure();
}

void Editor::CancelInsertedMeasure()
{
    form.InputMode = InputMode::Fret;
    form.EntryState = EntryState::Review;
    tune.Table.Clear(form.MeasHead, kLastRecord);
    ReadBackTail(form.MeasHead, 0);
    WalkMeasEnd();
    form.cmdNextCaption = "Next";
    form.cmdPreviousCaption = "Previous";
    view.RedrawMeasure();
    SetFocus(Control::StaffBox);
}

void Editor::lblMeasNum()
{
    if (form.EntryState == EntryState::Append)
        form.EntryState = EntryState::Edit;
    const std::string offered = std::to_string(tune.CurMeas);
    const double number = Val(dialogs.Prompt("Measure Number", offered).value_or(""));
    if (number > 0 && number < tune.LastMeas + 1)
        tune.CurMeas = Round(number);
    FindMeasure();
    StandOnFirstNote();
    SetFocus(Control::StaffBox);
    view.RedrawMeasure();
}

void Editor::mnuAppend()
{
    form.Saved = SavedState::Unsaved;
    tune.CurNote = tune.LastNote;
    tune.CurMeas = tune.LastMeas;
    view.lblMeasNum = std::to_string(tune.CurMeas + 1);
    form.EntryState = EntryState::Append;
    form.InputMode = InputMode::Fret;
    cmdNext();
}

void Editor::Toolbar1(int button)
{
    form.CurValue = button;
    SetToolbarValue(button);
    NoteRecord& note = Current();
    if (note.NoteCode <= kNoteValues)
        note.NoteCode = form.CurValue;
    else if (note.IsRest())
        note.NoteCode = RestCodeOf(form.CurValue);
    view.RedrawMeasure();
}

void Editor::cmdRest()
{
    mnuRest();
    SetFocus(Control::StaffBox);
}

}  // namespace quillon
