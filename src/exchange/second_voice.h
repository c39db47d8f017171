// A second voice, where there is room for it: a tune has one.

#pragma once

#include "exchange/music.h"

namespace quillon {

/// Adds notes of another voice, `begin` after the measure's beginning: in a rest of the first
/// voice, after its end, or to notes that begin and end together with them. False if there is no
/// such place.
bool AddSecondVoice(MusicMeasure& measure, Units begin, const MusicEvent& event);

}  // namespace quillon
