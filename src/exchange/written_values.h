// How lengths are written: the names that other programs have for the note table's values, and for
// the halves that two notes in a cell have.

#pragma once

#include "exchange/music.h"

#include <string_view>

namespace quillon {

struct WrittenValue {
    int HalfTicks;          // 24 to the quarter
    std::string_view Type;  // in MusicXML
    int Divisor;            // of a whole note, without dot and triplet
    bool Dotted;
    bool Triplet;  // three in the time of two
};

/// The value of a length; the nearest one below if it has none.
const WrittenValue& WrittenValueOf(Units length);

/// A pitch's letter and whether it is sharp, by semitone from C.
struct WrittenPitch {
    char Letter;
    bool Sharp;
};

WrittenPitch WrittenPitchOf(int pitch);

}  // namespace quillon
