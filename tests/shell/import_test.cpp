#include "shell/import.h"

#include "exchange/forms.h"
#include "exchange/table_music.h"
#include "support/desk.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace quillon {
namespace {

constexpr const char* kTune = "X:1\nT:Two Bars\nM:4/4\nL:1/8\nK:G\nGABc d2g2|gfed G4|]\n";

class ImportTest : public Desk {
protected:
    ImportTest() { Start(); }

    std::string File(const std::string& name, const std::string& bytes)
    {
        WriteFileBytes(folder.Path(name), bytes);
        return folder.Path(name);
    }

    /// As the window imports the first tune of a file.
    bool Import(const std::string& path)
    {
        said = {};
        return TakeImported(win, *MakeImported(win, TunesIn(path).at(0), said), said);
    }

    /// A banjo tune as MusicXML with its tablature. Without a tuning it is the first one.
    std::string BanjoScore(std::optional<int> tuning = {})
    {
        Tune tune;
        tune.NumStrings = 5;
        AddFullMeasures(tune, 2);
        Notices ignored;
        const ExchangeForm& form = *FindForm("musicxml");
        return form.Write(
            MusicOf(tune, {.Tunings = DefaultTunings(5), .Tuning = tuning, .Reader = form.Reader},
                    ignored),
            ignored);
    }

    Notices said;
};

TEST_F(ImportTest, WhatIsImportedIsNewUnnamedAndUnsaved)
{
    ASSERT_TRUE(Import(File("two.abc", kTune)));
    EXPECT_EQ(win.tune.FileName, "");
    EXPECT_EQ(win.form.Saved, SavedState::Unsaved);
    EXPECT_FALSE(win.form.mnuSaveEnabled);
    EXPECT_EQ(win.tune[0].ChordText, "Two Bars");
    EXPECT_EQ(win.tune.LastMeas, 2);
    EXPECT_EQ(win.form.Focus, Control::StaffBox);
    EXPECT_FALSE(system.WaitCursor);
    EXPECT_FALSE(win.pages.Page(0).Surface.Picture().Operations().empty());
    EXPECT_TRUE(dialogs.Shown.empty());
}

TEST_F(ImportTest, ItStandsAsAfterOpeningItsFile)
{
    ASSERT_TRUE(Import(File("two.abc", kTune)));
    const std::string table = Table();
    const std::string measure = win.view.StaffBox.Picture().Log();
    EXPECT_NE(win.tune[10].BeamCode, 0) << "also in measures that were not shown";
    dialogs.Files.push_back(folder.Path("two.gui"));
    win.mnuSaveAs();
    win.OpenDropped(folder.Path("two.gui"));
    EXPECT_EQ(Table(), table);
    EXPECT_EQ(win.view.StaffBox.Picture().Log(), measure);
    EXPECT_EQ(win.tune.CurMeas, 1);
}

TEST_F(ImportTest, ATablatureGoesToTheInstrumentWithItsTuning)
{
    ASSERT_TRUE(Import(File("two.musicxml", BanjoScore(1))));
    EXPECT_EQ(win.tune.NumStrings, 5);
    EXPECT_EQ(win.form.Caption, FindMode(5)->Caption);
    EXPECT_EQ(win.tune[0].Slot(4), "1");
    EXPECT_EQ(win.tune[2].Slot(2), "1");
    EXPECT_EQ(win.form.Saved, SavedState::Unsaved);
}

TEST_F(ImportTest, PitchesStayOnThePresentInstrumentInTheTuningChosenLast)
{
    win.mnuBanjo();
    ASSERT_TRUE(Import(File("two.abc", kTune)));
    EXPECT_EQ(win.tune.NumStrings, 5);
    EXPECT_EQ(win.tune[0].Slot(4), "");
    settings.Set("Banjo", "Tuning", "2");
    ASSERT_TRUE(Import(File("two.abc", kTune)));
    EXPECT_EQ(win.tune[0].Slot(4), "2");
}

TEST_F(ImportTest, ATablatureInTheFirstTuningKeepsItWhateverWasChosenLast)
{
    settings.Set("Banjo", "Tuning", "2");
    ASSERT_TRUE(Import(File("two.musicxml", BanjoScore())));
    EXPECT_EQ(win.tune[0].Slot(4), "0");
}

TEST_F(ImportTest, TheTuningsAreThoseOfThePlayersList)
{
    File(FindMode(4)->TuningFile, "\"Low\",60,55,50,45\r\n\"Lower\",48,43,38,33\r\n");
    win.mnuMandolin();
    for (const char* chosen : {"0", "2"}) {  // there is no third one
        settings.Set(FindMode(4)->SettingsSection, "Tuning", chosen);
        ASSERT_TRUE(Import(File("one.abc", "X:1\nL:1/1\nK:C\nc\n")));
        EXPECT_EQ(win.tune[2].Slot(1), "12") << "c is an octave above the highest string";
        EXPECT_EQ(win.tune[0].Slot(4), "");
    }
}

TEST_F(ImportTest, APlayersListOfOneTuningWillDo)
{
    File(FindMode(6)->TuningFile, "\"Low\",60,55,50,45,40,35\r\n");
    ASSERT_TRUE(Import(File("one.abc", "X:1\nL:1/1\nK:C\nc\n")));
    EXPECT_EQ(win.tune[2].Slot(1), "12");
}

TEST_F(ImportTest, AChangedTuneIsAskedAboutAndMayStay)
{
    Type("5\r");
    const std::string table = Table();
    dialogs.YesNo = {true};  // to save it, but then no name is given
    EXPECT_FALSE(Import(File("two.musicxml", BanjoScore())));
    EXPECT_EQ(dialogs.Shown.size(), 1U);
    EXPECT_EQ(Table(), table);
    EXPECT_EQ(win.tune.NumStrings, 6);
    dialogs.YesNo = {false};
    EXPECT_TRUE(Import(File("two.musicxml", BanjoScore())));
    EXPECT_EQ(dialogs.Shown.size(), 2U) << "it asks once, also for another instrument";
    EXPECT_TRUE(win.form.Discarded);
}

TEST_F(ImportTest, AnInsertionIsOver)
{
    Type("5\r7\r\r");
    win.editor.mnuInsMeas();
    ASSERT_EQ(win.form.InputMode, InputMode::Insert);
    ASSERT_TRUE(Import(File("two.abc", kTune)));
    EXPECT_EQ(win.form.InputMode, InputMode::Fret);
    EXPECT_TRUE(win.form.Parked.Records.empty());
    EXPECT_EQ(win.tune.LastMeas, 2);
}

TEST_F(ImportTest, ATuneOfMoreThanNinePagesIsTakenAndTold)
{
    std::string music = "X:1\nL:1/1\nK:C\n";
    for (int measure = 0; measure < 740; ++measure)
        music += "C|";
    ASSERT_TRUE(Import(File("long.abc", music + "\n")));
    EXPECT_EQ(win.tune.LastMeas, 740);
    EXPECT_EQ(said.Lines(), std::vector<std::string>{
                                "It has more than nine pages: it can be printed, but the window "
                                "cannot show them."});
}

TEST_F(ImportTest, WhatWasLeftOutIsTold)
{
    ASSERT_TRUE(Import(File("grace.abc", "X:1\nL:1/1\nK:C\n{d}c\n")));
    EXPECT_EQ(said.Lines(), std::vector<std::string>{"A grace note is left out."});
}

TEST_F(ImportTest, ATuneIsOpenedAndNotImportedWhateverItsExtension)
{
    EXPECT_TRUE(IsForeign(File("a.abc", kTune)));
    EXPECT_TRUE(IsForeign(File("A.ABC", kTune)));
    EXPECT_TRUE(IsForeign(File("empty.txt", "")));
    EXPECT_FALSE(IsForeign(File("a.txt", "0,0,0\r\n0,0,0,0\r\n")));
    EXPECT_FALSE(IsForeign(File("a.gui", kTune)));
    EXPECT_FALSE(IsForeign(File("abc", kTune)));
    EXPECT_FALSE(IsForeign(folder.Path("missing.abc")));
    std::filesystem::create_directory(folder.Path("folder.abc"));
    EXPECT_FALSE(IsForeign(folder.Path("folder.abc")));
    EXPECT_FALSE(IsForeign(""));
}

TEST_F(ImportTest, WhatCannotBeReadSaysWhyAndWhatToDo)
{
    const auto reason = [&](const std::string& path) -> std::string {
        try {
            MakeImported(win, TunesIn(path).at(0), said);
        } catch (const ExchangeError& error) {
            return error.what();
        }
        return "";
    };
    const std::string before = State() + Table();
    EXPECT_EQ(reason(File("no_key.abc", "X:1\nT:No key\n")),
              "Line 1: the tune that begins here has no line with its key; add one such as K:G "
              "before the music.");
    EXPECT_EQ(reason(File("silent.abc", "X:1\nK:C\n|\n")),
              "There is no note in it; choose a file with music in it.");
    EXPECT_EQ(reason(File("a.doc", "words")),
              "Its extension is not one of a form that can be read. Give it the one that belongs "
              "to it, such as .abc, .musicxml, .mid or .txt.");
    EXPECT_EQ(reason(folder.Path("missing.abc")),
              "It cannot be read. Check that it is there and that you may read it.");
    std::filesystem::resize_file(File("large.abc", ""), 100'000'000);
    EXPECT_TRUE(IsForeign(folder.Path("large.abc")));
    EXPECT_EQ(reason(folder.Path("large.abc")),
              "It is larger than 8 MB; divide it into smaller files.");
    EXPECT_EQ(State() + Table(), before);
}

}  // namespace
}  // namespace quillon
