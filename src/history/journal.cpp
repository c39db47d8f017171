#include "history/journal.h"

#include "history/entries.h"
#include "store/staged_file.h"

#include <algorithm>
#include <chrono>
#include <ctime>
#include <filesystem>
#include <limits>
#include <random>
#include <system_error>

namespace quillon {

namespace {

namespace fs = std::filesystem;

/// Several entries are brought to the disk at once.
constexpr std::chrono::milliseconds kRest(200);

// A journal is shortened before it is ten times as long as the tune's file.
constexpr std::size_t kRecordBytes = 58;  // of a record in a tune's file, at least
constexpr std::size_t kLongest = 8;
constexpr std::size_t kShorter = 3;           // what of it are steps, when it has been shortened
constexpr std::size_t kAlwaysFits = 128'000;  // some two hundred steps, whatever the tune
constexpr int kLeastSteps = 100;              // that can be undone after a kill, however long

std::string TimeStamp()
{
    const std::time_t now = std::time(nullptr);
    char text[32];
    std::strftime(text, sizeof text, "%Y%m%d-%H%M%S", std::localtime(&now));
    return text;
}

/// A name that no other run has.
std::string NewName()
{
    std::random_device random;
    std::string letters;
    for (int i = 0; i < 8; ++i)
        letters += static_cast<char>('a' + random() % 26);
    return std::string(kRunPrefix) + TimeStamp() + "-" + letters;
}

std::size_t LongestFor(const Tune& tune)
{
    const auto records = static_cast<std::size_t>(std::max<int>(tune.LastNote, 0));
    return std::max(kAlwaysFits, kLongest * kRecordBytes * records);
}

/// What is kept of the steps in a journal that was `longest`.
StepsToKeep KeptOf(std::size_t longest)
{
    return {longest / kLongest * kShorter, kLeastSteps};
}

}  // namespace

Journal::Journal(std::string theFolder, const Timeline& theRun)
    : folder(std::move(theFolder)), run(theRun), name(NewName())
{
    Begin();
    thread = std::thread([this] { Work(); });
}

Journal::~Journal()
{
    Stop();
}

std::string Journal::NextPath()
{
    return folder + "/" + name + "." + std::to_string(++files) + std::string(kJournalExtension);
}

/// Begins a file, for want of one that the run can go on in.
void Journal::Begin()
{
    longest = LongestFor(run.Last().Music);
    behind.clear();
    vanished = false;
    if (file)
        outdated.push_back(std::move(file));
    file.reset();
    progress.Forgotten = 0;
    const std::string bytes = Summary(run, saved, KeptOf(longest), progress);
    try {
        file = std::make_shared<GrowingFile>(NextPath());
        AppendFrame(bytes);
    } catch (const std::system_error& error) {
        trouble = error.code().message();
    }
}

void Journal::AppendFrame(const std::string& frame)
{
    longest = LongestFor(run.Last().Music);
    unsynced = true;
    behind += frame;
    try {
        file->Append(behind);
        behind.clear();
        trouble.clear();
    } catch (const std::system_error& error) {
        trouble = error.code().message();
    }
}

void Journal::Append(std::string_view entry)
{
    const std::scoped_lock lock(mutex);
    const std::string frame = Frame(entry, progress);
    leastUndone = std::min(leastUndone, run.UndoCount());
    if (!file || vanished || run.UndoCount() < progress.Forgotten)
        Begin();  // the run holds the entry already
    else
        AppendFrame(frame);
    wake.notify_one();
}

void Journal::Hold(const Saving& saving)
{
    {
        const std::scoped_lock lock(mutex);
        saved = saving;
    }
    Append(EntryOf(saving));
    Sync();
}

void Journal::LeaveBehind(Ending ending)
{
    const std::scoped_lock lock(mutex);
    if (!file || !behind.empty())
        return;
    copies.push_back({file, file->Size(), ending});
    wake.notify_one();
}

void Journal::End(Ending ending)
{
    Append(EntryOf(ending));
    Stop();
    Sync();
}

void Journal::Remove()
{
    Stop();
    std::error_code ignored;
    if (file)
        fs::remove(file->Path(), ignored);
}

void Journal::Release()
{
    Stop();
    file.reset();
}

std::string Journal::Path() const
{
    const std::scoped_lock lock(mutex);
    return file ? file->Path() : "";
}

std::string Journal::Trouble() const
{
    const std::scoped_lock lock(mutex);
    return trouble;
}

/// What is still to be done is done first.
void Journal::Stop()
{
    {
        const std::scoped_lock lock(mutex);
        stopping = true;
        wake.notify_one();
    }
    if (thread.joinable())
        thread.join();
}

// The thread

void Journal::Work()
{
    std::unique_lock lock(mutex);
    const auto isAsked = [this] { return stopping || !copies.empty(); };
    while (!stopping || unsynced || !copies.empty()) {
        wake.wait(lock, [&] { return unsynced || isAsked(); });
        wake.wait_for(lock, kRest, isAsked);
        const std::vector<Copy> wanted = std::move(copies);
        copies.clear();
        lock.unlock();
        for (const Copy& copy : wanted)
            WriteCopy(copy);
        Sync();
        RemoveOutdated();
        KeepShort();
        lock.lock();
    }
}

void Journal::Sync()
{
    File synced;
    {
        const std::scoped_lock lock(mutex);
        unsynced = false;
        synced = file;
    }
    if (!synced)
        return;
    std::string reason;
    try {
        synced->Sync();
        if (shortest == 0)
            SyncFolder(folder);
    } catch (const std::system_error& error) {
        reason = error.code().message();
    }
    const std::scoped_lock lock(mutex);
    if (!reason.empty())
        trouble = reason;
    vanished = file == synced && !file->IsInPlace();
}

void Journal::WriteCopy(const Copy& copy)
{
    try {
        std::string bytes = copy.From->Read(0, copy.Size);
        Progress reached = ReadJournal(bytes).Reached;
        bytes += Frame(EntryOf(copy.How), reached);
        GrowingFile left(folder + "/" + NewName() + ".1" + std::string(kJournalExtension));
        left.Append(bytes);
        left.Sync();
        SyncFolder(folder);
    } catch (const std::system_error&) {
        // undo can still bring it back
    }
}

void Journal::KeepShort()
{
    File present;
    std::size_t most = 0;
    std::size_t size = 0;
    {
        const std::scoped_lock lock(mutex);
        present = file;
        most = longest;
        size = file ? file->Size() : 0;
        leastUndone = std::numeric_limits<int>::max();
    }
    if (size <= std::max(most, shortest + most / 4))
        return;
    try {
        JournalContents contents = ReadJournal(present->Read(0, size));
        if (!contents.Run)
            return;
        const std::string summary =
            Summary(*contents.Run, contents.Saved, KeptOf(most), contents.Reached);
        shortest = summary.size();
        TakePlaceOf(present, size, summary, contents.Reached.Forgotten);
    } catch (const std::system_error&) {
        // it stays long
    }
}

Journal::File Journal::NewFile(const std::string& bytes)
{
    std::string path;
    {
        const std::scoped_lock lock(mutex);
        path = NextPath();
    }
    auto made = std::make_shared<GrowingFile>(path);
    try {
        made->Append(bytes);
        made->Sync();
        SyncFolder(folder);
    } catch (const std::system_error&) {
        std::error_code ignored;
        fs::remove(path, ignored);
        throw;
    }
    return made;
}

/// The run goes on in a new file: `summary` says the same as the first bytes of `present`, and
/// those after them follow.
void Journal::TakePlaceOf(const File& present, std::size_t summedUp, const std::string& summary,
                          int forgotten)
{
    const File made = NewFile(summary);
    const std::scoped_lock lock(mutex);
    outdated.push_back(made);
    if (file != present || leastUndone < forgotten)
        return;  // meanwhile the run has begun another one, or has gone back too far
    made->Append(present->Read(summedUp, present->Size()));
    std::swap(file, outdated.back());
    progress.Forgotten = forgotten;
    unsynced = true;
}

/// After the present file has come to the disk.
void Journal::RemoveOutdated()
{
    std::vector<File> gone;
    {
        const std::scoped_lock lock(mutex);
        if (!unsynced)
            gone.swap(outdated);
    }
    std::error_code ignored;
    for (const File& one : gone)
        if (one->IsInPlace())
            fs::remove(one->Path(), ignored);
}

}  // namespace quillon
