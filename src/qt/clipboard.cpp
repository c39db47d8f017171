#include "qt/clipboard.h"

#include "notation/draw_surface.h"
#include "shell/look_choice.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QImage>
#include <QPainter>

#include <cmath>

namespace quillon {

void QtClipboard::SetPicture(const Drawing& page, const PagePart& part, double width, double height)
{
    QGuiApplication::clipboard()->clear();
    // As sharp as the page is on the screen.
    const double ratio = qGuiApp->devicePixelRatio();
    QImage image(static_cast<int>(std::lround(width * ratio)),
                 static_cast<int>(std::lround(height * ratio)), QImage::Format_RGB32);
    if (image.isNull())
        return;
    constexpr double kInchesPerMeter = 1 / 0.0254;
    const double pixelsPerInch = ratio * kTwipsPerInch / kScreenDot;
    image.setDotsPerMeterX(static_cast<int>(std::lround(pixelsPerInch * kInchesPerMeter)));
    image.setDotsPerMeterY(image.dotsPerMeterX());
    image.fill(Qt::white);
    QPainter painter(&image);
    if (part.Width > 0 && part.Height > 0) {
        painter.scale(ratio * width / part.Width / kScreenDot,
                      ratio * height / part.Height / kScreenDot);
        painter.translate(-part.X * kScreenDot, -part.Y * kScreenDot);
        Paint(painter, page, {.UnitsPerPoint = kTwips, .Crisp = true, .As = ChosenLook(settings)});
    }
    painter.end();
    QGuiApplication::clipboard()->setImage(image);
}

}  // namespace quillon
