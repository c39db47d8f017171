#include "exchange/text.h"

#include <algorithm>
#include <iterator>
#include <optional>

namespace quillon {

namespace {

/// The characters 0x80 to 0x9F of Windows-1252; 0 where there is none. All others are those of
/// Unicode.
constexpr char32_t kUpper[] = {0x20AC, 0,      0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                               0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0,      0x017D, 0,
                               0,      0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                               0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0,      0x017E, 0x0178};
static_assert(std::size(kUpper) == 0x20);

/// How many bytes follow the first one of a character in UTF-8; none if it begins none.
std::optional<std::size_t> Followers(unsigned char first)
{
    if (first < 0x80)
        return 0;
    if (first >= 0xC2 && first < 0xE0)
        return 1;
    if (first >= 0xE0 && first < 0xF0)
        return 2;
    if (first >= 0xF0 && first < 0xF5)
        return 3;
    return std::nullopt;
}

/// The characters of a text in UTF-8; none if it is not.
std::optional<std::u32string> FromUtf8(std::string_view text)
{
    std::u32string characters;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto first = static_cast<unsigned char>(text[i]);
        const std::optional<std::size_t> followers = Followers(first);
        if (!followers || i + *followers >= text.size())
            return std::nullopt;
        char32_t character = *followers == 0 ? first : first & (0x3FU >> *followers);
        for (std::size_t n = 0; n < *followers; ++n) {
            const auto next = static_cast<unsigned char>(text[++i]);
            if ((next & 0xC0U) != 0x80)
                return std::nullopt;
            character = character << 6U | (next & 0x3FU);
        }
        characters += character;
    }
    return characters;
}

char ToTable(char32_t character)
{
    if (character == '"')
        return '\'';
    if (character < ' ' || character == 0x7F || character == 0xA0)
        return ' ';
    if (character < 0x80 || (character > 0xA0 && character < 0x100))
        return static_cast<char>(character);
    const auto found = std::find(std::begin(kUpper), std::end(kUpper), character);
    return found == std::end(kUpper) ? '?' : static_cast<char>(0x80 + (found - kUpper));
}

}  // namespace

bool IsUtf8(std::string_view text)
{
    return FromUtf8(text).has_value();
}

void AppendUtf8(std::string& text, char32_t character)
{
    if (character < 0x80) {
        text += static_cast<char>(character);
    } else if (character < 0x800) {
        text += static_cast<char>(0xC0 | character >> 6U);
        text += static_cast<char>(0x80 | (character & 0x3FU));
    } else {
        text += static_cast<char>(0xE0 | character >> 12U);
        text += static_cast<char>(0x80 | (character >> 6U & 0x3FU));
        text += static_cast<char>(0x80 | (character & 0x3FU));
    }
}

std::string TextForTable(std::string_view text)
{
    std::string table;
    if (const auto characters = FromUtf8(text)) {
        for (const char32_t character : *characters)
            table += ToTable(character);
    } else {
        for (const char byte : text)
            table += static_cast<unsigned char>(byte) < 0x80
                         ? ToTable(static_cast<unsigned char>(byte))
                         : byte;
    }
    return std::string(Trimmed(table));
}

std::string Utf8(std::string_view text)
{
    std::string utf8;
    for (const char byte : text) {
        const auto code = static_cast<unsigned char>(byte);
        const bool upper = code >= 0x80 && code < 0xA0;
        const char32_t character = upper ? kUpper[code - 0x80] : code;
        AppendUtf8(utf8, character == 0 && upper ? U'?' : character);
    }
    return utf8;
}

std::string Lowered(std::string_view text)
{
    std::string lower(text);
    for (char& c : lower)
        if (c >= 'A' && c <= 'Z')
            c = static_cast<char>(c - 'A' + 'a');
    return lower;
}

std::string_view Trimmed(std::string_view text)
{
    constexpr std::string_view kBlanks = " \t\r\n";
    const std::size_t first = text.find_first_not_of(kBlanks);
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

}  // namespace quillon
