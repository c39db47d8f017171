#include "notation/page_view.h"

#include <algorithm>

namespace quillon {

namespace {

constexpr double kRoomBesideLargeView = 700;  // twips of the window's height

}  // namespace

PageView::PageView(const TextMetrics& metrics)
    : picPage1(kPageCount, {DrawSurface(metrics, kTwips, kPageWidth, kPageHeight)})
{
}

PageSurface& PageView::Page(int index)
{
    if (index < 0 || index >= kPageCount)
        throw Fault(Error::ControlArrayElement);
    return picPage1[static_cast<std::size_t>(index)];
}

void PageView::SizePages(double height)
{
    mainWinHeight = height;
    PicPageHeight = VsbPageHeight = height / 2;
    VsbPageMax = Round(kPageHeight - PicPageHeight / 2);
}

void PageView::mnuLargeview()
{
    LargeView = true;
    PicPageHeight = VsbPageHeight = mainWinHeight - kRoomBesideLargeView;
}

// The scroll bar keeps its height (docs/kept_behaviour.md, "Pages and paper"): after a large view
// it is longer than the window on the pages.
void PageView::mnuSmallView()
{
    LargeView = false;
    PicPageHeight = mainWinHeight / 2;
}

void PageView::mnuPgDown()
{
    Page(ShownPage).Visible = false;
    ++ShownPage;
    if (ShownPage > PageMax)
        ShownPage = 0;
    Page(ShownPage).Visible = true;
    vsbPage = 0;
    vsbPageChange();
}

void PageView::vsbPageChange()
{
    Page(ShownPage).Top = -vsbPage;
}

/// In invert mode: drawn once more, the marquee is gone.
void PageView::DrawMarquee(int index)
{
    Page(index).Surface.Box(MarqueeX1, MarqueeY1, MarqueeX2, MarqueeY2);
}

// A marquee that was drawn before the page was laid out again is "removed" all the same, and so
// leaves a box there.
void PageView::picPage1MouseDown(int index, double x, double y)
{
    ShownPage = index;
    DrawSurface& surface = Page(index).Surface;
    surface.DrawMode = PenMode::Invert;
    surface.DrawStyle = PenStyle::Dotted;
    surface.FillSolid = false;
    if (MarqueeOn)
        DrawMarquee(index);
    MarqueeOn = -1;
    MarqueeX1 = MarqueeX2 = x;
    MarqueeY1 = Round(y);
    MarqueeY2 = y;
}

void PageView::picPage1MouseMove(int index, double x, double y, bool buttonHeld)
{
    if (!buttonHeld || !MarqueeOn)
        return;
    DrawMarquee(index);
    MarqueeX2 = x;
    MarqueeY2 = y;
    DrawMarquee(index);
}

void PageView::picPage1MouseUp(int index)
{
    DrawSurface& surface = Page(index).Surface;
    surface.DrawStyle = PenStyle::Solid;
    surface.DrawMode = PenMode::Plain;
}

void PageView::mnuClipbrd(Clipboard& clipboard)
{
    const double x1 = MarqueeX1 / clipboard.TwipsPerPixelX();
    const double y1 = MarqueeY1 / clipboard.TwipsPerPixelY();
    const double w = MarqueeX2 / clipboard.TwipsPerPixelX() - x1;
    const double h = MarqueeY2 / clipboard.TwipsPerPixelY() - y1;
    if (w < 0 || h < 0)
        throw Fault(Error::InvalidPropertyValue);
    // One pixel keeps the dotted border out, on the left and on top. The picture is as large as
    // the marquee all the same.
    const PagePart part{x1 + 1, y1 + 1, std::max(w - 1, 0.0), std::max(h - 1, 0.0)};
    clipboard.SetPicture(Page(ShownPage).Surface.Picture(), part, w, h);
}

void PageView::BlankPages()
{
    for (int i = 0; i < kRefreshedPages; ++i) {
        Page(i).Visible = false;
        Page(i).Surface.Clear();
    }
    Page(0).Visible = true;
}

void PageView::ResetCounters()
{
    ShownPage = 0;
    MarqueeOn = 0;
}

}  // namespace quillon
