// The tuning list of an instrument, and what was chosen from it last. Unlike when the MIDI form
// opens, a file of the list that cannot be read stays as it is.

#pragma once

#include "shell/main_win.h"

#include <vector>

namespace quillon {

/// The rows of the player's list or, where it cannot be read, those that it began with.
std::vector<TuningRecord> TuningList(const MainWin& win, const InstrumentMode& mode);

/// The row that a tune has which keeps none of its own.
int ChosenTuning(const MainWin& win, const InstrumentMode& mode, int rowCount);

}  // namespace quillon
