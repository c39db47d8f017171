#include "notation/beam_pass.h"

#include <algorithm>
#include <iterator>
#include <span>

namespace quillon {

namespace {

/// The shape of a short note by itself and in a group.
struct ShapeRow {
    int code;
    BeamShape alone;
    BeamShape inGroup;
};

constexpr ShapeRow kShapes[] = {
    {kTripletSixteenth, kSixteenthFlag,    kBothBeams     },
    {kSixteenth,        kSixteenthFlag,    kBothBeams     },
    {kTripletEighth,    kEighthFlag,       kMainBeam      },
    {kEighth,           kEighthFlag,       kMainBeam      },
    {kDottedEighth,     kDottedEighthFlag, kDottedMainBeam},
};

const ShapeRow& ShapesOf(int shortNote)
{
    return *std::find_if(std::begin(kShapes), std::end(kShapes),
                         [&](const ShapeRow& row) { return row.code == shortNote; });
}

/// A note joins a group.
struct Joint {
    const Tune& tune;
    int note;  // its record, which has its shape in a group already
    int last;  // record of the group's last note so far
};

bool AfterTripletSixteenth(const Joint& joint)
{
    return joint.tune[joint.last].NoteCode == kTripletSixteenth;
}

bool NotAfterSixteenth(const Joint& joint)
{
    return joint.tune[joint.last].NoteCode != kSixteenth;
}

bool LastNotAfterDottedEighth(const Joint& joint)
{
    return joint.tune[joint.last - 1].NoteCode != kDottedEighth;
}

bool AfterLongNoteOrRest(const Joint& joint)
{
    return joint.tune[joint.note - 1].NoteCode > kDottedQuarter;
}

bool HasBackStub(const Joint& joint)
{
    return joint.tune[joint.note].BeamCode == kBackStub;
}

constexpr int kSame = -1;  // the shape stays

/// What becomes of the group's last note and of the one that joins. The first row counts whose
/// condition, if it has one, holds; without a row both notes stay as they are.
struct JoinRow {
    int code;  // of the note that joins
    int last;  // shape of the last note
    int newLast;
    int own;  // shape of the note that joins
    bool (*condition)(const Joint&) = nullptr;
};

// clang-format off
constexpr JoinRow kSimpleTime[] = {
    {kTripletSixteenth, kSixteenthFlag,    kNoBeam,              kSame, AfterTripletSixteenth},
    {kTripletSixteenth, kSixteenthFlag,    kForwardStub,         kBackStub},
    {kTripletSixteenth, kBackStub,         kMainBeam,            kSame},
    {kTripletSixteenth, kEighthFlag,       kNoBeam,              kBackStub},

    {kSixteenth,        kSixteenthFlag,    kNoBeam,              kSame},
    {kSixteenth,        kBackStub,         kMainBeam,            kSame},
    {kSixteenth,        kEighthFlag,       kNoBeam,              kBackStub},
    {kSixteenth,        kMainBeam,         kSame,                kBackStub},
    {kSixteenth,        kDottedEighthFlag, kDotAlone,            kBackStub},

    {kTripletEighth,    kEighthFlag,       kNoBeam,              kSame},

    {kEighth,           kSixteenthFlag,    kForwardStub,         kSame},
    {kEighth,           kEighthFlag,       kNoBeam,              kSame},
    {kEighth,           kDottedEighthFlag, kDotAlone,            kSame},

    {kDottedEighth,     kSixteenthFlag,    kForwardStub,         kSame},
};

constexpr JoinRow kCompoundTime[] = {
    {kTripletSixteenth, kSixteenthFlag,    kForwardStub,         kSame, HasBackStub},
    {kTripletSixteenth, kSixteenthFlag,    kNoBeam,              kSame},
    {kTripletSixteenth, kBackStub,         kMainBeam,            kSame, NotAfterSixteenth},
    {kTripletSixteenth, kEighthFlag,       kNoBeam,              kBackStub},
    {kTripletSixteenth, kMainBeam,         kSame,                kBackStub},
    {kTripletSixteenth, kDottedMainBeam,   kSame,                kBackStub},
    {kTripletSixteenth, kDottedEighthFlag, kDotAlone,            kBackStub},

    {kSixteenth,        kSixteenthFlag,    kForwardStub,         kSame, HasBackStub},
    {kSixteenth,        kSixteenthFlag,    kNoBeam,              kSame},
    {kSixteenth,        kBackStub,         kMainBeamForwardStub, kSame, HasBackStub},
    {kSixteenth,        kBackStub,         kMainBeam,            kSame},
    {kSixteenth,        kEighthFlag,       kNoBeam,              kBackStub},
    {kSixteenth,        kMainBeam,         kSame,                kBackStub},
    {kSixteenth,        kDottedMainBeam,   kSame,                kBackStub},
    {kSixteenth,        kDottedEighthFlag, kDotAlone,            kBackStub},

    {kTripletEighth,    kSixteenthFlag,    kForwardStub,         kSame},
    {kTripletEighth,    kBackStub,         kForwardStub,         kSame, LastNotAfterDottedEighth},
    {kTripletEighth,    kEighthFlag,       kNoBeam,              kSame},
    {kTripletEighth,    kDottedEighthFlag, kDotAlone,            kSame},

    {kEighth,           kSixteenthFlag,    kForwardStub,         kSame},
    {kEighth,           kBackStub,         kMainBeamForwardStub, kSame, AfterLongNoteOrRest},
    {kEighth,           kEighthFlag,       kNoBeam,              kSame},
    {kEighth,           kDottedEighthFlag, kDotAlone,            kSame},

    {kDottedEighth,     kSixteenthFlag,    kForwardStub,         kSame},
    {kDottedEighth,     kEighthFlag,       kNoBeam,              kSame},
    {kDottedEighth,     kDottedEighthFlag, kDotAlone,            kSame},
};
// clang-format on

/// Null if there is none.
const JoinRow* FindRow(std::span<const JoinRow> rows, const Joint& joint)
{
    const int code = joint.tune[joint.note].NoteCode;
    const int last = joint.tune[joint.last].BeamCode;
    const auto row = std::find_if(rows.begin(), rows.end(), [&](const JoinRow& r) {
        return r.code == code && r.last == last && (!r.condition || r.condition(joint));
    });
    return row == rows.end() ? nullptr : &*row;
}

void GiveShape(NoteRecord& note, int shape)
{
    if (shape != kSame)
        note.BeamCode = shape;
}

}  // namespace

void BeamPass::Step(int startTick)
{
    const NoteRecord& note = tune[tune.CurNote];
    tick = startTick;
    simple = note.BeatUnit == 4;
    if (BeamNotes == 3)
        BeamNotes = BeamHalves = 0;
    const bool halfOfMeasure = tick * 2 == capacity;
    if (simple && (note.Beats == 2 || note.Beats == 4) && halfOfMeasure)
        ClearGroup();
    if (tick % TicksPerBeamGroup(note.BeatUnit) == 0)
        ClearGroup();
    TakeRecord();
    if (simple && BeamHalves == 4) {
        tune[tune.CurNote - 1].BeamCode = kMainBeam;
        BeamHalves = 0;
    }
}

void BeamPass::ClearGroup()
{
    BeamHalves = 0;
    EndGroup();
}

void BeamPass::EndGroup()
{
    BeamNotes = BeamRun = BeamPrev = 0;
}

void BeamPass::TakeRecord()
{
    NoteRecord& note = tune[tune.CurNote];
    switch (note.NoteCode) {
    case kTripletSixteenth:
    case kSixteenth:
    case kTripletEighth:
    case kEighth:
    case kDottedEighth:
        TakeShortNote();
        break;
    case kTripletQuarter:
    case kQuarter:
        note.BeamCode = kNoBeam;
        EndGroup();
        break;
    case kDottedQuarter:
        note.BeamCode = kDotAlone;
        EndGroup();
        break;
    case kTripletSixteenthRest:
        TakeTripletRest();
        ++BeamNotes;
        break;
    case kTripletEighthRest:
        ++BeamNotes;
        break;
    case kQuarterRest:
        if (simple)  // only there: docs/kept_behaviour.md, "The measure view"
            EndGroup();
        break;
    default:
        break;
    }
}

void BeamPass::TakeShortNote()
{
    const int c = tune.CurNote;
    const int code = tune[c].NoteCode;
    tune[c].BeamCode = InGroup() ? ShapeInGroup() : ShapesOf(code).alone;
    if (InGroup())
        JoinGroup();
    if (code == kTripletSixteenth)
        FollowTripletRest();
    ++BeamRun;
    BeamPrev = c;
    if (IsTriplet(code))
        ++BeamNotes;
    if (simple && code == kEighth)
        ++BeamHalves;
}

/// The second beam starts again with a triplet's sixteenth on an eighth, and in compound time with
/// a sixteenth after a rest or a long note.
int BeamPass::ShapeInGroup() const
{
    const int c = tune.CurNote;
    const int code = tune[c].NoteCode;
    if (code == kTripletSixteenth && tick % kTicksPerEighth == 0)
        return kBackStub;
    if (code == kSixteenth && !simple) {
        const int before = tune[c - 1].NoteCode;
        if (before > kDottedQuarter && before <= kQuarterRest)
            return kBackStub;
    }
    return ShapesOf(code).inGroup;
}

void BeamPass::JoinGroup()
{
    NoteRecord& note = tune[tune.CurNote];
    NoteRecord& last = tune[BeamPrev];
    if (!simple && note.NoteCode == kSixteenth && last.BeamCode == kMainBeam)
        TurnStubForward();
    const auto rows = simple ? std::span<const JoinRow>(kSimpleTime) : kCompoundTime;
    if (const JoinRow* row = FindRow(rows, {tune, tune.CurNote, BeamPrev})) {
        GiveShape(last, row->newLast);
        GiveShape(note, row->own);
    }
}

/// Of three notes with a plain eighth in their middle, the first turns its stub to that eighth.
void BeamPass::TurnStubForward()
{
    const int c = tune.CurNote;
    if (BeamRun > 2 && tune[c - 1].NoteCode == kEighth && tune[c - 2].BeamCode == kBackStub)
        tune[c - 2].BeamCode = kMainBeamForwardStub;
}

/// A sixteenth of a triplet takes over the shape that the triplet's rest before it has.
void BeamPass::FollowTripletRest()
{
    const int c = tune.CurNote;
    if (simple && !InGroup())
        return;
    const NoteRecord& rest = tune[c - 1];
    if (rest.NoteCode != kTripletSixteenthRest)
        return;
    if (rest.BeamCode == kBackStub || (rest.BeamCode == kMainBeam && !simple && InGroup()))
        tune[c].BeamCode = rest.BeamCode;
}

void BeamPass::TakeTripletRest()
{
    const int c = tune.CurNote;
    if (!InGroup())
        return;
    const NoteRecord& before = tune[c - 1];
    const bool followsBeam =
        before.NoteCode == kTripletSixteenthRest && before.BeamCode == kMainBeam;
    if (tick % kTicksPerEighth == 0 || followsBeam)
        tune[c].BeamCode = kBackStub;
}

}  // namespace quillon
