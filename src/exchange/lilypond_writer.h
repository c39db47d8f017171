// Writes LilyPond: a tablature staff as the tune is written, and what sounds as it is played.

#pragma once

#include "exchange/music.h"
#include "exchange/notices.h"

#include <string>

namespace quillon {

/// A file for LilyPond 2.24 in UTF-8.
std::string WriteLilyPond(const Music& music, Notices& notices);

}  // namespace quillon
