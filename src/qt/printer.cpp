#include "qt/printer.h"

#include "notation/page_view.h"
#include "qt/paint.h"
#include "qt/text.h"
#include "shell/look_choice.h"
#include "store/fault.h"

#include <QApplication>
#include <QPageSize>
#include <QPainter>
#include <QPrintDialog>
#include <QPrinter>

namespace quillon {

namespace {

constexpr int kResolution = 600;  // fixed, so that a PDF file is the same on every machine

/// A job is the whole tune in its order. The toolkit offers a range of pages, the odd or even ones
/// and the reverse order all the same.
void OfferWholeTuneOnly(const QPrintDialog& dialog)
{
    for (const char* name : {"gbPrintRange", "reverse"})
        if (auto* choice = dialog.findChild<QWidget*>(name))
            choice->setEnabled(false);
}

}  // namespace

QtPrinter::QtPrinter(Runner& theRunner, const Settings& theSettings)
    : runner(theRunner), settings(theSettings)
{
}

QtPrinter::~QtPrinter() = default;

QPrinter& QtPrinter::Device() const
{
    if (!device) {
        device = std::make_unique<QPrinter>();
        device->setResolution(kResolution);
        device->setPageSize(QPageSize(QPageSize::Letter));
        device->setFullPage(true);
    }
    return *device;
}

std::optional<int> QtPrinter::ShowDialog(const std::string& jobName)
{
    runner.ShowForm();
    Device().setCopyCount(copies);
    Device().setDocName(BoxText(jobName));  // names the file too, if it is printed to one
    QPrintDialog dialog(&Device(), QApplication::activeWindow());
    dialog.setOptions(QAbstractPrintDialog::PrintToFile | QAbstractPrintDialog::PrintShowPageSize);
    OfferWholeTuneOnly(dialog);
    if (dialog.exec() != QDialog::Accepted)
        return {};
    copies = Device().copyCount();
    Device().setCopyCount(1);  // each copy is a job of its own
    Device().setFullPage(true);
    return copies;
}

double QtPrinter::Width() const
{
    return Device().pageLayout().fullRectPoints().width() * kTwips;
}

double QtPrinter::Height() const
{
    return Device().pageLayout().fullRectPoints().height() * kTwips;
}

void QtPrinter::Print(const std::vector<Drawing>& pages)
{
    QPainter painter;
    if (!painter.begin(&Device()))
        throw Fault(Error::PathFileAccess);
    painter.scale(Device().resolution() / kTwipsPerInch, Device().resolution() / kTwipsPerInch);
    const PaintStyle style{.UnitsPerPoint = kTwips,
                           .Dot = kPrinterDot,
                           .SignOutlines = true,
                           .As = ChosenLook(settings)};
    bool first = true;
    for (const Drawing& page : pages) {
        if (!first)
            Device().newPage();
        first = false;
        Paint(painter, page, style);
    }
}

}  // namespace quillon
