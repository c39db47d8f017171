#include "qt/form_window.h"

#include <QCloseEvent>
#include <QScreen>

#include <utility>

namespace quillon {

void MakeForm(QWidget& form)
{
    form.setWindowFlags(Qt::Dialog | Qt::WindowTitleHint | Qt::WindowSystemMenuHint |
                        Qt::WindowCloseButtonHint);
    form.setAttribute(Qt::WA_DeleteOnClose);
    form.setEnabled(true);  // also where the main window is disabled
}

FormWindow::FormWindow(QWidget* mainWindow, Runner& theRunner, std::string theStepName)
    : QWidget(mainWindow), runner(theRunner), stepName(std::move(theStepName))
{
    MakeForm(*this);
}

void FormWindow::Handle(const QString& doing, const std::function<void()>& handler)
{
    if (!runner.Run(doing, handler, Input::Command, stepName))
        return;
    if (Loaded())
        ShowForm();
    else
        close();
}

void FormWindow::Centre(int top)
{
    adjustSize();
    const QRect room = screen()->availableGeometry();
    const QPoint middle = room.topLeft() + QPoint((room.width() - width()) / 2,
                                                  top < 0 ? (room.height() - height()) / 2 : top);
    move(middle);
}

// The main form may have changed it meanwhile.
bool FormWindow::event(QEvent* event)
{
    if (event->type() == QEvent::WindowActivate)
        ShowForm();
    return QWidget::event(event);
}

void FormWindow::closeEvent(QCloseEvent* event)
{
    if (!Loaded())
        return;
    const auto unload = [this] { Unload(); };
    if (!runner.Run(windowTitle(), unload, Input::Command, stepName))
        event->ignore();
}

}  // namespace quillon
