// The cursor in words, for a screen reader.

#pragma once

#include "editor/main_form.h"
#include "store/tune.h"

#include <string>

namespace quillon {

/// Name of button 1..11 of Toolbar1, "quarter triplet"; "" for any other number.
const char* ValueName(int button);

/// Where the cursor is and what is there: "Measure 3, column 2 of 4, string 1, fret 5,
/// quarter note". A column that is still to be entered is "new column 5". Any state gives a text.
std::string SpokenCursor(const Tune& tune, const MainForm& form);

/// What of a text of SpokenCursor is new after another one: "column 3 of 4, fret 5". All of it in
/// another measure and where the texts are of different kinds; "" if nothing is.
std::string SpokenChange(const std::string& before, const std::string& after);

}  // namespace quillon
