#include "exchange/fingering.h"

#include "music_text.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <random>

namespace quillon {
namespace {

std::string Fingered(const std::string& music, int strings = 6, int lowest = 0, int highest = 24)
{
    return MadeTune(AbcTune(music).Tune, strings, lowest, highest).Text();
}

TEST(FingeringTest, AScaleInFirstPositionUsesOpenStrings)
{
    EXPECT_EQ(Fingered("E,,F,,G,,A,,|B,,C,D,E,"),
              "| 7:6/0 7:6/1 7:6/3 7:5/0 | 7:5/2 7:5/3 7:4/0 7:4/2");
}

TEST(FingeringTest, APositionIsKept)
{
    EXPECT_EQ(Fingered("^C,^D,F,^F,", 6, 7, 12), "| 7:6/9 7:6/11 7:5/8 7:5/9");
}

TEST(FingeringTest, ChordsStandOnStringsOfTheirOwn)
{
    EXPECT_EQ(Fingered("[E,,B,,E,G,B,E]"), "| 7:1/0,2/0,3/0,4/2,5/2,6/0");
    EXPECT_EQ(Fingered("[C,E,G,C]"), "| 7:2/1,3/0,4/2,5/3");
    EXPECT_EQ(Fingered("[G,G,]"), "| 7:3/0,4/5");
}

TEST(FingeringTest, AChordOutOfReachLosesItsInnerNotes)
{
    const MadeTune made(AbcTune("[E,,F,,E]").Tune);
    EXPECT_EQ(made.Text(), "| 7:1/0,6/0");
    EXPECT_EQ(made.Said(), "A note of a chord that no hand can reach is left out.\n");
}

TEST(FingeringTest, TheShortStringsFretsAreTheNecks)
{
    EXPECT_EQ(Fingered("gggg", 5, 0, 4), "| 7:5/0 7:5/0 7:5/0 7:5/0");
    EXPECT_EQ(Fingered("aa", 5, 7, 10), "| 7:1/7 7:1/7");
}

TEST(FingeringTest, ATuneThatLiesBadlyIsMovedByOctaves)
{
    const MadeTune high(AbcTune("f''e''").Tune);
    EXPECT_EQ(high.Text(), "| 7:1/13 7:1/12");
    EXPECT_EQ(high.Said(), "The tune is moved down 2 octaves, to where it lies well.\n");
    const MadeTune low(AbcTune("C,,E,").Tune);
    EXPECT_EQ(low.Said(), "The tune is moved up an octave, to where it lies well.\n");
}

TEST(FingeringTest, WhereNoMoveHelpsNotesAreMovedByThemselves)
{
    const MadeTune made(AbcTune("C,,, c c'''").Tune);
    EXPECT_NE(made.Said().find("moved by octaves"), std::string::npos);
    EXPECT_EQ(made.tune->LastNote, 4);
}

TEST(FingeringTest, ATiedNoteStaysOnItsString)
{
    EXPECT_EQ(Fingered("A,5/4 A,-|A,"), "| 7:3/2^ 2:3/2 7:3/2^ | 7:3/2");
}

TEST(FingeringTest, StringsThatAreGivenAreKept)
{
    Music music = AbcTune("CE").Tune;
    music.Measures[0].Events[0].Notes[0].String = 6;
    music.Measures[0].Events[0].Notes[0].Fret = 8;
    EXPECT_EQ(MadeTune(music).Text().substr(0, 7), "| 7:6/8");
}

/// Every pitch of every tuning, alone and with a random other one: what is fingered sounds as it
/// was given, on strings of its own and within reach.
TEST(FingeringTest, NothingIsEverAnotherPitch)
{
    std::mt19937 random(1);
    for (const int strings : {6, 5, 4})
        for (const TuningRecord& tuning : DefaultTunings(strings)) {
            FingeringChoices choices;
            for (int s = 1; s <= strings; ++s)
                choices.OpenPitches.push_back(tuning.Pitch(s));
            Music music;
            music.Measures.emplace_back();
            const int lowest = std::ranges::min(choices.OpenPitches);
            for (int i = 0; i < 300; ++i) {
                MusicEvent& event = music.Measures[0].Events.emplace_back();
                event.Length = kQuarterUnits / 2;
                for (int n = static_cast<int>(random() % 2); n >= 0; --n)
                    event.Notes.push_back({lowest + static_cast<int>(random() % 24)});
            }
            Notices notices;
            ChooseFingering(music, choices, notices);
            for (const MusicEvent& event : music.Measures[0].Events)
                for (const MusicNote& note : event.Notes) {
                    const bool neck = strings == 5 && note.String == 5 && note.Fret > 5;
                    EXPECT_EQ(note.Pitch,
                              choices.OpenPitches.at(note.String - 1) + note.Fret - (neck ? 5 : 0));
                }
        }
}

TEST(FingeringTest, AThousandNotesAreFingeredAtOnce)
{
    std::mt19937 random(1);
    Music music;
    music.Measures.emplace_back();
    for (int i = 0; i < 1000; ++i) {
        music.Measures[0].Events.push_back({kQuarterUnits / 2, {}, "", ' ', ' '});
        music.Measures[0].Events.back().Notes.push_back({52 + static_cast<int>(random() % 20)});
    }
    Notices notices;
    const auto begin = std::chrono::steady_clock::now();
    ChooseFingering(music,
                    {
                        {64, 59, 55, 50, 45, 40}
    },
                    notices);
    const auto spent = std::chrono::steady_clock::now() - begin;
    EXPECT_LT(spent, std::chrono::milliseconds(500));  // some 10 where nothing else runs
}

}  // namespace
}  // namespace quillon
