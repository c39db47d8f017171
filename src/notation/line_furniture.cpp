#include "notation/line_furniture.h"

#include "notation/staff_sizes.h"
#include "notation/symbols.h"

#include <utility>

namespace quillon {

namespace {

// Distances on the page, in twips
constexpr int kBracketGap = 40;      // between a repeat bracket, its text and the row under it
constexpr int kSignatureInset = 50;  // of a line's first time signature, from the left edge
constexpr int kThinBarGap = 40;      // between the two lines of a bar
constexpr int kRepeatDotGap = 50;    // between the thin line and the dots
constexpr int kRepeatDot = 30;       // radius

/// The size of time signatures beside a body font; 0 if it has none of its own.
int SignatureSize(float bodySize)
{
    return bodySize == 8 ? 12 : bodySize == 10 ? 16 : bodySize == 12 ? 18 : 0;
}

}  // namespace

void LineFurniture::Draw()
{
    line.RightHandInLine = false;
    for (int n = 1; n <= line.k; ++n) {
        if (IsHandMark(columns[n].RightHand))
            line.RightHandInLine = true;
        if (columns[n].IsHead())
            DrawAboveMeasure(n);
    }
    PrintChords();
    DrawStaff();
    for (int n = 1; n <= line.k; ++n) {
        if (line.SignatureChangesAt(n))
            PrintSignature(n);
        if (n == 1 && columns[n].BarCode.empty())
            DrawLeftEdge();
        DrawBar(n);
    }
}

void LineFurniture::DrawAboveMeasure(int n)
{
    const NoteRecord& head = columns[n];
    if (!head.Slot(2).empty()) {
        NeedTopRow();
        DrawRepeatBracket(n);
    }
    if (!head.Slot(1).empty()) {
        NeedTopRow();
        line.Attempt([&] { PrintSign(n); });
    }
    if (!head.Slot(3).empty()) {
        NeedTopRow();
        line.Attempt([&] { PrintRemark(n); });
    }
}

/// A line has one top row, however many items are in it.
void LineFurniture::NeedTopRow()
{
    if (TopRowUsed)
        return;
    RowTop = line.PenY;
    line.PenY += 3 * values.StringGap;
    TopRowUsed = true;
}

/// The bracket ends at the first bar sign, be it that of its own head, or at the line's end.
void LineFurniture::DrawRepeatBracket(int n)
{
    const int start = columns[n].XPos;
    int j = n;
    while (columns[j].BarCode < kPlainBar && j < line.k)
        ++j;
    const int end = j == line.k ? line.LineRight : columns[j].XPos;
    surface.Line(start, line.PenY - kBracketGap, start, RowTop, Role::Bracket);
    surface.Line(start, RowTop, end, RowTop, Role::Bracket);
    surface.PrintLineAt(start + kBracketGap, line.PenY - 3 * values.StringGap, columns[n].Slot(2));
}

void LineFurniture::PrintSign(int n)
{
    surface.CurrentY = RowTop;
    const SignRow* sign = FindSign(columns[n].Slot(1));
    if (!sign || sign->PageText.empty())
        return;
    if (sign->Glyph) {
        surface.CurrentX = columns[n + 1].XPos - 2 * line.UnitSpacing;
        line.PrintSymbol(sign->PageText);
    } else {
        PrintAtMeasureEnd(n, sign->PageText);
    }
}

void LineFurniture::PrintRemark(int n)
{
    const std::string& remark = columns[n].Slot(3);
    surface.CurrentY = RowTop;
    if (remark.front() == '/') {
        PrintAtMeasureEnd(n, remark.substr(1));
    } else {
        surface.CurrentX = columns[n + 1].XPos;
        surface.PrintLine(remark, Role::Remark);
    }
}

/// Right-aligns a text after the measure's last column, by its width in the main form's own font.
void LineFurniture::PrintAtMeasureEnd(int n, std::string_view text)
{
    int w = n;
    while (columns[w + 1].Measure == columns[n].Measure)
        ++w;
    const Typeface font =
        std::exchange(surface.Font, {line.page.FormFontName, kFormFontSize, false});
    const double width = surface.TextWidth(text);
    surface.Font = font;
    surface.CurrentX = columns[w].XPos + 2 * line.UnitSpacing - width;
    surface.PrintLine(text, Role::Remark);
}

void LineFurniture::PrintChords()
{
    bool ChordRowUsed = false;
    for (int n = 1; n <= line.k; ++n) {
        const NoteRecord& column = columns[n];
        if (column.ChordText.empty())
            continue;
        const double y = TopRowUsed ? line.PenY - 2 * values.StringGap : line.PenY;
        surface.PrintLineAt(column.XPos, y, column.ChordText);
        if (!TopRowUsed)
            ChordRowUsed = true;
    }
    if (ChordRowUsed)
        line.PenY += 2 * values.StringGap;
    else if (!TopRowUsed)
        line.PenY += values.StringGap;
}

void LineFurniture::DrawStaff()
{
    surface.DrawWidth = values.Pens.Staff;
    for (int s = 1; s <= line.tune.NumStrings; ++s)
        surface.Line(values.LineLeft, line.StringY(s), line.LineRight, line.StringY(s),
                     Role::StringLine);
}

void LineFurniture::PrintSignature(int n)
{
    const NoteRecord& column = columns[n];
    const bool behindBar = column.BarCode == kRepeatStart;
    const int x = n == 1 ? values.LineLeft + (behindBar ? line.UnitSpacing : kSignatureInset)
                         : column.XPos + (behindBar ? line.UnitSpacing : 0);
    const int gap = 2 * values.StringGap - SizesOf(line.tune.NumStrings).Page.LowerFigureRaise;
    if (const int size = SignatureSize(line.page.BodyFontSize))
        surface.Font.Size = size;
    surface.PrintLineAt(x, line.PenY, PrintedInteger(column.Beats));
    surface.PrintLineAt(x, line.PenY + gap, PrintedInteger(column.BeatUnit));
    surface.Font.Size = line.page.BodyFontSize;
}

void LineFurniture::DrawLeftEdge()
{
    StaffHighLine(values.LineLeft, values.Pens.Edge, Role::Bar);
}

void LineFurniture::DrawBar(int n)
{
    const std::string& bar = columns[n].BarCode;
    const int ownX = columns[n].XPos;
    const int nextX = columns[n + 1].XPos;
    const int atStart = n == 1 ? values.LineLeft : ownX;
    const int atEnd = n == line.k ? int{line.LineRight} : nextX;
    if (bar == kPlainBar) {
        StaffHighLine(atEnd, values.Pens.Edge, Role::Bar);
    } else if (bar == kDoubleBar || bar == kRepeatEnd) {
        DoubleBar(atEnd, -1, bar == kRepeatEnd);
    } else if (bar == kBeginDoubleBar || bar == kRepeatStart) {
        DoubleBar(atStart, 1, bar == kRepeatStart);
    }
    surface.DrawWidth = 1;
}

void LineFurniture::StaffHighLine(double x, int width, Role role)
{
    surface.DrawWidth = width;
    surface.Line(x, line.PenY, x, line.StringY(line.tune.NumStrings), role);
}

/// From the thick line on the outside to the dots on the inside: `inwards` is 1 for a measure's
/// start and -1 for its end.
void LineFurniture::DoubleBar(int thickX, int inwards, bool repeat)
{
    const int thinX = thickX + inwards * kThinBarGap;
    StaffHighLine(thickX, values.Pens.ThickBar, Role::ThickBar);
    StaffHighLine(thinX, values.Pens.ThinBar, Role::ThinBar);
    if (repeat)
        RepeatDots(thinX + inwards * kRepeatDotGap);
}

void LineFurniture::RepeatDots(int x)
{
    const PageSizes& sizes = SizesOf(line.tune.NumStrings).Page;
    surface.FillSolid = true;
    for (double gaps : {sizes.UpperDot, sizes.LowerDot})
        surface.Circle(x, line.PenY + gaps * values.StringGap, kRepeatDot, Role::RepeatDot);
}

}  // namespace quillon
