#include "qt/page_area.h"

#include "qt/paint.h"

#include <QCoreApplication>
#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>
#include <QWheelEvent>

#include <algorithm>

namespace quillon {

namespace {

constexpr int kScrollStep = 300;  // twips
constexpr int kDeskMargin = 12;   // pixels above the page and beside it
constexpr int kPaperWidth = static_cast<int>(kPageWidth / kScreenDot);
constexpr int kPaperHeight = static_cast<int>(kPageHeight / kScreenDot);

}  // namespace

PageArea::PageArea(QWidget* parent) : QWidget(parent)
{
    setAttribute(Qt::WA_OpaquePaintEvent);
}

QSize PageArea::minimumSizeHint() const
{
    return {kPaperWidth + 2 * kDeskMargin, 120};
}

void PageArea::Connect(PageView& pageView, Runner& theRunner, QScrollBar& scrollBar)
{
    pages = &pageView;
    runner = &theRunner;
    vsbPage = &scrollBar;
    vsbPage->setSingleStep(kScrollStep);
    connect(vsbPage, &QScrollBar::valueChanged, this, [this](int value) {
        pages->vsbPage = value;
        pages->vsbPageChange();
        Show();
    });
}

void PageArea::Show()
{
    vsbPage->setRange(0, pages->VsbPageMax);
    vsbPage->setPageStep(std::max(1, static_cast<int>(height() * kScreenDot)));
    vsbPage->setValue(pages->vsbPage);
    std::vector<Seen> now;
    for (const PageSurface& page : pages->picPage1)
        now.push_back({page.Visible, page.Top, page.Surface.Picture().Revision()});
    if (now == seen)
        return;
    seen = std::move(now);
    update();
}

void PageArea::SetLook(Look newLook)
{
    look = newLook;
    update();
}

void PageArea::wheelEvent(QWheelEvent* event)
{
    QCoreApplication::sendEvent(vsbPage, event);
}

void PageArea::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.fillRect(rect(), palette().mid());
    for (const PageSurface& page : pages->picPage1)
        if (page.Visible)
            PaintPage(painter, page);
}

QRect PageArea::Paper(const PageSurface& page) const
{
    const int left = std::max(kDeskMargin, (width() - kPaperWidth) / 2);
    const int top = kDeskMargin + static_cast<int>(page.Top / kScreenDot);
    return {left, top, kPaperWidth, kPaperHeight};
}

void PageArea::PaintPage(QPainter& painter, const PageSurface& page)
{
    const QRect paper = Paper(page);
    painter.fillRect(paper.adjusted(-1, -1, 1, 1), palette().dark());
    painter.fillRect(paper, Qt::white);
    painter.save();
    painter.setClipRect(paper);
    painter.translate(paper.topLeft());
    painter.scale(1 / kScreenDot, 1 / kScreenDot);
    Paint(painter, page.Surface.Picture(), {.UnitsPerPoint = kTwips, .Crisp = true, .As = look});
    painter.restore();
}

QPointF PageArea::PlaceOn(int index, const QPointF& place) const
{
    const PageSurface& page = pages->picPage1[static_cast<std::size_t>(index)];
    return (place - QPointF(Paper(page).topLeft())) * kScreenDot;
}

void PageArea::mousePressEvent(QMouseEvent* event)
{
    touched = -1;
    for (int i = 0; i < kPageCount; ++i) {
        const PageSurface& page = pages->picPage1[static_cast<std::size_t>(i)];
        if (page.Visible && Paper(page).contains(event->pos()))
            touched = i;  // the one on top
    }
    if (touched < 0)
        return;
    const QPointF place = PlaceOn(touched, event->position());
    runner->Run("Click on a page",
                [&] { pages->picPage1MouseDown(touched, place.x(), place.y()); });
}

void PageArea::mouseMoveEvent(QMouseEvent* event)
{
    if (touched < 0)
        return;
    const QPointF place = PlaceOn(touched, event->position());
    runner->Run("Drag on a page",
                [&] { pages->picPage1MouseMove(touched, place.x(), place.y(), true); });
}

void PageArea::mouseReleaseEvent(QMouseEvent*)
{
    if (touched >= 0)
        runner->Run("Drag on a page", [&] { pages->picPage1MouseUp(touched); });
    touched = -1;
}

}  // namespace quillon
