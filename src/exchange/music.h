// A tune between two forms: what every reader of another program's form makes, and what every
// writer is given.
//
// A music is one voice of measures. Lengths are exact where the note table's are whole ticks, and
// an event's notes may have a string and a fret or a pitch alone. table_music.h turns a music into
// a tune and back; no reader or writer knows the table.

#pragma once

#include "store/sign_codes.h"

#include <cstddef>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace quillon {

/// Lengths and times: a quarter has 8! units, so that it can be divided by 2 to 10, and a
/// semibreve down to 1/512.
using Units = long long;
constexpr Units kQuarterUnits = 40320;
constexpr Units kTickUnits = kQuarterUnits / 12;  // one tick of the table

constexpr int kMiddleC = 60;  // MIDI note number

// What is beyond these bounds is no tune: a table holds 1500 records.
constexpr Units kLongestNote = 64 * kQuarterUnits;
constexpr std::size_t kMostEvents = 20000;
constexpr std::size_t kMostMeasures = 3000;

/// How a note goes on to the next event's note on its string.
enum class Link { None, Slur, Hammer, Slide };

/// What is to be seen of a note besides its fret.
enum class NoteLook { Plain, Ghost, Muted, Slash, Bend, Release };

struct MusicNote {
    int Pitch = 0;      // MIDI note number as it sounds without a capo
    int String = 0;     // 1 is the highest; 0 as long as nobody has chosen one
    int Fret = 0;       // as printed: the short string's is the neck's
    bool Tied = false;  // sounds on through the next event's note of the same pitch
    Link Next = Link::None;
    NoteLook Look = NoteLook::Plain;

    bool operator==(const MusicNote&) const = default;
};

/// Notes that begin together, or a rest.
struct MusicEvent {
    Units Length = 0;
    std::vector<MusicNote> Notes;
    std::string Chord;  // its name, above
    char LeftHand = ' ';
    char RightHand = ' ';

    bool operator==(const MusicEvent&) const = default;
};

struct MusicMeasure {
    int Beats = 4;
    int BeatUnit = 4;
    std::vector<MusicEvent> Events;

    bool StartsRepeat = false;
    bool EndsRepeat = false;
    std::vector<int> Endings;  // passes that the bracket beginning here is for; none: no bracket
    std::string EndingText;    // what stands in the bracket
    bool DoubleBar = false;    // at its end
    bool BeginDoubleBar = false;
    std::string Sign;  // a code of store/sign_codes.h
    std::string Remark;
    bool NewLine = false;

    bool operator==(const MusicMeasure&) const = default;
};

/// All texts are in Windows-1252, as the tune file's are.
struct Music {
    std::string Title;
    std::string Credits[2];
    double Tempo = 0;              // quarters per minute; 0: not told
    std::vector<int> OpenPitches;  // string 1 first; empty: any instrument
    std::optional<int> TuningRow;  // the tune's own number of its tuning
    int Capo = 0;
    std::vector<MusicMeasure> Measures;

    bool operator==(const Music&) const = default;
};

/// Sum of the lengths of its events.
Units LengthOf(const MusicMeasure& measure);

/// Whether its remark is one that the performance follows: /To Coda.
bool LeadsToCoda(const MusicMeasure& measure);

/// Whether its sign has the tune go on elsewhere.
bool IsJump(const MusicMeasure& measure);

constexpr int kMostPlayed = 10000;

struct Playing {
    std::vector<int> Order;                  // measures, from 0
    std::set<std::pair<int, int>> GoneBack;  // from the measure that ends a repeat, to its start
    bool Strays = false;  // into an ending of another pass, because there is none for this one
};

/// How the repeats and endings of a music have it played. Signs such as D.C. take no part. A
/// section is played once more than it has ends, or as often as its highest ending says; the end
/// repeat of its last ending ends it. After `kMostPlayed` measures it stops.
Playing PlayingOf(const Music& music);

/// How a music without repeats is played by who follows its signs: the first jump is taken once.
/// Nothing if that leads nowhere.
std::vector<int> JumpingOrder(const Music& music);

/// The same music with its measures in the order in which they are played, without repeats.
Music WrittenOut(const Music& music);

}  // namespace quillon
