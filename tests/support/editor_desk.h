// The measure editor with a fresh tune, in a directory of its own, as keys and clicks reach it.

#pragma once

#include "editor/editor.h"
#include "support/fakes.h"
#include "support/faults.h"
#include "support/state_text.h"
#include "support/temporary_directory.h"
#include "support/tunes.h"

namespace quillon {

class EditorDesk : public testing::Test {
protected:
    EditorDesk() { NewTune(6); }

    /// The state after mnuNew, StaffBox with the focus.
    void NewTune(int numStrings)
    {
        tune.Table.Clear();
        tune.NumStrings = numStrings;
        tune.CurMeas = 1;
        tune.CurNote = 2;
        tune.LastNote = tune.LastMeas = 0;
        tune[1].Measure = 1;
        tune[1].NoteCode = kHead;
        tune[1].Beats = tune[1].BeatUnit = 4;
        form = {};
        form.MeasHead = 1;
        form.CursorX = kFirstNoteX;
        form.CursorY = StringY(numStrings);
        form.MeasCapacity = 48;
        form.Saved = SavedState::Saved;
        form.Toolbar1 = kQuarter;
        editor.SetFocus(Control::StaffBox);
    }

    /// A table without records, to be filled by AddMeasure and AddNote; then comes Show.
    void EmptyTable()
    {
        tune.Table.Clear();
        tune.LastNote = tune.LastMeas = 0;
    }

    /// Shows measure 1 of the table as a tune that was opened.
    void Show()
    {
        form.EntryState = EntryState::Review;
        tune.CurMeas = tune.CurNote = 0;
        editor.cmdNext();
        form.Saved = SavedState::Saved;
    }

    /// Opens a tune of full measures in 4/4.
    void ShowFullMeasures(int count)
    {
        EmptyTable();
        AddFullMeasures(tune, count);
        Show();
    }

    /// A key without a character: key down alone.
    void Key(int keyCode) { editor.StaffBoxKeyDown(keyCode); }

    /// Types characters; '\r' is Enter and '\b' Backspace. On cmdNext, Enter and Space press it.
    void Type(std::string_view characters)
    {
        for (const char c : characters) {
            if (form.Focus == Control::cmdNext) {
                if (c == '\r' || c == ' ')
                    editor.cmdNext();
                continue;
            }
            editor.StaffBoxKeyDown(c == '\r' || c == '\b' ? c : 0);
            editor.StaffBoxKeyPress(c);
        }
    }

    /// A click on StaffBox.
    void Click(double x, double y)
    {
        editor.SetFocus(Control::StaffBox);
        editor.StaffBoxMouseDown(x, y);
    }

    void Goto(const std::string& measure)
    {
        dialogs.Prompts.push_back(measure);
        editor.lblMeasNum();
    }

    std::string State() const { return StateText(tune, form, view); }
    std::string Table() const { return TableText(tune); }
    std::string Log() const { return view.StaffBox.Picture().Log(); }
    std::string Drawn(const std::string& logBefore) const { return Log().substr(logBefore.size()); }

    TemporaryDirectory folder;
    Tune tune;
    MainForm form;
    PageSettings page;
    FixedTextMetrics metrics;
    FakeDialogs dialogs;
    FakeSystem system;
    MeasureView view{tune, form, page, metrics};
    Editor editor{tune, form, view, dialogs, system};
};

}  // namespace quillon
