#include "notation/look.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>

namespace quillon {

namespace {

constexpr double kViewGap = 8;  // points between two strings of a drawing that has none itself

/// Pens and distances of a look, in string gaps. A pen of 0 is the one that the pass set.
struct Style {
    double StringLine;
    double Bar;
    double ThickBar;
    double BarClear;  // at least, between the lines of a bar, and its dots
    double RepeatDot;
    double Bracket;
    double Stem;
    double Beam;
    double BeamClear;  // between two beams
    double BlockRest;
    double TieEnd;
    double TieMiddle;
    double Dot;
    double FigureClear;  // round a figure
};

constexpr Style kEngraved{
    .StringLine = 0.07,
    .Bar = 0.11,
    .ThickBar = 0.33,
    .BarClear = 0.15,
    .RepeatDot = 0.15,
    .Bracket = 0.08,
    .Stem = 0.1,
    .Beam = 0.25,
    .BeamClear = 0.15,
    .BlockRest = 0.45,
    .TieEnd = 0.05,
    .TieMiddle = 0.15,
    .Dot = 0.14,
    .FigureClear = 0.17,
};

constexpr double kPlainBarClear = 1.125;  // points: seen at every density
constexpr double kShortestPiece = 0.25;   // gaps: a shorter piece between two figures is left out
constexpr double kNearStem = 0.2;         // gaps: a beam that ends nearer to a stem ends on it
constexpr double kOnStemEnd = 0.7;        // gaps: how far from its end a stem's beams may lie
constexpr int kTiePieces = 16;

bool Overlap(const Box& a, const Box& b)
{
    return a.Left < b.Right && b.Left < a.Right && a.Top < b.Bottom && b.Top < a.Bottom;
}

Box Grown(const Box& box, double by)
{
    return {box.Left - by, box.Top - by, box.Right + by, box.Bottom + by};
}

Box InkOfText(const Operation& text, double unitsPerPoint, const TextMetrics& metrics)
{
    const InkBox ink = metrics.Ink(text.Text, text.TextFont);
    return {text.X1 + ink.Left * unitsPerPoint, text.Y1 + ink.Top * unitsPerPoint,
            text.X1 + ink.Right * unitsPerPoint, text.Y1 + ink.Bottom * unitsPerPoint};
}

/// On an arc, or so far outside it.
Point PointOf(const Operation& arc, double angle, double outside = 0)
{
    return {arc.X1 + (arc.Radius + outside) * std::cos(angle),
            arc.Y1 - (arc.Radius * arc.Aspect + outside) * std::sin(angle)};
}

Box BoxOfArc(const Operation& arc)
{
    const Point start = PointOf(arc, arc.Start);
    Box box{start.X, start.Y, start.X, start.Y};
    for (int i = 1; i <= kTiePieces; ++i) {
        const Point point = PointOf(arc, arc.Start + (arc.End - arc.Start) * i / kTiePieces);
        box = {std::min(box.Left, point.X), std::min(box.Top, point.Y),
               std::max(box.Right, point.X), std::max(box.Bottom, point.Y)};
    }
    return box;
}

Box InkOfStroke(const Stroke& stroke, double unitsPerPoint, const TextMetrics& metrics)
{
    const Operation& op = stroke.Drawn;
    const double half = stroke.Pen / 2;
    switch (op.Kind) {
    case Shape::Text:
        return InkOfText(op, unitsPerPoint, metrics);
    case Shape::Circle:
        return Grown({op.X1, op.Y1, op.X1, op.Y1}, op.Radius + half);
    case Shape::Arc:
        return Grown(BoxOfArc(op), half);
    default: {
        const Box box{std::min(op.X1, op.X2), std::min(op.Y1, op.Y2), std::max(op.X1, op.X2),
                      std::max(op.Y1, op.Y2)};
        const double x = op.Kind == Shape::Line && op.Y1 == op.Y2 ? 0 : half;
        const double y = op.Kind == Shape::Line && op.X1 == op.X2 ? 0 : half;
        return {box.Left - x, box.Top - y, box.Right + x, box.Bottom + y};
    }
    }
}

/// Moves both ends of a line outwards. A line without length has no direction and stays.
void Lengthen(Operation& line, double by)
{
    const double length = std::hypot(line.X2 - line.X1, line.Y2 - line.Y1);
    if (!(length > 0))
        return;
    const double x = by * (line.X2 - line.X1) / length;
    const double y = by * (line.Y2 - line.Y1) / length;
    line.X1 -= x;
    line.Y1 -= y;
    line.X2 += x;
    line.Y2 += y;
}

/// The marks of a bar that has more than one line, from the outside inwards. What stands nearer to
/// the mark before than is clear moves inwards.
class BarGroup {
public:
    void Begin(double asDrawn, double x, double pen)
    {
        thickX = asDrawn;
        outer = {x - pen / 2, x + pen / 2};
    }

    double Thin(double x, double pen, double clear)
    {
        const double place = Next(x, pen / 2, clear);
        outer = {place - pen / 2, place + pen / 2};
        return place;
    }

    /// Both dots of a repeat stand beside the thin line.
    double Dot(double x, double radius, double clear) const { return Next(x, radius, clear); }

private:
    struct Edges {
        double Left;
        double Right;
    };

    double Next(double x, double half, double clear) const
    {
        return x > thickX ? std::max(x, outer.Right + clear + half)
                          : std::min(x, outer.Left - clear - half);
    }

    double thickX = 0;  // as drawn: the other marks stand on its inner side
    Edges outer{};      // of the mark before
};

class PlainLook {
public:
    PlainLook(const Drawing& drawing, const LookValues& values)
        : dot(values.Dot), units(values.UnitsPerPoint)
    {
        for (const Operation& op : drawing.Operations())
            if (op.Part == Role::StringLine)
                stringPen = PenOf(op);
    }

    void Paint(const Operation& op, std::vector<Stroke>& strokes)
    {
        Stroke stroke{op, PenOf(op), {}};
        if (op.Mode == PenMode::Plain)
            Finish(stroke);
        strokes.push_back(std::move(stroke));
    }

private:
    double PenOf(const Operation& op) const { return std::max(op.Width, 1) * dot; }

    /// Lines close the corners that they make with others.
    void Finish(Stroke& stroke)
    {
        Operation& op = stroke.Drawn;
        const double clear = kPlainBarClear * units;
        switch (op.Part) {
        case Role::StringLine:
        case Role::BlockRest:
            return;
        case Role::ThickBar:
            bar.Begin(op.X1, op.X1, stroke.Pen);
            Lengthen(op, stringPen / 2);
            return;
        case Role::ThinBar:
            op.X1 = op.X2 = bar.Thin(op.X1, stroke.Pen, clear);
            Lengthen(op, stringPen / 2);
            return;
        case Role::RepeatDot:
            op.X1 = bar.Dot(op.X1, op.Radius + stroke.Pen / 2, clear);
            return;
        case Role::Bar:
            Lengthen(op, stringPen / 2);
            return;
        case Role::Beam:
        case Role::SecondBeam:
            Lengthen(op, std::max(stroke.Pen / 2, dot));
            return;
        default:
            if (op.Kind == Shape::Line)
                Lengthen(op, stroke.Pen / 2);
        }
    }

    double dot;    // of the device
    double units;  // of the drawing, to the point
    double stringPen = dot;
    BarGroup bar;
};

/// The distance of the first two strings.
double GapOf(const std::vector<Operation>& operations, double otherwise)
{
    const auto isString = [](const Operation& op) { return op.Part == Role::StringLine; };
    const auto first = std::find_if(operations.begin(), operations.end(), isString);
    if (first == operations.end())
        return otherwise;
    const auto second = std::find_if(std::next(first), operations.end(), isString);
    return second == operations.end() ? otherwise : std::abs(second->Y1 - first->Y1);
}

class EngravedLook {
public:
    EngravedLook(const Drawing& drawing, const LookValues& values, const TextMetrics& textMetrics)
        : operations(drawing.Operations()), metrics(textMetrics), units(values.UnitsPerPoint),
          dot(values.Dot), gap(GapOf(operations, kViewGap * units))
    {
        for (const Operation& op : operations)
            CollectFigure(op);
    }

    std::vector<Stroke> Strokes()
    {
        strokes.reserve(2 * operations.size());
        for (std::size_t i = 0; i < operations.size(); ++i)
            Paint(i);
        return std::move(strokes);
    }

private:
    double Gaps(double count) const { return count * gap; }

    Box InkOf(const Operation& text) const { return InkOfText(text, units, metrics); }

    void CollectFigure(const Operation& op)
    {
        if (op.Part == Role::Number)
            numbers.push_back(InkOf(op));
        if (op.Part == Role::Dot)
            figures.push_back(Grown({op.X1, op.Y1, op.X1, op.Y1}, Gaps(kEngraved.Dot)));
        if (op.Part != Role::Figure && op.Part != Role::Joint)
            return;
        Box box = InkOf(op);
        if (op.Part == Role::Joint && !figures.empty())
            StandBeside(box, figures.back());
        figures.push_back(box);
    }

    /// Two figures that are joined stand in one gap of the string, though a bow is above it.
    void StandBeside(Box& joint, const Box& figure) const
    {
        if (std::abs(joint.Left - figure.Right) > gap)
            return;
        joint.Top = figure.Top;
        joint.Bottom = figure.Bottom;
    }

    void Add(const Operation& op, double pen) { strokes.push_back({op, pen, {}}); }

    void Paint(std::size_t i)
    {
        Operation op = operations[i];
        switch (op.Mode == PenMode::Plain ? op.Part : Role::Other) {
        case Role::StringLine:
            StringLine(op);
            break;
        case Role::Bar:
            Upright(op, op.X1, kEngraved.Bar);
            break;
        case Role::ThickBar:
            ThickBar(i);
            break;
        case Role::ThinBar:
            Upright(op, bar.Thin(op.X1, Gaps(kEngraved.Bar), Gaps(kEngraved.BarClear)),
                    kEngraved.Bar);
            break;
        case Role::RepeatDot:
            RepeatDot(op);
            break;
        case Role::Bracket:
            Bracket(op);
            break;
        case Role::Stem:
            Stem(op);
            break;
        case Role::Beam:
            Beam(op, 0);
            break;
        case Role::SecondBeam:
            Beam(op, Gaps(kEngraved.Beam + kEngraved.BeamClear));
            break;
        case Role::BlockRest:
            Add(op, Gaps(kEngraved.BlockRest));
            break;
        case Role::Tie:
            Tie(op);
            break;
        case Role::Dot:
            op.Radius = Gaps(kEngraved.Dot);
            Add(op, 0);
            break;
        case Role::Fingering:
            Fingering(op);
            break;
        default:
            Add(op, std::max(op.Width, 1) * dot);
        }
    }

    // Strings and brackets

    void StringLine(const Operation& string)
    {
        staffLeft = std::min(string.X1, string.X2);
        staffRight = std::max(string.X1, string.X2);
        Level(string, kEngraved.StringLine, figures);
    }

    /// The pieces of a level line between what stands on it.
    void Level(const Operation& line, double pen, const std::vector<Box>& onIt)
    {
        const double half = Gaps(pen) / 2;
        const Box whole{std::min(line.X1, line.X2), line.Y1 - half, std::max(line.X1, line.X2),
                        line.Y1 + half};
        double from = whole.Left;
        for (const Box& room : RoomsOn(whole, onIt)) {
            if (room.Left - from >= Gaps(kShortestPiece))
                Piece(line, from, room.Left, pen);
            from = std::max(from, room.Right);
        }
        if (from == whole.Left || whole.Right - from >= Gaps(kShortestPiece))
            Piece(line, from, whole.Right, pen);
    }

    std::vector<Box> RoomsOn(const Box& line, const std::vector<Box>& boxes) const
    {
        std::vector<Box> found;
        for (const Box& box : boxes)
            if (const Box room = Grown(box, Gaps(kEngraved.FigureClear)); Overlap(room, line))
                found.push_back(room);
        std::sort(found.begin(), found.end(),
                  [](const Box& a, const Box& b) { return a.Left < b.Left; });
        return found;
    }

    void Piece(Operation line, double from, double to, double pen)
    {
        line.X1 = from;
        line.X2 = to;
        Add(line, Gaps(pen));
    }

    /// The hooks close the corners.
    void Bracket(Operation op)
    {
        if (op.Y1 == op.Y2) {
            Level(op, kEngraved.Bracket, numbers);
            return;
        }
        Lengthen(op, Gaps(kEngraved.Bracket) / 2);
        Add(op, Gaps(kEngraved.Bracket));
    }

    // The bars

    void Upright(Operation line, double x, double pen)
    {
        line.X1 = line.X2 = x;
        Lengthen(line, Gaps(kEngraved.StringLine) / 2);
        Add(line, Gaps(pen));
    }

    /// A thick bar at an end of the staff is flush with the plain bars of other lines. Elsewhere
    /// two of them may meet back to back.
    void ThickBar(std::size_t i)
    {
        const Operation& op = operations[i];
        const double inset = Gaps(kEngraved.ThickBar - kEngraved.Bar) / 2;
        double x = op.X1;
        if (std::abs(x - staffLeft) < Gaps(kEngraved.Bar))
            x += inset;
        else if (std::abs(x - staffRight) < Gaps(kEngraved.Bar))
            x -= inset;
        bar.Begin(op.X1, x, Gaps(kEngraved.ThickBar));
        barTop = op.Y1;
        Upright(op, x, kEngraved.ThickBar);
    }

    /// In the middle between two strings.
    void RepeatDot(Operation op)
    {
        op.Radius = Gaps(kEngraved.RepeatDot);
        op.X1 = bar.Dot(op.X1, op.Radius, Gaps(kEngraved.BarClear));
        op.Y1 = barTop + Gaps(std::floor((op.Y1 - barTop) / gap) + 0.5);
        Add(op, 0);
    }

    // Stems and beams

    /// Begins clear of the figure above it.
    void Stem(Operation stem)
    {
        if (stem.Y2 != stemEnd)
            stems.clear();
        stemEnd = stem.Y2;
        stems.push_back(stem.X1);
        const double half = Gaps(kEngraved.Stem) / 2;
        const Box top{stem.X1 - half, stem.Y1 - gap / 2, stem.X1 + half, stem.Y1 + gap / 2};
        for (const Box& figure : figures)
            if (Overlap(figure, top))
                stem.Y1 = std::max(stem.Y1, figure.Bottom + Gaps(kEngraved.FigureClear));
        Add(stem, Gaps(kEngraved.Stem));
    }

    /// The main beam ends the stems, and a second one lies `rise` above it.
    void Beam(Operation beam, double rise)
    {
        const double left = std::min(beam.X1, beam.X2);
        const double right = std::max(beam.X1, beam.X2);
        if (std::abs(beam.Y1 - stemEnd) < Gaps(kOnStemEnd))
            beam.Y1 = stemEnd - rise - Gaps(kEngraved.Beam) / 2;
        beam.Y2 = beam.Y1;
        const double half = Gaps(kEngraved.Stem) / 2;
        beam.X1 = OnStem(left, -half);
        beam.X2 = OnStem(right, half);
        Add(beam, Gaps(kEngraved.Beam));
    }

    /// The outer edge of the stem that a beam ends at; a stub's other end has none.
    double OnStem(double x, double toEdge) const
    {
        const auto stem = std::find_if(stems.rbegin(), stems.rend(), [&](double stemX) {
            return std::abs(stemX - x) < Gaps(kNearStem);
        });
        return stem == stems.rend() ? x : *stem + toEdge;
    }

    // Ties

    /// Thin at its ends, which are clear of the figures, and thick in its middle.
    void Tie(Operation tie)
    {
        const double step = (tie.End - tie.Start) / (4 * kTiePieces);
        const double middle = (tie.Start + tie.End) / 2;
        while (tie.Start < middle && IsAtFigure(PointOf(tie, tie.Start)))
            tie.Start += step;
        while (tie.End > middle && IsAtFigure(PointOf(tie, tie.End)))
            tie.End -= step;
        Stroke stroke{tie, Gaps(kEngraved.TieEnd), {}};
        stroke.Outline.resize(2 * kTiePieces + 2);
        for (int i = 0; i <= kTiePieces; ++i) {
            const double part = double{1} / kTiePieces * i;
            const double angle = tie.Start + (tie.End - tie.Start) * part;
            const double swell = std::sin(std::acos(-1.0) * part);
            const double half = Gaps(kEngraved.TieMiddle - kEngraved.TieEnd) / 2 * swell;
            const auto at = static_cast<std::size_t>(i);
            stroke.Outline[at] = PointOf(tie, angle, half);
            stroke.Outline[stroke.Outline.size() - 1 - at] = PointOf(tie, angle, -half);
        }
        strokes.push_back(std::move(stroke));
    }

    bool IsAtFigure(const Point& point) const
    {
        const double clear = Gaps(kEngraved.FigureClear);
        return std::any_of(figures.begin(), figures.end(), [&](const Box& figure) {
            return Overlap(Grown(figure, clear), {point.X, point.Y, point.X, point.Y});
        });
    }

    /// Clear of a figure above it.
    void Fingering(Operation letter)
    {
        const Box ink = InkOf(letter);
        const double clear = Gaps(kEngraved.FigureClear);
        double drop = 0;
        for (const Box& figure : figures)
            if (Overlap(Grown(figure, clear), ink) && figure.Top < ink.Top)
                drop = std::max(drop, figure.Bottom + clear - ink.Top);
        letter.Y1 += drop;
        Add(letter, 0);
    }

    const std::vector<Operation>& operations;
    const TextMetrics& metrics;
    double units;  // of the drawing, to the point
    double dot;    // of the device
    double gap;    // between two strings
    std::vector<Box> figures;
    std::vector<Box> numbers;
    std::vector<Stroke> strokes;

    // Of the line
    double staffLeft = std::numeric_limits<double>::quiet_NaN();
    double staffRight = std::numeric_limits<double>::quiet_NaN();
    double stemEnd = std::numeric_limits<double>::quiet_NaN();  // y of the stems' lower ends
    std::vector<double> stems;                                  // their x

    // Of the bar
    BarGroup bar;
    double barTop = 0;
};

}  // namespace

std::vector<Stroke> StrokesOf(const Drawing& drawing, const LookValues& values,
                              const TextMetrics& metrics)
{
    if (values.As == Look::Engraved)
        return EngravedLook(drawing, values, metrics).Strokes();
    PlainLook plain(drawing, values);
    std::vector<Stroke> strokes;
    strokes.reserve(drawing.Operations().size());
    for (const Operation& op : drawing.Operations())
        plain.Paint(op, strokes);
    return strokes;
}

std::optional<Box> InkOf(const std::vector<Stroke>& strokes, double unitsPerPoint,
                         const TextMetrics& metrics)
{
    std::optional<Box> all;
    for (const Stroke& stroke : strokes) {
        const Box box = InkOfStroke(stroke, unitsPerPoint, metrics);
        if (stroke.Drawn.Mode != PenMode::Plain || !(box.Left < box.Right && box.Top < box.Bottom))
            continue;
        all = all ? Box{std::min(all->Left, box.Left), std::min(all->Top, box.Top),
                        std::max(all->Right, box.Right), std::max(all->Bottom, box.Bottom)}
                  : box;
    }
    return all;
}

}  // namespace quillon
