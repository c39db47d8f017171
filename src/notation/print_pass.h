// The print pass: the page layout run for paper.
//
// The same formatter as on the screen, with the values of the page setup. From the first line on, a
// failing operation is left out and the pass goes on: paper shows the rest without what failed.

#pragma once

#include "notation/drawing.h"
#include "notation/page_layout.h"
#include "platform/printer.h"

#include <optional>
#include <vector>

namespace quillon {

struct PrintedTune {
    std::vector<Drawing> Pages;           // in twips, at least one
    std::optional<int> TooWideMeasure{};  // the measure that fits no line, at which the job ended
};

/// The printed pages of a tune, on paper of the given size in twips. A body font of a size other
/// than 8, 10 or 12 is set to 12 permanently. Margins that no page can have are a Fault.
PrintedTune RunPrintPass(const Tune& tune, PageSettings& page, const TextMetrics& metrics,
                         double width, double height);

/// Shows the print dialog and prints the tune as often as it says, one job per copy. Failures are
/// silent, a cancelled dialog too. Returns the number of a measure that is too wide for a line, at
/// which the jobs ended.
std::optional<int> PrintTune(const Tune& tune, PageSettings& page, const TextMetrics& metrics,
                             Printer& printer);

}  // namespace quillon
