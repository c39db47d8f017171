// Positions that depend on whether a staff has four, five or six lines.

#pragma once

namespace quillon {

/// In the measure view: points from the top of StaffBox.
struct ViewSizes {
    // Time signature
    int SignatureSize;  // of its font
    int UpperFigureY;
    int LowerFigureY;

    // Clicks on its numbers: from the first y up to, but not including, the second
    int UpperClickFrom;
    int UpperClickTo;
    int LowerClickFrom;
    int LowerClickTo;

    int RestY;
    int WholeRestY;
    int UpperDotY;  // of a repeat
    int LowerDotY;
};

/// On the page, in twips unless stated otherwise.
struct PageSizes {
    int LowerFigureRaise;  // how much higher the lower number is than on the larger staves
    int RestDrop;          // from the first staff line
    double UpperDot;       // of a repeat; gaps under the first staff line
    double LowerDot;
    int LineRoom;  // a line that would begin nearer to the page's end begins the next page
};

struct StaffSizes {
    int NumStrings;
    ViewSizes View;
    PageSizes Page;
};

// clang-format off
inline constexpr StaffSizes kStaffSizes[] = {
    {4, {16, 32, 44,  36, 46, 48, 59,  36, 46,  43, 56}, {100,   0,  0.75, 2.25,  2840}},
    {5, {18, 32, 48,  34, 49, 51, 65,  42, 54,  47, 65}, {  0, 140,  1.1,  2.75,  2840}},
    {6, {18, 36, 56,  36, 54, 58, 75,  42, 54,  47, 67}, {  0, 140,  1.5,  3.5,   3140}},
};
// clang-format on

/// The row of an instrument's number of strings.
constexpr const StaffSizes& SizesOf(int numStrings)
{
    for (const StaffSizes& sizes : kStaffSizes)
        if (sizes.NumStrings == numStrings)
            return sizes;
    return kStaffSizes[2];
}

}  // namespace quillon
