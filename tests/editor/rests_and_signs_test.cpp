#include "store/sign_codes.h"
#include "support/editor_desk.h"

namespace quillon {
namespace {

class RestsAndSigns : public EditorDesk {};

TEST_F(RestsAndSigns, ARestTypedAsTheLastValueThatFillsAMeasureSendsTheFocusToNext)
{
    Type("1\r1\r1\r");
    editor.mnuRest();
    EXPECT_EQ(form.Focus, Control::cmdNext);
    EXPECT_EQ(tune[5].NoteCode, kQuarterRest);
    EXPECT_EQ(tune.LastNote, 5);
    EXPECT_EQ(tune.CurNote, 5);
    EXPECT_EQ(form.MeasEnd, 5);
    EXPECT_FALSE(form.Timer1Enabled);
}

TEST_F(RestsAndSigns, ARestInAnUnfilledMeasureMovesOnPastItself)
{
    editor.mnuRest();
    EXPECT_EQ(RecordText(tune[2]),
              "1 99 48 0 4 4 4 0 \"\" \" \" \" \" \"\" \"\" \"\" \"\" \"\" \"\" \"\"");
    EXPECT_EQ(tune.CurNote, 3);
    EXPECT_EQ(tune.LastNote, 2);
    EXPECT_EQ(tune.LastMeas, 1);
    EXPECT_EQ(form.CursorX, 72);
    EXPECT_EQ(form.Saved, SavedState::Unsaved);
}

TEST_F(RestsAndSigns, TheRestOfADottedQuarterIs99With12TicksSoTheMeasureStaysShort)
{
    Type(".");
    EXPECT_EQ(form.CurValue, kDottedQuarter);
    editor.mnuRest();
    EXPECT_EQ(tune[2].NoteCode, kQuarterRest);
    EXPECT_EQ(form.MeasFill, 12);
    for (int i = 0; i < 2; ++i)
        Type("1\r");
    EXPECT_EQ(form.MeasFill, 48);
    NewTune(6);
    form.CurValue = kDottedQuarter;
    Type("1\r");
    editor.mnuRest();
    Type("1\r");
    EXPECT_EQ(form.MeasFill, 48) << "18 + 12 + 18";
}

TEST_F(RestsAndSigns, TheRestOfADottedQuarterDoesNotFill38)
{
    Click(5, 60);
    ASSERT_EQ(tune[1].Beats, 3);
    Type(".");
    ASSERT_EQ(form.CurValue, kDottedQuarter);
    editor.mnuRest();
    EXPECT_EQ(tune[2].NoteCode, kQuarterRest);
    EXPECT_EQ(form.MeasCapacity, 18);
    EXPECT_EQ(form.MeasFill, 12);
    EXPECT_EQ(form.Focus, Control::StaffBox);
    EXPECT_EQ(tune.CurNote, 3);
    EXPECT_EQ(tune.LastNote, 2);
    EXPECT_EQ(form.CursorX, 72);
    EXPECT_TRUE(form.Timer1Enabled);
}

TEST_F(RestsAndSigns, EveryValueHasItsRest)
{
    for (int value = 1; value <= kNoteValues; ++value) {
        NewTune(6);
        form.CurValue = value;
        editor.mnuRest();
        EXPECT_EQ(tune[2].NoteCode, RestCodeOf(value)) << value;
        EXPECT_EQ(tune[2].Spacing, SpacingOf(RestCodeOf(value))) << value;
    }
}

TEST_F(RestsAndSigns, ARestWithoutASelectedValueLeavesTheCode)
{
    form.CurValue = 0;
    editor.mnuRest();
    EXPECT_EQ(tune[2].NoteCode, 0);
    EXPECT_EQ(tune[2].Measure, 1);
}

TEST_F(RestsAndSigns, TheRestButtonGivesStaffBoxTheFocusEvenWhenTheMeasureIsFull)
{
    Type("1\r1\r1\r");
    editor.SetFocus(Control::cmdRest);
    editor.cmdRest();
    EXPECT_EQ(form.Focus, Control::StaffBox);
    EXPECT_EQ(tune[5].NoteCode, kQuarterRest);
}

TEST_F(RestsAndSigns, HalfAndWholeRestsHaveTheirOwnValueWhateverIsSelected)
{
    form.CurValue = kSixteenth;
    editor.mnuHalfRest();
    EXPECT_EQ(tune[2].NoteCode, kHalfRest);
    EXPECT_EQ(tune[2].Spacing, 8);
    EXPECT_EQ(form.Focus, Control::StaffBox);
    editor.mnuHalfRest();
    EXPECT_EQ(form.Focus, Control::cmdNext);
    NewTune(6);
    editor.mnuWholeRest();
    EXPECT_EQ(tune[2].NoteCode, kWholeRest);
    EXPECT_EQ(tune[2].Spacing, 16);
    EXPECT_EQ(form.Focus, Control::cmdNext);
}

TEST_F(RestsAndSigns, HalfAndWholeRestsSendTheFocusToNextWhenTheMeasureIsFullAndElseToStaffBox)
{
    ShowFullMeasures(1);
    editor.mnuWholeRest();
    EXPECT_EQ(form.Focus, Control::cmdNext);
    NewTune(6);
    form.Focus = Control::cmdRest;
    editor.mnuHalfRest();
    EXPECT_EQ(form.Focus, Control::StaffBox);
}

TEST_F(RestsAndSigns, ARestOverANoteOfABeamTakesItOutAndMovesOnToTheNextNotesString)
{
    EmptyTable();
    AddMeasure(tune);
    for (int string : {2, 3, 4, 5, 1})
        AddNote(tune, kEighth, string, "10-2");
    Show();
    Key(kKeyRight);
    ASSERT_NE(tune[3].BeamCode, kNoBeam);
    ASSERT_EQ(tune[3].Spacing, 5);
    form.Saved = SavedState::Saved;
    editor.mnuRest();
    EXPECT_EQ(tune[3].BeamCode, kNoBeam);
    EXPECT_EQ(tune[3].Spacing, SpacingOf(kQuarterRest));
    EXPECT_EQ(tune.CurNote, 4);
    EXPECT_EQ(form.CursorY, StringY(4));
    EXPECT_EQ(form.EntryState, EntryState::Review);
    editor.mnuRest();
    EXPECT_EQ(tune.CurNote, 5);
    EXPECT_EQ(form.EntryState, EntryState::Review) << "two before the last are not one";
}

TEST_F(RestsAndSigns, ARestBeforeAHeadThatEndsTheTuneGoesToTheHead)
{
    EmptyTable();
    AddFullMeasures(tune, 1);
    AddMeasure(tune);
    Show();
    for (int i = 0; i < 3; ++i)
        Key(kKeyRight);
    ASSERT_EQ(tune.CurNote, 5);
    editor.mnuRest();
    EXPECT_EQ(tune.CurNote, 6);
    EXPECT_EQ(form.CursorX, 144);
    EXPECT_EQ(form.EntryState, EntryState::Append);
}

TEST_F(RestsAndSigns, ARestThatOverwritesANoteClearsItsStringsAndKeepsChordAndHands)
{
    ShowFullMeasures(2);
    NoteRecord& note = tune[2];
    note.ChordText = "Am";
    note.LeftHand = '1';
    note.RightHand = 'p';
    editor.mnuRest();
    EXPECT_EQ(note.NoteCode, kQuarterRest);
    EXPECT_EQ(note.HighestFilledSlot(), 0);
    EXPECT_EQ(note.ChordText, "Am");
    EXPECT_EQ(note.LeftHand, '1');
    EXPECT_EQ(note.RightHand, 'p');
    EXPECT_EQ(tune.CurNote, 3) << "moved on by one";
    EXPECT_EQ(form.CursorX, 72);
    EXPECT_EQ(form.CursorY, StringY(2));
    EXPECT_EQ(form.EntryState, EntryState::Review);
    EXPECT_EQ(tune.LastNote, 10);
}

TEST_F(RestsAndSigns, ARestOnTheLastNoteButOneGoesToTheLastAndAppends)
{
    ShowFullMeasures(1);
    Key(kKeyRight);
    Key(kKeyRight);
    EXPECT_EQ(tune.CurNote, 4);
    editor.mnuRest();
    EXPECT_EQ(tune.CurNote, 5);
    EXPECT_EQ(form.CursorX, tune[4].XPos + 24);
    EXPECT_EQ(form.EntryState, EntryState::Append);
}

TEST_F(RestsAndSigns, ARestOnTheMeasuresLastNoteStays)
{
    ShowFullMeasures(2);
    for (int i = 0; i < 3; ++i)
        Key(kKeyRight);
    editor.mnuRest();
    EXPECT_EQ(tune.CurNote, 5);
    EXPECT_EQ(form.EntryState, EntryState::Review);
}

TEST_F(RestsAndSigns, DoubBarOnAMeasureWith99RemovesTheRepeatAndASecondOneSets94)
{
    ShowFullMeasures(2);
    editor.mnuRptSign();
    EXPECT_EQ(tune[1].BarCode, kRepeatEnd);
    editor.mnuDoubBar();
    EXPECT_EQ(tune[1].BarCode, "");
    editor.mnuDoubBar();
    EXPECT_EQ(tune[1].BarCode, kDoubleBar);
    EXPECT_EQ(form.Saved, SavedState::Unsaved);
}

TEST_F(RestsAndSigns, BarsAreDrawnAtOnceWithoutARedraw)
{
    ShowFullMeasures(2);  // the bar is at 144
    const std::string plain = Log();
    editor.mnuDoubBar();
    EXPECT_EQ(Drawn(plain), "line 144 36 144 76 w=3\nline 141 36 141 76 w=1\n");
    editor.mnuDoubBar();
    EXPECT_EQ(Log(), plain);
    editor.mnuBegDoubBar();
    EXPECT_EQ(Drawn(plain), "line 23 36 23 76 w=3\nline 27 36 27 76 w=1\nline 144 36 144 76 w=1\n");
    editor.mnuBegDoubBar();
    editor.mnuRptStart();
    EXPECT_EQ(Drawn(plain), "line 23 36 23 76 w=3\nline 27 36 27 76 w=1\n"
                            "circle 32 47 2 w=1 fill=solid\ncircle 32 67 2 w=1 fill=solid\n");
    EXPECT_EQ(tune[1].BarCode, kRepeatStart);
    editor.mnuRptStart();
    editor.mnuRptSign();
    EXPECT_EQ(Drawn(plain), "line 144 36 144 76 w=3\nline 141 36 141 76 w=1\n"
                            "circle 137 47 2 w=1 fill=solid\ncircle 137 67 2 w=1 fill=solid\n");
}

TEST_F(RestsAndSigns, TheCaretIsTakenOffThoughABarSignWasDrawnMeanwhile)
{
    ShowFullMeasures(2);
    editor.Timer1();
    EXPECT_NE(Log().find("mode=xor"), std::string::npos);
    editor.mnuRptStart();  // its dots are the first that fill the surface solid
    editor.HideCaret();
    EXPECT_EQ(Log().find("mode=xor"), std::string::npos);
    EXPECT_EQ(form.CaretOn, 0);
}

TEST_F(RestsAndSigns, DcOnAMeasureWithTheSignReplacesIt)
{
    ShowFullMeasures(2);
    editor.mnuSign();
    EXPECT_EQ(tune[1].Slot(1), kSign);
    editor.mnuDC();
    EXPECT_EQ(tune[1].Slot(1), kDc);
    editor.mnuDC();
    EXPECT_EQ(tune[1].Slot(1), "");
    EXPECT_EQ(form.Saved, SavedState::Unsaved);
}

TEST_F(RestsAndSigns, EverySignTogglesItsOwnCode)
{
    const std::pair<void (Editor::*)(), std::string_view> commands[] = {
        {&Editor::mnuDS,     kDs      },
        {&Editor::mnuDC,     kDc      },
        {&Editor::mnuFine,   kFine    },
        {&Editor::mnuCoda,   kCoda    },
        {&Editor::mnuDCcoda, kDcAlCoda},
        {&Editor::mnuDCfine, kDcAlFine},
        {&Editor::mnuSign,   kSign    },
        {&Editor::mnuDScoda, kDsAlCoda},
        {&Editor::mnuDSfine, kDsAlFine},
    };
    ShowFullMeasures(2);
    const std::string plain = Log();
    for (const auto& [command, code] : commands) {
        (editor.*command)();
        EXPECT_EQ(tune[1].Slot(1), code);
        EXPECT_EQ(Drawn(plain).substr(0, 5), "text ") << code;
        (editor.*command)();
        EXPECT_EQ(tune[1].Slot(1), "");
        EXPECT_EQ(Log(), plain) << code;
    }
}

TEST_F(RestsAndSigns, CodaAndSignAreDrawnOverTheOldSignUntilARedraw)
{
    ShowFullMeasures(2);
    editor.mnuDC();
    const std::string withDc = Log();
    editor.mnuCoda();
    EXPECT_EQ(Drawn(withDc), "text 12 12 size=10 font=\"Tab\" bold=1 \"@\"\n");
    EXPECT_EQ(view.StaffBox.Font.Name, "Arial");
    editor.mnuDC();
    EXPECT_EQ(Log(), withDc) << "D.C. redraws";
}

TEST_F(RestsAndSigns, ASignOnAnEmptyOpenMeasureStaysInItsHead)
{
    editor.mnuFine();
    EXPECT_EQ(tune[1].Slot(1), kFine);
    Type("1\r");
    EXPECT_EQ(tune[1].Slot(1), kFine);
}

TEST_F(RestsAndSigns, ARepeatBracketIsTypedInItsBoxAndEnterStoresIt)
{
    ShowFullMeasures(2);
    const std::string plain = Log();
    editor.mnuRepeatEnds();
    EXPECT_EQ(form.InputMode, InputMode::Bracket);
    EXPECT_EQ(form.Focus, Control::txtRptBracket);
    EXPECT_TRUE(form.txtRptBracket.Visible && form.txtRptBracket.Enabled);
    EXPECT_EQ(form.txtRptBracket.Text, "");
    EXPECT_EQ(Drawn(plain), "line 6 30 6 6 w=1\nline 6 6 144 6 w=1\n");
    form.txtRptBracket.Text = "1.";
    editor.txtRptBracketEnter();
    EXPECT_EQ(tune[1].Slot(2), "1.");
    EXPECT_FALSE(form.txtRptBracket.Visible || form.txtRptBracket.Enabled);
    EXPECT_EQ(form.Focus, Control::StaffBox);
    EXPECT_EQ(form.InputMode, InputMode::Fret);
    editor.mnuRepeatEnds();
    EXPECT_EQ(tune[1].Slot(2), "");
    EXPECT_EQ(form.InputMode, InputMode::Fret);
    EXPECT_EQ(Log(), plain);
}

TEST_F(RestsAndSigns, TheBracketsBoxOpensEmptyWhateverItHeldBefore)
{
    ShowFullMeasures(1);
    tune[1].Slot(3) = "Slowly";
    form.txtRptBracket.Text = "7.";
    editor.mnuRepeatEnds();
    EXPECT_EQ(form.txtRptBracket.Text, "");
    EXPECT_EQ(form.Saved, SavedState::Unsaved);
}

TEST_F(RestsAndSigns, ARemarkGivesStaffBoxTheFocus)
{
    form.Focus = Control::cmdNext;
    editor.mnuRemarks();
    EXPECT_EQ(form.Focus, Control::StaffBox);
}

TEST_F(RestsAndSigns, ACancelledRemarkWipesTheRemark)
{
    ShowFullMeasures(2);
    const std::string plain = Log();
    dialogs.Prompts.push_back("Slowly");
    editor.mnuRemarks();
    EXPECT_EQ(dialogs.PromptTexts.back(), "Remarks: |");
    EXPECT_EQ(tune[1].Slot(3), "Slowly");
    EXPECT_EQ(Drawn(plain), "text 48 4 size=10 font=\"Arial\" bold=1 \"Slowly\"\n");
    editor.mnuRemarks();
    EXPECT_EQ(dialogs.PromptTexts.back(), "Remarks: |Slowly");
    EXPECT_EQ(tune[1].Slot(3), "");
    EXPECT_EQ(form.Saved, SavedState::Saved) << "left alone";
}

TEST_F(RestsAndSigns, AHardLineBreakTogglesAndLeavesSavedAlone)
{
    ShowFullMeasures(2);
    editor.mnuHardBrk();
    EXPECT_EQ(tune[1].Slot(6), "NL");
    EXPECT_EQ(view.hdbkbox, "Line Break");
    editor.mnuHardBrk();
    EXPECT_EQ(tune[1].Slot(6), "");
    EXPECT_EQ(view.hdbkbox, "");
    EXPECT_EQ(form.Saved, SavedState::Saved);
}

}  // namespace
}  // namespace quillon
