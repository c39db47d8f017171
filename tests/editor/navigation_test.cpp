#include "support/editor_desk.h"

namespace quillon {
namespace {

class Navigation : public EditorDesk {};

TEST_F(Navigation, NextInAnEmptyOpenMeasureOnlyKeepsTheFocus)
{
    const std::string state = State(), table = Table();
    editor.cmdNext();
    EXPECT_EQ(State(), state);
    EXPECT_EQ(Table(), table);
    EXPECT_EQ(form.Focus, Control::StaffBox);
}

TEST_F(Navigation, TheButtonInAnEmptyOpenMeasureGivesTheFocusBackToStaffBox)
{
    const std::string state = State(), table = Table();
    editor.SetFocus(Control::cmdNext);
    form.Timer1Enabled = false;
    const unsigned before = view.StaffBox.Picture().Revision();
    editor.cmdNext();
    EXPECT_NE(view.StaffBox.Picture().Revision(), before) << "redrawn as it gets the focus";
    EXPECT_EQ(Log(), "clear\ntext 2 36 size=18 font=\"Arial\" bold=1 \" 4 \"\n"
                     "text 2 56 size=18 font=\"Arial\" bold=1 \" 4 \"\n"
                     "line 350 36 350 76 w=1\n");
    EXPECT_EQ(form.Focus, Control::StaffBox);
    EXPECT_TRUE(form.Timer1Enabled);
    EXPECT_EQ(State(), state);
    EXPECT_EQ(Table(), table);
}

TEST_F(Navigation, NextAfterAFullMeasureOpensANewOneAfterItsLastNote)
{
    Type("1\r1\r1\r1\r\r");
    EXPECT_EQ(tune.CurMeas, 2);
    EXPECT_EQ(form.MeasHead, 6);
    EXPECT_EQ(tune.CurNote, 7);
    EXPECT_EQ(RecordText(tune[6]),
              "2 999 0 0 4 4 0 0 \"\" \" \" \" \" \"\" \"\" \"\" \"\" \"\" \"\" \"\"");
    EXPECT_EQ(form.CursorX, 48);
    EXPECT_EQ(form.MeasFill, 0);
    EXPECT_EQ(form.Focus, Control::StaffBox);
    EXPECT_TRUE(form.Timer1Enabled);
    EXPECT_EQ(view.EndBarX, 350);
    EXPECT_EQ(tune.LastNote, 5) << "a head alone is not in use yet";
    EXPECT_EQ(tune.LastMeas, 1);
}

TEST_F(Navigation, ANewMeasureIsClearedAndBlinksThoughStaffBoxHadTheFocus)
{
    Type("1\r");
    form.Timer1Enabled = false;
    editor.cmdNext();
    EXPECT_EQ(form.MeasFill, 0);
    EXPECT_EQ(form.CursorX, 48);
    EXPECT_TRUE(form.Timer1Enabled);
    EXPECT_EQ(Log(), "clear\ntext 2 36 size=18 font=\"Arial\" bold=1 \" 4 \"\n"
                     "text 2 56 size=18 font=\"Arial\" bold=1 \" 4 \"\n");
}

TEST_F(Navigation, NextMayLeaveAPartlyFilledLastMeasure)
{
    Type("1\r");
    editor.cmdNext();
    EXPECT_EQ(tune.CurMeas, 2);
    EXPECT_EQ(form.MeasHead, 3);
    EXPECT_EQ(tune.CurNote, 4);
    EXPECT_TRUE(tune[3].IsHead());
}

TEST_F(Navigation, ANewMeasureTakesTheSignatureInForce)
{
    Click(5, 60);  // 3/8
    Type("1\r1\r\r");
    EXPECT_EQ(tune[4].Beats, 3);
    EXPECT_EQ(tune[4].BeatUnit, 8);
}

TEST_F(Navigation, NextInEditStateGoesToTheFirstNoteOfTheNextMeasure)
{
    ShowFullMeasures(3);
    form.EntryState = EntryState::Edit;
    Key(kKeyRight);
    Key(kKeyRight);
    editor.SetFocus(Control::cmdNext);
    editor.cmdNext();
    EXPECT_EQ(tune.CurMeas, 2);
    EXPECT_EQ(tune.CurNote, 7);
    EXPECT_EQ(form.CursorX, 48);
    EXPECT_EQ(form.Focus, Control::StaffBox);
}

TEST_F(Navigation, PreviousOnMeasure1GoesToLastMeas)
{
    ShowFullMeasures(3);
    editor.cmdPrevious();
    EXPECT_EQ(tune.CurMeas, 3);
    EXPECT_EQ(form.MeasHead, 11);
    EXPECT_EQ(form.MeasEnd, 15);
    EXPECT_EQ(tune.CurNote, 12);
    EXPECT_EQ(form.CursorX, 48);
}

TEST_F(Navigation, NextInReviewStatePastLastMeasGoesToMeasure1)
{
    ShowFullMeasures(3);
    editor.cmdNext();
    editor.cmdNext();
    EXPECT_EQ(tune.CurMeas, 3);
    editor.cmdNext();
    EXPECT_EQ(tune.CurMeas, 1);
    EXPECT_EQ(form.EntryState, EntryState::Review);
}

TEST_F(Navigation, NextPutsTheCursorOnTheLowestStringOfTheFirstNote)
{
    EmptyTable();
    AddMeasure(tune);
    AddNote(tune, kQuarter, 2, "1").Slot(4) = "2";
    Show();
    EXPECT_EQ(form.CursorY, StringY(4));
    EXPECT_EQ(tune.CurNote, 2);
}

TEST_F(Navigation, ThatStringMayBeTheFirst)
{
    EmptyTable();
    for (int measure = 1; measure <= 2; ++measure) {
        AddMeasure(tune);
        AddNote(tune, kWhole, 1, "1");
    }
    Show();
    EXPECT_EQ(form.CursorY, StringY(1));
    form.CursorY = StringY(5);
    editor.cmdPrevious();
    EXPECT_EQ(form.CursorY, StringY(1));
}

TEST_F(Navigation, NextInReviewStateOnAMeasureThatStartsWithARestLeavesCursorYAt54)
{
    EmptyTable();
    AddMeasure(tune);
    AddNote(tune, kQuarterRest);
    Show();
    EXPECT_EQ(form.CursorY, 54);
}

TEST_F(Navigation, NextInReviewStateStepsOntoARestWithCursorYAt54)
{
    EmptyTable();
    AddFullMeasures(tune, 1);
    AddMeasure(tune);
    AddNote(tune, kWholeRest);
    Show();
    EXPECT_EQ(form.CursorY, StringY(2));
    editor.cmdNext();
    EXPECT_EQ(tune.CurMeas, 2);
    EXPECT_EQ(form.CursorY, 54);
}

TEST_F(Navigation, NextAfterOkStepsOntoARestWithCursorYAt54)
{
    EmptyTable();
    AddFullMeasures(tune, 1);
    AddMeasure(tune);
    AddNote(tune, kWholeRest);
    Show();
    form.EntryState = EntryState::Edit;
    editor.mnuInsMeas();
    Type("3\r");
    editor.cmdNext();
    EXPECT_EQ(form.CursorY, StringY(2)) << "left as it was by OK";
    editor.cmdNext();
    EXPECT_EQ(tune.CurMeas, 2);
    EXPECT_EQ(form.CursorY, StringY(2));
    editor.cmdNext();
    EXPECT_EQ(tune.CurMeas, 3);
    EXPECT_EQ(form.CursorY, 54);
}

TEST_F(Navigation, NextInEditStateOnARestGoesToTheLowestString)
{
    EmptyTable();
    AddFullMeasures(tune, 1);
    AddMeasure(tune);
    AddNote(tune, kWholeRest);
    Show();
    form.EntryState = EntryState::Edit;
    editor.cmdNext();
    EXPECT_EQ(form.CursorY, StringY(6));
    EXPECT_EQ(form.EntryState, EntryState::Edit);
}

TEST_F(Navigation, NextInEditStateReachesTheUnfilledEndInAppendState)
{
    Type("1\r1\r1\r1\r\r2\r");
    editor.cmdPrevious();
    EXPECT_EQ(form.EntryState, EntryState::Edit);
    EXPECT_EQ(tune.CurMeas, 1);
    editor.SetFocus(Control::cmdNext);
    editor.cmdNext();
    EXPECT_EQ(form.Focus, Control::StaffBox);
    EXPECT_EQ(form.EntryState, EntryState::Append);
    EXPECT_EQ(tune.CurMeas, 2);
    EXPECT_EQ(tune.CurNote, 8);
    EXPECT_EQ(form.CursorX, 72);
    EXPECT_EQ(form.MeasEnd, 7);
}

// A damaged tune: another measure stands within its last one, whose end is the tune's all the same.
TEST_F(Navigation, NextInEditStateAppendsAfterTheLastRecordThoughTheMeasureIsInterrupted)
{
    EmptyTable();
    for (int measure : {2, 1, 2}) {
        AddMeasure(tune).Measure = measure;
        AddNote(tune, kQuarter, 2, "3");
    }
    tune.LastMeas = 2;
    Show();
    ASSERT_EQ(form.MeasHead, 3);
    form.EntryState = EntryState::Edit;
    editor.cmdNext();
    EXPECT_EQ(form.MeasHead, 1);
    EXPECT_EQ(form.MeasEnd, 6);
    EXPECT_EQ(tune.CurNote, 7);
}

TEST_F(Navigation, NextInEditStateOnTheFullLastMeasureOpensANewOne)
{
    ShowFullMeasures(2);
    form.EntryState = EntryState::Edit;
    editor.cmdNext();
    EXPECT_EQ(tune.CurMeas, 2);
    editor.cmdNext();
    EXPECT_EQ(form.EntryState, EntryState::Append);
    EXPECT_EQ(tune.CurMeas, 3);
    EXPECT_EQ(form.MeasHead, 11);
    EXPECT_EQ(tune.CurNote, 12);
}

TEST_F(Navigation, PreviousFromTheOpenMeasureGoesIntoEditState)
{
    Type("1\r1\r1\r1\r\r2\r\r");
    EXPECT_EQ(tune.CurMeas, 2);
    editor.cmdPrevious();
    EXPECT_EQ(tune.CurMeas, 1);
    EXPECT_EQ(form.EntryState, EntryState::Edit);
    EXPECT_EQ(tune.CurNote, 2);
}

TEST_F(Navigation, PreviousOntoTheUnfilledLastMeasureAppends)
{
    Type("1\r1\r1\r1\r\r2\r");
    editor.cmdPrevious();
    editor.cmdPrevious();  // wraps from 1 to 2
    EXPECT_EQ(tune.CurMeas, 2);
    EXPECT_EQ(form.EntryState, EntryState::Append);
    EXPECT_EQ(tune.CurNote, 8);
    EXPECT_EQ(form.CursorX, 72);
}

TEST_F(Navigation, PreviousInAnEmptyTuneDoesNothing)
{
    const std::string state = State(), table = Table();
    editor.cmdPrevious();
    EXPECT_EQ(State(), state);
    EXPECT_EQ(Table(), table);
}

TEST_F(Navigation, PreviousOnAMeasureOfAHeadAloneTakesOneStepPastIt)
{
    EmptyTable();
    AddFullMeasures(tune, 1);
    AddMeasure(tune);
    AddFullMeasures(tune, 1);
    Show();
    Goto("3");
    editor.cmdPrevious();
    EXPECT_EQ(form.MeasHead, 6);
    EXPECT_EQ(form.MeasEnd, 7);
}

TEST_F(Navigation, NextEndsTheTextModesAndPreviousNotTheHandModes)
{
    for (InputMode mode :
         {InputMode::Chord, InputMode::LeftHand, InputMode::RightHand, InputMode::Bracket}) {
        ShowFullMeasures(2);
        form.InputMode = mode;
        editor.cmdNext();
        EXPECT_EQ(form.InputMode, InputMode::Fret) << int(mode);
        form.InputMode = mode;
        editor.cmdPrevious();
        const bool stays = mode == InputMode::LeftHand || mode == InputMode::RightHand;
        EXPECT_EQ(form.InputMode, stays ? mode : InputMode::Fret) << int(mode);
    }
}

TEST_F(Navigation, MovingShowsTheValueOfTheNoteAndKeepsTheSelectedOne)
{
    EmptyTable();
    AddFullMeasures(tune, 1);
    AddMeasure(tune);
    AddNote(tune, kWhole, 1, "5");
    Show();
    editor.cmdNext();
    EXPECT_EQ(form.Toolbar1, kWhole);
    EXPECT_EQ(form.CurValue, kQuarter);
}

TEST_F(Navigation, MovingShowsNoButtonForCodesFrom12To89AndLeavesItForTheRest)
{
    for (const auto& [code, button] :
         {std::pair(1, 1), std::pair(11, 11), std::pair(12, 0), std::pair(89, 0), std::pair(90, 5),
          std::pair(0, 5), std::pair(-1, 5), std::pair(99, 5)}) {
        ShowFullMeasures(3);
        tune[7].NoteCode = code;
        form.Toolbar1 = 5;
        editor.cmdNext();
        EXPECT_EQ(form.Toolbar1, button) << code;
        editor.cmdNext();
        form.Toolbar1 = 5;
        editor.cmdPrevious();
        EXPECT_EQ(form.Toolbar1, button) << code;
    }
}

TEST_F(Navigation, PreviousGivesStaffBoxTheFocusAndAllowsRefreshAgain)
{
    ShowFullMeasures(2);
    editor.SetFocus(Control::cmdPrevious);
    form.cmdRefreshEnabled = false;
    editor.cmdPrevious();
    EXPECT_EQ(form.Focus, Control::StaffBox);
    EXPECT_TRUE(form.cmdRefreshEnabled);
}

TEST_F(Navigation, LeavingAChordInAnEmptyTuneTakesItOffTheStaff)
{
    const std::string before = Log();
    for (void (Editor::*const button)() : {&Editor::cmdNext, &Editor::cmdPrevious}) {
        editor.mnuChord();
        Type("A");
        EXPECT_NE(Log().find("\"A\""), std::string::npos);
        (editor.*button)();
        EXPECT_EQ(Log().find("\"A\""), std::string::npos);
        EXPECT_EQ(form.InputMode, InputMode::Fret);
    }
}

TEST_F(Navigation, ShowMeasureShowsItInFretModeAndLeavesTheCursor)
{
    ShowFullMeasures(3);
    form.InputMode = InputMode::Chord;
    form.CursorX = 60;
    editor.ShowMeasure(2);
    EXPECT_EQ(tune.CurMeas, 2);
    EXPECT_EQ(form.MeasHead, 6);
    EXPECT_EQ(form.MeasEnd, 10);
    EXPECT_EQ(form.InputMode, InputMode::Fret);
    EXPECT_EQ(view.lblMeasNum, "2");
    EXPECT_EQ(form.CursorX, 60);
    EXPECT_EQ(tune.CurNote, 2);
}

TEST_F(Navigation, ThatTheFormIsActiveAgainRedrawsTheMeasure)
{
    ShowFullMeasures(1);
    const std::string before = Log();
    view.StaffBox.PrintLineAt(300, 100, "stale");
    editor.Activate();
    EXPECT_EQ(Log(), before);
}

TEST_F(Navigation, AMeasureIsFoundUpToTheTablesLastRecord)
{
    EmptyTable();
    AddFullMeasures(tune, 300);
    Show();
    Goto("300");
    EXPECT_EQ(form.MeasHead, 1496);
    EXPECT_EQ(form.MeasEnd, kLastRecord);
    for (int i = 1496; i <= kLastRecord; ++i)
        tune[i].Measure = 299;
    tune[kLastRecord] = tune[1];
    tune[kLastRecord].Measure = 300;
    view.StaffBox.PrintLineAt(300, 100, "stale");
    editor.ShowMeasure(300);
    EXPECT_EQ(form.MeasHead, kLastRecord);
    EXPECT_EQ(form.MeasEnd, kLastRecord);
}

TEST_F(Navigation, NextInATuneWithoutMeasuresStartsAfresh)
{
    EmptyTable();
    Show();
    EXPECT_EQ(form.EntryState, EntryState::Append);
    EXPECT_EQ(tune.CurNote, 2);
    EXPECT_EQ(tune.LastNote, 0);
    EXPECT_EQ(tune.CurMeas, 1);
}

// A damaged tune: no record has the number of its second measure. The first one is shown
// once more, and is full, so that a fresh measure opens after its head and note.
TEST_F(Navigation, NextToAMeasureThatIsNotThereStartsAfreshAfterTheOneThatWasThere)
{
    EmptyTable();
    for (int measure = 1; measure <= 3; ++measure) {
        AddMeasure(tune);
        AddNote(tune, kQuarter, 2, "3");
    }
    Show();
    tune[3].Measure = tune[4].Measure = 7;
    editor.SetFocus(Control::cmdNext);
    form.CursorY = 0;
    editor.cmdNext();
    EXPECT_EQ(form.EntryState, EntryState::Append);
    EXPECT_EQ(tune.LastMeas, 0);
    EXPECT_EQ(tune.LastNote, 0);
    EXPECT_EQ(tune.CurMeas, 2);
    EXPECT_EQ(form.MeasHead, 3);
    EXPECT_EQ(tune.CurNote, 4);
    EXPECT_EQ(form.CursorY, StringY(2));
    EXPECT_EQ(form.Focus, Control::StaffBox);
}

TEST_F(Navigation, GotoOffersTheMeasureAndGoesToItsFirstNote)
{
    ShowFullMeasures(4);
    Goto("3");
    EXPECT_EQ(dialogs.PromptTexts.back(), "Measure Number|1");
    EXPECT_EQ(tune.CurMeas, 3);
    EXPECT_EQ(form.MeasHead, 11);
    EXPECT_EQ(tune.CurNote, 12);
    EXPECT_EQ(form.CursorX, 48);
    EXPECT_EQ(view.lblMeasNum, "3");
}

TEST_F(Navigation, GotoOutsideTheTuneOrCancelledStaysAndGoesToTheFirstNote)
{
    for (const char* answer : {"0", "-1", "5", "99", "", "abc", "1e9"}) {
        ShowFullMeasures(4);
        Goto("2");
        Key(kKeyRight);
        EXPECT_EQ(tune.CurNote, 8);
        Goto(answer);
        EXPECT_EQ(tune.CurMeas, 2) << answer;
        EXPECT_EQ(tune.CurNote, 7) << answer;
        EXPECT_EQ(form.CursorX, 48) << answer;
    }
    Key(kKeyRight);
    editor.lblMeasNum();  // cancelled
    EXPECT_EQ(tune.CurMeas, 2);
    EXPECT_EQ(tune.CurNote, 7);
}

TEST_F(Navigation, GotoWithAFractionRoundsTiesToEven)
{
    ShowFullMeasures(4);
    for (const auto& [answer, measure] : {
             std::pair{"1.5", 2},
             {"2.5", 2},
             {"2.6", 3},
             {"3.5", 4},
             {"4.5", 4},
             {"1.4", 1}
    }) {
        Goto(answer);
        EXPECT_EQ(tune.CurMeas, measure) << answer;
    }
}

TEST_F(Navigation, GotoTakesAnyNumberAbove0AndGivesStaffBoxTheFocus)
{
    ShowFullMeasures(2);
    Goto("2");
    form.Focus = Control::cmdNext;
    Goto("0.6");
    EXPECT_EQ(tune.CurMeas, 1);
    EXPECT_EQ(form.Focus, Control::StaffBox);
}

TEST_F(Navigation, GotoTestsTheRealValueBeforeItRounds)
{
    ShowFullMeasures(3);
    Goto("3.9");  // below 4, so accepted, and then rounded to a measure that is not there
    EXPECT_EQ(tune.CurMeas, 4);
    EXPECT_EQ(form.MeasHead, 1) << "a measure that is not found leaves the old one";
}

TEST_F(Navigation, GotoLeavesTheUnfilledLastMeasureInEditState)
{
    Type("1\r1\r1\r1\r\r2\r");
    Goto("2");
    EXPECT_EQ(form.EntryState, EntryState::Edit);
    EXPECT_EQ(tune.CurNote, 7);
}

TEST_F(Navigation, AppendGoesPastTheTunesEnd)
{
    ShowFullMeasures(2);
    editor.mnuAppend();
    EXPECT_EQ(form.Saved, SavedState::Unsaved);
    EXPECT_EQ(form.EntryState, EntryState::Append);
    EXPECT_EQ(tune.CurMeas, 3);
    EXPECT_EQ(form.MeasHead, 11);
    EXPECT_EQ(tune.CurNote, 12);
    EXPECT_EQ(view.lblMeasNum, "3") << "though the new measure is not redrawn";
}

TEST_F(Navigation, AppendWhileAMeasureIsInsertedLeavesItsTailParked)
{
    ShowFullMeasures(2);
    editor.mnuInsMeas();
    Type("7\r");
    editor.mnuAppend();
    EXPECT_EQ(form.InputMode, InputMode::Fret);
    EXPECT_TRUE(std::filesystem::exists("Temp.Sav"));
    EXPECT_EQ(tune.LastMeas, 1);
}

TEST_F(Navigation, TheToolbarGivesTheNoteItsValueAndARestItsRest)
{
    EmptyTable();
    AddMeasure(tune);
    AddNote(tune, kQuarter, 1, "5");
    AddNote(tune, kQuarterRest);
    Show();
    editor.Toolbar1(kEighth);
    EXPECT_EQ(tune[2].NoteCode, kEighth);
    EXPECT_EQ(form.CurValue, kEighth);
    EXPECT_EQ(form.Toolbar1, kEighth);
    EXPECT_EQ(tune[3].XPos, 48 + 18) << "redrawn";
    tune.CurNote = 3;
    for (int value = 1; value <= kNoteValues; ++value) {
        editor.Toolbar1(value);
        EXPECT_EQ(tune[3].NoteCode, RestCodeOf(value)) << value;
    }
}

TEST_F(Navigation, TheToolbarGivesAWholeNoteItsValueToo)
{
    EmptyTable();
    AddMeasure(tune);
    AddNote(tune, kWhole, 1, "5");
    Show();
    editor.Toolbar1(kHalf);
    EXPECT_EQ(tune[2].NoteCode, kHalf);
}

TEST_F(Navigation, TheToolbarLeavesAHeadAHead)
{
    ShowFullMeasures(1);
    tune.CurNote = 1;
    editor.Toolbar1(kEighth);
    EXPECT_EQ(tune[1].NoteCode, kHead);
}

TEST_F(Navigation, AToolbarValueWithoutAButtonPutsAllUp)
{
    editor.SetToolbarValue(50);
    EXPECT_EQ(form.Toolbar1, 0);
}

TEST_F(Navigation, ANewMeasurePastTheTableIsASubscriptFault)
{
    EmptyTable();
    AddFullMeasures(tune, 300);  // 1500 records
    EXPECT_EQ(tune.LastNote, kLastRecord);
    Show();
    EXPECT_FAULT(editor.mnuAppend(), SubscriptOutOfRange);
}

TEST_F(Navigation, FocusThatStaysRedrawsNothing)
{
    const unsigned before = view.StaffBox.Picture().Revision();
    editor.SetFocus(Control::StaffBox);
    EXPECT_EQ(view.StaffBox.Picture().Revision(), before);
    editor.SetFocus(Control::cmdNext);
    EXPECT_EQ(view.StaffBox.Picture().Revision(), before);
    form.Timer1Enabled = false;
    editor.SetFocus(Control::StaffBox);
    EXPECT_NE(view.StaffBox.Picture().Revision(), before);
    EXPECT_TRUE(form.Timer1Enabled);
}

}  // namespace
}  // namespace quillon
