#include "notation/page_layout.h"

namespace quillon {

std::optional<int> LayOutPages(const Tune&, const PageSettings&, PageView& pages)
{
    pages.BlankPages();
    return std::nullopt;
}

}  // namespace quillon
