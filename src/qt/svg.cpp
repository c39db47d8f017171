#include "qt/svg.h"

#include "notation/page_view.h"
#include "notation/symbols.h"
#include "qt/font_metrics.h"
#include "qt/paint.h"
#include "qt/text.h"

#include <QFontMetricsF>
#include <QPainterPath>

#include <cmath>
#include <map>

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

bool IsNotation(const Typeface& font)
{
    return QString::fromStdString(font.Name).compare(kTabFont, Qt::CaseInsensitive) == 0;
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
    std::string Write(const std::vector<Stroke>& strokes)
    {
        for (const Stroke& stroke : strokes)
            if (stroke.Drawn.Mode == PenMode::Plain && std::isfinite(stroke.Drawn.X1) &&
                std::isfinite(stroke.Drawn.Y1))
                Add(stroke);
        const std::string width = NumberText(kPageWidth);
        const std::string height = NumberText(kPageHeight);
        std::string svg = "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"" +
                          NumberText(kPageWidth / kTwipsPerInch) + "in\" height=\"" +
                          NumberText(kPageHeight / kTwipsPerInch) + "in\" viewBox=\"0 0 " + width +
                          " " + height + "\">\n<rect width=\"" + width + "\" height=\"" + height +
                          "\" fill=\"#fff\"/>\n";
        if (!glyphs.empty()) {
            svg += "<defs>\n";
            for (const auto& [name, outline] : glyphs)
                svg += "<path id=\"" + name + "\" d=\"" + outline + "\"/>\n";
            svg += "</defs>\n";
        }
        return svg + "<g stroke=\"#000\" fill=\"none\">\n" + shapes + "</g>\n" + "<g>\n" + texts +
               "</g>\n</svg>\n";
    }

private:
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
            if (IsNotation(op.TextFont))
                AddGlyphs(op);
            else
                AddText(op);
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

    /// Notation signs, as references to outlines that are in the file once each.
    void AddGlyphs(const Operation& op)
    {
        const QFont font = FontInTwips(op.TextFont);
        const double baseline = op.Y1 + QFontMetricsF(font).ascent();
        double x = op.X1;
        for (const QChar c : ToUnicode(op.Text)) {
            const std::string name = "g" + std::to_string(c.unicode());
            if (!glyphs.contains(name))
                glyphs[name] = Outline(c);
            texts += "<use href=\"#" + name + "\" transform=\"translate(" + Number(x) + " " +
                     Number(baseline) + ") scale(" +
                     QString::number(op.TextFont.Size * kTwips / kGlyphEm, 'g', 5).toStdString() +
                     ")\"/>\n";
            x += QFontMetricsF(font).horizontalAdvance(c);
        }
    }

    static std::string Outline(QChar c)
    {
        QPainterPath path;
        path.addText(0, 0, FontInTwips({kTabFont, kGlyphEm / kTwips}), QString(c));
        return PathData(path);
    }

    std::map<std::string, std::string> glyphs;  // outline by name
    std::string shapes;
    std::string texts;
};

}  // namespace

std::string SvgPage(const Drawing& page, Look look)
{
    return SvgWriter().Write(StrokesFor(page, {.UnitsPerPoint = kTwips, .As = look}));
}

}  // namespace quillon
