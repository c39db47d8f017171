#include "exchange/musicxml_reader.h"

#include "exchange/second_voice.h"
#include "exchange/text.h"
#include "store/tunings.h"
#include "xml/xml_document.h"

#include <algorithm>
#include <charconv>
#include <iterator>
#include <map>
#include <optional>
#include <utility>

namespace quillon {

namespace {

constexpr int kMostDivisions = 1'000'000;
constexpr int kLongestDuration = 100'000'000;

struct JumpWords {
    std::string_view Words;
    std::string_view Sign;
};

// clang-format off
constexpr JumpWords kJumps[] = {
    {"d.s.", kDs}, {"d.s", kDs}, {"dal segno", kDs},
    {"d.c.", kDc}, {"d.c", kDc}, {"da capo", kDc}, {"fine", kFine},
    {"d.c. al coda", kDcAlCoda}, {"da capo al coda", kDcAlCoda},
    {"d.c. al fine", kDcAlFine}, {"da capo al fine", kDcAlFine},
    {"d.s. al coda", kDsAlCoda}, {"dal segno al coda", kDsAlCoda},
    {"d.s. al fine", kDsAlFine}, {"dal segno al fine", kDsAlFine},
};

struct KindSuffix {
    std::string_view Kind;
    const char* Suffix;
};

constexpr KindSuffix kKinds[] = {
    {"major", ""}, {"minor", "m"}, {"dominant", "7"}, {"major-seventh", "maj7"},
    {"minor-seventh", "m7"}, {"diminished", "dim"}, {"augmented", "+"}, {"major-sixth", "6"},
    {"minor-sixth", "m6"}, {"dominant-ninth", "9"}, {"suspended-fourth", "sus4"},
    {"suspended-second", "sus2"}, {"half-diminished", "m7b5"},
    {"diminished-seventh", "dim7"},
};
// clang-format on

/// From 0 to `highest`; 0 if it is no number.
double NumberIn(std::string_view text, double highest)
{
    double number = 0;
    std::from_chars(text.data(), text.data() + text.size(), number);
    return number > 0 ? std::min(number, highest) : 0;
}

const XmlElement kNothing;

/// The element at the end of a way through first children; an empty one where it breaks off.
const XmlElement& At(const XmlElement& element, std::initializer_list<std::string_view> way)
{
    const XmlElement* at = &element;
    for (const std::string_view name : way)
        if (at)
            at = at->Find(name);
    return at ? *at : kNothing;
}

int PitchOf(const XmlElement& pitch, const char* step, const char* alter, const char* octave)
{
    constexpr std::string_view kSteps = "C D EF G A B";
    const std::string_view letter = Trimmed(pitch.TextOf(step));
    const std::size_t semitone = letter.empty() ? 0 : kSteps.find(letter[0]);
    return 12 * (std::clamp(pitch.NumberOf(octave, 4), -1, 9) + 1) +
           (semitone == std::string_view::npos ? 0 : static_cast<int>(semitone)) +
           std::clamp(pitch.NumberOf(alter, 0), -2, 2);
}

/// Whether an element of that name and type stands among `elements`.
bool Has(const XmlElement& elements, std::string_view name, std::string_view type)
{
    return std::ranges::any_of(elements.Children, [&](const XmlElement& child) {
        return child.Name == name && child.Attribute("type") == type;
    });
}

/// A part of a score: its measures, in order.
using PartMeasures = std::vector<const XmlElement*>;

/// The parts in the order of the document, whichever way it is told.
std::vector<PartMeasures> PartsOf(const XmlElement& score)
{
    const bool timewise = score.Name == "score-timewise";
    std::vector<PartMeasures> parts;
    std::map<std::string_view, std::size_t> ids;
    for (const XmlElement& outer : score.Children) {
        if (outer.Name != (timewise ? "measure" : "part"))
            continue;
        for (const XmlElement& inner : outer.Children) {
            if (inner.Name != (timewise ? "part" : "measure"))
                continue;
            const auto [id, isNew] =
                ids.try_emplace((timewise ? inner : outer).Attribute("id"), parts.size());
            if (isNew)
                parts.emplace_back();
            parts[id->second].push_back(&inner);
        }
    }
    return parts;
}

/// The staff with tablature; none if the part has none.
std::optional<std::string> TabStaffOf(const PartMeasures& part)
{
    for (const XmlElement* measure : part)
        for (const XmlElement& attributes : measure->Children)
            for (const XmlElement& clef : attributes.Children)
                if (clef.Name == "clef" && Trimmed(clef.TextOf("sign")) == "TAB")
                    return std::string(clef.Attribute("number"));
    return std::nullopt;
}

class PartReader {
public:
    PartReader(FoundTune& theFound, std::optional<std::string> tabStaff)
        : found(theFound), music(theFound.Tune), staff(std::move(tabStaff))
    {
    }

    void Read(const PartMeasures& part)
    {
        for (const XmlElement* measure : part) {
            if (events >= kMostEvents)
                break;
            ReadMeasure(*measure);
        }
        if (music.OpenPitches.empty())
            FindTuning();
    }

private:
    MusicMeasure& Here() { return music.Measures.back(); }

    void ReadMeasure(const XmlElement& measure)
    {
        music.Measures.emplace_back();
        at = filled = 0;
        for (const XmlElement& element : measure.Children) {
            if (element.Name == "attributes")
                ReadAttributes(element);
            else if (element.Name == "note")
                ReadNote(element);
            else if (element.Name == "backup")
                at = std::max<Units>(0, at - DurationOf(element));
            else if (element.Name == "forward")
                at += DurationOf(element);
            else if (element.Name == "harmony")
                chord = ChordOf(element);
            else if (element.Name == "direction")
                ReadDirection(element);
            else if (element.Name == "barline")
                ReadBar(element);
            else if (element.Name == "print" && element.Attribute("new-system") == "yes")
                Here().NewLine = true;
            else if (element.Name == "sound")
                ReadSound(element);
        }
        AddOtherVoices();
        if (!hasTime)
            TakeTimeFromLength();
        Here().Beats = beats;
        Here().BeatUnit = beatUnit;
    }

    void AddOtherVoices()
    {
        for (const auto& [begin, event] : otherVoices)
            if (!AddSecondVoice(Here(), begin, event))
                found.Said.Count("A note of a second voice is left out.",
                                 "notes of second voices are left out.",
                                 static_cast<int>(event.Notes.size()));
        otherVoices.clear();
    }

    /// A measure without a signature has that of its length, if there is one.
    void TakeTimeFromLength()
    {
        constexpr Units kEighth = kQuarterUnits / 2;
        const Units eighths = LengthOf(Here()) / kEighth;
        if (eighths == 0 || eighths > 64 || LengthOf(Here()) % kEighth != 0)
            return;
        beatUnit = eighths % 2 == 0 ? 4 : 8;
        beats = static_cast<int>(eighths) * beatUnit / 8;
    }

    void ReadAttributes(const XmlElement& attributes)
    {
        divisions = std::clamp(attributes.NumberOf("divisions", divisions), 1, kMostDivisions);
        if (const XmlElement* time = attributes.Find("time")) {
            hasTime = time->Find("beats") != nullptr;
            beats = std::clamp(time->NumberOf("beats", beats), 1, 64);
            const int unit = time->NumberOf("beat-type", beatUnit);
            beatUnit = unit == 1 || unit == 2 || unit == 8 || unit == 16 || unit == 32 ? unit : 4;
        }
        for (const XmlElement& details : attributes.Children)
            if (details.Name == "staff-details" && details.Attribute("number") == StaffNumber())
                ReadStaff(details);
        if (const XmlElement* transpose = attributes.Find("transpose"))
            transposition = std::clamp(transpose->NumberOf("chromatic", 0) +
                                           12 * transpose->NumberOf("octave-change", 0),
                                       -48, 48);
    }

    std::string_view StaffNumber() const { return staff ? std::string_view(*staff) : ""; }

    /// Line 1 is the lowest string.
    void ReadStaff(const XmlElement& details)
    {
        std::vector<int> pitches;
        for (const XmlElement& tuning : details.Children)
            if (tuning.Name == "staff-tuning")
                pitches.insert(pitches.begin(),
                               PitchOf(tuning, "tuning-step", "tuning-alter", "tuning-octave"));
        if (pitches.size() >= 4 && pitches.size() <= 6)
            music.OpenPitches = pitches;
        music.Capo = std::clamp(details.NumberOf("capo", 0), 0, 12);
    }

    Units DurationOf(const XmlElement& element) const
    {
        const Units duration = std::clamp(element.NumberOf("duration", 0), 0, kLongestDuration);
        return std::min(duration * kQuarterUnits / divisions, kLongestNote);
    }

    void ReadNote(const XmlElement& note)
    {
        if (note.Find("grace")) {
            found.Said.Count("A grace note is left out.", "grace notes are left out.");
            return;
        }
        const Units length = DurationOf(note);
        const bool inChord = note.Find("chord") != nullptr;
        if (!inChord)
            at += length;
        if (!IsOnStaff(note) || length == 0)
            return;
        if (note.Find("lyric"))
            found.Said.Say("The words under the notes are left out.");
        if (!IsOfFirstVoice(note)) {
            ReadOtherVoice(note, at - length, length, inChord);
            return;
        }
        if (!inChord)
            BeginEvent(at - length, length);
        else if (Here().Events.empty() || at != filled)
            return;
        if (note.Find("pitch"))
            AddNote(note, Here().Events.back());
    }

    /// Of a part without tablature the first staff is read.
    bool IsOnStaff(const XmlElement& note)
    {
        const std::string name(Trimmed(note.TextOf("staff")));
        if (staff)
            return staff->empty() || name.empty() || name == *staff;
        if (!firstStaff)
            firstStaff = name;
        if (name != *firstStaff)
            found.Said.Say("Only the first staff is read.");
        return name == *firstStaff;
    }

    bool IsOfFirstVoice(const XmlElement& note)
    {
        const std::string name(Trimmed(note.TextOf("voice")));
        if (!voice)
            voice = name;
        return name == *voice;
    }

    void ReadOtherVoice(const XmlElement& note, Units begin, Units length, bool inChord)
    {
        if (!note.Find("pitch"))
            return;
        if (!inChord || otherVoices.empty()) {
            otherVoices.emplace_back(begin, MusicEvent()).second.Length = length;
            ++events;
        }
        AddNote(note, otherVoices.back().second);
    }

    void BeginEvent(Units begin, Units length)
    {
        if (begin > filled)
            Here().Events.emplace_back().Length = begin - filled;
        filled = begin + length;
        MusicEvent& event = Here().Events.emplace_back();
        event.Length = length;
        event.Chord = std::exchange(chord, {});
        ++events;
    }

    void AddNote(const XmlElement& element, MusicEvent& event)
    {
        const XmlElement& notations = At(element, {"notations"});
        const XmlElement& technical = At(notations, {"technical"});
        MusicNote note;
        note.Pitch = PitchOf(*element.Find("pitch"), "step", "alter", "octave");
        ReadPlace(technical, note);
        if (note.String == 0)
            note.Pitch += transposition;
        note.Tied = Has(notations, "tied", "start") || Has(element, "tie", "start");
        if (Has(notations, "slide", "start") || Has(notations, "glissando", "start"))
            note.Next = Link::Slide;
        else if (Has(technical, "hammer-on", "start") || Has(technical, "pull-off", "start"))
            note.Next = Link::Hammer;
        else if (Has(notations, "slur", "start"))
            note.Next = Link::Slur;
        note.Look = LookOf(element, technical);
        event.Notes.push_back(note);
        ReadHand(technical, "fingering", event.LeftHand);
        ReadHand(technical, "pluck", event.RightHand);
    }

    /// String and fret. A fret of the short string may be counted from its own nut.
    void ReadPlace(const XmlElement& technical, MusicNote& note) const
    {
        const int string = technical.NumberOf("string", 0);
        const int fret = technical.NumberOf("fret", -1);
        const int strings = static_cast<int>(music.OpenPitches.size());
        if (string < 1 || fret < 0 || fret > 99 || string > (strings > 0 ? strings : 6))
            return;
        note.String = string;
        note.Fret = fret;
        const bool fromOwnNut =
            strings == 5 && string == 5 && fret > 0 && music.OpenPitches[4] + fret == note.Pitch;
        if (fromOwnNut)
            note.Fret += kShortStringFret;
    }

    /// Strings and frets without a word of their tuning: it is the first in which they have their
    /// pitches. If there is none, the pitches alone count.
    void FindTuning()
    {
        std::vector<MusicNote*> onStrings;
        for (MusicMeasure& measure : music.Measures)
            for (MusicEvent& event : measure.Events)
                for (MusicNote& note : event.Notes)
                    if (note.String > 0)
                        onStrings.push_back(&note);
        if (onStrings.empty())
            return;
        for (const int strings : {6, 5, 4})
            for (const TuningRecord& tuning : DefaultTunings(strings))
                if (std::ranges::all_of(onStrings, [&](const MusicNote* note) {
                        return Fits(*note, tuning, strings);
                    })) {
                    for (int s = 1; s <= strings; ++s)
                        music.OpenPitches.push_back(tuning.Pitch(s));
                    return;
                }
        for (MusicNote* note : onStrings) {
            note->String = note->Fret = 0;
            note->Pitch += transposition;
        }
    }

    bool Fits(const MusicNote& note, const TuningRecord& tuning, int strings) const
    {
        if (note.String > strings)
            return false;
        const int pitch =
            tuning.Pitch(note.String) + note.Fret -
            (strings == 5 && note.String == 5 && note.Fret > 0 ? kShortStringFret : 0);
        return pitch == note.Pitch || pitch == note.Pitch + transposition;
    }

    static NoteLook LookOf(const XmlElement& note, const XmlElement& technical)
    {
        if (const XmlElement* bend = technical.Find("bend"))
            return bend->Find("release") ? NoteLook::Release : NoteLook::Bend;
        const XmlElement& head = At(note, {"notehead"});
        if (head.Attribute("parentheses") == "yes")
            return NoteLook::Ghost;
        const std::string_view text = Trimmed(head.Text);
        return text == "x" ? NoteLook::Muted : text == "slash" ? NoteLook::Slash : NoteLook::Plain;
    }

    static void ReadHand(const XmlElement& technical, std::string_view name, char& hand)
    {
        const std::string text = TextForTable(technical.TextOf(name));
        if (!text.empty())
            hand = text[0];
    }

    static std::string ChordOf(const XmlElement& harmony)
    {
        if (const XmlElement* function = harmony.Find("function"))
            return TextForTable(function->Text);
        const XmlElement& root = At(harmony, {"root"});
        std::string name = TextForTable(root.TextOf("root-step"));
        const int alter = root.NumberOf("root-alter", 0);
        name += alter > 0 ? "#" : alter < 0 ? "b" : "";
        const XmlElement& kind = At(harmony, {"kind"});
        const auto known = std::ranges::find(kKinds, Trimmed(kind.Text), &KindSuffix::Kind);
        if (!kind.Attribute("text").empty())
            name += TextForTable(kind.Attribute("text"));
        else if (known != std::end(kKinds))
            name += known->Suffix;
        if (const XmlElement* bass = harmony.Find("bass"))
            name += "/" + TextForTable(bass->TextOf("bass-step"));
        return name;
    }

    void ReadDirection(const XmlElement& direction)
    {
        for (const XmlElement& type : direction.Children) {
            if (type.Name == "sound")
                ReadSound(type);
            if (type.Name != "direction-type")
                continue;
            for (const XmlElement& content : type.Children)
                ReadDirectionType(content);
        }
    }

    void ReadDirectionType(const XmlElement& content)
    {
        if (content.Name == "segno")
            Here().Sign = kSign;
        else if (content.Name == "coda")
            Here().Sign = kCoda;
        else if (content.Name == "words")
            ReadWords(content.Text);
    }

    /// A blank before the words says that nobody is to follow them.
    void ReadWords(const std::string& words)
    {
        const std::string text = TextForTable(words);
        const std::string lower = words.starts_with(' ') ? "" : Lowered(text);
        const auto jump = std::ranges::find(kJumps, lower, &JumpWords::Words);
        if (jump != std::end(kJumps))
            Here().Sign = jump->Sign;
        else if (lower == "to coda")
            Here().Remark = "/" + text;
        else if (Here().Remark.empty())
            Here().Remark = text;
    }

    void ReadSound(const XmlElement& sound)
    {
        const std::string tempo(sound.Attribute("tempo"));
        if (music.Tempo == 0 && !tempo.empty() && tempo.size() < 10)
            music.Tempo = NumberIn(tempo, 1000);
    }

    void ReadBar(const XmlElement& bar)
    {
        const bool left = bar.Attribute("location") == "left";
        const XmlElement* repeat = bar.Find("repeat");
        const std::string_view style = Trimmed(bar.TextOf("bar-style"));
        if (repeat)
            (repeat->Attribute("direction") == "forward" ? Here().StartsRepeat
                                                         : Here().EndsRepeat) = true;
        else if (style == "light-light" || style == "light-heavy" || style == "heavy-light")
            (left ? Here().BeginDoubleBar : Here().DoubleBar) = true;
        const XmlElement* ending = bar.Find("ending");
        if (ending && ending->Attribute("type") == "start")
            ReadEnding(*ending);
    }

    void ReadEnding(const XmlElement& ending)
    {
        constexpr int kHighestEnding = 20;
        int number = 0;
        for (const char c : std::string(ending.Attribute("number")) + ",") {
            if (c >= '0' && c <= '9') {
                number = std::min(10 * number + (c - '0'), kHighestEnding);
            } else if (number > 0) {
                Here().Endings.push_back(number);
                number = 0;
            }
        }
        const std::string text = TextForTable(ending.Text);
        Here().EndingText = text.empty() ? TextForTable(ending.Attribute("number")) : text;
    }

    FoundTune& found;
    Music& music;
    std::optional<std::string> staff;  // number of the one with tablature
    std::optional<std::string> firstStaff;
    std::optional<std::string> voice;
    std::vector<std::pair<Units, MusicEvent>> otherVoices;  // of the measure, with their beginnings
    bool hasTime = false;
    int divisions = 1;
    int beats = 4;
    int beatUnit = 4;
    int transposition = 0;
    Units at = 0;      // in the measure
    Units filled = 0;  // by events
    std::size_t events = 0;
    std::string chord;
};

void ReadHeader(const XmlElement& score, Music& music)
{
    music.Title = TextForTable(At(score, {"work", "work-title"}).Text);
    if (music.Title.empty())
        music.Title = TextForTable(score.TextOf("movement-title"));
    const XmlElement& identification = At(score, {"identification"});
    for (const XmlElement& creator : identification.Children)
        if (creator.Name == "creator") {
            std::string& credit = music.Credits[creator.Attribute("type") == "lyricist" ? 1 : 0];
            if (credit.empty())
                credit = TextForTable(creator.Text);
        }
    for (const XmlElement& field : At(identification, {"miscellaneous"}).Children)
        if (field.Attribute("name") == "quillon-tuning")
            music.TuningRow = static_cast<int>(NumberIn(Trimmed(field.Text), 50));
}

/// The first part with tablature, or the first of all.
FoundTune ReadScore(const XmlElement& score)
{
    const std::vector<PartMeasures> parts = PartsOf(score);
    if (parts.empty())
        throw ExchangeError("There is no part in the score; choose a file with music in it.");
    auto chosen = std::ranges::find_if(
        parts, [](const PartMeasures& part) { return TabStaffOf(part).has_value(); });
    if (chosen == parts.end())
        chosen = parts.begin();
    FoundTune found;
    if (parts.size() > 1)
        found.Said.Say("Only one part is read: number " +
                       std::to_string(chosen - parts.begin() + 1) + " of " +
                       std::to_string(parts.size()) + ".");
    ReadHeader(score, found.Tune);
    PartReader(found, TabStaffOf(*chosen)).Read(*chosen);
    return found;
}

}  // namespace

std::vector<FoundTune> ReadMusicXml(std::string_view bytes)
{
    try {
        const XmlElement score = ParseXml(bytes);
        if (score.Name != "score-partwise" && score.Name != "score-timewise")
            throw ExchangeError("It is XML, but no MusicXML score; export one from the program "
                                "that it comes from.");
        return {ReadScore(score)};
    } catch (const XmlError& error) {
        throw ExchangeError(std::string(error.what()) + " Export it again from its program.");
    }
}

}  // namespace quillon
