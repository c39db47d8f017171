#include "exchange/played_order.h"
#include "exchange/table_music.h"
#include "midi/sound_settings.h"
#include "store/fret_text.h"
#include "store/tunings.h"

#include <algorithm>

namespace quillon {

namespace {

constexpr std::string_view kDigits = "0123456789";
constexpr int kShortString = 5;

/// What a string's slot holds: one note, or two that are connected.
struct Cell {
    int String = 0;
    int Fret = 0;
    NoteLook Look = NoteLook::Plain;
    bool Tie = false;
    Link Connection = Link::None;
    int SecondFret = 0;
};

int NumberIn(std::string_view text)
{
    const std::size_t first = text.find_first_of(kDigits);
    if (first == std::string_view::npos)
        return 0;
    int number = 0;
    for (const char c : text.substr(first, 2))
        if (c >= '0' && c <= '9')
            number = 10 * number + (c - '0');
    return number;
}

NoteLook LookOf(std::string_view text)
{
    if (text == kRhythmSlash)
        return NoteLook::Slash;
    if (text.find_first_of(kDigits) == std::string_view::npos)
        return text.find_first_of("xX") == std::string_view::npos ? NoteLook::Plain
                                                                  : NoteLook::Muted;
    if (text.starts_with('('))
        return NoteLook::Ghost;
    const std::size_t bend = FindBend(text);
    if (bend == std::string_view::npos)
        return NoteLook::Plain;
    return text[bend] == kReleaseMark ? NoteLook::Release : NoteLook::Bend;
}

Cell CellOf(std::string_view text, int string)
{
    Cell cell{string, NumberIn(text), LookOf(text), HasTie(text)};
    const std::size_t connection = FindConnection(text);
    if (connection != std::string_view::npos && connection + 1 < text.size()) {
        cell.Connection = text[connection] == kHammerMark ? Link::Hammer : Link::Slide;
        cell.SecondFret = NumberIn(text.substr(connection));
    }
    return cell;
}

class TableReader {
public:
    TableReader(const Tune& theTune, Music& theMusic) : tune(theTune), music(theMusic) {}

    void Read()
    {
        for (int i = 1; i <= tune.LastNote; ++i) {
            const NoteRecord& record = tune[i];
            if (record.IsHead())
                TakeHead(record);
            else if (TicksOf(record.NoteCode) > 0 && !music.Measures.empty())
                TakeRecord(record);
        }
        JoinTies();
    }

private:
    void TakeHead(const NoteRecord& head)
    {
        MusicMeasure& measure = music.Measures.emplace_back();
        measure.Beats = std::max<int>(head.Beats, 1);
        measure.BeatUnit = head.BeatUnit == 4 ? 4 : 8;
        measure.StartsRepeat = head.BarCode == kRepeatStart;
        measure.EndsRepeat = head.BarCode == kRepeatEnd;
        measure.DoubleBar = head.BarCode == kDoubleBar;
        measure.BeginDoubleBar = head.BarCode == kBeginDoubleBar;
        measure.EndingText = head.Slot(2);
        if (const int ending = Round(ValUnsigned(head.Slot(2))); ending > 0)
            measure.Endings = {ending};
        measure.Sign = head.Slot(1);
        measure.Remark = head.Slot(3);
        measure.NewLine = head.Slot(6) == kLineBreak;
    }

    void TakeRecord(const NoteRecord& record)
    {
        std::vector<Cell> cells;
        if (!record.IsRest())
            for (int s = 1; s <= tune.NumStrings; ++s)
                if (!record.Slot(s).empty())
                    cells.push_back(CellOf(record.Slot(s), s));
        const bool two = std::ranges::any_of(
            cells, [](const Cell& cell) { return cell.Connection != Link::None; });
        const Units length = TicksOf(record.NoteCode) * kTickUnits;
        MusicEvent& event = AddEvent(two ? length / 2 : length);
        event.Chord = record.ChordText;
        event.LeftHand = record.LeftHand;
        event.RightHand = record.RightHand;
        for (const Cell& cell : cells)
            AddFirstNote(event, cell, two);
        if (two)
            AddSecondNotes(AddEvent(length / 2), cells);
    }

    MusicEvent& AddEvent(Units length)
    {
        MusicEvent& event = music.Measures.back().Events.emplace_back();
        event.Length = length;
        return event;
    }

    MusicNote NoteOn(int string, int fret) const
    {
        const bool neck = tune.NumStrings == 5 && string == kShortString && fret > kShortStringFret;
        MusicNote note;
        note.Pitch = music.OpenPitches[string - 1] + fret - (neck ? kShortStringFret : 0);
        note.String = string;
        note.Fret = fret;
        return note;
    }

    /// A tie's mark is a slur until the next note is known. What sounds on beside two connected
    /// notes is tied to its own second half.
    void AddFirstNote(MusicEvent& event, const Cell& cell, bool two) const
    {
        MusicNote& note = event.Notes.emplace_back(NoteOn(cell.String, cell.Fret));
        note.Look = cell.Look;
        note.Next = cell.Connection;
        if (two && cell.Connection == Link::None)
            note.Tied = true;
        else if (cell.Tie && cell.Connection == Link::None)
            note.Next = Link::Slur;
    }

    void AddSecondNotes(MusicEvent& event, const std::vector<Cell>& cells) const
    {
        for (const Cell& cell : cells) {
            const bool connected = cell.Connection != Link::None;
            MusicNote& note = event.Notes.emplace_back(
                NoteOn(cell.String, connected ? cell.SecondFret : cell.Fret));
            if (cell.Tie)
                note.Next = Link::Slur;
        }
    }

    /// A slur to the same fret is a tie; one to a string that is silent is nothing.
    void JoinTies()
    {
        MusicEvent* before = nullptr;
        for (MusicMeasure& measure : music.Measures)
            for (MusicEvent& event : measure.Events) {
                if (before)
                    JoinTies(*before, event);
                before = &event;
            }
        if (before)
            JoinTies(*before, {});
    }

    static void JoinTies(MusicEvent& event, const MusicEvent& next)
    {
        for (MusicNote& note : event.Notes) {
            const auto other = std::ranges::find(next.Notes, note.String, &MusicNote::String);
            if (note.Next != Link::Slur)
                continue;
            note.Tied = other != next.Notes.end() && other->Fret == note.Fret;
            if (note.Tied || other == next.Notes.end())
                note.Next = Link::None;
        }
    }

    const Tune& tune;
    Music& music;
};

bool HasRepeats(const Music& music)
{
    return std::ranges::any_of(music.Measures, &MusicMeasure::EndsRepeat);
}

bool HasEndings(const Music& music)
{
    return std::ranges::any_of(music.Measures,
                               [](const auto& measure) { return !measure.Endings.empty(); });
}

/// Whether a bracket begins while the one before it is still open.
bool HasBracketInBracket(const Music& music)
{
    bool open = false;
    for (const MusicMeasure& measure : music.Measures) {
        open = open && !measure.StartsRepeat;
        if (open && !measure.Endings.empty())
            return true;
        open = (open || !measure.Endings.empty()) && !measure.EndsRepeat && !measure.DoubleBar;
    }
    return false;
}

/// Whether the tune begins with a bracket or a repeat goes back to one: there is nothing before it
/// that all passes have.
bool BeginsWithABracket(const Music& music, const Playing& playing)
{
    const bool first = !music.Measures.empty() && !music.Measures[0].Endings.empty();
    return first || std::ranges::any_of(playing.GoneBack, [&](const auto& jump) {
               return !music.Measures[jump.second].Endings.empty();
           });
}

/// Whether endings start over after a last ending that repeats, with nothing to say that a new
/// section begins: some programs take it for the same section and repeat it once more.
bool HasSecondEndings(const Music& music)
{
    int highest = 0;
    bool repeats = false;
    for (const MusicMeasure& measure : music.Measures) {
        if (measure.StartsRepeat)
            highest = 0;
        if (!measure.Endings.empty()) {
            const auto [least, most] = std::ranges::minmax(measure.Endings);
            if (repeats && least <= highest)
                return true;
            highest = most;
            repeats = false;
        }
        repeats = repeats || measure.EndsRepeat;
    }
    return false;
}

/// Whether the reader of a form plays the measures in the tune's order. Who takes a jump takes no
/// repeat behind it, and the last ending.
bool IsPlayedIn(const std::vector<int>& order, const Music& music, Repeats reader)
{
    if (std::ranges::any_of(music.Measures, IsJump))
        return reader == Repeats::Jumps && !HasRepeats(music) && !HasEndings(music) &&
               order == JumpingOrder(music);
    const Playing playing = PlayingOf(music);
    return order == playing.Order &&
           (reader == Repeats::Drawn ||
            (!playing.Strays && !HasBracketInBracket(music) && !HasSecondEndings(music) &&
             !BeginsWithABracket(music, playing)));
}

/// The measures as they are played, without the signs that have them played so.
Music InOrder(const Music& music, const std::vector<int>& order)
{
    Music out = music;
    out.Measures.clear();
    for (const int at : order) {
        MusicMeasure& measure = out.Measures.emplace_back(music.Measures[at]);
        measure.StartsRepeat = measure.EndsRepeat = false;
        measure.Endings.clear();
        measure.EndingText.clear();
        if (IsJump(measure) || measure.Sign == kFine)
            measure.Sign.clear();
    }
    return out;
}

}  // namespace

Music MusicOf(Tune& tune, const ExportChoices& choices, Notices& notices)
{
    Music music;
    music.Title = tune[0].ChordText;
    music.Credits[0] = tune[0].Slot(1);
    music.Credits[1] = tune[0].Slot(2);
    music.Tempo = choices.Tempo;
    music.Capo = choices.Capo;
    const int count = static_cast<int>(choices.Tunings.size());
    const std::string wanted = choices.Tuning ? std::to_string(*choices.Tuning) : tune[0].Slot(4);
    const int row = TuningRow(wanted, count);
    if (!wanted.empty())
        music.TuningRow = row;
    for (int s = 1; s <= tune.NumStrings; ++s)
        music.OpenPitches.push_back(choices.Tunings[row].Pitch(s));
    TableReader(tune, music).Read();

    if (choices.Reader == Repeats::Shown)
        return music;

    const std::vector<int> order = PlayedOrder(tune);
    if (IsPlayedIn(order, music, choices.Reader))
        return music;
    notices.Say("The measures are written out in the order in which they are played.");
    return InOrder(music, order);
}

}  // namespace quillon
