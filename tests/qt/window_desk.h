// The running program with its window on the screen, past the greeting.

#pragma once

#include "qt/program.h"
#include "scratch_user.h"

#include <QFile>
#include <QMenuBar>
#include <QMessageBox>
#include <QPushButton>
#include <QTest>
#include <QTimer>

namespace quillon {

struct WindowDesk {
    std::unique_ptr<Program> program;

    EditorWindow& Window() { return *program->window; }
    MainWin& Core() { return program->win; }
    QWidget* Staff() { return Window().findChild<QWidget*>("StaffBox"); }
    QPushButton* Button(const char* name) { return Window().findChild<QPushButton*>(name); }
    QMenuBar* Bar() { return Window().findChild<QMenuBar*>(); }
    QWidget* FormNamed(const char* name) { return Window().findChild<QWidget*>(name); }

    void Begin()
    {
        program = std::make_unique<Program>("");
        QVERIFY(program->Start());
        QTRY_VERIFY(FormNamed("Splash"));
        QTRY_VERIFY(FormNamed("Splash")->isVisible());
        FormNamed("Splash")->close();
        QTRY_VERIFY(!FormNamed("Splash"));
        Window().activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&Window()));
        QTRY_VERIFY(Staff()->hasFocus());
        QCOMPARE(Core().form.Focus, Control::StaffBox);
    }

    void End()
    {
        if (!program)
            return;
        const std::string journal = program->keeper ? program->keeper->JournalPath() : "";
        program.reset();
        QFile::remove(QString::fromStdString(journal));  // nothing is left to the next test
    }

    /// Types notes of a whole measure on the lowest string.
    void TypeMeasure()
    {
        for (const char* fret : {"0", "2", "3", "5"}) {
            QTest::keyClicks(Staff(), fret);
            QTest::keyClick(Staff(), Qt::Key_Return);
        }
    }

    /// Does something in the next dialog, as soon as it is there.
    template <typename Dialog, typename Action> static void InDialog(Action action)
    {
        auto* waiting = new QTimer(qApp);
        QObject::connect(waiting, &QTimer::timeout, waiting, [waiting, action] {
            if (auto* dialog = qobject_cast<Dialog*>(QApplication::activeModalWidget())) {
                waiting->deleteLater();
                action(dialog);
            }
        });
        waiting->start(10);
    }
};

}  // namespace quillon
