#include "notation/look.h"
#include "page_desk.h"

#include <array>
#include <cmath>
#include <numbers>

namespace quillon {
namespace {

constexpr double kDot = 15;
constexpr double kGap = 165;

/// The operation as a log shows it, where it is painted, and the pen.
std::string Painted(const Stroke& stroke)
{
    Drawing alone;
    alone.Add(stroke.Drawn);
    std::string log = alone.Log();
    log.pop_back();
    std::ostringstream text;
    text << log << " pen=" << stroke.Pen << '\n';
    return text.str();
}

std::string Painted(const std::vector<Stroke>& strokes)
{
    std::string text;
    for (const Stroke& stroke : strokes)
        text += Painted(stroke);
    return text;
}

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

    /// Strings at 1000, 1100 and 1600. At a gap of 100 the distances of the engraved look are
    /// whole twips: strings 7, bars 11 and 33, clear between them 15, clear of figures 17, and 25
    /// for the shortest piece of a string.
    void SpreadStringsBy100()
    {
        surface = DrawSurface(metrics, kTwips, 12240, 15840);
        surface.Font = {"Arial", 10, false};
        for (const double y : {1000, 1100, 1600})
            surface.Line(400, y, 9400, y, Role::StringLine);
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

TEST_F(LookTest, AShortPlainLineEndsAsFarFurtherAsALongOne)
{
    surface.Line(1000, 500, 1000, 500.5);
    const Operation line = Of(Role::Other, Look::Plain).at(0).Drawn;
    EXPECT_EQ(line.Y1, 500 - kDot / 2);
    EXPECT_EQ(line.Y2, 500.5 + kDot / 2);
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

TEST_F(LookTest, ThePlainLookOfABarOfEveryKind)
{
    surface.DrawWidth = 2;
    surface.Line(400, 1330, 9400, 1330, Role::StringLine);
    RepeatBar(400, 1, 3, 2);
    surface.DrawWidth = 2;
    surface.Line(5000, 1000, 5000, 1165, Role::Bar);
    RepeatBar(9400, -1, 3, 2);
    RepeatBar(7000, 1, 1, 1);
    // The last string's pen, 30, closes the corners. 22.5 is clear beside a line.
    EXPECT_EQ(Painted(Of(Role::ThickBar, Look::Plain)), "line 400 985 400 1180 w=3 pen=45\n"
                                                        "line 9400 985 9400 1180 w=3 pen=45\n"
                                                        "line 7000 985 7000 1180 w=1 pen=15\n");
    EXPECT_EQ(Painted(Of(Role::ThinBar, Look::Plain)), "line 460 985 460 1180 w=2 pen=30\n"
                                                       "line 9340 985 9340 1180 w=2 pen=30\n"
                                                       "line 7040 985 7040 1180 w=1 pen=15\n");
    EXPECT_EQ(Painted(Of(Role::Bar, Look::Plain)), "line 5000 985 5000 1180 w=2 pen=30\n");
    const std::string dots = Painted(Of(Role::RepeatDot, Look::Plain));
    EXPECT_EQ(dots, "circle 542.5 1060 30 w=2 fill=solid pen=30\n"
                    "circle 542.5 1100 30 w=2 fill=solid pen=30\n"
                    "circle 9257.5 1060 30 w=2 fill=solid pen=30\n"
                    "circle 9257.5 1100 30 w=2 fill=solid pen=30\n"
                    "circle 7107.5 1060 30 w=1 fill=solid pen=15\n"
                    "circle 7107.5 1100 30 w=1 fill=solid pen=15\n");
}

TEST_F(LookTest, ThePlainLookOfAllElse)
{
    surface.DrawWidth = 2;
    surface.Line(1000, 2000, 1300, 2400, Role::Bracket);
    surface.Line(1300, 2400, 1000, 2000, Role::Stem);
    surface.Line(2000, 2000, 2300, 2000, Role::BlockRest);
    surface.Line(3000, 2000, 3300, 2000, Role::Beam);
    surface.DrawWidth = 3;
    surface.Line(3300, 2100, 3000, 2100, Role::SecondBeam);
    surface.DrawWidth = 0;
    surface.Line(4000, 2000, 4000, 2300, Role::Stem);
    surface.Box(5000, 2000, 5300, 2300);
    surface.Circle(6000, 2000, 20, Role::Dot);
    surface.Arc(7000, 2000, 300, 0, 3, 0.5, Role::Tie);
    Figure(8000, 2100);
    std::vector<Stroke> strokes = All(Look::Plain);
    strokes.erase(strokes.begin(), strokes.begin() + 2);
    EXPECT_EQ(Painted(strokes), "line 991 1988 1309 2412 w=2 pen=30\n"
                                "line 1309 2412 991 1988 w=2 pen=30\n"
                                "line 2000 2000 2300 2000 w=2 pen=30\n"
                                "line 2985 2000 3315 2000 w=2 pen=30\n"
                                "line 3322.5 2100 2977.5 2100 w=3 pen=45\n"
                                "line 4000 1992.5 4000 2307.5 w=0 pen=15\n"
                                "box 5000 2000 5300 2300 w=0 pen=15\n"
                                "circle 6000 2000 20 w=0 fill=none pen=15\n"
                                "arc 7000 2000 300 0 3 0.5 w=0 pen=15\n"
                                "text 8000 2000 size=10 font=\"Arial\" bold=0 \"3\" pen=15\n");
}

TEST_F(LookTest, TheEngravedLookOfABarOfEveryKind)
{
    SpreadStringsBy100();
    RepeatBar(400, 1, 3, 2);
    surface.Line(5000, 1000, 5000, 1165, Role::Bar);
    RepeatBar(9400, -1, 3, 2);
    RepeatBar(7000, 1, 3, 2);
    EXPECT_EQ(Painted(Of(Role::ThickBar)), "line 411 996.5 411 1168.5 w=3 pen=33\n"
                                           "line 9389 996.5 9389 1168.5 w=3 pen=33\n"
                                           "line 7000 996.5 7000 1168.5 w=3 pen=33\n");
    EXPECT_EQ(Painted(Of(Role::ThinBar)), "line 448 996.5 448 1168.5 w=2 pen=11\n"
                                          "line 9352 996.5 9352 1168.5 w=2 pen=11\n"
                                          "line 7040 996.5 7040 1168.5 w=2 pen=11\n");
    EXPECT_EQ(Painted(Of(Role::Bar)), "line 5000 996.5 5000 1168.5 w=1 pen=11\n");
    EXPECT_EQ(Painted(Of(Role::RepeatDot)), "circle 490 1050 15 w=2 fill=solid pen=0\n"
                                            "circle 490 1150 15 w=2 fill=solid pen=0\n"
                                            "circle 9310 1050 15 w=2 fill=solid pen=0\n"
                                            "circle 9310 1150 15 w=2 fill=solid pen=0\n"
                                            "circle 7090 1050 15 w=2 fill=solid pen=0\n"
                                            "circle 7090 1150 15 w=2 fill=solid pen=0\n");
}

TEST_F(LookTest, AnEngravedDotMovesClearOfTheThinBar)
{
    SpreadStringsBy100();
    RepeatBar(400, 1, 3, 2);
    surface.Circle(480, 1060, 30, Role::RepeatDot);
    RepeatBar(9400, -1, 3, 2);
    surface.Circle(9320, 1060, 30, Role::RepeatDot);
    const auto dots = Of(Role::RepeatDot);
    EXPECT_EQ(dots.at(2).Drawn.X1, 448 + 5.5 + 15 + 15);
    EXPECT_EQ(dots.at(5).Drawn.X1, 9352 - 5.5 - 15 - 15);
}

TEST_F(LookTest, TheEngravedLookOfAllElse)
{
    surface.DrawWidth = 2;
    surface.Line(1000, 2000, 1000, 2400, Role::Bracket);
    surface.Line(1300, 2400, 1000, 2400, Role::Bracket);
    surface.Line(1500, 2400, 1500, 2000, Role::Stem);
    surface.Line(2000, 2000, 2300, 2000, Role::BlockRest);
    surface.Circle(6000, 2000, 20, Role::Dot);
    surface.Line(6500, 2000, 6500, 2300);
    surface.DrawWidth = 0;
    surface.Box(5000, 2000, 5300, 2300);
    Figure(8000, 2100);
    surface.PrintLineAt(8500, 2100, "i", Role::Fingering);
    std::vector<Stroke> strokes = All(Look::Engraved);
    strokes.erase(strokes.begin(), strokes.begin() + 2);
    EXPECT_EQ(Painted(strokes), "line 1000 1993.4 1000 2406.6 w=2 pen=13.2\n"
                                "line 1000 2400 1300 2400 w=2 pen=13.2\n"
                                "line 1500 2400 1500 2000 w=2 pen=16.5\n"
                                "line 2000 2000 2300 2000 w=2 pen=74.25\n"
                                "circle 6000 2000 23.1 w=2 fill=none pen=0\n"
                                "line 6500 2000 6500 2300 w=2 pen=30\n"
                                "box 5000 2000 5300 2300 w=0 pen=15\n"
                                "text 8000 2000 size=10 font=\"Arial\" bold=0 \"3\" pen=15\n"
                                "text 8500 2100 size=10 font=\"Arial\" bold=0 \"i\" pen=0\n");
}

TEST_F(LookTest, AThickBarNearAnEndOfTheStaffStandsInsideIt)
{
    const auto placed = [&](double x) {
        surface.Line(x, 1000, x, 1165, Role::ThickBar);
        return Of(Role::ThickBar).back().Drawn.X1;
    };
    EXPECT_EQ(placed(382), 382 + 18.15);
    EXPECT_EQ(placed(381), 381);
    EXPECT_EQ(placed(418), 418 + 18.15);
    EXPECT_EQ(placed(419), 419);
    EXPECT_EQ(placed(9382), 9382 - 18.15);
    EXPECT_EQ(placed(9381), 9381);
    EXPECT_EQ(placed(9418), 9418 - 18.15);
    EXPECT_EQ(placed(9419), 9419);
    SpreadStringsBy100();
    EXPECT_EQ(placed(411), 411) << "just as far away as a bar is wide";
    EXPECT_EQ(placed(9389), 9389);
}

TEST_F(LookTest, TheEndsOfAStaffDrawnFromTheRightAreThoseOfItsLastString)
{
    surface.Line(8000, 1330, 600, 1330, Role::StringLine);
    surface.Line(600, 1000, 600, 1330, Role::ThickBar);
    surface.Line(8000, 1000, 8000, 1330, Role::ThickBar);
    const auto thick = Of(Role::ThickBar);
    EXPECT_EQ(thick.at(0).Drawn.X1, 618.15);
    EXPECT_EQ(thick.at(1).Drawn.X1, 7981.85);
}

TEST_F(LookTest, EachEngravedDotStandsInTheGapThatItIsDrawnIn)
{
    surface.Line(400, 1000, 400, 1660, Role::ThickBar);
    for (double y : {1001, 1164, 1166, 1329, 1331})
        surface.Circle(600, y, 30, Role::RepeatDot);
    std::vector<double> ys;
    for (const Stroke& dot : Of(Role::RepeatDot))
        ys.push_back(dot.Drawn.Y1);
    EXPECT_EQ(ys, (std::vector{1082.5, 1082.5, 1247.5, 1247.5, 1412.5}));
}

TEST_F(LookTest, DotsWithoutABarStandInGapsCountedFromTheTop)
{
    SpreadStringsBy100();
    surface.Circle(600, 1060, 30, Role::RepeatDot);
    const Operation dot = Of(Role::RepeatDot).at(0).Drawn;
    EXPECT_EQ(dot.X1, 600);
    EXPECT_EQ(dot.Y1, 1050);
}

TEST_F(LookTest, TheShortestPieceOfAStringIsAQuarterOfAGap)
{
    SpreadStringsBy100();
    Figure(422, 1000);   // its ink is from 442 on
    Figure(9278, 1000);  // up to 9358
    Figure(421, 1600);
    Figure(9279, 1600);
    EXPECT_EQ(PiecesAt(1000), "400..425 519..9281 9375..9400");
    EXPECT_EQ(PiecesAt(1600), "518..9282");
}

TEST_F(LookTest, TheShortestPieceBetweenTwoFiguresIsAQuarterOfAGap)
{
    SpreadStringsBy100();
    Figure(2000, 1000);  // leaves room up to 2097
    Figure(2119, 1000);  // from 2122 on
    Figure(2000, 1600);
    Figure(2118, 1600);
    EXPECT_EQ(PiecesAt(1000), "400..2003 2097..2122 2216..9400");
    EXPECT_EQ(PiecesAt(1600), "400..2003 2215..9400");
}

TEST_F(LookTest, ALineThatNothingStandsOnIsDrawnHoweverShort)
{
    surface.Line(2010, 1700, 2000, 1700, Role::Bracket);
    const auto lines = Of(Role::Bracket);
    ASSERT_EQ(lines.size(), 1U);
    EXPECT_EQ(lines[0].Drawn.X1, 2000);
    EXPECT_EQ(lines[0].Drawn.X2, 2010);
}

TEST_F(LookTest, AFigureOverAnotherLeavesTheRoomOfTheWiderOne)
{
    Figure(2000, 1000, "1234");
    Figure(2050, 1000);
    EXPECT_EQ(PiecesAt(1000), "400..1991.95 2408.05..9400");
}

TEST_F(LookTest, AFigureNeedsRoomOnTheStringsThatItIsNearTo)
{
    SpreadStringsBy100();
    // The ink is 200 high from 20 on, 17 is clear, and half of a string's pen is 3.5.
    surface.PrintLineAt(2000, 1600 + 20 - 20, "3", Role::Figure);
    surface.PrintLineAt(3000, 1600 + 21 - 20, "3", Role::Figure);
    surface.PrintLineAt(4000, 1600 - 20 - 220, "3", Role::Figure);
    surface.PrintLineAt(5000, 1600 - 21 - 220, "3", Role::Figure);
    EXPECT_EQ(PiecesAt(1600), "400..2003 2097..4003 4097..9400");
}

TEST_F(LookTest, ADotBehindAFigureLeavesRoomOnTheString)
{
    SpreadStringsBy100();
    surface.Circle(2000, 1000, 20, Role::Dot);
    EXPECT_EQ(PiecesAt(1000), "400..1969 2031..9400");  // its radius is 14
    EXPECT_EQ(PiecesAt(1100), "400..9400");
}

TEST_F(LookTest, WhatJoinsFiguresIsAsHighAsTheFigureBeforeIt)
{
    Figure(2000, 1000);
    surface.PrintLineAt(2100, 1000, "-", Role::Joint);  // by itself down to the string below
    Figure(3000, 1165);
    surface.PrintLineAt(3100, 850, "-", Role::Joint);  // by itself up to the string above
    EXPECT_EQ(PiecesAt(1000), "400..1991.95 2208.05..9400");
    EXPECT_EQ(PiecesAt(1165), "400..2991.95 3208.05..9400");
}

TEST_F(LookTest, WhatIsMoreThanAGapAwayFromTheFigureJoinsNothing)
{
    Figure(2000, 1000);                                // its ink ends at 2080
    surface.PrintLineAt(2225, 700, "-", Role::Joint);  // begins at 2245
    EXPECT_EQ(PiecesAt(1000), "400..1991.95 2108.05..2216.95 2333.05..9400");
    surface.PrintLineAt(2451, 700, "-", Role::Joint);  // 166 after the one before it
    EXPECT_EQ(PiecesAt(1000), "400..1991.95 2108.05..2216.95 2333.05..9400");
}

TEST_F(LookTest, WhatJoinsNothingAtAllStandsForItself)
{
    surface.PrintLineAt(2000, 900, "-", Role::Joint);
    EXPECT_EQ(PiecesAt(1000), "400..1991.95 2108.05..9400");
}

TEST_F(LookTest, TheFiguresOfAChordLeaveRoomOnTheirOwnStrings)
{
    Figure(2000, 1000);
    Figure(2000, 1165, "12");
    EXPECT_EQ(PiecesAt(1000), "400..1991.95 2108.05..9400");
    EXPECT_EQ(PiecesAt(1165), "400..1991.95 2208.05..9400");
}

TEST_F(LookTest, WhatOnlyTouchesTheRoomOfAFigureIsClearOfIt)
{
    SpreadStringsBy100();
    Figure(2000, 1100);  // its ink is from 2020 to 2080 and from 1020 to 1220
    for (const double x : {2015, 2016, 2084, 2085})
        surface.Line(x, 1150, x, 1500, Role::Stem);
    for (const double y : {970, 971})
        surface.Line(2050, y, 2050, 1500, Role::Stem);
    std::vector<double> tops;
    for (const Stroke& stem : Of(Role::Stem))
        tops.push_back(stem.Drawn.Y1);
    EXPECT_EQ(tops, (std::vector<double>{1150, 1237, 1237, 1150, 970, 1237}));
    for (const double y : {1236, 1237})
        surface.Arc(2050, y, 20, 0, 3, 0, Role::Tie);
    const auto ties = Of(Role::Tie);
    EXPECT_EQ(ties.at(0).Drawn.Start, 1.5);
    EXPECT_EQ(ties.at(1).Drawn.Start, 0);
}

TEST_F(LookTest, AStemStartsWhereItIsDrawnIfNoFigureIsNear)
{
    Figure(2000, 1165);  // ends at 1285, and half a gap is 82.5
    for (const double y : {1367.0, 1368.0})
        surface.Line(2050, y, 2050, 1800, Role::Stem);
    Figure(3000, 1165);  // begins at 1085
    for (const double y : {1002.0, 1003.0})
        surface.Line(3050, y, 3050, 1800, Role::Stem);
    // A stem that begins under the room of its figure does not grow.
    EXPECT_EQ(Painted(Of(Role::Stem)), "line 2050 1367 2050 1800 w=1 pen=16.5\n"
                                       "line 2050 1368 2050 1800 w=1 pen=16.5\n"
                                       "line 3050 1002 3050 1800 w=1 pen=16.5\n"
                                       "line 3050 1313.05 3050 1800 w=1 pen=16.5\n");
}

TEST_F(LookTest, ABeamIsAtTheStemsEndIfItIsDrawnLessThanSevenTenthsOfAGapFromIt)
{
    surface.Line(2040, 1230, 2040, 1500, Role::Stem);
    for (const double y : {1500 - 116, 1500 - 115, 1500 + 115, 1500 + 116})
        surface.Line(1040, y, 3040, y, Role::Beam);
    EXPECT_EQ(Painted(Of(Role::Beam)), "line 1040 1384 3040 1384 w=1 pen=41.25\n"
                                       "line 1040 1479.38 3040 1479.38 w=1 pen=41.25\n"
                                       "line 1040 1479.38 3040 1479.38 w=1 pen=41.25\n"
                                       "line 1040 1616 3040 1616 w=1 pen=41.25\n");
    surface.Line(1040, 1450, 3040, 1450, Role::SecondBeam);
    EXPECT_EQ(Of(Role::SecondBeam).at(0).Drawn.Y1, 1500 - 1.5 * 41.25 - 24.75);
}

TEST_F(LookTest, ABeamJustSevenTenthsOfAGapFromTheStemsEndStaysWhereItIs)
{
    SpreadStringsBy100();
    surface.Line(2040, 1230, 2040, 1500, Role::Stem);
    for (const double y : {1430, 1431})
        surface.Line(1040, y, 3040, y, Role::Beam);
    EXPECT_EQ(Of(Role::Beam).at(0).Drawn.Y1, 1430);
    EXPECT_EQ(Of(Role::Beam).at(1).Drawn.Y1, 1487.5);
}

TEST_F(LookTest, ABeamEndsOnAStemThatIsLessThanAFifthOfAGapAway)
{
    for (const double x : {2000, 2050, 3000})
        surface.Line(x, 1230, x, 1500, Role::Stem);
    const auto ends = [&](double x1, double x2) {
        surface.Line(x1, 1500, x2, 1500, Role::Beam);
        const Operation beam = Of(Role::Beam).back().Drawn;
        return std::pair(beam.X1, beam.X2);
    };
    EXPECT_EQ(ends(1968, 3032), std::pair(2000 - 8.25, 3000 + 8.25));
    EXPECT_EQ(ends(3032, 1968), std::pair(2000 - 8.25, 3000 + 8.25)) << "from right to left";
    EXPECT_EQ(ends(1967, 3033), std::pair(1967.0, 3033.0));
    EXPECT_EQ(ends(2025, 2500), std::pair(2050 - 8.25, 2500.0)) << "on the later of two";
}

TEST_F(LookTest, ABeamDoesNotEndOnTheStemsOfTheLineBefore)
{
    surface.Line(2000, 1230, 2000, 1500, Role::Stem);
    surface.Line(2010, 3230, 2010, 3500, Role::Stem);
    surface.Line(3000, 3230, 3000, 3500, Role::Stem);
    surface.Line(1980, 3500, 3000, 3500, Role::Beam);
    EXPECT_EQ(Of(Role::Beam).at(0).Drawn.X1, 2010 - 8.25);
    surface.Line(1970, 3500, 3000, 3500, Role::Beam);
    EXPECT_EQ(Of(Role::Beam).at(1).Drawn.X1, 1970);
}

TEST_F(LookTest, TheOutlineOfATieGoesRoundIt)
{
    surface.Arc(3000, 1000, 400, 0, std::numbers::pi, 0.5, Role::Tie);
    const Stroke tie = Of(Role::Tie).at(0);
    EXPECT_DOUBLE_EQ(tie.Pen, 0.05 * kGap);
    ASSERT_EQ(tie.Outline.size(), 34U);
    const double bulge = 0.1 * kGap / 2;
    const auto at = [&](std::size_t i) { return tie.Outline[i]; };
    EXPECT_NEAR(at(0).X, 3400, 1e-6);
    EXPECT_NEAR(at(0).Y, 1000, 1e-6);
    EXPECT_NEAR(at(8).X, 3000, 1e-6);
    EXPECT_NEAR(at(8).Y, 800 - bulge, 1e-6);
    EXPECT_NEAR(at(16).X, 2600, 1e-6);
    EXPECT_NEAR(at(16).Y, 1000, 1e-6);
    EXPECT_NEAR(at(17).X, 2600, 1e-6);
    EXPECT_NEAR(at(25).Y, 800 + bulge, 1e-6);
    EXPECT_NEAR(at(33).X, 3400, 1e-6);
    const double slope =
        std::numbers::sqrt2 / 2;  // at a quarter of the way, where it swells as much
    EXPECT_NEAR(at(4).X, 3000 + (400 + bulge * slope) * slope, 1e-6);
    EXPECT_NEAR(at(4).Y, 1000 - (200 + bulge * slope) * slope, 1e-6);
    EXPECT_NEAR(at(12).X, 3000 - (400 + bulge * slope) * slope, 1e-6);
    EXPECT_NEAR(at(29).X, 3000 + (400 - bulge * slope) * slope, 1e-6);
}

TEST_F(LookTest, ATieKeepsToTheSmallestStepThatBringsItsEndsClear)
{
    Figure(3340, 1000);  // ink to 3420, with its room from 3331.95 to 3448.05 and up to 891.95
    surface.Arc(3000, 1000, 400, 0, std::numbers::pi, 0.5, Role::Tie);
    const Operation tie = Of(Role::Tie).at(0).Drawn;
    const double step = std::numbers::pi / 64;
    EXPECT_NEAR(tie.Start, 12 * step, 1e-9);  // 400 * cos of it is 332.6 after 11, 332.0 is reached
    EXPECT_NEAR(tie.End, std::numbers::pi, 1e-9);
}

TEST_F(LookTest, ATieUnderAFigureEndsInItsMiddle)
{
    Figure(2000, 1000, "12345678901234567890");
    surface.Arc(3000, 1000, 100, 0.5, 2.5, 0.5, Role::Tie);
    const Operation tie = Of(Role::Tie).at(0).Drawn;
    EXPECT_EQ(tie.Start, 1.5);
    EXPECT_EQ(tie.End, 1.5);
}

TEST_F(LookTest, ALetterMovesClearOfTheLowestFigureAboveIt)
{
    Figure(2000, 1165);  // its ink is from 1085 to 1285
    Figure(2000, 1215);
    surface.PrintLineAt(2010, 1300, "i", Role::Fingering);
    Figure(3000, 1165);
    surface.PrintLineAt(3010, 1065, "m", Role::Fingering);  // as high as the figure
    surface.PrintLineAt(3010, 1066, "a", Role::Fingering);
    std::vector<double> ys;
    for (const Stroke& letter : Of(Role::Fingering))
        ys.push_back(letter.Drawn.Y1);
    const double under = 1285 + 0.17 * kGap - 20;
    EXPECT_EQ(ys, (std::vector{under + 50, 1065.0, under}));
}

TEST_F(LookTest, TheGapIsThatOfTheFirstTwoStringsWhicheverIsHigher)
{
    const auto pen = [&](std::initializer_list<double> strings) {
        surface = DrawSurface(metrics, kTwips, 12240, 15840);
        for (const double y : strings)
            surface.Line(400, y, 9400, y, Role::StringLine);
        surface.Line(2000, 2000, 2000, 2500, Role::Stem);
        return Of(Role::Stem).at(0).Pen;
    };
    EXPECT_DOUBLE_EQ(pen({1200, 1000, 900}), 20);
    EXPECT_DOUBLE_EQ(pen({1000}), 16) << "8 points";
    EXPECT_DOUBLE_EQ(pen({}), 16);
}

/// What the strokes cover, as left, top, right and bottom.
std::array<double, 4> Covered(const std::vector<Stroke>& strokes)
{
    const Box box = InkOf(strokes, kTwips, FixedTextMetrics()).value();
    return {box.Left, box.Top, box.Right, box.Bottom};
}

TEST_F(LookTest, TheInkOfEachShape)
{
    surface = DrawSurface(metrics, kTwips, 12240, 15840);
    surface.Font = {"Arial", 10, false};
    surface.PrintLineAt(1000, 2000, "abc");
    surface.DrawWidth = 2;  // half of it is 15
    surface.Circle(1000, 2000, 30);
    surface.Box(1500, 2500, 1000, 2000);
    surface.Arc(1000, 2000, 400, 0, std::numbers::pi, 0.25);
    surface.Arc(1000, 2000, 400, std::numbers::pi / 2, 1.5 * std::numbers::pi, 0.25);
    surface.Arc(1000, 2000, 160, std::numbers::pi * 7 / 16, std::numbers::pi * 23 / 16, 1);
    const auto strokes = All(Look::Plain);
    const auto covered = [&](std::size_t i) { return Covered({strokes.at(i)}); };
    EXPECT_EQ(covered(0), (std::array{1020.0, 2020.0, 1280.0, 2220.0}));
    EXPECT_EQ(covered(1), (std::array{955.0, 1955.0, 1045.0, 2045.0}));
    EXPECT_EQ(covered(2), (std::array{985.0, 1985.0, 1515.0, 2515.0}));
    EXPECT_EQ(covered(3), (std::array{585.0, 1885.0, 1415.0, 2015.0}));
    EXPECT_EQ(covered(4), (std::array{585.0, 1885.0, 1015.0, 2115.0}));
    EXPECT_EQ(covered(5)[1], 1825) << "its top is a sixteenth of the way";
    EXPECT_EQ(Covered(strokes), (std::array{585.0, 1825.0, 1515.0, 2515.0}));
}

TEST_F(LookTest, WhatCannotBeSeenOrIsDrawnAwayAgainHasNoInk)
{
    surface = DrawSurface(metrics, kTwips, 12240, 15840);
    EXPECT_FALSE(InkOf(All(Look::Plain), kTwips, metrics));
    surface.Font = {"Arial", 0, false};
    surface.PrintLineAt(1000, 2000, "no size");
    surface.DrawMode = PenMode::Invert;
    surface.Box(0, 0, 5000, 5000);
    EXPECT_FALSE(InkOf(All(Look::Plain), kTwips, metrics));
    surface.DrawMode = PenMode::Plain;
    surface.Circle(1000, 2000, 30);
    EXPECT_EQ(Covered(All(Look::Plain)), (std::array{962.5, 1962.5, 1037.5, 2037.5}));
    Stroke without;  // a pen without width draws no line
    without.Drawn.X2 = 100;
    EXPECT_FALSE(InkOf({without}, kTwips, metrics));
    without.Drawn.X2 = 0;
    without.Drawn.Y2 = 100;
    EXPECT_FALSE(InkOf({without}, kTwips, metrics));
}

}  // namespace
}  // namespace quillon
