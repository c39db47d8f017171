#include "exchange/fingering.h"
#include "exchange/played_order.h"
#include "exchange/table_music.h"
#include "exchange/tick_grid.h"
#include "midi/performance.h"
#include "store/fret_text.h"

#include <algorithm>
#include <set>

namespace quillon {

namespace {

using Measures = std::vector<MusicMeasure>;

// Repeats as the table can say them.

/// Each repeat gets its start, and loses an end that never goes back.
void MakeRepeatsPlain(Music& music)
{
    const Playing playing = PlayingOf(music);
    std::set<int> starts;
    std::set<int> ends;
    for (const auto& [from, to] : playing.GoneBack) {
        ends.insert(from);
        starts.insert(to);
    }
    for (int i = 0; i < static_cast<int>(music.Measures.size()); ++i) {
        MusicMeasure& measure = music.Measures[i];
        if (measure.EndsRepeat && !ends.contains(i))
            measure.DoubleBar = true;
        if (measure.StartsRepeat && !starts.contains(i))
            measure.BeginDoubleBar = true;
        measure.EndsRepeat = ends.contains(i);
        measure.StartsRepeat = starts.contains(i) && (i > 0 || measure.StartsRepeat);
    }
}

/// A measure has one bar sign: a repeat of a single measure is written twice.
void WriteOutSingleMeasures(Music& music)
{
    Measures measures;
    for (std::size_t i = 0; i < music.Measures.size(); ++i) {
        MusicMeasure& measure = measures.emplace_back(music.Measures[i]);
        if (i == 0 || !measure.StartsRepeat || !measure.EndsRepeat)
            continue;
        measure.StartsRepeat = measure.EndsRepeat = false;
        measures.push_back(measure);
        measures.back().Remark.clear();
        measures.back().DoubleBar = true;
        measures.back().NewLine = false;
    }
    music.Measures = std::move(measures);
}

/// A bracket is for one pass: an ending for several is written once for each.
void SplitSharedEndings(Music& music)
{
    Measures measures;
    for (std::size_t i = 0; i < music.Measures.size();) {
        const std::vector<int> endings = music.Measures[i].Endings;
        std::size_t end = i + 1;
        if (endings.size() > 1)
            while (end < music.Measures.size() && !music.Measures[end - 1].EndsRepeat &&
                   music.Measures[end].Endings.empty())
                ++end;
        for (std::size_t copy = 0; copy < std::max<std::size_t>(endings.size(), 1); ++copy) {
            const std::size_t first = measures.size();
            measures.insert(measures.end(), music.Measures.begin() + i,
                            music.Measures.begin() + end);
            if (endings.size() > 1) {
                measures[first].Endings = {endings[copy]};
                measures[first].EndingText.clear();
            }
        }
        i = end;
    }
    music.Measures = std::move(measures);
}

struct Signature {
    int Beats;
    int BeatUnit;
};

/// The table has quarters and eighths; others keep their length, or the nearest above it.
Signature TableSignature(const MusicMeasure& measure)
{
    switch (measure.BeatUnit) {
    case 1:
        return {4 * measure.Beats, 4};
    case 2:
        return {2 * measure.Beats, 4};
    case 4:
    case 8:
        return {measure.Beats, measure.BeatUnit};
    default:
        return {std::max(1, (8 * measure.Beats + measure.BeatUnit - 1) / measure.BeatUnit), 8};
    }
}

std::string BarCodeOf(const MusicMeasure& measure)
{
    return std::string(measure.EndsRepeat       ? kRepeatEnd
                       : measure.StartsRepeat   ? kRepeatStart
                       : measure.DoubleBar      ? kDoubleBar
                       : measure.BeginDoubleBar ? kBeginDoubleBar
                                                : std::string_view());
}

std::string BracketOf(const MusicMeasure& measure)
{
    if (measure.Endings.empty())
        return measure.EndingText;
    const int ending = measure.Endings.front();
    return Round(ValUnsigned(measure.EndingText)) == ending ? measure.EndingText
                                                            : std::to_string(ending);
}

NoteRecord HeadOf(const MusicMeasure& measure)
{
    const Signature signature = TableSignature(measure);
    NoteRecord head;
    head.NoteCode = kHead;
    head.Beats = signature.Beats;
    head.BeatUnit = signature.BeatUnit;
    head.BarCode = BarCodeOf(measure);
    head.Slot(1) = measure.Sign;
    head.Slot(2) = BracketOf(measure);
    head.Slot(3) = measure.Remark;
    if (measure.NewLine)
        head.Slot(6) = kLineBreak;
    return head;
}

// Cells.

const MusicNote* NoteOn(const MusicEvent& event, int string)
{
    const auto found = std::ranges::find(event.Notes, string, &MusicNote::String);
    return found == event.Notes.end() ? nullptr : &*found;
}

bool IsConnected(const MusicNote& note)
{
    return note.Next == Link::Hammer || note.Next == Link::Slide;
}

bool SoundsOn(const MusicNote& note, const MusicEvent& next)
{
    const MusicNote* other = NoteOn(next, note.String);
    return note.Tied && other && other->Fret == note.Fret;
}

/// Whether two events fit into the cells of one record: each string's first note is connected to
/// the second or sounds on.
bool ShareCells(const MusicEvent& one, const MusicEvent& two)
{
    const Units sum = one.Length + two.Length;
    if (one.Length != two.Length || one.Notes.empty() || one.Notes.size() != two.Notes.size() ||
        sum % kTickUnits != 0 || sum < kShortestTicks * kTickUnits || !two.Chord.empty() ||
        std::ranges::none_of(one.Notes, IsConnected) ||
        CodesOfTicks(static_cast<int>(sum / kTickUnits), 0, false).size() != 1)
        return false;
    return std::ranges::all_of(one.Notes, [&](const MusicNote& note) {
        const MusicNote* other = NoteOn(two, note.String);
        return other && (SoundsOn(note, two) || (IsConnected(note) && !other->Tied));
    });
}

/// Two short notes that were to share a cell, but stand on different strings: the first one lasts.
void LeaveOutWhatSharesNoCell(Music& music, Notices& notices)
{
    for (MusicMeasure& measure : music.Measures)
        for (std::size_t i = 0; i + 1 < measure.Events.size(); ++i) {
            MusicEvent& one = measure.Events[i];
            const MusicEvent& two = measure.Events[i + 1];
            const bool whole =
                one.Length % kTickUnits == 0 && one.Length >= kShortestTicks * kTickUnits;
            if (whole || ShareCells(one, two)) {
                i += whole ? 0 : 1;
                continue;
            }
            one.Length += two.Length;
            measure.Events.erase(measure.Events.begin() + i + 1);
            notices.Count("A note too short for a tune is left out.",
                          "notes too short for a tune are left out.");
        }
}

std::string FretText(const MusicNote& note)
{
    std::string fret = std::to_string(note.Fret);
    switch (note.Look) {
    case NoteLook::Ghost:
        return "(" + fret + ")";
    case NoteLook::Muted:
        return "x";
    case NoteLook::Slash:
        return std::string(kRhythmSlash);
    case NoteLook::Bend:
        return fret + kBendMark;
    case NoteLook::Release:
        return fret + kReleaseMark;
    case NoteLook::Plain:
        break;
    }
    return fret;
}

/// The measure after `measure` is always the next one played.
bool FlowsOn(const MusicMeasure& measure, const MusicMeasure& next)
{
    return !measure.EndsRepeat && next.Endings.empty() &&
           (measure.Sign.empty() || measure.Sign == kSign || measure.Sign == kCoda) &&
           !LeadsToCoda(measure);
}

class TableWriter {
public:
    TableWriter(const Music& theMusic, Tune& theTune) : music(theMusic), tune(theTune) {}

    /// How many measures found room.
    std::size_t Write()
    {
        tune.Table.Clear();
        tune.LastNote = tune.LastMeas = 0;
        WriteHeader();
        for (at = 0; at < music.Measures.size(); ++at)
            if (!WriteMeasure())
                break;
        return at;
    }

private:
    void WriteHeader()
    {
        NoteRecord& header = tune[0];
        header.ChordText = music.Title;
        header.Slot(1) = music.Credits[0];
        header.Slot(2) = music.Credits[1];
        if (music.TuningRow)
            header.Slot(4) = std::to_string(*music.TuningRow);
    }

    const MusicMeasure& Here() const { return music.Measures[at]; }

    bool Append(NoteRecord record)
    {
        if (tune.LastNote == kLastRecord)
            return false;
        record.Measure = static_cast<int>(at) + 1;
        tune[++tune.LastNote] = std::move(record);
        return true;
    }

    bool WriteMeasure()
    {
        const int before = tune.LastNote;
        bool room = Append(HeadOf(Here()));
        int tick = 0;
        for (std::size_t i = 0; room && i < Here().Events.size();) {
            const bool pair = IsPair(i);
            Units length = Here().Events[i].Length;
            if (pair)
                length += Here().Events[i + 1].Length;
            const int ticks = static_cast<int>(length / kTickUnits);
            room = pair ? WritePair(i, tick, ticks) : WriteEvent(i, tick, ticks);
            tick += ticks;
            i += pair ? 2 : 1;
        }
        if (!room) {
            tune.Table.Clear(before + 1);
            tune.LastNote = before;
            return false;
        }
        tune.LastMeas = static_cast<int>(at) + 1;
        return true;
    }

    bool IsPair(std::size_t i) const
    {
        const auto& events = Here().Events;
        if (i + 1 >= events.size() || !ShareCells(events[i], events[i + 1]))
            return false;
        // A cell of two notes is never tied to: both would get half of the sum.
        return std::ranges::none_of(events[i].Notes, [&](const MusicNote& note) {
            return IsConnected(note) && IsTiedTo(i, note);
        });
    }

    bool IsTiedTo(std::size_t i, const MusicNote& note) const
    {
        const MusicEvent* before = i > 0 ? &Here().Events[i - 1]
                                   : at == 0 || music.Measures[at - 1].Events.empty()
                                       ? nullptr
                                       : &music.Measures[at - 1].Events.back();
        const MusicNote* other = before ? NoteOn(*before, note.String) : nullptr;
        return other && SoundsOn(*other, Here().Events[i]);
    }

    NoteRecord RecordOf(const MusicEvent& event, int code) const
    {
        const Signature signature = TableSignature(Here());
        NoteRecord record;
        record.NoteCode = code;
        record.Beats = signature.Beats;
        record.BeatUnit = signature.BeatUnit;
        record.ChordText = event.Chord;
        record.LeftHand = event.LeftHand;
        record.RightHand = event.RightHand;
        return record;
    }

    bool WritePair(std::size_t i, int tick, int ticks)
    {
        const MusicEvent& one = Here().Events[i];
        const MusicEvent& two = Here().Events[i + 1];
        NoteRecord record = RecordOf(one, CodesOfTicks(ticks, tick, false).front());
        for (const MusicNote& note : one.Notes) {
            const MusicNote& other = *NoteOn(two, note.String);
            std::string& cell = record.Slot(note.String);
            if (IsConnected(note))
                cell = std::to_string(note.Fret) +
                       (note.Next == Link::Slide ? kSlideMark : kHammerMark) + FretText(other);
            else
                cell = FretText(note) + TieText(i + 1, other);
        }
        return Append(record);
    }

    bool WriteEvent(std::size_t i, int tick, int ticks)
    {
        const MusicEvent& event = Here().Events[i];
        const std::vector<int> codes = CodesOfTicks(ticks, tick, event.Notes.empty());
        for (std::size_t piece = 0; piece < codes.size(); ++piece) {
            NoteRecord record = RecordOf(piece == 0 ? event : MusicEvent(), codes[piece]);
            const bool last = piece + 1 == codes.size();
            for (const MusicNote& note : event.Notes)
                record.Slot(note.String) =
                    FretText(note) + (last ? TieText(i, note) : std::string(1, kTieMark));
            if (!Append(std::move(record)))
                return false;
        }
        return true;
    }

    /// The mark of a note that goes on to the next event; none where the performance would take it
    /// for something else.
    std::string TieText(std::size_t i, const MusicNote& note) const
    {
        const bool last = i + 1 == Here().Events.size();
        if (last && (at + 1 == music.Measures.size() || !FlowsOn(Here(), music.Measures[at + 1]) ||
                     music.Measures[at + 1].Events.empty()))
            return {};
        const MusicEvent& next =
            last ? music.Measures[at + 1].Events.front() : Here().Events[i + 1];
        const MusicNote* other = NoteOn(next, note.String);
        if (!other || (note.Tied ? other->Fret != note.Fret : note.Next == Link::None))
            return {};
        if (!note.Tied && (other->Fret == note.Fret || (last && HeadTies(note))))
            return {};
        return std::string(1, kTieMark);
    }

    /// At a measure's end the performance compares a fret with the next head.
    bool HeadTies(const MusicNote& note) const
    {
        const NoteRecord head = HeadOf(music.Measures[at + 1]);
        return ValUnsigned(head.Slot(note.String)) == note.Fret;
    }

    const Music& music;
    Tune& tune;
    std::size_t at = 0;  // measure
};

// The whole tune.

bool HasSigns(const Music& music)
{
    return std::ranges::any_of(music.Measures,
                               [](const auto& measure) { return !measure.Sign.empty(); });
}

/// Whether the signs of the table have it played as the music's. Jumps are the table's own.
bool PlaysAs(Tune& tune, const Music& music)
{
    try {
        const std::vector<int> order = PlayedOrder(tune);
        return HasSigns(music) || order == PlayingOf(music).Order;
    } catch (const Fault&) {
        return false;
    } catch (const NeverEnding&) {
        return false;
    }
}

void WriteWhatFits(Music& music, Tune& tune, Notices& notices)
{
    const std::size_t written = TableWriter(music, tune).Write();
    if (written == music.Measures.size())
        return;
    if (written == 0)
        throw ExchangeError(
            "Its first measure is longer than a whole tune; put bar lines into it.");
    notices.Say("The tune ends after measure " + std::to_string(written) + ": a tune holds " +
                std::to_string(kLastRecord) + " notes, rests and measures.");
    music.Measures.resize(written);
    TableWriter(music, tune).Write();
}

void FillTable(Music& music, Tune& tune, Notices& notices)
{
    MakeRepeatsPlain(music);
    WriteOutSingleMeasures(music);
    SplitSharedEndings(music);
    WriteWhatFits(music, tune, notices);
    if (PlaysAs(tune, music))
        return;
    notices.Say("The repeats are written out: a tune has no signs for them.");
    music = WrittenOut(music);
    for (MusicMeasure& measure : music.Measures)
        measure.Sign.clear();
    WriteWhatFits(music, tune, notices);
}

// The instrument.

std::vector<int> PitchesOf(const TuningRecord& tuning, int numStrings, int capo)
{
    std::vector<int> pitches;
    for (int s = 1; s <= numStrings; ++s)
        pitches.push_back(tuning.Pitch(s) + capo);
    return pitches;
}

int TuningRowOf(const Music& music, const ImportChoices& choices, int numStrings, Notices& notices)
{
    const int count = static_cast<int>(choices.Tunings.size());
    if (choices.Tuning)
        return std::clamp(*choices.Tuning, 0, count - 1);
    if (music.OpenPitches.empty())
        return 0;
    const auto fits = [&](int row) {
        return row >= 0 && row < count &&
               PitchesOf(choices.Tunings[row], numStrings, 0) == music.OpenPitches;
    };
    if (fits(music.TuningRow.value_or(0)))
        return music.TuningRow.value_or(0);
    for (int row = 0; row < count; ++row)
        if (fits(row))
            return row;
    notices.Say("Its tuning is none of the list: strings and frets are kept, and sound as in " +
                choices.Tunings.front().TuningName + ".");
    return 0;
}

/// Notes on strings that the instrument lacks, or that another note of the chord is on, are
/// fingered anew.
void FreeImpossiblePlaces(Music& music, int numStrings, Notices& notices)
{
    for (MusicMeasure& measure : music.Measures)
        for (MusicEvent& event : measure.Events)
            for (MusicNote& note : event.Notes)
                if (note.String > numStrings) {
                    note.String = 0;
                    notices.Count("A note on a string that the instrument lacks is moved.",
                                  "notes on strings that the instrument lacks are moved.");
                } else if (note.String > 0 && NoteOn(event, note.String) != &note) {
                    note.String = 0;
                    notices.Count("A second note on a string is fingered anew.",
                                  "second notes on a string are fingered anew.");
                }
}

/// Whether the event has the note's pitch, but not on its string.
bool IsOnlyElsewhere(const MusicNote& note, const MusicEvent& event)
{
    const MusicNote* same = NoteOn(event, note.String);
    return (!same || same->Pitch != note.Pitch) &&
           std::ranges::find(event.Notes, note.Pitch, &MusicNote::Pitch) != event.Notes.end();
}

/// Only on its own string does a note sound on.
void TellOfTiesBetweenStrings(const Music& music, Notices& notices)
{
    const MusicEvent* before = nullptr;
    for (const MusicMeasure& measure : music.Measures)
        for (const MusicEvent& event : measure.Events) {
            if (before)
                for (const MusicNote& note : before->Notes)
                    if (note.Tied && IsOnlyElsewhere(note, event))
                        notices.Count("A note that is tied to another string is struck again.",
                                      "notes that are tied to another string are struck again.");
            before = &event;
        }
}

void RequireEvents(const Music& music)
{
    if (std::ranges::all_of(music.Measures,
                            [](const auto& measure) { return measure.Events.empty(); }))
        throw ExchangeError("There is no note in it; choose a file with music in it.");
}

/// What no table can hold is not worth a fingering. Two events share a record at best.
void CutToTable(Music& music, Notices& notices)
{
    std::size_t room = 2 * kLastRecord;
    for (std::size_t i = 0; i < music.Measures.size(); ++i) {
        auto& events = music.Measures[i].Events;
        if (events.size() <= room) {
            room -= events.size();
            continue;
        }
        events.resize(room);
        music.Measures.resize(i + 1);
        notices.Say("The tune is too long: its end is left out.");
    }
}

void TellWhatIsNotKept(const Music& music, const ImportChoices& choices, Notices& notices)
{
    if (music.Tempo > 0)
        notices.Say("A tune does not keep its tempo: " + std::to_string(Round(music.Tempo)) +
                    " quarters a minute.");
    if (choices.Capo > 0)
        notices.Say("The frets count from a capo on fret " + std::to_string(choices.Capo) +
                    ", which a tune does not keep.");
}

}  // namespace

void MakeTune(Music music, const ImportChoices& choices, Tune& tune, Notices& notices)
{
    RequireEvents(music);
    TellWhatIsNotKept(music, choices, notices);
    const int numStrings = tune.NumStrings;
    const int row = TuningRowOf(music, choices, numStrings, notices);
    if (row > 0 || choices.Tuning)
        music.TuningRow = row;
    CutToTable(music, notices);
    FreeImpossiblePlaces(music, numStrings, notices);
    FitToTicks(music, notices);
    ChooseFingering(music,
                    {PitchesOf(choices.Tunings[row], numStrings, choices.Capo), choices.LowestFret,
                     choices.HighestFret},
                    notices);
    LeaveOutWhatSharesNoCell(music, notices);
    TellOfTiesBetweenStrings(music, notices);
    FillTable(music, tune, notices);
    tune.CurNote = tune.CurMeas = 1;
}

}  // namespace quillon
