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

/// What the reader of a form does about repeats.
enum class Repeats {
    Shown,     // they are read as they stand, whatever they mean
    Drawn,     // the same, but beside them the tune sounds as repeats and endings say
    Followed,  // repeats and endings are, jumps such as D.C. al Fine are not
    Jumps      // jumps too, where the tune has no repeats beside them
};

/// How a tune is told to other programs.
struct ExportChoices {
    std::vector<TuningRecord> Tunings;  // of the instrument; at least one
    std::optional<int> Tuning;          // row; without it, the tune's own
    int Capo = 0;
    double Tempo = 0;  // 0: not told
    Repeats Reader = Repeats::Followed;
};

/// A tune as a music, all notes with pitch, string and fret. What the reader would play in another
/// order than the tune has is written out in the tune's. A tune that cannot be performed is a Fault
/// or a NeverEnding, unless the reader is only shown it.
Music MusicOf(Tune& tune, const ExportChoices& choices, Notices& notices);

}  // namespace quillon
