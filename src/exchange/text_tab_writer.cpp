#include "exchange/text_tab_writer.h"

#include "exchange/text.h"
#include "exchange/written_values.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace quillon {

namespace {

constexpr std::size_t kColumns = 80;

/// Rows above the strings.
enum Row : std::size_t { kSigns, kChords, kRhythm, kFirstString };

struct SignWords {
    std::string_view Code;
    const char* Words;
};

constexpr SignWords kWords[] = {
    {kDs,       "D.S."        },
    {kDc,       "D.C."        },
    {kFine,     "Fine"        },
    {kCoda,     "Coda"        },
    {kSign,     "Segno"       },
    {kDcAlCoda, "D.C. al Coda"},
    {kDcAlFine, "D.C. al Fine"},
    {kDsAlCoda, "D.S. al Coda"},
    {kDsAlFine, "D.S. al Fine"},
};

/// "e", "q." or "s3" for a triplet's.
std::string RhythmText(Units length)
{
    const WrittenValue& value = WrittenValueOf(length);
    constexpr std::pair<int, char> kLetters[] = {
        {1,  'w'},
        {2,  'h'},
        {4,  'q'},
        {8,  'e'},
        {16, 's'},
        {32, 't'},
    };
    const auto letter = std::ranges::find(kLetters, value.Divisor, &std::pair<int, char>::first);
    return std::string(1, letter->second) + (value.Dotted ? "." : value.Triplet ? "3" : "");
}

/// What stands before a fret that the note before it leads to.
std::string LinkText(const MusicNote* from, const MusicNote& to)
{
    if (!from)
        return {};
    if (from->Tied && from->Fret == to.Fret)
        return "=";
    if (from->Next == Link::Hammer)
        return to.Fret < from->Fret ? "p" : "h";
    if (from->Next == Link::Slide)
        return to.Fret < from->Fret ? "\\" : "/";
    return {};
}

std::string FretText(const MusicNote& note)
{
    std::string fret = std::to_string(note.Fret);
    switch (note.Look) {
    case NoteLook::Ghost:
        return "(" + fret + ")";
    case NoteLook::Muted:
    case NoteLook::Slash:
        return "x";
    case NoteLook::Bend:
        return fret + "b";
    case NoteLook::Release:
        return fret + "br";
    case NoteLook::Plain:
        break;
    }
    return fret;
}

std::string StringName(int pitch, bool highest)
{
    const auto [letter, sharp] = WrittenPitchOf(pitch);
    std::string name(1, highest ? static_cast<char>(letter - 'A' + 'a') : letter);
    return name + (sharp ? "#" : "");
}

/// The rows of a measure or a system, all of one width.
class Block {
public:
    explicit Block(std::size_t strings) : rows(kFirstString + strings) {}

    std::size_t Width() const { return rows.back().size(); }
    std::string& operator[](std::size_t row) { return rows[row]; }
    const std::vector<std::string>& Rows() const { return rows; }

    void WidenTo(std::size_t width)
    {
        for (std::size_t row = 0; row < rows.size(); ++row)
            rows[row].resize(std::max(width, rows[row].size()), row < kFirstString ? ' ' : '-');
    }

    /// All rows as wide as the widest.
    void Align()
    {
        std::size_t width = 0;
        for (const std::string& row : rows)
            width = std::max(width, row.size());
        WidenTo(width);
    }

    void AddBar(std::string_view bar)
    {
        Align();
        for (std::size_t row = 0; row < rows.size(); ++row)
            rows[row] += row < kFirstString ? std::string(bar.size(), ' ') : std::string(bar);
    }

    void Add(const Block& other)
    {
        for (std::size_t row = 0; row < rows.size(); ++row)
            rows[row] += other.rows[row];
    }

private:
    std::vector<std::string> rows;
};

class TabWriter {
public:
    explicit TabWriter(const Music& theMusic) : music(theMusic), system(Strings()) {}

    std::string Write()
    {
        WriteHeader();
        for (at = 0; at < music.Measures.size(); ++at)
            PlaceMeasure();
        EndSystem();
        return text;
    }

private:
    std::size_t Strings() const { return music.OpenPitches.size(); }
    const MusicMeasure& Here() const { return music.Measures[at]; }

    void WriteHeader()
    {
        for (const std::string& line : {music.Title, music.Credits[0], music.Credits[1]})
            if (!line.empty())
                text += Utf8(line) + "\n";
        text += "Tuning:";
        for (auto pitch = music.OpenPitches.rbegin(); pitch != music.OpenPitches.rend(); ++pitch)
            text += " " + StringName(*pitch, false);
        text += "\n";
        text += "Time: " + SignatureText() + "\n";
        if (music.Capo > 0)
            text += "Capo " + std::to_string(music.Capo) + "\n";
        if (music.Tempo > 0)
            text += "Tempo: " + std::to_string(std::lround(music.Tempo)) + "\n";
        text += "\n";
    }

    std::string SignatureText() const
    {
        return std::to_string(Here().Beats) + "/" + std::to_string(Here().BeatUnit);
    }

    /// The measure on this system, or on the next one if it is full.
    void PlaceMeasure()
    {
        Block measure = MeasureBlock();
        measure.AddBar(BarText());
        if (system.Width() > 0 && (Here().NewLine || system.Width() + measure.Width() > kColumns))
            EndSystem();
        if (system.Width() == 0)
            BeginSystem();
        system.Add(measure);
    }

    void BeginSystem()
    {
        std::size_t widest = 1;
        for (const int pitch : music.OpenPitches)
            widest = std::max(widest, StringName(pitch, false).size());
        for (std::size_t s = 0; s < Strings(); ++s) {
            system[kFirstString + s] = StringName(music.OpenPitches[s], s == 0 && Strings() > 4);
            system[kFirstString + s].resize(widest, ' ');
        }
        system.Align();
        system.AddBar(Here().StartsRepeat ? "|:" : "|");
    }

    void EndSystem()
    {
        for (const std::string& row : system.Rows()) {
            const std::size_t end = row.find_last_not_of(' ');
            if (end != std::string::npos)
                text += Utf8(row.substr(0, end + 1)) + "\n";
        }
        text += "\n";
        system = Block(Strings());
    }

    Block MeasureBlock()
    {
        Block block(Strings());
        block[kSigns] = SignsText();
        block.WidenTo(1);
        const std::size_t begin = 1;
        std::size_t width = begin;
        for (const MusicEvent& event : Here().Events) {
            // Signs may run over the following events, what belongs to this one may not.
            for (std::size_t row = kChords; row < block.Rows().size(); ++row)
                block[row].resize(width, row < kFirstString ? ' ' : '-');
            WriteEvent(block, event);
            width = EventEnd(block, width, event.Length);
            before = &event;
        }
        block.WidenTo(width);
        block.Align();
        return block;
    }

    static std::size_t EventEnd(Block& block, std::size_t begin, Units length)
    {
        constexpr Units kColumnUnits = kQuarterUnits / 4;
        constexpr std::size_t kWidest = 8;
        std::size_t end = begin + std::clamp<std::size_t>(length / kColumnUnits, 1, kWidest) + 1;
        for (std::size_t row = kChords; row < block.Rows().size(); ++row)
            end = std::max(end, block[row].size() + 1);
        return end;
    }

    void WriteEvent(Block& block, const MusicEvent& event)
    {
        block[kChords] += event.Chord;
        block[kRhythm] += RhythmText(event.Length);
        for (const MusicNote& note : event.Notes) {
            const MusicNote* from = nullptr;
            if (before)
                for (const MusicNote& old : before->Notes)
                    if (old.String == note.String)
                        from = &old;
            std::string& row = block[kFirstString + static_cast<std::size_t>(note.String) - 1];
            const std::string link = LinkText(from, note);
            // The fret stands in the event's column, the link in the one before.
            if (!link.empty() && row.ends_with('-'))
                row.pop_back();
            row += link + FretText(note);
        }
    }

    std::string SignsText() const
    {
        std::string signs;
        const auto add = [&](const std::string& sign) {
            signs += (signs.empty() || sign.empty() ? "" : " ") + sign;
        };
        const MusicMeasure* measureBefore = at > 0 ? &music.Measures[at - 1] : nullptr;
        if (measureBefore &&
            (measureBefore->Beats != Here().Beats || measureBefore->BeatUnit != Here().BeatUnit))
            add(SignatureText());
        if (!Here().EndingText.empty())
            add("[" + Here().EndingText);
        const auto words = std::ranges::find(kWords, Here().Sign, &SignWords::Code);
        if (words != std::end(kWords))
            add(words->Words);
        add(Here().Remark);
        return signs + (signs.empty() ? "" : " ");
    }

    std::string BarText() const
    {
        const MusicMeasure* next =
            at + 1 < music.Measures.size() ? &music.Measures[at + 1] : nullptr;
        const bool starts = next && next->StartsRepeat;
        if (Here().EndsRepeat)
            return starts ? ":|:" : ":|";
        if (starts)
            return "|:";
        return Here().DoubleBar || (next && next->BeginDoubleBar) ? "||" : "|";
    }

    const Music& music;
    std::string text;
    Block system;
    std::size_t at = 0;  // measure
    const MusicEvent* before = nullptr;
};

}  // namespace

std::string WriteTextTab(const Music& music, Notices&)
{
    return music.Measures.empty() ? std::string() : TabWriter(music).Write();
}

}  // namespace quillon
