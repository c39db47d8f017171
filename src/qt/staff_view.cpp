#include "qt/staff_view.h"

#include "editor/editor.h"
#include "qt/paint.h"
#include "qt/text.h"
#include "shell/spoken.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QPainter>

#include <cmath>
#include <limits>

namespace quillon {

namespace {

constexpr int kFrame = 4;  // pixels around the card
constexpr int kStaffStartX = 6;

int KeyCode(int key)
{
    switch (key) {
    case Qt::Key_Backspace:
        return kKeyBackspace;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        return kKeyEnter;
    case Qt::Key_Left:
        return kKeyLeft;
    case Qt::Key_Up:
        return kKeyUp;
    case Qt::Key_Right:
        return kKeyRight;
    case Qt::Key_Down:
        return kKeyDown;
    case Qt::Key_Delete:
        return kKeyDelete;
    default:
        return 0;
    }
}

/// What a key types. The control characters are named keys only: Ctrl with a letter types
/// nothing, though the toolkit has a text for it.
QString TypedText(const QKeyEvent& event)
{
    switch (event.key()) {
    case Qt::Key_Backspace:
        return "\b";
    case Qt::Key_Return:
    case Qt::Key_Enter:
        return "\r";
    case Qt::Key_Escape:
        return "\x1b";
    default:
        break;
    }
    // Ctrl with Alt is how some remote desktops send the third level of a key.
    const auto held =
        event.modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier);
    if (held && held != (Qt::ControlModifier | Qt::AltModifier))
        return {};
    const QString text = event.text();
    return !text.isEmpty() && text[0] >= ' ' && text[0] != QChar(127) ? text : QString();
}

/// The characters of a text. The digits of every script are the digits 0 to 9.
std::string Characters(QString text)
{
    for (QChar& character : text)
        if (character.isDigit())
            character = QChar('0' + character.digitValue());
    return FromUnicode(text);
}

/// The staff as readers know it: a box whose value goes up with each change and whose text says
/// what has changed. A changed value is the one event after which they read out a whole text, and
/// of the kinds of controls with a value a spin box is the one whose text they read.
class StaffAccessible : public QAccessibleWidget,
                        public QAccessibleValueInterface,
                        public QAccessibleTextInterface {
public:
    explicit StaffAccessible(StaffView& staffView)
        : QAccessibleWidget(&staffView, QAccessible::SpinBox), view(staffView)
    {
    }

    QString text(QAccessible::Text kind) const override
    {
        if (kind == QAccessible::Value)
            return view.Words();
        if (kind == QAccessible::Help)
            return "The current measure. Type fret numbers; Enter finishes the note.";
        return QAccessibleWidget::text(kind);
    }

    void* interface_cast(QAccessible::InterfaceType type) override
    {
        if (type == QAccessible::ValueInterface)
            return static_cast<QAccessibleValueInterface*>(this);
        if (type == QAccessible::TextInterface)
            return static_cast<QAccessibleTextInterface*>(this);
        return QAccessibleWidget::interface_cast(type);
    }

    QVariant currentValue() const override { return view.TimesSaid(); }
    void setCurrentValue(const QVariant&) override {}
    QVariant minimumValue() const override { return 0; }
    QVariant maximumValue() const override { return std::numeric_limits<int>::max(); }
    QVariant minimumStepSize() const override { return 1; }

    QString text(int from, int to) const override { return view.Said().mid(from, to - from); }
    int characterCount() const override { return static_cast<int>(view.Said().size()); }
    int cursorPosition() const override { return 0; }
    void setCursorPosition(int) override {}
    int selectionCount() const override { return 0; }
    void selection(int, int* from, int* to) const override { *from = *to = 0; }
    void addSelection(int, int) override {}
    void removeSelection(int) override {}
    void setSelection(int, int, int) override {}
    QRect characterRect(int) const override { return rect(); }
    int offsetAtPoint(const QPoint&) const override { return 0; }
    void scrollToSubstring(int, int) override {}
    QString attributes(int, int* from, int* to) const override
    {
        *from = 0;
        *to = characterCount();
        return {};
    }

private:
    StaffView& view;
};

QAccessibleInterface* MakeAccessible(const QString&, QObject* object)
{
    auto* view = qobject_cast<StaffView*>(object);
    return view ? new StaffAccessible(*view) : nullptr;
}

}  // namespace

StaffView::StaffView(QWidget* parent) : QWidget(parent)
{
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_InputMethodEnabled);
    setCursor(Qt::CrossCursor);
    SetScale(1);
    QAccessible::installFactory(MakeAccessible);  // again does nothing
}

void StaffView::Tell(const std::string& words)
{
    if (words == toldWords)
        return;
    saidWords = hasFocus() ? SpokenChange(toldWords, words) : words;
    toldWords = words;
    ++timesSaid;
    if (!hasFocus())
        return;
    QAccessibleValueChangeEvent event(this, timesSaid);
    QAccessible::updateAccessibility(&event);
}

QString StaffView::Words() const
{
    return ToUnicode(toldWords);
}

QString StaffView::Said() const
{
    return ToUnicode(saidWords);
}

QSize StaffView::SizeAt(double scale)
{
    const double pixels = scale * 96 / 72;
    return {static_cast<int>(std::lround(kStaffBoxWidth * pixels)) + 2 * kFrame,
            static_cast<int>(std::lround(kStaffBoxHeight * pixels)) + 2 * kFrame};
}

void StaffView::SetScale(double newScale)
{
    scale = newScale;
    setMaximumSize(SizeAt(scale));
    updateGeometry();
}

void StaffView::SetLook(Look newLook)
{
    look = newLook;
    update();
}

void StaffView::Show(const Drawing& picture, const std::array<bool, 6>& staffLines)
{
    if (drawing == &picture && revision == picture.Revision() && lines == staffLines)
        return;
    drawing = &picture;
    revision = picture.Revision();
    lines = staffLines;
    update();
}

QRect StaffView::PlaceOf(const QRectF& points) const
{
    const double pixels = PixelsPerPoint();
    return QRectF(kFrame + points.x() * pixels, kFrame + points.y() * pixels,
                  points.width() * pixels, points.height() * pixels)
        .toRect();
}

void StaffView::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    const QRect card = rect().adjusted(kFrame, kFrame, -kFrame, -kFrame);
    if (hasFocus()) {
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        painter.setBrush(palette().highlight());
        painter.drawRoundedRect(card.adjusted(-3, -3, 3, 3), 3, 3);
        painter.setRenderHint(QPainter::Antialiasing, false);
    } else {
        painter.fillRect(card.adjusted(-1, -1, 1, 1), palette().dark());
    }
    painter.fillRect(card, Qt::white);
    painter.setClipRect(card);
    painter.translate(card.topLeft());
    painter.scale(PixelsPerPoint() / kTwips, PixelsPerPoint() / kTwips);
    look == Look::Plain ? PaintPlain(painter) : PaintEngraved(painter);
}

/// The staff lines are under the drawing and paler, so that the numbers on them are easy to read.
void StaffView::PaintPlain(QPainter& painter) const
{
    painter.setPen(QColor(0x8c, 0x8c, 0x8c));
    for (int i = 0; i < 6; ++i) {
        const double y = StringY(i + 1) * kTwips;
        if (lines[static_cast<std::size_t>(i)])
            PaintCrispLine(painter, kStaffStartX * kTwips, y, kStaffEndX * kTwips, y, kScreenDot);
    }
    if (drawing)
        Paint(painter, *drawing, {.UnitsPerPoint = kPoints, .Crisp = true});
}

/// The staff lines are part of what is drawn, so that they leave room for the numbers.
void StaffView::PaintEngraved(QPainter& painter) const
{
    std::vector<Operation> card;
    Operation string;
    string.Part = Role::StringLine;
    string.X1 = kStaffStartX;
    string.X2 = kStaffEndX;
    for (int i = 0; i < 6; ++i) {
        string.Y1 = string.Y2 = StringY(i + 1);
        if (lines[static_cast<std::size_t>(i)])
            card.push_back(string);
    }
    if (drawing)
        card.insert(card.end(), drawing->Operations().begin(), drawing->Operations().end());
    Paint(painter, {std::move(card), true},
          {.UnitsPerPoint = kPoints, .Crisp = true, .As = Look::Engraved});
}

void StaffView::keyPressEvent(QKeyEvent* event)
{
    const int code = KeyCode(event->key());
    const QString text = TypedText(*event);
    emit Key(code, Characters(text));
    event->setAccepted(code != 0 || !text.isEmpty());
}

// Dead keys, compose sequences and input methods hand over finished text here.
void StaffView::inputMethodEvent(QInputMethodEvent* event)
{
    for (char character : Characters(event->commitString()))
        emit Key(0, {character});
    event->accept();
}

QVariant StaffView::inputMethodQuery(Qt::InputMethodQuery query) const
{
    if (query == Qt::ImHints)
        return int(Qt::ImhNoPredictiveText | Qt::ImhNoAutoUppercase);
    return QWidget::inputMethodQuery(query);
}

void StaffView::mousePressEvent(QMouseEvent* event)
{
    const QPointF place = (event->position() - QPointF(kFrame, kFrame)) / PixelsPerPoint();
    emit MouseDown(place.x(), place.y());
}

void StaffView::focusInEvent(QFocusEvent*)
{
    saidWords = toldWords;
    update();
}

void StaffView::focusOutEvent(QFocusEvent*)
{
    update();
}

}  // namespace quillon
