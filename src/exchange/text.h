// The texts of other programs' files.

#pragma once

#include <string>
#include <string_view>

namespace quillon {

/// A text in UTF-8, or, where it is none, in Windows-1252 (of which Latin-1 is a part), as one that
/// the note table can hold: Windows-1252, on one line, without double quotes. What that lacks
/// becomes a question mark.
std::string TextForTable(std::string_view text);

/// Whether a text is UTF-8; one in ASCII is.
bool IsUtf8(std::string_view text);

void AppendUtf8(std::string& text, char32_t character);

/// A text of the note table in UTF-8.
std::string Utf8(std::string_view text);

/// With small letters a to z.
std::string Lowered(std::string_view text);

/// Without blanks at either end.
std::string_view Trimmed(std::string_view text);

}  // namespace quillon
