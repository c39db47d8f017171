#include "shell/run_keeper.h"

#include <filesystem>

namespace quillon {

namespace {

namespace fs = std::filesystem;

/// Contents without a run if the file cannot be read.
JournalContents Contents(const std::string& path)
{
    try {
        return ReadJournal(ReadFileBytes(path));
    } catch (const Fault&) {
        return {};
    }
}

}  // namespace

RunKeeper::RunKeeper(MainWin& mainWin, History& theHistory, std::string programFolder)
    : win(mainWin), history(theHistory), journal(std::move(programFolder), history.Steps())
{
    history.Keeper = this;
    win.BeforeWriting = [this](const std::string& path, const std::string& bytes) {
        std::error_code ignored;
        journal.Hold({fs::absolute(path, ignored), bytes});
    };
}

RunKeeper::~RunKeeper()
{
    history.Keeper = nullptr;
    win.BeforeWriting = [](const std::string&, const std::string&) {};
}

/// Whether the tail that was parked before the event is neither parked nor in the table now, or the
/// tune was saved without it.
bool RunKeeper::LosesTail(const Event& event) const
{
    const MainForm& form = win.form;
    if (parked.empty() || form.Discarded)
        return false;
    if (event.SavedBefore || event.SavedAfter)
        return true;
    const std::string& now = form.Parked.Bytes;
    return form.InputMode == InputMode::Insert ? now != parked : !now.empty();
}

void RunKeeper::Happens(const Event& event)
{
    const bool leavesTune = event.Begins && event.Begins->BeginsTune && !event.SavedBefore;
    if (history.Changed() && (leavesTune || LosesTail(event)))
        journal.LeaveBehind(HowItEnds());
}

void RunKeeper::Append(std::string_view entry)
{
    parked = win.form.InputMode == InputMode::Insert ? win.form.Parked.Bytes : "";
    journal.Append(entry);
}

Ending RunKeeper::HowItEnds() const
{
    return win.form.Discarded ? Ending::Discarded : Ending::Lost;
}

void RunKeeper::EndInOrder()
{
    if (history.Changed())
        journal.End(HowItEnds());
    else
        journal.Remove();
}

KeptWork RunKeeper::AtFault() const
{
    KeptWork kept;
    kept.Changed = history.Changed() || win.form.Saved == SavedState::Unsaved;
    const std::string path = journal.Path();
    std::error_code missing;
    if (journal.Trouble().empty() && fs::exists(path, missing)) {
        kept.Journal = path;
    } else if (kept.Changed) {
        const Moment& last = history.Last();
        kept.Tune = WriteRescueCopy(last.Music, last.Form, fs::temp_directory_path(missing));
    }
    return kept;
}

void RunKeeper::Open(const Rescued& rescued)
{
    if (rescued.Journal.empty()) {
        win.OpenDropped(rescued.Tune);
        return;
    }
    if (history.Changed() && !win.MayLeaveTune())
        return;
    if (!OpenJournal(rescued.Journal, "Open " + rescued.Name)) {
        win.OpenDropped(rescued.Tune);
        return;
    }
    std::error_code ignored;
    if (!fs::exists(rescued.Journal, ignored))
        fs::remove(rescued.Tune, ignored);
}

bool RunKeeper::OpenJournal(const std::string& path, const std::string& stepName)
{
    const JournalContents contents = Contents(path);
    if (!contents.Run)
        return false;
    history.Observe(Input::Command, {});  // the tune that goes may just have been saved
    if (history.Changed())
        journal.LeaveBehind(HowItEnds());
    history.Adopt(*contents.Run, stepName);
    win.ShowPages();
    journal.Sync();
    std::error_code ignored;
    if (journal.Trouble().empty())
        fs::remove(path, ignored);
    return true;
}

}  // namespace quillon
