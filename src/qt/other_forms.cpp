#include "qt/other_forms.h"

#include "qt/midi_setup_window.h"
#include "qt/midi_window.h"
#include "qt/page_setup_window.h"
#include "qt/small_forms.h"
#include "qt/tuning_window.h"

#include <QEvent>

#include <algorithm>

namespace quillon {

OtherForms::~OtherForms()
{
    for (const auto& [form, widget] : forms) {
        if (widget) {
            widget->disconnect(this);
            delete widget;
        }
    }
}

QWidget* OtherForms::Make(Form form)
{
    switch (form) {
    case Form::Splash:
        return new SplashForm(&mainWindow);
    case Form::frmAbout:
        return new AboutForm(&mainWindow);
    case Form::frmPgSetup:
        ShowMainDisabled();
        return new PageSetupWindow(&mainWindow, win, runner);
    case Form::frmBldMidi:
        return new MidiWindow(&mainWindow, win.frmBldMidi, runner);
    case Form::frmMidiSetup:
        return new MidiSetupWindow(&mainWindow, win.frmMidiSetup, runner);
    case Form::FrmCopyBox:
        return new CopyBox(&mainWindow, win.editor, win.form, runner);
    case Form::Guitar:
    case Form::banjo:
    case Form::bass:
        break;
    }
    const auto tuning = std::ranges::find(win.tuningForms, form,
                                          [](const TuningForm& it) { return it.design.Name; });
    return new TuningWindow(&mainWindow, *tuning, runner);
}

/// Disabling the main window disables the windows that belong to it. The forms stay usable.
void OtherForms::ShowMainDisabled()
{
    runner.ShowForm();
    for (const auto& [form, widget] : forms)
        widget->setEnabled(true);
}

void OtherForms::Open(Form form)
{
    std::erase_if(forms, [](const auto& opened) { return !opened.second; });
    for (const auto& [opened, widget] : forms) {
        if (opened == form) {
            if (auto* copyBox = dynamic_cast<CopyBox*>(widget.data()))
                copyBox->StartAgain();
            widget->raise();
            widget->activateWindow();
            return;
        }
    }
    QWidget* widget = Make(form);
    forms.emplace_back(form, widget);
    widget->installEventFilter(this);
    connect(widget, &QObject::destroyed, this, [this, form] {
        if (form == Form::Splash)
            runner.Run("Start", [this] { win.SplashClosed(); });
        mainWindow.activateWindow();
    });
    widget->show();
}

void OtherForms::FollowUndo()
{
    const auto isCopyBox = [](const auto& opened) {
        return opened.first == Form::FrmCopyBox && opened.second;
    };
    if (win.form.Focus < Control::Text1)
        return;
    if (std::ranges::none_of(forms, isCopyBox))
        Open(Form::FrmCopyBox);
    for (const auto& [form, widget] : forms)
        if (auto* copyBox = dynamic_cast<CopyBox*>(widget.data()))
            copyBox->ShowAgain();
}

bool OtherForms::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::WindowActivate)
        wasActive = true;
    return QObject::eventFilter(watched, event);
}

}  // namespace quillon
