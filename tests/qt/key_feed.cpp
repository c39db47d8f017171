// Types and clicks on a program that runs without a display. Loaded ahead of the program's own
// libraries, so that it is the program itself that is tested:
//
//     LD_PRELOAD=libkey_feed.so QT_QPA_PLATFORM=offscreen quillon
//
// Each line on standard input is an action: a list of tokens with tabs between them.
//
//     Alt+F       a key, as the toolkit writes it
//     "12         what is typed
//     @cmdNext    a click on the control of that name
//     ?MainWin    waits until a window, menu or control of that name or class takes the keys
//
// "done" and a line end on standard output say that an action is over: all that it set off has come
// to its end. An open dialog holds up the action that opened it.

#include <QApplication>
#include <QPointer>
#include <QSocketNotifier>
#include <QTest>
#include <QThread>
#include <QTimer>
#include <QWidget>

#include <deque>
#include <functional>

#include <unistd.h>

namespace {

class KeyFeed : public QObject {
public:
    KeyFeed() : input(STDIN_FILENO, QSocketNotifier::Read)
    {
        connect(&input, &QSocketNotifier::activated, this, [this] { Read(); });
        connect(&steps, &QTimer::timeout, this, [this] { Step(); });
    }

private:
    void Read()
    {
        char block[4096];
        const ssize_t count = read(STDIN_FILENO, block, sizeof block);
        if (count <= 0) {
            input.setEnabled(false);
            return;
        }
        received.append(block, count);
        if (!steps.isActive())
            NextLine();
    }

    void NextLine()
    {
        const qsizetype end = received.indexOf('\n');
        if (end < 0) {
            steps.stop();
            return;
        }
        StartLine(QString::fromUtf8(received.first(end)));
        received.remove(0, end + 1);
    }

    void StartLine(const QString& line)
    {
        for (const QString& token : line.split('\t')) {
            if (token.startsWith('"'))
                for (const QChar character : token.mid(1))
                    tokens.push_back('"' + QString(character));
            else
                tokens.push_back(token);
        }
        steps.start(0);
    }

    /// A key is sent when the one before has arrived and its handler is done or waits in a dialog.
    void Step()
    {
        if (underWay || !AWindowHasKeys())
            return;
        if (!tokens.empty()) {
            if (Send(tokens.front()))
                tokens.pop_front();
        } else if (QThread::currentThread()->loopLevel() == 1 &&
                   !QApplication::activePopupWidget()) {
            [[maybe_unused]] const ssize_t written = write(STDOUT_FILENO, "done\n", 5);
            NextLine();
        }
    }

    /// Does what a window manager does: when a dialog or a list has gone, the next window gets the
    /// keys. False until it has them.
    static bool AWindowHasKeys()
    {
        if (QApplication::activePopupWidget())
            return true;
        QWidget* window = QApplication::activeModalWidget();
        if (!window)
            window = QApplication::activeWindow();
        for (QWidget* other : QApplication::topLevelWidgets())
            if (!window && other->inherits("QMainWindow") && other->isVisible())
                window = other;
        if (!window)
            return false;
        if (window->isActiveWindow() && QGuiApplication::focusWindow() == window->windowHandle())
            return true;
        window->windowHandle()->requestActivate();
        return false;
    }

    /// False while it cannot be done yet.
    bool Send(const QString& token)
    {
        if (token[0] == '?')
            return HasKeys(token.mid(1));
        QWindow* window = QGuiApplication::focusWindow();
        if (!window)
            return false;
        if (token[0] == '@')
            return Click(token.mid(1));
        if (token[0] == '"') {
            const QKeySequence keys(token.mid(1));
            Press(window, keys[0].key(), {}, token.mid(1));
        } else {
            const QKeyCombination keys = QKeySequence(token)[0];
            const bool letter = keys.key() < Qt::Key_Escape;
            Press(window, keys.key(), keys.keyboardModifiers(),
                  letter ? QString(QChar(keys.key())).toLower() : QString());
        }
        return true;
    }

    static bool HasKeys(const QString& name)
    {
        const QByteArray type = name.toUtf8();
        for (const QWidget* widget : {QApplication::activePopupWidget(),
                                      QApplication::activeWindow(), QApplication::focusWidget()})
            if (widget && (widget->objectName() == name || widget->inherits(type)))
                return true;
        return false;
    }

    void Press(QWindow* window, int key, Qt::KeyboardModifiers modifiers, const QString& text)
    {
        const auto send = [=, target = QPointer(window)](QEvent::Type type) {
            if (target)
                qt_handleKeyEvent(target, type, key, modifiers, text);
        };
        Deliver([send] { send(QEvent::KeyPress); }, [send] { send(QEvent::KeyRelease); });
    }

    bool Click(const QString& name)
    {
        QWidget* window = QApplication::activeWindow();
        auto* control = window ? window->findChild<QWidget*>(name) : nullptr;
        if (!control)
            return false;
        const QPoint middle = control->rect().center();
        const QPointF place = control->mapTo(window, middle);
        const QPointF onScreen = control->mapToGlobal(middle);
        const int milliseconds = ++clicks * 1000;  // apart, so that no two are a double click
        const auto send = [=, target = QPointer(window->windowHandle())](QEvent::Type type) {
            const bool down = type == QEvent::MouseButtonPress;
            if (target)
                qt_handleMouseEvent(target, place, onScreen, down ? Qt::LeftButton : Qt::NoButton,
                                    Qt::LeftButton, type, {}, milliseconds);
        };
        Deliver([send] { send(QEvent::MouseButtonPress); },
                [send] { send(QEvent::MouseButtonRelease); });
        return true;
    }

    /// Not from the timer that has sent it, which would not come again while a dialog is open.
    void Deliver(const std::function<void()>& press, const std::function<void()>& release)
    {
        underWay = true;
        const auto deliver = [this, press, release] {
            underWay = false;
            press();
            release();
        };
        QMetaObject::invokeMethod(this, deliver, Qt::QueuedConnection);
    }

    QSocketNotifier input;
    QTimer steps;
    QByteArray received;
    std::deque<QString> tokens;  // of the action that is under way
    bool underWay = false;       // a key or click is on its way
    int clicks = 0;
};

void BeginFeed()
{
    new KeyFeed;  // as long as the program runs
}

}  // namespace

Q_COREAPP_STARTUP_FUNCTION(BeginFeed)
