// A page as SVG: lean, with texts as text and the notation glyphs as outlines.

#pragma once

#include "notation/look.h"

#include <string>

namespace quillon {

/// The page is drawn in twips on Letter paper.
std::string SvgPage(const Drawing& page, Look look);

}  // namespace quillon
