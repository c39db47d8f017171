#include "qt/paint.h"

#include "notation/draw_surface.h"
#include "qt/font_metrics.h"
#include "qt/text.h"

#include <QFontMetricsF>
#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <cmath>
#include <initializer_list>
#include <numbers>

namespace quillon {

namespace {

/// Far outside every surface, and near enough for the painter's arithmetic.
constexpr double kFarTwips = 500000;

bool AllFinite(std::initializer_list<double> values)
{
    return std::all_of(values.begin(), values.end(), [](double v) { return std::isfinite(v); });
}

bool CanBePainted(const Operation& op)
{
    if (!AllFinite({op.X1, op.Y1}))
        return false;
    switch (op.Kind) {
    case Shape::Line:
    case Shape::Box:
        return AllFinite({op.X2, op.Y2});
    case Shape::Circle:
        return std::isfinite(op.Radius) && op.Radius > 0;
    case Shape::Arc:
        return AllFinite({op.Radius, op.Start, op.End, op.Aspect}) && op.Radius > 0 &&
               op.Aspect > 0;
    case Shape::Text:
        return true;
    }
    return false;
}

/// One stroke, its lengths in twips.
class StrokePainter {
public:
    StrokePainter(QPainter& thePainter, const Stroke& theStroke, const PaintStyle& paintStyle)
        : painter(thePainter), stroke(theStroke), op(theStroke.Drawn), style(paintStyle),
          scale(kTwips / paintStyle.UnitsPerPoint)
    {
    }

    void Paint() const
    {
        painter.setPen(Pen());
        painter.setBrush(op.Filled ? QBrush(Qt::black) : QBrush(Qt::NoBrush));
        switch (op.Kind) {
        case Shape::Line:
            Line();
            break;
        case Shape::Box:
            Box();
            break;
        case Shape::Circle:
            painter.drawEllipse(From(), Twips(op.Radius), Twips(op.Radius));
            break;
        case Shape::Arc:
            if (stroke.Outline.empty())
                Arc();
            else
                Area();
            break;
        case Shape::Text:
            Text();
            break;
        }
    }

private:
    double Twips(double length) const { return std::clamp(length * scale, -kFarTwips, kFarTwips); }
    QPointF From() const { return {Twips(op.X1), Twips(op.Y1)}; }
    QPointF To() const { return {Twips(op.X2), Twips(op.Y2)}; }
    double PenWidth() const { return Twips(stroke.Pen); }

    QPen Pen() const
    {
        const Qt::PenStyle line = op.Style == PenStyle::Dotted ? Qt::DotLine : Qt::SolidLine;
        return stroke.Pen > 0 ? QPen(Qt::black, PenWidth(), line, Qt::FlatCap, Qt::MiterJoin)
                              : QPen(Qt::NoPen);
    }

    void Line() const
    {
        const QPointF from = From();
        const QPointF to = To();
        const bool straight = from.x() == to.x() || from.y() == to.y();
        if (style.Crisp && straight && op.Style == PenStyle::Solid) {
            PaintCrispLine(painter, from.x(), from.y(), to.x(), to.y(), PenWidth());
        } else if (from == to) {
            const double half = PenWidth() / 2;  // a flat line without length would show nothing
            painter.fillRect(QRectF(from.x() - half, from.y() - half, 2 * half, 2 * half),
                             Qt::black);
        } else {
            painter.drawLine(from, to);
        }
    }

    /// On a screen the border of a box fills the dots right of and below its coordinates, so that
    /// the space between two of its dots is free of it at every density.
    void Box() const
    {
        const double shift = style.Crisp ? PenWidth() / 2 : 0;
        painter.drawRect(QRectF(From(), To()).normalized().translated(shift, shift));
    }

    void Arc() const
    {
        const double rx = Twips(op.Radius);
        const double ry = Twips(op.Radius * op.Aspect);
        const QRectF ellipse(Twips(op.X1) - rx, Twips(op.Y1) - ry, 2 * rx, 2 * ry);
        constexpr double kDegrees = 180 / std::numbers::pi;
        const double start = std::fmod(op.Start * kDegrees, 360);
        double span = std::fmod(op.End * kDegrees - start, 360);
        if (span <= 0)
            span += 360;
        QPainterPath path;
        path.arcMoveTo(ellipse, start);
        path.arcTo(ellipse, start, span);
        painter.strokePath(path, Pen());
    }

    /// An area with round corners of the pen's width.
    void Area() const
    {
        QPolygonF polygon;
        for (const Point& point : stroke.Outline)
            polygon << QPointF(Twips(point.X), Twips(point.Y));
        painter.setPen(QPen(Qt::black, PenWidth(), Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        painter.setBrush(Qt::black);
        painter.drawPolygon(polygon);
    }

    void Text() const
    {
        const QFont font = FontInTwips(op.TextFont);
        const QPointF baseline = From() + QPointF(0, QFontMetricsF(font).ascent());
        const QString text = ToUnicode(Beginning(op.Text, font, 2 * kFarTwips));
        if (style.SignOutlines && IsNotation(op.TextFont)) {
            QPainterPath path;
            path.addText(baseline, font, text);
            path.setFillRule(Qt::WindingFill);  // contours that overlap leave no holes
            painter.fillPath(path, Qt::black);
        } else {
            painter.setPen(Qt::black);
            painter.setFont(font);
            painter.drawText(baseline, text);
        }
    }

    QPainter& painter;
    const Stroke& stroke;
    const Operation& op;
    const PaintStyle& style;
    double scale;  // twips to a unit of the drawing
};

}  // namespace

void PaintCrispLine(QPainter& painter, double x1, double y1, double x2, double y2, double width)
{
    const QTransform toPixels = painter.deviceTransform();
    const QPointF from = toPixels.map(QPointF(std::min(x1, x2), std::min(y1, y2)));
    const QPointF to = toPixels.map(QPointF(std::max(x1, x2), std::max(y1, y2)));
    const double thickness = std::max(1.0, std::round(width * toPixels.m11()));
    QRectF pixels(QPointF(std::round(from.x()), std::round(from.y())),
                  QPointF(std::round(to.x()), std::round(to.y())));
    if (pixels.width() < 1) {
        pixels.setLeft(std::round(from.x() - thickness / 2));
        pixels.setWidth(thickness);
    }
    if (pixels.height() < 1) {
        pixels.setTop(std::round(from.y() - thickness / 2));
        pixels.setHeight(thickness);
    }
    const bool smooth = painter.testRenderHint(QPainter::Antialiasing);
    painter.setRenderHint(QPainter::Antialiasing, false);
    QColor ink = painter.pen().color();
    if (width < kScreenDot)  // too thin for a whole pixel: paler
        ink.setAlphaF(static_cast<float>(std::min(1.0, width * toPixels.m11())));
    painter.fillRect(toPixels.inverted().mapRect(pixels), ink);
    painter.setRenderHint(QPainter::Antialiasing, smooth);
}

std::vector<Stroke> StrokesFor(const Drawing& drawing, const PaintStyle& style)
{
    static const FontMetrics metrics;
    const double dot = style.Dot * style.UnitsPerPoint / kTwips;
    return StrokesOf(drawing, {style.As, dot, style.UnitsPerPoint}, metrics);
}

Box PartOf(const Drawing& page, const PageChoices& choices, const PaintStyle& style)
{
    const Box paper{0, 0, choices.Width, choices.Height};
    if (!choices.Crop)
        return paper;
    return InkOf(StrokesFor(page, style), style.UnitsPerPoint, FontMetrics()).value_or(paper);
}

void Paint(QPainter& painter, const Drawing& drawing, const PaintStyle& style)
{
    painter.save();
    painter.setRenderHints(QPainter::Antialiasing | QPainter::TextAntialiasing);
    const std::vector<Stroke> strokes = StrokesFor(drawing, style);
    for (const Stroke& stroke : strokes)
        if (stroke.Drawn.Mode == PenMode::Plain && CanBePainted(stroke.Drawn))
            StrokePainter(painter, stroke, style).Paint();
    // Both modes turn what is below to its opposite. Being painted from the list each time, they
    // leave no trace once they are gone from it.
    painter.setRenderHint(QPainter::Antialiasing, false);
    painter.setCompositionMode(QPainter::RasterOp_NotSourceXorDestination);
    for (const Stroke& stroke : strokes)
        if (stroke.Drawn.Mode != PenMode::Plain && CanBePainted(stroke.Drawn))
            StrokePainter(painter, stroke, style).Paint();
    painter.restore();
}

}  // namespace quillon
