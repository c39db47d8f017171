#include "notation/note_columns.h"

#include "notation/staff_sizes.h"
#include "notation/symbols.h"
#include "store/fret_text.h"

#include <algorithm>

namespace quillon {

namespace {

// Where things are on the page, in twips.
constexpr int kStemInset = 40;  // from the x of its column
constexpr int kStemRise = 100;  // above the line under the lowest fret
constexpr int kFlagRise = 140;  // above the lowest staff gap of the stem
constexpr int kSecondBeamRise = 50;
constexpr int kForwardStubRise = 80;
constexpr int kDotRadius = 20;
constexpr int kWholeRestDrop = 40;  // under the second line
constexpr int kHalfRestRise = 30;   // above the third
constexpr int kRightHandInset = 60;

// Symbols among the frets, above the place of a fret
constexpr int kSlashRise = 100;
constexpr int kSmallSlashRise = 40;
constexpr int kDashRise = 70;  // "-"
constexpr int kBowRise = 80;   // "="
constexpr int kBendRise = 200;

// Under the end of the stems
constexpr int kBracketTop = 10;  // of a triplet
constexpr int kBracketBottom = 100;
constexpr int kThreeRise = 10;    // the only one above it
constexpr int kBracketGap = 120;  // for the 3, and how far the bracket runs past the last note
constexpr int kLeftHandDrop = 20;
constexpr int kLeftHandUnderBracket = 140;

/// Where the beams of a note begin: a twip left of its stem.
int BeamEnd(int columnX)
{
    return columnX + kStemInset - 1;
}

/// Ticks that only have to find the beats of beamed notes: the long ones add nothing.
int BeamTicks(int noteCode)
{
    return noteCode >= kHalf && noteCode <= kWhole ? 0 : TicksOf(noteCode);
}

}  // namespace

void NoteColumns::Draw()
{
    TickCount = BeamStartX = Beam2StartX = 0;
    for (int n = 1; n <= line.k; ++n) {
        DrawColumn(n);
        line.LineRight = values.LineRight;
    }
}

void NoteColumns::DrawColumn(int n)
{
    const NoteRecord& column = columns[n];
    if (column.IsHead())
        TickCount = BeamStartX = Beam2StartX = 0;
    StemString = 0;
    if (!column.IsHead())
        for (int s = 1; s <= kStringSlots; ++s)
            DrawCell(n, s);
    DrawBlockRest(column);
    if (column.NoteCode >= kTripletSixteenthRest)
        PrintRest(column);
    FindStemEnd();
    DrawStem(column);
    StartBeams(column);
    DrawBeams(n);
    TickCount += BeamTicks(column.NoteCode);
    PrintRightHand(column);
    if (IsTriplet(column.NoteCode)) {
        if (TripletCount == 0)
            line.Attempt([&] { DrawTriplet(n); });
        ++TripletCount;
    } else {
        TripletCount = 0;
    }
    PrintLeftHand(column);
    if (TripletCount == 3)
        TripletCount = 0;
}

void NoteColumns::UseBodyFont()
{
    Surface().Font.Name = line.page.BodyFontName;
    Surface().Font.Size = line.page.BodyFontSize;
}

void NoteColumns::DrawCell(int n, int s)
{
    Surface().CurrentX = columns[n].XPos;
    Surface().CurrentY = FretY(s);
    const std::string& text = columns[n].Slot(s);
    if (text.empty())
        return;
    StemString = s;
    if (text == kRhythmSlash)
        DrawSlash(s);
    else
        DrawFret(n, s);
}

/// A rhythm slash leaves the string's tie as it is. Where a notation font of another size than was
/// asked for is in force, it is drawn lower.
void NoteColumns::DrawSlash(int s)
{
    Surface().Font.Name = kTabFont;
    const bool small = Surface().Font.Size == line.page.BodyFontSize - 2;
    Surface().CurrentY = FretY(s) - (small ? kSmallSlashRise : kSlashRise);
    line.PrintSymbol(kRhythmSlash);
}

void NoteColumns::DrawFret(int n, int s)
{
    const NoteRecord& column = columns[n];
    const std::string& text = column.Slot(s);
    bool& carry = TieCarry[static_cast<std::size_t>(s)];
    if (carry)
        DrawTieIn(n, s);
    const bool tie = HasTie(text);
    carry = tie && n == line.k;
    const std::size_t bend = FindBend(text);
    const bool isBent = bend != std::string::npos;

    // The mark is expected last: wherever it is, the last character goes
    // (docs/kept_behaviour.md, "Pages and paper").
    std::string shown = text;
    if (tie || isBent)
        shown.pop_back();
    const bool isLong = column.NoteCode >= kHalf;
    if (isLong)
        shown = "[" + shown + "]";
    PrintFret(shown, !isLong);
    if (HasDot(column.BeamCode) || column.NoteCode == kDottedHalf)
        DrawDot(n, shown);
    if (isBent)
        PrintBend(n, s, text[bend], bend);
    if (tie)
        DrawTie(n, s, shown);
}

void NoteColumns::DrawTieIn(int n, int s)
{
    const int x = columns[n].XPos;
    Surface().DrawWidth = values.Pens.TieIn;
    Surface().Arc(values.LineLeft, line.StringY(s), x - values.LineLeft, 0, 1.5, 0.25, Role::Tie);
    Surface().DrawWidth = 1;
    Surface().CurrentX = x;
    Surface().CurrentY = FretY(s);
}

/// A connection between two frets is a glyph, raised above the line; in brackets it stays text.
void NoteColumns::PrintFret(const std::string& text, bool connected)
{
    const std::size_t mark = FindConnection(text);
    if (!connected || mark == std::string::npos) {
        Surface().PrintLine(text, Role::Figure);
        return;
    }
    const int raise = text[mark] == kHammerMark ? kDashRise : kBowRise;
    Surface().Print(text.substr(0, mark), Role::Figure);
    Surface().Font.Name = kTabFont;
    const double y = Surface().CurrentY;
    Surface().CurrentY = y - raise;
    Surface().Print(text.substr(mark, 1), Role::Joint);
    Surface().Font.Name = line.page.BodyFontName;
    Surface().CurrentY = y;
    Surface().PrintLine(text.substr(mark + 1), Role::Figure);
}

/// Beside the text, half a line gap above the text line that follows it.
void NoteColumns::DrawDot(int n, const std::string& text)
{
    const double x =
        columns[n].XPos + Surface().TextWidth(text) + IntegerDivide(Surface().TextWidth("5"), 2);
    Surface().FillSolid = true;
    Surface().Circle(x, Surface().CurrentY - IntegerDivide(values.StringGap, 2), kDotRadius,
                     Role::Dot);
}

void NoteColumns::PrintBend(int n, int s, char mark, std::size_t place)
{
    Surface().CurrentX = columns[n].XPos + values.CharUnit * static_cast<int>(place);
    Surface().Font.Size = line.page.BodyFontSize - 2;
    Surface().CurrentY = mark == kReleaseMark ? FretY(s) : FretY(s) - kBendRise;
    line.PrintSymbol({&mark, 1});
    UseBodyFont();
}

/// To the next note, over a bar if one is between them, or open to the line's end.
void NoteColumns::DrawTie(int n, int s, const std::string& text)
{
    const bool atLineEnd = n == line.k;
    const int x = columns[n].XPos;
    const int width = values.CharUnit * Length(text);
    int span = line.LineRight - x + width;
    if (!atLineEnd)
        span = columns[columns[n + 1].IsHead() ? n + 2 : n + 1].XPos - x;
    const int radius = IntegerDivide(span - width, 2) - values.TieInset;
    Surface().DrawWidth = values.Pens.Tie;
    Surface().Arc(x + width + radius + values.TieShift, line.StringY(s), radius, atLineEnd ? 1 : 0,
                  atLineEnd ? 3 : 3.25, 0.5, Role::Tie);
    Surface().DrawWidth = 1;
}

void NoteColumns::DrawBlockRest(const NoteRecord& column)
{
    if (column.NoteCode != kHalfRest && column.NoteCode != kWholeRest)
        return;
    const bool whole = column.NoteCode == kWholeRest;
    const int x = column.XPos + (whole ? 4 * line.UnitSpacing : 0);
    const double y = line.PenY + (whole ? values.StringGap + kWholeRestDrop
                                        : 2 * values.StringGap - kHalfRestRise);
    Surface().DrawWidth = values.Pens.BlockRest;
    Surface().Line(x, y, x + 1.5 * line.UnitSpacing, y, Role::BlockRest);
    Surface().DrawWidth = 1;
}

/// Heads and unknown codes come here too, and only move the cursor.
void NoteColumns::PrintRest(const NoteRecord& column)
{
    const int code = column.NoteCode;
    Surface().CurrentX = column.XPos;
    Surface().CurrentY = line.PenY + SizesOf(line.tune.NumStrings).Page.RestDrop;
    Surface().Font.Size = line.page.BodyFontSize + 2;
    if (code <= kQuarterRest)
        line.PrintSymbol(RestGlyph(code));
    UseBodyFont();
}

void NoteColumns::FindStemEnd()
{
    StemEnd = line.StringY(line.tune.NumStrings + 1) +
              (line.RightHandInLine ? 2 * values.StringGap : values.StringGap / 2.0);
    LineReaches(StemEnd + values.StringGap);
}

void NoteColumns::LineReaches(double y)
{
    line.LineBottom = std::max(line.LineBottom, y);
}

void NoteColumns::DrawStem(const NoteRecord& column)
{
    if (column.NoteCode >= kWhole || StemString == 0)
        return;
    StemX = column.XPos + kStemInset;
    Surface().Line(StemX, line.StringY(StemString + 1) - kStemRise, StemX, StemEnd, Role::Stem);
}

void NoteColumns::StartBeams(const NoteRecord& column)
{
    const int code = column.NoteCode;
    if (TickCount % TicksPerBeamGroup(column.BeatUnit) == 0 || code == kQuarterRest)
        BeamStartX = Beam2StartX = 0;
    if (code <= kDottedEighth && BeamStartX == 0)
        BeamStartX = column.XPos;
    if (code <= kSixteenth && (Beam2StartX == 0 || column.BeamCode >= kBackStub))
        Beam2StartX = column.XPos;
}

void NoteColumns::DrawBeams(int n)
{
    const NoteRecord& column = columns[n];
    switch (column.BeamCode) {
    case kSixteenthFlag:
        PrintFlag(column, kSixteenthFlagGlyph);
        break;
    case kBothBeams:
        MainBeam();
        SecondBeam(BeamEnd(Beam2StartX));
        break;
    case kBackStub:
        MainBeam();
        SecondBeam(StemX - IntegerDivide(StemX - BeamEnd(columns[n - 1].XPos), 2));
        break;
    case kEighthFlag:
    case kDottedEighthFlag:
        PrintFlag(column, kEighthFlagGlyph);
        break;
    case kMainBeam:
    case kDottedMainBeam:
        MainBeam();
        break;
    case kForwardStub:
        ForwardStub(n);
        break;
    case kMainBeamForwardStub:
        MainBeam();
        ForwardStub(n);
        break;
    default:
        break;
    }
}

void NoteColumns::PrintFlag(const NoteRecord& column, std::string_view glyph)
{
    Surface().CurrentX = column.XPos + kStemInset;
    Surface().CurrentY = StemEnd - values.StringGap - kFlagRise;
    line.PrintSymbol(glyph);
}

void NoteColumns::MainBeam()
{
    BeamToStem(BeamEnd(BeamStartX), StemEnd, Role::Beam);
}

void NoteColumns::SecondBeam(int x)
{
    BeamToStem(x, StemEnd - kSecondBeamRise, Role::SecondBeam);
}

void NoteColumns::BeamToStem(int x, double y, Role role)
{
    Surface().DrawWidth = values.Pens.Beam;
    Surface().Line(x, y, StemX, y, role);
    Surface().DrawWidth = 1;
}

void NoteColumns::ForwardStub(int n)
{
    const int half = IntegerDivide(columns[n + 1].XPos - StemX, 2);
    Surface().DrawWidth = values.Pens.ForwardStub;
    const double y = StemEnd - kForwardStubRise;
    Surface().Line(StemX, y, StemX + half, y, Role::SecondBeam);
    Surface().DrawWidth = 1;
}

/// In the room under the lowest string.
void NoteColumns::PrintRightHand(const NoteRecord& column)
{
    if (IsHandMark(column.RightHand))
        Surface().PrintLineAt(column.XPos + kRightHandInset, StemEnd - 3 * values.StringGap,
                              {&column.RightHand, 1}, Role::Fingering);
}

/// The bracket of the group that column n opens. Where the line ends before the group does, the
/// bracket runs back to the left, as the free column's x is 0: docs/kept_behaviour.md, "Pages and
/// paper".
void NoteColumns::DrawTriplet(int n)
{
    const int start = columns[n].XPos;
    const int third = columns[n + 2].XPos;
    const double middle = start + (third - start) / 2.0;
    const int end = third + kBracketGap;
    const double top = StemEnd + kBracketTop;
    const double bottom = StemEnd + kBracketBottom;
    Surface().Line(start, top, start, bottom, Role::Bracket);
    Surface().Line(start, bottom, middle, bottom, Role::Bracket);
    Surface().Line(middle + kBracketGap, bottom, end, bottom, Role::Bracket);
    Surface().Line(end, top, end, bottom, Role::Bracket);
    Surface().PrintLineAt(middle, StemEnd - kThreeRise, "3", Role::Number);
    LineReaches(StemEnd - kThreeRise);
}

/// Under the stem, or under the bracket of a triplet.
void NoteColumns::PrintLeftHand(const NoteRecord& column)
{
    if (!IsHandMark(column.LeftHand))
        return;
    const double y = StemEnd + (TripletCount > 0 ? kLeftHandUnderBracket : kLeftHandDrop);
    LineReaches(y);
    Surface().PrintLineAt(column.XPos + 1, y, {&column.LeftHand, 1}, Role::Fingering);
}

}  // namespace quillon
