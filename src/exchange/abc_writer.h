// Writes ABC: pitches, lengths, ties, chord names, bars, repeats and endings.

#pragma once

#include "exchange/music.h"
#include "exchange/notices.h"

#include <string>

namespace quillon {

/// One tune in UTF-8. Strings, frets and what is done on a string are told as left out.
std::string WriteAbc(const Music& music, Notices& notices);

}  // namespace quillon
