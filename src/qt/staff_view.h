// StaffBox on the screen: the measure as a white card, and the keys and clicks on it.

#pragma once

#include "notation/look.h"
#include "notation/measure_view.h"

#include <QWidget>

#include <array>
#include <string>

namespace quillon {

class StaffView : public QWidget {
    Q_OBJECT

public:
    explicit StaffView(QWidget* parent = nullptr);

    /// Scale 1 shows a point as 1/72 inch of the screen.
    void SetScale(double newScale);

    void SetLook(Look newLook);

    /// Size of the widget at a scale: the card and the room for the focus frame around it.
    static QSize SizeAt(double scale);

    QSize sizeHint() const override { return SizeAt(scale); }
    QSize minimumSizeHint() const override { return SizeAt(1); }

    /// Shows the drawing and the staff lines; paints only if either has changed. Both are kept
    /// by reference.
    void Show(const Drawing& picture, const std::array<bool, 6>& staffLines);

    /// The part of the widget that a rectangle of the card, in points, takes.
    QRect PlaceOf(const QRectF& points) const;

    /// Tells screen readers in words where the cursor is and what is there. With the focus, what is
    /// new is said at once; without it, all of it once the focus comes.
    void Tell(const std::string& words);

    // What readers are told: all of it, what they say of it now, and how often that has changed.
    QString Words() const;
    QString Said() const;
    int TimesSaid() const { return timesSaid; }

signals:
    /// `keyCode` is 0 for a key that no handler knows. The characters, of Windows-1252, are what it
    /// types: one, or none.
    void Key(int keyCode, const std::string& characters);
    void MouseDown(double x, double y);  // points

protected:
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void inputMethodEvent(QInputMethodEvent* event) override;
    QVariant inputMethodQuery(Qt::InputMethodQuery query) const override;
    void mousePressEvent(QMouseEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

private:
    void PaintPlain(QPainter& painter) const;
    void PaintEngraved(QPainter& painter) const;
    double PixelsPerPoint() const { return scale * 96 / 72; }

    double scale = 1;
    Look look = Look::Plain;
    const Drawing* drawing = nullptr;
    unsigned revision = 0;
    std::array<bool, 6> lines{};
    std::string toldWords;
    std::string saidWords;
    int timesSaid = 0;
};

}  // namespace quillon
