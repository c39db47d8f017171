#include "exchange/lilypond_writer.h"

#include "exchange/text.h"
#include "exchange/written_values.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <numeric>

namespace quillon {

namespace {

constexpr int kOctaveBelowMiddleC = 48;  // c without a mark

struct SignText {
    std::string_view Code;
    const char* Markup;
};

constexpr SignText kSigns[] = {
    {kSign,     "\\musicglyph \"scripts.segno\""},
    {kCoda,     "\\musicglyph \"scripts.coda\"" },
    {kDs,       "\"D.S.\""                      },
    {kDc,       "\"D.C.\""                      },
    {kFine,     "\"Fine\""                      },
    {kDcAlCoda, "\"D.C. al Coda\""              },
    {kDcAlFine, "\"D.C. al Fine\""              },
    {kDsAlCoda, "\"D.S. al Coda\""              },
    {kDsAlFine, "\"D.S. al Fine\""              },
};

std::string Quoted(std::string_view text)
{
    std::string quoted = "\"";
    for (const char c : Utf8(text)) {
        if (c == '"' || c == '\\')
            quoted += '\\';
        quoted += c;
    }
    return quoted + "\"";
}

std::string PitchText(int pitch)
{
    const auto [letter, sharp] = WrittenPitchOf(pitch);
    std::string text(1, static_cast<char>(letter - 'A' + 'a'));
    text += sharp ? "is" : "";
    const int octave = static_cast<int>(std::floor((pitch - kOctaveBelowMiddleC) / 12.0));
    text.append(std::max(octave, 0), '\'');
    text.append(std::max(-octave, 0), ',');
    return text;
}

std::string FractionText(Units length)
{
    constexpr Units kWholeUnits = 4 * kQuarterUnits;
    const Units common = std::gcd(length, kWholeUnits);
    return std::to_string(length / common) + "/" + std::to_string(kWholeUnits / common);
}

bool Leads(const MusicEvent& event)
{
    return std::ranges::any_of(event.Notes,
                               [](const MusicNote& note) { return note.Next != Link::None; });
}

/// A slide from one note to one note can be drawn; any other way to the next event is a slur.
bool IsGlissando(const MusicEvent& event)
{
    return event.Notes.size() == 1 && event.Notes[0].Next == Link::Slide;
}

/// The measures as notes: of a tablature staff, or, `sounding`, as they sound.
class NotesWriter {
public:
    NotesWriter(const Music& theMusic, bool isSounding) : music(theMusic), sounding(isSounding) {}

    std::string Write()
    {
        for (at = 0; at < music.Measures.size(); ++at)
            WriteMeasure();
        if (!sounding)
            text += RepeatCommands(nullptr) + "  \\bar \"|.\"\n";
        return text;
    }

private:
    const MusicMeasure& Here() const { return music.Measures[at]; }

    void WriteMeasure()
    {
        const MusicMeasure* before = at > 0 ? &music.Measures[at - 1] : nullptr;
        text += "  ";
        if (!before || before->Beats != Here().Beats || before->BeatUnit != Here().BeatUnit) {
            text += "\\time " + std::to_string(Here().Beats) + "/" +
                    std::to_string(Here().BeatUnit) + " ";
            measureLength = 4 * kQuarterUnits * Here().Beats / Here().BeatUnit;
        }
        if (!sounding)
            WriteBoundary(before);
        // A measure that is short or too full keeps its own length.
        if (const Units length = LengthOf(Here()); length > 0 && length != measureLength) {
            text += "\\set Timing.measureLength = #(ly:make-moment " + FractionText(length) + ") ";
            measureLength = length;
        }
        for (std::size_t i = 0; i < Here().Events.size(); ++i)
            WriteEvent(i);
        text += Here().Events.empty() ? "\n" : "|\n";
    }

    /// What stands between two measures.
    void WriteBoundary(const MusicMeasure* before)
    {
        if (before && Here().NewLine)
            text += "\\break ";
        if (before && !before->EndsRepeat && !Here().StartsRepeat &&
            (before->DoubleBar || Here().BeginDoubleBar))
            text += "\\bar \"||\" ";
        text += RepeatCommands(&Here());
    }

    std::string RepeatCommands(const MusicMeasure* next)
    {
        const MusicMeasure* before = at > 0 ? &music.Measures[at - 1] : nullptr;
        std::string commands;
        if (bracket && (!next || before->EndsRepeat || before->DoubleBar || next->StartsRepeat ||
                        next->BeginDoubleBar || !next->Endings.empty())) {
            commands += " (volta #f)";
            bracket = false;
        }
        if (before && before->EndsRepeat)
            commands += " end-repeat";
        if (next && next->StartsRepeat)
            commands += " start-repeat";
        if (next && !next->Endings.empty()) {
            commands += " (volta " + Quoted(next->EndingText) + ")";
            bracket = true;
        }
        return commands.empty() ? ""
                                : "\\set Score.repeatCommands = #'(" + commands.substr(1) + ") ";
    }

    void WriteEvent(std::size_t i)
    {
        const MusicEvent& event = Here().Events[i];
        const WrittenValue& value = WrittenValueOf(event.Length);
        if (value.Triplet && tripletLeft == 0) {
            tripletLeft = TripletLength(i, value);
            text += "\\tuplet 3/2 { ";
        }
        text += NotesText(event, std::to_string(value.Divisor) + (value.Dotted ? "." : ""));
        if (!sounding)
            text += LinksText(event) + MarksText(i);
        text += " ";
        if (value.Triplet && --tripletLeft == 0)
            text += "} ";
        last = &event;
    }

    /// Three equal values stand under one bracket, any other by itself.
    int TripletLength(std::size_t i, const WrittenValue& value) const
    {
        const auto& events = Here().Events;
        const bool three = i + 2 < events.size() &&
                           &WrittenValueOf(events[i + 1].Length) == &value &&
                           &WrittenValueOf(events[i + 2].Length) == &value;
        return three ? 3 : 1;
    }

    std::string NotesText(const MusicEvent& event, const std::string& value) const
    {
        if (event.Notes.empty())
            return "r" + value;
        std::string notes;
        for (const MusicNote& note : event.Notes)
            notes += (notes.empty() ? "" : " ") + NoteText(note);
        return "<" + notes + ">" + value;
    }

    std::string NoteText(const MusicNote& note) const
    {
        const std::string tie = note.Tied ? " ~" : "";
        if (sounding)
            return PitchText(note.Pitch + music.Capo) + tie;
        const char* look = note.Look == NoteLook::Ghost ? "\\parenthesize "
                           : note.Look == NoteLook::Muted || note.Look == NoteLook::Slash
                               ? "\\deadNote "
                               : "";
        return look + PitchText(note.Pitch) + "\\" + std::to_string(note.String) + tie;
    }

    std::string LinksText(const MusicEvent& event) const
    {
        std::string links;
        if (last && Leads(*last) && !IsGlissando(*last))
            links += ")";
        if (IsGlissando(event))
            links += "\\glissando";
        else if (Leads(event))
            links += "(";
        for (const MusicNote& note : event.Notes)
            if (note.Look == NoteLook::Bend || note.Look == NoteLook::Release)
                return links +
                       (note.Look == NoteLook::Bend ? "\\bendAfter #4 " : "\\bendAfter #-4 ");
        return links;
    }

    /// Chord name, hands and the words of the measure.
    std::string MarksText(std::size_t i) const
    {
        const MusicEvent& event = Here().Events[i];
        std::string marks;
        if (!event.Chord.empty())
            marks += "^\\markup \\bold " + Quoted(event.Chord);
        for (const char hand : {event.LeftHand, event.RightHand})
            if (hand != ' ')
                marks += "_\\markup \\tiny " + Quoted(std::string(1, hand));
        const auto sign = std::ranges::find(kSigns, Here().Sign, &SignText::Code);
        if (i == 0 && sign != std::end(kSigns))
            marks += std::string("^\\markup { ") + sign->Markup + " }";
        if (i == 0 && !Here().Remark.empty())
            marks += "^\\markup " + Quoted(Here().Remark);
        return marks;
    }

    const Music& music;
    const bool sounding;
    std::string text;
    std::size_t at = 0;  // measure
    Units measureLength = 0;
    int tripletLeft = 0;
    bool bracket = false;
    const MusicEvent* last = nullptr;
};

std::string HeaderText(const Music& music)
{
    return "\\header {\n  title = " + Quoted(music.Title) +
           "\n  subtitle = " + Quoted(music.Credits[0]) +
           "\n  composer = " + Quoted(music.Credits[1]) + "\n  tagline = ##f\n}\n";
}

std::string TuningText(const Music& music)
{
    std::string pitches;
    for (auto pitch = music.OpenPitches.rbegin(); pitch != music.OpenPitches.rend(); ++pitch)
        pitches += (pitches.empty() ? "" : " ") + PitchText(*pitch);
    return "tuning = \\stringTuning <" + pitches + ">\n";
}

/// Systems are tall with their texts: without more room in its reckoning LilyPond puts too many of
/// them on a page, and says so.
constexpr const char* kPaper = "\\paper { page-breaking-system-system-spacing.padding = 6 }\n";

/// LilyPond 2.24 sometimes fails to lead a slur round the number of a triplet, and reports an
/// error.
constexpr const char* kSlurs = "  \\override TupletNumber.avoid-slur = #'ignore\n";

}  // namespace

std::string WriteLilyPond(const Music& music, Notices&)
{
    const std::string format = music.OpenPitches.size() == 5
                                   ? "\n    tablatureFormat = #fret-number-tablature-format-banjo"
                                   : "";
    const std::string tempo =
        music.Tempo > 0 ? "  \\tempo 4 = " + std::to_string(std::lround(music.Tempo)) + "\n" : "";
    const std::string capo =
        music.Capo > 0 ? "  s1*0^\\markup \"Capo " + std::to_string(music.Capo) + "\"\n" : "";
    return "\\version \"2.24.1\"\n" + HeaderText(music) + kPaper + TuningText(music) +
           "tablature = {\n  \\tabFullNotation \\numericTimeSignature\n" + kSlurs + tempo + capo +
           NotesWriter(music, false).Write() + "}\nsound = {\n" + tempo +
           NotesWriter(WrittenOut(music), true).Write() +
           "}\n\\score {\n  \\new TabStaff \\with {\n    stringTunings = #tuning" + format +
           "\n  } \\tablature\n  \\layout { }\n}\n\\score {\n  \\new Staff \\sound\n  \\midi { "
           "}\n}\n";
}

}  // namespace quillon
