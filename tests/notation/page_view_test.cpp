#include "page_desk.h"
#include "support/fakes.h"

namespace quillon {
namespace {

class PageViewTest : public PageDesk {
protected:
    LogLines Log(int index) { return LinesOf(pages.Page(index).Surface.Picture()); }

    void Drag(int index, double x1, double y1, double x2, double y2)
    {
        pages.picPage1MouseDown(index, x1, y1);
        pages.picPage1MouseMove(index, x2, y2, true);
        pages.picPage1MouseUp(index);
    }

    FakeClipboard clipboard;
};

TEST_F(PageViewTest, WithOnePagePageDownHidesItShowsItAgainAndScrollsToTheTop)
{
    pages.BlankPages();
    pages.vsbPage = 900;
    pages.vsbPageChange();
    EXPECT_EQ(pages.Page(0).Top, -900);
    pages.mnuPgDown();
    EXPECT_EQ(pages.ShownPage, 0);
    EXPECT_TRUE(pages.Page(0).Visible);
    EXPECT_EQ(pages.vsbPage, 0);
    EXPECT_EQ(pages.Page(0).Top, 0);
}

TEST_F(PageViewTest, PageDownCyclesThroughThePages)
{
    pages.BlankPages();
    pages.PageMax = 2;
    std::string shown;
    for (int i = 0; i < 4; ++i) {
        pages.mnuPgDown();
        shown += std::to_string(int{pages.ShownPage});
        EXPECT_EQ(std::count_if(pages.picPage1.begin(), pages.picPage1.end(),
                                [](const PageSurface& p) { return p.Visible; }),
                  1);
    }
    EXPECT_EQ(shown, "1201");
}

TEST_F(PageViewTest, APageDownAfterARefreshStartsFromTheOldPage)
{
    pages.BlankPages();
    pages.PageMax = 3;
    pages.mnuPgDown();
    pages.BlankPages();  // as a refresh does
    pages.mnuPgDown();
    EXPECT_EQ(pages.ShownPage, 2);
    EXPECT_TRUE(pages.Page(0).Visible);
    EXPECT_TRUE(pages.Page(2).Visible);
}

TEST_F(PageViewTest, ScrollingToTheMaximumLeavesHalfOfTheSmallViewsHeightOfThePageInView)
{
    pages.SizePages(12000);
    EXPECT_EQ(pages.PicPageHeight, 6000);
    pages.vsbPage = pages.VsbPageMax;
    pages.vsbPageChange();
    EXPECT_EQ(kPageHeight + pages.Page(0).Top, pages.PicPageHeight / 2);
}

TEST_F(PageViewTest, OnlyTheShownPageIsScrolled)
{
    pages.ShownPage = 2;
    pages.vsbPage = 500;
    pages.vsbPageChange();
    EXPECT_EQ(pages.Page(2).Top, -500);
    EXPECT_EQ(pages.Page(0).Top, 0);
}

TEST_F(PageViewTest, TheScrollBarKeepsItsHeightAfterALargeView)
{
    pages.SizePages(12000);
    pages.mnuLargeview();
    EXPECT_TRUE(pages.LargeView);
    EXPECT_EQ(pages.PicPageHeight, 11300);
    EXPECT_EQ(pages.VsbPageHeight, 11300);
    pages.mnuSmallView();
    EXPECT_FALSE(pages.LargeView);
    EXPECT_EQ(pages.PicPageHeight, 6000);
    EXPECT_EQ(pages.VsbPageHeight, 11300);
}

TEST_F(PageViewTest, AMouseDownOnAPageMakesItTheShownPage)
{
    pages.picPage1MouseDown(3, 10, 20);
    EXPECT_EQ(pages.ShownPage, 3);
    EXPECT_EQ(pages.MarqueeOn, -1);
}

TEST_F(PageViewTest, TheMarqueeFollowsTheMouseAndStaysOnThePage)
{
    pages.picPage1MouseDown(0, 100, 200);
    pages.picPage1MouseMove(0, 300, 400, true);
    pages.picPage1MouseMove(0, 500, 700, true);
    pages.picPage1MouseUp(0);
    pages.picPage1MouseMove(0, 900, 900, false);
    // The first move "takes off" a box of no size that was never drawn.
    EXPECT_EQ(Joined(Log(0)), "box 100 200 100 200 w=1 mode=invert style=dotted\n"
                              "box 100 200 500 700 w=1 mode=invert style=dotted\n");
    EXPECT_EQ(pages.Page(0).Surface.DrawMode, PenMode::Plain);
    EXPECT_EQ(pages.Page(0).Surface.DrawStyle, PenStyle::Solid);
}

TEST_F(PageViewTest, ANewMarqueeTakesTheOldOneOff)
{
    Drag(0, 100, 200, 500, 700);
    Drag(0, 1000, 1000, 2000, 2000);
    EXPECT_EQ(Only(Log(0), "box 100 200 500 700").size(), 0U);
    EXPECT_EQ(Only(Log(0), "box 1000 1000 2000 2000").size(), 1U);
}

TEST_F(PageViewTest, AfterARefreshTheNextMouseDownLeavesTheOldBoxOnTheFreshPage)
{
    Drag(0, 100, 200, 500, 700);
    pages.BlankPages();
    pages.picPage1MouseDown(0, 10, 10);
    EXPECT_EQ(Joined(Log(0)), "box 100 200 500 700 w=1 mode=invert style=dotted\n");
}

TEST_F(PageViewTest, AMoveWithoutAButtonOrWithoutAMarqueeDrawsNothing)
{
    pages.picPage1MouseMove(0, 5, 5, true);
    pages.MarqueeOn = -1;
    pages.picPage1MouseMove(0, 5, 5, false);
    EXPECT_TRUE(Log(0).empty());
}

TEST_F(PageViewTest, TheMarqueesFirstYIsRounded)
{
    pages.picPage1MouseDown(0, 10.5, 20.5);
    EXPECT_EQ(pages.MarqueeX1, 10.5);
    EXPECT_EQ(pages.MarqueeY1, 20);
    EXPECT_EQ(pages.MarqueeY2, 20.5);
}

TEST_F(PageViewTest, TheClipboardGetsThePageWithoutTheMarqueesBorder)
{
    Drag(2, 1500, 3000, 4500, 4500);
    pages.mnuClipbrd(clipboard);
    ASSERT_EQ(clipboard.Pictures.size(), 1U);
    const FakeClipboard::Cut& cut = clipboard.Pictures[0];
    EXPECT_EQ(cut.Part.X, 101);
    EXPECT_EQ(cut.Part.Y, 201);
    EXPECT_EQ(cut.Part.Width, 199);
    EXPECT_EQ(cut.Part.Height, 99);
    EXPECT_EQ(cut.Width, 200);
    EXPECT_EQ(cut.Height, 100);
    EXPECT_EQ(LinesOf(cut.Page), Log(2));
    EXPECT_EQ(Only(Log(2), "box 1500 3000 4500 4500").size(), 1U);  // it stays
}

TEST_F(PageViewTest, AMarqueeOfLessThanAPixelHasNothingInsideItsBorder)
{
    Drag(0, 1500, 3000, 1507.5, 3007.5);
    pages.mnuClipbrd(clipboard);
    const FakeClipboard::Cut& cut = clipboard.Pictures.at(0);
    EXPECT_EQ(cut.Part.Width, 0);
    EXPECT_EQ(cut.Part.Height, 0);
    EXPECT_EQ(cut.Width, 0.5);
    EXPECT_EQ(cut.Height, 0.5);
}

TEST_F(PageViewTest, AMarqueeDraggedToTheLeftOrUpwardsIsAFault)
{
    Drag(0, 500, 500, 400, 600);
    EXPECT_FAULT(pages.mnuClipbrd(clipboard), InvalidPropertyValue);
    Drag(0, 500, 500, 600, 400);
    EXPECT_FAULT(pages.mnuClipbrd(clipboard), InvalidPropertyValue);
    EXPECT_TRUE(clipboard.Pictures.empty());
}

TEST_F(PageViewTest, WithoutAMarqueeTheClipboardGetsAnEmptyPicture)
{
    pages.mnuClipbrd(clipboard);
    ASSERT_EQ(clipboard.Pictures.size(), 1U);
    EXPECT_EQ(clipboard.Pictures[0].Width, 0);
    EXPECT_EQ(clipboard.Pictures[0].Height, 0);
}

TEST_F(PageViewTest, BlankingClearsAndHidesTheFirstSixPagesAndShowsTheFirst)
{
    for (int i = 0; i < 9; ++i) {
        pages.Page(i).Visible = i > 0;
        pages.Page(i).Surface.Line(1, 2, 3, 4);
    }
    pages.BlankPages();
    for (int i = 0; i < 9; ++i) {
        EXPECT_EQ(pages.Page(i).Visible, i == 0 || i > 5) << i;
        EXPECT_EQ(Log(i).empty(), i <= 5) << i;
    }
}

TEST_F(PageViewTest, ThereAreNinePages)
{
    EXPECT_NO_THROW(pages.Page(8));
    EXPECT_FAULT(pages.Page(9), ControlArrayElement);
    EXPECT_FAULT(pages.Page(-1), ControlArrayElement);
}

TEST_F(PageViewTest, TheCountersAreZeroedButNotPageMax)
{
    pages.ShownPage = 2;
    pages.PageMax = 3;
    pages.MarqueeOn = -1;
    pages.ResetCounters();
    EXPECT_EQ(pages.ShownPage, 0);
    EXPECT_EQ(pages.MarqueeOn, 0);
    EXPECT_EQ(pages.PageMax, 3);
}

}  // namespace
}  // namespace quillon
