#include "store/tune_file.h"
#include "support/desk.h"

namespace quillon {
namespace {

class SaveQuestion : public Desk {
protected:
    SaveQuestion()
    {
        Start();
        Type("1\r");
    }

    /// Answers Yes and then cancels the save dialog.
    void YesThenCancel()
    {
        dialogs.YesNo = {true};
        dialogs.Files = {std::nullopt};
    }
};

TEST_F(SaveQuestion, HasItsTextAQuestionIconAndNoTitle)
{
    win.mnuNew();
    ASSERT_EQ(dialogs.Shown.size(), 1U);
    EXPECT_EQ(dialogs.Shown[0].Icon, Icon::Question);
    EXPECT_EQ(dialogs.Shown[0].Title, "");
    EXPECT_EQ(dialogs.Shown[0].Text, "        FILE NOT SAVED\n\nDo you want to save your work?");
}

TEST_F(SaveQuestion, IsAskedByAllItsCallersWhenThereAreUnsavedChangesAndNotOtherwise)
{
    void (MainWin::*const callers[])() = {
        &MainWin::mnuNew,      &MainWin::mnuOpen, &MainWin::mnuGuitar, &MainWin::mnuBanjo,
        &MainWin::mnuMandolin, &MainWin::mnuExit, &MainWin::Unload,
    };
    for (const auto caller : callers) {
        for (const SavedState saved : {SavedState::Unsaved, SavedState::Saved}) {
            win.form.Saved = saved;
            dialogs.Shown.clear();
            (win.*caller)();
            EXPECT_EQ(dialogs.Shown.size(), saved == SavedState::Saved ? 0U : 1U);
        }
    }
}

TEST_F(SaveQuestion, AnsweredNoThrowsTheWorkAway)
{
    win.mnuNew();
    EXPECT_EQ(win.form.Saved, SavedState::Saved);
    EXPECT_EQ(win.tune.LastNote, 0);
}

TEST_F(SaveQuestion, AnsweredYesWithoutANameRunsSaveAs)
{
    dialogs.YesNo = {true};
    dialogs.Files = {folder.Path("a.gui")};
    win.mnuNew();
    EXPECT_EQ(dialogs.FileDialogs.size(), 1U);
    EXPECT_TRUE(std::filesystem::exists(folder.Path("a.gui")));
    EXPECT_EQ(win.tune.LastNote, 0);
}

TEST_F(SaveQuestion, AnsweredYesWithABlankNameRunsSaveAsToo)
{
    win.tune.FileName = " ";
    YesThenCancel();
    win.mnuNew();
    EXPECT_EQ(dialogs.FileDialogs.size(), 1U);
}

TEST_F(SaveQuestion, AnsweredYesWithANameSavesThere)
{
    SaveAs(folder.Path("a.gui"));
    Type("2\r");
    dialogs.YesNo = {true};
    win.mnuNew();
    EXPECT_EQ(dialogs.FileDialogs.size(), 1U) << "of the first save alone";
    EXPECT_NE(ReadFileBytes(folder.Path("a.gui")).find("\"2\""), std::string::npos);
}

TEST_F(SaveQuestion, AnsweredYesWithACancelledSaveAsStopsNewWithThePageBlankAlready)
{
    win.cmdRefresh();
    YesThenCancel();
    const std::string table = Table();
    win.mnuNew();
    EXPECT_EQ(Table(), table);
    EXPECT_EQ(win.form.Saved, SavedState::Unsaved);
    EXPECT_TRUE(win.pages.Page(0).Surface.Picture().Operations().empty());
}

TEST_F(SaveQuestion, AnsweredYesWithACancelledSaveAsStopsOpen)
{
    YesThenCancel();
    win.mnuOpen();
    EXPECT_EQ(dialogs.FileDialogs.size(), 1U) << "no open dialog";
    EXPECT_EQ(win.form.Saved, SavedState::Unsaved);
}

TEST_F(SaveQuestion, ExitAfterYesAndACancelledSaveAsKeepsTheProgramRunning)
{
    YesThenCancel();
    win.mnuExit();
    EXPECT_EQ(system.Ends, 0);
    EXPECT_EQ(win.form.Saved, SavedState::Unsaved);
}

TEST_F(SaveQuestion, ClosingTheFormAfterYesAndACancelledSaveAsGoesOnWithTheWorkUnsaved)
{
    YesThenCancel();
    win.Unload();  // does not refuse
    EXPECT_EQ(dialogs.Shown.size(), 1U);
    EXPECT_EQ(win.form.Saved, SavedState::Unsaved);
    EXPECT_EQ(system.Ends, 0) << "without the explicit end";
}

TEST_F(SaveQuestion, ExitAfterNoEnds)
{
    win.mnuExit();
    EXPECT_EQ(win.form.Saved, SavedState::Saved);
    EXPECT_EQ(system.Ends, 1);
}

TEST_F(SaveQuestion, NeitherExitNorNewWritesSettings)
{
    settings.Written.clear();
    win.mnuNew();
    win.mnuExit();
    EXPECT_TRUE(settings.Written.empty());
}

}  // namespace
}  // namespace quillon
