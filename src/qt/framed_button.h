// A button of the main form. The frame that tells that it has the focus is as plain as the staff's:
// in some styles a focused button is hard to tell from the others.

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
