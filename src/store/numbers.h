// How numbers behave: checked 16-bit values, rounding, division, and numbers as text.
//
// Everything that rounds, divides, or turns text into numbers and back goes through here, so that
// the editor, the page and the MIDI file agree to the last digit.

#pragma once

#include "store/fault.h"

#include <limits>
#include <string>
#include <string_view>

namespace quillon {

/// A signed 16-bit value. Giving it a value outside -32768..32767 is an overflow Fault.
class Int16 {
public:
    constexpr Int16() = default;
    constexpr Int16(int number)  // NOLINT: meant to convert, as a plain integer would
        : value(Checked(number))
    {
    }

    constexpr operator int() const { return value; }  // NOLINT: as above

    constexpr Int16& operator+=(int amount) { return *this = Int16(value + amount); }
    constexpr Int16& operator-=(int amount) { return *this = Int16(value - amount); }
    constexpr Int16& operator++() { return *this += 1; }
    constexpr Int16& operator--() { return *this -= 1; }

private:
    static constexpr short Checked(int number)
    {
        if (number < std::numeric_limits<short>::min() ||
            number > std::numeric_limits<short>::max())
            throw Fault(Error::Overflow);
        return static_cast<short>(number);
    }

    short value = 0;
};

/// The nearest integer, ties to even. Outside the range of int: an overflow Fault.
int Round(double value);

/// The largest integer not above `value`. Outside the range of int: an overflow Fault.
int Floor(double value);

/// The nearest single-precision number. Outside their range: an overflow Fault.
float Single(double value);

/// Integer division: both operands are rounded first, and the quotient is truncated toward zero.
/// A divisor that rounds to 0 is a division-by-zero Fault, a quotient beyond int an overflow.
int IntegerDivide(double dividend, double divisor);

/// The leading number of a text; 0 if there is none. Blanks are skipped everywhere, even inside
/// the number. A number too large for a double is an overflow Fault.
double Val(std::string_view text);

/// As Val, for a text in which a sign does not belong to a number: "-5" gives 0.
double ValUnsigned(std::string_view text);

constexpr bool IsDigit(char c)
{
    return c >= '0' && c <= '9';
}

/// The shortest text that reads back as the same number: "10", "14.5", "0.75".
std::string NumberText(double value);

/// As above for a single-precision value, so that .7 does not show as 0.699999988.
std::string NumberText(float value);

}  // namespace quillon
