#include "notation/beam_pass.h"

#include "support/tunes.h"

#include <gtest/gtest.h>

#include <vector>

namespace quillon {
namespace {

using Codes = std::vector<int>;

/// The BeamCode of each note of a measure that holds notes and rests of these codes.
class BeamPassOver : public testing::Test {
protected:
    Codes Beams(int beats, int beatUnit, const Codes& notes, int codeBefore = 0)
    {
        Tune tune;
        AddMeasure(tune, beats, beatUnit);
        for (int code : notes)
            AddNote(tune, code, IsNoteValue(code) ? 1 : 0, "5").BeamCode = codeBefore;
        BeamPass pass;
        int ticks = 0;
        const int capacity = beats * TicksPerBeat(beatUnit);
        for (tune.CurNote = 2; tune.CurNote <= tune.LastNote; ++tune.CurNote) {
            pass.Step(tune, ticks, capacity);
            ticks += TicksOf(tune[tune.CurNote].NoteCode);
        }
        run = pass.BeamRun;
        Codes codes;
        for (int i = 2; i <= tune.LastNote; ++i)
            codes.push_back(tune[i].BeamCode);
        return codes;
    }

    Codes Common(const Codes& notes) { return Beams(4, 4, notes); }
    Codes Compound(const Codes& notes) { return Beams(6, 8, notes); }

    int run = 0;  // BeamRun as the last pass left it
};

TEST_F(BeamPassOver, AnEighthAloneGivesItAFlag)
{
    EXPECT_EQ(Common({kEighth}), (Codes{kEighthFlag}));
}

TEST_F(BeamPassOver, TwoEighthsOnABeatIn44JoinsThemByTheMainBeam)
{
    EXPECT_EQ(Common({kEighth, kEighth}), (Codes{kNoBeam, kMainBeam}));
}

TEST_F(BeamPassOver, FourSixteenthsOnABeatDrawsTwoBeamsToTheStart)
{
    EXPECT_EQ(Common({kSixteenth}), (Codes{kSixteenthFlag}));
    EXPECT_EQ(Common({kSixteenth, kSixteenth}), (Codes{kNoBeam, kBothBeams}))
        << "the first has been changed";
    EXPECT_EQ(Common({kSixteenth, kSixteenth, kSixteenth}),
              (Codes{kNoBeam, kBothBeams, kBothBeams}));
    EXPECT_EQ(Common({kSixteenth, kSixteenth, kSixteenth, kSixteenth}),
              (Codes{kNoBeam, kBothBeams, kBothBeams, kBothBeams}));
}

TEST_F(BeamPassOver, AnEighthAndTwoSixteenthsIn44Gives052)
{
    EXPECT_EQ(Common({kEighth, kSixteenth, kSixteenth}), (Codes{kNoBeam, kMainBeam, kBothBeams}));
}

TEST_F(BeamPassOver, TwoSixteenthsAndAnEighthGives025)
{
    EXPECT_EQ(Common({kSixteenth, kSixteenth, kEighth}), (Codes{kNoBeam, kBothBeams, kMainBeam}));
}

TEST_F(BeamPassOver, ASixteenthEighthSixteenthGivesAStubForwardAndAStubBack)
{
    EXPECT_EQ(Common({kSixteenth, kEighth, kSixteenth}),
              (Codes{kForwardStub, kMainBeam, kBackStub}));
}

TEST_F(BeamPassOver, ADottedEighthAndASixteenthKeepsTheDot)
{
    EXPECT_EQ(Common({kDottedEighth, kSixteenth}), (Codes{kDotAlone, kBackStub}));
    EXPECT_EQ(Common({kSixteenth, kDottedEighth}), (Codes{kForwardStub, kDottedMainBeam}));
    EXPECT_EQ(Common({kDottedEighth}), (Codes{kDottedEighthFlag}));
}

TEST_F(BeamPassOver, QuartersAndLongerNotesEndsTheGroup)
{
    EXPECT_EQ(Common({kEighth, kQuarter, kEighth, kEighth}),
              (Codes{kEighthFlag, kNoBeam, kEighthFlag, kEighthFlag}));
    EXPECT_EQ(Common({kDottedQuarter, kEighth}), (Codes{kDotAlone, kEighthFlag}));
    EXPECT_EQ(Common({kEighth, kTripletQuarter, kEighth}),
              (Codes{kEighthFlag, kNoBeam, kEighthFlag}));
}

TEST_F(BeamPassOver, EveryBeatStartsANewGroupInSimpleTime)
{
    EXPECT_EQ(
        Common({kEighth, kEighth, kEighth, kEighth, kEighth, kEighth, kEighth, kEighth}),
        (Codes{kNoBeam, kMainBeam, kNoBeam, kMainBeam, kNoBeam, kMainBeam, kNoBeam, kMainBeam}));
}

TEST_F(BeamPassOver, TripletEighthsBeamsThree)
{
    EXPECT_EQ(Common({kTripletEighth, kTripletEighth, kTripletEighth, kTripletEighth,
                      kTripletEighth, kTripletEighth}),
              (Codes{kNoBeam, kMainBeam, kMainBeam, kNoBeam, kMainBeam, kMainBeam}));
}

TEST_F(BeamPassOver, SixteenthTripletsPartsTheSecondBeamOnTheEighth)
{
    EXPECT_EQ(Common({kTripletSixteenth, kTripletSixteenth, kTripletSixteenth, kTripletSixteenth,
                      kTripletSixteenth, kTripletSixteenth}),
              (Codes{kNoBeam, kBothBeams, kBothBeams, kMainBeam, kBothBeams, kBothBeams}));
    EXPECT_EQ(Common({kEighth, kTripletSixteenth, kTripletSixteenth, kTripletSixteenth}),
              (Codes{kNoBeam, kMainBeam, kBothBeams, kBothBeams}));
}

TEST_F(BeamPassOver, AQuarterRestEndsAGroupInSimpleTime)
{
    Common({kEighth, kQuarterRest});
    EXPECT_EQ(run, 0);
    EXPECT_EQ(Common({kEighth, kQuarterRest, kEighth}), (Codes{kEighthFlag, kNoBeam, kEighthFlag}));
}

TEST_F(BeamPassOver, AQuarterRestEndsNoGroupInCompoundTimeWhereOnly18TicksDo)
{
    EXPECT_EQ(Compound({kSixteenth, kQuarterRest, kSixteenth}),
              (Codes{kForwardStub, kNoBeam, kBackStub}));
    Compound({kEighth, kQuarterRest});
    EXPECT_EQ(run, 1);
    EXPECT_EQ(Compound({kEighth, kQuarterRest, kEighth, kEighth, kEighth}),
              (Codes{kEighthFlag, kNoBeam, kNoBeam, kMainBeam, kMainBeam}));
}

TEST_F(BeamPassOver, HalfOfTheMeasureIn44And24LiesOnABeatAnyway)
{
    EXPECT_EQ(Beams(2, 4, {kEighth, kEighth, kEighth, kEighth}),
              (Codes{kNoBeam, kMainBeam, kNoBeam, kMainBeam}));
    EXPECT_EQ(Common({kQuarter, kEighth, kEighth, kEighth, kEighth, kQuarter}),
              (Codes{kNoBeam, kNoBeam, kMainBeam, kNoBeam, kMainBeam, kNoBeam}));
}

TEST_F(BeamPassOver, HalfOfTheMeasureIn34DoesNotStartAGroup)
{
    // tick 18 is half of 36 and no beat: the eighth there goes on with the group of tick 12
    EXPECT_EQ(Beams(3, 4, {kQuarter, kEighth, kEighth, kQuarter}),
              (Codes{kNoBeam, kNoBeam, kMainBeam, kNoBeam}));
}

TEST_F(BeamPassOver, ACompoundMeasureBeamsByDottedQuarters)
{
    EXPECT_EQ(Compound({kEighth, kEighth, kEighth, kEighth, kEighth, kEighth}),
              (Codes{kNoBeam, kMainBeam, kMainBeam, kNoBeam, kMainBeam, kMainBeam}));
}

TEST_F(BeamPassOver, SixteenthsIn68BeamsSix)
{
    EXPECT_EQ(Compound({kSixteenth, kSixteenth, kSixteenth, kSixteenth, kSixteenth, kSixteenth}),
              (Codes{kNoBeam, kBothBeams, kBothBeams, kBothBeams, kBothBeams, kBothBeams}));
}

TEST_F(BeamPassOver, MixedShortNotesInCompoundTimeKeepsTheirStubs)
{
    EXPECT_EQ(Compound({kEighth, kSixteenth, kSixteenth}), (Codes{kNoBeam, kMainBeam, kBothBeams}));
    EXPECT_EQ(Compound({kDottedEighth, kSixteenth, kEighth}),
              (Codes{kDotAlone, kBackStub, kMainBeam}));
    EXPECT_EQ(Compound({kEighth, kDottedEighth, kSixteenth}),
              (Codes{kNoBeam, kDottedMainBeam, kBackStub}));
}

TEST_F(BeamPassOver, TheNotesOwnBeatUnitChoosesTheTable)
{
    Tune tune;
    AddMeasure(tune, 4, 4);
    AddNote(tune, kEighth, 1, "5");
    AddNote(tune, kQuarterRest);
    AddNote(tune, kEighth, 1, "5").BeatUnit = 8;  // entered under another signature
    BeamPass pass;
    for (int i = 2, ticks = 0; i <= 4; ++i) {
        tune.CurNote = i;
        pass.Step(tune, ticks, 48);
        ticks += TicksOf(tune[i].NoteCode);
    }
    EXPECT_EQ(tune[4].BeamCode, kEighthFlag);
}

TEST_F(BeamPassOver, CodesWithoutARowLeavesTheBeamCodeThatTheyHave)
{
    EXPECT_EQ(Beams(4, 4, {kHalf, kHalfRest, kDottedHalf, kWhole, kEighthRest}, kDottedMainBeam),
              (Codes{kDottedMainBeam, kDottedMainBeam, kDottedMainBeam, kDottedMainBeam,
                     kDottedMainBeam}));
}

TEST_F(BeamPassOver, FourEighthsInARowPartsThem)
{
    Tune tune;
    AddMeasure(tune);
    for (int i = 0; i < 4; ++i)
        AddNote(tune, kEighth, 1, "5");
    BeamPass pass;
    for (int i = 0; i < 4; ++i) {
        tune.CurNote = 2 + i;
        pass.Step(tune, 1 + i, 48);  // never on a beat
    }
    EXPECT_EQ(tune[4].BeamCode, kMainBeam);
    EXPECT_EQ(pass.BeamHalves, 0);
}

TEST_F(BeamPassOver, ANewMeasureResetsItsCountersAndNotTheGroup)
{
    BeamPass pass;
    pass.BeamHalves = 2;
    pass.BeamFlag = 1;
    pass.BeamRun = 3;
    pass.BeamPrev = 7;
    pass.BeamNotes = 2;
    pass.Reset();
    EXPECT_EQ(pass.BeamHalves, 0);
    EXPECT_EQ(pass.BeamFlag, 0);
    EXPECT_EQ(pass.BeamRun, 3);
    EXPECT_EQ(pass.BeamPrev, 7);
    EXPECT_EQ(pass.BeamNotes, 2);
}

}  // namespace
}  // namespace quillon
