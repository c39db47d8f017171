// The strip at the right end of the menu bar's row: a line of state, Undo, Redo, Play and More.
//
// It looks at the program after each event and is no part of the form that is described by
// MainForm: nothing in it takes the focus, and no handler knows of it.

#pragma once

#include "qt/hearing.h"
#include "qt/more_menu.h"
#include "qt/runner.h"
#include "shell/state_line.h"

#include <QLabel>
#include <QShortcut>
#include <QToolButton>
#include <QWidget>

#include <string>

class QMenuBar;

namespace quillon {

/// A button with a drawn sign, in the palette's colour and sharp at any scale.
class SignButton : public QToolButton {
public:
    /// Draws into a field of 16 x 16 units.
    using Sign = void (*)(QPainter& painter);

    SignButton(QAction* action, Sign theSign, QWidget* parent);

    void SetSign(Sign newSign);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    Sign sign;
};

/// A button whose menu opens as those beside it do, and which looks like them.
class MenuButton : public QToolButton {
public:
    MenuButton(const QString& caption, QMenu* menu, QWidget* parent);

    QSize sizeHint() const override;

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
};

/// A text at the right end of its place, in one line with the menus' captions.
class StateLabel : public QLabel {
public:
    using QLabel::QLabel;

protected:
    void paintEvent(QPaintEvent* event) override;
};

class Strip : public QWidget {
    Q_OBJECT

public:
    /// All must outlive the strip.
    Strip(MainWin& mainWin, Runner& theRunner, Hearing& theHearing, QWidget* parent);

    /// Shows what the program has come to. Writes only what differs.
    void Show();

    /// The width that it never goes below: that of the More button.
    int LeastWidth() const { return more->sizeHint().width(); }

    MoreMenu& Menu() { return *menu; }

signals:
    void Gone();  // back or forth

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    QAction* AddCommand(const char* name);
    QAction* AddStep(const char* name, void (History::*go)(int));
    QAction* AddPlay();
    void ShowPlay();
    void Go(void (History::*go)(int));
    void ShowStep(QAction* action, std::string& shown, const std::string& name, int count);
    void ShowText();
    void RememberTune();

    MainWin& win;
    Runner& runner;
    Hearing& hearing;
    StateLabel* label;
    QAction* undo;
    QAction* redo;
    QAction* play;
    QShortcut* escape;  // while it plays
    QList<SignButton*> icons;
    MoreMenu* menu;
    MenuButton* more;
    TuneState state;
    std::string undoName;  // as shown
    std::string redoName;
    int openings = 0;  // of form.Openings and form.Writes, as last seen
    int writes = 0;
};

/// The menu bar and the strip beside it, which gets the room that the menus leave.
class MenuRow : public QWidget {
public:
    /// Takes the menu bar over.
    MenuRow(QMenuBar* menuBar, Strip* theStrip, QWidget* parent);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    bool event(QEvent* event) override;

private:
    void Place();

    QMenuBar* bar;
    Strip* strip;
};

}  // namespace quillon
