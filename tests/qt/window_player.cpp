// Drives the running program's window, without a display, by lines on standard input. Whoever
// sends them can change the world between two events: full_disk_test.py fills its disks,
// two_windows_test.py leads another window.
//
//     window_player [TUNE]
//
//     type TEXT        keys for whatever has the focus
//     key NAME         "Enter", "Down"
//     menu NAME        a menu command, if it is enabled
//     press NAME       a button, if it is enabled
//     file PATH        what the next file dialog gets
//     answer yes|no    what the next question gets
//     close            what the frame's close button does
//
// Each line is answered by "box TITLE: TEXT" for each box that it brought up, line ends as \n, and
// then by "done 1" while the window is there, "done 0" when it is closed. Before the first "done"
// comes "note TEXT" if the start had something to say.

#include "qt/program.h"
#include "qt/scratch_folder.h"

#include <QAction>
#include <QApplication>
#include <QFileDialog>
#include <QLabel>
#include <QMessageBox>
#include <QPointer>
#include <QPushButton>
#include <QTest>
#include <QTimer>

#include <iostream>

using namespace quillon;

namespace {

QString OneLine(QString text)
{
    return text.replace('\n', "\\n");
}

class Hand {
public:
    Hand()
    {
        answers.setInterval(0);
        QObject::connect(&answers, &QTimer::timeout, [this] { AnswerDialog(); });
        answers.start();
    }

    /// False when the line means nothing.
    bool Do(EditorWindow& window, const std::string& line)
    {
        const std::size_t blank = std::min(line.find(' '), line.size());
        const std::string verb = line.substr(0, blank);
        const QString rest = QString::fromStdString(line.substr(std::min(blank + 1, line.size())));
        if (verb == "type")
            QTest::keyClicks(Focus(window), rest);
        else if (verb == "key")
            QTest::keyClick(Focus(window), rest == "Enter" ? Qt::Key_Return : Qt::Key_Down);
        else if (verb == "menu" && window.findChild<QAction*>(rest))
            window.findChild<QAction*>(rest)->trigger();
        else if (verb == "press" && window.findChild<QAbstractButton*>(rest))
            window.findChild<QAbstractButton*>(rest)->click();
        else if (verb == "file")
            file = rest;
        else if (verb == "answer")
            yes = rest == "yes";
        else if (verb == "close")
            window.close();
        else
            return false;
        return true;
    }

private:
    static QWidget* Focus(EditorWindow& window)
    {
        QWidget* focus = QApplication::focusWidget();
        return focus ? focus : &window;
    }

    void AnswerDialog()
    {
        QWidget* dialog = QApplication::activeModalWidget();
        if (auto* files = qobject_cast<QFileDialog*>(dialog)) {
            if (files == answered)
                return;
            answered = files;
            files->selectFile(file);
            // Queued: it may ask whether to overwrite, and no timer comes while it is at it.
            QMetaObject::invokeMethod(files, &QDialog::accept, Qt::QueuedConnection);
        } else if (auto* box = qobject_cast<QMessageBox*>(dialog)) {
            std::cout << "box " << box->windowTitle().toStdString() << ": "
                      << OneLine(box->text()).toStdString() << std::endl;
            QAbstractButton* button = box->button(yes ? QMessageBox::Yes : QMessageBox::No);
            button ? button->click() : box->accept();
        }
    }

    QTimer answers;
    QPointer<QFileDialog> answered;
    QString file;
    bool yes = false;
};

/// What the start has told: in the greeting, which goes, or in the note.
QString Told(const EditorWindow& window)
{
    if (const auto* note = window.findChild<QMessageBox*>("StartNote"))
        return note->text();
    auto* splash = window.findChild<QWidget*>("Splash");
    if (!splash)
        return {};
    splash->close();
    return splash->findChild<QLabel*>("Label2")->text().section("\n\n", 1);
}

}  // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    QApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
    Hand hand;
    const std::string startFolder = StartFolder();
    const std::string commandLine = AbsoluteCommandLine(argc > 1 ? argv[1] : "");
    EnterScratchFolder();
    Program program(commandLine, startFolder);
    if (!program.Start())
        return EXIT_FAILURE;
    if (!QTest::qWaitForWindowActive(program.window.get()))
        return EXIT_FAILURE;
    if (const QString told = Told(*program.window); !told.isEmpty())
        std::cout << "note " << OneLine(told).toStdString() << std::endl;
    std::string line;
    do {
        QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        std::cout << "done " << program.window->isVisible() << std::endl;
    } while (std::getline(std::cin, line) && hand.Do(*program.window, line));
    return std::cin.eof() ? EXIT_SUCCESS : EXIT_FAILURE;
}
