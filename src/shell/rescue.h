// The rescue copy: unsaved work outlives a run-time error and a kill.
//
// After each event that left the tune changed and unsaved, the tune as it stands, with a tail that
// is parked for the moment, is in a file of this run in the program's own folder. The file is
// written aside and renamed, so it is whole at every moment for all who look. Nothing waits for the
// disk: a power cut takes what the system has not written by itself, some half a minute's work.
//
// As long as the run lives the file is locked.

#pragma once

#include "editor/main_form.h"
#include "store/staged_file.h"
#include "store/tune.h"

#include <memory>
#include <string>
#include <vector>

namespace quillon {

/// The tune as it stands in the table, with what an unfinished insertion or paste has parked, as
/// the bytes of a tune file. A table that overflowed gives more records than can be opened.
std::string RescueBytes(const Tune& tune, const MainForm& form);

/// The rescue copies of finished runs that lie in a folder, as file names, oldest first.
std::vector<std::string> RescueCopiesIn(const std::string& folder);

class RescueCopy {
public:
    /// The copies of this run go into `programFolder`.
    RescueCopy(const Tune& theTune, MainForm& mainForm, std::string programFolder)
        : tune(theTune), form(mainForm), folder(std::move(programFolder))
    {
    }

    /// After an event: brings the copy up to date, or removes it when the tune is saved or the user
    /// has discarded it. A command that threw a parked tail away, or saved the tune without it,
    /// leaves the copy behind, and the next one gets another name. Failures to write are silent.
    void Refresh();

    /// A fault ends the program in the middle of an event. While the tune is unsaved, the copy from
    /// before the event stays if it is there, whole and up to date; else the table is kept as it
    /// stands, where the program's folder takes no more among the system's temporary files.
    /// Returns the path of what was kept, "" if nothing was.
    std::string Keep();

    /// Path of the copy, "" if there is none.
    const std::string& Path() const { return path; }

private:
    bool TailWasLost() const;
    bool IsWhole() const;
    void LeaveBehind();
    void Follow();
    void Write();
    std::string KeepElsewhere() const;

    const Tune& tune;
    MainForm& form;
    std::string folder;
    std::string path;                     // "" until a copy was written
    std::string written;                  // what it holds
    std::unique_ptr<TemporaryFile> file;  // keeps it locked
    std::string parked;                   // the parked tail at the last refresh
    bool behind = false;                  // the last try to write it has failed
};

}  // namespace quillon
