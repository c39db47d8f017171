#include "qt/framed_button.h"

#include <QPainter>

namespace quillon {

void FramedButton::paintEvent(QPaintEvent* event)
{
    QPushButton::paintEvent(event);
    if (!hasFocus())
        return;
    constexpr double kWidth = 3;
    constexpr double kHalf = kWidth / 2;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(palette().highlight(), kWidth));
    painter.drawRoundedRect(QRectF(rect()).adjusted(kHalf, kHalf, -kHalf, -kHalf), 3, 3);
}

}  // namespace quillon
