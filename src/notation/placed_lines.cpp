#include "notation/placed_lines.h"

#include <algorithm>

namespace quillon {

bool PlacedLine::IsOn(const Drawing& page) const
{
    return !Drawn.empty() && !std::ranges::search(page.Operations(), Drawn).empty();
}

}  // namespace quillon
