#include "shell/state_line.h"

#include "support/desk.h"

#include <gtest/gtest.h>

namespace quillon {
namespace {

class StateLineTest : public Desk {
protected:
    StateLineTest() { Start(); }

    StateLine Line(bool changed = false) { return LineOf(StateOf(win, changed)); }

    /// Measures of so many quarters in 4/4.
    void OpenMeasures(const std::vector<int>& quarters)
    {
        Tune tune;
        for (int count : quarters) {
            AddMeasure(tune);
            for (int i = 0; i < count; ++i)
                AddNote(tune, kQuarter, 1, "3");
        }
        OpenTune(tune);
    }

    void OpenTune(const Tune& tune)
    {
        WriteFileBytes(folder.Path("tune.gui"), TuneBytes(tune));
        Open(folder.Path("tune.gui"));
    }

    std::string MeasureLine(int measure)
    {
        win.editor.ShowMeasure(measure);
        return Line().Measure;
    }
};

TEST_F(StateLineTest, AFreshTuneHasNothingToTellButThatItIsNew)
{
    const StateLine line = Line();
    EXPECT_EQ(line.Name, "New tune");
    EXPECT_EQ(line.Changed + line.Page + line.Measure, "");
}

TEST_F(StateLineTest, ATuneIsCalledByTheNameOfItsFile)
{
    OpenMeasures({4});
    EXPECT_EQ(Line().Name, "tune.gui");
    EXPECT_EQ(Line(true).Changed, "changed");
}

TEST_F(StateLineTest, ThePageIsToldOnceTheTuneIsLaidOut)
{
    Type("1\r2\r");
    EXPECT_EQ(Line().Page, "");
    win.cmdRefresh();
    EXPECT_EQ(Line().Page, "page 1 of 1");
    win.mnuNew();
    EXPECT_EQ(Line().Page, "");
}

TEST_F(StateLineTest, AMarqueeOnABlankPageIsNoTuneOnAPage)
{
    win.pages.picPage1MouseDown(0, 100, 100);
    win.pages.picPage1MouseMove(0, 900, 900, true);
    win.pages.picPage1MouseUp(0);
    EXPECT_EQ(Line().Page, "");
}

TEST_F(StateLineTest, ThePagesOfATuneThatBecameShorterAreCountedAnew)
{
    OpenMeasures(std::vector<int>(80, 4));
    const std::string first = Line().Page;
    EXPECT_TRUE(first.starts_with("page 1 of ")) << first;
    const int pages = std::stoi(first.substr(10));
    ASSERT_GT(pages, 1);
    win.pages.mnuPgDown();
    EXPECT_EQ(Line().Page, "page 2 of " + std::to_string(pages));
    win.cmdRefresh();
    EXPECT_EQ(Line().Page, first) << "a refresh shows the first page";
    while (win.tune.LastMeas > 2)
        win.editor.mnuDelMeas();
    win.cmdRefresh();
    EXPECT_EQ(Line().Page, "page 1 of 1");
}

TEST_F(StateLineTest, AMeasureThatDoesNotHoldItsTimeSignatureIsTold)
{
    OpenMeasures({4, 3, 5, 4});
    EXPECT_EQ(MeasureLine(1), "");
    EXPECT_EQ(MeasureLine(2), "measure 2: 1 beat too short");
    EXPECT_EQ(MeasureLine(3), "measure 3: 1 beat too long");
    EXPECT_EQ(MeasureLine(4), "");
}

TEST_F(StateLineTest, APickupAndAnUnfinishedLastMeasureAreFine)
{
    OpenMeasures({1, 4, 2});
    EXPECT_EQ(MeasureLine(1), "");
    EXPECT_EQ(MeasureLine(3), "");
    OpenMeasures({4, 4, 4});
    for (int measure : {2, 3}) {
        MeasureLine(measure);
        EXPECT_EQ(StateOf(win, false).Measure, 0) << "nothing to tell of " << measure;
    }
    OpenMeasures({6, 4, 6});
    EXPECT_EQ(MeasureLine(1), "measure 1: 2 beats too long");
    EXPECT_EQ(MeasureLine(3), "measure 3: 2 beats too long");
}

TEST_F(StateLineTest, AMeasureIsToldOfWhenTheNextOneIsOpenedBehindIt)
{
    Type("1\r2\r3\r4\r\r1\r");
    EXPECT_EQ(Line().Measure, "");
    win.editor.cmdNext();
    Type("1\r");
    EXPECT_EQ(Line().Measure, "");
    win.editor.cmdPrevious();
    EXPECT_EQ(Line().Measure, "measure 2: 3 beats too short");
}

TEST_F(StateLineTest, AMeasureThatIsBeingInsertedIsNotFinished)
{
    OpenMeasures({4, 4, 4});
    win.editor.ShowMeasure(2);
    win.editor.mnuInsMeas();
    ASSERT_EQ(win.form.InputMode, InputMode::Insert);
    EXPECT_EQ(Line().Measure, "");
}

TEST_F(StateLineTest, BeatsAreThoseOfTheSignature)
{
    Tune tune;
    AddMeasure(tune, 6, 8);
    AddMeasure(tune, 6, 8);
    for (int i = 0; i < 5; ++i)
        AddNote(tune, kEighth, 1, "0");
    AddMeasure(tune, 6, 8);
    OpenTune(tune);
    EXPECT_EQ(MeasureLine(2), "measure 2: 1 beat too short");
}

TEST_F(StateLineTest, ATickTooManyIsTooLong)
{
    Tune tune;
    AddMeasure(tune);
    for (int i = 0; i < 15; ++i)
        AddNote(tune, kSixteenth, 1, "0");
    for (int i = 0; i < 2; ++i)
        AddNote(tune, kTripletSixteenth, 1, "0");
    OpenTune(tune);
    EXPECT_EQ(MeasureLine(1), "measure 1: 1/12 beat too long");
}

TEST_F(StateLineTest, APageAfterTheTunesLastIsNotCounted)
{
    TuneState state;
    state.Pages = 2;
    state.Page = 2;
    EXPECT_EQ(LineOf(state).Page, "page 2 of 2");
    state.Page = 3;
    EXPECT_EQ(LineOf(state).Page, "");
}

TEST_F(StateLineTest, WhatTheSoundSaysIsPassedOn)
{
    TuneState state;
    state.Sound = "There is no sound device.";
    EXPECT_EQ(LineOf(state).Sound, "There is no sound device.");
}

TEST_F(StateLineTest, AStateWithoutAMeasureTellsNone)
{
    for (int head : {-1, 0, 7, 1500, 32000}) {
        win.form.MeasHead = head;
        EXPECT_EQ(Line().Measure, "");
    }
}

TEST(BeatsInWords, AreFractionsAsAMusicianSaysThem)
{
    EXPECT_EQ(BeatsInWords(6, 12), "½ beat");
    EXPECT_EQ(BeatsInWords(12, 12), "1 beat");
    EXPECT_EQ(BeatsInWords(18, 12), "1½ beats");
    EXPECT_EQ(BeatsInWords(24, 12), "2 beats");
    EXPECT_EQ(BeatsInWords(4, 12), "⅓ beat");
    EXPECT_EQ(BeatsInWords(33, 12), "2¾ beats");
    EXPECT_EQ(BeatsInWords(2, 12), "⅙ beat");
    EXPECT_EQ(BeatsInWords(5, 12), "5/12 beat");
    EXPECT_EQ(BeatsInWords(13, 12), "1 1/12 beats");
    EXPECT_EQ(BeatsInWords(3, 6), "½ beat");
    EXPECT_EQ(BeatsInWords(8, 6), "1⅓ beats");
}

}  // namespace
}  // namespace quillon
