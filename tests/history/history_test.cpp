#include "headless/scenario.h"
#include "shell/page_setup.h"
#include "shell/steps.h"
#include "support/temporary_directory.h"
#include "support/tunes.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>

namespace quillon {
namespace {

using Lines = std::vector<std::string>;

class HistoryTest : public testing::Test {
protected:
    std::string Play(const Lines& lines)
    {
        output.str("");
        for (const std::string& line : lines)
            EXPECT_TRUE(scenario.Play(line)) << line;
        return output.str();
    }

    /// What `state`, `table` and `log` print but for `Saved`.
    std::string Look()
    {
        std::string look = Play({"state", "table", "log"});
        const std::size_t saved = look.find("Saved=");
        return look.erase(saved, look.find('\n', saved) - saved);
    }

    void OpenFullMeasures(int count)
    {
        Tune tune;
        AddFullMeasures(tune, count);
        WriteFileBytes("tune.gui", TuneBytes(tune));
        Play({"dialog tune.gui", "menu mnuOpen"});
    }

    /// The names of the steps, the last one first. Undoes them.
    std::string Names()
    {
        std::string names;
        for (; past.UndoCount() > 0; past.Undo())
            names += (names.empty() ? "" : ", ") + past.UndoName();
        return names;
    }

    MainWin& Win() { return scenario.Window(); }

    TemporaryDirectory folder;
    std::ostringstream output;
    Scenario scenario{folder.Path(), output};
    History& past{*scenario.Steps()};
};

TEST_F(HistoryTest, ANoteWithAllItsStringsIsOneStepUpToItsEnter)
{
    const std::string before = Look();
    Play({"type 1", "type 2", "key Down", "type 3", "key Up", "toolbar 4", "type 5", "key Enter"});
    EXPECT_EQ(past.UndoCount(), 1);
    Play({"type 7", "key Enter"});
    EXPECT_EQ(past.UndoCount(), 2);
    EXPECT_EQ(past.UndoName(), "Note");
    Play({"undo 2"});
    EXPECT_EQ(Look(), before);
}

TEST_F(HistoryTest, ANoteThatIsTypedAgainIsOneStepUntilEnterOrAnotherNote)
{
    OpenFullMeasures(2);
    Play({"type 5", "key Down", "type 7", "key Up", "type 8"});
    EXPECT_EQ(past.UndoCount(), 2);
    Play({"key Enter", "type 9"});
    EXPECT_EQ(past.UndoCount(), 3);
    Play({"key Right", "type 3", "key Left", "key Right", "type 4"});
    EXPECT_EQ(past.UndoCount(), 5);
}

TEST_F(HistoryTest, MovingAboutMakesNoStepAndGoesWithTheStepBeforeIt)
{
    OpenFullMeasures(3);
    const std::string opened = Look();
    Play({"key Delete", "key Enter", "press cmdNext", "key Right", "tick", "toolbar 7"});
    const int steps = past.UndoCount();
    const std::string end = Look();
    Play({"press cmdNext", "press cmdPrevious", "click 70 40", "tick", "press cmdRefresh",
          "menu mnuAppend"});
    EXPECT_EQ(past.UndoCount(), steps + 1) << "a new measure was begun";
    Play({"undo"});
    Play({"undo 9", "redo 9"});
    Play({"undo"});
    EXPECT_NE(Look(), end) << "what was moved before the step is as it was just before it";
    Play({"undo 9"});
    EXPECT_NE(Look(), opened);
}

TEST_F(HistoryTest, AValueChosenForTheFreeRecordIsNoStep)
{
    Play({"toolbar 4", "toolbar 9", "type +"});
    EXPECT_EQ(past.UndoCount(), 0);
    Play({"type 3", "key Enter", "key Left", "toolbar 4", "toolbar 9"});
    EXPECT_EQ(past.UndoCount(), 3) << "on a note each button is one";
}

TEST_F(HistoryTest, ATextModeIsOneStepFromItsCommandToItsEnd)
{
    const std::string before = Look();
    Play({"key F1", "type A", "type m", "key Backspace", "type 7", "key Enter"});
    EXPECT_EQ(past.UndoCount(), 1);
    Play({"undo"});
    EXPECT_EQ(Look(), before);
    Play({"key F7", "type 1", "type .", "key Enter"});
    EXPECT_EQ(past.UndoName(), "Repeat Bracket");
    EXPECT_EQ(past.UndoCount(), 1);
    Play({"key F3", "type T", "type 5", "key Enter"});
    EXPECT_EQ(past.UndoCount(), 3) << "a letter, and a note";
    Play({"undo 3"});
    EXPECT_EQ(Look(), before);
}

TEST_F(HistoryTest, ACommandGivenInATextModeIsAStepOfItsOwn)
{
    OpenFullMeasures(3);
    Play({"press cmdNext", "key F1", "type A", "menu mnuDelMeas", "type m", "key Enter"});
    EXPECT_EQ(Names(), "Chord Name, Delete Measure 2, Chord Name, Open tune.gui");
}

TEST_F(HistoryTest, StepsAreNamedInPlainWords)
{
    OpenFullMeasures(4);
    Play({"press cmdNext", "menu mnuDelMeas", "key F6", "menu mnuInsMeas", "type 3", "key Enter",
          "press cmdNext", "copy 1 1", "menu mnuPaste", "menu mnuNoteBefore", "ask no", "strings 4",
          "click 5 40", "menu mnuNew"});
    EXPECT_EQ(Names(), "New, Time Signature, Mandolin/Bass, Insert Note Before, Paste, "
                       "Insert Measure 2, Note, Insert Measure 2, Repeat Sign, Delete Measure 2, "
                       "Open tune.gui");
}

TEST_F(HistoryTest, UndoPutsBackATuneThatNewOrOpenOrAnInstrumentThrewAway)
{
    Play({"type 3", "key Enter"});
    const std::string typed = Look();
    Play({"ask no", "strings 5", "undo"});
    EXPECT_EQ(Look(), typed);
    Play({"ask no", "menu mnuNew", "undo"});
    EXPECT_EQ(Look(), typed);
    EXPECT_EQ(Win().form.Saved, SavedState::Unsaved);
}

TEST_F(HistoryTest, AMeasureUnderInsertionComesBackWithItsScratchFile)
{
    OpenFullMeasures(3);
    const std::string opened = Look();
    Play({"menu mnuInsMeas", "type 3"});
    const std::string tail = ReadFileBytes(kInsertScratch);
    const std::string inserting = Look();
    Play({"key Enter", "press cmdNext"});
    EXPECT_FALSE(std::filesystem::exists(kInsertScratch));
    Play({"undo"});
    EXPECT_EQ(ReadFileBytes(kInsertScratch), tail);
    Play({"undo", "type 3"});
    EXPECT_EQ(Look(), inserting);
    Play({"undo 2"});
    EXPECT_FALSE(std::filesystem::exists(kInsertScratch));
    EXPECT_EQ(Look(), opened);
}

TEST_F(HistoryTest, ANewStepForgetsWhatWasUndoneAndMovingAboutDoesNot)
{
    Play({"type 3", "key Enter", "type 5", "key Enter"});
    const std::string end = Look();
    Play({"undo", "key Left", "tick"});
    EXPECT_EQ(past.RedoCount(), 1);
    Play({"redo"});
    EXPECT_EQ(Look(), end);
    Play({"undo", "type 7"});
    EXPECT_EQ(past.RedoCount(), 0);
}

TEST_F(HistoryTest, WhatWasMovedAfterAnUndoIsPutBackByTheNextUndo)
{
    Play({"type 3", "key Enter"});
    const std::string one = Look();
    Play({"type 5", "key Enter", "undo", "key Left", "undo", "redo"});
    EXPECT_NE(Look(), one) << "redo leads to the end that was left";
    Play({"redo", "undo"});
    EXPECT_EQ(Look(), one) << "undo leads to where the step began";
}

TEST_F(HistoryTest, ADetourIsForgottenWhenRedoGoesPastIt)
{
    const std::string begun = Look();
    Play({"type 3", "key Enter", "type 5", "key Enter", "type 7", "key Enter"});
    const std::string end = Look();
    Play({"undo", "key Left", "undo", "redo 2"});
    EXPECT_EQ(Look(), end);
    Play({"undo", "undo 2"});
    EXPECT_EQ(Look(), begun);
}

TEST_F(HistoryTest, PageSetupIsOneStepWithFontsTextsAndMargins)
{
    MainWin& win = Win();
    const auto event = [&](auto handler) {
        past.Begin();
        handler();
        past.Observe(Input::Command, "Page Setup");
    };
    event([&] { win.mnuPageSet(); });
    EXPECT_EQ(past.UndoCount(), 0) << "looking at the form changes nothing";
    event([&] { win.frmPgSetup->chkJustify = !win.page.TitleCentered; });
    event([&] { win.frmPgSetup->chkJustifyChange(); });
    win.frmPgSetup->Text1 = "Greensleeves";
    win.frmPgSetup->txtLeft = "2";
    event([&] { win.frmPgSetup->cmdPgExit(); });
    EXPECT_EQ(past.UndoCount(), 1);
    EXPECT_EQ(past.UndoName(), "Page Setup");
    Play({"undo"});
    EXPECT_EQ(win.tune[0].ChordText, "");
    EXPECT_EQ(win.page.PageLeft, 1);
    Play({"redo"});
    EXPECT_EQ(win.tune[0].ChordText, "Greensleeves");
    EXPECT_EQ(win.page.PageLeft, 2);
}

TEST_F(HistoryTest, SavedTellsWhetherTheTableIsWhatSaveWroteLast)
{
    Play({"type 3", "key Enter", "dialog a.gui", "menu mnuSaveAs", "type 5", "key Enter"});
    Play({"undo"});
    EXPECT_EQ(Win().form.Saved, SavedState::Saved);
    Play({"undo", "undo"});
    EXPECT_EQ(Win().form.Saved, SavedState::Unsaved) << "the file has the note";
    EXPECT_EQ(Win().tune.FileName, "");
    Play({"redo 2"});
    EXPECT_EQ(Win().form.Saved, SavedState::Saved);
    EXPECT_EQ(Win().tune.FileName, "a.gui");
}

TEST_F(HistoryTest, SavedIsNotTakenFromThePastWhereACommandLeftItAlone)
{
    OpenFullMeasures(2);
    Play({"menu mnuHardBrk"});
    EXPECT_EQ(Win().form.Saved, SavedState::Saved);
    Play({"key F6", "undo"});
    EXPECT_EQ(Win().form.Saved, SavedState::Unsaved) << "the line break is not in the file";
    Play({"undo"});
    EXPECT_EQ(Win().form.Saved, SavedState::Saved);
}

TEST_F(HistoryTest, SavingWithTheQuestionCountsForTheTuneThatGoes)
{
    OpenFullMeasures(2);
    Play({"key F6", "ask yes", "menu mnuNew", "undo"});
    EXPECT_EQ(Win().form.Saved, SavedState::Saved);
    Play({"undo"});
    EXPECT_EQ(Win().form.Saved, SavedState::Unsaved);
}

TEST_F(HistoryTest, NothingLeftToUndoIsNoError)
{
    const std::string before = Play({"state", "table", "log", "steps"});
    EXPECT_EQ(
        Play({"undo", "redo", "undo 5", "undo 0", "redo 7", "state", "table", "log", "steps"}),
        before);
    EXPECT_TRUE(before.ends_with("undo=0 redo=0\n\n"));
}

TEST_F(HistoryTest, AtAFaultTheMomentBeforeTheEventIsStillThere)
{
    OpenFullMeasures(1);
    Play({"key F3"});
    const std::string before = TableText(Win().tune);
    EXPECT_FALSE(scenario.Play("key Backspace"));  // off the strings
    Moment last = past.Last();
    EXPECT_EQ(last.Form.InputMode, InputMode::LeftHand);
    last.PutBack(ValuesOf(Win()));
    EXPECT_EQ(TableText(Win().tune), before);
}

TEST_F(HistoryTest, WanderingAboutForLongTakesLittleRoom)
{
    OpenFullMeasures(20);
    Play({"key F6"});
    for (int i = 0; i < 2000; ++i)
        Play({"press cmdNext"});
    EXPECT_LT(past.Steps().Size(), 200'000U);
    const std::string end = Look();
    Play({"undo", "redo"});
    EXPECT_EQ(Look(), end);
}

}  // namespace
}  // namespace quillon
