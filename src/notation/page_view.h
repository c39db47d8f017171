// The page view: nine page surfaces of which one is shown, scrolled in a window on them.
//
// All lengths are twips. A page keeps its drawing while hidden.

#pragma once

#include "notation/draw_surface.h"
#include "store/main_form.h"
#include "store/numbers.h"

#include <vector>

namespace quillon {

constexpr int kPageCount = 9;
constexpr int kRefreshedPages = 6;  // a refresh hides and clears these; pages 6 to 8 stay as they are
constexpr double kPageWidth = 12240;   // 8.5 inches
constexpr double kPageHeight = 15840;  // 11 inches

struct PageSurface {
    DrawSurface Surface;
    bool Visible = false;
    double Top = 0;  // minus the scrolled distance
};

class PageView {
public:
    PageView(MainForm& mainForm, const TextMetrics& metrics);

    std::vector<PageSurface> picPage1;  // kPageCount of them
    Int16 ShownPage;                    // in view, or touched by the mouse last
    Int16 PageMax;                      // highest page that the formatter reached
    Int16 MarqueeOn;                    // -1 while a marquee stands on the page, else 0
    int vsbPage = 0;                    // scroll bar, twips
    bool LargeView = false;

    /// Element 0..8. Any other index is a control-array Fault.
    PageSurface& Page(int index);

    void mnuLargeview();
    void mnuSmallView();

    /// Hides and clears elements 0 to 5, shows element 0.
    void BlankPages();

    /// Zeroes what tells which page is shown and marked.
    void ResetCounters();

private:
    MainForm& form;
};

}  // namespace quillon
