// The order in which a tune is played, as its performance has it.

#pragma once

#include "store/tune.h"

#include <vector>

namespace quillon {

/// The measures, from 0 in the order of their heads. A tune that cannot be performed is a Fault or
/// a NeverEnding.
std::vector<int> PlayedOrder(Tune& tune);

}  // namespace quillon
