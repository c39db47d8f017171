#include "page_desk.h"
#include "store/sign_codes.h"

namespace quillon {
namespace {

using PageLayoutTest = PageDesk;

TEST_F(PageLayoutTest, AnEmptyTuneDrawsOnlyTitleAndCredits)
{
    tune[0].ChordText = "Air";
    tune[0].Slot(1) = "Trad.";
    const std::string expected = "text 400 600 size=20 font=\"Arial\" bold=0 \"Air\"\n"
                                 "text 10940 1080 size=10 font=\"Arial\" bold=0 \"Trad.\"\n";
    EXPECT_EQ(Joined(Screen()), expected);
    AddMeasure(tune);
    ASSERT_EQ(tune.LastNote, 1);
    EXPECT_EQ(Joined(Screen()), expected);
    EXPECT_EQ(pages.PageMax, 0);
}

TEST_F(PageLayoutTest, AHardBreakEndsTheLineWhileTheStaffStillRunsToLineRight)
{
    AddQuarters(4);
    AddQuarters(4).Slot(6) = "NL";
    const LogLines log = Screen();
    EXPECT_TRUE(Has(log, "line 400 765 11440 765 w=1"));
    EXPECT_TRUE(Has(log, "line 400 2667.5 11440 2667.5 w=1"));
    const LogLines frets = Only(log, "text", "\"3\"");
    ASSERT_EQ(frets.size(), 8U);
    // 150 twips to the unit: the first note comes after a head of 2 units and the signature.
    EXPECT_TRUE(frets[0].starts_with("text 970 650 "));
    EXPECT_TRUE(frets[1].starts_with("text 1420 650 "));
    EXPECT_TRUE(frets[4].starts_with("text 820 2552.5 "));
}

TEST_F(PageLayoutTest, ALineOf40UnitsIsSpreadBy150)
{
    AddQuarters(12);  // 2 + 1 + 36, and one more for the last column
    const LogLines frets = Only(Screen(), "text", "\"3\"");
    EXPECT_TRUE(frets[0].starts_with("text 970 "));
    EXPECT_TRUE(frets[1].starts_with("text 1420 "));
}

TEST_F(PageLayoutTest, AUnitIsNeverWiderThan150)
{
    AddQuarters(23);  // 73 units: 11040 / 73 is 151
    const LogLines limited = Only(Screen(), "text", "\"3\"");
    EXPECT_TRUE(limited[0].starts_with("text 970 "));
    EXPECT_TRUE(limited[22].starts_with("text 10870 "));
    AddNote(tune, kQuarter, 1, "3");  // 76 units: 145
    const LogLines spread = Only(Screen(), "text", "\"3\"");
    EXPECT_TRUE(spread[0].starts_with("text 955 "));
    EXPECT_TRUE(spread[23].starts_with("text 10960 "));
}

TEST_F(PageLayoutTest, ALineOf82UnitsIsSpreadBy134)
{
    AddQuarters(26);  // 2 + 1 + 78, and one more for the last column
    const LogLines frets = Only(Screen(), "text", "\"3\"");
    EXPECT_TRUE(frets[0].starts_with("text 922 "));
    EXPECT_TRUE(frets[1].starts_with("text 1324 "));
}

TEST_F(PageLayoutTest, ATuneOfOneShortLineHasAStaffThatEndsSixUnitsAfterItsLastColumn)
{
    AddQuarters(4);  // the last note is at 970 + 3 * 450
    const LogLines log = Screen();
    EXPECT_TRUE(Has(log, "line 400 765 3220 765 w=1"));
    EXPECT_TRUE(Has(log, "line 3220 765 3220 1590 w=2"));
}

TEST_F(PageLayoutTest, AOneLineTuneWithItsLastColumnFarRightHasAFullStaff)
{
    AddQuarters(20);  // the last note is at 970 + 19 * 450
    EXPECT_TRUE(Has(Screen(), "line 400 765 11440 765 w=1"));
}

TEST_F(PageLayoutTest, ALongRestAtTheLinesEndShortensTheStaffOnAnyLine)
{
    AddMeasure(tune);
    AddNote(tune, kHalfRest);
    AddQuarters(4).Slot(6) = "NL";
    EXPECT_TRUE(Has(Screen(), "line 400 765 2770 765 w=1"));  // 970 + 12 * 150
}

TEST_F(PageLayoutTest, ATitleOfOneBlankLetsTheCreditsStartAtY600)
{
    tune[0].Slot(1) = "Trad.";
    EXPECT_EQ(Joined(Screen()), "text 10940 600 size=10 font=\"Arial\" bold=0 \"Trad.\"\n");
}

TEST_F(PageLayoutTest, AnEmptyTitleMovesTheCreditsDownALine)
{
    tune[0].ChordText.clear();
    tune[0].Slot(1) = "Trad.";
    EXPECT_EQ(Joined(Screen()), "text 10940 1080 size=10 font=\"Arial\" bold=0 \"Trad.\"\n");
}

TEST_F(PageLayoutTest, TheTitleIsNotCentredOnTheScreen)
{
    page.TitleCentered = true;
    tune[0].ChordText = "Air";
    EXPECT_TRUE(Screen()[0].starts_with("text 400 600 "));
}

TEST_F(PageLayoutTest, BothCreditsBeginAtOneXAndTheLongerEndsAtLineRight)
{
    tune[0].Slot(1) = "Trad.";
    tune[0].Slot(2) = "arr. Nobody";
    const LogLines log = Screen();
    EXPECT_TRUE(log.at(0).starts_with("text 10340 600 "));
    EXPECT_TRUE(log.at(1).starts_with("text 10340 840 "));
}

TEST_F(PageLayoutTest, ACreditOfANegativeSizeBeginsAfterLineRight)
{
    page.BodyFontSize = -10;  // as only a hand-made file has it
    tune[0].Slot(2) = "arr.";
    EXPECT_TRUE(Screen().at(0).starts_with("text 11840 600 "));
    tune[0].Slot(1) = "Trad.";
    EXPECT_TRUE(Screen().at(0).starts_with("text 11840 600 "));
    tune[0].Slot(2).clear();
    EXPECT_TRUE(Screen().at(0).starts_with("text 11440 600 "));
}

TEST_F(PageLayoutTest, ATimeSignatureOf12GetsItsFurtherRoomOnlyOnPaper)
{
    AddMeasure(tune, 12, 8);
    AddNote(tune, kQuarter, 1, "3");
    AddNote(tune, kQuarter, 1, "3");
    EXPECT_TRUE(Only(Screen(), "text", "\"3\"").at(0).starts_with("text 970 "));  // 520 + 3 units
    EXPECT_TRUE(Only(Paper(), "text", "\"3\"").at(0).starts_with("text 1950 "));  // 1200 + 5
}

TEST_F(PageLayoutTest, ALineTakesWholeMeasuresUpToItsCapacity)
{
    for (int m = 0; m < 9; ++m)
        AddQuarters(4);  // 14 units each, of 110: seven to a line
    const LogLines log = Screen();
    EXPECT_EQ(Only(log, "line 400 765 11440 ").size(), 1U);
    const LogLines frets = Only(log, "text", "\"3\"");
    EXPECT_EQ(std::count_if(frets.begin(), frets.end(),
                            [](const std::string& l) { return l.find(" 650 ") != l.npos; }),
              28);
}

TEST_F(PageLayoutTest, AMeasureMayFillALineToItsCapacityAndNotPassIt)
{
    AddQuarters(35);  // 2 units for the head, 1 for the signature, 3 for each quarter
    tune[2].Slot(1) = "1234";
    Screen();
    EXPECT_EQ(tooWide, std::nullopt) << "110 units";
    tune[2].Slot(1) = "12345";
    Screen();
    EXPECT_EQ(tooWide, 1) << "111 units";
}

TEST_F(PageLayoutTest, ALineThatIsFullAtColumn80GivesItsLastMeasureBackEvenIfItEndsThere)
{
    for (int m = 0; m < 3; ++m) {
        AddMeasure(tune);
        for (int i = 0; i < (m == 2 ? 38 : 20); ++i)
            AddNote(tune, 60, 1).Spacing = 1;  // a code without a width of its own
    }
    ASSERT_EQ(tune.LastNote, 81);
    tune[81].Measure = 4;  // 80 columns of three measures, and one more
    AddNote(tune, kQuarter, 1, "3");
    const LogLines log = Screen();
    EXPECT_EQ(Only(log, "line 400 ", " w=1").size(), 12U);  // two lines of six strings
    EXPECT_FALSE(tooWide);
}

TEST_F(PageLayoutTest, ALoneHeadAtTheTunesEndIsNotDrawn)
{
    AddQuarters(4);
    const LogLines before = Screen();
    AddMeasure(tune);
    const LogLines log = Screen();
    EXPECT_EQ(Only(log, "text").size(), Only(before, "text").size());
    EXPECT_EQ(Only(log, "line 400 ", " w=1").size(), 6U);
    tune[tune.LastNote].Slot(6) = "NL";
    EXPECT_EQ(Screen(), log);
    EXPECT_FALSE(tooWide);
}

TEST_F(PageLayoutTest, AMeasureThatIsTooWideStopsTheRunAndWhatWasDrawnStays)
{
    AddQuarters(4);
    AddQuarters(40);
    AddQuarters(4);
    const LogLines log = Screen();
    EXPECT_EQ(tooWide, 2);
    EXPECT_EQ(Only(log, "text", "\"3\"").size(), 4U);
    Paper();
    EXPECT_EQ(tooWide, 2);
}

// The table's end cuts the measure, and the record before its first column has measure 0 too.
TEST_F(PageLayoutTest, ALongMeasureZeroIsTooWideToo)
{
    for (int i = 0; i < 100; ++i)
        AddNote(tune, kQuarter, 1, "3").Measure = 0;
    Screen();
    EXPECT_EQ(tooWide, 0);
    Paper();
    EXPECT_EQ(tooWide, 0);
}

TEST_F(PageLayoutTest, AMeasureWithoutAHeadThatFillsTheTableIsTooWide)
{
    for (int i = 0; i < 100; ++i)
        AddNote(tune, kTripletSixteenth, 1, "3").Measure = 1;
    EXPECT_TRUE(Screen().empty());
    EXPECT_EQ(tooWide, 1);
}

TEST_F(PageLayoutTest, ABeginBarOnANoteWidensItWhereverItIs)
{
    AddQuarters(23);                                                                  // 72 units
    AddNote(tune, kHalf, 1, "5");                                                     // and 5
    EXPECT_TRUE(Only(Screen(), "text", "\"[5]\"").at(0).starts_with("text 10816 "));  // of 143
    tune[25].BarCode = kBeginDoubleBar;
    EXPECT_TRUE(Only(Screen(), "text", "\"[5]\"").at(0).starts_with("text 10672 "));  // of 141
}

TEST_F(PageLayoutTest, ALineOfOneColumnIsALineToo)
{
    AddNote(tune, kTripletSixteenth, 1, "3^").Measure = 7;
    AddQuarters(4).Slot(6) = "NL";
    const LogLines log = Screen();
    EXPECT_TRUE(Has(log, "line 11440 765 11440 1590 w=2"));
    EXPECT_TRUE(Has(log, "text 520 650 size=10 font=\"Arial\" bold=0 \"3\""));
    EXPECT_TRUE(Has(log, "line 400 2667.5 11440 2667.5 w=1"));
    EXPECT_EQ(tooWide, std::nullopt);
    tune[2].Slot(6).clear();  // now it is a measure in the line of the next
    EXPECT_TRUE(Has(Screen(), "line 970 765 970 1590 w=2"));
}

TEST_F(PageLayoutTest, ANoteThatIsItsMeasuresOnlyRecordMayBeTooWideToo)
{
    AddNote(tune, kQuarter, 1, std::string(120, '5')).Measure = 7;
    AddQuarters(4);
    EXPECT_TRUE(Screen().empty());
    EXPECT_EQ(tooWide, 7);
}

TEST_F(PageLayoutTest, AMeasureWithoutAHeadThatBeginsInTheTablesLastColumnGoesToTheNextLine)
{
    AddMeasure(tune);
    for (int i = 0; i < 80; ++i)
        AddNote(tune, 60, 1).Spacing = 1;  // a code without a width of its own
    tune[80].Measure = tune[81].Measure = 2;
    EXPECT_EQ(Only(Screen(), "line 400 ", " w=1").size(), 12U);  // two lines of six strings
    EXPECT_FALSE(tooWide);
}

TEST_F(PageLayoutTest, AnEmptyMeasureBeforeAHardBreakStopsTheRunToo)
{
    AddMeasure(tune);
    AddQuarters(4).Slot(6) = "NL";
    Screen();
    EXPECT_EQ(tooWide, 1);
}

TEST_F(PageLayoutTest, PagesAfterTheFirstBeginAtY600AndPageMaxFollows)
{
    for (int m = 0; m < 9; ++m)
        AddQuarters(4).Slot(6) = "NL";
    const LogLines second = Screen(1);
    EXPECT_EQ(pages.PageMax, 1);
    EXPECT_TRUE(Has(second, "line 400 765 11440 765 w=1"));
    EXPECT_TRUE(pages.Page(0).Visible);
    EXPECT_FALSE(pages.Page(1).Visible);
    tune.LastNote = 5;
    EXPECT_TRUE(Screen(1).empty());
    EXPECT_EQ(pages.PageMax, 1);  // it never falls here
}

TEST_F(PageLayoutTest, ThePageLimitIsLowerOnFewerStrings)
{
    // Lines are 1902.5 apart on six strings (the seventh ends past 12700) and 1572.5 on four
    // (the eighth ends past 13000).
    for (int m = 0; m < 12; ++m)
        AddQuarters(4).Slot(6) = "NL";
    EXPECT_EQ(Only(Screen(0), "line 400 ", " w=1").size(), 7U * 6);
    tune.NumStrings = 4;
    EXPECT_EQ(Only(Screen(0), "line 400 ", " w=1").size(), 8U * 4);
}

TEST_F(PageLayoutTest, ATenthPageIsAFaultAndThePagesBeforeItStayDrawn)
{
    for (int m = 0; m < 9 * 7; ++m)
        AddQuarters(4).Slot(6) = "NL";
    EXPECT_FAULT(Screen(), ControlArrayElement);  // the page after the last line counts
    EXPECT_EQ(Only(LinesOf(pages.Page(8).Surface.Picture()), "line 400 ", " w=1").size(), 42U);
}

TEST_F(PageLayoutTest, PagesSixToEightAreNeitherClearedNorHidden)
{
    for (int m = 0; m < 45; ++m)
        AddQuarters(4).Slot(6) = "NL";
    Screen();
    pages.Page(6).Visible = true;
    const std::size_t once = LinesOf(pages.Page(6).Surface.Picture()).size();
    Screen();
    EXPECT_TRUE(pages.Page(6).Visible);
    EXPECT_EQ(LinesOf(pages.Page(6).Surface.Picture()).size(), 2 * once);
    EXPECT_FALSE(pages.Page(6).Surface.Picture().WasCleared());
    EXPECT_TRUE(pages.Page(5).Surface.Picture().WasCleared());
}

TEST_F(PageLayoutTest, ALongTextWidensItsColumn)
{
    AddQuarters(4);
    tune[2].Slot(4) = "12-14";    // 6 units
    tune[3].ChordText = "Cmaj7";  // 6 units
    const LogLines frets = Only(Screen(), "text", "\"3\"");
    EXPECT_TRUE(frets[1].starts_with("text 1870 "));  // 970 + 6 * 150
    EXPECT_TRUE(frets[2].starts_with("text 2770 "));
}

TEST_F(PageLayoutTest, AnEndBarIsDrawnAtTheMeasuresEndAndWidensItsLastColumn)
{
    AddQuarters(2).BarCode = kDoubleBar;
    AddQuarters(2);
    const LogLines log = Screen();
    // The head of measure 2 is 3 + 4 units after the first note.
    EXPECT_TRUE(Has(log, "line 2020 765 2020 1590 w=3"));
    EXPECT_TRUE(Has(log, "line 1980 765 1980 1590 w=2"));
}

TEST_F(PageLayoutTest, AnEndBarOnAHeadWithoutNotesIsLost)
{
    AddMeasure(tune).BarCode = kRepeatEnd;
    AddQuarters(3);
    EXPECT_TRUE(Only(Screen(), "line", " w=3").empty());
}

TEST_F(PageLayoutTest, AnEndBarMovesUpToTheLastColumnButOneOfTheTable)
{
    AddMeasure(tune).BarCode = kDoubleBar;
    for (int i = 0; i < 78; ++i)
        AddNote(tune, 60, 1).Spacing = 1;  // a code without a width of its own
    EXPECT_TRUE(Has(Screen(), "line 11440 765 11440 1590 w=3"));
}

TEST_F(PageLayoutTest, AnEndBarOfMeasure0MovesToTheFreeColumnsAndIsNotDrawn)
{
    AddQuarters(2).BarCode = kDoubleBar;
    for (int i = 1; i <= tune.LastNote; ++i)
        tune[i].Measure = 0;  // as the free columns to the table's end
    const LogLines log = Screen();
    EXPECT_EQ(Only(log, "text", "\"3\"").size(), 2U);
    EXPECT_TRUE(Only(log, "line", " w=3").empty());
}

TEST_F(PageLayoutTest, ABeginBarTakesThePlaceOfThePlainBar)
{
    AddQuarters(2);
    AddQuarters(2).BarCode = kBeginDoubleBar;
    const LogLines log = Screen();
    // Left edge, the thin line of the begin bar, and the last bar.
    EXPECT_EQ(Only(log, "line", " 1590 w=2").size(), 3U);
    EXPECT_EQ(Only(log, "line", " 1590 w=3").size(), 1U);
}

TEST_F(PageLayoutTest, ASecondRunGivesTheSamePages)
{
    for (int m = 0; m < 20; ++m)
        AddQuarters(4, m % 2 ? "3^" : "5");
    const LogLines once = Screen();
    EXPECT_EQ(Screen(), once);
}

TEST_F(PageLayoutTest, APageThatIsLaidOutWhileTheMouseIsDownOnItIsDrawnAsEver)
{
    AddQuarters(4);
    const LogLines before = Screen();
    pages.picPage1MouseDown(0, 500, 700);
    EXPECT_EQ(Screen(), before);
}

TEST_F(PageLayoutTest, AStaffEndsWithItsTuneIfItsLastColumnIsBefore9000)
{
    AddQuarters(18);            // the last note is at 970 + 17 * 450 = 8620
    tune[1].ChordText = "123";  // a head of 4 units instead of 2
    EXPECT_TRUE(Has(Screen(), "line 400 930 9820 930 w=1"));
    tune[1].ChordText = "12345";  // 6 units: at 9220
    EXPECT_TRUE(Has(Screen(), "line 400 930 11440 930 w=1"));
    tune[1].ChordText.clear();
    AddMeasure(tune);
    AddNote(tune, kHalfRest);  // after a head of 2 units, at 9370
    AddQuarters(4).Slot(6) = "NL";
    EXPECT_TRUE(Has(Screen(), "line 400 765 11440 765 w=1"));
}

TEST_F(PageLayoutTest, AWholeRestAtTheLinesEndShortensTheStaffAsAHalfRestDoes)
{
    AddMeasure(tune);
    AddNote(tune, kWholeRest);
    AddQuarters(4).Slot(6) = "NL";
    AddQuarters(4).Slot(6) = "NL";
    const LogLines log = Screen();
    EXPECT_TRUE(Has(log, "line 400 765 2770 765 w=1"));
    EXPECT_TRUE(Has(log, "line 400 2667.5 11440 2667.5 w=1"));
    tune[2].NoteCode = kQuarterRest;
    EXPECT_TRUE(Has(Screen(), "line 400 765 11440 765 w=1"));
}

TEST_F(PageLayoutTest, TheXThatTheMeasureViewGaveANoteMeansNothingOnThePage)
{
    AddMeasure(tune);
    AddNote(tune, kTripletEighth, 1, "5");
    AddMeasure(tune);
    AddNote(tune, kQuarter, 1, std::string(120, '5'));  // goes to the next line
    const LogLines before = Only(Screen(), "line");
    for (int i = 1; i <= tune.LastNote; ++i)
        tune[i].XPos = 5000;
    EXPECT_EQ(Only(Screen(), "line"), before);
}

TEST_F(PageLayoutTest, WhatAFileHoldsAsTheSumOfWidthsMeansNothing)
{
    AddQuarters(4);
    tune[4].NoteCode = tune[5].NoteCode = 60;  // codes without a width of their own
    tune[4].Spacing = tune[5].Spacing = 30000;
    for (int i = 1; i <= tune.LastNote; ++i)
        tune[i].Reserved = 500;
    // The sum that would pass 16 bits stays 0, which fits into any line.
    // But it is no number of units to share the line's width among, and all stands in one place.
    EXPECT_EQ(Only(Paper(), "text 1200 1985 ").size(), 4U);
    EXPECT_FALSE(tooWide);
}

TEST_F(PageLayoutTest, ASignatureThatChangesAtTheLastColumnGetsNoRoom)
{
    AddQuarters(23);               // 72 units
    AddNote(tune, kHalf, 1, "5");  // and 5
    tune[25].Beats = 3;
    const LogLines log = Screen();
    EXPECT_EQ(Only(log, "text 10816 ", "\" 3 \"").size(), 1U);  // of 143
    AddMeasure(tune, 3, 4).Slot(6) = "NL";
    AddNote(tune, kQuarter, 1, "3");
    EXPECT_EQ(Only(Screen(), "text", "\" 3 \"").size(), 1U) << "the next line knows it";
    tune[24].Beats = 3;
    EXPECT_EQ(Only(Screen(), "text 10249 ", "\" 3 \"").size(), 1U);  // of 141, 1 unit more
}

TEST_F(PageLayoutTest, EitherNumberOfASignatureMayChangeAlone)
{
    AddQuarters(2);
    for (const auto& [beats, unit] : {
             std::pair{3, 4},
             {3, 8},
             {3, 8}
    }) {
        AddMeasure(tune, beats, unit).Slot(6) = "NL";
        AddNote(tune, kQuarter, 1, "3");
    }
    const LogLines log = Screen();
    EXPECT_EQ(Only(log, "text 450 ", "\" 3 \"").size(), 2U);
    EXPECT_EQ(Only(log, "text 450 ", "\" 8 \"").size(), 1U);
}

TEST_F(PageLayoutTest, AColumnHasRoomForOneCharacterMoreThanItsLongestText)
{
    AddQuarters(5);
    tune[2].Slot(1) = "12";     // 3 units, as any quarter
    tune[3].Slot(6) = "123";    // 4
    tune[4].ChordText = "G7";   // 3
    tune[5].ChordText = "Am7";  // 4
    const LogLines stems = Only(Screen(), "line", " 2002.5 w=1");
    ASSERT_EQ(stems.size(), 5U);
    for (const auto& [i, x] : {
             std::pair{0, "line 1010 "},
             {1, "line 1460 "},
             {2, "line 2060 "},
             {3, "line 2510 "},
             {4, "line 3110 "}
    })
        EXPECT_TRUE(stems[static_cast<std::size_t>(i)].starts_with(x)) << stems[i];
}

TEST_F(PageLayoutTest, APlainBarIsBetweenAnyTwoMeasuresWithoutBarSigns)
{
    for (int m = 0; m < 5; ++m)
        AddQuarters(2);
    tune[4].BarCode = kRepeatStart;
    tune[10].BarCode = kDoubleBar;
    const LogLines log = Screen();
    // Measure 1 ends at the repeat's bar, and measure 4 at its own. The edge, the thin lines of
    // the two, and the bars of 2, 3 and 5.
    EXPECT_EQ(Only(log, "line", " 1590 w=2").size(), 6U);
    EXPECT_EQ(Only(log, "line", " 1590 w=3").size(), 2U);
}

TEST_F(PageLayoutTest, ALineOfMeasure0ThatTakesNoRecordStopsTheRun)
{
    AddQuarters(4);
    AddQuarters(4).Slot(6) = "NL";
    for (int i = 1; i <= 10; ++i)
        tune[i].Measure = 0;  // as only a hand-made file has it
    Screen();
    EXPECT_EQ(tooWide, 0);
}

}  // namespace
}  // namespace quillon
