#include "qt/svg.h"

#include "notation/page_view.h"
#include "qt/font_metrics.h"
#include "qt/paint.h"
#include "qt/text.h"

#include <QFontMetricsF>
#include <QGlyphRun>
#include <QPainterPath>
#include <QRawFont>
#include <QTextLayout>
#include <QTransform>

#include <cmath>
#include <map>
#include <optional>
#include <tuple>

namespace quillon {

namespace {

constexpr double kGlyphEm = 1000;  // size at which the notation glyphs are given

std::string Number(double value)
{
    return QString::number(std::round(value * 10) / 10, 'g', 9).toStdString();
}

std::string Attribute(const char* name, double value)
{
    return std::string(" ") + name + "=\"" + Number(value) + "\"";
}

std::string PathData(const QPainterPath& path)
{
    std::string data;
    const auto point = [&](int i) {
        const QPainterPath::Element e = path.elementAt(i);
        return Number(e.x) + " " + Number(e.y);
    };
    for (int i = 0; i < path.elementCount(); ++i) {
        switch (path.elementAt(i).type) {
        case QPainterPath::MoveToElement:
            data += (data.empty() ? "M" : "ZM") + point(i);
            break;
        case QPainterPath::LineToElement:
            data += "L" + point(i);
            break;
        case QPainterPath::CurveToElement:
            data += "C" + point(i) + " " + point(i + 1) + " " + point(i + 2);
            i += 2;
            break;
        case QPainterPath::CurveToDataElement:
            break;
        }
    }
    return data + "Z";
}

class SvgWriter {
public:
    SvgWriter(const PageChoices& pageChoices) : choices(pageChoices) {}

    std::string Write(const Drawing& page)
    {
        const PaintStyle style{.UnitsPerPoint = kTwips, .As = choices.As};
        for (const Stroke& stroke : StrokesFor(page, style))
            if (stroke.Drawn.Mode == PenMode::Plain && std::isfinite(stroke.Drawn.X1) &&
                std::isfinite(stroke.Drawn.Y1))
                Add(stroke);
        return Head(PartOf(page, choices, style)) + Definitions() +
               "<g stroke=\"#000\" fill=\"none\">\n" + shapes + "</g>\n<g>\n" + texts +
               "</g>\n</svg>\n";
    }

private:
    std::string Head(const Box& part) const
    {
        const double width = part.Right - part.Left;
        const double height = part.Bottom - part.Top;
        const std::string place = Attribute("x", part.Left) + Attribute("y", part.Top) +
                                  Attribute("width", width) + Attribute("height", height);
        return "<svg xmlns=\"http://www.w3.org/2000/svg\""
               " xmlns:xlink=\"http://www.w3.org/1999/xlink\" width=\"" +
               NumberText(width / kTwipsPerInch) + "in\" height=\"" +
               NumberText(height / kTwipsPerInch) + "in\" viewBox=\"" + Number(part.Left) + " " +
               Number(part.Top) + " " + Number(width) + " " + Number(height) + "\">\n<title>" +
               Escaped(ToUnicode(choices.Title)) + "</title>\n<rect" + place + " fill=\"#fff\"/>\n";
    }

    std::string Definitions() const
    {
        if (outlines.empty())
            return {};
        std::string text = "<defs>\n";
        for (std::size_t i = 0; i < outlines.size(); ++i)
            text += "<path id=\"g" + std::to_string(i) + "\" d=\"" + outlines[i] + "\"/>\n";
        return text + "</defs>\n";
    }

    void Add(const Stroke& stroke)
    {
        const Operation& op = stroke.Drawn;
        switch (op.Kind) {
        case Shape::Line:
            shapes += "<path d=\"M" + Number(op.X1) + " " + Number(op.Y1) + "L" + Number(op.X2) +
                      " " + Number(op.Y2) + "\"" + Pen(stroke) + "/>\n";
            break;
        case Shape::Box:
            shapes += "<rect" + Attribute("x", std::min(op.X1, op.X2)) +
                      Attribute("y", std::min(op.Y1, op.Y2)) +
                      Attribute("width", std::abs(op.X2 - op.X1)) +
                      Attribute("height", std::abs(op.Y2 - op.Y1)) + Pen(stroke) + "/>\n";
            break;
        case Shape::Circle:
            if (op.Radius > 0)
                shapes += "<circle" + Attribute("cx", op.X1) + Attribute("cy", op.Y1) +
                          Attribute("r", op.Radius) + (op.Filled ? " fill=\"#000\"" : "") +
                          Pen(stroke) + "/>\n";
            break;
        case Shape::Arc:
            if (!stroke.Outline.empty())
                AddArea(stroke);
            else if (op.Radius > 0)
                AddArc(stroke);
            break;
        case Shape::Text:
            if (choices.KeepText && !IsNotation(op.TextFont))
                AddText(op);
            else
                AddOutlines(op);
            break;
        }
    }

    static std::string Pen(const Stroke& stroke)
    {
        return stroke.Pen > 0 ? Attribute("stroke-width", stroke.Pen) : " stroke=\"none\"";
    }

    void AddArea(const Stroke& stroke)
    {
        std::string data;
        for (const Point& point : stroke.Outline)
            data += (data.empty() ? "M" : "L") + Number(point.X) + " " + Number(point.Y);
        shapes += "<path d=\"" + data + "Z\"" + Pen(stroke) +
                  " fill=\"#000\" stroke-linejoin=\"round\"/>\n";
    }

    void AddArc(const Stroke& stroke)
    {
        const Operation& op = stroke.Drawn;
        const double ry = op.Radius * op.Aspect;
        const auto at = [&](double angle) {
            return Number(op.X1 + op.Radius * std::cos(angle)) + " " +
                   Number(op.Y1 - ry * std::sin(angle));
        };
        const bool large = op.End - op.Start > std::acos(-1.0);
        shapes += "<path d=\"M" + at(op.Start) + "A" + Number(op.Radius) + " " + Number(ry) +
                  " 0 " + (large ? "1" : "0") + " 0 " + at(op.End) + "\"" + Pen(stroke) + "/>\n";
    }

    /// Control characters, which XML forbids, become replacement characters.
    static std::string Escaped(QString text)
    {
        for (QChar& c : text)
            if (c < u' ' && c != u'\t' && c != u'\n' && c != u'\r')
                c = QChar::ReplacementCharacter;
        return text.toHtmlEscaped().toStdString();
    }

    void AddText(const Operation& op)
    {
        const QFontMetricsF metrics(FontInTwips(op.TextFont));
        const QString text = ToUnicode(op.Text);
        const QString family = ToUnicode(op.TextFont.Name);
        texts += "<text" + Attribute("x", op.X1) + Attribute("y", op.Y1 + metrics.ascent()) +
                 Attribute("font-size", op.TextFont.Size * kTwips) + " font-family=\"" +
                 Escaped(family) + ",Liberation Sans,sans-serif\"" +
                 (op.TextFont.Bold ? " font-weight=\"bold\"" : "") + " xml:space=\"preserve\">" +
                 Escaped(text) + "</text>\n";
    }

    /// As references to outlines that are in the file once each.
    void AddOutlines(const Operation& op)
    {
        const QFont font = FontInTwips(op.TextFont);
        const double baseline = op.Y1 + QFontMetricsF(font).ascent();
        const QString text =
            ToUnicode(Beginning(op.Text, font, kPageWidth)).replace('\n', ' ').replace('\r', ' ');
        QTextLayout layout(text, font);
        layout.beginLayout();
        const QTextLine line = layout.createLine();
        layout.endLayout();
        const double scale = font.pixelSize() / kGlyphEm;
        texts += "<g transform=\"translate(" + Number(op.X1) + " " + Number(baseline) + ") scale(" +
                 QString::number(scale, 'g', 5).toStdString() + ")\">";
        if (!IsNotation(op.TextFont))
            texts += "<title>" + Escaped(text) + "</title>";
        for (const QGlyphRun& run : layout.glyphRuns())
            AddRun(run, line.ascent(), scale);
        texts += "</g>\n";
    }

    void AddRun(const QGlyphRun& run, double ascent, double scale)
    {
        const QList<quint32> glyphs = run.glyphIndexes();
        const QList<QPointF> positions = run.positions();
        for (qsizetype i = 0; i < glyphs.size(); ++i) {
            const std::optional<std::size_t> outline = OutlineOf(run.rawFont(), glyphs[i]);
            if (!outline)
                continue;
            const double x = positions[i].x() / scale;
            const double y = (positions[i].y() - ascent) / scale;
            texts += "<use xlink:href=\"#g" + std::to_string(*outline) + "\"" +
                     (x == 0 ? "" : Attribute("x", x)) +
                     (std::abs(y) < 0.1 ? "" : Attribute("y", y)) + "/>";
        }
    }

    /// Its place in the list; nothing for a glyph without an outline, as a blank's.
    std::optional<std::size_t> OutlineOf(const QRawFont& font, quint32 glyph)
    {
        const auto [known, isNew] =
            places.try_emplace({font.familyName(), font.styleName(), glyph}, outlines.size());
        if (isNew) {
            const double toEm = kGlyphEm / font.pixelSize();
            const QPainterPath path =
                QTransform::fromScale(toEm, toEm).map(font.pathForGlyph(glyph));
            if (path.isEmpty())
                known->second = std::nullopt;
            else
                outlines.push_back(PathData(path));
        }
        return known->second;
    }

    using GlyphKey = std::tuple<QString, QString, quint32>;  // family, style, index

    const PageChoices& choices;
    std::map<GlyphKey, std::optional<std::size_t>> places;
    std::vector<std::string> outlines;
    std::string shapes;
    std::string texts;
};

}  // namespace

std::string SvgPage(const Drawing& page, const PageChoices& choices)
{
    return SvgWriter(choices).Write(page);
}

}  // namespace quillon
