#include "qt/menu_bar.h"

#include "shell/steps.h"

#include <QMenu>
#include <QMenuBar>

namespace quillon {

void RunEntry(const MenuEntry& entry, MainWin& win, Runner& runner)
{
    runner.Run(
        QString(entry.Caption).remove('&'), [&] { entry.Run(win); }, Input::Command,
        StepName(entry));
}

MenuBar::MenuBar(QMenuBar& bar, MainWin& mainWin, Runner& runner) : win(mainWin)
{
    for (const Menu& menu : Menus()) {
        QMenu* shown = bar.addMenu(menu.Caption);
        shown->setObjectName(menu.Name);
        shown->setToolTipsVisible(true);
        for (const MenuEntry& entry : menu.Entries) {
            if (!entry.Name) {
                shown->addSeparator();
                continue;
            }
            QAction* action = shown->addAction(entry.Caption);
            action->setObjectName(entry.Name);
            action->setShortcut(QKeySequence(entry.Shortcut));
            action->setToolTip(entry.Hint);
            QObject::connect(action, &QAction::triggered, &bar,
                             [this, &runner, &entry] { RunEntry(entry, win, runner); });
            actions.emplace_back(action, &entry);
        }
    }
}

void MenuBar::ShowEnabled()
{
    for (const auto& [action, entry] : actions)
        action->setEnabled(IsEnabled(*entry, win));
}

}  // namespace quillon
