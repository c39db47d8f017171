// Reads tablature written as text, as it is found on the net: staves of four, five or six lines of
// dashes and figures, between other text.

#pragma once

#include "exchange/found_tune.h"

#include <string_view>
#include <vector>

namespace quillon {

/// The one tune of a text. A text without a staff is an ExchangeError.
std::vector<FoundTune> ReadTextTab(std::string_view bytes);

/// Whether a text has a staff in it.
bool HasTabStaff(std::string_view bytes);

}  // namespace quillon
