// How navigation signs look, and the characters of the notation font.

#pragma once

#include "store/note_codes.h"
#include "store/sign_codes.h"

namespace quillon {

// The notation font and its characters.
inline constexpr const char* kTabFont = "Tab";
inline constexpr std::string_view kSignGlyph = "$";
inline constexpr std::string_view kCodaGlyph = "@";
inline constexpr std::string_view kEighthFlagGlyph = "(";
inline constexpr std::string_view kSixteenthFlagGlyph = ")";
inline constexpr std::string_view kSixteenthRestGlyph = "%";
inline constexpr std::string_view kEighthRestGlyph = "`";
inline constexpr std::string_view kQuarterRestGlyph = "~";

/// The character of a rest that is no block, kTripletSixteenthRest to kQuarterRest.
constexpr std::string_view RestGlyph(int restCode)
{
    return restCode <= kSixteenthRest ? kSixteenthRestGlyph
           : restCode <= kEighthRest  ? kEighthRestGlyph
                                      : kQuarterRestGlyph;
}

/// How a navigation sign looks.
struct SignRow {
    std::string_view Code;
    std::string_view Text;      // in the measure view
    std::string_view PageText;  // "" takes up the top row and prints nothing
    int X;                      // points on StaffBox
    int Y;
    bool Glyph;  // in the notation font
};

inline constexpr SignRow kSignRows[] = {
    {kDsAlFine, "D.S. al Fine", "D.S. Al Fine", 248, 12, false},
    {kDsAlCoda, "D.S. al Coda", "D.S. Al Coda", 248, 12, false},
    {kDcAlFine, "D.C. al Fine", "D.C. Al Fine", 248, 12, false},
    {kDcAlCoda, "D.C. al Coda", "D.C. Al Coda", 248, 12, false},
    {kCoda,     kCodaGlyph,     kCodaGlyph,     12,  12, true },
    {kSign,     kSignGlyph,     kSignGlyph,     12,  12, true },
    {kFine,     "Fine",         "Fine",         260, 12, false},
    {kDs,       "D.S.",         "",             260, 12, false},
    {kDc,       "D.C.",         "",             260, 12, false},
};

/// The row of a sign code, null for any other text.
constexpr const SignRow* FindSign(std::string_view code)
{
    for (const SignRow& row : kSignRows)
        if (row.Code == code)
            return &row;
    return nullptr;
}

}  // namespace quillon
