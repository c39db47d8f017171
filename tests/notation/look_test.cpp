#include "notation/look.h"
#include "page_desk.h"

#include <array>

namespace quillon {
namespace {

constexpr double kDot = 15;
constexpr double kGap = 165;

/// A staff of two strings at 1000 and 1165, from 400 to 9400, in twips. In the engraved look, at
/// this gap: strings 11.55, bars 18.15, stems 16.5, beams 41.25, clear of figures 28.05.
class LookTest : public testing::Test {
protected:
    LookTest()
    {
        surface.Font = {"Arial", 10, false};
        surface.Line(400, 1000, 9400, 1000, Role::StringLine);
        surface.Line(400, 1165, 9400, 1165, Role::StringLine);
    }

    std::vector<Stroke> All(Look look)
    {
        return StrokesOf(surface.Picture(), {look, kDot, kTwips}, metrics);
    }

    std::vector<Stroke> Of(Role role, Look look = Look::Engraved)
    {
        std::vector<Stroke> found = All(look);
        std::erase_if(found, [&](const Stroke& stroke) { return stroke.Drawn.Part != role; });
        return found;
    }

    /// Their ends from left to right, "400..9400" each, of the string at y.
    std::string PiecesAt(double y)
    {
        std::string text;
        for (const Stroke& stroke : Of(Role::StringLine))
            if (stroke.Drawn.Y1 == y)
                text += (text.empty() ? "" : " ") + NumberText(stroke.Drawn.X1) + ".." +
                        NumberText(stroke.Drawn.X2);
        return text;
    }

    /// The fixed metrics make its ink 60 by 200 twips, 20 right of `x`, from 80 above the string.
    void Figure(double x, double string, const std::string& text = "3")
    {
        surface.PrintLineAt(x, string - 100, text, Role::Figure);
    }

    void RepeatBar(double thickX, int inwards, int thickPen, int thinPen)
    {
        surface.DrawWidth = thickPen;
        surface.Line(thickX, 1000, thickX, 1165, Role::ThickBar);
        surface.DrawWidth = thinPen;
        surface.Line(thickX + 40 * inwards, 1000, thickX + 40 * inwards, 1165, Role::ThinBar);
        surface.FillSolid = true;
        for (double y : {1060.0, 1100.0})
            surface.Circle(thickX + 90 * inwards, y, 30, Role::RepeatDot);
        surface.DrawWidth = 1;
    }

    FixedTextMetrics metrics;
    DrawSurface surface{metrics, kTwips, 12240, 15840};
};

/// What is free between two marks that stand side by side.
double Between(const Stroke& a, const Stroke& b)
{
    const auto half = [](const Stroke& stroke) {
        return stroke.Pen / 2 + (stroke.Drawn.Kind == Shape::Circle ? stroke.Drawn.Radius : 0);
    };
    return std::abs(a.Drawn.X1 - b.Drawn.X1) - half(a) - half(b);
}

TEST_F(LookTest, APlainStringLineStaysAsItIsDrawn)
{
    const auto strings = Of(Role::StringLine, Look::Plain);
    ASSERT_EQ(strings.size(), 2U);
    EXPECT_EQ(strings[0].Drawn, surface.Picture().Operations()[0]);
    EXPECT_EQ(strings[0].Pen, kDot);
}

TEST_F(LookTest, APlainLineEndsHalfAPenFurther)
{
    surface.DrawWidth = 2;
    surface.Line(1000, 500, 2000, 500);
    const Stroke line = Of(Role::Other, Look::Plain).at(0);
    EXPECT_EQ(line.Drawn.X1, 1000 - kDot);
    EXPECT_EQ(line.Drawn.X2, 2000 + kDot);
    EXPECT_EQ(line.Pen, 2 * kDot);
}

TEST_F(LookTest, APlainLineWithoutLengthStaysWhereItIs)
{
    surface.Line(1000, 500, 1000, 500);
    EXPECT_EQ(Of(Role::Other, Look::Plain).at(0).Drawn, surface.Picture().Operations().back());
}

TEST_F(LookTest, APlainBeamOfOneDotEndsAWholeDotFurther)
{
    surface.Line(2000, 500, 1000, 500, Role::Beam);
    const Operation beam = Of(Role::Beam, Look::Plain).at(0).Drawn;
    EXPECT_EQ(beam.X1, 2000 + kDot);
    EXPECT_EQ(beam.X2, 1000 - kDot);
}

TEST_F(LookTest, ABarClosesTheCornersOfTheStaff)
{
    surface.DrawWidth = 2;
    surface.Line(9400, 1000, 9400, 1165, Role::Bar);
    for (const Look look : {Look::Plain, Look::Engraved}) {
        const double half = Of(Role::StringLine, look).at(0).Pen / 2;
        const Operation bar = Of(Role::Bar, look).at(0).Drawn;
        EXPECT_DOUBLE_EQ(bar.Y1, 1000 - half);
        EXPECT_DOUBLE_EQ(bar.Y2, 1165 + half);
        EXPECT_EQ(bar.X1, 9400);
    }
}

TEST_F(LookTest, TheMarksOfARepeatBarStayApart)
{
    for (const Look look : {Look::Plain, Look::Engraved})
        for (const int inwards : {1, -1}) {
            surface = DrawSurface(metrics, kTwips, 12240, 15840);
            surface.Line(400, 1000, 9400, 1000, Role::StringLine);
            surface.Line(400, 1165, 9400, 1165, Role::StringLine);
            RepeatBar(inwards == 1 ? 400 : 9400, inwards, 3, 2);
            const Stroke thick = Of(Role::ThickBar, look).at(0);
            const Stroke thin = Of(Role::ThinBar, look).at(0);
            EXPECT_GT(Between(thick, thin), 1.4 * kDot);
            EXPECT_GT(thick.Pen, 1.4 * thin.Pen);
            const auto dots = Of(Role::RepeatDot, look);
            ASSERT_EQ(dots.size(), 2U);
            for (const Stroke& dot : dots)
                EXPECT_GT(Between(thin, dot), 1.4 * kDot);
            EXPECT_GT((dots[0].Drawn.X1 - thick.Drawn.X1) * inwards, 0);
        }
}

TEST_F(LookTest, MarksThatAreApartStayWhereTheyAreDrawn)
{
    RepeatBar(5000, 1, 1, 1);
    EXPECT_EQ(Of(Role::ThinBar, Look::Plain).at(0).Drawn.X1, 5040);
    surface.Line(7000, 1000, 7000, 1165, Role::ThickBar);
    surface.Line(6900, 1000, 6900, 1165, Role::ThinBar);
    EXPECT_EQ(Of(Role::ThinBar, Look::Engraved).at(1).Drawn.X1, 6900);
}

TEST_F(LookTest, AThickBarIsFlushWithTheStaffsEnd)
{
    RepeatBar(9400, -1, 3, 2);
    surface.Line(9400, 1000, 9400, 1165, Role::Bar);
    const Stroke thick = Of(Role::ThickBar).at(0);
    const Stroke plain = Of(Role::Bar).at(0);
    EXPECT_DOUBLE_EQ(thick.Drawn.X1 + thick.Pen / 2, plain.Drawn.X1 + plain.Pen / 2);
}

TEST_F(LookTest, TwoThickBarsThatMeetAreOne)
{
    RepeatBar(5000, -1, 3, 2);
    RepeatBar(5000, 1, 3, 2);
    const auto thick = Of(Role::ThickBar);
    EXPECT_EQ(thick.at(0).Drawn.X1, thick.at(1).Drawn.X1);
}

TEST_F(LookTest, EngravedDotsStandBetweenTheStrings)
{
    RepeatBar(5000, 1, 3, 2);
    for (const Stroke& dot : Of(Role::RepeatDot))
        EXPECT_EQ(dot.Drawn.Y1, 1000 + kGap / 2);
}

TEST_F(LookTest, AnEngravedStringLeavesRoomForItsFigures)
{
    Figure(2000, 1000);
    Figure(3000, 1000);
    Figure(5000, 1165);
    EXPECT_EQ(PiecesAt(1000), "400..1991.95 2108.05..2991.95 3108.05..9400");
    EXPECT_EQ(PiecesAt(1165), "400..4991.95 5108.05..9400");
}

TEST_F(LookTest, FiguresAreInAnyOrder)
{
    Figure(3000, 1000);
    Figure(2000, 1000);
    EXPECT_EQ(PiecesAt(1000), "400..1991.95 2108.05..2991.95 3108.05..9400");
}

TEST_F(LookTest, FiguresThatStandCloseShareAGap)
{
    Figure(2000, 1000, "12");
    Figure(2130, 1000);
    Figure(2270, 1000, "1");
    EXPECT_EQ(PiecesAt(1000), "400..1991.95 2378.05..9400");
}

TEST_F(LookTest, AFigureAtTheStaffsEndLeavesNoPiece)
{
    Figure(9380, 1000);
    EXPECT_EQ(PiecesAt(1000), "400..9371.95");
}

TEST_F(LookTest, JoinedFiguresStandInOneGap)
{
    Figure(2000, 1000);
    surface.PrintLineAt(2100, 700, "-", Role::Joint);
    Figure(2200, 1000);
    EXPECT_EQ(PiecesAt(1000), "400..1991.95 2308.05..9400");
}

TEST_F(LookTest, WhatJoinsFiguresLeavesTheStringBelowWhole)
{
    Figure(2000, 1000);
    surface.PrintLineAt(2100, 900, "=", Role::Joint);
    Figure(2200, 1000);
    EXPECT_EQ(PiecesAt(1165), "400..9400");
}

TEST_F(LookTest, AnEngravedTieEndsClearOfTheFigures)
{
    Figure(2000, 1000, "12");
    Figure(3000, 1000);
    surface.Arc(2600, 1000, 450, 0, 3.25, 0.5, Role::Tie);
    const Stroke tie = Of(Role::Tie).at(0);
    for (const Point& point : tie.Outline)
        EXPECT_TRUE(point.Y < 920 || (point.X > 2180 + tie.Pen / 2 && point.X < 3020 - tie.Pen / 2))
            << point.X << " " << point.Y;
}

TEST_F(LookTest, APlainStringRunsThroughItsFigures)
{
    Figure(2000, 1000);
    EXPECT_EQ(Of(Role::StringLine, Look::Plain).size(), 2U);
}

TEST_F(LookTest, AnEngravedBracketLeavesRoomForItsNumber)
{
    surface.Line(2000, 1600, 2000, 1700, Role::Bracket);
    surface.Line(2000, 1700, 2500, 1700, Role::Bracket);
    surface.Line(2620, 1700, 3000, 1700, Role::Bracket);
    surface.PrintLineAt(2500, 1590, "3", Role::Number);
    const auto lines = Of(Role::Bracket);
    ASSERT_EQ(lines.size(), 3U);
    const double half = lines[0].Pen / 2;
    EXPECT_DOUBLE_EQ(lines[0].Drawn.Y2, 1700 + half);
    EXPECT_EQ(lines[1].Drawn.X1, 2000);
    EXPECT_DOUBLE_EQ(lines[1].Drawn.X2, 2520 - 0.17 * kGap);
    EXPECT_EQ(lines[2].Drawn.X1, 2620);
    EXPECT_EQ(lines[2].Drawn.X2, 3000);
}

TEST_F(LookTest, AnEngravedStemBeginsClearOfTheFigureAboveIt)
{
    Figure(2000, 1165);
    surface.Line(2040, 1230, 2040, 1500, Role::Stem);
    const Operation stem = Of(Role::Stem).at(0).Drawn;
    EXPECT_DOUBLE_EQ(stem.Y1, 1165 + 120 + 0.17 * kGap);
    EXPECT_EQ(stem.Y2, 1500);
}

TEST_F(LookTest, AnEngravedBeamEndsOnItsStems)
{
    surface.Line(2040, 1230, 2040, 1500, Role::Stem);
    surface.Line(3040, 1230, 3040, 1500, Role::Stem);
    surface.Line(2039, 1500, 3040, 1500, Role::Beam);
    surface.Line(2039, 1450, 3040, 1450, Role::SecondBeam);
    const Stroke stem = Of(Role::Stem).at(0);
    const Stroke beam = Of(Role::Beam).at(0);
    const Stroke second = Of(Role::SecondBeam).at(0);
    for (const Stroke& each : {beam, second}) {
        EXPECT_DOUBLE_EQ(each.Drawn.X1, 2040 - stem.Pen / 2);
        EXPECT_DOUBLE_EQ(each.Drawn.X2, 3040 + stem.Pen / 2);
        EXPECT_EQ(each.Drawn.Y1, each.Drawn.Y2);
        EXPECT_GE(each.Pen, 2.5 * Of(Role::StringLine).at(0).Pen);
    }
    EXPECT_DOUBLE_EQ(beam.Drawn.Y1 + beam.Pen / 2, stem.Drawn.Y2);
    const double clear = beam.Drawn.Y1 - second.Drawn.Y1 - beam.Pen;
    EXPECT_GT(clear, beam.Pen / 2);
    EXPECT_GT(clear, kDot);
}

TEST_F(LookTest, StubsLieAtTheHeightOfTheSecondBeam)
{
    surface.Line(2040, 1230, 2040, 1500, Role::Stem);
    surface.Line(1040, 1450, 2040, 1450, Role::SecondBeam);
    surface.Line(2040, 1420, 2300, 1420, Role::SecondBeam);
    const auto beams = Of(Role::SecondBeam);
    EXPECT_EQ(beams.at(0).Drawn.Y1, beams.at(1).Drawn.Y1);
    EXPECT_EQ(beams.at(1).Drawn.X2, 2300);
}

TEST_F(LookTest, ABeamFarFromAnyStemStaysAtItsHeight)
{
    surface.Line(2040, 1230, 2040, 1500, Role::Stem);
    surface.Line(1040, 4000, 2040, 4000, Role::Beam);
    EXPECT_EQ(Of(Role::Beam).at(0).Drawn.Y1, 4000);
}

TEST_F(LookTest, AnEngravedTieIsThinAtItsEndsAndThickInItsMiddle)
{
    surface.Arc(3000, 1000, 400, 0, 3, 0.5, Role::Tie);
    const Stroke tie = Of(Role::Tie).at(0);
    const auto& outline = tie.Outline;
    ASSERT_FALSE(outline.empty());
    const auto across = [&](std::size_t i) {
        const Point a = outline[i];
        const Point b = outline[outline.size() - 1 - i];
        return std::hypot(a.X - b.X, a.Y - b.Y) + tie.Pen;
    };
    const std::size_t middle = outline.size() / 4;
    EXPECT_NEAR(across(0), 0.05 * kGap, 0.01);
    EXPECT_NEAR(across(middle), 0.15 * kGap, 0.5);
    const std::size_t right = outline.size() / 8;  // the outer edge comes first
    EXPECT_GT(outline[right].X, outline[outline.size() - 1 - right].X);
    EXPECT_LT(outline[right].Y, outline[outline.size() - 1 - right].Y);
}

TEST_F(LookTest, ALetterUnderAFigureMovesClearOfIt)
{
    Figure(2000, 1165);  // its ink ends at 1285
    surface.PrintLineAt(2060, 1250, "i", Role::Fingering);
    surface.PrintLineAt(4000, 1250, "m", Role::Fingering);
    const auto letters = Of(Role::Fingering);
    EXPECT_DOUBLE_EQ(letters.at(0).Drawn.Y1, 1285 + 0.17 * kGap - 20);
    EXPECT_EQ(letters.at(1).Drawn.Y1, 1250);
}

TEST_F(LookTest, WhatCanBeDrawnAwayAgainStaysAsItIs)
{
    surface.DrawMode = PenMode::Xor;
    surface.Line(1000, 500, 1000, 620);
    surface.DrawMode = PenMode::Plain;
    for (const Look look : {Look::Plain, Look::Engraved}) {
        const Stroke caret = Of(Role::Other, look).at(0);
        EXPECT_EQ(caret.Drawn, surface.Picture().Operations().back());
        EXPECT_EQ(caret.Pen, kDot);
    }
}

TEST_F(LookTest, ADrawingWithoutStringsHasTheGapOfTheMeasureView)
{
    DrawSurface staff(metrics, kPoints, 360, 150);
    staff.Line(51, 48, 51, 116, Role::Stem);
    const auto strokes = StrokesOf(staff.Picture(), {Look::Engraved, 0.75, kPoints}, metrics);
    EXPECT_DOUBLE_EQ(strokes.at(0).Pen, 0.8);
}

TEST_F(LookTest, EveryRoleHasAPenInEveryLook)
{
    for (int role = 0; role <= static_cast<int>(Role::Fingering); ++role)
        surface.Line(2000, 3000, 2500, 3000, static_cast<Role>(role));
    for (const Look look : {Look::Plain, Look::Engraved})
        for (const Stroke& stroke : All(look)) {
            const Role role = stroke.Drawn.Part;
            EXPECT_TRUE(stroke.Pen > 0 || role == Role::RepeatDot || role >= Role::Figure)
                << static_cast<int>(role);
        }
}

TEST_F(LookTest, AFigureThatReachesOverAStemsEdgeOnlyIsAboveItToo)
{
    Figure(2000, 1165);  // its ink is from 2020 to 2080
    for (double x : {2016.0, 2084.0})
        surface.Line(x, 1230, x, 1500, Role::Stem);
    for (const Stroke& stem : Of(Role::Stem))
        EXPECT_DOUBLE_EQ(stem.Drawn.Y1, 1165 + 120 + 0.17 * kGap);
}

TEST_F(LookTest, LinesCoverTheirPensWidthBesideThem)
{
    const auto ink = [&](double x2, double y2) {
        Stroke stroke;
        stroke.Drawn.X1 = 100;
        stroke.Drawn.Y1 = 200;
        stroke.Drawn.X2 = x2;
        stroke.Drawn.Y2 = y2;
        stroke.Pen = 20;
        const Box box = InkOf({stroke}, kTwips, metrics).value();
        return std::array{box.Left, box.Top, box.Right, box.Bottom};
    };
    EXPECT_EQ(ink(100, 500), (std::array{90.0, 200.0, 110.0, 500.0}));
    EXPECT_EQ(ink(400, 200), (std::array{100.0, 190.0, 400.0, 210.0}));
    EXPECT_EQ(ink(400, 500), (std::array{90.0, 190.0, 410.0, 510.0}));
}

}  // namespace
}  // namespace quillon
