#include "support/editor_desk.h"

namespace quillon {
namespace {

class CopyPaste : public EditorDesk {
protected:
    void Copy(const std::string& from, const std::string& to)
    {
        editor.mnuCopy();
        form.FrmCopyBox = {from, to};
        editor.cmdCopyMeasure();
    }

    /// The fret of each measure's first note, in playing order: "1 2 3".
    std::string Frets() const
    {
        std::string frets;
        for (int i = 1; i <= tune.LastNote; ++i)
            if (tune[i].IsHead())
                frets += (frets.empty() ? "" : " ") + tune[i + 1].Slot(2);
        return frets;
    }

    /// Heads are numbered 1, 2, 3, ... and notes as their head.
    void ExpectNumbersInOrder() const
    {
        int measure = 0;
        for (int i = 1; i <= tune.LastNote; ++i) {
            measure += tune[i].IsHead();
            EXPECT_EQ(tune[i].Measure, measure) << "record " << i;
        }
        EXPECT_EQ(tune.LastMeas, measure);
    }

    static bool Copied() { return std::filesystem::exists("CopyBuff.Dat"); }
};

TEST_F(CopyPaste, TheCopyBoxTakesTheFocusWithABlankInBothBoxes)
{
    ShowFullMeasures(2);
    editor.mnuCopy();
    EXPECT_EQ(system.Forms.back(), Form::FrmCopyBox);
    EXPECT_EQ(form.FrmCopyBox.Text1, " ");
    EXPECT_EQ(form.FrmCopyBox.Text2, " ");
    EXPECT_EQ(form.Focus, Control::Text1);
}

TEST_F(CopyPaste, EnterInABoxCutsItsLastCharacterAndGoesOn)
{
    ShowFullMeasures(3);
    editor.mnuCopy();
    form.FrmCopyBox.Text1 = "2 ";
    editor.CopyBoxEnter(Control::Text1);
    EXPECT_EQ(form.FrmCopyBox.Text1, "2");
    EXPECT_EQ(form.Focus, Control::Text2);
    form.FrmCopyBox.Text2 = " 23";  // typed after the blank: the cut takes a digit
    editor.CopyBoxEnter(Control::Text2);
    EXPECT_EQ(form.Focus, Control::StaffBox);
    EXPECT_EQ(ReadFileBytes("CopyBuff.Dat"), RecordBytes(tune, 6, 10));
}

TEST_F(CopyPaste, WritesTheRecordsOfTheRange)
{
    ShowFullMeasures(4);
    Copy("2", "3");
    EXPECT_EQ(ReadFileBytes("CopyBuff.Dat"), RecordBytes(tune, 6, 15));
    EXPECT_TRUE(form.mnuPasteEnabled);
    EXPECT_EQ(form.Focus, Control::StaffBox);
    EXPECT_EQ(form.Saved, SavedState::Saved);
}

TEST_F(CopyPaste, ARangeAboveLastMeasOrBackwardsIsRefusedSilently)
{
    ShowFullMeasures(3);
    for (const auto& [from, to] : {
             std::pair{"4",  "4"},
             {"2",  "4"},
             {"3",  "2"},
             {"0",  "1"},
             {"-1", "1"},
             {"",   "" },
             {" ",  " "},
             {"x",  "2"},
             {"1",  "x"}
    }) {
        Copy(from, to);
        EXPECT_FALSE(Copied()) << from << " to " << to;
        EXPECT_FALSE(form.mnuPasteEnabled);
        EXPECT_EQ(form.Focus, Control::StaffBox);
    }
    EXPECT_TRUE(dialogs.Shown.empty());
}

TEST_F(CopyPaste, ComparesRealValues)
{
    ShowFullMeasures(3);
    Copy("1.5", "2.9");
    EXPECT_EQ(ReadFileBytes("CopyBuff.Dat"), RecordBytes(tune, 6, 10));
}

TEST_F(CopyPaste, AMeasureOfAHeadAloneIsCopiedAlone)
{
    EmptyTable();
    AddFullMeasures(tune, 1);
    AddMeasure(tune);
    AddFullMeasures(tune, 1);
    Show();
    Copy("2", "2");
    EXPECT_EQ(ReadFileBytes("CopyBuff.Dat"), RecordBytes(tune, 6, 6));
}

TEST_F(CopyPaste, BetweenTwoMeasuresThereIsNothingToCopyOrToPaste)
{
    ShowFullMeasures(3);
    Copy("1.2", "1.5");
    EXPECT_EQ(ReadFileBytes("CopyBuff.Dat"), "");
    const std::string table = Table();
    editor.mnuPaste();
    EXPECT_EQ(Table(), table);
    EXPECT_EQ(tune.LastMeas, 3);
    Goto("3");
    form.EntryState = EntryState::Edit;
    form.MeasHead = form.MeasEnd = 1;
    editor.mnuPaste();
    EXPECT_EQ(Table(), table);
    EXPECT_EQ(form.MeasHead, 11);
    EXPECT_EQ(form.MeasEnd, 15);
}

TEST_F(CopyPaste, ARefusedCopyLeavesTheBufferOfTheLastOne)
{
    ShowFullMeasures(3);
    Copy("1", "1");
    const std::string buffer = ReadFileBytes("CopyBuff.Dat");
    Copy("9", "9");
    EXPECT_EQ(ReadFileBytes("CopyBuff.Dat"), buffer);
    EXPECT_TRUE(form.mnuPasteEnabled);
}

TEST_F(CopyPaste, From3To3CopiesOneMeasureWithItsHeadAndAPasteAddsExactlyOne)
{
    ShowFullMeasures(4);
    Copy("3", "3");
    EXPECT_EQ(ReadFileBytes("CopyBuff.Dat"), RecordBytes(tune, 11, 15));
    editor.mnuPaste();
    EXPECT_EQ(tune.LastMeas, 5);
    EXPECT_EQ(Frets(), "1 3 2 3 4");
    ExpectNumbersInOrder();
}

TEST_F(CopyPaste, AfterTheMeasureStaysOnTheLastPastedWithCurNoteAtTheEndAndNoRedraw)
{
    ShowFullMeasures(4);
    Copy("3", "4");
    const std::string log = Log();
    editor.mnuPaste();
    EXPECT_EQ(Log(), log);
    EXPECT_EQ(Frets(), "1 3 4 2 3 4");
    EXPECT_EQ(tune.CurMeas, 3);
    EXPECT_EQ(form.MeasHead, 11);
    EXPECT_EQ(form.MeasEnd, 15);
    EXPECT_EQ(tune.CurNote, 30);
    EXPECT_EQ(tune.LastNote, 30);
    ExpectNumbersInOrder();
    EXPECT_TRUE(std::filesystem::exists("Temp.Dat")) << "stays in place";
    EXPECT_EQ(form.Parked, ParkedTail{});
    EXPECT_EQ(form.Saved, SavedState::Saved) << "a paste leaves it alone";
}

TEST_F(CopyPaste, ASecondPasteAfterMeasure2PutsTheNewCopyAt3AndMovesTheEarlierTo4)
{
    ShowFullMeasures(3);
    Copy("1", "1");
    Goto("2");
    editor.mnuPaste();
    EXPECT_EQ(Frets(), "1 2 1 3");
    tune[12].Slot(2) = "earlier";
    Goto("2");
    editor.mnuPaste();
    EXPECT_EQ(Frets(), "1 2 1 earlier 3");
    ExpectNumbersInOrder();
}

TEST_F(CopyPaste, AtTheEndOfAPartlyFilledMeasureLeavesItAndStartsThePastedOneAfterIt)
{
    Type("1\r1\r1\r1\r\r2\r");
    Copy("1", "1");
    const std::string partly = RecordBytes(tune, 6, 7);
    editor.mnuPaste();
    EXPECT_EQ(RecordBytes(tune, 6, 7), partly);
    EXPECT_EQ(tune.LastMeas, 3);
    EXPECT_EQ(tune.LastNote, 12);
    EXPECT_EQ(form.MeasHead, 8);
    EXPECT_EQ(form.MeasEnd, 12);
    EXPECT_EQ(tune.CurNote, 12);
    EXPECT_EQ(form.EntryState, EntryState::Edit);
    EXPECT_EQ(view.lblMeasNum, "3") << "redrawn";
    ExpectNumbersInOrder();
}

TEST_F(CopyPaste, InAnEmptyOpenMeasurePastesInItsPlace)
{
    Type("1\r1\r1\r1\r\r");
    ASSERT_EQ(tune.CurMeas, 2);
    Copy("1", "1");
    editor.mnuPaste();
    ExpectNumbersInOrder();
    EXPECT_EQ(tune.LastMeas, 2);
    EXPECT_EQ(tune.LastNote, 10);
    EXPECT_EQ(form.MeasHead, 6);
}

TEST_F(CopyPaste, InEditStateOnTheLastMeasurePastesAtTheEnd)
{
    ShowFullMeasures(2);
    Copy("1", "2");
    editor.cmdNext();
    form.EntryState = EntryState::Edit;
    editor.mnuPaste();
    EXPECT_EQ(Frets(), "1 2 1 2");
    EXPECT_EQ(tune.CurMeas, 4);
    EXPECT_EQ(form.EntryState, EntryState::Edit);
    EXPECT_FALSE(std::filesystem::exists("Temp.Dat"));
}

TEST_F(CopyPaste, OnlyInEditStateAndOnTheLastMeasureDoesItPasteAtTheEnd)
{
    ShowFullMeasures(2);
    Copy("1", "1");
    form.EntryState = EntryState::Edit;
    editor.mnuPaste();
    EXPECT_EQ(Frets(), "1 1 2");
    EXPECT_EQ(form.EntryState, EntryState::Edit);
    Goto("3");
    form.EntryState = EntryState::Review;
    editor.mnuPaste();
    EXPECT_EQ(Frets(), "1 1 2 1");
    EXPECT_EQ(form.EntryState, EntryState::Review)
        << "after the measure, which happens to be the last";
}

TEST_F(CopyPaste, TimeSignaturesTravelInTheRecords)
{
    EmptyTable();
    AddMeasure(tune, 3, 8);
    AddNote(tune, kDottedQuarter, 2, "1");
    AddFullMeasures(tune, 1);
    Show();
    Copy("1", "1");
    editor.cmdNext();
    editor.mnuPaste();
    EXPECT_EQ(tune[8].Beats, 3);
    EXPECT_EQ(tune[8].BeatUnit, 8);
    EXPECT_EQ(tune[9].BeatUnit, 8);
    EXPECT_EQ(tune[3].BeatUnit, 4);
}

TEST_F(CopyPaste, TheBufferOutlivesTheTune)
{
    ShowFullMeasures(2);
    Copy("2", "2");
    NewTune(6);
    Type("5\r5\r5\r5\r");
    editor.mnuPaste();
    EXPECT_EQ(tune.LastMeas, 2);
    EXPECT_EQ(tune[7].Slot(2), "2");
}

TEST_F(CopyPaste, DoesNothingInTheOtherInputModes)
{
    ShowFullMeasures(2);
    Copy("1", "1");
    for (InputMode mode : {InputMode::Chord, InputMode::Insert, InputMode::LeftHand,
                           InputMode::RightHand, InputMode::Bracket}) {
        form.InputMode = mode;
        const std::string table = Table();
        editor.mnuPaste();
        EXPECT_EQ(Table(), table) << int(mode);
    }
}

TEST_F(CopyPaste, ABufferThatHasGoneIsAFileNotFoundFault)
{
    ShowFullMeasures(2);
    Copy("1", "1");
    std::filesystem::remove("CopyBuff.Dat");
    EXPECT_FAULT(editor.mnuPaste(), FileNotFound);
    EXPECT_EQ(tune.LastMeas, 1) << "the tail is parked by then";
    EXPECT_EQ(tune.LastNote, 5);
    EXPECT_EQ(form.Parked.Records.size(), 5u);
}

TEST_F(CopyPaste, PastTheTableIsASubscriptFaultWithTheTailNotYetBack)
{
    EmptyTable();
    AddFullMeasures(tune, 299);
    Show();
    Copy("1", "2");
    const std::string tail = RecordBytes(tune, 6, tune.LastNote);
    EXPECT_FAULT(editor.mnuPaste(), SubscriptOutOfRange);
    EXPECT_EQ(ReadFileBytes("Temp.Dat"), tail);
    EXPECT_EQ(form.Parked.Bytes, tail);
}

TEST_F(CopyPaste, AtTheEndPastTheTableIsASubscriptFaultOnTheLastMeasureThatFitted)
{
    EmptyTable();
    AddFullMeasures(tune, 299);
    Show();
    Copy("1", "2");
    Goto("299");
    form.EntryState = EntryState::Edit;
    EXPECT_FAULT(editor.mnuPaste(), SubscriptOutOfRange);
    EXPECT_EQ(form.MeasHead, 1496);
    EXPECT_EQ(form.MeasEnd, 1500);
    EXPECT_EQ(tune.LastMeas, 300);
}

}  // namespace
}  // namespace quillon
