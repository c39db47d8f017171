// Line furniture: everything in a line of the page that does not belong to a single note.
//
// From top to bottom: the row of repeat brackets, navigation signs and remarks, the chord row, the
// staff, time signatures and bars. PenY comes in at the top of the line and goes out at its first
// staff line.

#pragma once

#include "notation/page_line.h"

#include <string_view>

namespace quillon {

class LineFurniture {
public:
    explicit LineFurniture(PageLine& pageLine)
        : line(pageLine), values(pageLine.values), columns(pageLine.columns),
          surface(*pageLine.surface)
    {
    }

    void Draw();

private:
    void DrawAboveMeasure(int n);
    void NeedTopRow();
    void DrawRepeatBracket(int n);
    void PrintSign(int n);
    void PrintRemark(int n);
    void PrintAtMeasureEnd(int n, std::string_view text);
    void PrintChords();
    void DrawStaff();
    void PrintSignature(int n);
    void DrawLeftEdge();
    void DrawBar(int n);
    void StaffHighLine(double x, int width, Role role);
    void DoubleBar(int thickX, int inwards, bool repeat);
    void RepeatDots(int x);

    PageLine& line;
    const LayoutValues& values;
    LayoutTable& columns;
    DrawSurface& surface;

    bool TopRowUsed = false;
    double RowTop = 0;  // y of the top row
};

}  // namespace quillon
