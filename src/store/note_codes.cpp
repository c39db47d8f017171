#include "store/note_codes.h"

#include <algorithm>
#include <iterator>

namespace quillon {

namespace {

struct CodeRow {
    int code;
    int ticks;
    int spacing;
    int pageWidth;
    int value;
    bool triplet;
};

constexpr CodeRow kCodes[] = {
    {kTripletSixteenth,     2,  2,  2,  kTripletSixteenth, true },
    {kSixteenth,            3,  2,  2,  kSixteenth,        false},
    {kTripletEighth,        4,  2,  2,  kTripletEighth,    true },
    {kEighth,               6,  3,  2,  kEighth,           false},
    {kDottedEighth,         9,  3,  2,  kDottedEighth,     false},
    {kTripletQuarter,       8,  3,  2,  kTripletQuarter,   true },
    {kQuarter,              12, 4,  3,  kQuarter,          false},
    {kDottedQuarter,        18, 4,  3,  kDottedQuarter,    false},
    {kHalf,                 24, 8,  5,  kHalf,             false},
    {kDottedHalf,           36, 12, 8,  kDottedHalf,       false},
    {kWhole,                48, 16, 12, kWhole,            false},
    {kHalfRest,             24, 8,  5,  kHalf,             false},
    {kWholeRest,            48, 16, 12, kWhole,            false},
    {kTripletSixteenthRest, 2,  2,  3,  kTripletSixteenth, true },
    {kSixteenthRest,        3,  2,  3,  kSixteenth,        false},
    {kTripletEighthRest,    4,  2,  3,  kTripletEighth,    true },
    {kEighthRest,           6,  3,  3,  kEighth,           false},
    {kTripletQuarterRest,   8,  3,  3,  kTripletQuarter,   true },
    {kQuarterRest,          12, 4,  3,  kQuarter,          false},
};
static_assert(std::size(kCodes) == kNoteValues + kRests);

/// By button.
constexpr int kRestCodes[] = {0,
                              kTripletSixteenthRest,
                              kSixteenthRest,
                              kTripletEighthRest,
                              kEighthRest,
                              kEighthRest,
                              kTripletQuarterRest,
                              kQuarterRest,
                              kQuarterRest,
                              kHalfRest,
                              kHalfRest,
                              kWholeRest};
static_assert(std::size(kRestCodes) == kNoteValues + 1);

constexpr CodeRow kNoRow{};

const CodeRow& RowOf(int noteCode)
{
    const auto row = std::find_if(std::begin(kCodes), std::end(kCodes),
                                  [&](const CodeRow& r) { return r.code == noteCode; });
    return row == std::end(kCodes) ? kNoRow : *row;
}

}  // namespace

int TicksOf(int noteCode)
{
    return RowOf(noteCode).ticks;
}

int SpacingOf(int noteCode)
{
    return RowOf(noteCode).spacing;
}

int PageWidthOf(int noteCode)
{
    return RowOf(noteCode).pageWidth;
}

bool IsTriplet(int noteCode)
{
    return RowOf(noteCode).triplet;
}

int RestCodeOf(int value)
{
    return IsNoteValue(value) ? kRestCodes[value] : 0;
}

int ValueOf(int noteCode)
{
    return RowOf(noteCode).value;
}

}  // namespace quillon
