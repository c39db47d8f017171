// The menu bar, made from the table of menus.

#pragma once

#include "qt/runner.h"
#include "shell/menus.h"

#include <utility>
#include <vector>

class QAction;
class QMenuBar;

namespace quillon {

/// Runs a menu command as an event.
void RunEntry(const MenuEntry& entry, MainWin& win, Runner& runner);

class MenuBar {
public:
    /// Fills the bar. A menu and its entries bear the names of the table.
    MenuBar(QMenuBar& bar, MainWin& mainWin, Runner& runner);

    /// Enables the entries whose commands can be used now.
    void ShowEnabled();

private:
    MainWin& win;
    std::vector<std::pair<QAction*, const MenuEntry*>> actions;
};

}  // namespace quillon
