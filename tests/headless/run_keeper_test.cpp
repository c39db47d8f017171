#include "headless/scenario.h"
#include "history/memory_journal.h"
#include "shell/import.h"
#include "shell/run_keeper.h"
#include "shell/steps.h"
#include "store/staged_file.h"
#include "store/tune_file.h"
#include "support/temporary_directory.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <optional>
#include <sstream>

namespace quillon {
namespace {

namespace fs = std::filesystem;

/// A scripted window with a keeper, as the real one has it.
class KeptRun {
public:
    explicit KeptRun(const std::string& ownFolder) : KeptRun(ownFolder, ownFolder) {}

    KeptRun(const std::string& ownFolder, const std::string& journalFolder)
        : scenario(ownFolder, output), keeper(std::in_place, Win(), Past(), journalFolder)
    {
    }

    ~KeptRun() { keeper.reset(); }

    KeptRun(const KeptRun&) = delete;
    KeptRun& operator=(const KeptRun&) = delete;

    void Play(const std::string& script)
    {
        std::istringstream lines(script);
        for (std::string line; std::getline(lines, line);)
            scenario.Play(line);
    }

    std::string Print(const std::string& command)
    {
        output.str("");
        scenario.Play(command);
        return output.str();
    }

    std::string Look() { return Print("state") + Print("table") + Print("log"); }

    /// The tune in a file of another program's, as the window takes it.
    void Import(const std::string& path)
    {
        Past().Begin();
        Notices ignored;
        TakeImported(Win(), *MakeImported(Win(), TunesIn(path).at(0), ignored), ignored);
        Past().Observe(Input::Command, "Import " + path);
    }

    /// No good-bye: as after a kill.
    void Die() { keeper.reset(); }

    void EndInOrder()
    {
        Keeper().EndInOrder();
        Die();
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

    MainWin& Win() { return scenario.Window(); }
    History& Past() { return *scenario.Steps(); }
    RunKeeper& Keeper() { return *keeper; }
    int Status() const { return scenario.Status(); }

private:
    std::ostringstream output;
    Scenario scenario;
    std::optional<RunKeeper> keeper;
};

class RunKeeperTest : public testing::Test {
protected:
    RunKeeperTest() { fs::create_directory(own); }

    /// What a start finds.
    std::vector<Rescued> Found()
    {
        notes = RescueEndedRuns(own);
        return RescuedIn(own);
    }

    Rescued FoundOne()
    {
        const std::vector<Rescued> found = Found();
        EXPECT_EQ(found.size(), 1U);
        return found.empty() ? Rescued() : found[0];
    }

    std::vector<std::string> FilesLeft() const
    {
        std::vector<std::string> names;
        for (const auto& entry : fs::recursive_directory_iterator(own))
            if (entry.is_regular_file() && !entry.path().string().ends_with(".tun"))
                names.push_back(entry.path().filename());
        return names;
    }

    TemporaryDirectory folder;
    std::string own = folder.Path("own");
    std::vector<std::string> notes;
};

TEST_F(RunKeeperTest, ARunThatIsKilledIsFoundWithItsPlaceAndItsSteps)
{
    std::string look;
    std::string before;
    {
        KeptRun run(own);
        run.TypeTwoMeasures();
        before = run.Look();
        run.Play("type 7");
        look = run.Look();
        run.Die();
    }
    KeptRun next(own);
    const Rescued found = FoundOne();
    next.Keeper().Open(found);
    EXPECT_EQ(next.Look(), look);
    next.Play("undo");
    EXPECT_EQ(next.Look(), before);
    EXPECT_EQ(next.Past().UndoCount(), 11) << "eight notes, two measures, and the opening";
    EXPECT_TRUE(Found().empty()) << "what was opened is this run's";
}

TEST_F(RunKeeperTest, AnImportIsOneStepAndWorkUntilItIsSaved)
{
    WriteFileBytes("two.abc", "X:1\nK:G\nGABc d2g2|gfed G4|]\n");
    std::string before;
    std::string imported;
    {
        KeptRun run(own);
        run.TypeTwoMeasures();
        run.Play("strings 5\ntype 7\nkey Enter");
        before = run.Look();
        const int steps = run.Past().UndoCount();
        run.Import("two.abc");
        imported = run.Look();
        EXPECT_EQ(run.Past().UndoCount(), steps + 1);
        EXPECT_EQ(run.Past().UndoName(), "Import two.abc");
        EXPECT_TRUE(run.Past().Changed());
        run.Play("undo");
        EXPECT_EQ(run.Look(), before);
        run.Play("redo");
        EXPECT_EQ(run.Look(), imported);
        EXPECT_TRUE(run.Past().Changed());
    }
    std::vector<Rescued> found = Found();
    std::erase_if(found, [](const Rescued& one) { return one.Discarded; });
    ASSERT_EQ(found.size(), 1U);
    KeptRun next(own);
    next.Keeper().Open(found[0]);
    EXPECT_EQ(next.Look(), imported);
    EXPECT_TRUE(next.Past().Changed());
    next.Play("undo");
    EXPECT_EQ(next.Look(), before);
    next.Play("redo\ndialog two.bjo\nmenu mnuSaveAs");
    EXPECT_FALSE(next.Past().Changed());
}

TEST_F(RunKeeperTest, RescuedWorkIsAlsoATuneFile)
{
    std::string bytes;
    {
        KeptRun run(own);
        run.TypeTwoMeasures();
        bytes = TuneBytes(run.Win().tune);
    }
    const Rescued found = FoundOne();
    EXPECT_EQ(ReadFileBytes(found.Tune), bytes);
    EXPECT_TRUE(found.Name.starts_with("Untitled, ")) << found.Name;
    EXPECT_EQ(fs::path(found.Tune).parent_path(), RescuedFolder(own));
    EXPECT_EQ(fs::path(found.Tune).extension(), ".gui");
}

TEST_F(RunKeeperTest, NothingIsLeftOfARunThatEndsSaved)
{
    KeptRun run(own);
    run.TypeTwoMeasures();
    run.Play("dialog tune.gui\nmenu mnuSaveAs");
    run.EndInOrder();
    EXPECT_TRUE(FilesLeft().empty());
}

TEST_F(RunKeeperTest, NothingIsFoundOfARunThatIsKilledAfterSaving)
{
    {
        KeptRun run(own);
        run.TypeTwoMeasures();
        run.Play("dialog tune.gui\nmenu mnuSaveAs\nkey Left");
    }
    EXPECT_TRUE(Found().empty());
    EXPECT_TRUE(notes.empty());
    EXPECT_TRUE(FilesLeft().empty());
}

TEST_F(RunKeeperTest, WorkThatCountsAsSavedIsFoundAllTheSame)
{
    {
        KeptRun run(own);
        run.TypeTwoMeasures();
        run.Play("dialog tune.gui\nmenu mnuSaveAs\nprompt 1\npress lblMeasNum\nmenu mnuHardBrk");
        EXPECT_EQ(run.Win().form.Saved, SavedState::Saved);
        run.Win().Unload();
        run.EndInOrder();
    }
    const Rescued found = FoundOne();
    EXPECT_FALSE(found.Discarded);
    EXPECT_NE(ReadFileBytes(found.Tune), ReadFileBytes("tune.gui"));
}

TEST_F(RunKeeperTest, WorkThatTheUserDiscardsIsKeptForSevenDays)
{
    {
        KeptRun run(own);
        run.TypeTwoMeasures();
        run.Play("ask no\nmenu mnuNew");
        run.EndInOrder();
    }
    const Rescued found = FoundOne();
    EXPECT_TRUE(found.Discarded);
    const auto now = fs::file_time_type::clock::now();
    for (const std::string& path : {found.Tune, found.Journal})
        fs::last_write_time(path, now - std::chrono::hours(6 * 24));
    EXPECT_EQ(Found().size(), 1U);
    for (const std::string& path : {found.Tune, found.Journal})
        fs::last_write_time(path, now - std::chrono::hours(8 * 24));
    EXPECT_TRUE(Found().empty());
    EXPECT_TRUE(FilesLeft().empty());
}

TEST_F(RunKeeperTest, WorkThatIsDiscardedAtTheEndIsKeptToo)
{
    {
        KeptRun run(own);
        run.TypeTwoMeasures();
        run.Past().Begin();
        run.Play("ask no");
        run.Win().Unload();
        run.Past().Observe(Input::Command, {});
        run.EndInOrder();
    }
    EXPECT_TRUE(FoundOne().Discarded);
}

TEST_F(RunKeeperTest, ATailThatIsThrownAwayIsLeftBehind)
{
    for (const char* command : {"menu mnuAppend\ntype 5", "menu mnuInsMeas", "menu mnuSave"}) {
        {
            KeptRun run(own);
            run.TypeTwoMeasures();
            run.Play("dialog tune.gui\nmenu mnuSaveAs\nprompt 1\npress lblMeasNum\n"
                     "menu mnuInsMeas\ntype 7");
            run.Play(command);
            run.Play("undo\ndialog tune.gui\nmenu mnuSaveAs");
            run.EndInOrder();
        }
        bool found = false;
        for (const Rescued& rescued : Found()) {
            Tune tune;
            ItemReader reader(ReadFileBytes(rescued.Tune));
            ReadTune(reader, tune);
            found = found || tune.LastMeas == 3;
        }
        EXPECT_TRUE(found) << command;
        fs::remove_all(RescuedFolder(own));
    }
}

TEST_F(RunKeeperTest, ATailIsLeftBehindOnceHoweverMuchIsDoneAfterSavingWithoutIt)
{
    KeptRun run(own);
    run.TypeTwoMeasures();
    run.Play(
        "dialog tune.gui\nmenu mnuSaveAs\nprompt 1\npress lblMeasNum\nmenu mnuInsMeas\ntype 7");
    run.Play("menu mnuSave\nkey Up\nkey Down\nmenu mnuSave\nmenu mnuAppend");
    run.Die();
    EXPECT_EQ(FoundOne().Name.substr(0, 6), "tune, ");
}

TEST_F(RunKeeperTest, ATailThatIsThrownAwayIsInTheJournalNoLonger)
{
    KeptRun run(own);
    run.TypeTwoMeasures();
    run.Play("prompt 1\npress lblMeasNum\nmenu mnuInsMeas\ntype 7\nmenu mnuAppend");
    const JournalContents contents = ReadJournal(ReadFileBytes(run.Keeper().JournalPath()));
    const Moment& last = contents.Run->Last();
    EXPECT_EQ(RescueBytes(last.Music, last.Form), TuneBytes(run.Win().tune));
}

TEST_F(RunKeeperTest, ATailThatUndoBringsBackIsLeftBehindWhenItIsThrownAwayThen)
{
    KeptRun run(own);
    run.TypeTwoMeasures();
    run.Play("prompt 1\npress lblMeasNum\nmenu mnuInsMeas\ntype 7\npress cmdNext\nmenu mnuDelMeas");
    run.Play("undo\nundo\nmenu mnuAppend\ntype 5\ndialog tune.gui\nmenu mnuSaveAs");
    run.EndInOrder();
    const Rescued found = FoundOne();
    Tune tune;
    ItemReader reader(ReadFileBytes(found.Tune));
    ReadTune(reader, tune);
    EXPECT_EQ(tune.LastMeas, 3);
}

TEST_F(RunKeeperTest, AnInsertionThatIsUndoneLeavesNothingBehind)
{
    KeptRun run(own);
    run.TypeTwoMeasures();
    run.Play(
        "dialog tune.gui\nmenu mnuSaveAs\nprompt 1\npress lblMeasNum\nmenu mnuInsMeas\ntype 7");
    run.Play("undo 2\nkey Left\ntype 5\nmenu mnuSave");
    run.EndInOrder();
    EXPECT_TRUE(Found().empty());
}

TEST_F(RunKeeperTest, AFileThatIsNotAsItWasSavedIsToldOf)
{
    {
        KeptRun run(own);
        run.TypeTwoMeasures();
        run.Play("dialog tune.gui\nmenu mnuSaveAs");
    }
    const std::string saved = ReadFileBytes("tune.gui");
    WriteFileBytes("tune.gui", saved.substr(0, saved.size() / 2));
    const Rescued found = FoundOne();
    ASSERT_EQ(notes.size(), 1U);
    EXPECT_EQ(notes[0], folder.Path("tune.gui") +
                            " is not as it was saved last. That is among the rescued tunes.");
    EXPECT_EQ(ReadFileBytes(found.Tune), saved);
}

TEST_F(RunKeeperTest, WhatIsAboutToBeSavedIsInTheJournalBeforeTheFileIsOpened)
{
    KeptRun run(own);
    run.TypeTwoMeasures();
    const auto before = run.Win().BeforeWriting;
    bool held = false;
    run.Win().BeforeWriting = [&](const std::string& path, const std::string& bytes) {
        before(path, bytes);
        const JournalContents contents = ReadJournal(ReadFileBytes(run.Keeper().JournalPath()));
        held = contents.Saved && contents.Saved->Bytes == TuneBytes(run.Win().tune) &&
               contents.Saved->Path == folder.Path("tune.gui") && !fs::exists("tune.gui");
    };
    run.Play("dialog tune.gui\nmenu mnuSaveAs");
    EXPECT_TRUE(held);
}

TEST_F(RunKeeperTest, ASaveThatFailsEndsWithTheWorkKept)
{
    KeptRun run(own);
    run.TypeTwoMeasures();
    run.Play("dialog tune.gui\nmenu mnuSaveAs");
    run.Win().tune.FileName = "/dev/full";
    run.Play("menu mnuSave");
    EXPECT_EQ(run.Status(), 1);
    run.Die();
    EXPECT_EQ(ReadFileBytes(FoundOne().Tune), ReadFileBytes("tune.gui"));
}

TEST_F(RunKeeperTest, AfterAFaultTheNextRunGoesOnBeforeTheEventThatFailed)
{
    std::string look;
    std::string journal;
    {
        KeptRun run(own);
        run.TypeTwoMeasures();
        run.Play("menu mnuCopy\nkey Escape");
        look = run.Look();
        run.Win().form.mnuPasteEnabled = true;
        std::remove("CopyBuff.Dat");
        run.Play("menu mnuPaste");
        EXPECT_EQ(run.Status(), 1);
        journal = run.Keeper().AtFault().Journal;
        EXPECT_TRUE(run.Keeper().AtFault().Changed);
        run.Keeper().EndByFault();
        EXPECT_FALSE(IsLocked(journal)) << "the next run may have it at once";
    }
    KeptRun next(own);
    EXPECT_TRUE(next.Keeper().OpenJournal(journal, "Start again"));
    EXPECT_EQ(next.Look(), look);
    EXPECT_FALSE(fs::exists(journal));
}

TEST_F(RunKeeperTest, AFaultWithNothingToLoseLeavesNothingToTheNextRun)
{
    {
        KeptRun run(own);
        EXPECT_FALSE(run.Keeper().AtFault().Changed);
        run.Keeper().EndByFault();
    }
    EXPECT_TRUE(Found().empty());
    EXPECT_TRUE(FilesLeft().empty());
}

TEST_F(RunKeeperTest, WhereNoJournalCanBeWrittenAFaultLeavesATuneAmongTheTemporaryFiles)
{
    const char* before = std::getenv("TMPDIR");
    const std::string temporary = before ? before : "/tmp";
    const std::string elsewhere = folder.Path("elsewhere");
    fs::create_directory(elsewhere);
    KeptRun run(own, folder.Path("nowhere"));
    EXPECT_NE(run.Keeper().Trouble(), "");
    run.TypeTwoMeasures();
    setenv("TMPDIR", elsewhere.c_str(), 1);
    const std::string kept = run.Keeper().AtFault().Tune;
    setenv("TMPDIR", temporary.c_str(), 1);
    EXPECT_EQ(fs::path(kept).parent_path(), elsewhere);
    EXPECT_EQ(ReadFileBytes(kept), TuneBytes(run.Win().tune));
}

TEST_F(RunKeeperTest, ARunThatLivesIsLeftAlone)
{
    KeptRun run(own);
    run.TypeTwoMeasures();
    EXPECT_TRUE(Found().empty());
    EXPECT_TRUE(fs::exists(run.Keeper().JournalPath()));
}

TEST_F(RunKeeperTest, ATuneThatIsChangedIsAskedAboutAndLeftBehindWhenAnotherIsRescued)
{
    {
        KeptRun run(own);
        run.TypeTwoMeasures();
    }
    const Rescued found = FoundOne();
    KeptRun next(own);
    next.Play("type 9\nkey Enter\nask yes\ndialog cancel");
    next.Keeper().Open(found);
    EXPECT_EQ(next.Win().tune.LastNote, 2) << "the question was cancelled";
    next.Play("ask no");
    next.Past().Begin();
    next.Keeper().Open(found);
    next.Past().Observe(Input::Command, {});
    EXPECT_EQ(next.Win().tune.LastMeas, 2);
    next.Play("dialog tune.gui\nmenu mnuSaveAs");
    next.EndInOrder();
    EXPECT_TRUE(FoundOne().Discarded);
}

TEST_F(RunKeeperTest, ATuneThatIsSavedBeforeAnotherIsRescuedIsLeftInItsFileAlone)
{
    {
        KeptRun run(own);
        run.TypeTwoMeasures();
    }
    const Rescued found = FoundOne();
    KeptRun next(own);
    next.Play("type 9\nkey Enter\nask yes\ndialog nine.gui");
    next.Past().Begin();
    next.Keeper().Open(found);
    next.Past().Observe(Input::Command, {});
    next.Play("dialog tune.gui\nmenu mnuSaveAs");
    next.EndInOrder();
    EXPECT_TRUE(Found().empty());
}

TEST_F(RunKeeperTest, RescuedWorkThatIsOpenedStaysWhereTheJournalCannotBeWritten)
{
    {
        KeptRun run(own);
        run.TypeTwoMeasures();
    }
    const Rescued found = FoundOne();
    KeptRun next(own, folder.Path("nowhere"));
    next.Keeper().Open(found);
    EXPECT_EQ(next.Win().tune.LastMeas, 2);
    EXPECT_EQ(FoundOne().Journal, found.Journal);
}

TEST_F(RunKeeperTest, ATuneThatIsNotChangedIsNotAskedAboutWhenAnotherIsRescued)
{
    {
        KeptRun run(own);
        run.TypeTwoMeasures();
    }
    const Rescued found = FoundOne();
    KeptRun next(own);
    next.Win().form.Saved = SavedState::Unsaved;
    next.Play("ask yes\ndialog cancel");
    next.Keeper().Open(found);
    EXPECT_EQ(next.Win().tune.LastMeas, 2);
}

TEST_F(RunKeeperTest, WhereAJournalHasGoneTheTuneBesideItIsOpened)
{
    {
        KeptRun run(own);
        run.TypeTwoMeasures();
    }
    const Rescued found = FoundOne();
    fs::remove(found.Journal);
    KeptRun next(own);
    EXPECT_FALSE(next.Keeper().OpenJournal(found.Journal, "Start Again"));
    next.Keeper().Open(found);
    EXPECT_EQ(next.Win().tune.FileName, found.Tune);
    EXPECT_EQ(next.Win().tune.LastMeas, 2);
}

TEST_F(RunKeeperTest, RescueCopiesOfEarlierVersionsAreFoundInTheOrderOfTheirTimes)
{
    const std::string names[] = {"air-Rescue-20240103-120000-x.gui",
                                 "reel-Rescue-20240102-120000-x.bjo", "Rescue-20240101-120000.gui"};
    for (const std::string& name : names)
        WriteFileBytes(own + "/" + name, "");
    for (const char* name : {"Strings6.tun", "Rescue-me.gui", ".quillon-1"})
        WriteFileBytes(own + "/" + name, "");
    const std::vector<Rescued> found = Found();
    ASSERT_EQ(found.size(), 3U);
    for (std::size_t i = 0; i < found.size(); ++i)
        EXPECT_EQ(found[i].Tune, RescuedFolder(own) + "/" + names[i]);
    EXPECT_EQ(found[0].Name, "air, 03 Jan 12:00");
    KeptRun run(own);
    run.Keeper().Open(found[0]);
    EXPECT_EQ(run.Win().tune.FileName, found[0].Tune) << "there is no journal to open";
}

TEST_F(RunKeeperTest, RescuedWorkIsNamedForAnyNameThatATuneMayHave)
{
    std::string longName;
    for (int i = 0; i < 63; ++i)
        longName += "\xf0\x9d\x84\x9e";  // a clef of four bytes
    const std::pair<std::string, std::string> names[] = {
        {"/home/me/Reel No. 2.gui", "Reel No. 2"},
        {"/home/me/tune", "tune"},
        {"/home/me/.gui", "_gui"},
        {"/home/me/two\nlines\t\x7f.gui", "two_lines__"},
        {"/home/me/\xc3\xa9tude.gui", "\xc3\xa9tude"},
        {"/home/me/\xe9tude \xc3.gui", "_tude _"},
        {"/own/Rescued/reel-Rescue-20240101-120000-abcdefgh.gui", "reel"},
        {"/own/Rescued/reel-Discarded-20240101-120000-abcdefgh.gui", "reel"},
        {"/home/me/" + longName.substr(0, 248) + ".gui", longName.substr(0, 160)},
    };
    for (const auto& [fileName, name] : names) {
        {
            KeptRun run(own);
            run.Past().Begin();
            run.Win().tune.FileName = fileName;
            run.Play("type 3");
        }
        const Rescued found = FoundOne();
        EXPECT_TRUE(found.Name.starts_with(name + ", ")) << found.Name;
        fs::remove_all(RescuedFolder(own));
    }
}

TEST_F(RunKeeperTest, JournalsThatCannotBeReadAreToldOfAndStayAsTheyAre)
{
    const std::pair<const char*, std::string> files[] = {
        {"Run-20240101-120000-aaaaaaaa.1.journal", "Quillon journal 9\nnews"},
        {"Run-20240101-120000-bbbbbbbb.1.journal", "no journal"             },
        {"Run-20240101-120000-cccccccc.1.journal", ""                       },
    };
    for (const auto& [name, bytes] : files)
        WriteFileBytes(own + "/" + name, bytes);
    fs::last_write_time(own + "/" + files[2].first,
                        fs::file_time_type::clock::now() - std::chrono::hours(1));
    EXPECT_TRUE(Found().empty());
    const std::vector<std::string> told = {
        "Run-20240101-120000-aaaaaaaa.1.journal cannot be brought back: "
        "it was written by another version of Quillon.",
        "Run-20240101-120000-bbbbbbbb.1.journal cannot be brought back: "
        "it is damaged from its beginning.",
        "Run-20240101-120000-cccccccc.1.journal cannot be brought back: it is empty.",
    };
    EXPECT_EQ(notes, told);
    for (const auto& [name, bytes] : files)
        EXPECT_EQ(ReadFileBytes(own + "/" + name), bytes);
}

TEST_F(RunKeeperTest, AJournalOfMoreThan64MegabytesIsNotRead)
{
    const std::string told = "Run-20240101-120000-aaaaaaaa.1.journal cannot be brought back: ";
    const std::string path = own + "/Run-20240101-120000-aaaaaaaa.1.journal";
    WriteFileBytes(path, "");
    for (const std::uintmax_t size : {std::uintmax_t{1} << 30, (std::uintmax_t{64} << 20) + 1}) {
        fs::resize_file(path, size);
        EXPECT_TRUE(Found().empty());
        EXPECT_EQ(notes, std::vector{told + "it is too large."});
    }
    fs::resize_file(path, std::uintmax_t{64} << 20);
    EXPECT_TRUE(Found().empty());
    EXPECT_EQ(notes, std::vector{told + "it is damaged from its beginning."});
}

TEST_F(RunKeeperTest, OfTwoJournalsOfOneRunTheOneThatGoesFurtherIsTaken)
{
    std::string path;
    std::string early;
    std::string end;
    {
        KeptRun run(own);
        run.TypeTwoMeasures();
        path = run.Keeper().JournalPath();
        early = ReadFileBytes(path);
        run.Play("type 7");
        end = TuneBytes(run.Win().tune);
    }
    const std::string run = path.substr(0, path.find(".1."));
    WriteFileBytes(run + ".2.journal", early);
    WriteFileBytes(run + ".3.journal", "");
    fs::last_write_time(run + ".3.journal",
                        fs::file_time_type::clock::now() - std::chrono::hours(1));
    EXPECT_EQ(ReadFileBytes(FoundOne().Tune), end);
    EXPECT_EQ(FilesLeft().size(), 2U);
}

TEST_F(RunKeeperTest, ATornEndLosesTheLastEntryAlone)
{
    std::string path;
    std::string before;
    {
        KeptRun run(own);
        run.TypeTwoMeasures();
        before = TuneBytes(run.Win().tune);
        run.Play("type 7");
        path = run.Keeper().JournalPath();
    }
    fs::resize_file(path, fs::file_size(path) - 1);
    EXPECT_EQ(ReadFileBytes(FoundOne().Tune), before);
}

}  // namespace
}  // namespace quillon
