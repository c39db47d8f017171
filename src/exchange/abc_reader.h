// Reads ABC 2.1 as tune books have it.
//
// What is read is what sounds: pitches, lengths, ties, bars, repeats and endings, with chord
// names, title and composer. docs/exchange.md says what becomes of the rest.

#pragma once

#include "exchange/found_tune.h"

#include <string_view>
#include <vector>

namespace quillon {

/// All tunes of a file, in order. A file without any is an ExchangeError.
std::vector<FoundTune> ReadAbc(std::string_view bytes);

}  // namespace quillon
