#include "exchange/abc_fields.h"

#include "exchange/text.h"
#include "store/numbers.h"

#include <algorithm>
#include <vector>

namespace quillon {

namespace {

constexpr std::size_t kMostParts = 200;

bool IsAlphabetic(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

bool TakeCharacter(std::string_view& text, char wanted)
{
    if (!text.starts_with(wanted))
        return false;
    text.remove_prefix(1);
    return true;
}

struct Mode {
    std::string_view Name;  // its first three letters
    int Fifths;             // from the major key of the same letter
};

constexpr Mode kModes[] = {
    {"maj", 0 },
    {"ion", 0 },
    {"min", -3},
    {"aeo", -3},
    {"m",   -3},
    {"mix", -1},
    {"dor", -2},
    {"phr", -4},
    {"lyd", 1 },
    {"loc", -5},
};

constexpr int kFifthsOfLetter[] = {0, 2, 4, -1, 1, 3, 5};  // C to B
constexpr int kSharpsInOrder[] = {3, 0, 4, 1, 5, 2, 6};    // F C G D A E B

AbcAccidentals KeyOfFifths(int fifths)
{
    AbcAccidentals key{};
    for (int i = 0; i < fifths; ++i)
        ++key[kSharpsInOrder[i % 7]];
    for (int i = 0; i < -fifths; ++i)
        --key[kSharpsInOrder[6 - i % 7]];
    return key;
}

/// Takes the tonic and the mode off `field`.
std::optional<AbcAccidentals> TakeTonic(std::string_view& field)
{
    if (field.starts_with("HP") || field.starts_with("Hp")) {
        field.remove_prefix(2);
        return KeyOfFifths(2);
    }
    if (field.empty() || field[0] < 'A' || field[0] > 'G')
        return std::nullopt;
    int fifths = kFifthsOfLetter[*AbcLetter(field[0])];
    field.remove_prefix(1);
    if (TakeCharacter(field, '#'))
        fifths += 7;
    else if (TakeCharacter(field, 'b'))
        fifths -= 7;
    const std::string_view behind = Trimmed(field);
    std::size_t letters = 0;
    while (letters < behind.size() && IsAlphabetic(behind[letters]))
        ++letters;
    const std::string word = Lowered(behind.substr(0, letters));
    const auto mode =
        std::ranges::find(kModes, word == "m" ? word : word.substr(0, 3), &Mode::Name);
    if (mode != std::end(kModes)) {
        fifths += mode->Fifths;
        field = behind.substr(letters);
    }
    if (Lowered(Trimmed(field)).starts_with("exp"))
        return AbcAccidentals{};
    return KeyOfFifths(fifths);
}

/// An accidental of a key or a note; none if there is none.
std::optional<int> TakeKeyAccidental(std::string_view& text)
{
    if (TakeCharacter(text, '='))
        return 0;
    int semitones = 0;
    while (TakeCharacter(text, '^'))
        ++semitones;
    while (TakeCharacter(text, '_'))
        --semitones;
    return semitones == 0 ? std::nullopt : std::optional(semitones);
}

/// n/d, n, or /d.
std::optional<Units> TakeFraction(std::string_view& text)
{
    const std::optional<int> upper = TakeNumber(text);
    std::optional<int> lower;
    if (TakeCharacter(text, '/'))
        lower = TakeNumber(text);
    if (!upper && !lower)
        return std::nullopt;
    return 4 * kQuarterUnits * upper.value_or(1) / std::max(1, lower.value_or(1));
}

/// A run of parts up to the closing bracket or the end.
std::string TakeParts(std::string_view& text, int depth)
{
    constexpr int kDeepest = 10;
    std::string order;
    while (!text.empty()) {
        const char c = text.front();
        text.remove_prefix(1);
        if (c == ')')
            break;
        std::string group;
        if (c == '(' && depth < kDeepest)
            group = TakeParts(text, depth + 1);
        else if (IsAlphabetic(c))
            group = c;
        const int times = group.empty() ? 0 : TakeNumber(text).value_or(1);
        for (int i = 0; i < times && order.size() < kMostParts; ++i)
            order += group;
    }
    return order;
}

}  // namespace

std::optional<int> TakeNumber(std::string_view& text)
{
    if (text.empty() || !IsDigit(text.front()))
        return std::nullopt;
    int number = 0;
    for (; !text.empty() && IsDigit(text.front()); text.remove_prefix(1))
        number = std::min(10 * number + (text.front() - '0'), kAbsurd);
    return number;
}

std::optional<int> AbcLetter(char c)
{
    constexpr std::string_view kUpper = "CDEFGAB";
    constexpr std::string_view kLower = "cdefgab";
    const std::size_t at = std::min(kUpper.find(c), kLower.find(c));
    return at == std::string_view::npos ? std::nullopt : std::optional(static_cast<int>(at));
}

void ReadAbcKey(std::string_view field, AbcAccidentals& key)
{
    field = Trimmed(field);
    if (const auto tonic = TakeTonic(field))
        key = *tonic;
    else if (field.empty() || Lowered(field).starts_with("none"))
        key = {};
    for (std::size_t at; (at = field.find_first_of("^_=")) != std::string_view::npos;) {
        const bool word = at > 0 && field[at - 1] != ' ' && !AbcLetter(field[at - 1]);
        field.remove_prefix(at);
        const std::optional<int> accidental = TakeKeyAccidental(field);
        const std::optional<int> letter = field.empty() ? std::nullopt : AbcLetter(field.front());
        if (letter && accidental && !word)
            key[*letter] = *accidental;
    }
}

AbcMeter ReadAbcMeter(std::string_view field)
{
    field = Trimmed(field);
    if (field.starts_with("C|"))
        return {2, 2};
    if (field.starts_with("C"))
        return {4, 4};
    int beats = 0;
    while (!field.empty() && field.front() != '/') {
        if (const std::optional<int> number = TakeNumber(field))
            beats += *number;
        else
            field.remove_prefix(1);
    }
    if (!field.empty())
        field.remove_prefix(1);
    const int unit = TakeNumber(field).value_or(0);
    const bool known = unit == 1 || unit == 2 || unit == 4 || unit == 8 || unit == 16 || unit == 32;
    if (beats < 1 || beats > 64 || !known)
        return {4, 4, true};
    return {beats, unit};
}

std::optional<Units> ReadAbcUnit(std::string_view field)
{
    field = Trimmed(field);
    const std::optional<Units> unit = TakeFraction(field);
    return unit && *unit > 0 && *unit <= 16 * kQuarterUnits ? unit : std::nullopt;
}

Units AbcUnitOf(const AbcMeter& meter)
{
    return !meter.Free && meter.Length() < 3 * kQuarterUnits ? kQuarterUnits / 4
                                                             : kQuarterUnits / 2;
}

double ReadAbcTempo(std::string_view field, Units unit)
{
    if (const std::size_t quote = field.find('"'); quote != std::string_view::npos) {
        const std::size_t close = field.find('"', quote + 1);
        const std::string_view rest =
            close == std::string_view::npos ? std::string_view() : field.substr(close + 1);
        return ReadAbcTempo(Trimmed(rest).empty() ? field.substr(0, quote) : rest, unit);
    }
    const std::size_t equals = field.find('=');
    if (equals == std::string_view::npos) {
        field = Trimmed(field);
        return TakeNumber(field).value_or(0);
    }
    std::string_view left = Trimmed(field.substr(0, equals));
    std::string_view right = Trimmed(field.substr(equals + 1));
    Units beat = 0;
    if (TakeCharacter(left, 'C')) {
        beat = unit * TakeNumber(left).value_or(1);
    } else {
        for (; !left.empty(); left = Trimmed(left)) {
            const auto part = TakeFraction(left);
            if (!part)
                break;
            beat += *part;
        }
    }
    return TakeNumber(right).value_or(0) * static_cast<double>(beat) / kQuarterUnits;
}

std::string ReadAbcPartOrder(std::string_view field)
{
    std::string order;
    while (!field.empty())
        order += TakeParts(field, 0);
    return order.substr(0, kMostParts);
}

}  // namespace quillon
