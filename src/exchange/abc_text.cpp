#include "exchange/abc_text.h"

#include "exchange/text.h"

#include <algorithm>
#include <charconv>
#include <iterator>
#include <optional>

namespace quillon {

namespace {

struct Accent {
    char Sign;              // behind a backslash, before the letter
    std::string_view Name;  // behind the letter, in an entity
    std::string_view Letters;
    std::u32string_view Characters;  // the letters with the accent
};

// clang-format off
constexpr Accent kAccents[] = {
    {'`',  "grave", "AEIOUaeiou",   U"\xC0\xC8\xCC\xD2\xD9\xE0\xE8\xEC\xF2\xF9"},
    {'\'', "acute", "AEIOUYaeiouy", U"\xC1\xC9\xCD\xD3\xDA\xDD\xE1\xE9\xED\xF3\xFA\xFD"},
    {'^',  "circ",  "AEIOUaeiou",   U"\xC2\xCA\xCE\xD4\xDB\xE2\xEA\xEE\xF4\xFB"},
    {'"',  "uml",   "AEIOUaeiouy",  U"\xC4\xCB\xCF\xD6\xDC\xE4\xEB\xEF\xF6\xFC\xFF"},
    {'~',  "tilde", "ANOano",       U"\xC3\xD1\xD5\xE3\xF1\xF5"},
    {'c',  "cedil", "Cc",           U"\xC7\xE7"},
    {'a',  "ring",  "Aa",           U"\xC5\xE5"},
    {'v',  "caron", "SZsz",         U"\x160\x17D\x161\x17E"},
    {'/',  "slash", "Oo",           U"\xD8\xF8"},
};

struct Named {
    std::string_view Name;
    char32_t Character;
};

constexpr Named kEntities[] = {
    {"amp", '&'}, {"lt", '<'}, {"gt", '>'}, {"quot", '"'}, {"apos", '\''}, {"nbsp", ' '},
    {"szlig", 0xDF}, {"AElig", 0xC6}, {"aelig", 0xE6}, {"copy", 0xA9},
};

constexpr Named kMnemonics[] = {
    {"ss", 0xDF}, {"AE", 0xC6}, {"ae", 0xE6}, {"%", '%'}, {"&", '&'}, {"\\", '\\'},
};
// clang-format on

std::optional<char32_t> Accented(const Accent* accent, char letter)
{
    if (accent == std::end(kAccents))
        return std::nullopt;
    const std::size_t at = accent->Letters.find(letter);
    return at == std::string_view::npos ? std::nullopt : std::optional(accent->Characters[at]);
}

std::optional<char32_t> CharacterOf(std::string_view digits, int base)
{
    int code = 0;
    const char* first = digits.data();
    const char* last = first + digits.size();
    const auto [end, error] = std::from_chars(first, last, code, base);
    const bool is = error == std::errc() && end == last && code >= ' ' && code <= 0xFFFF;
    return is ? std::optional(static_cast<char32_t>(code)) : std::nullopt;
}

/// What "&NAME;" stands for.
std::optional<char32_t> CharacterOfEntity(std::string_view name)
{
    if (name.starts_with("#x"))
        return CharacterOf(name.substr(2), 16);
    if (name.starts_with('#'))
        return CharacterOf(name.substr(1), 10);
    const auto* entity = std::ranges::find(kEntities, name, &Named::Name);
    if (entity != std::end(kEntities))
        return entity->Character;
    if (name.empty())
        return std::nullopt;
    return Accented(std::ranges::find(kAccents, name.substr(1), &Accent::Name), name[0]);
}

/// Takes what stands for a character off `text`; none, and nothing is taken, if nothing does.
std::optional<char32_t> TakeCharacter(std::string_view& text)
{
    std::optional<char32_t> character;
    std::size_t length = 0;
    if (text.starts_with('&')) {
        length = text.find(';');
        if (length == std::string_view::npos)
            return std::nullopt;
        character = CharacterOfEntity(text.substr(1, length - 1));
        ++length;
    } else if (text.starts_with("\\u") && text.size() >= 6) {
        length = 6;
        character = CharacterOf(text.substr(2, 4), 16);
    } else if (text.starts_with('\\') && text.size() >= 2) {
        const std::string_view behind = text.substr(1);
        const auto* named = std::ranges::find_if(
            kMnemonics, [&](const Named& one) { return behind.starts_with(one.Name); });
        const bool known = named != std::end(kMnemonics);
        length = known ? 1 + named->Name.size() : 3;
        if (known)
            character = named->Character;
        else if (behind.size() >= 2)
            character = Accented(std::ranges::find(kAccents, behind[0], &Accent::Sign), behind[1]);
    }
    if (character)
        text.remove_prefix(length);
    return character;
}

}  // namespace

std::string AbcText(std::string_view text)
{
    const std::string utf8 = IsUtf8(text) ? std::string(text) : Utf8(text);
    std::string made;
    for (std::string_view rest = utf8; !rest.empty();) {
        if (const auto character = TakeCharacter(rest)) {
            AppendUtf8(made, *character);
            continue;
        }
        made += rest.front();
        rest.remove_prefix(1);
    }
    return TextForTable(made);
}

/// A percent sign would begin a comment, even inside a text.
std::string WrittenAbcText(std::string_view text)
{
    std::string written;
    for (const char c : Utf8(text)) {
        if (c == '%')
            written += "\\u0025";
        else if (c == '\\')
            written += "\\\\";
        else
            written += c;
    }
    return written;
}

}  // namespace quillon
