// The tunes that were opened or saved last, and tunes opened from a list of names.

#pragma once

#include "platform/settings.h"
#include "shell/main_win.h"

#include <string>
#include <vector>

namespace quillon {

constexpr std::size_t kMostRecentTunes = 10;

/// Their paths, the latest first.
std::vector<std::string> RecentTunes(const Settings& settings);

/// Puts a tune at the head of the list. Paths that mean nothing in another run are left out.
void RememberTune(Settings& settings, const std::string& path);

/// Opens a tune on the instrument that belongs to it. The save question is asked first; if the
/// tune then stays unsaved, nothing is opened.
void OpenWithInstrument(MainWin& win, const std::string& path);

/// Opens a copy that has no file, so that Save cannot overwrite the tune that it comes from.
void OpenAsNewTune(MainWin& win, const std::string& path);

}  // namespace quillon
