// Where lines and measures stand on the pages.
//
// Nothing about it is kept while a tune is laid out for the window. Whoever wants to know lays the
// tune out once more, and asks of each line whether a page still shows it: the same operations at
// the same places. Lengths are twips.

#pragma once

#include "notation/drawing.h"

#include <vector>

namespace quillon {

struct PlacedMeasure {
    int Head;     // its record
    double Left;  // the bars before and after it
    double Right;
};

struct PlacedLine {
    int Page = 0;
    double Top = 0;       // of everything in the line
    double StaffTop = 0;  // its first string line
    double Bottom = 0;    // the end of the lowest stem or fingering
    std::vector<PlacedMeasure> Measures;
    std::vector<Operation> Drawn;

    bool IsOn(const Drawing& page) const;
};

}  // namespace quillon
