// The renderer as a module of its own, which the export command loads when a format needs it: most
// of its formats need neither toolkit nor synthesizer, and start ten times as fast without them.

#include "notation/draw_surface.h"
#include "notation/page_view.h"
#include "platform/renderer.h"
#include "qt/fluid_player.h"
#include "qt/font_metrics.h"
#include "qt/paint.h"
#include "qt/svg.h"
#include "qt/text.h"

#include <QBuffer>
#include <QDateTime>
#include <QGuiApplication>
#include <QHash>
#include <QImage>
#include <QPageSize>
#include <QPainter>
#include <QPdfWriter>

namespace quillon {

namespace {

constexpr int kPdfResolution = 600;  // dots per inch

/// Puts the date that the environment asks for in place of the present one.
void FixDate(QByteArray& pdf)
{
    const QByteArray epoch = qgetenv("SOURCE_DATE_EPOCH");
    if (epoch.isEmpty())
        return;
    const QDateTime date = QDateTime::fromSecsSinceEpoch(epoch.toLongLong(), Qt::UTC);
    const QByteArray key = "/CreationDate (D:";
    const qsizetype start = pdf.indexOf(key);
    const qsizetype end = start < 0 ? -1 : pdf.indexOf(')', start);
    if (end < 0)
        return;
    QByteArray text = date.toString("yyyyMMddHHmmss").toLatin1() + "+00'00'";
    const qsizetype length = end - start - key.size();
    text = text.leftJustified(length, ' ', true);  // offsets in the file stay as they are
    pdf.replace(start + key.size(), length, text);
}

class QtRenderer : public Renderer {
public:
    QtRenderer()
    {
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
        {
            QPdfWriter writer(&buffer);
            writer.setResolution(kPdfResolution);
            writer.setPageSize(QPageSize(QPageSize::Letter));
            writer.setPageMargins({});
            writer.setTitle(ToUnicode(choices.Title));
            writer.setCreator("Quillon");
            QPainter painter(&writer);
            painter.scale(kPdfResolution / kTwipsPerInch, kPdfResolution / kTwipsPerInch);
            for (std::size_t i = 0; i < pages.size(); ++i) {
                if (i > 0)
                    writer.newPage();
                Paint(painter, pages[i],
                      {.UnitsPerPoint = kTwips, .Dot = kPrinterDot, .As = choices.As});
            }
        }
        FixDate(bytes);
        return bytes.toStdString();
    }

    std::string Svg(const Drawing& page, const PageChoices& choices) const override
    {
        return SvgPage(page, choices.As);
    }

    std::string Png(const Drawing& page, const PageChoices& choices) const override
    {
        QImage image(static_cast<int>(kPageWidth / kScreenDot),
                     static_cast<int>(kPageHeight / kScreenDot), QImage::Format_RGB32);
        image.fill(Qt::white);
        {
            QPainter painter(&image);
            painter.scale(1 / kScreenDot, 1 / kScreenDot);
            Paint(painter, page, {.UnitsPerPoint = kTwips, .Crisp = true, .As = choices.As});
        }
        QByteArray bytes;
        QBuffer buffer(&bytes);
        buffer.open(QIODevice::WriteOnly);
        image.save(&buffer, "PNG");
        return bytes.toStdString();
    }

    void Wav(const std::string& midiBytes, const std::string& path,
             const std::function<void(double)>& progress) const override
    {
        RenderWav(midiBytes, path, progress);
    }

private:
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
