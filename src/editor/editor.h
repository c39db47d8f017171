// The measure editor: keys, clicks and edit commands become records of the note table.
//
// Each handler has the name of its control or menu command and is the only place that holds its
// rule. Handlers run one at a time, to their end. A handler that needs a record beyond the end of
// the table ends in a subscript Fault; there is no other message for a full table.

#pragma once

#include "editor/main_form.h"
#include "notation/measure_view.h"
#include "platform/dialogs.h"
#include "platform/system.h"
#include "store/tune_file.h"

namespace quillon {

// Keys that StaffBox handles, by their key codes. Any other code is a key that it does not know.
enum Key {
    kKeyBackspace = 8,
    kKeyEnter = 13,
    kKeyLeft = 37,
    kKeyUp = 38,
    kKeyRight = 39,
    kKeyDown = 40,
    kKeyDelete = 46,
};

/// Where some commands leave the cursor: below the strings, on none of them
/// (docs/kept_behaviour.md, "Files" and "Editing").
constexpr int OffStringsY(int numStrings)
{
    return 24 + 10 * numStrings;
}

class Editor {
public:
    Editor(Tune& theTune, MainForm& mainForm, MeasureView& measureView, Dialogs& theDialogs,
           System& theSystem)
        : tune(theTune), form(mainForm), view(measureView), dialogs(theDialogs), system(theSystem)
    {
    }

    // Focus. A control that has the focus already gets no second event.
    void SetFocus(Control control);
    void Activate();  // the main form has become active again

    // Navigation
    void ShowMeasure(int number);  // as stepping to it in review would show it
    void cmdNext();
    void cmdPrevious();
    void lblMeasNum();
    void mnuAppend();
    void cmdRest();

    /// Click on button 1..11.
    void Toolbar1(int button);

    /// Presses button `code` and releases all others; a code without a button releases all.
    void SetToolbarValue(int code);

    // StaffBox. Key down comes before key press, and both happen for Enter and Backspace.
    void StaffBoxKeyDown(int keyCode);
    void StaffBoxKeyPress(char character);
    void StaffBoxMouseDown(double x, double y);  // points
    void Timer1();
    void HideCaret();
    void txtRptBracketEnter();
    void mnuChord();
    void mnuLHEdit();
    void mnuRHEdit();

    // Insertion and deletion
    void mnuNoteBefore();
    void mnuInsNoteAfter();
    void mnuDelNote();
    void mnuInsMeas();
    void mnuDelMeas();

    // Copy and paste of measures
    void mnuCopy();
    void mnuPaste();

    /// Enter in a box of FrmCopyBox, Control::Text1 or Text2: cuts the box's last character, which
    /// is the blank that it started with, and goes on to the next box or to cmdCopyMeasure.
    void CopyBoxEnter(Control box);

    /// The Ok button of FrmCopyBox; closes the form.
    void cmdCopyMeasure();

    /// FrmCopyBox has gone away.
    void CopyBoxClosed();

    // Rests, bars, endings and signs
    void mnuRest();
    void mnuHalfRest();
    void mnuWholeRest();
    void mnuRptSign();
    void mnuRptStart();
    void mnuDoubBar();
    void mnuBegDoubBar();
    void mnuDS();
    void mnuDC();
    void mnuFine();
    void mnuCoda();
    void mnuDCcoda();
    void mnuDCfine();
    void mnuSign();
    void mnuDScoda();
    void mnuDSfine();
    void mnuRepeatEnds();
    void mnuRemarks();
    void mnuHardBrk();

private:
    // Navigation
    bool FindMeasure(int leastSteps = 0);
    void CursorToFirstNoteOr(int otherwise);
    void StandOnFirstNote();
    void ShowButtonOfNote();
    bool NextWhileEditing();
    void NextInReview();
    void OpenMeasureAtEnd();
    void StartMeasure(int head);
    void CommitInsertedMeasure();
    void CancelInsertedMeasure();
    void ReadBackTail(int from, int renumberBy);
    void WalkMeasEnd();
    int EndOf(int note) const;
    NoteRecord& Current() { return tune[tune.CurNote]; }
    NoteRecord& Head() { return tune[form.MeasHead]; }

    // StaffBox
    int PlayableStringUnderCursor() const;
    void Backspace();
    void Left();
    void Right();
    void MoveCursorBy(int dy);
    void ShowValueOf(int noteCode, int buttonOfHalfRest);
    void CursorToFilledString();
    void FretKey(char character);
    void EnterFret(char character);
    void SelectValue(int value);
    void CommitNote();
    void ChordKey(char character);
    void HandKey(char character);
    void BracketKey(char character);
    bool EnterHandMode(InputMode mode, char NoteRecord::*mark, int cursorY);
    bool ClickOnTimeSignature(double y);
    void ClickAfterLastNote();
    void ClickOnNote(double x);
    void Paint();
    void TakeValueOfNote();

    // Insertion and deletion
    void ParkTail(const char* scratchFile, int from);
    void MakeRoomAtCurNote();
    void RelayoutXPos();
    void DeleteOnlyMeasure();
    void DeleteMiddleMeasure();
    void DropLastMeasure();
    void DeleteLastMeasure();
    void DeleteOpenMeasure();

    // Copy and paste
    void PasteAtEnd();
    void PasteAfterMeasure();
    void PasteRecord(ItemReader& reader);

    // Rests, bars, endings and signs
    void EnterRest(int restCode);
    void FocusAfterLongRest();
    void ToggleBar(std::string_view code);
    void ToggleSign(std::string_view code);

    Tune& tune;
    MainForm& form;
    MeasureView& view;
    Dialogs& dialogs;
    System& system;
};

}  // namespace quillon
