#include "headless/scenario.h"
#include "shell/rescue.h"
#include "store/tune_file.h"
#include "support/temporary_directory.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <sstream>

namespace quillon {
namespace {

/// A scripted window; after each line the copy is refreshed, as after each event in the window.
class FreshRescueCopy : public testing::Test {
protected:
    FreshRescueCopy()
    {
        setenv("TMPDIR", elsewhere.c_str(), 1);
        std::filesystem::create_directory(own);
    }

    ~FreshRescueCopy() override { setenv("TMPDIR", temporary.c_str(), 1); }

    void Play(const std::string& script)
    {
        std::istringstream lines(script);
        for (std::string line; std::getline(lines, line);) {
            scenario.Play(line);
            copy.Refresh();
        }
    }

    static std::size_t CopiesIn(const std::string& place)
    {
        return static_cast<std::size_t>(
            std::ranges::count_if(std::filesystem::directory_iterator(place), [](const auto& file) {
                return file.path().string().find("-Rescue-") != std::string::npos;
            }));
    }

    std::size_t Copies() const { return CopiesIn(own); }

    /// Nothing can be written where the copies are until it is given back.
    void TakeAway() const
    {
        std::filesystem::rename(own, folder.Path("away"));
        WriteFileBytes(own, "");
    }

    void GiveBack() const
    {
        std::filesystem::remove(own);
        std::filesystem::rename(folder.Path("away"), own);
    }

    /// Two full measures of quarters on string 1.
    void TypeTwoMeasures()
    {
        for (int measure = 0; measure < 2; ++measure) {
            for (const char* fret : {"0", "2", "3", "5"})
                Play(std::string("type ") + fret + "\nkey Enter");
            Play("key Enter");
        }
    }

    const std::string temporary = std::filesystem::temp_directory_path().string();
    TemporaryDirectory folder;
    const std::string own = folder.Path("own");
    const std::string elsewhere = folder.Path("elsewhere");
    std::ostringstream output;
    Scenario scenario{folder.Path(), output};
    RescueCopy copy{scenario.Window().tune, scenario.Window().form, own};
};

TEST_F(FreshRescueCopy, IsThereAfterTheFirstKeyAndHoldsEveryLaterOne)
{
    Play("");
    EXPECT_EQ(Copies(), 0U);
    Play("type 3");
    ASSERT_EQ(Copies(), 1U);
    EXPECT_EQ(ReadFileBytes(copy.Path()), TuneBytes(scenario.Window().tune));
    Play("key Enter\ntype 5\nkey Enter");
    ASSERT_EQ(Copies(), 1U);
    EXPECT_EQ(ReadFileBytes(copy.Path()), TuneBytes(scenario.Window().tune));
}

TEST_F(FreshRescueCopy, GoesWhenTheTuneIsSaved)
{
    Play("type 3\nkey Enter\ndialog tune.gui\nmenu mnuSaveAs");
    EXPECT_EQ(Copies(), 0U);
    EXPECT_EQ(copy.Path(), "");
}

TEST_F(FreshRescueCopy, GoesWithTheUsersOwnNo)
{
    Play("type 3\nkey Enter\nask no\nmenu mnuNew");
    EXPECT_EQ(Copies(), 0U);
}

TEST_F(FreshRescueCopy, StaysWhenSaveAsIsCancelled)
{
    Play("type 3\nkey Enter\nask yes\ndialog cancel\nmenu mnuNew");
    EXPECT_EQ(Copies(), 1U);
}

TEST_F(FreshRescueCopy, HoldsTheParkedTailDuringAnInsertion)
{
    TypeTwoMeasures();
    Play("prompt 1\npress lblMeasNum\nmenu mnuInsMeas\ntype 7\nkey Enter");
    Tune tune;
    ItemReader reader(ReadFileBytes(copy.Path()));
    ReadTune(reader, tune);
    EXPECT_EQ(tune.LastMeas, 3);
    EXPECT_EQ(tune[2].Slot(6), "7");
    Play("press cmdNext");
    EXPECT_EQ(ReadFileBytes(copy.Path()), TuneBytes(scenario.Window().tune));
    EXPECT_EQ(Copies(), 1U);
}

TEST_F(FreshRescueCopy, OfATailThatASecondInsertionThrowsAwayIsKept)
{
    TypeTwoMeasures();
    Play("prompt 1\npress lblMeasNum\nmenu mnuInsMeas\ntype 7\nkey Enter");
    const std::string first = copy.Path();
    const std::string held = ReadFileBytes(first);
    Play("menu mnuInsMeas");
    EXPECT_EQ(ReadFileBytes(first), held);
    EXPECT_NE(copy.Path(), first);
}

TEST_F(FreshRescueCopy, OfATailThatMnuAppendLeavesBehindIsKept)
{
    TypeTwoMeasures();
    Play("prompt 1\npress lblMeasNum\nmenu mnuInsMeas\ntype 7\nkey Enter");
    const std::string first = copy.Path();
    const std::string held = ReadFileBytes(first);
    Play("menu mnuAppend\ntype 5\nkey Enter");
    EXPECT_EQ(ReadFileBytes(first), held);
    EXPECT_NE(copy.Path(), first);
}

TEST_F(FreshRescueCopy, OfATuneThatIsSavedWithoutItsTailIsKept)
{
    TypeTwoMeasures();
    Play("dialog tune.gui\nmenu mnuSaveAs\nprompt 1\npress lblMeasNum\nmenu mnuInsMeas\ntype 7");
    const std::string first = copy.Path();
    const std::string held = ReadFileBytes(first);
    Play("menu mnuSave");
    EXPECT_EQ(ReadFileBytes(first), held);
}

TEST_F(FreshRescueCopy, SurvivesARunTimeFault)
{
    TypeTwoMeasures();
    const std::string held = ReadFileBytes(copy.Path());
    Play("menu mnuCopy\nkey Escape");
    scenario.Window().form.mnuPasteEnabled = true;
    std::remove("CopyBuff.Dat");
    Play("menu mnuPaste");
    EXPECT_EQ(scenario.Status(), 1);
    EXPECT_EQ(ReadFileBytes(copy.Path()), held);
}

TEST_F(FreshRescueCopy, FromBeforeTheEventOutlivesAFault)
{
    TypeTwoMeasures();
    const std::string held = ReadFileBytes(copy.Path());
    scenario.Window().tune[2].Slot(6) = "half done";
    EXPECT_EQ(copy.Keep(), copy.Path());
    EXPECT_EQ(ReadFileBytes(copy.Path()), held);
}

TEST_F(FreshRescueCopy, ThatIsDamagedOrGoneIsWrittenAnewAtAFault)
{
    Play("type 3");
    for (const bool gone : {false, true}) {
        WriteFileBytes(copy.Path(), "1,2");
        if (gone)
            std::filesystem::remove(copy.Path());
        EXPECT_EQ(ReadFileBytes(copy.Keep()), TuneBytes(scenario.Window().tune));
    }
}

TEST_F(FreshRescueCopy, IsMadeAtAFaultInTheFirstEvent)
{
    scenario.Window().form.Saved = SavedState::Unsaved;
    EXPECT_EQ(ReadFileBytes(copy.Keep()), TuneBytes(scenario.Window().tune));
}

TEST_F(FreshRescueCopy, IsNotKeptAtAFaultOnceTheTuneIsSavedOrDiscarded)
{
    Play("type 3");
    scenario.Window().form.Saved = SavedState::Saved;
    EXPECT_EQ(copy.Keep(), "");
    EXPECT_EQ(Copies(), 0U);
}

TEST_F(FreshRescueCopy, OfALostTailIsNamedAtAFault)
{
    TypeTwoMeasures();
    Play("prompt 1\npress lblMeasNum\nmenu mnuInsMeas\ntype 7");
    const std::string first = copy.Path();
    scenario.Window().form.Saved = SavedState::Saved;
    EXPECT_EQ(copy.Keep(), first);
    EXPECT_EQ(Copies(), 1U);
}

TEST_F(FreshRescueCopy, SurvivesATableThatCannotBeWritten)
{
    Play("type 3");
    const std::string held = ReadFileBytes(copy.Path());
    scenario.Window().tune.LastNote = 1501;
    copy.Refresh();
    EXPECT_EQ(ReadFileBytes(copy.Path()), held);
    EXPECT_EQ(copy.Keep(), copy.Path());
}

TEST_F(FreshRescueCopy, OfASaveThatFailsIsKeptThoughNothingWasChanged)
{
    TypeTwoMeasures();
    Play("dialog tune.gui\nmenu mnuSaveAs");
    EXPECT_EQ(Copies(), 0U);
    scenario.Window().tune.FileName = "/dev/full";
    scenario.Play("menu mnuSave");
    EXPECT_EQ(scenario.Status(), 1);
    EXPECT_EQ(ReadFileBytes(copy.Keep()), ReadFileBytes("tune.gui"));
}

TEST_F(FreshRescueCopy, OnAFullDiskIsSimplyNotThere)
{
    RescueCopy nowhere(scenario.Window().tune, scenario.Window().form,
                       "/dev/full");  // a file where the folder should be
    Play("type 3");
    nowhere.Refresh();
    EXPECT_EQ(nowhere.Path(), "");
    EXPECT_EQ(nowhere.Keep(), "");
}

TEST_F(FreshRescueCopy, KeepsWhatItHadWhenTheDiskFillsUp)
{
    Play("type 3");
    const std::string held = ReadFileBytes(copy.Path());
    const std::string name = std::filesystem::path(copy.Path()).filename();
    TakeAway();
    Play("type 5");
    GiveBack();
    EXPECT_EQ(ReadFileBytes(own + "/" + name), held);
    Play("type 7");
    EXPECT_EQ(ReadFileBytes(copy.Path()), TuneBytes(scenario.Window().tune));
}

TEST_F(FreshRescueCopy, ThatHasFallenBehindIsBroughtUpToDateAtAFault)
{
    Play("type 3");
    TakeAway();
    Play("type 5");
    GiveBack();
    EXPECT_EQ(ReadFileBytes(copy.Keep()), TuneBytes(scenario.Window().tune));
}

TEST_F(FreshRescueCopy, ThatCannotBeBroughtUpToDateIsKeptElsewhereAtAFault)
{
    std::filesystem::create_directory(elsewhere);
    Play("type 3");
    TakeAway();
    Play("type 5");
    const std::string kept = copy.Keep();
    EXPECT_EQ(std::filesystem::path(kept).parent_path(), elsewhere);
    EXPECT_EQ(ReadFileBytes(kept), TuneBytes(scenario.Window().tune));
    EXPECT_EQ(CopiesIn(elsewhere), 1U);
}

TEST_F(FreshRescueCopy, InAFolderThatCannotBeWrittenIsSimplyNotThere)
{
    RescueCopy nowhere(scenario.Window().tune, scenario.Window().form, folder.Path("missing"));
    Play("type 3");
    nowhere.Refresh();
    EXPECT_EQ(nowhere.Path(), "");
}

TEST_F(FreshRescueCopy, OfALivingRunIsLockedAndNotOffered)
{
    Play("type 3");
    EXPECT_TRUE(IsLocked(copy.Path()));
    EXPECT_EQ(RescueCopiesIn(own).size(), 0U);
    Play("key Enter\ntype 5");
    EXPECT_TRUE(IsLocked(copy.Path())) << "written anew";
}

TEST_F(FreshRescueCopy, IsOfferedOnceItsRunHasEnded)
{
    {
        RescueCopy finished(scenario.Window().tune, scenario.Window().form, own);
        scenario.Play("type 3");
        finished.Refresh();
    }
    EXPECT_EQ(RescueCopiesIn(own).size(), 1U);
}

TEST_F(FreshRescueCopy, ThatIsLeftBehindIsOfferedAtOnce)
{
    TypeTwoMeasures();
    Play("prompt 1\npress lblMeasNum\nmenu mnuInsMeas\ntype 7\nkey Enter");
    const std::string first = std::filesystem::path(copy.Path()).filename();
    Play("menu mnuAppend\ntype 5\nkey Enter");
    EXPECT_EQ(RescueCopiesIn(own), std::vector{first});
}

TEST_F(FreshRescueCopy, OfALivingRunCannotBeSavedOver)
{
    RescueCopy other(scenario.Window().tune, scenario.Window().form, own);
    Play("type 3");
    other.Refresh();
    const std::string held = ReadFileBytes(other.Path());
    Play("key Enter\ndialog " + other.Path() + "\nmenu mnuSaveAs");
    EXPECT_EQ(scenario.Window().form.Saved, SavedState::Unsaved)
        << "as after any failure of Save As";
    EXPECT_EQ(ReadFileBytes(other.Path()), held);
    Play("menu mnuSave");
    EXPECT_EQ(scenario.Status(), 0) << "no name, no Save";
    scenario.Window().form.mnuSaveEnabled = true;
    Play("menu mnuSave");
    EXPECT_EQ(scenario.Status(), 1);
    EXPECT_EQ(ReadFileBytes(other.Path()), held);
    EXPECT_EQ(ReadFileBytes(copy.Keep()), TuneBytes(scenario.Window().tune));
}

TEST_F(FreshRescueCopy, IsReadByItsOwnerAlone)
{
    Play("type 3");
    EXPECT_EQ(std::filesystem::status(copy.Path()).permissions(),
              std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
}

}  // namespace
}  // namespace quillon
