#include "notation/measure_view.h"

#include "notation/beam_pass.h"
#include "notation/staff_sizes.h"
#include "notation/symbols.h"
#include "store/fret_text.h"

#include <algorithm>

namespace quillon {

namespace {

// Where things are on StaffBox, in points.
constexpr int kSignatureX = 2;
constexpr int kRemarkY = 4;
constexpr int kTopRowY = 12;  // chords, signs, the text of a repeat bracket
constexpr int kLineGap = 8;   // between two staff lines
constexpr int kTextSize = 10;
constexpr int kBendSize = 8;

// The stem is in the middle of a note's first character, and beams begin one point left of it.
constexpr int kStemX = 3;
constexpr int kFlagRise = 18;  // above the stem's lower end, as letters of the right hand
constexpr int kBeamGap = 3;    // between main and second beam
constexpr int kStub = 5;       // length of a stub of the second beam

// Triplet brackets: how far after the stem the gap for the 3 begins, and where they end. The long
// one is that of quarters.
constexpr int kTripletGapX = 9;
constexpr int kLongTripletGapX = 15;
constexpr int kTripletEndX = 27;
constexpr int kLongTripletEndX = 39;

// Bars: the thick line, then inwards the thin one and a repeat's dots. They are a little further
// apart at a measure's start.
constexpr int kStartBarX = 23;
constexpr int kStartThinX = 27;
constexpr int kStartDotsX = 32;
constexpr int kEndThinGap = 3;
constexpr int kEndDotsGap = 7;

// The repeat bracket: its corner, and its text
constexpr int kBracketX = 6;
constexpr int kBracketY = 6;
constexpr int kBracketHookY = 30;
constexpr int kBracketTextX = 12;

/// Top of the text on string s.
constexpr int StringTextY(int s)
{
    return StringY(s) - kLineGap;
}

/// Of a dot or tie beside a text.
constexpr int DotY(int s)
{
    return StringY(s) - 2;
}

std::string Trimmed(const std::string& text)
{
    const std::size_t first = text.find_first_not_of(' ');
    if (first == std::string::npos)
        return {};
    return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

/// A cell's text with its marks set apart. A mark is expected last: wherever it is, the last
/// character goes (docs/kept_behaviour.md, "The measure view").
struct Cell {
    explicit Cell(const std::string& slot)
        : Text(Trimmed(slot)), Tie(HasTie(slot)), BendPlace(FindBend(slot))
    {
        if (Tie)
            Text.pop_back();
        if (HasBend()) {
            BendMark = Text.back();
            Text.pop_back();
        }
    }

    bool HasBend() const { return BendPlace != std::string::npos; }

    std::string Text;
    bool Tie;
    std::size_t BendPlace;  // counted in the slot
    char BendMark = 0;
};

}  // namespace

MeasureView::MeasureView(Tune& theTune, EditingState& editingState,
                         const PageSettings& pageSettings, const TextMetrics& textMetrics)
    : StaffBox(textMetrics, kPoints, kStaffBoxWidth, kStaffBoxHeight), tune(theTune),
      state(editingState), page(pageSettings), metrics(textMetrics)
{
    StaffBox.Font = {page.BodyFontName, kTextSize, true};
}

void MeasureView::ClearStaff()
{
    const ViewSizes& sizes = SizesOf(tune.NumStrings).View;
    StaffBox.Clear();
    state.CaretOn = 0;
    StaffBox.Font.Size = static_cast<float>(sizes.SignatureSize);
    StaffBox.PrintLineAt(kSignatureX, sizes.UpperFigureY, PrintedInteger(state.CurBeats));
    StaffBox.PrintLineAt(kSignatureX, sizes.LowerFigureY, PrintedInteger(state.CurBeatUnit));
    StaffBox.Font.Size = kTextSize;
    UseBodyFont();
}

void MeasureView::RedrawMeasure()
{
    UseBodyFont();
    const Int16 curNote = tune.CurNote;
    NoteRecord& head = tune[state.MeasHead];
    state.CurBeats = head.Beats;
    state.CurBeatUnit = head.BeatUnit;
    state.MeasCapacity = state.CurBeats * TicksPerBeat(state.CurBeatUnit);
    ClearStaff();
    state.MeasFill = 0;
    hdbkbox = head.Slot(6) == kLineBreak ? "Line Break" : "";
    if (head.BarCode < "1")
        head.BarCode.clear();
    DeriveSpacing();
    lblMeasNum = std::to_string(tune.CurMeas);
    if (!head.Slot(3).empty())
        DrawRemark();
    BeamAndPlace();
    head.BeamCode = 0;
    EndBarX = state.MeasFill >= state.MeasCapacity
                  ? tune[state.MeasEnd].XPos + kCharWidth * tune[state.MeasEnd].Spacing
                  : kStaffEndX;

    tickCount = beamStartX = beam2StartX = tripletCount = 0;
    for (tune.CurNote = state.MeasHead + 1; tune.CurNote <= state.MeasEnd; ++tune.CurNote)
        DrawNote();

    DrawFurniture(head);
    // A short measure inside the tune counts as full for the entry of notes:
    // docs/kept_behaviour.md, "The measure view".
    if (state.InputMode == InputMode::Fret && state.MeasFill < state.MeasCapacity &&
        tune.CurMeas < tune.LastMeas)
        state.MeasFill = state.MeasCapacity;
    tune.CurNote = curNote;
    lblLastNote = std::to_string(tune.LastNote);
}

void MeasureView::DrawFurniture(const NoteRecord& head)
{
    DrawBar(head.BarCode, true);
    if (!head.Slot(2).empty() || state.InputMode == InputMode::Bracket) {
        DrawBracket();
        StaffBox.PrintLineAt(kBracketTextX, kTopRowY, head.Slot(2));
    }
    DrawSign(head.Slot(1));
}

void MeasureView::DeriveSpacing()
{
    for (int i = state.MeasHead + 1; i <= state.MeasEnd; ++i) {
        NoteRecord& note = tune[i];
        if (const int spacing = SpacingOf(note.NoteCode))
            note.Spacing = spacing;
        if (Length(note.ChordText) >= note.Spacing)
            note.Spacing = Length(note.ChordText) + 1;
        for (const std::string& slot : note.Slots)
            if (Length(slot) >= note.Spacing)
                note.Spacing = Length(slot) + 1;
    }
}

void MeasureView::DrawRemark()
{
    const std::string& remark = tune[state.MeasHead].Slot(3);
    if (remark.front() != '/') {
        StaffBox.PrintLineAt(kFirstNoteX, kRemarkY, remark);
        return;
    }
    // Set to end at the measure's last note, where the previous redraw placed it:
    // docs/kept_behaviour.md, "The measure view".
    const std::string text = remark.substr(1);
    const double twips = metrics.Width(text, {page.FormFontName, kFormFontSize}) * kTwips;
    const int width = Floor(twips / kTwipsPerInch * kPointsPerInch);
    StaffBox.PrintLineAt(tune[state.MeasEnd].XPos - width, kRemarkY, text);
}

void MeasureView::BeamAndPlace()
{
    BeamPass beams(tune, state.MeasCapacity);
    Int16 x = kFirstNoteX;
    for (tune.CurNote = state.MeasHead + 1; tune.CurNote <= state.MeasEnd; ++tune.CurNote) {
        NoteRecord& note = tune[tune.CurNote];
        beams.Step(state.MeasFill);
        state.MeasFill += TicksOf(note.NoteCode);
        note.XPos = x;
        x += kCharWidth * note.Spacing;
    }
}

void MeasureView::DrawNote()
{
    NoteRecord& note = tune[tune.CurNote];
    const int code = note.NoteCode;
    if (!note.ChordText.empty())
        StaffBox.PrintLineAt(note.XPos, kTopRowY, note.ChordText);
    if (tickCount % TicksPerBeamGroup(state.CurBeatUnit) == 0 || code == kQuarterRest ||
        code == kHalfRest || code == kWholeRest)
        beamStartX = beam2StartX = 0;
    if (code <= kDottedEighth && beamStartX == 0)
        beamStartX = note.XPos;
    if (code <= kSixteenth && (beam2StartX == 0 || note.BeamCode >= kBackStub))
        beam2StartX = note.XPos;

    MoveSlash(note);
    for (int s = 1; s <= kStringSlots; ++s)
        if (!note.Slot(s).empty())
            DrawCell(s);

    noteX = note.XPos + kStemX;
    if (code >= kWhole)
        DrawStemless();
    else
        DrawStem(note.HighestFilledSlot());
    tickCount += TicksOf(code);
}

/// A rhythm slash is always on the third string, in the table too: docs/kept_behaviour.md, "The
/// measure view".
void MeasureView::MoveSlash(NoteRecord& note)
{
    for (std::string& slot : note.Slots) {
        if (slot == kRhythmSlash) {
            slot.clear();
            note.Slot(3) = kRhythmSlash;
        }
    }
}

void MeasureView::DrawCell(int s)
{
    const NoteRecord& note = tune[tune.CurNote];
    Cell cell(note.Slot(s));
    StaffBox.CurrentX = note.XPos;
    StaffBox.CurrentY = StringTextY(s);
    if (cell.Text == kRhythmSlash) {
        DrawSlash();
    } else {
        if (note.NoteCode >= kHalf && note.NoteCode <= kWhole)
            cell.Text = "[" + cell.Text + "]";
        DrawCellText(cell.Text, StringTextY(s));
        if (HasDot(note.BeamCode) || note.NoteCode == kDottedHalf) {
            StaffBox.FillSolid = true;
            StaffBox.Circle(EndOf(cell.Text), DotY(s), 1, Role::Dot);
        }
    }
    if (cell.Tie)
        DrawTie(cell.Text, DotY(s));
    if (cell.HasBend())
        DrawBend(cell.BendMark, static_cast<int>(cell.BendPlace), StringTextY(s));
}

/// X where a cell's text ends, by the width of its characters on StaffBox.
int MeasureView::EndOf(const std::string& text) const
{
    return tune[tune.CurNote].XPos + kCharWidth * Length(text);
}

/// In the notation font, whatever the case of its name.
void MeasureView::DrawSlash()
{
    UseFont("tab");
    StaffBox.PrintLine(kRhythmSlash);
    UseBodyFont();
}

/// Over the room that the text leaves of the note's width.
void MeasureView::DrawTie(const std::string& text, double y)
{
    const int radius = kCharWidth / 2 * (tune[tune.CurNote].Spacing - Length(text));
    StaffBox.Arc(EndOf(text) + radius, y, radius, 0.5, 3, 0.5, Role::Tie);
}

void MeasureView::DrawBend(char mark, int place, double y)
{
    UseFont(kTabFont);
    StaffBox.Font.Size = kBendSize;
    StaffBox.PrintLineAt(tune[tune.CurNote].XPos + kCharWidth * place,
                         mark == kBendMark ? y - kLineGap : y, {&mark, 1});
    UseBodyFont();
    StaffBox.Font.Size = kTextSize;
    StaffBox.Font.Bold = true;
}

void MeasureView::DrawCellText(const std::string& text, double y)
{
    const std::size_t mark = FindConnection(text);
    if (mark == std::string::npos)
        StaffBox.PrintLine(text, Role::Figure);
    else
        DrawConnected(text, mark, text[mark] == kHammerMark ? y - 2 : y - 3);
}

/// Two frets with a connection mark between them, its top at `markY`.
void MeasureView::DrawConnected(const std::string& text, std::size_t mark, double markY)
{
    StaffBox.Print(text.substr(0, mark), Role::Figure);
    const double y = StaffBox.CurrentY;
    UseFont(kTabFont);
    StaffBox.CurrentY = markY;
    StaffBox.Print(text.substr(mark, 1), Role::Joint);
    StaffBox.CurrentY = y;
    UseBodyFont();
    StaffBox.PrintLine(text.substr(mark + 1), Role::Figure);
}

void MeasureView::DrawStemless()
{
    const NoteRecord& note = tune[tune.CurNote];
    const int code = note.NoteCode;
    const ViewSizes& sizes = SizesOf(tune.NumStrings).View;
    UseFont(kTabFont);
    StaffBox.Font.Size = kTextSize;
    StaffBox.CurrentY = sizes.RestY;
    StaffBox.CurrentX = note.XPos;
    if (code == kWholeRest)
        DrawBlockRest(sizes.WholeRestY);
    else if (code == kHalfRest)
        DrawBlockRest(sizes.WholeRestY - kLineGap / 2.0);
    else if (code >= kTripletSixteenthRest && code <= kQuarterRest)
        StaffBox.PrintLine(RestGlyph(code));
    UseBodyFont();
    CountTriplet(code);
}

void MeasureView::DrawBlockRest(double y)
{
    const int x = tune[tune.CurNote].XPos;
    StaffBox.DrawWidth = 5;
    StaffBox.Line(x + 8, y, x + 16, y, Role::BlockRest);
    StaffBox.DrawWidth = 1;
}

/// Without a fret the stem hangs from the first string.
void MeasureView::DrawStem(int lowestString)
{
    const NoteRecord& note = tune[tune.CurNote];
    const int code = note.NoteCode;
    const int stemTopY = StringY(std::max(lowestString, 1)) + 4;
    StaffBox.Line(noteX, stemTopY, noteX, StemBaseY(), Role::Stem);
    DrawBeam();
    CountTriplet(code);
    StaffBox.PrintLineAt(noteX + 3, StemBaseY() - kFlagRise, {&note.RightHand, 1}, Role::Fingering);
    StaffBox.PrintLineAt(noteX, StemBaseY(), {&note.LeftHand, 1}, Role::Fingering);
}

void MeasureView::DrawBeam()
{
    const int x = noteX;
    const int y = StemBaseY();
    switch (tune[tune.CurNote].BeamCode) {
    case kSixteenthFlag:
        Glyph(x, y - kFlagRise, kSixteenthFlagGlyph);
        break;
    case kBothBeams:
        MainBeam(x - 1);
        StaffBox.Line(x - 1, y - kBeamGap, beam2StartX + kStemX - 1, y - kBeamGap,
                      Role::SecondBeam);
        break;
    case kBackStub:
        MainBeam(x - 1);
        StaffBox.Line(x - 1, y - kBeamGap, x - 1 - kStub, y - kBeamGap, Role::SecondBeam);
        break;
    case kEighthFlag:
    case kDottedEighthFlag:
        Glyph(x, y - kFlagRise, kEighthFlagGlyph);
        break;
    case kMainBeam:
    case kDottedMainBeam:
        MainBeam(x);
        break;
    case kForwardStub:
        ForwardStub();
        break;
    case kMainBeamForwardStub:
        MainBeam(x);
        ForwardStub();
        break;
    default:
        break;
    }
}

void MeasureView::MainBeam(double x)
{
    StaffBox.Line(x, StemBaseY(), beamStartX + kStemX - 1, StemBaseY(), Role::Beam);
}

void MeasureView::ForwardStub()
{
    const int y = StemBaseY() - kBeamGap;
    StaffBox.Line(noteX, y, noteX + kStub, y, Role::SecondBeam);
}

/// The first of the three draws the bracket. The bracket of quarters has a length of its own.
void MeasureView::CountTriplet(int code)
{
    if (!IsTriplet(code))
        return;
    if (tripletCount == 0)
        DrawTripletBracket(code == kTripletQuarter,
                           code == kTripletQuarter || code == kTripletQuarterRest
                               ? noteX + kLongTripletEndX
                               : TripletEnd());
    tripletCount = (tripletCount + 1) % 3;
}

/// Where the bracket of a triplet of short notes ends: after the next note but one, as the
/// previous redraw placed it (docs/kept_behaviour.md, "The measure view"), or at a fixed distance
/// when that note is in another measure.
double MeasureView::TripletEnd()
{
    const int last = tune[tune.CurNote + 2].XPos;
    return last > tune[tune.CurNote].XPos ? last + kCharWidth : noteX + kTripletEndX;
}

/// Two hooks with a line between them that leaves a gap, one character wide, for the 3.
void MeasureView::DrawTripletBracket(bool longForm, double farEnd)
{
    const int left = noteX - kStemX;
    const int top = StemBaseY() + 2;
    const int bottom = StemBaseY() + 6;
    const int gap = noteX + (longForm ? kLongTripletGapX : kTripletGapX);
    StaffBox.Line(left, top, left, bottom, Role::Bracket);
    StaffBox.Line(left, bottom, gap, bottom, Role::Bracket);
    StaffBox.Line(gap + kCharWidth, bottom, farEnd, bottom, Role::Bracket);
    StaffBox.Line(farEnd, top, farEnd, bottom, Role::Bracket);
    StaffBox.PrintLineAt(gap + 1, StemBaseY() + 3, "3", Role::Number);
}

void MeasureView::Glyph(double x, double y, std::string_view glyph)
{
    UseFont(kTabFont);
    StaffBox.PrintLineAt(x, y, glyph);
    UseBodyFont();
}

void MeasureView::ThickBar(double x)
{
    StaffBox.DrawWidth = 3;
    StaffBox.Line(x, kBarTopY, x, BarBottomY(), Role::ThickBar);
    StaffBox.DrawWidth = 1;
}

void MeasureView::ThinBar(double x, Role role)
{
    StaffBox.Line(x, kBarTopY, x, BarBottomY(), role);
}

void MeasureView::RepeatDots(double x)
{
    const ViewSizes& sizes = SizesOf(tune.NumStrings).View;
    StaffBox.FillSolid = true;
    StaffBox.Circle(x, sizes.UpperDotY, 2, Role::RepeatDot);
    StaffBox.Circle(x, sizes.LowerDotY, 2, Role::RepeatDot);
}

void MeasureView::DrawBar(std::string_view barCode, bool closingBar)
{
    if (barCode.empty()) {
        ThinBar(EndBarX, Role::Bar);
    } else if (barCode == kRepeatEnd || barCode == kDoubleBar) {
        ThickBar(EndBarX);
        ThinBar(EndBarX - kEndThinGap, Role::ThinBar);
        if (barCode == kRepeatEnd)
            RepeatDots(EndBarX - kEndDotsGap);
    } else if (barCode == kRepeatStart || barCode == kBeginDoubleBar || barCode == kPlainBar) {
        ThickBar(kStartBarX);
        ThinBar(kStartThinX, Role::ThinBar);
        if (closingBar)
            ThinBar(EndBarX, Role::Bar);
        if (barCode == kRepeatStart)
            RepeatDots(kStartDotsX);
    }
}

void MeasureView::DrawBracket()
{
    StaffBox.Line(kBracketX, kBracketHookY, kBracketX, kBracketY, Role::Bracket);
    StaffBox.Line(kBracketX, kBracketY, EndBarX, kBracketY, Role::Bracket);
}

void MeasureView::DrawSign(std::string_view signCode)
{
    const SignRow* sign = FindSign(signCode);
    if (!sign)
        return;
    if (sign->Glyph)
        Glyph(sign->X, sign->Y, sign->Text);
    else
        StaffBox.PrintLineAt(sign->X, sign->Y, sign->Text);
}

}  // namespace quillon
