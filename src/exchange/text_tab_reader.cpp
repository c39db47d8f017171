#include "exchange/text_tab_reader.h"

#include "exchange/text.h"
#include "exchange/text_tab_lines.h"
#include "exchange/written_values.h"
#include "store/tunings.h"

#include <algorithm>
#include <charconv>

namespace quillon {

namespace {

constexpr int kHighestEnding = 9;

/// What stands in the lines before the first staff.
struct Heading {
    std::string Title;
    int Beats = 4;
    int BeatUnit = 4;
};

int NumberIn(std::string_view text)
{
    int number = 0;
    std::from_chars(text.data(), text.data() + text.size(), number);
    return number;
}

Heading HeadingOf(const std::vector<std::string>& lines)
{
    Heading heading;
    for (const std::string& line : lines) {
        if (IsTabRow(line))
            break;
        const std::string_view text = Trimmed(line);
        if (text.starts_with("Time:")) {
            const std::string_view time = Trimmed(text.substr(5));
            const std::size_t slash = std::min(time.find('/'), time.size());
            const int beats = NumberIn(time);
            const int unit = slash < time.size() ? NumberIn(time.substr(slash + 1)) : 0;
            if (beats > 0 && beats <= 64 && (unit == 2 || unit == 4 || unit == 8))
                heading = {heading.Title, beats, unit};
        } else if (heading.Title.empty() && !text.starts_with("Tuning:")) {
            heading.Title = TextForTable(text);
        }
    }
    return heading;
}

/// Whether the rows' names are the letters of these pitches.
bool HasNames(const TabStaff& staff, const TuningRecord& tuning)
{
    for (std::size_t i = 0; i < staff.Rows.size(); ++i) {
        const WrittenPitch pitch = WrittenPitchOf(tuning.Pitch(static_cast<int>(i) + 1));
        const std::string& name = staff.Rows[i].Name;
        const bool sharp = name.ends_with('#');
        if (name.empty() || (name[0] & ~0x20) != pitch.Letter || sharp != pitch.Sharp)
            return false;
    }
    return true;
}

/// The known tuning that the names at the rows tell; the usual one without them.
TuningRecord TuningOf(const TabStaff& staff)
{
    const std::vector<TuningRecord> known = DefaultTunings(static_cast<int>(staff.Rows.size()));
    const auto found = std::ranges::find_if(
        known, [&](const TuningRecord& tuning) { return HasNames(staff, tuning); });
    return found == known.end() ? known.front() : *found;
}

class TabReader {
public:
    TabReader(FoundTune& theFound, const Heading& theHeading)
        : found(theFound), music(theFound.Tune), heading(theHeading)
    {
    }

    void Read(const TabStaff& staff)
    {
        const std::vector<TabColumn> columns = staff.Columns();
        auto next = columns.begin();
        std::size_t begin = 0;
        for (std::size_t column = 0; column <= staff.Width(); ++column) {
            if (column < staff.Width() && !staff.IsBar(column))
                continue;
            const auto end = std::find_if(
                next, columns.end(), [&](const TabColumn& other) { return other.At >= column; });
            AddMeasure(staff, {next, end}, begin, column);
            TakeDots(staff, column);
            next = end;
            begin = column;
        }
    }

private:
    /// The dots on either side of a bar.
    void TakeDots(const TabStaff& staff, std::size_t bar)
    {
        if (bar > 0 && staff.HasDots(bar - 1) && !music.Measures.empty())
            music.Measures.back().EndsRepeat = true;
        if (staff.HasDots(bar + 1))
            startsRepeat = true;
    }

    void AddMeasure(const TabStaff& staff, const std::vector<TabColumn>& columns, std::size_t begin,
                    std::size_t end)
    {
        std::vector<TabWord> letters;
        for (const TabWord& word : staff.Rhythm)
            if (word.At >= begin && word.At < end)
                letters.push_back(word);
        if ((columns.empty() && letters.empty()) || music.Measures.size() >= kMostMeasures)
            return;
        MusicMeasure& measure = music.Measures.emplace_back();
        measure.Beats = heading.Beats;
        measure.BeatUnit = heading.BeatUnit;
        measure.StartsRepeat = std::exchange(startsRepeat, false);
        places.clear();
        if (HaveLetters(columns, letters))
            AddByLetters(measure, columns, letters);
        else if (!columns.empty())
            AddBySpacing(measure, columns, end);
        AddChords(measure, staff, begin, end);
        for (const TabWord& ending : staff.Endings)
            if (ending.At >= begin && ending.At < end)
                measure.Endings = {std::clamp(NumberIn(ending.Text), 1, kHighestEnding)};
    }

    /// Every note has a letter above it.
    static bool HaveLetters(const std::vector<TabColumn>& columns,
                            const std::vector<TabWord>& letters)
    {
        return !letters.empty() && std::ranges::all_of(columns, [&](const TabColumn& column) {
            return std::ranges::find(letters, column.At, &TabWord::At) != letters.end();
        });
    }

    void AddByLetters(MusicMeasure& measure, const std::vector<TabColumn>& columns,
                      const std::vector<TabWord>& letters)
    {
        for (const TabWord& letter : letters) {
            const auto column = std::ranges::find(columns, letter.At, &TabColumn::At);
            const TabColumn rest{letter.At, {}};
            AddEvent(measure, column == columns.end() ? rest : *column, *TabLengthOf(letter.Text));
        }
    }

    /// The measure is divided into eight parts, or into more where notes stand closer.
    void AddBySpacing(MusicMeasure& measure, const std::vector<TabColumn>& columns, std::size_t end)
    {
        constexpr std::size_t kMostParts = 32;
        found.Said.Say("The rhythm is guessed from the spacing.");
        std::vector<std::size_t> parts = PartsOf(columns, end, 8);
        for (std::size_t count = 16;
             std::ranges::adjacent_find(parts) != parts.end() && count <= kMostParts; count *= 2)
            parts = PartsOf(columns, end, count);
        const Units length = 4 * kQuarterUnits * heading.Beats / heading.BeatUnit;
        for (std::size_t i = 0; i < columns.size(); ++i) {
            const auto share = static_cast<Units>(std::max(parts[i + 1], parts[i] + 1) - parts[i]);
            AddEvent(measure, columns[i], length * share / static_cast<Units>(parts.back()));
        }
    }

    /// In which of `count` parts each column stands, and `count` at the end.
    static std::vector<std::size_t> PartsOf(const std::vector<TabColumn>& columns, std::size_t end,
                                            std::size_t count)
    {
        const std::size_t first = columns.front().At;
        const std::size_t width = std::max<std::size_t>(end - first, 1);
        std::vector<std::size_t> parts;
        parts.reserve(columns.size() + 1);
        for (const TabColumn& column : columns)
            parts.push_back(std::min(((column.At - first) * count + width / 2) / width, count));
        parts.push_back(count);
        return parts;
    }

    void AddEvent(MusicMeasure& measure, const TabColumn& column, Units length)
    {
        MusicEvent event;
        event.Length = length;
        for (const TabToken& token : column.Tokens) {
            if (MusicNote* before = NoteBefore(measure, token.Note.String))
                Connect(*before, token);
            event.Notes.push_back(token.Note);
        }
        measure.Events.push_back(std::move(event));
        places.push_back(column.At);
    }

    /// The note of the event before, on that string.
    MusicNote* NoteBefore(MusicMeasure& measure, int string)
    {
        MusicMeasure* with = &measure;
        if (measure.Events.empty())
            with = music.Measures.size() > 1 ? &music.Measures[music.Measures.size() - 2] : nullptr;
        if (!with || with->Events.empty())
            return nullptr;
        auto& notes = with->Events.back().Notes;
        const auto note = std::ranges::find(notes, string, &MusicNote::String);
        return note == notes.end() ? nullptr : &*note;
    }

    static void Connect(MusicNote& before, const TabToken& token)
    {
        if (token.Lead == '=')
            before.Tied = before.Fret == token.Note.Fret;
        else if (token.Lead == 'h' || token.Lead == 'p')
            before.Next = Link::Hammer;
        else if (token.Lead != ' ')
            before.Next = Link::Slide;
    }

    /// A chord's name belongs to the note below it, or to the next one.
    void AddChords(MusicMeasure& measure, const TabStaff& staff, std::size_t begin,
                   std::size_t end) const
    {
        for (const TabWord& chord : staff.Chords) {
            const auto place = std::ranges::lower_bound(places, chord.At);
            if (chord.At >= begin && chord.At < end && place != places.end())
                measure.Events[static_cast<std::size_t>(place - places.begin())].Chord =
                    TextForTable(chord.Text);
        }
    }

    FoundTune& found;
    Music& music;
    const Heading heading;
    bool startsRepeat = false;
    std::vector<std::size_t> places;  // columns of the measure's events
};

}  // namespace

std::vector<FoundTune> ReadTextTab(std::string_view bytes)
{
    const std::vector<std::string> lines = TabLinesOf(bytes);
    const std::vector<TabStaff> staves = TabStavesOf(lines);
    if (staves.empty())
        throw ExchangeError("There is no tablature in it: a staff is four, five or six lines of "
                            "dashes and figures, one below the other.");
    FoundTune found;
    const Heading heading = HeadingOf(lines);
    found.Tune.Title = heading.Title;
    const TuningRecord tuning = TuningOf(staves.front());
    const std::size_t strings = staves.front().Rows.size();
    for (std::size_t s = 1; s <= strings; ++s)
        found.Tune.OpenPitches.push_back(tuning.Pitch(static_cast<int>(s)));
    TabReader reader(found, heading);
    for (const TabStaff& staff : staves) {
        if (staff.Rows.size() == strings)
            reader.Read(staff);
        else
            found.Said.Count("A staff with another number of strings is left out.",
                             "staves with another number of strings are left out.");
    }
    return {std::move(found)};
}

bool HasTabStaff(std::string_view bytes)
{
    return !TabStavesOf(TabLinesOf(bytes)).empty();
}

}  // namespace quillon
