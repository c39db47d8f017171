#include "shell/page_setup.h"

#include "support/desk.h"

namespace quillon {
namespace {

class PageSetupTest : public Desk {
protected:
    /// The form, opened from the main form.
    PageSetup& OpenForm()
    {
        win.mnuPageSet();
        return *win.frmPgSetup;
    }

    void SetUp() override { Start(); }
};

TEST_F(PageSetupTest, ABodyFontOfSize9GivesTheMessageAndIsStoredAs10WithItsName)
{
    PageSetup& setup = OpenForm();
    dialogs.Fonts.push_back(FontChoice{"Courier", 9});
    setup.cmdBodyFont();
    ASSERT_EQ(dialogs.Shown.size(), 1U);
    EXPECT_EQ(dialogs.Shown[0].Icon, Icon::None);
    EXPECT_EQ(dialogs.Shown[0].Title, "Font Size Error");
    EXPECT_EQ(dialogs.Shown[0].Text, "Quillon only allows a body font size of 8, 10, or 12.\r\n"
                                     " Defaulting to font size of 10");
    EXPECT_EQ(win.page.BodyFontName, "Courier");
    EXPECT_EQ(win.page.BodyFontSize, 10);
    EXPECT_EQ(win.tune[0].Slot(6), "Courier");
    EXPECT_EQ(win.tune[0].Slot(5), "10");
    EXPECT_EQ(setup.LblBodyFontName, "Courier");
    EXPECT_EQ(setup.lblBodyFontSize, "10");
}

TEST_F(PageSetupTest, BodyFontsOf8And10And12GiveNoMessage)
{
    PageSetup& setup = OpenForm();
    for (int size : {8, 10, 12}) {
        dialogs.Fonts.push_back(FontChoice{"Courier", static_cast<float>(size)});
        setup.cmdBodyFont();
        EXPECT_EQ(win.tune[0].Slot(5), std::to_string(size));
    }
    EXPECT_TRUE(dialogs.Shown.empty());
}

TEST_F(PageSetupTest, ATitleFontOfSize14AndAHalfStaysWhileTheHeaderHasAWholeNumber)
{
    PageSetup& setup = OpenForm();
    dialogs.Fonts.push_back(FontChoice{"Serif", 14.5F});
    setup.cmdTitleFont();
    EXPECT_EQ(win.page.TitleFontSize, 14.5F);
    EXPECT_EQ(win.tune[0].NoteCode, 14);
    EXPECT_EQ(win.tune[0].Slot(3), "Serif");
    EXPECT_EQ(setup.lblTitleFontName, "Serif");
    EXPECT_EQ(setup.lblTitleFontSize, "14.5");
}

TEST_F(PageSetupTest, ATitleFontOfSize14AndAHalfComesBackAs14)
{
    Type("3\r");
    PageSetup& setup = OpenForm();
    dialogs.Fonts.push_back(FontChoice{"Serif", 14.5F});
    setup.cmdTitleFont();
    setup.cmdPgExit();
    SaveAs(folder.Path("air.gui"));
    EXPECT_EQ(win.page.TitleFontSize, 14.5F) << "saving leaves it";
    Open(folder.Path("air.gui"));
    EXPECT_EQ(win.page.TitleFontSize, 14);
    EXPECT_EQ(win.page.TitleFontName, "Serif");
}

TEST_F(PageSetupTest, ACancelledFontDialogChangesNothing)
{
    PageSetup& setup = OpenForm();
    const std::string before = Table();
    setup.cmdBodyFont();
    setup.cmdTitleFont();
    EXPECT_EQ(Table(), before);
    EXPECT_EQ(win.page.BodyFontName, "Arial");
    EXPECT_TRUE(dialogs.Shown.empty());
    ASSERT_EQ(dialogs.FontDialogs.size(), 2U);
    EXPECT_EQ(dialogs.FontDialogs[0].Size, 10);
    EXPECT_EQ(dialogs.FontDialogs[1].Size, 20);
}

TEST_F(PageSetupTest, TheExitButtonOnAnUnchangedFormRewritesEverythingButUncentresTheTitle)
{
    ASSERT_TRUE(win.page.TitleCentered);
    PageSetup& setup = OpenForm();
    settings.Written.clear();
    setup.cmdPgExit();
    const std::vector<std::string> expected = {
        "Prefs/StaveSpace=0.75",    "Prefs/PageTop=1",       "Prefs/PageRight=1",
        "Prefs/PageLeft=1",         "Prefs/PageLeft=1",      "Prefs/PageRight=1",
        "Prefs/PageTop=1",          "Prefs/StaveSpace=0.75", "Prefs/TitleFont=Arial",
        "Prefs/TFontSize=20",       "Prefs/FontName=Arial",  "Prefs/FontSize=10",
        "Prefs/TitleCentered=False"};
    EXPECT_EQ(settings.Written, expected);
    EXPECT_FALSE(win.page.TitleCentered);
    EXPECT_FALSE(setup.Loaded);
}

TEST_F(PageSetupTest, ADoubleQuoteInTheTitleIsTakenAndBreaksTheNextLoad)
{
    Type("3\r");
    PageSetup& setup = OpenForm();
    setup.Text1 = "The \"Red\" Reel, with 1";
    setup.cmdPgExit();
    EXPECT_EQ(win.tune[0].ChordText, "The \"Red\" Reel, with 1");
    SaveAs(folder.Path("red.gui"));
    EXPECT_FAULT(Open(folder.Path("red.gui")), ObjectRequired);
    EXPECT_EQ(dialogs.Shown.back().Icon, Icon::Stop);
}

TEST_F(PageSetupTest, TheSystemsCloseKeepsFontsAndMarginsAndDropsTheTexts)
{
    PageSetup& setup = OpenForm();
    setup.Text1 = "Air";
    setup.txtLeft = "1.5";
    setup.Unload();
    EXPECT_EQ(win.page.PageLeft, 1.5F);
    EXPECT_NE(win.tune[0].ChordText, "Air");
    EXPECT_EQ(settings.Values.at({kPrefs, "PageLeft"}), "1.5");
}

TEST_F(PageSetupTest, TheBoxToCentreTheTitleNeverShowsTheSettingAndActsAtOnce)
{
    PageSetup& setup = OpenForm();
    EXPECT_FALSE(setup.chkJustify);
    EXPECT_TRUE(win.page.TitleCentered);
    setup.chkJustify = true;
    setup.chkJustifyChange();
    setup.chkJustify = false;
    setup.chkJustifyChange();
    EXPECT_FALSE(win.page.TitleCentered);
    setup.chkJustify = true;
    setup.Unload();
    EXPECT_TRUE(win.page.TitleCentered);
    EXPECT_EQ(settings.Values.at({kPrefs, "TitleCentered"}), "True");
}

TEST_F(PageSetupTest, AMarginThatIsNoNumberIsZeroAndItsTextGoesIntoTheSettings)
{
    PageSetup& setup = OpenForm();
    setup.txtTop = "one";
    setup.txtRight = "-.5 in";
    setup.cmdPgExit();
    EXPECT_EQ(win.page.PageTop, 0);
    EXPECT_EQ(win.page.PageRight, -.5F);
    EXPECT_EQ(settings.Values.at({kPrefs, "PageTop"}), "one");
}

TEST_F(PageSetupTest, TheExitButtonWritesEachMarginAsANumberAndThenAsItWasTyped)
{
    PageSetup& setup = OpenForm();
    setup.txtLeft = "1.10 in";
    setup.txtRight = "1.20 in";
    setup.txtTop = "1.30 in";
    setup.txtStaveSpace = ".40 in";
    settings.Written.clear();
    setup.cmdPgExit();
    settings.Written.resize(8);
    const std::vector<std::string> expected = {"Prefs/StaveSpace=0.4",   "Prefs/PageTop=1.3",
                                               "Prefs/PageRight=1.2",    "Prefs/PageLeft=1.1",
                                               "Prefs/PageLeft=1.10 in", "Prefs/PageRight=1.20 in",
                                               "Prefs/PageTop=1.30 in",  "Prefs/StaveSpace=.40 in"};
    EXPECT_EQ(settings.Written, expected);
    EXPECT_EQ(win.page.PageLeft, 1.1F);
    EXPECT_EQ(win.page.PageRight, 1.2F);
    EXPECT_EQ(win.page.PageTop, 1.3F);
    EXPECT_EQ(win.page.StaveSpace, .4F);
}

TEST_F(PageSetupTest, TheSystemsCloseTakesAllFourMargins)
{
    PageSetup& setup = OpenForm();
    setup.txtLeft = "1.1";
    setup.txtRight = "1.2";
    setup.txtTop = "1.3";
    setup.txtStaveSpace = ".4";
    setup.Unload();
    EXPECT_EQ(win.page.PageLeft, 1.1F);
    EXPECT_EQ(win.page.PageRight, 1.2F);
    EXPECT_EQ(win.page.PageTop, 1.3F);
    EXPECT_EQ(win.page.StaveSpace, .4F);
    EXPECT_FALSE(setup.Loaded);
}

TEST_F(PageSetupTest, FontsGoIntoTheSettingsOnClosing)
{
    PageSetup& setup = OpenForm();
    dialogs.Fonts.push_back(FontChoice{"Courier", 12});
    setup.cmdBodyFont();
    dialogs.Fonts.push_back(FontChoice{"Serif", 14.5F});
    setup.cmdTitleFont();
    settings.Written.clear();
    setup.Unload();
    EXPECT_EQ(settings.Values.at({kPrefs, "FontName"}), "Courier");
    EXPECT_EQ(settings.Values.at({kPrefs, "FontSize"}), "12");
    EXPECT_EQ(settings.Values.at({kPrefs, "TitleFont"}), "Serif");
    EXPECT_EQ(settings.Values.at({kPrefs, "TFontSize"}), "14.5");
}

TEST_F(PageSetupTest, TheFormShowsWhatIsInForce)
{
    win.tune[0].ChordText = "Air";
    win.tune[0].Slot(1) = "Trad.";
    win.tune[0].Slot(2) = "arr.";
    win.page.PageTop = .7F;
    const PageSetup& setup = OpenForm();
    EXPECT_EQ(setup.Text1 + setup.Text2 + setup.Text3, "AirTrad.arr.");
    EXPECT_EQ(setup.txtTop, "0.7");
    EXPECT_EQ(setup.txtStaveSpace, "0.75");
    EXPECT_EQ(setup.lblTitleFontName + setup.lblTitleFontSize, "Arial20");
}

TEST_F(PageSetupTest, EnterGoesFromTextToTextAndToTheExitButton)
{
    PageSetup& setup = OpenForm();
    EXPECT_EQ(setup.Focus, PageSetup::Box::Text1);
    setup.Enter();
    EXPECT_EQ(setup.Focus, PageSetup::Box::Text2);
    setup.Enter();
    EXPECT_EQ(setup.Focus, PageSetup::Box::Text3);
    setup.Enter();
    EXPECT_EQ(setup.Focus, PageSetup::Box::cmdPgExit);
    setup.Activate();
    EXPECT_EQ(setup.Focus, PageSetup::Box::Text1);
}

TEST_F(PageSetupTest, TheMainFormIsDisabledWhileItIsOpenAndSavedStays)
{
    PageSetup& setup = OpenForm();
    EXPECT_FALSE(win.form.FormEnabled);
    setup.Text1 = "Air";
    setup.Text2 = "Trad.";
    setup.Text3 = "arr.";
    setup.cmdPgExit();
    EXPECT_EQ(win.tune[0].ChordText + win.tune[0].Slot(1) + win.tune[0].Slot(2), "AirTrad.arr.");
    EXPECT_TRUE(win.form.FormEnabled);
    EXPECT_EQ(win.form.Focus, Control::StaffBox);
    EXPECT_EQ(win.form.Saved, SavedState::Saved);
}

}  // namespace
}  // namespace quillon
