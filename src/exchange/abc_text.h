// Texts in ABC, in which a backslash or an ampersand may begin a character that is hard to type.

#pragma once

#include <string>
#include <string_view>

namespace quillon {

/// A title, a chord name or a remark for the note table, with what \'e, &eacute; and \u00e9 stand
/// for. What stands for nothing is kept as it is.
std::string AbcText(std::string_view text);

/// A text of the note table for an ABC file.
std::string WrittenAbcText(std::string_view text);

}  // namespace quillon
