#include "qt/strip.h"

#include "qt/text.h"
#include "shell/key_sheet.h"
#include "shell/recent_tunes.h"

#include <QAction>
#include <QEvent>
#include <QMenuBar>
#include <QPainter>
#include <QPainterPath>
#include <QStyleOptionToolButton>
#include <QStylePainter>

#include <algorithm>

namespace quillon {

namespace {

constexpr int kSign = 16;            // units of a sign's field, and its pixels at scale 1
constexpr int kAroundSign = 5;       // pixels beside it
constexpr int kAroundCaption = 8;    // pixels
constexpr int kGap = 10;             // between menus, line of state and icons
constexpr int kLeastCharacters = 8;  // of the tune's name, before something else has to go

/// An arrow that turns back to the left.
void PaintUndo(QPainter& painter)
{
    QPainterPath shaft(QPointF(3, 6));
    shaft.lineTo(9.5, 6);
    shaft.arcTo(QRectF(5.75, 6, 7.5, 7.5), 90, -180);
    shaft.lineTo(5.5, 13.5);
    painter.drawPath(shaft);
    painter.drawPolyline(QPolygonF{
        {6.25, 2.5},
        {2.75, 6  },
        {6.25, 9.5}
    });
}

void PaintRedo(QPainter& painter)
{
    painter.translate(kSign, 0);
    painter.scale(-1, 1);
    PaintUndo(painter);
}

void PaintPlay(QPainter& painter)
{
    painter.setBrush(painter.pen().color());
    painter.drawPolygon(QPolygonF{
        {4.5, 3.5 },
        {4.5, 12.5},
        {12,  8   }
    });
}

void PaintStop(QPainter& painter)
{
    painter.setBrush(painter.pen().color());
    painter.drawRect(QRectF(4, 4, 8, 8));
}

QString WithoutMnemonic(QString text)
{
    return text.replace('&', "&&");
}

/// As the style paints the caption of a menu.
void PaintCaption(QWidget& widget, const QString& text, const QRect& place, QStyle::State state)
{
    QStylePainter painter(&widget);
    QStyleOptionMenuItem option;
    option.initFrom(&widget);
    option.menuItemType = QStyleOptionMenuItem::Normal;
    option.checkType = QStyleOptionMenuItem::NotCheckable;
    option.text = text;
    option.rect = option.menuRect = place;
    option.state |= state;
    painter.drawControl(QStyle::CE_MenuBarItem, option);
}

/// A tooltip shows a text that looks like HTML as such.
QString Plain(const QString& text)
{
    return Qt::mightBeRichText(text) ? text.toHtmlEscaped() : text;
}

QString Details(const StateLine& line, bool withPage)
{
    QString text;
    if (!line.Changed.empty())
        text += ", " + QString::fromStdString(line.Changed);
    if (withPage && !line.Page.empty())
        text += " · " + QString::fromStdString(line.Page);
    if (!line.Measure.empty())
        text += " · " + QString::fromStdString(line.Measure);
    if (!line.Sound.empty())
        text += " · " + QString::fromStdString(line.Sound);
    return text;
}

/// The line of state as it fits: the name is elided first, then the page goes, then all.
QString FittingText(const QString& name, const StateLine& line, const QFontMetrics& metrics,
                    int room)
{
    const int leastForName =
        std::min(metrics.horizontalAdvance(name), kLeastCharacters * metrics.averageCharWidth());
    for (bool withPage : {true, false}) {
        const QString details = Details(line, withPage);
        const int forName = room - metrics.horizontalAdvance(details);
        if (forName >= leastForName)
            return metrics.elidedText(name, Qt::ElideMiddle, forName) + details;
    }
    return {};
}

}  // namespace

SignButton::SignButton(QAction* action, Sign theSign, QWidget* parent)
    : QToolButton(parent), sign(theSign)
{
    setDefaultAction(action);
    setAutoRaise(true);
    setFocusPolicy(Qt::NoFocus);
}

void SignButton::SetSign(Sign newSign)
{
    if (std::exchange(sign, newSign) != newSign)
        update();
}

void SignButton::paintEvent(QPaintEvent*)
{
    QStylePainter painter(this);
    QStyleOptionToolButton option;
    initStyleOption(&option);
    option.text.clear();
    painter.drawComplexControl(QStyle::CC_ToolButton, option);
    const QColor color =
        palette().color(isEnabled() ? QPalette::Active : QPalette::Disabled, QPalette::ButtonText);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(color, 1.5, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    const int left = (width() - kSign) / 2;
    const int top = (height() - kSign) / 2;
    painter.translate(left, top);
    sign(painter);
}

MenuButton::MenuButton(const QString& caption, QMenu* menu, QWidget* parent) : QToolButton(parent)
{
    setText(caption);
    setAutoRaise(true);
    setFocusPolicy(Qt::NoFocus);
    setPopupMode(QToolButton::InstantPopup);
    setMenu(menu);
}

QSize MenuButton::sizeHint() const
{
    const QSize caption = fontMetrics().size(Qt::TextShowMnemonic, text());
    return {caption.width() + 2 * kAroundCaption, caption.height()};
}

// The letter opens the menu at once, without the show of a click.
bool MenuButton::event(QEvent* event)
{
    if (event->type() != QEvent::Shortcut)
        return QToolButton::event(event);
    showMenu();
    return true;
}

void MenuButton::paintEvent(QPaintEvent*)
{
    QStyleOptionToolButton option;
    initStyleOption(&option);
    QStyle::State state;
    if (option.state & QStyle::State_Sunken)
        state = QStyle::State_Selected | QStyle::State_Sunken;
    else if (underMouse())
        state = QStyle::State_Selected;
    PaintCaption(*this, text(), rect(), state);
}

void StateLabel::paintEvent(QPaintEvent*)
{
    QRect place = rect();
    place.setLeft(place.right() + 1 - fontMetrics().horizontalAdvance(text()));
    PaintCaption(*this, WithoutMnemonic(text()), place, {});
}

Strip::Strip(MainWin& mainWin, Runner& theRunner, Hearing& theHearing, QWidget* parent)
    : QWidget(parent), win(mainWin), runner(theRunner), hearing(theHearing),
      label(new StateLabel(this)), undo(AddStep("stripUndo", &History::Undo)),
      redo(AddStep("stripRedo", &History::Redo)), play(AddPlay()),
      escape(new QShortcut(Qt::Key_Escape, parent)),
      icons{new SignButton(undo, PaintUndo, this), new SignButton(redo, PaintRedo, this),
            new SignButton(play, PaintPlay, this)},
      menu(new MoreMenu(mainWin, theRunner, this)), more(new MenuButton("Mo&re", menu, this))
{
    setObjectName("strip");
    label->setObjectName("stripState");
    label->setTextFormat(Qt::PlainText);
    more->setObjectName("stripMore");
    connect(escape, &QShortcut::activated, &hearing, &Hearing::Stop);
    connect(&hearing, &Hearing::Changed, this, &Strip::Show);
    ShowPlay();
    ShowText();
}

QAction* Strip::AddCommand(const char* name)
{
    const StripCommand& command = FindStripCommand(name);
    auto* action = new QAction(command.Caption, this);
    action->setObjectName(name);
    action->setShortcuts(
        QKeySequence::listFromString(QString(command.Shortcuts).replace(", ", "; ")));
    addAction(action);
    return action;
}

QAction* Strip::AddStep(const char* name, void (History::*go)(int))
{
    QAction* action = AddCommand(name);
    action->setEnabled(false);
    connect(action, &QAction::triggered, this, [this, go] { Go(go); });
    return action;
}

QAction* Strip::AddPlay()
{
    QAction* action = AddCommand("stripPlay");
    connect(action, &QAction::triggered, &hearing, &Hearing::PlayOrStop);
    return action;
}

/// What is there of a tune while a measure is being inserted is not the tune.
void Strip::ShowPlay()
{
    const bool on = hearing.IsOn();
    escape->setEnabled(on);
    play->setEnabled(on || win.form.InputMode != InputMode::Insert);
    const QString text = on ? "Stop" : FindStripCommand("stripPlay").Caption;
    if (play->text() == text)
        return;
    play->setText(text);
    play->setToolTip(text);
    icons.last()->SetSign(on ? PaintStop : PaintPlay);
}

/// What is undone is to be seen: the large view, in which there is no staff, ends.
void Strip::Go(void (History::*go)(int))
{
    if (!runner.Steps)
        return;
    runner.RunUnobserved("Undo", [&] {
        const Timeline& steps = runner.Steps->Steps();
        const int tune = steps.TuneBegunBy();
        try {
            (*runner.Steps.*go)(1);
        } catch (const Fault& fault) {  // nothing has changed
            win.platform.dialogs.Message(Icon::Stop, "Undo", fault.what());
            return;
        }
        if (steps.TuneBegunBy() != tune)
            win.ShowPages();
        else if (win.pages.LargeView)
            win.pages.mnuSmallView();
    });
    emit Gone();
}

void Strip::Show()
{
    const History* steps = runner.Steps ? &*runner.Steps : nullptr;
    if (steps) {
        ShowStep(undo, undoName, steps->UndoName(), steps->UndoCount());
        ShowStep(redo, redoName, steps->RedoName(), steps->RedoCount());
    }
    menu->ShowEnabled();
    ShowPlay();
    RememberTune();
    TuneState now = StateOf(win, steps && steps->Changed());
    now.Trouble = runner.Trouble();
    now.Sound = hearing.Trouble();
    if (now == state)
        return;
    state = std::move(now);
    ShowText();
}

void Strip::ShowStep(QAction* action, std::string& shown, const std::string& name, int count)
{
    action->setEnabled(count > 0);
    if (name == shown)
        return;
    shown = name;
    QString text = FindStripCommand(action->objectName().toStdString()).Caption;
    if (!name.empty())
        text += ' ' + PathFromBytes(name);  // the name of a file may be part of it
    action->setText(WithoutMnemonic(text));
    action->setToolTip(Plain(text));
}

void Strip::ShowText()
{
    const StateLine line = LineOf(state);
    const QString name = PathFromBytes(line.Name);
    const QString whole = name + Details(line, true);
    const QString text = FittingText(name, line, label->fontMetrics(), label->width());
    if (label->text() != text)
        label->setText(text);
    if (label->accessibleName() != whole)
        label->setAccessibleName(whole);
    label->setToolTip(text == whole ? QString() : Plain(whole));
}

/// Of tunes opened or saved, when the event is over. Those in the program's own folder were not put
/// there by the user.
void Strip::RememberTune()
{
    if (runner.Busy())
        return;
    const MainForm& form = win.form;
    const bool opened = std::exchange(openings, form.Openings) != form.Openings;
    const bool written = std::exchange(writes, form.Writes) != form.Writes;
    const std::string& path = win.tune.FileName;
    if ((opened || written) && !path.starts_with(win.platform.system.ProgramFolder() + '/'))
        quillon::RememberTune(win.platform.settings, path);
}

void Strip::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    const int iconWidth = kSign + 2 * kAroundSign;
    const int moreWidth = LeastWidth();
    const bool haveRoom = width() >= moreWidth + iconWidth * static_cast<int>(icons.size()) + kGap;
    int left = width() - moreWidth;
    more->setGeometry(left, 0, moreWidth, height());
    for (auto icon = icons.rbegin(); icon != icons.rend(); ++icon) {
        (*icon)->setVisible(haveRoom);
        if (haveRoom)
            left -= iconWidth;
        (*icon)->setGeometry(left, 0, iconWidth, height());
    }
    menu->ShowOnTop({undo, redo, play}, !haveRoom);
    label->setGeometry(kGap, 0, haveRoom ? std::max(left - 2 * kGap, 1) : 1, height());
    ShowText();
}

MenuRow::MenuRow(QMenuBar* menuBar, Strip* theStrip, QWidget* parent)
    : QWidget(parent), bar(menuBar), strip(theStrip)
{
    bar->setParent(this);
    strip->setParent(this);
    strip->setFont(bar->font());
}

QSize MenuRow::sizeHint() const
{
    return {bar->sizeHint().width() + strip->LeastWidth(), bar->sizeHint().height()};
}

QSize MenuRow::minimumSizeHint() const
{
    return {0, bar->sizeHint().height()};
}

void MenuRow::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    Place();
}

// The menus' captions or font have changed.
bool MenuRow::event(QEvent* event)
{
    if (event->type() == QEvent::LayoutRequest) {
        updateGeometry();
        Place();
    }
    return QWidget::event(event);
}

/// The strip stands in one line with the captions.
void MenuRow::Place()
{
    const int forStrip = std::max(width() - bar->sizeHint().width(), strip->LeastWidth());
    bar->setGeometry(0, 0, width() - forStrip, height());
    const QRect caption = bar->actionGeometry(bar->actions().constFirst());
    strip->setGeometry(width() - forStrip, caption.top(), forStrip, caption.height());
}

/// The bar's own look goes on behind the strip.
void MenuRow::paintEvent(QPaintEvent*)
{
    QStylePainter painter(this);
    QStyleOptionMenuItem option;
    option.initFrom(this);
    option.menuItemType = QStyleOptionMenuItem::EmptyArea;
    option.checkType = QStyleOptionMenuItem::NotCheckable;
    option.menuRect = rect();
    painter.drawControl(QStyle::CE_MenuBarEmptyArea, option);
}

}  // namespace quillon
