#include "qt/other_forms.h"

#include "qt/small_forms.h"

#include <QEvent>

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
    case Form::FrmCopyBox:
        return new CopyBox(&mainWindow, win.editor, win.form, runner);
    default:
        return nullptr;
    }
}

void OtherForms::Open(Form form)
{
    std::erase_if(forms, [](const auto& opened) { return !opened.second; });
    for (const auto& [opened, widget] : forms) {
        if (opened == form) {
            widget->raise();
            widget->activateWindow();
            return;
        }
    }
    QWidget* widget = Make(form);
    if (!widget)
        return;
    forms.emplace_back(form, widget);
    widget->installEventFilter(this);
    connect(widget, &QObject::destroyed, this, [this, form] {
        if (form == Form::Splash)
            runner.Run("Start", [this] { win.SplashClosed(); });
        mainWindow.activateWindow();
    });
    widget->show();
}

bool OtherForms::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::WindowActivate)
        wasActive = true;
    return QObject::eventFilter(watched, event);
}

}  // namespace quillon
