// Fingering: where on the neck a player would play what comes with pitches alone.
//
// The hand has a position: the fret under its first finger. A note is played at one of the places
// that have its pitch, a chord on as many strings as it has notes. The fingering is the cheapest
// way through the whole tune: an exact shortest path over all positions and places, at the prices
// of kFingeringCosts.

#pragma once

#include "exchange/music.h"
#include "exchange/notices.h"

#include <vector>

namespace quillon {

constexpr int kHighestNeckFret = 24;

struct FingeringChoices {
    std::vector<int> OpenPitches;  // with the capo, string 1 first
    int LowestFret = 0;            // fretted notes lie between these two; open strings may sound
    int HighestFret = kHighestNeckFret;
};

/// Prices in points; what costs less is preferred.
struct FingeringCosts {
    // Moving
    int Shift = 4;          // the hand leaves its position
    int ShiftPerFret = 3;   // and goes so far
    int QuickShift = 6;     // in less than an eighth, with no open string or rest to cover it
    int StringSkipped = 1;  // between two notes, each string that the pick passes over
    int SameString = 1;     // two short notes on one string, different frets: a finger must hurry
    int OtherString = 6;    // the same pitch again, but elsewhere

    // The hand: its four fingers cover four frets, or six on a short neck such as a mandolin's
    int Stretch = 4;    // a fret below or above these
    int WideChord = 6;  // a chord that reaches one fret further than these; more is out of reach
    int StringBetween = 1;  // each silent string inside a chord

    // The neck
    int OpenLow = -1;        // an open string, the hand in positions 1 to 3: it rings
    int OpenHigh = 2;        // from position 5 up: it stands out
    int AboveFifthFret = 1;  // thinner strings, and harder to find
    int AboveNinthFret = 3;
    int AboveTwelfthFret = 6;

    // The banjo's short string
    int ShortOffBeat = -3;  // open between the beats, where the thumb has it anyway
    int ShortFretted = 8;   // hardly anybody does
};
inline constexpr FingeringCosts kFingeringCosts;

/// Gives every note without a string one, with its fret. Notes that have a string keep it. A tune
/// that does not lie well is moved by octaves as a whole; notes that then still have no place are
/// moved by themselves, and what cannot be reached in a chord is left out. All of this is told.
void ChooseFingering(Music& music, const FingeringChoices& choices, Notices& notices);

}  // namespace quillon
