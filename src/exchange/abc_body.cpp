#include "exchange/abc_body.h"

#include "exchange/abc_text.h"
#include "exchange/text.h"
#include "store/numbers.h"

#include <algorithm>
#include <iterator>
#include <set>

namespace quillon {

namespace {

constexpr int kMostBrokenSigns = 3;
constexpr int kHighestEnding = 20;

constexpr int kSemitones[] = {0, 2, 4, 5, 7, 9, 11};  // C to B

struct Decoration {
    std::string_view Name;
    std::string_view Sign;  // at the measure
};

// clang-format off
constexpr Decoration kDecorations[] = {
    {"segno", kSign}, {"coda", kCoda}, {"fine", kFine},
    {"D.S.", kDs}, {"dalsegno", kDs}, {"D.C.", kDc}, {"dacapo", kDc},
    {"D.C.alfine", kDcAlFine}, {"D.C.alcoda", kDcAlCoda},
    {"D.S.alfine", kDsAlFine}, {"D.S.alcoda", kDsAlCoda},
};
// clang-format on

}  // namespace

// Fields.

void AbcBody::TakeField(char name, std::string_view text)
{
    switch (name) {
    case 'T':
        return TakeText(text, music.Title, nullptr);
    case 'C':
        return TakeText(text, music.Credits[0], &music.Credits[1]);
    case 'M':
        meter = ReadAbcMeter(text);
        return;
    case 'L':
        if (const auto length = ReadAbcUnit(text))
            unit = length;
        return;
    case 'Q':
        if (music.Tempo == 0)
            music.Tempo = ReadAbcTempo(text, unit.value_or(AbcUnitOf(meter)));
        return;
    case 'K':
        ReadAbcKey(text, key);
        barAccidentals.fill(std::nullopt);
        return;
    case 'P':
        if (inMusic)
            TakePart(Trimmed(text));
        else
            partOrder = ReadAbcPartOrder(text);
        return;
    case 'V':
        return TakeVoice(Trimmed(text));
    case 'w':
    case 'W':
        notices.Say("The words are left out.");
        return;
    default:
        return;  // what a catalogue wants to know
    }
}

void AbcBody::TakeText(std::string_view text, std::string& first, std::string* second)
{
    std::string& place = first.empty() || !second ? first : *second;
    if (place.empty())
        place = AbcText(text);
}

/// The first voice with music is read; what stands before any name is voice 1.
void AbcBody::TakeVoice(std::string_view text)
{
    if (!inMusic)
        return;
    const std::string name(text.substr(0, text.find_first_of(" \t]")));
    if (!voice)
        voice = OpenIndex() == 0 && Open().Events.empty() ? name : "1";
    otherVoice = name != *voice;
    if (otherVoice)
        notices.Say("Only the first voice is read.");
}

void AbcBody::BeginMusic()
{
    inMusic = true;
    if (!unit)
        unit = AbcUnitOf(meter);
    music.Measures.emplace_back();
}

// A line.

void AbcBody::TakeLine(std::string_view line)
{
    rest = line;
    while (!rest.empty()) {
        const std::size_t before = rest.size();
        if (otherVoice && !rest.starts_with("[V:"))
            rest.remove_prefix(1);
        else
            TakeOne();
        if (rest.size() == before)
            rest.remove_prefix(1);  // a sign without a meaning
    }
}

void AbcBody::SkipPast(std::size_t end)
{
    rest.remove_prefix(std::min(end, rest.size() - 1) + 1);
}

/// What begins here. Nothing is taken of a sign without a meaning.
void AbcBody::TakeOne()
{
    switch (rest.front()) {
    case '"':
        return TakeQuoted();
    case '!':
    case '+':
        return TakeDecoration(rest.front());
    case '{':
        return TakeGraceNotes();
    case '(':
        return TakeTuplet();
    case '>':
    case '<':
        return TakeBrokenRhythm();
    case '-':
        return TakeTie();
    case '&':
        return SkipVoice();
    case '[':
        return TakeInBrackets();
    case '|':
    case ':':
        return TakeBar();
    case 'Z':
    case 'X':
        return TakeMeasureRests();
    case 'z':
    case 'x':
        return TakeRest();
    case 'y':
        rest.remove_prefix(1);
        TakeLength();
        return;
    default:
        if (AbcLetter(rest.front()) ||
            std::string_view("^_=").find(rest.front()) != std::string_view::npos)
            TakeNote();
    }
}

void AbcBody::TakeInBrackets()
{
    const char next = rest.size() > 1 ? rest[1] : ' ';
    if (next == '|')
        return TakeBar();
    if (IsDigit(next)) {
        rest.remove_prefix(1);
        return TakeEnding();
    }
    if (rest.size() > 2 && rest[2] == ':') {
        const std::size_t end = std::min(rest.find(']'), rest.size());
        const std::string_view text = rest.substr(std::min<std::size_t>(3, end), end - 3);
        SkipPast(end);
        return TakeField(next, text);
    }
    TakeChord();
}

/// A chord's name, or a remark if it says where it wants to stand.
void AbcBody::TakeQuoted()
{
    const std::size_t end = rest.find('"', 1);
    if (end == std::string_view::npos)
        return;
    const std::string text = AbcText(rest.substr(1, end - 1));
    SkipPast(end);
    if (text.empty())
        return;
    if (std::string_view("^_<>@").find(text[0]) == std::string_view::npos) {
        chord = text;
    } else if (Open().Remark.empty()) {
        Open().Remark = Trimmed(std::string_view(text).substr(1));
    }
}

void AbcBody::TakeDecoration(char closing)
{
    const std::size_t end = rest.find(closing, 1);
    if (end == std::string_view::npos ||
        rest.substr(1, end - 1).find_first_of(" |:[]") != std::string_view::npos)
        return;
    const std::string_view name = rest.substr(1, end - 1);
    if (name.size() == 1 && name[0] >= '0' && name[0] <= '5')
        leftHand = name[0];
    const auto found = std::ranges::find(kDecorations, name, &Decoration::Name);
    if (found != std::end(kDecorations) && Open().Sign.empty())
        Open().Sign = found->Sign;
    SkipPast(end);
}

void AbcBody::TakeGraceNotes()
{
    const std::size_t end = rest.find('}');
    if (end == std::string_view::npos)
        return;
    SkipPast(end);
    notices.Count("A grace note is left out.", "groups of grace notes are left out.");
    for (Sounding& note : last)
        note.Tied = false;
}

/// (p:q:r puts p notes into the time of q, for the next r notes.
void AbcBody::TakeTuplet()
{
    std::string_view behind = rest.substr(1);
    const std::optional<int> notes = TakeNumber(behind);
    if (!notes || *notes == 0)
        return;
    constexpr int kInTimeOf[] = {1, 1, 3, 2, 3, 0, 2, 0, 3, 0};
    const int usual = *notes < static_cast<int>(std::size(kInTimeOf)) ? kInTimeOf[*notes] : 0;
    tuplet = {*notes, usual > 0 ? usual : meter.IsCompound() ? 3 : 2, *notes};
    if (behind.starts_with(':')) {
        behind.remove_prefix(1);
        tuplet.InTimeOf = std::max(1, TakeNumber(behind).value_or(tuplet.InTimeOf));
    }
    if (behind.starts_with(':')) {
        behind.remove_prefix(1);
        tuplet.Left = TakeNumber(behind).value_or(tuplet.Left);
    }
    rest = behind;
}

void AbcBody::TakeBrokenRhythm()
{
    const char sign = rest.front();
    int count = 0;
    for (; rest.starts_with(sign); rest.remove_prefix(1))
        count = std::min(count + 1, kMostBrokenSigns);
    broken = sign == '>' ? count : -count;
}

void AbcBody::TakeTie()
{
    rest.remove_prefix(1);
    for (Sounding& note : last)
        note.Tied = true;
}

void AbcBody::SkipVoice()
{
    rest.remove_prefix(std::min(rest.find('|'), rest.size()));
    notices.Say("Only the first voice is read.");
}

// Events.

AbcBody::Ratio AbcBody::TakeLength()
{
    Ratio ratio;
    ratio.Upper = std::max(1, TakeNumber(rest).value_or(1));
    while (rest.starts_with('/')) {
        rest.remove_prefix(1);
        const int lower = std::max(1, TakeNumber(rest).value_or(2));
        ratio.Lower = std::min(ratio.Lower * lower, kAbsurd);
    }
    return ratio;
}

Units AbcBody::Scaled(Units length, Ratio ratio) const
{
    return std::clamp<Units>(length * ratio.Upper / ratio.Lower, 1, kLongestNote);
}

std::optional<int> AbcBody::TakeAccidental()
{
    if (rest.starts_with('=')) {
        rest.remove_prefix(1);
        return 0;
    }
    int semitones = 0;
    const char sign = rest.empty() ? ' ' : rest.front();
    if (sign != '^' && sign != '_')
        return std::nullopt;
    for (; rest.starts_with(sign); rest.remove_prefix(1))
        semitones = std::clamp(semitones + (sign == '^' ? 1 : -1), -2, 2);
    return semitones;
}

/// A note's pitch. An accidental holds for its letter in every octave until the bar's end; a tied
/// note keeps the pitch of the one before.
MusicNote AbcBody::TakePitch(std::vector<Sounding>& sounding, std::size_t note)
{
    const std::optional<int> accidental = TakeAccidental();
    const std::optional<int> letter = rest.empty() ? std::nullopt : AbcLetter(rest.front());
    if (!letter)
        return {};
    int octave = rest.front() >= 'a' ? 1 : 0;
    for (rest.remove_prefix(1); rest.starts_with('\'') || rest.starts_with(',');
         rest.remove_prefix(1))
        octave = std::clamp(octave + (rest.front() == ',' ? -1 : 1), -4, 4);
    if (accidental)
        barAccidentals[*letter] = accidental;
    MusicNote made;
    made.Pitch = kMiddleC + 12 * octave + kSemitones[*letter] +
                 barAccidentals[*letter].value_or(key[*letter]) + transposition;
    const int step = 7 * octave + *letter;
    const auto tied = std::ranges::find_if(
        last, [&](const Sounding& before) { return before.Tied && before.Step == step; });
    if (tied != last.end()) {
        MusicNote& before = music.Measures[tied->Measure].Events[tied->Event].Notes[tied->Note];
        if (!accidental)
            made.Pitch = before.Pitch;
        before.Tied = made.Pitch == before.Pitch;
    }
    sounding.push_back({OpenIndex(), Open().Events.size(), note, step, false});
    return made;
}

void AbcBody::TakeNote()
{
    MusicEvent event;
    std::vector<Sounding> sounding;
    const MusicNote note = TakePitch(sounding, 0);
    if (sounding.empty())
        return;  // an accidental without a note
    event.Notes.push_back(note);
    event.Length = Scaled(*unit, TakeLength());
    AddEvent(std::move(event), std::move(sounding));
}

/// A chord is as long as its first note.
void AbcBody::TakeChord()
{
    rest.remove_prefix(1);
    MusicEvent event;
    std::vector<Sounding> sounding;
    Units length = 0;
    while (!rest.empty() && !rest.starts_with(']') && !rest.starts_with('|')) {
        const std::size_t before = rest.size();
        TakeChordNote(event, sounding, length);
        if (rest.size() == before)
            rest.remove_prefix(1);
    }
    if (rest.starts_with(']'))
        rest.remove_prefix(1);
    if (event.Notes.empty())
        return;
    event.Length = Scaled(length, TakeLength());
    AddEvent(std::move(event), std::move(sounding));
}

void AbcBody::TakeChordNote(MusicEvent& event, std::vector<Sounding>& sounding, Units& length)
{
    if (rest.starts_with('-') && !sounding.empty()) {
        sounding.back().Tied = true;
        return;
    }
    if (rest.starts_with('"'))
        return TakeQuoted();
    if (rest.starts_with('{'))
        return TakeGraceNotes();
    if (rest.starts_with('!') || rest.starts_with('+'))
        return TakeDecoration(rest.front());
    const std::size_t notes = sounding.size();
    const MusicNote note = TakePitch(sounding, event.Notes.size());
    if (sounding.size() == notes)
        return;
    const Units own = Scaled(*unit, TakeLength());
    if (event.Notes.empty())
        length = own;
    event.Notes.push_back(note);
}

void AbcBody::TakeRest()
{
    rest.remove_prefix(1);
    MusicEvent event;
    event.Length = Scaled(*unit, TakeLength());
    AddEvent(std::move(event), {});
}

/// Z2 is two measures of rest.
void AbcBody::TakeMeasureRests()
{
    rest.remove_prefix(1);
    constexpr int kMostRests = 100;
    const int count = std::min(TakeLength().Upper, kMostRests);
    for (int i = 0; i < count; ++i) {
        if (i > 0)
            EndMeasure();
        MusicEvent event;
        event.Length = meter.Length();
        AddEvent(std::move(event), {});
    }
}

void AbcBody::AddEvent(MusicEvent event, std::vector<Sounding> sounding)
{
    if (++eventCount > kMostEvents)
        return;
    if (tuplet.Left > 0) {
        event.Length = Scaled(event.Length, {tuplet.InTimeOf, tuplet.Notes});
        --tuplet.Left;
    }
    ApplyBrokenRhythm(event);
    if (Open().Events.empty()) {
        Open().Beats = meter.Beats;
        Open().BeatUnit = meter.BeatUnit;
    }
    event.Chord = std::exchange(chord, {});
    event.LeftHand = std::exchange(leftHand, ' ');
    Open().Events.push_back(std::move(event));
    last = std::move(sounding);
}

/// A>B makes the first one longer by what the second one loses. Unequal notes stay as they are.
void AbcBody::ApplyBrokenRhythm(MusicEvent& now)
{
    const int signs = std::exchange(broken, 0);
    if (signs == 0)
        return;
    std::size_t measure = OpenIndex();
    if (Open().Events.empty() && measure > 0)
        --measure;
    std::vector<MusicEvent>& events = music.Measures[measure].Events;
    if (events.empty() || events.back().Length != now.Length)
        return;
    const Units shorter = now.Length >> std::abs(signs);
    const Units longer = 2 * now.Length - shorter;
    now.Length = signs > 0 ? shorter : longer;
    events.back().Length = signs > 0 ? longer : shorter;
}

// Bars.

/// One sign of bars, colons and brackets, such as :|] or |: or ::.
void AbcBody::TakeBar()
{
    std::size_t end = 0;
    while (end < rest.size() &&
           (rest[end] == '|' || rest[end] == ':' || (rest[end] == ']' && end > 0) ||
            (rest[end] == '[' && end + 1 < rest.size() && rest[end + 1] == '|')))
        ++end;
    const std::string_view sign = rest.substr(0, end);
    const std::size_t firstBar = sign.find('|');
    const std::size_t lastBar = sign.find_last_of("|]");
    const bool bar = firstBar != std::string_view::npos;
    if (!bar && end < 2)
        return;  // a single colon
    rest.remove_prefix(end);
    EndMeasure();
    barAccidentals.fill(std::nullopt);
    if (!bar || sign.find(':') < firstBar)
        EndRepeat();
    if (bar && (sign.find("||") != std::string_view::npos ||
                sign.find_first_of("[]") != std::string_view::npos))
        EndSection();
    if (!bar || sign.find(':', lastBar) != std::string_view::npos)
        StartRepeat();
    if (!rest.empty() && IsDigit(rest.front()))
        TakeEnding();
}

/// The number of an ending, and the measure that begins with it.
void AbcBody::TakeEnding()
{
    const std::string_view before = rest;
    std::set<int> passes;
    int from = 0;
    while (const std::optional<int> number = TakeNumber(rest)) {
        const int pass = std::clamp(*number, 1, kHighestEnding);
        for (int i = from == 0 ? pass : from; i <= pass; ++i)
            passes.insert(i);
        from = rest.starts_with('-') ? pass : 0;
        if (rest.size() < 2 || std::string_view(",-.").find(rest[0]) == std::string_view::npos ||
            !IsDigit(rest[1]))
            break;
        rest.remove_prefix(1);
    }
    EndMeasure();
    Open().Endings.assign(passes.begin(), passes.end());
    Open().EndingText = before.substr(0, before.size() - rest.size());
    laterEnding = *passes.begin() > 1;
}

void AbcBody::EndMeasure()
{
    if (Open().Events.empty() || music.Measures.size() >= kMostMeasures)
        return;
    music.Measures.emplace_back();
}

/// A repeat without a start goes back to where its section began. The end of a later ending goes
/// back to where the first one did.
void AbcBody::EndRepeat()
{
    const std::size_t next = OpenIndex();
    if (next == 0)
        return;
    if (!laterEnding && sectionStart < next && (sectionStart > 0 || openRepeat))
        music.Measures[sectionStart].StartsRepeat = true;
    music.Measures[next - 1].EndsRepeat = true;
    for (Sounding& note : last)
        note.Tied = false;
    sectionStart = next;
    openRepeat = laterEnding = false;
    repeated = true;
}

/// A start while another one is open ends that one's section too: its end has been forgotten.
void AbcBody::StartRepeat()
{
    if (openRepeat && sectionStart < OpenIndex())
        EndRepeat();
    sectionStart = OpenIndex();
    openRepeat = true;
    laterEnding = false;
    Open().StartsRepeat = true;
}

/// A double bar is where the next repeat goes back to, unless a start is open or nothing has been
/// repeated yet.
void AbcBody::EndSection()
{
    if (OpenIndex() > 0)
        music.Measures[OpenIndex() - 1].DoubleBar = true;
    if (openRepeat || !repeated)
        return;
    sectionStart = OpenIndex();
    laterEnding = false;
}

void AbcBody::TakePart(std::string_view name)
{
    EndMeasure();
    if (name.empty())
        return;
    parts.push_back({name.front(), OpenIndex()});
    // What is to be put in order repeats by itself.
    if (!partOrder.empty() || (!openRepeat && repeated)) {
        sectionStart = OpenIndex();
        openRepeat = laterEnding = false;
    }
}

/// The order that the header tells, with what stands before the first part at the beginning. A
/// part that does not exist is passed over.
void AbcBody::PutPartsInOrder()
{
    std::string written;
    for (const Part& part : parts)
        written += part.Name;
    if (partOrder.empty() || parts.empty() || partOrder == written)
        return;
    for (const auto& [from, to] : PlayingOf(music).GoneBack)
        music.Measures[to].StartsRepeat = true;
    const std::vector<MusicMeasure> all = std::exchange(music.Measures, {});
    const auto append = [&](std::size_t from, std::size_t to) {
        music.Measures.insert(music.Measures.end(), all.begin() + from, all.begin() + to);
    };
    append(0, parts.front().Measure);
    for (const char name : partOrder) {
        const auto part = std::ranges::find(parts, name, &Part::Name);
        if (part == parts.end() || music.Measures.size() > kMostMeasures)
            continue;
        append(part->Measure, part + 1 == parts.end() ? all.size() : (part + 1)->Measure);
    }
    notices.Say("The parts are written out in the order in which they are played.");
}

void AbcBody::Finish()
{
    if (Open().Events.empty())
        music.Measures.pop_back();
    for (Part& part : parts)
        part.Measure = std::min(part.Measure, music.Measures.size());
    PutPartsInOrder();
}

}  // namespace quillon
