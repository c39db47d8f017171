// How a tune should sound: the instruments and ranges to choose from, and what was chosen.

#pragma once

#include "store/tunings.h"

#include <array>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace quillon {

constexpr int kLowestTempo = 30;  // beats per minute
constexpr int kHighestTempo = 300;
constexpr int kHighestCapo = 12;  // fret, from 0

/// Names of the programs 0..105, in the order of the General MIDI sound set.
std::span<const char* const> InstrumentNames();

/// What the performance is built with.
struct Sound {
    Int16 Tempo;         // beats per minute, and ticks per quarter note
    int Instrument = 0;  // General MIDI program, from 0

    /// MIDI note numbers with the capo, string 1 first.
    std::array<Int16, kStringSlots> OpenPitch;
};

/// The nearest value that the slider for it can have.
int HeldTempo(double tempo);
int HeldCapo(int capo);

/// Row of the tunings that `wanted` asks for: the number in it, or 0 when there is no such row.
int TuningRow(const std::string& wanted, int rowCount);

/// Keeps the tuning with the tune, as the text of its row.
void KeepTuning(Tune& tune, int row);

/// Pitches of the open strings under a capo. Past 16 bits: an overflow Fault.
std::array<Int16, kStringSlots> OpenPitches(const TuningRecord& tuning, int capo);

/// Choices made outside the MIDI form; the tune and the defaults decide what is left open.
struct SoundChoices {
    std::optional<int> Tempo;
    std::optional<int> Tuning;  // row
    std::optional<int> Instrument;
    int Capo = 0;
};

}  // namespace quillon
