#include "store/tune_file.h"
#include "support/desk.h"

#include <algorithm>

namespace quillon {
namespace {

class InstrumentModes : public Desk {
protected:
    InstrumentModes() { Start(); }
};

TEST_F(InstrumentModes, CancellingSaveAsFromTheQuestionLeavesModeCaptionAndTuneUntouched)
{
    Type("1\r");
    const std::string state = State(), table = Table(), caption = win.form.Caption;
    dialogs.YesNo = {true};
    dialogs.Files = {std::nullopt};
    settings.Written.clear();
    win.mnuBanjo();
    EXPECT_EQ(State(), state);
    EXPECT_EQ(Table(), table);
    EXPECT_EQ(win.form.Caption, caption);
    EXPECT_TRUE(settings.Written.empty());
    EXPECT_TRUE(win.form.Line1Visible[5]);
}

TEST_F(InstrumentModes, AChangeDisablesSaveForgetsTheNameAndEmptiesThePages)
{
    Type("1\r");
    win.cmdRefresh();
    SaveAs(folder.Path("a.gui"));
    win.mnuMandolin();
    EXPECT_FALSE(win.form.mnuSaveEnabled);
    EXPECT_EQ(win.tune.FileName, "");
    for (int i = 0; i < kRefreshedPages; ++i) {
        EXPECT_TRUE(win.pages.Page(i).Surface.Picture().Operations().empty());
        EXPECT_EQ(win.pages.Page(i).Visible, i == 0);
    }
    EXPECT_EQ(win.tune.NumStrings, 4);
    EXPECT_EQ(win.form.CursorY, 60);
    EXPECT_EQ(win.tune.LastNote, 0);
    EXPECT_EQ(win.form.Saved, SavedState::Saved);
}

TEST_F(InstrumentModes, ATuningFileIsMadeWhenItsInstrumentIsFirstChosen)
{
    const auto has = [&](const char* name) { return std::filesystem::exists(folder.Path(name)); };
    EXPECT_TRUE(has("Strings6.tun"));
    EXPECT_FALSE(has("Strings5.tun") || has("Strings4.tun"));
    settings.Written.clear();
    win.mnuBanjo();
    const std::string mode = "Prefs/NumStrings=5";
    EXPECT_EQ(settings.Written, (std::vector{mode, mode})) << "with the file, and with the mode";
    EXPECT_EQ(ReadFileBytes(folder.Path("Strings5.tun")),
              "\"G Tuning\",62,59,55,50,67\r\n\"C Tuning\",62,59,55,48,67\r\n"
              "\"D Tuning\",62,57,54,50,66\r\n");
    EXPECT_EQ(win.tunings.CurTuning[0], 62);
    EXPECT_EQ(settings.Get("Prefs", "NumStrings", ""), "5");
    EXPECT_FALSE(has("Strings4.tun"));
    win.mnuMandolin();
    EXPECT_TRUE(has("Strings4.tun"));
    EXPECT_EQ(win.tunings.CurTuning[0], 76);
    EXPECT_TRUE(dialogs.Shown.empty());
}

TEST_F(InstrumentModes, ATuningFileThatHasGoneIsMadeAgainWhenItsFormIsOpened)
{
    std::filesystem::remove(folder.Path("Strings6.tun"));
    win.mnuTuning();
    EXPECT_TRUE(ReadFileBytes(folder.Path("Strings6.tun")).starts_with("\"Standard\",64,59,"));
    EXPECT_EQ(win.tuningForms[0].Combo1.size(), 4U);
    EXPECT_TRUE(dialogs.Shown.empty());
}

TEST_F(InstrumentModes, AChangeWithADamagedTuningFileLeavesTheDefaultRowsAndTheSettingWritten)
{
    WriteFileBytes(folder.Path("Strings5.tun"), "\"Broken\",1,2\r\n");
    settings.Written.clear();
    win.mnuBanjo();
    EXPECT_EQ(ReadFileBytes(folder.Path("Strings5.tun")),
              "\"G Tuning\",62,59,55,50,67\r\n\"C Tuning\",62,59,55,48,67\r\n"
              "\"D Tuning\",62,57,54,50,66\r\n");
    ASSERT_FALSE(settings.Written.empty());
    for (const std::string& written : settings.Written)
        EXPECT_EQ(written, "Prefs/NumStrings=5");
    EXPECT_EQ(win.tunings.CurTuning[4], 67);
    EXPECT_TRUE(dialogs.Shown.empty());
}

TEST_F(InstrumentModes, EachHasItsStringsCaptionLinesAndSetting)
{
    struct Row {
        void (MainWin::*Command)();
        int Strings;
        const char* Caption;
    };
    const Row rows[] = {
        {&MainWin::mnuBanjo,    5, "LYRANO Tablature Editor for Banjo"        },
        {&MainWin::mnuMandolin, 4, "LYRANO Tablature Editor for Mandolin/Bass"},
        {&MainWin::mnuGuitar,   6, "LYRANO Tablature Editor for Guitar"       },
    };
    for (const Row& row : rows) {
        (win.*row.Command)();
        EXPECT_EQ(win.tune.NumStrings, row.Strings);
        EXPECT_EQ(win.form.Caption, row.Caption);
        const auto& lines = win.form.Line1Visible;
        EXPECT_EQ(std::count(lines.begin(), lines.end(), true), row.Strings);
        EXPECT_EQ(settings.Get("Prefs", "NumStrings", ""), std::to_string(row.Strings));
        EXPECT_EQ(win.form.CursorY, StringY(row.Strings));
    }
}

TEST_F(InstrumentModes, TheModeThatIsOnThrowsTheTuneAwayAllTheSame)
{
    Type("1\r");
    win.mnuGuitar();
    EXPECT_EQ(dialogs.Shown.size(), 1U) << "the save question";
    EXPECT_EQ(win.tune.LastNote, 0);
}

TEST_F(InstrumentModes, AModeChangeGivesTheSmallViewBack)
{
    win.pages.mnuLargeview();
    win.mnuBanjo();
    EXPECT_FALSE(win.pages.LargeView);
    EXPECT_FALSE(win.pages.LargeView);
}

TEST_F(InstrumentModes, TheTuningFormFollowsTheMode)
{
    win.mnuTuning();
    win.mnuBanjo();
    win.mnuTuning();
    win.mnuMandolin();
    win.mnuTuning();
    EXPECT_EQ(system.Forms, (std::vector{Form::Guitar, Form::banjo, Form::bass}));
}

}  // namespace
}  // namespace quillon
