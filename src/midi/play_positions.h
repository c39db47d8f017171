// Where the performance is at each moment: which measure and which column sound at which tick, with
// repeats and jumps unrolled, and what a tick is in seconds.

#pragma once

#include "midi/performance.h"

#include <optional>
#include <vector>

namespace quillon {

/// A measure each time that it is played.
struct MeasurePlace {
    int Head;    // its head record
    int Number;  // as the tune shows it
    Ticks Begin;
};

/// A note, chord or rest each time that it is played.
struct ColumnPlace {
    int Record;
    Ticks Begin;
};

/// The tempo from a tick on.
struct TempoPlace {
    Ticks Begin;
    int MicrosecondsPerQuarter;
};

struct PlayPositions {
    int TicksPerQuarter = 0;
    std::vector<TempoPlace> Tempos;  // the first is at tick 0
    std::vector<MeasurePlace> Measures;
    std::vector<ColumnPlace> Columns;
    Ticks End = 0;

    /// From the beginning to `tick`, at the file's own tempo.
    double SecondsAt(Ticks tick) const;

    /// The index of the measure that sounds at `tick`; none before the first.
    std::optional<std::size_t> MeasureAt(Ticks tick) const;

    /// The end of a measure, by its index.
    Ticks EndOf(std::size_t measure) const;
};

/// The places in the file that BuildMidiFile makes. CurNote is moved. A tune that cannot be
/// performed is an Explained Fault or a NeverEnding.
PlayPositions PositionsOf(Tune& tune, const Sound& sound);

/// Measures one after the other as they are played, by their indexes.
struct PlayedPart {
    std::size_t First;
    std::size_t Last;
};

/// From the first time that measure `first` is played to the first time after it that measure
/// `last` is; without `last`, to the end. Numbers are those that the tune shows. A
/// std::runtime_error says which measure is not played.
PlayedPart PartOf(const PlayPositions& positions, int first, std::optional<int> last = {});

/// All that is played. Where nothing is, a std::runtime_error.
PlayedPart AllOf(const PlayPositions& positions);

}  // namespace quillon
