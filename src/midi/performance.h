// The performance builder: walks the tune as a musician reads it, once for each string, and makes
// a track of what that string plays.
//
// The walk follows repeats, numbered endings and the D.S., D.C., Coda and Fine signs. Where it
// goes depends on head records alone, so all strings take the same path. Times are in ticks,
// of which a quarter note has as many as there are beats per minute.

#pragma once

#include "midi/midi_file_writer.h"
#include "midi/sound_settings.h"
#include "store/tune.h"

#include <cstdint>
#include <functional>
#include <set>
#include <stdexcept>
#include <utility>
#include <vector>

namespace quillon {

/// Time since the beginning of a track. Repeats can add up to more than an int holds.
using Ticks = std::int64_t;

/// Ticks of a note or rest where a quarter note has `quarter`, cut to whole ones; 0 for any other
/// code.
inline int TicksAt(int quarter, int noteCode)
{
    return quarter * TicksOf(noteCode) / kTicksPerQuarter;
}

/// The repeats and signs lead the walk in an endless loop.
class NeverEnding : public std::runtime_error {
public:
    NeverEnding();
};

/// A measure that the walk enters.
struct PlayedMeasure {
    int Head;               // its head record
    int Pass = 0;           // through the current repeat; 0 if its signs are skipped unread
    bool FromCoda = false;  // the jump to the Coda was taken at this head
    bool FineMode = false;  // a Fine here ends the performance
    Ticks Begin = 0;        // when it is due
};

/// Takes a track's events one by one, as MidiFileWriter::WriteEvent does.
using EventWriter = std::function<void(int status, int data1, int data2, int delta)>;

class Performance {
public:
    /// Both must outlive the builder. A walk without sound needs no `eventWriter`.
    Performance(Tune& theTune, const Sound& theSound, EventWriter eventWriter = {})
        : tune(theTune), sound(theSound), writeEvent(std::move(eventWriter))
    {
    }

    Int16 TrackString;  // string that BuildStringTrack plays, from 1

    /// Writes the events of one string. The tune's CurNote does the walking and stays where the
    /// walk ended. A search for an ending or a Coda that is not there: a subscript Fault.
    void BuildStringTrack();

    /// The same walk without sound. `visit` is called for each record.
    void WalkSilently(const std::function<void()>& visit = [] {}) { Walk(visit); }

    /// What the last walk has entered, in order; after a failure, what it had entered by then.
    const std::vector<PlayedMeasure>& Played() const { return played; }

    /// When the record that is being taken is due: what all before it last by their codes.
    Ticks Due() const { return due; }

    /// By how much the track runs late at this record, or early if negative: a note that is split
    /// into halves of whole ticks gains or loses one, and some odd cells lose more.
    Ticks Late() const { return late; }

private:
    /// Everything that decides where the walk goes next, but for its position.
    struct Journey {
        int RepeatStart = 1;         // record that a repeat goes back to
        int SegnoHead = 1;           // head that holds the Sign
        int PassNumber = 1;          // pass through the current repeat
        int EndingNumber = 1;        // ending in force
        bool RepeatPending = false;  // what is pending happens at the next head
        bool DsPending = false;
        bool DcPending = false;
        bool FinePending = false;
        bool CodaPending = false;
        bool FineMode = false;  // Fine ends the performance
        bool CodaMode = false;  // "/To Coda" jumps

        auto operator<=>(const Journey&) const = default;
    };

    NoteRecord& Record() { return tune[tune.CurNote]; }
    const std::string& Cell(int index) const { return tune[index].Slot(TrackString); }

    void Walk(const std::function<void()>& takeRecord);
    void NoteArrival(int previous);
    bool TakeHead();
    void TakePendingJumps();
    void RepeatAgain();
    void TakeEndings();
    void TakeSign();
    void SkipToCoda();
    bool NextMeasureHead();
    void ReturnFromEnd();

    void TakeRecord();
    void PlayCell();
    Int16 PitchOf(std::string_view text) const;
    void WriteNote(int pitch, int velocity, int delta);

    Tune& tune;
    const Sound& sound;
    EventWriter writeEvent;

    Journey way;

    /// Where the walk went back to, and in which state.
    std::set<std::pair<int, Journey>> arrivals;

    std::vector<PlayedMeasure> played;

    Ticks due = 0;
    Ticks late = 0;
    Ticks written = 0;   // time of the track's last event
    int RestTicks = 0;   // silence since the track's last event
    int NoteTicks = 0;   // length of the note being built
    int Velocity = 100;  // of the next note
};

/// Runs `build`, which performs the tune. A Fault's explanation says which measure is at fault.
void Explained(const Tune& tune, const std::function<void()>& build);

/// A quarter note, cut to whole microseconds.
int MicrosecondsPerQuarter(int tempo);

/// Makes the whole file in `writer`, all but CloseFile: the tempo track and a track for each
/// string. A Fault is Explained.
void BuildMidiFile(Tune& tune, const Sound& sound, MidiFileWriter& writer);

/// How `tune` sounds under these choices. The tuning is kept with the tune. `tunings` has at least
/// one row, else an invalid-property-value Fault.
Sound ChosenSound(Tune& tune, const std::vector<TuningRecord>& tunings,
                  const SoundChoices& choices);

/// The MIDI file that the MIDI form would write of `tune`, as bytes, with ChosenSound. A tune that
/// cannot be performed is a Fault or a NeverEnding.
std::string MidiFileBytes(Tune& tune, const std::vector<TuningRecord>& tunings,
                          const SoundChoices& choices);

}  // namespace quillon
