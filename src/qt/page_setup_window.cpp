#include "qt/page_setup_window.h"

#include "qt/text.h"
#include "shell/steps.h"
#include "ui_page_setup.h"

#include <QGuiApplication>
#include <QWindow>

#include <utility>

namespace quillon {

PageSetupWindow::PageSetupWindow(QWidget* mainWindow, MainWin& mainWin, Runner& theRunner)
    : FormWindow(mainWindow, theRunner, kPageSetupStep), win(mainWin), form(*mainWin.frmPgSetup),
      ui(std::make_unique<Ui::frmPgSetup>())
{
    ui->setupUi(this);
    ui->Text1->setMinimumWidth(ui->Text1->fontMetrics().averageCharWidth() * 50);
    ui->Label5->setMinimumWidth(ui->Label2->sizeHint().width());  // the boxes are aligned
    ConnectTexts();
    ConnectButtons();
    connect(qApp, &QGuiApplication::focusWindowChanged, this, &PageSetupWindow::FocusWindowChanged);
    ShowForm();
    ShowFocus();
}

PageSetupWindow::~PageSetupWindow()
{
    qApp->disconnect(this);  // the focus goes elsewhere on the way out
    win.frmPgSetup.reset();
}

void PageSetupWindow::ConnectTexts()
{
    const auto keep = [this](QLineEdit* box, std::string& text) {
        connect(box, &QLineEdit::textEdited, this,
                [&text](const QString& typed) { text = FromUnicode(typed); });
    };
    keep(ui->Text1, form.Text1);
    keep(ui->Text2, form.Text2);
    keep(ui->Text3, form.Text3);
    keep(ui->txtLeft, form.txtLeft);
    keep(ui->txtRight, form.txtRight);
    keep(ui->txtTop, form.txtTop);
    keep(ui->txtStaveSpace, form.txtStaveSpace);
    const auto enter = [this](QLineEdit* widget, PageSetup::Box box) {
        connect(widget, &QLineEdit::returnPressed, this, [this, box] {
            form.Focus = box;
            Handle("Enter", [this] { form.Enter(); });
            ShowFocus();
        });
    };
    enter(ui->Text1, PageSetup::Box::Text1);
    enter(ui->Text2, PageSetup::Box::Text2);
    enter(ui->Text3, PageSetup::Box::Text3);
}

void PageSetupWindow::ConnectButtons()
{
    const auto click = [this](QPushButton* button, void (PageSetup::*handler)()) {
        connect(button, &QPushButton::clicked, this, [this, button, handler] {
            Handle(button->accessibleName(), [&] { (form.*handler)(); });
        });
    };
    click(ui->cmdTitleFont, &PageSetup::cmdTitleFont);
    click(ui->cmdBodyFont, &PageSetup::cmdBodyFont);
    click(ui->cmdPgExit, &PageSetup::cmdPgExit);
    connect(ui->chkJustify, &QCheckBox::clicked, this, [this](bool checked) {
        form.chkJustify = checked;
        Handle("Center Title", [this] { form.chkJustifyChange(); });
    });
}

/// The form is activated again when the user comes back to it from another form of the program,
/// not from a dialog or another program. The main form is disabled and gives the focus back at
/// once.
void PageSetupWindow::FocusWindowChanged(const QWindow* focused)
{
    if (!focused)
        return;
    if (focused == parentWidget()->windowHandle()) {
        if (!win.form.FormEnabled)
            activateWindow();
    } else if (focused != windowHandle()) {
        left = left || !focused->isModal();
    } else if (std::exchange(left, false)) {
        Handle("Page Setup", [this] { form.Activate(); });
        ShowFocus();
    }
}

void PageSetupWindow::ShowForm()
{
    const auto show = [](auto* widget, const std::string& text) {
        if (widget->text() != ToUnicode(text))
            widget->setText(ToUnicode(text));
    };
    show(ui->Text1, form.Text1);
    show(ui->Text2, form.Text2);
    show(ui->Text3, form.Text3);
    show(ui->txtLeft, form.txtLeft);
    show(ui->txtRight, form.txtRight);
    show(ui->txtTop, form.txtTop);
    show(ui->txtStaveSpace, form.txtStaveSpace);
    show(ui->lblTitleFontName, form.lblTitleFontName);
    show(ui->lblTitleFontSize, form.lblTitleFontSize);
    show(ui->LblBodyFontName, form.LblBodyFontName);
    show(ui->lblBodyFontSize, form.lblBodyFontSize);
    ui->chkJustify->setChecked(form.chkJustify);
}

void PageSetupWindow::ShowFocus()
{
    QWidget* const boxes[] = {ui->Text1, ui->Text2, ui->Text3, ui->cmdPgExit};
    boxes[static_cast<int>(form.Focus)]->setFocus(Qt::TabFocusReason);
}

}  // namespace quillon
