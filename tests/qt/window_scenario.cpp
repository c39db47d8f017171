// Plays a scenario on the real window, without a display, and prints what play-scenario prints.
//
//     window_scenario FILE
//
// Keys, clicks and menus are events of the toolkit for whatever the window offers them to; boxes,
// prompts and file dialogs are the real ones, answered as the script says. Texts are measured as
// play-scenario measures them and every font is there, so that the outputs are equal to the byte.
// After each command the controls have to show what the core says: a line on standard error and
// status 3 if they do not.
//
// What a script cannot say, it does not meet: while the copy box is open, another command reaches
// the main form without activating it, and other forms do not open. In large view the controls
// cannot be seen, though a script goes on using them; that one command is passed over.

#include "headless/script.h"
#include "qt/dialogs.h"
#include "qt/editor_window.h"
#include "qt/staff_view.h"
#include "qt/text.h"
#include "scratch_user.h"

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QFileDialog>
#include <QInputDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QPointer>
#include <QTest>
#include <QTimer>
#include <QToolButton>

#include <fstream>
#include <iostream>
#include <sstream>

#include <unistd.h>

using namespace quillon;

namespace {

constexpr int kWrongWindow = 3;        // exit status
constexpr double kScale = 1.5;         // of the staff: two pixels a point, so that clicks are exact
constexpr int kNever = 24 * 3600'000;  // milliseconds
constexpr unsigned kMostSeconds = 45;  // of a run: one that waits for ever ends by SIGALRM

struct AnyFont : QtSystem {
    bool HasFont(const std::string&) const override { return true; }
};

[[noreturn]] void Fail(const std::string& what)
{
    std::cerr << "window_scenario: " << what << '\n';
    std::_Exit(kWrongWindow);
}

/// What a script prints. Paths in the current directory are printed as the script has given them.
class Output {
public:
    std::ostringstream Text;

    void Flush()
    {
        std::string text = Text.str();
        Text.str("");
        for (std::size_t at = text.find(folder); at != std::string::npos;
             at = text.find(folder, at))
            text.erase(at, folder.size());
        std::cout << text << std::flush;
    }

private:
    const std::string folder = PathToBytes(QDir::currentPath()) + '/';
};

// Keys ------------------------------------------------------------------------------------------

/// A key goes down and up again, for whatever has the focus each time.
void Stroke(int key, Qt::KeyboardModifiers modifiers, const QString& text)
{
    for (bool down : {true, false}) {
        QWidget* widget = QApplication::activePopupWidget();
        if (!widget)
            widget = QApplication::focusWidget();
        if (!widget)
            widget = QApplication::activeWindow();
        if (widget)
            QTest::simulateEvent(widget, down, key, modifiers, text, false);
    }
}

void Stroke(Qt::Key key)
{
    Stroke(key, Qt::NoModifier, {});
}

/// A character as its key types it. A blank comes from a key that presses no button.
void TypeCharacter(char character)
{
    const bool hasKey = character > ' ' && character <= '~';
    const int key = hasKey ? std::toupper(character) : Qt::Key_unknown;
    const bool shifted = character >= 'A' && character <= 'Z';
    Stroke(key, shifted ? Qt::ShiftModifier : Qt::NoModifier, ToUnicode({&character, 1}));
}

void TypeText(const std::string& text)
{
    for (char character : text)
        TypeCharacter(character);
}

/// The text that comes with a key.
QString TextOf(QKeyCombination keys)
{
    switch (keys.key()) {
    case Qt::Key_Enter:
        return "\r";
    case Qt::Key_Backspace:
        return "\b";
    case Qt::Key_Delete:
        return "\x7f";
    case Qt::Key_Escape:
        return "\x1b";
    case Qt::Key_Space:
        return " ";
    default:
        break;
    }
    const bool control = keys.keyboardModifiers() == Qt::ControlModifier;
    return control ? QString(QChar(keys.key() & 0x1f)) : QString();
}

void Click(QWidget* widget, const QPoint& place)
{
    QTest::mouseClick(widget, Qt::LeftButton, {}, place);
}

// The window ------------------------------------------------------------------------------------

/// The editor with its window, past the greeting.
class Desk {
public:
    Desk()
    {
        if (!win.Load())
            Fail("no start");
        window = std::make_unique<EditorWindow>(win, system, runner, stripPlayer, "");
        timer = window->findChild<QTimer*>("Timer1", Qt::FindDirectChildrenOnly);
        timer->setInterval(kNever);
        const auto open = system.OnShow;
        system.OnShow = [open](Form form) {
            if (form == Form::Splash || form == Form::FrmCopyBox)
                open(form);
        };
        window->show();
        window->resize(1400, 780);
        while (!Widget("Splash"))
            QCoreApplication::processEvents();
        Settle();
        Widget("Splash")->close();
        while (!Widget("StaffBox")->hasFocus())
            ToFront();
        if (Widget("StaffBox")->size() != StaffView::SizeAt(kScale))
            Fail("no start");
    }

    /// Lets the toolkit do what it has put off.
    static void Settle()
    {
        QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QCoreApplication::processEvents();
    }

    /// The main form is the active one again, unless the copy box has the focus. A window manager
    /// sees to that where there is one.
    void ToFront() const
    {
        Settle();
        const bool isThere = QGuiApplication::focusWindow() == window->windowHandle();
        if (win.form.Focus >= Control::Text1 || isThere || !window->isVisible())
            return;
        window->activateWindow();
        Settle();
    }

    QWidget* Widget(const char* name) const { return window->findChild<QWidget*>(name); }

    bool CopyBoxIsThere() const
    {
        const QWidget* box = Widget("FrmCopyBox");
        return box && box->isVisible();
    }

    AnyFont system;
    MemorySettings settings;
    Runner runner;
    QtDialogs dialogs{runner};
    NoPrinter printer;
    NoClipboard clipboard;
    NoPlayer player;
    NoPlayer stripPlayer;
    NoMidiPorts midiPorts;
    FixedTextMetrics metrics;
    MainWin win{
        {dialogs, settings, system, printer, clipboard, player, midiPorts},
        metrics
    };
    std::unique_ptr<EditorWindow> window;
    bool DialogWasThere = false;  // since the last command
    QTimer* timer = nullptr;      // the cursor's: it fires when the script says so
};

// Dialogs ---------------------------------------------------------------------------------------

/// Answers each dialog as it comes up.
class Answerer {
public:
    Answerer(Desk& theDesk, ScriptedDialogs& dialogAnswers, Output& theOutput)
        : desk(theDesk), answers(dialogAnswers), output(theOutput)
    {
        timer.setInterval(0);
        QObject::connect(&timer, &QTimer::timeout, [this] { Answer(); });
        timer.start();
    }

private:
    void Answer()
    {
        QWidget* dialog = QApplication::activeModalWidget();
        if (dialog && !dialog->isActiveWindow()) {
            dialog->activateWindow();
            return;
        }
        desk.DialogWasThere |= dialog != nullptr;
        if (auto* box = qobject_cast<QMessageBox*>(dialog))
            AnswerBox(box);
        else if (auto* prompt = qobject_cast<QInputDialog*>(dialog))
            AnswerPrompt(prompt);
        else if (auto* files = qobject_cast<QFileDialog*>(dialog))
            AnswerFileDialog(files);
        else if (dialog)
            Fail("an unknown dialog: " + dialog->windowTitle().toStdString());
    }

    void AnswerBox(QMessageBox* box)
    {
        const std::string title = FromUnicode(box->windowTitle());
        const std::string text = FromUnicode(box->text());
        if (title == "Run-time error") {  // after it the program ends
            output.Text << "fault: r" << text.substr(1, text.find('\n') - 1) << '\n';
            output.Flush();
            box->accept();
        } else if (title == "File Exists") {  // no box of the editor's own
            box->button(QMessageBox::Yes)->click();
        } else if (box->icon() == QMessageBox::Question) {
            const bool yes = answers.Ask(title, text);
            box->button(yes ? QMessageBox::Yes : QMessageBox::No)->click();
        } else {
            answers.Message(IconOf(*box), title, text);
            Stroke(Qt::Key_Return);
        }
    }

    static Icon IconOf(const QMessageBox& box)
    {
        switch (box.icon()) {
        case QMessageBox::Critical:
            return Icon::Stop;
        case QMessageBox::Information:
            return Icon::Information;
        default:
            return Icon::None;
        }
    }

    void AnswerPrompt(QInputDialog* prompt)
    {
        const auto answer = answers.Prompt("", "");
        if (answer) {
            prompt->setTextValue("");
            TypeText(*answer);
        }
        Stroke(answer ? Qt::Key_Return : Qt::Key_Escape);
    }

    /// The dialog itself would refuse a name that does not exist, which the editor wants to see.
    void AnswerFileDialog(QFileDialog* files)
    {
        const auto path = answers.OpenFile("", "");
        if (!path) {
            files->reject();
            return;
        }
        files->findChild<QLineEdit*>()->setText(QDir::current().filePath(PathFromBytes(*path)));
        files->QDialog::done(QDialog::Accepted);
    }

    Desk& desk;
    ScriptedDialogs& answers;
    Output& output;
    QTimer timer;
};

/// Keeps from the windows what scripts know nothing of while the copy box is there: that the main
/// form becomes active by a command that is given to it, and that a dialog of such a command gives
/// the copy box back what it had.
class QuietActivation : public QObject {
public:
    explicit QuietActivation(Desk& theDesk) : desk(theDesk) { qApp->installEventFilter(this); }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (watched == desk.window.get())
            return event->type() == QEvent::ActivationChange && desk.CopyBoxIsThere();
        if (!desk.DialogWasThere ||
            (event->type() != QEvent::WindowActivate && event->type() != QEvent::FocusIn))
            return false;
        const auto* widget = qobject_cast<QWidget*>(watched);
        return widget && desk.CopyBoxIsThere() && widget->window() == desk.Widget("FrmCopyBox");
    }

private:
    Desk& desk;
};

class WindowScript : public Script {
public:
    WindowScript(Desk& theDesk, ScriptedDialogs& dialogAnswers, std::ostream& output)
        : Script(theDesk.win, dialogAnswers, output), desk(theDesk)
    {
    }

    /// Ends the program if a control does not show what the core says.
    void Check(const std::string& line) const;

private:
    void Menu(const MenuEntry& entry) override;
    void Press(std::string_view name) override;
    void Key(const std::string& name) override;
    void Type(const std::string& text) override { TypeText(text); }
    void Toolbar(int button) override;
    void Click(double x, double y) override;
    void Tick() override;
    void Copy(const std::string& from, const std::string& to) override;
    bool Ended() const override { return !desk.window->isVisible(); }
    History* Steps() override { return &*desk.runner.Steps; }
    void Undo(int count) override { GoBackOrForth(count, "stripUndo"); }
    void Redo(int count) override { GoBackOrForth(count, "stripRedo"); }

    void GoBackOrForth(int count, const char* name);
    void ClickButtonOf(const QAction* action) const;
    void ChooseByMouse(QMenu* menu, QAction* action);
    void ChooseByKeys(QMenu* menu, QAction* action);
    void LeaveMenus() const;
    void GiveFocus(QWidget* widget);
    void FillBox(const char* name, const std::string& text);

    Desk& desk;
    int menusChosen = 0;
    int stepsGone = 0;
};

QMenu* MenuOf(QWidget& window, const QAction* action)
{
    for (QMenu* menu : window.findChildren<QMenu*>())
        if (menu->actions().contains(action))
            return menu;
    return nullptr;
}

/// By turns as a command, by the mouse, and by Alt and the arrow keys; only the first leaves the
/// copy box active.
void WindowScript::Menu(const MenuEntry& entry)
{
    if (entry.Name == std::string_view("mnuLargeview"))
        return;
    auto* action = desk.window->findChild<QAction*>(entry.Name);
    QMenu* menu = MenuOf(*desk.window, action);
    const int way = desk.CopyBoxIsThere() ? 0 : menusChosen++ % 3;
    if (way == 0)
        action->trigger();
    else if (way == 1)
        ChooseByMouse(menu, action);
    else
        ChooseByKeys(menu, action);
}

void WindowScript::ChooseByMouse(QMenu* menu, QAction* action)
{
    auto* bar = desk.window->findChild<QMenuBar*>();
    ::Click(bar, bar->actionGeometry(menu->menuAction()).center());
    if (!menu->isVisible())
        Fail("the mouse does not open " + menu->objectName().toStdString());
    ::Click(menu, menu->actionGeometry(action).center());
    if (menu->isVisible() && action->isEnabled())
        Fail("a click on " + action->objectName().toStdString() + " does not close its menu");
    LeaveMenus();
}

void WindowScript::ChooseByKeys(QMenu* menu, QAction* action)
{
    const QString caption = menu->title();
    Stroke(caption[caption.indexOf('&') + 1].toUpper().unicode(), Qt::AltModifier, {});
    if (!menu->isVisible())
        Fail("no key opens " + menu->objectName().toStdString());
    for (int i = 0; action->isEnabled() && menu->activeAction() != action; ++i) {
        if (i > menu->actions().size())
            Fail("no arrow key reaches " + action->objectName().toStdString());
        Stroke(Qt::Key_Down);
    }
    if (action->isEnabled())
        Stroke(Qt::Key_Return);
    LeaveMenus();
}

/// Out of a menu whose entry was off, and then out of the menu bar.
void WindowScript::LeaveMenus() const
{
    while (QApplication::activePopupWidget())
        Stroke(Qt::Key_Escape);
    desk.ToFront();
    if (desk.window->findChild<QMenuBar*>()->hasFocus())
        Stroke(Qt::Key_Escape);
}

/// Out of the copy box, if it has the focus.
void WindowScript::GiveFocus(QWidget* widget)
{
    if (!InCopyBox() || widget->focusPolicy() != Qt::StrongFocus || !widget->isEnabled())
        return;
    widget->setFocus();
    desk.window->activateWindow();
    Desk::Settle();
}

void WindowScript::Press(std::string_view name)
{
    const bool ofCopyBox = name == "cmdCopyMeasure";
    if (ofCopyBox && !InCopyBox())
        return;
    QWidget* widget = desk.Widget(std::string(name).c_str());
    if (!ofCopyBox)
        GiveFocus(widget);
    ::Click(widget, widget->rect().center());
}

void WindowScript::Key(const std::string& name)
{
    const QKeyCombination keys = QKeySequence(QString::fromStdString(name))[0];
    Stroke(keys.key(), keys.keyboardModifiers(), TextOf(keys));
}

/// By turns as a command, by the mouse, and by the key, which in a text box is the box's.
void WindowScript::GoBackOrForth(int count, const char* name)
{
    auto* action = desk.window->findChild<QAction*>(name);
    const QKeyCombination keys = action->shortcut()[0];
    for (int i = 0; i < count && action->isEnabled(); ++i) {
        desk.ToFront();
        const bool inBox = desk.win.form.Focus >= Control::txtRptBracket || desk.CopyBoxIsThere();
        const int way = inBox ? 0 : stepsGone++ % 3;
        if (way == 0)
            action->trigger();
        else if (way == 1)
            ClickButtonOf(action);
        else
            Stroke(keys.key(), keys.keyboardModifiers(), TextOf(keys));
    }
}

void WindowScript::ClickButtonOf(const QAction* action) const
{
    for (auto* button : desk.window->findChildren<QToolButton*>())
        if (button->defaultAction() == action)
            ::Click(button, button->rect().center());
}

void WindowScript::Toolbar(int button)
{
    QWidget* widget = desk.Widget(("Toolbar1_" + std::to_string(button)).c_str());
    ::Click(widget, widget->rect().center());
}

/// Also beyond the card, where the tune may go on but no mouse can.
void WindowScript::Click(double x, double y)
{
    QWidget* staff = desk.Widget("StaffBox");
    const double pixels = kScale * 96 / 72;
    const double frame = StaffView::SizeAt(0).width() / 2.0;
    const QPointF place(frame + x * pixels, frame + y * pixels);
    GiveFocus(staff);
    if (!staff->rect().contains(place.toPoint()))
        staff->setFocus();
    for (auto type : {QEvent::MouseButtonPress, QEvent::MouseButtonRelease}) {
        QMouseEvent event(type, place, staff->mapToGlobal(place), Qt::LeftButton, Qt::LeftButton,
                          Qt::NoModifier);
        QSpontaneKeyEvent::setSpontaneous(&event);
        qApp->notify(staff, &event);
    }
}

void WindowScript::Tick()
{
    if (!desk.timer->isActive())
        return;
    QTimerEvent event(desk.timer->timerId());
    QCoreApplication::sendEvent(desk.timer, &event);
}

void WindowScript::FillBox(const char* name, const std::string& text)
{
    auto* box = desk.window->findChild<QLineEdit*>(name);
    box->setFocus();
    Desk::Settle();
    box->selectAll();
    Stroke(Qt::Key_Delete);
    TypeText(text);
}

void WindowScript::Copy(const std::string& from, const std::string& to)
{
    desk.window->findChild<QAction*>("mnuCopy")->trigger();
    Desk::Settle();
    FillBox("Text1", from);
    FillBox("Text2", to);
    Press("cmdCopyMeasure");
}

void WindowScript::Check(const std::string& line) const
{
    const MainForm& form = desk.win.form;
    const auto expect = [&](const std::string& what, const std::string& shown,
                            const std::string& meant) {
        if (shown != meant)
            Fail("after `" + line + "`: " + what + " is " + shown + ", not " + meant);
    };
    const auto text = [&](const char* name) {
        const QWidget* widget = desk.Widget(name);
        const auto* label = qobject_cast<const QLabel*>(widget);
        return FromUnicode(label ? label->text()
                                 : qobject_cast<const QAbstractButton*>(widget)->text());
    };
    const auto enabled = [&](const char* name) {
        const auto* action = desk.window->findChild<QAction*>(name);
        return action ? action->isEnabled() : desk.Widget(name)->isEnabled();
    };
    const QWidget* focus = QApplication::focusWidget();
    expect("the focus", focus ? focus->objectName().toStdString() : "none",
           std::string(NameOf(form.Focus)));
    expect("cmdNext", text("cmdNext"), form.cmdNextCaption);
    expect("cmdPrevious", text("cmdPrevious"), form.cmdPreviousCaption);
    expect("lblMeasNum", text("lblMeasNum"), desk.win.view.lblMeasNum);
    expect("lblLastNote", text("lblLastNote"), desk.win.view.lblLastNote);
    expect("hdbkbox", text("hdbkbox"), desk.win.view.hdbkbox);
    const auto* bracket = desk.window->findChild<QLineEdit*>("txtRptBracket");
    expect("txtRptBracket", FromUnicode(bracket->text()), form.txtRptBracket.Text);
    expect("txtRptBracket's visibility", std::to_string(bracket->isVisible()),
           std::to_string(form.txtRptBracket.Visible));
    expect("cmdRefresh", std::to_string(enabled("cmdRefresh")),
           std::to_string(form.cmdRefreshEnabled));
    expect("mnuSave", std::to_string(enabled("mnuSave")), std::to_string(form.mnuSaveEnabled));
    expect("mnuPaste", std::to_string(enabled("mnuPaste")), std::to_string(form.mnuPasteEnabled));
    expect("Timer1", std::to_string(desk.timer->isActive()), std::to_string(form.Timer1Enabled));
    for (int button = 1; button <= kNoteValues; ++button) {
        const auto name = "Toolbar1_" + std::to_string(button);
        const auto* shown = desk.window->findChild<QAbstractButton*>(name.c_str());
        expect(name, std::to_string(shown->isChecked()), std::to_string(form.Toolbar1 == button));
    }
}

/// Without what the platform cannot do.
void Warn(QtMsgType, const QMessageLogContext&, const QString& message)
{
    if (!message.startsWith("This plugin does not support"))
        std::cerr << message.toStdString() << '\n';
}

}  // namespace

int main(int argc, char** argv)
{
    if (argc != 2) {
        std::cerr << "usage: window_scenario FILE\n";
        return 2;
    }
    std::ifstream script(argv[1], std::ios::binary);
    alarm(kMostSeconds);
    qInstallMessageHandler(Warn);
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QString folder = QDir::currentPath();
    const ScratchUser user;
    QDir::setCurrent(folder);
    QApplication application(argc, argv);
    QApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
    QApplication::setQuitOnLastWindowClosed(false);
    ScriptedDialogs answers;
    Output output;
    Desk desk;
    const Answerer answerer(desk, answers, output);
    const QuietActivation quiet(desk);
    WindowScript player(desk, answers, output.Text);
    std::string line;
    while (std::getline(script, line) && player.Play(line)) {
        desk.ToFront();
        desk.DialogWasThere = false;
        player.Check(line);
        output.Flush();
    }
    output.Flush();
    return player.Status();
}
