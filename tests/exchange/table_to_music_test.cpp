#include "exchange/table_music.h"

#include "music_text.h"
#include "support/tunes.h"

#include <gtest/gtest.h>

namespace quillon {
namespace {

class TableToMusicTest : public testing::Test {
protected:
    Music Made(Repeats reader = Repeats::Followed)
    {
        ExportChoices choices;
        choices.Tunings = DefaultTunings(tune.NumStrings);
        choices.Reader = reader;
        return MusicOf(tune, choices, notices);
    }

    Tune tune;
    Notices notices;
};

TEST_F(TableToMusicTest, ACellOfTwoNotesIsTwoEvents)
{
    AddMeasure(tune);
    AddNote(tune, kQuarter, 1, "3-5").Slot(2) = "1";
    AddNote(tune, kSixteenth, 1, "5=3");
    const Music music = Made();
    EXPECT_EQ(EventText(music), "67,60-:6 69,60:6 69:1.5 67:1.5");
    EXPECT_EQ(music.Measures[0].Events[0].Notes[0].Next, Link::Hammer);
    EXPECT_EQ(music.Measures[0].Events[2].Notes[0].Next, Link::Slide);
}

TEST_F(TableToMusicTest, ATiesMarkIsATieASlurOrNothing)
{
    AddMeasure(tune);
    AddNote(tune, kQuarter, 1, "3^");
    AddNote(tune, kQuarter, 1, "3^");
    AddNote(tune, kQuarter, 1, "5^");
    AddNote(tune, kQuarter, 2, "5");
    const Music music = Made();
    EXPECT_EQ(EventText(music), "67-:12 67:12 69:12 64:12");
    EXPECT_EQ(music.Measures[0].Events[1].Notes[0].Next, Link::Slur);
    EXPECT_EQ(music.Measures[0].Events[2].Notes[0].Next, Link::None);
}

TEST_F(TableToMusicTest, TheShortStringsFretsAreTheNecks)
{
    tune.NumStrings = 5;
    AddMeasure(tune);
    AddNote(tune, kQuarter, 5, "0");
    AddNote(tune, kQuarter, 5, "7");
    EXPECT_EQ(EventText(Made()), "67:12 69:12");
}

/// Measures of one quarter each, on frets 0, 1, 2 .. of string 1.
void AddQuarters(Tune& tune, int count)
{
    for (int i = 0; i < count; ++i) {
        AddMeasure(tune);
        AddNote(tune, kQuarter, 1, std::to_string(i));
    }
}

TEST_F(TableToMusicTest, WhatOthersWouldPlayDifferentlyIsWrittenOut)
{
    AddQuarters(tune, 3);
    tune[1].BarCode = kRepeatStart;
    tune[3].BarCode = kRepeatEnd;
    tune[5].Slot(1) = kDcAlFine;
    tune[1].Slot(1) = kFine;
    EXPECT_EQ(EventText(Made(Repeats::Shown)), "64:12 | 65:12 | 66:12");
    EXPECT_TRUE(notices.Lines().empty());
    EXPECT_EQ(EventText(Made(Repeats::Jumps)), "64:12 | 65:12 | 64:12 | 65:12 | 66:12 | 64:12");
    EXPECT_EQ(notices.Lines().size(), 1U);
}

TEST_F(TableToMusicTest, ABracketThatOthersWouldPassOverIsWrittenOut)
{
    AddQuarters(tune, 2);
    tune[1].Slot(2) = "1";
    tune[3].Slot(2) = "2";
    EXPECT_EQ(Made(Repeats::Drawn).Measures[1].Endings.size(), 1U);
    EXPECT_TRUE(Made(Repeats::Followed).Measures[1].Endings.empty());
    tune[3].Slot(2) = "1";
    EXPECT_TRUE(Made(Repeats::Followed).Measures[1].Endings.empty());
    EXPECT_EQ(notices.Lines().size(), 1U);
}

TEST_F(TableToMusicTest, ABracketThatIsAllOfItsRepeatIsWrittenOut)
{
    AddQuarters(tune, 2);
    tune[1].Slot(2) = "1";
    tune[1].BarCode = kRepeatEnd;
    tune[3].Slot(2) = "2";
    const Music music = Made(Repeats::Followed);
    EXPECT_EQ(EventText(music), "64:12 | 65:12");
    EXPECT_TRUE(music.Measures[0].Endings.empty());
    EXPECT_FALSE(music.Measures[0].EndsRepeat);
}

TEST_F(TableToMusicTest, ABracketThatATuneBeginsWithIsWrittenOut)
{
    AddQuarters(tune, 2);
    tune[1].Slot(2) = "1";
    EXPECT_TRUE(Made(Repeats::Followed).Measures[0].Endings.empty());
    EXPECT_EQ(Made(Repeats::Drawn).Measures[0].Endings.size(), 1U);
}

TEST_F(TableToMusicTest, EndingsBehindALastEndingThatRepeatsAreWrittenOut)
{
    AddQuarters(tune, 6);
    tune[1].BarCode = kRepeatStart;
    for (const int measure : {2, 3, 4, 5})
        tune[2 * measure - 1].BarCode = kRepeatEnd;
    const char* endings[] = {"1", "2", "1", "2", "3"};
    for (int measure = 2; measure <= 6; ++measure)
        tune[2 * measure - 1].Slot(2) = endings[measure - 2];
    const Music music = Made(Repeats::Followed);
    EXPECT_EQ(EventText(music), "64:12 | 65:12 | 64:12 | 66:12 | 64:12 | 69:12");
    EXPECT_TRUE(music.Measures[1].Endings.empty());
}

TEST_F(TableToMusicTest, AJumpThatOthersTakeDifferentlyIsWrittenOut)
{
    AddQuarters(tune, 4);
    tune[1].Slot(1) = kSign;
    tune[3].Slot(3) = "/to coda";
    tune[5].Slot(1) = kDsAlCoda;
    tune[7].Slot(1) = kCoda;
    EXPECT_EQ(Made(Repeats::Jumps).Measures.size(), 4U);
    // At the jump's own measure the Coda comes at once.
    tune[3].Slot(3) = "";
    tune[5].Slot(3) = "/To Coda";
    const Music music = Made(Repeats::Jumps);
    EXPECT_EQ(EventText(music), "64:12 | 65:12 | 66:12 | 67:12");
    EXPECT_EQ(music.Measures[2].Sign, "");
    EXPECT_EQ(notices.Lines().size(), 1U);
}

TEST_F(TableToMusicTest, JumpsWithoutRepeatsStayForWhoFollowsThem)
{
    AddQuarters(tune, 3);
    tune[1].Slot(1) = kFine;
    tune[5].Slot(1) = kDcAlFine;
    EXPECT_EQ(EventText(Made(Repeats::Jumps)), "64:12 | 65:12 | 66:12");
    EXPECT_EQ(EventText(Made(Repeats::Followed)), "64:12 | 65:12 | 66:12 | 64:12");
}

}  // namespace
}  // namespace quillon
