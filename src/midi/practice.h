// Practice: a part of the performance, once or in a loop, slower or faster, with clicks.

#pragma once

#include "midi/play_positions.h"

#include <string>
#include <vector>

namespace quillon {

constexpr int kSlowestPractice = 20;  // per cent
constexpr int kFastestPractice = 300;
constexpr int kMostTurns = 999;

struct PracticeChoices {
    int Speed = 100;  // of the first turn, per cent
    int StepUp = 0;   // of the speed at each further turn, per cent
    int Goal = 100;   // speed at which the steps end
    int Turns = 1;
    bool CountIn = false;  // a measure of clicks before the first turn
    bool Click = false;    // on each beat

    bool operator==(const PracticeChoices&) const = default;
};

struct PracticeTurn {
    Ticks Begin;
    int Speed;  // per cent
};

struct PracticeTrack {
    std::string Midi;         // the bytes of a MIDI file
    PlayPositions Positions;  // in it; before the first measure are the clicks of the count-in
    std::vector<PracticeTurn> Turns;
};

/// The part as it sounds in the whole, but that the strings keep together. A note that is tied over
/// its beginning is played from there, and what would ring on is ended with it. CurNote is moved.
/// Choices out of range are held to it. A tune that cannot be performed: as PositionsOf. A part
/// without notes: a std::runtime_error.
PracticeTrack MakePractice(Tune& tune, const Sound& sound, const PlayedPart& part,
                           const PracticeChoices& choices);

}  // namespace quillon
