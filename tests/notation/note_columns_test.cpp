#include "page_desk.h"

namespace quillon {
namespace {

/// One measure whose first note is at 970, 150 twips to the unit; stems end at 1837.5.
class NoteColumnsTest : public PageDesk {
protected:
    NoteColumnsTest() { AddMeasure(tune); }

    NoteRecord& Note(int code, const std::string& text = "3", int string = 1)
    {
        return AddNote(tune, code, string, text);
    }

    /// Where the cursor is after the line, which ends in this note: the text that the next head has
    /// for a line break is printed there.
    std::string CursorAfter(int code, const std::string& text = "3", int string = 1,
                            char leftHand = ' ')
    {
        tune.LastNote = 1;
        Note(kQuarter, "1");
        NoteRecord& note = tune[tune.LastNote + 1];
        note.Clear();
        Note(code, text, string).LeftHand = leftHand;
        AddMeasure(tune).Slot(6) = "here";
        Note(kQuarter, std::string(120, '3'));  // too wide for any line
        const std::string place = Only(Screen(), "text", "\"here\"").at(0);
        return place.substr(5, place.find(" bold") - 5);
    }

    /// The log after the signature and the bars of the first line.
    LogLines Columns()
    {
        const LogLines log = Screen();
        const auto lastBar = std::find_if(log.rbegin(), log.rend(), [](const std::string& line) {
            return line.starts_with("line") && line.find(" 765 ") != std::string::npos &&
                   line.ends_with(" 1590 w=2");
        });
        return {lastBar.base(), log.end()};
    }
};

TEST_F(NoteColumnsTest, ATieAtTheLinesEndComesInOnTheNextLine)
{
    Note(kQuarter, "3^");
    AddMeasure(tune).Slot(6) = "NL";
    Note(kQuarter, "3");
    Note(kQuarter, "3");
    const LogLines arcs = Only(Screen(), "arc");
    ASSERT_EQ(arcs.size(), 2U);
    EXPECT_EQ(arcs[0], "arc 6295 765 5215 1 3 0.5 w=1");
    EXPECT_EQ(arcs[1], "arc 400 2667.5 420 0 1.5 0.25 w=2");
}

TEST_F(NoteColumnsTest, ATieThatComesInWaitsForAFretOnItsString)
{
    Note(kQuarter, "3^");
    AddMeasure(tune).Slot(6) = "NL";
    Note(kQuarter, "2", 2);
    AddMeasure(tune).Slot(6) = "NL";
    Note(kQuarter, "5", 1);
    Note(kQuarter, "5", 1);
    const LogLines arcs = Only(Screen(), "arc 400 ");
    ASSERT_EQ(arcs.size(), 1U);
    EXPECT_EQ(arcs[0], "arc 400 4570 420 0 1.5 0.25 w=2");
}

TEST_F(NoteColumnsTest, AnyOtherFretOnTheStringClearsATieThatCameIn)
{
    Note(kQuarter, "3^");
    AddMeasure(tune).Slot(6) = "NL";
    Note(kQuarter, "5");
    AddMeasure(tune).Slot(6) = "NL";
    Note(kQuarter, "5");
    EXPECT_EQ(Only(Screen(), "arc 400 ").size(), 1U);  // into line 2, none into line 3
}

TEST_F(NoteColumnsTest, ATieIntoTheNextMeasureSkipsTheHead)
{
    Note(kQuarter, "3^");
    AddMeasure(tune);
    Note(kQuarter);
    Note(kQuarter);
    // Notes at 970 and 1720: radius (750 - 100) / 2 - 20.
    EXPECT_EQ(Only(Screen(), "arc").at(0), "arc 1385 765 305 0 3.25 0.5 w=1");
}

TEST_F(NoteColumnsTest, ATieToTheNextNote)
{
    Note(kQuarter, "3^");
    Note(kQuarter);
    EXPECT_EQ(Only(Columns(), "arc").at(0), "arc 1235 765 155 0 3.25 0.5 w=1");
}

TEST_F(NoteColumnsTest, AllSixSlotsAreReadOnAllInstruments)
{
    tune.NumStrings = 4;
    Note(kQuarter, "5", 5);
    Note(kQuarter, "6", 6);
    const LogLines log = Screen();
    EXPECT_TRUE(Has(log, "text 970 1310 size=10 font=\"Arial\" bold=0 \"5\""));
    EXPECT_TRUE(Has(log, "text 1420 1475 size=10 font=\"Arial\" bold=0 \"6\""));
}

TEST_F(NoteColumnsTest, ASlashMakesAStemAndLeavesTiesAlone)
{
    Note(kQuarter, "3^", 3);
    AddMeasure(tune).Slot(6) = "NL";
    Note(kQuarter, "/", 3);
    Note(kQuarter, "5", 3);
    const LogLines log = Screen();
    EXPECT_TRUE(Has(log, "line 860 3062.5 860 3740 w=1"));
    const LogLines in = Only(log, "arc 400 ");
    ASSERT_EQ(in.size(), 1U);
    EXPECT_EQ(in[0], "arc 400 2997.5 870 0 1.5 0.25 w=2");  // at the fret after the slash
}

TEST_F(NoteColumnsTest, ASlashStands100HigherWhereTheFontTakesEverySize)
{
    Note(kQuarter, "/", 3);
    Note(kQuarter);
    EXPECT_EQ(Columns().at(0), "text 970 880 size=10 font=\"Tab\" bold=0 \"/\"");
}

TEST_F(NoteColumnsTest, ASlashStands40HigherWhereTheSizeInForceIsTwoLess)
{
    page.BodyFontSize = 67108864;  // two less, and no more, is the same single
    Note(kQuarter, "/", 3);
    Note(kQuarter);
    EXPECT_TRUE(Columns().at(0).starts_with("text 970 940 size=67108864 font=\"Tab\" "));
    page.BodyFontSize = 33554432;  // here two more is
    EXPECT_TRUE(Columns().at(0).starts_with("text 970 880 size=33554432 font=\"Tab\" "));
}

TEST_F(NoteColumnsTest, ATripletAtTheLinesEndHasABracketThatRunsBackToTheLeft)
{
    Note(kQuarter);
    Note(kTripletEighth);
    const LogLines log = Columns();
    // Column 5 is free, its x 0: from 1420 to 120, the "3" half way to 0.
    EXPECT_TRUE(Has(log, "line 1420 1847.5 1420 1937.5 w=1"));
    EXPECT_TRUE(Has(log, "line 1420 1937.5 710 1937.5 w=1"));
    EXPECT_TRUE(Has(log, "line 830 1937.5 120 1937.5 w=1"));
    EXPECT_TRUE(Has(log, "line 120 1847.5 120 1937.5 w=1"));
}

TEST_F(NoteColumnsTest, TheThreeOfATripletNeverMovesTheNextLine)
{
    for (int i = 0; i < 3; ++i)
        Note(kTripletEighth);
    AddMeasure(tune).Slot(6) = "NL";
    Note(kQuarter);
    const LogLines log = Screen();
    EXPECT_EQ(Only(log, "text", "827.5 size=10 font=\"Arial\" bold=0 \"3\"").size(), 1U);
    EXPECT_TRUE(Has(log, "line 400 2667.5 11440 2667.5 w=1"));  // as without a triplet
}

TEST_F(NoteColumnsTest, ATripletBracketSpansThreeColumns)
{
    for (int i = 0; i < 4; ++i)
        Note(kTripletEighth);
    const LogLines log = Columns();
    const LogLines bracket(log.begin() + 2, log.begin() + 7);
    EXPECT_EQ(Joined(bracket), "line 970 1847.5 970 1937.5 w=1\n"
                               "line 970 1937.5 1270 1937.5 w=1\n"
                               "line 1390 1937.5 1690 1937.5 w=1\n"
                               "line 1690 1847.5 1690 1937.5 w=1\n"
                               "text 1270 1827.5 size=10 font=\"Arial\" bold=0 \"3\"\n");
}

TEST_F(NoteColumnsTest, ATripletRunsOnOverALinesEndUnlessAHeadComes)
{
    Note(kTripletEighth, "5");
    Note(kTripletEighth, "5");
    AddNote(tune, kTripletEighth, 1, "5").Slot(6) = "NL";
    tune[4].Measure = tune.LastMeas = 2;
    Note(kQuarter, "5");
    EXPECT_EQ(Only(Screen(), "text", "\"3\"").size(), 1U);
}

TEST_F(NoteColumnsTest, AFretWithAConnectionMark)
{
    Note(kQuarter, "3-5");
    Note(kQuarter, "5=7");
    Note(kQuarter);
    const LogLines log = Columns();
    EXPECT_EQ(log.at(0), "text 970 650 size=10 font=\"Arial\" bold=0 \"3\"");
    EXPECT_EQ(log.at(1), "text 1070 580 size=10 font=\"Tab\" bold=0 \"-\"");
    EXPECT_EQ(log.at(2), "text 1170 650 size=10 font=\"Arial\" bold=0 \"5\"");
    EXPECT_EQ(log.at(5), "text 1670 570 size=10 font=\"Tab\" bold=0 \"=\"");
}

TEST_F(NoteColumnsTest, LongNotesStandInBracketsAndKeepTheirConnectionMarkAsText)
{
    Note(kHalf, "3-5");
    Note(kQuarter);
    EXPECT_EQ(Columns().at(0), "text 970 650 size=10 font=\"Arial\" bold=0 \"[3-5]\"");
}

TEST_F(NoteColumnsTest, TheDotComesAfterTheShownTextBracketsIncluded)
{
    Note(kDottedHalf, "3^");
    Note(kQuarter);
    const LogLines log = Columns();
    EXPECT_EQ(log.at(0), "text 970 650 size=10 font=\"Arial\" bold=0 \"[3]\"");
    EXPECT_EQ(log.at(1), "circle 1320 808 20 w=1 fill=solid");  // 970 + 300 + 50
}

TEST_F(NoteColumnsTest, ASlideMarkStandsAtItsPlaceInTheText)
{
    Note(kQuarter, "12>");
    Note(kQuarter, "3<");
    const LogLines log = Columns();
    EXPECT_EQ(log.at(0), "text 970 650 size=10 font=\"Arial\" bold=0 \"12\"");
    EXPECT_EQ(log.at(1), "text 1170 450 size=8 font=\"Tab\" bold=0 \">\"");
    EXPECT_TRUE(Has(log, "text 1670 650 size=8 font=\"Tab\" bold=0 \"<\""));
}

TEST_F(NoteColumnsTest, AMarkInTheMiddleStaysAndTheLastCharacterGoes)
{
    Note(kQuarter, "1^5");
    Note(kQuarter);
    EXPECT_EQ(Columns().at(0), "text 970 650 size=10 font=\"Arial\" bold=0 \"1^\"");
}

TEST_F(NoteColumnsTest, Rests)
{
    AddNote(tune, kHalfRest);
    AddNote(tune, kWholeRest);
    for (int code = kTripletSixteenthRest; code <= kQuarterRest; ++code)
        AddNote(tune, code);
    Note(kQuarter);
    const LogLines log = Columns();
    EXPECT_EQ(log.at(0), "line 970 1065 1195 1065 w=8");
    EXPECT_EQ(log.at(1), "line 2320 970 2545 970 w=8");
    const LogLines glyphs = Only(log, "text ", "\"");
    EXPECT_EQ(glyphs.at(0), "text 3520 905 size=12 font=\"Tab\" bold=0 \"%\"");
    EXPECT_EQ(Only(log, "text", "\"%\"").size(), 2U);
    EXPECT_EQ(Only(log, "text", "\"`\"").size(), 2U);
    EXPECT_EQ(Only(log, "text", "\"~\"").size(), 2U);
}

TEST_F(NoteColumnsTest, ARestStandsInItsColumnWhateverItsSlotsHold)
{
    AddNote(tune, kQuarterRest);
    const std::string glyph = Only(Columns(), "text ", "\"").back();
    tune[tune.LastNote].Slot(6) = "12";
    EXPECT_EQ(Only(Columns(), "text ", "\"").back(), glyph);
}

TEST_F(NoteColumnsTest, StemsHangFromTheLowestStringAndWholeNotesHaveNone)
{
    AddNote(tune, kQuarter, 2, "3").Slot(4) = "5";
    Note(kWhole);
    const LogLines log = Columns();
    EXPECT_EQ(Only(log, "line").size(), 1U);
    EXPECT_TRUE(Has(log, "line 1010 1325 1010 1837.5 w=1"));
}

TEST_F(NoteColumnsTest, BeamsAndStubsByTheirCode)
{
    for (BeamShape beam :
         {kNoBeam, kMainBeam, kBothBeams, kBackStub, kForwardStub, kMainBeamForwardStub})
        AddNote(tune, kSixteenth, 1, "3").BeamCode = beam;
    Note(kQuarter);
    LogLines rows = Only(Columns(), "line");
    rows.erase(std::remove_if(rows.begin(), rows.end(),
                              [](const std::string& l) { return l.find(" 830 ") != l.npos; }),
               rows.end());
    // Stems at 1010, 1310, 1610, 1910, 2210, 2510. The beat of 12 ticks ends before the fifth;
    // the second beam starts again at kBackStub.
    EXPECT_EQ(Joined(rows), "line 1009 1837.5 1310 1837.5 w=2\n"
                            "line 1009 1837.5 1610 1837.5 w=2\n"
                            "line 1309 1787.5 1610 1787.5 w=2\n"
                            "line 1009 1837.5 1910 1837.5 w=2\n"
                            "line 1760 1787.5 1910 1787.5 w=2\n"
                            "line 2210 1757.5 2340 1757.5 w=1\n"
                            "line 2209 1837.5 2510 1837.5 w=2\n"
                            "line 2510 1757.5 2640 1757.5 w=1\n");
}

TEST_F(NoteColumnsTest, LongNotesDoNotCountForTheBeatsOfBeams)
{
    tune[1].Beats = 9;
    tune[1].BeatUnit = 8;
    for (const int code : {kHalf, kDottedHalf, kWhole}) {
        tune.LastNote = 1;
        for (int i = 2; i <= 8; ++i)
            tune[i].Clear();
        Note(code);
        for (int i = 0; i < 4; ++i)
            Note(kEighth).BeamCode = i == 0 ? kNoBeam : kMainBeam;
        Note(kQuarter);
        const int first = code == kHalf ? 1720 : code == kDottedHalf ? 2170 : 2770;
        const LogLines beams = Only(Columns(), "line", " 1837.5 w=2");
        ASSERT_EQ(beams.size(), 3U);
        const std::string start = "line " + std::to_string(first + 39) + " ";
        EXPECT_TRUE(beams[0].starts_with(start)) << beams[0];
        EXPECT_TRUE(beams[1].starts_with(start)) << beams[1];
        EXPECT_FALSE(beams[2].starts_with(start)) << "18 ticks after the first";
    }
}

TEST_F(NoteColumnsTest, FlagsStandAtTheStem)
{
    AddNote(tune, kEighth, 1, "3").BeamCode = kEighthFlag;
    AddNote(tune, kSixteenth, 1, "3").BeamCode = kSixteenthFlag;
    Note(kQuarter);
    const LogLines log = Columns();
    EXPECT_TRUE(Has(log, "text 1010 1532.5 size=10 font=\"Tab\" bold=0 \"(\""));
    EXPECT_TRUE(Has(log, "text 1310 1532.5 size=10 font=\"Tab\" bold=0 \")\""));
}

TEST_F(NoteColumnsTest, HandLetters)
{
    NoteRecord& note = Note(kQuarter);
    note.LeftHand = 'T';
    note.RightHand = 'p';
    AddMeasure(tune).Slot(6) = "NL";
    Note(kQuarter);
    const LogLines log = Screen();
    // With right-hand letters the stems end two gaps under the staff's last gap, at 2085.
    EXPECT_TRUE(Has(log, "text 1030 1590 size=10 font=\"Arial\" bold=0 \"p\""));
    EXPECT_TRUE(Has(log, "text 971 2105 size=10 font=\"Arial\" bold=0 \"T\""));
    EXPECT_TRUE(Has(log, "line 400 2915 11440 2915 w=1"));
}

TEST_F(NoteColumnsTest, ALeftHandLetterUnderATripletStandsUnderItsBracket)
{
    Note(kTripletEighth).LeftHand = 'T';
    for (int i = 0; i < 3; ++i)
        Note(kTripletEighth);
    EXPECT_TRUE(Has(Screen(), "text 971 1977.5 size=10 font=\"Arial\" bold=0 \"T\""));
}

TEST_F(NoteColumnsTest, WhatTheNextHeadHasForALineBreakIsPrintedAtTheCursor)
{
    const std::string body = " size=10 font=\"Arial\"";
    EXPECT_EQ(CursorAfter(kQuarter), "1460 1837.5" + body) << "the end of the stem";
    EXPECT_EQ(CursorAfter(kWhole), "1420 1475" + body) << "in front of string 6";
    EXPECT_EQ(CursorAfter(kWhole, "3", 6), "0 1715" + body) << "the line after its fret";
    EXPECT_EQ(CursorAfter(kHalfRest, ""), "1645 1065" + body) << "the end of its bar";
    EXPECT_EQ(CursorAfter(60, ""), "1420 1475" + body) << "an unknown code under the rests";
    EXPECT_EQ(CursorAfter(100, ""), "1420 905" + body) << "and one above them";
    EXPECT_EQ(CursorAfter(kEighthRest, ""), "0 1193" + body);
    EXPECT_EQ(CursorAfter(kQuarter, "3", 1, 'T'), "0 2097.5" + body);
}

TEST_F(NoteColumnsTest, AStaffThatEndsEarlyIsFollowedByOneThatDoesNot)
{
    Note(kQuarter, "3^");
    Note(kHalfRest);
    AddMeasure(tune).Slot(6) = "NL";
    Note(kQuarter, "3^");
    const LogLines log = Screen();
    EXPECT_TRUE(Has(log, "line 400 765 3220 765 w=1"));  // a line that ends in a long rest
    EXPECT_TRUE(Has(log, "line 400 2667.5 11440 2667.5 w=1"));
    EXPECT_TRUE(Has(log, "arc 6220 2667.5 5290 1 3 0.5 w=1")) << "to the end of the long staff";
}

}  // namespace
}  // namespace quillon
