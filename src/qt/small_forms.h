// The small forms around the main one: the greeting, the About form, the Copy Box.
//
// None of them blocks the main form. Each goes away for good when it is closed.

#pragma once

#include "editor/editor.h"
#include "qt/runner.h"

#include <QTimer>
#include <QWidget>

#include <functional>

class QLineEdit;

namespace quillon {

/// The picture of the greeting and of the About form: a staff with a few notes of tablature.
class SignPicture : public QWidget {
public:
    explicit SignPicture(QWidget* parent = nullptr);
    QSize sizeHint() const override { return {360, 132}; }

protected:
    void paintEvent(QPaintEvent* event) override;
};

/// Closes by its button, or by itself after five seconds.
class SplashForm : public QWidget {
public:
    explicit SplashForm(QWidget* mainWindow);
};

class AboutForm : public QWidget {
public:
    explicit AboutForm(QWidget* mainWindow);
};

/// Both boxes start with a single blank and the caret before it.
class CopyBox : public QWidget {
public:
    CopyBox(QWidget* mainWindow, Editor& theEditor, MainForm& mainForm, Runner& theRunner);

    /// The command was used again while the form is open.
    void StartAgain();

    /// Undo has gone to where one of the boxes had the focus.
    void ShowAgain();

protected:
    bool event(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private:
    void Handle(const std::function<void()>& handler);
    void Keep(const QLineEdit& box);
    void ShowTexts();

    Editor& editor;
    MainForm& form;
    Runner& runner;
    QLineEdit* Text1;
    QLineEdit* Text2;
    bool copied = false;
    bool showing = false;  // the form's texts are shown, not typed
};

}  // namespace quillon
