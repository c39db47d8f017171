#include "shell/follower.h"

#include <algorithm>
#include <map>
#include <utility>

namespace quillon {

namespace {

constexpr double kAroundLine = 150;  // that a line in view has above and below it
constexpr double kAboveStaff = 120;  // that the band begins above the first string line
constexpr double kBelowStems = 60;

bool IsIn(const PlacedLine& line, const PageWindow& window, double height)
{
    return line.Page == window.Page && line.Top >= window.Top && line.Bottom <= window.Top + height;
}

bool HaveRoom(const PlacedLine& line, const PlacedLine& next, double height)
{
    const double top = std::min(line.Top, next.Top);
    const double bottom = std::max(line.Bottom, next.Bottom);
    return line.Page == next.Page && bottom - top + 2 * kAroundLine <= height;
}

/// From this line on, but not beyond the paper's ends.
PageWindow WindowFrom(const PlacedLine& line, double height)
{
    const double lowest = std::max(kPageHeight - height, 0.0);
    return {line.Page, std::clamp(line.Top - kAroundLine, 0.0, lowest)};
}

}  // namespace

Follower::Follower(PlayPositions playPositions, bool playsForEver,
                   std::vector<PlacedLine> placedLines)
    : positions(std::move(playPositions)), forEver(playsForEver), lines(std::move(placedLines)),
      shown(lines.size())
{
    std::map<int, Place> ofHead;
    for (int line = 0; line < std::ssize(lines); ++line)
        for (int measure = 0; measure < std::ssize(lines[line].Measures); ++measure)
            ofHead[lines[line].Measures[measure].Head] = {line, measure};
    for (const MeasurePlace& measure : positions.Measures)
        places.push_back(ofHead[measure.Head]);
}

void Follower::Look(const PageView& pages)
{
    for (std::size_t i = 0; i < lines.size(); ++i) {
        const auto& page = pages.picPage1[static_cast<std::size_t>(lines[i].Page)];
        shown[i] = lines[i].IsOn(page.Surface.Picture());
    }
}

/// -1 before the first measure.
int Follower::IndexAt(int tick) const
{
    const auto index = positions.MeasureAt(tick);
    return index ? static_cast<int>(*index) : -1;
}

bool Follower::IsHalfOver(int index, int tick) const
{
    const Ticks begin = positions.Measures[index].Begin;
    return 2 * (tick - begin) >= positions.EndOf(index) - begin;
}

/// Null when the pages do not show it.
const PlacedLine* Follower::LineOf(int index) const
{
    const int line = index < 0 ? -1 : places[index].Line;
    return line >= 0 && shown[line] ? &lines[line] : nullptr;
}

/// The next measure in playing order that is not on the same line, -1 if there is none.
int Follower::NextOnAnotherLine(int index) const
{
    const int last = forEver ? index + Count() : Count();
    for (int i = index + 1; i < last; ++i)
        if (places[i % Count()].Line != places[index].Line)
            return i % Count();
    return -1;
}

std::optional<Band> Follower::BandAt(int tick) const
{
    const int index = IndexAt(tick);
    const PlacedLine* line = LineOf(index);
    if (!line)
        return std::nullopt;
    const PlacedMeasure& measure = line->Measures[places[index].Measure];
    return Band{line->Page, measure.Left, line->StaffTop - kAboveStaff, measure.Right,
                line->Bottom + kBelowStems};
}

PageWindow Follower::WindowAt(int tick, const PageWindow& now, double height) const
{
    const int index = std::max(IndexAt(tick), 0);
    const PlacedLine* line = Count() == 0 ? nullptr : LineOf(index);
    if (!line)
        return now;
    const int nextIndex = NextOnAnotherLine(index);
    const PlacedLine* next = LineOf(nextIndex);
    if (next && HaveRoom(*line, *next, height)) {
        const bool bothAreIn = IsIn(*line, now, height) && IsIn(*next, now, height);
        return bothAreIn ? now : WindowFrom(line->Top < next->Top ? *line : *next, height);
    }
    const bool isLast = nextIndex == (index + 1) % Count();
    const PlacedLine* wanted = next && isLast && IsHalfOver(index, tick) ? next : line;
    return IsIn(*wanted, now, height) ? now : WindowFrom(*wanted, height);
}

}  // namespace quillon
