// Work that an ended run has left in no file.
//
// A run that ends in good order with everything saved leaves nothing. Else its journal is found by
// the next start, which moves it to the folder Rescued, with the tune beside it as a tune file that
// any version can open. What the user has discarded by answering No is not told of, and goes after
// seven days.

#pragma once

#include "editor/main_form.h"
#include "history/journal_file.h"
#include "store/tune.h"

#include <string>
#include <vector>

namespace quillon {

/// The tune as it stands in the table, with what an unfinished insertion or paste has parked, as
/// the bytes of a tune file. A table that overflowed gives more records than can be opened.
std::string RescueBytes(const Tune& tune, const MainForm& form);

struct Rescued {
    std::string Tune;     // path of the tune's file
    std::string Journal;  // path, "" if there is none
    std::string Name;     // such as "Greensleeves, 22 Nov 14:05"
    bool Discarded = false;
};

/// What is in the folder Rescued, the latest first.
std::vector<Rescued> RescuedIn(const std::string& programFolder);

/// Moves there what ended runs have left in the program's folder. Returns what there is to tell of
/// files that cannot be read, and of saved tunes that are not what was saved, a sentence each.
std::vector<std::string> RescueEndedRuns(const std::string& programFolder);

std::string RescuedFolder(const std::string& programFolder);

/// A tune file of its own for work that cannot be kept anywhere else, in a folder. "" if that fails
/// too.
std::string WriteRescueCopy(const Tune& tune, const MainForm& form, const std::string& folder);

}  // namespace quillon
