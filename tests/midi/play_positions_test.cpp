#include "midi/play_positions.h"

#include "store/sign_codes.h"
#include "support/faults.h"
#include "support/tunes.h"

#include <gtest/gtest.h>

namespace quillon {
namespace {

using Numbers = std::vector<int>;

/// A quarter note is 120 ticks.
class PlayPositionsTest : public testing::Test {
protected:
    Sound sound{
        120, 25, {64, 59, 55, 50, 45, 40}
    };
    Tune tune;

    NoteRecord& Head(int measure) { return tune[5 * measure - 4]; }

    Numbers Order()
    {
        Numbers order;
        for (const MeasurePlace& measure : PositionsOf(tune, sound).Measures)
            order.push_back(measure.Number);
        return order;
    }
};

TEST_F(PlayPositionsTest, EachMeasureBeginsWhereTheOnesPlayedBeforeItEnd)
{
    AddFullMeasures(tune, 3);
    Head(2).BarCode = kRepeatEnd;
    const PlayPositions positions = PositionsOf(tune, sound);
    ASSERT_EQ(positions.Measures.size(), 5u);
    for (std::size_t i = 0; i < 5; ++i) {
        EXPECT_EQ(positions.Measures[i].Begin, 480 * static_cast<Ticks>(i));
        EXPECT_EQ(positions.EndOf(i), 480 * static_cast<Ticks>(i + 1));
    }
    EXPECT_EQ(positions.Measures[2].Head, 1);
    EXPECT_EQ(positions.End, 2400);
    EXPECT_EQ(Order(), (Numbers{1, 2, 1, 2, 3}));
}

TEST_F(PlayPositionsTest, EndingsAndADalSegnoAlCodaAreUnrolled)
{
    AddFullMeasures(tune, 8);
    Head(2).BarCode = kRepeatStart;
    Head(2).Slot(1) = kSign;
    Head(3).Slot(2) = "1";
    Head(3).BarCode = kRepeatEnd;
    Head(4).Slot(2) = "2";
    Head(5).Slot(3) = "/To Coda";
    Head(6).Slot(1) = kDsAlCoda;
    Head(8).Slot(1) = kCoda;
    EXPECT_EQ(Order(), (Numbers{1, 2, 3, 2, 4, 5, 6, 2, 3, 2, 4, 5, 8}));
}

TEST_F(PlayPositionsTest, NotesChordsAndRestsAreColumns)
{
    AddMeasure(tune);
    AddNote(tune, kQuarter, 1, "3");
    AddNote(tune, kEighthRest);
    AddNote(tune, 50);  // no length
    AddNote(tune, kTripletEighth, 2, "1");
    const PlayPositions positions = PositionsOf(tune, sound);
    ASSERT_EQ(positions.Columns.size(), 3u);
    EXPECT_EQ(positions.Columns[1].Record, 3);
    EXPECT_EQ(positions.Columns[1].Begin, 120);
    EXPECT_EQ(positions.Columns[2].Record, 5);
    EXPECT_EQ(positions.Columns[2].Begin, 180);
    EXPECT_EQ(positions.End, 220);
}

TEST_F(PlayPositionsTest, TicksAreCutAsInTheFile)
{
    sound.Tempo = 100;
    AddMeasure(tune);
    for (int i = 0; i < 3; ++i)
        AddNote(tune, kTripletEighth, 1, "3");
    AddMeasure(tune);
    EXPECT_EQ(PositionsOf(tune, sound).Measures[1].Begin, 99);
}

TEST_F(PlayPositionsTest, AHeaderThatSoundsIsBeforeTheFirstMeasure)
{
    tune[0].NoteCode = kHalf;  // a title font size
    tune[0].Slot(1) = "Traditional";
    AddFullMeasures(tune, 1);
    const PlayPositions positions = PositionsOf(tune, sound);
    EXPECT_EQ(positions.Measures[0].Begin, 240);
    EXPECT_EQ(positions.MeasureAt(239), std::nullopt);
    EXPECT_EQ(positions.MeasureAt(240), 0u);
}

TEST_F(PlayPositionsTest, AMeasureWithoutNotesTakesNoTime)
{
    AddMeasure(tune);
    AddFullMeasures(tune, 1);
    const PlayPositions positions = PositionsOf(tune, sound);
    ASSERT_EQ(positions.Measures.size(), 2u);
    EXPECT_EQ(positions.Measures[1].Begin, 0);
    EXPECT_EQ(positions.MeasureAt(0), 1u);
    EXPECT_EQ(positions.MeasureAt(9999), 1u);
}

TEST_F(PlayPositionsTest, SecondsFollowTheTempos)
{
    PlayPositions positions;
    positions.TicksPerQuarter = 100;
    positions.Tempos = {
        {0,   600000},
        {200, 300000}
    };
    EXPECT_DOUBLE_EQ(positions.SecondsAt(0), 0);
    EXPECT_DOUBLE_EQ(positions.SecondsAt(100), 0.6);
    EXPECT_DOUBLE_EQ(positions.SecondsAt(200), 1.2);
    EXPECT_DOUBLE_EQ(positions.SecondsAt(300), 1.5);
}

TEST_F(PlayPositionsTest, APartGoesFromTheFirstMeasureToTheNextTimeThatTheLastIsPlayed)
{
    AddFullMeasures(tune, 4);
    Head(2).Slot(2) = "1";
    Head(2).BarCode = kRepeatEnd;
    Head(3).Slot(2) = "2";
    const PlayPositions positions = PositionsOf(tune, sound);  // 1 2 1 3 4
    const auto part = [&](int first, std::optional<int> last) {
        const PlayedPart found = PartOf(positions, first, last);
        return std::pair(found.First, found.Last);
    };
    EXPECT_EQ(part(1, 2), std::pair(std::size_t{0}, std::size_t{1}));
    EXPECT_EQ(part(2, 3), std::pair(std::size_t{1}, std::size_t{3}));
    EXPECT_EQ(part(3, {}), std::pair(std::size_t{3}, std::size_t{4}));
    EXPECT_EQ(part(1, 1), std::pair(std::size_t{0}, std::size_t{0}));
}

TEST_F(PlayPositionsTest, APartThatIsNotPlayedIsRefusedInWords)
{
    const auto refusal = [&](int first, std::optional<int> last) -> std::string {
        try {
            PartOf(PositionsOf(tune, sound), first, last);
        } catch (const std::runtime_error& error) {
            return error.what();
        }
        return "";
    };
    EXPECT_EQ(refusal(1, {}), "Measure 1 is never played.");  // the tune is empty
    AddFullMeasures(tune, 2);
    EXPECT_EQ(refusal(3, {}), "Measure 3 is never played.");
    EXPECT_EQ(refusal(2, 1), "Measure 1 is not played after measure 2.");
}

TEST_F(PlayPositionsTest, ATuneThatCannotBePerformedIsAFaultInWords)
{
    AddFullMeasures(tune, 3);
    Head(2).Slot(1) = kDsAlCoda;
    Head(1).Slot(3) = "/To Coda";
    try {
        PositionsOf(tune, sound);
        FAIL();
    } catch (const Fault& fault) {
        EXPECT_EQ(fault.Explanation(), "No Coda follows measure 2.");
    }
    Head(1).Slot(3).clear();
    Head(2).Slot(1) = kSign;
    Head(3).Slot(1) = kDsAlFine;
    EXPECT_THROW(PositionsOf(tune, sound), NeverEnding);
}

TEST_F(PlayPositionsTest, TheTempoIsThatOfTheSoundFromTheBeginningOn)
{
    const PlayPositions positions = PositionsOf(tune, sound);
    EXPECT_EQ(positions.TicksPerQuarter, 120);
    ASSERT_EQ(positions.Tempos.size(), 1u);
    EXPECT_EQ(positions.Tempos[0].Begin, 0);
    EXPECT_EQ(positions.Tempos[0].MicrosecondsPerQuarter, 500000);
}

TEST_F(PlayPositionsTest, AllIsFromTheFirstMeasurePlayedToTheLast)
{
    AddFullMeasures(tune, 3);
    Head(2).BarCode = kRepeatEnd;
    const PlayedPart all = AllOf(PositionsOf(tune, sound));
    EXPECT_EQ(all.First, 0u);
    EXPECT_EQ(all.Last, 4u);
    EXPECT_THROW(AllOf(PlayPositions{}), std::runtime_error);
}

}  // namespace
}  // namespace quillon
