// The main form on the screen.
//
// It turns events into calls of handlers, and after each event copies the form's values to the
// controls. What a handler does, and everything about music, is the core's.

#pragma once

#include "qt/menu_bar.h"
#include "qt/other_forms.h"
#include "qt/practice_sheet.h"
#include "qt/runner.h"
#include "qt/strip.h"
#include "qt/system.h"
#include "shell/main_win.h"

#include <QMainWindow>
#include <QTimer>

#include <functional>
#include <memory>

class QLineEdit;
namespace Ui {
class MainWin;
}

namespace quillon {

class EditorWindow : public QMainWindow {
    Q_OBJECT

public:
    /// All must outlive the window. `stripPlayer` is for the strip alone; `theCommandLine` is the
    /// text after the program's name.
    EditorWindow(MainWin& mainWin, QtSystem& theSystem, Runner& theRunner, Player& stripPlayer,
                 std::string theCommandLine);
    ~EditorWindow() override;

    /// The run ends from outside: nothing is asked, and the journal stays.
    void EndUnasked();

    /// Whether the user has ended the run.
    bool HasEndedInOrder() const { return ended && !endedUnasked; }

    /// Called when the start is over and history has begun.
    std::function<void()> OnStarted = [] {};

    /// Imports a file of another program's.
    std::function<void(const std::string& path)> ImportFile = [](const std::string&) {};

    /// The start shows no greeting.
    void GreetNobody() { greets = false; }

    MoreMenu& More() { return strip->Menu(); }

protected:
    void showEvent(QShowEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void changeEvent(QEvent* event) override;
    void moveEvent(QMoveEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    bool KeyIsTaken(const QObject* widget, QKeyEvent& key);
    void ConnectControls();
    void AddStrip(Player& player);
    void OpenPractice();
    void ShowLook();
    void StaffBoxKey(int keyCode, const std::string& characters);
    void FitStaff();
    void FirstActivate();
    void End();
    void ShowForm();
    void ShowControls();
    void ShowTools();
    void ShowFocus();
    QWidget* WidgetOf(Control control) const;
    Control ControlOf(const QObject* widget) const;

    MainWin& win;
    QtSystem& system;
    Runner& runner;
    std::string commandLine;
    std::unique_ptr<Ui::MainWin> ui;
    QLineEdit* txtRptBracket;
    QTimer Timer1{this};
    QTimer placeTimer;  // settings are written when they change, and the place when it rests
    std::unique_ptr<MenuBar> menus;
    std::unique_ptr<Hearing> hearing;
    Strip* strip = nullptr;
    PracticeSheet* practice = nullptr;  // made when it is first opened
    OtherForms otherForms;
    bool activated = false;  // the first activation has been
    bool showing = false;    // ShowForm moves the focus, not the user
    Control focusShown = Control::None;
    bool ended = false;
    bool endedUnasked = false;
    bool greets = true;
};

}  // namespace quillon
