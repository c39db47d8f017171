#include "qt/page_area.h"

#include "qt/paint.h"

#include <QCoreApplication>
#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>
#include <QWheelEvent>

#include <algorithm>
#include <utility>

namespace quillon {

namespace {

constexpr int kScrollStep = 300;  // twips
constexpr int kDeskMargin = 12;   // pixels above the page and beside it
constexpr int kBandOpacity = 70;  // of 255
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
    now.reserve(pages->picPage1.size());
    for (const PageSurface& page : pages->picPage1)
        now.push_back({page.Visible, page.Top, page.Surface.Picture().Revision()});
    if (now == seen)
        return;
    if (AreMoved(seen, now))
        TakeBack();
    seen = std::move(now);
    update();
}

void PageArea::SetLook(Look newLook)
{
    look = newLook;
    update();
}

bool PageArea::AreMoved(const std::vector<Seen>& before, const std::vector<Seen>& now)
{
    return !std::ranges::equal(before, now, [](const Seen& a, const Seen& b) {
        return a.visible == b.visible && a.top == b.top;
    });
}

void PageArea::ShowBand(const std::optional<Band>& newBand)
{
    if (newBand == band)
        return;
    for (const std::optional<Band>& changed : {std::exchange(band, newBand), newBand})
        if (changed)
            update(Place(*changed));
}

void PageArea::Lead(const std::optional<PageWindow>& window)
{
    if (std::exchange(led, window) != window)
        update();
}

void PageArea::TakeBack()
{
    if (!led)
        return;
    Lead(std::nullopt);
    emit TakenBack();
}

PageWindow PageArea::InView() const
{
    if (led)
        return *led;
    PageWindow window;
    for (int i = 0; i < kPageCount; ++i)
        if (pages->picPage1[i].Visible)
            window = {i, -pages->picPage1[i].Top};  // the last one lies on top
    return window;
}

double PageArea::HeightInView() const
{
    return (height() - kDeskMargin) * kScreenDot;
}

void PageArea::wheelEvent(QWheelEvent* event)
{
    TakeBack();
    QCoreApplication::sendEvent(vsbPage, event);
}

void PageArea::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.fillRect(rect(), palette().mid());
    if (led) {
        PaintPage(painter, led->Page, -led->Top);
        return;
    }
    for (int i = 0; i < kPageCount; ++i)
        if (pages->picPage1[i].Visible)
            PaintPage(painter, i, pages->picPage1[i].Top);
}

QRect PageArea::Paper(double top) const
{
    const int left = std::max(kDeskMargin, (width() - kPaperWidth) / 2);
    return {left, kDeskMargin + static_cast<int>(top / kScreenDot), kPaperWidth, kPaperHeight};
}

/// The top of a page against that of the desk.
double PageArea::TopOf(int index) const
{
    return led && led->Page == index ? -led->Top : pages->picPage1[index].Top;
}

QRect PageArea::Place(const Band& onPage) const
{
    const QRectF place(onPage.Left / kScreenDot, onPage.Top / kScreenDot,
                       (onPage.Right - onPage.Left) / kScreenDot,
                       (onPage.Bottom - onPage.Top) / kScreenDot);
    return place.translated(Paper(TopOf(onPage.Page)).topLeft()).toAlignedRect();
}

void PageArea::PaintPage(QPainter& painter, int index, double top)
{
    const PageSurface& page = pages->picPage1[index];
    const QRect paper = Paper(top);
    painter.fillRect(paper.adjusted(-1, -1, 1, 1), palette().dark());
    painter.fillRect(paper, Qt::white);
    if (band && band->Page == index) {
        QColor color = palette().color(QPalette::Active, QPalette::Highlight);
        color.setAlpha(kBandOpacity);
        painter.fillRect(Place(*band), color);
    }
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
    return (place - QPointF(Paper(page.Top).topLeft())) * kScreenDot;
}

void PageArea::mousePressEvent(QMouseEvent* event)
{
    touched = -1;
    if (led) {
        TakeBack();  // the click was meant for a page that the form does not show
        return;
    }
    for (int i = 0; i < kPageCount; ++i) {
        const PageSurface& page = pages->picPage1[static_cast<std::size_t>(i)];
        if (page.Visible && Paper(page.Top).contains(event->pos()))
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
