#include "support/desk.h"

namespace quillon {
namespace {

class RefreshAndPrint : public Desk {
protected:
    RefreshAndPrint()
    {
        Start();
        Type("1\r");
    }

    bool PagesAreEmpty() { return win.pages.Page(0).Surface.Picture().Operations().empty(); }
    unsigned Revision() const { return win.view.StaffBox.Picture().Revision(); }
};

TEST_F(RefreshAndPrint, RefreshGivesStaffBoxTheFocusBack)
{
    win.editor.SetFocus(Control::cmdRefresh);
    win.form.Timer1Enabled = false;
    const unsigned before = Revision();
    win.cmdRefresh();
    EXPECT_FALSE(PagesAreEmpty());
    EXPECT_EQ(win.form.Focus, Control::StaffBox);
    EXPECT_NE(Revision(), before);
    EXPECT_TRUE(win.form.Timer1Enabled);
}

TEST_F(RefreshAndPrint, RefreshThatStopsGivesTheFocusBackToo)
{
    win.tune[2].ChordText = std::string(200, 'm');
    win.editor.SetFocus(Control::cmdRefresh);
    win.cmdRefresh();
    ASSERT_EQ(dialogs.Shown.size(), 1U);
    EXPECT_EQ(dialogs.Shown[0].Icon, Icon::Stop);
    EXPECT_EQ(dialogs.Shown[0].Title, "");
    EXPECT_EQ(dialogs.Shown[0].Text, "Measure 1 is too wide for a line.");
    EXPECT_EQ(win.form.Focus, Control::StaffBox);
}

TEST_F(RefreshAndPrint, RefreshDoesNothingWhileAMeasureIsInserted)
{
    win.editor.mnuInsMeas();
    win.editor.SetFocus(Control::cmdRefresh);
    const std::string state = State(), table = Table();
    win.cmdRefresh();
    EXPECT_TRUE(PagesAreEmpty());
    EXPECT_EQ(State(), state) << "the focus too";
    EXPECT_EQ(Table(), table);
}

TEST_F(RefreshAndPrint, PrintDoesNotLookAtInputMode)
{
    win.editor.mnuInsMeas();
    Type("3\r");
    printer.Copies = {1};
    const unsigned before = Revision();
    win.mnuPrint();
    ASSERT_EQ(printer.Jobs.size(), 1U);
    EXPECT_NE(printer.Jobs[0].at(0).Log().find("\"3\""), std::string::npos);
    EXPECT_NE(Revision(), before);
    EXPECT_EQ(win.form.InputMode, InputMode::Insert);
    EXPECT_TRUE(PagesAreEmpty());
}

TEST_F(RefreshAndPrint, PrintThatIsCancelledRedrawsTheMeasureToo)
{
    win.tune[2].Slot(6) = "9";
    win.mnuPrint();
    EXPECT_TRUE(printer.Jobs.empty());
    EXPECT_NE(win.view.StaffBox.Picture().Log().find("\"9\""), std::string::npos);
    EXPECT_TRUE(dialogs.Shown.empty());
}

}  // namespace
}  // namespace quillon
