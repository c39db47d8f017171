#include "shell/follower.h"

#include "notation/page_layout.h"
#include "support/tunes.h"

#include <gtest/gtest.h>

#include <numeric>

namespace quillon {
namespace {

constexpr int kMeasureTicks = 400;
constexpr double kLowWindow = 3000;   // one line
constexpr double kHighWindow = 6000;  // two lines and a half

/// A tune of 80 measures, of which line 0 holds the first ones, and so on. It is on the pages.
class FollowerTest : public testing::Test {
protected:
    FollowerTest()
    {
        AddFullMeasures(tune, 80);
        LayOutPages(tune, page, pages);
        lines = PlaceLines(tune, page, metrics);
        for (const PlacedLine& line : lines)
            firsts.push_back(line.Measures.front().Head);
    }

    /// Heads of whole lines, played one after the other.
    Follower Playing(const std::vector<int>& lineNumbers, bool forEver = false)
    {
        PlayPositions positions;
        begins.clear();
        int tick = 0;
        for (int line : lineNumbers) {
            begins.push_back(tick);
            for (const PlacedMeasure& measure : lines.at(line).Measures) {
                positions.Measures.push_back({measure.Head, 0, tick});
                tick += kMeasureTicks;
            }
        }
        begins.push_back(tick);
        positions.End = tick;
        Follower follower(positions, forEver, lines);
        follower.Look(pages);
        return follower;
    }

    bool Sees(const PageWindow& window, std::size_t line, double height) const
    {
        return window.Page == lines.at(line).Page && window.Top <= lines.at(line).Top &&
               window.Top + height >= lines.at(line).Bottom;
    }

    int LastLineOfPage1() const
    {
        int line = 0;
        while (lines.at(line + 1).Page == 0)
            ++line;
        return line;
    }

    std::vector<int> AllLines() const
    {
        std::vector<int> all(lines.size());
        std::iota(all.begin(), all.end(), 0);
        return all;
    }

    Tune tune;
    PageSettings page;
    FixedTextMetrics metrics;
    PageView pages{metrics};
    std::vector<PlacedLine> lines;
    std::vector<int> firsts;  // first heads of the lines
    std::vector<int> begins;  // ticks at which the lines of Playing begin, and the end
};

TEST_F(FollowerTest, TheBandIsOnTheMeasureThatSoundsFromItsFirstTickToItsLast)
{
    const Follower follower = Playing({1, 0});
    const PlacedLine& line = lines[1];
    for (int tick : {0, kMeasureTicks - 1}) {
        const Band band = follower.BandAt(tick).value();
        EXPECT_EQ(band.Page, 0);
        EXPECT_EQ(band.Left, line.Measures[0].Left);
        EXPECT_EQ(band.Right, line.Measures[0].Right);
        EXPECT_EQ(band.Top, line.StaffTop - 120);
        EXPECT_EQ(band.Bottom, line.Bottom + 60);
    }
    EXPECT_EQ(follower.BandAt(kMeasureTicks)->Left, line.Measures[1].Left);
    EXPECT_EQ(follower.BandAt(begins[1])->Top, follower.BandAt(begins[1] + kMeasureTicks)->Top);
    EXPECT_LT(follower.BandAt(begins[1])->Top, line.Top);
}

TEST_F(FollowerTest, ThereIsNoBandBeforeTheFirstMeasureNorWithoutAny)
{
    EXPECT_EQ(Playing({0}).BandAt(-1), std::nullopt);
    const Follower empty({}, false, lines);
    EXPECT_EQ(empty.BandAt(0), std::nullopt);
    EXPECT_EQ(empty.WindowAt(0, {2, 30}, kLowWindow), (PageWindow{2, 30}));
}

TEST_F(FollowerTest, AMeasureThatThePageShowsOtherwiseHasNoBand)
{
    tune[firsts[1] + 2].Slot(1) = "11";
    LayOutPages(tune, page, pages);
    const Follower follower = Playing({0, 1, 2});
    EXPECT_TRUE(follower.BandAt(begins[0]));
    EXPECT_FALSE(follower.BandAt(begins[1]));
    EXPECT_TRUE(follower.BandAt(begins[2]));
}

TEST_F(FollowerTest, APageThatIsLaidOutAnewIsLookedAtAgain)
{
    Follower follower = Playing({0});
    pages.BlankPages();
    follower.Look(pages);
    EXPECT_FALSE(follower.BandAt(0));
    LayOutPages(tune, page, pages);
    follower.Look(pages);
    EXPECT_TRUE(follower.BandAt(0));
}

TEST_F(FollowerTest, TheNextLineIsInViewBeforeItIsPlayed)
{
    for (double height : {kLowWindow, kHighWindow, 2 * kHighWindow}) {
        const Follower follower = Playing(AllLines());
        PageWindow window{0, 0};
        for (std::size_t i = 0; i < lines.size(); ++i) {
            window = follower.WindowAt(begins[i], window, height);
            EXPECT_TRUE(Sees(window, i, height)) << i;
            window = follower.WindowAt(begins[i + 1] - 1, window, height);
            const std::size_t next = std::min(i + 1, lines.size() - 1);
            EXPECT_TRUE(Sees(window, next, height)) << i;
        }
    }
}

TEST_F(FollowerTest, WithoutRoomForTwoLinesThePageTurnsHalfAMeasureAhead)
{
    const int last = LastLineOfPage1();
    const Follower follower = Playing({last, last + 1});
    const int half = begins[1] - kMeasureTicks / 2;
    PageWindow window = follower.WindowAt(half - 1, {}, kHighWindow);
    EXPECT_TRUE(Sees(window, last, kHighWindow));
    window = follower.WindowAt(half, window, kHighWindow);
    EXPECT_TRUE(Sees(window, last + 1, kHighWindow));
    EXPECT_EQ(follower.WindowAt(begins[1], window, kHighWindow), window);
}

TEST_F(FollowerTest, NothingMovesWhileBothLinesAreInView)
{
    const Follower follower = Playing(AllLines());
    const PageWindow window = follower.WindowAt(begins[1], {}, 2 * kHighWindow);
    for (int tick = begins[1]; tick < begins[2]; tick += 50)
        EXPECT_EQ(follower.WindowAt(tick, window, 2 * kHighWindow), window);
}

TEST_F(FollowerTest, AJumpBackIsInViewBeforeItIsPlayed)
{
    const int last = LastLineOfPage1();
    const Follower follower = Playing({last + 1, 1, 0});
    PageWindow window = follower.WindowAt(0, {}, kHighWindow);
    EXPECT_EQ(window.Page, 1);
    window = follower.WindowAt(begins[1] - 1, window, kHighWindow);
    EXPECT_TRUE(Sees(window, 1, kHighWindow));
    window = follower.WindowAt(begins[1], window, kHighWindow);
    EXPECT_TRUE(Sees(window, 1, kHighWindow));
    EXPECT_TRUE(Sees(window, 0, kHighWindow));
}

TEST_F(FollowerTest, WhatPlaysForEverTurnsBackInTime)
{
    const int last = LastLineOfPage1();
    const PageWindow end{1, 0};
    const std::vector<int> order{0, last + 1};
    EXPECT_EQ(Playing(order).WindowAt(2 * begins[2], end, kLowWindow).Page, 1);
    EXPECT_EQ(Playing(order).WindowAt(begins[2] - 1, end, kLowWindow).Page, 1);
    EXPECT_EQ(Playing(order, true).WindowAt(begins[2] - 1, end, kLowWindow).Page, 0);
}

TEST_F(FollowerTest, TheWindowKeepsToThePaper)
{
    const int last = LastLineOfPage1();
    const PageWindow window = Playing({last}).WindowAt(0, {}, 4 * kHighWindow);
    EXPECT_EQ(window, (PageWindow{0, 0}));
    EXPECT_LE(Playing({last}).WindowAt(0, {}, kHighWindow).Top, kPageHeight - kHighWindow);
}

TEST_F(FollowerTest, ALineThatIsHigherThanTheWindowIsShownFromItsTop)
{
    const Follower follower = Playing({2});
    const PageWindow window = follower.WindowAt(0, {}, 500);
    EXPECT_GT(window.Top, 0);
    EXPECT_LT(window.Top, lines[2].Top);
    EXPECT_EQ(follower.WindowAt(1, window, 500), window);
}

TEST_F(FollowerTest, ALineThatFillsTheWindowIsInIt)
{
    const Follower follower = Playing({1});
    const PageWindow window{0, lines[1].Top};
    const double height = lines[1].Bottom - lines[1].Top;
    EXPECT_EQ(follower.WindowAt(0, window, height), window);
    EXPECT_NE(follower.WindowAt(0, window, height - 1), window);
    EXPECT_NE(follower.WindowAt(0, {0, lines[1].Top + 1}, height), window);
}

TEST_F(FollowerTest, TwoLinesShareTheWindowIfTheyFitWithSomeRoomAroundThem)
{
    const Follower follower = Playing({0, 1});
    const double height = lines[1].Bottom - lines[0].Top + 300;
    const PageWindow now{0, lines[0].Top - 350};  // the second line is not in it
    ASSERT_FALSE(Sees(now, 1, height));
    EXPECT_TRUE(Sees(follower.WindowAt(0, now, height), 1, height));
    EXPECT_EQ(follower.WindowAt(0, now, height - 1), now);
}

}  // namespace
}  // namespace quillon
