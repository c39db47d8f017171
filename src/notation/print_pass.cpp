#include "notation/print_pass.h"

namespace quillon {

namespace {

/// How large a line is on paper, by the size of the body font; twips.
struct PaperSizes {
    float BodyFontSize;
    int StringGap;
    int CharUnit;
};

constexpr PaperSizes kPaperSizes[] = {
    {8,  140, 80 },
    {10, 165, 100},
    {12, 185, 120},
};

/// Any other size becomes 12 permanently: docs/kept_behaviour.md, "Pages and paper".
const PaperSizes& SetPaperSize(PageSettings& page)
{
    for (const PaperSizes& sizes : kPaperSizes)
        if (sizes.BodyFontSize == page.BodyFontSize)
            return sizes;
    page.BodyFontSize = kPaperSizes[2].BodyFontSize;
    return kPaperSizes[2];
}

/// The file's name without its folder.
std::string JobName(const Tune& tune)
{
    return tune.FileName.substr(tune.FileName.find_last_of('/') + 1);
}

// In single precision, as the margins themselves: .8 inches are 1152 twips, not a little more,
// which could move a line to the next page.
float Twips(float inches)
{
    return inches * static_cast<float>(kTwipsPerInch);
}

LayoutValues PrinterValues(PageSettings& page, double width)
{
    LayoutValues values;
    values.LineLeft = Round(Twips(page.PageLeft) - kQuarterInch);
    values.LineRight = Round(width - Twips(page.PageRight));
    values.TitleY = Round(Twips(page.PageTop));
    const PaperSizes& sizes = SetPaperSize(page);
    values.StringGap = sizes.StringGap;
    values.CharUnit = sizes.CharUnit;
    values.LineDistance = Twips(page.StaveSpace);
    values.HeadingGap = 3 * values.StringGap;
    values.Pens = kPrinterPens;
    values.TieInset = 0;
    values.TieShift = 0;
    values.CenterTitle = page.TitleCentered;
    values.SpreadChords = true;
    values.TwelveBeatsRoom = 2;
    values.SkipFaults = true;
    return values;
}

}  // namespace

PrintedTune RunPrintPass(const Tune& tune, PageSettings& page, const TextMetrics& metrics,
                         double width, double height)
{
    PrintedTune printed;
    DrawSurface paper(metrics, kTwips, width, height);
    paper.FillSolid = true;
    PageFormatter formatter(tune, page, PrinterValues(page, width), paper, [&]() -> DrawSurface& {
        printed.Pages.push_back(paper.TakePicture());
        paper.CurrentX = 0;
        paper.CurrentY = 0;
        paper.PrintLine(" ");
        return paper;
    });
    printed.TooWideMeasure = formatter.Run();
    printed.Pages.push_back(paper.TakePicture());
    return printed;
}

std::optional<int> PrintTune(const Tune& tune, PageSettings& page, const TextMetrics& metrics,
                             Printer& printer)
{
    std::optional<int> tooWideMeasure;
    try {
        const std::optional<int> copies = printer.ShowDialog(JobName(tune));
        if (!copies)
            return std::nullopt;
        for (int copy = 0; copy < *copies; ++copy) {
            const PrintedTune printed =
                RunPrintPass(tune, page, metrics, printer.Width(), printer.Height());
            printer.Print(printed.Pages);
            tooWideMeasure = printed.TooWideMeasure;
        }
        printer.SetCopies(1);
    } catch (const Fault&) {
        // Whatever fails from the dialog on, the command ends without a word.
    }
    return tooWideMeasure;
}

}  // namespace quillon
