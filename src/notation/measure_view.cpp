#include "notation/measure_view.h"

#include "notation/signs.h"

namespace quillon {

namespace {

std::string Trimmed(const std::string& text)
{
    const std::size_t first = text.find_first_not_of(' ');
    if (first == std::string::npos)
        return {};
    return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

int Length(const std::string& text)
{
    return static_cast<int>(text.size());
}

}  // namespace

MeasureView::MeasureView(Tune& theTune, MainForm& mainForm, const PageSettings& pageSettings,
                         const TextMetrics& textMetrics)
    : StaffBox(textMetrics, kPoints, kStaffBoxWidth, kStaffBoxHeight), tune(theTune),
      form(mainForm), page(pageSettings), metrics(textMetrics)
{
    StaffBox.Font = {page.BodyFontName, 10, true};
}

void MeasureView::ClearStaff()
{
    struct SignatureRow {
        int fontSize;
        int upperY;
        int lowerY;
    };
    const SignatureRow row = tune.NumStrings == 4   ? SignatureRow{16, 32, 44}
                             : tune.NumStrings == 5 ? SignatureRow{18, 32, 48}
                                                    : SignatureRow{18, 36, 56};
    StaffBox.Clear();
    form.CaretOn = 0;
    StaffBox.Font.Size = row.fontSize;
    StaffBox.PrintLineAt(2, row.upperY, PrintedInteger(form.CurBeats));
    StaffBox.PrintLineAt(2, row.lowerY, PrintedInteger(form.CurBeatUnit));
    StaffBox.Font.Size = 10;
    UseBodyFont();
}

void MeasureView::RedrawMeasure()
{
    UseBodyFont();
    const Int16 curNote = tune.CurNote;
    NoteRecord& head = tune[form.MeasHead];
    form.CurBeats = head.Beats;
    form.CurBeatUnit = head.BeatUnit;
    form.MeasCapacity = form.CurBeats * TicksPerBeat(form.CurBeatUnit);
    ClearStaff();
    Beam = {};
    form.MeasFill = 0;
    form.hdbkbox = head.Slot(6) == kLineBreak ? "Line Break" : "";
    if (head.BarCode < "1")
        head.BarCode.clear();
    DeriveSpacing();
    form.lblMeasNum = std::to_string(tune.CurMeas);
    if (!head.Slot(3).empty())
        DrawRemark();
    BeamAndPlace();
    head.BeamCode = 0;
    EndBarX = form.MeasFill >= form.MeasCapacity
                  ? tune[form.MeasEnd].XPos + 6 * tune[form.MeasEnd].Spacing
                  : kStaffEndX;

    tickCount = beamStartX = beam2StartX = tripletCount = 0;
    for (tune.CurNote = form.MeasHead + 1; tune.CurNote <= form.MeasEnd; ++tune.CurNote)
        DrawNote();

    DrawBar(head.BarCode, true);
    if (!head.Slot(2).empty() || form.InputMode == kBracketMode) {
        DrawBracket();
        StaffBox.PrintLineAt(12, 12, head.Slot(2));
    }
    DrawSign(head.Slot(1));
    // A short measure inside the tune counts as full for the entry of notes.
    if (form.InputMode == kFretMode && form.MeasFill < form.MeasCapacity &&
        tune.CurMeas < tune.LastMeas)
        form.MeasFill = form.MeasCapacity;
    tune.CurNote = curNote;
    form.lblLastNote = std::to_string(tune.LastNote);
}

void MeasureView::DeriveSpacing()
{
    for (int i = form.MeasHead + 1; i <= form.MeasEnd; ++i) {
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
    const std::string& remark = tune[form.MeasHead].Slot(3);
    if (remark.front() != '/') {
        StaffBox.PrintLineAt(kFirstNoteX, 4, remark);
        return;
    }
    // Set to end at the measure's last note, where the previous redraw placed it.
    const std::string text = remark.substr(1);
    const double twips = metrics.Width(text, {page.FormFontName, kFormFontSize}) * kTwips;
    const int width = Floor(twips / kTwipsPerInch * 72);
    StaffBox.PrintLineAt(tune[form.MeasEnd].XPos - width, 4, text);
}

void MeasureView::BeamAndPlace()
{
    Int16 x = kFirstNoteX;
    for (tune.CurNote = form.MeasHead + 1; tune.CurNote <= form.MeasEnd; ++tune.CurNote) {
        NoteRecord& note = tune[tune.CurNote];
        Beam.Step(tune, form.MeasFill, form.MeasCapacity);
        form.MeasFill += TicksOf(note.NoteCode);
        note.XPos = x;
        x += 6 * note.Spacing;
    }
}

void MeasureView::DrawNote()
{
    NoteRecord& note = tune[tune.CurNote];
    const int code = note.NoteCode;
    if (!note.ChordText.empty())
        StaffBox.PrintLineAt(note.XPos, 12, note.ChordText);
    if (tickCount % TicksPerBeamGroup(form.CurBeatUnit) == 0 || code == kQuarterRest ||
        code == kHalfRest || code == kWholeRest)
        beamStartX = beam2StartX = 0;
    if (code <= kDottedEighth && beamStartX == 0)
        beamStartX = note.XPos;
    if (code <= kSixteenth && (beam2StartX == 0 || note.BeamCode >= kBackStub))
        beam2StartX = note.XPos;

    for (std::string& slot : note.Slots) {
        if (slot == "/") {  // a rhythm slash always stands on the third string
            slot.clear();
            note.Slot(3) = "/";
        }
    }
    for (int s = 1; s <= kStringSlots; ++s)
        if (!note.Slot(s).empty())
            DrawCell(s);

    noteX = note.XPos + 3;
    if (code >= kWhole)
        DrawStemless();
    else
        DrawStem(note.HighestFilledSlot());
    tickCount += TicksOf(code);
}

void MeasureView::DrawCell(int s)
{
    const NoteRecord& note = tune[tune.CurNote];
    const std::string& slot = note.Slot(s);
    const int y = 20 + 8 * s;
    const int dotY = 26 + 8 * s;
    StaffBox.CurrentX = note.XPos;
    StaffBox.CurrentY = y;

    std::string text = Trimmed(slot);
    const bool tie = text.find('^') != std::string::npos;
    if (tie)
        text.pop_back();
    std::size_t bend = slot.find('<');
    if (bend == std::string::npos)
        bend = slot.find('>');
    char bendMark = 0;
    if (bend != std::string::npos) {
        bendMark = text.back();
        text.pop_back();
    }

    if (text == "/") {
        UseFont("tab");
        StaffBox.PrintLine(text);
        UseBodyFont();
    } else {
        if (note.NoteCode >= kHalf && note.NoteCode <= kWhole)
            text = "[" + text + "]";
        DrawCellText(text, y);
        if (HasDot(note.BeamCode) || note.NoteCode == kDottedHalf) {
            StaffBox.FillSolid = true;
            StaffBox.Circle(6 * Length(text) + note.XPos, dotY, 1);
        }
    }
    if (tie) {
        const int end = 6 * Length(text) + note.XPos;
        const int radius = 3 * (note.Spacing - Length(text));
        StaffBox.Arc(end + radius, dotY, radius, 0.5, 3, 0.5);
    }
    if (bend != std::string::npos) {
        UseFont(kTabFont);
        StaffBox.Font.Size = 8;
        StaffBox.PrintLineAt(note.XPos + 6 * static_cast<int>(bend), bendMark == '>' ? y - 8 : y,
                             {&bendMark, 1});
        UseBodyFont();
        StaffBox.Font.Size = 10;
        StaffBox.Font.Bold = true;
    }
}

void MeasureView::DrawCellText(const std::string& text, double y)
{
    if (const std::size_t dash = text.find('-'); dash != std::string::npos)
        DrawConnected(text, dash, y - 2);
    else if (const std::size_t equals = text.find('='); equals != std::string::npos)
        DrawConnected(text, equals, y - 3);
    else
        StaffBox.PrintLine(text);
}

/// Two frets with a connection mark between them, its top at `markY`.
void MeasureView::DrawConnected(const std::string& text, std::size_t mark, double markY)
{
    StaffBox.Print(text.substr(0, mark));
    const double y = StaffBox.CurrentY;
    UseFont(kTabFont);
    StaffBox.CurrentY = markY;
    StaffBox.Print(text.substr(mark, 1));
    StaffBox.CurrentY = y;
    UseBodyFont();
    StaffBox.PrintLine(text.substr(mark + 1));
}

void MeasureView::DrawStemless()
{
    const NoteRecord& note = tune[tune.CurNote];
    const int code = note.NoteCode;
    const int restBarY = tune.NumStrings == 4 ? 46 : 54;
    UseFont(kTabFont);
    StaffBox.Font.Size = 10;
    StaffBox.CurrentY = tune.NumStrings == 4 ? 36 : 42;
    StaffBox.CurrentX = note.XPos;
    if (code == kHalfRest || code == kWholeRest) {
        const int y = code == kHalfRest ? restBarY - 4 : restBarY;
        StaffBox.DrawWidth = 5;
        StaffBox.Line(note.XPos + 8, y, note.XPos + 16, y);
        StaffBox.DrawWidth = 1;
    } else if (code >= kTripletSixteenthRest && code <= kQuarterRest) {
        StaffBox.PrintLine(RestGlyph(code));
    }
    UseBodyFont();
    CountTriplet(code);
}

void MeasureView::DrawStem(int lowestString)
{
    const NoteRecord& note = tune[tune.CurNote];
    const int code = note.NoteCode;
    const int stemTopY = lowestString > 0 ? 32 + 8 * lowestString : 40;
    StaffBox.Line(noteX, stemTopY, noteX, StemBaseY());
    DrawBeam();
    CountTriplet(code);
    StaffBox.PrintLineAt(noteX + 3, StemBaseY() - 18, {&note.RightHand, 1});
    StaffBox.PrintLineAt(noteX, StemBaseY(), {&note.LeftHand, 1});
}

void MeasureView::DrawBeam()
{
    const int x = noteX;
    const int y = StemBaseY();
    const int start = beamStartX + 2;
    const int start2 = beam2StartX + 2;
    switch (tune[tune.CurNote].BeamCode) {
    case kSixteenthFlag:
        Glyph(x, y - 18, kSixteenthFlagGlyph);
        break;
    case kBothBeams:
        StaffBox.Line(x - 1, y, start, y);
        StaffBox.Line(x - 1, y - 3, start2, y - 3);
        break;
    case kBackStub:
        StaffBox.Line(x - 1, y, start, y);
        StaffBox.Line(x - 1, y - 3, x - 6, y - 3);
        break;
    case kEighthFlag:
    case kDottedEighthFlag:
        Glyph(x, y - 18, kEighthFlagGlyph);
        break;
    case kMainBeam:
    case kDottedMainBeam:
        StaffBox.Line(x, y, start, y);
        break;
    case kForwardStub:
        StaffBox.Line(x, y - 3, x + 5, y - 3);
        break;
    case kMainBeamForwardStub:
        StaffBox.Line(x, y, start, y);
        StaffBox.Line(x, y - 3, x + 5, y - 3);
        break;
    default:
        break;
    }
}

/// The first of the three draws the bracket. The bracket of quarters has a length of its own.
void MeasureView::CountTriplet(int code)
{
    if (!IsTriplet(code))
        return;
    if (tripletCount == 0)
        DrawTripletBracket(code == kTripletQuarter,
                           code == kTripletQuarter || code == kTripletQuarterRest ? noteX + 39
                                                                                  : TripletEnd());
    tripletCount = (tripletCount + 1) % 3;
}

/// Where the bracket of a triplet of short notes ends: behind the next note but one, or at a fixed
/// distance when that note lies in another measure.
double MeasureView::TripletEnd()
{
    const int last = tune[tune.CurNote + 2].XPos;
    return last > tune[tune.CurNote].XPos ? last + 6 : noteX + 27;
}

void MeasureView::DrawTripletBracket(bool longForm, double farEnd)
{
    const int left = noteX - 3;
    const int top = StemBaseY() + 2;
    const int bottom = StemBaseY() + 6;
    const int gap = noteX + (longForm ? 15 : 9);
    StaffBox.Line(left, top, left, bottom);
    StaffBox.Line(left, bottom, gap, bottom);
    StaffBox.Line(gap + 6, bottom, farEnd, bottom);
    StaffBox.Line(farEnd, top, farEnd, bottom);
    StaffBox.PrintLineAt(gap + 1, StemBaseY() + 3, "3");
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
    StaffBox.Line(x, kBarTopY, x, BarBottomY());
    StaffBox.DrawWidth = 1;
}

void MeasureView::ThinBar(double x)
{
    StaffBox.Line(x, kBarTopY, x, BarBottomY());
}

void MeasureView::RepeatDots(double x)
{
    const int upper = tune.NumStrings == 4 ? 43 : 47;
    const int lower = tune.NumStrings == 4 ? 56 : tune.NumStrings == 5 ? 65 : 67;
    StaffBox.FillSolid = true;
    StaffBox.Circle(x, upper, 2);
    StaffBox.Circle(x, lower, 2);
}

void MeasureView::DrawBar(std::string_view barCode, bool closingBar)
{
    if (barCode.empty()) {
        ThinBar(EndBarX);
    } else if (barCode == kRepeatEnd || barCode == kDoubleBar) {
        ThickBar(EndBarX);
        ThinBar(EndBarX - 3);
        if (barCode == kRepeatEnd)
            RepeatDots(EndBarX - 7);
    } else if (barCode == kRepeatStart || barCode == kBeginDoubleBar || barCode == kPlainBar) {
        ThickBar(23);
        ThinBar(27);
        if (closingBar)
            ThinBar(EndBarX);
        if (barCode == kRepeatStart)
            RepeatDots(32);
    }
}

void MeasureView::DrawBracket()
{
    StaffBox.Line(6, 30, 6, 6);
    StaffBox.Line(6, 6, EndBarX, 6);
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
