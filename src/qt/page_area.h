// picPage on the screen: a window on the page surfaces, which are laid out on a desk.

#pragma once

#include "notation/look.h"
#include "notation/page_view.h"
#include "qt/runner.h"

#include <QWidget>

#include <vector>

class QScrollBar;

namespace quillon {

class PageArea : public QWidget {
    Q_OBJECT

public:
    explicit PageArea(QWidget* parent = nullptr);

    /// The pages to show, which run their handlers, and the scroll bar beside the area. All must
    /// outlive the area.
    void Connect(PageView& pageView, Runner& theRunner, QScrollBar& scrollBar);

    void SetLook(Look newLook);

    /// Shows the pages as they are now; paints only if they have changed.
    void Show();

    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    void PaintPage(QPainter& painter, const PageSurface& page);
    QRect Paper(const PageSurface& page) const;
    QPointF PlaceOn(int index, const QPointF& place) const;

    /// What a page looks like from here.
    struct Seen {
        bool visible;
        double top;
        unsigned revision;
        bool operator==(const Seen&) const = default;
    };

    Look look = Look::Plain;
    PageView* pages = nullptr;
    Runner* runner = nullptr;
    QScrollBar* vsbPage = nullptr;
    std::vector<Seen> seen;
    int touched = -1;  // page on which the mouse is held, -1 is none
};

}  // namespace quillon
