// What a record's NoteCode and BeamCode can hold.
//
// Both come from files and may hold any number. A code that is not named here has no length
// and no width, and beams leave it as it is.

#pragma once

namespace quillon {

constexpr int kTicksPerQuarter = 12;
constexpr int kTicksPerEighth = kTicksPerQuarter / 2;

// Notes, and the buttons of Toolbar1. The comments give their ticks.
constexpr int kTripletSixteenth = 1;  // 2
constexpr int kSixteenth = 2;         // 3
constexpr int kTripletEighth = 3;     // 4
constexpr int kEighth = 4;            // 6
constexpr int kDottedEighth = 5;      // 9
constexpr int kTripletQuarter = 6;    // 8
constexpr int kQuarter = 7;           // 12
constexpr int kDottedQuarter = 8;     // 18
constexpr int kHalf = 9;              // 24
constexpr int kDottedHalf = 10;       // 36
constexpr int kWhole = 11;            // 48
constexpr int kNoteValues = kWhole;   // how many there are

// Rests. There are none with a dot.
constexpr int kHalfRest = 92;
constexpr int kWholeRest = 93;
constexpr int kTripletSixteenthRest = 94;
constexpr int kSixteenthRest = 95;
constexpr int kTripletEighthRest = 96;
constexpr int kEighthRest = 97;
constexpr int kTripletQuarterRest = 98;
constexpr int kQuarterRest = 99;
constexpr int kRests = kQuarterRest - kHalfRest + 1;  // how many there are

constexpr int kHead = 999;  // a measure's head record

/// Where the editor draws the line between notes and rests: it takes codes without a meaning below
/// this one for notes.
constexpr int kEndOfNotes = 90;

/// BeamCode: what a note has at its stem. "Back" is to the left: the beams of a group are drawn
/// from each note back to where they start.
enum BeamShape : short {
    kNoBeam = 0,  // a stem alone, or the first of a group, whose beams the next notes draw
    kSixteenthFlag = 1,
    kBothBeams = 2,  // main and second beam back
    kBackStub = 3,   // main beam back, and a stub of the second one back
    kEighthFlag = 4,
    kMainBeam = 5,             // back
    kDottedMainBeam = 6,       // the same, of a dotted note
    kDotAlone = 7,             // as kNoBeam, of a dotted note
    kDottedEighthFlag = 8,     // as kEighthFlag, of a dotted note
    kForwardStub = 9,          // a stub of the second beam forward
    kMainBeamForwardStub = 10  // main beam back, and a stub of the second one forward
};

constexpr bool HasDot(int beamCode)
{
    return beamCode >= kDottedMainBeam && beamCode <= kDottedEighthFlag;
}

/// Ticks of one beat. Any lower number of a time signature other than 4 counts as 8.
constexpr int TicksPerBeat(int beatUnit)
{
    return beatUnit == 4 ? kTicksPerQuarter : kTicksPerEighth;
}

/// Ticks after which beams restart: a quarter in simple time, a dotted quarter in compound time.
constexpr int TicksPerBeamGroup(int beatUnit)
{
    return beatUnit == 4 ? kTicksPerQuarter : 3 * kTicksPerEighth;
}

constexpr bool IsNoteValue(int value)
{
    return value >= kTripletSixteenth && value <= kNoteValues;
}

constexpr bool IsRestCode(int noteCode)
{
    return noteCode >= kHalfRest && noteCode <= kQuarterRest;
}

/// Ticks of a note or rest code, quarter = 12; 0 for any other code.
int TicksOf(int noteCode);

/// Width that the measure view gives a note or rest code, in units of 6 points; 0 for others.
int SpacingOf(int noteCode);

/// Width of its column on the page, in width units; 0 for others.
int PageWidthOf(int noteCode);

/// Whether three of a note or rest code make a triplet.
bool IsTriplet(int noteCode);

/// The rest that is entered with button `value` of Toolbar1; 0 for others. Dotted values
/// give the plain rest: there are no dotted rests.
int RestCodeOf(int value);

/// The button whose value a note or rest code has; 0 for others.
int ValueOf(int noteCode);

}  // namespace quillon
