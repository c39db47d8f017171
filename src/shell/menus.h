// The menu bar as a table: caption, name, shortcut and handler of every entry, in menu order.

#pragma once

#include "shell/main_win.h"

#include <span>
#include <string_view>

namespace quillon {

struct MenuEntry {
    const char* Name;      // null: a separator line
    const char* Caption;   // "&" before the letter that chooses it
    const char* Shortcut;  // "Ctrl+H", "Shift+F8"; "" for none
    void (*Run)(MainWin&);
    bool (*Enabled)(const MainWin&) = nullptr;  // null: always
    const char* Hint = "";                      // what it does, in a sentence
};

struct Menu {
    const char* Name;
    const char* Caption;
    std::span<const MenuEntry> Entries;
};

std::span<const Menu> Menus();

/// The entry of that name; null if there is none.
const MenuEntry* FindMenuEntry(std::string_view name);

/// The entry with that shortcut; null if there is none.
const MenuEntry* FindShortcut(std::string_view shortcut);

bool IsEnabled(const MenuEntry& entry, const MainWin& win);

}  // namespace quillon
