// Plays random scripts and goes back and forth in them: after k undos everything is as it was k
// steps before, redo brings the end back, and what is done after an undo comes out as it did when
// the undone part had never happened. The journal tells the same, also when it has been shortened,
// and another run goes on from it.
//
//     undo_property FIRST_SEED COUNT
//
// Each difference is told with its seed and the script so far; the exit status is then 1.

#include "headless/scenario.h"
#include "history/memory_journal.h"
#include "shell/steps.h"
#include "store/tune_file.h"
#include "support/temporary_directory.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <iostream>
#include <random>
#include <sstream>

namespace quillon {
namespace {

constexpr int kMostEvents = 160;

/// One event: the line that is played, and before it the answers that it will take.
struct Played {
    std::vector<std::string> Answers;
    std::string Line;
};

/// Everything that a moment shows, but for `Saved`, which tells about the disk.
using Look = std::string;

class Run {
public:
    explicit Run(unsigned seed)
        : random(seed), scenario(folder.Path(), output), win(scenario.Window())
    {
        for (const char* name : {"greensleeves.gui", "drowsy_maggie.bss", "yankee_doodle.bjo"})
            std::filesystem::copy_file(std::string(QUILLON_EXAMPLES) + "/" + name, name);
        looks.push_back(LookNow());
    }

    /// Whether all came out as it should.
    bool Passes()
    {
        const int length = Below(kMostEvents);
        for (int i = 0; i < length && passed && ended == 0; ++i) {
            Do(NextEvent());
            if (ended == 0 && Below(8) == 0)
                GoBackAndForth();
            if (ended == 0 && Below(40) == 0)
                ReadBack();
        }
        GoOnInAnotherRun();
        if (passed && ended == 0)
            GoBackAndDoAgain();
        return passed;
    }

    const std::vector<Played>& Events() const { return events; }

private:
    int Below(int limit) { return static_cast<int>(random() % static_cast<unsigned>(limit)); }

    std::string OneOf(std::initializer_list<const char*> choices)
    {
        return choices.begin()[Below(static_cast<int>(choices.size()))];
    }

    std::string Print(const std::string& command)
    {
        output.str("");
        scenario.Play(command);
        return output.str();
    }

    Look LookNow()
    {
        Look look = Print("state");
        const std::size_t saved = look.find("Saved=");
        look.erase(saved, look.find('\n', saved) - saved);
        look += Print("table") + Print("log");
        for (const char* name : {kInsertScratch, kPasteScratch})
            look += std::filesystem::exists(name) ? ReadFileBytes(name) + "\n" : "none\n";
        return look;
    }

    int Count(const char* which)
    {
        const std::string steps = Print("steps");
        return std::atoi(steps.c_str() + steps.find(which) + std::strlen(which));
    }

    Played NextEvent();
    std::string Typing();
    std::string Command();

    bool Play(const Played& event)
    {
        for (const std::string& answer : event.Answers)
            scenario.Play(answer);
        return scenario.Play(event.Line);
    }

    /// Plays an event and keeps what it came to.
    void Do(const Played& event)
    {
        events.push_back(event);
        savedBefore.push_back(win.form.Saved);
        const int before = Count("undo=");
        if (!Play(event)) {
            ended = 1;
            return;
        }
        const int after = Count("undo=");
        if (after > before)
            begins.resize(static_cast<std::size_t>(before));
        for (int i = before; i < after; ++i)
            begins.push_back(events.size() - 1);
        Expect(after >= before && after <= before + 1, "an event makes no more than one step");
        looks.push_back(LookNow());
        onDisk = LookAtDisk(event);
    }

    /// Undoes some steps and redoes them, which leaves no trace.
    void GoBackAndForth()
    {
        const int steps = static_cast<int>(begins.size());
        if (steps == 0)
            return;
        const int back = 1 + Below(steps);
        const SavedState saved = win.form.Saved;
        scenario.Play("undo " + std::to_string(back));
        Expect(LookNow() == looks[begins[static_cast<std::size_t>(steps - back)]],
               "undo " + std::to_string(back) + " leads where the step began");
        const int forth = Below(back);
        scenario.Play("redo " + std::to_string(forth));
        Expect(LookNow() == looks[begins[static_cast<std::size_t>(steps - back + forth)]],
               "redo " + std::to_string(forth) + " leads where the next step began");
        scenario.Play("tick");
        scenario.Play("key Up");
        Expect(Count("redo=") == back - forth, "moving about keeps what can be redone");
        const int further = Below(steps - back + forth + 1);
        scenario.Play("undo " + std::to_string(further));
        Expect(further == 0 ||
                   LookNow() ==
                       looks[begins[static_cast<std::size_t>(steps - back + forth - further)]],
               "undo leads past what was moved");
        scenario.Play("redo " + std::to_string(Below(3)));
        scenario.Play("redo 1000");
        Expect(LookNow() == looks.back(), "redo brings the end back");
        win.form.Saved = saved;
    }

    /// Undoes some steps and does again what had been done since: it comes out the same.
    void GoBackAndDoAgain()
    {
        const int steps = static_cast<int>(begins.size());
        if (steps == 0)
            return;
        const int to = std::max(steps - 1 - Below(12), 0);
        const std::size_t from = begins[static_cast<std::size_t>(to)];
        if (from < onDisk)
            return;  // files that are left by what is undone tell the two apart
        scenario.Play("undo " + std::to_string(steps - to));
        win.form.Saved = savedBefore[from];
        for (std::size_t i = from; i < events.size() && passed; ++i) {
            Play(events[i]);
            Expect(LookNow() == looks[i + 1],
                   "event " + std::to_string(i) + " done again: " + events[i].Line);
        }
        Expect(Count("redo=") == 0, "a new step forgets what was undone");
    }

    /// The journal tells the steps as they are. Then it is shortened, or not.
    void ReadBack()
    {
        const Timeline& steps = scenario.Steps()->Steps();
        const JournalContents contents = ReadJournal(journal.Bytes());
        Expect(contents.Run && contents.Trouble.empty(), "the journal can be read");
        if (!passed)
            return;
        const Timeline& read = *contents.Run;
        Expect(BytesOf(read.Last()) == BytesOf(steps.Last()), "it ends in the last moment");
        Expect(read.RedoCount() == steps.RedoCount(), "what was undone is in it");
        Expect(read.Changed() == steps.Changed(), "it knows whether there is work in no file");
        const int back = Below(std::min(read.UndoCount(), steps.UndoCount()) + 1);
        Expect(back == 0 || BytesOf(read.MomentAt(back)) == BytesOf(steps.MomentAt(back)),
               "undo " + std::to_string(back) + " in the journal");
        if (Below(2) == 0)
            journal.Shorten({static_cast<std::size_t>(Below(30'000)), Below(3)});
    }

    /// Another run takes over, all steps are undone and redone, and this one goes on as it was.
    void GoOnInAnotherRun()
    {
        const JournalContents contents = ReadJournal(journal.Bytes());
        if (!contents.Run) {
            Expect(false, "the journal can be read at the end");
            return;
        }
        const Moment mine = scenario.Steps()->Last();
        TemporaryDirectory otherFolder;
        {
            std::ostringstream ignored;
            Scenario other(otherFolder.Path(), ignored);
            const std::string before = BytesOf(other.Steps()->Last());
            other.Steps()->Adopt(*contents.Run, "Rescue");
            Expect(BytesOf(Moment(ValuesOf(other.Window()))) == BytesOf(mine),
                   "another run goes on from the journal");
            Expect(other.Steps()->Changed() == scenario.Steps()->Changed(),
                   "it knows whether there is work in no file");
            other.Steps()->Redo(Below(100));
            other.Steps()->Undo(1'000'000);
            Expect(BytesOf(other.Steps()->Last()) == before, "what was there before comes back");
            other.Steps()->Redo(1'000'000);
        }
        std::filesystem::current_path(folder.Path());
        Moment(mine).PutBack(ValuesOf(win));
    }

    /// How many events there were when a file that stays was written last.
    std::size_t LookAtDisk(const Played& event)
    {
        const bool wrote = win.form.Writes != writes || event.Line.starts_with("copy");
        writes = win.form.Writes;
        return wrote ? events.size() : onDisk;
    }

    void Expect(bool holds, const std::string& what)
    {
        if (!holds && passed)
            std::cout << "  not so: " << what << '\n';
        passed = passed && holds;
    }

    std::mt19937 random;
    TemporaryDirectory folder;
    std::ostringstream output;
    Scenario scenario;
    MemoryJournal journal{*scenario.Steps()};
    MainWin& win;
    std::vector<Played> events;
    std::vector<Look> looks;              // before each event, and after the last
    std::vector<SavedState> savedBefore;  // `Saved` before each event
    std::vector<std::size_t> begins;      // the events that began the steps
    std::size_t onDisk = 0;
    int writes = 0;
    int ended = 0;
    bool passed = true;
};

std::string Run::Typing()
{
    switch (Below(9)) {
    case 0:
        return "key " + OneOf({"Up", "Down", "Left", "Right"});
    case 1:
    case 2:
        return "key Enter";
    case 3:
        return "key " + OneOf({"Backspace", "Delete", "Home", "Escape"});
    default:
        return "type " +
               OneOf({"0", "3", "5", "7", "x", "^", "/", "-", "<", "+", "*", "a", "M", "1"});
    }
}

std::string Run::Command()
{
    switch (Below(12)) {
    case 0:
        return "toolbar " + OneOf({"2", "4", "7", "9", "11", "6"});
    case 1:
        return "click " + std::to_string(Below(360)) + ' ' + std::to_string(28 + Below(60));
    case 2:
        return "key " + OneOf({"F1", "F2", "F3", "F7", "F1", "F2"});
    case 3:
        return "key " +
               OneOf({"F4", "Ctrl+H", "Ctrl+W", "F6", "F8", "F9", "F12", "Ctrl+N", "Shift+F5"});
    case 4:
        return "menu " + OneOf({"mnuInsMeas", "mnuInsMeas", "mnuDelMeas", "mnuNoteBefore",
                                "mnuInsNoteAfter", "mnuDelNote", "mnuAppend", "mnuPrint"});
    case 5:
        return "copy 1 " + OneOf({"1", "2", "3"});
    case 6:
        return "menu mnuPaste";
    case 7:
        return OneOf({"tick", "press cmdRefresh", "press cmdRest", "menu mnuCopy", "menu mnuSave"});
    default:
        return "press " + OneOf({"cmdNext", "cmdNext", "cmdPrevious"});
    }
}

Played Run::NextEvent()
{
    std::vector<std::string> answers;
    const bool asks = win.form.Saved == SavedState::Unsaved;
    switch (Below(40)) {
    case 0:
        if (asks)
            answers = {"ask no"};
        return {answers, OneOf({"menu mnuNew", "strings 4", "strings 5", "strings 6"})};
    case 1:
        if (asks)
            answers = {"ask no"};
        answers.push_back("dialog " + OneOf({"greensleeves.gui", "drowsy_maggie.bss", "saved.gui",
                                             "yankee_doodle.bjo", "missing.gui"}));
        return {answers, "menu mnuOpen"};
    case 2:
        if (win.form.InputMode == InputMode::Insert)
            return {{}, "press cmdNext"};
        return {{"dialog " + OneOf({"saved.gui", "other.gui", "nowhere/x.gui"})}, "menu mnuSaveAs"};
    case 3:
        return {{"prompt " + OneOf({"Slowly", "/end", "cancel"})}, "menu mnuRemarks"};
    case 4:
        return {{"prompt " + std::to_string(Below(9))}, "press lblMeasNum"};
    default:
        return {{}, Below(3) == 0 ? Command() : Typing()};
    }
}

void Tell(unsigned seed, const std::vector<Played>& events)
{
    std::cout << "seed " << seed << ":\n";
    for (const Played& event : events) {
        for (const std::string& answer : event.Answers)
            std::cout << "    " << answer << '\n';
        std::cout << "    " << event.Line << '\n';
    }
}

}  // namespace
}  // namespace quillon

int main(int count, char** arguments)
{
    if (count != 3) {
        std::cerr << "usage: undo_property FIRST_SEED COUNT\n";
        return 2;
    }
    const int first = std::atoi(arguments[1]);
    const int seeds = std::atoi(arguments[2]);
    int failed = 0;
    for (int seed = first; seed < first + seeds && failed < 5; ++seed) {
        quillon::Run run(static_cast<unsigned>(seed));
        if (!run.Passes()) {
            quillon::Tell(static_cast<unsigned>(seed), run.Events());
            ++failed;
        }
    }
    std::cout << seeds - failed << " passed, " << failed << " failed\n";
    return failed == 0 ? 0 : 1;
}
