// The editing state: which measure is in view, where the cursor is in it, and what the next key
// will do. What the window's controls show is in `editor/main_form.h`.

#pragma once

#include "store/numbers.h"

namespace quillon {

enum class EntryState {
    Review = 0,  // walking through finished measures, cmdNext wraps to measure 1
    Append = 1,  // the cursor is at the free end of the tune
    Edit = 2,    // inside a finished measure, reached from the tune's end
};

enum class InputMode {
    Fret = 1,
    Chord = 2,
    Insert = 3,  // fret entry in a measure that is being inserted
    LeftHand = 4,
    RightHand = 5,
    Bracket = 6,
};

enum class SavedState {
    Unsaved = 0,
    Saved = 1,           // nothing to save
    BeforeTune = 65535,  // between start-up and the first tune
};

struct EditingState {
    Int16 MeasHead;      // head record of the current measure
    Int16 MeasEnd;       // its last record; below MeasHead while a new measure is empty
    Int16 CursorX;       // points; kFirstNoteX at a measure's start
    Int16 CursorY;       // points; StringY(s) on string s
    Int16 SavedCursorY;  // where to go back to after a text mode
    Int16 CurBeats = 4;  // time signature for new measures
    Int16 CurBeatUnit = 4;
    Int16 CurValue = 7;  // selected note value, 1..11
    Int16 MeasCapacity;  // ticks that the current measure holds
    Int16 MeasFill;      // ticks entered so far
    quillon::EntryState EntryState = quillon::EntryState::Append;
    quillon::InputMode InputMode = quillon::InputMode::Fret;
    Int16 CaretOn;  // -1 while the cursor is drawn, else 0
    SavedState Saved = SavedState::BeforeTune;
    bool FirstActivation = false;
};

}  // namespace quillon
