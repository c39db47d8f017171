// The codes of the bar signs and navigation signs in a measure's head record.

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

// Slot(6) of a head record: a new line starts with its measure.
inline constexpr std::string_view kLineBreak = "NL";

}  // namespace quillon
