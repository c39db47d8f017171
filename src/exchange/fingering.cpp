#include "exchange/fingering.h"

#include "store/note_table.h"
#include "store/tunings.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <limits>
#include <optional>
#include <span>
#include <utility>

namespace quillon {

namespace {

constexpr int kHighestPosition = 20;
constexpr int kFretsOfHand = 4;       // under its fingers, from its position on
constexpr int kFretsOnShortNeck = 6;  // of a mandolin, ukulele or tenor banjo
constexpr int kLowestOfShortNeck = 48;
constexpr int kHighestNotes = 12;  // a tune that goes above this fret is moved down if it can be
constexpr int kMostPlaces = 200;   // of one chord

using Cost = long long;
constexpr Cost kPoint = 1 << 24;           // leaves room for what decides between equals
constexpr Cost kBroken = 100000 * kPoint;  // a tie that goes to another string
constexpr Cost kOctave = 100 * kPoint;     // the whole tune moved by one
constexpr int kOctaveShifts[] = {0, -1, 1, -2, 2, -3, 3, -4, 4};

/// A string and fret for each note of an event, and where the hand is. A tune has hundreds of
/// thousands of them.
struct Place {
    Cost Own = 0;
    int Position = 1;
    std::size_t Count = 0;
    std::array<int, kStringSlots> Strings{};  // of each note, from 1
    std::array<int, kStringSlots> Frets{};
    int Top = 0;     // the highest string used
    int Bottom = 0;  // and the lowest
    bool Open = false;

    void Add(int string, int fret)
    {
        Strings[Count] = string;
        Frets[Count] = fret;
        ++Count;
    }

    bool Uses(int string) const
    {
        return std::find(Strings.begin(), Strings.begin() + Count, string) !=
               Strings.begin() + Count;
    }
};

/// An event that sounds, and what came before it.
struct Layer {
    MusicEvent* Event = nullptr;
    bool OnBeat = true;
    bool Quick = false;    // the event before it is shorter than an eighth
    bool Follows = false;  // right after the event before it, no rest between
    std::vector<Place> Places;
};

class Neck {
public:
    explicit Neck(const FingeringChoices& theChoices) : choices(theChoices) {}

    int Strings() const { return static_cast<int>(choices.OpenPitches.size()); }
    bool IsShort(int string) const { return Strings() == 5 && string == 5; }

    /// The fret of a pitch on a string, as printed; none if it has no place there.
    std::optional<int> FretOf(int pitch, int string) const
    {
        int fret = pitch - choices.OpenPitches[string - 1];
        if (fret > 0 && IsShort(string))
            fret += kShortStringFret;
        const bool there =
            fret == 0 || (fret >= std::max(1, choices.LowestFret) && fret <= choices.HighestFret);
        return there ? std::optional(fret) : std::nullopt;
    }

    bool Has(int pitch) const
    {
        for (int string = 1; string <= Strings(); ++string)
            if (FretOf(pitch, string))
                return true;
        return false;
    }

    int Highest() const { return std::ranges::max(choices.OpenPitches); }

    /// How many frets the hand covers; a chord may reach one further.
    int FretsOfHand() const
    {
        const bool isShort =
            Strings() == 4 && std::ranges::min(choices.OpenPitches) >= kLowestOfShortNeck;
        return isShort ? kFretsOnShortNeck : kFretsOfHand;
    }

private:
    const FingeringChoices& choices;
};

// What a place costs by itself.

int NeckCost(int fret)
{
    const FingeringCosts& costs = kFingeringCosts;
    return fret > 12  ? costs.AboveTwelfthFret
           : fret > 9 ? costs.AboveNinthFret
           : fret > 5 ? costs.AboveFifthFret
                      : 0;
}

int NoteCost(const Neck& neck, int string, int fret, int position, bool onBeat)
{
    const FingeringCosts& costs = kFingeringCosts;
    if (neck.IsShort(string))
        return fret > 0 ? costs.ShortFretted : onBeat ? 0 : costs.ShortOffBeat;
    if (fret == 0)
        return position <= 3 ? costs.OpenLow : position >= 5 ? costs.OpenHigh : 0;
    const bool stretched = fret < position || fret >= position + neck.FretsOfHand();
    return NeckCost(fret) + (stretched ? costs.Stretch : 0);
}

Cost OwnCost(const Neck& neck, const Place& place, bool onBeat)
{
    int points = 0;
    Cost fine = 0;  // the lower fret, then the higher string
    int lowest = kHighestNeckFret;
    int highest = 0;
    for (std::size_t i = 0; i < place.Count; ++i) {
        const int fret = place.Frets[i];
        points += NoteCost(neck, place.Strings[i], fret, place.Position, onBeat);
        fine += 8 * fret + place.Strings[i];
        if (fret > 0) {
            lowest = std::min(lowest, fret);
            highest = std::max(highest, fret);
        }
    }
    if (highest - lowest >= neck.FretsOfHand())
        points += kFingeringCosts.WideChord;
    const int between = place.Bottom - place.Top + 1 - static_cast<int>(place.Count);
    return (points + kFingeringCosts.StringBetween * between) * kPoint + fine;
}

// The places of an event.

class PlaceFinder {
public:
    PlaceFinder(const Neck& theNeck, const MusicEvent& theEvent, bool isOnBeat)
        : neck(theNeck), event(theEvent), onBeat(isOnBeat)
    {
    }

    std::vector<Place> Find()
    {
        TakeNote(0);
        return std::move(places);
    }

private:
    /// Note `i` on each string that is free, and the notes behind it.
    void TakeNote(std::size_t i)
    {
        if (places.size() >= kMostPlaces)
            return;
        if (i == event.Notes.size()) {
            AddPositions();
            return;
        }
        if (i == kStringSlots)
            return;  // more notes than strings
        const MusicNote& note = event.Notes[i];
        for (int string = 1; string <= neck.Strings(); ++string) {
            if (place.Uses(string))
                continue;
            const std::optional<int> fret = FretOn(note, string);
            if (!fret)
                continue;
            place.Add(string, *fret);
            if (InReach())
                TakeNote(i + 1);
            --place.Count;
        }
    }

    std::optional<int> FretOn(const MusicNote& note, int string) const
    {
        if (note.String == 0)
            return neck.FretOf(note.Pitch, string);
        return note.String == string ? std::optional(note.Fret) : std::nullopt;
    }

    /// The lowest and the highest fretted note; {0, 0} if all strings are open.
    std::pair<int, int> Fretted() const
    {
        int lowest = 0;
        int highest = 0;
        for (std::size_t i = 0; i < place.Count; ++i)
            if (const int fret = place.Frets[i]; fret > 0) {
                lowest = lowest == 0 ? fret : std::min(lowest, fret);
                highest = std::max(highest, fret);
            }
        return {lowest, highest};
    }

    bool InReach() const
    {
        const auto [lowest, highest] = Fretted();
        return highest - lowest <= neck.FretsOfHand() ||
               std::ranges::all_of(event.Notes, [](const auto& note) { return note.String > 0; });
    }

    void AddPositions()
    {
        const auto [lowest, highest] = Fretted();
        const bool open = highest == 0;
        const auto strings = std::span(place.Strings).first(place.Count);
        place.Top = std::ranges::min(strings);
        place.Bottom = std::ranges::max(strings);
        place.Open = std::ranges::count(std::span(place.Frets).first(place.Count), 0) > 0;
        const int from = open ? 1 : std::clamp(highest - neck.FretsOfHand(), 1, kHighestPosition);
        const int to = open ? kHighestPosition : std::clamp(lowest + 1, from, kHighestPosition);
        for (place.Position = from; place.Position <= to; ++place.Position) {
            place.Own = OwnCost(neck, place, onBeat);
            places.push_back(place);
        }
    }

    const Neck& neck;
    const MusicEvent& event;
    bool onBeat;
    Place place{};
    std::vector<Place> places;
};

// What it costs to go from place to place.

int StringsSkipped(const Place& from, const Place& to)
{
    return std::max({0, to.Top - from.Bottom - 1, from.Top - to.Bottom - 1});
}

/// Notes that must or should stay on their string.
Cost StringCost(const Layer& before, const Place& from, const Layer& now, const Place& to)
{
    Cost cost = 0;
    const auto& old = before.Event->Notes;
    const auto& next = now.Event->Notes;
    for (std::size_t i = 0; i < old.size(); ++i)
        for (std::size_t j = 0; j < next.size(); ++j) {
            const bool stays = from.Strings[i] == to.Strings[j];
            const bool same = old[i].Pitch == next[j].Pitch;
            const bool bound = (old[i].Tied && same) ||
                               (old[i].Next != Link::None && old.size() == 1 && next.size() == 1);
            if (bound && !stays)
                cost += kBroken;
            else if (same && !stays)
                cost += kFingeringCosts.OtherString * kPoint;
            else if (!same && stays && now.Quick && !bound && from.Frets[i] > 0 && to.Frets[j] > 0)
                cost += kFingeringCosts.SameString * kPoint;
        }
    return cost;
}

Cost WayCost(const Layer& before, const Place& from, const Layer& now, const Place& to)
{
    const FingeringCosts& costs = kFingeringCosts;
    int points = costs.StringSkipped * StringsSkipped(from, to);
    if (const int frets = std::abs(from.Position - to.Position); frets > 0) {
        points += costs.Shift + costs.ShiftPerFret * frets;
        if (now.Quick && now.Follows && !from.Open)
            points += costs.QuickShift;
    }
    return points * kPoint + (now.Follows ? StringCost(before, from, now, to) : 0);
}

// The way through the tune.

struct Way {
    Cost Total = 0;
    std::vector<int> Places;  // of each layer
};

Way CheapestWay(const std::vector<Layer>& layers)
{
    std::vector<std::vector<Cost>> total(layers.size());
    std::vector<std::vector<int>> from(layers.size());
    for (std::size_t i = 0; i < layers.size(); ++i)
        for (const Place& place : layers[i].Places) {
            Cost best = i == 0 ? 0 : std::numeric_limits<Cost>::max();
            int bestFrom = 0;
            for (std::size_t f = 0; i > 0 && f < layers[i - 1].Places.size(); ++f) {
                if (total[i - 1][f] >= best)
                    continue;
                const Cost cost = total[i - 1][f] +
                                  WayCost(layers[i - 1], layers[i - 1].Places[f], layers[i], place);
                if (cost < best) {
                    best = cost;
                    bestFrom = static_cast<int>(f);
                }
            }
            total[i].push_back(best + place.Own);
            from[i].push_back(bestFrom);
        }
    Way way{0, std::vector<int>(layers.size())};
    if (layers.empty())
        return way;
    const auto last = std::ranges::min_element(total.back());
    way.Total = *last;
    int place = static_cast<int>(last - total.back().begin());
    for (std::size_t i = layers.size(); i-- > 0; place = from[i][place])
        way.Places[i] = place;
    return way;
}

template <typename Visit> void ForEachNote(Music& music, Visit visit)
{
    for (MusicMeasure& measure : music.Measures)
        for (MusicEvent& event : measure.Events)
            for (MusicNote& note : event.Notes)
                visit(note);
}

/// A note that has no string yet, if there is one. The outer notes of a chord are heard best, the
/// highest most of all.
void LeaveOutOne(MusicEvent& event, Notices& notices)
{
    std::ranges::sort(event.Notes, std::ranges::greater(), &MusicNote::Pitch);
    const auto kept = std::ranges::stable_partition(
        event.Notes, [](const MusicNote& note) { return note.String == 0; });
    const std::size_t free = event.Notes.size() - kept.size();
    const std::size_t count = free > 0 ? free : kept.size();
    event.Notes.erase(event.Notes.begin() + (count > 1 ? 1 : 0));
    notices.Count("A note of a chord that no hand can reach is left out.",
                  "notes of chords that no hand can reach are left out.");
}

/// The layers of a tune; the notes of each event that no hand can play together are left out.
std::vector<Layer> LayersOf(Music& music, const Neck& neck, Notices& notices)
{
    std::vector<Layer> layers;
    bool rest = true;
    bool quick = false;
    for (MusicMeasure& measure : music.Measures) {
        Units at = 0;
        for (MusicEvent& event : measure.Events) {
            const bool onBeat = at % kQuarterUnits == 0;
            at += event.Length;
            if (event.Notes.empty()) {
                rest = true;
                continue;
            }
            Layer layer{&event, onBeat, quick, !rest, PlaceFinder(neck, event, onBeat).Find()};
            while (layer.Places.empty() && !event.Notes.empty()) {
                LeaveOutOne(event, notices);
                layer.Places = PlaceFinder(neck, event, onBeat).Find();
            }
            rest = event.Notes.empty();
            if (!rest)
                layers.push_back(std::move(layer));
            quick = event.Length < kQuarterUnits / 2;
        }
    }
    return layers;
}

bool Fits(Music& music, const Neck& neck, int octaves, int highest)
{
    bool fits = true;
    ForEachNote(music, [&](const MusicNote& note) {
        const int pitch = note.Pitch + 12 * octaves;
        fits = fits && (note.String > 0 || (pitch <= highest && neck.Has(pitch)));
    });
    return fits;
}

void Move(Music& music, int octaves)
{
    ForEachNote(music, [&](MusicNote& note) {
        if (note.String == 0)
            note.Pitch += 12 * octaves;
    });
}

/// By how many octaves a tune is moved: by none if it lies well, else by what makes the cheapest
/// way of those that have a place for each note; none if there is no such move.
std::optional<int> BestOctaves(const Music& music, const Neck& neck)
{
    Music moved = music;
    if (Fits(moved, neck, 0, neck.Highest() + kHighestNotes))
        return 0;
    std::optional<int> best;
    Cost least = std::numeric_limits<Cost>::max();
    for (const int octaves : kOctaveShifts) {
        if (!Fits(moved, neck, octaves, std::numeric_limits<int>::max()))
            continue;
        Music trial = music;
        Move(trial, octaves);
        Notices unsaid;
        const Cost cost =
            CheapestWay(LayersOf(trial, neck, unsaid)).Total + std::abs(octaves) * kOctave;
        if (cost < least) {
            least = cost;
            best = octaves;
        }
    }
    return best;
}

std::string OctavesText(int octaves)
{
    const std::string count =
        std::abs(octaves) == 1 ? "an octave" : std::to_string(std::abs(octaves)) + " octaves";
    return "The tune is moved " + std::string(octaves < 0 ? "down " : "up ") + count +
           ", to where it lies well.";
}

/// Where no move helps all notes: the move that helps most of them, and each of the others by
/// itself.
void MoveEach(Music& music, const Neck& neck, Notices& notices)
{
    int best = 0;
    int most = -1;
    for (const int octaves : kOctaveShifts) {
        int fitting = 0;
        ForEachNote(music, [&](const MusicNote& note) {
            fitting += note.String > 0 || neck.Has(note.Pitch + 12 * octaves) ? 1 : 0;
        });
        if (fitting > most) {
            most = fitting;
            best = octaves;
        }
    }
    Move(music, best);
    if (best != 0)
        notices.Say(OctavesText(best));
    ForEachNote(music, [&](MusicNote& note) {
        if (note.String > 0 || neck.Has(note.Pitch))
            return;
        for (const int octaves : kOctaveShifts)
            if (neck.Has(note.Pitch + 12 * octaves)) {
                note.Pitch += 12 * octaves;
                notices.Count("A note beyond the instrument's range is moved by octaves.",
                              "notes beyond the instrument's range are moved by octaves.");
                return;
            }
    });
}

void MoveByOctaves(Music& music, const Neck& neck, Notices& notices)
{
    const std::optional<int> octaves = BestOctaves(music, neck);
    if (!octaves) {
        MoveEach(music, neck, notices);
    } else if (*octaves != 0) {
        Move(music, *octaves);
        notices.Say(OctavesText(*octaves));
    }
}

/// Notes that the choices leave no place for at all, in no octave.
void DropUnplayable(Music& music, const Neck& neck, Notices& notices)
{
    for (MusicMeasure& measure : music.Measures)
        for (MusicEvent& event : measure.Events) {
            const auto gone = std::erase_if(event.Notes, [&](const MusicNote& note) {
                return note.String == 0 && !neck.Has(note.Pitch);
            });
            notices.Count("A note that cannot be played there is left out.",
                          "notes that cannot be played there are left out.",
                          static_cast<int>(gone));
        }
}

}  // namespace

void ChooseFingering(Music& music, const FingeringChoices& choices, Notices& notices)
{
    bool open = false;
    ForEachNote(music, [&](const MusicNote& note) { open = open || note.String == 0; });
    if (!open)
        return;
    const Neck neck(choices);
    MoveByOctaves(music, neck, notices);
    DropUnplayable(music, neck, notices);
    const std::vector<Layer> layers = LayersOf(music, neck, notices);
    const Way way = CheapestWay(layers);
    for (std::size_t i = 0; i < layers.size(); ++i) {
        const Place& place = layers[i].Places[way.Places[i]];
        for (std::size_t n = 0; n < layers[i].Event->Notes.size(); ++n) {
            layers[i].Event->Notes[n].String = place.Strings[n];
            layers[i].Event->Notes[n].Fret = place.Frets[n];
        }
    }
}

}  // namespace quillon
