// A journal in memory.

#pragma once

#include "history/entries.h"
#include "history/history.h"
#include "history/journal_file.h"

#include <functional>
#include <string>

namespace quillon {

class MemoryJournal : public HistoryKeeper {
public:
    explicit MemoryJournal(History& theHistory) : history(theHistory)
    {
        Begin();
        history.Keeper = this;
    }

    ~MemoryJournal() override { history.Keeper = nullptr; }

    MemoryJournal(const MemoryJournal&) = delete;
    MemoryJournal& operator=(const MemoryJournal&) = delete;

    void Happens(const Event&) override {}

    void Append(std::string_view entry) override
    {
        bytes += Frame(entry, progress);
        if (history.UndoCount() < progress.Forgotten)
            Begin();
        Appended();
    }

    std::function<void()> Appended = [] {};

    const std::string& Bytes() const { return bytes; }

    void Shorten(StepsToKeep kept)
    {
        const JournalContents contents = ReadJournal(bytes);
        progress = contents.Reached;
        bytes = Summary(*contents.Run, contents.Saved, kept, progress);
    }

private:
    void Begin()
    {
        progress.Forgotten = 0;
        bytes = Summary(history.Steps(), {}, {1'000'000}, progress);
    }

    History& history;
    std::string bytes;
    Progress progress;
};

/// A moment as bytes, to compare it by.
inline std::string BytesOf(const Moment& moment)
{
    return EntryOf(moment, {}, {});
}

}  // namespace quillon
