// The main form as a value: the editing state, and what its controls show.
//
// The handlers read and write these fields; whoever shows the form (the window, the scripted
// player) copies them to the screen after each event. That is why no handler knows a toolkit.

#pragma once

#include "store/note_table.h"

#include <array>
#include <string>
#include <vector>

namespace quillon {

// EntryState
constexpr int kReviewState = 0;  // walking through finished measures, cmdNext wraps to measure 1
constexpr int kAppendState = 1;  // the cursor stands at the free end of the tune
constexpr int kEditState = 2;    // inside a finished measure, reached from the tune's end

// InputMode
constexpr int kFretMode = 1;
constexpr int kChordMode = 2;
constexpr int kInsertMode = 3;  // fret entry in a measure that is being inserted
constexpr int kLeftHandMode = 4;
constexpr int kRightHandMode = 5;
constexpr int kBracketMode = 6;

// StaffBox, in points: where the first note of a measure stands, and where the staff ends
constexpr int kFirstNoteX = 48;
constexpr int kStaffEndX = 350;

/// Y of the cursor on string s, 1 is the top line.
constexpr int StringY(int s)
{
    return 28 + 8 * s;
}

/// The controls that can have the focus: the main form's, and the boxes of FrmCopyBox.
enum class Control {
    None,
    StaffBox,
    cmdNext,
    cmdPrevious,
    cmdRefresh,
    cmdRest,
    txtRptBracket,
    Text1,
    Text2,
};

/// The tail of a tune that a command has parked in a scratch file for the moment. It is kept here
/// too, so that a lost scratch file does not lose the tail from the rescue copy.
struct ParkedTail {
    std::string Bytes;  // in the format of the scratch file; "" when nothing is parked

    /// The same as they stood in the table: a text with a double quote does not come back from
    /// Bytes.
    std::vector<NoteRecord> Records;
    int RecordsBack = 0;  // how many of them stand in the table again
};

struct MainForm {
    // Editing state
    Int16 MeasHead;      // head record of the current measure
    Int16 MeasEnd;       // its last record; below MeasHead while a new measure is empty
    Int16 CursorX;       // points; kFirstNoteX at a measure's start
    Int16 CursorY;       // points; StringY(s) on string s
    Int16 SavedCursorY;  // where to go back to after a text mode
    Int16 CurBeats = 4;  // time signature for new measures
    Int16 CurBeatUnit = 4;
    Int16 CurValue = kQuarter;  // selected note value
    Int16 MeasCapacity;         // ticks that the current measure holds
    Int16 MeasFill;             // ticks entered so far
    Int16 EntryState = kAppendState;
    Int16 InputMode = kFretMode;
    Int16 CaretOn;      // -1 while the cursor is drawn, else 0
    int Saved = 65535;  // 0 unsaved changes, 1 nothing to save, 65535 before the first tune
    bool FirstActivation = false;
    ParkedTail Parked;
    bool Discarded = false;  // No was the answer to the save question

    // Controls
    Control Focus = Control::None;
    std::string Caption;
    std::string cmdNextCaption = "Next";
    std::string cmdPreviousCaption = "Previous";
    bool cmdRefreshEnabled = true;
    bool mnuSaveEnabled = false;
    bool mnuPasteEnabled = false;
    std::string lblMeasNum;
    std::string lblLastNote;
    std::string hdbkbox;
    struct {
        bool Visible = false;
        bool Enabled = false;
        std::string Text;
    } txtRptBracket;
    struct {
        std::string Text1;  // first measure
        std::string Text2;  // last measure
    } FrmCopyBox;
    bool Timer1Enabled = false;
    int Toolbar1 = 0;                    // the button that is down, 0 when all are up
    std::array<bool, 6> Line1Visible{};  // the staff lines
    bool FormEnabled = true;             // false while page setup is open
    bool ToolsVisible = true;            // picTools, StaffBox and fraMeasure; off in large view
};

}  // namespace quillon
