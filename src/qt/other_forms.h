// The forms beside the main one: opens them, and knows which of them are there.

#pragma once

#include "qt/runner.h"
#include "shell/main_win.h"

#include <QObject>
#include <QPointer>
#include <QWidget>

#include <utility>
#include <vector>

namespace quillon {

class OtherForms : public QObject {
public:
    /// All three must outlive it.
    OtherForms(QWidget& theMainWindow, MainWin& mainWin, Runner& theRunner)
        : mainWindow(theMainWindow), win(mainWin), runner(theRunner)
    {
    }

    /// Closes what is open, without further events.
    ~OtherForms() override;

    /// Shows the form without blocking the main one. A form that is open comes to the front.
    void Open(Form form);

    /// Undo may have gone to where the copy box was open.
    void FollowUndo();

    /// Whether one of them has been the active form since the last call.
    bool TakeWasActive() { return std::exchange(wasActive, false); }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QWidget* Make(Form form);
    void ShowMainDisabled();

    QWidget& mainWindow;
    MainWin& win;
    Runner& runner;
    std::vector<std::pair<Form, QPointer<QWidget>>> forms;
    bool wasActive = false;
};

}  // namespace quillon
