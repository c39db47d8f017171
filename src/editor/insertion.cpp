// Inserting and deleting notes and measures: the commands that move records of the table.

#include "editor/editor.h"

namespace quillon {

/// Moves the records from CurNote on up by one; record CurNote stays as a copy of what it was.
void Editor::MakeRoomAtCurNote()
{
    for (int i = tune.LastNote; i >= tune.CurNote; --i)
        tune[i + 1] = tune[i];
}

void Editor::RelayoutXPos()
{
    tune[form.MeasHead + 1].XPos = kFirstNoteX;
    for (int i = form.MeasHead + 2; i <= form.MeasEnd; ++i)
        tune[i].XPos = EndOf(i - 1);
}

void Editor::mnuNoteBefore()
{
    if (form.EntryState == EntryState::Append)
        return;
    form.Saved = SavedState::Unsaved;
    MakeRoomAtCurNote();
    for (std::string& slot : Current().Slots)
        slot.clear();
    ++tune.LastNote;
    ++form.MeasEnd;
    RelayoutXPos();
    view.RedrawMeasure();
}

void Editor::mnuInsNoteAfter()
{
    if (form.EntryState == EntryState::Append)
        return;
    form.Saved = SavedState::Unsaved;
    MakeRoomAtCurNote();
    ++tune.CurNote;
    for (std::string& slot : Current().Slots)
        slot.clear();
    ++tune.LastNote;
    ++form.MeasEnd;
    RelayoutXPos();
    form.CursorX = Current().XPos;
    view.RedrawMeasure();
}

void Editor::mnuDelNote()
{
    if (form.EntryState == EntryState::Append)
        return;
    form.Saved = SavedState::Unsaved;
    if (form.MeasEnd == form.MeasHead + 1) {
        mnuDelMeas();
        return;
    }
    if (tune.CurNote != tune.LastNote) {
        for (int i = tune.CurNote; i < tune.LastNote; ++i)
            tune[i] = tune[i + 1];
        tune[tune.LastNote].Clear();
        --tune.LastNote;
    } else {
        Current().Clear();
        --tune.LastNote;
        --tune.CurNote;
        form.CursorX = Current().XPos;
    }
    --form.MeasEnd;
    view.RedrawMeasure();
    form.CursorX = Current().XPos;
}

/// Writes the records from `from` to the tune's end to a scratch file.
void Editor::ParkTail(const char* scratchFile, int from)
{
    std::string tail = RecordBytes(tune, from, tune.LastNote);
    WriteFileBytes(scratchFile, tail);
    form.Parked = {std::move(tail), {}};
    for (int i = from; i <= tune.LastNote; ++i)
        form.Parked.Records.push_back(tune[i]);
}

// Parks the tail of the tune in a scratch file, so that for the moment the new measure is the
// last one and is typed like any other. cmdNext ("OK") and cmdPrevious ("Cancel") bring it back.
void Editor::mnuInsMeas()
{
    form.Saved = SavedState::Unsaved;
    form.cmdNextCaption = "OK";
    form.cmdPreviousCaption = "Cancel";
    ParkTail(kInsertScratch, form.MeasHead);
    tune.Table.Clear(form.MeasHead, tune.LastNote);
    tune.LastNote = form.MeasHead - 1;
    tune.LastMeas = tune[tune.LastNote].Measure;
    tune.CurMeas = tune.LastMeas + 1;
    tune.CurNote = form.MeasHead + 1;
    form.MeasEnd = form.MeasHead - 1;
    StartMeasure(form.MeasHead);
    form.InputMode = InputMode::Insert;
    form.EntryState = EntryState::Append;
    form.cmdRefreshEnabled = false;
}

void Editor::mnuDelMeas()
{
    if (form.InputMode == InputMode::Insert)
        return;
    const bool appending = form.EntryState == EntryState::Append;
    if (appending && tune.CurNote == form.MeasHead + 1)
        return;  // an empty open measure
    if (Current().Measure == 1 && tune.LastMeas == 1) {
        DeleteOnlyMeasure();
        return;
    }
    form.Saved = SavedState::Unsaved;
    if (appending)
        DeleteOpenMeasure();
    else if (tune.CurMeas != tune.LastMeas)
        DeleteMiddleMeasure();
    else
        DeleteLastMeasure();
}

/// Leaves an empty table, record 1 without a head, and the old picture on StaffBox.
void Editor::DeleteOnlyMeasure()
{
    tune.Table.Clear(1, kLastRecord);
    form.CursorX = kFirstNoteX;
    form.CursorY = OffStringsY(tune.NumStrings);
    tune.CurMeas = 1;
    tune.LastMeas = 0;
    tune.CurNote = 2;
    tune.LastNote = 0;
    form.MeasEnd = 0;
    form.MeasHead = 1;
    form.CurValue = kQuarter;
    SetToolbarValue(kQuarter);
    form.MeasFill = 0;
    form.EntryState = EntryState::Append;
    form.InputMode = InputMode::Fret;
}

void Editor::DeleteMiddleMeasure()
{
    tune.Table.Clear(form.MeasHead, form.MeasEnd);
    for (int i = form.MeasEnd + 1; i <= tune.LastNote; ++i)
        --tune[i].Measure;
    const int count = form.MeasEnd - form.MeasHead + 1;
    tune.LastNote -= count;
    --tune.LastMeas;
    for (int i = form.MeasHead; i <= tune.LastNote; ++i)
        tune[i] = tune[i + count];
    tune.Table.Clear(tune.LastNote + 1, kLastRecord);
    WalkMeasEnd();
    view.RedrawMeasure();
}

/// The tune ends before the measure in view, and the last record left is the one in view.
void Editor::DropLastMeasure()
{
    tune.Table.Clear(form.MeasHead, form.MeasEnd);
    tune.LastNote = form.MeasHead - 1;
    --tune.LastMeas;
    tune.CurMeas = tune.LastMeas;
    form.MeasEnd = form.MeasHead = tune.LastNote;
}

void Editor::DeleteLastMeasure()
{
    DropLastMeasure();
    while (tune[form.MeasHead - 1].Measure == tune[form.MeasEnd].Measure)
        --form.MeasHead;
    StandOnFirstNote();
    view.RedrawMeasure();
}

void Editor::DeleteOpenMeasure()
{
    DropLastMeasure();
    tune.CurNote = tune.LastNote;
    while (tune[form.MeasHead - 1].Measure == tune.CurMeas)
        --form.MeasHead;
    form.CursorX = Current().XPos;
    form.CursorY = OffStringsY(tune.NumStrings);
    SetFocus(Control::StaffBox);
}

}  // namespace quillon
