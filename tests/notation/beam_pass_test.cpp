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

struct Example {
    Codes notes;
    Codes shapes;
};

TEST_F(BeamPassOver, ANoteJoinsAGroupInSimpleTime)
{
    const Example examples[] = {
        {{kTripletSixteenth, kTripletSixteenth},                        {kNoBeam, kBothBeams}                },
        {{kSixteenth, kTripletSixteenth, kTripletSixteenth},            {kForwardStub, kMainBeam, kBothBeams}},
        {{kEighth, kTripletSixteenth},                                  {kNoBeam, kBackStub}                 },
        {{kSixteenth, kSixteenth},                                      {kNoBeam, kBothBeams}                },
        {{kEighth, kSixteenth, kSixteenth},                             {kNoBeam, kMainBeam, kBothBeams}     },
        {{kSixteenth, kEighth, kSixteenth},                             {kForwardStub, kMainBeam, kBackStub} },
        {{kDottedEighth, kSixteenth},                                   {kDotAlone, kBackStub}               },
        {{kTripletEighth, kTripletEighth},                              {kNoBeam, kMainBeam}                 },
        {{kSixteenth, kEighth},                                         {kForwardStub, kMainBeam}            },
        {{kEighth, kEighth},                                            {kNoBeam, kMainBeam}                 },
        {{kDottedEighth, kEighth},                                      {kDotAlone, kMainBeam}               },
        {{kSixteenth, kDottedEighth},                                   {kForwardStub, kDottedMainBeam}      },
        {{kEighth, kTripletSixteenthRest, kTripletSixteenth},           {kNoBeam, kBackStub, kBackStub}      },
        {{kTripletSixteenth, kTripletSixteenthRest, kTripletSixteenth},
         {kNoBeam, kNoBeam, kBothBeams}                                                                      },
        {{kSixteenth, kSixteenthRest, kTripletSixteenth},               {kForwardStub, kNoBeam, kBackStub}   },
    };
    for (const Example& example : examples)
        EXPECT_EQ(Common(example.notes), example.shapes) << testing::PrintToString(example.notes);
}

TEST_F(BeamPassOver, ANoteJoinsAGroupInCompoundTime)
{
    const Example examples[] = {
        {{kSixteenth, kTripletSixteenth},                                      {kNoBeam, kBothBeams}                   },
        {{kSixteenth, kSixteenthRest, kTripletSixteenth},                      {kForwardStub, kNoBeam, kBackStub}      },
        {{kTripletSixteenth, kTripletSixteenth, kTripletSixteenth, kTripletSixteenth,
          kTripletSixteenth},
         {kNoBeam, kBothBeams, kBothBeams, kMainBeam, kBothBeams}                                                      },
        {{kSixteenth, kSixteenthRest, kSixteenth, kTripletSixteenth},
         {kForwardStub, kNoBeam, kBackStub, kBothBeams}                                                                },
        {{kEighth, kTripletSixteenth},                                         {kNoBeam, kBackStub}                    },
        {{kEighth, kTripletEighth, kTripletSixteenth},                         {kNoBeam, kMainBeam, kBackStub}         },
        {{kTripletSixteenth, kDottedEighth, kTripletSixteenth},
         {kForwardStub, kDottedMainBeam, kBackStub}                                                                    },
        {{kDottedEighth, kTripletSixteenth},                                   {kDotAlone, kBackStub}                  },
        {{kSixteenth, kSixteenth},                                             {kNoBeam, kBothBeams}                   },
        {{kSixteenth, kSixteenthRest, kSixteenth, kSixteenth},
         {kForwardStub, kNoBeam, kMainBeam, kBothBeams}                                                                },
        {{kSixteenth, kSixteenthRest, kSixteenth, kSixteenthRest, kSixteenth},
         {kForwardStub, kNoBeam, kMainBeamForwardStub, kNoBeam, kBackStub}                                             },
        {{kEighth, kSixteenth, kSixteenth},                                    {kNoBeam, kMainBeam, kBothBeams}        },
        {{kEighth, kEighth, kSixteenth},                                       {kNoBeam, kMainBeam, kBackStub}         },
        {{kSixteenth, kSixteenthRest, kSixteenth, kEighth, kSixteenth},
         {kForwardStub, kNoBeam, kMainBeamForwardStub, kMainBeam, kBackStub}                                           },
        {{kEighth, kDottedEighth, kSixteenth},                                 {kNoBeam, kDottedMainBeam, kBackStub}   },
        {{kDottedEighth, kSixteenth},                                          {kDotAlone, kBackStub}                  },
        {{kSixteenth, kQuarterRest, kSixteenth},                               {kForwardStub, kNoBeam, kBackStub}      },
        {{kEighth, kDottedQuarter, kSixteenth},                                {kEighthFlag, kDotAlone, kSixteenthFlag}},
        {{kSixteenth, kTripletEighth},                                         {kForwardStub, kMainBeam}               },
        {{kSixteenth, kSixteenthRest, kSixteenth, kTripletEighth},
         {kForwardStub, kNoBeam, kForwardStub, kMainBeam}                                                              },
        {{kDottedEighth, kSixteenth, kTripletEighth},                          {kDotAlone, kBackStub, kMainBeam}       },
        {{kEighth, kTripletEighth},                                            {kNoBeam, kMainBeam}                    },
        {{kDottedEighth, kTripletEighth},                                      {kDotAlone, kMainBeam}                  },
        {{kSixteenth, kEighth},                                                {kForwardStub, kMainBeam}               },
        {{kDottedEighth, kSixteenth, kEighth},                                 {kDotAlone, kBackStub, kMainBeam}       },
        {{kSixteenth, kSixteenthRest, kSixteenth, kSixteenthRest, kEighth},
         {kForwardStub, kNoBeam, kMainBeamForwardStub, kNoBeam, kMainBeam}                                             },
        {{kEighth, kEighth},                                                   {kNoBeam, kMainBeam}                    },
        {{kDottedEighth, kEighth},                                             {kDotAlone, kMainBeam}                  },
        {{kSixteenth, kDottedEighth},                                          {kForwardStub, kDottedMainBeam}         },
        {{kEighth, kDottedEighth},                                             {kNoBeam, kDottedMainBeam}              },
        {{kDottedEighth, kDottedEighth},                                       {kDotAlone, kDottedMainBeam}            },
        {{kEighth, kTripletSixteenthRest, kTripletSixteenth},                  {kNoBeam, kBackStub, kBackStub}         },
    };
    for (const Example& example : examples)
        EXPECT_EQ(Beams(9, 8, example.notes), example.shapes)
            << testing::PrintToString(example.notes);
}

TEST_F(BeamPassOver, ATripletsSixteenthTakesOverTheShapeOfTheRestBeforeIt)
{
    const int note = kTripletSixteenth, rest = kTripletSixteenthRest;
    // Only in compound time also where no group is open.
    EXPECT_EQ(Beams(4, 4, {rest, note}, kBackStub), (Codes{kBackStub, kSixteenthFlag}));
    EXPECT_EQ(Beams(9, 8, {rest, note}, kBackStub), (Codes{kBackStub, kBackStub}));
    // A main beam that the rest has from before, only there and only in a group.
    EXPECT_EQ(Beams(4, 4, {note, rest, note}, kMainBeam), (Codes{kNoBeam, kMainBeam, kBothBeams}));
    EXPECT_EQ(Beams(9, 8, {note, rest, note}, kMainBeam), (Codes{kNoBeam, kMainBeam, kMainBeam}));
    EXPECT_EQ(Beams(9, 8, {rest, note}, kMainBeam), (Codes{kMainBeam, kSixteenthFlag}));
    EXPECT_EQ(Beams(4, 4, {note, rest, rest}, kMainBeam),
              (Codes{kSixteenthFlag, kMainBeam, kBackStub}));
}

TEST_F(BeamPassOver, ATripletStartsTheCountOfEighthsAnewAndTwoOfItsNotesDoNot)
{
    const int triplet = kTripletSixteenth, rest = kEighthRest;
    EXPECT_EQ(Common({kSixteenth, kEighth, triplet, kEighth, triplet, kEighth, rest, kEighth})[6],
              kMainBeam);
    EXPECT_EQ(Common({kSixteenth, kEighth, triplet, kEighth, triplet, kEighth, triplet, rest,
                      kEighth})[7],
              kNoBeam);
}

TEST_F(BeamPassOver, RestsOfTripletsCountAsItsNotes)
{
    for (const int rest : {kTripletSixteenthRest, kTripletEighthRest}) {
        EXPECT_EQ(Common({kSixteenth, kEighth, rest, kEighth, rest, kEighth, rest, kEighthRest,
                          kEighth})[7],
                  kNoBeam);
        EXPECT_EQ(
            Common({kSixteenth, kEighth, rest, kEighth, rest, kEighth, kEighthRest, kEighth})[6],
            kMainBeam);
    }
    EXPECT_EQ(Common({kSixteenth, kEighth, kEighth, kEighth, kEighthRest, kEighth})[4], kMainBeam);
}

TEST_F(BeamPassOver, HalfOfAMeasureStartsAGroupForNotesOfTwoAndFourBeats)
{
    // Entered under another signature than that of the measure, whose half is at tick 18.
    const auto shapeAtHalf = [](int beats, int beatUnit) {
        Tune tune;
        AddMeasure(tune, 3, 4);
        for (int code : {kQuarter, kEighth, kEighth})
            AddNote(tune, code, 1, "5");
        tune[4].Beats = beats;
        tune[4].BeatUnit = beatUnit;
        BeamPass pass(tune, 36);
        for (int i = 2, ticks = 0; i <= 4; ++i) {
            tune.CurNote = i;
            pass.Step(ticks);
            ticks += TicksOf(tune[i].NoteCode);
        }
        return int{tune[4].BeamCode};
    };
    EXPECT_EQ(shapeAtHalf(2, 4), kEighthFlag);
    EXPECT_EQ(shapeAtHalf(4, 4), kEighthFlag);
    EXPECT_EQ(shapeAtHalf(3, 4), kMainBeam);
    EXPECT_EQ(shapeAtHalf(5, 4), kMainBeam);
}

TEST_F(BeamPassOver, ASixteenthInCompoundTimeTurnsBackAfterLongNotesAndRestsAlone)
{
    const auto shapes = [&](int before) { return Beams(9, 8, {kSixteenth, before, kSixteenth}); };
    EXPECT_EQ(shapes(kHalf), (Codes{kForwardStub, kNoBeam, kBackStub}));
    EXPECT_EQ(shapes(kQuarterRest), (Codes{kForwardStub, kNoBeam, kBackStub}));
    EXPECT_EQ(shapes(100), (Codes{kNoBeam, kNoBeam, kBothBeams})) << "a code without a meaning";
    EXPECT_EQ(Common({kSixteenth, kSixteenthRest, kSixteenth}),
              (Codes{kNoBeam, kNoBeam, kBothBeams}));
}

TEST_F(BeamPassOver, AStubTurnsForwardOnlyInAGroupOfThree)
{
    // The rest keeps the stub that it has from before.
    EXPECT_EQ(Beams(9, 8, {kSixteenth, kSixteenthRest, kEighth, kSixteenth}, kBackStub),
              (Codes{kForwardStub, kBackStub, kMainBeam, kBackStub}));
    EXPECT_EQ(Beams(9, 8, {kSixteenth, kSixteenth, kSixteenthRest, kEighth, kSixteenth}, kBackStub),
              (Codes{kNoBeam, kBothBeams, kMainBeamForwardStub, kMainBeam, kBackStub}));
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

TEST_F(BeamPassOver, TheCountOfEighthsStartsAnewAfterTheFourth)
{
    const int eighth = kEighth, rest = kEighthRest;
    EXPECT_EQ(Common({kSixteenth, eighth, eighth, eighth, rest, eighth, rest, rest})[6], kNoBeam);
    const Codes shapes = Beams(8, 4,
                               {kSixteenth, eighth, eighth, eighth, rest, eighth, eighth, eighth,
                                rest, eighth, rest, eighth});
    EXPECT_EQ(shapes[4], kMainBeam);
    EXPECT_EQ(shapes[8], kNoBeam) << "before the third";
    EXPECT_EQ(shapes[10], kMainBeam) << "before the fourth";
    const int triplet = kTripletSixteenthRest;
    EXPECT_EQ(Common({kSixteenth, triplet, triplet, triplet, eighth, eighth, rest, eighth})[6],
              kNoBeam);
}

}  // namespace
}  // namespace quillon
