// The beam pass: which beams and flags the notes of a measure have.
//
// It runs over the notes of a measure from left to right and writes BeamCode, both of the note at
// hand and, as groups grow, of the notes before it. BeamCode as drawn at a stem:
//
//   0 nothing                      5, 6 main beam back to its start
//   1 flag of a sixteenth          7 nothing
//   2 both beams back              9 stub forward
//   3 main beam, stub back         10 main beam, stub forward
//   4, 8 flag of an eighth         (6, 7 and 8 also dot the note)

#pragma once

#include "store/tune.h"

namespace quillon {

struct BeamPass {
    int BeamNotes = 0;   // notes of the present triplet
    int BeamSlots = 0;   // only ever cleared
    int BeamHalves = 0;  // eighths in a row; four of them are parted
    Int16 BeamFlag;      // only ever cleared
    Int16 BeamRun;       // notes of the present group
    Int16 BeamPrev;      // record of the group's last note, 0 if none

    /// One step, for record tune.CurNote, which starts at tick `measFill` of a measure of
    /// `measCapacity` ticks. The note's own time signature decides between simple and compound.
    void Step(Tune& tune, int measFill, int measCapacity);

    /// A new measure starts: what its opener sets to 0. The group itself is left.
    void Reset() { BeamSlots = BeamHalves = BeamFlag = 0; }

private:
    void ClearGroup();
    void Simple(Tune& tune, int measFill);
    void Compound(Tune& tune, int measFill);
    void Rest94(Tune& tune, int measFill);
    void Grow(int note);
    void End();
};

}  // namespace quillon
