// Reads Standard MIDI Files: what sounds, put on the note table's ticks.

#pragma once

#include "exchange/found_tune.h"

#include <string_view>
#include <vector>

namespace quillon {

/// The one tune of a file. Bytes that are no MIDI file are an ExchangeError.
std::vector<FoundTune> ReadMidi(std::string_view bytes);

}  // namespace quillon
