#include "exchange/written_values.h"

#include <iterator>

namespace quillon {

namespace {

constexpr WrittenValue kValues[] = {
    {2,  "32nd",    32, false, true },
    {3,  "32nd",    32, false, false},
    {4,  "16th",    16, false, true },
    {6,  "16th",    16, false, false},
    {8,  "eighth",  8,  false, true },
    {9,  "16th",    16, true,  false},
    {12, "eighth",  8,  false, false},
    {16, "quarter", 4,  false, true },
    {18, "eighth",  8,  true,  false},
    {24, "quarter", 4,  false, false},
    {36, "quarter", 4,  true,  false},
    {48, "half",    2,  false, false},
    {72, "half",    2,  true,  false},
    {96, "whole",   1,  false, false},
};

constexpr WrittenPitch kPitches[] = {
    {'C', false},
    {'C', true },
    {'D', false},
    {'D', true },
    {'E', false},
    {'F', false},
    {'F', true },
    {'G', false},
    {'G', true },
    {'A', false},
    {'A', true },
    {'B', false},
};

}  // namespace

const WrittenValue& WrittenValueOf(Units length)
{
    const Units halfTicks = length / (kTickUnits / 2);
    const WrittenValue* value = std::begin(kValues);
    for (const WrittenValue& other : kValues)
        if (other.HalfTicks <= halfTicks)
            value = &other;
    return *value;
}

WrittenPitch WrittenPitchOf(int pitch)
{
    return kPitches[(pitch % 12 + 12) % 12];
}

}  // namespace quillon
