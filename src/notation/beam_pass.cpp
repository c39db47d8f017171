#include "notation/beam_pass.h"

namespace quillon {

void BeamPass::ClearGroup()
{
    BeamFlag = 0;
    BeamHalves = 0;
    End();
}

void BeamPass::Grow(int note)
{
    ++BeamRun;
    BeamPrev = note;
}

void BeamPass::End()
{
    BeamNotes = 0;
    BeamRun = 0;
    BeamPrev = 0;
}

void BeamPass::Step(Tune& tune, int measFill, int measCapacity)
{
    const NoteRecord& note = tune[tune.CurNote];
    if (measFill == 0)
        ClearGroup();
    if (BeamNotes == 3) {
        BeamNotes = 0;
        BeamFlag = 0;
        BeamHalves = 0;
    }
    if (note.BeatUnit == 4 && (note.Beats == 2 || note.Beats == 4) && measFill * 2 == measCapacity)
        ClearGroup();
    if (note.BeatUnit == 4) {
        if (measFill % 12 == 0)
            ClearGroup();
        Simple(tune, measFill);
        if (BeamHalves == 4) {
            tune[tune.CurNote - 1].BeamCode = 5;
            BeamHalves = 0;
        }
    } else {
        if (measFill % 18 == 0)
            ClearGroup();
        Compound(tune, measFill);
    }
}

void BeamPass::Rest94(Tune& tune, int measFill)
{
    const int c = tune.CurNote;
    ++BeamNotes;
    if (BeamRun < 1)
        return;
    if (measFill % 6 == 0)
        tune[c].BeamCode = 3;
    else if (tune[c - 1].NoteCode == 94 && tune[c - 1].BeamCode == 5)
        tune[c].BeamCode = 3;
}

void BeamPass::Simple(Tune& tune, int measFill)
{
    const int c = tune.CurNote;
    const bool inGroup = BeamRun != 0;
    Int16& code = tune[c].BeamCode;
    NoteRecord& prev = tune[BeamPrev];
    switch (tune[c].NoteCode) {
    case 1:
        code = inGroup ? 2 : 1;
        if (inGroup) {
            if (measFill % 6 == 0)
                code = 3;
            if (prev.BeamCode == 1 && prev.NoteCode == 1) {
                prev.BeamCode = 0;
            } else if (prev.BeamCode == 1) {
                prev.BeamCode = 9;
                code = 3;
            } else if (prev.BeamCode == 3) {
                prev.BeamCode = 5;
            } else if (prev.BeamCode == 4) {
                prev.BeamCode = 0;
                code = 3;
            }
            if (tune[c - 1].NoteCode == 94 && tune[c - 1].BeamCode == 3)
                code = 3;
        }
        Grow(c);
        ++BeamNotes;
        break;
    case 2:
        code = inGroup ? 2 : 1;
        if (inGroup) {
            if (prev.BeamCode == 1) {
                prev.BeamCode = 0;
            } else if (prev.BeamCode == 3) {
                prev.BeamCode = 5;
            } else if (prev.BeamCode == 4) {
                code = 3;
                prev.BeamCode = 0;
            } else if (prev.BeamCode == 5) {
                code = 3;
            } else if (prev.BeamCode == 8) {
                prev.BeamCode = 7;
                code = 3;
            }
        }
        Grow(c);
        break;
    case 3:
        code = inGroup ? 5 : 4;
        if (inGroup && prev.BeamCode == 4)
            prev.BeamCode = 0;
        Grow(c);
        ++BeamNotes;
        break;
    case 4:
        code = inGroup ? 5 : 4;
        if (inGroup) {
            if (prev.BeamCode == 1)
                prev.BeamCode = 9;
            else if (prev.BeamCode == 4)
                prev.BeamCode = 0;
            else if (prev.BeamCode == 8)
                prev.BeamCode = 7;
        }
        Grow(c);
        ++BeamHalves;
        break;
    case 5:
        code = inGroup ? 6 : 8;
        if (inGroup && prev.BeamCode == 1)
            prev.BeamCode = 9;
        Grow(c);
        break;
    case 6:
    case 7:
        code = 0;
        End();
        break;
    case 8:
        code = 7;
        End();
        break;
    case 94:
        Rest94(tune, measFill);
        break;
    case 96:
        ++BeamNotes;
        break;
    case 99:
        End();
        break;
    default:
        break;
    }
}

void BeamPass::Compound(Tune& tune, int measFill)
{
    const int c = tune.CurNote;
    const bool inGroup = BeamRun != 0;
    Int16& code = tune[c].BeamCode;
    NoteRecord& prev = tune[BeamPrev];
    switch (tune[c].NoteCode) {
    case 1:
        code = inGroup ? 2 : 1;
        if (inGroup) {
            if (measFill % 6 == 0)
                code = 3;
            if (prev.BeamCode == 1) {
                prev.BeamCode = code != 3 ? 0 : 9;
            } else if (prev.BeamCode == 3) {
                if (prev.NoteCode != 2)
                    prev.BeamCode = 5;
            } else if (prev.BeamCode == 4) {
                prev.BeamCode = 0;
                code = 3;
            } else if (prev.BeamCode == 5 || prev.BeamCode == 6) {
                code = 3;
            } else if (prev.BeamCode == 8) {
                prev.BeamCode = 7;
                code = 3;
            }
            if (tune[c - 1].NoteCode == 94 && tune[c - 1].BeamCode == 5)
                code = 5;
        }
        if (tune[c - 1].NoteCode == 94 && tune[c - 1].BeamCode == 3)
            code = 3;
        Grow(c);
        ++BeamNotes;
        break;
    case 2:
        code = inGroup ? 2 : 1;
        if (inGroup) {
            if (tune[c - 1].NoteCode > 8 && tune[c - 1].NoteCode < 100)
                code = 3;
            if (prev.BeamCode == 1) {
                prev.BeamCode = code != 3 ? 0 : 9;
            } else if (prev.BeamCode == 3) {
                prev.BeamCode = code == 2 ? 5 : 10;
            } else if (prev.BeamCode == 4) {
                prev.BeamCode = 0;
                code = 3;
            } else if (prev.BeamCode == 5) {
                code = 3;
                if (BeamRun > 2 && tune[c - 1].NoteCode == 4 && tune[c - 2].BeamCode == 3)
                    tune[c - 2].BeamCode = 10;
            } else if (prev.BeamCode == 6) {
                code = 3;
            } else if (prev.BeamCode == 8) {
                prev.BeamCode = 7;
                code = 3;
            }
        }
        Grow(c);
        break;
    case 3:
        code = inGroup ? 5 : 4;
        if (inGroup) {
            if (prev.BeamCode == 1) {
                prev.BeamCode = 9;
            } else if (prev.BeamCode == 3) {
                if (tune[BeamPrev - 1].NoteCode != 5)
                    prev.BeamCode = 9;
            } else if (prev.BeamCode == 4) {
                prev.BeamCode = 0;
            } else if (prev.BeamCode == 8) {
                prev.BeamCode = 7;
            }
        }
        Grow(c);
        ++BeamNotes;
        break;
    case 4:
        code = inGroup ? 5 : 4;
        if (inGroup) {
            if (prev.BeamCode == 1) {
                prev.BeamCode = 9;
            } else if (prev.BeamCode == 3) {
                if (tune[c - 1].NoteCode > 8)
                    prev.BeamCode = 10;
            } else if (prev.BeamCode == 4) {
                prev.BeamCode = 0;
            } else if (prev.BeamCode == 8) {
                prev.BeamCode = 7;
            }
        }
        Grow(c);
        break;
    case 5:
        code = inGroup ? 6 : 8;
        if (inGroup) {
            if (prev.BeamCode == 1)
                prev.BeamCode = 9;
            else if (prev.BeamCode == 8)
                prev.BeamCode = 7;
            else if (prev.BeamCode == 4)
                prev.BeamCode = 0;
        }
        Grow(c);
        break;
    case 6:
    case 7:
        code = 0;
        End();
        break;
    case 8:
        code = 7;
        End();
        break;
    case 94:
        Rest94(tune, measFill);
        break;
    case 96:
        ++BeamNotes;
        break;
    default:
        break;
    }
}

}  // namespace quillon
