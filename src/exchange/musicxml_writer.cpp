#include "exchange/musicxml_writer.h"

#include "exchange/text.h"
#include "exchange/written_values.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <iterator>
#include <optional>

namespace quillon {

namespace {

constexpr Units kDivisionUnits = kQuarterUnits / 24;  // half a tick

constexpr const char* kProlog =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
    "<!DOCTYPE score-partwise PUBLIC \"-//Recordare//DTD MusicXML 4.0 Partwise//EN\" "
    "\"http://www.musicxml.org/dtds/partwise.dtd\">\n";

struct Instrument {
    std::size_t Strings;
    const char* Name;
    int Program;  // General MIDI, from 1
};

constexpr Instrument kInstruments[] = {
    {6, "Guitar",   26 },
    {5, "Banjo",    106},
    {4, "Mandolin", 26 },
};

struct JumpSign {
    std::string_view Code;
    const char* Words;  // as other programs understand them
    const char* Sound;  // attribute; "" where the tune does not follow the sign
};

constexpr JumpSign kJumps[] = {
    {kDs,       "D.S. ",        ""                  },
    {kDc,       "D.C. ",        ""                  },
    {kFine,     "Fine",         "fine=\"yes\""      },
    {kDcAlCoda, "D.C. al Coda", "dacapo=\"yes\""    },
    {kDcAlFine, "D.C. al Fine", "dacapo=\"yes\""    },
    {kDsAlCoda, "D.S. al Coda", "dalsegno=\"segno\""},
    {kDsAlFine, "D.S. al Fine", "dalsegno=\"segno\""},
};

/// Words that other programs follow wherever they stand. With a blank before them they do not.
constexpr std::string_view kFollowedWords[] = {
    "to coda",      "fine",
    "d.c.",         "d.c",
    "dc",           "d. c.",
    "da capo",      "d.s.",
    "d.s",          "ds",
    "d. s.",        "dal segno",
    "d.c. al fine", "da capo al fine",
    "d.c. al coda", "da capo al coda",
    "d.s. al fine", "dal segno al fine",
    "d.s. al coda", "dal segno al coda",
};

struct ChordKind {
    std::string_view Suffix;
    const char* Kind;
};

// clang-format off
constexpr ChordKind kChordKinds[] = {
    {"", "major"}, {"m", "minor"}, {"7", "dominant"}, {"maj7", "major-seventh"},
    {"m7", "minor-seventh"}, {"dim", "diminished"}, {"+", "augmented"}, {"6", "major-sixth"},
    {"m6", "minor-sixth"}, {"9", "dominant-ninth"}, {"sus4", "suspended-fourth"},
    {"sus2", "suspended-second"}, {"m7b5", "half-diminished"}, {"dim7", "diminished-seventh"},
};
// clang-format on

std::string Escaped(std::string_view text)
{
    std::string escaped;
    for (const char c : Utf8(text)) {
        if (c == '&')
            escaped += "&amp;";
        else if (c == '<')
            escaped += "&lt;";
        else if (c == '>')
            escaped += "&gt;";
        else if (c == '"')
            escaped += "&quot;";
        else if (static_cast<unsigned char>(c) >= ' ')
            escaped += c;
    }
    return escaped;
}

std::string Element(const std::string& name, std::string_view content,
                    const std::string& attributes = {})
{
    return "<" + name + (attributes.empty() ? "" : " " + attributes) + ">" + std::string(content) +
           "</" + name + ">";
}

std::string Element(const std::string& name, long number)
{
    return Element(name, std::to_string(number));
}

std::string Empty(const std::string& name, const std::string& attributes = {})
{
    return "<" + name + (attributes.empty() ? "" : " " + attributes) + "/>";
}

/// Octaves are 0 to 9. What lies beyond, such as fret 99, can only be read by its string and fret.
int OctaveOf(int pitch)
{
    return std::clamp(static_cast<int>(std::floor((pitch - kMiddleC) / 12.0)) + 4, 0, 9);
}

std::string PitchText(int pitch)
{
    const auto [letter, sharp] = WrittenPitchOf(pitch);
    return Element("pitch", Element("step", std::string(1, letter)) +
                                (sharp ? Element("alter", 1) : "") +
                                Element("octave", OctaveOf(pitch)));
}

/// A chord by its name as it stands.
std::string NamedHarmony(std::string_view name)
{
    return Element("harmony", Element("function", Escaped(name)) + Element("kind", "none"));
}

/// A chord's name taken apart, as other programs want it.
std::string HarmonyText(std::string_view name)
{
    if (name.empty() || name[0] < 'A' || name[0] > 'G')
        return NamedHarmony(name);
    std::string root = Element("root-step", name.substr(0, 1));
    std::string_view suffix = name.substr(1);
    if (suffix.starts_with('#') || suffix.starts_with('b')) {
        root += Element("root-alter", suffix[0] == '#' ? 1 : -1);
        suffix.remove_prefix(1);
    }
    const auto kind = std::ranges::find(kChordKinds, suffix, &ChordKind::Suffix);
    if (kind == std::end(kChordKinds))
        return NamedHarmony(name);
    return Element("harmony", Element("root", root) +
                                  Element("kind", kind->Kind, "text=\"" + Escaped(suffix) + "\""));
}

std::string Direction(const std::string& type, const std::string& sound = {})
{
    return Element("direction",
                   Element("direction-type", type) + (sound.empty() ? "" : Empty("sound", sound)),
                   "placement=\"above\"");
}

std::string Words(std::string_view text, const std::string& sound = {})
{
    return Direction(Element("words", Escaped(text), "xml:space=\"preserve\""), sound);
}

bool IsFollowed(std::string_view words)
{
    return std::ranges::count(kFollowedWords, Lowered(words)) > 0;
}

const MusicNote* NoteOn(const MusicEvent& event, int string)
{
    const auto found = std::ranges::find(event.Notes, string, &MusicNote::String);
    return found == event.Notes.end() ? nullptr : &*found;
}

class ScoreWriter {
public:
    explicit ScoreWriter(const Music& theMusic) : music(theMusic) {}

    std::string Write()
    {
        text = kProlog;
        text += "<score-partwise version=\"4.0\">\n";
        WriteHeader();
        text += "<part id=\"P1\">\n";
        for (at = 0; at < music.Measures.size(); ++at)
            WriteMeasure();
        return text + "</part>\n</score-partwise>\n";
    }

private:
    const MusicMeasure& Here() const { return music.Measures[at]; }

    const MusicMeasure* Next() const
    {
        return at + 1 < music.Measures.size() ? &music.Measures[at + 1] : nullptr;
    }

    void Line(const std::string& line) { text += line + "\n"; }

    const Instrument& TheInstrument() const
    {
        const auto found =
            std::ranges::find(kInstruments, music.OpenPitches.size(), &Instrument::Strings);
        return found == std::end(kInstruments) ? kInstruments[0] : *found;
    }

    void WriteHeader()
    {
        Line(Element("work", Element("work-title", Escaped(music.Title))));
        std::string identification;
        constexpr const char* kCreators[] = {"type=\"composer\"", "type=\"lyricist\""};
        for (int i = 0; i < 2; ++i)
            if (!music.Credits[i].empty())
                identification += Element("creator", Escaped(music.Credits[i]), kCreators[i]);
        if (music.TuningRow)
            identification += Element("miscellaneous", Element("miscellaneous-field",
                                                               std::to_string(*music.TuningRow),
                                                               "name=\"quillon-tuning\""));
        Line(Element("identification", identification));
        const Instrument& instrument = TheInstrument();
        const std::string part =
            Element("part-name", instrument.Name) +
            Element("score-instrument", Element("instrument-name", instrument.Name), "id=\"I1\"") +
            Element("midi-instrument",
                    Element("midi-channel", 1) + Element("midi-program", instrument.Program),
                    "id=\"I1\"");
        Line(Element("part-list", Element("score-part", part, "id=\"P1\"")));
    }

    void WriteMeasure()
    {
        Line("<measure number=\"" + std::to_string(at + 1) + "\">");
        if (Here().NewLine)
            Line(Empty("print", "new-system=\"yes\""));
        WriteAttributes();
        WriteLeftBar();
        WriteSigns();
        for (std::size_t i = 0; i < Here().Events.size(); ++i)
            WriteEvent(i);
        WriteJump();
        WriteRightBar();
        Line("</measure>");
    }

    void WriteAttributes()
    {
        const MusicMeasure* before = at > 0 ? &music.Measures[at - 1] : nullptr;
        if (before && before->Beats == Here().Beats && before->BeatUnit == Here().BeatUnit)
            return;
        const std::string time =
            Element("time", Element("beats", Here().Beats) + Element("beat-type", Here().BeatUnit));
        if (before)
            Line(Element("attributes", time));
        else
            Line(Element("attributes",
                         Element("divisions", kQuarterUnits / kDivisionUnits) +
                             Element("key", Element("fifths", 0)) + time +
                             Element("clef", Element("sign", "TAB") + Element("line", 5)) +
                             StaffDetails() + Transposition()));
    }

    std::string StaffDetails() const
    {
        std::string details = Element("staff-lines", static_cast<long>(music.OpenPitches.size()));
        int line = 0;
        for (auto pitch = music.OpenPitches.rbegin(); pitch != music.OpenPitches.rend(); ++pitch) {
            const auto [letter, sharp] = WrittenPitchOf(*pitch);
            details += Element("staff-tuning",
                               Element("tuning-step", std::string(1, letter)) +
                                   (sharp ? Element("tuning-alter", 1) : "") +
                                   Element("tuning-octave", OctaveOf(*pitch)),
                               "line=\"" + std::to_string(++line) + "\"");
        }
        if (music.Capo > 0)
            details += Element("capo", music.Capo);
        return Element("staff-details", details);
    }

    std::string Transposition() const
    {
        if (music.Capo == 0)
            return {};
        return Element("transpose", Element("diatonic", std::lround(music.Capo * 7 / 12.0)) +
                                        Element("chromatic", music.Capo));
    }

    void WriteLeftBar()
    {
        std::string bar;
        if (!Here().Endings.empty())
            ending = at;
        if (Here().StartsRepeat || Here().BeginDoubleBar)
            bar += Element("bar-style", "heavy-light");
        if (!Here().Endings.empty())
            bar +=
                Element("ending", Escaped(Here().EndingText), EndingNumber() + " type=\"start\"");
        if (Here().StartsRepeat)
            bar += Empty("repeat", "direction=\"forward\"");
        if (!bar.empty())
            Line(Element("barline", bar, "location=\"left\""));
    }

    std::string EndingNumber() const
    {
        return "number=\"" + std::to_string(music.Measures[*ending].Endings.front()) + "\"";
    }

    /// A bracket ends with a bar sign, or before another one.
    bool EndsBracket() const
    {
        const MusicMeasure* next = Next();
        return ending && (Here().EndsRepeat || Here().DoubleBar || !next || next->StartsRepeat ||
                          next->BeginDoubleBar || !next->Endings.empty());
    }

    void WriteRightBar()
    {
        std::string bar;
        if (Here().EndsRepeat)
            bar += Element("bar-style", "light-heavy");
        else if (Here().DoubleBar)
            bar += Element("bar-style", Next() ? "light-light" : "light-heavy");
        if (EndsBracket()) {
            const char* type = Here().EndsRepeat ? " type=\"stop\"" : " type=\"discontinue\"";
            bar += Empty("ending", EndingNumber() + type);
            ending.reset();
        }
        if (Here().EndsRepeat)
            bar += Empty("repeat", "direction=\"backward\"");
        if (!bar.empty())
            Line(Element("barline", bar, "location=\"right\""));
    }

    void WriteSigns()
    {
        if (Here().Sign == kSign)
            Line(Direction(Empty("segno"), "segno=\"segno\""));
        if (Here().Sign == kCoda)
            Line(Direction(Empty("coda"), "coda=\"coda\""));
        if (at == 0 && music.Tempo > 0) {
            const std::string tempo = std::to_string(std::lround(music.Tempo));
            Line(Direction(Element("metronome",
                                   Element("beat-unit", "quarter") + Element("per-minute", tempo)),
                           "tempo=\"" + tempo + "\""));
        }
        const std::string& remark = Here().Remark;
        if (!remark.empty() && !LeadsToCoda(Here()))
            Line(Words((IsFollowed(remark) ? " " : "") + remark));
    }

    void WriteJump()
    {
        if (LeadsToCoda(Here()))
            Line(Words(Here().Remark.substr(1), "tocoda=\"coda\""));
        const auto jump = std::ranges::find(kJumps, Here().Sign, &JumpSign::Code);
        if (jump != std::end(kJumps))
            Line(Words(jump->Words, jump->Sound));
    }

    void WriteEvent(std::size_t i)
    {
        const MusicEvent& event = Here().Events[i];
        if (!event.Chord.empty())
            Line(HarmonyText(event.Chord));
        if (event.Notes.empty())
            Line(Element("note", Empty("rest") + DurationText(event) + ValueText(event, {})));
        for (std::size_t n = 0; n < event.Notes.size(); ++n)
            WriteNote(i, n);
        lastEvent = &event;
    }

    static std::string DurationText(const MusicEvent& event)
    {
        return Element("duration", event.Length / kDivisionUnits);
    }

    static std::string ValueText(const MusicEvent& event, const std::string& ties)
    {
        const WrittenValue& value = WrittenValueOf(event.Length);
        return ties + Element("voice", 1) + Element("type", value.Type) +
               (value.Dotted ? Empty("dot") : "") +
               (value.Triplet ? Element("time-modification",
                                        Element("actual-notes", 3) + Element("normal-notes", 2))
                              : "");
    }

    void WriteNote(std::size_t i, std::size_t n)
    {
        const MusicEvent& event = Here().Events[i];
        const MusicNote& note = event.Notes[n];
        const MusicNote* old = lastEvent ? NoteOn(*lastEvent, note.String) : nullptr;
        const bool tiedTo = old && old->Tied && old->Fret == note.Fret;
        const std::string ties = (tiedTo ? Empty("tie", "type=\"stop\"") : "") +
                                 (note.Tied ? Empty("tie", "type=\"start\"") : "");
        std::string notations = (tiedTo ? Empty("tied", "type=\"stop\"") : "") +
                                (note.Tied ? Empty("tied", "type=\"start\"") : "");
        std::string technical = n == 0 ? HandsText(event) : "";
        if (old)
            AddLink(old->Next, *old, note, "stop", notations, technical);
        if (const MusicNote* next = NextOn(i, note.String))
            AddLink(note.Next, note, *next, "start", notations, technical);
        technical += Element("string", note.String) + Element("fret", note.Fret) + BendText(note);
        Line(
            Element("note", (n > 0 ? Empty("chord") : "") + PitchText(note.Pitch) +
                                DurationText(event) + ValueText(event, ties) + HeadText(note) +
                                Element("notations", notations + Element("technical", technical))));
    }

    const MusicNote* NextOn(std::size_t i, int string) const
    {
        if (i + 1 < Here().Events.size())
            return NoteOn(Here().Events[i + 1], string);
        const MusicMeasure* next = Next();
        return next && !next->Events.empty() ? NoteOn(next->Events.front(), string) : nullptr;
    }

    /// One end of what leads from a note to the next one; the number is that of the string.
    static void AddLink(Link link, const MusicNote& from, const MusicNote& to, const char* type,
                        std::string& notations, std::string& technical)
    {
        const std::string attributes =
            "number=\"" + std::to_string(from.String) + "\" type=\"" + type + "\"";
        if (link == Link::Slide)
            notations += Empty("slide", attributes);
        if (link == Link::Slur || link == Link::Hammer)
            notations += Empty("slur", attributes);
        if (link == Link::Hammer)
            technical += Empty(to.Fret < from.Fret ? "pull-off" : "hammer-on", attributes);
    }

    static std::string HandsText(const MusicEvent& event)
    {
        const auto hand = [](char letter, const char* name) {
            return letter == ' ' ? "" : Element(name, Escaped(std::string_view(&letter, 1)));
        };
        return hand(event.LeftHand, "fingering") + hand(event.RightHand, "pluck");
    }

    static std::string BendText(const MusicNote& note)
    {
        if (note.Look == NoteLook::Bend)
            return Element("bend", Element("bend-alter", 2));
        if (note.Look == NoteLook::Release)
            return Element("bend", Element("bend-alter", -2) + Empty("release"));
        return {};
    }

    static std::string HeadText(const MusicNote& note)
    {
        switch (note.Look) {
        case NoteLook::Ghost:
            return Element("notehead", "normal", "parentheses=\"yes\"");
        case NoteLook::Muted:
            return Element("notehead", "x");
        case NoteLook::Slash:
            return Element("notehead", "slash");
        default:
            return {};
        }
    }

    const Music& music;
    std::string text;
    std::size_t at = 0;                 // measure
    std::optional<std::size_t> ending;  // measure of the bracket that is open
    const MusicEvent* lastEvent = nullptr;
};

}  // namespace

std::string WriteMusicXml(const Music& music, Notices&)
{
    if (!music.Measures.empty())
        return ScoreWriter(music).Write();
    Music silence = music;  // a part has a measure
    silence.Measures.emplace_back().Events.emplace_back().Length = 4 * kQuarterUnits;
    return ScoreWriter(silence).Write();
}

}  // namespace quillon
