// The menu of the strip's More button: what has no place in the described menus.

#pragma once

#include "qt/runner.h"
#include "shell/main_win.h"

#include <QMenu>

#include <functional>

namespace quillon {

class MoreMenu : public QMenu {
    Q_OBJECT

public:
    /// All must outlive the menu. `strip` is where the commands' keys work.
    MoreMenu(MainWin& mainWin, Runner& theRunner, QWidget* strip);

    /// Puts the recovered tunes into their submenu, which is hidden while it is empty.
    std::function<void(QMenu&)> FillRescued = [](QMenu&) {};

    /// Asks for another program's file and imports it; asks for a file and exports the tune there.
    std::function<void()> Import = [] {};
    std::function<void()> Export = [] {};

    /// Opens the sheet for practising.
    std::function<void()> Practise = [] {};

    /// Enables the commands that can be used now.
    void ShowEnabled();

    /// Whether these actions, which have no button at the moment, stand at the top.
    void ShowOnTop(const QList<QAction*>& actions, bool shown);

signals:
    void LookChosen();

private:
    template <typename Handler> QAction* Add(const char* name, Handler handler);
    void FillLists();
    void FillRecent();
    void FillExamples();
    void Save();
    void Check();
    void ShowOrder();
    void AddLook();
    void OpenManual();

    MainWin& win;
    Runner& runner;
    QWidget* mainWindow;
    QList<QAction*> wholeTune;  // for which a tail that is parked would be missing
    QAction* topEnd;            // below what ShowOnTop puts there
    QMenu* recent;
    QMenu* rescued;
    QMenu* examples;
};

}  // namespace quillon
