#include "midi/performance.h"

#include "midi/midi_bytes.h"
#include "store/fret_text.h"
#include "store/sign_codes.h"

#include <algorithm>
#include <iterator>
#include <limits>
#include <utility>

namespace quillon {

namespace {

constexpr int kMicrosecondsPerMinute = 60000000;
constexpr int kLastNoteCode = 90;  // codes above are rests, or nothing that sounds

void AddTicks(int& sum, int ticks)
{
    if (sum > std::numeric_limits<int>::max() - ticks)
        throw Fault(Error::Overflow);
    sum += ticks;
}

char Lower(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool IsText(const std::string& text, std::string_view wanted)
{
    return std::ranges::equal(text, wanted, {}, Lower, Lower);
}

std::string MeasureText(const NoteRecord& record)
{
    return "measure " + std::to_string(record.Measure);
}

}  // namespace

NeverEnding::NeverEnding()
    : std::runtime_error("The repeats and signs of this tune never come to an end.")
{
}

void Explained(const Tune& tune, const std::function<void()>& build)
{
    try {
        build();
    } catch (const Fault& fault) {
        if (!fault.Explanation().empty())
            throw;
        const NoteRecord& last = tune[std::min<int>(tune.CurNote, kLastRecord)];
        throw Fault(fault.Number(),
                    "Measure " + std::to_string(last.Measure) + " cannot be played.");
    }
}

int MicrosecondsPerQuarter(int tempo)
{
    return IntegerDivide(kMicrosecondsPerMinute, tempo);
}

void BuildMidiFile(Tune& tune, const Sound& sound, MidiFileWriter& writer)
{
    writer.BeginFile();
    writer.WriteTempo(MicrosecondsPerQuarter(sound.Tempo));
    writer.SetDivision(sound.Tempo);
    Performance performance(tune, sound, [&](int status, int data1, int data2, int delta) {
        writer.WriteEvent(status, data1, data2, delta);
    });
    Explained(tune, [&] {
        for (int s = 1; s <= tune.NumStrings; ++s) {
            performance.TrackString = s;
            writer.NextTrack();
            performance.BuildStringTrack();
        }
    });
    writer.FinishTracks();
}

void Performance::BuildStringTrack()
{
    writeEvent(kProgramChange + TrackString, sound.Instrument, 0, 0);
    RestTicks = 0;
    NoteTicks = 0;
    Velocity = 100;
    written = 0;
    Walk([this] {
        late = written + RestTicks + NoteTicks - due;
        TakeRecord();
    });
}

void Performance::Walk(const std::function<void()>& takeRecord)
{
    due = 0;
    way = {};
    arrivals.clear();
    played.clear();
    int previous = -1;
    for (tune.CurNote = 0; tune.CurNote <= tune.LastNote;) {
        NoteArrival(std::exchange(previous, tune.CurNote));
        if (Record().NoteCode == 0)
            ++tune.CurNote;  // once; what follows is taken as it is
        if (Record().IsHead() && !TakeHead())
            return;
        if (Record().IsHead())
            played.push_back({.Head = tune.CurNote, .Begin = due});
        takeRecord();
        due += TicksAt(sound.Tempo, Record().NoteCode);
        ++tune.CurNote;
        if (tune.CurNote > tune.LastNote)
            ReturnFromEnd();
    }
}

/// An endless walk comes back to some record in a state in which it was there before.
void Performance::NoteArrival(int previous)
{
    if (tune.CurNote <= previous && !arrivals.emplace(tune.CurNote, way).second)
        throw NeverEnding();
}

/// The head's steps, in their order; the first of them may move on to another head, or to a record
/// that is none. They end one record further. False when the performance ends here.
bool Performance::TakeHead()
{
    TakePendingJumps();
    if (way.FinePending)
        return false;
    const bool fromCoda = std::exchange(way.CodaPending, false);
    if (fromCoda)
        SkipToCoda();
    RepeatAgain();
    if (Record().BarCode == kRepeatStart && tune.CurNote > way.RepeatStart) {
        way.RepeatStart = tune.CurNote;
        way.EndingNumber = way.PassNumber = 1;
    }
    TakeEndings();
    played.push_back({tune.CurNote, way.PassNumber, fromCoda, way.FineMode, due});
    if (Record().BarCode == kRepeatEnd) {
        if (way.PassNumber == way.EndingNumber)
            way.RepeatPending = true;
        else
            way.PassNumber = 1;
    }
    TakeSign();
    if (way.CodaMode && IsText(Record().Slot(3), "/To Coda"))
        way.CodaPending = true;
    ++tune.CurNote;
    return true;
}

void Performance::TakePendingJumps()
{
    if (std::exchange(way.DsPending, false))
        tune.CurNote = way.RepeatStart = way.SegnoHead;
    if (std::exchange(way.DcPending, false))
        tune.CurNote = way.RepeatStart = 1;
}

void Performance::RepeatAgain()
{
    if (!std::exchange(way.RepeatPending, false))
        return;
    way.PassNumber = Int16(way.PassNumber + 1);
    tune.CurNote = way.RepeatStart;
}

/// Passes over an ending that has been played, to the bracket of this pass or a later one.
void Performance::TakeEndings()
{
    const double ending = ValUnsigned(Record().Slot(2));
    if (ending <= 0 || ending >= way.PassNumber)
        return;
    const std::string from = MeasureText(Record());
    while (ValUnsigned(Record().Slot(2)) < way.PassNumber)
        if (!NextMeasureHead())
            throw Fault(Error::SubscriptOutOfRange, "No ending for pass " +
                                                        std::to_string(way.PassNumber) +
                                                        " follows " + from + ".");
    way.PassNumber = way.EndingNumber = Int16(Round(ValUnsigned(Record().Slot(2))));
}

void Performance::TakeSign()
{
    const std::string& sign = Record().Slot(1);
    const bool ds = sign == kDsAlCoda || sign == kDsAlFine;
    const bool dc = sign == kDcAlCoda || sign == kDcAlFine;
    if (ds || dc) {
        (ds ? way.DsPending : way.DcPending) = true;
        (sign == kDsAlCoda || sign == kDcAlCoda ? way.CodaMode : way.FineMode) = true;
        way.EndingNumber = way.PassNumber = 1;
    } else if (sign == kSign) {
        way.SegnoHead = tune.CurNote;
    } else if (sign == kFine && way.FineMode) {
        way.FinePending = true;
    }
}

/// Starts after the current head, so a Coda on it is missed.
void Performance::SkipToCoda()
{
    const std::string from = MeasureText(Record());
    do {
        if (!NextMeasureHead())
            throw Fault(Error::SubscriptOutOfRange, "No Coda follows " + from + ".");
    } while (Record().Slot(1) != kCoda);
}

/// False when the table ends before another head comes. Records above LastNote count too.
bool Performance::NextMeasureHead()
{
    while (++tune.CurNote <= kLastRecord)
        if (Record().IsHead())
            return true;
    return false;
}

/// What is pending at the tune's end. Fine and Coda play no part there.
void Performance::ReturnFromEnd()
{
    RepeatAgain();
    if (tune.CurNote > tune.LastNote && std::exchange(way.DsPending, false))
        tune.CurNote = way.RepeatStart = way.SegnoHead;
    if (tune.CurNote > tune.LastNote && std::exchange(way.DcPending, false))
        tune.CurNote = way.RepeatStart = 1;
}

void Performance::TakeRecord()
{
    const int code = Record().NoteCode;
    if (code > kLastNoteCode || Cell(tune.CurNote).empty())
        AddTicks(RestTicks, TicksAt(sound.Tempo, code));
    else
        PlayCell();
}

void Performance::PlayCell()
{
    const std::string& cell = Cell(tune.CurNote);
    bool tied = false;
    bool slurNext = false;
    if (HasTie(cell)) {
        // The next record is asked whatever it is, a head too: over a bar line most ties are slurs.
        tied = ValUnsigned(Cell(tune.CurNote + 1)) == ValUnsigned(cell);
        slurNext = !tied;
    }
    const std::size_t separator = FindConnection(cell);
    const bool twoNotes = separator != std::string::npos && separator + 1 < cell.size();

    Int16 pitch = PitchOf(cell);
    // The banjo's short string starts at the fifth fret, and its frets are numbered as on the neck.
    if (tune.NumStrings == 5 && TrackString == 5 && ValUnsigned(cell) > 5)
        pitch -= 5;
    if (!tied && pitch > 0) {
        WriteNote(pitch, Velocity, RestTicks);
        RestTicks = 0;
    }
    AddTicks(NoteTicks, TicksAt(sound.Tempo, Record().NoteCode));
    if (twoNotes) {
        NoteTicks = Round(NoteTicks / 2.0);
        WriteNote(pitch, 0, NoteTicks);
        pitch = PitchOf(std::string_view(cell).substr(separator + 1));
        WriteNote(pitch, Floor(Velocity / 3.0 * 2), 0);
        RestTicks = 0;
    }
    if (!tied) {
        if (pitch > 0)
            WriteNote(pitch, 0, NoteTicks);
        NoteTicks = 0;
    }
    Velocity = slurNext ? Velocity / 2 : 100;
}

Int16 Performance::PitchOf(std::string_view text) const
{
    return Round(ValUnsigned(text) + sound.OpenPitch.at(static_cast<std::size_t>(TrackString - 1)));
}

/// Velocity 0 ends the note.
void Performance::WriteNote(int pitch, int velocity, int delta)
{
    writeEvent(kNoteOn + TrackString, pitch, velocity, delta);
    written += delta;
}

Sound ChosenSound(Tune& tune, const std::vector<TuningRecord>& tunings, const SoundChoices& choices)
{
    if (tunings.empty())
        throw Fault(Error::InvalidPropertyValue);
    const InstrumentMode& mode = *FindMode(tune.NumStrings);
    const std::string wanted = choices.Tuning ? std::to_string(*choices.Tuning) : tune[0].Slot(4);
    const int row = TuningRow(wanted, static_cast<int>(tunings.size()));
    KeepTuning(tune, row);

    Sound sound;
    sound.Tempo = HeldTempo(choices.Tempo.value_or(mode.Tempo));
    sound.Instrument = choices.Instrument.value_or(mode.Instrument);
    sound.OpenPitch = OpenPitches(tunings[static_cast<std::size_t>(row)], HeldCapo(choices.Capo));
    return sound;
}

std::string MidiFileBytes(Tune& tune, const std::vector<TuningRecord>& tunings,
                          const SoundChoices& choices)
{
    MidiFileWriter writer;
    BuildMidiFile(tune, ChosenSound(tune, tunings, choices), writer);
    return writer.Bytes();
}

}  // namespace quillon
