// A drawing as a value: the list of what was drawn, in order.
//
// The window paints it, the printer prints one per page, pictures and the clipboard are made from
// it, and its text form is the drawing log. A page keeps its drawing while hidden because it is a
// value.

#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace quillon {

enum class Shape { Line, Box, Circle, Arc, Text };
enum class PenMode { Invert = 6, Xor = 10, Plain = 1 };
enum class PenStyle { Solid = 0, Dotted = 2 };

/// What an operation stands for: how it is painted depends on it (notation/look.h), and nothing
/// else. No log shows it.
enum class Role {
    Other,
    StringLine,
    Bar,  // a plain one, or the edge of a line
    ThickBar,
    ThinBar,    // beside a thick one, and drawn after it
    RepeatDot,  // beside a thin bar, and drawn after it
    Bracket,    // of a repeat or a triplet
    Stem,
    Beam,
    SecondBeam,  // or a stub of it
    BlockRest,
    Tie,
    Figure,  // a fret number
    Joint,   // what joins two fret numbers
    Dot,     // behind a fret number
    Number,  // of a triplet, in a gap of its bracket
    Fingering,
    Title,
    Remark,  // or a sign's words, in the row above the chord names
};

struct Typeface {
    std::string Name;
    double Size = 0;  // points
    bool Bold = false;

    bool operator==(const Typeface&) const = default;
};

/// One operation. Coordinates are in the surface's units.
struct Operation {
    Shape Kind = Shape::Line;
    double X1 = 0;  // Line, Box: from; Circle, Arc: centre; Text: top left corner
    double Y1 = 0;
    double X2 = 0;  // Line, Box: to
    double Y2 = 0;
    double Radius = 0;  // Circle; horizontal radius of an Arc
    double Start = 0;   // Arc: radians, counter-clockwise from the positive x axis
    double End = 0;
    double Aspect = 1;  // Arc: height to width
    int Width = 1;      // pen thickness in device dots
    bool Filled = false;
    PenMode Mode = PenMode::Plain;
    PenStyle Style = PenStyle::Solid;
    std::string Text;  // bytes of Windows-1252
    Typeface TextFont;
    Role Part = Role::Other;

    bool operator==(const Operation&) const = default;
};

/// `text` between double quotes: `"` and `\` after a backslash, bytes outside 32..126 as \xnn.
std::string Quoted(std::string_view text);

class Drawing {
public:
    Drawing() = default;
    Drawing(std::vector<Operation> drawn, bool wasCleared)
        : operations(std::move(drawn)), cleared(wasCleared)
    {
    }

    /// Forgets what was drawn. The log of a drawing that was cleared starts with a `clear` line.
    void Clear();

    /// Takes over what another drawing shows.
    void Show(const Drawing& other);

    /// Appends an operation. An xor or invert operation that equals one still on the list takes
    /// that one off instead: drawn twice, it is gone.
    void Add(Operation operation);

    const std::vector<Operation>& Operations() const { return operations; }
    bool WasCleared() const { return cleared; }

    /// Changes with every Clear, Show and Add; whoever shows the drawing repaints it then.
    unsigned Revision() const { return revision; }

    /// The drawing as text, one operation per line.
    std::string Log() const;

private:
    std::vector<Operation> operations;
    bool cleared = false;
    unsigned revision = 0;
};

}  // namespace quillon
