#include "exchange/tick_grid.h"

#include "store/note_codes.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

namespace quillon {

namespace {

constexpr int kLongestTicks = 48;  // of one value

/// What a value costs where several are tied. A triplet value alone reads badly.
constexpr int kPlainValue = 10;
constexpr int kTripletValue = 17;

/// The longest value of each number of ticks that begins a cheapest sum, 0 where there is none.
using FirstValues = std::array<int, 2 * kLongestTicks>;

FirstValues FindFirstValues(int firstCode, int lastCode)
{
    FirstValues first{};
    std::array<int, 2 * kLongestTicks> cost{};
    for (int sum = 1; sum < 2 * kLongestTicks; ++sum) {
        cost[sum] = std::numeric_limits<int>::max() / 2;
        for (int code = firstCode; code <= lastCode; ++code) {
            const int ticks = TicksOf(code);
            if (ticks > sum)
                continue;
            const int whole = cost[sum - ticks] + (IsTriplet(code) ? kTripletValue : kPlainValue);
            if (whole < cost[sum] || (whole == cost[sum] && ticks > TicksOf(first[sum]))) {
                cost[sum] = whole;
                first[sum] = code;
            }
        }
    }
    return first;
}

int FirstCode(int ticks, bool rest)
{
    static const FirstValues notes = FindFirstValues(kTripletSixteenth, kWhole);
    static const FirstValues rests = FindFirstValues(kHalfRest, kQuarterRest);
    return (rest ? rests : notes)[ticks];
}

/// Whether a hammer-on or a slide joins two equal events, which then may share a cell.
bool AreConnected(const MusicEvent& one, const MusicEvent& two)
{
    return one.Length == two.Length && std::ranges::any_of(one.Notes, [](const MusicNote& note) {
               return note.Next == Link::Hammer || note.Next == Link::Slide;
           });
}

// Where events begin, in one measure: the shortest way from the first to the last boundary, each of
// which may be on the nearest tick or on one of its neighbours.

constexpr int kNeighbours = 3;
constexpr Units kPairCost = kTickUnits / 4;      // two notes in a cell: the second one is softer
constexpr Units kLostCost = 100 * kTickUnits;    // a note is left out
constexpr Units kLostRestCost = kTickUnits / 2;  // the note before it fills its place

enum class Step { None, Single, Pair, Lost };

struct Boundary {
    std::array<Units, kNeighbours> Cost;
    std::array<int, kNeighbours> From{};  // neighbour that the best way comes from
    std::array<Step, kNeighbours> By{};
};

struct Grid {
    explicit Grid(const std::vector<MusicEvent>& theEvents) : events(theEvents)
    {
        exact.push_back(0);
        for (const MusicEvent& event : events)
            exact.push_back(exact.back() + event.Length);
        boundaries.resize(exact.size());
        for (Boundary& boundary : boundaries)
            boundary.Cost.fill(std::numeric_limits<Units>::max() / 4);
        boundaries[0].Cost[1] = 0;
    }

    const std::vector<MusicEvent>& events;
    std::vector<Units> exact;
    std::vector<Boundary> boundaries;

    int Tick(std::size_t boundary, int neighbour) const
    {
        return static_cast<int>((exact[boundary] + kTickUnits / 2) / kTickUnits) + neighbour - 1;
    }

    Units Error(std::size_t boundary, int neighbour) const
    {
        return std::llabs(Tick(boundary, neighbour) * kTickUnits - exact[boundary]);
    }

    bool CanPair(std::size_t event) const
    {
        if (event + 1 >= events.size())
            return false;
        const MusicEvent& one = events[event];
        const MusicEvent& two = events[event + 1];
        return AreConnected(one, two) ||
               (one.Notes.size() == 1 && two.Notes.size() == 1 && two.Chord.empty() &&
                !one.Notes[0].Tied && !two.Notes[0].Tied &&
                one.Length < kShortestTicks * kTickUnits &&
                two.Length < kShortestTicks * kTickUnits &&
                (event == 0 || events[event - 1].Notes.empty() ||
                 !events[event - 1].Notes[0].Tied));
    }

    void Offer(std::size_t to, int neighbour, Units cost, int from, Step step)
    {
        Boundary& boundary = boundaries[to];
        if (cost >= boundary.Cost[neighbour])
            return;
        boundary.Cost[neighbour] = cost;
        boundary.From[neighbour] = from;
        boundary.By[neighbour] = step;
    }

    void StepsFrom(std::size_t event, int from)
    {
        const Units cost = boundaries[event].Cost[from];
        const bool rest = events[event].Notes.empty();
        for (int to = 0; to < kNeighbours; ++to) {
            const int ticks = Tick(event + 1, to) - Tick(event, from);
            const Units here = cost + Error(event + 1, to);
            if (ticks >= kShortestTicks)
                Offer(event + 1, to, here, from, Step::Single);
            else if (ticks == 0)
                Offer(event + 1, to, here + (rest ? kLostRestCost : kLostCost), from, Step::Lost);
        }
        if (!CanPair(event))
            return;
        for (int to = 0; to < kNeighbours; ++to) {
            const int ticks = Tick(event + 2, to) - Tick(event, from);
            if (ticks < kShortestTicks || CodesOfTicks(ticks, 0, false).size() != 1)
                continue;
            const Units middle = Tick(event, from) * kTickUnits + ticks * kTickUnits / 2;
            const Units softer = AreConnected(events[event], events[event + 1]) ? 0 : kPairCost;
            Offer(event + 2, to,
                  cost + softer + std::llabs(middle - exact[event + 1]) + Error(event + 2, to),
                  from, Step::Pair);
        }
    }

    std::vector<MusicEvent> Fitted(Notices& notices);
};

/// Walks the best way back from the end.
std::vector<MusicEvent> Grid::Fitted(Notices& notices)
{
    for (std::size_t event = 0; event < events.size(); ++event)
        for (int from = 0; from < kNeighbours; ++from)
            StepsFrom(event, from);
    std::vector<MusicEvent> fitted;
    const auto& last = boundaries.back().Cost;
    int to = static_cast<int>(std::ranges::min_element(last) - last.begin());
    for (std::size_t at = events.size(); at > 0;) {
        const int from = boundaries[at].From[to];
        const Step step = boundaries[at].By[to];
        const std::size_t before = step == Step::Pair ? at - 2 : at - 1;
        const Units length = (Tick(at, to) - Tick(before, from)) * kTickUnits;
        if (step == Step::Pair) {
            fitted.push_back(events[at - 1]);
            fitted.back().Length = length / 2;
            fitted.push_back(events[before]);
            fitted.back().Length = length / 2;
            if (!AreConnected(events[before], events[at - 1]))
                fitted.back().Notes[0].Next = Link::Hammer;
        } else if (step == Step::Single) {
            fitted.push_back(events[before]);
            fitted.back().Length = length;
        } else if (!events[before].Notes.empty()) {
            notices.Count("A note too short for a tune is left out.",
                          "notes too short for a tune are left out.");
        }
        at = before;
        to = from;
    }
    std::ranges::reverse(fitted);
    return fitted;
}

bool IsOnGrid(const MusicMeasure& measure)
{
    const auto& events = measure.Events;
    for (std::size_t i = 0; i < events.size(); ++i) {
        Units length = events[i].Length;
        if (i + 1 < events.size() && AreConnected(events[i], events[i + 1]))
            length += events[++i].Length;
        if (length % kTickUnits != 0 || length < kShortestTicks * kTickUnits)
            return false;
    }
    return true;
}

}  // namespace

std::vector<int> CodesOfTicks(int ticks, int at, bool rest)
{
    std::vector<int> codes;
    while (ticks >= 2 * kLongestTicks) {
        codes.push_back(rest ? kWholeRest : kWhole);
        ticks -= kLongestTicks;
    }
    while (ticks >= kShortestTicks) {
        codes.push_back(FirstCode(ticks, rest));
        ticks -= TicksOf(codes.back());
    }
    std::ranges::sort(codes, std::ranges::greater(), TicksOf);
    if (at % kTicksPerQuarter != 0)
        std::ranges::reverse(codes);
    return codes;
}

void FitToTicks(Music& music, Notices& notices)
{
    for (MusicMeasure& measure : music.Measures) {
        if (IsOnGrid(measure))
            continue;
        measure.Events = Grid(measure.Events).Fitted(notices);
        notices.Count("The rhythm of a measure is rounded: a tune has no such lengths.",
                      "measures have their rhythm rounded: a tune has no such lengths.");
    }
}

}  // namespace quillon
