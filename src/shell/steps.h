// What the history needs to know about the main form: which values it has, and what its commands
// are called.

#pragma once

#include "history/history.h"
#include "shell/main_win.h"
#include "shell/menus.h"

#include <string>

namespace quillon {

/// The values that undo and redo put back.
Values ValuesOf(MainWin& win);

/// The name of a step made by a menu command: its caption.
std::string StepName(const MenuEntry& entry);

/// The name of a step made by a button: what the button says at the moment.
std::string StepName(Control button, const MainForm& form);

// Other events that may change the tune.
inline constexpr const char* kToolbarStep = "Note Value";
inline constexpr const char* kClickStep = "Time Signature";
inline constexpr const char* kGoToStep = "Go to Measure";
inline constexpr const char* kPageSetupStep = "Page Setup";
inline constexpr const char* kTuningStep = "Tuning";

}  // namespace quillon
