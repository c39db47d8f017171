// The main form as a value: the editing state, and what its controls show.
//
// The handlers read and write these fields; whoever shows the form (the window, the scripted
// player) copies them to the screen after each event, so no handler knows a toolkit. The
// labels that a redraw writes are in MeasureView.

#pragma once

#include "store/editing_state.h"
#include "store/note_table.h"

#include <array>
#include <string>
#include <vector>

namespace quillon {

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
/// too, so that a lost scratch file does not lose the tail from rescued work.
struct ParkedTail {
    std::string Bytes;  // in the format of the scratch file; "" when nothing is parked

    /// The same as they were in the table: a text with a double quote does not come back from
    /// Bytes.
    std::vector<NoteRecord> Records;

    bool operator==(const ParkedTail&) const = default;
};

struct MainForm : EditingState {
    ParkedTail Parked;
    bool Discarded = false;  // in the last event, the answer to the save question was No
    int Openings = 0;        // how many tunes were begun or opened so far
    int Writes = 0;          // how many times a tune was written to its file

    // Controls
    Control Focus = Control::None;
    std::string Caption;
    std::string cmdNextCaption = "Next";
    std::string cmdPreviousCaption = "Previous";
    bool cmdRefreshEnabled = true;
    bool mnuSaveEnabled = false;
    bool mnuPasteEnabled = false;
    struct {
        bool Visible = false;
        bool Enabled = false;
        std::string Text;
    } txtRptBracket;
    struct {
        std::string Text1;  // first measure
        std::string Text2;  // last measure
    } FrmCopyBox;
    int BoxCaret = 0;  // place in the text box that has the focus, kept by who shows the form
    bool Timer1Enabled = false;
    int Toolbar1 = 0;                    // the button that is down, 0 when all are up
    std::array<bool, 6> Line1Visible{};  // the staff lines
    bool FormEnabled = true;             // false while page setup is open
};

}  // namespace quillon
