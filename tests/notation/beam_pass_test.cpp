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
            AddNote(tune, code, code < 12 ? 1 : 0, "5").BeamCode = codeBefore;
        BeamPass pass;
        int ticks = 0;
        const int capacity = beats * (beatUnit == 4 ? 12 : 6);
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
    EXPECT_EQ(Common({4}), (Codes{4}));
}

TEST_F(BeamPassOver, TwoEighthsOnABeatIn44JoinsThemByTheMainBeam)
{
    EXPECT_EQ(Common({4, 4}), (Codes{0, 5}));
}

TEST_F(BeamPassOver, FourSixteenthsOnABeatDrawsTwoBeamsToTheStart)
{
    EXPECT_EQ(Common({2}), (Codes{1}));
    EXPECT_EQ(Common({2, 2}), (Codes{0, 2})) << "the first has been changed";
    EXPECT_EQ(Common({2, 2, 2}), (Codes{0, 2, 2}));
    EXPECT_EQ(Common({2, 2, 2, 2}), (Codes{0, 2, 2, 2}));
}

TEST_F(BeamPassOver, AnEighthAndTwoSixteenthsIn44Gives052)
{
    EXPECT_EQ(Common({4, 2, 2}), (Codes{0, 5, 2}));
}

TEST_F(BeamPassOver, TwoSixteenthsAndAnEighthGives025)
{
    EXPECT_EQ(Common({2, 2, 4}), (Codes{0, 2, 5}));
}

TEST_F(BeamPassOver, ASixteenthEighthSixteenthGivesAStubForwardAndAStubBack)
{
    EXPECT_EQ(Common({2, 4, 2}), (Codes{9, 5, 3}));
}

TEST_F(BeamPassOver, ADottedEighthAndASixteenthKeepsTheDot)
{
    EXPECT_EQ(Common({5, 2}), (Codes{7, 3}));
    EXPECT_EQ(Common({2, 5}), (Codes{9, 6}));
    EXPECT_EQ(Common({5}), (Codes{8}));
}

TEST_F(BeamPassOver, QuartersAndLongerNotesEndsTheGroup)
{
    EXPECT_EQ(Common({4, 7, 4, 4}), (Codes{4, 0, 4, 4}));
    EXPECT_EQ(Common({8, 4}), (Codes{7, 4}));
    EXPECT_EQ(Common({4, 6, 4}), (Codes{4, 0, 4}));
}

TEST_F(BeamPassOver, EveryBeatStartsANewGroupInSimpleTime)
{
    EXPECT_EQ(Common({4, 4, 4, 4, 4, 4, 4, 4}), (Codes{0, 5, 0, 5, 0, 5, 0, 5}));
}

TEST_F(BeamPassOver, TripletEighthsBeamsThree)
{
    EXPECT_EQ(Common({3, 3, 3, 3, 3, 3}), (Codes{0, 5, 5, 0, 5, 5}));
}

TEST_F(BeamPassOver, SixteenthTripletsPartsTheSecondBeamOnTheEighth)
{
    EXPECT_EQ(Common({1, 1, 1, 1, 1, 1}), (Codes{0, 2, 2, 5, 2, 2}));
    EXPECT_EQ(Common({4, 1, 1, 1}), (Codes{0, 5, 2, 2}));
}

TEST_F(BeamPassOver, AQuarterRestEndsAGroupInSimpleTime)
{
    Common({4, 99});
    EXPECT_EQ(run, 0);
    EXPECT_EQ(Common({4, 99, 4}), (Codes{4, 0, 4}));
}

TEST_F(BeamPassOver, AQuarterRestEndsNoGroupInCompoundTimeWhereOnly18TicksDo)
{
    EXPECT_EQ(Compound({2, 99, 2}), (Codes{9, 0, 3}));
    Compound({4, 99});
    EXPECT_EQ(run, 1);
    EXPECT_EQ(Compound({4, 99, 4, 4, 4}), (Codes{4, 0, 0, 5, 5}));
}

TEST_F(BeamPassOver, HalfOfTheMeasureIn44And24LiesOnABeatAnyway)
{
    EXPECT_EQ(Beams(2, 4, {4, 4, 4, 4}), (Codes{0, 5, 0, 5}));
    EXPECT_EQ(Common({7, 4, 4, 4, 4, 7}), (Codes{0, 0, 5, 0, 5, 0}));
}

TEST_F(BeamPassOver, HalfOfTheMeasureIn34DoesNotStartAGroup)
{
    // tick 18 is half of 36 and no beat: the eighth there goes on with the group of tick 12
    EXPECT_EQ(Beams(3, 4, {7, 4, 4, 7}), (Codes{0, 0, 5, 0}));
}

TEST_F(BeamPassOver, ACompoundMeasureBeamsByDottedQuarters)
{
    EXPECT_EQ(Compound({4, 4, 4, 4, 4, 4}), (Codes{0, 5, 5, 0, 5, 5}));
}

TEST_F(BeamPassOver, SixteenthsIn68BeamsSix)
{
    EXPECT_EQ(Compound({2, 2, 2, 2, 2, 2}), (Codes{0, 2, 2, 2, 2, 2}));
}

TEST_F(BeamPassOver, MixedShortNotesInCompoundTimeKeepsTheirStubs)
{
    EXPECT_EQ(Compound({4, 2, 2}), (Codes{0, 5, 2}));
    EXPECT_EQ(Compound({5, 2, 4}), (Codes{7, 3, 5}));
    EXPECT_EQ(Compound({4, 5, 2}), (Codes{0, 6, 3}));
}

TEST_F(BeamPassOver, TheNotesOwnBeatUnitChoosesTheTable)
{
    Tune tune;
    AddMeasure(tune, 4, 4);
    AddNote(tune, 4, 1, "5");
    AddNote(tune, 99);
    AddNote(tune, 4, 1, "5").BeatUnit = 8;  // entered under another signature
    BeamPass pass;
    for (int i = 2, ticks = 0; i <= 4; ++i) {
        tune.CurNote = i;
        pass.Step(tune, ticks, 48);
        ticks += TicksOf(tune[i].NoteCode);
    }
    EXPECT_EQ(tune[4].BeamCode, 4);
}

TEST_F(BeamPassOver, CodesWithoutARowLeavesTheBeamCodeThatTheyHave)
{
    EXPECT_EQ(Beams(4, 4, {9, 92, 10, 11, 97}, 6), (Codes{6, 6, 6, 6, 6}));
}

TEST_F(BeamPassOver, FourEighthsInARowPartsThem)
{
    Tune tune;
    AddMeasure(tune);
    for (int i = 0; i < 4; ++i)
        AddNote(tune, 4, 1, "5");
    BeamPass pass;
    for (int i = 0; i < 4; ++i) {
        tune.CurNote = 2 + i;
        pass.Step(tune, 1 + i, 48);  // never on a beat
    }
    EXPECT_EQ(tune[4].BeamCode, 5);
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
