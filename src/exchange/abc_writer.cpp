#include "exchange/abc_writer.h"

#include "exchange/abc_text.h"
#include "exchange/written_values.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <iterator>
#include <set>

namespace quillon {

namespace {

constexpr int kUnitHalfTicks = 6;  // L:1/16
constexpr std::size_t kMeasuresInLine = 4;

struct AbcSign {
    std::string_view Code;
    std::string_view Decoration;
};

constexpr AbcSign kSigns[] = {
    {kDs,       "!D.S.!"      },
    {kDc,       "!D.C.!"      },
    {kFine,     "!fine!"      },
    {kCoda,     "!coda!"      },
    {kSign,     "!segno!"     },
    {kDcAlCoda, "!D.C.alcoda!"},
    {kDcAlFine, "!D.C.alfine!"},
    {kDsAlCoda, "!D.S.alcoda!"},
    {kDsAlFine, "!D.S.alfine!"},
};

/// A number of units, as ABC writes it behind a note: "", "3", "/", "3/2".
std::string LengthText(const WrittenValue& value)
{
    const int halfTicks = value.Triplet ? value.HalfTicks * 3 / 2 : value.HalfTicks;
    const int halves = 2 * halfTicks / kUnitHalfTicks;
    if (halves == 2)
        return "";
    if (halves % 2 == 0)
        return std::to_string(halves / 2);
    return halves == 1 ? "/" : std::to_string(halves) + "/2";
}

class AbcWriter {
public:
    AbcWriter(const Music& theMusic, Notices& theNotices) : music(theMusic), notices(theNotices)
    {
        for (const auto& [from, to] : PlayingOf(music).GoneBack)
            starts.insert(static_cast<std::size_t>(to));
    }

    std::string Write()
    {
        WriteHeader();
        for (at = 0; at < music.Measures.size(); ++at)
            WriteMeasure();
        return text + "\n";
    }

private:
    const MusicMeasure& Here() const { return music.Measures[at]; }

    /// A start that nothing goes back to is none: readers would take it for a forgotten end.
    bool StartsRepeat(std::size_t measure) const
    {
        return music.Measures[measure].StartsRepeat && starts.contains(measure);
    }

    /// The bar line behind the measure. Some readers take ||: for a mere double bar, and a double
    /// bar inside a bracket for its end.
    std::string BarText() const
    {
        const bool last = at + 1 == music.Measures.size();
        const bool start = !last && StartsRepeat(at + 1);
        if (Here().EndsRepeat)
            return start ? "::" : ":|";
        if (start)
            return "|:";
        const MusicMeasure* next = last ? nullptr : &music.Measures[at + 1];
        const bool isDouble =
            Here().DoubleBar || (next && (next->BeginDoubleBar || next->StartsRepeat));
        return isDouble && !(inBracket && GoesOn()) ? "||" : "|";
    }

    /// Whether the bracket in hand has its end repeat still before it.
    bool GoesOn() const
    {
        for (std::size_t i = at + 1; i < music.Measures.size(); ++i) {
            if (!music.Measures[i].Endings.empty() || StartsRepeat(i))
                return false;
            if (music.Measures[i].EndsRepeat)
                return true;
        }
        return false;
    }

    void WriteHeader()
    {
        text = "X:1\nT:" + WrittenAbcText(music.Title) + "\n";
        for (const std::string& credit : music.Credits)
            if (!credit.empty())
                text += "C:" + WrittenAbcText(credit) + "\n";
        text += "M:" + SignatureText() + "\nL:1/16\n";
        if (music.Tempo > 0)
            text += "Q:1/4=" + std::to_string(std::lround(music.Tempo)) + "\n";
        text += "K:C\n";
        if (music.Capo > 0)
            text += "%%MIDI transpose " + std::to_string(music.Capo) + "\n";
    }

    std::string SignatureText() const
    {
        return std::to_string(Here().Beats) + "/" + std::to_string(Here().BeatUnit);
    }

    void WriteMeasure()
    {
        const MusicMeasure* before = at > 0 ? &music.Measures[at - 1] : nullptr;
        if (before && (Here().NewLine || at % kMeasuresInLine == 0))
            text += "\n";
        if (!before && StartsRepeat(0))
            text += "|:";
        inBracket = inBracket || !Here().Endings.empty();
        if (!Here().Endings.empty())
            text += "[" + std::to_string(Here().Endings.front()) + " ";
        if (before && (before->Beats != Here().Beats || before->BeatUnit != Here().BeatUnit))
            text += "[M:" + SignatureText() + "]";
        if (!Here().Remark.empty())
            text += "\"^" + WrittenAbcText(Here().Remark) + "\"";
        const auto sign = std::ranges::find(kSigns, Here().Sign, &AbcSign::Code);
        if (sign != std::end(kSigns))
            text += sign->Decoration;
        sharp.fill(false);
        for (std::size_t i = 0; i < Here().Events.size(); ++i)
            WriteEvent(i);
        text += BarText();
        if (Here().EndsRepeat)
            inBracket = false;
    }

    void WriteEvent(std::size_t i)
    {
        const MusicEvent& event = Here().Events[i];
        const WrittenValue& value = WrittenValueOf(event.Length);
        if (i > 0 && Here().Events[i - 1].Length >= kQuarterUnits / 2)
            text += " ";
        if (!event.Chord.empty())
            text += "\"" + WrittenAbcText(event.Chord) + "\"";
        if (event.LeftHand >= '1' && event.LeftHand <= '5')
            text += std::string("!") + event.LeftHand + "!";
        if (value.Triplet && tripletLeft-- == 0)
            text += TripletText(i, value);
        if (event.Notes.size() > 1)
            text += "[";
        for (const MusicNote& note : event.Notes)
            text += PitchText(note) + (event.Notes.size() > 1 && note.Tied ? "-" : "");
        if (event.Notes.empty())
            text += "z";
        if (event.Notes.size() > 1)
            text += "]";
        text += LengthText(value);
        if (event.Notes.size() == 1 && event.Notes[0].Tied)
            text += "-";
    }

    /// The sign before the first of three equal triplet notes, or before a single one.
    std::string TripletText(std::size_t i, const WrittenValue& value)
    {
        const auto& events = Here().Events;
        const bool three = i + 2 < events.size() &&
                           &WrittenValueOf(events[i + 1].Length) == &value &&
                           &WrittenValueOf(events[i + 2].Length) == &value;
        tripletLeft = three ? 2 : 0;
        return three ? "(3" : "(3:2:1";
    }

    /// Sharps are always written, and what a sharp of the bar would change is made natural.
    std::string PitchText(const MusicNote& note)
    {
        const auto [letter, isSharp] = WrittenPitchOf(note.Pitch);
        bool& inBar = sharp[letter - 'A'];
        std::string pitch = isSharp ? "^" : inBar ? "=" : "";
        inBar = isSharp;
        const int octave = static_cast<int>(std::floor((note.Pitch - kMiddleC) / 12.0));
        pitch += octave > 0 ? static_cast<char>(letter - 'A' + 'a') : letter;
        pitch.append(octave > 1 ? octave - 1 : 0, '\'');
        pitch.append(octave < 0 ? -octave : 0, ',');
        if (note.Look != NoteLook::Plain)
            notices.Say("Bends, ghost and muted notes are written as plain ones.");
        if (note.Next != Link::None)
            notices.Say("Slurs, hammer-ons, pull-offs and slides are left out.");
        return pitch;
    }

    const Music& music;
    Notices& notices;
    std::set<std::size_t> starts;  // of repeats, which something goes back to
    std::string text;
    std::size_t at = 0;  // measure
    bool inBracket = false;
    int tripletLeft = 0;
    std::array<bool, 7> sharp{};  // in this bar, by letter
};

}  // namespace

std::string WriteAbc(const Music& music, Notices& notices)
{
    if (music.Measures.empty())
        return {};
    notices.Say("ABC has no strings and frets: they are left out.");
    return AbcWriter(music, notices).Write();
}

}  // namespace quillon
