// What the measure view, the page layout and printing draw on.
//
// A surface has a pen, a font and a text cursor, and records what is drawn as a Drawing. It gets
// the width of a text from its TextMetrics: the real fonts' in the window and on paper, fixed ones
// in logs and tests.

#pragma once

#include "notation/drawing.h"

#include <string_view>

namespace quillon {

/// What is black of a text, from the text's top left corner. Empty if nothing is.
struct InkBox {
    double Left = 0;
    double Top = 0;
    double Right = 0;
    double Bottom = 0;
};

/// Sizes of texts, in points.
class TextMetrics {
public:
    virtual ~TextMetrics() = default;

    virtual double Width(std::string_view text, const Typeface& font) const = 0;
    virtual double LineHeight(const Typeface& font) const = 0;
    virtual InkBox Ink(std::string_view text, const Typeface& font) const = 0;
};

/// Metrics that are the same on every machine: a character is half the font's size wide, a line
/// 1.2 times the size high, in every font and weight. All of it is ink but a tenth of the size on
/// each side.
class FixedTextMetrics : public TextMetrics {
public:
    double Width(std::string_view text, const Typeface& font) const override;
    double LineHeight(const Typeface& font) const override;
    InkBox Ink(std::string_view text, const Typeface& font) const override;
};

constexpr double kPoints = 1;  // surface units to the point
constexpr double kTwips = 20;
constexpr double kTwipsPerInch = 1440;
constexpr double kPointsPerInch = 72;

/// Size of the main form's own font, in which a few texts are measured.
constexpr double kFormFontSize = 8.25;

class DrawSurface {
public:
    DrawSurface(const TextMetrics& textMetrics, double surfaceUnitsPerPoint, double width,
                double height);

    double Width;  // of the surface, in its units
    double Height;
    double CurrentX = 0;  // where the next text goes, its top left corner
    double CurrentY = 0;
    Typeface Font;
    int DrawWidth = 1;  // pen thickness in device dots
    PenStyle DrawStyle = PenStyle::Solid;
    PenMode DrawMode = PenMode::Plain;
    bool FillSolid = false;

    void Clear();

    /// Leaves the cursor at the line's end.
    void Line(double x1, double y1, double x2, double y2, Role role = Role::Other);

    /// A rectangle between two corners. Leaves the cursor at the second.
    void Box(double x1, double y1, double x2, double y2);

    /// Leaves the cursor at the centre, as Arc does.
    void Circle(double x, double y, double radius, Role role = Role::Other);

    /// Part of an ellipse, angles in radians, counter-clockwise from the positive x axis;
    /// `aspect` is height to width, `radius` the horizontal one.
    void Arc(double x, double y, double radius, double start, double end, double aspect,
             Role role = Role::Other);

    double TextWidth(std::string_view text) const;

    /// Prints at the cursor, which moves to the end of the text.
    void Print(std::string_view text, Role role = Role::Other);

    /// Prints at the cursor, which goes to x 0 of the next text line.
    void PrintLine(std::string_view text, Role role = Role::Other);

    /// As the above, at a place.
    void PrintLineAt(double x, double y, std::string_view text, Role role = Role::Other);

    /// The drawing so far.
    const Drawing& Picture() const { return drawing; }

    /// Makes it show what `picture` shows; pen, font and text cursor stay.
    void SetPicture(const Drawing& picture) { drawing.Show(picture); }

    /// Hands the drawing over and starts an empty one: a printed page.
    Drawing TakePicture();

private:
    Operation Make(Shape shape, double x, double y, Role role) const;

    const TextMetrics* metrics;
    double unitsPerPoint;
    Drawing drawing;
};

/// A number as it is printed: with a blank before and after it.
std::string PrintedInteger(int value);

}  // namespace quillon
