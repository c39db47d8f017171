// The renderer as a module of its own, which the export command loads when a format needs it: most
// of its formats need neither toolkit nor synthesizer, and start ten times as fast without them.
// The window loads it for the same reason.

#include "notation/draw_surface.h"
#include "notation/page_view.h"
#include "platform/renderer.h"
#include "qt/font_metrics.h"
#include "qt/paint.h"
#include "qt/pdf.h"
#include "qt/sound_file.h"
#include "qt/svg.h"
#include "qt/text.h"

#include <QBuffer>
#include <QGuiApplication>
#include <QHash>
#include <QImage>
#include <QPageSize>
#include <QPainter>
#include <QPdfWriter>
#include <QtMath>

namespace quillon {

namespace {

constexpr int kPdfResolution = 600;  // dots per inch
constexpr double kMetersPerInch = 0.0254;

class QtRenderer : public Renderer {
public:
    /// In the window's program there is an application already.
    QtRenderer()
    {
        if (QCoreApplication::instance())
            return;
        if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
            qputenv("QT_QPA_PLATFORM", "offscreen");
        qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
        QHashSeed::setDeterministicGlobalSeed();  // else tables in a PDF are in any order
        static int argc = 1;
        static char name[] = "quillon-export";
        static char* argv[] = {name, nullptr};
        application = std::make_unique<QGuiApplication>(argc, argv);
        LoadNotationFont();
    }

    const TextMetrics& Metrics() const override { return metrics; }

    bool HasFont(const std::string& name) const override { return FontAvailable(ToUnicode(name)); }

    std::string Pdf(const std::vector<Drawing>& pages, const PageChoices& choices) const override
    {
        QByteArray bytes;
        QBuffer buffer(&bytes);
        buffer.open(QIODevice::WriteOnly);
        WritePdf(buffer, pages, choices);
        FinishPdf(bytes, {ToUnicode(choices.Author), ToUnicode(choices.Subject)});
        return bytes.toStdString();
    }

    std::string Svg(const Drawing& page, const PageChoices& choices) const override
    {
        return SvgPage(page, choices);
    }

    /// A part of the page begins at a whole pixel, so that its lines are those of the whole page.
    std::string Png(const Drawing& page, const PageChoices& choices) const override
    {
        const double scale = choices.Dpi / kTwipsPerInch;
        const PaintStyle style{.UnitsPerPoint = kTwips, .Crisp = true, .As = choices.As};
        const Box part = PartOf(page, choices, style);
        const QPoint from(qFloor(part.Left * scale), qFloor(part.Top * scale));
        QImage image(qCeil(part.Right * scale) - from.x(), qCeil(part.Bottom * scale) - from.y(),
                     QImage::Format_RGB32);
        image.setDotsPerMeterX(qRound(choices.Dpi / kMetersPerInch));
        image.setDotsPerMeterY(image.dotsPerMeterX());
        image.fill(Qt::white);
        {
            QPainter painter(&image);
            painter.translate(-from);
            painter.scale(scale, scale);
            Paint(painter, page, style);
        }
        QByteArray bytes;
        QBuffer buffer(&bytes);
        buffer.open(QIODevice::WriteOnly);
        image.save(&buffer, "PNG");
        return bytes.toStdString();
    }

    void Sound(const std::string& midiBytes, const std::string& path, const std::string& format,
               const std::function<void(double)>& progress) const override
    {
        RenderSound(midiBytes, path, format, progress);
    }

private:
    /// In whole points, as the toolkit has it.
    static QPageSize SizeOf(const Box& part, bool crop)
    {
        const auto points = [&](double twips) {
            return crop ? qCeil(twips / kTwips) : qRound(twips / kTwips);
        };
        return QPageSize(QSize(points(part.Right - part.Left), points(part.Bottom - part.Top)));
    }

    static void WritePdf(QIODevice& file, const std::vector<Drawing>& pages,
                         const PageChoices& choices)
    {
        const PaintStyle style{
            .UnitsPerPoint = kTwips, .Dot = kPrinterDot, .SignOutlines = true, .As = choices.As};
        QPdfWriter writer(&file);
        writer.setResolution(kPdfResolution);
        writer.setTitle(ToUnicode(choices.Title));
        writer.setCreator("Quillon");
        writer.setPageMargins({});
        QPainter painter;
        for (const Drawing& page : pages) {
            const Box part = PartOf(page, choices, style);
            writer.setPageSize(SizeOf(part, choices.Crop));
            if (painter.isActive())
                writer.newPage();
            else
                painter.begin(&writer);
            painter.resetTransform();
            painter.scale(kPdfResolution / kTwipsPerInch, kPdfResolution / kTwipsPerInch);
            painter.translate(-part.Left, -part.Top);
            Paint(painter, page, style);
        }
    }

    std::unique_ptr<QGuiApplication> application;
    FontMetrics metrics;
};

}  // namespace

}  // namespace quillon

/// The module's one entry. The caller deletes the renderer, before the program's end.
extern "C" __attribute__((visibility("default"))) quillon::Renderer* MakeQuillonRenderer()
{
    return new quillon::QtRenderer;
}
