#include "qt/note_bar.h"

#include "shell/spoken.h"
#include "store/note_table.h"

#include <QAccessible>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QPainter>
#include <QPainterPath>
#include <QToolButton>

#include <algorithm>
#include <iterator>

namespace quillon {

namespace {

/// How a note value looks: its head, stem and flags, a dot, the 3 of a triplet.
struct NoteSign {
    const char* keys;  // that lead to it
    int flags;
    bool stem;
    bool filled;
    bool dotted;
    bool triplet;
};

constexpr NoteSign kNoteSigns[] = {
    {"press * at a sixteenth", 2, true,  true,  false, true },
    {"press + to step to it",  2, true,  true,  false, false},
    {"press * at an eighth",   1, true,  true,  false, true },
    {"press + to step to it",  1, true,  true,  false, false},
    {"press . at an eighth",   1, true,  true,  true,  false},
    {"press * at a quarter",   0, true,  true,  false, true },
    {"press + to step to it",  0, true,  true,  false, false},
    {"press . at a quarter",   0, true,  true,  true,  false},
    {nullptr,                  0, true,  false, false, false},
    {nullptr,                  0, true,  false, true,  false},
    {nullptr,                  0, false, false, false, false},
};
static_assert(std::size(kNoteSigns) == kNoteValues);

/// Draws the sign in a field of 24 x 32 units.
void PaintSign(QPainter& painter, const NoteSign& sign, const QColor& color)
{
    constexpr QPointF kHead(10, 25);
    constexpr double kStemX = 13.9;
    constexpr double kStemTop = 5.5;
    painter.setPen(Qt::NoPen);
    painter.setBrush(color);

    // The head leans; an open one has a hole that leans less, or, without a stem, more upright.
    QPainterPath head;
    head.addEllipse(QPointF(0, 0), sign.stem ? 4.6 : 5.6, sign.stem ? 3.3 : 3.6);
    if (!sign.filled)
        head.addEllipse(QPointF(0, 0), sign.stem ? 3.8 : 2.6, sign.stem ? 1.6 : 2.6);
    painter.save();
    painter.translate(kHead);
    painter.rotate(sign.stem ? -24 : 0);
    painter.drawPath(head);
    painter.restore();

    if (sign.stem)
        painter.drawRect(QRectF(kStemX - 0.7, kStemTop, 1.4, kHead.y() - kStemTop - 1));
    for (int i = 0; i < sign.flags; ++i) {
        const double y = kStemTop + 5.5 * i;
        QPainterPath flag(QPointF(kStemX, y));
        flag.cubicTo(kStemX + 0.5, y + 4, kStemX + 7.5, y + 5.5, kStemX + 4.5, y + 11.5);
        flag.cubicTo(kStemX + 6, y + 7.5, kStemX + 2, y + 6, kStemX, y + 4.5);
        painter.drawPath(flag);
    }
    if (sign.dotted)
        painter.drawEllipse(QPointF(19, 25), 1.6, 1.6);
    if (sign.triplet) {
        QFont font = painter.font();
        font.setPixelSize(10);
        font.setBold(true);
        painter.setFont(font);
        painter.setPen(color);
        painter.drawText(QRectF(0, 3, 10, 12), Qt::AlignCenter, "3");
    }
}

class NoteButton : public QToolButton {
public:
    NoteButton(int value, const NoteSign& noteSign, QWidget* parent)
        : QToolButton(parent), sign(noteSign)
    {
        setAutoRaise(true);
        setCheckable(true);
        setFocusPolicy(Qt::NoFocus);
        QString name = ValueName(value);
        name.front() = name.front().toUpper();
        setAccessibleName(name);
        setToolTip(sign.keys ? QString("%1 (%2)").arg(name, sign.keys) : name);
    }

    QSize sizeHint() const override { return {34, 40}; }

private:
    void paintEvent(QPaintEvent* event) override
    {
        QToolButton::paintEvent(event);
        QPainter painter(this);
        if (isChecked())  // in high-contrast palettes the frame alone is hard to see
            painter.fillRect(4, height() - 4, width() - 8, 2, palette().highlight());
        painter.setRenderHint(QPainter::Antialiasing);
        painter.translate((width() - 24) / 2.0, (height() - 32) / 2.0);
        PaintSign(painter, sign,
                  palette().color(isEnabled() ? QPalette::Active : QPalette::Disabled,
                                  QPalette::ButtonText));
    }

    // The core tells which button is down, not the click.
    void nextCheckState() override {}

    const NoteSign& sign;
};

}  // namespace

NoteBar::NoteBar(QWidget* parent) : QWidget(parent)
{
    setFocusPolicy(Qt::TabFocus);
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(2, 2, 2, 2);
    row->setSpacing(2);
    for (const NoteSign& sign : kNoteSigns) {
        const int number = static_cast<int>(buttons.size()) + 1;
        auto* button = new NoteButton(number, sign, this);
        buttons.push_back(button);
        button->setObjectName(QString("Toolbar1_%1").arg(number));
        connect(button, &QToolButton::clicked, this, [this, number] { emit Clicked(number); });
        row->addWidget(button);
    }
}

void NoteBar::SetDown(int button)
{
    if (button == down)
        return;
    down = button;
    if (down > 0)
        marked = down;
    for (std::size_t i = 0; i < buttons.size(); ++i)
        buttons[i]->setChecked(static_cast<int>(i) + 1 == down);
    update();
}

void NoteBar::keyPressEvent(QKeyEvent* event)
{
    switch (event->key()) {
    case Qt::Key_Left:
    case Qt::Key_Right:
        marked = std::clamp(marked + (event->key() == Qt::Key_Left ? -1 : 1), 1,
                            static_cast<int>(buttons.size()));
        update();
        TellReaders();
        break;
    case Qt::Key_Space:
    case Qt::Key_Return:
    case Qt::Key_Enter:
        emit Clicked(marked);
        break;
    default:
        event->ignore();
    }
}

void NoteBar::focusInEvent(QFocusEvent*)
{
    update();
    TellReaders();
}

/// To a screen reader, the marked button is what has the focus.
void NoteBar::TellReaders()
{
    QAbstractButton* button = buttons[static_cast<std::size_t>(marked - 1)];
    setAccessibleDescription(button->accessibleName());
    QAccessibleEvent focus(button, QAccessible::Focus);
    QAccessible::updateAccessibility(&focus);
}

void NoteBar::focusOutEvent(QFocusEvent*)
{
    update();
}

void NoteBar::paintEvent(QPaintEvent*)
{
    if (!hasFocus())
        return;
    QPainter painter(this);
    const QRect button = buttons[static_cast<std::size_t>(marked - 1)]->geometry();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(palette().highlight(), 2));
    painter.drawRoundedRect(QRectF(button).adjusted(-1, -1, 1, 1), 3, 3);
}

}  // namespace quillon
