#include "notation/placed_lines.h"

#include "page_desk.h"

namespace quillon {
namespace {

class PlacedLinesTest : public PageDesk {
protected:
    std::vector<PlacedLine> Lines() const { return PlaceLines(tune, page, metrics); }

    std::vector<int> HeadsOf(const std::vector<PlacedLine>& lines)
    {
        std::vector<int> heads;
        for (const PlacedLine& line : lines)
            for (const PlacedMeasure& measure : line.Measures)
                heads.push_back(measure.Head);
        return heads;
    }
};

TEST_F(PlacedLinesTest, EachMeasureHasItsPlaceAndTheyFollowEachOtherInALine)
{
    AddFullMeasures(tune, 30);
    const std::vector<PlacedLine> lines = Lines();
    std::vector<int> heads;
    for (int i = 1; i <= tune.LastNote; ++i)
        if (tune[i].IsHead())
            heads.push_back(i);
    EXPECT_EQ(HeadsOf(lines), heads);
    for (const PlacedLine& line : lines) {
        for (std::size_t i = 0; i < line.Measures.size(); ++i) {
            EXPECT_LT(line.Measures[i].Left, line.Measures[i].Right);
            EXPECT_EQ(line.Measures[i].Left, i == 0 ? 400 : line.Measures[i - 1].Right);
        }
    }
}

TEST_F(PlacedLinesTest, ABarIsDrawnWhereAMeasureEnds)
{
    AddFullMeasures(tune, 3);
    for (const PlacedLine& line : Lines())
        for (const PlacedMeasure& measure : line.Measures)
            EXPECT_TRUE(std::ranges::any_of(line.Drawn, [&](const Operation& drawn) {
                return drawn.Part == Role::Bar && drawn.X1 == measure.Right;
            })) << measure.Head;
}

TEST_F(PlacedLinesTest, LinesGoDownThePagesWithoutTouching)
{
    AddFullMeasures(tune, 80);
    const std::vector<PlacedLine> lines = Lines();
    ASSERT_GT(lines.back().Page, 0);
    for (std::size_t i = 0; i < lines.size(); ++i) {
        EXPECT_LT(lines[i].Top, lines[i].StaffTop);
        EXPECT_LT(lines[i].StaffTop + 5 * 165, lines[i].Bottom);
        const bool isFirst = i == 0 || lines[i].Page > lines[i - 1].Page;
        EXPECT_LT(isFirst ? 0 : lines[i - 1].Bottom, lines[i].Top);
    }
}

TEST_F(PlacedLinesTest, EveryLineIsOnThePageThatShowsIt)
{
    AddFullMeasures(tune, 80);
    Screen();
    for (const PlacedLine& line : Lines())
        for (int i = 0; i < kPageCount; ++i)
            EXPECT_EQ(line.IsOn(pages.Page(i).Surface.Picture()), i == line.Page);
}

TEST_F(PlacedLinesTest, OnlyTheLineThatHasChangedSinceIsNotOnThePageAnyMore)
{
    AddFullMeasures(tune, 30);
    Screen();
    const std::size_t changed = 2;
    const int head = Lines()[changed].Measures.front().Head;
    tune[head + 1].Slot(1) = "9";
    const std::vector<PlacedLine> lines = Lines();
    for (std::size_t i = 0; i < lines.size(); ++i)
        EXPECT_EQ(lines[i].IsOn(pages.Page(0).Surface.Picture()), i != changed) << i;
}

TEST_F(PlacedLinesTest, AMarqueeHidesNoLine)
{
    AddFullMeasures(tune, 3);
    Screen();
    pages.picPage1MouseDown(0, 500, 700);
    pages.picPage1MouseMove(0, 2000, 1500, true);
    EXPECT_TRUE(Lines().front().IsOn(pages.Page(0).Surface.Picture()));
}

TEST_F(PlacedLinesTest, NothingIsOnABlankPage)
{
    AddFullMeasures(tune, 3);
    EXPECT_FALSE(Lines().front().IsOn(pages.Page(0).Surface.Picture()));
    EXPECT_FALSE(PlacedLine().IsOn(Drawing()));
}

TEST_F(PlacedLinesTest, OfATuneOfTenPagesTheNineThatFitAreTold)
{
    for (int m = 0; m < 9 * 7; ++m)
        AddQuarters(4).Slot(6) = "NL";
    EXPECT_EQ(Lines().back().Page, 8);
}

}  // namespace
}  // namespace quillon
