// Toolbar1 on the screen: eleven buttons with a note value each, of which one is down.
//
// A click does not take the focus. From the keyboard the bar is one tab stop: Left and Right move
// along the buttons, Space and Enter press one.

#pragma once

#include <QWidget>

#include <vector>

class QAbstractButton;

namespace quillon {

class NoteBar : public QWidget {
    Q_OBJECT

public:
    explicit NoteBar(QWidget* parent = nullptr);

    /// Button 1..11 is down, all others are up; 0 puts all up.
    void SetDown(int button);

signals:
    void Clicked(int button);

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void TellReaders();

    std::vector<QAbstractButton*> buttons;  // button n at n - 1
    int down = 0;
    int marked = 1;  // button that the keyboard is at
};

}  // namespace quillon
