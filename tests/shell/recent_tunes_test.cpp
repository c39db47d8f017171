#include "shell/recent_tunes.h"

#include "support/desk.h"

#include <gtest/gtest.h>

namespace quillon {
namespace {

using Paths = std::vector<std::string>;

class RecentTunesTest : public Desk {
protected:
    std::string TuneFile(const std::string& name)
    {
        Tune tune;
        AddFullMeasures(tune, 2);
        WriteFileBytes(folder.Path(name), TuneBytes(tune));
        return folder.Path(name);
    }
};

TEST_F(RecentTunesTest, TheLatestStandsFirstAndNoneTwice)
{
    EXPECT_EQ(RecentTunes(settings), Paths());
    RememberTune(settings, "/a.gui");
    RememberTune(settings, "/b \xc3\xa9.gui");
    RememberTune(settings, "/a.gui");
    EXPECT_EQ(RecentTunes(settings), (Paths{"/a.gui", "/b \xc3\xa9.gui"}));
}

TEST_F(RecentTunesTest, TenAreKept)
{
    for (int i = 1; i <= 12; ++i)
        RememberTune(settings, "/" + std::to_string(i));
    EXPECT_EQ(RecentTunes(settings).size(), 10U);
    EXPECT_EQ(RecentTunes(settings).front(), "/12");
    EXPECT_EQ(RecentTunes(settings).back(), "/3");
    EXPECT_EQ(settings.Written.back(), "Recent/Tunes=/12\n/11\n/10\n/9\n/8\n/7\n/6\n/5\n/4\n/3");
}

TEST_F(RecentTunesTest, TheSettingsAreWrittenOnlyWhenTheListChanges)
{
    RememberTune(settings, "/a.gui");
    RememberTune(settings, "/a.gui");
    EXPECT_EQ(settings.Written, Paths{"Recent/Tunes=/a.gui"});
}

TEST_F(RecentTunesTest, PathsThatMeanNothingLaterAreLeftOut)
{
    for (const char* path : {"", "a.gui", "/two\nlines.gui"})
        RememberTune(settings, path);
    EXPECT_EQ(settings.Written, Paths());
}

TEST_F(RecentTunesTest, AListThatWasSpoiledByHandGivesWhatIsStillAPath)
{
    settings.Values[{"Recent", "Tunes"}] = "nonsense\n\n/a.gui\n";
    EXPECT_EQ(RecentTunes(settings), Paths{"/a.gui"});
    settings.Values[{"Recent", "Tunes"}] = "/1\n/2\n/3\n/4\n/5\n/6\n/7\n/8\n/9\n/10\n/11\n";
    EXPECT_EQ(RecentTunes(settings).size(), 10U);
}

TEST_F(RecentTunesTest, ATuneIsOpenedOnItsInstrument)
{
    Start();
    OpenWithInstrument(win, TuneFile("reel.bjo"));
    EXPECT_EQ(win.tune.NumStrings, 5);
    EXPECT_EQ(win.tune.FileName, folder.Path("reel.bjo"));
    EXPECT_EQ(win.tune.LastMeas, 2);
    EXPECT_TRUE(dialogs.Shown.empty());
}

TEST_F(RecentTunesTest, TheSaveQuestionIsAskedOnceAndACancelledSaveOpensNothing)
{
    Start();
    const std::string path = TuneFile("reel.bjo");
    Type("1\r");
    dialogs.YesNo = {true};
    dialogs.Files = {std::nullopt};
    OpenWithInstrument(win, path);
    EXPECT_EQ(win.tune.NumStrings, 6);
    EXPECT_EQ(win.tune[2].Slot(6), "1");
    dialogs.Shown.clear();
    dialogs.YesNo = {false};
    OpenWithInstrument(win, path);
    EXPECT_EQ(dialogs.Shown.size(), 1U);
    EXPECT_EQ(win.tune.FileName, path);
}

TEST_F(RecentTunesTest, TheSaveQuestionIsAskedOnceOnTheSameInstrumentToo)
{
    Start();
    const std::string path = TuneFile("reel.gui");
    Type("1\r");
    dialogs.YesNo = {true, true};
    dialogs.Files = {std::nullopt, std::nullopt};
    OpenWithInstrument(win, path);
    EXPECT_EQ(dialogs.YesNo.size(), 1U);
}

TEST_F(RecentTunesTest, ACopyOfATuneHasNoFileThatSaveCouldOverwrite)
{
    Start();
    OpenAsNewTune(win, TuneFile("reel.gui"));
    EXPECT_EQ(win.tune.LastMeas, 2);
    EXPECT_EQ(win.tune.FileName, "");
    EXPECT_FALSE(win.form.mnuSaveEnabled);
    EXPECT_EQ(win.form.Saved, SavedState::Saved);
}

TEST_F(RecentTunesTest, ACopyThatIsNotOpenedLeavesTheTuneItsFile)
{
    Start();
    const std::string path = TuneFile("reel.gui");
    Open(path);
    Type("7");
    ASSERT_EQ(win.form.Saved, SavedState::Unsaved);
    std::filesystem::remove(path);
    std::filesystem::create_directory(path);  // so that Save fails
    dialogs.YesNo = {true};
    EXPECT_THROW(OpenAsNewTune(win, path), Fault);
    EXPECT_EQ(win.tune.FileName, path);
}

}  // namespace
}  // namespace quillon
