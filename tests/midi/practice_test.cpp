#include "midi/practice.h"

#include "midi/midi_text.h"
#include "store/sign_codes.h"
#include "support/tunes.h"

#include <algorithm>
#include <random>
#include <sstream>

namespace quillon {
namespace {

struct Note {
    Ticks On;
    Ticks Off;
    int Pitch;
    int Velocity;
    auto operator<=>(const Note&) const = default;
};

using Notes = std::vector<Note>;

std::ostream& operator<<(std::ostream& out, const Note& note)
{
    return out << note.On << "-" << note.Off << " " << note.Pitch << "/" << note.Velocity;
}

/// The notes of a track, in order.
Notes NotesOfTrack(const std::vector<std::string>& events)
{
    Notes notes;
    Ticks at = 0;
    for (const std::string& event : events) {
        std::istringstream words(event);
        int delta = 0, status = 0, pitch = 0, velocity = 0;
        words >> delta >> status >> pitch >> velocity;
        at += delta;
        if (status < 144 || status >= 160)
            continue;
        if (velocity > 0)
            notes.push_back({at, -1, pitch, velocity});
        for (Note& note : notes)
            if (velocity == 0 && note.Off < 0 && note.Pitch == pitch)
                note.Off = at;
    }
    return notes;
}

std::vector<Notes> NotesOf(const std::string& midi)
{
    std::vector<Notes> strings;
    for (const auto& events : ReadMidi(midi).Tracks)
        strings.push_back(NotesOfTrack(events));
    strings.erase(strings.begin());  // the tempo track
    return strings;
}

/// A quarter note is 120 ticks, and so is every length a whole number, also when halved.
class PracticeTest : public testing::Test {
protected:
    Sound sound{
        120, 25, {64, 59, 55, 50, 45, 40}
    };
    Tune tune;

    NoteRecord& Head(int measure) { return tune[5 * measure - 4]; }

    PracticeTrack Make(int first, int last, const PracticeChoices& choices = {})
    {
        return MakePractice(tune, sound, PartOf(PositionsOf(tune, sound), first, last), choices);
    }

    std::string Whole()
    {
        MidiFileWriter writer;
        BuildMidiFile(tune, sound, writer);
        return writer.Bytes();
    }

    /// The clicks, the drums' track.
    Notes Clicks(const PracticeTrack& track) { return NotesOf(track.Midi).at(6); }

    std::string Refusal(int first, const PracticeChoices& choices = {})
    {
        try {
            Make(first, first, choices);
        } catch (const std::runtime_error& error) {
            return error.what();
        }
        return "";
    }
};

// What is cut out

/// Measures of anything that is played in time, with repeats, endings and ties over bars.
Tune RandomMusic(std::mt19937& random)
{
    const auto chance = [&](int percent) { return static_cast<int>(random() % 100) < percent; };
    const std::vector<int> codes = NotesAndRests();
    Tune tune;
    const int count = 1 + static_cast<int>(random() % 8);
    for (int measure = 1; measure <= count; ++measure) {
        NoteRecord& head = AddMeasure(tune);
        if (chance(25))
            head.BarCode = chance(50) ? kRepeatStart : kRepeatEnd;
        if (chance(20))
            head.Slot(2) = chance(50) ? "1" : "2";
        if (chance(15))
            head.Slot(1) = chance(50) ? kDcAlFine : kFine;
        for (int i = static_cast<int>(random() % 6); i > 0; --i) {
            NoteRecord& note = AddNote(tune, codes[random() % codes.size()]);
            const std::vector<std::string> cells = {"0", "0^", "3", "3^", "5", "3-5", "7=5"};
            for (int s = 1; s <= 6; ++s)
                if (chance(30))
                    note.Slot(s) = cells[random() % cells.size()];
        }
    }
    return tune;
}

/// Cuts notes at ticks in ascending order.
Notes CutAt(const Notes& notes, const std::vector<Ticks>& cuts)
{
    Notes pieces;
    for (Note note : notes) {
        for (const Ticks cut : cuts)
            if (note.On < cut && cut < note.Off) {
                pieces.push_back({note.On, cut, note.Pitch, note.Velocity});
                note.On = cut;
            }
        pieces.push_back(note);
    }
    return pieces;
}

TEST_F(PracticeTest, PartsCutAtEachMeasureAreTheWholeWhenJoined)
{
    int tunes = 0;
    for (unsigned seed = 1; seed <= 300; ++seed) {
        std::mt19937 random(seed);
        tune = RandomMusic(random);
        PlayPositions positions;
        try {
            positions = PositionsOf(tune, sound);
        } catch (const std::runtime_error&) {
            continue;  // no Fine to end at, no ending for a pass
        }
        ++tunes;
        std::vector<Notes> joined(6);
        std::vector<Ticks> cuts;
        for (std::size_t first = 0, next = 0; first < positions.Measures.size(); first = next) {
            next = std::min(first + 1 + random() % 3, positions.Measures.size());
            const Ticks begin = positions.Measures[first].Begin;
            cuts.push_back(begin);
            if (positions.EndOf(next - 1) == begin)
                continue;  // nothing to play
            const auto part = NotesOf(MakePractice(tune, sound, {first, next - 1}, {}).Midi);
            for (std::size_t s = 0; s < 6; ++s)
                for (const Note& note : part[s])
                    joined[s].push_back(
                        {note.On + begin, note.Off + begin, note.Pitch, note.Velocity});
        }
        const auto whole = NotesOf(Whole());
        for (std::size_t s = 0; s < 6; ++s)
            EXPECT_EQ(joined[s], CutAt(whole[s], cuts)) << "seed " << seed << " string " << s + 1;
    }
    EXPECT_GT(tunes, 150);
}

TEST_F(PracticeTest, StringsThatRunApartInTheFileAreKeptTogether)
{
    sound.Tempo = 130;  // an eighth of 65 ticks is split into 32 and 32
    for (int measure = 0; measure < 20; ++measure) {
        AddMeasure(tune);
        for (int i = 0; i < 8; ++i) {
            NoteRecord& note = AddNote(tune, kEighth, 1, "3-5");
            note.Slot(6) = "0";
        }
    }
    const auto strings = NotesOf(Make(1, 20).Midi);
    for (std::size_t i = 0; i < 160; ++i) {
        EXPECT_EQ(strings[0][2 * i].On, 65 * static_cast<Ticks>(i));
        EXPECT_EQ(strings[5][i].On, 65 * static_cast<Ticks>(i));
    }
}

TEST_F(PracticeTest, ATieOverTheBeginningIsPlayedFromThere)
{
    for (int measure = 0; measure < 2; ++measure) {
        AddMeasure(tune);
        AddNote(tune, kHalf, 1, "0^");  // over the bar line, open strings alone are tied
    }
    AddNote(tune, kHalf, 1, "0");
    EXPECT_EQ(NotesOf(Make(2, 2).Midi)[0], (Notes{
                                               {0, 480, 64, 100}
    }));
    EXPECT_EQ(NotesOf(Make(1, 1).Midi)[0], (Notes{
                                               {0, 240, 64, 100}
    }));
}

TEST_F(PracticeTest, ANoteThatNothingEndsRingsUntilTheNext)
{
    AddMeasure(tune);
    AddNote(tune, kQuarter, 1, "3-5^");  // tied by its first fret, so that nothing ends the second
    AddNote(tune, kQuarter, 1, "3");
    AddMeasure(tune);
    AddNote(tune, kQuarter, 1, "1");
    EXPECT_EQ(NotesOf(Make(1, 1).Midi)[0], (Notes{
                                               {60, 240, 67, 100}
    }));
    EXPECT_EQ(NotesOf(Make(2, 2).Midi)[0], (Notes{
                                               {0, 120, 65, 100}
    }));
}

TEST_F(PracticeTest, APartWithoutNotesIsRefusedInWords)
{
    AddMeasure(tune);
    AddFullMeasures(tune, 1);
    EXPECT_EQ(Refusal(1), "There is nothing to play in measure 1.");
}

TEST_F(PracticeTest, ItsFileHasATempoTrackOneForEachStringAndTheClicks)
{
    using Lines = std::vector<std::string>;
    AddMeasure(tune, 2, 4);
    AddNote(tune, kQuarter, 1, "3").Slot(6) = "2";
    AddNote(tune, kQuarterRest);
    const MidiText file = ReadMidi(Make(1, 1, {.Click = true}).Midi);
    EXPECT_EQ(file.Format, 1);
    EXPECT_EQ(file.Division, 120);
    ASSERT_EQ(file.Tracks.size(), 8u);
    EXPECT_EQ(file.Tracks[0], (Lines{"0 tempo 500000", "240 tempo 500000", "0 end"}));
    EXPECT_EQ(file.Tracks[1], (Lines{"0 193 25", "0 145 67 100", "120 145 67 0", "0 end"}));
    EXPECT_EQ(file.Tracks[2], (Lines{"0 194 25", "0 end"}));
    EXPECT_EQ(file.Tracks[6], (Lines{"0 198 25", "0 150 42 100", "120 150 42 0", "0 end"}));
    EXPECT_EQ(file.Tracks[7],
              (Lines{"0 153 76 110", "15 153 76 0", "105 153 77 80", "15 153 77 0", "0 end"}));
}

TEST_F(PracticeTest, SlursAreHeardDownToTheVelocityOf1)
{
    AddMeasure(tune);
    for (const char* cell : {"1^", "2^", "3^", "4^", "5^", "6^", "7^", "8"})
        AddNote(tune, kQuarter, 1, cell);
    std::vector<int> velocities;
    const Notes played = NotesOf(Make(1, 1).Midi)[0];
    for (const Note& note : played)
        velocities.push_back(note.Velocity);
    EXPECT_EQ(velocities, (std::vector<int>{100, 50, 25, 12, 6, 3, 1}));
}

// Turns and speed

TEST_F(PracticeTest, EachTurnBeginsWhereTheOneBeforeItEnds)
{
    AddFullMeasures(tune, 3);
    const PracticeTrack track = Make(2, 3, {.Turns = 3});
    ASSERT_EQ(track.Turns.size(), 3u);
    EXPECT_EQ(track.Turns[2].Begin, 1920);
    EXPECT_EQ(track.Positions.End, 2880);
    ASSERT_EQ(track.Positions.Measures.size(), 6u);
    EXPECT_EQ(track.Positions.Measures[3].Number, 3);
    EXPECT_EQ(track.Positions.Measures[3].Head, 11);
    EXPECT_EQ(track.Positions.Measures[3].Begin, 1440);
    ASSERT_EQ(track.Positions.Columns.size(), 24u);
    for (std::size_t i = 0; i < 24; ++i) {
        EXPECT_EQ(track.Positions.Columns[i].Begin, 120 * static_cast<Ticks>(i));
        EXPECT_EQ(track.Positions.Columns[i].Record, (i / 4 % 2 == 0 ? 7 : 12) + int(i % 4));
    }
    const Notes played = NotesOf(track.Midi)[1];
    ASSERT_EQ(played.size(), 24u);
    for (std::size_t i = 0; i < 24; ++i)
        EXPECT_EQ(played[i].On, 120 * static_cast<Ticks>(i));
}

TEST_F(PracticeTest, SpeedIsTempoAndNothingElse)
{
    AddFullMeasures(tune, 1);
    const PracticeTrack slow = Make(1, 1, {.Speed = 50});
    EXPECT_EQ(NotesOf(slow.Midi), NotesOf(Make(1, 1).Midi));
    EXPECT_EQ(ReadMidi(slow.Midi).Tracks[0].at(0), "0 tempo 1000000");
    EXPECT_EQ(ReadMidi(slow.Midi).Division, 120);
    EXPECT_DOUBLE_EQ(slow.Positions.SecondsAt(480), 4);
}

TEST_F(PracticeTest, SpeedStepsUpEachTurnUntilTheGoal)
{
    AddFullMeasures(tune, 1);
    const PracticeTrack track = Make(1, 1, {.Speed = 60, .StepUp = 15, .Goal = 80, .Turns = 4});
    std::vector<int> speeds;
    for (const PracticeTurn& turn : track.Turns)
        speeds.push_back(turn.Speed);
    EXPECT_EQ(speeds, (std::vector<int>{60, 75, 80, 80}));
    EXPECT_EQ(ReadMidi(track.Midi).Tracks[0],
              (std::vector<std::string>{"0 tempo 833333", "480 tempo 666666", "480 tempo 625000",
                                        "960 tempo 625000", "0 end"}));
    EXPECT_NEAR(track.Positions.SecondsAt(1920), 2 / .6 + 2 / .75 + 2 / .8 + 2 / .8, 1e-5);
}

TEST_F(PracticeTest, TheSmallestStepIs1AndWithoutOneTheTempoIsToldOnce)
{
    AddFullMeasures(tune, 1);
    const PracticeTrack up = Make(1, 1, {.Speed = 60, .StepUp = 1, .Goal = 80, .Turns = 2});
    EXPECT_EQ(up.Turns[1].Speed, 61);
    EXPECT_EQ(up.Positions.Tempos.size(), 2u);
    const PracticeTrack even = Make(1, 1, {.Speed = 60, .StepUp = 0, .Goal = 80, .Turns = 2});
    EXPECT_EQ(even.Turns[1].Speed, 60);
    EXPECT_EQ(even.Positions.Tempos.size(), 1u);
}

TEST_F(PracticeTest, AGoalBelowTheSpeedChangesNothing)
{
    AddFullMeasures(tune, 1);
    EXPECT_EQ(Make(1, 1, {.Speed = 120, .StepUp = 10, .Goal = 100, .Turns = 2}).Turns[1].Speed,
              120);
}

TEST_F(PracticeTest, ChoicesOutOfRangeAreHeldToIt)
{
    AddFullMeasures(tune, 1);
    EXPECT_EQ(Make(1, 1, {.Speed = 0}).Turns[0].Speed, kSlowestPractice);
    EXPECT_EQ(Make(1, 1, {.Speed = 9999}).Turns[0].Speed, kFastestPractice);
    EXPECT_EQ(Make(1, 1, {.Turns = 0}).Turns.size(), 1u);
    EXPECT_EQ(Make(1, 1, {.Turns = 1000}).Turns.size(), std::size_t{kMostTurns});
}

TEST_F(PracticeTest, TurnsThatAFileCannotHoldAreRefusedInWords)
{
    sound.Tempo = 300;
    AddMeasure(tune);
    for (int i = 0; i < 1000; ++i)
        AddNote(tune, kWhole, 1, "3");
    EXPECT_EQ(Refusal(1, {.Turns = 999}), "So many turns do not fit into a MIDI file.");
}

TEST_F(PracticeTest, ARestAtTheEndLasts)
{
    AddMeasure(tune);
    AddNote(tune, kHalf, 1, "3");
    AddNote(tune, kHalfRest);
    EXPECT_EQ(ReadMidi(Make(1, 1).Midi).Tracks[0].at(1), "480 tempo 500000");
}

// Clicks

std::vector<Ticks> Beginnings(const Notes& clicks)
{
    std::vector<Ticks> ticks;
    for (const Note& click : clicks)
        ticks.push_back(click.On);
    return ticks;
}

TEST_F(PracticeTest, AClickIsOnEachBeatAndAnAccentOnTheFirst)
{
    AddMeasure(tune, 3, 4);
    AddNote(tune, kDottedHalf, 1, "3");
    const PracticeTrack track = Make(1, 1, {.Turns = 2, .Click = true});
    EXPECT_EQ(Clicks(track), (Notes{
                                 {0,   15,  76, 110},
                                 {120, 135, 77, 80 },
                                 {240, 255, 77, 80 },
                                 {360, 375, 76, 110},
                                 {480, 495, 77, 80 },
                                 {600, 615, 77, 80 }
    }));
    EXPECT_EQ(ReadMidi(track.Midi).Tracks.size(), 8u);
    EXPECT_EQ(ReadMidi(Make(1, 1).Midi).Tracks.size(), 7u);
}

TEST_F(PracticeTest, ACountInIsAMeasureOfTheSignatureBeforeTheFirstTurn)
{
    AddMeasure(tune, 6, 8);
    AddNote(tune, kDottedHalf, 1, "3");
    const PracticeTrack track = Make(1, 1, {.Turns = 2, .CountIn = true});
    EXPECT_EQ(Beginnings(Clicks(track)), (std::vector<Ticks>{0, 60, 120, 180, 240, 300}));
    EXPECT_EQ(track.Positions.Measures[0].Begin, 360);
    EXPECT_EQ(track.Positions.MeasureAt(359), std::nullopt);
    EXPECT_EQ(track.Turns[1].Begin, 720);
    EXPECT_EQ(NotesOf(track.Midi)[0].at(0), (Note{360, 720, 67, 100}));
}

TEST_F(PracticeTest, BeforeAPickupAlsoWhatItLacksIsCounted)
{
    AddMeasure(tune);
    AddNote(tune, kEighth, 1, "1");
    AddNote(tune, kQuarter, 1, "3");
    AddFullMeasures(tune, 1);
    const PracticeTrack track = Make(1, 2, {.CountIn = true, .Click = true});
    EXPECT_EQ(track.Positions.Measures[0].Begin, 780);  // 4 beats, and 2 and a half
    EXPECT_EQ(Beginnings(Clicks(track)),
              (std::vector<Ticks>{0, 120, 240, 360, 480, 600, 720, 840, 960, 1080, 1200, 1320}));
    std::vector<Ticks> accents;
    for (const Note& click : Clicks(track))
        if (click.Pitch == 76)
            accents.push_back(click.On);
    EXPECT_EQ(accents, (std::vector<Ticks>{0, 480, 960}));
}

TEST_F(PracticeTest, NoBeatOfAPickupIsTheFirstOfAMeasure)
{
    AddMeasure(tune);
    for (int beat = 0; beat < 3; ++beat)
        AddNote(tune, kQuarter, 1, "3");
    for (const Note& click : Clicks(Make(1, 1, {.Click = true})))
        EXPECT_EQ(click.Pitch, 77) << click.On;
}

TEST_F(PracticeTest, ClicksKeepUpWithTripletsWhoseTicksAreCut)
{
    sound.Tempo = 100;
    AddMeasure(tune);
    for (int i = 0; i < 12; ++i)
        AddNote(tune, kTripletEighth, 1, "3");  // 33 ticks, not 33.3
    EXPECT_EQ(Beginnings(Clicks(Make(1, 1, {.Click = true}))),
              (std::vector<Ticks>{0, 99, 198, 297}));
}

TEST_F(PracticeTest, AClickThatSoundsOnIntoTheNextMeasureIsNotInItsWay)
{
    AddFullMeasures(tune, 1);
    AddMeasure(tune);
    AddNote(tune, kDottedEighth, 1, "1");
    AddNote(tune, kTripletEighth, 1, "3");  // ends 10 ticks after the second beat
    AddMeasure(tune);
    AddNote(tune, kQuarter, 1, "1");
    EXPECT_EQ(Clicks(Make(2, 3,
                          {
                              .Click = true
    })),
              (Notes{{0, 15, 76, 110}, {120, 135, 77, 80}, {130, 145, 76, 110}}));
}

TEST_F(PracticeTest, AnOddTimeSignatureIsHeldToWhatCanBeCounted)
{
    AddMeasure(tune, -3, 0);
    AddNote(tune, kWhole, 1, "3");
    EXPECT_EQ(Clicks(Make(1, 1, {.CountIn = true})).size(), 1u);
    tune[1].Beats = 32000;
    EXPECT_EQ(Clicks(Make(1, 1, {.CountIn = true})).size(), 24u + 16u);  // a pickup of 8 eighths
}

}  // namespace
}  // namespace quillon
