// picPage on the screen: a window on the page surfaces, which are laid out on a desk.
//
// While music plays, a band lies on the measure that sounds, and another part of the pages may be
// in view than the described form shows. The form knows nothing of it: what the user does with the
// pages brings its own view back.

#pragma once

#include "notation/look.h"
#include "notation/page_view.h"
#include "qt/runner.h"
#include "shell/follower.h"

#include <QWidget>

#include <optional>
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

    /// A band under the ink.
    void ShowBand(const std::optional<Band>& newBand);

    /// Shows this part of the pages until the user moves them; without one, the form's own view.
    void Lead(const std::optional<PageWindow>& window);

    /// What is in view, and the height of what is, in twips.
    PageWindow InView() const;
    double HeightInView() const;

signals:
    /// The user has moved the pages, and the form's own view is back.
    void TakenBack();

protected:
    void paintEvent(QPaintEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    void PaintPage(QPainter& painter, int index, double top);
    QRect Paper(double top) const;
    QRect Place(const Band& onPage) const;
    double TopOf(int index) const;
    void TakeBack();
    QPointF PlaceOn(int index, const QPointF& place) const;

    /// Where a page is, and its picture.
    struct Seen {
        bool visible;
        double top;
        unsigned revision;
        bool operator==(const Seen&) const = default;
    };

    static bool AreMoved(const std::vector<Seen>& before, const std::vector<Seen>& now);

    Look look = Look::Plain;
    PageView* pages = nullptr;
    Runner* runner = nullptr;
    QScrollBar* vsbPage = nullptr;
    std::vector<Seen> seen;
    int touched = -1;  // page on which the mouse is held, -1 is none
    std::optional<Band> band;
    std::optional<PageWindow> led;
};

}  // namespace quillon
