// All keys on one sheet: those of the staff, of the menus, and of the strip beside the menus.

#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace quillon {

/// A command of the strip, which has no place in the menus.
struct StripCommand {
    const char* Name;
    const char* Caption;
    const char* Shortcuts;  // with ", " between them; "" for none
    const char* Hint;       // what it does, in a sentence
};

std::span<const StripCommand> StripCommands();

/// The command of that name, which must be there.
const StripCommand& FindStripCommand(std::string_view name);

struct KeyLine {
    std::string Keys;
    std::string Meaning;
};

struct KeyGroup {
    std::string Title;
    std::vector<KeyLine> Lines;
};

/// A group for the staff, one for each menu that has keys, one for the strip.
std::vector<KeyGroup> KeySheet();

}  // namespace quillon
