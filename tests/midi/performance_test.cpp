#include "midi/performance.h"

#include "midi/midi_text.h"
#include "store/sign_codes.h"
#include "support/faults.h"
#include "support/tunes.h"

namespace quillon {
namespace {

using Events = std::vector<std::string>;

/// Open strings sound at 64, 59, ...; a quarter note is 120 ticks.
class PerformanceTest : public testing::Test {
protected:
    PerformanceTest() { sound.OpenPitch = {64, 59, 55, 50, 45, 40}; }

    Sound sound{120, 25, {}};
    Tune tune;

    MidiText Build()
    {
        MidiFileWriter writer;
        BuildMidiFile(tune, sound, writer);
        return ReadMidi(writer.Bytes());
    }

    /// The events of a string between the program change and the track's end.
    Events Track(int s)
    {
        Events events = Build().Tracks.at(static_cast<std::size_t>(s));
        EXPECT_EQ(events.front(), "0 " + std::to_string(192 + s) + " 25");
        EXPECT_EQ(events.back(), "0 end");
        return {events.begin() + 1, events.end() - 1};
    }

    /// The events of string 1 for a measure with these quarters on it.
    Events Quarters(const std::vector<std::string>& cells)
    {
        AddMeasure(tune);
        for (const std::string& cell : cells)
            AddNote(tune, kQuarter, 1, cell);
        return Track(1);
    }

    /// A measure of one quarter that tells by its pitch which measure it is.
    NoteRecord& AddTelling()
    {
        AddMeasure(tune);
        const int head = tune.LastNote;
        AddNote(tune, kQuarter, 1, std::to_string(int{tune.LastMeas}));
        return tune[head];
    }

    void AddTelling(int count)
    {
        for (int i = 0; i < count; ++i)
            AddTelling();
    }

    NoteRecord& Head(int measure) { return tune[2 * measure - 1]; }

    /// The measures in the order in which they are played.
    std::vector<int> Journey()
    {
        std::vector<int> measures;
        for (const std::string& event : Track(1))
            if (event.ends_with(" 100"))
                measures.push_back(std::stoi(event.substr(event.find(' ', 3))) - 64);
        return measures;
    }

    std::string Explanation()
    {
        try {
            Build();
        } catch (const Fault& fault) {
            return fault.Explanation();
        }
        return "no fault";
    }
};

using Measures = std::vector<int>;

// Notes, rests, chords

TEST_F(PerformanceTest, OneMeasureGivesTheProgramChangeThenItsNotes)
{
    AddMeasure(tune);
    AddNote(tune, kQuarter, 2, "0");
    AddNote(tune, kEighth, 1, "3");
    AddNote(tune, kHalf, 1, "5");
    EXPECT_EQ(Track(1), (Events{"120 145 67 100", "60 145 67 0", "0 145 69 100", "240 145 69 0"}));
    EXPECT_EQ(Track(2), (Events{"0 146 59 100", "120 146 59 0"}));
    EXPECT_EQ(Track(3), Events{});
}

TEST_F(PerformanceTest, AChordStartsAtTheSameTickOnItsTracksAndIsSilenceOnTheOthers)
{
    AddMeasure(tune);
    AddNote(tune, kQuarterRest);
    NoteRecord& chord = AddNote(tune, kQuarter);
    chord.Slot(1) = "0";
    chord.Slot(2) = "1";
    chord.Slot(3) = "2";
    AddNote(tune, kQuarter, 4, "4");
    EXPECT_EQ(Track(1), (Events{"120 145 64 100", "120 145 64 0"}));
    EXPECT_EQ(Track(2), (Events{"120 146 60 100", "120 146 60 0"}));
    EXPECT_EQ(Track(3), (Events{"120 147 57 100", "120 147 57 0"}));
    EXPECT_EQ(Track(4), (Events{"240 148 54 100", "120 148 54 0"}));
}

TEST_F(PerformanceTest, ARestIsSilenceOnEveryTrack)
{
    AddMeasure(tune);
    AddNote(tune, kHalfRest);
    AddNote(tune, kQuarterRest, 1, "3");  // a cell in a rest is not heard
    NoteRecord& note = AddNote(tune, kQuarter);
    for (int s = 1; s <= 6; ++s)
        note.Slot(s) = "0";
    for (int s = 1; s <= 6; ++s)
        EXPECT_EQ(Track(s).at(0), "360 " + std::to_string(144 + s) + " " +
                                      std::to_string(sound.OpenPitch[s - 1]) + " 100");
}

TEST_F(PerformanceTest, CodesUpTo90SoundAndThoseAboveAreSilent)
{
    AddMeasure(tune);
    AddNote(tune, 90, 1, "1");
    AddNote(tune, 91, 1, "2");
    AddNote(tune, kQuarter, 1, "3");
    EXPECT_EQ(Track(1), (Events{"0 145 65 100", "0 145 65 0", "0 145 67 100", "120 145 67 0"}));
}

TEST_F(PerformanceTest, ARestWritesNothingOnAnyTrack)
{
    AddMeasure(tune);
    for (const char* cell : {"0", "2"}) {
        AddNote(tune, kQuarterRest);
        AddNote(tune, kQuarter, 1, cell);
    }
    AddNote(tune, kEighthRest).Slot(2) = "3";
    EXPECT_EQ(Track(1),
              (Events{"120 145 64 100", "120 145 64 0", "120 145 66 100", "120 145 66 0"}));
    for (int s = 2; s <= 6; ++s)
        EXPECT_EQ(Track(s), Events{}) << s;
}

TEST_F(PerformanceTest, NoteLengthsAreCutToWholeTicksOneByOne)
{
    const std::vector<std::pair<int, int>> lengths = {
        {kTripletSixteenth, 16 },
        {kSixteenth,        25 },
        {kTripletEighth,    33 },
        {kEighth,           50 },
        {kDottedEighth,     75 },
        {kTripletQuarter,   66 },
        {kQuarter,          100},
        {kDottedQuarter,    150},
        {kHalf,             200},
        {kDottedHalf,       300},
        {kWhole,            400},
        {12,                0  },
        {-7,                0  }
    };
    sound.Tempo = 100;
    AddMeasure(tune);
    Events expected;
    for (const auto& [code, ticks] : lengths) {
        AddNote(tune, code, 1, "0");
        expected.push_back("0 145 64 100");
        expected.push_back(std::to_string(ticks) + " 145 64 0");
    }
    EXPECT_EQ(Track(1), expected);
}

TEST_F(PerformanceTest, ThreeTripletEighthsAt100Make99Ticks)
{
    sound.Tempo = 100;
    AddMeasure(tune);
    for (int i = 0; i < 3; ++i)
        AddNote(tune, kTripletEighth, 2, "0");
    AddNote(tune, kQuarter, 1, "0");
    EXPECT_EQ(Track(1).at(0), "99 145 64 100");
}

TEST_F(PerformanceTest, RestLengthsAreCutToWholeTicks)
{
    const std::vector<std::pair<int, int>> lengths = {
        {kHalfRest,             202},
        {kWholeRest,            404},
        {kTripletSixteenthRest, 16 },
        {kSixteenthRest,        25 },
        {kTripletEighthRest,    33 },
        {kEighthRest,           50 },
        {kTripletQuarterRest,   67 },
        {kQuarterRest,          101},
        {91,                    0  },
        {100,                   0  },
        {998,                   0  }
    };
    sound.Tempo = 101;
    AddMeasure(tune);
    for (const auto& [code, ticks] : lengths) {
        AddNote(tune, code);
        AddNote(tune, kQuarter, 1, "0");
    }
    const Events played = Track(1);
    for (std::size_t i = 0; i < lengths.size(); ++i)
        EXPECT_EQ(played.at(2 * i), std::to_string(lengths[i].second) + " 145 64 100")
            << lengths[i].first;
}

// Repeats and endings

TEST_F(PerformanceTest, ARepeatPlaysItsMeasuresTwiceAndGoesOn)
{
    AddTelling(5);
    Head(2).BarCode = kRepeatStart;
    Head(4).BarCode = kRepeatEnd;
    EXPECT_EQ(Journey(), (Measures{1, 2, 3, 4, 2, 3, 4, 5}));
}

TEST_F(PerformanceTest, ARepeatInTheLastMeasureIsTakenAtTheTunesEnd)
{
    AddTelling(3);
    Head(2).BarCode = kRepeatStart;
    Head(3).BarCode = kRepeatEnd;
    EXPECT_EQ(Journey(), (Measures{1, 2, 3, 2, 3}));
}

TEST_F(PerformanceTest, ARepeatWithoutAStartGoesBackToRecord1)
{
    AddTelling(3);
    Head(2).BarCode = kRepeatEnd;
    EXPECT_EQ(Journey(), (Measures{1, 2, 1, 2, 3}));
}

TEST_F(PerformanceTest, ALaterRepeatWithoutAStartGoesBackAsFarAndRoundInACircle)
{
    AddTelling(5);
    Head(2).BarCode = kRepeatStart;
    Head(3).BarCode = kRepeatEnd;
    Head(5).BarCode = kRepeatEnd;
    // From measure 5 back to 2, where the repeat at 3 makes the one at 5 count as new.
    EXPECT_THROW(Build(), NeverEnding);
    Head(4).BarCode = kRepeatStart;
    EXPECT_EQ(Journey(), (Measures{1, 2, 3, 2, 3, 4, 5, 4, 5}));
}

TEST_F(PerformanceTest, ALaterRepeatWithoutAStartGoesBackToTheSameStart)
{
    AddTelling(5);
    Head(2).BarCode = kRepeatStart;
    Head(3).Slot(2) = "1";
    Head(3).BarCode = kRepeatEnd;
    Head(4).Slot(2) = "2";
    Head(4).BarCode = kRepeatEnd;
    Head(5).Slot(2) = "3";
    EXPECT_EQ(Journey(), (Measures{1, 2, 3, 2, 4, 2, 5}));
}

TEST_F(PerformanceTest, ARepeatStartOnTheRepeatStartItselfChangesNothing)
{
    AddTelling(3);
    Head(1).BarCode = kRepeatStart;
    Head(2).BarCode = kRepeatEnd;
    EXPECT_EQ(Journey(), (Measures{1, 2, 1, 2, 3}));
}

TEST_F(PerformanceTest, FirstAndSecondEndings)
{
    AddTelling(7);
    Head(5).Slot(2) = "1";
    Head(5).BarCode = kRepeatEnd;
    Head(6).Slot(2) = "2";
    EXPECT_EQ(Journey(), (Measures{1, 2, 3, 4, 5, 1, 2, 3, 4, 6, 7}));
}

TEST_F(PerformanceTest, ThreeEndings)
{
    AddTelling(5);
    Head(2).Slot(2) = "1.";
    Head(2).BarCode = kRepeatEnd;
    Head(3).Slot(2) = "2.";
    Head(3).BarCode = kRepeatEnd;
    Head(4).Slot(2) = "3.";
    EXPECT_EQ(Journey(), (Measures{1, 2, 1, 3, 1, 4, 5}));
}

TEST_F(PerformanceTest, AnEndingWithNoLaterOneRunsOffTheTable)
{
    AddTelling(4);
    Head(2).Slot(2) = "1";
    Head(2).BarCode = kRepeatEnd;
    Head(3).Slot(2) = "2";
    Head(3).BarCode = kRepeatEnd;
    EXPECT_FAULT(Build(), SubscriptOutOfRange);
    EXPECT_EQ(Explanation(), "No ending for pass 3 follows measure 2.");
}

TEST_F(PerformanceTest, TheSearchForAnEndingGoesOnAboveTheLastRecord)
{
    AddTelling(3);
    Head(2).Slot(2) = "1";
    Head(2).BarCode = kRepeatEnd;
    Head(4) = Head(1);  // what an earlier, longer tune has left
    Head(4).Slot(2) = "2";
    tune.LastNote = 4;
    EXPECT_EQ(Journey(), (Measures{1, 2, 1}));
}

TEST_F(PerformanceTest, ARepeatInTheLastMeasureIsTakenAfterAllOfItsNotes)
{
    AddTelling(2);
    Head(2).BarCode = kRepeatEnd;
    AddNote(tune, kQuarter, 1, "9");
    EXPECT_EQ(Journey(), (Measures{1, 2, 9, 1, 2, 9}));
}

TEST_F(PerformanceTest, AnEndingThatIsReachedWithoutASearchDoesNotRepeatForItsPass)
{
    AddTelling(4);
    Head(2).Slot(2) = "2";
    Head(3).BarCode = kRepeatEnd;
    EXPECT_EQ(Journey(), (Measures{1, 2, 3, 1, 2, 3, 4}));
}

TEST_F(PerformanceTest, ARepeatStartBeginsItsEndingsAnew)
{
    AddTelling(6);
    for (int measure : {2, 5}) {
        Head(measure).Slot(2) = "1";
        Head(measure).BarCode = kRepeatEnd;
        Head(measure + 1).Slot(2) = "2";
    }
    Head(4).BarCode = kRepeatStart;
    EXPECT_EQ(Journey(), (Measures{1, 2, 1, 3, 4, 5, 4, 6}));
}

TEST_F(PerformanceTest, OnlyTheLeadingNumberOfABracketCounts)
{
    AddTelling(4);
    Head(2).Slot(2) = "1, 2";
    Head(2).BarCode = kRepeatEnd;
    Head(3).Slot(2) = "2nd time";
    EXPECT_EQ(Journey(), (Measures{1, 2, 1, 3, 4}));
}

TEST_F(PerformanceTest, ABracketWithoutALeadingNumberIsNoEnding)
{
    AddTelling(4);
    Head(2).Slot(2) = "last";
    Head(2).BarCode = kRepeatEnd;
    Head(3).Slot(2) = "-2";
    EXPECT_EQ(Journey(), (Measures{1, 2, 1, 2, 3, 4}));
}

// Signs

TEST_F(PerformanceTest, DcAlFineEndsAtTheHeadAfterFine)
{
    AddTelling(5);
    Head(2).Slot(1) = kFine;
    Head(4).Slot(1) = kDcAlFine;
    EXPECT_EQ(Journey(), (Measures{1, 2, 3, 4, 1, 2}));
}

TEST_F(PerformanceTest, DsAlFineGoesBackToTheSign)
{
    AddTelling(5);
    Head(2).Slot(1) = kSign;
    Head(3).Slot(1) = kFine;
    Head(4).Slot(1) = kDsAlFine;
    EXPECT_EQ(Journey(), (Measures{1, 2, 3, 4, 2, 3}));
}

TEST_F(PerformanceTest, DsAlCodaWithoutASignGoesBackToTheFirstMeasure)
{
    AddTelling(6);
    Head(2).Slot(3) = "/to coda";
    Head(4).Slot(1) = kDsAlCoda;
    Head(5).Slot(1) = kCoda;
    EXPECT_EQ(Journey(), (Measures{1, 2, 3, 4, 1, 2, 5, 6}));
}

TEST_F(PerformanceTest, ToCodaIsReadInCapitalsAsWell)
{
    AddTelling(4);
    Head(1).Slot(3) = "/TO CODA";
    Head(2).Slot(1) = kDcAlCoda;
    Head(4).Slot(1) = kCoda;
    EXPECT_EQ(Journey(), (Measures{1, 2, 1, 4}));
}

TEST_F(PerformanceTest, DsAlCodaGoesBackToTheSignAndMissesACodaRightAfterToCoda)
{
    AddTelling(8);
    Head(2).Slot(1) = kSign;
    Head(3).Slot(3) = "/To Coda";
    Head(4).Slot(1) = kCoda;
    Head(5).Slot(1) = kDsAlCoda;
    EXPECT_FAULT(Build(), SubscriptOutOfRange);
    EXPECT_EQ(Explanation(), "No Coda follows measure 4.");
    Head(7).Slot(1) = kCoda;
    EXPECT_EQ(Journey(), (Measures{1, 2, 3, 4, 5, 2, 3, 7, 8}));
}

TEST_F(PerformanceTest, ARepeatAndADsAtOneHeadGoToTheSignForAnotherPass)
{
    AddTelling(5);
    Head(2).Slot(1) = kSign;
    Head(3).Slot(1) = kDsAlFine;
    Head(3).Slot(2) = "1";
    Head(3).BarCode = kRepeatEnd;
    Head(4).Slot(1) = kFine;
    Head(4).Slot(2) = "2";
    EXPECT_EQ(Journey(), (Measures{1, 2, 3, 2, 4}));
}

TEST_F(PerformanceTest, AFineInTheLastMeasureEndsTheRepeatThatIsTakenThere)
{
    AddTelling(3);
    Head(2).Slot(1) = kDsAlFine;
    Head(2).Slot(2) = "1";
    Head(2).BarCode = kRepeatEnd;
    Head(3).Slot(1) = kFine;
    Head(3).Slot(2) = "2";
    Head(3).BarCode = kRepeatEnd;
    EXPECT_EQ(Journey(), (Measures{1, 2, 1, 3}));
}

TEST_F(PerformanceTest, ADsInsideARepeatMakesTheSignTheRepeatsStart)
{
    AddTelling(7);
    Head(2).BarCode = kRepeatStart;
    Head(3).Slot(1) = kSign;
    Head(4).Slot(3) = "/To Coda";
    Head(5).Slot(1) = kDsAlCoda;
    Head(6).Slot(1) = kCoda;
    Head(6).BarCode = kRepeatEnd;
    EXPECT_EQ(Journey(), (Measures{1, 2, 3, 4, 5, 3, 4, 6, 3, 4, 6, 7}));
}

TEST_F(PerformanceTest, AlCodaStaysInForceWhenAlFineFollows)
{
    AddTelling(7);
    Head(2).Slot(3) = "/To Coda";
    Head(3).Slot(1) = kDcAlCoda;
    Head(4).Slot(1) = kCoda;
    Head(5).Slot(1) = kFine;
    Head(6).Slot(1) = kDcAlFine;
    EXPECT_EQ(Journey(), (Measures{1, 2, 3, 1, 2, 4, 5, 6, 1, 2, 4, 5}));
}

TEST_F(PerformanceTest, ADcInTheLastMeasureIsTakenAtTheTunesEnd)
{
    AddTelling(4);
    Head(2).Slot(1) = kFine;
    Head(4).Slot(1) = kDcAlFine;
    EXPECT_EQ(Journey(), (Measures{1, 2, 3, 4, 1, 2}));
}

TEST_F(PerformanceTest, ACodaInTheMeasureAfterToCodaIsMissed)
{
    AddTelling(7);
    Head(3).Slot(3) = "/To Coda";
    Head(4).Slot(1) = kCoda;
    Head(5).Slot(1) = kDcAlCoda;
    EXPECT_FAULT(Build(), SubscriptOutOfRange);
    EXPECT_EQ(Explanation(), "No Coda follows measure 4.");
    Head(7).Slot(1) = kCoda;
    EXPECT_EQ(Journey(), (Measures{1, 2, 3, 4, 5, 1, 2, 3, 7}));
}

TEST_F(PerformanceTest, ToCodaAndFineDoNothingBeforeAJump)
{
    AddTelling(4);
    Head(1).Slot(3) = "/To Coda";
    Head(2).Slot(1) = kFine;
    Head(4).Slot(1) = kCoda;
    EXPECT_EQ(Journey(), (Measures{1, 2, 3, 4}));
}

TEST_F(PerformanceTest, ToCodaInTheLastMeasureDoesNothing)
{
    AddTelling(4);
    Head(1).Slot(3) = "/To Coda";
    Head(2).Slot(1) = kDcAlCoda;
    Head(3).Slot(1) = kCoda;
    Head(4).Slot(3) = "/To Coda";
    EXPECT_EQ(Journey(), (Measures{1, 2, 1, 3, 4}));
}

TEST_F(PerformanceTest, PlainDsAndDcAreSilent)
{
    AddTelling(3);
    Head(1).Slot(1) = kDs;
    Head(2).Slot(1) = kDc;
    EXPECT_EQ(Journey(), (Measures{1, 2, 3}));
}

TEST_F(PerformanceTest, OfTwoHeadsInARowTheSecondIsPassedUnread)
{
    AddTelling();
    AddMeasure(tune);
    AddMeasure(tune).BarCode = kRepeatEnd;
    tune[tune.LastNote].Slot(1) = kDcAlFine;
    AddNote(tune, kQuarter, 1, "3");
    EXPECT_EQ(Journey(), (Measures{1, 3}));
}

TEST_F(PerformanceTest, SignsThatLeadInACircleNeverComeToAnEnd)
{
    AddTelling(3);
    Head(3).Slot(1) = kDsAlFine;
    EXPECT_THROW(Build(), NeverEnding);
}

TEST_F(PerformanceTest, EveryStringMakesTheSameJourney)
{
    AddTelling(3);
    Head(2).BarCode = kRepeatEnd;
    for (int m = 1; m <= 3; ++m)
        tune[2 * m].Slot(6) = "0";
    EXPECT_EQ(Track(1).size(), Track(6).size());
}

TEST_F(PerformanceTest, TheWalkLeavesCurNoteWhereItEnds)
{
    AddTelling(3);
    tune.CurNote = 5;
    Build();
    EXPECT_EQ(tune.CurNote, 7);
}

// The header record, and the edges of the table

TEST_F(PerformanceTest, ATitleSizeAbove11PlaysTheHeadersTextsFor0Ticks)
{
    tune[0].NoteCode = 20;
    tune[0].Slot(1) = "Traditional";
    tune[0].Slot(2) = "3 verses";
    AddTelling();
    EXPECT_EQ(Track(1), (Events{"0 145 64 100", "0 145 64 0", "0 145 65 100", "120 145 65 0"}));
    EXPECT_EQ(Track(2), (Events{"0 146 62 100", "0 146 62 0"}));
}

TEST_F(PerformanceTest, ATitleSizeOfANoteCodePlaysTheHeadersTextsForItsLength)
{
    tune[0].NoteCode = 9;
    tune[0].Slot(1) = "Traditional";
    AddTelling();
    EXPECT_EQ(Track(1), (Events{"0 145 64 100", "240 145 64 0", "0 145 65 100", "120 145 65 0"}));
}

TEST_F(PerformanceTest, Code0IsSteppedOverOnceAndAfterAHeadIsANoteOfNoLength)
{
    AddMeasure(tune);
    AddNote(tune, 0, 1, "1");  // right after the head
    AddNote(tune, 0, 1, "2");  // stepped over
    AddNote(tune, 0, 1, "3");  // not tested again
    AddNote(tune, kQuarter, 1, "4");
    EXPECT_EQ(Track(1), (Events{"0 145 65 100", "0 145 65 0", "0 145 67 100", "0 145 67 0",
                                "0 145 68 100", "120 145 68 0"}));
}

TEST_F(PerformanceTest, ATieInTheTablesLastRecordAsksPastItsEnd)
{
    AddTelling();
    while (tune.LastNote < kLastRecord)
        AddNote(tune, kQuarter, 1, "3");
    EXPECT_NO_THROW(Build());
    tune[kLastRecord].Slot(1) = "3^";
    EXPECT_FAULT(Build(), SubscriptOutOfRange);
    EXPECT_EQ(Explanation(), "Measure 1 cannot be played.");
}

TEST_F(PerformanceTest, AFretBeyond16BitsIsAnOverflow)
{
    AddTelling(2);
    tune[4].Slot(1) = "40000";
    EXPECT_FAULT(Build(), Overflow);
    EXPECT_EQ(Explanation(), "Measure 2 cannot be played.");
}

// Cells

TEST_F(PerformanceTest, ATieSoundsOnceFromItsFirstCellToItsLast)
{
    EXPECT_EQ(Quarters({"5", "3^", "3^", "3", "5"}),
              (Events{"0 145 69 100", "120 145 69 0", "0 145 67 100", "360 145 67 0",
                      "0 145 69 100", "120 145 69 0"}));
}

TEST_F(PerformanceTest, ATieOverABarLineIsASlur)
{
    AddMeasure(tune);
    AddNote(tune, kQuarter, 1, "3^");
    AddMeasure(tune);
    AddNote(tune, kQuarter, 1, "3");
    EXPECT_EQ(Track(1), (Events{"0 145 67 100", "120 145 67 0", "0 145 67 50", "120 145 67 0"}));
}

TEST_F(PerformanceTest, ATieFromFret0OverABarLineStaysATie)
{
    AddMeasure(tune);
    AddNote(tune, kQuarter, 1, "0^");
    AddMeasure(tune);
    AddNote(tune, kQuarter, 1, "0");
    EXPECT_EQ(Track(1), (Events{"0 145 64 100", "240 145 64 0"}));
}

TEST_F(PerformanceTest, ATieOverABarLineComparesWithWhatTheHeadHolds)
{
    AddMeasure(tune);
    AddNote(tune, kQuarter, 2, "2^");
    AddMeasure(tune).Slot(2) = "2nd";
    AddNote(tune, kQuarter, 2, "5");
    EXPECT_EQ(Track(2), (Events{"0 146 64 100", "240 146 64 0"}));
}

TEST_F(PerformanceTest, ATieAtFret0BeforeAnEmptyCellComesOutLateAndLong)
{
    EXPECT_EQ(Quarters({"0^", "", "3"}), (Events{"120 145 67 100", "240 145 67 0"}));
}

TEST_F(PerformanceTest, ATieThatIsOpenAtTheTunesEndIsNotHeard)
{
    EXPECT_EQ(Quarters({"3", "0^"}), (Events{"0 145 67 100", "120 145 67 0"}));
}

TEST_F(PerformanceTest, ACellWithoutANumberSoundsTheOpenString)
{
    EXPECT_EQ(Quarters({"x", "(3)"}),
              (Events{"0 145 64 100", "120 145 64 0", "0 145 64 100", "120 145 64 0"}));
}

TEST_F(PerformanceTest, APitchOf0OrBelowWritesNothingAndLosesItsTicks)
{
    sound.OpenPitch[0] = -3;
    EXPECT_EQ(Quarters({"3", "0", "4", ""}), (Events{"0 145 1 100", "120 145 1 0"}));
}

TEST_F(PerformanceTest, APitchAbove127IsHeldTo127)
{
    EXPECT_EQ(Quarters({"99"}), (Events{"0 145 127 100", "120 145 127 0"}));
}

TEST_F(PerformanceTest, ATwoNoteCellHalvesItsTime)
{
    EXPECT_EQ(Quarters({"3-5"}),
              (Events{"0 145 67 100", "60 145 67 0", "0 145 69 66", "60 145 69 0"}));
}

TEST_F(PerformanceTest, AnEqualsSignPartsTwoNotesWhereThereIsNoDash)
{
    EXPECT_EQ(Quarters({"3=5", "1=2-7"}),
              (Events{"0 145 67 100", "60 145 67 0", "0 145 69 66", "60 145 69 0", "0 145 65 100",
                      "60 145 65 0", "0 145 71 66", "60 145 71 0"}));
}

TEST_F(PerformanceTest, HalvesOfAnOddTimeGoToEvenBothAlike)
{
    sound.Tempo = 123;
    EXPECT_EQ(Quarters({"3-5"}),
              (Events{"0 145 67 100", "62 145 67 0", "0 145 69 66", "62 145 69 0"}));
    tune[2].Slot(1) = "3-5";
    sound.Tempo = 121;
    EXPECT_EQ(Track(1).at(1), "60 145 67 0");
}

TEST_F(PerformanceTest, ASeparatorAtTheEndMakesAPlainNote)
{
    EXPECT_EQ(Quarters({"3-"}), (Events{"0 145 67 100", "120 145 67 0"}));
}

TEST_F(PerformanceTest, ASeparatorAtTheStartPartsTheOpenStringFromAFret)
{
    EXPECT_EQ(Quarters({"-5"}),
              (Events{"0 145 64 100", "60 145 64 0", "0 145 69 66", "60 145 69 0"}));
}

TEST_F(PerformanceTest, ATiedTwoNoteCellEndsItsFirstNoteWithoutAStart)
{
    EXPECT_EQ(Quarters({"3-5^", "3"}),
              (Events{"60 145 67 0", "0 145 69 66", "0 145 67 100", "180 145 67 0"}));
}

TEST_F(PerformanceTest, VelocityAfterASlurIsLoweredForTheNextNoteOnThatStringOnly)
{
    AddMeasure(tune);
    AddNote(tune, kQuarter, 1, "3^");
    tune[tune.LastNote].Slot(2) = "1";
    AddNote(tune, kQuarter, 1, "5");
    tune[tune.LastNote].Slot(2) = "1";
    AddNote(tune, kQuarter, 1, "5");
    EXPECT_EQ(Track(1), (Events{"0 145 67 100", "120 145 67 0", "0 145 69 50", "120 145 69 0",
                                "0 145 69 100", "120 145 69 0"}));
    EXPECT_EQ(Track(2).at(2), "0 146 60 100");
}

TEST_F(PerformanceTest, ARestBeforeATiedTwoNoteCellIsLost)
{
    EXPECT_EQ(Quarters({"", "3-5^", "3", "5"}),
              (Events{"60 145 67 0", "0 145 69 66", "0 145 67 100", "180 145 67 0", "0 145 69 100",
                      "120 145 69 0"}));
}

TEST_F(PerformanceTest, ASlurAtTheEndOfAStringDoesNotLowerTheNextString)
{
    AddMeasure(tune);
    AddNote(tune, kQuarter, 1, "3^").Slot(2) = "1";
    EXPECT_EQ(Track(2), (Events{"0 146 60 100", "120 146 60 0"}));
}

TEST_F(PerformanceTest, VelocityIsHalvedAlongARunOfSlurs)
{
    const Events played = Quarters({"1^", "2^", "3^", "4^-", "5"});
    EXPECT_EQ(played.at(2), "0 145 66 50");
    EXPECT_EQ(played.at(4), "0 145 67 25");
    EXPECT_EQ(played.at(6), "0 145 68 12");
    EXPECT_EQ(played.at(8), "0 145 69 6");
}

TEST_F(PerformanceTest, TheBanjosFifthStringCountsItsFretsFromTheNecks)
{
    tune.NumStrings = 5;
    sound.OpenPitch[4] = 67;
    AddMeasure(tune);
    for (const char* cell : {"5", "6", "7-9"})
        AddNote(tune, kQuarter, 5, cell);
    // The second note of a pair keeps its full fret.
    EXPECT_EQ(Track(5), (Events{"0 149 72 100", "120 149 72 0", "0 149 68 100", "120 149 68 0",
                                "0 149 69 100", "60 149 69 0", "0 149 76 66", "60 149 76 0"}));
}

TEST_F(PerformanceTest, TheFifthStringOfAGuitarIsAsAnyOther)
{
    AddMeasure(tune);
    AddNote(tune, kQuarter, 5, "7");
    EXPECT_EQ(Track(5).at(0), "0 149 52 100");
}

// The file

TEST_F(PerformanceTest, ATuneOf4StringsGivesFiveTracksAndOneOf6Seven)
{
    AddTelling();
    EXPECT_EQ(Build().Tracks.size(), 7u);
    tune.NumStrings = 4;
    EXPECT_EQ(Build().Tracks.size(), 5u);
}

TEST_F(PerformanceTest, TheDivisionIsTheTempoAndTheTempoValueIsCut)
{
    AddTelling();
    for (const auto& [tempo, value] : {std::pair(30, "2000000"), std::pair(300, "200000"),
                                       std::pair(120, "500000"), std::pair(130, "461538")}) {
        sound.Tempo = tempo;
        const MidiText file = Build();
        EXPECT_EQ(file.Format, 1);
        EXPECT_EQ(file.Division, tempo);
        EXPECT_EQ(file.Tracks[0], (Events{std::string("0 tempo ") + value, "0 end"}));
    }
}

TEST_F(PerformanceTest, AMinuteIs60000000Microseconds)
{
    EXPECT_EQ(MicrosecondsPerQuarter(1), 60000000);
}

TEST_F(PerformanceTest, AWriterThatHoldsAnotherFileBeginsAnew)
{
    AddTelling();
    MidiFileWriter writer;
    BuildMidiFile(tune, sound, writer);
    const std::string first = writer.Bytes();
    BuildMidiFile(tune, sound, writer);
    EXPECT_EQ(writer.Bytes(), first);
}

TEST_F(PerformanceTest, WhatWasPlayedIsThatOfTheLastWalk)
{
    AddTelling(2);
    Performance performance(tune, sound);
    for (int walk = 0; walk < 2; ++walk) {
        performance.WalkSilently();
        EXPECT_EQ(performance.Played().size(), 2u);
    }
}

TEST_F(PerformanceTest, ATempoOf0CannotBeDividedBy)
{
    sound.Tempo = 0;
    EXPECT_FAULT(Build(), DivisionByZero);
}

// A length is told as a fraction of a quarter note: a dotted eighth as Int(n / 4 * 3).
TEST(TicksAt, AreTheFloorOfEachFractionOfAQuarterForEveryTempo)
{
    struct Fraction {
        int NoteCode;
        int Divisor;
        int Factor;
    };
    constexpr Fraction kFractions[] = {
        {kTripletSixteenth,     6, 1},
        {kSixteenth,            4, 1},
        {kTripletEighth,        3, 1},
        {kEighth,               2, 1},
        {kDottedEighth,         4, 3},
        {kTripletQuarter,       3, 2},
        {kQuarter,              1, 1},
        {kDottedQuarter,        2, 3},
        {kHalf,                 1, 2},
        {kDottedHalf,           1, 3},
        {kWhole,                1, 4},
        {kTripletSixteenthRest, 6, 1},
        {kSixteenthRest,        4, 1},
        {kTripletEighthRest,    3, 1},
        {kEighthRest,           2, 1},
        {kTripletQuarterRest,   3, 2},
        {kQuarterRest,          1, 1},
        {kHalfRest,             1, 2},
        {kWholeRest,            1, 4},
    };
    for (int quarter = 0; quarter <= 32767; ++quarter)
        for (const Fraction& note : kFractions)
            ASSERT_EQ(TicksAt(quarter, note.NoteCode),
                      Floor(1.0 * quarter / note.Divisor * note.Factor))
                << quarter << " ticks, code " << note.NoteCode;
    EXPECT_EQ(TicksAt(120, kHead), 0);
    EXPECT_EQ(TicksAt(120, 50), 0);
}

}  // namespace
}  // namespace quillon
