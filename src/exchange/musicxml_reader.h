// Reads MusicXML 3 and 4, partwise and timewise.
//
// A part with a tablature staff keeps its strings and frets; of any other the pitches are read.

#pragma once

#include "exchange/found_tune.h"

#include <string_view>
#include <vector>

namespace quillon {

/// The one tune of a document. One that is no score is an ExchangeError.
std::vector<FoundTune> ReadMusicXml(std::string_view bytes);

}  // namespace quillon
