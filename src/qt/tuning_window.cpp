#include "qt/tuning_window.h"

#include "qt/text.h"
#include "store/tunings.h"
#include "ui_tuning.h"

#include <QPainter>
#include <QTimer>

#include <utility>

namespace quillon {

namespace {

constexpr int kFrets = 7;  // that the picture shows
constexpr int kPegHeight = 12;

/// The place of a fret on the neck, 0 for the nut. Frets get closer towards the body, less so here
/// than on a real neck.
int FretX(const QRect& neck, int fret)
{
    const double place = fret * (1.15 - 0.15 * fret / kFrets) / kFrets;
    return neck.left() + static_cast<int>(place * neck.width());
}

}  // namespace

QSize NeckPicture::sizeHint() const
{
    return {fontMetrics().height() * 12, fontMetrics().height() * 4};
}

bool NeckPicture::HasShortString() const
{
    return boxes.size() == 5;
}

int NeckPicture::StringY(std::size_t string) const
{
    return boxes[string]->geometry().center().y() - y();
}

void NeckPicture::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    const int numberWidth = fontMetrics().height();
    const QRect neck = rect().adjusted(numberWidth, 0, 0, 0);
    PaintNeck(painter, neck);
    for (std::size_t string = 0; string < boxes.size(); ++string)
        PaintString(painter, neck, string);
}

void NeckPicture::PaintNeck(QPainter& painter, const QRect& neck) const
{
    const int edge = (StringY(1) - StringY(0)) / 2;  // of the wood, from the outer strings
    const int top = StringY(0) - edge;
    const int bottom = StringY(boxes.size() - 1) + edge;
    const int bottomAtNut = HasShortString() ? bottom - 2 * edge : bottom;
    const int shoulder = FretX(neck, kShortStringFret);
    const auto fill = [&](int left, int right, int end, const QBrush& brush) {
        painter.fillRect(QRect(QPoint(left, top), QPoint(right, end)), brush);
    };
    fill(neck.left(), neck.right(), bottomAtNut, palette().base());
    fill(shoulder, neck.right(), bottom, palette().base());
    for (int fret = 1; fret < kFrets; ++fret) {
        const int x = FretX(neck, fret);
        fill(x, x + 1, x < shoulder ? bottomAtNut : bottom, palette().mid());
    }
    fill(neck.left(), neck.left() + 3, bottomAtNut, palette().text());
}

void NeckPicture::PaintString(QPainter& painter, const QRect& neck, std::size_t string) const
{
    const int y = StringY(string);
    const bool isShort = HasShortString() && string == boxes.size() - 1;
    const int start = isShort ? FretX(neck, kShortStringFret) : neck.left();
    const bool wound = string >= 3 && !isShort;
    painter.fillRect(start, y, neck.right() + 1 - start, wound ? 2 : 1, palette().text());
    if (isShort)
        painter.fillRect(start, y - kPegHeight / 2, 4, kPegHeight, palette().text());
    painter.setPen(palette().color(QPalette::WindowText));
    const int size = fontMetrics().height();
    painter.drawText(QRect(start - size, y - size / 2, size - size / 3, size),
                     Qt::AlignRight | Qt::AlignVCenter, QString::number(string + 1));
}

TuningWindow::TuningWindow(QWidget* mainWindow, TuningForm& tuningForm, Runner& theRunner)
    : FormWindow(mainWindow, theRunner), form(tuningForm), ui(std::make_unique<Ui::Tuning>())
{
    ui->setupUi(this);
    setObjectName(form.design.ObjectName);
    setWindowTitle(form.design.Caption);
    ui->cmdDefault->setVisible(form.design.HasDefault);
    AddTextBoxes();
    ConnectControls();
    ShowForm();
}

TuningWindow::~TuningWindow() = default;

void TuningWindow::AddTextBoxes()
{
    QWidget* before = ui->Combo1;
    for (int i = 0; i < form.design.NumStrings; ++i) {
        auto* box = new QLineEdit(ui->fraTuning);
        const QString number = QString::number(i + 1);
        box->setObjectName(QString("Text1_%1").arg(i));
        box->setAccessibleName("Pitch of string " + number);
        box->setToolTip("MIDI note number of open string " + number);
        box->setFixedWidth(box->fontMetrics().horizontalAdvance("0000000"));
        ui->pitches->addWidget(box);
        setTabOrder(std::exchange(before, box), box);
        Text1.push_back(box);
    }
    ui->Picture1->SetBoxes(Text1);
}

void TuningWindow::ConnectControls()
{
    const auto click = [this](QPushButton* button, void (TuningForm::*handler)()) {
        connect(button, &QPushButton::clicked, this, [this, button, handler] {
            Handle(button->accessibleName(), [&] { (form.*handler)(); });
        });
    };
    click(ui->cmdAdd, &TuningForm::cmdAdd);
    click(ui->cmdDelete, &TuningForm::cmdDelete);
    click(ui->cmdDefault, &TuningForm::cmdDefault);
    click(ui->cmdSave, &TuningForm::cmdSave);
    click(ui->cmdExit, &TuningForm::cmdExit);
    connect(ui->Combo1, &QComboBox::activated, this,
            [this](int row) { Handle("Tuning Name", [&] { form.Combo1Click(row); }); });
    for (std::size_t i = 0; i < Text1.size(); ++i) {
        connect(Text1[i], &QLineEdit::textEdited, this,
                [this, i](const QString& text) { form.Text1[i] = FromUnicode(text); });
        connect(Text1[i], &QLineEdit::returnPressed, this,
                [this] { Handle("Pitch", [this] { form.Text1Enter(); }); });
    }
    ui->AddTitle->installEventFilter(this);
    connect(ui->AddTitle, &QLineEdit::textEdited, this,
            [this](const QString& text) { form.AddTitle = FromUnicode(text); });
    connect(ui->AddTitle, &QLineEdit::returnPressed, this,
            [this] { Handle("Add", [this] { form.AddTitleEnter(); }); });
}

/// The blank of an untouched AddTitle is marked, also after a click, so that typing replaces it.
bool TuningWindow::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == ui->AddTitle && event->type() == QEvent::FocusIn)
        QTimer::singleShot(0, ui->AddTitle, &QLineEdit::selectAll);
    return FormWindow::eventFilter(watched, event);
}

void TuningWindow::ShowForm()
{
    const auto show = [](QLineEdit* box, const std::string& text) {
        if (box->text() == ToUnicode(text))
            return false;
        box->setText(ToUnicode(text));
        return true;
    };
    ShowNames();
    for (std::size_t i = 0; i < Text1.size(); ++i)
        show(Text1[i], form.Text1[i]);
    if (show(ui->AddTitle, form.AddTitle))
        ui->AddTitle->selectAll();
    if (std::exchange(form.cmdSaveFocused, false))
        ui->cmdSave->setFocus();
}

void TuningWindow::ShowNames()
{
    ui->Combo1->clear();
    for (const std::string& name : form.Combo1)
        ui->Combo1->addItem(ToUnicode(name));
    ui->Combo1->setCurrentIndex(form.Combo1Index);
}

}  // namespace quillon
