#include "headless/scenario.h"

#include "store/sign_codes.h"
#include "store/tune_file.h"
#include "support/state_text.h"
#include "support/temporary_directory.h"
#include "support/tunes.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>

namespace quillon {
namespace {

class ScenarioTest : public testing::Test {
protected:
    /// Plays lines up to the one that ends the script; what they print.
    std::string Play(const std::vector<std::string>& lines)
    {
        output.str("");
        for (const std::string& line : lines)
            if (!scenario.Play(line))
                break;
        return output.str();
    }

    void OpenFullMeasures(int count)
    {
        Tune tune;
        AddFullMeasures(tune, count);
        WriteFileBytes("tune.gui", TuneBytes(tune));
        Play({"dialog tune.gui", "menu mnuOpen"});
    }

    std::string State() { return StateText(Win().tune, Win().form, Win().view); }
    MainWin& Win() { return scenario.Window(); }
    MainForm& Form() { return scenario.Window().form; }

    TemporaryDirectory folder;
    std::ostringstream output;
    Scenario scenario{folder.Path(), output};
};

TEST_F(ScenarioTest, StartsAsTheProgramDoesWithAFreshTune)
{
    EXPECT_EQ(Play({"state"}),
              "NumStrings=6\nLastNote=0\nLastMeas=0\nCurNote=2\nCurMeas=1\nMeasHead=1\nMeasEnd=0\n"
              "CursorX=48\nCursorY=76\nSavedCursorY=0\nCurBeats=4\nCurBeatUnit=4\nCurValue=7\n"
              "MeasCapacity=48\nMeasFill=0\nEntryState=1\nInputMode=1\nCaretOn=0\nSaved=1\n"
              "FileName=\nEndBarX=350\nFocus=StaffBox\nToolbar1=7\ncmdNext=Next\n"
              "cmdPrevious=Previous\nlblMeasNum=1\nlblLastNote=0\nhdbkbox=\ntxtRptBracket=hidden\n"
              "Timer1=on\ncmdRefresh=on\nmnuSave=off\nmnuPaste=off\n\n");
    EXPECT_EQ(Play({"table"}),
              "1: 1 999 0 0 4 4 0 0 \"\" \" \" \" \" \"\" \"\" \"\" \"\" \"\" \"\" \"\"\n\n");
    EXPECT_EQ(Play({"shown"}), "\n");
    EXPECT_EQ(scenario.Status(), 0);
}

TEST_F(ScenarioTest, SkipsBlankLinesAndCommentsAndLineEndsOfAnyKind)
{
    EXPECT_EQ(Play({"", "   ", "# menu mnuNone", "\r", "type 5\r", "key Enter\r"}), "");
    EXPECT_EQ(scenario.Status(), 0);
    EXPECT_EQ(Win().tune[2].Slot(6), "5");
}

TEST_F(ScenarioTest, AnUnknownCommandEndsItWithStatus2)
{
    for (const char* line : {"sing",       "State",          "menu mnuNone",
                             "menu",       "press StaffBox", "press txtRptBracket",
                             "press none", "press",          "key F13",
                             "key F0",     "key Tab",        "key a",
                             "key",        "toolbar 0",      "toolbar 12",
                             "toolbar x",  "click 5",        "click",
                             "strings 3",  "strings",        "ask maybe"}) {
        std::ostringstream printed;
        Scenario another(folder.Path(), printed);
        EXPECT_FALSE(another.Play(line)) << line;
        EXPECT_EQ(another.Status(), 2) << line;
        EXPECT_EQ(printed.str(), "") << line;
    }
}

TEST_F(ScenarioTest, ARunTimeFaultIsPrintedAndEndsItWithStatus1)
{
    OpenFullMeasures(1);
    EXPECT_EQ(Play({"key F3", "key Backspace", "state"}),
              "fault: run-time error 9: subscript out of range\n");
    EXPECT_EQ(scenario.Status(), 1);
}

TEST_F(ScenarioTest, AMissingScratchFileIsFault53)
{
    Play({"menu mnuInsMeas"});
    std::filesystem::remove("Temp.Sav");
    EXPECT_EQ(Play({"press cmdNext", "state"}), "fault: run-time error 53: file not found\n");
}

TEST_F(ScenarioTest, AnIncompatibleTuneIsFault424AfterItsBox)
{
    WriteFileBytes("broken.gui", "1");
    EXPECT_EQ(Play({"dialog broken.gui", "menu mnuOpen"}),
              "fault: run-time error 424: object required\n");
    EXPECT_EQ(Win().tune.FileName, "broken.gui");
}

TEST_F(ScenarioTest, ABodySizeBeyondASingleIsFault6)
{
    Tune tune;
    tune[0].Slot(5) = "1e39";
    WriteFileBytes("large.gui", TuneBytes(tune));
    EXPECT_EQ(Play({"dialog large.gui", "menu mnuOpen"}), "fault: run-time error 6: overflow\n");
}

TEST_F(ScenarioTest, ExitEndsItWithStatus0)
{
    EXPECT_EQ(Play({"menu mnuExit", "state"}), "");
    EXPECT_EQ(scenario.Status(), 0);
}

TEST_F(ScenarioTest, BoxesAreShownOnceWithTheirLineEnds)
{
    EXPECT_EQ(Play({"dialog missing.gui", "menu mnuOpen", "shown", "shown"}),
              "box stop \"\" \"File Not Found\"\n\n\n");
    EXPECT_EQ(
        Play({"type 1", "menu mnuNew", "shown"}),
        "box question \"\" \"        FILE NOT SAVED\\n\\nDo you want to save your work?\"\n\n");
}

TEST_F(ScenarioTest, AButtonTakesTheFocusFirst)
{
    OpenFullMeasures(3);
    const auto redraws = [&](const char* button) {
        const unsigned before = Win().view.StaffBox.Picture().Revision();
        Play({button});
        EXPECT_EQ(Form().Focus, Control::StaffBox) << button;
        return Win().view.StaffBox.Picture().Revision() != before;
    };
    EXPECT_TRUE(redraws("press cmdNext"));
    EXPECT_EQ(Win().tune.CurMeas, 2);
    EXPECT_TRUE(redraws("press cmdPrevious"));
    EXPECT_EQ(Win().tune.CurMeas, 1);
    EXPECT_TRUE(redraws("press cmdRefresh"));
    EXPECT_TRUE(redraws("press cmdRest"));
    EXPECT_EQ(Win().tune[2].NoteCode, kQuarterRest);
    Play({"menu mnuInsMeas", "press cmdNext"});
    EXPECT_EQ(Form().Focus, Control::cmdNext) << "OK leaves it there";
}

TEST_F(ScenarioTest, ARefreshThatIsOffTakesNoFocus)
{
    Play({"type 1", "key Enter", "menu mnuInsMeas"});
    const std::string state = State();
    Play({"press cmdRefresh"});
    EXPECT_EQ(State(), state);
}

TEST_F(ScenarioTest, LabelsTakeNoFocusAndOnlyTheMeasureNumberAnswersAClick)
{
    OpenFullMeasures(3);
    Play({"menu mnuRepeatEnds"});
    ASSERT_EQ(Form().Focus, Control::txtRptBracket);
    const std::string state = State();
    Play({"press lblLastNote", "press hdbkbox", "press cmdCopyMeasure"});
    EXPECT_EQ(State(), state);
    EXPECT_EQ(Form().Focus, Control::txtRptBracket);
    Play({"prompt 3", "press lblMeasNum"});
    EXPECT_EQ(Win().tune.CurMeas, 3);
    EXPECT_EQ(scenario.Status(), 0);
}

TEST_F(ScenarioTest, EnterAndSpaceOnAButtonPressItAndOtherKeysDoNot)
{
    Play({"key Ctrl+W"});  // fills the measure
    ASSERT_EQ(Form().Focus, Control::cmdNext);
    Play({"type 5", "key Left", "key Escape", "key F5", "key Backspace"});
    EXPECT_EQ(Form().Focus, Control::cmdNext);
    EXPECT_EQ(Win().tune.CurMeas, 1);
    Play({"key Space"});
    EXPECT_EQ(Win().tune.CurMeas, 2);
    Play({"key Ctrl+W", "key Enter"});
    EXPECT_EQ(Win().tune.CurMeas, 3);
}

TEST_F(ScenarioTest, AShortcutReachesNoKeyHandler)
{
    Play({"tick"});
    ASSERT_EQ(Form().CaretOn, -1);
    Play({"key F9"});  // an unknown key would have hidden the caret
    EXPECT_EQ(Form().CaretOn, -1);
    EXPECT_EQ(Win().tune[1].BarCode, kDoubleBar);
    Play({"key F5"});
    EXPECT_EQ(Form().CaretOn, 0);
}

TEST_F(ScenarioTest, ShortcutsDoNotRunWhileTheCopyBoxHasTheFocus)
{
    Play({"type 1", "key Enter", "menu mnuCopy"});
    const std::string state = State(), table = TableText(Win().tune);
    for (const char* key : {"F1", "F4", "F9", "F12", "Shift+F5", "Ctrl+H", "Ctrl+N", "Ctrl+P"})
        Play({std::string("key ") + key});
    EXPECT_EQ(State(), state);
    EXPECT_EQ(TableText(Win().tune), table);
}

TEST_F(ScenarioTest, TheCopyBoxIsTypedIntoBeforeItsBlank)
{
    OpenFullMeasures(3);
    Play({"menu mnuCopy", "type 13", "key Backspace", "key F5"});
    EXPECT_EQ(Form().FrmCopyBox.Text1, "1 ");
    Play({"key Enter", "type 2"});
    EXPECT_EQ(Form().FrmCopyBox.Text1, "1");
    EXPECT_EQ(Form().FrmCopyBox.Text2, "2 ");
    Play({"key Enter"});
    EXPECT_EQ(ReadFileBytes("CopyBuff.Dat"), RecordBytes(Win().tune, 1, 10));
    EXPECT_EQ(Form().Focus, Control::StaffBox);
    EXPECT_TRUE(Form().mnuPasteEnabled);
}

TEST_F(ScenarioTest, KeysMoveTheCaretOfATextBoxAndDelete)
{
    const std::pair<std::vector<std::string>, std::string> cases[] = {
        {{"Left"},                              "1x."},
        {{"Left", "Right", "Right"},            "1.x"},
        {{"Home"},                              "x1."},
        {{"Home", "Left", "Right"},             "1x."},
        {{"Home", "End"},                       "1.x"},
        {{"Left", "Delete"},                    "1x" },
        {{"Delete"},                            "1.x"},
        {{"Left", "Backspace"},                 "x." },
        {{"Home", "Backspace"},                 "x1."},
        {{"Up", "Down", "F5", "Escape", "F11"}, "1.x"},
    };
    for (const auto& [keys, text] : cases) {
        Play({"menu mnuNew", "ask no", "key F7", "type 1."});
        for (const std::string& key : keys)
            Play({"key " + key});
        Play({"type x"});
        EXPECT_EQ(Form().txtRptBracket.Text, text) << keys.back();
        EXPECT_EQ(Form().Focus, Control::txtRptBracket);
        Play({"key Enter", "key F7"});
    }
}

TEST_F(ScenarioTest, AfterItsBlankTheCopyBoxLosesADigitAtEnter)
{
    OpenFullMeasures(3);
    Play({"menu mnuCopy", "key End", "type 12", "key Enter"});
    EXPECT_EQ(Form().FrmCopyBox.Text1, " 1");
    Play({"type 1", "key Left", "key Delete", "key Home", "type 3", "key Enter"});
    EXPECT_EQ(ReadFileBytes("CopyBuff.Dat"), RecordBytes(Win().tune, 1, 15));
}

TEST_F(ScenarioTest, EscapeClosesTheCopyBoxWithoutCopying)
{
    OpenFullMeasures(3);
    Play({"tick", "menu mnuCopy", "type 1"});
    const unsigned before = Win().view.StaffBox.Picture().Revision();
    Play({"key Escape"});
    EXPECT_EQ(Form().Focus, Control::StaffBox);
    EXPECT_FALSE(Form().mnuPasteEnabled);
    EXPECT_NE(Win().view.StaffBox.Picture().Revision(), before) << "the main form is active again";
    Play({"menu mnuCopy", "key Escape", "type 7"});
    EXPECT_EQ(Form().Saved, SavedState::Unsaved) << "keys go to the staff again";
}

TEST_F(ScenarioTest, TheCopyBoxsButtonCutsNothing)
{
    OpenFullMeasures(3);
    Play({"menu mnuCopy", "type 2", "key Enter", "type 3", "press cmdCopyMeasure"});
    EXPECT_EQ(ReadFileBytes("CopyBuff.Dat"), RecordBytes(Win().tune, 6, 15));
    EXPECT_EQ(Form().Focus, Control::StaffBox);
}

TEST_F(ScenarioTest, AMenuCommandLeavesTheCaretOfTheOpenCopyBox)
{
    Play({"press cmdRest", "menu mnuCopy", "type .", "menu mnuHardBrk", "type 21"});
    EXPECT_EQ(Form().FrmCopyBox.Text1, ".21 ");
    EXPECT_EQ(Win().tune[1].Slot(6), "NL");
    Play({"key Enter"});
    EXPECT_EQ(Form().FrmCopyBox.Text1, ".21");
    EXPECT_EQ(Form().Focus, Control::Text2);
    Play({"type 1", "menu mnuCopy", "type 7"});
    EXPECT_EQ(Form().FrmCopyBox.Text1, "7 ") << "shown again, each box holds one blank";
    EXPECT_EQ(Form().FrmCopyBox.Text2, " ");
}

TEST_F(ScenarioTest, CopyFillsTheBoxesAndPressesTheButton)
{
    OpenFullMeasures(3);
    Play({"copy 2 2"});
    EXPECT_EQ(ReadFileBytes("CopyBuff.Dat"), RecordBytes(Win().tune, 6, 10));
    EXPECT_EQ(Form().Focus, Control::StaffBox);
}

TEST_F(ScenarioTest, TickFiresOnlyWhileTheTimerIsOn)
{
    Form().Timer1Enabled = false;
    Play({"tick"});
    EXPECT_EQ(Form().CaretOn, 0);
}

TEST_F(ScenarioTest, AMenuCommandThatIsOffDoesNothing)
{
    const std::string state = State();
    Play({"menu mnuSave", "menu mnuPaste"});
    EXPECT_EQ(State(), state);
    EXPECT_EQ(scenario.Status(), 0);
}

TEST_F(ScenarioTest, StringsRunsTheInstrumentsCommand)
{
    Play({"strings 5"});
    EXPECT_EQ(Form().Caption, "LYRANO Tablature Editor for Banjo");
    Play({"type 1", "key Enter", "strings 4", "ask yes", "strings 4"});
    EXPECT_EQ(Win().tune.NumStrings, 4) << "a question without an answer gets No";
}

}  // namespace
}  // namespace quillon
