// frmPgSetup on the screen.

#pragma once

#include "qt/form_window.h"
#include "shell/main_win.h"

#include <memory>

class QWindow;
namespace Ui {
class frmPgSetup;
}

namespace quillon {

class PageSetupWindow : public FormWindow {
public:
    /// The form is `win.frmPgSetup`; it goes away with the window. All must outlive the window.
    PageSetupWindow(QWidget* mainWindow, MainWin& mainWin, Runner& theRunner);
    ~PageSetupWindow() override;

protected:
    void ShowForm() override;
    bool Loaded() const override { return form.Loaded; }
    void Unload() override { form.Unload(); }

private:
    void ConnectTexts();
    void ConnectButtons();
    void ShowFocus();
    void FocusWindowChanged(const QWindow* focused);

    MainWin& win;
    PageSetup& form;
    std::unique_ptr<Ui::frmPgSetup> ui;
    bool left = false;  // for another form of the program
};

}  // namespace quillon
