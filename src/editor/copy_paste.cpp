// Copying and pasting measures through a buffer file, which outlives the tune in the table.

#include "editor/editor.h"

namespace quillon {

void Editor::mnuCopy()
{
    form.FrmCopyBox = {" ", " "};
    form.Focus = Control::Text1;
    system.Show(Form::FrmCopyBox);
}

void Editor::CopyBoxClosed()
{
    Activate();
    SetFocus(Control::StaffBox);
}

void Editor::CopyBoxEnter(Control box)
{
    std::string& text = box == Control::Text1 ? form.FrmCopyBox.Text1 : form.FrmCopyBox.Text2;
    if (!text.empty())
        text.pop_back();
    if (box == Control::Text1)
        form.Focus = Control::Text2;
    else
        cmdCopyMeasure();
}

void Editor::cmdCopyMeasure()
{
    const double from = Val(form.FrmCopyBox.Text1);
    const double to = Val(form.FrmCopyBox.Text2);
    if (from <= to && from > 0 && from < tune.LastMeas + 1 && to < tune.LastMeas + 1) {
        int i = 1;
        while (tune[i].Measure < from)
            ++i;
        int last = i - 1;
        while (last < tune.LastNote && tune[last + 1].Measure <= to)
            ++last;
        WriteFileBytes(kCopyBuffer, RecordBytes(tune, i, last));
        form.mnuPasteEnabled = true;
    }
    CopyBoxClosed();
}

void Editor::mnuPaste()
{
    if (form.InputMode != InputMode::Fret)
        return;
    if (form.EntryState == EntryState::Edit && tune.CurMeas == tune.LastMeas)
        form.EntryState = EntryState::Append;
    if (form.EntryState == EntryState::Append)
        PasteAtEnd();
    else
        PasteAfterMeasure();
}

/// Reads the next record after CurNote. Measures are numbered by counting head records.
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
    form.EntryState = EntryState::Edit;
    view.RedrawMeasure();
}

// Leaves CurNote at the tune's end and the old picture on StaffBox, until the next command.
void Editor::PasteAfterMeasure()
{
    ParkTail(kPasteScratch, form.MeasEnd + 1);
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
    form.Parked = {};
    tune.CurMeas = Head().Measure;
}

}  // namespace quillon
