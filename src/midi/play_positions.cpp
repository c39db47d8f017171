#include "midi/play_positions.h"

#include "midi/midi_bytes.h"

#include <algorithm>
#include <stdexcept>
#include <string>

namespace quillon {

namespace {

/// The first time at or after `from` that the measure is played.
std::optional<std::size_t> FindMeasure(const PlayPositions& positions, int number, std::size_t from)
{
    const auto& measures = positions.Measures;
    const auto found =
        std::find_if(measures.begin() + static_cast<std::ptrdiff_t>(from), measures.end(),
                     [&](const MeasurePlace& m) { return m.Number == number; });
    if (found == measures.end())
        return std::nullopt;
    return static_cast<std::size_t>(found - measures.begin());
}

}  // namespace

double PlayPositions::SecondsAt(Ticks tick) const
{
    double microseconds = 0;
    for (std::size_t i = 0; i < Tempos.size() && Tempos[i].Begin < tick; ++i) {
        const Ticks end = i + 1 < Tempos.size() ? std::min(Tempos[i + 1].Begin, tick) : tick;
        microseconds += static_cast<double>(end - Tempos[i].Begin) *
                        Tempos[i].MicrosecondsPerQuarter / TicksPerQuarter;
    }
    return microseconds / kMicrosecondsPerSecond;
}

std::optional<std::size_t> PlayPositions::MeasureAt(Ticks tick) const
{
    const auto next = std::ranges::upper_bound(Measures, tick, {}, &MeasurePlace::Begin);
    if (next == Measures.begin())
        return std::nullopt;
    return static_cast<std::size_t>(next - Measures.begin() - 1);
}

Ticks PlayPositions::EndOf(std::size_t measure) const
{
    return measure + 1 < Measures.size() ? Measures[measure + 1].Begin : End;
}

PlayPositions PositionsOf(Tune& tune, const Sound& sound)
{
    PlayPositions positions;
    positions.TicksPerQuarter = sound.Tempo;
    positions.Tempos = {
        {0, MicrosecondsPerQuarter(sound.Tempo)}
    };
    Performance performance(tune, sound);
    Explained(tune, [&] {
        performance.WalkSilently([&] {
            if (TicksOf(tune[tune.CurNote].NoteCode) > 0)
                positions.Columns.push_back({tune.CurNote, performance.Due()});
        });
    });
    for (const PlayedMeasure& measure : performance.Played())
        positions.Measures.push_back({measure.Head, tune[measure.Head].Measure, measure.Begin});
    positions.End = performance.Due();
    return positions;
}

PlayedPart PartOf(const PlayPositions& positions, int first, std::optional<int> last)
{
    const auto text = [](int number) { return "Measure " + std::to_string(number); };
    const auto begin = FindMeasure(positions, first, 0);
    if (!begin)
        throw std::runtime_error(text(first) + " is never played.");
    if (!last)
        return {*begin, positions.Measures.size() - 1};
    const auto end = FindMeasure(positions, *last, *begin);
    if (!end)
        throw std::runtime_error(text(*last) + " is not played after measure " +
                                 std::to_string(first) + ".");
    return {*begin, *end};
}

PlayedPart AllOf(const PlayPositions& positions)
{
    if (positions.Measures.empty())
        throw std::runtime_error("There is nothing to play.");
    return {0, positions.Measures.size() - 1};
}

}  // namespace quillon
