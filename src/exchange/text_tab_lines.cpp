#include "exchange/text_tab_lines.h"

#include "exchange/fingering.h"
#include "store/numbers.h"

#include <algorithm>

namespace quillon {

namespace {

constexpr std::size_t kTabWidth = 8;
constexpr std::size_t kMostLines = 20000;
constexpr std::size_t kMostColumns = 1000;
constexpr std::size_t kFewestRows = 4;
constexpr std::size_t kMostRows = 6;
constexpr std::size_t kLinesAbove = 3;  // that may belong to a staff
constexpr std::string_view kLeads = "hp/\\s=";

bool IsOneOf(char c, std::string_view characters)
{
    return characters.find(c) != std::string_view::npos;
}

bool IsLetter(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

bool HasWord(std::string_view text)
{
    constexpr int kLettersOfWord = 3;
    int letters = 0;
    for (const char c : text) {
        letters = IsLetter(c) ? letters + 1 : 0;
        if (letters == kLettersOfWord)
            return true;
    }
    return false;
}

std::optional<TabRow> RowOf(const std::string& line)
{
    TabRow row{line, "", std::min(line.find_first_not_of(' '), line.size())};
    if (IsOneOf(row.At(row.Begin), "ABCDEFGabcdefg")) {
        row.Name = row.At(row.Begin++);
        if (IsOneOf(row.At(row.Begin), "#b"))
            row.Name += row.At(row.Begin++);
        row.Begin = std::min(line.find_first_not_of(' ', row.Begin), line.size());
    }
    if (!IsOneOf(row.At(row.Begin), "|:+-"))
        return std::nullopt;
    std::string_view body = std::string_view(line).substr(row.Begin);
    body = body.substr(0, body.find_last_of("|-:") + 1);
    const auto ruled = std::ranges::count(body, '-') + std::ranges::count(body, '|');
    if (body.size() < 4 || 3 * static_cast<std::size_t>(ruled) < body.size() || HasWord(body))
        return std::nullopt;
    return row;
}

/// A fret of one figure or two; two that no neck has are two notes side by side.
void TakeFret(const TabRow& row, TabToken& token)
{
    const int first = row.At(token.Column) - '0';
    const char next = row.At(token.Column + 1);
    const int both = IsDigit(next) ? 10 * first + (next - '0') : kHighestNeckFret + 1;
    token.Width = both <= kHighestNeckFret ? 2 : 1;
    token.Note.Fret = token.Width == 2 ? both : first;
}

void TakeMarks(const TabRow& row, TabToken& token)
{
    const char before = token.Column > row.Begin ? row.At(token.Column - 1) : ' ';
    const std::size_t behind = token.Column + token.Width;
    if (IsOneOf(before, kLeads))
        token.Lead = before;
    if (before == '(' && row.At(behind) == ')') {
        token.Note.Look = NoteLook::Ghost;
        --token.Column;
        ++token.Width;
    } else if (row.At(behind) == 'r' || (row.At(behind) == 'b' && row.At(behind + 1) == 'r')) {
        token.Note.Look = NoteLook::Release;
    } else if (row.At(behind) == 'b') {
        token.Note.Look = NoteLook::Bend;
    }
}

std::vector<TabToken> TokensOf(const TabRow& row, int string)
{
    std::vector<TabToken> tokens;
    for (std::size_t column = row.Begin; column < row.Text.size(); ++column) {
        TabToken token;
        token.Column = column;
        token.Note.String = string;
        if (IsDigit(row.At(column))) {
            TakeFret(row, token);
            TakeMarks(row, token);
        } else if (IsOneOf(row.At(column), "xX")) {
            token.Note.Look = NoteLook::Muted;
        } else {
            continue;
        }
        column = token.Column + token.Width - 1;
        tokens.push_back(token);
    }
    return tokens;
}

/// A note stands in a column if it begins there, or one further where one of them has two figures.
bool StandsIn(const TabColumn& column, const TabToken& token)
{
    bool wide = token.Width == 2;
    for (const TabToken& other : column.Tokens) {
        if (other.Note.String == token.Note.String)
            return false;
        wide = wide || other.Width == 2;
    }
    return token.Column <= column.At + (wide ? 1 : 0);
}

std::vector<TabWord> WordsOf(const std::string& line)
{
    std::vector<TabWord> words;
    for (std::size_t i = line.find_first_not_of(' '); i < line.size();) {
        const std::size_t end = std::min(line.find(' ', i), line.size());
        words.push_back({i, line.substr(i, end - i)});
        i = line.find_first_not_of(' ', end);
    }
    return words;
}

bool IsRhythm(const std::vector<TabWord>& words)
{
    return !words.empty() && std::ranges::all_of(words, [](const TabWord& word) {
        return TabLengthOf(word.Text).has_value();
    });
}

bool IsChords(const std::vector<TabWord>& words)
{
    constexpr std::size_t kLongest = 8;
    return !words.empty() && std::ranges::all_of(words, [](const TabWord& word) {
        return IsOneOf(word.Text[0], "ABCDEFG") && word.Text.size() <= kLongest;
    });
}

std::vector<TabWord> EndingsIn(const std::vector<TabWord>& words)
{
    std::vector<TabWord> endings;
    for (const TabWord& word : words)
        if (word.Text.size() > 1 && word.Text[0] == '[' && IsDigit(word.Text[1]))
            endings.push_back({word.At, word.Text.substr(1)});
    return endings;
}

void TakeLinesAbove(const std::vector<std::string>& lines, std::size_t first, TabStaff& staff)
{
    for (std::size_t above = 1; above <= std::min(kLinesAbove, first); ++above) {
        const std::string& line = lines[first - above];
        if (IsTabRow(line))
            return;
        const std::vector<TabWord> words = WordsOf(line);
        if (staff.Rhythm.empty() && IsRhythm(words))
            staff.Rhythm = words;
        else if (staff.Chords.empty() && IsChords(words))
            staff.Chords = words;
        else if (staff.Endings.empty())
            staff.Endings = EndingsIn(words);
    }
}

}  // namespace

bool TabStaff::IsBar(std::size_t column) const
{
    const auto bars =
        std::ranges::count_if(Rows, [&](const TabRow& row) { return row.At(column) == '|'; });
    return static_cast<std::size_t>(bars) + 1 >= Rows.size();
}

bool TabStaff::HasDots(std::size_t column) const
{
    return std::ranges::any_of(Rows,
                               [&](const TabRow& row) { return IsOneOf(row.At(column), ":*o"); });
}

std::size_t TabStaff::Width() const
{
    std::size_t width = 0;
    for (const TabRow& row : Rows)
        width = std::max(width, row.Text.size());
    return width;
}

std::vector<TabColumn> TabStaff::Columns() const
{
    std::vector<TabToken> tokens;
    for (std::size_t i = 0; i < Rows.size(); ++i)
        for (const TabToken& token : TokensOf(Rows[i], static_cast<int>(i) + 1))
            tokens.push_back(token);
    std::ranges::stable_sort(tokens, {}, &TabToken::Column);
    std::vector<TabColumn> columns;
    for (const TabToken& token : tokens) {
        if (columns.empty() || !StandsIn(columns.back(), token))
            columns.push_back({token.Column, {}});
        columns.back().Tokens.push_back(token);
    }
    return columns;
}

std::vector<std::string> TabLinesOf(std::string_view bytes)
{
    std::vector<std::string> lines(1);
    for (const char c : bytes) {
        std::string& line = lines.back();
        if (c == '\n') {
            if (lines.size() == kMostLines)
                break;
            lines.emplace_back();
        } else if (c == '\t') {
            line.resize((line.size() / kTabWidth + 1) * kTabWidth, ' ');
        } else if (c != '\r' && line.size() < kMostColumns) {
            line += c;
        }
    }
    return lines;
}

bool IsTabRow(const std::string& line)
{
    return RowOf(line).has_value();
}

std::vector<TabStaff> TabStavesOf(const std::vector<std::string>& lines)
{
    std::vector<TabStaff> staves;
    for (std::size_t i = 0; i < lines.size(); ++i) {
        TabStaff staff;
        const std::size_t first = i;
        for (; i < lines.size() && IsTabRow(lines[i]); ++i)
            staff.Rows.push_back(*RowOf(lines[i]));
        if (staff.Rows.size() < kFewestRows || staff.Rows.size() > kMostRows)
            continue;
        TakeLinesAbove(lines, first, staff);
        staves.push_back(std::move(staff));
    }
    return staves;
}

std::optional<Units> TabLengthOf(std::string_view letter)
{
    constexpr std::string_view kLetters = "whqest";
    const std::size_t at = letter.empty() ? std::string_view::npos : kLetters.find(letter[0]);
    if (at == std::string_view::npos || letter.size() > 2)
        return std::nullopt;
    const Units length = (4 * kQuarterUnits) >> at;
    if (letter.size() == 1)
        return length;
    if (letter[1] == '.')
        return length * 3 / 2;
    return letter[1] == '3' ? std::optional(length * 2 / 3) : std::nullopt;
}

}  // namespace quillon
