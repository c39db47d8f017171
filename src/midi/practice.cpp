#include "midi/practice.h"

#include "midi/midi_bytes.h"
#include "midi/midi_file_writer.h"

#include <algorithm>
#include <limits>
#include <span>
#include <stdexcept>
#include <string>
#include <utility>

namespace quillon {

namespace {

constexpr int kDrumChannel = 9;  // counted from 0
constexpr int kHighWoodBlock = 76;
constexpr int kLowWoodBlock = 77;
constexpr int kAccentVelocity = 110;
constexpr int kClickVelocity = 80;
constexpr Ticks kLongestFile = 0x0FFFFFFF;  // no event can be later than that after another
constexpr int kMostBeats = 24;              // that a count-in takes from a time signature

struct PlayedNote {
    int Pitch;
    int Velocity;
    Ticks On;
    Ticks Off;
};

using Notes = std::vector<PlayedNote>;

/// A string sounds one note at a time: what is never ended rings until the next.
void TakeEvent(Notes& notes, int pitch, int velocity, Ticks at)
{
    constexpr Ticks kNever = std::numeric_limits<Ticks>::max();
    if (velocity > 0) {
        if (!notes.empty())
            notes.back().Off = std::min(notes.back().Off, at);
        notes.push_back({pitch, velocity, at, kNever});
    } else if (!notes.empty() && notes.back().Pitch == pitch && notes.back().Off == kNever) {
        notes.back().Off = at;
    }
}

/// What each string plays. Where it runs late or early in the MIDI file, it is put right.
std::vector<Notes> NotesOf(Tune& tune, const Sound& sound)
{
    std::vector<Notes> strings;
    Ticks at = 0;
    Performance performance(tune, sound, [&](int status, int pitch, int velocity, int delta) {
        at += delta;
        if (status < kProgramChange)
            TakeEvent(strings.back(), pitch, velocity, at - performance.Late());
    });
    for (int s = 1; s <= tune.NumStrings; ++s) {
        strings.emplace_back();
        at = 0;
        performance.TrackString = s;
        performance.BuildStringTrack();
    }
    return strings;
}

/// Appends what sounds from `begin` to `end`, as sounding from `to` on.
void AppendPart(const Notes& notes, Ticks begin, Ticks end, Ticks to, Notes& part)
{
    for (const PlayedNote& note : notes) {
        const Ticks on = std::max(note.On, begin);
        const Ticks off = std::min(note.Off, end);
        if (on < off)
            part.push_back({note.Pitch, note.Velocity, on - begin + to, off - begin + to});
    }
}

void WriteNotes(MidiFileWriter& writer, int channel, const Notes& notes)
{
    struct Event {
        Ticks At;
        int Velocity;
        int Pitch;
        auto operator<=>(const Event&) const = default;  // at one tick, ends come first
    };
    std::vector<Event> events;
    for (const PlayedNote& note : notes) {
        events.push_back({note.On, note.Velocity, note.Pitch});
        events.push_back({note.Off, 0, note.Pitch});
    }
    std::ranges::sort(events);
    Ticks last = 0;
    for (const Event& event : events) {
        writer.WriteEvent(kNoteOn + channel, event.Pitch, event.Velocity,
                          static_cast<int>(event.At - last));
        last = event.At;
    }
}

/// The beats of a measure. Lengths without "Ticks" in their names are those of the note table.
struct Beats {
    int Beat;    // length of one
    int Bar;     // length of a full measure
    int Length;  // of the notes and rests that are there
    int Pickup;  // what a pickup lacks
};

class PracticeBuilder {
public:
    PracticeBuilder(Tune& theTune, const Sound& theSound)
        : tune(theTune), sound(theSound), whole(PositionsOf(theTune, theSound)),
          strings(NotesOf(theTune, theSound)), played(strings.size())
    {
        track.Positions.TicksPerQuarter = whole.TicksPerQuarter;
    }

    PracticeTrack Make(const PlayedPart& part, const PracticeChoices& choices);

private:
    std::span<const ColumnPlace> ColumnsBetween(Ticks begin, Ticks end) const;
    Beats BeatsOf(std::size_t measure) const;
    void AddClick(Ticks at, bool accent);
    void AddCountIn(std::size_t measure);
    void AddClicks(std::size_t measure);
    void AddTurn(const PlayedPart& part, int speed, bool click);
    void AddTempo(Ticks begin, int speed);
    std::string MidiBytes() const;

    Tune& tune;
    const Sound& sound;
    PlayPositions whole;
    std::vector<Notes> strings;

    PracticeTrack track;
    std::vector<Notes> played;  // of each string
    Notes clicks;
};

std::span<const ColumnPlace> PracticeBuilder::ColumnsBetween(Ticks begin, Ticks end) const
{
    const auto find = [&](Ticks tick) {
        return std::ranges::lower_bound(whole.Columns, tick, {}, &ColumnPlace::Begin);
    };
    return {find(begin), find(end)};
}

Beats PracticeBuilder::BeatsOf(std::size_t measure) const
{
    const NoteRecord& head = tune[whole.Measures[measure].Head];
    Beats beats{};
    beats.Beat = TicksPerBeat(head.BeatUnit);
    beats.Bar = std::clamp<int>(head.Beats, 1, kMostBeats) * beats.Beat;
    for (const ColumnPlace& column :
         ColumnsBetween(whole.Measures[measure].Begin, whole.EndOf(measure)))
        beats.Length += TicksOf(tune[column.Record].NoteCode);
    if (whole.Measures[measure].Number == 1 && beats.Length < beats.Bar)
        beats.Pickup = beats.Bar - beats.Length;
    return beats;
}

void PracticeBuilder::AddClick(Ticks at, bool accent)
{
    clicks.push_back({accent ? kHighWoodBlock : kLowWoodBlock,
                      accent ? kAccentVelocity : kClickVelocity, at,
                      at + whole.TicksPerQuarter / 8});
}

/// A measure, and before a pickup also what it lacks.
void PracticeBuilder::AddCountIn(std::size_t measure)
{
    const Beats beats = BeatsOf(measure);
    const auto ticks = [&](int length) {
        return Ticks{whole.TicksPerQuarter} * length / kTicksPerQuarter;
    };
    const int length = beats.Bar + beats.Pickup;
    for (int at = 0; at < length; at += beats.Beat)
        AddClick(ticks(at), at % beats.Bar == 0);
    track.Positions.End = ticks(length);
}

/// The notes' ticks are cut to whole ones, so a measure can be a little shorter than its beats: the
/// clicks are spread over what it has.
void PracticeBuilder::AddClicks(std::size_t measure)
{
    const Beats beats = BeatsOf(measure);
    const Ticks ticks = whole.EndOf(measure) - whole.Measures[measure].Begin;
    const Ticks begin = track.Positions.Measures.back().Begin;
    for (int at = beats.Pickup % beats.Beat; at < beats.Length; at += beats.Beat)
        AddClick(begin + ticks * at / beats.Length, (at + beats.Pickup) % beats.Bar == 0);
}

void PracticeBuilder::AddTempo(Ticks begin, int speed)
{
    const double quarter = MicrosecondsPerQuarter(sound.Tempo);
    track.Positions.Tempos.push_back({begin, Floor(quarter * 100 / speed)});
}

void PracticeBuilder::AddTurn(const PlayedPart& part, int speed, bool click)
{
    PlayPositions& positions = track.Positions;
    const Ticks begin = whole.Measures[part.First].Begin;
    const Ticks end = whole.EndOf(part.Last);
    const Ticks to = positions.End;
    track.Turns.push_back({to, speed});
    for (std::size_t i = part.First; i <= part.Last; ++i) {
        const MeasurePlace& measure = whole.Measures[i];
        positions.Measures.push_back({measure.Head, measure.Number, measure.Begin - begin + to});
        if (click)
            AddClicks(i);
    }
    for (const ColumnPlace& column : ColumnsBetween(begin, end))
        positions.Columns.push_back({column.Record, column.Begin - begin + to});
    for (std::size_t s = 0; s < strings.size(); ++s)
        AppendPart(strings[s], begin, end, to, played[s]);
    positions.End += end - begin;
}

std::string PracticeBuilder::MidiBytes() const
{
    const PlayPositions& positions = track.Positions;
    if (positions.End > kLongestFile)
        throw std::runtime_error("So many turns do not fit into a MIDI file.");
    MidiFileWriter writer;
    writer.SetDivision(positions.TicksPerQuarter);
    Ticks last = 0;
    const auto writeTempo = [&](const TempoPlace& tempo, Ticks at) {
        writer.WriteTempo(tempo.MicrosecondsPerQuarter, static_cast<int>(at - last));
        last = at;
    };
    for (const TempoPlace& tempo : positions.Tempos)
        writeTempo(tempo, tempo.Begin);
    writeTempo(positions.Tempos.back(), positions.End);  // so that rests at the end last
    for (std::size_t s = 0; s < played.size(); ++s) {
        writer.NextTrack();
        const int channel = static_cast<int>(s) + 1;
        writer.WriteEvent(kProgramChange + channel, sound.Instrument, 0, 0);
        WriteNotes(writer, channel, played[s]);
    }
    if (!clicks.empty()) {
        writer.NextTrack();
        WriteNotes(writer, kDrumChannel, clicks);
    }
    writer.FinishTracks();
    return writer.Bytes();
}

PracticeTrack PracticeBuilder::Make(const PlayedPart& part, const PracticeChoices& choices)
{
    const auto held = [](int speed) {
        return std::clamp(speed, kSlowestPractice, kFastestPractice);
    };
    if (whole.EndOf(part.Last) == whole.Measures[part.First].Begin)
        throw std::runtime_error("There is nothing to play in measure " +
                                 std::to_string(whole.Measures[part.First].Number) + ".");
    const int first = held(choices.Speed);
    AddTempo(0, first);
    if (choices.CountIn)
        AddCountIn(part.First);
    const int turns = std::clamp(choices.Turns, 1, kMostTurns);
    for (int turn = 0, speed = first; turn < turns; ++turn) {
        if (turn > 0 && choices.StepUp > 0 && speed < choices.Goal) {
            speed = held(std::min(speed + choices.StepUp, choices.Goal));
            AddTempo(track.Positions.End, speed);
        }
        AddTurn(part, speed, choices.Click);
    }
    track.Midi = MidiBytes();
    return std::move(track);
}

}  // namespace

PracticeTrack MakePractice(Tune& tune, const Sound& sound, const PlayedPart& part,
                           const PracticeChoices& choices)
{
    return PracticeBuilder(tune, sound).Make(part, choices);
}

}  // namespace quillon
