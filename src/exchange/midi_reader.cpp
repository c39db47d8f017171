#include "exchange/midi_reader.h"

#include "exchange/text.h"
#include "midi/byte_reader.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <map>
#include <optional>

namespace quillon {

namespace {

constexpr std::size_t kMostNotes = 6000;  // far beyond what a tune can hold
constexpr std::size_t kMostSignatures = 500;
constexpr std::size_t kMostInChord = 12;
constexpr long long kLongestSong = 100'000;  // quarters
constexpr int kDrums = 9;                    // channel, from 0
constexpr int kTicks = 12;                   // of the table, to a quarter

/// A note in units from the beginning.
struct SoundingNote {
    Units Begin;
    Units End;
    int Pitch;
};

struct Signature {
    Units At;
    int Beats;
    int BeatUnit;
};

/// What a file says, whatever its tracks.
struct Song {
    std::vector<SoundingNote> Notes;
    std::vector<Signature> Signatures;
    std::string Title;
    double Tempo = 0;
    bool Drums = false;
};

[[noreturn]] void Refuse(const std::string& what)
{
    throw ExchangeError(what + " Export it again from its program.");
}

class TrackReader {
public:
    TrackReader(std::string_view bytes, int theDivision, Song& theSong)
        : reader(bytes), division(theDivision), song(theSong)
    {
    }

    void Read()
    {
        int running = 0;
        while (!reader.AtEnd() && song.Notes.size() < kMostNotes) {
            ticks += reader.VariableLength();
            if (ticks > kLongestSong * division)
                Refuse("It lasts for days.");
            int status = reader.Peek();
            if (status < 0x80)
                status = running;
            else
                reader.Byte();
            if (status == 0xFF)
                TakeMeta();
            else if (status >= 0xF0)
                reader.Take(reader.VariableLength());
            else
                TakeChannelEvent(running = status);
        }
        for (const auto& [pitch, begin] : started)
            song.Notes.push_back({begin, Now(), pitch});
    }

private:
    Units Now() const { return ticks * kQuarterUnits / division; }

    void TakeMeta()
    {
        const int kind = reader.Byte();
        const std::string_view data = reader.Take(reader.VariableLength());
        ByteReader content(data);
        if (kind == 0x51 && data.size() == 3 && song.Tempo == 0) {
            const long long microseconds = content.Number(3);
            song.Tempo = microseconds > 0 ? 60e6 / static_cast<double>(microseconds) : 0;
        } else if (kind == 0x58 && data.size() >= 2 && song.Signatures.size() < kMostSignatures) {
            const int beats = std::clamp(content.Byte(), 1, 64);
            song.Signatures.push_back({Now(), beats, 1 << std::min(content.Byte(), 5)});
        } else if (kind == 0x03 && song.Title.empty()) {
            song.Title = TextForTable(data.substr(0, 200));
        }
    }

    void TakeChannelEvent(int status)
    {
        const int kind = status >> 4;
        const int first = reader.Byte() & 0x7F;
        const int second = kind == 0xC || kind == 0xD ? 0 : reader.Byte() & 0x7F;
        if (kind != 0x8 && kind != 0x9)
            return;
        if ((status & 0xF) == kDrums) {
            song.Drums = true;
            return;
        }
        const int key = (status & 0xF) << 7 | first;
        if (const auto found = started.find(key); found != started.end()) {
            song.Notes.push_back({found->second, Now(), first});
            started.erase(found);
        }
        if (kind == 0x9 && second > 0)
            started.emplace(key, Now());
    }

    ByteReader reader;
    int division;
    Song& song;
    long long ticks = 0;
    std::map<int, Units> started;  // by channel and pitch
};

Song ReadSong(std::string_view bytes)
{
    ByteReader reader(bytes);
    if (reader.Take(4) != "MThd")
        Refuse("It is no MIDI file.");
    ByteReader header(reader.Take(reader.Number(4)));
    header.Number(2);
    const auto tracks = header.Number(2);
    const auto division = static_cast<int>(header.Number(2));
    if (division == 0 || division >= 0x8000)
        Refuse("It counts seconds instead of quarters.");
    Song song;
    for (int track = 0; track < tracks && !reader.AtEnd(); ++track) {
        const std::string_view kind = reader.Take(4);
        const std::string_view content = reader.Take(reader.Number(4));
        if (kind == "MTrk")
            TrackReader(content, division, song).Read();
    }
    return song;
}

// The grid: each quarter is divided into four or into six, whichever its onsets are nearer to.

constexpr std::array<int, 5> kFourths = {0, 3, 6, 9, kTicks};
constexpr std::array<int, 7> kSixths = {0, 2, 4, 6, 8, 10, kTicks};

template <typename Ticks> Units NearestOf(const Ticks& grid, Units within)
{
    Units best = 0;
    for (const int tick : grid)
        if (std::llabs(tick * kTickUnits - within) < std::llabs(best - within))
            best = tick * kTickUnits;
    return best;
}

class Grid {
public:
    explicit Grid(const std::vector<SoundingNote>& notes)
    {
        for (const SoundingNote& note : notes) {
            const Units within = note.Begin % kQuarterUnits;
            auto& [fourths, sixths] = errors[note.Begin / kQuarterUnits];
            fourths += std::llabs(NearestOf(kFourths, within) - within);
            sixths += std::llabs(NearestOf(kSixths, within) - within);
        }
    }

    Units Nearest(Units at) const
    {
        const Units quarter = at / kQuarterUnits;
        const Units within = at % kQuarterUnits;
        const auto found = errors.find(quarter);
        const bool sixths = found != errors.end() && found->second.second < found->second.first;
        return quarter * kQuarterUnits +
               (sixths ? NearestOf(kSixths, within) : NearestOf(kFourths, within));
    }

private:
    std::map<Units, std::pair<Units, Units>> errors;  // by quarter, with fourths and with sixths
};

/// Puts beginnings on the grid, and ends on it or on the beginning that they nearly touch.
void Quantise(std::vector<SoundingNote>& notes)
{
    const Grid grid(notes);
    std::vector<Units> begins;
    for (SoundingNote& note : notes) {
        note.Begin = grid.Nearest(note.Begin);
        begins.push_back(note.Begin);
    }
    std::ranges::sort(begins);
    constexpr Units kNearly = kQuarterUnits / 8;
    for (SoundingNote& note : notes) {
        const auto next = std::ranges::lower_bound(begins, note.End - kNearly);
        const bool touches =
            next != begins.end() && *next <= note.End + kNearly && *next > note.Begin;
        note.End = touches ? *next : std::max(grid.Nearest(note.End), note.Begin + 2 * kTickUnits);
    }
}

/// The music as slices: a new event wherever a note or a measure begins or ends. What sounds on is
/// tied.
class Slicer {
public:
    Slicer(const Song& theSong, Music& theMusic) : song(theSong), music(theMusic) {}

    void Slice()
    {
        std::vector<Units> cuts;
        Units end = 0;
        for (const SoundingNote& note : song.Notes) {
            cuts.push_back(note.Begin);
            cuts.push_back(note.End);
            end = std::max(end, note.End);
        }
        AddMeasures(end, cuts);
        std::ranges::sort(cuts);
        const auto repeated = std::ranges::unique(cuts);
        cuts.erase(repeated.begin(), repeated.end());
        for (std::size_t i = 0; i + 1 < cuts.size(); ++i)
            AddEvent(cuts[i], cuts[i + 1]);
    }

private:
    void AddMeasures(Units end, std::vector<Units>& cuts)
    {
        int beats = 4;
        int beatUnit = 4;
        for (Units at = 0; at < end && starts.size() < kMostMeasures;) {
            for (const Signature& signature : song.Signatures)
                if (signature.At <= at) {
                    beats = signature.Beats;
                    beatUnit = signature.BeatUnit;
                }
            MusicMeasure& measure = music.Measures.emplace_back();
            measure.Beats = beats;
            measure.BeatUnit = beatUnit;
            starts.push_back(at);
            cuts.push_back(at);
            at += 4 * kQuarterUnits * beats / beatUnit;
        }
    }

    void AddEvent(Units begin, Units end)
    {
        const auto after = std::ranges::upper_bound(starts, begin);
        MusicMeasure& measure =
            music.Measures[static_cast<std::size_t>(after - starts.begin()) - 1];
        MusicEvent& event = measure.Events.emplace_back();
        event.Length = end - begin;
        while (first < song.Notes.size() && song.Notes[first].Begin <= begin)
            sounding.push_back(first++);
        std::erase_if(sounding, [&](std::size_t i) { return song.Notes[i].End <= begin; });
        for (const std::size_t i : sounding) {
            MusicNote note;
            note.Pitch = song.Notes[i].Pitch;
            note.Tied = song.Notes[i].End > end;
            if (event.Notes.size() < kMostInChord &&
                std::ranges::find(event.Notes, note.Pitch, &MusicNote::Pitch) == event.Notes.end())
                event.Notes.push_back(note);
        }
    }

    const Song& song;
    Music& music;
    std::vector<Units> starts;  // of the measures
    std::vector<std::size_t> sounding;
    std::size_t first = 0;  // note that has not begun
};

}  // namespace

std::vector<FoundTune> ReadMidi(std::string_view bytes)
{
    Song song = ReadSong(bytes);
    FoundTune found;
    found.Tune.Title = song.Title;
    found.Tune.Tempo = std::min(song.Tempo, 1000.0);
    if (song.Drums)
        found.Said.Say("The drums are left out.");
    Quantise(song.Notes);
    std::ranges::sort(song.Notes, {}, &SoundingNote::Begin);
    std::ranges::stable_sort(song.Signatures, {}, &Signature::At);
    Slicer(song, found.Tune).Slice();
    return {found};
}

}  // namespace quillon
