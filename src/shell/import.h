// Other programs' files, as tunes in the window.

#pragma once

#include "exchange/found_tune.h"
#include "shell/main_win.h"

#include <memory>
#include <string>
#include <vector>

namespace quillon {

/// Whether a file is to be imported, not opened: its extension is another program's, and it is no
/// tune of our own. One that cannot be read is not; opening it says so.
bool IsForeign(const std::string& path);

/// The tunes in another program's file. What cannot be read is an ExchangeError.
std::vector<FoundTune> TunesIn(const std::string& path);

/// Makes a tune of one that was found, for the instrument that it fits: its own, or the present
/// one. What cannot be made is an ExchangeError.
std::unique_ptr<Tune> MakeImported(const MainWin& win, FoundTune found, Notices& said);

/// Puts a tune in the place of the present one: new, unnamed and unsaved. The save question is
/// asked first. False if the present tune then stays.
bool TakeImported(MainWin& win, const Tune& made, Notices& said);

}  // namespace quillon
