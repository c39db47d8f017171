// Any bytes as a journal: it is refused, or leads to a run in which the editor goes on.
//
// The first byte says how the others are taken: 0 as the whole file, 1 as an entry behind a real
// beginning. Else they damage the entries of a real journal, four for a change: what to do, which
// entry, where, and a byte. Entries get right checksums, as nothing else would be looked at.

#include "headless/scenario.h"
#include "history/entries.h"
#include "history/journal_file.h"
#include "shell/steps.h"
#include "support/temporary_directory.h"

#include <cstdint>
#include <cstdlib>
#include <sstream>

using namespace quillon;

namespace {

constexpr const char* kEvents[] = {
    "type 3",        "key Enter",         "key F1",         "type Am",  "key Enter",
    "type 5^",       "key Enter",         "key F7",         "type 1.",  "key Enter",
    "press cmdNext", "menu mnuInsMeas",   "type 7",         "undo 2",   "key Left",
    "redo",          "key Enter",         "press cmdNext",  "copy 1 1", "menu mnuPaste",
    "ask no",        "strings 4",         "menu mnuAppend", "type 2",   "menu mnuDelMeas",
    "undo 3",        "press cmdPrevious",
};

constexpr const char* kAfterwards[] = {
    "undo 2",          "redo",   "type 5",         "key Enter",     "undo 100",
    "redo 3",          "type 7", "undo",           "press cmdNext", "toolbar 4",
    "menu mnuDelMeas", "undo 2", "menu mnuAppend", "state",
};

class Collector : public HistoryKeeper {
public:
    void Happens(const Event&) override {}
    void Append(std::string_view entry) override { Entries.emplace_back(entry); }

    std::vector<std::string> Entries;
};

/// The entries of a real journal.
std::vector<std::string> RealEntries()
{
    std::ostringstream output;
    Scenario scenario(".", output);
    Collector collector;
    collector.Append(EntriesOf(scenario.Steps()->Steps(), 0)[0]);
    scenario.Steps()->Keeper = &collector;
    for (const char* event : kEvents)
        scenario.Play(event);
    collector.Append(EntryOf(Saving{"tune.gui", "1,2,3"}));
    collector.Append(EntryOf(Ending::Discarded));
    return collector.Entries;
}

void Damage(std::vector<std::string>& entries, const std::uint8_t* change)
{
    const std::size_t which = change[1] % entries.size();
    std::string& entry = entries[which];
    const std::size_t place = entry.empty() ? 0 : change[2] % entry.size();
    switch (change[0] % 5) {
    case 0:
        if (!entry.empty())
            entry[place] = static_cast<char>(change[3]);
        break;
    case 1:
        entry.insert(place, 1, static_cast<char>(change[3]));
        break;
    case 2:
        entry.resize(place);
        break;
    case 3:
        std::swap(entry, entries[change[3] % entries.size()]);
        break;
    default:
        entries.resize(std::max<std::size_t>(which, 1));
    }
}

std::string Journal(const std::uint8_t* data, std::size_t size)
{
    static const std::vector<std::string> real = RealEntries();
    std::string bytes(reinterpret_cast<const char*>(data) + 1, size - 1);
    if (data[0] == 0)
        return bytes;
    std::vector<std::string> entries = real;
    if (data[0] == 1)
        entries = {real[0], bytes, real[1]};
    else
        for (std::size_t i = 1; i + 3 < size; i += 4)
            Damage(entries, data + i);
    Progress progress;
    std::string journal(kJournalMark);
    for (const std::string& entry : entries)
        journal += Frame(entry, progress);
    return journal;
}

void GoOn(const Timeline& run)
{
    std::ostringstream output;
    Scenario scenario(".", output);
    scenario.Steps()->Adopt(run, "Open");
    for (const char* line : kAfterwards)
        if (!scenario.Play(line))
            break;  // a run-time error
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const TemporaryDirectory folder;
    if (size < 2)
        return 0;
    JournalContents contents = ReadJournal(Journal(data, size));
    if (!contents.Run)
        return 0;
    if (!contents.Run->Last().IsSound())
        std::abort();
    GoOn(*contents.Run);
    return 0;
}
