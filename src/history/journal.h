// The journal of a run: its history on the disk, as it grows.
//
// An entry is in the system's hands when Append returns, so a kill loses nothing. A thread of its
// own brings it to the disk within a second, for power cuts, and keeps the file short: callers
// neither wait for the disk nor serialise the tune.
//
// A file that has become long goes on in a new one, which begins with the tune and its latest
// steps. The old one goes when the new one is on the disk.

#pragma once

#include "history/journal_file.h"
#include "store/growing_file.h"

#include <condition_variable>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace quillon {

class Journal {
public:
    /// Begins a journal in `folder` for a run whose history is `theRun`, which must outlive it.
    Journal(std::string theFolder, const Timeline& theRun);

    /// The file stays, on the disk.
    ~Journal();

    Journal(const Journal&) = delete;
    Journal& operator=(const Journal&) = delete;

    void Append(std::string_view entry);

    /// Returns when all that was appended is on the disk.
    void Sync();

    /// Before a tune's file is written: returns when what will be written is on the disk.
    void Hold(const Saving& saving);

    /// A tune is left that is in no file. What is in the journal so far becomes one of an ended
    /// run.
    void LeaveBehind(Ending ending);

    // One of these may be the last call.

    /// The run ends with work that is in no file.
    void End(Ending ending);

    /// The run ends with nothing to bring back.
    void Remove();

    /// The run is about to end by a fault, and the next one shall find the journal free.
    void Release();

    std::string Path() const;

    /// Why work is not being kept at the moment, "" if it is.
    std::string Trouble() const;

private:
    using File = std::shared_ptr<GrowingFile>;

    /// A journal that is left behind.
    struct Copy {
        File From;
        std::size_t Size;  // of From at that time
        Ending How;
    };

    std::string NextPath();
    void Begin();
    void AppendFrame(const std::string& frame);
    void Stop();
    void Work();
    void WriteCopy(const Copy& copy);
    void KeepShort();
    File NewFile(const std::string& bytes);
    void TakePlaceOf(const File& present, std::size_t summedUp, const std::string& summary,
                     int forgotten);
    void RemoveOutdated();

    std::string folder;
    const Timeline& run;
    std::string name;          // of its files, but for their number
    int files = 0;             // that it had so far
    std::size_t shortest = 0;  // what KeepShort made of it last

    mutable std::mutex mutex;  // for all below, and for writing to the files
    std::condition_variable wake;
    File file;  // none if it could not be created
    Progress progress;
    std::optional<Saving> saved;
    std::string behind;   // frames that could not be written
    std::string trouble;  // why
    std::vector<Copy> copies;
    std::vector<File> outdated;  // go when the present file is on the disk
    std::size_t longest = 0;     // size at which it is shortened
    int leastUndone = 0;         // the run's UndoCount since KeepShort looked, at its least
    bool unsynced = false;
    bool vanished = false;  // somebody has removed the file
    bool stopping = false;

    std::thread thread;
};

}  // namespace quillon
