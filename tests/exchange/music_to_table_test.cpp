#include "exchange/table_music.h"

#include "music_text.h"

#include <gtest/gtest.h>

#include <array>
#include <vector>

namespace quillon {
namespace {

/// The tune that an ABC text becomes, quarters in 4/4.
MadeTune Made(const std::string& music, const std::string& head = "M:4/4\nL:1/4\n")
{
    return MadeTune(AbcTune(music, head).Tune);
}

TEST(MusicToTableTest, LengthsWithoutAValueAreTiedOrRestsInARow)
{
    EXPECT_EQ(Made("E,,5/4 z3/2").Text(), "| 7:6/0^ 2:6/0 97 99");
    EXPECT_EQ(Made("E,,5 E,,/E,,5/4").Text(), "| 11:6/0^ 7:6/0 4:6/0 2:6/0^ 7:6/0");
}

TEST(MusicToTableTest, LengthsOffTheTicksAreRounded)
{
    const MadeTune dotted = Made("E,,3/8 E,,/8");
    EXPECT_EQ(dotted.Text(), "| 3:6/0 1:6/0");
    EXPECT_EQ(dotted.Said(), "The rhythm of a measure is rounded: a tune has no such lengths.\n");
    EXPECT_EQ(Made("(5E,,/E,,/E,,/E,,/E,,/").Text(), "| 1:6/0 2:6/0 1:6/0 2:6/0 1:6/0");
}

TEST(MusicToTableTest, TwoThirtySecondsShareACell)
{
    EXPECT_EQ(Made("E,,/8F,,/8G,,/4").Text(), "| 2:6/0-1 2:6/3");
    EXPECT_EQ(Made("B,,/8C,/8").Text(), "| 2:5/2-3");
}

TEST(MusicToTableTest, AThirtySecondOfItsOwnStringIsLeftOut)
{
    const MadeTune made = Made("E,,/8c'/8", "M:4/4\nL:1/4\n");
    EXPECT_EQ(made.tune->LastNote, 2);
    EXPECT_NE(made.Said().find("A note too short for a tune is left out."), std::string::npos);
    EXPECT_EQ(Made("E,,/8\"G\"F,,/8").tune->LastNote, 3);
}

TEST(MusicToTableTest, WhatIsTooShortIsLeftOut)
{
    const MadeTune made = Made("E,,/64F,,/64G,,31/32");
    EXPECT_EQ(made.Text(), "| 7:6/3");
    EXPECT_NE(made.Said().find("2 notes too short for a tune are left out."), std::string::npos);
}

TEST(MusicToTableTest, SignaturesAreInQuartersOrEighths)
{
    const std::tuple<const char*, int, int> signatures[] = {
        {"3/2",   6, 4},
        {"C|",    4, 4},
        {"7/8",   7, 8},
        {"12/16", 6, 8},
        {"5/16",  3, 8},
        {"2/1",   8, 4},
    };
    for (const auto& [meter, beats, unit] : signatures) {
        const MadeTune made = Made("C", "M:" + std::string(meter) + "\nL:1/4\n");
        EXPECT_EQ((*made.tune)[1].Beats, beats) << meter;
        EXPECT_EQ((*made.tune)[2].BeatUnit, unit) << meter;
    }
}

TEST(MusicToTableTest, RepeatsGetTheSignsThatTheTableNeeds)
{
    EXPECT_EQ(Made("E,,|E,,:|E,,|E,,:|").Text(), "| 7:6/0 |99 7:6/0 |98 7:6/0 |99 7:6/0");
    EXPECT_EQ(Made("|:E,,|[1E,,:|[2E,,:|E,,").Text(), "|98 7:6/0 |99[1 7:6/0 |94[2 7:6/0 | 7:6/0");
}

TEST(MusicToTableTest, ARepeatOfOneMeasureIsWrittenTwice)
{
    EXPECT_EQ(Made("E,,|:F,,:|E,,").Text(), "| 7:6/0 | 7:6/1 |94 7:6/1 | 7:6/0");
    EXPECT_EQ(Made("E,,:|F,,").Text(), "|99 7:6/0 | 7:6/1");
}

TEST(MusicToTableTest, AnEndingForTwoPassesIsWrittenForEach)
{
    EXPECT_EQ(Made("|:E,,|[1,2F,,:|[3G,,|]").Text(),
              "|98 7:6/0 |99[1 7:6/1 |99[2 7:6/1 |94[3 7:6/3");
}

TEST(MusicToTableTest, ATieOverABarIsMarkedWhereTheNextMeasureFollows)
{
    EXPECT_EQ(Made("E,,-|E,,").Text(), "| 7:6/0^ | 7:6/0");
    EXPECT_EQ(Made("E,,|E,,-:|E,,").Text(), "| 7:6/0 |99 7:6/0 | 7:6/0");
    EXPECT_EQ(Made("|:E,,-|[1E,,:|[2E,,").Text(), "|98 7:6/0 |99[1 7:6/0 |[2 7:6/0");
    EXPECT_EQ(Made("E,,-").Text(), "| 7:6/0");
}

TEST(MusicToTableTest, ATuneThatIsTooLongEndsWithAMeasure)
{
    std::string music;
    for (int i = 0; i < 400; ++i)
        music += "E,,E,,E,,E,,|";
    const MadeTune made = Made(music);
    EXPECT_EQ(made.tune->LastMeas, 300);
    EXPECT_EQ(made.tune->LastNote, 1500);
    EXPECT_EQ(made.Said(),
              "The tune ends after measure 300: a tune holds 1500 notes, rests and measures.\n");
}

TEST(MusicToTableTest, WhatIsFarTooLongIsCutBeforeItIsFingered)
{
    std::string music;
    for (int i = 0; i < 15000; ++i)
        music += "c/2";
    EXPECT_THROW(Made(music), ExchangeError);
    const MadeTune made = Made("c|" + music);
    EXPECT_EQ(made.tune->LastMeas, 1);
    EXPECT_NE(made.Said().find("The tune is too long: its end is left out."), std::string::npos);
}

TEST(MusicToTableTest, TempoAndCapoAreTold)
{
    Tune tune;
    Notices notices;
    MakeTune(AbcTune("E", "Q:1/4=96\n").Tune, {DefaultTunings(6), {}, 2}, tune, notices);
    EXPECT_EQ(tune[2].Slot(2), "3");
    const std::vector<std::string> lines = {
        "A tune does not keep its tempo: 96 quarters a minute.",
        "The frets count from a capo on fret 2, which a tune does not keep."};
    EXPECT_EQ(notices.Lines(), lines);
}

/// A measure of quarters, each a chord of {pitch, string, fret}; the notes of the first may be
/// tied.
Music OnStrings(const std::vector<std::vector<std::array<int, 3>>>& chords, bool tied = false)
{
    Music music;
    MusicMeasure& measure = music.Measures.emplace_back();
    for (const auto& chord : chords) {
        MusicEvent& event = measure.Events.emplace_back();
        event.Length = kQuarterUnits;
        for (const auto& [pitch, string, fret] : chord) {
            MusicNote& note = event.Notes.emplace_back();
            note.Pitch = pitch;
            note.String = string;
            note.Fret = fret;
            note.Tied = tied && &chord == &chords.front();
        }
    }
    return music;
}

TEST(MusicToTableTest, OfTwoNotesOnOneStringTheSecondIsMoved)
{
    const MadeTune made(OnStrings({
        {{60, 4, 10}, {53, 4, 3}, {67, 3, 12}}
    }));
    EXPECT_EQ(made.Text(), "| 7:3/12,4/10,6/13");
    EXPECT_EQ(made.Said(), "A second note on a string is fingered anew.\n");
}

TEST(MusicToTableTest, ASecondNoteThatHasNoOtherStringIsLeftOut)
{
    const MadeTune made(OnStrings({
        {{64, 1, 0}, {59, 2, 0}, {55, 3, 0}, {45, 5, 0}, {40, 6, 0}, {41, 6, 1}}
    }));
    EXPECT_EQ(made.Text(), "| 7:1/0,2/0,3/0,5/0,6/0");
    EXPECT_EQ(made.Said(), "A second note on a string is fingered anew.\n"
                           "A note of a chord that no hand can reach is left out.\n");
}

TEST(MusicToTableTest, ATieToAnotherStringIsTold)
{
    const MadeTune made(OnStrings({{{60, 2, 1}}, {{60, 3, 5}}}, true));
    EXPECT_EQ(made.Text(), "| 7:2/1 7:3/5");
    EXPECT_EQ(made.Said(), "A note that is tied to another string is struck again.\n");
    EXPECT_EQ(MadeTune(OnStrings({{{60, 2, 1}}, {{60, 2, 1}}}, true)).Said(), "");
    EXPECT_EQ(MadeTune(OnStrings({{{60, 2, 1}}, {{62, 2, 3}}}, true)).Said(), "");
}

TEST(MusicToTableTest, AMusicWithoutNotesIsRefused)
{
    EXPECT_THROW(Made("|:|"), ExchangeError);
}

}  // namespace
}  // namespace quillon
