// A button of the main form. When it has the focus, its frame is as easy to see as the staff's: in
// some styles a focused button is hard to tell from the others.

#pragma once

#include <QPushButton>

namespace quillon {

class FramedButton : public QPushButton {
public:
    using QPushButton::QPushButton;

protected:
    void paintEvent(QPaintEvent* event) override;
};

}  // namespace quillon
