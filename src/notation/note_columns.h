// Note columns: what belongs to each note or rest in a line of the page.
//
// Fret texts with their marks, rests, stems, beams and flags, triplet brackets and fingering,
// column by column from left to right. Rhythm is shown below the staff: stems hang down from the
// lowest string that is played. The pass also finds how far down the line reaches.

#pragma once

#include "notation/page_line.h"

#include <array>

namespace quillon {

class NoteColumns {
public:
    /// One object serves a whole run: ties and triplets continue across line ends.
    explicit NoteColumns(PageLine& pageLine)
        : line(pageLine), values(pageLine.values), columns(pageLine.columns)
    {
    }

    void Draw();

private:
    void DrawColumn(int n);
    void DrawCell(int n, int s);
    void DrawSlash(int s);
    void DrawFret(int n, int s);
    void DrawTieIn(int n, int s);
    void PrintFret(const std::string& text, bool connected);
    void PrintBend(int n, int s, char mark, std::size_t place);
    void DrawDot(int n, const std::string& text);
    void DrawTie(int n, int s, const std::string& text);
    void DrawBlockRest(const NoteRecord& column);
    void PrintRest(const NoteRecord& column);
    void FindStemEnd();
    void DrawStem(const NoteRecord& column);
    void StartBeams(const NoteRecord& column);
    void DrawBeams(int n);
    void PrintFlag(const NoteRecord& column, std::string_view glyph);
    void MainBeam();
    void SecondBeam(int x);
    void BeamToStem(int x, double y, Role role);
    void ForwardStub(int n);
    void PrintRightHand(const NoteRecord& column);
    void DrawTriplet(int n);
    void PrintLeftHand(const NoteRecord& column);
    void LineReaches(double y);
    double FretY(int s) const { return line.StringY(s) + 50 - values.StringGap; }
    DrawSurface& Surface() { return *line.surface; }
    void UseBodyFont();

    PageLine& line;
    const LayoutValues& values;
    LayoutTable& columns;

    // Of the line
    int TickCount = 0;    // of the measure so far, quarter = 12
    int BeamStartX = 0;   // XPos at which the main beam starts, 0 is none
    int Beam2StartX = 0;  // XPos at which the second beam starts

    // Of the column
    int StemString = 0;  // the lowest string that is played, 0 is none
    double StemEnd = 0;  // y of the lower end of the stems

    // Of the run
    int StemX = 0;                                  // of the last stem
    int TripletCount = 0;                           // columns of the present triplet
    std::array<bool, kStringSlots + 1> TieCarry{};  // by string: a tie runs over the line's end
};

}  // namespace quillon
