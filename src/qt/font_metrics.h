// The real fonts: loading the notation font, and how wide texts are.
//
// A font is made with its size in twips as its pixel size and without hinting. Widths are then
// linear, and the same on every screen and printer.

#pragma once

#include "notation/draw_surface.h"

#include <QFont>

#include <map>
#include <string>
#include <string_view>
#include <tuple>

namespace quillon {

/// Takes the notation font from the program's own font folder, or from the build tree's. A font
/// that is installed in the system needs no loading.
void LoadNotationFont();

/// Whether a font of this name can be selected. Names know no case; a metric-compatible font
/// serves for Arial.
bool FontAvailable(const QString& name);

/// The name by which a tune keeps a font of the list: "Arial" for the one that serves for it.
QString NameOfFont(const QString& family);

/// The font for painting and measuring in twips. Sizes are clamped to 1..20000 twips.
QFont FontInTwips(const Typeface& typeface);

/// Whether a font is the one with the notation signs.
bool IsNotation(const Typeface& typeface);

/// The beginning of a text, long enough to be at least `width` twips wide, or all of it.
std::string_view Beginning(std::string_view text, const QFont& font, double width);

/// The width of a text in twips. That of a long one is the sum of its characters' widths: shaping
/// it as a whole takes the toolkit seconds for a megabyte, and its numbers overflow.
double WidthInTwips(std::string_view text, const QFont& font);

class FontMetrics : public TextMetrics {
public:
    double Width(std::string_view text, const Typeface& font) const override;
    double LineHeight(const Typeface& font) const override;
    InkBox Ink(std::string_view text, const Typeface& font) const override;

private:
    using InkKey = std::tuple<std::string, std::string, int, bool>;  // text, font, twips, bold

    mutable std::map<InkKey, InkBox> inks;
};

}  // namespace quillon
