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
        BeamPass pass(tune, beats * TicksPerBeat(beatUnit));
        int ticks = 0;
        for (tune.CurNote = 2; tune.CurNote <= tune.LastNote; ++tune.CurNote) {
            pass.Step(ticks);
            ticks += TicksOf(tune[tune.CurNote].NoteCode);
        }
        Codes codes;
        for (int i = 2; i <= tune.LastNote; ++i)
            codes.push_back(tune[i].BeamCode);
        return codes;
    }

    Codes Common(const Codes& notes) { return Beams(4, 4, notes); }
    Codes Compound(const Codes& notes) { return Beams(6, 8, notes); }
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
    EXPECT_EQ(Common({kEighth, kQuarterRest, kEighth}), (Codes{kEighthFlag, kNoBeam, kEighthFlag}));
}

TEST_F(BeamPassOver, AQuarterRestEndsNoGroupInCompoundTimeWhereOnly18TicksDo)
{
    EXPECT_EQ(Compound({kSixteenth, kQuarterRest, kSixteenth}),
              (Codes{kForwardStub, kNoBeam, kBackStub}));
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
    BeamPass pass(tune, 48);
    for (int i = 2, ticks = 0; i <= 4; ++i) {
        tune.CurNote = i;
        pass.Step(ticks);
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

TEST_F(BeamPassOver, TheFourthEighthInARowGivesTheRecordBeforeItTheMainBeam)
{
    // A sixteenth puts the eighths beside the beats, where nothing else parts them. The rests show
    // which record it is: by themselves they keep the code that they have.
    EXPECT_EQ(
        Common({kSixteenth, kEighth, kEighth, kEighth, kEighthRest, kEighth, kEighthRest, kEighth}),
        (Codes{kForwardStub, kMainBeam, kMainBeam, kMainBeam, kMainBeam, kMainBeam, kNoBeam,
               kMainBeam}));
}

}  // namespace
}  // namespace quillon
