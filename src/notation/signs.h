// The bar signs and navigation signs that a measure's head record bears, as their codes.

#pragma once

#include <string_view>

namespace quillon {

// BarCode of a head record; "" is a plain bar.
inline constexpr std::string_view kPlainBar = "93";  // in the page layout's own table only
inline constexpr std::string_view kDoubleBar = "94";
inline constexpr std::string_view kBeginDoubleBar = "95";
inline constexpr std::string_view kRepeatStart = "98";
inline constexpr std::string_view kRepeatEnd = "99";

// Slot(1) of a head record.
inline constexpr std::string_view kDs = "81";
inline constexpr std::string_view kDc = "82";
inline constexpr std::string_view kFine = "83";
inline constexpr std::string_view kCoda = "84";
inline constexpr std::string_view kDcAlCoda = "85";
inline constexpr std::string_view kDcAlFine = "86";
inline constexpr std::string_view kSign = "87";
inline constexpr std::string_view kDsAlCoda = "88";
inline constexpr std::string_view kDsAlFine = "89";

// Slot(6) of a head record: the line breaks before its measure.
inline constexpr std::string_view kLineBreak = "NL";

// The notation font and its characters.
inline constexpr const char* kTabFont = "Tab";
inline constexpr std::string_view kSignGlyph = "$";
inline constexpr std::string_view kCodaGlyph = "@";
inline constexpr std::string_view kEighthFlag = "(";
inline constexpr std::string_view kSixteenthFlag = ")";
inline constexpr std::string_view kSixteenthRest = "%";
inline constexpr std::string_view kEighthRest = "`";
inline constexpr std::string_view kQuarterRest = "~";

/// How the measure view shows a navigation sign.
struct SignRow {
    std::string_view Code;
    std::string_view Text;
    int X;  // points on StaffBox
    int Y;
    bool Glyph;  // in the notation font
};

inline constexpr SignRow kSignRows[] = {
    {kDsAlFine, "D.S. al Fine", 248, 12, false},
    {kDsAlCoda, "D.S. al Coda", 248, 12, false},
    {kDcAlFine, "D.C. al Fine", 248, 12, false},
    {kDcAlCoda, "D.C. al Coda", 248, 12, false},
    {kCoda,     kCodaGlyph,     12,  12, true },
    {kSign,     kSignGlyph,     12,  12, true },
    {kFine,     "Fine",         260, 12, false},
    {kDs,       "D.S.",         260, 12, false},
    {kDc,       "D.C.",         260, 12, false},
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
