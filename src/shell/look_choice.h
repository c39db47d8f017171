// The look that the user has chosen for the screen, for paper and for pictures on the clipboard.

#pragma once

#include "notation/look.h"
#include "platform/settings.h"

namespace quillon {

/// Plain until the user chooses otherwise.
Look ChosenLook(const Settings& settings);
void ChooseLook(Settings& settings, Look look);

}  // namespace quillon
