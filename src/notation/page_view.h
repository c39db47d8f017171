// The page view: nine page surfaces, one of which is shown and can be scrolled.
//
// A rectangle dragged on a page, the marquee, marks what mnuClipbrd copies. All lengths are twips.
// A page keeps its drawing while hidden.

#pragma once

#include "notation/draw_surface.h"
#include "platform/clipboard.h"
#include "store/numbers.h"

#include <vector>

namespace quillon {

constexpr int kPageCount = 9;
constexpr int kRefreshedPages =
    6;  // a refresh hides and clears these; pages 6 to 8 stay as they are
constexpr double kPageWidth = 12240;   // 8.5 inches
constexpr double kPageHeight = 15840;  // 11 inches

struct PageSurface {
    DrawSurface Surface;
    bool Visible = false;
    double Top = 0;  // minus the scrolled distance
};

class PageView {
public:
    explicit PageView(const TextMetrics& metrics);

    std::vector<PageSurface> picPage1;  // kPageCount of them
    Int16 ShownPage;                    // in view, or touched by the mouse last
    Int16 PageMax;                      // highest page that the formatter reached
    Int16 MarqueeOn;                    // -1 while there is a marquee on the page, else 0
    double MarqueeX1 = 0;               // where the drag began
    Int16 MarqueeY1;                    // rounded
    double MarqueeX2 = 0;               // the moving corner
    double MarqueeY2 = 0;
    int vsbPage = 0;  // scroll bar, 0 to VsbPageMax
    int VsbPageMax = 0;
    double VsbPageHeight = 0;
    double PicPageHeight = 0;  // the visible part of the pages
    bool LargeView = false;

    /// Element 0..8. Any other index is a control-array Fault.
    PageSurface& Page(int index);

    /// Start-up: the small view in a main form of this height.
    void SizePages(double mainWinHeight);

    void mnuLargeview();
    void mnuSmallView();
    void mnuPgDown();

    /// The scroll bar's value has changed: only the shown page moves.
    void vsbPageChange();

    // The mouse on page `index`, at a place in twips of the page.
    void picPage1MouseDown(int index, double x, double y);
    void picPage1MouseMove(int index, double x, double y, bool buttonHeld);
    void picPage1MouseUp(int index);

    /// Copies what the marquee encloses, without its border. A marquee that was dragged to the left
    /// or up is an invalid-property-value Fault.
    void mnuClipbrd(Clipboard& clipboard);

    /// Hides and clears elements 0 to 5, shows element 0.
    void BlankPages();

    /// Zeroes what tells which page is shown and marked.
    void ResetCounters();

private:
    void DrawMarquee(int index);

    double mainWinHeight = 0;
};

}  // namespace quillon
