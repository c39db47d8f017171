#include "support/editor_desk.h"

namespace quillon {
namespace {

class Insertion : public EditorDesk {
protected:
    static bool Parked() { return std::filesystem::exists("Temp.Sav"); }

    /// Measure m has m notes, of which note n is on fret n of string m.
    void ShowGrowingMeasures(int count)
    {
        EmptyTable();
        for (int m = 1; m <= count; ++m) {
            AddMeasure(tune);
            for (int n = 1; n <= m; ++n)
                AddNote(tune, kEighth, m, std::to_string(n));
        }
        Show();
    }

    /// The frets of each measure, "-" for a record without one: "1:1 2:12".
    std::string Notes() const
    {
        std::string notes;
        for (int i = 1; i <= kLastRecord; ++i) {
            const NoteRecord& record = tune[i];
            if (record.IsHead())
                notes += (notes.empty() ? "" : " ") + std::to_string(int{record.Measure}) + ":";
            else if (const int s = record.HighestFilledSlot())
                notes += record.Slot(s);
            else if (!record.IsClear())
                notes += "-";
        }
        return notes;
    }
};

TEST_F(Insertion, ANoteBeforeTheFirstOfTheLastMeasureShiftsTheRecordsAndNoNumbers)
{
    EmptyTable();
    AddFullMeasures(tune, 2);
    Show();
    editor.cmdNext();
    tune[7].ChordText = "Am";
    editor.mnuNoteBefore();
    EXPECT_EQ(tune.LastNote, 11);
    EXPECT_EQ(tune.LastMeas, 2);
    EXPECT_EQ(form.MeasEnd, 11);
    EXPECT_EQ(tune.CurNote, 7);
    EXPECT_EQ(tune[7].HighestFilledSlot(), 0);
    EXPECT_EQ(tune[7].NoteCode, kQuarter);
    EXPECT_EQ(tune[7].ChordText, "Am") << "a copy of the note that it pushed along";
    EXPECT_EQ(tune[8].Slot(2), "2");
    for (int i = 6; i <= 11; ++i)
        EXPECT_EQ(tune[i].Measure, 2);
    EXPECT_EQ(tune[8].XPos, 72);
    EXPECT_EQ(form.Saved, SavedState::Unsaved);
}

TEST_F(Insertion, ANoteAfterComesAfterTheOldOneWithTheCursorOnIt)
{
    ShowFullMeasures(2);
    editor.mnuInsNoteAfter();
    EXPECT_EQ(tune.CurNote, 3);
    EXPECT_EQ(tune[2].Slot(2), "1");
    EXPECT_EQ(tune[3].HighestFilledSlot(), 0);
    EXPECT_EQ(tune[4].Slot(2), "1");
    EXPECT_EQ(form.CursorX, 72);
    EXPECT_EQ(tune.LastNote, 11);
    EXPECT_EQ(tune[7].Measure, 2);
}

TEST_F(Insertion, ANoteBeforePushesAlongTheNoteAndAllAfterIt)
{
    ShowGrowingMeasures(3);
    Goto("2");
    Key(kKeyRight);
    editor.mnuNoteBefore();
    EXPECT_EQ(Notes(), "1:1 2:1-2 3:123");
    EXPECT_EQ(tune.CurNote, 5);
    EXPECT_EQ(form.MeasEnd, 6);
    EXPECT_EQ(tune.LastNote, 10);
}

TEST_F(Insertion, ANoteAfterTheMeasuresLastBelongsToItAndHasTheCursor)
{
    ShowGrowingMeasures(3);
    Goto("2");
    Key(kKeyRight);
    form.Saved = SavedState::Saved;
    editor.mnuInsNoteAfter();
    EXPECT_EQ(Notes(), "1:1 2:12- 3:123");
    EXPECT_EQ(tune.CurNote, 6);
    EXPECT_EQ(form.MeasEnd, 6);
    EXPECT_EQ(form.CursorX, tune[6].XPos);
    EXPECT_EQ(form.CursorX, 48 + 18 + 18);
    EXPECT_EQ(form.Saved, SavedState::Unsaved);
}

TEST_F(Insertion, ANoteAfterIsPlacedFromTheFirstNotesOwnPlaceOn)
{
    ShowFullMeasures(1);
    editor.mnuLHEdit();
    editor.mnuRHEdit();
    ASSERT_EQ(tune[2].XPos, 54);
    form.InputMode = InputMode::Fret;
    editor.mnuInsNoteAfter();
    EXPECT_EQ(form.CursorX, 72);
}

TEST_F(Insertion, NotesAreNeitherInsertedNorDeletedInAppendState)
{
    Type("1\r2\r");
    form.Saved = SavedState::Saved;
    const std::string state = State(), table = Table();
    editor.mnuNoteBefore();
    editor.mnuInsNoteAfter();
    editor.mnuDelNote();
    EXPECT_EQ(State(), state);
    EXPECT_EQ(Table(), table);
}

TEST_F(Insertion, ANoteInAFullTableIsASubscriptFault)
{
    EmptyTable();
    AddFullMeasures(tune, 300);
    Show();
    EXPECT_FAULT(editor.mnuNoteBefore(), SubscriptOutOfRange);
    EXPECT_FAULT(editor.mnuInsNoteAfter(), SubscriptOutOfRange);
}

TEST_F(Insertion, DelNoteMovesTheTailDown)
{
    ShowFullMeasures(2);
    Key(kKeyRight);
    tune[4].Slot(2) = "9";
    editor.mnuDelNote();
    EXPECT_EQ(tune.CurNote, 3);
    EXPECT_EQ(tune[3].Slot(2), "9");
    EXPECT_EQ(form.MeasEnd, 4);
    EXPECT_EQ(tune.LastNote, 9);
    EXPECT_TRUE(tune[10].IsClear());
    EXPECT_EQ(form.CursorX, 72);
    EXPECT_EQ(form.Saved, SavedState::Unsaved);
}

TEST_F(Insertion, DelNoteGoesBackToTheNoteFromWhereverItsTextHadTakenTheCursor)
{
    ShowFullMeasures(1);
    Type("57");
    ASSERT_EQ(form.CursorX, 60);
    editor.mnuDelNote();
    EXPECT_EQ(form.CursorX, 48);
}

TEST_F(Insertion, DelNoteInAFullTableAsksForNoRecordBeyondIt)
{
    EmptyTable();
    AddFullMeasures(tune, 300);
    Show();
    editor.mnuDelNote();
    EXPECT_EQ(tune.LastNote, kLastRecord - 1);
    EXPECT_TRUE(tune[kLastRecord].IsClear());
}

TEST_F(Insertion, DelNoteOnTheTunesLastNoteStepsBack)
{
    ShowFullMeasures(1);
    for (int i = 0; i < 3; ++i)
        Key(kKeyRight);
    EXPECT_EQ(tune.CurNote, 5);
    editor.mnuDelNote();
    EXPECT_EQ(tune.CurNote, 4);
    EXPECT_EQ(tune.LastNote, 4);
    EXPECT_EQ(form.MeasEnd, 4);
    EXPECT_TRUE(tune[5].IsClear());
    EXPECT_EQ(form.CursorX, tune[4].XPos);
}

TEST_F(Insertion, DelNoteOnTheOnlyNoteOfAMeasureDeletesTheMeasure)
{
    EmptyTable();
    AddFullMeasures(tune, 1);
    AddMeasure(tune);
    AddNote(tune, kWhole, 1, "5");
    AddFullMeasures(tune, 1);
    Show();
    editor.cmdNext();
    editor.mnuDelNote();
    EXPECT_EQ(tune.LastMeas, 2);
    EXPECT_EQ(tune.LastNote, 10);
    EXPECT_EQ(tune[7].Slot(2), "3");
    EXPECT_EQ(tune[7].Measure, 2);
}

TEST_F(Insertion, DeletingMeasure3Of5NumbersTheOld4And5As3And4AndShowsTheNew3)
{
    ShowFullMeasures(5);
    Goto("3");
    editor.mnuDelMeas();
    EXPECT_EQ(tune.LastMeas, 4);
    EXPECT_EQ(tune.LastNote, 20);
    EXPECT_EQ(tune.CurMeas, 3);
    EXPECT_EQ(tune.CurNote, 12);
    EXPECT_EQ(form.MeasHead, 11);
    EXPECT_EQ(form.MeasEnd, 15);
    EXPECT_EQ(tune[12].Slot(2), "4");
    EXPECT_EQ(tune[12].Measure, 3);
    EXPECT_EQ(tune[17].Slot(2), "5");
    EXPECT_EQ(tune[17].Measure, 4);
    EXPECT_TRUE(tune[21].IsClear());
    EXPECT_NE(Log().find("\"4\""), std::string::npos);
    EXPECT_EQ(form.Saved, SavedState::Unsaved);
}

TEST_F(Insertion, DeletingAMeasureInTheMiddleMovesAllThatFollows)
{
    ShowGrowingMeasures(5);
    Goto("3");
    editor.mnuDelMeas();
    EXPECT_EQ(Notes(), "1:1 2:12 3:1234 4:12345");
    for (int i = 6; i <= 16; ++i)
        EXPECT_EQ(tune[i].Measure, i < 11 ? 3 : 4) << i;
    EXPECT_EQ(form.MeasHead, 6);
    EXPECT_EQ(form.MeasEnd, 10) << "it has a note more";
    EXPECT_EQ(tune.LastNote, 16);
}

// A damaged tune: no number is below that of its second measure.
TEST_F(Insertion, AMeasureThatCannotBeRenumberedIsAnOverflowWithTheDeletedOneGone)
{
    ShowFullMeasures(3);
    tune[6].Measure = -32768;
    EXPECT_FAULT(editor.mnuDelMeas(), Overflow);
    EXPECT_TRUE(tune[1].IsClear() && tune[5].IsClear());
    EXPECT_EQ(tune.LastNote, 15);
}

TEST_F(Insertion, DeletingTheLastMeasureShowsTheOneBefore)
{
    ShowFullMeasures(3);
    Goto("3");
    editor.mnuDelMeas();
    EXPECT_EQ(tune.LastMeas, 2);
    EXPECT_EQ(tune.CurMeas, 2);
    EXPECT_EQ(tune.LastNote, 10);
    EXPECT_EQ(form.MeasHead, 6);
    EXPECT_EQ(form.MeasEnd, 10);
    EXPECT_EQ(tune.CurNote, 7);
    EXPECT_EQ(form.CursorX, 48);
    EXPECT_TRUE(tune[11].IsClear());
}

TEST_F(Insertion, DeletingThePartlyFilledOpenMeasureStaysInAppendStateWithoutARedraw)
{
    Type("1\r1\r1\r1\r\r2\r");
    const std::string log = Log();
    editor.mnuDelMeas();
    EXPECT_EQ(form.EntryState, EntryState::Append);
    EXPECT_EQ(tune.LastMeas, 1);
    EXPECT_EQ(tune.CurMeas, 1);
    EXPECT_EQ(tune.LastNote, 5);
    EXPECT_EQ(tune.CurNote, 5);
    EXPECT_EQ(form.MeasHead, 1);
    EXPECT_EQ(form.MeasEnd, 5);
    EXPECT_EQ(form.CursorX, tune[5].XPos);
    EXPECT_EQ(form.CursorY, 84);
    EXPECT_EQ(Log(), log);
}

TEST_F(Insertion, DeletingTheFullOpenMeasureGivesStaffBoxTheFocus)
{
    Type("1\r1\r1\r1\r\r2\r2\r2\r2\r");
    ASSERT_EQ(form.Focus, Control::cmdNext);
    editor.mnuDelMeas();
    EXPECT_EQ(form.Focus, Control::StaffBox);
    EXPECT_EQ(tune.LastMeas, 1);
}

TEST_F(Insertion, AnEmptyOpenMeasureCannotBeDeleted)
{
    const std::string state = State(), table = Table();
    editor.mnuDelMeas();
    EXPECT_EQ(State(), state);
    EXPECT_EQ(Table(), table);
}

TEST_F(Insertion, DeletingTheOnlyMeasureLeavesAnEmptyTableAndTheOldPicture)
{
    ShowFullMeasures(1);
    tune[0].ChordText = "Title";
    form.CurValue = kEighth;
    const std::string log = Log();
    editor.mnuDelMeas();
    EXPECT_EQ(Log(), log);
    EXPECT_EQ(Table().substr(0, 3), "0: ");
    EXPECT_EQ(Table().find("\n1: "), std::string::npos) << "record 1 is no head again";
    EXPECT_EQ(form.CursorX, 48);
    EXPECT_EQ(form.CursorY, 84);
    EXPECT_EQ(tune.CurMeas, 1);
    EXPECT_EQ(tune.LastMeas, 0);
    EXPECT_EQ(tune.CurNote, 2);
    EXPECT_EQ(tune.LastNote, 0);
    EXPECT_EQ(form.MeasHead, 1);
    EXPECT_EQ(form.MeasEnd, 0);
    EXPECT_EQ(form.CurValue, kQuarter);
    EXPECT_EQ(form.Toolbar1, kQuarter);
    EXPECT_EQ(form.MeasFill, 0);
    EXPECT_EQ(form.EntryState, EntryState::Append);
    EXPECT_EQ(form.Saved, SavedState::Saved) << "Saved is set only where another measure stays";
}

TEST_F(Insertion, DeletingTheOnlyMeasureStartsAfreshWhateverWasGoingOn)
{
    ShowFullMeasures(1);
    Key(kKeyRight);
    editor.Toolbar1(kEighth);
    Goto("1.9");  // there is no measure 2
    ASSERT_EQ(tune.CurMeas, 2);
    Key(kKeyRight);
    form.InputMode = InputMode::LeftHand;
    editor.mnuDelMeas();
    EXPECT_EQ(form.CursorX, 48);
    EXPECT_EQ(tune.CurMeas, 1);
    EXPECT_EQ(form.CurValue, kQuarter);
    EXPECT_EQ(form.Toolbar1, kQuarter);
    EXPECT_EQ(form.InputMode, InputMode::Fret);
}

// A damaged tune, whose last record belongs to measure 1.
TEST_F(Insertion, DeletingTheOnlyMeasureGoesToTheTablesStartWhereverTheMeasureWas)
{
    EmptyTable();
    AddFullMeasures(tune, 2);
    for (int i = 1; i <= 10; ++i)
        tune[i].Measure = i < 6 ? 2 : 1;
    tune.LastMeas = 1;
    Show();
    ASSERT_EQ(form.MeasHead, 6);
    editor.mnuDelMeas();
    EXPECT_EQ(form.MeasHead, 1);
    EXPECT_EQ(form.MeasEnd, 0);
    EXPECT_EQ(tune.CurNote, 2);
}

TEST_F(Insertion, ParksTheTailWhileAMeasureIsInserted)
{
    ShowFullMeasures(3);
    editor.cmdNext();
    const std::string tail = RecordBytes(tune, 6, 15);
    editor.mnuInsMeas();
    EXPECT_EQ(ReadFileBytes("Temp.Sav"), tail);
    EXPECT_EQ(form.Parked.Bytes, tail);
    ASSERT_EQ(form.Parked.Records.size(), 10u);
    EXPECT_EQ(form.Parked.Records[1].Slot(2), "2");
    EXPECT_EQ(form.Parked.Records[9].Slot(2), "3");
    EXPECT_EQ(form.cmdNextCaption, "OK");
    EXPECT_EQ(form.cmdPreviousCaption, "Cancel");
    EXPECT_EQ(tune.LastNote, 5);
    EXPECT_EQ(tune.LastMeas, 1);
    EXPECT_EQ(tune.CurMeas, 2);
    EXPECT_EQ(tune.CurNote, 7);
    EXPECT_EQ(form.MeasHead, 6);
    EXPECT_EQ(form.MeasEnd, 5);
    EXPECT_EQ(form.InputMode, InputMode::Insert);
    EXPECT_EQ(form.EntryState, EntryState::Append);
    EXPECT_FALSE(form.cmdRefreshEnabled);
    EXPECT_EQ(form.Saved, SavedState::Unsaved);
    EXPECT_TRUE(tune[6].IsHead());
    EXPECT_TRUE(tune[7].IsClear());
}

TEST_F(Insertion, AnInsertedMeasureIsTypedFromItsFirstNoteOnWhereverTheCursorWas)
{
    ShowFullMeasures(2);
    Key(kKeyRight);
    Key(kKeyRight);
    editor.SetFocus(Control::cmdNext);
    form.Timer1Enabled = false;
    editor.mnuInsMeas();
    EXPECT_EQ(tune.CurNote, 2);
    EXPECT_EQ(form.CursorX, 48);
    EXPECT_EQ(form.Focus, Control::StaffBox);
    EXPECT_TRUE(form.Timer1Enabled);
}

TEST_F(Insertion, BeforeMeasure1GivesLastNote0AndLastMeas0DuringTheDialogue)
{
    ShowFullMeasures(2);
    editor.mnuInsMeas();
    EXPECT_EQ(tune.LastNote, 0);
    EXPECT_EQ(tune.LastMeas, 0);
    EXPECT_EQ(tune.CurMeas, 1);
}

TEST_F(Insertion, AfterOkTheNotesOfTheOldMeasure1CarryNumber2)
{
    ShowFullMeasures(2);
    editor.mnuInsMeas();
    Type("7\r7\r7\r7\r");
    EXPECT_EQ(form.Focus, Control::cmdNext);
    Type("\r");
    EXPECT_EQ(tune.LastMeas, 3);
    EXPECT_EQ(tune.LastNote, 15);
    EXPECT_EQ(tune[2].Slot(2), "7");
    EXPECT_EQ(tune[7].Slot(2), "1");
    EXPECT_EQ(tune[7].Measure, 2);
    EXPECT_EQ(tune[12].Measure, 3);
    EXPECT_EQ(form.EntryState, EntryState::Review);
    EXPECT_EQ(form.InputMode, InputMode::Fret);
    EXPECT_EQ(form.cmdNextCaption, "Next");
    EXPECT_EQ(form.MeasEnd, 5);
    EXPECT_TRUE(form.cmdRefreshEnabled);
    EXPECT_FALSE(Parked());
}

TEST_F(Insertion, OkShowsTheNewMeasureWithTheCursorOnItsFirstNote)
{
    ShowFullMeasures(2);
    editor.mnuInsMeas();
    Type("7\r7\r");
    view.StaffBox.PrintLineAt(300, 100, "stale");
    editor.cmdNext();
    EXPECT_EQ(Log().find("stale"), std::string::npos);
    EXPECT_EQ(form.CursorX, 48);
    EXPECT_EQ(form.cmdPreviousCaption, "Previous");
    EXPECT_EQ(form.Parked, ParkedTail{});
}

// A damaged tune: its second measure is numbered 5.
TEST_F(Insertion, OkWithNothingEnteredGoesToTheOldMeasureWhateverItsNumber)
{
    ShowFullMeasures(2);
    for (int i = 6; i <= 10; ++i)
        tune[i].Measure = 5;
    editor.ShowMeasure(5);
    editor.mnuInsMeas();
    EXPECT_EQ(tune.CurMeas, 2) << "the number after the measure before";
    editor.cmdNext();
    EXPECT_EQ(tune.CurMeas, 5);
    EXPECT_EQ(form.MeasHead, 6);
    EXPECT_EQ(form.MeasEnd, 10);
}

TEST_F(Insertion, OkWithNothingEnteredLeavesTheMeasureNumbersAsTheyWere)
{
    ShowFullMeasures(3);
    editor.cmdNext();
    const std::string table = Table();
    editor.mnuInsMeas();
    editor.cmdNext();
    EXPECT_EQ(Table(), table);
    EXPECT_EQ(tune.CurMeas, 2);
    EXPECT_EQ(tune.LastMeas, 3);
    EXPECT_EQ(tune.LastNote, 15);
    EXPECT_FALSE(Parked());
}

TEST_F(Insertion, CancelBringsTheTailBackInPlace)
{
    ShowFullMeasures(3);
    editor.cmdNext();
    const std::string table = Table();
    editor.mnuInsMeas();
    Type("7\r7\r8");
    editor.cmdPrevious();
    EXPECT_EQ(Table(), table);
    EXPECT_EQ(tune.LastMeas, 3);
    EXPECT_EQ(tune.LastNote, 15);
    EXPECT_EQ(form.MeasHead, 6);
    EXPECT_EQ(form.MeasEnd, 10);
    EXPECT_EQ(form.cmdNextCaption, "Next");
    EXPECT_EQ(form.cmdPreviousCaption, "Previous");
    EXPECT_EQ(form.EntryState, EntryState::Review);
    EXPECT_EQ(form.Focus, Control::StaffBox);
    EXPECT_FALSE(Parked());
}

TEST_F(Insertion, CancelLeavesNothingOfALongerMeasureBehindTheShorterTail)
{
    ShowGrowingMeasures(1);
    const std::string table = Table();
    editor.mnuInsMeas();
    Type("7\r7\r7\r7\r");
    ASSERT_EQ(form.Focus, Control::cmdNext);
    editor.cmdPrevious();
    EXPECT_EQ(Table(), table);
    EXPECT_EQ(form.MeasEnd, 2);
    EXPECT_EQ(form.InputMode, InputMode::Fret);
    EXPECT_EQ(form.Focus, Control::StaffBox);
    EXPECT_TRUE(form.cmdRefreshEnabled);
    EXPECT_EQ(form.Parked, ParkedTail{});
}

TEST_F(Insertion, WritesOverAnOlderScratchFile)
{
    WriteFileBytes("Temp.Sav", std::string(100000, 'x'));
    ShowFullMeasures(1);
    const std::string table = Table();
    editor.mnuInsMeas();
    editor.cmdPrevious();
    EXPECT_EQ(Table(), table);
}

TEST_F(Insertion, AMissingScratchFileIsAFileNotFoundFault)
{
    ShowFullMeasures(1);
    editor.mnuInsMeas();
    std::filesystem::remove("Temp.Sav");
    EXPECT_FAULT(editor.cmdNext(), FileNotFound);
}

TEST_F(Insertion, ATailThatNoLongerFitsIsASubscriptFault)
{
    EmptyTable();
    AddFullMeasures(tune, 300);
    Show();
    editor.mnuInsMeas();
    Type("7\r7\r7\r7\r");
    EXPECT_FAULT(editor.cmdNext(), SubscriptOutOfRange);
}

TEST_F(Insertion, KeepsDelMeasPasteAndTheTextModesOut)
{
    ShowFullMeasures(2);
    editor.mnuCopy();
    form.FrmCopyBox = {"1", "1"};
    editor.cmdCopyMeasure();
    editor.mnuInsMeas();
    Type("7\r");
    const std::string state = State(), table = Table();
    editor.mnuDelMeas();
    editor.mnuPaste();
    editor.mnuChord();
    editor.mnuLHEdit();
    editor.mnuRHEdit();
    editor.mnuRepeatEnds();
    editor.mnuNoteBefore();
    editor.mnuInsNoteAfter();
    editor.mnuDelNote();
    EXPECT_EQ(State(), state);
    EXPECT_EQ(Table(), table);
}

TEST_F(Insertion, ATuneWhoseLastMeasureHasOnlyAHeadHasItsIndexAsLastNote)
{
    Type("1\r1\r1\r1\r\r2\r");
    EXPECT_EQ(tune.LastNote, 7);
    Key(kKeyBackspace);
    EXPECT_EQ(tune.LastNote, 6);
    EXPECT_TRUE(tune[6].IsHead());
    EXPECT_EQ(tune.LastMeas, 2);
    EXPECT_EQ(tune[tune.LastNote].Measure, tune.LastMeas);
}

}  // namespace
}  // namespace quillon
