#include "page_desk.h"
#include "store/sign_codes.h"
#include "support/fakes.h"

namespace quillon {
namespace {

class PrintPassTest : public PageDesk {
protected:
    std::optional<int> Print() { return PrintTune(tune, page, metrics, printer); }

    FakePrinter printer;
};

TEST_F(PrintPassTest, ALeftMarginOfOneInchPutsTheStaffAt1080AndTheFirstColumnAt1200)
{
    for (int m = 0; m < 2; ++m)
        AddQuarters(12).Slot(6) = "NL";
    const LogLines log = Paper();
    // The top margin, three gaps under the empty heading, and one gap of the line itself.
    EXPECT_TRUE(Has(log, "line 1080 2100 10800 2100 w=3"));
    EXPECT_TRUE(Only(log, "text", "\"3\"").at(0).starts_with("text 1650 "));  // 1200 + 3 units
}

TEST_F(PrintPassTest, ABodyFontOfSize11IsChangedTo12AndStaysSoOnTheScreen)
{
    page.BodyFontSize = 11;
    AddQuarters(4);
    const LogLines log = Paper();
    EXPECT_EQ(page.BodyFontSize, 12);
    EXPECT_TRUE(Only(log, "text", "\"3\"").at(0).find(" size=12 ") != std::string::npos);
    EXPECT_TRUE(Only(Screen(), "text", "\"3\"").at(0).find(" size=12 ") != std::string::npos);
}

TEST_F(PrintPassTest, TheStringGapFollowsTheBodyFont)
{
    AddQuarters(4);
    for (const auto& [size, gap] : {
             std::pair{8,  140},
             {10, 165},
             {12, 185}
    }) {
        page.BodyFontSize = static_cast<float>(size);
        const std::string y = std::to_string(1440 + 4 * gap);
        EXPECT_EQ(Only(Paper(), "line 1080 " + y + " ", y + " w=3").size(), 1U) << size;
    }
}

TEST_F(PrintPassTest, TheWidthOfACharacterFollowsTheBodyFont)
{
    AddQuarters(4, "12>");
    for (const auto& [size, x] : {
             std::pair{8,  160},
             {10, 200},
             {12, 240}
    }) {
        page.BodyFontSize = static_cast<float>(size);
        const std::string place = "text " + std::to_string(1650 + x) + " ";
        EXPECT_EQ(Only(Paper(), place, "\">\"").size(), 1U) << size;
    }
}

TEST_F(PrintPassTest, AChordOverAHeadUsesTheRoomOfItsMeasure)
{
    AddQuarters(6);
    tune[1].ChordText = "Intro";
    EXPECT_TRUE(Only(Paper(), "text", "\"3\"").at(0).starts_with("text 1650 "));
    tune[2].ChordText = "C";
    EXPECT_TRUE(Only(Paper(), "text", "\"3\"").at(0).starts_with("text 2400 "));
}

TEST_F(PrintPassTest, ThreeCopiesMakeThreeJobsAndTheDialogsCopiesAreOneAfterwards)
{
    AddQuarters(4);
    printer.Copies = {3};
    printer.OfferedCopies = 3;
    tune.FileName = "/home/anyone/Air.gui";
    EXPECT_FALSE(Print());
    EXPECT_EQ(printer.Jobs.size(), 3U);
    EXPECT_EQ(printer.JobNames.at(0), "Air.gui");
    EXPECT_EQ(printer.OfferedCopies, 1);
}

TEST_F(PrintPassTest, ACancelledDialogPrintsNothing)
{
    AddQuarters(4);
    printer.OfferedCopies = 3;
    EXPECT_FALSE(Print());
    EXPECT_TRUE(printer.Jobs.empty());
    EXPECT_EQ(printer.OfferedCopies, 3);
}

TEST_F(PrintPassTest, ALastColumnUnder9000ShortensTheStaffOnPaperOfAnyWidth)
{
    AddQuarters(4);  // the last note is at 1650 + 3 * 450
    EXPECT_TRUE(Has(Paper(), "line 1080 2100 3900 2100 w=3"));
    EXPECT_TRUE(Has(Paper(0, 30000), "line 1080 2100 3900 2100 w=3"));
    tune.LastNote = tune.LastMeas = 0;
    AddQuarters(18);  // at 1650 + 17 * 450 = 9300
    EXPECT_TRUE(Has(Paper(0, 30000), "line 1080 2100 28560 2100 w=3"));
}

TEST_F(PrintPassTest, ALastColumnAt9000ItselfLeavesTheStaffWhole)
{
    AddQuarters(17, "12");
    tune[2].Slot(1) = "123";  // 4 units instead of 3
    const LogLines log = Paper();
    EXPECT_EQ(Only(log, "text 9000 1985 ").size(), 1U);
    EXPECT_TRUE(Has(log, "line 1080 2100 10800 2100 w=3"));
    tune[2].Slot(1) = "12";
    EXPECT_TRUE(Has(Paper(), "line 1080 2100 9750 2100 w=3"));
}

TEST_F(PrintPassTest, ALongRestAt9000ItselfLeavesTheStaffWholeToo)
{
    AddQuarters(17, "12");
    tune[2].Slot(1) = "123";  // 4 units instead of 3
    tune[18].NoteCode = kHalfRest;
    AddQuarters(4).Slot(6) = "NL";
    EXPECT_TRUE(Has(Paper(0, 30000), "line 1080 2100 28560 2100 w=3"));
    tune[2].Slot(1) = "12";
    EXPECT_TRUE(Has(Paper(0, 30000), "line 1080 2100 10650 2100 w=3"));
}

TEST_F(PrintPassTest, ACentredTitleUsesTheWholePaperAndStandsAQuarterInchLeft)
{
    tune[0].ChordText = "Cripple Creek";  // 13 characters of 200 twips
    page.TitleCentered = true;
    EXPECT_TRUE(Paper().at(0).starts_with("text 4460 1440 "));  // (12240 - 2600) / 2 - 360
    page.PageLeft = 3;
    EXPECT_TRUE(Paper().at(0).starts_with("text 4460 1440 "));
    page.TitleCentered = false;
    EXPECT_TRUE(Paper().at(0).starts_with("text 3960 1440 "));
}

TEST_F(PrintPassTest, MarginsAreRoundedWithTiesToTheEvenTwip)
{
    AddQuarters(12);
    AddQuarters(12).Slot(6) = "NL";
    page.PageLeft = 361.0F / 1024;  // 507.65625 - 360
    EXPECT_FALSE(Only(Paper(), "line 148 2100 ", " w=3").empty());
    page.PageLeft = 33.0F / 64;  // 742.5 - 360
    EXPECT_FALSE(Only(Paper(), "line 382 2100 ", " w=3").empty());
    page.PageLeft = 35.0F / 64;  // 787.5 - 360
    EXPECT_FALSE(Only(Paper(), "line 428 2100 ", " w=3").empty());
}

TEST_F(PrintPassTest, AChordUsesTheRoomOfTheColumnsAfterIt)
{
    AddQuarters(6);
    tune[2].ChordText = "Cmaj7";
    const LogLines frets = Only(Paper(), "text", "\"3\"");
    EXPECT_TRUE(frets.at(0).starts_with("text 1650 "));
    EXPECT_TRUE(frets.at(1).starts_with("text 2100 "));  // 3 units, as without the chord
}

TEST_F(PrintPassTest, AChordBeforeAnotherWidensItsOwnColumn)
{
    AddQuarters(6);
    tune[2].ChordText = "Cmaj7";
    tune[3].ChordText = "F";
    const LogLines frets = Only(Paper(), "text", "\"3\"");
    EXPECT_TRUE(frets.at(1).starts_with("text 2700 "));  // 5 characters and 2
}

TEST_F(PrintPassTest, AChordThatWalksPastTheTableIsPassedOver)
{
    AddQuarters(6);
    tune[5].ChordText = std::string(20, 'm');
    const LogLines frets = Only(Paper(), "text", "\"3\"");
    ASSERT_EQ(frets.size(), 6U);
    EXPECT_TRUE(frets[3].starts_with("text 3000 "));
    EXPECT_TRUE(frets[4].starts_with("text 3450 "));  // 3 units, as without the chord
}

TEST_F(PrintPassTest, AChordUsesAsMuchOfTheColumnsAfterItAsItNeeds)
{
    AddQuarters(6);
    const auto second = [&](const std::string& chord, int next) {
        tune[2].ChordText = chord;
        tune[next].ChordText = "F";
        const std::string fret = Only(Paper(), "text", "\"3\"").at(1);
        tune[next].ChordText.clear();
        return fret.substr(0, 10);
    };
    // Columns are 3 units wide, and a chord needs its length and 2.
    EXPECT_EQ(second("A", 3), "text 2100 ");
    EXPECT_EQ(second("Am", 3), "text 2250 ");
    EXPECT_EQ(second("Cmaj", 4), "text 2100 ");
    EXPECT_EQ(second("Cmaj7", 4), "text 2700 ");
    EXPECT_EQ(second("Cmaj7+", 5), "text 2100 ");
}

TEST_F(PrintPassTest, AChordOverTheLastColumnWidensIt)
{
    AddQuarters(4);
    AddQuarters(4).Slot(6) = "NL";
    AddQuarters(4);
    tune[5].ChordText = std::string(80, 'm');
    // 12 units before it, and 81 of its own: 9720 / 93 twips to the unit
    EXPECT_TRUE(Only(Paper(), "text", "\"3\"").at(1).starts_with("text 1824 "));
}

TEST_F(PrintPassTest, ALastLinePastTheLimitLeavesAnEmptyPage)
{
    for (int m = 0; m < 2; ++m)
        AddQuarters(4).Slot(6) = "NL";
    page.StaveSpace = 3;
    EXPECT_TRUE(Paper(1).empty());
    EXPECT_EQ(paperPages, 2U);
}

TEST_F(PrintPassTest, ALineThatEndsAtTheLimitItselfLeavesTheNextOneOnThePage)
{
    for (int m = 0; m < 6; ++m)
        AddQuarters(4).Slot(6) = "NL";
    page.PageTop = 1.379861F;  // 1987 twips
    page.StaveSpace = .8F;     // 1152: the fifth line starts at 1987 + 495 + 4 * 2554.5 = 12700
    EXPECT_EQ(Only(Paper(0), "line 1080 ", " w=3").size(), 5U * 6);
    EXPECT_EQ(Only(Paper(1), "line 1080 ", " w=3").size(), 6U);
    EXPECT_EQ(paperPages, 2U);
    page.StaveSpace = 1153.0F / 1440;
    EXPECT_EQ(Only(Paper(0), "line 1080 ", " w=3").size(), 4U * 6);
}

TEST_F(PrintPassTest, FourAndFiveStringsLeaveLessRoomAtThePagesEnd)
{
    for (int m = 0; m < 4; ++m)
        AddQuarters(4).Slot(6) = "NL";
    const struct {
        int strings;
        float top;  // twips; the third line then starts at 13000
    } rows[] = {
        {4, 4600},
        {5, 4270}
    };
    for (const auto& row : rows) {
        tune.NumStrings = row.strings;
        page.PageTop = row.top / 1440;
        page.StaveSpace = 2;
        EXPECT_EQ(Only(Paper(0), "line 1080 ", " w=3").size(), 3U * row.strings);
        page.StaveSpace = 2881.0F / 1440;
        EXPECT_EQ(Only(Paper(0), "line 1080 ", " w=3").size(), 2U * row.strings);
    }
}

TEST_F(PrintPassTest, AnEmptyTuneIsOneEmptyPage)
{
    EXPECT_TRUE(Paper().empty());
    EXPECT_EQ(paperPages, 1U);
}

TEST_F(PrintPassTest, PaperHasAsManyPagesAsItTakes)
{
    for (int m = 0; m < 100; ++m)
        AddQuarters(4).Slot(6) = "NL";
    Paper();
    EXPECT_EQ(paperPages, 21U);  // five lines each, and an empty one
}

TEST_F(PrintPassTest, AFailureBeforeTheFirstLineEndsTheCommandSilently)
{
    AddQuarters(4);
    page.PageRight = -40;  // LineRight past 16 bits
    printer.Copies = {2};
    printer.OfferedCopies = 2;
    EXPECT_FALSE(Print());
    EXPECT_TRUE(printer.Jobs.empty());
    EXPECT_EQ(printer.OfferedCopies, 2);
    EXPECT_FAULT(Paper(), Overflow);
}

TEST_F(PrintPassTest, ATextWiderThan32BitsIsAnOverflow)
{
    AddQuarters(4);
    tune[0].ChordText = "Wide";
    page.TitleCentered = true;
    page.TitleFontSize = 2e8F;
    EXPECT_FAULT(Paper(), Overflow);
    printer.Copies = {1};
    EXPECT_FALSE(Print());
    EXPECT_TRUE(printer.Jobs.empty());
}

TEST_F(PrintPassTest, AFailureInALineLeavesOutThatOperation)
{
    AddQuarters(4);
    tune[3].NoteCode = 60;  // no width of its own
    tune[3].Spacing = 0;
    tune[3].Slot(1).clear();
    tune[4].Slot(2) = std::string(40000, '5');  // its width is past 16 bits
    EXPECT_EQ(Only(Paper(), "text", "\"3\"").size(), 3U);
    EXPECT_FAULT(Screen(), Overflow);
}

TEST_F(PrintPassTest, MarginsWithoutRoomBetweenThemAreTooWideForAnyMeasure)
{
    AddQuarters(4);
    page.PageLeft = 5;
    page.PageRight = 5;
    printer.Copies = {1};
    EXPECT_EQ(Print(), 1);
    EXPECT_EQ(printer.Jobs.size(), 1U);
    EXPECT_EQ(printer.OfferedCopies, 1);
}

TEST_F(PrintPassTest, PensAreThoseOfThePrinter)
{
    AddMeasure(tune).BarCode = kRepeatEnd;
    AddNote(tune, kEighth, 1, "3^");
    AddNote(tune, kEighth, 1, "3").BeamCode = kMainBeam;
    AddNote(tune, kWholeRest);
    const LogLines log = Paper();
    EXPECT_EQ(Only(log, "line 1080 ", " w=3").size(), 6U);  // staff
    EXPECT_EQ(Only(log, "line", " w=6").size(), 1U);        // thick bar
    EXPECT_EQ(Only(log, "line", " w=15").size(), 1U);       // block rest
    EXPECT_EQ(Only(log, "arc", " w=2").size(), 1U);         // tie
    EXPECT_EQ(Only(log, "line", " w=3").size(), 7U);        // and the beam
    EXPECT_EQ(Only(log, "circle", " w=2 fill=solid").size(), 2U);
}

TEST_F(PrintPassTest, ATieIsDrawnWithoutTheScreensInset)
{
    AddQuarters(2, "3^");
    // Radius (450 - 100) / 2; the centre is that far after the text.
    EXPECT_TRUE(Has(Paper(), "arc 1925 2100 175 0 3.25 0.5 w=2"));
}

TEST_F(PrintPassTest, ThePageViewStaysAsItIs)
{
    AddQuarters(4);
    const LogLines before = Screen();
    tune[2].ChordText = "C";
    Paper();
    EXPECT_EQ(LinesOf(pages.Page(0).Surface.Picture()), before);
}

}  // namespace
}  // namespace quillon
