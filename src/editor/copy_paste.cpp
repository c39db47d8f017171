// Copying and pasting measures by way of a buffer file, which outlives the tune in the table.

#include "editor/editor.h"

namespace quillon {

void Editor::mnuCopy()
{
    form.Focus = Control::None;
    system.Show(Form::FrmCopyBox);
}

void Editor::CopyBoxClosed()
{
    Activate();
    SetFocus(Control::StaffBox);
}

void Editor::cmdCopyMeasure(const std::string& fromText, const std::string& toText)
{
    const double from = Val(fromText);
    const double to = Val(toText);
    if (from <= to && from > 0 && from < tune.LastMeas + 1 && to < tune.LastMeas + 1) {
        int i = 1;
        while (tune[i].Measure < from)
            ++i;
        int last = i - 1;
        while (last < tune.LastNote && tune[last + 1].Measure <= to)
            ++last;
        WriteRecords(kCopyBuffer, tune, i, last);
        form.mnuPasteEnabled = true;
    }
    CopyBoxClosed();
}

void Editor::mnuPaste()
{
    if (form.InputMode != kFretMode)
        return;
    if (form.EntryState == kEditState && tune.CurMeas == tune.LastMeas)
        form.EntryState = kAppendState;
    if (form.EntryState == kAppendState)
        PasteAtEnd();
    else
        PasteBehindMeasure();
}

/// Reads the next record behind CurNote. Measures are numbered by counting head records.
void Editor::PasteRecord(ItemReader& reader)
{
    ++tune.CurNote;
    ReadRecord(reader, Current());
    if (Current().IsHead())
        ++tune.CurMeas;
    Current().Measure = tune.CurMeas;
    tune.LastNote = tune.CurNote;
    tune.LastMeas = tune.CurMeas;
}

void Editor::PasteAtEnd()
{
    const auto standOnLastMeasure = [&] {
        form.MeasHead = form.MeasEnd = tune.LastNote;
        while (!Head().IsHead())
            --form.MeasHead;
    };
    tune.CurMeas = tune.LastMeas;
    tune.CurNote = tune.LastNote;
    ItemReader buffer(ReadFileBytes(kCopyBuffer));
    while (!buffer.AtEnd()) {
        PasteRecord(buffer);
        standOnLastMeasure();
    }
    standOnLastMeasure();
    form.EntryState = kEditState;
    view.RedrawMeasure();
}

// Leaves CurNote at the tune's end and the old picture on StaffBox, until the next command.
void Editor::PasteBehindMeasure()
{
    WriteRecords(kPasteScratch, tune, form.MeasEnd + 1, tune.LastNote);
    tune.LastMeas = tune.CurMeas;
    tune.CurNote = tune.LastNote = form.MeasEnd;
    ItemReader buffer(ReadFileBytes(kCopyBuffer));
    while (!buffer.AtEnd()) {
        PasteRecord(buffer);
        if (Current().IsHead())
            form.MeasHead = tune.CurNote;
        form.MeasEnd = tune.LastNote;
    }
    ItemReader tail(ReadFileBytes(kPasteScratch));
    while (!tail.AtEnd())
        PasteRecord(tail);
    tune.CurMeas = Head().Measure;
}

}  // namespace quillon
