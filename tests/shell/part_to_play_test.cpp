#include "shell/part_to_play.h"

#include "support/tunes.h"

#include <gtest/gtest.h>

namespace quillon {
namespace {

class PartToPlayTest : public testing::Test {
protected:
    PartToPlayTest() { AddFullMeasures(tune, 4); }

    PracticeTrack Built() { return BuildPart(tune, sound, part); }

    double Seconds()
    {
        const PlayPositions positions = Built().Positions;
        return positions.SecondsAt(positions.End);
    }

    Tune tune;
    Sound sound{
        120, 25, {64, 59, 55, 50, 45, 40}
    };
    PartToPlay part;
};

TEST_F(PartToPlayTest, WithoutAnEndItGoesToTheTunes)
{
    part.From = 2;
    const PlayPositions positions = Built().Positions;
    ASSERT_EQ(positions.Measures.size(), 3U);
    EXPECT_EQ(positions.Measures.front().Number, 2);
    EXPECT_DOUBLE_EQ(Seconds(), 3 * 2);
}

TEST_F(PartToPlayTest, ALoopLastsAnHourAtAnySpeed)
{
    part.From = 1;
    part.To = 4;
    part.Loop = true;
    for (int speed : {50, 100, 200}) {
        part.Choices.Speed = speed;
        EXPECT_DOUBLE_EQ(Seconds(), 3600) << speed;
    }
    part.Choices.Speed = 50;
    part.Choices.StepUp = 10;
    EXPECT_GE(Seconds(), 3600);
    EXPECT_EQ(Built().Turns.back().Speed, 100);
}

TEST_F(PartToPlayTest, ALoopOfAMomentEndsWithTheMostTurns)
{
    tune = {};
    AddMeasure(tune, 1, 4);
    AddNote(tune, kQuarter, 1, "0");
    part.To = 1;
    part.Loop = true;
    EXPECT_EQ(Built().Turns.size(), std::size_t{kMostTurns});
}

TEST_F(PartToPlayTest, AMeasureThatIsNeverPlayedIsNamed)
{
    part.From = 9;
    try {
        Built();
        FAIL();
    } catch (const std::runtime_error& failure) {
        EXPECT_STREQ(failure.what(), "Measure 9 is never played.");
    }
}

}  // namespace
}  // namespace quillon
