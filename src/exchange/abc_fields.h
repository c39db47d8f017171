// The values of ABC's fields: key, meter, unit length, tempo, order of parts.

#pragma once

#include "exchange/music.h"

#include <array>
#include <optional>
#include <string>
#include <string_view>

namespace quillon {

/// A whole number at the start of a text, which is taken off it; none if there is none. What is
/// absurd for music is held at `kAbsurd`.
std::optional<int> TakeNumber(std::string_view& text);
constexpr int kAbsurd = 9999;

/// Semitones by letter, from C: 1 is a sharp, -1 a flat.
using AbcAccidentals = std::array<int, 7>;

/// The letter of a note from C = 0; none for any other character. Case does not matter.
std::optional<int> AbcLetter(char c);

/// Reads K: into `key`, which stays as it is where the field tells a clef alone.
void ReadAbcKey(std::string_view field, AbcAccidentals& key);

struct AbcMeter {
    int Beats = 4;
    int BeatUnit = 4;
    bool Free = false;  // M:none

    bool IsCompound() const { return BeatUnit >= 8 && Beats > 3 && Beats % 3 == 0; }
    Units Length() const { return 4 * kQuarterUnits * Beats / BeatUnit; }
};

/// M:, as far as it is understood.
AbcMeter ReadAbcMeter(std::string_view field);

/// L:; none if it tells no length.
std::optional<Units> ReadAbcUnit(std::string_view field);

/// What a note is long without L:.
Units AbcUnitOf(const AbcMeter& meter);

/// Q: in quarters per minute; 0 if it tells no number.
double ReadAbcTempo(std::string_view field, Units unit);

/// P: of a header, written out: "A2(BC)2" is "AABCBC".
std::string ReadAbcPartOrder(std::string_view field);

}  // namespace quillon
