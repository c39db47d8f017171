#include "notation/page_layout.h"

#include "notation/line_furniture.h"
#include "notation/staff_sizes.h"
#include "store/sign_codes.h"

#include <algorithm>
#include <utility>

namespace quillon {

namespace {

constexpr int kWidestUnit = 150;        // a short line stays short
constexpr int kHeadWidth = 2;           // width units
constexpr int kNarrowestEnd = 4;        // width units of a line's last column, at least
constexpr int kFirstColumnInset = 120;  // twips from the left edge

// A staff that ends before the right margin: beyond which x it does not, in twips, and how far it
// continues after its last column, in width units
constexpr int kNearLineEnd = 9000;
constexpr int kRoomAfterTune = 6;
constexpr int kRoomAfterLongRest = 12;

// The screen's page, in twips
constexpr int kScreenLeft = 400;
constexpr int kScreenRight = 800;  // from the right edge
constexpr int kScreenTop = 600;

bool IsEndBar(std::string_view barCode)
{
    return barCode == kDoubleBar || barCode == kRepeatEnd;
}

bool IsBeginBar(std::string_view barCode)
{
    return barCode == kBeginDoubleBar || barCode == kRepeatStart;
}

}  // namespace

PageFormatter::PageFormatter(const Tune& theTune, const PageSettings& pageSettings,
                             const LayoutValues& layoutValues, DrawSurface& firstPage,
                             std::function<DrawSurface&()> beginFurtherPage)
    : tune(theTune), page(pageSettings), beginPage(std::move(beginFurtherPage)),
      line{theTune, pageSettings, layoutValues, &firstPage}, noteColumns(line)
{
}

std::optional<int> PageFormatter::Run()
{
    DrawHeading();
    for (int i = 1; i < tune.LastNote; i += line.k) {
        BuildLine(i);
        if (line.k <= 0)
            return tune[i].Measure;
        SpreadLine();
        DrawLine(i);
        FinishLine(i + line.k - 1);
    }
    return std::nullopt;
}

void PageFormatter::UseBodyFont()
{
    line.surface->Font = {page.BodyFontName, page.BodyFontSize, false};
}

void PageFormatter::DrawHeading()
{
    DrawSurface& surface = *line.surface;
    surface.CurrentY = line.values.TitleY;
    if (tune[0].ChordText != " ")
        PrintTitle();
    UseBodyFont();
    PrintCredits();
    line.PenY = surface.CurrentY + line.values.HeadingGap;
    surface.CurrentY = line.PenY;
}

/// A centred title is centred on the paper, not between the margins, and then moved left by a
/// quarter inch.
void PageFormatter::PrintTitle()
{
    DrawSurface& surface = *line.surface;
    const std::string& title = tune[0].ChordText;
    surface.Font = {page.TitleFontName, page.TitleFontSize, false};
    surface.CurrentX =
        line.values.CenterTitle
            ? IntegerDivide(surface.Width - surface.TextWidth(title), 2) - kQuarterInch
            : line.values.LineLeft;
    surface.PrintLine(title, Role::Title);
}

/// Both lines begin at one x; the longer one ends at the right margin.
void PageFormatter::PrintCredits()
{
    DrawSurface& surface = *line.surface;
    const std::string& first = tune[0].Slot(1);
    const std::string& second = tune[0].Slot(2);
    double x = line.LineRight - surface.TextWidth(second);
    if (!first.empty()) {
        x = std::min(x, line.LineRight - surface.TextWidth(first));
        surface.PrintLineAt(x, surface.CurrentY, first);
    }
    if (!second.empty())
        surface.PrintLineAt(x, surface.CurrentY, second);
}

/// Fills the columns with the records from firstRecord on, and leaves in k the last column of the
/// last whole measure that fits; 0 or less if there is none.
void PageFormatter::BuildLine(int firstRecord)
{
    CopyRecords(firstRecord);
    if (line.values.SpreadChords)
        MakeRoomForChords();
    if (line.k == kLastColumn)
        CutMeasureAtTablesEnd();
    if (line.k <= 0)
        return;
    MakeRoomForSignatures();
    MoveBars();
    line.Attempt([&] { CutToCapacity(); });
    if (line.k <= 0)
        return;
    SetPlainBars();
    NoteRecord& last = line.columns[line.k];
    if (const int missing = kNarrowestEnd - last.Spacing; missing > 0) {
        line.Attempt([&] { last.Reserved += missing; });
        last.Spacing = kNarrowestEnd;
    }
}

/// A hard break belongs to the head that starts the next line.
void PageFormatter::CopyRecords(int firstRecord)
{
    for (int n = 1; n <= kLastColumn; ++n)
        line.columns[n].Clear();
    line.k = 0;
    bool hardBreak = false;
    for (int i = firstRecord; i <= tune.LastNote && line.k < kLastColumn && !hardBreak;) {
        NoteRecord& column = line.columns[++line.k];
        column = tune[i++];
        column.XPos = 0;
        column.Reserved = 0;
        SetWidth(column);
        hardBreak = i <= tune.LastNote && tune[i].Slot(6) == kLineBreak;
    }
}

void PageFormatter::SetWidth(NoteRecord& column)
{
    if (const int width = column.IsHead() ? kHeadWidth : PageWidthOf(column.NoteCode))
        column.Spacing = width;
    const auto makeRoomFor = [&](const std::string& text) {
        if (Length(text) >= column.Spacing)
            line.Attempt([&] { column.Spacing = Length(text) + 1; });
    };
    if (!column.IsHead())
        for (const std::string& slot : column.Slots)
            if (!slot.empty())
                makeRoomFor(slot);
    if (!line.values.SpreadChords)
        makeRoomFor(column.ChordText);
}

/// A search that leaves the table before it finds enough room gives up, and the column stays as it
/// is by then.
void PageFormatter::MakeRoomForChords()
{
    for (int n = 1; n <= line.k; ++n) {
        NoteRecord& column = line.columns[n];
        const int length = Length(column.ChordText);
        if (length <= 1)
            continue;
        if (n == line.k)
            line.Attempt([&] { column.Spacing = length + 1; });
        else
            line.Attempt([&] { SpreadChordText(n); });
    }
}

/// Lets a chord use the room of the columns after it. Before the next chord its own column is
/// widened instead, and the walk goes on.
void PageFormatter::SpreadChordText(int n)
{
    NoteRecord& column = line.columns[n];
    const int length = Length(column.ChordText) + 1;
    int total = column.Spacing;
    for (int j = n + 1; length >= total; ++j) {
        if (!line.columns[j].ChordText.empty())
            column.Spacing = length + 1;
        else
            total += line.columns[j].Spacing;
    }
}

/// The measure that the table's end cuts goes whole to the next line, even if it ends right there.
void PageFormatter::CutMeasureAtTablesEnd()
{
    line.Attempt([&] {
        while (line.k > 0 && line.columns[line.k].Measure == line.columns[line.k - 1].Measure)
            --line.k;
    });
    --line.k;
}

void PageFormatter::Widen(NoteRecord& column, int units)
{
    line.Attempt([&] { column.Spacing += units; });
}

void PageFormatter::MakeRoomForSignatures()
{
    for (int n = 1; n < line.k; ++n) {
        NoteRecord& column = line.columns[n];
        if (!line.SignatureChangesAt(n))
            continue;
        Widen(column, column.BarCode == kRepeatStart ? 2 : 1);
        if (column.Beats == 12)
            Widen(column, line.values.TwelveBeatsRoom);
    }
}

/// An end bar is stored in the head and drawn at the measure's last column. On a head without
/// notes it is lost, as it moves onto itself.
void PageFormatter::MoveBars()
{
    LayoutTable& columns = line.columns;
    for (int n = 1; n <= line.k; ++n) {
        const std::string bar = columns[n].BarCode;
        if (columns[n].IsHead() && IsEndBar(bar)) {
            int j = n;
            while (j < kLastColumn - 1 && columns[j].Measure == columns[j + 1].Measure)
                ++j;
            columns[j].BarCode = bar;
            columns[n].BarCode.clear();
            Widen(columns[j], 1);
        }
        if (IsBeginBar(bar))
            Widen(columns[n], 1);
    }
}

void PageFormatter::CutToCapacity()
{
    LayoutTable& columns = line.columns;
    int& k = line.k;
    if (columns[k].IsHead())
        --k;
    for (int n = 1; n <= k; ++n)
        line.Attempt([&] { columns[n].Reserved = columns[n - 1].Reserved + columns[n].Spacing; });
    const int LineCapacity =
        IntegerDivide(line.values.LineRight - line.values.LineLeft, line.values.CharUnit);
    while (k > 0 && columns[k].Reserved > LineCapacity)
        --k;
    if (k < tune.LastNote)
        while (k > 0 && columns[k].Measure == columns[k + 1].Measure)
            --k;
}

/// A begin bar on the next head takes the place of the plain bar.
void PageFormatter::SetPlainBars()
{
    LayoutTable& columns = line.columns;
    for (int n = 1; n < line.k; ++n)
        if (columns[n].Measure != columns[n + 1].Measure && columns[n].BarCode.empty() &&
            columns[n + 1].BarCode.empty())
            columns[n].BarCode = kPlainBar;
    if (columns[line.k].BarCode.empty())
        columns[line.k].BarCode = kPlainBar;
}

void PageFormatter::SpreadLine()
{
    const int lineWidth = line.values.LineRight - line.values.LineLeft;
    LayoutTable& columns = line.columns;
    const NoteRecord& last = columns[line.k];
    int& unit = line.UnitSpacing;
    line.Attempt([&] { unit = IntegerDivide(lineWidth, last.Reserved); });
    unit = std::min(unit, kWidestUnit);
    line.Attempt([&] { columns[1].XPos = line.values.LineLeft + kFirstColumnInset; });
    for (int n = 2; n <= line.k; ++n)
        line.Attempt(
            [&] { columns[n].XPos = columns[n - 1].XPos + unit * columns[n - 1].Spacing; });

    // A tune of one line, and a line that ends in a long rest, have a staff that ends there. The
    // column count is compared with the record's index on purpose (docs/kept_behaviour.md, "Pages
    // and paper"): it is equal in a one-line tune.
    if (last.XPos < kNearLineEnd && line.k == tune.LastNote)
        line.Attempt([&] { line.LineRight = last.XPos + kRoomAfterTune * unit; });
    if ((last.NoteCode == kHalfRest || last.NoteCode == kWholeRest) && last.XPos < kNearLineEnd)
        line.Attempt([&] { line.LineRight = last.XPos + kRoomAfterLongRest * unit; });
}

void PageFormatter::DrawLine(int firstRecord)
{
    const double top = line.PenY;
    const auto drawnBefore = std::ssize(line.surface->Picture().Operations());
    LineFurniture(line).Draw();
    const double staffTop = line.PenY;
    const int staffEnd = line.LineRight;  // the notes' pass forgets it
    noteColumns.Draw();
    if (!OnLine)
        return;
    const std::vector<Operation>& drawn = line.surface->Picture().Operations();
    OnLine({
        0,
        top,
        staffTop,
        line.LineBottom,
        PlaceMeasures(firstRecord, staffEnd),
        {drawn.begin() + drawnBefore, drawn.end()}
    });
}

std::vector<PlacedMeasure> PageFormatter::PlaceMeasures(int firstRecord, int staffEnd)
{
    std::vector<PlacedMeasure> measures;
    double right = staffEnd;
    for (int n = line.k; n >= 1; --n) {
        if (!line.columns[n].IsHead())
            continue;
        const double left = n == 1 ? line.values.LineLeft : int{line.columns[n].XPos};
        measures.push_back({firstRecord + n - 1, left, right});
        right = left;
    }
    std::ranges::reverse(measures);
    return measures;
}

void PageFormatter::FinishLine(int lastRecord)
{
    line.PenY = line.LineBottom + line.values.LineDistance;
    line.surface->PrintLine(line.columns[line.k + 1].Slot(6));
    line.columns[0].Beats = tune[lastRecord].Beats;
    line.columns[0].BeatUnit = tune[lastRecord].BeatUnit;
    const double pageLimit = line.surface->Height - SizesOf(tune.NumStrings).Page.LineRoom;
    if (line.PenY > pageLimit) {
        line.LineBottom = 0;
        line.PenY = line.values.TitleY;
        line.surface = &beginPage();
    }
}

std::optional<int> LayOutPages(const Tune& tune, const PageSettings& page, PageView& pages,
                               std::vector<PlacedLine>* lines)
{
    pages.BlankPages();
    Int16 pageIndex;
    const auto begin = [&](int index) -> DrawSurface& {
        DrawSurface& surface = pages.Page(index).Surface;
        surface.Font = {page.BodyFontName, page.BodyFontSize, false};
        surface.DrawWidth = 1;
        surface.DrawStyle = PenStyle::Solid;
        surface.DrawMode = PenMode::Plain;
        return surface;
    };
    DrawSurface& first = begin(0);
    LayoutValues values;
    values.LineLeft = kScreenLeft;
    values.LineRight = Round(first.Width - kScreenRight);
    values.TitleY = kScreenTop;
    PageFormatter formatter(tune, page, values, first, [&]() -> DrawSurface& {
        ++pageIndex;
        pages.PageMax = pageIndex;
        return begin(pageIndex);
    });
    if (lines) {
        formatter.OnLine = [&](PlacedLine line) {
            line.Page = pageIndex;
            lines->push_back(std::move(line));
        };
    }
    return formatter.Run();
}

std::vector<PlacedLine> PlaceLines(const Tune& tune, const PageSettings& page,
                                   const TextMetrics& metrics)
{
    std::vector<PlacedLine> lines;
    PageView pages(metrics);
    try {
        LayOutPages(tune, page, pages, &lines);
    } catch (const Fault&) {
        // A tenth page: what came before it is on the screen.
    }
    return lines;
}

}  // namespace quillon
