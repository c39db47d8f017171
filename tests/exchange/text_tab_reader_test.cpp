#include "exchange/text_tab_reader.h"
#include "exchange/text_tab_writer.h"

#include "music_text.h"
#include "support/tunes.h"

#include <gtest/gtest.h>

namespace quillon {
namespace {

std::string Cells(const std::string& text, int strings = 6)
{
    return MadeTune(ReadTextTab(text).at(0).Tune, strings).Text();
}

TEST(TextTabReaderTest, ARhythmLineTellsTheLengths)
{
    EXPECT_EQ(Cells("A tune\n\n"
                    "   Am   C\n"
                    "   q.   e  q3 q3 q3\n"
                    "e|-0-------5--5--5--|\n"
                    "B|-1----12----------|\n"
                    "G|------------------|\n"
                    "D|------------------|\n"
                    "A|-0----------------|\n"
                    "E|------------------|\n"),
              "| 8:1/0,2/1,5/0 4:2/12 6:1/5 6:1/5 6:1/5");
}

TEST(TextTabReaderTest, WithoutOneTheSpacingIsTakenAsAGuess)
{
    const std::string staff = "D|---------0-------|-0-1-2-3-|\n"
                              "B|-1---------------|---------|\n"
                              "G|-----------------|---------|\n"
                              "D|-----------------|---------|\n"
                              "g|-------------0---|---------|\n";
    EXPECT_EQ(Cells("Some words above it.\n" + staff + "and below.\n", 5),
              "| 9:2/1 7:1/0 7:5/0 | 7:1/0 7:1/1 7:1/2 7:1/3");
    EXPECT_EQ(ReadTextTab(staff).at(0).Said.Lines().at(0),
              "The rhythm is guessed from the spacing.");
}

TEST(TextTabReaderTest, MarksBetweenFretsConnectThem)
{
    EXPECT_EQ(Cells("   e  e e  e e   q\n"
                    "e|-5-h7-7-p5-5b--(3)-|\n"
                    "B|-------------------|\n"
                    "G|-------------------|\n"
                    "D|-------------------|\n"
                    "A|-------------------|\n"
                    "E|-------------------|\n"),
              "| 7:1/5-7 7:1/7-5 4:1/5> 7:1/(3)");
}

TEST(TextTabReaderTest, WhatIsWrittenIsReadAgain)
{
    Tune tune;
    tune.NumStrings = 4;
    tune[0].ChordText = "Small";
    AddMeasure(tune).BarCode = kRepeatEnd;
    AddNote(tune, kQuarter, 1, "2").ChordText = "D";
    AddNote(tune, kQuarter, 2, "3-5");
    AddNote(tune, kEighth, 1, "12").Slot(4) = "0";
    AddNote(tune, kEighthRest);
    AddNote(tune, kQuarter, 3, "10^");
    AddMeasure(tune).BarCode = kRepeatStart;
    AddNote(tune, kSixteenth, 3, "10");
    AddNote(tune, kDottedEighth, 3, "x");
    AddMeasure(tune).BarCode = kRepeatEnd;
    AddNote(tune, kWhole, 1, "1");
    Notices notices;
    ExportChoices choices;
    choices.Tunings = DefaultTunings(4);
    choices.Reader = Repeats::Shown;
    const std::string text = WriteTextTab(MusicOf(tune, choices, notices), notices);
    const FoundTune found = ReadTextTab(text).at(0);
    EXPECT_EQ(found.Tune.Title, "Small");
    EXPECT_EQ(found.Said.Lines().size(), 0U) << text;
    EXPECT_EQ(MadeTune(found.Tune, 4).Text(),
              "|99 7:1/2 7:2/3-5 4:1/12,4/0 97 7:3/10 |98 2:3/10 5:3/x |99 11:1/1")
        << text;
}

TEST(TextTabReaderTest, BracketsAndDotsAreEndingsAndRepeats)
{
    EXPECT_EQ(Cells("           [1       [2\n"
                    "     q       q        q\n"
                    "e||:-0----|--1----:|--3----|\n"
                    "B||:------|-------:|-------|\n"
                    "G||:------|-------:|-------|\n"
                    "D||:------|-------:|-------|\n"
                    "A||:------|-------:|-------|\n"
                    "E||:------|-------:|-------|\n"),
              "|98 7:1/0 |99[1 7:1/1 |[2 7:1/3");
}

TEST(TextTabReaderTest, ATextWithoutAStaffIsRefused)
{
    EXPECT_THROW(ReadTextTab("just words\n----\n|---|\n"), ExchangeError);
    EXPECT_FALSE(HasTabStaff("0,0,0\n0,0,0,0\n"));
    EXPECT_FALSE(HasTabStaff(""));
}

}  // namespace
}  // namespace quillon
