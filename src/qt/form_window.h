// What the forms beside the main one have in common, those that show a value of the core.

#pragma once

#include "qt/runner.h"

#include <QWidget>

#include <string>

namespace quillon {

/// A window of its own that stays above the main one and does not block it. It goes away for good
/// when it is closed.
void MakeForm(QWidget& form);

/// Turns events into calls of the form's handlers and updates the form after each. Closes when
/// a handler has unloaded the form; closed by the system, it unloads the form.
class FormWindow : public QWidget {
public:
    /// Both must outlive the window. `theStepName` is the history's name for what the form changes
    /// in the tune.
    FormWindow(QWidget* mainWindow, Runner& theRunner, std::string theStepName = {});

protected:
    virtual void ShowForm() = 0;
    virtual bool Loaded() const = 0;
    virtual void Unload() = 0;

    /// `doing` as for Runner::Run.
    void Handle(const QString& doing, const std::function<void()>& handler);

    /// Places the window for the size of its texts: its middle in that of the screen, its top at
    /// `top` pixels, or in the middle too.
    void Centre(int top = -1);

    bool event(QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private:
    Runner& runner;
    std::string stepName;
};

}  // namespace quillon
