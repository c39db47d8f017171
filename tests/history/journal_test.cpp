#include "headless/scenario.h"
#include "history/journal.h"
#include "history/memory_journal.h"
#include "shell/steps.h"
#include "store/staged_file.h"
#include "support/temporary_directory.h"
#include "support/tunes.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <map>
#include <random>
#include <sstream>
#include <thread>

namespace quillon {
namespace {

namespace fs = std::filesystem;

constexpr const char* kStory[] = {
    "type 3",          "key Enter",     "key F1",         "type Am",         "key Enter",
    "type 5^",         "key Enter",     "menu mnuSaveAs", "type 7",          "key Enter",
    "press cmdNext",   "undo 2",        "redo",           "menu mnuInsMeas", "type 7",
    "key Enter",       "press cmdNext", "copy 1 1",       "menu mnuPaste",   "undo",
    "menu mnuDelMeas", "strings 4",     "type 2",         "key Enter",
};

class JournalTest : public testing::Test {
protected:
    JournalTest() { fs::create_directory(own); }

    void Play(const std::string& line) { EXPECT_TRUE(scenario.Play(line)) << line; }

    void PlayStory()
    {
        Play("dialog saved.gui");
        Play("ask no");
        for (const char* line : kStory)
            Play(line);
    }

    History& Past() { return *scenario.Steps(); }
    std::string Now() { return BytesOf(Past().Steps().Last()); }

    void KeepIn(Journal& journal)
    {
        keeper.To = &journal;
        Past().Keeper = &keeper;
    }

    std::vector<fs::path> Files() const
    {
        std::vector<fs::path> files;
        for (const auto& entry : fs::directory_iterator(own))
            files.push_back(entry.path());
        return files;
    }

    static constexpr std::size_t kAllowed = 128'000;  // bytes, whatever the tune

    /// The thread needs a moment after keys that no person types as fast.
    static bool BecomesShorterThan(std::size_t size, const Journal& journal)
    {
        for (int i = 0; i < 500 && fs::file_size(journal.Path()) >= size; ++i)
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        return fs::file_size(journal.Path()) < size;
    }

    static JournalContents ReadFile(const fs::path& path)
    {
        return ReadJournal(ReadFileBytes(path));
    }

    struct ToJournal : HistoryKeeper {
        void Happens(const Event&) override {}
        void Append(std::string_view entry) override { To->Append(entry); }

        Journal* To = nullptr;
    };

    TemporaryDirectory folder;
    ToJournal keeper;
    std::string own = folder.Path("own");
    std::ostringstream output;
    Scenario scenario{folder.Path(), output};
};

/// Whether all of a long journal is damaged in every way, which takes minutes.
bool IsThorough()
{
    return std::getenv("QUILLON_THOROUGH") != nullptr;
}

/// The moments that a journal led through, by the number of bytes that it had by then.
class JournalBytes : public JournalTest {
protected:
    JournalBytes()
    {
        MemoryJournal journal(Past());
        constexpr std::size_t kFrameHead = 8;
        moments[0] = "";
        moments[kJournalMark.size() + kFrameHead + EntriesOf(Past().Steps(), 0)[0].size()] = Now();
        journal.Appended = [&] { moments[journal.Bytes().size()] = Now(); };
        if (IsThorough())
            PlayStory();
        else
            for (const char* line : {"type 3", "key Enter", "type 5", "undo"})
                Play(line);
        bytes = journal.Bytes();
    }

    /// The last moment of which all the first `size` bytes tell.
    std::string MomentAt(std::size_t size) const
    {
        return std::prev(moments.upper_bound(size))->second;
    }

    static std::string Read(std::string_view damaged)
    {
        const JournalContents contents = ReadJournal(damaged);
        return contents.Run ? BytesOf(contents.Run->Last()) : "";
    }

    std::map<std::size_t, std::string> moments;
    std::string bytes;
};

TEST_F(JournalBytes, CutAnywhereLeadUpToTheLastWholeEntry)
{
    for (std::size_t size = 0; size <= bytes.size(); ++size)
        ASSERT_EQ(Read(std::string_view(bytes).substr(0, size)), MomentAt(size)) << size;
}

TEST_F(JournalBytes, WithAChangedByteLeadUpToTheEntryBeforeIt)
{
    std::mt19937 random(1);
    const int flips = IsThorough() ? 10'000 : 500;
    for (int i = 0; i < flips; ++i) {
        const std::size_t place = random() % bytes.size();
        std::string damaged = bytes;
        damaged[place] = static_cast<char>(damaged[place] ^ (1U << random() % 8));
        ASSERT_EQ(Read(damaged), MomentAt(place)) << place;
    }
}

TEST_F(JournalBytes, TellWhatIsWrongWithThem)
{
    const auto trouble = [](std::string_view some) { return ReadJournal(some).Trouble; };
    EXPECT_EQ(trouble(bytes), "");
    EXPECT_EQ(trouble(""), "it is empty");
    EXPECT_EQ(trouble("Quillon journal 2\nfrom the future"),
              "it was written by another version of Quillon");
    EXPECT_EQ(trouble("1,2,3"), "it is damaged from its beginning");
    EXPECT_EQ(trouble(kJournalMark), "it is damaged from its beginning");
    EXPECT_EQ(trouble(bytes + "x"), "its end is damaged");
}

TEST_F(JournalTest, IsInTheFileBeforeTheEventEnds)
{
    Journal journal(own, Past().Steps());
    KeepIn(journal);
    for (const char* line : {"type 3", "key Enter", "type 5"}) {
        Play(line);
        EXPECT_EQ(BytesOf(ReadFile(journal.Path()).Run->Last()), Now());
    }
}

TEST_F(JournalTest, IsLockedAsLongAsItsRunLivesAndForItsOwnerAlone)
{
    std::string path;
    {
        Journal journal(own, Past().Steps());
        path = journal.Path();
        EXPECT_TRUE(IsLocked(path));
        EXPECT_EQ(fs::status(path).permissions(), fs::perms::owner_read | fs::perms::owner_write);
    }
    EXPECT_FALSE(IsLocked(path));
}

TEST_F(JournalTest, HoldsWhatIsAboutToBeWritten)
{
    Journal journal(own, Past().Steps());
    journal.Hold({"/home/me/tune.gui", "1,2,3"});
    const JournalContents contents = ReadFile(journal.Path());
    ASSERT_TRUE(contents.Saved);
    EXPECT_EQ(contents.Saved->Path, "/home/me/tune.gui");
    EXPECT_EQ(contents.Saved->Bytes, "1,2,3");
}

TEST_F(JournalTest, GoesWhenTheRunEndsWithNothingToBringBack)
{
    Journal journal(own, Past().Steps());
    KeepIn(journal);
    PlayStory();
    journal.Remove();
    EXPECT_TRUE(Files().empty());
}

TEST_F(JournalTest, TellsHowItsRunHasEnded)
{
    for (Ending ending : {Ending::Lost, Ending::Discarded}) {
        Journal journal(own, Past().Steps());
        EXPECT_FALSE(ReadFile(journal.Path()).Ended);
        journal.End(ending);
        EXPECT_EQ(ReadFile(journal.Path()).Ended, ending);
    }
}

TEST_F(JournalTest, OfATuneThatIsLeftGoesOnAsOneOfAnEndedRun)
{
    std::string left;
    std::string live;
    {
        Journal journal(own, Past().Steps());
        KeepIn(journal);
        Play("type 3");
        Play("key Enter");
        left = Now();
        journal.LeaveBehind(Ending::Discarded);
        Play("ask no");
        Play("menu mnuNew");
        live = journal.Path();
    }
    ASSERT_EQ(Files().size(), 2U);
    for (const fs::path& path : Files()) {
        const JournalContents contents = ReadFile(path);
        EXPECT_EQ(contents.Ended.has_value(), path != live);
        EXPECT_EQ(BytesOf(contents.Run->Last()), path == live ? Now() : left);
    }
}

TEST_F(JournalTest, IsSummedUpWithAsManyStepsAsAreAskedForHoweverLongTheyAre)
{
    PlayStory();
    const int done = Past().UndoCount();
    for (const int least : {0, 1, 3, done, done + 1}) {
        Progress progress;
        const std::string bytes = Summary(Past().Steps(), {}, {0, least}, progress);
        EXPECT_EQ(ReadJournal(bytes).Run->UndoCount(), std::min(least, done));
    }
}

TEST_F(JournalTest, StaysShortHoweverMuchIsTyped)
{
    constexpr std::size_t kTunes = 10;
    Journal journal(own, Past().Steps());
    KeepIn(journal);
    Tune tune;
    AddFullMeasures(tune, 12);
    WriteFileBytes("tune.gui", TuneBytes(tune));
    Play("dialog tune.gui");
    Play("menu mnuOpen");
    std::size_t longest = 0;
    for (int i = 0; i < 3'000; ++i) {
        Play(i % 2 == 0 ? "type " + std::to_string(i / 2 % 10) : "key Enter");
        Play(i % 40 == 0 ? "press cmdNext" : "key Left");
        if (i % 100 == 0) {
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
            longest = std::max<std::size_t>(longest, fs::file_size(journal.Path()));
        }
    }
    Past().Keeper = nullptr;
    EXPECT_TRUE(BecomesShorterThan(std::max(kTunes * TuneBytes(tune).size(), kAllowed), journal));
    const std::string end = Now();
    journal.End(Ending::Lost);
    ASSERT_EQ(Files().size(), 1U);
    const JournalContents contents = ReadFile(journal.Path());
    EXPECT_EQ(BytesOf(contents.Run->Last()), end);
    EXPECT_GE(contents.Run->UndoCount(), 100);
}

TEST_F(JournalTest, OfALongTuneBecomesShortWhenAShortOneFollows)
{
    Journal journal(own, Past().Steps());
    KeepIn(journal);
    Tune tune;
    AddFullMeasures(tune, 60);
    WriteFileBytes("tune.gui", TuneBytes(tune));
    Play("dialog tune.gui");
    Play("menu mnuOpen");
    const std::string first = journal.Path();
    for (int i = 0; i < 20'000 && journal.Path() == first; ++i) {
        Play(i % 2 == 0 ? "type " + std::to_string(i / 2 % 10) : "key Enter");
        Play("key Left");
    }
    EXPECT_GT(fs::file_size(journal.Path()), kAllowed / 2);
    // A journal that was shortened while there was much of the long tune in it stays as it is until
    // it has grown by a quarter.
    bool isShort = false;
    for (int tunes = 0; tunes < 5 && !isShort; ++tunes) {
        Play("ask no");
        Play("menu mnuNew");
        for (int i = 0; i < 300; ++i) {
            Play("type 3");
            Play("key Enter");
            Play("press cmdNext");
        }
        isShort = BecomesShorterThan(kAllowed, journal);
    }
    EXPECT_TRUE(isShort);
}

TEST_F(JournalTest, ThatSomebodyRemovesIsBegunAgain)
{
    Journal journal(own, Past().Steps());
    KeepIn(journal);
    Play("type 3");
    fs::remove_all(own);
    fs::create_directory(own);
    for (int i = 0; i < 100 && Files().empty(); ++i) {
        Play("key Enter");
        Play("type 5");
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
    }
    ASSERT_FALSE(Files().empty());
    EXPECT_EQ(BytesOf(ReadFile(journal.Path()).Run->Last()), Now());
    Play("undo 3");
    EXPECT_EQ(BytesOf(ReadFile(journal.Path()).Run->Last()), Now());
}

TEST_F(JournalTest, ThatCannotBeWrittenSaysWhyUntilItCan)
{
    fs::remove_all(own);
    Journal journal(own, Past().Steps());
    KeepIn(journal);
    EXPECT_EQ(journal.Trouble(), "No such file or directory");
    EXPECT_EQ(journal.Path(), "");
    Play("type 3");
    fs::create_directory(own);
    Play("key Enter");
    EXPECT_EQ(journal.Trouble(), "");
    EXPECT_EQ(BytesOf(ReadFile(journal.Path()).Run->Last()), Now());
}

}  // namespace
}  // namespace quillon
