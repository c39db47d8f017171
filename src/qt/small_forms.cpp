#include "qt/small_forms.h"

#include "qt/documents.h"
#include "qt/font_metrics.h"
#include "qt/form_window.h"
#include "qt/start_notice.h"
#include "qt/text.h"
#include "ui_about.h"
#include "ui_copy_box.h"
#include "ui_splash.h"

#include <QCloseEvent>
#include <QPainter>
#include <QScopedValueRollback>
#include <QShortcut>
#include <QUrl>

namespace quillon {

namespace {

constexpr int kSplashMilliseconds = 5000;

}  // namespace

SignPicture::SignPicture(QWidget* parent) : QWidget(parent)
{
    setAccessibleName("A line of tablature");
}

void SignPicture::paintEvent(QPaintEvent*)
{
    constexpr int kGap = 14;
    constexpr int kTop = 24;
    constexpr const char* kFigures[] = {"0", "2", "3", "0", "2", "3", "0"};
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(Qt::white);
    painter.drawRoundedRect(rect(), 4, 4);
    painter.setPen(QPen(QColor(0x8c, 0x8c, 0x8c), 1));
    painter.setRenderHint(QPainter::Antialiasing, false);
    for (int line = 0; line < 6; ++line)
        painter.drawLine(20, kTop + kGap * line, width() - 21, kTop + kGap * line);
    painter.fillRect(20, kTop, 2, 5 * kGap + 1, Qt::black);
    painter.fillRect(width() - 24, kTop, 4, 5 * kGap + 1, Qt::black);
    painter.fillRect(width() - 29, kTop, 2, 5 * kGap + 1, Qt::black);
    QFont font("Arial");
    font.setPixelSize(15);
    font.setBold(true);
    painter.setFont(font);
    painter.setPen(Qt::black);
    constexpr int kMargin = 44;
    const int step = (width() - 2 * kMargin) / 6;
    int note = 0;
    for (const char* figure : kFigures) {
        const int x = kMargin + step * note;
        const int string = note < 4 ? 4 - note : note - 2;
        painter.drawText(QRect(x - 12, kTop + kGap * string - 10, 24, 20), Qt::AlignCenter, figure);
        painter.fillRect(x, kTop + 5 * kGap + 8, 1, 18, Qt::black);
        ++note;
    }
    const int beam = kTop + 5 * kGap + 23;
    painter.fillRect(kMargin, beam, 3 * step + 1, 3, Qt::black);
    painter.fillRect(kMargin + 4 * step, beam, 2 * step + 1, 3, Qt::black);
}

SplashForm::SplashForm(QWidget* mainWindow) : QWidget(mainWindow)
{
    MakeForm(*this);
    Ui::Splash ui;
    ui.setupUi(this);
    ui.Label2->setTextFormat(Qt::PlainText);
    const QString notice = StartNotice();
    if (!notice.isEmpty())
        ui.Label2->setText(ui.Label2->text() + "\n\n" + notice);
    connect(ui.Command1, &QPushButton::clicked, this, &QWidget::close);
    auto* Timer1 = new QTimer(this);
    Timer1->setObjectName("Timer1");
    connect(Timer1, &QTimer::timeout, this, &QWidget::close);
    Timer1->start(kSplashMilliseconds);
}

AboutForm::AboutForm(QWidget* mainWindow) : QWidget(mainWindow)
{
    MakeForm(*this);
    Ui::frmAbout ui;
    ui.setupUi(this);
    const QString manual = ManualFile();
    if (manual.isEmpty())
        return;
    // In the text's own colour: in many dark palettes that of links is hard to read.
    ui.Label2->setText(QString("%1<br>The manual opens in your browser:<br>"
                               "<a href=\"%2\" style=\"color: %3\">%4</a>")
                           .arg(ui.Label2->text(), QUrl::fromLocalFile(manual).toString(),
                                palette().color(QPalette::WindowText).name(),
                                manual.toHtmlEscaped()));
}

CopyBox::CopyBox(QWidget* mainWindow, Editor& theEditor, MainForm& mainForm, Runner& theRunner)
    : QWidget(mainWindow), editor(theEditor), form(mainForm), runner(theRunner)
{
    MakeForm(*this);
    Ui::FrmCopyBox ui;
    ui.setupUi(this);
    Text1 = ui.Text1;
    Text2 = ui.Text2;
    for (QLineEdit* box : {Text1, Text2}) {
        box->installEventFilter(this);
        connect(box, &QLineEdit::textEdited, this, [this, box] { Keep(*box); });
        connect(box, &QLineEdit::cursorPositionChanged, this, [this, box] { Keep(*box); });
    }
    connect(Text1, &QLineEdit::returnPressed, this,
            [this] { Handle([this] { editor.CopyBoxEnter(Control::Text1); }); });
    connect(Text2, &QLineEdit::returnPressed, this,
            [this] { Handle([this] { editor.CopyBoxEnter(Control::Text2); }); });
    connect(ui.cmdCopyMeasure, &QPushButton::clicked, this,
            [this] { Handle([this] { editor.cmdCopyMeasure(); }); });
    connect(new QShortcut(Qt::Key_Escape, this), &QShortcut::activated, this, &QWidget::close);
    form.BoxCaret = 0;
    ShowTexts();
}

/// What was typed is part of the form, and so is the place in it.
void CopyBox::Keep(const QLineEdit& box)
{
    if (showing)
        return;
    runner.Run("Copy", [&] {
        form.FrmCopyBox = {FromUnicode(Text1->text()), FromUnicode(Text2->text())};
        form.BoxCaret = box.cursorPosition();
    });
}

/// The form goes away when a handler has given the focus back to StaffBox.
void CopyBox::Handle(const std::function<void()>& handler)
{
    const auto fromTheStart = [&] {
        handler();
        form.BoxCaret = 0;
    };
    if (!runner.Run("Copy", fromTheStart))
        return;
    ShowTexts();
    if (form.Focus == Control::Text2)
        Text2->setFocus();
    copied = form.Focus == Control::StaffBox;
    if (copied)
        close();
}

void CopyBox::StartAgain()
{
    form.BoxCaret = 0;
    ShowTexts();
    Text1->setFocus();
}

void CopyBox::ShowAgain()
{
    QLineEdit* box = form.Focus == Control::Text1 ? Text1 : Text2;
    const int caret = form.BoxCaret;
    ShowTexts();
    const QScopedValueRollback guard(showing, true);
    box->setCursorPosition(caret);
    activateWindow();
    box->setFocus();
}

void CopyBox::ShowTexts()
{
    const QScopedValueRollback guard(showing, true);
    Text1->setText(ToUnicode(form.FrmCopyBox.Text1));
    Text2->setText(ToUnicode(form.FrmCopyBox.Text2));
    Text1->setCursorPosition(0);
    Text2->setCursorPosition(0);
}

bool CopyBox::event(QEvent* event)
{
    if (event->type() == QEvent::WindowActivate) {
        form.FrmCopyBox = {" ", " "};
        ShowTexts();
    }
    return QWidget::event(event);
}

/// A box that gets the focus keeps its caret where it was, instead of marking the blank, which
/// typing would then replace.
bool CopyBox::eventFilter(QObject* watched, QEvent* event)
{
    auto* box = qobject_cast<QLineEdit*>(watched);
    if (box && event->type() == QEvent::FocusIn) {
        form.Focus = box == Text1 ? Control::Text1 : Control::Text2;
        const int caret = box->cursorPosition();
        QTimer::singleShot(0, box, [box, caret] {
            box->deselect();
            box->setCursorPosition(caret);
        });
    }
    return QWidget::eventFilter(watched, event);
}

void CopyBox::closeEvent(QCloseEvent* event)
{
    QWidget::closeEvent(event);
    if (!copied)
        runner.Run("Copy", [this] { editor.CopyBoxClosed(); });
}

}  // namespace quillon
