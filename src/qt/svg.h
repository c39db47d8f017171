// A page as SVG: lean, and the same in every viewer.

#pragma once

#include "notation/drawing.h"
#include "platform/renderer.h"

#include <string>

namespace quillon {

/// The page is drawn in twips. Texts are outlines, each character's once in the file, with the text
/// itself as their title.
std::string SvgPage(const Drawing& page, const PageChoices& choices);

}  // namespace quillon
