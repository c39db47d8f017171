// The staves of a text with tablature: which lines are strings, and what stands where.

#pragma once

#include "exchange/music.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quillon {

/// A line of a staff. Before column `Begin` stands the name of its string, if it has one.
struct TabRow {
    std::string Text;
    std::string Name;
    std::size_t Begin = 0;

    char At(std::size_t column) const { return column < Text.size() ? Text[column] : ' '; }
};

/// What stands on a string in one place.
struct TabToken {
    std::size_t Column = 0;  // of its first figure or bracket
    std::size_t Width = 1;   // up to its last figure
    MusicNote Note;
    char Lead = ' ';  // how the note before leads to it: h p / \ s =
};

/// Notes that are written one above the other.
struct TabColumn {
    std::size_t At = 0;
    std::vector<TabToken> Tokens;
};

/// A word of a line above the staff.
struct TabWord {
    std::size_t At = 0;
    std::string Text;
};

struct TabStaff {
    std::vector<TabRow> Rows;
    std::vector<TabWord> Rhythm;  // a letter for each note and rest; empty without such a line
    std::vector<TabWord> Chords;
    std::vector<TabWord> Endings;  // "[1" and what follows it

    /// All rows but at most one have a bar there.
    bool IsBar(std::size_t column) const;

    /// The dots of a repeat stand there.
    bool HasDots(std::size_t column) const;

    std::size_t Width() const;
    std::vector<TabColumn> Columns() const;
};

/// A text's lines, their tabs expanded.
std::vector<std::string> TabLinesOf(std::string_view bytes);

/// Whether a line is a string: mostly dashes, and no words.
bool IsTabRow(const std::string& line);

/// Runs of four, five or six such lines, with what stands above them.
std::vector<TabStaff> TabStavesOf(const std::vector<std::string>& lines);

/// The length that a letter of the rhythm line tells: w h q e s t, with a dot or a triplet's 3;
/// none if it is no such letter.
std::optional<Units> TabLengthOf(std::string_view letter);

}  // namespace quillon
