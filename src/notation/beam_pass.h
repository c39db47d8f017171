// The beam pass: decides which beams and flags the notes of a measure have.
//
// It runs over the notes of a measure from left to right and writes their BeamCode: that of the
// note at hand and, as a group grows, that of the notes before it.

#pragma once

#include "store/tune.h"

namespace quillon {

class BeamPass {
public:
    /// For one measure, which holds `measureTicks` ticks.
    BeamPass(Tune& theTune, int measureTicks) : tune(theTune), capacity(measureTicks) {}

    /// One step, for record tune.CurNote, which starts at `startTick`. The note's own time
    /// signature decides between simple and compound time.
    void Step(int startTick);

private:
    void ClearGroup();
    void EndGroup();
    void TakeRecord();
    void TakeShortNote();
    int ShapeInGroup() const;
    void JoinGroup();
    void TurnStubForward();
    void FollowTripletRest();
    void TakeTripletRest();
    bool InGroup() const { return BeamRun > 0; }

    Tune& tune;
    const int capacity;

    // Of the step
    int tick = 0;
    bool simple = true;

    // Of the group
    int BeamNotes = 0;   // notes of the present triplet
    int BeamHalves = 0;  // eighths in a row; a group of four is split
    int BeamRun = 0;     // notes of the group
    int BeamPrev = 0;    // record of its last note, 0 if none
};

}  // namespace quillon
