// Keeps a run's work: tells the journal of everything that the history takes in, notices when a
// tune is left that is in no file, and opens what ended runs have left.

#pragma once

#include "history/history.h"
#include "history/journal.h"
#include "shell/main_win.h"
#include "shell/rescued.h"

#include <string>

namespace quillon {

/// Work that outlives a fault.
struct KeptWork {
    std::string Journal;   // its path, "" if it could not be written
    std::string Tune;      // path of a tune file that takes its place, "" if none was needed
    bool Changed = false;  // there is work that may be in no other file
};

class RunKeeper : HistoryKeeper {
public:
    /// Begins a journal in `programFolder`. The arguments must outlive it.
    RunKeeper(MainWin& mainWin, History& theHistory, std::string programFolder);
    ~RunKeeper() override;

    RunKeeper(const RunKeeper&) = delete;
    RunKeeper& operator=(const RunKeeper&) = delete;

    /// The run ends in good order: nothing is left but work that is in no file.
    void EndInOrder();

    /// A fault is about to end the run. Returns where the work from before the event is kept.
    KeptWork AtFault() const;

    /// The run ends by a fault. Another one may open the journal from now on.
    void EndByFault() { journal.Release(); }

    /// Opens rescued work as a step, after the save question if the present tune is changed. It
    /// goes on where it was, and is among the rescued tunes no longer.
    void Open(const Rescued& rescued);

    /// Opens a journal and removes it. False if nothing can be brought back from it.
    bool OpenJournal(const std::string& path, const std::string& stepName);

    /// Why work is not being kept at the moment, "" if it is.
    std::string Trouble() const { return journal.Trouble(); }

    std::string JournalPath() const { return journal.Path(); }

private:
    void Happens(const Event& event) override;
    void Append(std::string_view entry) override;
    bool LosesTail(const Event& event) const;
    Ending HowItEnds() const;

    MainWin& win;
    History& history;
    Journal journal;
    std::string parked;  // the tail that the last event has left parked
};

}  // namespace quillon
