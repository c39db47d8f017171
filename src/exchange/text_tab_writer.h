// Writes tablature as text: a line of dashes for each string, 80 columns wide.

#pragma once

#include "exchange/music.h"
#include "exchange/notices.h"

#include <string>

namespace quillon {

/// One tune in UTF-8: title, tuning, and systems of chord names, rhythm letters and strings.
std::string WriteTextTab(const Music& music, Notices& notices);

}  // namespace quillon
