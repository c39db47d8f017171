// The page formatter: the whole tune laid out line by line, on the page surfaces or on paper.
//
// A line takes as many whole measures as fit, is justified, and is drawn in two passes (line
// furniture, note columns). Nothing is kept: every run starts from the note table again.
// Screen and printer run the same code; everything that differs is in LayoutValues.
// Lengths are twips unless stated otherwise.

#pragma once

#include "notation/note_columns.h"
#include "notation/page_line.h"
#include "notation/page_view.h"
#include "notation/placed_lines.h"

#include <functional>
#include <optional>

namespace quillon {

class PageFormatter {
public:
    /// Starts on `firstPage`, in the body font. `beginPage` gives the surface of each further page.
    PageFormatter(const Tune& theTune, const PageSettings& pageSettings,
                  const LayoutValues& layoutValues, DrawSurface& firstPage,
                  std::function<DrawSurface&()> beginFurtherPage);

    /// Hears of each line, when it has been drawn.
    std::function<void(PlacedLine)> OnLine;

    /// Returns the number of a measure that is too wide for a line, at which the run stopped.
    std::optional<int> Run();

private:
    void DrawHeading();
    void PrintTitle();
    void PrintCredits();
    void UseBodyFont();

    void BuildLine(int firstRecord);
    void CopyRecords(int firstRecord);
    void SetWidth(NoteRecord& column);
    void MakeRoomForChords();
    void SpreadChordText(int n);
    void CutMeasureAtTablesEnd();
    void MakeRoomForSignatures();
    void MoveBars();
    void CutToCapacity();
    void SetPlainBars();
    void SpreadLine();
    void DrawLine(int firstRecord);
    std::vector<PlacedMeasure> PlaceMeasures(int firstRecord, int staffEnd);
    void FinishLine(int lastRecord);
    void Widen(NoteRecord& column, int units);

    const Tune& tune;
    const PageSettings& page;
    const std::function<DrawSurface&()> beginPage;
    PageLine line;
    NoteColumns noteColumns;
};

/// Draws the tune on the page surfaces and sets PageMax when a page is added. Returns the number of
/// a measure that is too wide for a line, at which the run stopped; what was drawn before it stays.
/// A tenth page is a control-array Fault. Appends to `lines` where each line is.
std::optional<int> LayOutPages(const Tune& tune, const PageSettings& page, PageView& pages,
                               std::vector<PlacedLine>* lines = nullptr);

/// The lines of the tune as LayOutPages draws them. Of a tune that it cannot lay out, those before
/// the fault.
std::vector<PlacedLine> PlaceLines(const Tune& tune, const PageSettings& page,
                                   const TextMetrics& metrics);

}  // namespace quillon
