#include "support/editor_desk.h"

namespace quillon {
namespace {

class StaffInput : public EditorDesk {
protected:
    /// Measure 2 of three: record 6, and no notes.
    void ShowAHeadAloneInTheMiddle()
    {
        EmptyTable();
        AddFullMeasures(tune, 1);
        AddMeasure(tune);
        AddFullMeasures(tune, 1);
        Show();
        Goto("2");
    }
};

TEST_F(StaffInput, TwoDigitsOnOneStringMakeOneTextAndMoveTheCursorBy12)
{
    Type("12");
    EXPECT_EQ(tune[2].Slot(6), "12");
    EXPECT_EQ(form.CursorX, 60);
    EXPECT_EQ(tune[2].NoteCode, kQuarter);
    EXPECT_EQ(tune[2].Measure, 1);
    EXPECT_EQ(tune[2].XPos, 48);
    EXPECT_EQ(form.MeasEnd, 2);
    EXPECT_EQ(tune.LastNote, 2);
    EXPECT_EQ(tune.LastMeas, 0) << "Enter commits";
    EXPECT_EQ(form.Saved, SavedState::Unsaved);
    Type("\r");
    EXPECT_EQ(tune[2].Spacing, 4);
    EXPECT_EQ(tune.LastMeas, 1);
    EXPECT_EQ(form.CursorX, 72);
    EXPECT_EQ(tune.CurNote, 3);
}

TEST_F(StaffInput, AFretMakesTheRecordANoteBeforeEnter)
{
    form.Timer1Enabled = false;
    Type("5");
    EXPECT_EQ(RecordText(tune[2]),
              "1 7 48 0 4 4 0 0 \"\" \" \" \" \" \"\" \"\" \"\" \"\" \"\" \"\" \"5\"");
    EXPECT_TRUE(form.Timer1Enabled);
}

TEST_F(StaffInput, EnterTakesAFreeRecordThatHoldsATextIntoTheMeasure)
{
    tune[2].Slot(6) = "5";
    Type("\r");
    EXPECT_EQ(RecordText(tune[2]),
              "1 7 48 0 4 4 4 0 \"\" \" \" \" \" \"\" \"\" \"\" \"\" \"\" \"\" \"5\"");
    EXPECT_EQ(form.MeasEnd, 2);
    EXPECT_EQ(tune.LastNote, 2);
    EXPECT_EQ(tune.LastMeas, 1);
    EXPECT_EQ(tune.CurNote, 3);
}

TEST_F(StaffInput, TheStaffsTextPlaceIsAtTheCursorAfterEachKeyPress)
{
    ShowFullMeasures(1);
    Key(kKeyRight);
    Type("+");
    EXPECT_EQ(view.StaffBox.CurrentX, 72);
    EXPECT_EQ(view.StaffBox.CurrentY, StringY(2));
    editor.mnuRHEdit();
    EXPECT_EQ(view.StaffBox.CurrentX, 78);
    EXPECT_EQ(view.StaffBox.CurrentY, 104);
}

TEST_F(StaffInput, AQuarterOfFourCharactersGetsSpacing5)
{
    Type("10-2\r");
    EXPECT_EQ(tune[2].Slot(6), "10-2");
    EXPECT_EQ(tune[2].Spacing, 5);
    EXPECT_EQ(form.CursorX, 78);
}

TEST_F(StaffInput, TwoStringsAtOnePositionMakeAChordInOneRecord)
{
    Type("3");
    Key(kKeyUp);
    EXPECT_EQ(form.CursorX, 48);
    EXPECT_EQ(form.CursorY, StringY(5));
    Type("2\r");
    EXPECT_EQ(tune[2].Slot(6), "3");
    EXPECT_EQ(tune[2].Slot(5), "2");
    EXPECT_EQ(tune.CurNote, 3);
    EXPECT_EQ(tune.LastNote, 2);
}

TEST_F(StaffInput, AChordIsMadeDownwardsAsWell)
{
    Key(kKeyUp);
    Type("2");
    Key(kKeyDown);
    EXPECT_EQ(form.CursorX, 48);
    EXPECT_EQ(form.CursorY, StringY(6));
    Type("3");
    Key(kKeyDown);  // wraps to the first string
    Type("0\r");
    EXPECT_EQ(RecordText(tune[2]),
              "1 7 48 0 4 4 4 0 \"\" \" \" \" \" \"\" \"0\" \"\" \"\" \"\" \"2\" \"3\"");
    EXPECT_EQ(tune.CurNote, 3);
    EXPECT_EQ(tune.LastNote, 2);
}

TEST_F(StaffInput, SixteenthsAreBeamedAsTheyAreEntered)
{
    const auto beams = [&] {
        std::vector<int> codes;
        for (int i = 2; i <= tune.LastNote; ++i)
            codes.push_back(tune[i].BeamCode);
        return codes;
    };
    editor.Toolbar1(kSixteenth);
    Type("1\r");
    EXPECT_EQ(beams(), (std::vector{1}));
    Type("1\r");
    EXPECT_EQ(beams(), (std::vector{0, 2}));
    Type("1\r");
    EXPECT_EQ(beams(), (std::vector{0, 2, 2}));
    Type("1\r");
    EXPECT_EQ(beams(), (std::vector{0, 2, 2, 2}));
    Type("1\r");
    EXPECT_EQ(beams(), (std::vector{0, 2, 2, 2, 1})) << "another beat";
}

TEST_F(StaffInput, EnterInAnEmptyPositionLeavesEverythingAsItWas)
{
    form.Saved = SavedState::Unsaved;
    const std::string state = State(), table = Table(), log = Log();
    Type("\r");
    EXPECT_EQ(State(), state);
    EXPECT_EQ(Table(), table);
    EXPECT_EQ(Log(), log);
}

TEST_F(StaffInput, ANoteThatFillsTheMeasureExactlyGivesNextTheFocus)
{
    Type("1\r1\r1\r");
    EXPECT_EQ(form.Focus, Control::StaffBox);
    Type("1\r");
    EXPECT_EQ(form.Focus, Control::cmdNext);
    EXPECT_FALSE(form.Timer1Enabled);
    EXPECT_EQ(tune.CurNote, 5);
    EXPECT_EQ(tune.LastNote, 5);
}

TEST_F(StaffInput, AMeasureOverfilledByALastLongNoteCountsAsFullToo)
{
    Type("1\r1\r1\r");
    editor.Toolbar1(kWhole);
    Type("1\r");
    EXPECT_EQ(form.MeasFill, 84);
    EXPECT_EQ(form.Focus, Control::cmdNext);
    EXPECT_EQ(tune.CurNote, 5);
}

TEST_F(StaffInput, BackspaceOnTheOnlyNoteBringsTheCursorTo48AndAllowsASignatureClickAgain)
{
    Type("3\r");
    Click(5, 60);
    EXPECT_EQ(form.CurBeatUnit, 4) << "not with a note in the measure";
    Click(200, 60);
    EXPECT_EQ(tune.CurNote, 3);
    Type("\b");
    EXPECT_EQ(form.CursorX, 48);
    EXPECT_EQ(tune.CurNote, 2);
    EXPECT_EQ(form.MeasEnd, 0);
    EXPECT_EQ(tune.LastNote, 1);
    EXPECT_TRUE(tune[2].IsClear());
    Click(5, 60);
    EXPECT_EQ(form.CurBeatUnit, 8);
    EXPECT_EQ(form.CurBeats, 3);
    EXPECT_EQ(tune[1].BeatUnit, 8);
}

TEST_F(StaffInput, BackspaceStepsBackOverOneNote)
{
    Type("1\r2\r");
    Type("\b");
    EXPECT_EQ(tune.CurNote, 3);
    EXPECT_EQ(tune.LastNote, 2);
    EXPECT_EQ(form.MeasEnd, 2);
    EXPECT_EQ(form.CursorX, 72);
    EXPECT_TRUE(tune[3].IsClear());
    EXPECT_EQ(tune[2].Slot(6), "1");
}

TEST_F(StaffInput, TheKeyBackspaceRedrawsAndMarksTheTuneAsUnsaved)
{
    Type("1\r2\r");
    form.Saved = SavedState::Saved;
    Key(kKeyBackspace);
    EXPECT_EQ(form.Saved, SavedState::Unsaved);
    const std::string log = Log();
    EXPECT_EQ(log.find("\"2\""), std::string::npos);
    editor.Activate();
    EXPECT_EQ(Log(), log);
}

TEST_F(StaffInput, TheKeyBackspaceInAnEmptyOpenMeasureChangesNothing)
{
    const std::string state = State(), table = Table();
    Key(kKeyBackspace);
    EXPECT_EQ(State(), state);
    EXPECT_EQ(Table(), table);
}

TEST_F(StaffInput, BackspaceDropsATypedTextWithoutSteppingBack)
{
    Type("1\r2");
    Type("\b");
    EXPECT_EQ(tune.CurNote, 3);
    EXPECT_TRUE(tune[3].IsClear());
    EXPECT_EQ(tune.LastNote, 3) << "stays";
    EXPECT_EQ(form.CursorX, 72);
    EXPECT_EQ(form.MeasEnd, 2);
}

TEST_F(StaffInput, BackspaceDoesNothingInEditStateAndEmptiesTheStringInReviewState)
{
    ShowFullMeasures(1);
    tune.CurNote = 3;
    form.CursorX = 90;
    form.EntryState = EntryState::Edit;
    const std::string table = Table();
    Key(kKeyBackspace);
    EXPECT_EQ(Table(), table);
    EXPECT_EQ(form.Saved, SavedState::Saved);
    form.EntryState = EntryState::Review;
    Key(kKeyBackspace);
    EXPECT_EQ(tune[3].Slot(2), "");
    EXPECT_EQ(form.CursorX, 72);
    EXPECT_EQ(form.Saved, SavedState::Unsaved);
}

TEST_F(StaffInput, RetypingInReviewStateReplacesTheTextOnlyWhileTheCursorIsOnTheNote)
{
    ShowFullMeasures(1);
    Type("5");
    EXPECT_EQ(tune[2].Slot(2), "5");
    Type("7");
    EXPECT_EQ(tune[2].Slot(2), "57");
    Type("\r");
    EXPECT_EQ(form.CursorX, 48) << "Enter goes back to the note";
    EXPECT_EQ(tune.CurNote, 2);
    Type("3");
    EXPECT_EQ(tune[2].Slot(2), "3");
}

TEST_F(StaffInput, ALeftHandLetterLeavesTheCursor6PastTheNoteSoAFretIsAppended)
{
    ShowFullMeasures(1);
    editor.mnuLHEdit();
    EXPECT_EQ(form.InputMode, InputMode::LeftHand);
    EXPECT_EQ(form.CursorX, 54);
    EXPECT_EQ(form.CursorY, 68 + 48);
    Type("2");
    EXPECT_EQ(tune[2].LeftHand, '2');
    EXPECT_EQ(form.InputMode, InputMode::Fret);
    EXPECT_EQ(form.CursorX, 54);
    EXPECT_EQ(form.CursorY, StringY(2));
    Type("5");
    EXPECT_EQ(tune[2].Slot(2), "15");
}

TEST_F(StaffInput, HandLettersArePrintedAtOnce)
{
    ShowFullMeasures(1);
    editor.mnuLHEdit();
    std::string before = Log();
    Type("2");
    EXPECT_EQ(Drawn(before), "text 54 108 size=10 font=\"Arial\" bold=1 \"2\"\n");
    form.CursorX = 48;
    editor.mnuRHEdit();
    EXPECT_EQ(form.CursorY, 44 + 60);
    before = Log();
    Type("p");
    EXPECT_EQ(Drawn(before), "text 54 88 size=10 font=\"Arial\" bold=1 \"p\"\n");
    EXPECT_EQ(tune[2].RightHand, 'p');
}

TEST_F(StaffInput, EnterAndBackspaceEndTheHandModesWithABlank)
{
    ShowFullMeasures(1);
    form.EntryState = EntryState::Edit;
    for (const char* key : {"\r", "\b"}) {
        tune[2].LeftHand = 'x';
        editor.mnuLHEdit();
        Type(key);
        EXPECT_EQ(tune[2].LeftHand, ' ');
        EXPECT_EQ(form.InputMode, InputMode::Fret);
        EXPECT_EQ(form.CursorY, StringY(2));
        form.CursorX = 48;
    }
}

// The key goes to the string under the cursor first, and in the row of the letters there is none.
TEST_F(StaffInput, BackspaceInAHandModeInReviewStateIsASubscriptFault)
{
    ShowFullMeasures(1);
    editor.mnuRHEdit();
    EXPECT_FAULT(Type("\b"), SubscriptOutOfRange);
}

TEST_F(StaffInput, OtherControlCharactersAreDroppedByTheHandModes)
{
    ShowFullMeasures(1);
    editor.mnuLHEdit();
    Type("\x1b\t");
    EXPECT_EQ(form.InputMode, InputMode::LeftHand);
    Type("\xE9");
    EXPECT_EQ(tune[2].LeftHand, '\xE9');
}

TEST_F(StaffInput, ABlankIsALetterForAHandAndDelIsNone)
{
    ShowFullMeasures(1);
    tune[2].LeftHand = 'x';
    editor.mnuLHEdit();
    Type("\x1f\x7f");
    EXPECT_EQ(form.InputMode, InputMode::LeftHand);
    Type(" ");
    EXPECT_EQ(form.InputMode, InputMode::Fret);
    EXPECT_EQ(tune[2].LeftHand, ' ');
}

TEST_F(StaffInput, AskingForAHandsLetterMarksTheTuneAsUnsavedAndMovesTheNoteToTheCursor)
{
    for (void (Editor::*const command)() : {&Editor::mnuLHEdit, &Editor::mnuRHEdit}) {
        ShowFullMeasures(1);
        form.CursorX = 60;
        (editor.*command)();
        EXPECT_EQ(form.Saved, SavedState::Unsaved);
        EXPECT_EQ(tune[2].XPos, 60);
        EXPECT_EQ(form.CursorX, 66);
    }
}

TEST_F(StaffInput, FretCharactersAreTheseAndNoOthers)
{
    Type("0123456789-><xX^/()=");
    EXPECT_EQ(tune[2].Slot(6), "0123456789-><xX^/()=");
    NewTune(6);
    Type("abcyz,;:!\"#$%&'?@[]{}|~_ \x1b\t\xE9");
    EXPECT_TRUE(tune[2].IsClear());
}

TEST_F(StaffInput, AFretIsPrintedAtOnce)
{
    const std::string before = Log();
    Type("12");
    EXPECT_EQ(Drawn(before), "text 48 70 size=10 font=\"Arial\" bold=1 \"1\"\n"
                             "text 54 70 size=10 font=\"Arial\" bold=1 \"2\"\n");
}

TEST_F(StaffInput, AFretOffTheStringsGoesToTheLowest)
{
    form.CursorY = 84;
    Type("1");
    EXPECT_EQ(tune[2].Slot(6), "1");
    NewTune(4);
    form.CursorY = 18;
    Type("2");
    EXPECT_EQ(tune[2].Slot(4), "2");
}

TEST_F(StaffInput, TheStringUnderTheCursorRoundsTiesToEven)
{
    form.CursorY = 54;  // 3.25
    Type("1");
    EXPECT_EQ(tune[2].Slot(3), "1");
    NewTune(6);
    form.CursorY = 48;  // 2.5
    Type("1");
    EXPECT_EQ(tune[2].Slot(2), "1");
    NewTune(6);
    form.CursorY = 56;  // 3.5
    Type("1");
    EXPECT_EQ(tune[2].Slot(4), "1");
}

TEST_F(StaffInput, ValueKeysStepDotAndMakeTriplets)
{
    const struct {
        int value;
        int plus;
        int dot;
        int triplet;
    } rows[] = {
        {kTripletSixteenth, kSixteenth, kDottedEighth,  kTripletSixteenth},
        {kSixteenth,        kEighth,    kDottedEighth,  kTripletSixteenth},
        {kTripletEighth,    kEighth,    kDottedEighth,  kTripletEighth   },
        {kEighth,           kQuarter,   kDottedEighth,  kTripletEighth   },
        {kDottedEighth,     kQuarter,   kDottedEighth,  kTripletEighth   },
        {kTripletQuarter,   kQuarter,   kDottedQuarter, kTripletQuarter  },
        {kQuarter,          kSixteenth, kDottedQuarter, kTripletQuarter  },
        {kDottedQuarter,    kSixteenth, kDottedQuarter, kTripletQuarter  },
        {kHalf,             kQuarter,   kDottedQuarter, kHalf            },
        {kDottedHalf,       kQuarter,   kDottedQuarter, kDottedHalf      },
        {kWhole,            kQuarter,   kDottedQuarter, kWhole           },
    };
    for (const auto& row : rows) {
        const std::pair<const char*, int> keys[] = {
            {"+", row.plus   },
            {".", row.dot    },
            {"*", row.triplet}
        };
        for (const auto& [key, result] : keys) {
            form.CurValue = row.value;
            form.Toolbar1 = row.value;
            Type(key);
            EXPECT_EQ(form.CurValue, result) << key << " at " << row.value;
            EXPECT_EQ(form.Toolbar1, result) << key << " at " << row.value;
        }
    }
    EXPECT_TRUE(tune[2].IsClear()) << "the record takes the value at Enter";
}

TEST_F(StaffInput, TheTripletKeyOnALongValueDoesNothingAtAll)
{
    form.CurValue = kHalf;
    form.Toolbar1 = kTripletEighth;
    Type("*");
    EXPECT_EQ(form.Toolbar1, kTripletEighth);
}

TEST_F(StaffInput, ANoteTakesTheValueSelectedAtEnter)
{
    Type("1+\r");
    EXPECT_EQ(tune[2].NoteCode, kSixteenth);
    EXPECT_EQ(tune[2].Spacing, 2);
}

TEST_F(StaffInput, UpAndDownWrapAndGoToTheNote)
{
    NewTune(5);
    Key(kKeyDown);
    EXPECT_EQ(form.CursorY, StringY(1));
    Key(kKeyUp);
    EXPECT_EQ(form.CursorY, StringY(5));
    Type("1");
    EXPECT_EQ(form.CursorX, 54);
    Key(kKeyDown);
    EXPECT_EQ(form.CursorX, 48);
    EXPECT_EQ(form.Saved, SavedState::Unsaved);
}

TEST_F(StaffInput, UpAndDownGoThroughEveryString)
{
    for (int string : {5, 4, 3, 2, 1, 6}) {
        Key(kKeyUp);
        EXPECT_EQ(form.CursorY, StringY(string));
    }
    for (int string : {1, 2, 3, 4, 5, 6, 1}) {
        Key(kKeyDown);
        EXPECT_EQ(form.CursorY, StringY(string));
    }
}

TEST_F(StaffInput, DeleteEmptiesTheStringInFretModeAlone)
{
    ShowFullMeasures(1);
    form.InputMode = InputMode::LeftHand;
    Key(kKeyDelete);
    EXPECT_EQ(tune[2].Slot(2), "1");
    form.InputMode = InputMode::Fret;
    Key(kKeyDelete);
    EXPECT_EQ(tune[2].Slot(2), "");
    EXPECT_EQ(form.Saved, SavedState::Unsaved);
}

TEST_F(StaffInput, DeleteWithTheCursorWhereDelMeasLeavesItIsASubscriptFault)
{
    ShowFullMeasures(1);
    editor.mnuDelMeas();
    EXPECT_EQ(form.CursorY, 84);
    EXPECT_FAULT(Key(kKeyDelete), SubscriptOutOfRange);
}

TEST_F(StaffInput, BackspaceOnNoStringInReviewStateIsASubscriptFault)
{
    ShowFullMeasures(1);
    form.CursorY = 84;
    EXPECT_FAULT(Key(kKeyBackspace), SubscriptOutOfRange);
}

TEST_F(StaffInput, LeftShowsTheButtonOfTheNoteButOfAHalfRestButton8)
{
    EmptyTable();
    AddMeasure(tune);
    for (int code :
         {kHalfRest, kWholeRest, kTripletSixteenthRest, kSixteenthRest, kTripletEighthRest,
          kEighthRest, kTripletQuarterRest, kQuarterRest, kDottedEighth, kQuarter})
        AddNote(tune, code, IsNoteValue(code) ? 3 : 0, "1");
    Show();
    form.CurValue = kSixteenth;
    tune.CurNote = 11;
    for (int button : {kDottedEighth, kQuarter, kTripletQuarter, kEighth, kTripletEighth,
                       kSixteenth, kTripletSixteenth, kWhole, kDottedQuarter}) {
        Key(kKeyLeft);
        EXPECT_EQ(form.Toolbar1, button);
    }
    EXPECT_EQ(tune.CurNote, 2);
    const std::string state = State();
    Key(kKeyLeft);
    EXPECT_EQ(State(), state) << "nothing at the first note";
    EXPECT_EQ(form.CurValue, kSixteenth) << "only the buttons follow";
}

TEST_F(StaffInput, LeftAndRightGoToTheStringOfTheNote)
{
    EmptyTable();
    AddMeasure(tune);
    for (int string : {3, 5, 1})
        AddNote(tune, kQuarter, string, "1");
    Show();
    for (int string : {5, 1}) {
        Key(kKeyRight);
        EXPECT_EQ(form.CursorY, StringY(string));
    }
    for (int string : {5, 3}) {
        Key(kKeyLeft);
        EXPECT_EQ(form.CursorY, StringY(string));
    }
}

TEST_F(StaffInput, LeftAndRightShowNoButtonForCodesFrom12To89AndLeaveItForTheRest)
{
    for (const auto& [code, button] :
         {std::pair(12, 0), std::pair(89, 0), std::pair(90, 5), std::pair(91, 5)}) {
        ShowFullMeasures(1);
        tune[3].NoteCode = code;
        form.Toolbar1 = 5;
        Key(kKeyRight);
        EXPECT_EQ(form.Toolbar1, button) << code;
        Key(kKeyRight);
        form.Toolbar1 = 5;
        Key(kKeyLeft);
        EXPECT_EQ(form.Toolbar1, button) << code;
    }
}

TEST_F(StaffInput, RightOnTheMeasuresLastNoteDoesNothingInReviewStateAndGoesBackToItInEditState)
{
    ShowFullMeasures(2);
    for (int i = 0; i < 3; ++i)
        Key(kKeyRight);
    Type("57");
    ASSERT_EQ(form.CursorX, 132);
    const std::string state = State();
    Key(kKeyRight);
    EXPECT_EQ(State(), state);
    form.EntryState = EntryState::Edit;
    Key(kKeyRight);
    EXPECT_EQ(tune.CurNote, 5);
    EXPECT_EQ(form.CursorX, 120);
}

TEST_F(StaffInput, RightShowsButton9OfAHalfRest)
{
    EmptyTable();
    AddMeasure(tune);
    AddNote(tune, kQuarter, 4, "1");
    AddNote(tune, kHalfRest);
    AddNote(tune, kWholeRest);
    Show();
    Key(kKeyRight);
    EXPECT_EQ(form.Toolbar1, kHalf);
    EXPECT_EQ(form.CursorX, 72);
    EXPECT_EQ(form.CursorY, StringY(4)) << "a rest leaves it";
    Key(kKeyRight);
    EXPECT_EQ(form.Toolbar1, kWhole);
    const std::string state = State();
    Key(kKeyRight);
    EXPECT_EQ(State(), state);
}

TEST_F(StaffInput, LeftFromTheFreeEndEditsAndRightComesBack)
{
    Type("1\r2\r");
    Key(kKeyLeft);
    EXPECT_EQ(form.EntryState, EntryState::Edit);
    EXPECT_EQ(tune.CurNote, 3);
    EXPECT_EQ(form.CursorX, 72);
    Key(kKeyRight);
    EXPECT_EQ(form.EntryState, EntryState::Append);
    EXPECT_EQ(tune.CurNote, 4);
    EXPECT_EQ(form.CursorX, 96);
    const std::string state = State();
    Key(kKeyRight);
    EXPECT_EQ(State(), state) << "nothing in AppendState";
}

TEST_F(StaffInput, RightOnTheLastNoteOfAFullTuneStays)
{
    ShowFullMeasures(1);
    tune.CurNote = 5;
    form.EntryState = EntryState::Edit;
    Key(kKeyRight);
    EXPECT_EQ(tune.CurNote, 5);
    EXPECT_EQ(form.EntryState, EntryState::Edit);
}

TEST_F(StaffInput, UnknownKeysOnlyHideTheCaret)
{
    editor.Timer1();
    const std::string table = Table();
    Key(112);
    EXPECT_EQ(form.CaretOn, 0);
    EXPECT_EQ(Table(), table);
    EXPECT_EQ(form.Saved, SavedState::Saved);
}

TEST_F(StaffInput, AKeyPressMarksTheTuneAsUnsavedWhateverTheCharacter)
{
    Type("q");
    EXPECT_EQ(form.Saved, SavedState::Unsaved);
}

TEST_F(StaffInput, TheTimerBlinksTheCaretByAnXorLine)
{
    const std::string before = Log();
    editor.Timer1();
    EXPECT_EQ(form.CaretOn, -1);
    EXPECT_EQ(Drawn(before), "line 48 76 48 68 w=1 mode=xor\n");
    EXPECT_EQ(view.StaffBox.DrawMode, PenMode::Plain);
    editor.Timer1();
    EXPECT_EQ(form.CaretOn, 0);
    EXPECT_EQ(Log(), before);
    editor.HideCaret();
    EXPECT_EQ(Log(), before);
}

TEST_F(StaffInput, AChordTextIsTypedAboveTheNoteAndEnterEndsIt)
{
    ShowFullMeasures(1);
    editor.mnuChord();
    EXPECT_EQ(form.InputMode, InputMode::Chord);
    EXPECT_EQ(form.CursorY, 18);
    EXPECT_EQ(form.SavedCursorY, StringY(2));
    EXPECT_EQ(form.Saved, SavedState::Unsaved);
    const std::string before = Log();
    Type("Am");
    EXPECT_EQ(tune[2].ChordText, "Am");
    EXPECT_EQ(form.CursorX, 68);
    EXPECT_EQ(Drawn(before), "text 48 12 size=10 font=\"Arial\" bold=1 \"A\"\n"
                             "text 58 12 size=10 font=\"Arial\" bold=1 \"m\"\n");
    Type("\b");
    EXPECT_EQ(tune[2].ChordText, "A");
    EXPECT_EQ(form.CursorX, 58);
    Type("7\x1b\t\x7f\xE9\r");
    EXPECT_EQ(tune[2].ChordText, "A7");
    EXPECT_EQ(form.InputMode, InputMode::Fret);
    EXPECT_EQ(form.CursorX, 48);
    EXPECT_EQ(form.CursorY, StringY(2));
}

TEST_F(StaffInput, BackspaceInAChordRedrawsAndPrintsWhatIsLeftOfIt)
{
    editor.mnuChord();
    Type("Am");
    Type("\b");
    EXPECT_EQ(Log(), "clear\ntext 2 36 size=18 font=\"Arial\" bold=1 \" 4 \"\n"
                     "text 2 56 size=18 font=\"Arial\" bold=1 \" 4 \"\n"
                     "line 350 36 350 76 w=1\n"
                     "text 48 12 size=10 font=\"Arial\" bold=1 \"A\"\n");
    EXPECT_EQ(form.CursorX, 58);
}

TEST_F(StaffInput, AChordHoldsTheCharactersFromTheBlankToTheTilde)
{
    editor.mnuChord();
    Type("\x1f !}~\x7f");
    EXPECT_EQ(tune[2].ChordText, " !}~");
}

TEST_F(StaffInput, ControlCharactersOfAChordAskForNoRecord)
{
    form.InputMode = InputMode::Chord;
    tune.CurNote = kLastRecord + 1;
    Type("\x1b\t\x7f\xE9");
    EXPECT_EQ(form.InputMode, InputMode::Chord);
    EXPECT_FAULT(Type("A"), SubscriptOutOfRange);
    EXPECT_FAULT(Type("\b"), SubscriptOutOfRange);
}

TEST_F(StaffInput, ChordEntryWipesTheOldChord)
{
    ShowFullMeasures(1);
    tune[2].ChordText = "Cmaj7";
    editor.Activate();
    EXPECT_NE(Log().find("Cmaj7"), std::string::npos);
    form.CursorX = 60;
    editor.mnuChord();
    EXPECT_EQ(tune[2].ChordText, "");
    EXPECT_EQ(Log().find("Cmaj7"), std::string::npos);
    EXPECT_EQ(tune[2].XPos, 60) << "the note is moved to the cursor";
}

TEST_F(StaffInput, AChordOverAFreeRecordTakesItIntoTheMeasure)
{
    editor.mnuChord();
    Type("C\r");
    EXPECT_EQ(form.MeasEnd, 2);
    EXPECT_EQ(tune[2].ChordText, "C");
}

TEST_F(StaffInput, KeysAreNotForTheStaffWhileAChordIsTyped)
{
    ShowFullMeasures(1);
    editor.mnuChord();
    const std::string state = State();
    for (int key : {kKeyLeft, kKeyUp, kKeyRight, kKeyDown, kKeyDelete, kKeyBackspace})
        Key(key);
    EXPECT_EQ(State(), state);
}

TEST_F(StaffInput, ABracketTypedOnStaffBoxIsStoredCharacterByCharacter)
{
    ShowFullMeasures(1);
    form.InputMode = InputMode::Bracket;
    form.SavedCursorY = StringY(3);
    const std::string before = Log();
    Type("1.");
    EXPECT_EQ(tune[1].Slot(2), "1.");
    EXPECT_EQ(form.CursorX, 64);
    EXPECT_EQ(Drawn(before), "text 48 6 size=10 font=\"Arial\" bold=1 \"1\"\n"
                             "text 56 6 size=10 font=\"Arial\" bold=1 \".\"\n");
    Type("\r");
    EXPECT_EQ(form.InputMode, InputMode::Fret);
    EXPECT_EQ(form.CursorX, 48);
    EXPECT_EQ(form.CursorY, StringY(3));
    const std::string log = Log();
    editor.Activate();
    EXPECT_EQ(Log(), log) << "redrawn";
}

TEST_F(StaffInput, AClickOnTheSignatureOfAnEmptyMeasureEndsTheBracketToo)
{
    editor.mnuRepeatEnds();
    form.txtRptBracket.Text = "2.";
    editor.StaffBoxMouseDown(5, 60);
    EXPECT_EQ(form.CurBeatUnit, 8);
    EXPECT_EQ(tune[1].Slot(2), "2.");
    EXPECT_EQ(form.InputMode, InputMode::Fret);
    EXPECT_EQ(form.Focus, Control::StaffBox);
}

TEST_F(StaffInput, AClickInAnEmptyMeasureTakesTheCursorToItsBeginning)
{
    editor.mnuChord();
    Type("A");
    ASSERT_EQ(form.CursorX, 58);
    Click(100, 44);
    EXPECT_EQ(form.CursorX, 48);
}

TEST_F(StaffInput, AClickInAnEmptyMeasureTakesTheCaretOff)
{
    for (double x : {5.0, 100.0}) {
        editor.Timer1();
        editor.StaffBoxMouseDown(x, 60);
        EXPECT_EQ(form.CaretOn, 0);
        EXPECT_EQ(Log().find("mode=xor"), std::string::npos);
    }
}

TEST_F(StaffInput, AClickStoresTheBracketAndEndsItsBoxWithoutHidingIt)
{
    ShowFullMeasures(1);
    editor.mnuRepeatEnds();
    form.txtRptBracket.Text = "2.";
    Click(60, 40);
    EXPECT_EQ(tune[1].Slot(2), "2.");
    EXPECT_FALSE(form.txtRptBracket.Enabled);
    EXPECT_TRUE(form.txtRptBracket.Visible);
    EXPECT_EQ(form.InputMode, InputMode::Fret);
}

TEST_F(StaffInput, AClickTakesTheLastNoteLeftOfItAndExactlyOnANoteTheOneBefore)
{
    ShowFullMeasures(1);  // at 48, 72, 96, 120
    for (const auto& [x, note] : {
             std::pair{50,  2},
             {72,  2},
             {73,  3},
             {96,  3},
             {97,  4},
             {120, 4},
             {121, 5},
             {138, 5},
             {200, 5},
             {20,  2}
    }) {
        Click(x, 44);
        EXPECT_EQ(tune.CurNote, note) << x;
        EXPECT_EQ(form.CursorX, tune[note].XPos) << x;
    }
}

TEST_F(StaffInput, AClickRightOfTheUnfilledEndAppends)
{
    Type("1\r2\r");
    Click(60, 44);
    EXPECT_EQ(form.EntryState, EntryState::Edit);
    EXPECT_EQ(tune.CurNote, 2);
    Click(90, 44);
    EXPECT_EQ(tune.CurNote, 3) << "up to 18 right of the last note is the last note";
    Click(91, 44);
    EXPECT_EQ(form.EntryState, EntryState::Append);
    EXPECT_EQ(tune.CurNote, 4);
    EXPECT_EQ(form.CursorX, 96);
}

TEST_F(StaffInput, AClickOnTheTunesLastNoteStaysInAppendState)
{
    Type("1\r2\r");
    Click(80, 44);
    EXPECT_EQ(tune.CurNote, 3);
    EXPECT_EQ(form.EntryState, EntryState::Append);
    Click(60, 44);
    EXPECT_EQ(form.EntryState, EntryState::Edit);
}

TEST_F(StaffInput, AClickRightOfAFullMeasureTakesItsLastNoteAndEndsAppendState)
{
    Type("1\r1\r1\r1\r");
    ASSERT_EQ(form.EntryState, EntryState::Append);
    tune.CurNote = 2;
    form.CursorX = 48;
    Click(300, 44);
    EXPECT_EQ(tune.CurNote, 5);
    EXPECT_EQ(form.CursorX, 120);
    EXPECT_EQ(form.EntryState, EntryState::Edit);
    form.EntryState = EntryState::Review;
    Click(300, 44);
    EXPECT_EQ(form.EntryState, EntryState::Review);
}

TEST_F(StaffInput, AClickInAMeasureOfAHeadAloneThatIsNotOpenGoesToTheHead)
{
    ShowAHeadAloneInTheMiddle();
    Click(100, 44);
    EXPECT_EQ(tune.CurNote, 6);
    EXPECT_EQ(form.CursorX, tune[6].XPos);
}

TEST_F(StaffInput, AClickOnAFirstNoteThatWasMovedGoesToWhereItIs)
{
    ShowFullMeasures(1);
    for (const auto& [x, cursorX] : {std::pair(53, 48), std::pair(54, 54), std::pair(55, 54)}) {
        tune[2].XPos = 54;
        Click(x, 44);
        EXPECT_EQ(tune.CurNote, 2);
        EXPECT_EQ(form.CursorX, cursorX) << x;
    }
}

TEST_F(StaffInput, AClickTakesTheValueOfTheNote)
{
    EmptyTable();
    AddMeasure(tune);
    for (int code : {kTripletSixteenthRest, kSixteenthRest, kTripletEighthRest, kEighthRest,
                     kTripletQuarterRest, kQuarterRest, kHalfRest, kWholeRest, kDottedEighth,
                     kDottedQuarter, kDottedHalf})
        AddNote(tune, code, IsNoteValue(code) ? 1 : 0, "1");
    Show();
    const int values[] = {kTripletSixteenth, kSixteenth,     kTripletEighth, kEighth,
                          kTripletQuarter,   kQuarter,       kHalf,          kWhole,
                          kDottedEighth,     kDottedQuarter, kDottedHalf};
    for (int i = 0; i < 11; ++i) {
        Click(tune[2 + i].XPos + 1, 44);
        EXPECT_EQ(form.CurValue, values[i]) << i;
        EXPECT_EQ(form.Toolbar1, values[i]) << i;
    }
}

TEST_F(StaffInput, AClickOnAFreeRecordTakesTheButtonThatIsDown)
{
    Type("1\r2\r");
    form.CurValue = kEighth;
    form.Toolbar1 = kHalf;
    Click(300, 44);
    EXPECT_EQ(form.CurValue, kHalf);
    EXPECT_EQ(form.Toolbar1, kHalf);
}

TEST_F(StaffInput, AClickOnAFreeRecordWhileNoButtonIsDownLeavesNoValue)
{
    Type("1\r2\r");
    editor.SetToolbarValue(0);
    Click(300, 44);
    EXPECT_EQ(form.CurValue, 0);
    EXPECT_EQ(form.Toolbar1, 0);
}

TEST_F(StaffInput, AClickSnapsToTheNextLineDown)
{
    for (const auto& [y, line] : {
             std::pair{-5.0,  36},
             {36.0,  36},
             {36.5,  44},
             {44.0,  44},
             {52.0,  52},
             {53.0,  60},
             {60.0,  60},
             {68.0,  68},
             {68.1,  76},
             {140.0, 76}
    }) {
        Click(100, y);
        EXPECT_EQ(form.CursorY, line) << y;
    }
    NewTune(4);
    Click(100, 140);
    EXPECT_EQ(form.CursorY, 60);
}

TEST_F(StaffInput, ClicksOnTheUpperFigureStepThroughTheSignatures)
{
    for (int beats : {5, 6, 2, 3, 4}) {
        Click(5, 40);
        EXPECT_EQ(form.CurBeats, beats);
        EXPECT_EQ(tune[1].Beats, beats);
    }
    Click(5, 60);
    EXPECT_EQ(form.CurBeats, 3);
    for (int beats : {6, 9, 12, 3}) {
        Click(5, 40);
        EXPECT_EQ(form.CurBeats, beats);
        EXPECT_EQ(form.CurBeatUnit, 8);
    }
    Click(5, 60);
    EXPECT_EQ(form.CurBeats, 4);
    EXPECT_EQ(form.CurBeatUnit, 4);
    form.CurBeatUnit = 8;
    form.CurBeats = 10;  // a tune's own
    Click(5, 40);
    EXPECT_EQ(form.CurBeats, 3);
}

TEST_F(StaffInput, TheFiguresReachFromTheirLowerBoundUpToTheirUpperOne)
{
    struct Row {
        int strings, upperFrom, upperTo, lowerFrom, lowerTo;
    };
    for (const Row& row : {
             Row{4, 36, 46, 48, 59},
             Row{5, 34, 49, 51, 65},
             Row{6, 36, 54, 58, 75}
    }) {
        const auto hit = [&](double x, double y) {
            NewTune(row.strings);
            Click(x, y);
            return form.CurBeatUnit == 8 ? "lower" : form.CurBeats == 5 ? "upper" : "none";
        };
        EXPECT_STREQ(hit(5, row.upperFrom - 0.1), "none");
        EXPECT_STREQ(hit(5, row.upperFrom), "upper");
        EXPECT_STREQ(hit(5, row.upperTo - 0.1), "upper");
        EXPECT_STREQ(hit(5, row.upperTo), "none");
        EXPECT_STREQ(hit(5, row.lowerFrom - 0.1), "none");
        EXPECT_STREQ(hit(5, row.lowerFrom), "lower");
        EXPECT_STREQ(hit(5, row.lowerTo - 0.1), "lower");
        EXPECT_STREQ(hit(5, row.lowerTo), "none");
        EXPECT_STREQ(hit(17.9, row.lowerFrom), "lower");
        EXPECT_STREQ(hit(18, row.lowerFrom), "none");
    }
}

TEST_F(StaffInput, AMeasureOfAHeadAloneThatIsNotOpenKeepsItsSignature)
{
    ShowAHeadAloneInTheMiddle();
    EXPECT_EQ(form.MeasEnd, form.MeasHead);
    Click(5, 60);
    EXPECT_EQ(form.CurBeatUnit, 4);
    EXPECT_EQ(tune[6].BeatUnit, 4);
}

TEST_F(StaffInput, ASignatureClickPaintsTheNewSignature)
{
    form.CursorX = 60;
    form.CursorY = StringY(2);
    Click(5, 60);
    EXPECT_EQ(Log(), "clear\ntext 2 36 size=18 font=\"Arial\" bold=1 \" 3 \"\n"
                     "text 2 56 size=18 font=\"Arial\" bold=1 \" 8 \"\n");
    EXPECT_EQ(form.CursorX, 48);
    EXPECT_EQ(form.CursorY, StringY(6));
}

TEST_F(StaffInput, AClickInAnInsertedMeasureKeepsItsMode)
{
    ShowFullMeasures(1);
    editor.mnuInsMeas();
    Click(100, 44);
    EXPECT_EQ(form.InputMode, InputMode::Insert);
    form.InputMode = InputMode::LeftHand;
    Click(100, 44);
    EXPECT_EQ(form.InputMode, InputMode::Fret);
}

TEST_F(StaffInput, ANotePastTheTableIsASubscriptFault)
{
    form.MeasHead = 1498;
    tune[1498] = tune[1];
    tune.CurNote = 1499;
    Type("1\r2\r");
    EXPECT_EQ(tune.CurNote, 1501);
    EXPECT_FAULT(Type("3"), SubscriptOutOfRange);
}

}  // namespace
}  // namespace quillon
