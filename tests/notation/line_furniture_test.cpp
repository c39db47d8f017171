#include "page_desk.h"
#include "store/sign_codes.h"

namespace quillon {
namespace {

/// Measures of four quarters: the first note of the first is at 970, its head at 520; each
/// further head is 14 units (2100) after the one before it, the first one unit more. The tune is
/// one short line, whose staff ends at 7420.
class LineFurnitureTest : public PageDesk {
protected:
    LineFurnitureTest()
    {
        for (int m = 0; m < 3; ++m)
            heads[m] = &AddQuarters(4);
    }

    NoteRecord& Head(int measure) { return *heads[measure - 1]; }

    NoteRecord* heads[3];
};

TEST_F(LineFurnitureTest, ASignOnTheFirstMeasureAndABracketOnTheSecondShareOneTopRow)
{
    Head(1).Slot(1) = kSign;
    Head(2).Slot(2) = "1.";
    const LogLines log = Screen();
    // The row is at y 600, and the staff three gaps lower, at 1095.
    EXPECT_TRUE(Has(log, "text 670 600 size=10 font=\"Tab\" bold=0 \"$\""));
    EXPECT_TRUE(Has(log, "line 2770 1055 2770 600 w=1"));
    EXPECT_TRUE(Has(log, "line 2770 600 4420 600 w=1"));
    EXPECT_TRUE(Has(log, "text 2810 600 size=10 font=\"Arial\" bold=0 \"1.\""));
    EXPECT_TRUE(Has(log, "line 400 1095 7420 1095 w=1"));
}

TEST_F(LineFurnitureTest, AHeadThatIsItsMeasuresOnlyRecordTakesTheNextMeasuresFirstColumn)
{
    AddMeasure(tune).Slot(3) = "alone";
    AddQuarters(2);
    // The lone head is at 6970, the next one two units after it.
    EXPECT_TRUE(Has(Screen(), "text 7270 600 size=10 font=\"Arial\" bold=0 \"alone\""));
}

TEST_F(LineFurnitureTest, ALineDoesNotEndInAHead)
{
    AddMeasure(tune).Slot(3) = "not here";
    AddQuarters(4).Slot(6) = "NL";
    // The head before the break goes to a line of its own, which takes nothing.
    Screen();
    EXPECT_EQ(tooWide, 4);
    EXPECT_TRUE(Only(LinesOf(pages.Page(0).Surface.Picture()), "text", "here\"").empty());
}

TEST_F(LineFurnitureTest, ARemarkOfJustASlashPrintsAnEmptyText)
{
    const std::size_t before = Screen().size();
    Head(2).Slot(3) = "/";
    const LogLines log = Screen();
    EXPECT_EQ(log.size(), before);  // nothing to see but the row that it takes
    EXPECT_TRUE(Has(log, "line 400 1095 7420 1095 w=1"));
}

TEST_F(LineFurnitureTest, ARemarkWithASlashIsSetRightByItsWidthInTheFormsFont)
{
    Head(1).Slot(3) = "/rit.";
    // Last column of measure 1: 2320, two units, less 4 characters of 4.125 points.
    EXPECT_TRUE(Has(Screen(), "text 2290 600 size=10 font=\"Arial\" bold=0 \"rit.\""));
}

TEST_F(LineFurnitureTest, SignsBeginOrEndTheirMeasure)
{
    const struct {
        std::string_view code;
        const char* expected;
    } rows[] = {
        {kSign,     "text 670 600 size=10 font=\"Tab\" bold=0 \"$\""              },
        {kCoda,     "text 670 600 size=10 font=\"Tab\" bold=0 \"@\""              },
        {kDsAlFine, "text 1630 600 size=10 font=\"Arial\" bold=0 \"D.S. Al Fine\""},
        {kDsAlCoda, "text 1630 600 size=10 font=\"Arial\" bold=0 \"D.S. Al Coda\""},
        {kDcAlFine, "text 1630 600 size=10 font=\"Arial\" bold=0 \"D.C. Al Fine\""},
        {kDcAlCoda, "text 1630 600 size=10 font=\"Arial\" bold=0 \"D.C. Al Coda\""},
        {kFine,     "text 2290 600 size=10 font=\"Arial\" bold=0 \"Fine\""        },
    };
    for (const auto& row : rows) {
        Head(1).Slot(1) = row.code;
        EXPECT_TRUE(Has(Screen(), row.expected)) << row.expected;
    }
}

TEST_F(LineFurnitureTest, PlainDsAndDcTakeUpTheTopRowAndPrintNothing)
{
    const std::size_t texts = Only(Screen(), "text").size();
    for (std::string_view code : {kDs, kDc}) {
        Head(1).Slot(1) = code;
        const LogLines log = Screen();
        EXPECT_EQ(Only(log, "text").size(), texts);
        EXPECT_TRUE(Has(log, "line 400 1095 7420 1095 w=1"));
    }
}

TEST_F(LineFurnitureTest, ATimeSignatureInTheFirstColumnStands50RightOfTheStaffAndTheEdgeIsDrawn)
{
    const LogLines log = Screen();
    EXPECT_TRUE(Has(log, "text 450 765 size=16 font=\"Arial\" bold=0 \" 4 \""));
    EXPECT_TRUE(Has(log, "text 450 1095 size=16 font=\"Arial\" bold=0 \" 4 \""));
    EXPECT_TRUE(Has(log, "line 400 765 400 1590 w=2"));
}

TEST_F(LineFurnitureTest, TheLowerFigureStandsHigherOnFourStrings)
{
    tune.NumStrings = 4;
    EXPECT_TRUE(Has(Screen(), "text 450 995 size=16 font=\"Arial\" bold=0 \" 4 \""));
}

TEST_F(LineFurnitureTest, TimeSignaturesFollowTheBodyFontInThreeSizesOnly)
{
    for (const auto& [body, figures] : {
             std::pair{8,  12},
             {10, 16},
             {12, 18},
             {9,  9 }
    }) {
        page.BodyFontSize = static_cast<float>(body);
        EXPECT_EQ(Only(Screen(), "text 450 765 size=" + std::to_string(figures) + " ").size(), 1U);
    }
}

TEST_F(LineFurnitureTest, ATimeSignatureIsShownWhereItChangesAndAfterARepeatStart)
{
    for (int i = 6; i <= 10; ++i)
        tune[i].Beats = 3;
    Head(2).BarCode = kRepeatStart;
    const LogLines log = Screen();
    // The head's width grows by 2 for the signature and 1 for the bar.
    EXPECT_TRUE(Has(log, "text 2920 765 size=16 font=\"Arial\" bold=0 \" 3 \""));
    EXPECT_EQ(Only(log, "text", "\" 4 \"").size(), 5U);
}

TEST_F(LineFurnitureTest, AnyBarCodeStopsTheBracketSearchAndAnEmptyOneDoesNot)
{
    // Measure 2 begins at 2770; a plain bar is at its last column, 4420.
    Head(2).Slot(2) = "1.";
    EXPECT_TRUE(Has(Screen(), "line 2770 600 4420 600 w=1"));
    for (std::string_view code : {kDoubleBar, kRepeatEnd}) {
        Head(2).BarCode = code;  // moves to the measure's last column
        EXPECT_TRUE(Has(Screen(), "line 2770 600 4420 600 w=1")) << code;
    }
    for (std::string_view code : {kBeginDoubleBar, kRepeatStart}) {
        Head(2).BarCode = code;  // stays on the head: a bracket without length
        EXPECT_TRUE(Has(Screen(), "line 2770 600 2770 600 w=1")) << code;
    }
}

TEST_F(LineFurnitureTest, ABracketInTheLinesLastMeasureRunsToLineRight)
{
    Head(3).Slot(2) = "2.";
    EXPECT_TRUE(Has(Screen(), "line 4870 600 7420 600 w=1"));
}

TEST_F(LineFurnitureTest, ABarCodeThatSortsBelowThePlainBarsStopsNoBracket)
{
    Head(2).Slot(2) = "1.";
    tune[10].BarCode = "1";  // in the place of the plain bar
    EXPECT_TRUE(Has(Screen(), "line 2770 600 7420 600 w=1"));
}

TEST_F(LineFurnitureTest, ABracketStandsAboveAnythingElseInTheTopRow)
{
    Head(2).Slot(2) = "1.";
    Head(2).Slot(3) = "Slowly";
    Head(2).Slot(1) = kFine;
    const LogLines log = Screen();
    EXPECT_TRUE(Has(log, "line 2770 1055 2770 600 w=1"));
    EXPECT_TRUE(Has(log, "text 3070 600 size=10 font=\"Arial\" bold=0 \"Slowly\""));
    EXPECT_TRUE(Has(log, "text 4390 600 size=10 font=\"Arial\" bold=0 \"Fine\""));
}

TEST_F(LineFurnitureTest, AnUnknownSignTakesUpTheTopRowAndPrintsNothing)
{
    const std::size_t before = Screen().size();
    Head(1).Slot(1) = "99x";
    const LogLines log = Screen();
    EXPECT_EQ(log.size(), before);
    EXPECT_TRUE(Has(log, "line 400 1095 7420 1095 w=1"));
}

TEST_F(LineFurnitureTest, ALetterOfTheRightHandLowersTheStemsOfItsLineAlone)
{
    AddQuarters(1).Slot(6) = "NL";
    tune[15].RightHand = 'p';  // the first line's last note
    const LogLines log = Screen();
    EXPECT_EQ(Only(log, "line", " 2085 w=1").size(), 12U);
    // The second line's staff is at 2915, and its stem ends at 3987.5.
    EXPECT_TRUE(Has(log, "line 860 2980 860 3987.5 w=1"));
}

TEST_F(LineFurnitureTest, AChordOverTheLastNoteIsPrintedToo)
{
    tune[15].ChordText = "G";
    EXPECT_TRUE(Has(Screen(), "text 6520 600 size=10 font=\"Arial\" bold=0 \"G\""));
}

TEST_F(LineFurnitureTest, AChordOverTheLinesFirstHeadIsPrintedToo)
{
    Head(1).ChordText = "G";
    EXPECT_TRUE(Has(Screen(), "text 520 600 size=10 font=\"Arial\" bold=0 \"G\""));
}

TEST_F(LineFurnitureTest, ASignatureAfterARepeatStartAtTheLinesStartIsAUnitFurtherRight)
{
    Head(1).BarCode = kRepeatStart;
    EXPECT_TRUE(Has(Screen(), "text 550 765 size=16 font=\"Arial\" bold=0 \" 4 \""));
}

TEST_F(LineFurnitureTest, ASignatureThatChangesLaterStandsAtItsHead)
{
    for (int i = 6; i <= tune.LastNote; ++i)
        tune[i].Beats = 3;
    const LogLines log = Screen();
    EXPECT_TRUE(Has(log, "text 2770 765 size=16 font=\"Arial\" bold=0 \" 3 \""));
    EXPECT_TRUE(Has(log, "text 2770 1095 size=16 font=\"Arial\" bold=0 \" 4 \""));
}

TEST_F(LineFurnitureTest, BeginBarsInsideALineStandAtTheirHead)
{
    Head(2).BarCode = kBeginDoubleBar;
    const LogLines log = Screen();
    EXPECT_TRUE(Has(log, "line 2770 765 2770 1590 w=3"));
    EXPECT_TRUE(Has(log, "line 2810 765 2810 1590 w=2"));
    EXPECT_TRUE(Only(log, "circle").empty());
}

TEST_F(LineFurnitureTest, ChordsAloneTakeTwoGaps)
{
    tune[2].ChordText = "G";
    const LogLines log = Screen();
    EXPECT_TRUE(Has(log, "text 970 600 size=10 font=\"Arial\" bold=0 \"G\""));
    EXPECT_TRUE(Has(log, "line 400 930 7420 930 w=1"));
}

TEST_F(LineFurnitureTest, ChordsUnderATopRowStandInItsThirdGap)
{
    tune[2].ChordText = "G";
    Head(1).Slot(3) = "Slowly";
    const LogLines log = Screen();
    EXPECT_TRUE(Has(log, "text 970 765 size=10 font=\"Arial\" bold=0 \"G\""));
    EXPECT_TRUE(Has(log, "line 400 1095 7420 1095 w=1"));
}

TEST_F(LineFurnitureTest, RepeatBarsHaveDotsWhosePlaceFollowsTheStrings)
{
    Head(1).BarCode = kRepeatStart;
    for (const auto& [strings, upper, lower] : {
             std::tuple{6, "1012.5", "1342.5" },
             {5, "946.5",  "1218.75"},
             {4, "888.75", "1136.25"}
    }) {
        tune.NumStrings = strings;
        const LogLines log = Screen();
        EXPECT_TRUE(Has(log, std::string("circle 490 ") + upper + " 30 w=2 fill=solid"));
        EXPECT_TRUE(Has(log, std::string("circle 490 ") + lower + " 30 w=2 fill=solid"));
    }
}

TEST_F(LineFurnitureTest, AFirstMeasureWithABeginBarHasNoLeftEdge)
{
    Head(1).BarCode = kBeginDoubleBar;
    const LogLines log = Screen();
    EXPECT_TRUE(Has(log, "line 400 765 400 1590 w=3"));
    EXPECT_TRUE(Has(log, "line 440 765 440 1590 w=2"));
    EXPECT_FALSE(Has(log, "line 400 765 400 1590 w=2"));
}

TEST_F(LineFurnitureTest, AnEndBarAtTheLinesEndStandsAtLineRight)
{
    Head(3).BarCode = kRepeatEnd;
    const LogLines log = Screen();
    EXPECT_TRUE(Has(log, "line 7420 765 7420 1590 w=3"));
    EXPECT_TRUE(Has(log, "line 7380 765 7380 1590 w=2"));
    EXPECT_TRUE(Has(log, "circle 7330 1012.5 30 w=2 fill=solid"));
}

}  // namespace
}  // namespace quillon
