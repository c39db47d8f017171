// One line of the page while it is laid out and drawn: its columns, and the values of the layout.
//
// All lengths are twips unless stated otherwise.

#pragma once

#include "notation/draw_surface.h"
#include "notation/symbols.h"
#include "store/page_settings.h"
#include "store/tune.h"

#include <vector>

namespace quillon {

constexpr int kLastColumn = 80;
constexpr int kQuarterInch = 360;

/// The columns of one line, 1 to 80, as copies of the tune's records; a head is a column too. Slot
/// 0 only carries the time signature in force before the line. Three fields have a meaning of their
/// own:
///
/// XPos      x of the column on the page
/// Reserved  sum of Spacing up to and including this column
/// Spacing   width of the column, in width units
class LayoutTable {
public:
    LayoutTable() : columns(kLastColumn + 1) {}

    /// Slot 0..80. Any other index is a subscript Fault.
    NoteRecord& operator[](int index)
    {
        if (index < 0 || index > kLastColumn)
            throw Fault(Error::SubscriptOutOfRange);
        return columns[static_cast<std::size_t>(index)];
    }

private:
    std::vector<NoteRecord> columns;
};

/// Pen thickness of the parts of a line, in device dots.
struct PenWidths {
    int Staff;
    int Edge;  // left edge and plain bars
    int ThickBar;
    int ThinBar;
    int BlockRest;
    int Beam;
    int ForwardStub;
    int TieIn;  // a tie that continues from the line before
    int Tie;
};

inline constexpr PenWidths kScreenPens{1, 2, 3, 2, 8, 2, 1, 2, 1};
inline constexpr PenWidths kPrinterPens{3, 2, 6, 2, 15, 3, 3, 2, 2};

/// What the screen and the printer do differently.
struct LayoutValues {
    int LineLeft = 0;     // left end of the staff lines
    Int16 LineRight = 0;  // their right end
    double TitleY = 0;    // first drawing on a page
    int StringGap = 165;  // between two staff lines
    int CharUnit = 100;   // a character of fret text; a line holds a width unit for each
    double LineDistance = 500;
    int HeadingGap = 0;  // between heading and first line
    PenWidths Pens = kScreenPens;
    int TieInset = 20;  // subtracted from the radius of a note's tie
    int TieShift = 10;  // how far that tie is moved to the right
    bool CenterTitle = false;
    bool SpreadChords = false;  // a chord may use the room of the columns after its own
    int TwelveBeatsRoom = 0;    // further width units for a time signature of 12 beats
    bool SkipFaults = false;    // an operation that fails is left out, and the run goes on
};

/// Whether a one-character field holds a mark.
constexpr bool IsHandMark(char character)
{
    return static_cast<unsigned char>(character) > ' ';
}

/// A line, with what the passes over it pass on to each other.
struct PageLine {
    const Tune& tune;
    const PageSettings& page;
    const LayoutValues values;
    DrawSurface* surface;  // of the page

    LayoutTable columns{};
    int k = 0;                           // the line's last column
    Int16 LineRight = values.LineRight;  // of this line's staff
    int UnitSpacing = 0;                 // twips to a width unit
    double PenY = 0;        // while a line is drawn, its first staff line, below the rows above it
    double LineBottom = 0;  // the lowest y that a line reached on this page
    bool RightHandInLine = false;

    bool SignatureChangesAt(int n)
    {
        return columns[n].BeatUnit != columns[n - 1].BeatUnit ||
               columns[n].Beats != columns[n - 1].Beats;
    }

    double StringY(int s) const { return PenY + (s - 1) * values.StringGap; }

    /// Prints in the notation font at the cursor, in the size that is set.
    void PrintSymbol(std::string_view text)
    {
        surface->Font.Name = kTabFont;
        surface->PrintLine(text);
        surface->Font.Name = page.BodyFontName;
    }

    /// Runs one operation of a run, which some runs leave out if it fails.
    template <typename Operation> void Attempt(Operation operation)
    {
        try {
            operation();
        } catch (const Fault&) {
            if (!values.SkipFaults)
                throw;
        }
    }
};

}  // namespace quillon
