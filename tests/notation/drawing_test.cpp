#include "notation/draw_surface.h"

#include <gtest/gtest.h>

namespace quillon {
namespace {

class Surface : public testing::Test {
protected:
    std::string Log() const { return surface.Picture().Log(); }

    FixedTextMetrics metrics;
    DrawSurface surface{metrics, kPoints, 360, 150};
};

TEST_F(Surface, LogsOneOperationALine)
{
    surface.Line(1, 2, 3, 4);
    surface.Box(0, 0, 10, 20);
    surface.DrawWidth = 3;
    surface.Circle(5, 6, 2);
    surface.Arc(1, 2, 3, 0.5, 3, 0.5);
    surface.Font = {"Arial", 10, true};
    surface.PrintLineAt(7, 8, "hi");
    EXPECT_EQ(Log(), "line 1 2 3 4 w=1\n"
                     "box 0 0 10 20 w=1\n"
                     "circle 5 6 2 w=3 fill=none\n"
                     "arc 1 2 3 0.5 3 0.5 w=3\n"
                     "text 7 8 size=10 font=\"Arial\" bold=1 \"hi\"\n");
}

TEST_F(Surface, LogsAtMostTwoDecimalsWithoutTrailingZerosOrAMinusZero)
{
    surface.Line(1.5, 2.25, 3.126, 100);
    surface.Line(-0.001, -0.25, 10.10, -7);
    surface.Line(1200, 0.004, 0.996, 1e6);
    EXPECT_EQ(Log(), "line 1.5 2.25 3.13 100 w=1\n"
                     "line 0 -0.25 10.1 -7 w=1\n"
                     "line 1200 0 1 1000000 w=1\n");
}

TEST_F(Surface, LogsTheFillOfCirclesAlone)
{
    surface.FillSolid = true;
    surface.Line(0, 0, 1, 1);
    surface.Circle(5, 6, 2);
    EXPECT_EQ(Log(), "line 0 0 1 1 w=1\ncircle 5 6 2 w=1 fill=solid\n");
}

TEST_F(Surface, EscapesQuotesBackslashesAndBytesOutsideAscii)
{
    surface.Font = {"A\"b", 10, false};
    surface.Print(std::string_view("\"\\\x01\x7f\x80\xE9\xff~ ", 9));
    EXPECT_EQ(Log(), "text 0 0 size=10 font=\"A\\\"b\" bold=0 "
                     "\"\\\"\\\\\\x01\\x7f\\x80\\xe9\\xff~ \"\n");
}

TEST_F(Surface, LogsNoTextWithoutAVisibleCharacterButMovesTheCursor)
{
    surface.Font = {"Arial", 10, false};
    surface.Print("");
    surface.Print("  ");
    EXPECT_EQ(Log(), "");
    EXPECT_EQ(surface.CurrentX, 10);
    surface.PrintLine("");
    EXPECT_EQ(surface.CurrentX, 0);
    EXPECT_EQ(surface.CurrentY, 12);
}

TEST_F(Surface, LogsATextOfControlCharactersThoughNothingIsSeen)
{
    surface.Font = {"Arial", 10, false};
    surface.Print("\r\n");
    surface.Print("\t");
    EXPECT_EQ(Log(), "text 0 0 size=10 font=\"Arial\" bold=0 \"\\x0d\\x0a\"\n"
                     "text 10 0 size=10 font=\"Arial\" bold=0 \"\\x09\"\n");
}

TEST_F(Surface, LogsModeAndStyleAtTheEndOfTheLine)
{
    surface.DrawStyle = PenStyle::Dotted;
    surface.Box(0, 0, 1, 1);
    surface.DrawMode = PenMode::Invert;
    surface.Box(0, 0, 2, 2);
    surface.DrawMode = PenMode::Xor;
    surface.DrawStyle = PenStyle::Solid;
    surface.Line(0, 0, 3, 3);
    EXPECT_EQ(Log(), "box 0 0 1 1 w=1 style=dotted\n"
                     "box 0 0 2 2 w=1 mode=invert style=dotted\n"
                     "line 0 0 3 3 w=1 mode=xor\n");
}

TEST_F(Surface, TakesAnXorOperationDrawnTwiceOffTheList)
{
    surface.Line(9, 9, 8, 8);
    surface.DrawMode = PenMode::Xor;
    surface.Line(1, 2, 3, 4);
    surface.Line(5, 6, 7, 8);
    surface.Line(1, 2, 3, 4);
    EXPECT_EQ(Log(), "line 9 9 8 8 w=1\nline 5 6 7 8 w=1 mode=xor\n");
    surface.Line(1, 2, 3, 4);
    EXPECT_EQ(Log(), "line 9 9 8 8 w=1\nline 5 6 7 8 w=1 mode=xor\nline 1 2 3 4 w=1 mode=xor\n");
}

TEST_F(Surface, TakesAnXorLineOffThoughTheFillStyleHasChanged)
{
    surface.DrawMode = PenMode::Xor;
    surface.Line(1, 2, 3, 4);
    surface.FillSolid = true;
    surface.Line(1, 2, 3, 4);
    EXPECT_EQ(Log(), "");
}

TEST_F(Surface, TakesAnInvertedBoxDrawnTwiceOffTheList)
{
    surface.DrawMode = PenMode::Invert;
    surface.Box(1, 2, 3, 4);
    surface.Box(1, 2, 3, 4);
    EXPECT_EQ(Log(), "");
}

TEST_F(Surface, TakesNothingOffForAnOperationThatDiffers)
{
    surface.DrawMode = PenMode::Xor;
    surface.Line(1, 2, 3, 4);
    surface.Line(1, 2, 3, 5);
    surface.DrawMode = PenMode::Invert;
    surface.Line(1, 2, 3, 4);
    surface.DrawWidth = 2;
    surface.Line(1, 2, 3, 4);
    EXPECT_EQ(surface.Picture().Operations().size(), 4U);
}

TEST_F(Surface, KeepsPlainOperationsDrawnTwice)
{
    surface.Line(1, 2, 3, 4);
    surface.Line(1, 2, 3, 4);
    EXPECT_EQ(surface.Picture().Operations().size(), 2U);
}

TEST_F(Surface, SaysClearInTheLogOnlyOnceItWasCleared)
{
    surface.Line(1, 2, 3, 4);
    EXPECT_EQ(Log(), "line 1 2 3 4 w=1\n");
    surface.Clear();
    EXPECT_EQ(Log(), "clear\n");
    surface.Line(1, 2, 3, 4);
    EXPECT_EQ(Log(), "clear\nline 1 2 3 4 w=1\n");
}

TEST_F(Surface, StartsAtItsCornerAgainOnceItWasCleared)
{
    surface.Line(1, 2, 3, 4);
    surface.Clear();
    EXPECT_EQ(surface.CurrentX, 0);
    EXPECT_EQ(surface.CurrentY, 0);
}

TEST_F(Surface, PrintsTextsWithoutThePenButInItsMode)
{
    surface.Font = {"Arial", 10, false};
    surface.DrawWidth = 3;
    surface.DrawStyle = PenStyle::Dotted;
    surface.DrawMode = PenMode::Xor;
    surface.PrintLineAt(1, 2, "x", Role::Figure);
    const Operation& text = surface.Picture().Operations().at(0);
    EXPECT_EQ(text.Width, 1);
    EXPECT_EQ(text.Style, PenStyle::Solid);
    EXPECT_EQ(text.Mode, PenMode::Xor);
    EXPECT_EQ(text.Part, Role::Figure);
    surface.DrawStyle = PenStyle::Solid;
    surface.PrintLineAt(1, 2, "x", Role::Figure);
    EXPECT_TRUE(surface.Picture().Operations().empty()) << "drawn twice, it is gone";
}

TEST_F(Surface, RecordsAllThatAnOperationSays)
{
    surface.DrawWidth = 4;
    surface.DrawStyle = PenStyle::Dotted;
    surface.FillSolid = true;
    surface.Arc(1, 2, 3, 0.5, 3, 0.25, Role::Tie);
    surface.Circle(5, 6, 7, Role::Dot);
    const auto& drawn = surface.Picture().Operations();
    Operation arc;
    arc.Kind = Shape::Arc;
    arc.X1 = 1;
    arc.Y1 = 2;
    arc.Radius = 3;
    arc.Start = 0.5;
    arc.End = 3;
    arc.Aspect = 0.25;
    arc.Width = 4;
    arc.Style = PenStyle::Dotted;
    arc.Part = Role::Tie;
    EXPECT_EQ(drawn.at(0), arc);
    Operation circle;
    circle.Kind = Shape::Circle;
    circle.X1 = 5;
    circle.Y1 = 6;
    circle.Radius = 7;
    circle.Width = 4;
    circle.Filled = true;
    circle.Style = PenStyle::Dotted;
    circle.Part = Role::Dot;
    EXPECT_EQ(drawn.at(1), circle);
    EXPECT_EQ(surface.CurrentX, 5);
    EXPECT_EQ(surface.CurrentY, 6);
    surface.Arc(8, 9, 3, 0.5, 3, 0.25);
    EXPECT_EQ(surface.CurrentX, 8);
    EXPECT_EQ(surface.CurrentY, 9);
}

TEST_F(Surface, TakesTheLaterOfTwoEqualOperationsOffTheList)
{
    const Operation plain;
    Operation inverted;
    inverted.Mode = PenMode::Invert;
    Drawing drawing({inverted, plain, inverted, plain}, false);
    drawing.Add(inverted);
    EXPECT_EQ(drawing.Operations(), (std::vector{inverted, plain, plain}));
}

TEST_F(Surface, ShowsWhatAnotherShowsAndKeepsItsPen)
{
    DrawSurface other{metrics, kPoints, 360, 150};
    other.Clear();
    other.Line(1, 2, 3, 4);
    surface.Box(5, 6, 7, 8);
    const unsigned before = surface.Picture().Revision();
    surface.SetPicture(other.Picture());
    EXPECT_EQ(Log(), "clear\nline 1 2 3 4 w=1\n");
    EXPECT_NE(surface.Picture().Revision(), before);
    EXPECT_EQ(surface.CurrentX, 7);
    const unsigned shown = surface.Picture().Revision();
    surface.Clear();
    EXPECT_NE(surface.Picture().Revision(), shown);
}

TEST(FixedTextMetrics, GiveEachTextABoxByItsLengthAndSize)
{
    const FixedTextMetrics metrics;
    const Typeface font{"Arial", 20, false};
    EXPECT_EQ(metrics.Width("abc", font), 30);
    EXPECT_EQ(metrics.LineHeight(font), 24);
    const InkBox ink = metrics.Ink("abc", font);
    EXPECT_EQ(ink.Left, 2);
    EXPECT_EQ(ink.Top, 2);
    EXPECT_EQ(ink.Right, 28);
    EXPECT_EQ(ink.Bottom, 22);
}

TEST_F(Surface, HandsItsPictureOverAndStartsAnother)
{
    surface.Line(1, 2, 3, 4);
    EXPECT_EQ(surface.TakePicture().Log(), "line 1 2 3 4 w=1\n");
    EXPECT_EQ(Log(), "");
}

TEST_F(Surface, TellsByItsRevisionThatThePictureHasChanged)
{
    const unsigned first = surface.Picture().Revision();
    surface.DrawMode = PenMode::Xor;
    surface.Line(1, 2, 3, 4);
    const unsigned second = surface.Picture().Revision();
    surface.Line(1, 2, 3, 4);
    EXPECT_NE(first, second);
    EXPECT_NE(second, surface.Picture().Revision());
}

TEST_F(Surface, LeavesTheCursorAtTheEndOfALineAndBox)
{
    surface.Line(1, 2, 3, 4);
    EXPECT_EQ(surface.CurrentX, 3);
    EXPECT_EQ(surface.CurrentY, 4);
    surface.Box(1, 2, 30, 40);
    EXPECT_EQ(surface.CurrentX, 30);
    EXPECT_EQ(surface.CurrentY, 40);
}

TEST_F(Surface, PutsTheCursorAfterATextOrAtTheStartOfTheNextLine)
{
    surface.Font = {"Arial", 10, false};
    surface.CurrentX = 100;
    surface.CurrentY = 50;
    surface.Print("abc");
    EXPECT_EQ(surface.CurrentX, 115);
    EXPECT_EQ(surface.CurrentY, 50);
    surface.PrintLine("d");
    EXPECT_EQ(surface.CurrentX, 0);
    EXPECT_EQ(surface.CurrentY, 62);
}

TEST_F(Surface, OfAPageMeasuresInTwips)
{
    DrawSurface paper(metrics, kTwips, 12240, 15840);
    paper.Font = {"Arial", 10, true};
    EXPECT_EQ(paper.TextWidth("abcd"), 400);
    paper.PrintLine("abcd");
    EXPECT_EQ(paper.CurrentY, 240);
}

TEST(PrintedInteger, HasABlankBeforeAndAfter)
{
    EXPECT_EQ(PrintedInteger(4), " 4 ");
    EXPECT_EQ(PrintedInteger(0), " 0 ");
    EXPECT_EQ(PrintedInteger(-12), " -12 ");
}

}  // namespace
}  // namespace quillon
