#include "notation/page_view.h"

namespace quillon {

PageView::PageView(MainForm& mainForm, const TextMetrics& metrics)
    : picPage1(kPageCount, {DrawSurface(metrics, kTwips, kPageWidth, kPageHeight)}), form(mainForm)
{
}

PageSurface& PageView::Page(int index)
{
    if (index < 0 || index >= kPageCount)
        throw Fault(Error::ControlArrayElement);
    return picPage1[static_cast<std::size_t>(index)];
}

void PageView::mnuLargeview()
{
    LargeView = true;
    form.ToolsVisible = false;
}

void PageView::mnuSmallView()
{
    LargeView = false;
    form.ToolsVisible = true;
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
