#include "notation/draw_surface.h"

#include <utility>

namespace quillon {

double FixedTextMetrics::Width(std::string_view text, const Typeface& font) const
{
    return static_cast<double>(text.size()) * font.Size / 2;
}

double FixedTextMetrics::LineHeight(const Typeface& font) const
{
    return font.Size * 1.2;
}

InkBox FixedTextMetrics::Ink(std::string_view text, const Typeface& font) const
{
    const double edge = font.Size / 10;
    return {edge, edge, Width(text, font) - edge, LineHeight(font) - edge};
}

DrawSurface::DrawSurface(const TextMetrics& textMetrics, double surfaceUnitsPerPoint, double width,
                         double height)
    : Width(width), Height(height), metrics(&textMetrics), unitsPerPoint(surfaceUnitsPerPoint)
{
}

Operation DrawSurface::Make(Shape shape, double x, double y, Role role) const
{
    Operation op;
    op.Kind = shape;
    op.X1 = x;
    op.Y1 = y;
    op.Width = DrawWidth;
    op.Mode = DrawMode;
    op.Style = DrawStyle;
    op.Part = role;
    return op;
}

void DrawSurface::Clear()
{
    drawing.Clear();
    CurrentX = CurrentY = 0;
}

void DrawSurface::Line(double x1, double y1, double x2, double y2, Role role)
{
    Operation op = Make(Shape::Line, x1, y1, role);
    op.X2 = x2;
    op.Y2 = y2;
    drawing.Add(std::move(op));
    CurrentX = x2;
    CurrentY = y2;
}

void DrawSurface::Box(double x1, double y1, double x2, double y2)
{
    Operation op = Make(Shape::Box, x1, y1, Role::Other);
    op.X2 = x2;
    op.Y2 = y2;
    drawing.Add(std::move(op));
    CurrentX = x2;
    CurrentY = y2;
}

void DrawSurface::Circle(double x, double y, double radius, Role role)
{
    Operation op = Make(Shape::Circle, x, y, role);
    op.Radius = radius;
    op.Filled = FillSolid;
    drawing.Add(std::move(op));
    CurrentX = x;
    CurrentY = y;
}

void DrawSurface::Arc(double x, double y, double radius, double start, double end, double aspect,
                      Role role)
{
    Operation op = Make(Shape::Arc, x, y, role);
    op.Radius = radius;
    op.Start = start;
    op.End = end;
    op.Aspect = aspect;
    drawing.Add(std::move(op));
    CurrentX = x;
    CurrentY = y;
}

double DrawSurface::TextWidth(std::string_view text) const
{
    return metrics->Width(text, Font) * unitsPerPoint;
}

void DrawSurface::Print(std::string_view text, Role role)
{
    if (text.find_first_not_of(' ') != std::string_view::npos) {
        Operation op = Make(Shape::Text, CurrentX, CurrentY, role);
        op.Text = text;
        op.TextFont = Font;
        op.Width = 1;  // a pen width means nothing for text
        op.Style = PenStyle::Solid;
        drawing.Add(std::move(op));
    }
    CurrentX += TextWidth(text);
}

void DrawSurface::PrintLine(std::string_view text, Role role)
{
    Print(text, role);
    CurrentX = 0;
    CurrentY += metrics->LineHeight(Font) * unitsPerPoint;
}

void DrawSurface::PrintLineAt(double x, double y, std::string_view text, Role role)
{
    CurrentX = x;
    CurrentY = y;
    PrintLine(text, role);
}

Drawing DrawSurface::TakePicture()
{
    return std::exchange(drawing, {});
}

std::string PrintedInteger(int value)
{
    return " " + std::to_string(value) + " ";
}

}  // namespace quillon
