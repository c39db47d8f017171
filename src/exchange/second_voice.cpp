#include "exchange/second_voice.h"

#include <algorithm>

namespace quillon {

namespace {

using Events = std::vector<MusicEvent>;

MusicEvent Rest(Units length)
{
    MusicEvent rest;
    rest.Length = length;
    return rest;
}

/// The rest at `place`, which begins `before` the event, makes room for it.
void PutIntoRest(Events& events, std::size_t place, Units before, const MusicEvent& event)
{
    const auto at = events.begin() + static_cast<std::ptrdiff_t>(place);
    const Units after = at->Length - before - event.Length;
    const std::string chord = at->Chord;
    Events pieces;
    if (before > 0)
        pieces.push_back(Rest(before));
    pieces.push_back(event);
    if (after > 0)
        pieces.push_back(Rest(after));
    if (!chord.empty())
        pieces.front().Chord = chord;
    events.insert(events.erase(at), pieces.begin(), pieces.end());
}

bool ShareAString(const MusicEvent& one, const MusicEvent& other)
{
    return std::ranges::any_of(one.Notes, [&](const MusicNote& note) {
        return note.String > 0 &&
               std::ranges::find(other.Notes, note.String, &MusicNote::String) != other.Notes.end();
    });
}

}  // namespace

bool AddSecondVoice(MusicMeasure& measure, Units begin, const MusicEvent& event)
{
    Units from = 0;
    for (std::size_t i = 0; i < measure.Events.size(); ++i) {
        MusicEvent& first = measure.Events[i];
        const Units to = from + first.Length;
        if (first.Notes.empty() && from <= begin && begin + event.Length <= to) {
            PutIntoRest(measure.Events, i, begin - from, event);
            return true;
        }
        if (from == begin && first.Length == event.Length && !ShareAString(first, event)) {
            first.Notes.insert(first.Notes.end(), event.Notes.begin(), event.Notes.end());
            return true;
        }
        from = to;
    }
    if (begin < from)
        return false;
    if (begin > from)
        measure.Events.push_back(Rest(begin - from));
    measure.Events.push_back(event);
    return true;
}

}  // namespace quillon
