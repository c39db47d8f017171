#include "notation/measure_view.h"

#include "store/sign_codes.h"
#include "support/faults.h"
#include "support/tunes.h"

#include <algorithm>

namespace quillon {
namespace {

/// Shows measures of a table; `Has` looks for a line of the drawing log.
class MeasureViewTest : public testing::Test {
protected:
    /// Shows the measure whose records start at `head` and end before the next head.
    void Show(int head = 1)
    {
        state.MeasHead = head;
        state.MeasEnd = head;
        while (state.MeasEnd < tune.LastNote && !tune[state.MeasEnd + 1].IsHead())
            ++state.MeasEnd;
        tune.CurMeas = tune[head].Measure;
        tune.CurNote = head + 1;
        view.RedrawMeasure();
    }

    void SetStrings(int n) { tune.NumStrings = n; }
    std::string Log() const { return view.StaffBox.Picture().Log(); }
    int Lines() const
    {
        const std::string log = Log();
        return static_cast<int>(std::count(log.begin(), log.end(), '\n'));
    }

    int CountOf(const std::string& line) const
    {
        const std::string log = "\n" + Log();
        int count = 0;
        for (std::size_t at = 0; (at = log.find("\n" + line + "\n", at)) != std::string::npos; ++at)
            ++count;
        return count;
    }

    bool Has(const std::string& line) const { return CountOf(line) > 0; }

    /// A text in the body font as the measure view prints it.
    static std::string Text(const std::string& at, const std::string& text, int size = 10)
    {
        return "text " + at + " size=" + std::to_string(size) + " font=\"Arial\" bold=1 \"" + text +
               "\"";
    }

    static std::string Glyph(const std::string& at, const std::string& glyph, int size = 10)
    {
        return "text " + at + " size=" + std::to_string(size) + " font=\"Tab\" bold=1 \"" + glyph +
               "\"";
    }

    Tune tune;
    EditingState state;
    PageSettings page;
    FixedTextMetrics metrics;
    MeasureView view{tune, state, page, metrics};
};

TEST_F(MeasureViewTest, AnEmptyMeasureHasTheTimeSignatureTheBarAt350AndNothingElse)
{
    AddMeasure(tune);
    Show();
    EXPECT_EQ(Log(), "clear\n" + Text("2 36", " 4 ", 18) + "\n" + Text("2 56", " 4 ", 18) +
                         "\nline 350 36 350 76 w=1\n");
    EXPECT_EQ(view.EndBarX, 350);
}

TEST_F(MeasureViewTest, TheTimeSignatureStandsByTheNumberOfStrings)
{
    AddMeasure(tune, 6, 8);
    SetStrings(5);
    Show();
    EXPECT_TRUE(Has(Text("2 32", " 6 ", 18)));
    EXPECT_TRUE(Has(Text("2 48", " 8 ", 18)));
    EXPECT_TRUE(Has("line 350 36 350 68 w=1"));
    SetStrings(4);
    Show();
    EXPECT_TRUE(Has(Text("2 32", " 6 ", 16)));
    EXPECT_TRUE(Has(Text("2 44", " 8 ", 16)));
    EXPECT_TRUE(Has("line 350 36 350 60 w=1"));
}

TEST_F(MeasureViewTest, AMeasureNotYetFullEndsAt350AndAFullOneAfterItsLastNote)
{
    AddMeasure(tune);
    for (int i = 0; i < 3; ++i)
        AddNote(tune, kQuarter, 1, "1");
    Show();
    EXPECT_EQ(view.EndBarX, 350);
    EXPECT_EQ(state.MeasFill, 36);
    AddNote(tune, kQuarter, 1, "1");
    Show();
    EXPECT_EQ(state.MeasFill, 48);
    EXPECT_EQ(view.EndBarX, 48 + 4 * 24);
    EXPECT_TRUE(Has("line 144 36 144 76 w=1"));
}

TEST_F(MeasureViewTest, ACapacityOf32Is18TicksSinceAnyLowerNumberBut4CountsAs8)
{
    AddMeasure(tune, 3, 2);
    Show();
    EXPECT_EQ(state.MeasCapacity, 18);
    tune[1].BeatUnit = 16;
    Show();
    EXPECT_EQ(state.MeasCapacity, 18);
    tune[1].BeatUnit = 4;
    Show();
    EXPECT_EQ(state.MeasCapacity, 36);
}

TEST_F(MeasureViewTest, TakesTheSignatureForNewMeasuresFromTheHead)
{
    AddMeasure(tune, 9, 8);
    Show();
    EXPECT_EQ(state.CurBeats, 9);
    EXPECT_EQ(state.CurBeatUnit, 8);
    EXPECT_EQ(state.MeasCapacity, 54);
}

TEST_F(MeasureViewTest, ANoteOfButton1WithThreeCharactersGrowsFromSpacing2To4AndMovesTheNext)
{
    AddMeasure(tune);
    AddNote(tune, kTripletSixteenth, 3, "5");
    AddNote(tune, kTripletSixteenth, 3, "5");
    Show();
    EXPECT_EQ(tune[2].Spacing, 2);
    EXPECT_EQ(tune[3].XPos, 60);
    tune[2].Slot(3) = "10>";
    Show();
    EXPECT_EQ(tune[2].Spacing, 4);
    EXPECT_EQ(tune[3].XPos, 72);
}

TEST_F(MeasureViewTest, SpacingCountsAllSixSlotsWhateverTheInstrument)
{
    AddMeasure(tune);
    AddNote(tune, kSixteenth, 6, "12345");
    SetStrings(4);
    Show();
    EXPECT_EQ(tune[2].Spacing, 6);
}

TEST_F(MeasureViewTest, SpacingGrowsFromSlotToSlotAsItGoes)
{
    AddMeasure(tune);
    NoteRecord& note = AddNote(tune, kSixteenth, 1, "12");
    note.Slot(2) = "123";  // as long as the width that string 1 has made
    Show();
    EXPECT_EQ(note.Spacing, 4);
}

TEST_F(MeasureViewTest, AChordTextOf5LettersOverAQuarterGivesSpacing6)
{
    AddMeasure(tune);
    AddNote(tune, kQuarter, 1, "1").ChordText = "Cmaj7";
    AddNote(tune, kQuarter, 1, "1");
    Show();
    EXPECT_EQ(tune[2].Spacing, 6);
    EXPECT_EQ(tune[3].XPos, 48 + 36);
    EXPECT_TRUE(Has(Text("48 12", "Cmaj7")));
}

TEST_F(MeasureViewTest, AFretOf12InAHalfNotePrintsBracketsWithDotAndTieAfterAll4Characters)
{
    AddMeasure(tune);
    NoteRecord& note = AddNote(tune, kHalf, 1, "12^");
    Show();
    EXPECT_TRUE(Has(Text("48 28", "[12]")));
    // 24 after the note; the radius is what 4 of 8 columns leave
    EXPECT_TRUE(Has("arc 84 34 12 0.5 3 0.5 w=1"));
    note.NoteCode = kDottedHalf;
    note.Slot(1) = "12";
    Show();
    EXPECT_TRUE(Has("circle 72 34 1 w=1 fill=solid"));
}

TEST_F(MeasureViewTest, ACellWithATiePrintsTheFretAndAnArcByTheSpacingThatTheTextLeaves)
{
    AddMeasure(tune);
    NoteRecord& note = AddNote(tune, kQuarter, 2, "7^");
    Show();
    EXPECT_TRUE(Has(Text("48 36", "7")));
    EXPECT_TRUE(Has("arc 63 42 9 0.5 3 0.5 w=1"));
    note.NoteCode = kSixteenth;  // Spacing 3, for two characters
    Show();
    EXPECT_EQ(note.Spacing, 3);
    EXPECT_TRUE(Has("arc 60 42 6 0.5 3 0.5 w=1"));
}

TEST_F(MeasureViewTest, ABendMarkAtPosition2OnString1StandsInSize8AboveTheFret)
{
    AddMeasure(tune);
    AddNote(tune, kQuarter, 1, "5>");
    Show();
    EXPECT_TRUE(Has(Text("48 28", "5")));
    EXPECT_TRUE(Has(Glyph("54 20", ">", 8)));
}

TEST_F(MeasureViewTest, ABendMarkDownwardsStandsOnTheLineOfTheFret)
{
    AddMeasure(tune);
    AddNote(tune, kQuarter, 1, "5<");
    Show();
    EXPECT_TRUE(Has(Glyph("54 28", "<", 8)));
}

TEST_F(MeasureViewTest, TheBendPositionCountsInTheSlotAndTheMarkIsTheLastCharacterLeft)
{
    AddMeasure(tune);
    AddNote(tune, kQuarter, 1, "5>7");
    Show();
    EXPECT_TRUE(Has(Text("48 28", "5>")));
    EXPECT_TRUE(Has(Glyph("54 28", "7", 8)));
}

TEST_F(MeasureViewTest, ASlashTypedOnString5IsMovedToString3AtTheFirstRedrawAndStays)
{
    AddMeasure(tune);
    NoteRecord& note = AddNote(tune, kQuarter, 5, "/");
    Show();
    EXPECT_EQ(note.Slot(5), "");
    EXPECT_EQ(note.Slot(3), "/");
    EXPECT_TRUE(Has("text 48 44 size=10 font=\"tab\" bold=1 \"/\""));
    Show();
    EXPECT_EQ(note.Slot(3), "/");
}

TEST_F(MeasureViewTest, WhatFollowsASlashIsInTheBodyFontAgain)
{
    AddMeasure(tune);
    NoteRecord& note = AddNote(tune, kQuarter, 3, "/");
    note.Slot(5) = "7";
    note.LeftHand = '2';
    Show();
    EXPECT_TRUE(Has("text 48 44 size=10 font=\"tab\" bold=1 \"/\""));
    EXPECT_TRUE(Has(Text("48 60", "7")));
    EXPECT_TRUE(Has(Text("51 108", "2")));
}

TEST_F(MeasureViewTest, OnlyACellThatIsExactlyASlashIsMoved)
{
    AddMeasure(tune);
    NoteRecord& note = AddNote(tune, kQuarter, 5, "//");
    Show();
    EXPECT_EQ(note.Slot(5), "//");
    EXPECT_EQ(note.Slot(3), "");
}

TEST_F(MeasureViewTest, ASlideIsThreePiecesSideBySide)
{
    AddMeasure(tune);
    NoteRecord& note = AddNote(tune, kQuarter, 1, "5-7");
    Show();
    EXPECT_TRUE(Has(Text("48 28", "5")));
    EXPECT_TRUE(Has(Glyph("53 26", "-")));
    EXPECT_TRUE(Has(Text("58 28", "7")));
    note.Slot(1) = "5=7";
    Show();
    EXPECT_TRUE(Has(Glyph("53 25", "=")));
}

TEST_F(MeasureViewTest, ACellOfBlanksIsNotEmpty)
{
    AddMeasure(tune);
    AddNote(tune, kQuarter, 4, "  ");
    Show();
    EXPECT_TRUE(Has("line 51 64 51 108 w=1")) << "the stem starts below string 4";
}

TEST_F(MeasureViewTest, TheStemStartsBelowTheLowestFretOrAt40)
{
    AddMeasure(tune);
    AddNote(tune, kQuarter, 2, "0").Slot(5) = "0";
    AddNote(tune, kQuarter);
    Show();
    EXPECT_TRUE(Has("line 51 72 51 108 w=1"));
    EXPECT_TRUE(Has("line 75 40 75 108 w=1"));
}

TEST_F(MeasureViewTest, TwoEighthsOnABeatAreJoinedByTheMainBeamAndOneAloneHasAFlag)
{
    AddMeasure(tune);
    AddNote(tune, kEighth, 1, "1");
    Show();
    EXPECT_EQ(tune[2].BeamCode, kEighthFlag);
    EXPECT_TRUE(Has(Glyph("51 90", "(")));
    AddNote(tune, kEighth, 1, "1");
    Show();
    EXPECT_EQ(tune[2].BeamCode, kNoBeam);
    EXPECT_EQ(tune[3].BeamCode, kMainBeam);
    EXPECT_TRUE(Has("line 69 108 50 108 w=1"));
}

TEST_F(MeasureViewTest, FourSixteenthsOnABeatHaveTwoBeamsToTheStart)
{
    AddMeasure(tune);
    for (int i = 0; i < 4; ++i)
        AddNote(tune, kSixteenth, 1, "1");
    Show();
    EXPECT_EQ(tune[2].BeamCode, kNoBeam);
    for (int i = 3; i <= 5; ++i) {
        EXPECT_EQ(tune[i].BeamCode, kBothBeams);
        const std::string x = std::to_string(tune[i].XPos + 2);
        EXPECT_TRUE(Has("line " + x + " 108 50 108 w=1"));
        EXPECT_TRUE(Has("line " + x + " 105 50 105 w=1"));
    }
}

TEST_F(MeasureViewTest, AnEighthAndTwoSixteenthsIn44EndWithTheCodes052)
{
    AddMeasure(tune);
    for (int code : {kEighth, kSixteenth, kSixteenth})
        AddNote(tune, code, 1, "1");
    Show();
    EXPECT_EQ(tune[2].BeamCode, kNoBeam);
    EXPECT_EQ(tune[3].BeamCode, kMainBeam);
    EXPECT_EQ(tune[4].BeamCode, kBothBeams);
}

TEST_F(MeasureViewTest, StubsPointForwardFromAGroupsFirstSixteenthAndBackFromItsLast)
{
    AddMeasure(tune);
    for (int code : {kSixteenth, kEighth, kSixteenth})
        AddNote(tune, code, 1, "1");
    Show();
    EXPECT_TRUE(Has("line 51 105 56 105 w=1"));
    EXPECT_TRUE(Has("line 63 108 50 108 w=1"));
    EXPECT_TRUE(Has("line 80 108 50 108 w=1") && Has("line 80 105 75 105 w=1"));
}

TEST_F(MeasureViewTest, ASixteenthAfterARestPointsForwardToAnEighthFromTheMainBeam)
{
    AddMeasure(tune, 9, 8);
    for (int code : {kSixteenth, kSixteenthRest, kSixteenth, kEighth, kSixteenth})
        AddNote(tune, code, IsNoteValue(code) ? 1 : 0, "1");
    Show();
    EXPECT_EQ(tune[4].BeamCode, kMainBeamForwardStub);
    EXPECT_TRUE(Has("line 75 108 50 108 w=1") && Has("line 75 105 80 105 w=1"));
}

TEST_F(MeasureViewTest, ABackStubStartsTheSecondBeamAgain)
{
    AddMeasure(tune, 9, 8);
    for (int code : {kSixteenth, kSixteenthRest, kSixteenth, kTripletSixteenth})
        AddNote(tune, code, IsNoteValue(code) ? 1 : 0, "1");
    Show();
    EXPECT_EQ(tune[4].BeamCode, kBackStub);
    EXPECT_TRUE(Has("line 86 108 50 108 w=1")) << "the main beam goes back to the first note";
    EXPECT_TRUE(Has("line 86 105 74 105 w=1"));
}

TEST_F(MeasureViewTest, ATripletBracketIsDrawnAtTheFirstOfTheThreeNotesOnly)
{
    AddMeasure(tune);
    for (int i = 0; i < 6; ++i)
        AddNote(tune, kTripletEighth, 1, "1");
    Show();
    const std::string threeAt = "text 61 111 size=10 font=\"Arial\" bold=1 \"3\"";
    EXPECT_EQ(CountOf(threeAt), 1);
    EXPECT_EQ(CountOf("text 97 111 size=10 font=\"Arial\" bold=1 \"3\""), 1);
    const std::string log = Log();
    std::size_t threes = 0;
    for (std::size_t at = 0; (at = log.find("\"3\"", at)) != std::string::npos; ++at)
        ++threes;
    EXPECT_EQ(threes, 2U);
}

TEST_F(MeasureViewTest, AShortTripletBracketEndsAfterTheNextNoteButOneAsItWas)
{
    AddMeasure(tune);
    for (int i = 0; i < 3; ++i)
        AddNote(tune, kTripletEighth, 1, "1");
    Show();
    EXPECT_TRUE(Has("line 48 110 48 114 w=1"));
    EXPECT_TRUE(Has("line 48 114 60 114 w=1"));
    EXPECT_TRUE(Has("line 66 114 78 114 w=1"));
    EXPECT_TRUE(Has("line 78 110 78 114 w=1"));
}

TEST_F(MeasureViewTest, AShortTripletBracketWithoutANextNoteButOneHasItsFixedLength)
{
    AddMeasure(tune);
    AddNote(tune, kTripletEighthRest);
    AddNote(tune, kTripletEighth, 1, "1");
    Show();
    EXPECT_TRUE(Has("line 66 114 78 114 w=1"));
    EXPECT_TRUE(Has("line 78 110 78 114 w=1"));
}

TEST_F(MeasureViewTest, AShortTripletBracketDoesNotEndAtANoteOfTheNextMeasureRightUnderIt)
{
    AddMeasure(tune);
    AddNote(tune, kTripletEighth, 1, "1");
    AddMeasure(tune);
    NoteRecord& next = AddNote(tune, kTripletEighth, 1, "1");
    next.XPos = 48;
    Show();
    EXPECT_TRUE(Has("line 66 114 78 114 w=1"));
    next.XPos = 49;
    Show();
    EXPECT_TRUE(Has("line 66 114 55 114 w=1"));
}

TEST_F(MeasureViewTest, AQuarterTripletHasTheLongBracketAndItsRestTheShort)
{
    AddMeasure(tune);
    AddNote(tune, kTripletQuarter, 1, "1");
    Show();
    EXPECT_TRUE(Has("line 48 114 66 114 w=1"));
    EXPECT_TRUE(Has("line 72 114 90 114 w=1"));
    EXPECT_TRUE(Has(Text("67 111", "3")));
    tune[2].Clear();
    tune.LastNote = 1;
    AddNote(tune, kTripletQuarterRest);
    Show();
    EXPECT_TRUE(Has("line 66 114 90 114 w=1"));
    EXPECT_TRUE(Has(Text("61 111", "3")));
}

TEST_F(MeasureViewTest, ATripletAtTheVeryEndOfTheTableIsASubscriptFault)
{
    tune.LastNote = 1498;
    AddMeasure(tune);
    AddNote(tune, kTripletEighth, 1, "1");
    EXPECT_FAULT(Show(1499), SubscriptOutOfRange);
}

TEST_F(MeasureViewTest, RestsHaveTheirGlyphsAndBars)
{
    AddMeasure(tune);
    for (int code : {kSixteenthRest, kEighthRest, kQuarterRest, kHalfRest, kWholeRest})
        AddNote(tune, code);
    Show();
    EXPECT_TRUE(Has(Glyph("48 42", "%")));
    EXPECT_TRUE(Has(Glyph("60 42", "`")));
    EXPECT_TRUE(Has(Glyph("78 42", "~")));
    EXPECT_TRUE(Has("line 110 50 118 50 w=5"));
    EXPECT_TRUE(Has("line 158 54 166 54 w=5"));
    SetStrings(4);
    Show();
    EXPECT_TRUE(Has(Glyph("48 36", "%")));
    EXPECT_TRUE(Has("line 110 42 118 42 w=5"));
}

TEST_F(MeasureViewTest, HandLettersStandByTheStemAndNotByARest)
{
    AddMeasure(tune);
    NoteRecord& note = AddNote(tune, kQuarter, 1, "1");
    note.LeftHand = '2';
    note.RightHand = 'p';
    Show();
    EXPECT_TRUE(Has(Text("54 90", "p")));
    EXPECT_TRUE(Has(Text("51 108", "2")));
    note.NoteCode = kQuarterRest;
    Show();
    EXPECT_FALSE(Has(Text("54 90", "p")));
}

TEST_F(MeasureViewTest, BarSignsAreDrawnByTheirCode)
{
    AddMeasure(tune);
    const std::string thin = "line 350 36 350 76 w=1", thinStart = "line 27 36 27 76 w=1";
    const std::string thick = "line 350 36 350 76 w=3", thickStart = "line 23 36 23 76 w=3";
    const std::string second = "line 347 36 347 76 w=1";
    tune[1].BarCode = kRepeatEnd;
    Show();
    EXPECT_TRUE(Has(thick) && Has(second) && !Has(thin));
    EXPECT_TRUE(Has("circle 343 47 2 w=1 fill=solid") && Has("circle 343 67 2 w=1 fill=solid"));
    tune[1].BarCode = kDoubleBar;
    Show();
    EXPECT_TRUE(Has(thick) && Has(second) && !Has("circle 343 47 2 w=1 fill=solid"));
    for (std::string_view code : {kBeginDoubleBar, kPlainBar}) {
        tune[1].BarCode = code;
        Show();
        EXPECT_TRUE(Has(thickStart) && Has(thinStart) && Has(thin)) << code;
        EXPECT_FALSE(Has("circle 32 47 2 w=1 fill=solid"));
    }
}

TEST_F(MeasureViewTest, ARepeatStartOnAMeasureWithItsBarAt350StillDrawsItsDotsAt32)
{
    AddMeasure(tune).BarCode = kRepeatStart;
    Show();
    EXPECT_TRUE(Has("line 23 36 23 76 w=3"));
    EXPECT_TRUE(Has("line 27 36 27 76 w=1"));
    EXPECT_TRUE(Has("line 350 36 350 76 w=1"));
    EXPECT_TRUE(Has("circle 32 47 2 w=1 fill=solid"));
    EXPECT_TRUE(Has("circle 32 67 2 w=1 fill=solid"));
    SetStrings(5);
    Show();
    EXPECT_TRUE(Has("circle 32 65 2 w=1 fill=solid"));
    SetStrings(4);
    Show();
    EXPECT_TRUE(Has("circle 32 43 2 w=1 fill=solid"));
    EXPECT_TRUE(Has("circle 32 56 2 w=1 fill=solid"));
}

TEST_F(MeasureViewTest, ABarCodeThatSortsBelow1IsTakenAway)
{
    AddMeasure(tune);
    for (const char* code : {" ", "0", "0x", " 99"}) {
        tune[1].BarCode = code;
        Show();
        EXPECT_EQ(tune[1].BarCode, "") << code;
        EXPECT_TRUE(Has("line 350 36 350 76 w=1"));
    }
}

TEST_F(MeasureViewTest, AnyOtherBarCodeDrawsNoBarAtAll)
{
    AddMeasure(tune).BarCode = "1";
    Show();
    EXPECT_EQ(tune[1].BarCode, "1");
    EXPECT_EQ(Lines(), 3);
}

TEST_F(MeasureViewTest, TheBracketIsDrawnForItsTextOrWhileItIsTyped)
{
    AddMeasure(tune).Slot(2) = "1.";
    Show();
    EXPECT_TRUE(Has("line 6 30 6 6 w=1"));
    EXPECT_TRUE(Has("line 6 6 350 6 w=1"));
    EXPECT_TRUE(Has(Text("12 12", "1.")));
    tune[1].Slot(2).clear();
    state.InputMode = InputMode::Bracket;
    Show();
    EXPECT_TRUE(Has("line 6 6 350 6 w=1"));
}

TEST_F(MeasureViewTest, SignsAreTextsOrGlyphs)
{
    AddMeasure(tune);
    const std::pair<std::string_view, std::string> signs[] = {
        {kDs,       Text("260 12", "D.S.")        },
        {kDc,       Text("260 12", "D.C.")        },
        {kFine,     Text("260 12", "Fine")        },
        {kCoda,     Glyph("12 12", "@")           },
        {kDcAlCoda, Text("248 12", "D.C. al Coda")},
        {kDcAlFine, Text("248 12", "D.C. al Fine")},
        {kSign,     Glyph("12 12", "$")           },
        {kDsAlCoda, Text("248 12", "D.S. al Coda")},
        {kDsAlFine, Text("248 12", "D.S. al Fine")},
    };
    for (const auto& [code, line] : signs) {
        tune[1].Slot(1) = code;
        Show();
        EXPECT_TRUE(Has(line)) << code;
        EXPECT_EQ(Lines(), 5) << code;
        EXPECT_EQ(view.StaffBox.Font.Name, "Arial");
    }
}

TEST_F(MeasureViewTest, ARemarkStandsAtTheStart)
{
    AddMeasure(tune).Slot(3) = "Slowly";
    Show();
    EXPECT_TRUE(Has(Text("48 4", "Slowly")));
}

TEST_F(MeasureViewTest, ARemarkWithASlashEndsAtTheLastNoteAsThePreviousRedrawPlacedIt)
{
    AddMeasure(tune).Slot(3) = "/To Coda";
    AddNote(tune, kQuarter, 1, "1");
    AddNote(tune, kQuarter, 1, "1");
    Show();
    EXPECT_TRUE(Has(Text("-28 4", "To Coda"))) << "XPos was still 0";
    Show();
    EXPECT_TRUE(Has(Text("44 4", "To Coda"))) << "7 * 8.25 / 2 points are 28";
}

TEST_F(MeasureViewTest, ALineBreakShowsInHdbkbox)
{
    AddMeasure(tune).Slot(6) = "NL";
    Show();
    EXPECT_EQ(view.hdbkbox, "Line Break");
    tune[1].Slot(6) = "nl";
    Show();
    EXPECT_EQ(view.hdbkbox, "");
}

TEST_F(MeasureViewTest, AShortMeasureInsideTheTuneCountsAsFullInFretModeAlone)
{
    AddMeasure(tune);
    AddNote(tune, kQuarter, 1, "1");
    AddMeasure(tune);
    AddNote(tune, kQuarter, 1, "1");
    Show(1);
    EXPECT_EQ(state.MeasFill, 48);
    EXPECT_EQ(view.EndBarX, 350) << "drawn as the short measure it is";
    state.InputMode = InputMode::Chord;
    Show(1);
    EXPECT_EQ(state.MeasFill, 12);
    state.InputMode = InputMode::Fret;
    Show(3);
    EXPECT_EQ(state.MeasFill, 12) << "the last one is unfilled";
}

TEST_F(MeasureViewTest, LabelsShowTheMeasureAndTheLastNote)
{
    AddFullMeasures(tune, 2);
    Show(6);
    EXPECT_EQ(view.lblMeasNum, "2");
    EXPECT_EQ(view.lblLastNote, "10");
}

TEST_F(MeasureViewTest, CurNoteIsKeptThoughTheRedrawWalksWithIt)
{
    AddFullMeasures(tune, 1);
    Show();
    tune.CurNote = 4;
    view.RedrawMeasure();
    EXPECT_EQ(tune.CurNote, 4);
}

TEST_F(MeasureViewTest, TheCaretIsOffAfterARedraw)
{
    AddMeasure(tune);
    state.CaretOn = -1;
    Show();
    EXPECT_EQ(state.CaretOn, 0);
}

TEST_F(MeasureViewTest, SolidFillOnceSetStaysSet)
{
    AddMeasure(tune).BarCode = kRepeatEnd;
    EXPECT_FALSE(view.StaffBox.FillSolid);
    Show();
    EXPECT_TRUE(view.StaffBox.FillSolid);
}

TEST_F(MeasureViewTest, ANewBodyFontIsInForceFromTheNextRedrawOn)
{
    AddMeasure(tune);
    AddNote(tune, kQuarter, 1, "5>");
    page.BodyFontName = "Times";
    Show();
    EXPECT_EQ(CountOf("text 2 36 size=18 font=\"Times\" bold=1 \" 4 \""), 1);
    EXPECT_EQ(CountOf("text 48 28 size=10 font=\"Times\" bold=1 \"5\""), 1);
    EXPECT_EQ(view.StaffBox.Font, (Typeface{"Times", 10, true}));
}

TEST_F(MeasureViewTest, AClearedStaffShowsTheSignatureInTheOldFontAndGoesOnInTheNew)
{
    state.CurBeats = 6;
    state.CurBeatUnit = 8;
    page.BodyFontName = "Times";
    view.StaffBox.Line(1, 2, 3, 4);
    view.ClearStaff();
    EXPECT_EQ(Log(), "clear\n" + Text("2 36", " 6 ", 18) + "\n" + Text("2 56", " 8 ", 18) + "\n");
    EXPECT_EQ(view.StaffBox.Font, (Typeface{"Times", 10, true}));
}

TEST_F(MeasureViewTest, AHeadHasNoBeams)
{
    AddMeasure(tune).BeamCode = kMainBeam;
    Show();
    EXPECT_EQ(tune[1].BeamCode, 0);
}

TEST_F(MeasureViewTest, BlanksRoundAFretAreNotShown)
{
    AddMeasure(tune);
    AddNote(tune, kQuarter, 1, "  5  ");
    AddNote(tune, kHalf, 2, " 12 ");
    AddNote(tune, kQuarter, 3, "   ");
    Show();
    EXPECT_TRUE(Has(Text("48 28", "5")));
    EXPECT_TRUE(Has(Text("84 36", "[12]")));
    EXPECT_EQ(Lines(), 1 + 2 + 1 + 2 + 2 + 1) << "clear, signature, bar, two frets, three stems";
}

TEST_F(MeasureViewTest, TheFretOfARestIsShownWithoutBracketsOrStem)
{
    AddMeasure(tune);
    AddNote(tune, kQuarterRest, 1, "7");
    AddNote(tune, kHalfRest, 2, "9");
    AddNote(tune, kWhole, 3, "3");
    AddNote(tune, 12, 4, "4");  // a code without a meaning
    Show();
    EXPECT_TRUE(Has(Text("48 28", "7")));
    EXPECT_TRUE(Has(Text("72 36", "9")));
    EXPECT_TRUE(Has(Text("120 44", "[3]")));
    EXPECT_EQ(tune[5].XPos, 216);
    EXPECT_TRUE(Has(Text("216 52", "4")));
    EXPECT_EQ(Log().find("line 219"), std::string::npos);
}

TEST_F(MeasureViewTest, ASlashWithAMarkStaysOnItsStringAndHasTheMark)
{
    AddMeasure(tune);
    AddNote(tune, kDottedQuarter, 2, "/^").BeamCode = kDotAlone;
    AddNote(tune, kHalf, 5, "/>");
    Show();
    EXPECT_TRUE(Has("text 48 36 size=10 font=\"tab\" bold=1 \"/\""));
    EXPECT_TRUE(Has("arc 63 42 9 0.5 3 0.5 w=1"));
    EXPECT_TRUE(Has("text 72 60 size=10 font=\"tab\" bold=1 \"/\"")) << "no brackets";
    EXPECT_TRUE(Has(Glyph("78 52", ">", 8)));
    EXPECT_EQ(Log().find("circle"), std::string::npos) << "and no dot";
}

TEST_F(MeasureViewTest, AFretMayHaveATieAndABendMark)
{
    AddMeasure(tune);
    AddNote(tune, kQuarter, 1, "5>^");
    Show();
    EXPECT_TRUE(Has(Text("48 28", "5")));
    EXPECT_TRUE(Has("arc 63 34 9 0.5 3 0.5 w=1"));
    EXPECT_TRUE(Has(Glyph("54 20", ">", 8)));
}

TEST_F(MeasureViewTest, OnlyATextAsLongAsTheColumnIsWideWidensIt)
{
    AddMeasure(tune);
    AddNote(tune, kQuarter, 1, "123");
    AddNote(tune, kQuarter, 1, "1234");
    AddNote(tune, kQuarter, 1, "1").ChordText = "Am7";
    AddNote(tune, kQuarter, 1, "1").ChordText = "Cm7b";
    NoteRecord& unknown = AddNote(tune, 60, 1, "1");
    unknown.Spacing = 7;
    Show();
    EXPECT_EQ(tune[2].Spacing, 4);
    EXPECT_EQ(tune[3].Spacing, 5);
    EXPECT_EQ(tune[4].Spacing, 4);
    EXPECT_EQ(tune[5].Spacing, 5);
    EXPECT_EQ(unknown.Spacing, 7) << "a code without a width keeps what it has";
}

TEST_F(MeasureViewTest, AMeasureThatHoldsMoreThanItsSignatureEndsAfterItsLastNoteToo)
{
    AddMeasure(tune, 2, 4);
    for (int i = 0; i < 3; ++i)
        AddNote(tune, kQuarter, 1, "1");
    Show();
    EXPECT_EQ(state.MeasFill, 36);
    EXPECT_EQ(view.EndBarX, 48 + 3 * 24);
}

TEST_F(MeasureViewTest, NoBeamIsDrawnOverALongRestThoughTheShapesMayAskForOne)
{
    const struct {
        int note;
        int rest;
        int beatUnit;
    } rows[] = {
        {kEighth,    kHalfRest,    4},
        {kEighth,    kWholeRest,   4},
        {kSixteenth, kQuarterRest, 8},
    };
    for (const auto& row : rows) {
        tune = {};
        AddMeasure(tune, 9, row.beatUnit);
        AddNote(tune, row.note, 1, "1");
        AddNote(tune, row.rest);
        const NoteRecord& last = AddNote(tune, row.note, 1, "1");
        Show();
        EXPECT_GE(last.BeamCode, kBackStub);
        const std::string start = std::to_string(last.XPos + 2);
        EXPECT_NE(Log().find(" 108 " + start + " 108 w=1"), std::string::npos) << row.rest;
        EXPECT_EQ(Log().find(" 108 50 108 w=1"), std::string::npos) << row.rest;
    }
}

TEST_F(MeasureViewTest, ARunningXPastSixteenBitsIsAnOverflow)
{
    AddMeasure(tune);
    for (int i = 0; i < 3; ++i)
        AddNote(tune, kQuarter, 1, std::string(3000, '1'));
    EXPECT_FAULT(Show(), Overflow);
}

TEST_F(MeasureViewTest, TheSecondRedrawOfAnyMeasureDrawsAndDerivesTheSame)
{
    std::mt19937 random(3);
    const char* texts[] = {"", "0", "12", "5>", "7^", "3-5", "/", "x", "[", " 2", "9<", "5=7"};
    const std::vector<int> codes = NotesAndRests();
    for (int i = 0; i < 500; ++i) {
        tune = {};
        const int units[] = {4, 8};
        AddMeasure(tune, 2 + static_cast<int>(random() % 5), units[random() % 2]);
        for (unsigned n = random() % 16; n > 0; --n) {
            NoteRecord& note = AddNote(tune, codes[random() % std::size(codes)]);
            if (IsNoteValue(note.NoteCode))
                note.Slot(1 + static_cast<int>(random() % 6)) = texts[random() % std::size(texts)];
        }
        Show();
        const std::string table = TableText(tune), log = Log();
        Show();
        ASSERT_EQ(TableText(tune), table);
        ASSERT_EQ(Log(), log);
    }
}

}  // namespace
}  // namespace quillon
