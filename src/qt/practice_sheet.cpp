#include "qt/practice_sheet.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QEvent>
#include <QFormLayout>
#include <QLabel>
#include <QPushButton>
#include <QShortcut>
#include <QSpinBox>

#include <algorithm>

namespace quillon {

namespace {

constexpr int kFirstSpeed = 75;    // per cent
constexpr int kLargestStep = 50;   // per cent
constexpr int kSpeedStep = 5;      // of an arrow
constexpr int kBesideSheet = 24;   // pixels
constexpr int kTroubleWidth = 34;  // characters

}  // namespace

PracticeSheet::PracticeSheet(const MainWin& mainWin, Hearing& theHearing, QWidget* mainWindow)
    : QDialog(mainWindow), win(mainWin), hearing(theHearing)
{
    setObjectName("Practice");
    setWindowTitle("Practice");
    new QFormLayout(this);
    from = AddNumber("practiceFrom", "&From measure", 1, 1, "The first measure");
    to = AddNumber("practiceTo", "&To measure", 1, 1,
                   "The last measure; the first time that it is played after the other");
    speed = AddNumber("practiceSpeed", "S&peed", kSlowestPractice, kFastestPractice,
                      "Of the tempo in the MIDI form; the pitch stays");
    loop = AddCheck("practiceLoop", "&Loop", "Play it again and again");
    stepUp = AddNumber("practiceStep", "Faster each turn &by", 0, kLargestStep,
                       "How much the speed rises at each turn of the loop");
    goal = AddNumber("practiceGoal", "&Up to", kSlowestPractice, kFastestPractice,
                     "The speed at which it rises no further");
    countIn = AddCheck("practiceCountIn", "&Count-in", "A measure of clicks before the first turn");
    click = AddCheck("practiceClick", "Clic&k", "A click on each beat");
    for (QSpinBox* percent : {speed, stepUp, goal}) {
        percent->setSuffix(" %");
        percent->setSingleStep(kSpeedStep);
    }
    connect(from, &QSpinBox::valueChanged, to, &QSpinBox::setMinimum);
    connect(loop, &QCheckBox::toggled, stepUp, &QWidget::setEnabled);
    connect(loop, &QCheckBox::toggled, goal, &QWidget::setEnabled);
    AddButtons();
    MoveToCorner();
    connect(&hearing, &Hearing::Changed, this, &PracticeSheet::ShowState);
}

QSpinBox* PracticeSheet::AddNumber(const char* name, const QString& caption, int least, int most,
                                   const QString& hint)
{
    auto* number = new QSpinBox(this);
    number->setObjectName(name);
    number->setRange(least, most);
    number->setToolTip(hint);
    static_cast<QFormLayout*>(layout())->addRow(caption, number);
    return number;
}

QCheckBox* PracticeSheet::AddCheck(const char* name, const QString& caption, const QString& hint)
{
    auto* check = new QCheckBox(caption, this);
    check->setObjectName(name);
    check->setToolTip(hint);
    static_cast<QFormLayout*>(layout())->addRow(check);
    return check;
}

void PracticeSheet::AddButtons()
{
    trouble = new QLabel(this);
    trouble->setObjectName("practiceTrouble");
    trouble->setWordWrap(true);
    trouble->setMinimumWidth(trouble->fontMetrics().averageCharWidth() * kTroubleWidth);
    static_cast<QFormLayout*>(layout())->addRow(trouble);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
    start = buttons->addButton("&Start", QDialogButtonBox::ActionRole);
    start->setObjectName("practiceStart");
    start->setDefault(true);
    static_cast<QFormLayout*>(layout())->addRow(buttons);
    connect(start, &QPushButton::clicked, this, &PracticeSheet::StartOrStop);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::close);
    connect(new QShortcut(Qt::Key_F5, this), &QShortcut::activated, this,
            &PracticeSheet::StartOrStop);
}

/// Of the main window, where it hides no page.
void PracticeSheet::MoveToCorner()
{
    adjustSize();
    const QPoint corner = parentWidget()->geometry().bottomRight();
    move(corner - QPoint(width() + kBesideSheet, height() + kBesideSheet));
}

void PracticeSheet::ShowUp()
{
    ShowTune();
    ShowState();
    show();
    raise();
    activateWindow();
    start->setFocus();
}

/// Another tune may have been opened while the sheet was not looked at.
bool PracticeSheet::event(QEvent* event)
{
    if (event->type() == QEvent::WindowActivate)
        ShowTune();
    return QDialog::event(event);
}

/// Escape stops the music first.
void PracticeSheet::reject()
{
    if (hearing.IsOn())
        hearing.Stop();
    else
        QDialog::reject();
}

void PracticeSheet::ShowTune()
{
    const int last = std::max<int>(win.tune.LastMeas, 1);
    from->setMaximum(last);
    to->setMaximum(last);
    if (shownTune == win.tune.FileName)
        return;
    shownTune = win.tune.FileName;
    const auto before = remembered.find(*shownTune);
    Show(before == remembered.end() ? FirstChoices() : before->second);
}

PartToPlay PracticeSheet::FirstChoices() const
{
    PartToPlay part;
    part.From = std::max<int>(win.tune.CurMeas, 1);
    part.To = part.From + 1;
    part.Loop = true;
    part.Choices.Speed = kFirstSpeed;
    part.Choices.CountIn = true;
    return part;
}

void PracticeSheet::Show(const PartToPlay& part)
{
    from->setValue(part.From);
    to->setValue(part.To.value_or(part.From));
    speed->setValue(part.Choices.Speed);
    loop->setChecked(part.Loop);
    stepUp->setValue(part.Choices.StepUp);
    goal->setValue(part.Choices.Goal);
    countIn->setChecked(part.Choices.CountIn);
    click->setChecked(part.Choices.Click);
}

PartToPlay PracticeSheet::Choices() const
{
    PartToPlay part;
    part.From = from->value();
    part.To = to->value();
    part.Loop = loop->isChecked();
    part.Choices.Speed = speed->value();
    part.Choices.StepUp = stepUp->value();
    part.Choices.Goal = goal->value();
    part.Choices.CountIn = countIn->isChecked();
    part.Choices.Click = click->isChecked();
    return part;
}

void PracticeSheet::StartOrStop()
{
    if (hearing.IsOn()) {
        hearing.Stop();
        return;
    }
    ShowTune();
    remembered[*shownTune] = Choices();
    hearing.Play(Choices());
}

void PracticeSheet::ShowState()
{
    start->setText(hearing.IsOn() ? "&Stop" : "&Start");
    trouble->setText(QString::fromStdString(hearing.Trouble()));
}

}  // namespace quillon
