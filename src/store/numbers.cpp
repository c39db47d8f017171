#include "store/numbers.h"

#include <charconv>
#include <cmath>
#include <system_error>

namespace quillon {

namespace {

int ToInt(double whole)
{
    if (!(whole >= std::numeric_limits<int>::min() && whole <= std::numeric_limits<int>::max()))
        throw Fault(Error::Overflow);
    return static_cast<int>(whole);
}

bool IsBlank(char c)
{
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

/// The characters of `text` that make up its leading number, in the form that from_chars reads.
std::string LeadingNumber(std::string_view text, bool withSign)
{
    std::string packed;
    for (char c : text)
        if (!IsBlank(c))
            packed += c;
    std::string number;
    std::size_t i = 0;
    if (withSign && i < packed.size() && (packed[i] == '-' || packed[i] == '+')) {
        if (packed[i] == '-')
            number += '-';
        ++i;
    }
    bool digits = false;
    bool point = false;
    for (; i < packed.size(); ++i) {
        if (IsDigit(packed[i]))
            digits = true;
        else if (packed[i] == '.' && !point)
            point = true;
        else
            break;
        number += packed[i];
    }
    if (!digits)
        return {};
    if (i < packed.size() && std::string_view("eEdD").find(packed[i]) != std::string_view::npos) {
        std::size_t j = i + 1;
        std::string exponent = "e";
        if (j < packed.size() && (packed[j] == '-' || packed[j] == '+'))
            exponent += packed[j++];
        if (j < packed.size() && IsDigit(packed[j])) {
            while (j < packed.size() && IsDigit(packed[j]))
                exponent += packed[j++];
            number += exponent;
        }
    }
    return number;
}

/// Whether a decimal number that does not fit into a double is too small rather than too large.
bool IsTiny(const std::string& number)
{
    const std::size_t e = number.find('e');
    if (number.find_first_of("123456789") >= e)
        return true;  // zero times a power that is out of range
    return e != std::string::npos && number.compare(e, 2, "e-") == 0;
}

double ParseLeading(std::string_view text, bool withSign)
{
    const std::string number = LeadingNumber(text, withSign);
    if (number.empty())
        return 0;
    double value = 0;
    const auto result = std::from_chars(number.data(), number.data() + number.size(), value);
    if (result.ec == std::errc::result_out_of_range) {
        if (IsTiny(number))
            return 0;
        throw Fault(Error::Overflow);
    }
    return value;
}

template <typename Real> std::string ShortestText(Real value)
{
    char buffer[64];
    const auto result = std::to_chars(buffer, buffer + sizeof buffer, value);
    return {buffer, result.ptr};
}

}  // namespace

int Round(double value)
{
    const double below = std::floor(value);
    const double fraction = value - below;
    if (fraction < 0.5 || (fraction == 0.5 && std::fmod(below, 2) == 0))
        return ToInt(below);
    return ToInt(below + 1);
}

int Floor(double value)
{
    return ToInt(std::floor(value));
}

float Single(double value)
{
    if (!(std::abs(value) <= std::numeric_limits<float>::max()))
        throw Fault(Error::Overflow);
    return static_cast<float>(value);
}

int IntegerDivide(double dividend, double divisor)
{
    const int whole = Round(divisor);
    if (whole == 0)
        throw Fault(Error::DivisionByZero);
    return ToInt(std::trunc(static_cast<double>(Round(dividend)) / whole));
}

double Val(std::string_view text)
{
    return ParseLeading(text, true);
}

double ValUnsigned(std::string_view text)
{
    return ParseLeading(text, false);
}

std::string NumberText(double value)
{
    return ShortestText(value);
}

std::string NumberText(float value)
{
    return ShortestText(value);
}

}  // namespace quillon
