#include "shell/run_keeper.h"

#include "notation/page_layout.h"

#include <filesystem>

namespace quillon {

namespace {

namespace fs = std::filesystem;

}  // namespace

RunKeeper::RunKeeper(MainWin& mainWin, History& theHistory, std::string programFolder)
    : win(mainWin), history(theHistory), folder(std::move(programFolder)),
      journal(folder, history.Steps())
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

/// Whether the tail that was parked after the last event is neither parked nor in the table now, or
/// the tune was saved without it.
bool RunKeeper::TailWasLost() const
{
    const MainForm& form = win.form;
    if (parked.empty() || form.Discarded)
        return false;
    if (form.Saved != SavedState::Unsaved)
        return true;
    const ParkedTail& now = form.Parked;
    const bool inserting = form.InputMode == InputMode::Insert;
    if (now.Bytes.empty())
        return inserting;  // read back, unless a second insertion has parked nothing in its place
    return now.Bytes != parked || (now.RecordsBack == 0 && !inserting);
}

void RunKeeper::Happens(const Event& event)
{
    const bool leavesTune = event.Begins && event.Begins->BeginsTune && !event.SavedBefore;
    const bool tailWasLost = TailWasLost();
    if (tailWasLost || (leavesTune && history.Changed()))
        journal.LeaveBehind(HowItEnds());
    if (tailWasLost && win.form.InputMode != InputMode::Insert)
        win.form.Parked = {};  // no command reads it back any more
    parked = win.form.Parked.Bytes;
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
    kept.Changed = history.Changed();
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

void RunKeeper::EndByFault(bool startAgain)
{
    if (history.Changed() || startAgain)
        journal.Release();
    else
        journal.Remove();
}

void RunKeeper::Open(const Rescued& rescued)
{
    if (rescued.Journal.empty()) {
        win.OpenDropped(rescued.Tune);
        return;
    }
    if (!win.MayLeaveTune())
        return;
    if (!OpenJournal(rescued.Journal, "Open " + rescued.Name)) {
        win.OpenDropped(rescued.Tune);
        return;
    }
    std::error_code ignored;
    fs::remove(rescued.Tune, ignored);
}

bool RunKeeper::OpenJournal(const std::string& path, const std::string& stepName)
{
    const JournalContents contents = ReadJournal(ReadFileBytes(path));
    if (!contents.Run)
        return false;
    if (history.Changed())
        journal.LeaveBehind(HowItEnds());
    history.Adopt(*contents.Run, stepName);
    parked = win.form.Parked.Bytes;
    ShowPages();
    journal.Sync();
    std::error_code ignored;
    fs::remove(path, ignored);
    return true;
}

void RunKeeper::ShowPages()
{
    win.pages.mnuSmallView();
    win.pages.ResetCounters();
    win.pages.BlankPages();
    try {
        LayOutPages(win.tune, win.page, win.pages);
    } catch (const Fault&) {
        win.pages.BlankPages();
    }
}

}  // namespace quillon
