#include "store/tune_file.h"
#include "support/desk.h"

namespace quillon {
namespace {

class StartUp : public Desk {
protected:
    /// A tune of two full measures.
    void WriteTune(const std::string& name)
    {
        Tune tune;
        AddFullMeasures(tune, 2);
        WriteFileBytes(folder.Path(name), TuneBytes(tune));
    }

    void StartWith(const std::string& commandLine)
    {
        ASSERT_TRUE(win.Load());
        win.FirstActivate(commandLine);
    }
};

TEST_F(StartUp, WithoutSettingsTakesAllDefaultsWithoutAMessage)
{
    ASSERT_TRUE(win.Load());
    EXPECT_EQ(win.page.BodyFontSize, 10);
    EXPECT_EQ(win.page.BodyFontName, "Arial");
    EXPECT_EQ(win.page.TitleFontName, "Arial");
    EXPECT_EQ(win.page.TitleFontSize, 20);
    EXPECT_EQ(win.page.PageLeft, 1);
    EXPECT_EQ(win.page.PageRight, 1);
    EXPECT_EQ(win.page.PageTop, 1);
    EXPECT_EQ(win.page.StaveSpace, .75F);
    EXPECT_EQ(win.tune.NumStrings, 6);
    EXPECT_EQ(win.page.MidiDevice, "-1");
    EXPECT_TRUE(win.page.TitleCentered);
    EXPECT_TRUE(dialogs.Shown.empty());
    EXPECT_TRUE(settings.Written.empty());
}

TEST_F(StartUp, ReadsTheLeadingNumberOfEachSetting)
{
    settings.Values = {
        {{"Prefs", "FontSize"},      "12.5 pt"},
        {{"Prefs", "FontName"},      "Times"  },
        {{"Prefs", "TitleFont"},     "Courier"},
        {{"Prefs", "TitleFontSize"}, "24"     },
        {{"Prefs", "PageLeft"},      ".5"     },
        {{"Prefs", "PageRight"},     "0.7"    },
        {{"Prefs", "PageTop"},       "2"      },
        {{"Prefs", "StaveSpace"},    "1.25"   },
        {{"Prefs", "NumStrings"},    "5"      },
        {{"Prefs", "MIDIDEVICE"},    "03"     },
        {{"Prefs", "TitleCentered"}, "False"  },
    };
    ASSERT_TRUE(win.Load());
    EXPECT_EQ(win.page.BodyFontSize, 12.5F);
    EXPECT_EQ(win.page.BodyFontName, "Times");
    EXPECT_EQ(win.page.TitleFontName, "Courier");
    EXPECT_EQ(win.page.TitleFontSize, 24);
    EXPECT_EQ(win.page.PageLeft, .5F);
    EXPECT_EQ(win.page.PageRight, .7F);
    EXPECT_EQ(win.page.PageTop, 2);
    EXPECT_EQ(win.page.StaveSpace, 1.25F);
    EXPECT_EQ(win.tune.NumStrings, 5);
    EXPECT_EQ(win.page.MidiDevice, "3");
    EXPECT_FALSE(win.page.TitleCentered);
}

TEST_F(StartUp, ReadsTheTitleSizeFromOneKeyAndNotFromTheOneThatIsWritten)
{
    settings.Values = {
        {{"Prefs", "TFontSize"}, "30"}
    };
    ASSERT_TRUE(win.Load());
    EXPECT_EQ(win.page.TitleFontSize, 20);
}

TEST_F(StartUp, SetsTheTuneState)
{
    ASSERT_TRUE(win.Load());
    EXPECT_EQ(win.form.CaretOn, 0);
    EXPECT_EQ(win.tune.CurMeas, 1);
    EXPECT_EQ(win.tune.LastMeas, 0);
    EXPECT_EQ(win.tune.CurNote, 1);
    EXPECT_EQ(win.tune.LastNote, 0);
    EXPECT_EQ(win.form.MeasHead, 1);
    EXPECT_EQ(win.form.CurValue, kQuarter);
    EXPECT_EQ(win.form.CurBeats, 4);
    EXPECT_EQ(win.form.CurBeatUnit, 4);
    EXPECT_EQ(win.form.MeasCapacity, 48);
    EXPECT_EQ(win.form.MeasFill, 0);
    EXPECT_EQ(win.form.EntryState, EntryState::Append);
    EXPECT_EQ(win.form.InputMode, InputMode::Fret);
    EXPECT_EQ(win.form.Saved, SavedState::BeforeTune);
    EXPECT_TRUE(win.form.Timer1Enabled);
    EXPECT_TRUE(win.form.FirstActivation);
    EXPECT_FALSE(win.form.mnuSaveEnabled);
    EXPECT_FALSE(win.form.mnuPasteEnabled);
}

TEST_F(StartUp, SetsTheFormWhateverItHeld)
{
    ASSERT_TRUE(win.Load());
    const std::string state = State(), caption = win.form.Caption;
    win.tune[3].Measure = 1;
    win.tune.CurMeas = win.tune.LastMeas = win.tune.CurNote = win.tune.LastNote = 9;
    win.form.MeasHead = win.form.MeasEnd = win.form.CurBeats = win.form.CurBeatUnit = 9;
    win.form.CurValue = win.form.MeasCapacity = win.form.MeasFill = win.form.CursorX = 9;
    win.form.EntryState = EntryState::Review;
    win.form.InputMode = InputMode::Chord;
    win.form.CaretOn = -1;
    win.form.Saved = SavedState::Unsaved;
    win.form.Timer1Enabled = win.form.FirstActivation = false;
    win.form.mnuSaveEnabled = win.form.mnuPasteEnabled = true;
    win.form.txtRptBracket.Text = "1.";
    win.form.Parked.Bytes = "1";
    win.form.Line1Visible = {};
    win.form.Caption.clear();
    win.page.FormFontName.clear();
    win.pages.PageMax = win.pages.ShownPage = win.pages.MarqueeOn = 2;
    ASSERT_TRUE(win.Load());
    EXPECT_EQ(State(), state);
    EXPECT_EQ(win.tune[3].Measure, 0);
    EXPECT_TRUE(win.form.FirstActivation);
    EXPECT_FALSE(win.form.mnuSaveEnabled);
    EXPECT_FALSE(win.form.mnuPasteEnabled);
    EXPECT_EQ(win.form.txtRptBracket.Text, "");
    EXPECT_EQ(win.form.Parked.Bytes, "");
    EXPECT_TRUE(win.form.Line1Visible[5]);
    EXPECT_EQ(win.form.Caption, caption);
    EXPECT_EQ(win.page.FormFontName, "Arial");
    EXPECT_EQ(win.pages.PageMax, 0);
    EXPECT_EQ(win.pages.ShownPage, 0);
    EXPECT_EQ(win.pages.MarqueeOn, 0);
}

TEST_F(StartUp, CaptionAndStringLinesFollowTheInstrument)
{
    const std::pair<const char*, const char*> captions[] = {
        {"6", "LYRANO Tablature Editor for Guitar"       },
        {"5", "LYRANO Tablature Editor for Banjo"        },
        {"4", "LYRANO Tablature Editor for Mandolin/Bass"},
    };
    for (const auto& [strings, caption] : captions) {
        settings.Values[{"Prefs", "NumStrings"}] = strings;
        ASSERT_TRUE(win.Load());
        EXPECT_EQ(win.form.Caption, caption);
        for (int i = 0; i < 6; ++i)
            EXPECT_EQ(win.form.Line1Visible[static_cast<std::size_t>(i)],
                      i < static_cast<int>(Val(strings)));
    }
}

TEST_F(StartUp, AnyOtherNumberOfStringsIsAGuitars)
{
    const std::pair<const char*, int> settingsAndStrings[] = {
        {"3.4", 6},
        {"3.5", 4},
        {"4.4", 4},
        {"5.2", 5},
        {"6.5", 6},
        {"6.6", 6},
        {"7",   6},
        {"",    6},
    };
    for (const auto& [setting, strings] : settingsAndStrings) {
        settings.Values[{"Prefs", "NumStrings"}] = setting;
        ASSERT_TRUE(win.Load());
        EXPECT_EQ(win.tune.NumStrings, strings) << setting;
    }
}

TEST_F(StartUp, WithoutTheNotationFontShowsTheBoxAndEnds)
{
    system.MissingFonts = {"TAB", "Tab", "tab"};
    EXPECT_FALSE(win.Load());
    ASSERT_EQ(dialogs.Shown.size(), 1U);
    EXPECT_EQ(dialogs.Shown[0].Icon, Icon::Stop);
    EXPECT_EQ(dialogs.Shown[0].Title, "Installation Error");
    EXPECT_EQ(dialogs.Shown[0].Text,
              "You have not properly installed the font\r\n TAB.TTF.  Please refer to the manual "
              "and install  this font before proceding.\r\n\r\nYou will now be aborted from the "
              "program");
    EXPECT_EQ(win.form.Saved, SavedState::Saved);
    EXPECT_EQ(system.Ends, 1);
}

TEST_F(StartUp, RebuildsAMissingTuningFileSilently)
{
    ASSERT_TRUE(win.Load());
    EXPECT_TRUE(std::filesystem::exists(folder.Path("Strings6.tun")));
    EXPECT_EQ(win.tunings.CurTuning[0], 64);
    EXPECT_TRUE(dialogs.Shown.empty());
    EXPECT_TRUE(settings.Written.empty());
}

TEST_F(StartUp, WithNoCommandLineRunsNewAndShowsTheSplashSoThatExitAsksNothing)
{
    StartWith("");
    EXPECT_EQ(system.Forms, std::vector{Form::Splash});
    EXPECT_FALSE(win.form.FirstActivation);
    EXPECT_EQ(win.form.Saved, SavedState::Saved);
    EXPECT_EQ(win.tune.CurNote, 2);
    EXPECT_TRUE(win.tune[1].IsHead());
    EXPECT_EQ(win.form.Focus, Control::None);
    win.SplashClosed();
    EXPECT_EQ(win.form.Focus, Control::StaffBox);
    win.mnuExit();
    EXPECT_TRUE(dialogs.Shown.empty());
    EXPECT_EQ(system.Ends, 1);
}

TEST_F(StartUp, ANewTuneHasItsFreshState)
{
    Start();
    win.editor.SetFocus(Control::cmdRefresh);
    win.mnuNew();
    EXPECT_EQ(win.tune.CurMeas, 1);
    EXPECT_EQ(win.tune.LastMeas, 0);
    EXPECT_EQ(win.tune.CurNote, 2);
    EXPECT_EQ(win.tune.LastNote, 0);
    EXPECT_EQ(win.form.MeasHead, 1);
    EXPECT_EQ(win.form.MeasEnd, 0);
    EXPECT_EQ(win.form.CursorX, 48);
    EXPECT_EQ(win.form.CursorY, 76);
    EXPECT_EQ(win.view.lblMeasNum, "1");
    EXPECT_EQ(win.view.lblLastNote, "0");
    EXPECT_EQ(win.form.Toolbar1, kQuarter);
    EXPECT_EQ(win.form.Focus, Control::StaffBox);
    EXPECT_EQ(Table(),
              "1: 1 999 0 0 4 4 0 0 \"\" \" \" \" \" \"\" \"\" \"\" \"\" \"\" \"\" \"\"\n");
}

TEST_F(StartUp, AQuotedPathOfABanjoFileTakesMode5ForTheFirstTuneAlone)
{
    WriteTune("tune.bjo");
    StartWith("\"" + folder.Path("tune.bjo") + "\"");
    EXPECT_EQ(win.tune.FileName, folder.Path("tune.bjo"));
    EXPECT_EQ(win.tune.NumStrings, 5);
    EXPECT_EQ(win.form.Caption, "Lyrano - Tablature Editor for Banjo");
    EXPECT_FALSE(win.form.Line1Visible[5]);
    EXPECT_TRUE(win.form.Line1Visible[4]);
    EXPECT_EQ(settings.Get("Prefs", "NumStrings", "6"), "6") << "the settings still say 6";
    EXPECT_EQ(win.tunings.CurTuning[0], 64) << "the guitar's first tuning";
    EXPECT_EQ(win.tunings.CurTuning[5], 40);
    EXPECT_EQ(win.tune.LastMeas, 2);
    EXPECT_FALSE(win.form.FirstActivation);
    EXPECT_TRUE(dialogs.FileDialogs.empty());
    EXPECT_TRUE(system.Forms.empty()) << "no splash";
}

TEST_F(StartUp, AnUnquotedPathWithBlanksIsTakenWhole)
{
    WriteTune("my old tune.bss");
    StartWith(folder.Path("my old tune.bss"));
    EXPECT_EQ(win.tune.FileName, folder.Path("my old tune.bss"));
    EXPECT_EQ(win.tune.NumStrings, 4);
    EXPECT_EQ(win.form.Caption, "Lyrano - Tablature Editor for Mandolin/Bass");
    EXPECT_EQ(win.tune.LastMeas, 2);
}

TEST_F(StartUp, APathInCapitalsDoesNotMatchAndTheFileLoadsAnyway)
{
    WriteTune("TUNE.BJO");
    StartWith(folder.Path("TUNE.BJO"));
    EXPECT_EQ(win.tune.NumStrings, 6);
    EXPECT_EQ(win.form.Caption, "Lyrano - Tablature Editor for Guitar");
    EXPECT_EQ(win.tune.LastMeas, 2);
}

TEST_F(StartUp, OnlyTheLastThreeCharactersAreLookedAt)
{
    WriteTune("songbss");
    StartWith(folder.Path("songbss"));
    EXPECT_EQ(win.tune.NumStrings, 4);
    StartWith("bjo");
    EXPECT_EQ(win.tune.NumStrings, 5);
    StartWith("jo");
    EXPECT_EQ(win.tune.NumStrings, 6);
}

TEST_F(StartUp, AfterALeadingQuoteTheLastCharacterIsCutWhateverItIs)
{
    WriteTune("tune.gu");
    StartWith("\"" + folder.Path("tune.gui"));
    EXPECT_EQ(win.tune.FileName, folder.Path("tune.gu"));
    EXPECT_EQ(win.tune.LastMeas, 2);
}

TEST_F(StartUp, AFileThatIsMissingShowsItsBox)
{
    StartWith(folder.Path("missing.gui"));
    ASSERT_EQ(dialogs.Shown.size(), 1U);
    EXPECT_EQ(dialogs.Shown[0].Icon, Icon::Stop);
    EXPECT_EQ(dialogs.Shown[0].Title, "");
    EXPECT_EQ(dialogs.Shown[0].Text, "File Not Found");
    EXPECT_FALSE(win.form.FirstActivation);
}

TEST_F(StartUp, AFileThatIsMissingLeavesTheTableEmptyUntilFileNew)
{
    StartWith(folder.Path("missing.gui"));
    EXPECT_EQ(Table(), "");
    EXPECT_EQ(win.tune.CurNote, 1);
    EXPECT_EQ(win.tune.FileName, folder.Path("missing.gui"));
    EXPECT_FALSE(win.form.mnuSaveEnabled);
    win.mnuNew();
    EXPECT_TRUE(win.tune[1].IsHead());
    EXPECT_EQ(win.tune.CurNote, 2);
    EXPECT_EQ(win.tune.FileName, "");
}

TEST_F(StartUp, LaterActivationsRedrawTheMeasure)
{
    Start();
    const unsigned before = win.view.StaffBox.Picture().Revision();
    win.editor.Activate();
    EXPECT_NE(win.view.StaffBox.Picture().Revision(), before);
}

}  // namespace
}  // namespace quillon
