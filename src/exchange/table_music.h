// The note table and the music in between: the only place where one is turned into the other.
//
// docs/exchange.md has the rule for everything that the table cannot say.

#pragma once

#include "exchange/found_tune.h"
#include "store/tunings.h"

#include <optional>
#include <vector>

namespace quillon {

/// How a tune is made of a music.
struct ImportChoices {
    std::vector<TuningRecord> Tunings;  // of the instrument; at least one
    std::optional<int> Tuning;          // row; without it, the music's own or the first
    int Capo = 0;
    int LowestFret = 0;  // for notes that come with a pitch alone
    int HighestFret = 24;
};

/// Makes `tune`, whose NumStrings says the instrument, of a music: rounds what is off the ticks,
/// chooses strings and frets for what has none, and fills the table. A music without a single note
/// or rest is an ExchangeError.
void MakeTune(Music music, const ImportChoices& choices, Tune& tune, Notices& notices);

/// How a tune is told to other programs.
struct ExportChoices {
    std::vector<TuningRecord> Tunings;  // of the instrument; at least one
    std::optional<int> Tuning;          // row; without it, the tune's own
    int Capo = 0;
    double Tempo = 0;  // 0: not told
};

/// A tune as a music, all notes with pitch, string and fret. Where its repeats and signs have it
/// played in an order that a Music's own rules do not give, the measures are written out in that
/// order. A tune that cannot be performed is a Fault or a NeverEnding.
Music MusicOf(Tune& tune, const ExportChoices& choices, Notices& notices);

}  // namespace quillon
