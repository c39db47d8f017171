// The measure view: one measure of the tune, drawn large on StaffBox.
//
// RedrawMeasure is more than a painter. Along the way it derives Spacing, XPos and BeamCode of the
// measure's notes, and the editor goes on from MeasCapacity, MeasFill, EndBarX, CurBeats and
// CurBeatUnit as it leaves them. All coordinates are points; the staff lines are permanent objects
// of the window and not part of the drawing.

#pragma once

#include "notation/draw_surface.h"
#include "store/editing_state.h"
#include "store/page_settings.h"
#include "store/tune.h"

namespace quillon {

constexpr double kStaffBoxWidth = 360;
constexpr double kStaffBoxHeight = 150;
constexpr int kBarTopY = 36;
constexpr int kFirstNoteX = 48;  // where the first note of a measure is
constexpr int kStaffEndX = 350;
constexpr int kCharWidth = 6;  // points: a character of fret text, and the unit of Spacing

/// Y of the cursor on string s, 1 is the top line.
constexpr int StringY(int s)
{
    return 28 + 8 * s;
}

/// The string that a cursor at y is on, ties to even. Not limited to the strings of
/// the instrument.
inline int StringAt(int y)
{
    return Round((y - StringY(0)) / 8.0);
}

class MeasureView {
public:
    MeasureView(Tune& theTune, EditingState& editingState, const PageSettings& pageSettings,
                const TextMetrics& textMetrics);

    DrawSurface StaffBox;
    Int16 EndBarX;  // x of the closing bar

    // Labels beside StaffBox
    std::string lblMeasNum;   // the measure's number
    std::string lblLastNote;  // the highest record in use
    std::string hdbkbox;      // "Line Break" or ""

    void RedrawMeasure();

    /// Clears StaffBox and prints the time signature.
    void ClearStaff();

    // Signs that commands also draw at once, without a redraw.
    /// `closingBar`: a bar sign at the measure's start brings the bar at its end with it.
    void DrawBar(std::string_view barCode, bool closingBar);
    void DrawSign(std::string_view signCode);
    void DrawBracket();

private:
    void DrawFurniture(const NoteRecord& head);
    void DeriveSpacing();
    void DrawRemark();
    void BeamAndPlace();
    void DrawNote();
    void MoveSlash(NoteRecord& note);
    void DrawCell(int s);
    int EndOf(const std::string& text) const;
    void DrawSlash();
    void DrawTie(const std::string& text, double y);
    void DrawBend(char mark, int place, double y);
    void DrawCellText(const std::string& text, double y);
    void DrawConnected(const std::string& text, std::size_t mark, double y);
    void DrawStemless();
    void DrawBlockRest(double y);
    void DrawStem(int lowestString);
    void DrawBeam();
    void MainBeam(double x);
    void ForwardStub();
    void CountTriplet(int code);
    void DrawTripletBracket(bool longForm, double farEnd);
    double TripletEnd();
    void Glyph(double x, double y, std::string_view glyph);
    void ThickBar(double x);
    void ThinBar(double x, Role role);
    void RepeatDots(double x);
    int BarBottomY() const { return StringY(tune.NumStrings); }

    /// Where the stems end and the beams are: four gaps under the lowest string.
    int StemBaseY() const { return StringY(tune.NumStrings + 4); }
    void UseFont(const std::string& name) { StaffBox.Font.Name = name; }
    void UseBodyFont() { UseFont(page.BodyFontName); }

    Tune& tune;
    EditingState& state;
    const PageSettings& page;
    const TextMetrics& metrics;

    // Working values of the second pass
    int tickCount = 0;
    int beamStartX = 0;    // XPos at which the main beam starts, 0 is none
    int beam2StartX = 0;   // XPos at which the second beam starts
    int tripletCount = 0;  // notes of the present triplet
    int noteX = 0;         // x of the stem of the note being drawn
};

}  // namespace quillon
