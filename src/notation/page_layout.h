// The page formatter: the whole tune laid out on the page surfaces.

#pragma once

#include "notation/page_view.h"
#include "store/page_settings.h"
#include "store/tune.h"

#include <optional>

namespace quillon {

/// Draws the tune on the page surfaces. Returns the number of a measure that is too wide for a
/// line, at which the run stopped; what was drawn before it stays.
std::optional<int> LayOutPages(const Tune& tune, const PageSettings& page, PageView& pages);

}  // namespace quillon
